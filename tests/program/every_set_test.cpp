// Every category of configuration on every kind of machine: saved, everything that it covers
// changed, restored, and the machine is as before, to the byte; then the restore is taken back.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "backup/associations.h"
#include "backup/categories.h"
#include "backup/category_files.h"
#include "backup/config_sets.h"
#include "backup/folder_tree.h"
#include "main_window/start_up.h"
#include "platform/text/reg_names.h"
#include "platform/text/text.h"
#include "support/machines.h"
#include "support/real_machines.h"
#include "support/registry_view.h"
#include "support/scripted_prompts.h"

namespace korvex::program {
namespace {

using namespace platform;
using backup::Category;
using test::RealKind;

struct Sample {
  const char* id;
  std::optional<RealKind> real = std::nullopt;  // none: the embedded machine
};
void PrintTo(const Sample& sample, std::ostream* out) { *out << sample.id; }

std::unique_ptr<test::SomeMachine> machineFor(const Sample& sample) {
  if (!sample.real) return std::make_unique<test::TestMachine>(std::string(sample.id));
  return std::make_unique<test::RealMachine>(*sample.real, sample.id);
}

using State = std::map<std::string, std::string>;

class EverySet : public testing::TestWithParam<Sample> {
 protected:
  void SetUp() override {
    main_window::detectReadOnly(session_);
    fill();
    ASSERT_FALSE(HasFailure());
  }

  Files& files() { return machine_.files(); }
  void put(const std::string& path, const std::string& bytes, std::uint32_t attributes = 0) {
    files().createFolder(path.substr(0, path.rfind('\\')));
    files().setAttributes(path, 0);
    ASSERT_EQ(0, files().replace(path, bytes)) << path;
    if (attributes != 0) {
      ASSERT_EQ(0, files().setAttributes(path, attributes)) << path;
    }
  }

