// frmRunOnce as a person uses it: an area shown, entries moved, deleted, taken back and added.
#include "dialogs/shell/frm_run_once.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;
using Items = std::vector<std::string>;

class RunOnce : public OnFailingMachine<frmRunOnce> {
 public:
  explicit RunOnce(const std::string& sample = "windows-98") : OnFailingMachine(sample) {}

  Items left() { return window().lstViewAppsLaunched.items(); }
  Items right() { return window().lstRestoreApps.items(); }
  static void select(forms::MultiList& list, const Items& items) {
    list.ListIndex = -1;
    for (const std::string& item : items) {
      const auto at = std::ranges::find(list.items(), item) - list.items().begin();
      ASSERT_LT(at, list.ListCount()) << item;
      list.setSelected(static_cast<int>(at), true);
    }
  }
  void off(const Items& items) {
    select(window().lstViewAppsLaunched, items);
    window().cmdMoveRight.press();
  }
  void on(const Items& items) {
    select(window().lstRestoreApps, items);
    window().cmdMoveLeft.press();
  }
  std::map<std::string, std::string> store(const std::string& root, const std::string& area) {
    return registry().values(root + "\\SOFTWARE\\Korvex\\App Manager\\" + area);
  }
  std::string heading() { return window().lblViewAppsLaunched.Caption; }
  bool traced(std::string_view piece) { return session.trace.contains(piece); }

  const std::string kRun = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
};

struct RunOnceOnNt : RunOnce {
  RunOnceOnNt() : RunOnce("windows-2000") {}
};
struct RunOnceOn95 : RunOnce {
  RunOnceOn95() : RunOnce("windows-95") {}
};

TEST_F(RunOnce, OpeningShowsNothingAndWritesNothing) {
  EXPECT_EQ("Startup Apps", heading());
  EXPECT_EQ("", window().lblViewAppsLaunched.Tag);
  EXPECT_TRUE(left().empty() && right().empty());
  EXPECT_FALSE(window().cmdMoveRight.Enabled || window().cmdDelete.Enabled);
  EXPECT_EQ("View RunServices", window().cmdShowRegRunOnce.Caption.get());
  window().cmdShowRun_Add.press();
  EXPECT_EQ(
      "Before adding an application you must first select\r\n"
      "an area to add it to, e.g. 'View Load =', 'View Run ='",
      lastMessage());
  EXPECT_EQ(1U, prompts.messages.size()) << "no file is asked for";
  EXPECT_FALSE(registry().hasKey("HKLM\\SOFTWARE\\Korvex\\App Manager"));
}

TEST_F(RunOnce, EachAreaHasItsHeadingAndItsEntries) {
  struct Case {
    forms::CommandButton& button;
    const char* heading;
    Items entries;
  };
  const Case cases[] = {
      {window().cmdShowRegRunII,
       "Startup Apps found in HKEY_CURRENT_USER Run key",
       {"NetWatch=C:\\Program Files\\NetWatch\\nwatch.exe -minimize"}},
      {window().cmdShowRegRunOnce,
       "Startup Apps found in HKEY_LOCAL_MACHINE RunServices key",
       {"SchedulingAgent=mstask.exe",
        "LoadPowerProfile=Rundll32.exe powrprof.dll,LoadCurrentPwrScheme"}},
      {window().cmdShowLoad_WinIni, "Startup Apps found on WIN.INI load= line", {}},
      {window().cmdShowRun_WinIni,
       "Startup Apps found on WIN.INI run= line",
       {"C:\\HPDJ\\HPSTAT.EXE"}},
      {window().cmdShowStartupGroup,
       "Startup Apps within Startup Groups",
       {session.g_sCurrentUser + " Profile", "Front desk clock.lnk", "Microsoft Office.lnk",
        "All Users Profile", "HP Status.lnk"}}};
  int number = 1;
  for (const Case& one : cases) {
    one.button.press();
    EXPECT_EQ(one.heading, heading());
    EXPECT_EQ(one.entries, left()) << one.heading;
    EXPECT_EQ(std::to_string(number++), window().lblViewAppsLaunched.Tag);
  }
  session.pd.CommStartUpPath = session.pd.StartUpPath;
  reopen().cmdShowStartupGroup.press();
  EXPECT_EQ("Startup Apps within Startup Group", heading());
  EXPECT_EQ(
      (Items{session.g_sCurrentUser + " Profile", "Front desk clock.lnk", "Microsoft Office.lnk"}),
      left());
  EXPECT_TRUE(traced("[p_EnumReg]") && traced("[p_WinParse]") &&
              traced("[p_ParseStartupDir_ALL USERS]") && traced("sSGExe$=HP Status.lnk"));
}

