// RegWorker: what a routine leaves in the registry, and what it leaves alone.
#include "engine/reg_worker.h"

#include <fmt/format.h>

#include "engine/same_name.h"
#include "engine_fixture.h"
#include "foundation/runtime_error.h"

namespace korvex::engine {
namespace {

using platform::REG_SZ;

class RegWorkerTest : public EngineTest {};
class RegWorker9xTest : public EngineTest {
 public:
  RegWorker9xTest() : EngineTest(test::Family::NineX) {}
};

// A row of a mode that no table uses yet, on the spare box.
Tweak spare(int mode) {
  return {.property = "P_rwSpare",
          .root = HKCU,
          .key = "Software\\Spare\\Key",
          .value = "Value",
          .mode = static_cast<std::int16_t>(mode),
          .byDefault = dword(7),
          .onValue = text("on"),
          .reboot = true,
          .form = "frmSpare",
          .control = "chkSpare"};
}

TEST_F(RegWorkerTest, ModeZeroWritesTheBoxAndClearingItDoesNotDelete) {
  click("P_rwRun", 1);
  EXPECT_TRUE(worker.call("P_rwRun"));
  EXPECT_EQ("dword:1", value(HKCU, kExplorer, "NoRun"));
  EXPECT_FALSE(waits(kState, "P_rwRun"));

  click("P_rwRun", 0);
  EXPECT_TRUE(worker.call("P_rwRun"));
  EXPECT_EQ("dword:0", value(HKCU, kExplorer, "NoRun"));

  box("chkHideRun").Value = forms::vbGrayed;
  EXPECT_TRUE(worker.call("P_rwRun"));
  EXPECT_EQ("dword:2", value(HKCU, kExplorer, "NoRun"));
}

TEST_F(RegWorkerTest, IntegerZeroIsWrittenButEmptyDeletes) {
  for (const int mode : {2, 7, 8}) {
    SCOPED_TRACE(mode);
    box("chkSpare", "frmSpare").Value = mode == 7 ? 0 : 1;
    EXPECT_TRUE(worker.run(spare(mode)));
    EXPECT_EQ("dword:0", value(HKCU, "Software\\Spare\\Key", "Value"));
  }
  box("chkSpare", "frmSpare").Value = 0;
  EXPECT_TRUE(worker.run(spare(4)));
  EXPECT_EQ("\"0\"", value(HKCU, "Software\\Spare\\Key", "Value"));
  EXPECT_TRUE(worker.run(spare(1)));
  EXPECT_EQ("", value(HKCU, "Software\\Spare\\Key", "Value"));
  // Neither a missing value nor a missing key is an error.
  EXPECT_TRUE(worker.run(spare(1)));
  Tweak elsewhere = spare(1);
  elsewhere.key = "Software\\No\\Such\\Key";
  EXPECT_TRUE(worker.run(elsewhere));
  EXPECT_FALSE(keyExists(HKCU, "Software\\No"));
}

TEST_F(RegWorkerTest, ModeTenOnlyRemembersWhenCheckedAndDeletesTheTreeWhenCleared) {
  setText(HKCU, "Software\\Spare\\Key\\Below", "Deep", "x");
  createKey(HKLM, fmt::format("{}\\P_rwSpare", kState));
  box("chkSpare", "frmSpare").Value = 1;
  EXPECT_TRUE(worker.run(spare(10)));
  EXPECT_EQ("on", foundation::variantText(worker.vCurrentValue));
  EXPECT_EQ("\"x\"", value(HKCU, "Software\\Spare\\Key\\Below", "Deep"));
  EXPECT_FALSE(waits(kState, "P_rwSpare"));
  EXPECT_FALSE(session.g_bRebootNeeded) << "the routine returns before it comes to that";

  // The remembered value is what a row of mode 15 then writes.
  EXPECT_TRUE(worker.run(spare(15)));
  EXPECT_EQ("\"on\"", value(HKCU, "Software\\Spare\\Key", "Value"));

  box("chkSpare", "frmSpare").Value = 0;
  EXPECT_TRUE(worker.run(spare(10)));
  EXPECT_FALSE(keyExists(HKCU, "Software\\Spare\\Key"));
  EXPECT_TRUE(keyExists(HKCU, "Software\\Spare"));
  EXPECT_TRUE(worker.run(spare(10))) << "a key that is gone already is no error";
}

TEST_F(RegWorkerTest, RestoreDefaultsWritesTheDefaultWhateverTheBoxShows) {
  setText(HKCU, "Software\\Spare\\Key", "Value", "on");
  box("chkSpare", "frmSpare").Value = 1;
  session.g_bDefaulting = true;
  EXPECT_TRUE(worker.run(spare(4)));
  EXPECT_EQ("dword:7", value(HKCU, "Software\\Spare\\Key", "Value"));
  EXPECT_TRUE(worker.run(spare(10)));
  EXPECT_FALSE(keyExists(HKCU, "Software\\Spare\\Key"));
}

TEST_F(RegWorkerTest, TheLastRoutineDecidesAboutTheRestart) {
  EXPECT_TRUE(worker.call("P_rwRun"));
  EXPECT_TRUE(session.g_bRebootNeeded);
  EXPECT_TRUE(worker.call("P_rwDisableLockWorkstation"));
  EXPECT_FALSE(session.g_bRebootNeeded) << "an assignment, not an or";
}

TEST_F(RegWorkerTest, OnlyFullNamesAreRoutines) {
  EXPECT_TRUE(worker.knows("p_rwrun"));
  EXPECT_FALSE(worker.knows("Run"));
  EXPECT_THROW(worker.call("P_rwNoSuchThing"), foundation::RuntimeError);
  EXPECT_THROW(worker.call("Run"), foundation::RuntimeError);
}

constexpr std::string_view kAdvanced =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Advanced";
constexpr std::string_view kNetworkConnections =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\ControlPanel\\NameSpace\\"
    "{7007ACC7-3202-11D1-AAD2-00805FC1270E}";
constexpr std::string_view kAllowedPaths =
    "SYSTEM\\CurrentControlSet\\Control\\SecurePipeServers\\winreg\\AllowedPaths";

constexpr std::string_view kAssistant = "Software\\Microsoft\\Office\\9.0\\Common\\Assistant";

// Fails the n-th call of the registry, for n = 1, 2, ... until nothing fails any more: the machine
// is as before with the change still waiting, or as after; never between.
class FaultLoop {
 public:
  FaultLoop(EngineTest& test, const Tweak& tweak, int value, bool defaulting)
      : test_(test),
        tweak_(tweak),
        defaulting_(defaulting),
        turnedOnBefore_(value == 0 && (tweak.special != nullptr || tweak.keepsPrevious)) {
    test.put(tweak, value);
  }

