// The group Access/Jet of frmOffice: which key is meant, what is asked, written and remembered, and
// its keys saved once and put back whole.
#include <fstream>
#include <sstream>

#include "dialogs/failing_machine.h"
#include "dialogs/office/jet_backups.h"
#include "dialogs/office_fixture.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;
using Names = std::vector<std::string>;

constexpr const char* kJet = "HKLM\\Software\\Microsoft\\Jet";
constexpr const char* kAccess = "HKLM\\Software\\Microsoft\\Access";
constexpr const char* kConfiguration = "HKLM\\SOFTWARE\\Korvex\\Configuration";
constexpr const char* kKept = "The setting JetModify of Korvex keeps Jet's settings as they are.";

class JetTest : public OfficeTest {
 public:
  explicit JetTest(const std::string& sample, std::string engines)
      : OfficeTest(sample), kEngines(std::move(engines)) {}

  forms::ListBox& list(std::string_view name) { return control<forms::ListBox>(name); }
  void select(std::string_view name, const std::string& item) {
    const auto& items = list(name).items();
    const auto found = std::ranges::find(items, item);
    ASSERT_NE(items.end(), found) << item;
    list(name).ListIndex = static_cast<int>(found - items.begin());
  }
  void choose(const std::string& entry) { select("lstJetEngines", entry); }
  void setGlobal(bool on) { control<forms::CheckBox>("chkGlobal").Value = on ? 1 : 0; }
  void openGroup() { dialog().tabOffice.SelectedItem = 6; }
  void add(const std::string& extension) {
    type("txtExtension", extension);
    press("cmdExtensionAdd");
  }
  std::string extensions() { return registry().value(kEngines + "\\Text", "Extensions"); }
  std::filesystem::path file(const std::string& name) {
    return machine.driveC() / "Program Files/Korvex/Registry" / name;
  }
  std::string content(const std::string& name) {
    std::ostringstream text;
    text << std::ifstream(file(name), std::ios::binary).rdbuf();
    return text.str();
  }
  std::map<std::string, std::string> below(const std::string& key) {
    std::map<std::string, std::string> result;
    registry().dump(key, result);
    return result;
  }
  const std::string kEngines;
};

class Jet97 : public JetTest {
 public:
  Jet97() : JetTest("windows-98", std::string(kJet) + "\\3.5\\Engines") {}
};
class Jet2000 : public JetTest {
 public:
  Jet2000() : JetTest("windows-2000", std::string(kJet) + "\\4.0\\Engines") {}
};

TEST_F(Jet2000, TheNewestJetIsListedAndTheSwitchTellsWhoseKeyIsWritten) {
  const Names engines{"EXCEL", "JET 2.X", "JET 3.X", "JET 4.0", "ODBC", "TEXT", "XBASE"};
  EXPECT_EQ(engines, list("lstJetEngines").items()) << "of 4.0, though 3.5 is there too";
  choose("JET 4.0");
  EXPECT_EQ("HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Jet\\4.0\\Engines\\JET 4.0",
            text("txtEngineKey"));
  EXPECT_EQ("0", text("txtMaxBufferSize"));
  EXPECT_EQ("9500", text("txtMaxLocksPerFile"));
  setGlobal(false);
  EXPECT_EQ("HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Access\\9.0\\Jet\\4.0\\Engines\\JET 4.0",
            text("txtEngineKey"));
  type("txtThreads", "5");
  control<forms::CheckBox>("chkTraceSQLMode").Value = forms::vbChecked;
  apply();
  const std::string ofAccess = std::string(kAccess) + "\\9.0\\Jet\\4.0\\Engines\\";
  EXPECT_EQ("dword 5", registry().value(ofAccess + "JET 4.0", "Threads"));
  EXPECT_EQ("dword 1", registry().value(ofAccess + "ODBC", "TraceSQLMode"));
  EXPECT_EQ("dword 3", registry().value(kEngines + "\\Jet 4.0", "Threads"));
  EXPECT_EQ("dword 0", registry().value(kEngines + "\\ODBC", "TraceSQLMode"));
  setGlobal(true);
  EXPECT_EQ("3", text("txtThreads"));
  EXPECT_TRUE(prompts.messages.empty()) << told();
  EXPECT_TRUE(traced("[p_DetermineJetVersions]") && traced("[p_WriteJetChanges]") &&
              traced("[p_DetermineJetEIS]: iCnt%=18") &&
              traced("[p_DetermineFirstRowHasNames]: iCnt%=2"));
}

