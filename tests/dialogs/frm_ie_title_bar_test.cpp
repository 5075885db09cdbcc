// frmIETitleBar: one title for the machine and its user, or none.
#include "dialogs/system/frm_ie_title_bar.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

const std::string kMain = "\\Software\\Microsoft\\Internet Explorer\\Main";

class IETitleBar : public OnFailingMachine<frmIETitleBar> {
 public:
  explicit IETitleBar(const std::string& sample = "windows-98") : OnFailingMachine(sample) {
    session.g_iExplrVer = 5;
  }
  std::string title(const std::string& root) {
    return registry().value(root + kMain, "Window Title");
  }
  void apply(const std::string& text) {
    window().txtTitle.Text = text;
    window().cmdApply.press();
  }
  void expectBoth(const std::string& data) {
    EXPECT_EQ(data, title("HKLM"));
    EXPECT_EQ(data, title("HKCU"));
  }
};

class IETitleBar2000 : public IETitleBar {
 public:
  IETitleBar2000() : IETitleBar("windows-2000") {}
};

TEST_F(IETitleBar, WritesBothRootsAndTheStandardTitleDeletes) {
  apply("Chez %nous% & co");
  expectBoth("\"Chez %nous% & co\"");
  EXPECT_EQ("Chez %nous% & co", reopen().txtTitle.Text.get());
  EXPECT_EQ("Page title - Chez %nous% && co", window().lblExample.Caption.get());
  window().cmdDefault.press();
  EXPECT_EQ("\"Chez %nous% & co\"", title("HKLM")) << "not before Apply";
  window().cmdApply.press();
  expectBoth("delete");
  apply("microsoft internet explorer");
  expectBoth("\"microsoft internet explorer\"");
  apply("");
  expectBoth("delete");
  EXPECT_EQ("Page title - Microsoft Internet Explorer", window().lblExample.Caption.get());
}

TEST_F(IETitleBar, TellsOfATitleOfTheUsersOwn) {
  registry().put("HKLM" + kMain, "Window Title", "\"Machine\"");
  registry().put("HKCU" + kMain, "Window Title", "\"User\"");
  EXPECT_EQ("Machine", window().txtTitle.Text.get());
  EXPECT_TRUE(window().StatusText->find("User") != std::string::npos);
  window().cmdApply.press();
  expectBoth("\"Machine\"");
}

TEST_F(IETitleBar2000, FailureWritesNeither) {
  window();
  expectAllOrNothing("HKLM" + kMain, [this] {
    apply("Mine");
    EXPECT_EQ(title("HKLM"), title("HKCU"));
  });
  expectBoth("\"Mine\"");
}

TEST_F(IETitleBar, NeedsTheBrowser) {
  session.g_iExplrVer = 2;
  EXPECT_FALSE(window().cmdApply.Enabled || window().txtTitle.Enabled);
  EXPECT_EQ("Needs Internet Explorer 3 or later.", window().cmdApply.ToolTipText.get());
}

}  // namespace
}  // namespace korvex::dialogs
