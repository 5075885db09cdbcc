// frmShellFolders: both keys together, what Windows has by itself, and programs that are in the
// way.
#include "dialogs/shell/frm_shell_folders.h"

#include "dialogs/one_dialog_fixture.h"
#include "platform/text/text.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;

const std::string kExplorer = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
const std::string kPlain = kExplorer + "Shell Folders";
const std::string kUser = kExplorer + "User Shell Folders";
constexpr const char* kReboot = "You must reboot for the changes to take effect.";

class ShellFoldersTest : public OneDialogTest<frmShellFolders> {
 public:
  using OneDialogTest::OneDialogTest;

  void select(const std::string& name) {
    const auto& items = dialog().cboShellFolders.items();
    const auto found = std::ranges::find(items, name);
    ASSERT_NE(items.end(), found) << name;
    dialog().cboShellFolders.ListIndex = static_cast<int>(found - items.begin());
  }
  void change(const std::string& name, const std::string& path) {
    select(name);
    prompts.texts.emplace_back(path);
    dialog().cmdChange.press();
  }
  // Of both keys.
  std::string stored(const std::string& name) {
    return registry().value(kPlain, name) + ' ' + registry().value(kUser, name);
  }
  std::map<std::string, std::string> all() {
    std::map<std::string, std::string> result;
    registry().dump(kPlain, result);
    registry().dump(kUser, result);
    return result;
  }
  std::string lastMessage() { return prompts.messages.empty() ? "" : prompts.messages.back().text; }
  // What the samples have is what Windows has by itself, but that Fonts stands in one key only.
  void expectDefaults() {
    auto expected = all();
    const auto tell = [&](const std::string& name, const std::string& data) {
      registry().put(kPlain, name, data);
      registry().put(kUser, name, data);
    };
    tell("Desktop", "\"D:\\Moved\"");
    tell("Personal", "\"D:\\Moved\"");
    tell("Templates", "dword 1");
    prompts.answers = {Answer::No, Answer::Yes};
    reopened().cmdDefaults.press();
    EXPECT_EQ("\"D:\\Moved\" \"D:\\Moved\"", stored("Desktop"));
    dialog().cmdDefaults.press();
    EXPECT_EQ("Set shell folders to default?", prompts.messages[1].text);
    EXPECT_EQ(kReboot, lastMessage());
    auto now = all();
    // Types that were lost are plain text: Windows takes both.
    for (const char* const name : {"Desktop", "Personal", "Templates", "Fonts"}) {
      now.erase(kUser + " | " + name);
      expected.erase(kUser + " | " + name);
      ShellFolder folder;
      EXPECT_EQ(0, ShellFolderPaths(session).readOne(name, folder));
      EXPECT_TRUE(folder.isDefault()) << name;
    }
    const std::string fonts = kPlain + " | Fonts";
    EXPECT_TRUE(platform::sameName(expected[fonts], now[fonts]));
    expected.erase(fonts);
    now.erase(fonts);
    EXPECT_EQ(expected, now);
    const auto settled = all();
    prompts.answers = {Answer::Yes};
    prompts.messages.clear();
    dialog().cmdDefaults.press();
    EXPECT_EQ(1U, prompts.messages.size()) << "nothing is left to write";
    EXPECT_EQ(settled, all());
  }
};

class ShellFolders95 : public ShellFoldersTest {
 public:
  ShellFolders95() : ShellFoldersTest("windows-95") {}
};
class ShellFolders98 : public ShellFoldersTest {
 public:
  ShellFolders98() : ShellFoldersTest("windows-98") {}
};
class ShellFoldersMe : public ShellFoldersTest {
 public:
  ShellFoldersMe() : ShellFoldersTest("windows-me") {}
};
class ShellFoldersNt4 : public ShellFoldersTest {
 public:
  ShellFoldersNt4() : ShellFoldersTest("windows-nt4") {}
};
class ShellFolders2000 : public ShellFoldersTest {};

TEST_F(ShellFolders95, DefaultsAreThoseOfThisWindows) { expectDefaults(); }
TEST_F(ShellFolders98, DefaultsAreThoseOfTheUsersProfile) { expectDefaults(); }
TEST_F(ShellFoldersMe, DefaultsAreThoseOfThisWindows) { expectDefaults(); }
TEST_F(ShellFoldersNt4, DefaultsAreThoseOfTheUsersProfile) { expectDefaults(); }
TEST_F(ShellFolders2000, DefaultsAreThoseOfTheUsersProfile) { expectDefaults(); }

