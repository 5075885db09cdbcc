// frmMoreSecurity: the help file's substitute, and what a machine does not have.
#include "dialogs/system/frm_more_security.h"

#include <array>

#include "dialogs/dialog_fixture.h"

namespace korvex::dialogs {
namespace {

using FrmMoreSecurity = DialogTest;

class OnWindows98 : public DialogTest {
 public:
  OnWindows98() : DialogTest("windows-98") {}
};
class OnWindows95 : public DialogTest {
 public:
  OnWindows95() : DialogTest("windows-95") {}
};

TEST_F(FrmMoreSecurity, WithoutItsSubstituteTheHelpFileCannotBeDisabled) {
  box("chkDisableHelp").Value = forms::vbChecked;
  ASSERT_EQ(1u, prompts.messages.size());
  EXPECT_EQ(
      "The required file, Zak.hlp, is missing.\r\n"
      "Contact Orvane Software for a replacement.",
      prompts.messages[0].text);
  EXPECT_EQ(forms::vbUnchecked, box("chkDisableHelp").Value);
  EXPECT_EQ(std::vector<std::string>{}, waiting());
  EXPECT_FALSE(dialog().cmdApply.Enabled);
}

TEST_F(FrmMoreSecurity, ADisabledHelpFileComesBackWithoutTheSubstitute) {
  const std::string help = session.g_sWinDir + "Help\\Windows.";
  ASSERT_EQ(0, machine->files().replace(help + "kvx", "the real one"));
  ASSERT_EQ(0, machine->files().replace(help + "hlp", "another"));
  ASSERT_EQ(forms::vbChecked, box("chkDisableHelp").Value);
  box("chkDisableHelp").Value = forms::vbUnchecked;
  dialog().cmdApply.press();
  std::string bytes;
  EXPECT_EQ(0, machine->files().read(help + "hlp", bytes));
  EXPECT_EQ("the real one", bytes);
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(FrmMoreSecurity, The9xFrameIsDisabledOnNtWithItsReason) {
  EXPECT_FALSE(dialog().fraWin9x.Enabled);
  EXPECT_EQ("This setting exists only on Windows 95, 98 and Millennium.",
            dialog().fraWin9x.ToolTipText.get());
  EXPECT_FALSE(box("chkWin9xNoMSDOS").Enabled);
  EXPECT_TRUE(dialog().fraExplorer.Enabled);
  EXPECT_TRUE(box("chkExplNoCRTL_F3").Enabled);
}

TEST_F(OnWindows98, ReadsEveryBoxOfThe9xFrameFromItsOwnKey) {
  struct Case {
    const char* key;
    const char* value;
    const char* control;
  };
  const std::string policies = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\";
  constexpr std::array kCases{
      Case{"System", "NoConfigPage", "chkWin9xNoHardwaretab"},
      Case{"System", "NoFileSysPage", "chkWin9xNoFileSystembutton"},
      Case{"System", "NoVirtMemPage", "chkWin9xNoVirtMem"},
      Case{"System", "NoAdminPage", "chkWin9xNoRemoteAdmin"},
      Case{"System", "NoProfilePage", "chkWin9xNoUserProfile"},
      Case{"System", "NoPwdPage", "chkWin9xNoChangePass"},
      Case{"WinOldApp", "Disabled", "chkWin9xNoMSDOS"},
      Case{"Network", "DisablePwdCaching", "chkWin9xNoPassCache"},
      Case{"WinOldApp", "NoRealMode", "chkNoRealMode"},
  };
  for (const Case& c : kCases) {
    registry().put(policies + c.key, c.value, "dword 1");
    EXPECT_TRUE(box(c.control).Enabled) << c.control;
    EXPECT_EQ(forms::vbChecked, box(c.control).Value) << c.control;
    registry().put(policies + c.key, c.value, "dword 0");
    book.unload(frmMoreSecurity::kName);
    EXPECT_EQ(forms::vbUnchecked, box(c.control).Value) << c.control;
    book.unload(frmMoreSecurity::kName);
  }
  EXPECT_TRUE(dialog().fraWin9x.Enabled);
}

TEST_F(OnWindows95, AnOldBrowserHasNoneOfItsFrame) {
  EXPECT_FALSE(dialog().fraExplorer.Enabled);
  EXPECT_EQ("Needs Internet Explorer 4.01 SP2 or later.", dialog().fraExplorer.ToolTipText.get());
  EXPECT_TRUE(dialog().fraWin9x.Enabled);
}

}  // namespace
}  // namespace korvex::dialogs