TEST_F(Jet97, WhatIsShownBelongsToTheEntryAndJet2IsToldInItsWords) {
  const Names engines{"JET 3.5", "JET 2.X", "EXCEL", "ODBC", "TEXT", "XBASE"};
  EXPECT_EQ(engines, list("lstJetEngines").items());
  const auto shown = [this] {
    Names frames;
    for (const char* name :
         {"fraEIS", "fraISAM", "fraJetText", "fraJetExcel", "fraJetODBC", "fraJetXBase"}) {
      if (dialog().find(name)->Visible) frames.emplace_back(name);
    }
    return frames;
  };
  EXPECT_EQ(Names{"fraEIS"}, shown());
  choose("EXCEL");
  EXPECT_EQ((Names{"fraISAM", "fraJetExcel"}), shown());
  choose("JET 2.X");
  EXPECT_EQ(Names{"fraEIS"}, shown());
  EXPECT_EQ("10", text("txtCursorTimeout"));
  EXPECT_EQ("5", text("txtPageTimeout"));
  const auto tip = [this](const char* name) { return dialog().find(name)->ToolTipText.get(); };
  const auto caption = [this](const char* name) { return dialog().find(name)->Caption.get(); };
  EXPECT_EQ("IdleFrequency (milisec)", caption("lblIdleFrequency"));
  EXPECT_EQ("FlushTransactionTimeout (millisec)", caption("lblFlushTransactionTimeout"));
  EXPECT_EQ("PageTimeout", caption("lblPageTimeout"));
  EXPECT_EQ(" Measured in miliseconds..Integer value...default is .5 sec ",
            tip("txtLockedPageTimeout"));
  EXPECT_EQ(" 'Yes' or 'No' value...default is 'No' ", tip("lblImplicitCommitSync"));
  const std::string own = tip("txtMaxBufferSize");
  choose("JET 3.5");
  EXPECT_EQ("IdleFrequency", caption("lblIdleFrequency"));
  EXPECT_EQ("How long the engine waits until it frees locks...default is 10",
            tip("txtIdleFrequency"));
  EXPECT_EQ(own, tip("txtMaxBufferSize"));
}

TEST_F(Jet2000, AnotherEngineAsksForWhatWaitsAndAFormatDoesNot) {
  choose("JET 4.0");
  type("txtThreads", "9");
  prompts.answers = {Answer::No};
  choose("JET 3.X");
  EXPECT_EQ("Changes of JET 4.0 have not been applied. Discard them?", told());
  EXPECT_EQ("JET 4.0", list("lstJetEngines").selectedItem());
  choose("TEXT");
  type("txtMaxScanRows", "30");
  choose("XBASE");
  choose("TEXT");
  EXPECT_EQ("30", text("txtMaxScanRows"));
  apply();
  EXPECT_EQ("dword 9", registry().value(kEngines + "\\Jet 4.0", "Threads"));
  EXPECT_EQ("dword 30", registry().value(kEngines + "\\Text", "MaxScanRows"));
  choose("JET 4.0");
  type("txtThreads", "7");
  prompts.answers = {Answer::Yes};
  choose("JET 3.X");
  EXPECT_EQ("3", text("txtThreads"));
  EXPECT_FALSE(dialog().cmdApply.Enabled);
  type("txtThreads", "6");
  prompts.answers = {Answer::No};
  setGlobal(false);
  EXPECT_EQ(forms::vbChecked, control<forms::CheckBox>("chkGlobal").Value);
  EXPECT_EQ("6", text("txtThreads"));
  session.g_bNoShowConfirmation = true;
  setGlobal(false);
  EXPECT_EQ("3", text("txtThreads"));
  EXPECT_EQ(forms::vbUnchecked, control<forms::CheckBox>("chkGlobal").Value);
}

