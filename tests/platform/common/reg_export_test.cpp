// Exporting keys: the text that the registry editor writes, and back again.
#include "platform/common/reg_export.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

#include "platform/common/reg_fixture.h"
#include "support/machines.h"

namespace korvex::platform {
namespace {

using namespace korvex::test;
using namespace std::string_literals;

struct Exported {
  RegExportResult result;
  std::string text;  // UTF-8 for Version5, bytes for Regedit4
};

Exported exportKey(Registry& registry, std::string_view path, RegFormat format,
                   HKEY root = HKEY_CURRENT_USER) {
  RegExportOptions options;
  options.format = format;
  std::ostringstream stream;
  Exported exported;
  exported.result = exportRegText(registry, {{root, path}}, stream, options);
  exported.text = stream.str();
  if (format == RegFormat::Version5 && exported.result.status == ERROR_SUCCESS) {
    EXPECT_TRUE(exported.text.starts_with("\xFF\xFE"));
    exported.text = utf16leToUtf8(std::string_view(exported.text).substr(2));
  }
  return exported;
}

void set(Registry& registry, std::string_view path, std::string_view name, RegType type,
         std::string_view data) {
  HKEY key = 0;
  std::uint32_t disposition = 0;
  ASSERT_EQ(registry.RegCreateKeyExA(HKEY_CURRENT_USER, path, KEY_WRITE, key, disposition), 0);
  EXPECT_EQ(registry.RegSetValueExA(key, name, type, data.data(),
                                    static_cast<std::uint32_t>(data.size())),
            0);
  registry.RegCloseKey(key);
}

void fillWithEveryForm(Registry& registry) {
  set(registry, "T", "Text", REG_SZ, "C:\\x \"y\" é\0"s);
  set(registry, "T", "", REG_SZ, "\0"s);
  set(registry, "T", "a\\\"b", REG_DWORD, "\x12\0\0\xAB"s);
  set(registry, "T", "Short", REG_DWORD, "\1\2"s);
  set(registry, "T", "Lines", REG_SZ, "a\r\nb\0"s);
  set(registry, "T", "Open", REG_SZ, "ab");
  set(registry, "T", "Twice", REG_SZ, "a\0\0"s);
  set(registry, "T", "Empty", REG_SZ, "");
  set(registry, "T", "Expand", REG_EXPAND_SZ, "%é%\0"s);
  set(registry, "T", "Multi", REG_MULTI_SZ, "a\0b\0\0"s);
  set(registry, "T", "Quad", REG_QWORD, "\1\0\0\0\0\0\0\0"s);
  set(registry, "T", "Other", 0xFFFF0012, "\xFF");
  set(registry, "T", "Bytes", REG_BINARY, std::string(50, '\x5A'));
  set(registry, "T", "None", REG_BINARY, "");
}

TEST(RegExport, EveryFormAsUnicode) {
  TestMachine machine{Family::Nt};
  fillWithEveryForm(machine.registry());
  EXPECT_EQ(exportKey(machine.registry(), "T", RegFormat::Version5).text,
            "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\T]\r\n"
            "@=\"\"\r\n"
            "\"Text\"=\"C:\\\\x \\\"y\\\" é\"\r\n"
            "\"a\\\\\\\"b\"=dword:ab000012\r\n"
            "\"Short\"=hex(4):01,02\r\n"
            "\"Lines\"=hex(1):61,00,0d,00,0a,00,62,00,00,00\r\n"
            "\"Open\"=hex(1):61,00,62,00\r\n"
            "\"Twice\"=hex(1):61,00,00,00,00,00\r\n"
            "\"Empty\"=hex(1):\r\n"
            "\"Expand\"=hex(2):25,00,e9,00,25,00,00,00\r\n"
            "\"Multi\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"
            "\"Quad\"=hex(b):01,00,00,00,00,00,00,00\r\n"
            "\"Other\"=hex(ffff0012):ff\r\n"
            "\"Bytes\"=hex:5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,\\\r\n"
            "  5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,5a,\\\r\n"
            "  5a,5a,5a\r\n"
            "\"None\"=hex:\r\n\r\n");
}

TEST(RegExport, EveryFormInTheCodePage) {
  TestMachine machine{Family::Nt};
  fillWithEveryForm(machine.registry());
  const std::string text = exportKey(machine.registry(), "T", RegFormat::Regedit4).text;
  EXPECT_TRUE(text.starts_with("REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\T]\r\n@=\"\"\r\n")) << text;
  for (const char* line :
       {"\"Text\"=\"C:\\\\x \\\"y\\\" \xE9\"\r\n", "\"Lines\"=hex(1):61,0d,0a,62,00\r\n",
        "\"Expand\"=hex(2):25,e9,25,00\r\n", "\"Multi\"=hex(7):61,00,62,00,00\r\n",
        "\"Quad\"=hex(b):01,00,00,00,00,00,00,00\r\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line;
  }
}

TEST(RegExport, KeysAreSortedDepthFirst) {
  TestMachine machine{Family::NineX};  // lists its keys as they were created
  for (const char* key : {"T\\b", "T\\a\\z", "T\\C", "T\\a b", "T\\a\\Y", "T\\é", "T\\É2"}) {
    set(machine.registry(), key, "", REG_SZ, "\0"s);
  }
  HandleCounter counter(machine.registry());
  const Exported exported = exportKey(counter, "T", RegFormat::Version5);
  std::vector<std::string> keys;
  std::istringstream lines(exported.text);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with('[')) keys.push_back(line.substr(18, line.find(']') - 18));
  }
  EXPECT_EQ(keys, (std::vector<std::string>{"\\T", "\\T\\a", "\\T\\a\\Y", "\\T\\a\\z", "\\T\\a b",
                                            "\\T\\b", "\\T\\C", "\\T\\é", "\\T\\É2"}));
  EXPECT_EQ(exported.result.keys, 9U);
  EXPECT_EQ(counter.open, 0);
}

TEST(RegExport, WhatTheFormatCannotHoldIsNamed) {
  TestMachine machine{Family::Nt};
  set(machine.registry(), "T", "good", REG_SZ, "x\0"s);
  set(machine.registry(), "T", "greek", REG_EXPAND_SZ, "Ω\0"s);
  set(machine.registry(), "T", "odd", REG_SZ, "a\xFFz"s);
  set(machine.registry(), "T", "two\nlines", REG_SZ, "x\0"s);
  set(machine.registry(), "T\\Ω\\below", "v", REG_SZ, "x\0"s);
  const auto four = exportKey(machine.registry(), "T", RegFormat::Regedit4);
  EXPECT_EQ(four.result.status, ERROR_SUCCESS);
  EXPECT_EQ(four.text, "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\T]\r\n\"good\"=\"x\"\r\n\r\n");
  EXPECT_EQ(four.result.leftOutCount, 4U);
  ASSERT_EQ(four.result.leftOut.size(), 4U);
  EXPECT_TRUE(four.result.leftOut[0].starts_with("HKEY_CURRENT_USER\\T: value \"greek\""))
      << four.result.leftOut[0];
  EXPECT_TRUE(four.result.leftOut[3].starts_with("HKEY_CURRENT_USER\\T\\Ω: "))
      << four.result.leftOut[3];
  EXPECT_EQ(exportKey(machine.registry(), "T", RegFormat::Version5).result.leftOutCount, 1U);
}

// A registry in which other programs are at work: the key of this name vanishes or is closed off.
class ChangingRegistry : public ForwardingRegistry {
 public:
  ChangingRegistry(Registry& inner, std::string name, Status status)
      : ForwardingRegistry(inner), name_(std::move(name)), failure_(status) {}
  Status RegOpenKeyExA(HKEY key, std::string_view subKey, AccessMask access,
                       HKEY& result) override {
    if (subKey == name_) return failure_;
    return ForwardingRegistry::RegOpenKeyExA(key, subKey, access, result);
  }

