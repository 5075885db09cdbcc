// What happens to sets when something goes wrong, and when somebody made them by hand.
#include "backup/config_sets.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

#include "backup/backup_fixture.h"
#include "backup/categories.h"
#include "backup/folder_tree.h"
#include "backup/set_offer.h"
#include "platform/common/registry_decorators.h"
#include "platform/text/text.h"

namespace korvex::backup {
namespace {

using namespace platform;
using Names = std::vector<std::string>;
using State = std::map<std::string, std::string>;

constexpr const char* kFolder = "C:\\Saves";
constexpr const char* kColors = "HKCU\\Control Panel\\Colors";
constexpr const char* kRecord = "HKLM\\SOFTWARE\\Korvex\\Registry";

class Sets : public testing::Test {
 protected:
  explicit Sets(const std::string& sample = "windows-98") : run_(sample) {}

  void SetUp() override {
    run_.view().put(kColors, "Window", "\"1 2 3\"");
    run_.view().put("HKCU\\Control Panel\\Cursors", "Hand", "\"C:\\WINDOWS\\CURSORS\\hand.cur\"");
    run_.write("C:\\WINDOWS\\CURSORS\\hand.cur", "hand");
    run_.write("C:\\WINDOWS\\CURSORS\\wait.ani", "wait");
    run_.view().put("HKCU\\Control Panel\\Cursors", "Wait", "\"%windir%\\CURSORS\\wait.ani\"");
  }

  SaveRequest request(const std::string& name, Names tags = {"ColorConfig", "CursorConfig"}) {
    return {name, kFolder, std::move(tags), {}};
  }
  SaveOutcome save(const std::string& name = "Work") { return sets_.save(request(name), {}); }
  ConfigSet find(const std::string& name = "Work") {
    ConfigSet set;
    std::string message;
    EXPECT_EQ(0, sets_.find(name, set, message)) << message;
    return set;
  }
  // Every file below the folder of sets, and every record of them.
  State stored() {
    State result;
    std::vector<TreeEntry> entries;
    EXPECT_EQ(0, listTree(run_.machine->files(), kFolder, entries));
    for (const TreeEntry& entry : entries) {
      result[entry.path] =
          entry.isFolder() ? "" : run_.read(std::string(kFolder) + '\\' + entry.path);
    }
    if (run_.view().hasKey(kRecord)) run_.view().dump(kRecord, result);
    return result;
  }
  State colorsAndCursors() {
    State result;
    run_.view().dump("HKCU\\Control Panel", result);
    for (const std::string& name : run_.names("C:\\WINDOWS\\CURSORS")) {
      result[name] = run_.read("C:\\WINDOWS\\CURSORS\\" + name);
    }
    return result;
  }
  std::string problemsOf(const ConfigSet& set) {
    std::string all;
    const auto offer = sets_.offer(set, {});
    for (const RestoreItem& item : offer->items()) {
      for (const std::string& problem : item.problems) {
        all += fmt::format("{}{}: {}\n", item.restorable ? "" : "NOT ", item.name, problem);
      }
    }
    return all;
  }
  RestoreOutcome restore(const ConfigSet& set, const Progress& progress = {}) {
    const auto offer = sets_.offer(set, {});
    return offer->restore(std::vector<bool>(offer->items().size(), true), progress);
  }

