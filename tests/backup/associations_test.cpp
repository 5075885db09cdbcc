// Saving and restoring file types where something fails, or somebody has been at the files.
#include "backup/associations.h"

#include <map>
#include <optional>

#include "backup/backup_fixture.h"
#include "platform/common/registry_decorators.h"

namespace korvex::backup {
namespace {

using namespace platform;
using Names = std::vector<std::string>;
using State = std::map<std::string, std::string>;

const Names kTypes{".kva", ".kvb"};

class SavedTypes : public testing::TestWithParam<test::Family> {
 protected:
  SavedTypes() {
    put("HKCR\\.kva", "", "\"kvfile\"");
    put("HKCR\\.kvb", "", "\"kvfile\"");
    put("HKCR\\kvfile\\shell\\open\\command", "", "\"open %1\"");
  }

  void put(const std::string& key, const std::string& name, const std::string& data) {
    run_.view().put(key, name, data);
  }
  void takeOver() {
    put("HKCR\\.kva", "", "\"other\"");
    put("HKCR\\kvfile\\shell\\other\\command", "", "\"other %1\"");
    run_.session.regTool.DeleteRegNodes(HKEY_CLASSES_ROOT, "kvfile\\shell\\open");
    run_.session.regTool.DeleteRegNodes(HKEY_CLASSES_ROOT, ".kvb");
  }
  std::string folder() const { return associationFolder(run_.session); }
  AssociationOutcome save(const Names& types = kTypes) {
    return exportAssociations(run_.session, run_.backer, types, folder(), {});
  }
  std::unique_ptr<RestoreOffer> offer(const Names& types = kTypes) {
    return offerAssociations(run_.session, run_.backer, folder(), types, {});
  }
  State classes() {
    State result;
    run_.view().dump("HKCR", result);
    return result;
  }
  State files(const std::string& below = "") {
    State result;
    for (const std::string& name : run_.names(folder() + below)) {
      if (name.ends_with(".reg") || name.ends_with(".dat")) {
        result[name] = run_.read(folder() + below + '\\' + name);
      }
    }
    return result;
  }

