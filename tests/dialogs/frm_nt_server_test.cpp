// frmNTServer: how many users, which part in elections, and the question before the printers.
#include "dialogs/nt/frm_nt_server.h"

#include "dialogs/one_dialog_fixture.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;

class FrmNTServer : public OneDialogTest<frmNTServer> {
 public:
  explicit FrmNTServer(const std::string& sample = "windows-2000-server") : OneDialogTest(sample) {}
  forms::TextBox& users() { return control<forms::TextBox>("txtMaxServerUsers"); }
  forms::ComboBox& elections() { return control<forms::ComboBox>("cboBrowseElections"); }
  std::string storedUsers() { return registry().value(kServer, "Users"); }
  std::string storedList() { return registry().value(kBrowser, "MaintainServerList"); }

  static constexpr const char* kServer =
      "HKLM\\SYSTEM\\CurrentControlSet\\Services\\LanManServer\\Parameters";
  static constexpr const char* kBrowser =
      "HKLM\\SYSTEM\\CurrentControlSet\\Services\\Browser\\Parameters";
};
class FrmNTServerOn98 : public FrmNTServer {
 public:
  FrmNTServerOn98() : FrmNTServer("windows-98") {}
};

constexpr const char* kNoNumber =
    "The max number of simultaneously logged on users to\r\n"
    "your server must be a numeric number.\r\n"
    "Leave the field blank to set the default value.";

