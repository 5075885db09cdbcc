// Defaults: every box as its tool tip promises, and what the person hears.
#include "main_window/defaults.h"

#include <algorithm>
#include <map>
#include <string>

#include "engine/readers.h"
#include "main_window/window_fixture.h"
#include "support/registry_view.h"

namespace korvex::main_window {
namespace {

using engine::ControlShape;
using engine::Tweak;
using engine::TweakState;
using platform::Answer;
using Contents = std::map<std::string, std::string>;

class Defaults : public testing::TestWithParam<const char*> {
 public:
  Defaults() : machine(GetParam()) {}

  Contents contents() {
    Contents result;
    const test::RegistryView view(machine.registry());
    for (const char* root : {"HKCR", "HKCU", "HKLM"}) view.dump(root, result);
    return result;
  }
  static bool isBox(const Tweak& tweak) {
    return tweak.form == frmMain::kName && tweak.shape == ControlShape::CheckBox;
  }
  // "before -> after" of what differs.
  static Contents difference(const Contents& before, const Contents& after) {
    Contents result;
    for (const auto& [name, data] : before) result[name] = data + " -> ";
    for (const auto& [name, data] : after) {
      const auto was = before.find(name);
      if (was != before.end() && was->second == data) {
        result.erase(name);
      } else {
        result[name] += " -> " + data;
      }
    }
    return result;
  }
  // What the window does not promise is left out: no box, or a default that hangs on the Windows.
  void expectDefaults(KorvexRun& run) {
    int promised = 0;
    for (const Tweak* tweak : engine::allTweaks()) {
      if (!isBox(*tweak) || !run.box(tweak->control).Enabled) continue;
      const std::string toolTip = run.box(tweak->control).ToolTipText;
      const bool on = toolTip.find("default is checked") != std::string::npos;
      if (!on && toolTip.find("default is unchecked") == std::string::npos) continue;
      ++promised;
      EXPECT_EQ(on ? TweakState::Kind::On : TweakState::Kind::Off,
                engine::readState(*tweak, run.session).kind)
          << tweak->property << ": " << toolTip;
      EXPECT_EQ(on ? forms::vbChecked : forms::vbUnchecked, run.box(tweak->control).Value)
          << tweak->control;
    }
    EXPECT_GT(promised, 40);
  }

  test::TestMachine machine;
};

TEST_P(Defaults, AfterEverythingWasTurnedEachBoxIsAsItsToolTipPromises) {
  KorvexRun run(machine.get());
  run.session.files().createFolder(run.session.g_sAppPath);
  run.window();
  run.session.files().replace(run.session.g_sAppPath + "\\kvxsup.exe", "program");
  for (const Tweak* tweak : engine::allTweaks()) {
    if (!isBox(*tweak) || !run.box(tweak->control).Enabled) continue;
    run.box(tweak->control).Value = run.box(tweak->control).Value == forms::vbChecked ? 0 : 1;
  }
  run.prompts.answers = {Answer::Yes, Answer::Yes, Answer::Yes};  // cascading folders: for me
  run.window().cmdApply.press();
  run.box("chkHideRun").Value = forms::vbChecked;
  run.box("chkHideRun").Value = forms::vbUnchecked;
  ASSERT_EQ(1, run.pending.count());

  run.prompts.messages.clear();
  run.prompts.answers = {Answer::Yes};
  run.window().cmdDefaults.press();
  expectDefaults(run);
  EXPECT_EQ(0, run.pending.count());
  EXPECT_FALSE(run.window().cmdApply.Enabled);
  EXPECT_FALSE(run.window().Busy);
  EXPECT_FALSE(run.session.g_bDefaulting);
  ASSERT_EQ(2u, run.prompts.messages.size());
  EXPECT_EQ("This will reset all values available in Korvex to default?",
            run.prompts.messages[0].text);
  const std::string& told = run.prompts.messages[1].text;
  EXPECT_NE(std::string::npos, told.find(" settings were reset to their defaults:\r\n")) << told;
  EXPECT_EQ(std::string::npos, told.find("could not be")) << told;
  EXPECT_LE(std::ranges::count(told, '\n'), 16) << told;

  const Contents once = contents();
  run.prompts.answers = {Answer::Yes};
  run.window().cmdDefaults.press();
  EXPECT_EQ("Every setting has its default already.", run.prompts.messages.back().text);
  EXPECT_EQ(Contents(), difference(once, contents()));
}

TEST_P(Defaults, NoLeavesTheMachineAndWhatWaits) {
  KorvexRun run(machine.get());
  run.box("chkHideRun").Value = 1 - run.box("chkHideRun").Value;
  const Contents before = contents();
  run.prompts.answers = {Answer::No};
  run.window().cmdDefaults.press();
  EXPECT_EQ(Contents(), difference(before, contents()));
  EXPECT_EQ(1, run.pending.count());
  EXPECT_TRUE(run.window().cmdApply.Enabled);
}

INSTANTIATE_TEST_SUITE_P(Samples, Defaults,
                         testing::Values("windows-95", "windows-98", "windows-nt4",
                                         "windows-2000-server"));

// Refuses everything about one value.
class Refusing : public platform::ForwardingRegistry {
 public:
  using ForwardingRegistry::ForwardingRegistry;
  platform::Status RegSetValueExA(platform::HKEY key, std::string_view name, platform::RegType type,
                                  const void* data, std::uint32_t size) override {
    if (armed && name == "NoRun") return platform::ERROR_DISK_FULL;
    return ForwardingRegistry::RegSetValueExA(key, name, type, data, size);
  }
  bool armed = false;
};

TEST_F(WindowTest, DefaultsThatCannotBeWrittenAreNamedAndTheOthersAreMade) {
  for (const char* value : {"NoRun", "NoFind"}) look().put(kUser, kExplorer, value, 1);
  Refusing refusing(machine.registry());
  platform::ComposedMachine full(machine.get(), {.registry = &refusing});
  KorvexRun run(full);
  const std::string caption = forms::plainCaption(run.box("chkHideRun").Caption.get());
  refusing.armed = true;
  run.prompts.answers = {Answer::Yes};
  run.window().cmdDefaults.press();
  EXPECT_EQ("dword 1", look().value(kUser, kExplorer, "NoRun"));
  EXPECT_EQ(forms::vbChecked, run.box("chkHideRun").Value);
  EXPECT_EQ("dword 0", look().value(kUser, kExplorer, "NoFind"));
  const std::string& told = run.prompts.messages.back().text;
  EXPECT_NE(std::string::npos, told.find("1 could not be reset:\r\n" + caption + ": ")) << told;
  EXPECT_NE(std::string::npos, told.find("112")) << told;
}

}  // namespace
}  // namespace korvex::main_window