TEST_F(Jet2000, TheChoiceIsRememberedAndALookIsNot) {
  dialog();
  reopened();
  EXPECT_EQ("delete", registry().value(kConfiguration, "JetSelect"));
  choose("TEXT");
  setGlobal(false);
  reopened();
  EXPECT_EQ("\"TEXT\"", registry().value(kConfiguration, "JetSelect"));
  EXPECT_EQ("dword 0", registry().value(kConfiguration, "JetGlobal"));
  EXPECT_EQ("TEXT", list("lstJetEngines").selectedItem());
  EXPECT_TRUE(text("txtEngineKey").ends_with("Access\\9.0\\Jet\\4.0\\Engines\\TEXT"));
  choose("ODBC");
  setGlobal(true);
  refusing.refused = "JetSelect";
  reopened();
  EXPECT_EQ("dword 0", registry().value(kConfiguration, "JetGlobal")) << "both or none";
  EXPECT_TRUE(prompts.messages.empty());
  choose("ODBC");
  setGlobal(true);
  refusing.refused.clear();
  reopened();
  EXPECT_EQ("dword -1", registry().value(kConfiguration, "JetGlobal"));
}

TEST_F(Jet97, MaxBufferSizeIsOfNineTo4096) {
  constexpr const char* kRange = "The valid range for this setting is 9 - 4096.";
  const std::string engine = kEngines + "\\Jet 3.5";
  for (const char* tooFar : {"8", "4097"}) {
    type("txtMaxBufferSize", tooFar);
    EXPECT_EQ(kRange, told());
    EXPECT_EQ("0", text("txtMaxBufferSize"));
  }
  // Never left, so that only Apply sees it.
  control<forms::TextBox>("txtMaxBufferSize").Text = "8";
  type("txtThreads", "4");
  apply();
  EXPECT_EQ("The valid range for MaxBufferSize is 9 - 4096.\r\n\r\nThis change will be skipped.",
            told());
  EXPECT_EQ("dword 0", registry().value(engine, "MaxBufferSize"));
  EXPECT_EQ("dword 4", registry().value(engine, "Threads"));
  for (const char* fine : {"9", "4096"}) {
    type("txtMaxBufferSize", fine);
    apply();
    EXPECT_EQ(std::string("dword ") + fine, registry().value(engine, "MaxBufferSize"));
  }
  EXPECT_EQ("", told());
}

TEST_F(Jet2000, SixTextsAreWrittenFirstThenTheOthersAsTheyWereChanged) {
  platform::RecordingRegistry recording(machine.registry());
  platform::ComposedMachine recorded(machine.get(), {.registry = &recording});
  foundation::Session other(recorded, prompts);
  forms::FormBook otherBook;
  engine::RegWorker otherWorker(other, otherBook);
  engine::PendingChanges otherPending(other, otherBook);
  foundation::detectSystem(other);
  const DialogParts parts{other, otherWorker, otherPending, otherBook, true};
  otherBook.add(frmOffice::kName, [parts] { return std::make_unique<OfficeUnderTest>(parts); });
  auto& office = dynamic_cast<frmOffice&>(otherBook.load(frmOffice::kName));
  const auto change = [&office](const char* name, const char* text) {
    if (auto* box = office.find<forms::TextBox>(name)) box->Text = text;
    if (auto* list = office.find<forms::ComboBox>(name)) list->Text = text;
  };
  change("txtQueryTimeout", "61");
  change("txtImportMixedTypes", "Majority Type");
  change("cboFormat", "TABDELIMITED");
  change("txtLockRetry", "21");
  change("cboCharacterSet", "OEM");
  change("cboCollatingSequence", "INTERNATIONAL");
  change("txtXBasePageTimeout", "601");
  change("txtDataCodePage", "ANSI");
  change("txtDate", "DMY");
  change("txtPageTimeout", "6000");
  const std::size_t before = recording.records().size();
  office.cmdApply.press();
  Names written;
  for (std::size_t i = before; i < recording.records().size(); ++i) {
    const auto& record = recording.records()[i];
    if (record.key.find("\\Jet\\") != std::string::npos) written.push_back(record.value);
  }
  const Names expected{"Date",        "DataCodePage",     "CollatingSequence", "CharacterSet",
                       "Format",      "ImportMixedTypes", "QueryTimeout",      "LockRetry",
                       "PageTimeout", "PageTimeout"};
  EXPECT_EQ(expected, written);
}

