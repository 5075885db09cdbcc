// frmWinTweaksII: its guards, and what it writes at once: icon cache, search engine, domains.
#include "dialogs/system/frm_win_tweaks_ii.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>

#include "dialogs/dialog_fixture.h"
#include "dialogs/failing_machine.h"
#include "platform/common/composed_machine.h"
#include "platform/common/registry_decorators.h"
#include "support/failing_files.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;
using Texts = std::vector<std::string>;
using Values = std::map<std::string, std::string>;

constexpr const char* kExplorerKey = "HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer";
constexpr const char* kSearchUrl = "HKCU\\Software\\Microsoft\\Internet Explorer\\SearchURL";
constexpr const char* kTemplates =
    "HKLM\\Software\\Microsoft\\Internet Explorer\\Main\\UrlTemplate";
constexpr const char* kIcons = "Max Cached Icons";
constexpr const char* kSystemIni = "C:\\WINDOWS\\SYSTEM.INI";
constexpr const char* kIconFile = "C:\\WINDOWS\\ShellIconCache";

// Initialisation files of which the n-th write fails.
class FailingIni : public platform::InitFiles {
 public:
  explicit FailingIni(platform::InitFiles& inner) : inner_(inner) {}
  std::string GetPrivateProfileStringA(std::optional<std::string_view> section,
                                       std::optional<std::string_view> key,
                                       std::string_view fallback, std::string_view file) override {
    return inner_.GetPrivateProfileStringA(section, key, fallback, file);
  }
  platform::Status WritePrivateProfileStringA(std::string_view section,
                                              std::optional<std::string_view> key,
                                              std::optional<std::string_view> value,
                                              std::string_view file) override {
    if (++calls_ == nth_) return platform::ERROR_DISK_FULL;
    return inner_.WritePrivateProfileStringA(section, key, value, file);
  }
  std::string GetPrivateProfileSectionA(std::string_view section, std::string_view file) override {
    return inner_.GetPrivateProfileSectionA(section, file);
  }
  std::string GetProfileStringA(std::optional<std::string_view> section,
                                std::optional<std::string_view> key,
                                std::string_view fallback) override {
    return inner_.GetProfileStringA(section, key, fallback);
  }
  platform::Status WriteProfileStringA(std::string_view section,
                                       std::optional<std::string_view> key,
                                       std::optional<std::string_view> value) override {
    return inner_.WriteProfileStringA(section, key, value);
  }
  void fail(int nth) {
    nth_ = nth;
    calls_ = 0;
  }

 private:
  platform::InitFiles& inner_;
  int nth_ = 0;
  int calls_ = 0;
};

// A machine on which the window with that class is open.
class MachineWithWindow : public platform::ComposedMachine, private platform::Windows {
 public:
  MachineWithWindow(platform::Machine& inner, platform::MachineParts parts)
      : ComposedMachine(inner, parts) {}
  platform::Windows& windows() override { return *this; }
  std::string open;

 private:
  bool FindWindowA(std::string_view className, std::string_view) override {
    return className == open;
  }
};

// The dialog on a machine that can be in trouble.
struct Desk {
  explicit Desk(const std::string& sample)
      : sampleMachine(sample),
        failingRegistry(sampleMachine.registry()),
        files(sampleMachine->files()),
        ini(sampleMachine->initFiles()),
        machine(*sampleMachine, {.registry = &failingRegistry, .files = &files, .initFiles = &ini}),
        session(machine, prompts),
        worker(session, book),
        pending(session, book) {
    registry.put("HKLM\\SOFTWARE\\Korvex\\CurrentSettings", "", "\"\"");
    foundation::detectSystem(session);
    session.g_iExplrVer = 5;  // told by the main window
    const DialogParts parts{session, worker, pending, book, true};
    book.add(frmWinTweaksII::kName, [parts] { return std::make_unique<frmWinTweaksII>(parts); });
    book.setHost(&host);
  }
  frmWinTweaksII& form() { return dynamic_cast<frmWinTweaksII&>(book.load(frmWinTweaksII::kName)); }
  frmWinTweaksII& reopened() {
    EXPECT_TRUE(book.unload(frmWinTweaksII::kName));
    return form();
  }
  forms::CheckBox& box(const char* name) { return *form().find<forms::CheckBox>(name); }
  Texts waiting() { return pending.waiting(engine::Bank::WinTweaksII); }
  // What was said since the last call.
  Texts said() {
    Texts texts;
    for (const auto& message : prompts.messages) texts.push_back(message.text);
    prompts.messages.clear();
    return texts;
  }

