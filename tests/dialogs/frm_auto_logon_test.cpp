// frmAutoLogon on both families: switched on, seen again, switched off.
#include "dialogs/logon/frm_auto_logon.h"

#include "dialogs/direct_fixture.h"

namespace korvex::dialogs {
namespace {

const std::string kWinlogonNt = "HKLM\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
const std::string kWinlogon9x = "HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Winlogon";
const std::string kRunServices = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\RunServices";

class AutoLogonOnNt : public DirectDialogTest<frmAutoLogon> {
 public:
  explicit AutoLogonOnNt(const std::string& sample = "windows-2000") : DirectDialogTest(sample) {}

  std::string held(const std::string& key) {
    return registry().value(key, "AutoAdminLogon") + ' ' +
           registry().value(key, "DefaultUserName") + ' ' +
           registry().value(key, "DefaultPassword");
  }
};

class AutoLogonOn9x : public AutoLogonOnNt {
 public:
  AutoLogonOn9x() : AutoLogonOnNt("windows-98") {}
};

TEST_F(AutoLogonOnNt, IsSwitchedOnSeenAgainAndSwitchedOff) {
  EXPECT_EQ("Automatic logon is off.", dialog().lblState.Caption.get());
  EXPECT_FALSE(dialog().cmdDisable.Enabled);
  EXPECT_EQ("Administrator", dialog().txtUserName.Text.get());
  dialog().txtUserName.Text = "R&D";
  dialog().txtPassword.Text = "100%of%it";  // no text for Windows to expand
  dialog().cmdApply.press();
  EXPECT_EQ("\"1\" \"R&D\" \"100%of%it\"", held(kWinlogonNt));
  EXPECT_FALSE(registry().hasKey(kWinlogon9x));
  EXPECT_EQ("delete", registry().value(kRunServices, "Tweak UI"));

  EXPECT_EQ("Automatic logon is on for R&&D.", reopened().lblState.Caption.get());
  dialog().cmdDisable.press();
  EXPECT_EQ("\"\" \"\" \"\"", held(kWinlogonNt));
  EXPECT_EQ("Automatic logon is off.", dialog().lblState.Caption.get());
  EXPECT_EQ("", dialog().txtPassword.Text.get());
  EXPECT_EQ("\"BIRCH\"", registry().value(kWinlogonNt, "DefaultDomainName"));
}

TEST_F(AutoLogonOnNt, APasswordThatNobodyTypedIsKeptAndNeverShown) {
  registry().put(kWinlogonNt, "DefaultPassword", "\"secret\"");
  EXPECT_EQ("(hidden)", dialog().txtPassword.stateText());
  dialog().txtUserName.Text = "Guest";
  dialog().cmdApply.press();
  EXPECT_EQ("\"1\" \"Guest\" \"secret\"", held(kWinlogonNt));
  EXPECT_EQ(std::string::npos, session.trace.text().find("secret"));
}

TEST_F(AutoLogonOnNt, ItTellsWhatKeepsWindowsFromIt) {
  const auto obstacles = [this] { return reopened().lblObstacles.Caption.get(); };
  EXPECT_EQ("", obstacles());
  registry().put(kWinlogonNt, "DontDisplayLastUserName", "\"1\"");
  EXPECT_NE(std::string::npos, obstacles().find("last user name")) << obstacles();
  registry().put(kWinlogonNt, "DontDisplayLastUserName", "\"0\"");
  registry().put(kWinlogonNt, "LegalNoticeText", "\"No.\"");
  EXPECT_NE(std::string::npos, obstacles().find("message before logon")) << obstacles();
  registry().put(kWinlogonNt, "LegalNoticeText", "\"\"");
  dialog().cmdApply.press();
  EXPECT_NE(std::string::npos, obstacles().find("password is empty")) << obstacles();
}

TEST_F(AutoLogonOnNt, ItNeedsAUser) {
  const std::string before = held(kWinlogonNt);
  dialog().txtUserName.Text = " ";
  dialog().cmdApply.press();
  EXPECT_EQ("Type the name of the user whom Windows shall log on.", lastMessage());
  EXPECT_EQ(before, held(kWinlogonNt));
  prompts.answers = {platform::Answer::No};  // what was typed is not lost without a question
  EXPECT_FALSE(book.unload(frmAutoLogon::kName));
}

TEST_F(AutoLogonOn9x, TweakUiLogsOnAndIsStartedForIt) {
  EXPECT_EQ("Karen", dialog().txtUserName.Text.get());
  dialog().txtPassword.Text = "x";
  dialog().cmdApply.press();
  EXPECT_EQ("\"1\" \"Karen\" \"x\"", held(kWinlogon9x));
  EXPECT_EQ("delete delete delete", held(kWinlogonNt));
  EXPECT_EQ("\"RUNDLL32.EXE TWEAKUI.CPL,TweakLogon\"", registry().value(kRunServices, "Tweak UI"));
  session.regTool.DeleteRegValue(platform::HKEY_LOCAL_MACHINE, kRunServices.substr(5), "Tweak UI");
  EXPECT_NE(std::string::npos,
            reopened().lblObstacles.Caption->find("Nothing starts Tweak UI's logon"));
  dialog().cmdDisable.press();  // what is missing already is no failure
  EXPECT_EQ("\"\" \"\" \"\"", held(kWinlogon9x));
  EXPECT_EQ("\"mstask.exe\"", registry().value(kRunServices, "SchedulingAgent"));
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(AutoLogonOn9x, EverythingIsWrittenOrNothing) {
  expectAllOrNothing({kWinlogon9x, kRunServices}, [](frmAutoLogon& form) {
    form.txtPassword.Text = "x";
    form.cmdApply.press();
  });
  expectAllOrNothing({kWinlogon9x, kRunServices},
                     [](frmAutoLogon& form) { form.cmdDisable.press(); });
}

}  // namespace
}  // namespace korvex::dialogs