  void run() {
    std::vector<EngineTest::Dump> done;  // after a failure that cost nothing
    for (int n = 1; n < 200; ++n) {
      SCOPED_TRACE(fmt::format("call {} fails", n));
      reset();
      const auto before = EngineTest::dump(test_.machine->registry());
      platform::FailingRegistry failing(test_.machine->registry(), n,
                                        platform::ERROR_ACCESS_DENIED);
      platform::ComposedMachine machine(test_.machine.get(), {.registry = &failing});
      const bool succeeded = call(machine);
      const auto now = EngineTest::dump(test_.machine->registry());
      if (!succeeded) {
        ASSERT_TRUE(failing.failed());
        ASSERT_EQ(before, now);
        continue;
      }
      EXPECT_FALSE(test_.keyExists(HKLM, marker()));
      if (failing.failed()) {
        done.push_back(now);
        continue;
      }
      EXPECT_GT(n, 3) << "the loop must have failed something";
      for (const auto& after : done) EXPECT_EQ(now, after);
      return;
    }
    ADD_FAILURE() << "no end";
  }

 private:
  std::string marker() const {
    return fmt::format("{}\\{}", bankKey(tweak_.bank), tweak_.property);
  }

  // A machine that others use too, on which the change waits.
  void reset() {
    platform::RegistryChange change(test_.registry());  // one flush to the disk, not twenty
    auto& tool = test_.session.regTool;
    for (const char* path : {"Software", "Control Panel"}) tool.DeleteRegNodes(HKCU, path);
    for (const char* path : {"Software", "SYSTEM\\ControlSet001\\Control"}) {
      tool.DeleteRegNodes(HKLM, path);
    }
    test_.start();
    test_.setText(HKLM, kRunOnceEx, "Title", "Setup of something else");
    test_.setDword(HKLM, kOptions, "ClearRUNReboot", 1);
    test_.setText(HKCR, ".bmp", "", "Paint.Picture");
    test_.setText(HKCR, "Paint.Picture\\DefaultIcon", "", "mspaint.exe,1");
    test_.setText(HKCR, "dllfile\\DefaultIcon", "", "library.ico");
    test_.setText(HKLM, kNetworkConnections, "", "Network Connections");
    test_.setText(HKLM, kAllowedPaths, "Machine", "System");
    test_.setDword(HKCU, kAdvanced, "StartMenuLogoff", 1);
    test_.setText(HKCU, kAssistant, "AsstPath", "C:\\Actors");
    test_.machine->files().remove("C:\\Actors\\Disable\\CLIPPIT.ACS");
    test_.putFile("C:\\Actors\\CLIPPIT.ACS", "the paper clip");
    if (turnedOnBefore_) turnOn();
    test_.createKey(HKLM, marker());
    ASSERT_EQ(0, change.commit());
  }

