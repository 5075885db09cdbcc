// frmDOSColors: which number stands for which colors, and how they are shown.
#include "dialogs/nt/frm_dos_colors.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

const std::string kProcessor = "HKCU\\Software\\Microsoft\\Command Processor";
const std::string kOfAll = "HKLM\\Software\\Microsoft\\Command Processor";

class DosColors : public OnFailingMachine<frmDOSColors> {
 public:
  explicit DosColors(const std::string& sample = "windows-2000") : OnFailingMachine(sample) {}
  std::string held() { return registry().value(kProcessor, "DefaultColor"); }
  void hold(const std::string& data) {
    registry().put(kProcessor, "DefaultColor", data);
    reopen();
  }
  void choose(int text, int background) {
    window().cboText.ListIndex = text;
    window().cboBackground.ListIndex = background;
  }
  std::string shown() {
    return window().cboText.selectedItem() + " on " + window().cboBackground.selectedItem();
  }
};

class DosColorsOn98 : public DosColors {
 public:
  DosColorsOn98() : DosColors("windows-98") {}
};

TEST_F(DosColors, TheNumberIsThatOfTheConsole) {
  EXPECT_EQ("White on Black", shown());
  EXPECT_FALSE(window().cmdApply.Enabled || window().cmdDefault.Enabled);
  choose(14, 1);
  EXPECT_EQ(0x800000u, window().lblSample.BackColor.get());
  EXPECT_EQ(0x00FFFFu, window().lblSample.ForeColor.get());
  EXPECT_EQ("dword 0", held()) << "written when it is applied";
  window().cmdApply.press();
  EXPECT_EQ("dword 30", held());
  EXPECT_EQ("Light Yellow on Blue", shown());
  EXPECT_EQ("DefaultColor is 1E", reopen().StatusText.get());
  hold("dword 252");
  EXPECT_EQ("Light Red on Bright White", shown());
  window().cmdDefault.press();
  EXPECT_EQ("dword 0", held());
  EXPECT_EQ("White on Black", shown());
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(DosColors, WhatCouldNotBeReadIsRefused) {
  choose(4, 4);
  window().cmdApply.press();
  EXPECT_TRUE(told("Text and background have the same color"));
  EXPECT_EQ("dword 0", held());
  choose(7, 0);
}

TEST_F(DosColors, TheUsersConsoleAndTheValueOfAllUsersAreShown) {
  session.regTool.DeleteRegValue(platform::HKEY_CURRENT_USER, kProcessor.substr(5), "DefaultColor");
  registry().put("HKCU\\Console", "ScreenColors", "dword 245");
  registry().put("HKCU\\Console", "ColorTable05", "dword 1193046");
  EXPECT_EQ("Purple on Bright White", (reopen(), shown()));
  EXPECT_EQ(0x123456u, window().lblSample.ForeColor.get());
  registry().put(kOfAll, "DefaultColor", "dword 10");
  EXPECT_EQ("Light Green on Black", (reopen(), shown()));
  window().cmdDefault.press();
  EXPECT_EQ("dword 0", held());
  EXPECT_EQ("dword 10", registry().value(kOfAll, "DefaultColor"));
}

TEST_F(DosColors, AFailureAndAValueThatIsNoNumberChangeNothing) {
  choose(2, 0);
  expectAllOrNothing(kProcessor, [this] {
    choose(2, 0);
    window().cmdApply.press();
  });
  EXPECT_EQ("dword 2", held());
  hold("\"1E\"");
  EXPECT_FALSE(window().cboText.Enabled || window().cmdApply.Enabled);
}

TEST_F(DosColorsOn98, OnlyNtHasThem) {
  EXPECT_FALSE(window().cboText.Enabled || window().cmdDefault.Enabled);
  EXPECT_EQ("This setting exists only on Windows NT4 and 2000.",
            window().cboText.ToolTipText.get());
}

}  // namespace
}  // namespace korvex::dialogs
