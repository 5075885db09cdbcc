// Startup programs beneath their window: every move is whole, also after a kill, and comes back to
// the byte.
#include "dialogs/shell/startup_apps.h"

#include <unistd.h>

#include <fstream>
#include <sstream>

#include "dialogs/failing_machine.h"
#include "dialogs/shell/program_line.h"
#include "dialogs/shell/shell_link.h"
#include "dialogs/shell/startup_program.h"
#include "engine/at_once.h"
#include "platform/common/files_decorators.h"
#include "support/child_process.h"

namespace korvex::dialogs {
namespace {

using Texts = std::vector<std::string>;

TEST(ProgramLine, CutsAsWindowsDoesAndKeepsTheRest) {
  EXPECT_EQ((Texts{"A.EXE", "\"C:\\B C\\D.EXE\" /s -x", "E.EXE", "/f"}),
            ProgramLine("A.EXE, \"C:\\B C\\D.EXE\" /s -x  E.EXE,/f").programs());
  EXPECT_EQ((Texts{"A.EXE"}), ProgramLine(",\"\" A.EXE \"C:\\never ended B.EXE").programs());
  const std::string many = std::string(3000, 'x') + ".exe";
  EXPECT_EQ((Texts{"A", many}), ProgramLine("A " + many).programs());
  struct Case {
    const char *before, *removed, *after;
  };
  for (const Case& one :
       {Case{"A, B  C", "B", "A, C"}, Case{"A, B  C", "A", "B  C"}, Case{"A, B  C", "C", "A, B"},
        Case{"A", "A", ""}, Case{"A B \"C D", "B", "A \"C D"}, Case{"B AB B", "AB", "B B"}}) {
    ProgramLine line(one.before);
    EXPECT_TRUE(line.remove(one.removed));
    EXPECT_EQ(one.after, line.text());
    EXPECT_FALSE(ProgramLine(one.before).remove("Z"));
  }
  ProgramLine open("A \"C:\\B");
  open.add("N");
  EXPECT_EQ((Texts{"N", "A"}), open.programs()) << open.text();
}

TEST(ShellLink, LeadsToItsTargetAndRefusesAnythingElse) {
  const ShellLink link{"C:\\Program Files\\Clock\\c.exe", "C:\\PROGRA~1\\CLOCK\\C.EXE", 70000};
  const std::string bytes = encodeShellLink(link);
  EXPECT_EQ(link.target, targetOfShellLink(bytes));
  for (std::size_t cut = 0; cut < bytes.size() - 27; ++cut) {
    EXPECT_NE(link.target + "x", targetOfShellLink(bytes.substr(0, cut)));
  }
  EXPECT_EQ("", targetOfShellLink(std::string(200, '\xFF')));
  EXPECT_EQ("", targetOfShellLink(""));
}

struct Where {
  StartupArea area;
  std::string name;
};
void PrintTo(const Where& where, std::ostream* out) { *out << where.name; }

const Where kRunLine{StartupArea::WinRun, "C:\\UTIL\\CLIPCAT.EXE"};
const Where kUserFile{StartupArea::StartUp, "Desk Reminder.lnk"};
const Where kCommonFile{StartupArea::StartUp, "Modem Monitor.lnk"};
const Where kRunKey{StartupArea::RegRun, "SB16 Diagnose"};

// The window's model over a machine; entries are found by their names.
struct Model {
  explicit Model(platform::Machine& machine)
      : session(machine, prompts), apps((detect(), session)) {}
  void detect() { foundation::detectSystem(session); }

  std::optional<StartupEntry> find(const Where& where, bool on) {
    StartupLists lists;
    EXPECT_EQ(0, apps.p_EnumReg(where.area, lists));
    for (const StartupEntry& entry : on ? lists.launched : lists.switchedOff) {
      if (entry.name == where.name) return entry;
    }
    return std::nullopt;
  }
  // "on", "off", "deleted"; anything else is not whole.
  std::string state(const Where& where) {
    std::string result = find(where, true) ? "on" : "";
    if (find(where, false)) result += "off";
    const auto deleted = apps.place(where.area).deleted();
    return result + (deleted.empty() ? "" : "deleted");
  }

