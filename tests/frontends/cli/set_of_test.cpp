// set-of: sets of configuration.
#include <csignal>

#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

namespace fs = std::filesystem;

const std::string kColors = "HKCU\\Control Panel\\Colors";

class SetOfTest : public CliTest {
 public:
  explicit SetOfTest(const std::string& sample = "windows-98") : CliTest(sample) {}
  fs::path folder() const { return machine.driveC() / "Program Files/Korvex/Registry"; }
  void setWindow(const std::string& color) {
    ASSERT_EQ(0, korvex({"reg", "set", kColors, "Window", "REG_SZ", color}).code);
  }
  Json window() { return value(kColors, "Window")["data"]; }
};

class SetOf2000Test : public SetOfTest {
 public:
  SetOf2000Test() : SetOfTest("windows-2000") {}
};

using SetOf = SetOfTest;
using SetOf2000 = SetOf2000Test;

void expectRoundTrip(SetOfTest& test) {
  const std::string before = test.korvex({"reg", "export", "HKCU", "-"}).out;
  const Json saved = test.json({"set-of", "save", "Work"}).json();
  EXPECT_TRUE(saved["failed"].empty()) << saved;
  EXPECT_EQ(0, test.korvex({"set-of", "restore", "Work", "--dry-run"}).code);
  test.setWindow("1 2 3");
  test.korvex({"reg", "delete", "HKCU\\Control Panel\\Keyboard"});
  test.korvex({"reg", "set", "HKCU\\Control Panel\\Desktop\\New", "a", "REG_SZ", "x"});
  const Json told = test.json({"set-of", "restore", "Work", "--dry-run"}).json();
  EXPECT_GE(told["changeCount"], 3);
  EXPECT_EQ("1 2 3", test.window());
  ASSERT_EQ(0, test.korvex({"set-of", "restore", "work", "--yes"}).code);
  EXPECT_EQ(before, test.korvex({"reg", "export", "HKCU", "-"}).out);
  // What it overwrote is a set itself.
  ASSERT_EQ(0, test.korvex({"set-of", "restore", "Work (before restore)", "--yes"}).code);
  EXPECT_EQ("1 2 3", test.window());
}

TEST_F(SetOf, RestoreBringsTheConfigurationBack) { expectRoundTrip(*this); }
TEST_F(SetOf2000, RestoreBringsTheConfigurationBack) { expectRoundTrip(*this); }

TEST_F(SetOf, OnlyTheCategoriesThatWereNamedAreTouched) {
  EXPECT_EQ(2, korvex({"set-of", "save", "Look", "--only", "colour"}).code);
  EXPECT_EQ(2, korvex({"set-of", "save", "a/b"}).code);
  EXPECT_EQ(2, korvex({"set-of", "save", "Look", "--only", "color", "--types", "txt"}).code);
  EXPECT_FALSE(fs::exists(folder()));
  ASSERT_EQ(0, korvex({"set-of", "save", "Look", "--only", "color,KEYBOARDCONFIG"}).code);
  const Json shown = json({"set-of", "show", "Look"}).json();
  ASSERT_EQ(2U, shown["set"]["categories"].size());
  EXPECT_EQ("KeyboardConfig", shown["set"]["categories"][1]["tag"]);
  EXPECT_EQ(5, korvex({"set-of", "restore", "Look", "--only", "mru", "--yes"}).code);
  setWindow("1 2 3");
  EXPECT_EQ(0, korvex({"set-of", "restore", "Look", "--only", "keyboard", "--yes"}).code);
  EXPECT_EQ("1 2 3", window());
  EXPECT_EQ(0, korvex({"set-of", "restore", "Look", "--only", "Color", "--yes"}).code);
  EXPECT_NE("1 2 3", window());
}

TEST_F(SetOf, FileTypesAreThoseThatWereNamed) {
  ASSERT_EQ(0, korvex({"set-of", "save", "Types", "--only", "FA", "--types", "txt,.bmp", "--folder",
                       "C:\\Saves\\"})
                   .code);
  std::vector<std::string> files;
  for (const auto& file : fs::directory_iterator(machine.driveC() / "Saves/Types/FA")) {
    files.push_back(file.path().filename());
  }
  std::sort(files.begin(), files.end());
  EXPECT_EQ((std::vector<std::string>{".bmp.reg", ".txt.reg", "Paint.Picture.reg", "txtfile.reg"}),
            files);
  EXPECT_EQ(0, korvex({"set-of", "restore", "C:\\Saves\\Types\\profile.kvx", "--dry-run"}).code);
}

TEST_F(SetOf, NothingIsRestoredThatNobodyConfirmed) {
  korvex({"set-of", "save", "Look", "--only", "color"});
  setWindow("1 2 3");
  const Result refused = korvex({"set-of", "restore", "Look"}, "y\n");
  EXPECT_EQ(2, refused.code);
  EXPECT_NE(std::string::npos, refused.out.find("Window")) << refused.out;
  EXPECT_NE(std::string::npos, refused.err.find("--yes"));
  EXPECT_EQ("not-confirmed", json({"set-of", "restore", "Look"}).json()["error"]["kind"]);
  EXPECT_EQ("1 2 3", window());
}