  // So that there is something to put back.
  void turnOn() {
    test_.put(tweak_, 1);
    if (tweak_.ask != nullptr) test_.prompts.answers = {platform::Answer::Yes};
    EXPECT_TRUE(test_.worker.call(tweak_.property));
    test_.prompts.answers.clear();
    test_.put(tweak_, 0);
  }

  bool call(platform::Machine& machine) {
    foundation::Session session(machine, test_.prompts);
    session.g_sAppPath = test_.session.g_sAppPath;
    session.g_sWinDir = test_.session.g_sWinDir;
    session.g_sWinSysDir = test_.session.g_sWinSysDir;
    session.g_bNT = test_.session.g_bNT;
    session.g_sCurrentUser = test_.session.g_sCurrentUser;
    session.g_eOS = test_.session.g_eOS;
    session.pd = test_.session.pd;
    session.g_bRebootNeeded = !tweak_.reboot;
    session.g_bDefaulting = defaulting_;
    RegWorker worker(session, test_.book);
    if (tweak_.ask != nullptr) test_.prompts.answers = {platform::Answer::Yes};
    const bool done = worker.call(tweak_.property);
    test_.prompts.answers.clear();  // not everybody asks in every state
    EXPECT_EQ(done, !worker.bLastWriteFailed);
    EXPECT_EQ(done ? 0 : platform::ERROR_ACCESS_DENIED, worker.lastStatus);
    // A field of Office asks for nothing: what a box before it asked for stays.
    const bool decides = done && !(tweak_.bank == Bank::Office && isField(tweak_));
    EXPECT_EQ(decides ? tweak_.reboot : !tweak_.reboot, session.g_bRebootNeeded);
    return done;
  }

