// Readers: the writers' inverse, and no hand on the machine.
#include "engine/readers.h"

#include <fmt/format.h>

#include "engine_fixture.h"

namespace korvex::engine {
namespace {

using Kind = TweakState::Kind;

class ReadersTest : public EngineTest {
 public:
  Kind stateOf(std::string_view property) { return readState(*findTweak(property), session).kind; }
};
class Readers9xTest : public EngineTest {
 public:
  Readers9xTest() : EngineTest(test::Family::NineX) {}
  Kind stateOf(std::string_view property) { return readState(*findTweak(property), session).kind; }
};

void expectInverse(EngineTest& test) {
  test.createKey(HKLM, "Software\\CLASSES\\AudioCD\\shell");
  for (const char* file : {"kvxsup.exe", "zak.hlp"}) {
    test.putFile(fmt::format("{}\\{}", test.session.g_sAppPath, file), "program");
  }
  test.putFile(test.session.g_sWinDir + "Help\\Windows.hlp", "help");
  for (const Tweak* tweak : allTweaks()) {
    SCOPED_TRACE(tweak->property);
    if (tweak->shape == ControlShape::None) continue;
    if (availability(*tweak, test.session).kind == Kind::Unavailable) continue;
    for (const int value : {1, 0, 1}) {
      test.put(*tweak, value);
      if (tweak->ask != nullptr && value == 1) test.prompts.answers = {platform::Answer::Yes};
      EXPECT_TRUE(test.worker.call(tweak->property));
      if (isField(*tweak)) {
        EXPECT_EQ(EngineTest::textFor(*tweak, value), readText(*tweak, test.session));
      } else {
        EXPECT_EQ(value == 1 ? Kind::On : Kind::Off, readState(*tweak, test.session).kind);
      }
    }
  }
}

TEST_F(ReadersTest, ABoxIsCheckedWhenTheMachineHoldsWhatACheckedBoxWrites) { expectInverse(*this); }
TEST_F(Readers9xTest, ABoxIsCheckedWhenTheMachineHoldsWhatACheckedBoxWrites) {
  expectInverse(*this);
}

TEST_F(ReadersTest, TypeAndDataAreCompared) {
  EXPECT_EQ(Kind::Off, stateOf("P_rwRun")) << "a missing key";
  setDword(HKCU, kExplorer, "NoRun", 2);
  EXPECT_EQ(Kind::Grey, stateOf("P_rwRun"));
  setDword(HKCU, kExplorer, "NoRun", 3);
  EXPECT_EQ(Kind::Off, stateOf("P_rwRun"));
  setText(HKCU, kExplorer, "NoRun", "1");
  EXPECT_EQ(Kind::Off, stateOf("P_rwRun"));
  setRaw(HKCU, kExplorer, "NoRun", platform::REG_DWORD, std::string("\1\0", 2));
  EXPECT_EQ(Kind::Off, stateOf("P_rwRun")) << "a DWORD of the wrong size";
  setRaw(HKCU, kExplorer, "NoRun", platform::REG_SZ, std::string(5000, 'x'));
  EXPECT_EQ(Kind::Off, stateOf("P_rwRun"));
  // Windows 95, 98 and Me keep this one as four bytes.
  setRaw(HKCU, kExplorer, "NoDriveTypeAutoRun", platform::REG_BINARY, std::string("\xB5\0\0\0", 4));
  EXPECT_EQ(Kind::Off, stateOf("P_rwAutoPlay"));
  setDword(HKCU, kExplorer, "NoDriveTypeAutoRun", 0xB5);
  EXPECT_EQ(Kind::On, stateOf("P_rwAutoPlay"));
}

TEST_F(ReadersTest, AMissingValueIsADeletedOneButAMissingKeyIsUnchecked) {
  constexpr std::string_view kShell = "Software\\CLASSES\\AudioCD\\shell";
  EXPECT_EQ(Kind::Off, stateOf("P_rwAudioCD"));
  createKey(HKLM, kShell);
  EXPECT_EQ(Kind::On, stateOf("P_rwAudioCD"));
  setText(HKLM, kShell, "", "play");
  EXPECT_EQ(Kind::Off, stateOf("P_rwAudioCD"));
}

TEST_F(Readers9xTest, EitherEntryChecksDefragInAnyCase) {
  EXPECT_EQ(Kind::Off, stateOf("P_rwDefrag"));
  setText(HKLM, kRunOnceEx, "Title", "DEFRAG at startup");
  EXPECT_EQ(Kind::On, stateOf("P_rwDefrag"));
  setText(HKLM, kRunOnceEx, "Title", "Another");
  EXPECT_EQ(Kind::Off, stateOf("P_rwDefrag"));
  setText(HKLM, kRunServicesOnce, "Defrag", "Defrag.exe");
  EXPECT_EQ(Kind::On, stateOf("P_rwDefrag"));
}

TEST_F(ReadersTest, WhatAWindowsDoesNotHaveIsUnavailableWithTheReason) {
  const TweakState state = readState(*findTweak("P_rwDefrag"), session);
  EXPECT_EQ(Kind::Unavailable, state.kind);
  EXPECT_EQ("This setting exists only on Windows 95, 98 and Millennium.", state.reason);
  EXPECT_EQ("Needs the logon dialog of Windows (msgina.dll).",
            readState(*findTweak("P_rwDisableTaskMgr"), session).reason);
  putFile(session.g_sWinSysDir + "msgina.dll", "gina");
  EXPECT_EQ(Kind::Off, stateOf("P_rwDisableTaskMgr"));

  session.g_eOS = foundation::Os::Windows95;
  EXPECT_EQ("This setting exists only on Windows NT4 and 2000.",
            readState(*findTweak("P_rwDisableTaskMgr"), session).reason);
}

TEST_F(ReadersTest, TheDesktopUpdateCountsOnlyWhereTheWindowsItselfLacksTheSetting) {
  const Tweak& favorites = *findTweak("P_rwNoFavoritesMenu");
  for (const auto& [os, version, has] :
       {std::tuple{foundation::Os::Windows95, "4.70.1155.0", false},
        {foundation::Os::Windows95, "", false},
        {foundation::Os::Windows95, "4.71.1712.6", true},
        {foundation::Os::WindowsNT4, "5.00.2314.1003", true},
        {foundation::Os::WindowsNT4, "4.40.0.0", false},
        {foundation::Os::Windows98, "", true}}) {
    session.g_eOS = os;
    session.g_sShellVersion = version;
    EXPECT_EQ(has, availability(favorites, session).kind != Kind::Unavailable) << version;
  }
}

TEST_F(ReadersTest, ReadingIntoAFormSetsItsControlsAndStoresTheStates) {
  setDword(HKCU, kExplorer, "NoRun", 1);
  setDword(HKCU, kExplorer, "NoFind", 2);
  setDword(HKLM, kOptions, "NoSaveTab", 1);
  setText(HKCU, "Control Panel\\Desktop", "MenuShowDelay", "65");
  const auto before = dump(registry());
  std::vector<int> steps;
  session.g_bNoRecord = true;
  readIntoForm(mainForm(), session, [&steps](int percent) { steps.push_back(percent); });

  EXPECT_EQ(1, box("chkHideRun").Value);
  EXPECT_EQ(2, box("chkHideFind").Value);
  EXPECT_EQ(1, box("chkNoSaveTab").Value);
  EXPECT_EQ("65", mainForm().find<forms::TextBox>("txtStartMenu")->Text.get());
  EXPECT_EQ("dword:1", value(HKLM, kState, "NoRun"));
  EXPECT_EQ("dword:2", value(HKLM, kState, "NoFind"));
  EXPECT_EQ("dword:0", value(HKLM, kState, "NoClose"));

  const forms::CheckBox& defrag = box("chkDefrag");
  EXPECT_FALSE(defrag.Enabled);
  EXPECT_NE(std::string::npos, defrag.ToolTipText->find("only on Windows 95"));
  EXPECT_EQ("", value(HKLM, kState, "Defrag")) << "nothing is read where it does not exist";
  EXPECT_TRUE(session.trace.contains("[p_DetermineExplorerPolicies]"));
  EXPECT_EQ(100, steps.back());

  // Nothing but the state values, and of the options not even those.
  auto after = dump(registry());
  std::erase_if(after, [](const auto& entry) {
    return entry.first.starts_with("HKLM\\SOFTWARE\\Korvex\\CurrentSettings : ");
  });
  EXPECT_EQ(before, after);
  EXPECT_EQ(0, pending.count());
}

TEST_F(ReadersTest, ReadingAStateChangesNothing) {
  const auto before = dump(registry());
  StateReader reader(session);
  for (const Tweak* tweak : allTweaks()) reader.state(*tweak);
  EXPECT_EQ(before, dump(registry()));
}

TEST_F(ReadersTest, AKeyThatRowsShareIsOpenedOnce) {
  createKey(HKCU, kExplorer);
  platform::FailingRegistry counting(registry(), 0, 0);
  platform::ComposedMachine counted(machine.get(), {.registry = &counting});
  foundation::Session countingSession(counted, prompts);
  countingSession.g_eOS = session.g_eOS;
  StateReader reader(countingSession);
  int rows = 0;
  for (const Tweak* tweak : allTweaks()) {
    if (tweak->key != kExplorer || tweak->reader != nullptr) continue;
    if (reader.state(*tweak).kind != Kind::Unavailable) ++rows;
  }
  EXPECT_GT(rows, 10);
  EXPECT_EQ(rows + 1, counting.calls());
}

TEST_F(ReadersTest, AMissingTextShowsTheDefault) {
  EXPECT_EQ("400", readText(*findTweak("P_rwStartMenuSpeed"), session));
  setText(HKCU, "Control Panel\\Desktop", "MenuShowDelay", "");
  EXPECT_EQ("", readText(*findTweak("P_rwStartMenuSpeed"), session)) << "empty is not missing";
}

}  // namespace
}  // namespace korvex::engine
