// Importing registry-editor files into machines.
#include "platform/common/reg_import.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/common/reg_fixture.h"
#include "support/machines.h"

namespace korvex::platform {
namespace {

using namespace korvex::test;
using namespace std::string_literals;

TEST(RegImport, AppliesAFileInItsOrder) {
  TestMachine machine{Family::Nt};
  const auto result = importText(machine.registry(),
                                 "REGEDIT4\n"
                                 "[HKEY_CURRENT_USER\\T\\Sub\\Deep]\n\"a\"=\"1\"\n"
                                 "[HKEY_CURRENT_USER\\t]\n@=\"top\"\n\"n\"=dword:1\n"
                                 "[-HKEY_CURRENT_USER\\T\\sub]\n"
                                 "[HKEY_CURRENT_USER\\T\\Sub]\n\"b\"=hex:01\n\"c\"=\"x\"\n\"c\"=-\n"
                                 "\"none\"=-\n"
                                 "[-HKEY_CURRENT_USER\\T\\Never]\n"
                                 "[HKEY_CURRENT_USER\\T]\n\"n\"=dword:2\n");
  EXPECT_EQ(result.status, ERROR_SUCCESS) << result.message;
  EXPECT_EQ(result.keys, 4U);
  EXPECT_EQ(result.values, 6U);
  EXPECT_EQ(result.deletedKeys, 2U);
  EXPECT_EQ(result.deletedValues, 2U);
  EXPECT_EQ(result.refused + result.notes, 0U);
  EXPECT_EQ(dataAt(machine.registry(), "HKEY_CURRENT_USER\\T", ""), "top\0"s);
  EXPECT_EQ(dataAt(machine.registry(), "HKEY_CURRENT_USER\\T", "n"), "\2\0\0\0"s);
  EXPECT_EQ(dataAt(machine.registry(), "HKEY_CURRENT_USER\\T\\Sub", "b"), "\1"s);
  EXPECT_EQ(dataAt(machine.registry(), "HKEY_CURRENT_USER\\T\\Sub", "c"), "(none)");
  const OpenKey deep(machine.registry(), HKEY_CURRENT_USER, "T\\Sub\\Deep", KEY_READ);
  EXPECT_EQ(deep.status(), ERROR_FILE_NOT_FOUND);
}

TEST(RegImport, DeletesTreesOnEveryFamily) {
  for (const Family family : {Family::Nt, Family::NineX}) {
    TestMachine machine{family};
    const auto before = contentsOf(machine.registry());
    std::string text = "REGEDIT4\n";
    for (const char* key : {"a", "a\\b", "a\\b\\c", "a\\b\\d", "a\\e\\f\\g"}) {
      text += "[HKEY_LOCAL_MACHINE\\Software\\Tree\\"s + key + "]\n\"v\"=\"w\"\n";
    }
    EXPECT_EQ(importText(machine.registry(), text).values, 5U);
    EXPECT_NE(contentsOf(machine.registry()), before);
    HandleCounter counter(machine.registry());
    const auto result = importText(counter, "REGEDIT4\n[-HKEY_LOCAL_MACHINE\\Software\\Tree]\n");
    EXPECT_EQ(result.deletedKeys, 1U);
    EXPECT_EQ(counter.open, 0);
    auto after = contentsOf(machine.registry());
    after.erase({"HKEY_LOCAL_MACHINE\\Software", "\\"});
    EXPECT_EQ(after, before);
  }
}

TEST(RegImport, RefusedLinesAreNamedAndCostOnlyThemselves) {
  TestMachine machine{Family::NineX};
  RegImportOptions options;
  options.source = "x.reg";
  options.messagesKept = 2;
  const std::string text =
      "Windows Registry Editor Version 5.00\n\n[HKEY_CURRENT_USER\\T]\njunk\n\"" +
      std::string(300, 'n') + "\"=\"long\"\n\"a\"=dword:xyz\n\"Ω\"=\"\"\n\"b\"=\"kept\"\n" +
      "[HKEY_CURRENT_USER\\Ω]\n\"lost\"=\"\"\n";
  const auto result = importText(machine.registry(), "\xFF\xFE" + utf8ToUtf16le(text), options);
  EXPECT_EQ(result.status, ERROR_SUCCESS);
  EXPECT_EQ(result.refused, 6U);
  EXPECT_EQ(result.values, 1U);
  ASSERT_EQ(result.messages.size(), 2U);
  EXPECT_TRUE(result.messages[0].starts_with("x.reg:4: ")) << result.messages[0];
  EXPECT_TRUE(result.messages[1].starts_with("x.reg:5: ")) << result.messages[1];
  EXPECT_NE(result.messages[1].find("206"), std::string::npos) << result.messages[1];
  EXPECT_EQ(dataAt(machine.registry(), "HKEY_CURRENT_USER\\T", "b"), "kept\0"s);
}

TEST(RegImport, CodePageIsAnOption) {
  TestMachine machine{Family::Nt};
  RegImportOptions options;
  options.codePage = 1251;
  const std::string text = "REGEDIT4\n[HKEY_CURRENT_USER\\T]\n\"\xC0\"=hex(2):c1,00\n";
  EXPECT_EQ(importText(machine.registry(), text, options).values, 1U);
  EXPECT_EQ(dataAt(machine.registry(), "HKEY_CURRENT_USER\\T", "А"), "Б\0"s);
  options.codePage = 932;
  EXPECT_EQ(importText(machine.registry(), text, options).status, ERROR_INVALID_PARAMETER);
}

constexpr const char* kChange =
    "REGEDIT4\n[HKEY_CURRENT_USER\\T\\A]\n\"a\"=\"new\"\n[-HKEY_CURRENT_USER\\T\\B]\n"
    "[HKEY_CURRENT_USER\\T\\A]\n\"gone\"=-\n[HKEY_CURRENT_USER\\T\\C\\D]\n@=dword:1\n";

TEST(RegImport, FailingRegistryIsLeftAsItWas) {
  TestMachine machine{Family::Nt};
  importText(machine.registry(),
             "REGEDIT4\n[HKEY_CURRENT_USER\\T\\A]\n\"a\"=\"old\"\n\"gone\"=\"\"\n"
             "[HKEY_CURRENT_USER\\T\\B\\Below]\n\"b\"=\"old\"\n");
  const auto before = contentsOf(machine.registry());
  for (int nth = 1;; ++nth) {
    ASSERT_LT(nth, 100);
    FailingRegistry failing(machine.registry(), nth, ERROR_DISK_FULL);
    HandleCounter counter(failing);
    const auto result = importText(counter, kChange);
    EXPECT_EQ(counter.open, 0) << nth;
    if (!failing.failed()) {
      EXPECT_EQ(result.status, ERROR_SUCCESS) << result.message;
      EXPECT_GT(nth, 10);
      break;
    }
    EXPECT_EQ(result.status, ERROR_DISK_FULL) << nth;
    EXPECT_NE(result.message, "") << nth;
    EXPECT_EQ(result.keys + result.values + result.deletedKeys, 0U) << nth;
    ASSERT_EQ(contentsOf(machine.registry()), before) << nth;
  }
  EXPECT_NE(contentsOf(machine.registry()), before);
}

TEST(RegImport, ReadOnlyMachineTakesNothing) {
  TestMachine machine{Family::Nt};
  machine.reopen(OpenMode::Read);
  EXPECT_EQ(importText(machine.registry(), kChange).status, ERROR_WRITE_PROTECT);
}

TEST(RegImport, DryRunCountsWhatTheImportDoes) {
  TestMachine machine{Family::Nt};
  const TemporaryFolder folder;
  const auto file = folder.path() / "change.reg";
  std::ofstream(file) << kChange << "junk\n";
  const auto checked = checkRegFile(file);
  const auto done = importRegFile(machine.registry(), file);
  EXPECT_EQ(checked.status, ERROR_SUCCESS);
  EXPECT_EQ(checked.keys, 3U);
  for (auto count : {&RegImportResult::keys, &RegImportResult::values, &RegImportResult::refused,
                     &RegImportResult::deletedKeys, &RegImportResult::deletedValues}) {
    EXPECT_EQ(checked.*count, done.*count);
  }
  EXPECT_EQ(checked.messages, done.messages);
}

TEST(RegImport, FilesThatAreNoneSayWhy) {
  TestMachine machine{Family::Nt};
  const TemporaryFolder folder;
  const auto file = folder.path() / "other.reg";
  EXPECT_EQ(importRegFile(machine.registry(), file).status, ERROR_FILE_NOT_FOUND);
  EXPECT_NE(importRegFile(machine.registry(), folder.path()).status, ERROR_SUCCESS);
  std::ofstream(file) << "[Desktop Entry]\n";
  const auto result = importRegFile(machine.registry(), file);
  EXPECT_EQ(result.status, ERROR_NOT_REGISTRY_FILE);
  EXPECT_NE(result.message.find("other.reg"), std::string::npos) << result.message;
  std::ifstream missing(folder.path() / "missing");
  EXPECT_EQ(importRegText(machine.registry(), missing).status, ERROR_GEN_FAILURE);
}

}  // namespace
}  // namespace korvex::platform