TEST_F(SetOf, WhatIsDamagedIsNamedAndLeftAsItIs) {
  korvex({"set-of", "save", "Look", "--only", "color,keyboard"});
  setWindow("1 2 3");
  korvex({"reg", "delete", "HKCU\\Control Panel\\Keyboard"});
  std::ofstream(folder() / "Look/colors.reg", std::ios::app) << "\r\n\"Window\"=\"9 9 9\"\r\n";
  EXPECT_EQ(1, korvex({"set-of", "show", "Look"}).code);
  const Result result = json({"set-of", "restore", "Look", "--yes"});
  EXPECT_EQ(1, result.code);
  EXPECT_EQ(false, result.json()["items"][0]["restorable"]);
  EXPECT_NE(std::string::npos, result.err.find("colors.reg")) << result.err;
  EXPECT_EQ("1 2 3", window());
  EXPECT_EQ(0, korvex({"reg", "query", "HKCU\\Control Panel\\Keyboard"}).code);
}

TEST_F(SetOf, CategoryThatCannotBeSavedIsNamed) {
  const Result result = korvex({"set-of", "save", "Nav", "--only", "color,mozilla"});
  EXPECT_EQ(1, result.code);
  EXPECT_NE(std::string::npos, result.err.find("The following items could not be saved.\n"
                                               "Navigator bookmarks: "))
      << result.err;
  EXPECT_EQ(5, korvex({"set-of", "save", "NAV", "--only", "color"}).code) << "it is there already";
  EXPECT_EQ(0, korvex({"set-of", "save", "Nav", "--only", "color", "--overwrite"}).code);
  EXPECT_EQ(5, korvex({"set-of", "save", "None", "--only", "mozilla"}).code);
  EXPECT_EQ(5, korvex({"set-of", "save", "Far", "--folder", "Q:\\saves"}).code);
  EXPECT_EQ(2, korvex({"set-of", "save", "Far", "--folder", "saves"}).code);
  const Json sets = json({"set-of", "list"}).json()["sets"];
  ASSERT_EQ(1U, sets.size());
  EXPECT_EQ("Nav", sets[0]["name"]);
}

TEST_F(SetOf, EraseTakesTheRecordAloneOnlyWhereItIsToldTo) {
  korvex({"set-of", "save", "A", "--only", "color"});
  korvex({"set-of", "save", "B", "--only", "color"});
  EXPECT_EQ(0, korvex({"set-of", "erase", "A"}).code);
  EXPECT_FALSE(fs::exists(folder() / "A"));
  fs::rename(folder() / "B", folder() / "elsewhere");
  EXPECT_EQ(false, json({"set-of", "list"}).json()["sets"][0]["available"]);
  EXPECT_EQ(5, korvex({"set-of", "restore", "B", "--yes"}).code);
  EXPECT_EQ(5, korvex({"set-of", "erase", "B"}).code);
  EXPECT_EQ(0, korvex({"set-of", "erase", "B", "--record-only"}).code);
  EXPECT_EQ(5, korvex({"set-of", "erase", "B", "--record-only"}).code);
  EXPECT_TRUE(fs::exists(folder() / "elsewhere/profile.kvx"));
  EXPECT_TRUE(json({"set-of", "list"}).json()["sets"].empty());
}

TEST_F(SetOf2000, SetOfAnotherMachineIsTakenInAndTheDryRunTakesNothing) {
  const test::TestMachine other("windows-2000");
  const fs::path host = machine.folder().parent_path() / "host";
  korvex({"set-of", "save", "Look", "--only", "color"});
  fs::rename(folder() / "Look", host);
  korvex({"set-of", "erase", "Look", "--record-only"});
  fs::remove_all(folder());
  setWindow("1 2 3");
  const auto before = everyFile();
  const std::string profile = (host / "profile.kvx").string();
  EXPECT_EQ(1, korvex({"set-of", "restore", profile, "--dry-run"}).code);
  EXPECT_EQ(0, korvex({"set-of", "show", profile}).code);
  EXPECT_EQ(before, everyFile());
  EXPECT_EQ(0, korvex({"set-of", "restore", profile, "--yes"}).code);
  EXPECT_NE("1 2 3", window());
  EXPECT_TRUE(fs::exists(folder() / "Look/colors.reg"));
  // One that says more than a record may: nothing of it is used.
  std::ofstream(host / "profile.kvx", std::ios::binary)
      << "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Evil]\r\n\"a\"=\"b\"\r\n";
  const std::string dumped = dump();
  EXPECT_EQ(5, korvex({"set-of", "restore", profile, "--yes"}).code);
  EXPECT_EQ(dumped, dump());
}

TEST_F(SetOf, ControlCLeavesTheEarlierSave) {
  korvex({"set-of", "save", "Look", "--only", "color"});
  const auto before = everyFile();
  sigset_t interrupt{};
  sigset_t old{};
  sigemptyset(&interrupt);
  sigaddset(&interrupt, SIGINT);
  pthread_sigmask(SIG_BLOCK, &interrupt, &old);
  raise(SIGINT);
  const Result result = json({"set-of", "save", "Look", "--overwrite"});
  pthread_sigmask(SIG_SETMASK, &old, nullptr);
  EXPECT_EQ(5, result.code);
  EXPECT_EQ("cancelled", result.json()["error"]["kind"]);
  EXPECT_EQ(std::vector<fs::path>{folder() / "Look"},
            std::vector<fs::path>(fs::directory_iterator(folder()), {}));
  EXPECT_EQ(before.at((folder() / "Look/profile.kvx").string()),
            everyFile().at((folder() / "Look/profile.kvx").string()));
}

}  // namespace
}  // namespace korvex::cli