  // What a lived-in machine has of every category, the odd cases among it.
  void fill() {
    const std::string windows = session_.g_sWinDir;
    put(windows + "Cursors\\hand.cur", "hand", FILE_ATTRIBUTE_READONLY);
    put(windows + "Other\\hand.cur", "other hand");
    view_.put("HKCU\\Control Panel\\Cursors", "Hand", '"' + windows + "Cursors\\hand.cur\"");
    view_.put("HKCU\\Control Panel\\Cursors", "Arrow", '"' + windows + "Other\\hand.cur\"");
    view_.put("HKCU\\Control Panel\\Cursors", "Gone", "\"C:\\nowhere\\gone.ani\"");
    put(windows + "my wall.bmp", "picture");
    view_.put("HKCU\\Control Panel\\Desktop", "Wallpaper", '"' + windows + "my wall.bmp\"");
    view_.put("HKCU\\Control Panel\\Desktop", "Odd", "binary 00 01 ff");
    put(session_.pd.FavoritesPath + "\\Fr\xC3\xA8re.url", "[InternetShortcut]");
    put(session_.pd.FavoritesPath + "\\Deep\\er\\desktop.ini", "x",
        FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    files().createFolder(session_.pd.FavoritesPath + "\\Empty");
    put("C:\\Netscape\\bookmark.htm", "<!DOCTYPE NETSCAPE-Bookmark-file-1>");
    const std::string navigator = "HKLM\\SOFTWARE\\Netscape\\Netscape Navigator\\Users";
    view_.put(navigator, "CurrentUser", "\"karen\"");
    view_.put(navigator + "\\karen", "DirRoot", "\"C:\\Netscape\"");
    if (session_.g_bNT) {
      put(backup::parentFolder(session_.g_sPhoneBookPath) + "\\work.pbk", "[Work]");
    } else {
      put(windows + "karen.pwl", "secret");
      machine_.initFiles().WritePrivateProfileStringA("Password Lists", "KAREN",
                                                      windows + "karen.pwl", "system.ini");
    }
    // Both a category's first key and one that is empty.
    for (const Category& category : backup::categories()) {
      for (const backup::CategoryKey& row : backup::categoryKeys(session_, category.tag)) {
        if (row.file == "curcolor.reg" || row.file == "prnmru.reg") continue;  // may be missing
        view_.put(pathOf(row), "Test", "\"kept\"");
      }
    }
    view_.put("HKCR\\.kvt", "", "\"kvtfile\"");
    view_.put("HKCR\\kvtfile\\shell\\open\\command", "", "\"open %1\"");
    view_.put("HKCR\\.kvd", "", "\"kvdangling\"");
  }

  static std::string pathOf(const backup::CategoryKey& row) {
    return (row.root == HKEY_CURRENT_USER ? "HKCU\\" : "HKLM\\") + std::string(row.key);
  }

  // Everything but the program's own: registry, files, attributes.
  State state() {
    State result;
    view_.dump("HKCU", result);
    view_.dump("HKLM", result);
    std::erase_if(result, [](const auto& entry) {
      return foldName(entry.first).starts_with("HKLM\\SOFTWARE\\KORVEX");
    });
    std::vector<backup::TreeEntry> entries;
    EXPECT_EQ(0, backup::listTree(files(), "C:", entries));
    for (const backup::TreeEntry& entry : entries) {
      const std::string folded = foldName(entry.path);
      if (folded.starts_with("PROGRAM FILES\\KORVEX")) continue;
      std::string bytes;
      if (!entry.isFolder() && files().read("C:\\" + entry.path, bytes) != 0) continue;
      result["C:\\" + entry.path] = fmt::format("{:02x} {}", entry.attributes & 0x7, bytes);
    }
    // The hives are the registry in another form.
    std::erase_if(result, [](const auto& entry) {
      const std::string name = foldName(entry.first);
      return name.find("SYSTEM32\\CONFIG") != std::string::npos || name.ends_with("NTUSER.DAT") ||
             name.find("KORVEX-BEFORE") != std::string::npos;
    });
    return result;
  }

  // Something of every kind of change in everything that the category covers.
  void change(const Category& category) {
    bool deletes = false;
    for (const backup::CategoryKey& row : backup::categoryKeys(session_, category.tag)) {
      const std::string path = pathOf(row);
      if (deletes && view_.hasKey(path)) {
        EXPECT_EQ(0, session_.regTool.DeleteRegNodes(row.root, row.key)) << path;
      } else {
        view_.put(path, "Test", "dword 7");
        view_.put(path, "Added", "\"new\"");
        view_.put(path + "\\Added\\Deep", "x", "binary 01");
        session_.regTool.DeleteRegValue(row.root, row.key, "Odd");
      }
      deletes = !deletes;
    }
    std::vector<backup::SourceFile> present;
    ASSERT_EQ(0, backup::findFiles(session_, category, present));
    for (std::size_t i = 0; i < present.size(); ++i) {
      if (present[i].isFolder()) continue;
      if (i % 2 == 0) {
        put(present[i].place, "changed", FILE_ATTRIBUTE_HIDDEN);
      } else {
        EXPECT_EQ(0, backup::removeFile(files(), present[i].place)) << present[i].place;
      }
    }
    if (category.copies == backup::FileCopies::Favorites) {
      put(session_.pd.FavoritesPath + "\\New\\more.url", "new", FILE_ATTRIBUTE_READONLY);
      files().removeFolder(session_.pd.FavoritesPath + "\\Empty");
    }
    if (category.copies == backup::FileCopies::DialUp && session_.g_bNT) {
      put(backup::parentFolder(session_.g_sPhoneBookPath) + "\\new.pbk", "new");
    }
    if (category.copies == backup::FileCopies::DialUp && !session_.g_bNT) {
      machine_.initFiles().WritePrivateProfileStringA("Password Lists", "KAREN", "C:\\other.pwl",
                                                      "system.ini");
      machine_.initFiles().WritePrivateProfileStringA("Password Lists", "NEW", "C:\\new.pwl",
                                                      "system.ini");
    }
    if (category.copies == backup::FileCopies::FileTypes) {
      view_.put("HKCR\\.kvt", "", "\"otherfile\"");
      view_.put("HKCR\\.txt\\ShellNew", "Command", "\"taken over\"");
      view_.put("HKCR\\txtfile\\shell\\taken\\command", "", "\"other %1\"");
      session_.regTool.DeleteRegNodes(HKEY_CLASSES_ROOT, "kvtfile");
      view_.put("HKCR\\kvdangling", "", "\"new\"");
    }
  }

  void expectSame(const State& expected, const State& actual) {
    int told = 0;
    for (const auto& [place, content] : expected) {
      const auto found = actual.find(place);
      const std::string now = found == actual.end() ? "(missing)" : found->second;
      if (now != content && ++told < 10)
        ADD_FAILURE() << place << "\nwas " << content << "\nis  " << now;
    }
    for (const auto& [place, content] : actual) {
      if (!expected.contains(place) && ++told < 10)
        ADD_FAILURE() << place << "\nis new: " << content;
    }
  }

  void restoreAll(const std::string& name) {
    backup::ConfigSet set;
    std::string message;
    ASSERT_EQ(0, sets_.find(name, set, message)) << message;
    const auto offer = sets_.offer(set, {});
    for (const backup::RestoreItem& item : offer->items()) {
      EXPECT_TRUE(item.restorable) << item.name;
      for (const std::string& problem : item.problems) ADD_FAILURE() << problem;
    }
    const backup::RestoreOutcome outcome =
        offer->restore(std::vector<bool>(offer->items().size(), true), {});
    ASSERT_EQ(0, outcome.status) << outcome.message;
    // Now there is nothing to do.
    const auto again = sets_.offer(set, {});
    for (const backup::RestoreItem& item : again->items()) {
      EXPECT_EQ(0U, item.changeCount) << item.name << ": " << describe(item.changes.front());
    }
  }

  std::unique_ptr<test::SomeMachine> owned_ = machineFor(GetParam());
  Machine& machine_ = owned_->get();
  test::ScriptedPrompts prompts_;
  foundation::Session session_{machine_, prompts_};
  test::RegistryView view_{machine_.registry()};
  backup::RegistryBacker backer_{session_};
  backup::ConfigSets sets_{session_, backer_};
};

TEST_P(EverySet, RestoringBringsEverythingBackToTheByteAndCanBeTakenBack) {
  const State before = state();
  for (const Category& category : backup::categories()) {
    SCOPED_TRACE(category.tag);
    EXPECT_EQ("", backup::whyNotSaved(session_, category));
    backup::SaveRequest request;
    request.name = fmt::format("Set of {}", category.tag);
    request.tags = {std::string(category.tag)};
    const backup::SaveOutcome saved = sets_.save(request, {});
    ASSERT_EQ(0, saved.status) << saved.message;
    for (const auto& failed : saved.failed)
      ADD_FAILURE() << failed.caption << ": " << failed.reason;

    change(category);
    const State changed = state();
    EXPECT_NE(before, changed);
    restoreAll(request.name);
    expectSame(before, state());

    restoreAll(request.name + " (before restore)");
    expectSame(changed, state());
    restoreAll(request.name + " (before taking back)");
    expectSame(before, state());
    ASSERT_FALSE(HasFatalFailure());
  }
}

INSTANTIATE_TEST_SUITE_P(
    Machines, EverySet,
    testing::Values(Sample{"windows-95"}, Sample{"windows-98"}, Sample{"windows-me"},
                    Sample{"windows-nt4"}, Sample{"windows-2000"}, Sample{"windows-2000-server"},
                    Sample{"windows-98", RealKind::WinePrefix},
                    Sample{"windows-2000", RealKind::WinePrefix},
                    Sample{"windows-nt4", RealKind::WindowsFolder},
                    Sample{"windows-2000", RealKind::WindowsFolder}),
    [](const testing::TestParamInfo<Sample>& info) {
      std::string name = info.param.id;
      std::erase(name, '-');
      if (!info.param.real) return name;
      return name + (*info.param.real == RealKind::WinePrefix ? "AsPrefix" : "AsWindowsFolder");
    });

}  // namespace
}  // namespace korvex::program
