// frmFA as a person uses it: types chosen, saved, taken over by another program, restored.
#include "dialogs/shell/frm_fa.h"

#include <map>

#include "backup/registry_backer.h"
#include "dialogs/dialog_fixture.h"
#include "dialogs/frm_restore.h"

namespace korvex::dialogs {
namespace {

using namespace platform;
using Names = std::vector<std::string>;
using State = std::map<std::string, std::string>;

class Associations : public DialogTest {
 protected:
  explicit Associations(const std::string& sample = "windows-2000") : DialogTest(sample) {
    book.add(frmFA::kName, [this] { return std::make_unique<frmFA>(session, book, backer, desk); });
    book.add(frmRestore::kName, [this] { return std::make_unique<frmRestore>(session, desk); });
    registry().put("HKCR\\.kva", "", "\"kvfile\"");
    registry().put("HKCR\\.kvb", "", "\"kvfile\"");
    registry().put("HKCR\\kvfile", "", "\"A test\"");
    registry().put("HKCR\\kvfile\\shell\\open\\command", "", "\"open %1\"");
    registry().put("HKCR\\.kvc", "", "\"CLSID\\{00020906-0000-0000-C000-000000000046}\"");
    registry().put("HKCR\\.kvd", "", "\"kvdangling\"");
    registry().put("HKCR\\.kve", "Content Type", "\"x/y\"");
    registry().put("HKCR\\.kvf", "", "\"kv:file/*\"");
    registry().put("HKCR\\kv:file/*", "", "\"Odd\"");
    registry().put("HKCR\\.kvg", "", "\"kv \xC3\xBC=[x]\"");
    registry().put("HKCR\\kv \xC3\xBC=[x]", "", "\"Umlaut\"");
  }

  frmFA& fa() { return dynamic_cast<frmFA&>(book.load(frmFA::kName)); }
  void tick(const Names& extensions) {
    const auto& items = fa().lstFA.items();
    for (std::size_t i = 0; i < items.size(); ++i) {
      const std::string extension = items[i].substr(0, items[i].find(' '));
      fa().lstFA.setChecked(static_cast<int>(i),
                            std::ranges::find(extensions, extension) != extensions.end());
    }
  }
  Names saved() {
    std::vector<FileEntry> entries;
    machine->files().list(session.g_sAppPath + "\\FA\\*", entries);
    Names names;
    for (const auto& entry : entries) names.push_back(entry.name);
    return names;
  }
  State classes() {
    State result;
    registry().dump("HKCR", result);
    return result;
  }
  void takeOver() {
    registry().put("HKCR\\.kva", "", "\"other\"");
    registry().put("HKCR\\kvfile\\shell\\other\\command", "", "\"other %1\"");
    registry().put("HKCR\\kvfile", "Added", "dword 1");
    session.regTool.DeleteRegNodes(HKEY_CLASSES_ROOT, "kvfile\\shell\\open");
    session.regTool.DeleteRegNodes(HKEY_CLASSES_ROOT, ".kvb");
    registry().put("HKCR\\kv \xC3\xBC=[x]", "Added", "dword 1");
  }
  // Shows the saved types and restores those, as far as the window lets one.
  void restore(int source, const Names& extensions) {
    fa().cboShow.ListIndex = source;
    tick(extensions);
    host.use = [](forms::Form& form) {
      auto& window = dynamic_cast<frmRestore&>(form);
      window.cmdRestore.press();
    };
    fa().cmdRestore.press();
    host.use = nullptr;
  }

