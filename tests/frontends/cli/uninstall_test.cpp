// uninstall: what is listed, changed, deleted and put back.
#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

const std::string kUninstall = "HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";

class Uninstall : public CliTest {
 public:
  Uninstall() : CliTest("windows-2000") {}
  Json entry(const std::string& key) {
    const Json list = json({"uninstall", "list"}).json();
    for (const Json& one : list["entries"]) {
      if (one["key"] == key) return one;
    }
    return nullptr;
  }
};

TEST_F(Uninstall, EditWritesTheValueThatHoldsTheCommand) {
  const Json before = entry("Tidy Fonts");
  EXPECT_EQ("QuietUninstallString", before["value"]);
  EXPECT_EQ("C:\\Program Files\\Tidy Fonts\\setup.exe", before["program"]);
  EXPECT_EQ(0, korvex({"uninstall", "edit", "tidy fonts", "--command", "C:\\u.exe -s"}).code);
  EXPECT_EQ("C:\\u.exe -s", value(kUninstall + "Tidy Fonts", "QuietUninstallString")["data"]);
  EXPECT_TRUE(value(kUninstall + "Tidy Fonts", "UninstallString").is_null());
  EXPECT_EQ(false, entry("Tidy Fonts")["programFound"]);
}

TEST_F(Uninstall, DeletedEntriesComeBackTheLastOrTheOneThatIsNamed) {
  ASSERT_EQ(0, korvex({"uninstall", "delete", "WINZIP"}).code);
  ASSERT_EQ(0, korvex({"uninstall", "delete", "Tidy Fonts"}).code);
  EXPECT_TRUE(entry("WinZip").is_null());
  const Json deleted = json({"uninstall", "list"}).json()["deleted"];
  ASSERT_EQ(2U, deleted.size());
  EXPECT_EQ("Tidy Fonts", deleted[0]["name"]);
  EXPECT_EQ(5, korvex({"uninstall", "restore", "7"}).code);
  const std::string number = std::to_string(deleted[1]["number"].get<int>());
  EXPECT_EQ("WinZip", json({"uninstall", "restore", number}).json()["restored"]["key"]);
  EXPECT_EQ(0, korvex({"uninstall", "restore"}).code);
  EXPECT_EQ(5, korvex({"uninstall", "restore"}).code);
  for (const char* key : {"WinZip", "Tidy Fonts"}) EXPECT_FALSE(entry(key).is_null()) << key;
}

TEST_F(Uninstall, WhatIsNotListedIsNotTouched) {
  const auto before = everyFile();
  for (const auto& args : std::vector<std::vector<std::string>>{
           {"delete", "AddressBook"}, {"delete", "..\\Run"}, {"edit", "No", "--command", "x"}}) {
    std::vector<std::string> all{"uninstall"};
    all.insert(all.end(), args.begin(), args.end());
    EXPECT_EQ(5, korvex(all).code) << args[1];
  }
  EXPECT_EQ(2, korvex({"uninstall", "edit", "WinZip", "--command", ""}).code);
  EXPECT_EQ(2, korvex({"uninstall", "delete"}).code);
  EXPECT_EQ(before, everyFile());
  const auto open = machine.open(platform::OpenMode::ReadWrite);
  const auto claim = open->claimInstance(platform::Wait::No);
  EXPECT_EQ(4, korvex({"uninstall", "delete", "WinZip"}).code);
  EXPECT_EQ(0, korvex({"uninstall", "list"}).code);
}

}  // namespace
}  // namespace korvex::cli