TEST_F(Jet97, ExtensionsAreAddedAndRemovedAndTheOthersStay) {
  choose("TEXT");
  EXPECT_EQ((Names{"none", "asc", "csv", "tab", "txt"}), list("lstExtensions").items());
  add(" .log ");
  EXPECT_EQ("\"none,asc,csv,tab,txt,log\"", extensions());
  EXPECT_EQ("", text("txtExtension"));
  for (const char* refused : {"", " ", ".", "a,b", "a b", "a\\b", "a:", "*", "x?", "\"", "<", "|",
                              "..a", "TXT", ".None"}) {
    add(refused);
    EXPECT_NE("", told()) << refused;
    EXPECT_EQ("\"none,asc,csv,tab,txt,log\"", extensions()) << refused;
  }
  press("cmdRemoveExtension");
  EXPECT_EQ("Select the extension to remove first.", told());
  select("lstExtensions", "csv");
  press("cmdRemoveExtension");
  EXPECT_EQ("\"none,asc,tab,txt,log\"", extensions());
  // Somebody else has changed the list meanwhile.
  select("lstExtensions", "tab");
  registry().put(kEngines + "\\Text", "Extensions", "\"none, asc,dat\"");
  press("cmdRemoveExtension");
  EXPECT_EQ("The extension tab is no longer in the list.", told());
  EXPECT_EQ((Names{"none", "asc", "dat"}), list("lstExtensions").items());
  refusing.refused = "Extensions";
  add("new");
  EXPECT_TRUE(told().starts_with("The list of extensions could not be changed: 5"));
  EXPECT_EQ("\"none, asc,dat\"", extensions());
  EXPECT_EQ("new", text("txtExtension"));
}

TEST_F(Jet97, AMissingListIsJetsOwnAndAnEmptyOneIsEmpty) {
  choose("TEXT");
  setGlobal(false);
  EXPECT_EQ((Names{"asc", "csv", "tab", "txt"}), list("lstExtensions").items());
  add("new");
  EXPECT_EQ(
      "\"asc,csv,tab,txt,new\"",
      registry().value(std::string(kAccess) + "\\8.0\\Jet\\3.5\\Engines\\TEXT", "Extensions"));
  registry().put(kEngines + "\\Text", "Extensions", "\"\"");
  setGlobal(true);
  press("cmdRemoveExtension");
  EXPECT_EQ("There are no extensions to remove.", told());
  EXPECT_EQ("\"\"", extensions());
  add("log");
  EXPECT_EQ("\"log\"", extensions());
  registry().put(kEngines + "\\Text", "Extensions", "dword 1");
  reopened();
  expectNone("cmdExtensionAdd", "The list cannot be read: 13 (the data is invalid).");
  session.regTool.DeleteRegNodes(engine::HKLM, "Software\\Microsoft\\Jet\\3.5\\Engines\\Text");
  reopened();
  expectNone("lstExtensions", "The Jet engine of this machine has no such format.");
}

TEST_F(Jet2000, WhatJetModifyKeepsIsShownAndNotChanged) {
  openGroup();
  registry().put(kConfiguration, "JetModify", "dword 0");
  registry().put(kEngines + "\\Jet 4.0", "Threads", "dword 12");
  const auto before = below(kJet);
  reopened();
  choose("JET 4.0");
  expectNone("txtThreads", kKept);
  expectNone("cmdExtensionAdd", kKept);
  EXPECT_EQ("12", text("txtThreads"));
  EXPECT_EQ("CSVDelimited", control<forms::ComboBox>("cboFormat").Text.get());
  EXPECT_EQ(forms::vbChecked, control<forms::CheckBox>("chkDisableAsync").Value);
  setGlobal(false);
  EXPECT_EQ("3", text("txtThreads"));
  prompts.answers = {Answer::Yes};
  press("cmdDefaults");
  EXPECT_EQ(before, below(kJet));
}