  std::string read(const char* path) {
    std::string bytes;
    EXPECT_EQ(0, sampleMachine->files().read(path, bytes)) << path;
    return bytes;
  }
  std::uint32_t attributesOf(const char* path) {
    std::uint32_t attributes = 0;
    EXPECT_EQ(0, sampleMachine->files().attributes(path, attributes)) << path;
    return attributes;
  }
  Texts domains() { return form().cboExplorerSearch.items(); }
  void addDomain(const std::string& typed) {
    form().txtAddExplorerDomain.Text = typed;
    form().cmdApply.press();
  }
  void removeDomain(const std::string& domain, Answer answer) {
    const auto& items = form().cboExplorerSearch.items();
    const auto at = std::ranges::find(items, domain) - items.begin();
    form().cboExplorerSearch.ListIndex = static_cast<int>(at);
    prompts.answers = {answer};
    form().cmdRemoveExplorerDomain.press();
  }
  void chooseEngine(const std::string& engine) {
    const auto& items = form().cboIEDefaultSearch.items();
    const auto at = std::ranges::find(items, engine);
    ASSERT_NE(items.end(), at) << engine;
    form().cboIEDefaultSearch.ListIndex = static_cast<int>(at - items.begin());
  }

  test::ScriptedPrompts prompts;
  test::TestMachine sampleMachine;
  test::RegistryView registry{sampleMachine.registry()};
  ArmedRegistry failingRegistry;
  test::FailingFiles files;
  FailingIni ini;
  MachineWithWindow machine;
  HandHost host;
  foundation::Session session;
  forms::FormBook book;
  engine::RegWorker worker;
  engine::PendingChanges pending;
};

TEST(FrmWinTweaksII, AClickWaitsUntilTheMainApplyWritesIt) {
  Desk desk("windows-98");
  desk.box("chkXMouse").Value = forms::vbChecked;
  EXPECT_EQ(Texts{"P_rwActiveWindowTracking"}, desk.waiting());
  EXPECT_EQ("&Apply", desk.form().find("cmdMainApply")->Caption.get());
  EXPECT_TRUE(desk.form().cmdMainApply.Enabled);
  // The other Apply is the domains'; it leaves the bank alone.
  desk.addDomain("net");
  EXPECT_EQ("dword 0", desk.registry.value("HKCU\\Control Panel\\Mouse", "ActiveWindowTracking"));
  desk.form().cmdMainApply.press();
  EXPECT_EQ("dword 1", desk.registry.value("HKCU\\Control Panel\\Mouse", "ActiveWindowTracking"));
  EXPECT_FALSE(desk.form().cmdMainApply.Enabled);
  EXPECT_TRUE(desk.session.trace.contains("[frmWinTweaksII.cmdMainApply]"));
  EXPECT_EQ(forms::vbChecked, desk.reopened().find<forms::CheckBox>("chkXMouse")->Value);
}

