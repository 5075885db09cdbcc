// The main window's handlers: Apply, Done, the menu speed, and what closing keeps.
#include "main_window/frm_main.h"

#include <algorithm>

#include "main_window/options.h"
#include "main_window/window_fixture.h"

namespace korvex::main_window {
namespace {

using platform::Answer;
using FrmMain = WindowTest;
using FrmMain9x = WindowTest9x;

constexpr std::string_view kDesktop = "Control Panel\\Desktop";
constexpr std::string_view kRestartQuestion =
    "Some of your selections require a reboot before they take affect.\r\n\r\n"
    "Would you like Korvex to reboot your system now?";

TEST_F(FrmMain, ApplyWritesTheTweaksBeforeTheOptions) {
  platform::RecordingRegistry recording(machine.registry());
  platform::ComposedMachine recorded(machine.get(), {.registry = &recording});
  KorvexRun run(recorded);
  run.box("chkNoSaveTab").Value = forms::vbChecked;
  run.box("chkHideRun").Value = forms::vbChecked;
  EXPECT_EQ("machine  |  Windows 2000 Professional  |  2 changes waiting",
            run.window().StatusText.get());
  const auto start = static_cast<std::ptrdiff_t>(recording.records().size());
  run.window().cmdApply.press();

  std::vector<std::string> written;
  std::for_each(recording.records().begin() + start, recording.records().end(),
                [&written](const auto& record) {
                  if (record.write == platform::RegistryWrite::SetValue) {
                    written.push_back(record.value);
                  }
                });
  ASSERT_GE(written.size(), 2u);
  EXPECT_EQ("NoRun", written[0]);
  EXPECT_EQ("NoSaveTab", written[1]);
  EXPECT_EQ("dword 1", look().value(kUser, kExplorer, "NoRun"));
  EXPECT_TRUE(run.session.g_bNoSaveTab);
  EXPECT_FALSE(run.window().cmdApply.Enabled);
  EXPECT_EQ(0, run.pending.count());
}

TEST_F(FrmMain, UnknownMarkerIsToldAndTheOthersAreApplied) {
  KorvexRun run(machine.get());
  run.box("chkHideRun").Value = forms::vbChecked;
  look().makeKey(kMachine, "SOFTWARE\\Korvex\\CurrentSettings\\P_rwNobody");
  run.window().cmdApply.press();
  EXPECT_EQ("dword 1", look().value(kUser, kExplorer, "NoRun"));
  EXPECT_EQ(std::vector<std::string>{"P_rwNobody"}, run.pending.waiting(engine::Bank::MainWindow));
  ASSERT_EQ(1u, run.prompts.messages.size());
  EXPECT_NE(std::string::npos, run.prompts.messages[0].text.find("P_rwNobody"));
  run.prompts.answers = {Answer::Yes};  // discard it
  EXPECT_TRUE(run.close());
  EXPECT_FALSE(look().hasKey(kMachine, kState));
}

// Refuses to write one value.
class Refusing : public platform::ForwardingRegistry {
 public:
  Refusing(platform::Registry& inner, std::string value)
      : ForwardingRegistry(inner), value_(std::move(value)) {}
  platform::Status RegSetValueExA(platform::HKEY key, std::string_view name, platform::RegType type,
                                  const void* data, std::uint32_t size) override {
    if (armed && name == value_) return platform::ERROR_DISK_FULL;
    return ForwardingRegistry::RegSetValueExA(key, name, type, data, size);
  }
  bool armed = false;