TEST_F(Jet2000, KeysAreSavedOnceAndComeBackExactly) {
  const auto jet = below(kJet);
  const auto access = below(kAccess);
  dialog();
  EXPECT_FALSE(std::filesystem::exists(file("jet.reg"))) << "not on load";
  openGroup();
  const std::string saved = content("jet.reg");
  EXPECT_FALSE(saved.empty());
  choose("JET 4.0");
  type("txtThreads", "9");
  apply();
  reopened();
  openGroup();
  EXPECT_EQ(saved, content("jet.reg"));
  registry().put(kEngines + "\\Text", "Extensions", "dword 1");
  registry().put(kEngines + "\\Own\\Below", "Mine", "\"x\"");
  registry().put(kAccess, "Mine", "\"x\"");
  session.regTool.DeleteRegNodes(engine::HKLM, "Software\\Microsoft\\Jet\\3.5");
  prompts.answers = {Answer::Yes};
  press("cmdDefaults");
  EXPECT_EQ(jet, below(kJet));
  EXPECT_EQ(access, below(kAccess));
  EXPECT_EQ("3", text("txtThreads"));
  std::filesystem::remove(file("jetaccess.reg"));
  registry().put(kAccess, "Mine", "\"x\"");
  prompts.answers = {Answer::Yes};
  press("cmdDefaults");
  EXPECT_EQ("\"x\"", registry().value(kAccess, "Mine")) << "a key without a file stays";
}

TEST_F(Jet2000, ADamagedFileChangesNothing) {
  openGroup();
  const std::string whole = content("jetaccess.reg");
  registry().put(kAccess, "Mine", "\"x\"");
  registry().put(kJet, "Mine", "\"x\"");
  const auto jet = below(kJet);
  const auto access = below(kAccess);
  const bool wide = whole.starts_with("\xFF\xFE");
  const std::size_t line = whole.find(wide ? std::string("\n\0", 2) : "\n");
  for (const std::string& damaged :
       {std::string(), whole.substr(0, whole.size() / 2 | 1), whole.substr(0, whole.size() - 8),
        whole.substr(0, line + (wide ? 2 : 1)), content("jet.reg")}) {
    std::ofstream(file("jetaccess.reg"), std::ios::binary) << damaged;
    prompts.answers = {Answer::Yes};
    press("cmdDefaults");
    EXPECT_TRUE(told().starts_with("The settings of Jet could not be restored: "))
        << damaged.size();
    EXPECT_EQ(jet, below(kJet)) << damaged.size();
    EXPECT_EQ(access, below(kAccess)) << damaged.size();
  }
}

TEST_F(Jet97, AFailedBackupIsToldOnceAndAskedAboutBeforeApply) {
  std::filesystem::create_directories(file("").parent_path().parent_path());
  std::ofstream(machine.driveC() / "Program Files/Korvex/Registry") << "in the way";
  openGroup();
  EXPECT_TRUE(told().starts_with("The settings of Jet could not be saved as they are now:"));
  dialog().tabOffice.SelectedItem = 1;
  openGroup();
  EXPECT_EQ("", told());
  type("txtThreads", "4");
  prompts.answers = {Answer::No};
  apply();
  EXPECT_EQ("dword 3", registry().value(kEngines + "\\Jet 3.5", "Threads"));
  EXPECT_TRUE(dialog().cmdApply.Enabled);
  prompts.answers = {Answer::Yes};
  apply();
  EXPECT_EQ("dword 4", registry().value(kEngines + "\\Jet 3.5", "Threads"));
  std::filesystem::remove(machine.driveC() / "Program Files/Korvex/Registry");
  type("txtThreads", "5");
  apply();
  EXPECT_TRUE(std::filesystem::exists(file("jet.reg")));
}

// Access has no settings of its own yet: putting that back takes away those that were made since.
TEST_F(Jet97, DefaultsTakeAwayAKeyThatWasNotThere) {
  ASSERT_FALSE(registry().hasKey(kAccess));
  control<forms::CheckBox>("chkGlobal").Value = forms::vbUnchecked;
  type("txtThreads", "9");
  apply();
  ASSERT_TRUE(registry().hasKey(kAccess));
  ASSERT_TRUE(std::filesystem::exists(file("jetaccess.reg")));
  prompts.answers = {Answer::Yes};
  press("cmdDefaults");
  EXPECT_FALSE(registry().hasKey(kAccess));
  EXPECT_EQ("dword 3", registry().value(kEngines + "\\Jet 3.5", "Threads"));
}