  backup::RegistryBacker backer{session};
  backup::RestoreDesk desk;
};

class AssociationsOn9x : public Associations {
 protected:
  AssociationsOn9x() : Associations("windows-98") {}
};

TEST_F(Associations, WhatHasNoClassOfItsOwnIsNotOfferedAndGivesNoFiles) {
  Names offered;
  for (const std::string& item : fa().lstFA.items()) {
    if (item.starts_with(".kv")) offered.push_back(item);
  }
  EXPECT_EQ((Names{".kva   kvfile   A test", ".kvb   kvfile   A test", ".kvd   kvdangling",
                   ".kvf   kv:file/*   Odd", ".kvg   kv \xC3\xBC=[x]   Umlaut"}),
            offered);
  EXPECT_FALSE(fa().cmdApply.Enabled);
  const Names extensions{".kva", ".kvb", ".kvc", ".kvd", ".kve", ".kvf", ".none"};
  const auto outcome =
      backup::exportAssociations(session, backer, extensions, session.g_sAppPath + "\\FA", {});
  EXPECT_EQ(0, outcome.status) << outcome.message;
  EXPECT_EQ((Names{".kvc", ".kve", ".none"}), outcome.skipped);
  EXPECT_EQ(0U, outcome.failed.size());
  EXPECT_EQ(1U, outcome.missing.size());
  EXPECT_EQ(
      (Names{".kva.reg", ".kvb.reg", ".kvd.reg", ".kvf.reg", "kv%3Afile%2F%2A.reg", "kvfile.reg"}),
      saved());
}

void roundTrip(const std::function<State()>& state, const std::function<void()>& change,
               const std::function<void()>& restore, const std::function<void()>& takeBack) {
  const State before = state();
  change();
  const State changed = state();
  EXPECT_NE(before, changed);
  restore();
  EXPECT_EQ(before, state());
  takeBack();
  EXPECT_EQ(changed, state());
}

TEST_F(Associations, RestoringPutsTheTypesBackAndCanBeTakenBack) {
  tick({".kva", ".kvb", ".kvg"});
  fa().cmdApply.press();
  EXPECT_EQ((Names{".kva.reg", ".kvb.reg", ".kvg.reg", "kv \xC3\xBC=[x].reg", "kvfile.reg"}),
            saved());
  roundTrip([this] { return classes(); }, [this] { takeOver(); },
            [this] {
              restore(1, {".kva", ".kvb", ".kvg"});
            },
            [this] {
              restore(2, {".kva", ".kvb", ".kvg"});
            });
}

TEST_F(AssociationsOn9x, RestoringPutsTheTypesBackAndCanBeTakenBack) {
  tick({".kva", ".kvb", ".kvg"});
  fa().cmdApply.press();
  roundTrip([this] { return classes(); }, [this] { takeOver(); },
            [this] {
              restore(1, {".kva", ".kvb", ".kvg"});
            },
            [this] {
              restore(2, {".kva", ".kvb", ".kvg"});
            });
}

TEST_F(Associations, AFileThatHoldsOtherKeysOrIsMissingIsNotRestored) {
  tick({".kva", ".kvd"});
  fa().cmdApply.press();
  const std::string folder = session.g_sAppPath + "\\FA\\";
  const std::string head = "REGEDIT4\r\n\r\n[HKEY_CLASSES_ROOT\\";
  machine->files().replace(folder + ".kva.reg",
                           head +
                               ".kva]\r\n@=\"kvfile\"\r\n\r\n[HKEY_LOCAL_MACHINE\\"
                               "SOFTWARE\\Evil]\r\n\"x\"=\"y\"\r\n");
  // A name that is another key's, and one that leads elsewhere: no types at all.
  machine->files().replace(folder + ".evil.reg", head + ".txt]\r\n@=\"evil\"\r\n");
  machine->files().replace(folder + ".more.reg", head + ".more\\shell]\r\n@=\"evil\"\r\n");
  const Names extensions{".kva", ".kvd", ".evil"};
  const auto offer =
      backup::offerAssociations(session, backer, session.g_sAppPath + "\\FA", extensions, {});
  const auto& items = offer->items();
  ASSERT_EQ(3U, items.size());
  EXPECT_FALSE(items[0].restorable);
  EXPECT_NE(std::string::npos, items[0].problems.at(0).find("HKEY_LOCAL_MACHINE\\SOFTWARE\\Evil"));
  EXPECT_TRUE(items[1].restorable);
  EXPECT_FALSE(items[2].restorable);
  const State before = classes();
  EXPECT_EQ(0, offer->restore({true, true, true}, {}).status);
  EXPECT_EQ(before, classes());
  EXPECT_FALSE(registry().hasKey("HKLM\\SOFTWARE\\Evil"));
  fa().cboShow.ListIndex = 1;
  EXPECT_EQ((Names{".kva   kvfile   A test", ".kvd   kvdangling"}), fa().lstFA.items());
}

TEST_F(Associations, ATemplateTicksItsTypesAndKeepsThem) {
  tick({".kva", ".kvf"});
  fa().cboTemplates.Text = "My choice";
  fa().cmdApply.press();
  fa().cmdClearAll.press();
  EXPECT_EQ(Names{}, fa().lstFA.checkedItems());
  fa().cboTemplates.Text = "";
  fa().cboTemplates.ListIndex = 0;
  EXPECT_EQ((Names{".kva   kvfile   A test", ".kvf   kv:file/*   Odd"}), fa().lstFA.checkedItems());
  // Marks outlive the filter.
  fa().txtFilter.Text = "KVFILE";
  EXPECT_EQ((Names{".kva   kvfile   A test", ".kvb   kvfile   A test"}), fa().lstFA.items());
  fa().lstFA.setChecked(1, true);
  fa().txtFilter.Text = "";
  EXPECT_EQ(3U, fa().lstFA.checkedItems().size());
  // On the way to a new name stands another: the marks stay, and replacing it is asked for.
  fa().cboTemplates.Text = "MY CHOICE";
  EXPECT_EQ(3U, fa().lstFA.checkedItems().size());
  prompts.answers = {Answer::No};
  fa().cmdApply.press();
  EXPECT_NE(std::string::npos, prompts.messages.back().text.find("Replace it?"));
  Names chosen;
  EXPECT_EQ(0, backup::readTemplate(session, "My choice", chosen));
  EXPECT_EQ(2U, chosen.size());
  // A hand-edited file: comments, blanks, another case and section.
  machine->files().replace(
      session.g_sAppPath + "\\templates\\hand.dat",
      "; mine\r\n[Other]\r\n.kvb=1\r\n [fa]\r\n  .KVA = 1\r\n.kvf=0\r\nkvb\r\n.kva=1");
  Names extensions;
  EXPECT_EQ(0, backup::readTemplate(session, "hand", extensions));
  EXPECT_EQ(Names{".KVA"}, extensions);
  EXPECT_EQ((Names{"hand", "My choice"}), backup::associationTemplates(session));
  fa().cboTemplates.Text = "..\\..\\evil";
  fa().cmdApply.press();
  EXPECT_NE(std::string::npos, prompts.messages.back().text.find("may not hold"));
  fa().cboTemplates.Text = "My choice";
  prompts.answers = {Answer::No, Answer::Yes};
  fa().cmdRemoveTemplate.press();
  fa().cmdRemoveTemplate.press();
  EXPECT_EQ(Names{"hand"}, backup::associationTemplates(session));
}

TEST_F(Associations, SelectingAllIsAskedForInTheProductsWords) {
  prompts.answers = {Answer::No, Answer::Yes};
  fa().cmdSelectAll.press();
  EXPECT_EQ(Names{}, fa().lstFA.checkedItems());
  EXPECT_EQ(
      "It is a good idea to choose only the associations you prefer\r\nvs. saving all "
      "associations. A full save of all associations\r\ncan be time consuming if there are many. "
      "In addition, selecting\r\nall almost certainly saves off associations that are no "
      "longer\r\nvalid on your system.\r\n\r\nDo you still want to select all?\r\n",
      prompts.messages.back().text);
  fa().cmdSelectAll.press();
  EXPECT_EQ(fa().lstFA.items(), fa().lstFA.checkedItems());
}

TEST_F(Associations, ACancelledSaveLeavesWhatWasSavedBefore) {
  tick({".kva"});
  fa().cmdApply.press();
  const Names before = saved();
  const Names extensions{".kvb", ".kvf"};
  const auto outcome = backup::exportAssociations(
      session, backer, extensions, session.g_sAppPath + "\\FA", [](int) { return false; });
  EXPECT_TRUE(outcome.cancelled);
  EXPECT_EQ(before, saved());
}

}  // namespace
}  // namespace korvex::dialogs
