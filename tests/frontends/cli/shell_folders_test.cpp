// shell-folders: paths in both keys, folders that are missing, and programs that are in the way.
#include "frontends/cli/cli_fixture.h"
#include "support/open_windows.h"

namespace korvex::cli {
namespace {

const std::string kExplorer = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";

class ShellFolders : public CliTest {
 public:
  ShellFolders() : CliTest("windows-nt4") {}
  Json folder(const std::string& name) {
    const Json list = json({"shell-folders", "list"}).json();
    for (const Json& one : list["folders"]) {
      if (one["name"] == name) return one;
    }
    return nullptr;
  }
  Json stored(const std::string& key, const std::string& name) {
    return value(kExplorer + key, name)["data"];
  }
};

TEST_F(ShellFolders, SetWritesBothKeysAndMakesAFolderOnlyWhereAsked) {
  EXPECT_EQ(5, korvex({"shell-folders", "set", "Desktop", "C:\\Desk"}).code);
  EXPECT_FALSE(std::filesystem::exists(machine.driveC() / "Desk"));
  const Result done = korvex({"shell-folders", "set", "desktop", "c:/Desk/", "--create"});
  EXPECT_EQ(0, done.code) << done.err;
  EXPECT_TRUE(std::filesystem::exists(machine.driveC() / "Desk"));
  EXPECT_EQ("c:\\Desk", stored("Shell Folders", "Desktop"));
  EXPECT_EQ("c:\\Desk", stored("User Shell Folders", "Desktop"));
  EXPECT_EQ(false, folder("Desktop")["isDefault"]);
  const Json changed = json({"shell-folders", "default", "Desktop"}).json()["changed"];
  ASSERT_EQ(1U, changed.size());
  EXPECT_EQ("C:\\WINNT\\Profiles\\tgreene\\Desktop", changed[0]["path"]);
  EXPECT_EQ("%USERPROFILE%\\Desktop", stored("User Shell Folders", "Desktop"));
  EXPECT_EQ(0U, json({"shell-folders", "default", "Desktop"}).json()["changed"].size());
}

TEST_F(ShellFolders, RefusesWhatCannotBeMeant) {
  const auto before = everyFile();
  EXPECT_EQ(2, korvex({"shell-folders", "set", "Desk", "C:\\TEMP"}).code);
  EXPECT_EQ(2, korvex({"shell-folders", "set", "Desktop", "TEMP"}).code);
  EXPECT_EQ(5, korvex({"shell-folders", "set", "Desktop", "C:\\boot.ini", "--create"}).code);
  EXPECT_EQ(5, korvex({"shell-folders", "default", "Local Settings"}).code);
  EXPECT_EQ(0, korvex({"shell-folders", "list"}).code);
  EXPECT_EQ(before, everyFile());
}

TEST_F(ShellFolders, RunningProgramsKeepTheirFolders) {
  test::setOpenWindows(machine.folder(), {"IEFrame"});
  const Result refused = korvex({"shell-folders", "set", "Favorites", "C:\\TEMP"});
  EXPECT_EQ(4, refused.code);
  EXPECT_NE(std::string::npos,
            refused.err.find("Internet Explorer must be closed to modify this path."));
  EXPECT_EQ(0, korvex({"shell-folders", "set", "Recent", "C:\\TEMP"}).code);
}

}  // namespace
}  // namespace korvex::cli