TEST_F(ShellFolders98, WritesBothKeysAndAsksForARestart) {
  change("Favorites", "C:\\IMPORTS\\");
  EXPECT_EQ("Indentify the new path for the shell folder.", prompts.messages[0].text);
  EXPECT_EQ(kReboot, lastMessage());
  EXPECT_EQ("\"C:\\IMPORTS\" \"C:\\IMPORTS\"", stored("Favorites"));
  EXPECT_EQ("C:\\IMPORTS", dialog().txtPath.Text.get());
  EXPECT_EQ("Favorites", dialog().cboShellFolders.selectedItem());
  EXPECT_TRUE(session.g_bRebootNeeded);
  session.g_bNoShowReboot = true;
  prompts.messages.clear();
  prompts.answers = {Answer::Yes};
  change("Desktop", "C:\\New one");
  EXPECT_EQ(2U, prompts.messages.size()) << lastMessage();
  EXPECT_TRUE(session.files().exists("C:\\New one"));
  dialog().cmdDefault.press();
  EXPECT_EQ("\"C:\\WINDOWS\\Profiles\\Karen\\Desktop\" \"C:\\WINDOWS\\Profiles\\Karen\\Desktop\"",
            stored("Desktop"));
  // This Windows has no such folder: there is nothing to put back.
  select("PrintHood");
  EXPECT_EQ("Hidden directory used to store shortcuts to printer folder items.",
            dialog().lblDescription.Caption.get());
  EXPECT_FALSE(dialog().cmdDefault.Enabled);
}

TEST_F(ShellFolders2000, APathBelowTheProfileRoams) {
  const std::string profile = "C:\\Documents and Settings\\Administrator";
  for (const char* folder : {"\\Desk", "\\100%\\x"}) session.files().createFolder(profile + folder);
  session.files().createFolder(profile + "s\\Desk");
  change("Desktop", profile + "\\Desk");
  EXPECT_EQ('"' + profile + "\\Desk\" expand \"%USERPROFILE%\\Desk\"", stored("Desktop"));
  change("Desktop", profile + "s\\Desk");
  EXPECT_EQ('"' + profile + "s\\Desk\" expand \"" + profile + "s\\Desk\"", stored("Desktop"));
  change("Desktop", profile + "\\100%\\x");
  EXPECT_EQ('"' + profile + "\\100%\\x\" \"" + profile + "\\100%\\x\"", stored("Desktop"));
}

TEST_F(ShellFolders2000, ALaterWindowsHasItsFoldersElsewhere) {
  session.g_verInfo.majorVersion = 6;
  select("Personal");
  EXPECT_FALSE(dialog().cmdDefault.Enabled || dialog().cmdDefaults.Enabled);
  change("Personal", "C:\\SURVEYPLOT");
  EXPECT_EQ("\"C:\\SURVEYPLOT\" expand \"C:\\SURVEYPLOT\"", stored("Personal"));
}

TEST_F(ShellFolders98, RunningProgramsKeepTheirFolders) {
  windows.classes = {"IEFrame"};
  for (const char* name : {"Cache", "Cookies", "Favorites", "History", "AppData", "Content"}) {
    select(name);
    dialog().cmdChange.press();
    EXPECT_EQ("Internet Explorer must be closed to modify this path.", lastMessage()) << name;
    prompts.messages.clear();
  }
  change("Desktop", "C:\\IMPORTS");
  EXPECT_EQ("\"C:\\IMPORTS\" \"C:\\IMPORTS\"", stored("Desktop"));
  windows.classes = {"mspim_wnd32"};
  select("AppData");
  dialog().cmdChange.press();
  EXPECT_EQ("Microsoft Outlook must be closed to modify this path.", lastMessage());
  change("Favorites", "C:\\IMPORTS");
  EXPECT_EQ("\"C:\\IMPORTS\" \"C:\\IMPORTS\"", stored("Favorites"));
  // Nor do all folders go back then.
  windows.classes = {"IEFrame"};
  prompts.answers = {Answer::Yes};
  const auto before = all();
  dialog().cmdDefaults.press();
  EXPECT_EQ(before, all());
}

TEST_F(ShellFolders2000, ARefusedValueRestoresTheOldPath) {
  const auto before = all();
  dialog();
  for (const char* name : {"Recent", "Fonts"}) {
    refusing.refused = name;
    change(name, "C:\\SURVEYPLOT");
    EXPECT_EQ(
        "An error occurred writing the new path to the registry.\r\n\r\n"
        "The old path has been restored.",
        lastMessage());
    EXPECT_EQ(platform::kIconExclamation, prompts.messages.back().style);
    EXPECT_EQ(before, all());
  }
  refusing.refused = "";
  change("Desktop", "C:\\SURVEYPLOT");
  const auto moved = all();
  refusing.refused = "Fonts";  // which comes behind Desktop
  prompts.answers = {Answer::Yes};
  dialog().cmdDefaults.press();
  EXPECT_EQ(moved, all());
  refusing.refused = "";
  // Somebody else has moved it since it was shown.
  select("Recent");
  registry().put(kPlain, "Recent", "\"C:\\Of others\"");
  change("Recent", "C:\\SURVEYPLOT");
  EXPECT_EQ("\"C:\\Of others\"", registry().value(kPlain, "Recent"));
  EXPECT_EQ("C:\\Of others", dialog().txtPath.Text.get());
}

}  // namespace
}  // namespace korvex::dialogs
