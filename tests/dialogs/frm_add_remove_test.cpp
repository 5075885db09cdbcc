// frmAddRemove: only the chosen entry changes, with its type, and what is deleted comes back whole.
#include "dialogs/system/frm_add_remove.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;

const std::string kUninstall = "HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";

class AddRemove : public OnFailingMachine<frmAddRemove> {
 public:
  explicit AddRemove(const std::string& sample = "windows-2000") : OnFailingMachine(sample) {}

  void select(const std::string& text) {
    const auto& items = window().lstPrograms.items();
    const auto found = std::ranges::find(items, text);
    ASSERT_NE(items.end(), found) << text;
    window().lstPrograms.ListIndex = static_cast<int>(found - items.begin());
  }
  std::string stateOf(const std::string& command) {
    registry().put(kUninstall + "\\WinZip", "UninstallString", '"' + command + '"');
    reopen();
    select("WinZip");
    return window().lblState.Caption;
  }
  void remove(const std::string& text) {
    select(text);
    prompts.answers.push_back(Answer::Yes);
    window().cmdDelete.press();
  }
};
class AddRemove98 : public AddRemove {
 public:
  AddRemove98() : AddRemove("windows-98") {}
};

TEST_F(AddRemove, ListsWhatHasADisplayTextByThatText) {
  registry().put(kUninstall + "\\Zip2", "DisplayName", "\"winzip\"");
  registry().put(kUninstall + "\\None", "UninstallString", "\"x.exe\"");
  const std::vector<std::string> listed{"Adobe Acrobat 4.0",
                                        "Internet Explorer branding",
                                        "Microsoft Office 2000 Premium",
                                        "Microsoft Outlook Express",
                                        "SurveyPlot 2.4",
                                        "Tidy Fonts",
                                        "WinZip (WinZip)",
                                        "winzip (Zip2)"};
  EXPECT_EQ(listed, window().lstPrograms.items());
  select("Internet Explorer branding");
  EXPECT_EQ("Rundll32 IedkCS32.dll,BrandCleanInstallStubs", window().txtCommand.Text.get());
  EXPECT_EQ("HKEY_LOCAL_MACHINE" + kUninstall.substr(4) + "\\Branding", window().txtKey.Text.get());
}

TEST_F(AddRemove, TellsWhetherTheProgramIsThere) {
  session.files().createFolder("C:\\Some Tools\\sub");
  session.files().replace("C:\\Some Tools\\un inst.exe", "MZ");
  session.files().replace("C:\\WINNT\\system32\\own.dll", "MZ");
  const std::vector<std::pair<std::string, std::string>> cases{
      {"C:\\Some Tools\\un inst.exe /u", "C:\\Some Tools\\un inst.exe is there."},
      {"C:\\Some Tools\\un inst -x", "C:\\Some Tools\\un inst.exe is there."},
      {"C:\\Gone Tools\\u.exe /all", "C:\\Gone Tools\\u.exe is missing: the entry may be stale."},
      {"C:\\Some Tools\\sub", "C:\\Some is missing: the entry may be stale."},
      {"rundll32.exe own.dll,Undo x", "C:\\WINNT\\system32\\own.dll is there."},
      {"rundll32 other.dll,Undo", "other.dll is missing: the entry may be stale."},
      {"\\\\SERVER\\x\\u.exe", "Whether \\\\SERVER\\x\\u.exe is there cannot be told from here."},
      {"Q:\\u.exe", "Whether Q:\\u.exe is there cannot be told from here."},
      {"", "This entry does not support an uninstall."}};
  for (const auto& [command, state] : cases) EXPECT_EQ(state, stateOf(command)) << command;
}

TEST_F(AddRemove, DeletedEntryComesBackAsItWas) {
  const auto before = below(kUninstall);
  prompts.answers = {Answer::No};
  select("Microsoft Office 2000 Premium");
  window().cmdDelete.press();
  EXPECT_EQ("Microsoft Office 2000 Premium\r\n\r\nAre you certain you want to remove this entry?",
            lastMessage());
  EXPECT_TRUE(session.trace.contains("CANCEL_SELECTION"));
  EXPECT_EQ(before, below(kUninstall));
  remove("Microsoft Office 2000 Premium");
  EXPECT_EQ("Entry successfully removed.", lastMessage());
  EXPECT_FALSE(registry().hasKey(kUninstall + "\\{00000409-78E1-11D2-B60F-006097C998E7}"));
  remove("WinZip");
  ASSERT_EQ(2, window().cboDeleted.ListCount());
  window().cboDeleted.ListIndex = 1;  // the older one
  window().cmdTakeBack.press();
  EXPECT_EQ("Microsoft Office 2000 Premium", window().lstPrograms.selectedItem());
  window().cmdTakeBack.press();
  EXPECT_EQ(before, below(kUninstall));
  EXPECT_FALSE(window().cmdTakeBack.Enabled);
  // An entry of the same key that came meanwhile is not overwritten.
  remove("WinZip");
  registry().put(kUninstall + "\\WinZip", "DisplayName", "\"New\"");
  window().cmdTakeBack.press();
  EXPECT_EQ("\"New\"", registry().value(kUninstall + "\\WinZip", "DisplayName"));
  EXPECT_EQ("delete", registry().value(kUninstall + "\\WinZip", "UninstallString"));
}