 private:
  std::string value_;
};

TEST_F(FrmMain, FailedWriteIsToldAndCanBeAppliedAgain) {
  Refusing refusing(machine.registry(), "NoRun");
  platform::ComposedMachine full(machine.get(), {.registry = &refusing});
  KorvexRun run(full);
  run.box("chkHideRun").Value = forms::vbChecked;
  run.box("chkHideFind").Value = forms::vbChecked;
  refusing.armed = true;
  run.window().cmdApply.press();
  ASSERT_EQ(1u, run.prompts.messages.size());
  EXPECT_NE(std::string::npos, run.prompts.messages[0].text.find("112"));
  EXPECT_TRUE(run.window().cmdApply.Enabled);
  EXPECT_EQ(1, run.pending.count());
  EXPECT_EQ("dword 1", look().value(kUser, kExplorer, "NoFind"));

  refusing.armed = false;
  run.window().cmdApply.press();
  EXPECT_EQ("dword 1", look().value(kUser, kExplorer, "NoRun"));
  EXPECT_FALSE(run.window().cmdApply.Enabled);
}

TEST_F(FrmMain, MenuSpeedEditedAndChangedBackIsStillWritten) {
  KorvexRun run(machine.get());
  run.menuSpeed().Text = "4";
  EXPECT_TRUE(run.window().cmdApply.Enabled);
  run.menuSpeed().Text = "400";
  EXPECT_EQ("", look().value(kUser, kDesktop, "MenuShowDelay"));
  run.window().cmdApply.press();
  EXPECT_EQ("text 400", look().value(kUser, kDesktop, "MenuShowDelay"));

  run.menuSpeed().Text = "65";
  run.window().cmdApply.press();
  EXPECT_EQ("text 65", look().value(kUser, kDesktop, "MenuShowDelay"));
  EXPECT_NE(std::string::npos, run.window().StatusText->find("no changes waiting"));
}

TEST_F(FrmMain, MenuSpeedTakesDigitsOnly) {
  KorvexRun run(machine.get());
  run.menuSpeed().Text = "20";
  run.menuSpeed().Text = "20x";
  ASSERT_EQ(1u, run.prompts.messages.size());
  EXPECT_EQ("This field accepts numerical characters only.", run.prompts.messages[0].text);
  EXPECT_EQ(platform::kIconInformation, run.prompts.messages[0].style & platform::kIconMask);
  EXPECT_EQ("20", run.menuSpeed().Text.get());
}

TEST_F(FrmMain, ClosingDiscardsWhatWasNotAppliedAfterAsking) {
  look().put(kMachine, kConfiguration, "NoSaveTab", 0);
  KorvexRun run(machine.get());
  run.box("chkNoSaveTab").Value = forms::vbChecked;
  run.box("chkHideRun").Value = forms::vbChecked;
  run.prompts.answers = {Answer::No, Answer::Yes};
  EXPECT_FALSE(run.close());
  EXPECT_EQ(2, run.pending.count());
  EXPECT_TRUE(run.close());
  EXPECT_EQ("2 changes have not been applied. Leave Korvex and discard them?",
            run.prompts.messages[0].text);
  EXPECT_EQ("dword 0", look().value(kMachine, kConfiguration, "NoSaveTab"));
  EXPECT_EQ("", look().value(kUser, kExplorer, "NoRun"));
  EXPECT_FALSE(look().hasKey(kMachine, kState));
  EXPECT_FALSE(look().hasKey(kMachine, kLoadValues));
}

TEST_F(FrmMain, ClosingDoesNotAskWhereNobodyWantsIt) {
  {
    KorvexRun script(machine.get(), {.askBeforeDiscarding = false});
    script.box("chkHideRun").Value = forms::vbChecked;
    EXPECT_TRUE(script.close());
  }
  look().put(kMachine, kConfiguration, "NoShowConfirmation", 1);
  KorvexRun quiet(machine.get());
  quiet.box("chkHideRun").Value = forms::vbChecked;
  EXPECT_TRUE(quiet.close());
}

TEST_F(FrmMain, AppliedOptionOutlivesClosing) {
  {
    KorvexRun run(machine.get());
    run.box("chkNoShowReboot").Value = forms::vbChecked;
    run.window().cmdApply.press();
    EXPECT_TRUE(run.close());
  }
  KorvexRun next(machine.get());
  EXPECT_EQ(forms::vbChecked, next.box("chkNoShowReboot").Value);
  EXPECT_TRUE(next.session.g_bNoShowReboot);
}

TEST_F(FrmMain, LastPageComesBackUnlessSwitchedOff) {
  {
    KorvexRun run(machine.get());
    EXPECT_EQ(1, run.window().tabMain.SelectedItem);
    run.window().tabMain.SelectedItem = 4;
    EXPECT_TRUE(run.close());
  }
  EXPECT_EQ("text 4", look().value(kMachine, kConfiguration, "LastTab"));
  EXPECT_EQ("dword 1", look().value(kMachine, kConfiguration, "OfficeLastTab"));
  {
    KorvexRun run(machine.get());
    EXPECT_EQ(4, run.window().tabMain.SelectedItem);
    EXPECT_TRUE(run.close());
  }
  look().put(kMachine, kConfiguration, "NoSaveTab", 1);
  {
    KorvexRun run(machine.get());
    EXPECT_EQ(1, run.window().tabMain.SelectedItem);
  }
  look().put(kMachine, kConfiguration, "NoSaveTab", 0);
  look().put(kMachine, kConfiguration, "LastTab", 8);
  KorvexRun run(machine.get());
  EXPECT_EQ(1, run.window().tabMain.SelectedItem);
}

TEST_F(FrmMain, WindowPositionIsKeptUnlessSwitchedOff) {
  {
    KorvexRun run(machine.get());
    EXPECT_FALSE(run.window().place.has_value());  // centred
    run.window().place = forms::WindowPlace{0, 120, 80};
    EXPECT_TRUE(run.close());
  }
  EXPECT_EQ("dword 0", look().value(kMachine, kConfiguration, "AppMin"));
  EXPECT_EQ("dword 80", look().value(kMachine, kConfiguration, "WinTop"));
  EXPECT_EQ("dword 120", look().value(kMachine, kConfiguration, "WinLeft"));
  look().put(kMachine, kConfiguration, "NoSaveWindPos", 1);
  {
    KorvexRun run(machine.get());
    EXPECT_EQ((forms::WindowPlace{0, 120, 80}), run.window().place);
    EXPECT_TRUE(run.close());
  }
  for (const char* name : {"AppMin", "WinTop", "WinLeft"}) {
    EXPECT_EQ("", look().value(kMachine, kConfiguration, name)) << name;
  }
}

TEST_F(FrmMain, MinimizedWindowComesBackMinimizedWithoutAPosition) {
  look().put(kMachine, kConfiguration, "AppMin", 1);
  look().put(kMachine, kConfiguration, "WinTop", 80);
  KorvexRun run(machine.get());
  EXPECT_EQ((forms::WindowPlace{1, 0, 0}), run.window().place);
}

TEST_F(FrmMain, RunLogIsAppendedWhereTracingIsOn) {
  const std::string log = "C:\\Program Files\\Korvex\\kvxlog.log";
  {
    KorvexRun run(machine.get());
    run.window();
    EXPECT_TRUE(run.close());
    EXPECT_FALSE(machine->files().exists(log));
  }
  look().put(kMachine, kConfiguration, "TraceLog", 1);
  KorvexRun run(machine.get());
  run.box("chkHideRun").Value = forms::vbChecked;
  run.window().cmdApply.press();
  EXPECT_TRUE(run.close());
  std::string text;
  ASSERT_EQ(0, machine->files().read(log, text));
  EXPECT_NE(std::string::npos, text.find("[p_SetForApply]"));
  EXPECT_NE(std::string::npos, text.find("[p_rwWriteRegChanges_P_rwRun]"));
}

TEST_F(FrmMain, RestartOfNtAsksForTheRightAndForcesIt) {
  KorvexRun run(machine.get());
  run.box("chkHideRun").Value = forms::vbChecked;
  run.window().cmdApply.press();
  run.prompts.answers = {Answer::Yes};
  bool closing = false;
  run.window().closeRequested += [&closing] { closing = true; };
  run.window().cmdDone.press();
  ASSERT_EQ(1u, run.prompts.messages.size());
  EXPECT_EQ(kRestartQuestion, run.prompts.messages[0].text);
  EXPECT_EQ(36, run.prompts.messages[0].style);
  EXPECT_TRUE(closing);
  EXPECT_FALSE(run.session.g_bRebootNeeded);
  ASSERT_EQ(1u, events().size());
  EXPECT_EQ("restart", events()[0].kind);
  EXPECT_EQ("7", events()[0].detail);
}

TEST_F(FrmMain9x, RestartOf9xIsPlain) {
  KorvexRun run(machine.get());
  run.box("chkHideRun").Value = forms::vbChecked;
  run.window().cmdApply.press();
  run.prompts.answers = {Answer::Yes};
  run.window().cmdDone.press();
  ASSERT_EQ(1u, events().size());
  EXPECT_EQ("2", events()[0].detail);
}

TEST_F(FrmMain, LastRoutineDecidesWhetherARestartIsOffered) {
  KorvexRun run(machine.get());
  // NT lists markers alphabetically: DisableLockWorkstation, which needs none, runs before Run;
  // the options of bank 1 run after both.
  run.box("chkDisableLockWorkstation").Value = forms::vbChecked;
  run.box("chkHideRun").Value = forms::vbChecked;
  run.window().cmdApply.press();
  EXPECT_TRUE(run.session.g_bRebootNeeded);
  run.box("chkHideRun").Value = forms::vbUnchecked;
  run.box("chkNoSaveTab").Value = forms::vbChecked;
  run.window().cmdApply.press();
  EXPECT_FALSE(run.session.g_bRebootNeeded);
  run.window().cmdDone.press();
  EXPECT_TRUE(run.prompts.messages.empty());
}

TEST_F(FrmMain, DeclinedRestartAndTheOptionNotToAsk) {
  KorvexRun run(machine.get());
  run.box("chkHideRun").Value = forms::vbChecked;
  run.window().cmdApply.press();
  run.prompts.answers = {Answer::No};
  run.window().cmdDone.press();
  EXPECT_TRUE(run.session.g_bRebootNeeded);
  EXPECT_TRUE(events().empty());
  run.session.g_bNoShowReboot = true;
  run.window().cmdDone.press();
  EXPECT_EQ(1u, run.prompts.messages.size());
}

TEST_F(FrmMain, WhoeverStaysToApplyIsNotAskedAboutARestart) {
  KorvexRun run(machine.get());
  run.box("chkHideRun").Value = forms::vbChecked;
  run.window().cmdApply.press();
  run.box("chkHideFind").Value = forms::vbChecked;
  run.prompts.answers = {Answer::No};
  bool closing = false;
  run.window().closeRequested += [&closing] { closing = true; };
  run.window().cmdDone.press();
  EXPECT_FALSE(closing);
  EXPECT_EQ("1 change has not been applied. Leave Korvex and discard it?",
            run.prompts.messages.back().text);
}

}  // namespace
}  // namespace korvex::main_window