  BackupRun run_;
  ConfigSets sets_{run_.session, run_.backer};
};

TEST_F(Sets, ASaveIsAFolderARecordAndAProfileThatSaysTheSame) {
  ASSERT_EQ(0, save().status);
  std::set<std::string> names;
  for (const std::string& name : run_.names("C:\\Saves\\Work")) names.insert(name);
  names.erase("curcolor.reg");  // not every Windows has a current scheme
  EXPECT_EQ((std::set<std::string>{"appear.reg", "colors.reg", "contents.dat", "cuscolor.reg",
                                   "Cursor", "cursors.reg", "profile.kvx"}),
            names);
  const ConfigSet fromRecord = find("work");
  const ConfigSet fromProfile = find("C:\\Saves\\Work\\profile.kvx");
  EXPECT_EQ("C:\\Saves\\Work", fromRecord.folder);
  EXPECT_EQ(fromRecord.tags, fromProfile.tags);
  EXPECT_EQ(fromRecord.entries.size(), fromProfile.entries.size());
  EXPECT_EQ((Names{"APPSTART.ANI", "hand.cur", "wait.ani"}), run_.names("C:\\Saves\\Work\\Cursor"));
  EXPECT_EQ("", problemsOf(fromRecord));
  EXPECT_EQ(Names{"Work"}, savedSets(run_.session));

  // Without any category there is the record alone.
  ASSERT_EQ(0, sets_.save(request("Nothing", {}), {}).status);
  EXPECT_EQ((Names{"contents.dat", "profile.kvx"}), run_.names("C:\\Saves\\Nothing"));
}

TEST_F(Sets, SavingAgainReplacesTheSetAndKeepsWhatPeoplePutThere) {
  ASSERT_EQ(0, save().status);
  run_.write("C:\\Saves\\Work\\notes\\read me.txt", "mine");
  run_.machine->files().remove("C:\\WINDOWS\\CURSORS\\wait.ani");
  run_.view().put(kColors, "Window", "\"9 9 9\"");
  ASSERT_EQ(0, save().status);
  EXPECT_EQ((Names{"APPSTART.ANI", "hand.cur"}), run_.names("C:\\Saves\\Work\\Cursor"));
  EXPECT_EQ("mine", run_.read("C:\\Saves\\Work\\notes\\read me.txt"));
  EXPECT_EQ(Names{"Work"}, run_.names(kFolder));
  EXPECT_EQ("", problemsOf(find()));
  // A folder of somebody else's is none to save into.
  run_.write("C:\\Saves\\Photos\\holiday.jpg", "picture");
  const SaveOutcome refused = save("Photos");
  EXPECT_EQ(ERROR_ALREADY_EXISTS, refused.status);
  EXPECT_EQ(Names{"holiday.jpg"}, run_.names("C:\\Saves\\Photos"));
}

TEST_F(Sets, AtWhicheverWriteASaveFailsTheOldSetStaysOrTheNewOneIsThere) {
  ASSERT_EQ(0, save().status);
  const State before = stored();
  run_.view().put(kColors, "Window", "\"9 9 9\"");
  for (const Status status : {ERROR_DISK_FULL, ERROR_ACCESS_DENIED}) {
    bool done = false;
    int failures = 0;
    for (int nth = 1; !done; ++nth) {
      run_.files.fail(nth, status);
      const SaveOutcome outcome = save();
      done = !run_.files.hasFailed();
      run_.files.fail(0, 0);
      if (outcome.status == 0) {
        EXPECT_EQ("", problemsOf(find())) << "after write " << nth;
        ASSERT_EQ(0, sets_.erase(find(), false).status);
        run_.view().put(kColors, "Window", "\"1 2 3\"");
        ASSERT_EQ(0, save().status);
        continue;
      }
      ++failures;
      EXPECT_NE("", outcome.message);
      State now = stored();
      EXPECT_EQ("", problemsOf(find())) << "after write " << nth;
      // A leftover that could not be deleted is not the set's: the next save clears it away.
      std::erase_if(now, [](const auto& one) {
        return one.first.find(".kvx") != std::string::npos &&
               one.first.find("profile.kvx") == std::string::npos;
      });
      EXPECT_EQ(before.size(), now.size()) << "after write " << nth;
    }
    EXPECT_GT(failures, 5);
  }
}

TEST_F(Sets, AtWhicheverWriteARestoreFailsNothingIsChanged) {
  ASSERT_EQ(0, save().status);
  run_.view().put(kColors, "Window", "\"9 9 9\"");
  run_.view().put(kColors, "Added", "\"x\"");
  run_.write("C:\\WINDOWS\\CURSORS\\hand.cur", "changed");
  run_.machine->files().remove("C:\\WINDOWS\\CURSORS\\wait.ani");
  const State before = colorsAndCursors();
  int failures = 0;
  for (int nth = 1;; ++nth) {
    run_.files.fail(nth, ERROR_DISK_FULL);
    const RestoreOutcome outcome = restore(find());
    const bool failed = run_.files.hasFailed();
    run_.files.fail(0, 0);
    if (outcome.status == 0) {
      EXPECT_EQ("hand", run_.read("C:\\WINDOWS\\CURSORS\\hand.cur"));
      EXPECT_EQ("delete", run_.view().value(kColors, "Added"));
      if (!failed) break;
      ASSERT_EQ(0, restore(find("Work (before restore)")).status);
      continue;
    }
    ++failures;
    EXPECT_EQ(before, colorsAndCursors()) << "after write " << nth;
  }
  EXPECT_GT(failures, 5);
}

// The disk is full when the registry is to be written: what was committed is taken back.
TEST_F(Sets, AtWhicheverCallOfTheRegistryARestoreFailsItIsDoneOrNotDone) {
  ASSERT_EQ(0, save().status);
  run_.write("C:\\WINDOWS\\CURSORS\\hand.cur", "changed");
  run_.view().put(kColors, "Window", "\"9 9 9\"");
  run_.view().put(kColors, "Added\\Key", "\"x\"");
  const State changed = colorsAndCursors();
  int calls = 0;
  int failures = 0;
  // The first round counts; then some from everywhere, and the last ones: commit and flush.
  for (int nth = 0; nth <= calls;
       nth += nth == 0 || nth > calls - 5 ? 1 : std::min(calls / 12, calls - 4 - nth)) {
    FailingRegistry registry(run_.machine.registry(), nth, ERROR_REGISTRY_IO_FAILED);
    ComposedMachine composed(*run_.machine, {.registry = &registry});
    foundation::Session session(composed, run_.prompts);
    session.g_bNT = run_.session.g_bNT;
    session.g_sWinDir = run_.session.g_sWinDir;
    RegistryBacker backer(session);
    ConfigSets sets(session, backer);
    ConfigSet set;
    std::string message;
    RestoreOutcome outcome;
    if (sets.find("C:\\Saves\\Work", set, message) != 0) continue;
    const auto offer = sets.offer(set, {});
    bool whole = true;
    for (const RestoreItem& item : offer->items()) whole = whole && item.restorable;
    outcome = offer->restore({true, true}, {});
    if (nth == 0) calls = registry.calls();
    if (outcome.status != 0) {
      ++failures;
      EXPECT_EQ(changed, colorsAndCursors()) << "call " << nth << ": " << outcome.message;
    } else if (whole) {
      EXPECT_EQ("hand", run_.read("C:\\WINDOWS\\CURSORS\\hand.cur")) << "call " << nth;
    }
    run_.machine.registry().rollbackChange();
    if (colorsAndCursors() == changed) continue;
    ASSERT_EQ(0, restore(find("Work (before restore)")).status) << "call " << nth;
    ASSERT_EQ(changed, colorsAndCursors()) << "call " << nth;
  }
  EXPECT_GT(failures, 5);
}

TEST_F(Sets, CancellingLeavesNothingBehind) {
  ASSERT_EQ(0, save().status);
  const State before = stored();
  for (int calls = 1; calls <= 4; ++calls) {
    int left = calls;
    const SaveOutcome outcome = sets_.save(request("Other"), [&](int) { return --left > 0; });
    EXPECT_TRUE(outcome.cancelled) << calls;
    EXPECT_EQ(before, stored()) << calls;
  }
  run_.view().put(kColors, "Window", "\"9 9 9\"");
  const State changed = colorsAndCursors();
  for (int calls = 1; calls <= 8; ++calls) {
    int left = calls;
    const RestoreOutcome outcome = restore(find(), [&](int) { return --left > 0; });
    if (outcome.status == 0) break;
    EXPECT_TRUE(outcome.cancelled) << calls;
    EXPECT_EQ(changed, colorsAndCursors()) << calls;
  }
}

TEST_F(Sets, MissingAndDamagedFilesKeepTheirWholeCategoryFromBeingRestored) {
  ASSERT_EQ(0, save().status);
  run_.view().put(kColors, "Window", "\"9 9 9\"");
  run_.view().put("HKCU\\Control Panel\\Cursors", "Hand", "\"\"");
  const std::string good = run_.read("C:\\Saves\\Work\\colors.reg");
  run_.write("C:\\Saves\\Work\\colors.reg", good.substr(0, good.size() / 2));
  EXPECT_EQ("NOT ColorConfig: colors.reg: it is not what was saved.\n", problemsOf(find()));
  run_.machine->files().remove("C:\\Saves\\Work\\colors.reg");
  EXPECT_EQ("NOT ColorConfig: colors.reg: it is missing.\n", problemsOf(find()));
  ASSERT_EQ(0, restore(find()).status);
  EXPECT_EQ("\"9 9 9\"", run_.view().value(kColors, "Window"));
  EXPECT_EQ("\"C:\\WINDOWS\\CURSORS\\hand.cur\"",
            run_.view().value("HKCU\\Control Panel\\Cursors", "Hand"));
  // The folder is gone: the record alone can be erased.
  const ConfigSet set = find();
  ASSERT_EQ(0, removeTree(run_.machine->files(), "C:\\Saves\\Work"));
  EXPECT_FALSE(sets_.isAvailable(set));
  EXPECT_EQ(0, sets_.erase(set, true).status);
  EXPECT_EQ(Names{"Work (before restore)"}, savedSets(run_.session));
}

TEST_F(Sets, ErasingTakesTheSetsOwnFilesAndNoOthers) {
  ASSERT_EQ(0, save().status);
  run_.write("C:\\Saves\\Work\\notes.txt", "mine");
  EXPECT_TRUE(sets_.erase(find(), false).foreignFilesStay);
  EXPECT_EQ((Names{"Cursor", "notes.txt"}), run_.names("C:\\Saves\\Work"));
  EXPECT_EQ(Names{}, savedSets(run_.session));
  // A record that names a folder of Windows does not make that a set.
  ConfigSet hostile;
  hostile.name = "Hostile";
  hostile.folder = "C:\\WINDOWS";
  hostile.tags = {"CursorConfig"};
  hostile.contents = "1|0000000000000001";
  ASSERT_EQ(0, writeRecord(run_.session, hostile));
  ASSERT_EQ(0, sets_.erase(find("Hostile"), false).status);
  EXPECT_TRUE(run_.machine->files().exists("C:\\WINDOWS\\WIN.INI"));
}

// One profile.kvx by hand, with one line of its list of files.
class HandMade : public Sets {
 protected:
  // A profile.kvx, with the list beside it that it vouches for.
  void putProfile(const std::string& name, const std::string& line, const std::string& more = "") {
    const std::string contents = measured("contents.dat", "[Files]\r\n" + line + "\r\n");
    run_.write(
        "C:\\Bad\\profile.kvx",
        fmt::format("REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvex\\Registry\\{}]\r\n"
                    "\"Path\"=\"C:\\\\WINDOWS\"\r\n\"Contents\"=\"{}\"\r\n"
                    "\"CursorConfig\"=dword:1\r\n\"DesktopConfig\"=dword:1\r\n"
                    "\"DUNConfig\"=dword:1\r\n\"IEFavConfig\"=dword:1\r\n"
                    "\"FAConfig\"=dword:1\r\n{}",
                    name, contents, more));
  }
  // Size and checksum of the bytes, as a record has them.
  std::string measured(const std::string& file, const std::string& bytes) {
    run_.write("C:\\Bad\\" + file, bytes);
    std::uint64_t size = 0;
    std::uint64_t checksum = 0;
    EXPECT_EQ(0, measure(run_.machine->files(), "C:\\Bad\\" + file, size, checksum));
    return fmt::format("{}|{:016x}", size, checksum);
  }
};

TEST_F(HandMade, ProfilesThatLeadElsewhereAreNoProfiles) {
  const auto expectNone = [&](const std::string& what) {
    ConfigSet set;
    std::string message;
    EXPECT_EQ(ERROR_INVALID_DATA, sets_.find("C:\\Bad\\profile.kvx", set, message)) << what;
    EXPECT_NE("", message);
  };
  const std::string start = "F|CursorConfig|4|0000000000000000|";
  const std::string good = start + "Cursor\\a.cur|C:\\WINDOWS\\CURSORS\\a.cur";
  for (const char* const file : {"..\\..\\WINDOWS\\WIN.INI", "C:\\WINDOWS\\WIN.INI",
                                 "\\\\server\\share", "Cursor\\NUL.cur", "Cursor\\\\a.cur", ""}) {
    putProfile("x", start + file + "|C:\\WINDOWS\\CURSORS\\a.cur");
    expectNone(file);
  }
  for (const char* const line :
       {"F|NoSuchConfig|4|0|Cursor\\a.cur|C:\\a.cur", "X|CursorConfig|4|0|Cursor\\a.cur|C:\\a.cur",
        "F|CursorConfig|-4|0|Cursor\\a.cur|C:\\a.cur", "F|CursorConfig"}) {
    putProfile("x", line);
    expectNone(line);
  }
  for (const char* const name : {"..", "a\\b", "a:b", ""}) {
    putProfile(name, good);
    expectNone(name);
  }
  putProfile("x", good,
             "\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run]\r\n"
             "\"bad\"=\"bad.exe\"\r\n");
  expectNone("a key of Windows");
  putProfile("x", good, "\r\n[-HKEY_LOCAL_MACHINE\\SOFTWARE]\r\n");
  expectNone("a key of Windows to be deleted");
  putProfile("x", good);
  run_.write("C:\\Bad\\contents.dat", "[Files]\r\n" + good + "\r\n" + good + "\r\n");
  expectNone("another list");
  run_.write("C:\\Bad\\profile.kvx", "MZ");
  expectNone("a program");

  putProfile("x", good);
  EXPECT_EQ("C:\\Bad", find("C:\\Bad").folder) << "the path in a profile is not believed";
}

TEST_F(HandMade, AFileGoesOnlyWhereItsCategoryHasFiles) {
  struct Case {
    const char* file;
    const char* tag;
    const char* place;
    const char* target;  // must stay as it is
  };
  const std::vector<Case> cases{
      {"Cursor\\a.cur", "CursorConfig", "C:\\WINDOWS\\WIN.INI", "C:\\WINDOWS\\WIN.INI"},
      {"Cursor\\a.exe", "CursorConfig", "C:\\WINDOWS\\a.exe", "C:\\WINDOWS\\a.exe"},
      {"a.cur", "CursorConfig", "C:\\WINDOWS\\a.cur", "C:\\WINDOWS\\a.cur"},
      {"Cursor\\b.cur", "CursorConfig", "Q:\\b.cur", "Q:\\b.cur"},
      {"Wallpaper\\w.bmp", "DesktopConfig", "C:\\AUTOEXEC.BAT", "C:\\AUTOEXEC.BAT"},
      {"p.pbk", "DUNConfig", "C:\\WINDOWS\\p.pbk", "C:\\WINDOWS\\p.pbk"},
      {"Wallpaper\\x.bmp", "CursorConfig", "C:\\WINDOWS\\x.bmp", "C:\\WINDOWS\\x.bmp"}};
  for (const Case& one : cases) {
    std::string before;
    run_.machine->files().read(one.target, before);
    putProfile("Bad", fmt::format("F|{}|{}|{}|{}", one.tag, measured(one.file, "evil"), one.file,
                                  one.place));
    const ConfigSet set = find("C:\\Bad\\profile.kvx");
    EXPECT_NE("", problemsOf(set)) << one.file;
    restore(set);
    std::string after;
    run_.machine->files().read(one.target, after);
    EXPECT_EQ(before, after) << one.file << " to " << one.place;
  }
}

TEST_F(HandMade, AKeyGoesOnlyWhereItsCategoryHasKeys) {
  const std::string run = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
  const auto reg = [](const std::string& key) {
    return "REGEDIT4\r\n\r\n[" + key + "]\r\n\"bad\"=\"bad.exe\"\r\n";
  };
  struct Case {
    std::string file, tag, place, text;
  };
  const std::string cursors = "HKEY_CURRENT_USER\\Control Panel\\Cursors";
  const std::vector<Case> cases{
      {"cursors.reg", "CursorConfig", run, reg(run)},
      {"cursors.reg", "CursorConfig", cursors,
       reg(cursors) + "\r\n[" + run + "]\r\n\"bad\"=\"x\"\r\n"},
      {"cursors.reg", "CursorConfig", cursors,
       "REGEDIT4\r\n\r\n[-HKEY_CURRENT_USER\\Control Panel]\r\n"},
      {"other.reg", "CursorConfig", cursors, reg(cursors)},
      {"FA\\.txt.reg", "FAConfig", "HKEY_CLASSES_ROOT\\.txt", reg(run)},
      {"FA\\exe.reg", "FAConfig", "HKEY_CLASSES_ROOT\\exefile\\shell",
       reg("HKEY_CLASSES_ROOT\\exefile\\shell")},
      {"FA\\x.reg", "FAConfig", "HKEY_LOCAL_MACHINE\\x", reg("HKEY_LOCAL_MACHINE\\x")}};
  const State before = colorsAndCursors();
  for (const Case& one : cases) {
    putProfile("Bad", fmt::format("K|{}|{}|{}|{}", one.tag, measured(one.file, one.text), one.file,
                                  one.place));
    const ConfigSet set = find("C:\\Bad\\profile.kvx");
    EXPECT_NE("", problemsOf(set)) << one.place;
    restore(set);
    EXPECT_EQ("delete",
              run_.view().value("HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run", "bad"));
  }
  EXPECT_EQ(before, colorsAndCursors());
}

// The folder goes along to another machine; what that one keeps elsewhere is named.
TEST_F(Sets, ASetOfAnotherWindowsIsRestoredAsFarAsItFits) {
  const Names tags{"ColorConfig", "CursorConfig", "ShareConfig"};
  run_.view().put("HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Network\\LanMan\\C", "Path",
                  "\"C:\\\"");
  ASSERT_EQ(0, sets_.save(request("Work", tags), {}).status);
  BackupRun other("windows-2000");
  std::vector<TreeEntry> entries;
  ASSERT_EQ(0, listTree(run_.machine->files(), "C:\\Saves\\Work", entries));
  for (const TreeEntry& entry : entries) {
    if (!entry.isFolder())
      other.write("C:\\From 98\\" + entry.path, run_.read("C:\\Saves\\Work\\" + entry.path));
  }
  ConfigSets sets(other.session, other.backer);
  ConfigSet set;
  std::string message;
  ASSERT_EQ(0, sets.find("C:\\From 98\\profile.kvx", set, message)) << message;
  const auto offer = sets.offer(set, {});
  ASSERT_EQ(3U, offer->items().size());
  EXPECT_EQ(0U, offer->items()[0].problems.size());
  EXPECT_NE(std::string::npos,
            offer->items()[1].problems.at(0).find("C:\\WINDOWS\\CURSORS is not on this machine"));
  EXPECT_FALSE(offer->items()[2].restorable);
  EXPECT_NE(std::string::npos, offer->items()[2].problems.at(0).find("LanmanServer"));
  ASSERT_EQ(0, offer->restore({true, true, true}, {}).status);
  EXPECT_EQ("\"1 2 3\"", other.view().value(kColors, "Window"));
}

// More files than a key of Windows 98 could list.
TEST_F(Sets, HundredsOfFavoritesAreSavedAndComeBack) {
  const std::string folder = run_.session.pd.FavoritesPath + "\\Many";
  ASSERT_EQ(0, run_.machine->files().createFolder(folder));
  for (int i = 0; i < 650; ++i) {
    const std::string file =
        fmt::format("{}\\A page with quite a long name, number {}.url", folder, i);
    ASSERT_EQ(0, run_.machine->files().replace(file, "[InternetShortcut]"));
  }
  const SaveOutcome saved = sets_.save(request("Many", {"IEFavConfig"}), {});
  ASSERT_EQ(0, saved.status) << saved.message;
  ASSERT_EQ(0, removeTree(run_.machine->files(), folder));
  ASSERT_EQ(0, restore(find("Many")).status);
  EXPECT_EQ(650U, run_.names(folder).size());
}

TEST_F(Sets, NamesOfSetsAreNamesOfFolders) {
  for (const char* name : {"", "a\\b", "a:b", "..", ".", "x.", "x ", " x", "con", "LPT1.txt", "a*",
                           "a\tb", "x.kvxnew"}) {
    EXPECT_NE("", whyNoSetName(name)) << name;
    EXPECT_EQ(ERROR_INVALID_NAME, save(name).status) << name;
  }
  EXPECT_EQ("", whyNoSetName("Before the \xC3\x9C"
                             "bung, v2.1 (100%)"));
  EXPECT_EQ(0, save("Before the \xC3\x9C"
                    "bung, v2.1 (100%)")
                   .status);
}

}  // namespace
}  // namespace korvex::backup