TEST_F(FrmNTServer, ANumberOfUsersIsWrittenAsADwordAndReadBackWithoutASign) {
  EXPECT_EQ("Default", users().Text.get());
  EXPECT_FALSE(dialog().cmdApply.Enabled);
  for (const auto& [text, stored] : std::vector<std::pair<std::string, std::string>>{
           {"25", "dword 25"}, {"0", "dword 0"}, {"4294967295", "dword -1"}}) {
    users().Text = text;
    EXPECT_TRUE(dialog().cmdApply.Enabled);
    dialog().cmdApply.press();
    EXPECT_EQ(stored, storedUsers());
    reopened();
    EXPECT_EQ(text, users().Text.get());
  }
  EXPECT_TRUE(session.g_bRebootNeeded);
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(FrmNTServer, TheWordInAnyCaseOrNothingDeletesTheNumberAndShowsTheWord) {
  for (const char* text : {"", "default", "DEFAULT"}) {
    registry().put(kServer, "Users", "dword 10");
    reopened();
    ASSERT_EQ("10", users().Text.get());
    users().Text = text;
    dialog().cmdApply.press();
    EXPECT_EQ("delete", storedUsers()) << text;
    EXPECT_EQ("Default", users().Text.get());
    EXPECT_FALSE(dialog().cmdApply.Enabled);
    EXPECT_EQ("no changes waiting", dialog().StatusText.get());
  }
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(FrmNTServer, ATextThatIsNoNumberIsRefusedWhileItIsTyped) {
  registry().put(kServer, "Users", "dword 10");
  for (const char* text : {"12a", "-1", " 12", "Defaults"}) {
    prompts.messages.clear();
    users().Text = text;
    ASSERT_EQ(1U, prompts.messages.size()) << text;
    EXPECT_EQ(kNoNumber, prompts.messages[0].text);
    EXPECT_EQ(platform::kIconInformation | platform::kButtonsOk, prompts.messages[0].style);
    EXPECT_EQ("10", users().Text.get());
  }
  dialog().cmdApply.press();
  EXPECT_EQ("dword 10", storedUsers());
}

// The word half typed, and more than the value can hold, can only be seen on Apply.
TEST_F(FrmNTServer, ApplyRefusesWhatTypingCouldNot) {
  registry().put(kServer, "Users", "dword 10");
  for (const char* text : {"Def", "4294967296"}) {
    prompts.messages.clear();
    users().Text = text;
    EXPECT_TRUE(prompts.messages.empty());
    dialog().cmdApply.press();
    ASSERT_FALSE(prompts.messages.empty());
    EXPECT_TRUE(prompts.messages[0].text.starts_with("The max number of simultaneously"));
    EXPECT_EQ(text == std::string("Def"), prompts.messages[0].text == kNoNumber);
    EXPECT_EQ("dword 10", storedUsers());
    EXPECT_TRUE(dialog().cmdApply.Enabled) << "still waiting";
  }
}

TEST_F(FrmNTServer, AValueThatTheServerCannotReadIsTheDefault) {
  for (const char* data : {"\"25\"", "binary 19 00"}) {
    registry().put(kServer, "Users", data);
    reopened();
    EXPECT_EQ("Default", users().Text.get()) << data;
  }
}

TEST_F(FrmNTServer, ElectionsAreReadInAnyCaseAndWrittenAsTheirWord) {
  for (const auto& [data, shown] :
       std::vector<std::pair<std::string, std::string>>{{"\"FALSE\"", "No"},
                                                        {"\"no\"", "No"},
                                                        {"\"YES\"", "Yes"},
                                                        {"\"auto\"", "Auto"},
                                                        {"\"True\"", "Auto"},
                                                        {"dword 1", "Auto"}}) {
    registry().put(kBrowser, "MaintainServerList", data);
    reopened();
    EXPECT_EQ(shown, elections().Text.get()) << data;
    control<forms::CheckBox>("chkHideServer").Value =
        1 - control<forms::CheckBox>("chkHideServer").Value;
    dialog().cmdApply.press();
    EXPECT_EQ(data, storedList()) << "nobody chose anything";
  }
  for (const char* choice : {"Yes", "No", "Auto"}) {
    elections().ListIndex = choice == std::string("Auto")  ? 0
                            : choice == std::string("Yes") ? 1
                                                           : 2;
    dialog().cmdApply.press();
    EXPECT_EQ('"' + std::string(choice) + '"', storedList());
  }
  EXPECT_TRUE(traced("[P_BrowserElection]"));
  EXPECT_TRUE(traced("[p_DetermineBrowserElection]"));
}

TEST_F(FrmNTServer, DefaultsForgetTheNumberAndVoteAutomatically) {
  registry().put(kServer, "Users", "dword 10");
  registry().put(kBrowser, "MaintainServerList", "\"No\"");
  session.g_bDefaulting = true;
  EXPECT_TRUE(worker.call("P_ServerMaxUsers"));
  EXPECT_TRUE(worker.call("P_BrowserElection"));
  session.g_bDefaulting = false;
  EXPECT_EQ("delete", storedUsers());
  EXPECT_EQ("\"Auto\"", storedList());
}

TEST_F(FrmNTServer, ThePortsOfPrintersChangeOnlyAfterAYes) {
  constexpr const char* kLpr = "HKLM\\SOFTWARE\\Microsoft\\LPDSVC\\lpr";
  auto& box = control<forms::CheckBox>("chkLPR_IP_Printing");
  prompts.answers = {Answer::No};
  box.Value = forms::vbChecked;
  ASSERT_EQ(1U, prompts.messages.size());
  EXPECT_EQ(
      "All LPR IP printer addresses will be set to use ports greater than 1024.\r\n"
      "Do you wish to continue?",
      prompts.messages[0].text);
  EXPECT_TRUE(traced("[frmNTServer.chkLPR_IP_Printing_Click]"));
  EXPECT_EQ(forms::vbUnchecked, box.Value);
  EXPECT_FALSE(dialog().cmdApply.Enabled);

  prompts.answers = {Answer::Yes};
  box.Value = forms::vbChecked;
  dialog().cmdApply.press();
  EXPECT_EQ("dword 1", registry().value(kLpr, "UseNonRFCSourcePorts"));
  box.Value = forms::vbUnchecked;  // is no question
  dialog().cmdApply.press();
  EXPECT_EQ("dword 0", registry().value(kLpr, "UseNonRFCSourcePorts"));
}

TEST_F(FrmNTServerOn98, HasNothingToUse) {
  EXPECT_FALSE(dialog().fraServerTweaks.Enabled);
  for (const char* name : {"txtMaxServerUsers", "lblMaxServerUsers", "cboBrowseElections",
                           "lblBrowseBehavior", "chkHideServer"}) {
    expectNone(name, kOnlyNt);
  }
}

}  // namespace
}  // namespace korvex::dialogs