TEST(FrmWinTweaksII, ArrowsComeBackAsTheyWere) {
  Desk desk("windows-2000");
  desk.registry.put("HKCR\\lnkfile", "IsShortcut", "binary 01 02");
  EXPECT_EQ(0, desk.session.regTool.DeleteRegValue(engine::HKCR, "piffile", "IsShortcut"));
  const auto turn = [&desk](int value) {
    desk.box("chkArrows").Value = value;
    desk.form().cmdMainApply.press();
    return desk.registry.value("HKCR\\lnkfile", "IsShortcut") + ", " +
           desk.registry.value("HKCR\\piffile", "IsShortcut");
  };
  EXPECT_EQ("delete, delete", turn(forms::vbChecked));
  EXPECT_EQ("binary 01 02, delete", turn(forms::vbUnchecked));

  // Another tool has taken them away: what Windows has is what is left to come back to.
  EXPECT_EQ(0, desk.session.regTool.DeleteRegValue(engine::HKCR, "lnkfile", "IsShortcut"));
  ASSERT_EQ(forms::vbChecked, desk.reopened().find<forms::CheckBox>("chkArrows")->Value);
  EXPECT_EQ("\"\", \"\"", turn(forms::vbUnchecked));
}

TEST(FrmWinTweaksII, OpenWithIsAskedForWhileTheOfficeBarIsOpen) {
  Desk desk("windows-2000");
  desk.machine.open = "MOM Parent";
  desk.prompts.answers = {Answer::No};
  desk.box("chkOpenWith").Value = forms::vbChecked;
  EXPECT_EQ(forms::vbUnchecked, desk.box("chkOpenWith").Value);
  EXPECT_EQ(Texts{}, desk.waiting());
  EXPECT_EQ(platform::kButtonsYesNo | platform::kIconQuestion, desk.prompts.messages.at(0).style);
  EXPECT_EQ(Texts{"This option will break the MS Office Shortcut bar.\r\n"
                  "For more information select the '?' in the upper right\r\n"
                  "corner and drop it onto this option.\r\n"
                  "Do you wish to continue?"},
            desk.said());
  EXPECT_TRUE(desk.session.trace.contains("[frmWinTweaksII.chkOpenWith_Click]"));

  desk.prompts.answers = {Answer::Yes};
  desk.box("chkOpenWith").Value = forms::vbChecked;
  EXPECT_EQ(Texts{"P_rwOpenWith"}, desk.waiting());
  desk.box("chkOpenWith").Value = forms::vbUnchecked;  // needs no question
  desk.machine.open = "";
  desk.box("chkOpenWith").Value = forms::vbChecked;
  EXPECT_EQ(1U, desk.said().size());
}

TEST(FrmWinTweaksII, ThePowerToysCommandIsNotAddedASecondTime) {
  Desk desk("windows-me");
  desk.box("chkDOS_BOX_Here").Value = forms::vbChecked;
  EXPECT_EQ(Texts{"This function is already being provided by the PowerToys.\r\n"
                  "There is no need to add this functionality again."},
            desk.said());
  EXPECT_EQ(forms::vbUnchecked, desk.box("chkDOS_BOX_Here").Value);
  EXPECT_EQ(Texts{}, desk.waiting());
}

TEST(FrmWinTweaksII, TheIconCacheSizeIsAskedForUntilItIsANumber) {
  Desk desk("windows-98");
  std::string ini = desk.read(kSystemIni);
  desk.prompts.texts = {"12a", "-5", "1024"};
  desk.form().cmdlblIconCache.press();
  const std::string prompt = "Enter a new upper limit to the icon cache size. Default is 512.";
  const std::string refusal =
      "The cache size value should be a numerical value only.\r\n\r\n"
      "Please check the value entered and try again.";
  EXPECT_EQ("Change icon cache size", desk.prompts.messages.at(0).title);
  EXPECT_EQ(
      (Texts{prompt, refusal, prompt, refusal, prompt,
             "Resizing of your icon cache file will occur at the next reboot of the system."}),
      desk.said());
  EXPECT_EQ("512", desk.prompts.proposals.at(0));
  EXPECT_EQ("\"1024\"", desk.registry.value(kExplorerKey, kIcons));
  EXPECT_TRUE(desk.session.g_bRebootNeeded);
  const std::string last = "maxfilecache=16384\r\n";
  ini.insert(ini.find(last) + last.size(), "mincachefile=0\r\nmaxcachefile=1024\r\n");
  EXPECT_EQ(ini, desk.read(kSystemIni));

  desk.prompts.texts = {std::nullopt};
  desk.form().cmdlblIconCache.press();
  EXPECT_EQ("1024", desk.prompts.proposals.back());
  EXPECT_EQ(1U, desk.said().size());
  EXPECT_TRUE(desk.session.trace.contains("USER_CANCEL"));
}