TEST_F(AddRemove, EditWritesTheValueThatSuppliedTheCommandWithItsType) {
  const std::string quiet = kUninstall + "\\Tidy Fonts";
  const platform::OpenKey key(machine.registry(), platform::HKEY_LOCAL_MACHINE, quiet.substr(5),
                              platform::KEY_ALL_ACCESS);
  ASSERT_EQ(0, machine.registry().RegSetValueExA(key.get(), "QuietUninstallString",
                                                 platform::REG_EXPAND_SZ, "%windir%\\u.exe", 15));
  window();
  for (const std::optional<std::string>& answer : {std::optional<std::string>(), {""}}) {
    select("Tidy Fonts");
    prompts.texts.push_back(answer);
    window().cmdEdit.press();
    EXPECT_TRUE(session.trace.contains("USER_CANCEL"));
    EXPECT_EQ("expand \"%windir%\\u.exe\"", registry().value(quiet, "QuietUninstallString"));
  }
  EXPECT_EQ("%windir%\\u.exe", prompts.proposals.back());
  EXPECT_EQ("Edit the uninstall string for Tidy Fonts", lastMessage());
  EXPECT_EQ("Uninstall string edit box", prompts.messages.back().title);
  prompts.texts.push_back("C:\\new.exe -q");
  window().cmdEdit.press();
  EXPECT_EQ("expand \"C:\\new.exe -q\"", registry().value(quiet, "QuietUninstallString"));
  EXPECT_EQ("delete", registry().value(quiet, "UninstallString"));
  EXPECT_EQ("C:\\new.exe -q", window().txtCommand.Text.get());
  // A plain text stays one, whatever it holds; what is no text is not written over.
  select("WinZip");
  prompts.texts.push_back("%A%\\%B%.exe");
  window().cmdEdit.press();
  EXPECT_EQ("\"%A%\\%B%.exe\"", registry().value(kUninstall + "\\WinZip", "UninstallString"));
  registry().put(kUninstall + "\\WinZip", "UninstallString", "dword 7");
  reopen();
  select("WinZip");
  prompts.texts.push_back("x.exe");
  window().cmdEdit.press();
  EXPECT_TRUE(told("could not be changed"));
  EXPECT_EQ("dword 7", registry().value(kUninstall + "\\WinZip", "UninstallString"));
}

TEST_F(AddRemove, NothingSelectedAndEntriesOfOthersChangeNothing) {
  const auto before = below("HKLM\\SOFTWARE");
  window().cmdDelete.press();
  window().cmdEdit.press();
  window().cmdRunUninstall.press();
  EXPECT_TRUE(session.trace.contains("NO_SELECTION"));
  EXPECT_TRUE(prompts.messages.empty());
  EXPECT_EQ(before, below("HKLM\\SOFTWARE"));
  select("WinZip");
  registry().put(kUninstall + "\\WinZip", "UninstallString", "\"of others\"");
  prompts.answers = {Answer::Yes};
  window().cmdDelete.press();
  EXPECT_TRUE(told("changed meanwhile"));
  EXPECT_EQ("\"of others\"", registry().value(kUninstall + "\\WinZip", "UninstallString"));
  EXPECT_EQ("of others", window().txtCommand.Text.get());
}

TEST_F(AddRemove98, StartsTheCommandOrSaysWhyNot) {
  select("Microsoft Office 97, Professional Edition");
  prompts.answers = {Answer::No};
  window().cmdRunUninstall.press();
  EXPECT_EQ("Launch the selected uninstaller?", lastMessage());
  prompts.answers = {Answer::Yes};
  window().cmdRunUninstall.press();
  EXPECT_EQ(
      "\"C:\\Program Files\\Microsoft Office\\Office\\Setup\\Acme.exe\" /w "
      "\"C:\\Program Files\\Microsoft Office\\Office\\Setup\\Off97Pro.STF\" was not started: "
      "this machine does not run programs.",
      lastMessage());
  registry().put(kUninstall + "\\WinZip", "UninstallString", "\"\"");
  reopen();
  select("WinZip");
  prompts.answers = {Answer::Yes};
  window().cmdRunUninstall.press();
  EXPECT_EQ("This entry does not support an uninstall.", lastMessage());
}

TEST_F(AddRemove, AFailureIsToldAndTakenBack) {
  registry().put("HKLM\\SOFTWARE\\Korvex\\Deleted", "", "\"\"");
  expectAllOrNothing(kUninstall, [this] {
    select("Tidy Fonts");
    prompts.answers = {Answer::Yes};
    window().cmdDelete.press();
    prompts.answers.clear();
    failingRegistry.fail(0);
    EXPECT_NE(below(kUninstall).contains(kUninstall + "\\Tidy Fonts"),
              below("HKLM\\SOFTWARE\\Korvex\\Deleted").size() > 2);
    reopen();
  });
}

}  // namespace
}  // namespace korvex::dialogs