  BackupRun run_{GetParam()};
};

// A type of which one key is missing would be half a backup: it is none.
TEST_P(SavedTypes, ATypeIsSavedWithItsClassOrNotAtAll) {
  put("HKCR\\.kvq", "", "\"kv\"quoted\"");
  put("HKCR\\.kvr", "", "\"KV\"QUOTED\"");
  put("HKCR\\kv\"quoted", "", "\"no editor takes its name\"");
  const AssociationOutcome outcome = save({".kvq", ".kva", ".kvr"});
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ(Names{".kva"}, outcome.saved);
  ASSERT_EQ(2U, outcome.failed.size());
  EXPECT_EQ(".kvr", outcome.failed[1].extension);
  EXPECT_NE(std::string::npos, outcome.failed[1].reason.find("quotation mark"));
  EXPECT_EQ((Names{".kva.reg", "kvfile.reg"}), run_.names(folder()));
}

TEST_P(SavedTypes, AtWhicheverWriteADiskIsFullTheFolderIsAllOldOrAllNew) {
  ASSERT_EQ(0, save().status);
  const State old = files();
  put("HKCR\\.kva", "Added", "dword 1");
  put("HKCR\\.kvb", "", "\"kvnew\"");
  put("HKCR\\kvnew", "", "\"New\"");
  put("HKCR\\kvfile", "Added", "dword 1");
  int failures = 0;
  for (int nth = 1;; ++nth) {
    run_.files.fail(nth, ERROR_DISK_FULL);
    const AssociationOutcome outcome = save();
    const bool failed = run_.files.hasFailed();
    run_.files.fail(0, 0);
    if (outcome.status != 0) {
      ++failures;
      EXPECT_NE("", outcome.message);
      EXPECT_EQ(Names{}, outcome.saved);
      EXPECT_EQ(old, files()) << "after write " << nth;
      continue;
    }
    EXPECT_EQ(kTypes, outcome.saved) << "after write " << nth;
    EXPECT_EQ(4U, files().size());
    EXPECT_NE(old.at(".kva.reg"), files().at(".kva.reg"));
    if (!failed) break;
    for (const auto& [name, bytes] : files()) run_.machine->files().remove(folder() + '\\' + name);
    for (const auto& [name, bytes] : old) run_.write(folder() + '\\' + name, bytes);
  }
  EXPECT_GT(failures, 5);
}

TEST_P(SavedTypes, WhatCannotBeSavedFirstIsNotOverwritten) {
  ASSERT_EQ(0, save().status);
  takeOver();
  ASSERT_EQ(0, offer()->restore({true, true}, {}).status);
  const State before = files("\\Before restore");
  EXPECT_EQ((Names{".kva.reg", "keys.dat", "kvfile.reg"}),
            run_.names(folder() + "\\Before restore"));
  takeOver();
  const State taken = classes();
  const auto made = offer();
  const auto fails = [&](const Progress& progress) {
    const RestoreOutcome outcome = made->restore({true, true}, progress);
    EXPECT_NE(0, outcome.status);
    EXPECT_EQ("", outcome.savedAs);
    EXPECT_EQ(taken, classes());
    EXPECT_EQ(before, files("\\Before restore"));
    return outcome;
  };
  run_.processes.refuse = true;
  EXPECT_TRUE(fails({}).message.starts_with("What would be overwritten could not be saved first."));
  run_.processes.refuse = false;
  EXPECT_TRUE(fails([](int) { return false; }).cancelled);
  // The copy is made, and the editor then refuses.
  const RestoreOutcome half = made->restore({true, true}, [&](int percent) {
    run_.processes.refuse = percent >= 50;
    return true;
  });
  EXPECT_NE(0, half.status);
  EXPECT_EQ(taken, classes());
}

TEST_P(SavedTypes, AtWhicheverCallOfTheRegistryARestoreFailsItIsDoneOrNotDone) {
  ASSERT_EQ(0, save().status);
  const State saved = classes();
  takeOver();
  const State taken = classes();
  int failures = 0;
  for (int nth = 0, last = 1; nth <= last; ++nth) {
    // The first round only counts.
    std::optional<FailingRegistry> registry(std::in_place, run_.machine.registry(), 0, 0);
    ComposedMachine composed(*run_.machine, {.registry = &*registry});
    foundation::Session session(composed, run_.prompts);
    foundation::detectSystem(session);
    registry.emplace(run_.machine.registry(), nth, ERROR_REGISTRY_IO_FAILED);
    RegistryBacker backer(session);
    const auto made = offerAssociations(session, backer, folder(), kTypes, {});
    const bool known = made->items()[0].restorable && made->items()[1].restorable;
    const RestoreOutcome outcome = made->restore({true, true}, {});
    if (nth == 0) last = registry->calls();
    if (outcome.status == 0 && known) {
      EXPECT_EQ(saved, classes()) << "after call " << nth;
      takeOver();
    } else if (outcome.status != 0) {
      ++failures;
      EXPECT_EQ(taken, classes()) << "after call " << nth;
    }
    run_.machine.registry().rollbackChange();
    if (classes() != taken) takeOver();
    ASSERT_EQ(taken, classes()) << "after call " << nth;
  }
  EXPECT_GT(failures, 5);
}

TEST_P(SavedTypes, WhatIsWrongWithItsFilesIsToldWithTheType) {
  ASSERT_EQ(0, save().status);
  takeOver();
  const State taken = classes();
  const std::string head = "REGEDIT4\r\n\r\n[HKEY_CLASSES_ROOT\\";
  const struct {
    const char* file;
    std::string bytes;
    const char* problem;
    bool restorable;
  } cases[]{
      {".kva.reg", "", ".kva.reg", false},
      {".kva.reg", std::string(300, '\0'), ".kva.reg", false},
      {".kva.reg", head + ".kva]\r\n@=\"kvfile\"\r\n\"cut off", ".kva.reg", false},
      {".kva.reg", head + ".kva]\r\n@=\"kvfile\"\r\n\r\n" + head.substr(12) + "CLSID]\r\n",
       "HKEY_CLASSES_ROOT\\CLSID", false},
      {"kvfile.reg", "-", "kvfile.reg: it is not there", true},
  };
  for (const auto& one : cases) {
    const std::string file = folder() + '\\' + one.file;
    const std::string whole = run_.read(file);
    if (one.bytes == "-") {
      run_.machine->files().remove(file);
    } else {
      run_.write(file, one.bytes);
    }
    Names listed;
    for (const FileType& type : savedAssociations(run_.session, folder())) {
      listed.push_back(type.extension);
    }
    EXPECT_EQ(kTypes, listed) << one.bytes;
    const auto made = offer({".kva"});
    const RestoreItem& item = made->items().at(0);
    EXPECT_EQ(one.restorable, item.restorable) << one.bytes;
    ASSERT_FALSE(item.problems.empty()) << one.bytes;
    EXPECT_NE(std::string::npos, item.problems[0].find(one.problem)) << item.problems[0];
    if (!one.restorable) {
      EXPECT_EQ(0, made->restore({true}, {}).status);
      EXPECT_EQ(taken, classes());
    }
    run_.write(file, whole);
  }
  // A type that names a class of which nothing is ever saved does not bring that class.
  put("HKCR\\CLSID\\{1}", "", "\"kept\"");
  run_.write(folder() + "\\.kva.reg", head + ".kva]\r\n@=\"CLSID\"\r\n");
  run_.write(folder() + "\\CLSID.reg", head + "CLSID]\r\n@=\"evil\"\r\n");
  EXPECT_EQ(0, offer({".kva"})->restore({true}, {}).status);
  EXPECT_EQ("\"CLSID\"", run_.view().value("HKCR\\.kva", ""));
  EXPECT_EQ("\"kept\"", run_.view().value("HKCR\\CLSID\\{1}", ""));
}

INSTANTIATE_TEST_SUITE_P(Families, SavedTypes,
                         testing::Values(test::Family::NineX, test::Family::Nt),
                         [](const auto& info) {
                           return info.param == test::Family::Nt ? "OnNt" : "On9x";
                         });

}  // namespace
}  // namespace korvex::backup