  EngineTest& test_;
  const Tweak& tweak_;
  bool defaulting_;
  bool turnedOnBefore_;
};

TEST_F(RegWorkerTest, AFailureAtAnyPointLeavesTheMachineAndTheMarkerAsTheyWere) {
  putFile(session.g_sAppPath + "\\kvxsup.exe", "program");
  putFile(session.g_sAppPath + "\\zak.hlp", "the other");
  putFile("C:\\WINNT\\Help\\Windows.hlp", "the real one");
  for (const Tweak* tweak : allTweaks()) {
    for (const auto& [value, defaulting] : {std::pair{1, false}, {0, false}, {1, true}}) {
      SCOPED_TRACE(fmt::format("{} box {} defaulting {}", tweak->property, value, defaulting));
      FaultLoop(*this, *tweak, value, defaulting).run();
      if (HasFailure()) return;
    }
  }
}

TEST_F(RegWorker9xTest, DefragWritesBothEntriesAndTakesOnlyThemAway) {
  setText(HKLM, fmt::format("{}\\Other", kRunOnceEx), "1", "||OTHER.EXE");
  createKey(HKLM, kRunServicesOnce);
  const auto before = dump(registry());
  const std::string entry = fmt::format("{}\\Defrag", kRunOnceEx);

  box("chkDefrag").Value = 1;
  EXPECT_TRUE(worker.call("P_rwDefrag"));
  EXPECT_EQ("\"Defrag at Startup\"", value(HKLM, kRunOnceEx, "Title"));
  EXPECT_EQ("\"||DEFRAG.EXE /ALL\"", value(HKLM, entry, "1"));
  EXPECT_TRUE(sameName("\"DEFRAG.EXE\"", value(HKLM, kRunServicesOnce, "Defrag")));

  box("chkDefrag").Value = 0;
  EXPECT_TRUE(worker.call("P_rwDefrag"));
  EXPECT_EQ(before, dump(registry()));
}

TEST_F(RegWorker9xTest, DefragLeavesTheTitleAndFlagsOfAnotherProgram) {
  setText(HKLM, kRunOnceEx, "Title", "Installing");
  setDword(HKLM, kRunOnceEx, "Flags", 0x20);
  for (const int state : {1, 0}) {
    box("chkDefrag").Value = state;
    EXPECT_TRUE(worker.call("P_rwDefrag"));
    EXPECT_EQ("\"Installing\"", value(HKLM, kRunOnceEx, "Title"));
    EXPECT_EQ("dword:20", value(HKLM, kRunOnceEx, "Flags"));
  }
  EXPECT_FALSE(keyExists(HKLM, fmt::format("{}\\Defrag", kRunOnceEx)));
}

TEST_F(RegWorkerTest, TheMenuDelayTakesDigitsOnly) {
  auto& field = *mainForm().find<forms::TextBox>("txtStartMenu");
  constexpr std::string_view kDesktop = "Control Panel\\Desktop";
  field.Text = "0";
  EXPECT_TRUE(worker.call("P_rwStartMenuSpeed"));
  EXPECT_EQ("\"0\"", value(HKCU, kDesktop, "MenuShowDelay"));
  EXPECT_TRUE(prompts.messages.empty());

  for (const char* wrong : {"", "4x", "-1", " 4"}) {
    field.Text = wrong;
    EXPECT_FALSE(worker.call("P_rwStartMenuSpeed")) << wrong;
    EXPECT_EQ("This field accepts numerical characters only.", prompts.messages.back().text);
    EXPECT_EQ("\"0\"", value(HKCU, kDesktop, "MenuShowDelay"));
  }
  session.g_bDefaulting = true;
  EXPECT_TRUE(worker.call("P_rwStartMenuSpeed"));
  EXPECT_EQ("\"400\"", value(HKCU, kDesktop, "MenuShowDelay"));
}

constexpr std::string_view kRun = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";

TEST_F(RegWorkerTest, TheSupportProgramIsRegisteredWhileAnOptionNeedsIt) {
  putFile("C:\\Program Files\\Korvex\\kvxsup.exe", "program");
  const std::string registered = "\"\"C:\\Program Files\\Korvex\\kvxsup.exe\"\"";
  click("P_rwClearDocsReboot", 1);
  click("P_rwClearRUNReboot", 1);
  EXPECT_TRUE(worker.call("P_rwClearDocsReboot"));
  EXPECT_TRUE(worker.call("P_rwClearRUNReboot"));
  EXPECT_EQ("dword:1", value(HKLM, kOptions, "ClearDOCSReboot"));
  EXPECT_EQ("\"C:\\Recent\"", value(HKLM, kOptions, "RecentFolder"));
  EXPECT_EQ(registered, value(HKLM, kRun, "Korvex"));

  click("P_rwClearDocsReboot", 0);
  EXPECT_TRUE(worker.call("P_rwClearDocsReboot"));
  EXPECT_EQ("", value(HKLM, kOptions, "RecentFolder"));
  EXPECT_EQ(registered, value(HKLM, kRun, "Korvex")) << "the Run list is still to be cleared";
  click("P_rwClearRUNReboot", 0);
  EXPECT_TRUE(worker.call("P_rwClearRUNReboot"));
  EXPECT_EQ("", value(HKLM, kRun, "Korvex"));
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(RegWorkerTest, WithoutItsFileTheSupportProgramIsNotRegisteredAndThePersonIsTold) {
  click("P_rwClearMRUsReboot", 1);
  EXPECT_TRUE(worker.call("P_rwClearMRUsReboot"));
  ASSERT_EQ(1U, prompts.messages.size());
  EXPECT_EQ(
      "The support file, 'kvxsup.exe', could not be found.\r\n"
      "This file should reside in the same folder as Korvex.\r\n"
      "This function will not work unless the file is present.",
      prompts.messages[0].text);
  EXPECT_EQ("dword:1", value(HKLM, kOptions, "ClearMRUsReboot"));
  EXPECT_EQ("", value(HKLM, kRun, "Korvex"));
  click("P_rwClearMRUsReboot", 0);
  EXPECT_TRUE(worker.call("P_rwClearMRUsReboot"));
  EXPECT_EQ(1U, prompts.messages.size()) << "turning it off needs no file";
}

class HelpFileTest : public EngineTest {
 public:
  std::string read(const std::string& path) {
    std::string bytes;
    return machine->files().read(path, bytes) == 0 ? bytes : "(none)";
  }
  const std::string help = "C:\\WINNT\\Help\\Windows.hlp";
  const std::string kept = "C:\\WINNT\\Help\\Windows.kvx";
};

TEST_F(HelpFileTest, ModeTwentyOneSwapsTheHelpFileAndBringsItBack) {
  putFile(help, "the real one");
  putFile(session.g_sAppPath + "\\zak.hlp", "the other");
  Tweak row = spare(21);
  createKey(HKLM, fmt::format("{}\\P_rwSpare", kState));
  box("chkSpare", "frmSpare").Value = 1;
  EXPECT_TRUE(worker.run(row));
  EXPECT_EQ("the other", read(help));
  EXPECT_EQ("the real one", read(kept));
  EXPECT_FALSE(waits(kState, "P_rwSpare"));
  EXPECT_TRUE(session.g_bRebootNeeded);
  EXPECT_EQ(TweakState::Kind::On, readState(row, session).kind);
  EXPECT_TRUE(worker.run(row)) << "a second time changes nothing";
  EXPECT_EQ("the real one", read(kept));

  box("chkSpare", "frmSpare").Value = 0;
  EXPECT_TRUE(worker.run(row));
  EXPECT_EQ("the real one", read(help));
  EXPECT_EQ("(none)", read(kept));
  EXPECT_EQ(TweakState::Kind::Off, readState(row, session).kind);
  EXPECT_TRUE(worker.run(row)) << "nor does bringing it back twice";
  EXPECT_EQ("the real one", read(help));
}

TEST_F(HelpFileTest, WithoutTheOtherFileNothingIsSwapped) {
  putFile(help, "the real one");
  box("chkSpare", "frmSpare").Value = 1;
  EXPECT_FALSE(worker.run(spare(21)));
  EXPECT_EQ(platform::ERROR_PATH_NOT_FOUND, worker.lastStatus);
  EXPECT_EQ("the real one", read(help));
  EXPECT_EQ("(none)", read(kept));
}

TEST_F(HelpFileTest, AHelpFileThatCameSinceIsTheOneThatIsKept) {
  putFile(session.g_sAppPath + "\\zak.hlp", "the other");
  putFile(kept, "the old one");
  putFile(help, "a service pack's");
  const Tweak row = spare(21);
  box("chkSpare", "frmSpare").Value = 1;
  EXPECT_TRUE(worker.run(row));
  EXPECT_EQ("a service pack's", read(kept));
  box("chkSpare", "frmSpare").Value = 0;
  EXPECT_TRUE(worker.run(row));
  EXPECT_EQ("a service pack's", read(help));
}

}  // namespace
}  // namespace korvex::engine