TEST(FrmWinTweaksII, NtHasNoDiskCacheToSet) {
  Desk desk("windows-2000");
  desk.prompts.texts = {"4096"};
  desk.form().cmdlblIconCache.press();
  EXPECT_EQ("512", desk.prompts.proposals.at(0)) << "nothing is set there";
  EXPECT_EQ("\"4096\"", desk.registry.value(kExplorerKey, kIcons));
  EXPECT_FALSE(desk.sampleMachine->files().exists("C:\\WINNT\\system.ini") &&
               desk.read("C:\\WINNT\\system.ini").find("maxcachefile") != std::string::npos);
}

TEST(FrmWinTweaksII, TheIconCacheSizeIsWrittenWholeOrNotAtAll) {
  Desk desk("windows-98");
  const std::string ini = desk.read(kSystemIni);
  const auto attempt = [&desk] {
    desk.prompts.texts = {"777"};
    desk.form().cmdlblIconCache.press();
    desk.prompts.texts.clear();
    desk.failingRegistry.fail(0);
    desk.ini.fail(0);
    return desk.registry.value(kExplorerKey, kIcons) == "\"777\"";
  };
  desk.form();
  for (const int nth : {1, 2}) {
    desk.ini.fail(nth);
    EXPECT_FALSE(attempt()) << "write " << nth;
    EXPECT_EQ(ini, desk.read(kSystemIni)) << "write " << nth;
    EXPECT_NE(std::string::npos, desk.said().back().find("Nothing was changed."));
  }
  int failures = 0;
  for (int nth = 1; nth < 50; ++nth) {
    desk.failingRegistry.fail(nth);
    const bool failed = !attempt();
    EXPECT_EQ(failed, ini == desk.read(kSystemIni)) << "call " << nth;
    if (!failed) break;
    EXPECT_NE(std::string::npos, desk.said().back().find("could not be"));
    ++failures;
  }
  EXPECT_GT(failures, 3);
}

TEST(FrmWinTweaksII, RebuildingDeletesTheIconFileWhateverItsAttributes) {
  Desk desk("windows-98");
  const std::uint32_t attributes = platform::FILE_ATTRIBUTE_READONLY |
                                   platform::FILE_ATTRIBUTE_HIDDEN |
                                   platform::FILE_ATTRIBUTE_SYSTEM;
  EXPECT_EQ(0, desk.sampleMachine->files().setAttributes(kIconFile, attributes));
  const auto press = [&desk](Answer answer) {
    desk.prompts.answers = {answer};
    desk.form().cmdRebuildIconCache.press();
    return desk.said();
  };
  EXPECT_EQ(Texts{"Rebuild icon cache file?"}, press(Answer::No));
  desk.files.fail(2, platform::ERROR_ACCESS_DENIED);  // deleting; the attributes are gone by then
  EXPECT_EQ(2U, press(Answer::Yes).size());
  EXPECT_TRUE(desk.files.hasFailed());
  EXPECT_EQ(attributes, desk.attributesOf(kIconFile) & 7U);

  desk.files.fail(0, 0);
  EXPECT_EQ(1U, press(Answer::Yes).size());
  EXPECT_FALSE(desk.sampleMachine->files().exists(kIconFile));
  EXPECT_EQ("There is no icon cache file. Windows makes one when it starts next.",
            press(Answer::Yes).back());
}

