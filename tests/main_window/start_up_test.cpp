// Start-up: who may start, what is read, and what is written on the way.
#include <map>

#include "engine/whats_this.h"
#include "main_window/options.h"
#include "main_window/window_fixture.h"

namespace korvex::main_window {
namespace {

using StartUpTest = WindowTest;
using StartUpTest9x = WindowTest9x;

TEST_F(StartUpTest, SecondInstanceIsToldAndLeavesTheFirstOnesChangesAlone) {
  KorvexRun first(machine.get());
  first.box("chkHideRun").Value = forms::vbChecked;
  const auto other = machine.open(platform::OpenMode::ReadWrite);
  {
    KorvexRun second(*other);
    EXPECT_EQ(StartResult::SecondInstance, second.window().startResult());
    ASSERT_EQ(1u, second.prompts.messages.size());
    EXPECT_EQ("Only a single instance of Korvex...for Power Users may be run at any one time.",
              second.prompts.messages[0].text);
    EXPECT_TRUE(second.close());
    KorvexRun silent(*other, {.doubleLoadWarning = false});
    EXPECT_EQ(StartResult::SecondInstance, silent.window().startResult());
    EXPECT_TRUE(silent.prompts.messages.empty());
  }
  EXPECT_TRUE(look().hasKey(kMachine, "SOFTWARE\\Korvex\\CurrentSettings\\P_rwRun"));
  first.window().cmdApply.press();
  EXPECT_EQ("dword 1", look().value(kUser, kExplorer, "NoRun"));
}

TEST_F(StartUpTest, UserWithoutRightsIsRefused) {
  takeRightsAway();
  KorvexRun run(machine.get());
  EXPECT_EQ(StartResult::NoRights, run.window().startResult());
  ASSERT_EQ(1u, run.prompts.messages.size());
  EXPECT_EQ(
      "Tester does not have sufficent user rights to run this program. Administrator rights are "
      "required.",
      run.prompts.messages[0].text);
  EXPECT_EQ(platform::kIconCritical, run.prompts.messages[0].style & platform::kIconMask);
  EXPECT_TRUE(run.close());
  EXPECT_EQ("", look().value(kMachine, kConfiguration, "LastTab"));
}

TEST_F(StartUpTest, OpeningAndClosingWritesNothingButTheRegistrationsOnce) {
  std::map<int, std::vector<std::string>> outside;
  for (const int round : {1, 2}) {
    platform::RecordingRegistry recording(machine.registry());
    platform::ComposedMachine recorded(machine.get(), {.registry = &recording});
    KorvexRun run(recorded);
    ASSERT_EQ(StartResult::Started, run.window().startResult());
    EXPECT_TRUE(run.close());
    for (const auto& record : recording.records()) {
      const bool own = record.key.starts_with("HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvex");
      const bool value = record.write == platform::RegistryWrite::SetValue ||
                         record.write == platform::RegistryWrite::DeleteValue;
      if (!own && value) outside[round].push_back(record.key);
    }
  }
  const std::string appPath =
      "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\korvex.exe";
  const std::string type = "HKEY_CLASSES_ROOT\\kvx_auto_file";
  EXPECT_EQ((std::vector<std::string>{appPath, appPath, "HKEY_CLASSES_ROOT\\.kvx", type,
                                      type + "\\shell\\open\\command", type + "\\DefaultIcon"}),
            outside[1]);
  EXPECT_EQ(std::vector<std::string>{}, outside[2]);
  EXPECT_EQ("text korvex.exe %1",
            look().value(platform::HKEY_CLASSES_ROOT, "kvx_auto_file\\shell\\open\\command", ""));
}

TEST_F(StartUpTest, CrashedRunIsClearedUpAndItsOptionComesBack) {
  look().put(kMachine, kConfiguration, "NoSaveTab", 1);
  {
    KorvexRun crashed(machine.get());
    crashed.box("chkNoSaveTab").Value = forms::vbUnchecked;
    crashed.box("chkHideRun").Value = forms::vbChecked;
    ASSERT_EQ("dword 0", look().value(kMachine, kConfiguration, "NoSaveTab"));
  }
  KorvexRun next(machine.get());
  EXPECT_EQ(forms::vbChecked, next.box("chkNoSaveTab").Value);
  EXPECT_EQ(forms::vbUnchecked, next.box("chkHideRun").Value);
  EXPECT_EQ(0, next.pending.count());
  EXPECT_TRUE(next.session.g_bNoSaveTab);
}

TEST_F(StartUpTest, ControlsShowTheMachineAndRecordNothing) {
  look().put(kUser, kExplorer, "NoRun", 1);
  look().put(kUser, kExplorer, "NoFind", 2);
  KorvexRun run(machine.get());
  EXPECT_EQ(forms::vbChecked, run.box("chkHideRun").Value);
  EXPECT_EQ(forms::vbGrayed, run.box("chkHideFind").Value);
  EXPECT_EQ(forms::vbUnchecked, run.box("chkHideTaskbar").Value);
  EXPECT_EQ("400", run.menuSpeed().Text.get());
  EXPECT_FALSE(run.window().cmdApply.Enabled);
  EXPECT_FALSE(run.session.g_bNoRecord);
  EXPECT_EQ(0, run.pending.count());
  EXPECT_EQ("dword 1", look().value(kMachine, kState, "NoRun"));
  EXPECT_EQ("machine  |  Windows 2000 Professional  |  no changes waiting",
            run.window().StatusText.get());
}

TEST_F(StartUpTest, TweakTheWindowsLacksIsDisabledWithItsReason) {
  KorvexRun run(machine.get());
  const forms::CheckBox& defrag = run.box("chkDefrag");
  EXPECT_FALSE(defrag.Enabled);
  EXPECT_NE(std::string::npos, defrag.ToolTipText->find("Windows 95")) << defrag.ToolTipText.get();
  EXPECT_EQ("", look().value(kMachine, kState, "Defrag"));
}

TEST_F(StartUpTest9x, BatchExtensionAndRightsFollowTheFamily) {
  takeRightsAway();  // 95, 98 and Me know no such thing
  KorvexRun run(machine.get());
  EXPECT_EQ(StartResult::Started, run.window().startResult());
  EXPECT_EQ(".bat", run.session.g_sExt);
  EXPECT_TRUE(run.box("chkDefrag").Enabled);
}

TEST_F(StartUpTest, ARunThatOnlyReadsFindsWhatTheWindowFinds) {
  KorvexRun run(machine.get());
  ASSERT_EQ(StartResult::Started, run.window().startResult());
  const auto reader = machine.open(platform::OpenMode::Read);
  test::ScriptedPrompts nobody;
  foundation::Session session(*reader, nobody);
  detectReadOnly(session);
  EXPECT_EQ("Tester", session.g_sCurrentUser);
  EXPECT_EQ("C:\\Documents and Settings\\Tester\\Start Menu", session.pd.StartMenuPath);
  EXPECT_EQ(run.session.pd.CommStartMenuPath, session.pd.CommStartMenuPath);
  EXPECT_EQ(run.session.g_eOS, session.g_eOS);
}

TEST_F(StartUpTest, EveryPageSaysSomethingAndEveryRowHasItsControl) {
  KorvexRun run(machine.get());
  const forms::Layout& pages = run.window().layout.parts.at(0);
  ASSERT_EQ(forms::Layout::Kind::Pages, pages.kind);
  ASSERT_EQ(7u, pages.parts.size());
  for (const forms::Layout& page : pages.parts) {
    EXPECT_FALSE(page.parts.at(0).parts.empty());
  }
  for (const engine::Tweak* tweak : engine::allTweaks()) {
    if (tweak->form != frmMain::kName || tweak->shape == engine::ControlShape::None) continue;
    const forms::Control* control = run.window().find(tweak->control);
    ASSERT_NE(nullptr, control) << tweak->control;
    const std::string_view subject = engine::tellsOfTheValue(*tweak) ? tweak->key : tweak->writes;
    EXPECT_NE(std::string::npos, control->WhatsThis->find(subject)) << tweak->property;
  }
}

TEST_F(StartUpTest, WhatsThisNamesTheDataOfBothStates) {
  KorvexRun run(machine.get());
  EXPECT_EQ("Sets the value NoRun of the key HKEY_CURRENT_USER\\" + std::string(kExplorer) +
                ". Checked: DWORD 1. Unchecked: DWORD 0. Windows default: DWORD 0. Takes effect "
                "after a restart.",
            run.box("chkHideRun").WhatsThis.get());
  const std::string audio = run.box("chkAudioCD").WhatsThis;
  EXPECT_NE(std::string::npos, audio.find("the default value")) << audio;
  EXPECT_NE(std::string::npos, audio.find("Checked: no value. Unchecked: \"play\"")) << audio;
}

}  // namespace
}  // namespace korvex::main_window