 private:
  std::string name_;
  Status failure_;
};

TEST(RegExport, VanishedKeysAreSkippedAndFailuresEndIt) {
  TestMachine machine{Family::Nt};
  for (const char* key : {"T\\a", "T\\b\\c", "T\\d"})
    set(machine.registry(), key, "", REG_SZ, "\0"s);
  for (const Status status : {ERROR_FILE_NOT_FOUND, ERROR_KEY_DELETED, ERROR_ACCESS_DENIED}) {
    ChangingRegistry changing(machine.registry(), "b", status);
    HandleCounter counter(changing);
    const auto exported = exportKey(counter, "T", RegFormat::Version5);
    EXPECT_EQ(exported.result.status, ERROR_SUCCESS);
    EXPECT_EQ(exported.result.keys, 3U);
    EXPECT_EQ(exported.result.leftOutCount, 1U);
    EXPECT_EQ(counter.open, 0);
  }
  ChangingRegistry broken(machine.registry(), "b", ERROR_REGISTRY_IO_FAILED);
  HandleCounter counter(broken);
  EXPECT_EQ(exportKey(counter, "T", RegFormat::Version5).result.status, ERROR_REGISTRY_IO_FAILED);
  EXPECT_EQ(counter.open, 0);
}

TEST(RegExport, FileIsReplacedWholeOrNotAtAll) {
  TestMachine machine{Family::Nt};
  const TemporaryFolder folder;
  const auto file = folder.path() / "out.reg";
  const auto read = [&file] {
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  };
  set(machine.registry(), "T", "a", REG_SZ, "x\0"s);
  EXPECT_EQ(exportRegFile(machine.registry(), {{HKEY_CURRENT_USER, "T\\No"}}, file).status,
            ERROR_FILE_NOT_FOUND);
  EXPECT_FALSE(std::filesystem::exists(file));
  std::ofstream(file) << "before";
  for (int nth = 1;; ++nth) {
    ASSERT_LT(nth, 100);
    FailingRegistry failing(machine.registry(), nth, ERROR_REGISTRY_IO_FAILED);
    const auto result = exportRegFile(failing, {{HKEY_CURRENT_USER, "T"}}, file);
    if (!failing.failed()) break;
    EXPECT_EQ(result.status, ERROR_REGISTRY_IO_FAILED) << nth;
    ASSERT_EQ(read(), "before") << nth;
  }
  EXPECT_EQ(utf16leToUtf8(read()).substr(3, 36), "Windows Registry Editor Version 5.00");
  EXPECT_EQ(exportRegFile(machine.registry(), {{HKEY_CURRENT_USER, "T"}},
                          folder.path() / "no folder" / "out.reg")
                .status,
            ERROR_PATH_NOT_FOUND);
}

TEST(RegExport, DepthOfTheTreeIsNoLimit) {
  TestMachine machine{Family::Nt};
  std::string path = "T";
  for (int i = 0; i < 300; ++i) path += "\\d";
  set(machine.registry(), path, "deep", REG_SZ, "x\0"s);
  HandleCounter counter(machine.registry());
  EXPECT_EQ(exportKey(counter, "T", RegFormat::Version5).result.keys, 301U);
  EXPECT_EQ(importText(counter, "REGEDIT4\n[-HKEY_CURRENT_USER\\T]\n").deletedKeys, 1U);
  EXPECT_EQ(counter.open, 0);
  const OpenKey gone(machine.registry(), HKEY_CURRENT_USER, "T", KEY_READ);
  EXPECT_EQ(gone.status(), ERROR_FILE_NOT_FOUND);
}

std::string randomText(std::mt19937& random, std::size_t longest, std::u32string_view letters) {
  std::string text;
  for (std::size_t length = random() % longest; length > 0; --length) {
    const char32_t c = letters[random() % letters.size()];
    const char16_t unit = static_cast<char16_t>(c);
    appendUtf8({reinterpret_cast<const char*>(&unit), 2}, text);
  }
  return text;
}

// Whatever a registry holds, the file brings back; text is drawn from what has a meaning in a file.
TEST(RegExport, RandomContentsComeBack) {
  constexpr std::u32string_view common = U"ab\\\"[]=;#@,- \t\x01\x7F\xE9\x20AC";
  constexpr std::u32string_view wild = U"ab\\\"\r\n\x00\xE9\x3A9\xD83D\xDE00";
  const std::u32string_view data(U"ab\\\"\r\n;\0\xE9", 9);
  std::mt19937 random(7);
  for (const RegFormat format : {RegFormat::Version5, RegFormat::Regedit4}) {
    TestMachine source{Family::Nt};
    const bool unicode = format == RegFormat::Version5;
    for (int i = 0; i < 600; ++i) {
      std::string key = "T\\" + fmt::format("{}x", i % 40) + randomText(random, 9, common);
      key.erase(std::remove(key.begin() + 2, key.end(), '\\'), key.end());
      const RegType type = random() % 9 == 8 ? random() : random() % 8;
      std::string bytes = randomText(random, 60, unicode ? wild : data);
      if (type == REG_EXPAND_SZ || random() % 3 != 0) bytes += '\0';
      set(source.registry(), key, randomText(random, 12, common), type, bytes);
    }
    std::ostringstream text;
    RegExportOptions options;
    options.format = format;
    const auto exported = exportRegText(source.registry(), wholeRegistry(), text, options);
    EXPECT_EQ(exported.leftOutCount, 0U) << exported.leftOut.front();
    TestMachine target{Family::Nt};
    const auto imported = importText(target.registry(), text.str());
    EXPECT_EQ(imported.refused + imported.notes, 0U) << imported.messages.front();
    EXPECT_EQ(imported.values, exported.values);
    EXPECT_EQ(contentsOf(target.registry()), contentsOf(source.registry()));
  }
}

}  // namespace
}  // namespace korvex::platform
