// frmScreensaver: what is shown of the logon screen saver, and what of it is written.
#include "dialogs/nt/frm_screensaver.h"

#include <fmt/format.h>

#include "dialogs/failing_machine.h"
#include "engine/raw_value.h"

namespace korvex::dialogs {
namespace {

constexpr std::string_view kDesktop = ".DEFAULT\\Control Panel\\Desktop";

class Screensaver : public OnFailingMachine<frmScreensaver> {
 public:
  explicit Screensaver(const std::string& sample = "windows-nt4") : OnFailingMachine(sample) {}

  std::string held(const std::string& name) {
    engine::RawValue value;
    const platform::Status status =
        engine::readRawValue(machine.registry(), platform::HKEY_USERS, kDesktop, name, value);
    return status == 0 && value.type == platform::REG_SZ ? value.text()
                                                         : fmt::format("status {}", status);
  }
  void hold(const std::string& name, const std::string& text) {
    EXPECT_EQ(0, engine::putText(session, platform::HKEY_USERS, kDesktop, name, text));
    reopen();
  }
  void choose(const std::string& path) {
    prompts.texts = {path};
    window().cmdBrowse.press();
  }
};

class ScreensaverOn98 : public Screensaver {
 public:
  ScreensaverOn98() : Screensaver("windows-98") {}
};

TEST_F(Screensaver, AChosenFileIsWrittenWholeAndShownByItsName) {
  const std::string path = "D:\\100% new%\\ssmyst.scr";
  choose(path);
  EXPECT_EQ("Locate the new screen saver...", prompts.messages[0].text);
  EXPECT_EQ("Logon screen saver successfully changed.", lastMessage());
  EXPECT_EQ(path, held("SCRNSAVE.EXE"));
  EXPECT_EQ("Mystify", window().txtScreensaver.Text.get());
  EXPECT_EQ("This file is missing on the machine.", window().lblFile.Caption.get());

  ASSERT_EQ(0, machine->files().replace(session.g_sWinSysDir + "own.scr", "MZ"));
  hold("SCRNSAVE.EXE", "own.scr");
  EXPECT_EQ("own", window().txtScreensaver.Text.get());
  EXPECT_EQ("The file is there.", window().lblFile.Caption.get());
  hold("SCRNSAVE.EXE", "C:\\WINNT\\Flying Windows.SCR");
  EXPECT_EQ("Flying Windows", window().txtScreensaver.Text.get());
}

TEST_F(Screensaver, AFileOfAnotherComputerIsRefused) {
  const std::string before = held("SCRNSAVE.EXE");
  choose("\\\\SERVER\\SHARE\\ssmyst.scr");
  EXPECT_EQ(
      "UNC paths are not allowed for this feature.\r\n"
      "Either move the SCR file to the local drive or\r\n"
      "map the drive as a local letter.",
      lastMessage());
  EXPECT_EQ(before, held("SCRNSAVE.EXE"));
}

TEST_F(Screensaver, TheDelayIsANumberInItsRange) {
  hold("ScreenSaveTimeOut", "900");
  struct Case {
    const char* typed;
    const char* message;
  };
  for (const Case& c : std::vector<Case>{{"0", "The valid range is 1 - 999."},
                                         {"1000", "The valid range is 1 - 999."},
                                         {"99999999999", "The valid range is 1 - 999."},
                                         {"9x", "This field only accepts numerals."}}) {
    prompts.messages.clear();
    window().txtDelay.Text = c.typed;
    EXPECT_EQ(c.message, lastMessage()) << c.typed;
    EXPECT_EQ(platform::kIconInformation, prompts.messages.at(0).style);
    EXPECT_EQ("900", window().txtDelay.Text.get()) << c.typed;
    EXPECT_FALSE(window().cmdApply.Enabled);
  }
  prompts.messages.clear();
  for (const char* typed : {"1", "999"}) {
    window().txtDelay.Text = typed;
    EXPECT_NE(typed, held("ScreenSaveTimeOut"));
    window().cmdApply.press();
    EXPECT_EQ(typed, held("ScreenSaveTimeOut"));
  }
  EXPECT_TRUE(prompts.messages.empty());

  hold("ScreenSaveTimeOut", "5000");
  EXPECT_EQ("5000", window().txtDelay.Text.get());
  window().txtDelay.Text = "50000";
  EXPECT_EQ(1u, prompts.messages.size());
  session.regTool.DeleteRegValue(platform::HKEY_USERS, kDesktop, "ScreenSaveTimeOut");
  EXPECT_EQ("900", reopen().txtDelay.Text.get());
}

TEST_F(Screensaver, NoneTakesTheFileAwayWhenAgreed) {
  hold("SCRNSAVE.EXE", "C:\\a.scr");
  prompts.answers = {platform::Answer::No, platform::Answer::Yes};
  window().cmdNone.press();
  EXPECT_EQ("C:\\a.scr", held("SCRNSAVE.EXE"));
  window().txtDelay.Text = "77";
  window().cmdNone.press();
  EXPECT_EQ("status 2", held("SCRNSAVE.EXE"));
  EXPECT_FALSE(window().cmdNone.Enabled);
  EXPECT_EQ("77", window().txtDelay.Text.get()) << "what is typed stays";
  EXPECT_TRUE(window().cmdApply.Enabled);
  window().txtDelay.Text = held("ScreenSaveTimeOut");
}

TEST_F(Screensaver, AFailureIsToldInItsOwnWords) {
  const std::string before = held("SCRNSAVE.EXE");
  window();
  failingRegistry.fail(1);
  choose("C:\\other.scr");
  failingRegistry.fail(0);
  EXPECT_EQ(
      "An error occurred changing the screen saver.\r\n\r\n"
      "Try changing the screen saver again.",
      lastMessage());
  EXPECT_EQ(before, held("SCRNSAVE.EXE"));
}

TEST_F(ScreensaverOn98, OnlyNtHasOne) {
  EXPECT_FALSE(window().cmdBrowse.Enabled || window().txtDelay.Enabled);
  EXPECT_EQ("This setting exists only on Windows NT4 and 2000.",
            window().cmdBrowse.ToolTipText.get());
}

}  // namespace
}  // namespace korvex::dialogs