TEST(FrmWinTweaksII, AnEngineIsWrittenWhenItIsChosen) {
  Desk desk("windows-98");
  EXPECT_EQ("AltaVista", desk.form().cboIEDefaultSearch.selectedItem());
  EXPECT_EQ((Texts{"AltaVista", "Ask Jeeves", "Excite", "HotBot", "Infoseek", "Lycos", "Magellan!",
                   "Metacrawler", "MS Random"}),
            desk.form().cboIEDefaultSearch.items());
  std::set<std::string> addresses;
  for (const std::string& engine : Texts(desk.form().cboIEDefaultSearch.items())) {
    desk.chooseEngine(engine);
    addresses.insert(desk.registry.value(kSearchUrl, ""));
    EXPECT_EQ(engine, desk.reopened().cboIEDefaultSearch.selectedItem());
  }
  EXPECT_EQ(9U, addresses.size());
  for (const std::string& address : addresses) {
    EXPECT_TRUE(address.starts_with("\"http://") && address.ends_with("=%s\"")) << address;
  }
  EXPECT_EQ(Texts{}, desk.said());

  desk.failingRegistry.fail(1);
  desk.chooseEngine("Lycos");
  EXPECT_EQ("MS Random", desk.form().cboIEDefaultSearch.selectedItem());
  EXPECT_EQ(1U, desk.said().size());
}

TEST(FrmWinTweaksII, AnUnknownAddressCannotBeWritten) {
  Desk desk("windows-nt4");
  const std::string own = desk.registry.value(kSearchUrl, "");
  EXPECT_EQ("Unknown", desk.form().cboIEDefaultSearch.selectedItem());
  EXPECT_EQ(own, desk.registry.value(kSearchUrl, "")) << "reading writes nothing";
  desk.chooseEngine("Excite");
  const std::string excite = desk.registry.value(kSearchUrl, "");
  EXPECT_NE(own, excite);
  desk.chooseEngine("Unknown");
  EXPECT_EQ(Texts{"You cannot write an unknown address as the default search URL."}, desk.said());
  EXPECT_EQ(excite, desk.registry.value(kSearchUrl, ""));
  EXPECT_EQ("Excite", desk.form().cboIEDefaultSearch.selectedItem());
}

TEST(FrmWinTweaksII, ADomainIsAddedBehindTheOthers) {
  Desk desk("windows-2000");
  EXPECT_EQ((Texts{"com", "edu", "org"}), desk.domains());
  const Values before = desk.registry.values(kTemplates);
  for (const char* wrong : {"", " ", ".", "..com", "co..uk", "com.", "c m", "-com", "com-", "%s",
                            "com/", "\xC3\xA9", "a.-b", "ORG", ".edu"}) {
    desk.addDomain(wrong);
    EXPECT_EQ(1U, desk.said().size()) << wrong;
    EXPECT_EQ(before, desk.registry.values(kTemplates)) << wrong;
    EXPECT_EQ(wrong, desk.form().txtAddExplorerDomain.Text.get()) << "to be put right";
  }
  desk.addDomain(" .Co.UK ");
  EXPECT_EQ(Texts{}, desk.said());
  EXPECT_EQ("", desk.form().txtAddExplorerDomain.Text.get());
  EXPECT_EQ("co.uk", desk.form().cboExplorerSearch.selectedItem());
  EXPECT_EQ((Values{{"1", "\"www.%s.com\""},
                    {"2", "\"www.%s.edu\""},
                    {"3", "\"www.%s.org\""},
                    {"4", "\"www.%s.co.uk\""}}),
            desk.registry.values(kTemplates));
  EXPECT_EQ((Texts{"com", "edu", "org", "co.uk"}), desk.reopened().cboExplorerSearch.items());
}

TEST(FrmWinTweaksII, RemovingADomainLeavesNoGapAndOtherTemplatesAsTheyAre) {
  Desk desk("windows-2000");
  desk.registry.put(kTemplates, "2", "\"%s.com\"");
  desk.registry.put(kTemplates, "10", "binary 01 02");  // after a gap, and no text
  desk.registry.put(kTemplates, "02", "\"www.%s.net\"");
  EXPECT_EQ((Texts{"com", "org"}), desk.domains());
  desk.removeDomain("com", Answer::No);
  EXPECT_EQ(Texts{"Remove .com domain?"}, desk.said());
  EXPECT_EQ(2U, desk.domains().size());

  desk.removeDomain("com", Answer::Yes);
  EXPECT_EQ((Values{{"1", "\"%s.com\""},
                    {"2", "\"www.%s.org\""},
                    {"3", "binary 01 02"},
                    {"02", "\"www.%s.net\""}}),
            desk.registry.values(kTemplates));
  desk.removeDomain("org", Answer::Yes);
  EXPECT_EQ(Texts{}, desk.domains());
  desk.said();
  desk.form().cmdRemoveExplorerDomain.press();
  EXPECT_EQ(Texts{"There are no search domains to remove."}, desk.said());
}