  test::ScriptedPrompts prompts;
  foundation::Session session;
  StartupApps apps;
};

using Act = std::function<platform::Status()>;
struct Step {
  std::string before, after;  // the entry's state
  // Looks the entry up; the act changes it.
  Act (*prepare)(Model& model, const Where& where);
};

Act prepareOff(Model& model, const Where& where) {
  return [&model, entry = model.find(where, true).value()] { return model.apps.switchOff(entry); };
}
Act prepareOn(Model& model, const Where& where) {
  return [&model, entry = model.find(where, false).value()] {
    return model.apps.switchOn(entry, Replace::No);
  };
}
Act prepareForget(Model& model, const Where& where) {
  return [&model, entry = model.find(where, false).value()] { return model.apps.forget(entry); };
}
Act prepareTakeBack(Model& model, const Where& where) {
  return [&model, area = where.area, item = model.apps.place(where.area).deleted().at(0)] {
    return model.apps.takeBack(area, item);
  };
}
// Each is the way back of another one.
const std::vector<Step> kSteps{{"on", "off", prepareOff},
                               {"off", "deleted", prepareForget},
                               {"deleted", "off", prepareTakeBack},
                               {"off", "on", prepareOn}};

platform::Status undo(Model& model, const Where& where, const Step& done) {
  for (const Step& step : kSteps) {
    if (step.before == done.after && step.after == done.before) {
      return step.prepare(model, where)();
    }
  }
  return -1;
}

std::string textOf(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

// Dies at the n-th write, commit or flush, in front of it or behind it.
class Death {
 public:
  explicit Death(int nth) : nth_(nth) {}
  template <typename Work>
  auto at(Work&& work) {
    if (++calls_ == nth_) ::_exit(1);
    const auto result = work();
    if (++calls_ == nth_) ::_exit(1);
    return result;
  }

 private:
  int nth_;
  int calls_ = 0;
};

struct DyingRegistry : platform::ForwardingRegistry {
  DyingRegistry(platform::Registry& inner, Death& at) : ForwardingRegistry(inner), death(at) {}
  platform::Status commitChange() override {
    return death.at([this] { return ForwardingRegistry::commitChange(); });
  }
  platform::Status flush() override {
    return death.at([this] { return ForwardingRegistry::flush(); });
  }
  Death& death;
};

struct DyingFiles : platform::RecordingFiles {
  using Status = platform::Status;
  DyingFiles(platform::Files& inner, Death& at) : RecordingFiles(inner), death(at) {}
  Status replace(std::string_view path, std::string_view bytes) override {
    return death.at([&] { return RecordingFiles::replace(path, bytes); });
  }
  Status move(std::string_view from, std::string_view to) override {
    return death.at([&] { return RecordingFiles::move(from, to); });
  }
  Status remove(std::string_view path) override {
    return death.at([&] { return RecordingFiles::remove(path); });
  }
  Status createFolder(std::string_view path) override {
    return death.at([&] { return RecordingFiles::createFolder(path); });
  }
  Death& death;
};

class StartupKill : public testing::TestWithParam<Where> {};

// Zero where the step was done without a death.
int dieInStep(test::TestMachine& machine, const Where& where, const Step& step, int nth) {
  machine.close();
  test::ChildProcess child([&] {
    Death death(nth);
    const auto opened = machine.open(platform::OpenMode::ReadWrite);
    DyingRegistry registry(opened->registry(), death);
    DyingFiles files(opened->files(), death);
    platform::ComposedMachine dying(*opened, {.registry = &registry, .files = &files});
    Model model(dying);
    return step.prepare(model, where)() == 0 && registry.flush() == 0 ? 0 : 2;
  });
  const int code = child.wait();
  machine.reopen();
  return code;
}

TEST_P(StartupKill, AtAnyMomentLeavesAnEntryInOnePlace) {
  test::TestMachine machine("windows-95");
  const Where& where = GetParam();
  for (const Step& step : kSteps) {
    int nth = 1;
    for (int code = 1; code != 0; ++nth) {
      code = dieInStep(machine, where, step, nth);
      ASSERT_TRUE(code == 0 || code == 1) << step.after << ' ' << nth << ": " << code;
      Model model(machine.get());
      model.apps.tidyUp();
      EXPECT_FALSE(model.apps.interrupted());
      const std::string now = model.state(where);
      ASSERT_TRUE(now == step.before || now == step.after) << step.after << ' ' << nth << now;
      EXPECT_TRUE(code == 1 || now == step.after);
      // The next death comes one step further on, from the same state.
      if (code == 1 && now == step.after) {
        ASSERT_EQ(0, undo(model, where, step));
      }
    }
    EXPECT_GT(nth, 4);
  }
}

// The n-th registry call or file write fails: all is as before, and the next try works.
TEST_P(StartupKill, AndAFailureOfAnyStepTakesBackWhatWasDone) {
  test::TestMachine machine("windows-95");
  const auto ini = [&] { return textOf(machine.driveC() / "WINDOWS" / "WIN.INI"); };
  ArmedRegistry registry(machine.registry());
  test::FailingFiles files(machine->files());
  platform::ComposedMachine composed(*machine, {.registry = &registry, .files = &files});
  Model model(composed);
  const Where& where = GetParam();
  for (const Step& step : kSteps) {
    for (const bool ofFiles : {true, false}) {
      for (int nth = 1;; ++nth) {
        ASSERT_LT(nth, 200);
        const std::string text = ini();
        const Act act = step.prepare(model, where);
        ofFiles ? files.fail(nth, platform::ERROR_DISK_FULL) : registry.fail(nth);
        const platform::Status status = act();
        const bool failed = ofFiles ? files.hasFailed() : registry.hasFailed();
        files.fail(0, 0);
        registry.fail(0);
        EXPECT_FALSE(model.apps.interrupted());
        if (status == 0) {
          // Some failures stop nothing: whether a name is taken, say.
          ASSERT_EQ(step.after, model.state(where)) << ofFiles << nth;
          if (!failed) break;
          ASSERT_EQ(0, undo(model, where, step));
        } else {
          ASSERT_EQ(step.before, model.state(where)) << step.after << ofFiles << nth;
          EXPECT_EQ(text, ini());
        }
      }
      if (ofFiles) {
        ASSERT_EQ(0, undo(model, where, step));
      }
    }
  }
}

std::string kindOf(const testing::TestParamInfo<Where>& where) {
  const std::array names{"Key", "Line", "UserFile", "CommonFile"};
  return names.at(where.index);
}
INSTANTIATE_TEST_SUITE_P(Areas, StartupKill,
                         testing::Values(kRunKey, kRunLine, kUserFile, kCommonFile), kindOf);

// ---- What comes back is what went

class StartupValues : public testing::Test {
 public:
  StartupValues() : machine("windows-98"), model(machine.get()) {}
  void put(const std::string& name, const engine::RawValue& value) {
    ASSERT_EQ(0, engine::putRaw(model.session, engine::HKLM, kRun, name, value));
  }
  engine::RawValue live(const std::string& name) {
    engine::RawValue value;
    EXPECT_EQ(0, engine::readRawValue(machine.registry(), engine::HKLM, kRun, name, value));
    return value;
  }
  test::RegistryView registry() { return test::RegistryView(machine.registry()); }
  void setIni(const std::string& text) {
    std::ofstream(machine.driveC() / "WINDOWS" / "WIN.INI", std::ios::binary) << text;
  }
  std::string ini() { return textOf(machine.driveC() / "WINDOWS" / "WIN.INI"); }

  static constexpr const char* kRun = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
  const std::string kStore = "HKLM\\SOFTWARE\\Korvex\\App Manager\\";
  test::TestMachine machine;
  Model model;
};

TEST_F(StartupValues, TypeAndBytesSurviveTheStore) {
  const std::vector<engine::RawValue> values{
      {platform::REG_EXPAND_SZ, std::string("%windir%\\x.exe /%1\0", 18)},
      {platform::REG_SZ, std::string("a.exe\0b\0", 8)},
      {platform::REG_SZ, "no end"},
      {platform::REG_DWORD, std::string("\1\0\0\0", 4)},
      {platform::REG_BINARY, std::string("\0\xff", 2)},
      {platform::REG_SZ, ""}};
  for (const engine::RawValue& value : values) {
    put("Odd", value);
    const Where where{StartupArea::RegRun, "Odd"};
    ASSERT_EQ(0, prepareOff(model, where)());
    EXPECT_EQ('"' + shownText(value) + '"', registry().value(kStore + "Reg_Run", "Odd"))
        << "readable, and a REG_SZ";
    ASSERT_EQ(0, prepareForget(model, where)());
    ASSERT_EQ(0, prepareTakeBack(model, where)());
    ASSERT_EQ(0, prepareOn(model, where)());
    EXPECT_TRUE(sameValue(value, live("Odd"))) << shownText(value);
    EXPECT_TRUE(registry().values(kStore + "Reg_Run").empty());
    EXPECT_TRUE(registry().values(kStore + "Reg_Run\\Original").empty());
  }
}

TEST_F(StartupValues, WhatSomebodyElsePutInItsPlaceIsNeverLost) {
  const Where where{StartupArea::RegRun, "TaskMonitor"};
  ASSERT_EQ(0, prepareOff(model, where)());
  put("TaskMonitor", textValue("other.exe"));
  EXPECT_EQ(platform::ERROR_ALREADY_EXISTS, prepareOn(model, where)());
  EXPECT_EQ("onoff", model.state(where));
  // Switched off once more: the older record is kept.
  ASSERT_EQ(0, prepareOff(model, where)());
  EXPECT_EQ("\"other.exe\"", registry().value(kStore + "Reg_Run", "TaskMonitor"));
  EXPECT_EQ(1U, model.apps.place(where.area).deleted().size());
  put("TaskMonitor", textValue("third.exe"));
  const StartupEntry record = model.find(where, false).value();
  ASSERT_EQ(0, model.apps.switchOn(record, Replace::Yes));
  EXPECT_EQ("other.exe", shownText(live("TaskMonitor")));
  EXPECT_EQ(2U, model.apps.place(where.area).deleted().size());
  // What was listed is not there any more.
  EXPECT_EQ(platform::ERROR_FILE_NOT_FOUND, model.apps.switchOn(record, Replace::Yes));
  const StartupEntry listed = model.find(where, true).value();
  put("TaskMonitor", textValue("fourth.exe"));
  EXPECT_EQ(platform::ERROR_FILE_NOT_FOUND, model.apps.switchOff(listed));
}

TEST_F(StartupValues, ALineOfWinIniComesBackToTheByte) {
  const std::string rest = "NullPort=None\r\n; run=no\r\n[fonts]\r\nrun=x.exe\r\n";
  const std::string quoted = "\"C:\\Program Files\\A, B.exe\"";
  setIni("[WINDOWS]\r\nLoad = A.EXE,B.EXE  \"C:\\no end\r\nrun=" + quoted + "\r\n" + rest);
  const std::string before = ini();
  const Where where{StartupArea::WinRun, "C:\\Program Files\\A, B.exe"};
  ASSERT_EQ(0, prepareOff(model, where)());
  EXPECT_EQ(before.substr(0, before.find(quoted)) + "\r\n" + rest, ini());
  EXPECT_EQ('"' + quoted + '"', registry().value(kStore + "Win_Run", where.name));
  ASSERT_EQ(0, prepareOn(model, where)());
  EXPECT_EQ(before, ini());
  ASSERT_EQ(0, prepareOff(model, {StartupArea::WinLoad, "A.EXE"})());
  EXPECT_EQ(0U, ini().find("[WINDOWS]\r\nLoad = B.EXE  \"C:\\no end\r\n")) << ini();
  // The same program twice is two records.
  setIni("[windows]\r\nrun=A.EXE A.EXE\r\n");
  const Where twice{StartupArea::WinRun, "A.EXE"};
  ASSERT_EQ(0, prepareOff(model, twice)());
  ASSERT_EQ(0, prepareOff(model, twice)());
  EXPECT_EQ("[windows]\r\nrun=\r\n", ini());
  EXPECT_EQ(2U, registry().values(kStore + "Win_Run").size());
}

TEST(StartupLineOfNt, IsWhereTheRegistrySaysItIs) {
  test::TestMachine machine("windows-nt4");
  const test::RegistryView registry(machine.registry());
  const Where where{StartupArea::WinLoad, "C:\\DWTOOLS\\PLOTQ.EXE"};
  const std::string key = "HKCU\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows";
  Model file(machine.get());
  EXPECT_EQ("C:\\WINNT\\WIN.INI, load=", file.find(where, true).value().origin);
  registry.put(
      "HKLM\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\IniFileMapping\\win.ini\\Windows",
      "load", "\"#USR:Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows\"");
  const std::string ini = textOf(machine.driveC() / "WINNT" / "win.ini");
  Model model(machine.get());
  EXPECT_EQ(0U, model.find(where, true).value().origin.find("HKEY_CURRENT_USER\\"));
  ASSERT_EQ(0, prepareOff(model, where)());
  EXPECT_EQ("\"\"", registry.value(key, "load"));
  ASSERT_EQ(0, prepareOn(model, where)());
  EXPECT_EQ("\"C:\\DWTOOLS\\PLOTQ.EXE\"", registry.value(key, "load"));
  EXPECT_EQ(ini, textOf(machine.driveC() / "WINNT" / "win.ini"));
}

// ---- Files

TEST_F(StartupValues, FilesOfOneNameAndOfEarlierVersions) {
  const std::string user = model.session.pd.StartUpPath + "\\";
  const std::string common = model.session.pd.CommStartUpPath + "\\";
  platform::Files& files = machine->files();
  const std::string earlier = "C:\\Program Files\\Korvex...for Power Users v1.2\\Startup";
  ASSERT_EQ(0, files.createFolder(earlier + "\\Backup"));
  ASSERT_EQ(0, files.replace(earlier + "\\Backup\\Old.lnk", "old"));
  ASSERT_EQ(0, files.replace(earlier + "\\Older.lnk", "older"));
  ASSERT_EQ(0, files.replace(user + "Same.lnk", "mine"));
  ASSERT_EQ(0, files.replace(common + "Same.lnk", "all"));
  ASSERT_EQ(0, prepareOff(model, {StartupArea::StartUp, "Same.lnk"})());
  ASSERT_EQ(0, prepareOff(model, {StartupArea::StartUp, "Same.lnk"})());
  EXPECT_EQ("off", model.state({StartupArea::StartUp, "Old.lnk"})) << "listed where it lies";
  EXPECT_TRUE(files.exists(earlier + "\\Older.lnk"));
  model.apps.tidyUp();
  EXPECT_FALSE(files.exists(earlier + "\\Older.lnk"));
  EXPECT_TRUE(files.exists("C:\\Program Files\\Korvex\\Startup\\Backup\\Older.lnk"));
  // Each goes back to the folder that it came from.
  ASSERT_EQ(0, prepareOn(model, {StartupArea::StartUp, "Same.lnk"})());
  ASSERT_EQ(0, prepareOn(model, {StartupArea::StartUp, "Same.lnk"})());
  std::string bytes;
  EXPECT_EQ(0, files.read(user + "Same.lnk", bytes));
  EXPECT_EQ("mine", bytes);
  EXPECT_EQ(0, files.read(common + "Same.lnk", bytes));
  EXPECT_EQ("all", bytes);
  // One of no record goes to the user; another file there is not written over.
  ASSERT_EQ(0, files.replace(user + "Old.lnk", "new"));
  const Where old{StartupArea::StartUp, "Old.lnk"};
  EXPECT_EQ(platform::ERROR_ALREADY_EXISTS, prepareOn(model, old)());
  ASSERT_EQ(0, model.apps.switchOn(model.find(old, false).value(), Replace::Yes));
  EXPECT_EQ(0, files.read(user + "Old.lnk", bytes));
  EXPECT_EQ("old", bytes);
  EXPECT_EQ(0, files.read(model.find(old, false).value().path, bytes));
  EXPECT_EQ("new", bytes);
}

TEST_F(StartupValues, ProgramsAreFoundAsWindowsFindsThem) {
  platform::Files& files = machine->files();
  ASSERT_EQ(0, files.createFolder("C:\\Program Files\\Two Words"));
  ASSERT_EQ(0, files.replace("C:\\Program Files\\Two Words\\a b.exe", "x"));
  ASSERT_EQ(0, files.replace("C:\\WINDOWS\\SYSTEM\\bare.exe", "x"));
  ASSERT_EQ(0, files.replace("C:\\WINDOWS\\plain.bat", "x"));
  const std::string found = "C:\\Program Files\\Two Words\\a b.exe";
  const std::vector<std::pair<std::string, std::string>> cases{
      {"\"" + found + "\" /x", found},
      {found + " /x", found},
      {"C:\\Program Files\\Two Words\\a b -k", found},
      {"bare /s", "C:\\WINDOWS\\SYSTEM\\bare.exe"},
      {"plain", "C:\\WINDOWS\\plain.bat"},
      {"%windir%\\plain.bat", "C:\\WINDOWS\\plain.bat"},
      {"C:\\Program Files\\Gone Away\\x.exe /y", ""},
      {"C:\\WINDOWS", ""}};
  for (const auto& [command, path] : cases) {
    StartupEntry entry;
    entry.command = command;
    const StartupProgram program = programOf(model.session, entry);
    EXPECT_EQ(path, program.path) << command;
    EXPECT_EQ(!path.empty(), program.there) << command;
  }
  StartupEntry gone;
  gone.command = cases[6].first;
  EXPECT_EQ("The file C:\\Program Files\\Gone Away\\x.exe is missing.",
            programOf(model.session, gone).state);
  gone.command = "Q:\\x.exe";
  EXPECT_EQ("This machine has no drive Q:.", programOf(model.session, gone).state);
  gone.command = "\\\\SERVER\\x.exe";
  EXPECT_FALSE(programOf(model.session, gone).there.has_value());
}

}  // namespace
}  // namespace korvex::dialogs