// What is chosen is neither saved nor remembered there, and nobody is told of it.
TEST(JetOnReadOnlyMachine, CanBeLookedAtWithoutAWord) {
  test::TestMachine machine("windows-2000");
  machine.reopen(platform::OpenMode::Read);
  test::ScriptedPrompts prompts;
  foundation::Session session(machine.get(), prompts);
  foundation::detectSystem(session);
  forms::FormBook book;
  engine::RegWorker worker(session, book);
  engine::PendingChanges pending(session, book);
  const DialogParts parts{session, worker, pending, book, true};
  book.add(frmOffice::kName, [parts] { return std::make_unique<OfficeUnderTest>(parts); });
  auto& office = dynamic_cast<frmOffice&>(book.load(frmOffice::kName));
  office.tabOffice.SelectedItem = 6;
  office.find<forms::ListBox>("lstJetEngines")->ListIndex = 3;
  EXPECT_EQ("9500", office.find<forms::TextBox>("txtMaxLocksPerFile")->Text.get());
  EXPECT_TRUE(book.unload(frmOffice::kName));
  EXPECT_TRUE(prompts.messages.empty());
  EXPECT_FALSE(std::filesystem::exists(machine.driveC() / "Program Files/Korvex/Registry"));
}

class FailingJet : public OnFailingMachine<OfficeUnderTest> {};

// Whichever call fails: the list is as it was and that is told, or it is whole, and no other key
// is written.
TEST_F(FailingJet, AnExtensionIsAddedWholeOrNotAtAll) {
  const std::string text = std::string(kJet) + "\\3.5\\Engines\\Text";
  auto& list = *window().find<forms::ListBox>("lstJetEngines");
  const auto item = std::ranges::find(list.items(), "TEXT") - list.items().begin();
  const std::string before = registry().value(text, "Extensions");
  const std::string after = before.substr(0, before.size() - 1) + ",log\"";
  const auto keys = below(kJet).size();
  int told = 0;
  for (int n = 1; n < 300; ++n) {
    registry().put(text, "Extensions", before);
    prompts.messages.clear();
    list.ListIndex = 0;
    list.ListIndex = static_cast<int>(item);
    ASSERT_TRUE(window().find("cmdExtensionAdd")->Enabled) << n;
    window().find<forms::TextBox>("txtExtension")->Text = "log";
    failingRegistry.fail(n);
    window().find<forms::CommandButton>("cmdExtensionAdd")->press();
    const bool failed = failingRegistry.hasFailed();
    failingRegistry.fail(0);
    // A flush that fails comes after the change, and is told too.
    const bool isThere = registry().value(text, "Extensions") == after;
    EXPECT_EQ(isThere ? after : before, registry().value(text, "Extensions")) << n;
    EXPECT_TRUE(isThere || !prompts.messages.empty()) << n;
    EXPECT_EQ(keys, below(kJet).size()) << n;
    if (!failed) break;
    told += isThere ? 0 : 1;
  }
  EXPECT_GT(told, 4);
}

// Every call of a restore fails once: both keys are as they were, or both are restored.
TEST_F(FailingJet, ARestoreThatFailsChangesNeitherKey) {
  backup::RegistryBacker backer(session);
  JetBackups backups(session, backer);
  ASSERT_TRUE(backups.backUpOnce(JetBackups::When::Opening));
  const auto both = [this] {
    auto all = below(kJet);
    all.merge(below(kAccess));
    return all;
  };
  const auto saved = both();
  int failures = 0;
  for (int n = 1; n < 2000; ++n) {
    registry().put(std::string(kJet) + "\\Own", "Mine", "\"x\"");
    registry().put(kAccess, "Mine", "\"x\"");
    const auto changed = both();
    prompts.messages.clear();
    failingRegistry.fail(n);
    const bool restored = backups.restore();
    const bool failed = failingRegistry.hasFailed();
    failingRegistry.fail(0);
    EXPECT_EQ(restored, prompts.messages.empty()) << n;
    EXPECT_EQ(restored ? saved : changed, both()) << n;
    if (!failed) break;
    failures += restored ? 0 : 1;
  }
  EXPECT_GT(failures, 50);
}

}  // namespace
}  // namespace korvex::dialogs