TEST_F(RunOnceOnNt, TheThirdAreaIsRunOnceThereWithTheSameStore) {
  EXPECT_EQ("View Run&Once", window().cmdShowRegRunOnce.Caption.get());
  window().cmdShowRegRunOnce.press();
  EXPECT_EQ("Startup Apps found in HKEY_LOCAL_MACHINE RunOnce key", heading());
  off(left());
  EXPECT_EQ(1U, store("HKLM", "Reg_RunOnce").count("Index Cleaner"));
  EXPECT_TRUE(
      registry().values("HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\RunOnce").empty());
}

TEST_F(RunOnce, SeveralEntriesMoveThereAndBack) {
  window().cmdShowRegRun.press();
  const auto before = registry().values(kRun);
  const Items two{"SystemTray=SysTray.Exe", "TaskMonitor=C:\\WINDOWS\\taskmon.exe"};
  off(two);
  EXPECT_EQ(two, right());
  EXPECT_EQ(two, window().lstRestoreApps.selectedItems()) << "to be moved back at once";
  EXPECT_EQ("2 entries switched off.", window().StatusText.get());
  EXPECT_EQ((std::map<std::string, std::string>{{"SystemTray", "\"SysTray.Exe\""},
                                                {"TaskMonitor", "\"C:\\WINDOWS\\taskmon.exe\""}}),
            store("HKLM", "REG_RUN"));
  window().cmdMoveLeft.press();
  EXPECT_EQ(before, registry().values(kRun));
  EXPECT_TRUE(store("HKLM", "Reg_Run").empty() && right().empty());
  // By dragging, both ways; the user's own entry stays the user's.
  window().cmdShowRegRunII.press();
  select(window().lstViewAppsLaunched, left());
  window().lstRestoreApps.DragDrop.raise();
  EXPECT_EQ(1U, store("HKCU", "Reg_RunII").count("NetWatch"));
  EXPECT_TRUE(store("HKLM", "Reg_RunII").empty());
  EXPECT_TRUE(left().empty());
  select(window().lstRestoreApps, right());
  window().lstViewAppsLaunched.DragDrop.raise();
  EXPECT_EQ(1U, left().size());
  EXPECT_TRUE(store("HKCU", "Reg_RunII").empty());
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(RunOnce, HeadingsAreNoEntries) {
  window().cmdShowStartupGroup.press();
  const auto all = below("HKLM\\SOFTWARE\\Korvex");
  const Items headings{session.g_sCurrentUser + " Profile", "All Users Profile"};
  off(headings);
  EXPECT_EQ(headings, right());
  on(headings);
  window().cmdDelete.press();
  window().lstViewAppsLaunched.DragDrop.raise();
  EXPECT_EQ(all, below("HKLM\\SOFTWARE\\Korvex"));
  EXPECT_TRUE(prompts.messages.empty());
  off({headings[1], "HP Status.lnk"});
  EXPECT_EQ((Items{headings[0], headings[1], "HP Status.lnk"}), right());
  EXPECT_TRUE(machine->files().exists("C:\\Program Files\\Korvex\\Startup\\Backup\\HP Status.lnk"));
  EXPECT_EQ("\"C:\\WINDOWS\\All Users\\Start Menu\\Programs\\StartUp\\HP Status.lnk\"",
            store("HKLM", "StartUp")["HP Status.lnk"]);
}

TEST_F(RunOnce, WhatIsDeletedCanBeTakenBack) {
  const std::string question =
      "Are you certain you want to permanently remove your ability to restore this ";
  window().cmdShowRegRun.press();
  const Items two{"SystemTray=SysTray.Exe", "TaskMonitor=C:\\WINDOWS\\taskmon.exe"};
  off(two);
  prompts.answers = {Answer::No, Answer::Yes};
  window().cmdDelete.press();
  EXPECT_EQ(question + "values?", lastMessage());
  EXPECT_EQ(two, right());
  select(window().lstRestoreApps, {two[1]});
  window().cmdDelete.press();
  EXPECT_EQ(question + "value?", lastMessage());
  EXPECT_EQ((Items{two[0]}), right());
  EXPECT_FALSE(window().cmdTakeBack.Enabled);
  ASSERT_EQ(1, window().cboDeleted.ListCount());
  window().cboDeleted.ListIndex = 0;
  window().cmdTakeBack.press();
  EXPECT_EQ(two, right());
  EXPECT_EQ(0, window().cboDeleted.ListCount());
}

TEST_F(RunOnce, AnotherEntryOfItsNameIsReplacedOnlyWhenAgreed) {
  window().cmdShowRegRun.press();
  off({"SystemTray=SysTray.Exe"});
  registry().put(kRun, "SystemTray", "\"newer.exe\"");
  prompts.answers = {Answer::No, Answer::Yes};
  on(right());
  EXPECT_EQ("\"newer.exe\"", registry().value(kRun, "SystemTray"));
  on(right());
  EXPECT_EQ("\"SysTray.Exe\"", registry().value(kRun, "SystemTray"));
  EXPECT_EQ(1, window().cboDeleted.ListCount()) << "the other one is kept";
}

TEST_F(RunOnceOn95, AProgramIsAddedWithItsShortPath) {
  platform::Files& files = machine->files();
  const std::string path = "C:\\Program Files\\Wall Clock\\clock face.exe";
  ASSERT_EQ(0, files.createFolder("C:\\Program Files\\Wall Clock"));
  ASSERT_EQ(0, files.replace(path, "x"));
  std::string shortPath;
  ASSERT_EQ(0, files.shortPath(path, shortPath));
  const auto add = [&](forms::CommandButton& view, const std::string& file) {
    view.press();
    prompts.texts.emplace_back(file);
    window().cmdShowRun_Add.press();
  };
  add(window().cmdShowRegRunII, path);
  EXPECT_EQ("clock face=" + shortPath, left().back());
  add(window().cmdShowRegRunII, path);
  EXPECT_EQ("clock face.exe starts from this area already.", lastMessage());
  add(window().cmdShowRun_WinIni, path);
  EXPECT_EQ((Items{"C:\\SB16\\SBREMIND.EXE", "C:\\UTIL\\CLIPCAT.EXE", shortPath}), left());
  add(window().cmdShowStartupGroup, path);
  select(window().lstViewAppsLaunched, {"Shortcut to clock face.exe.lnk"});
  EXPECT_EQ("A shortcut to " + path, window().lblState.Caption.get());
  EXPECT_EQ(session.pd.StartUpPath + "\\Shortcut to clock face.exe.lnk",
            window().txtCommand.Text.get());
  add(window().cmdShowRegRun, "\\\\SERVER\\share\\x.exe");
  EXPECT_TRUE(
      told("The short path of the selected file cannot be obtained.\r\n\r\n"
           "The likely cause of this error: \r\n"));
}

TEST_F(RunOnce, TheSelectedEntryIsTold) {
  window().cmdShowRegRun.press();
  select(window().lstViewAppsLaunched, {"TaskMonitor=C:\\WINDOWS\\taskmon.exe"});
  EXPECT_EQ("C:\\WINDOWS\\taskmon.exe", window().txtCommand.Text.get());
  EXPECT_EQ("HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run",
            window().txtOrigin.Text.get());
  ASSERT_EQ(0, machine->files().replace("C:\\WINDOWS\\SYSTEM\\SysTray.exe", "x"));
  select(window().lstViewAppsLaunched, {"SystemTray=SysTray.Exe"});
  EXPECT_EQ("The file is there: C:\\WINDOWS\\SYSTEM\\SysTray.Exe", window().lblState.Caption.get());
}

TEST_F(RunOnce, AFailureIsToldAndTheLinesStay) {
  window().cmdShowRun_WinIni.press();
  const Items lines = left();
  files.fail(1, platform::ERROR_DISK_FULL);
  off(lines);
  files.fail(0, 0);
  EXPECT_TRUE(told("C:\\HPDJ\\HPSTAT.EXE: 112"));
  EXPECT_EQ(lines, left());
  EXPECT_TRUE(traced("ERROR - frmRunOnce_PopulateRightSide"));
  // What could not be read cannot be changed.
  failingRegistry.fail(1);
  window().cmdShowRegRun.press();
  failingRegistry.fail(0);
  window().cmdShowRegRun.press();
  registry().put(kRun, "SystemTray", "\"other.exe\"");
  off({"SystemTray=SysTray.Exe"});
  EXPECT_TRUE(told("SystemTray: it has been changed or removed meanwhile."));
  EXPECT_EQ("SystemTray=other.exe", left()[0]);
  EXPECT_TRUE(store("HKLM", "Reg_Run").empty());
}

}  // namespace
}  // namespace korvex::dialogs