TEST(FrmWinTweaksII, TheListOfDomainsIsWrittenWholeOrNotAtAll) {
  Desk desk("windows-2000");
  const Values before = desk.registry.values(kTemplates);
  const Values after{{"1", "\"www.%s.edu\""}, {"2", "\"www.%s.org\""}};
  desk.form();
  int failures = 0;
  for (int nth = 1; nth < 60 && desk.registry.values(kTemplates) != after; ++nth) {
    desk.failingRegistry.fail(nth);
    desk.removeDomain("com", Answer::Yes);
    desk.failingRegistry.fail(0);
    desk.prompts.answers.clear();
    const Values now = desk.registry.values(kTemplates);
    EXPECT_TRUE(now == before || now == after) << "call " << nth;
    EXPECT_EQ(now.size(), desk.reopened().cboExplorerSearch.items().size());
    ++failures;
  }
  EXPECT_GT(failures, 8);
  EXPECT_EQ(after, desk.registry.values(kTemplates));
}

TEST(FrmWinTweaksII, WhatTheMachineCannotUseIsDisabledWithItsReason) {
  for (const char* sample : {"windows-98", "windows-2000"}) {
    Desk desk(sample);
    desk.book.add("frmIPAddresses",
                  [] { return std::make_unique<forms::Form>("frmIPAddresses", ""); });
    const auto* addresses = desk.form().find<forms::CommandButton>("cmdAddIPAddresses");
    ASSERT_NE(nullptr, addresses);
    EXPECT_EQ(!desk.session.g_bNT, addresses->Enabled.get());
    EXPECT_EQ(desk.session.g_bNT, addresses->ToolTipText->find("NetTrans") != std::string::npos);
    EXPECT_TRUE(desk.form().fraExplorerSearchDomain.Enabled);

    desk.session.g_iExplrVer = 0;
    EXPECT_FALSE(desk.reopened().fraExplorerSearchDomain.Enabled);
    EXPECT_FALSE(desk.form().cboIEDefaultSearch.Enabled);
    EXPECT_EQ("Needs Internet Explorer 3 or later.", desk.form().cmdApply.ToolTipText.get());
  }
}

TEST(FrmWinTweaksII, EachOpenerShowsItsWindowAndIsLeftOutWithoutOne) {
  const std::array<std::array<const char*, 2>, 6> openers{{
      {"cmdAdjustShellFolders", "frmShellFolders"},
      {"cmdFastFileAccess", "frmFastFileAccess"},
      {"cmdMoniker", "frmMoniker"},
      {"cmdExplorerTitleBar", "frmIETitleBar"},
      {"cmdAddIPAddresses", "frmIPAddresses"},
      {"cmdEditAddRemove", "frmAddRemove"},
  }};
  Desk desk("windows-98");
  for (const auto& [button, form] : openers) {
    EXPECT_EQ(nullptr, desk.form().find(button));
    desk.book.add(form, [name = form] { return std::make_unique<forms::Form>(name, ""); });
  }
  desk.reopened();
  for (const auto& [button, form] : openers) {
    std::string shown;
    desk.host.use = [&shown](forms::Form& opened) {
      shown = opened.name();
      opened.close();
    };
    ASSERT_NE(nullptr, desk.form().find(button)) << button;
    desk.form().find<forms::CommandButton>(button)->press();
    EXPECT_EQ(form, shown);
  }
}

}  // namespace
}  // namespace korvex::dialogs
