// The main window's life and its handlers.
#include "main_window/frm_main.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <utility>

#include "engine/readers.h"
#include "foundation/error_handler.h"
#include "foundation/reg_value.h"
#include "main_window/boot_options.h"
#include "main_window/commands.h"
#include "main_window/defaults.h"
#include "main_window/office_page.h"
#include "main_window/options.h"
#include "main_window/password_section.h"
#include "main_window/restart_prompt.h"

namespace korvex::main_window {
namespace {

using engine::Bank;
using forms::Layout;
using namespace platform;

struct TabRow {
  std::string_view caption;  // upper case
  std::string_view stored;
};
constexpr std::array kTabs{
    TabRow{"SECURITY", "1"},  TabRow{"WIN TWEAKS", "2"}, TabRow{"WINDOWS 9X", "3"},
    TabRow{"NT4/WIN2K", "4"}, TabRow{"MS OFFICE", "5"},  TabRow{"REGISTRY", "6"},
    TabRow{"OPTIONS", "7"},
};

std::string upperCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

std::string_view storedTab(const std::string& caption) {
  const std::string upper = upperCase(caption);
  for (const TabRow& row : kTabs) {
    if (row.caption == upper) return row.stored;
  }
  return "1";
}

std::string machineText(platform::Machine& machine) {
  const MachineDescription description = machine.describe();
  std::filesystem::path folder(description.folder);
  if (folder.filename().empty()) folder = folder.parent_path();
  return folder.filename().string() + "  |  " + description.windows;
}

}  // namespace

frmMain::frmMain(foundation::Session& session, engine::RegWorker& regWorker,
                 engine::PendingChanges& pending, forms::FormBook& formBook,
                 const BackupParts& backup, protection::ProgramPassword& password,
                 StartOptions options)
    : Form(kName, kCaption),
      session_(session),
      regWorker_(regWorker),
      pending_(pending),
      options_(options),
      startUp_(session, pending, options),
      pages_(*this),
      fields_(session, regWorker, pages_.controls(), [this] { edited(); }) {
  cmdApply.Enabled = false;
  cmdApply.ToolTipText = "Write the changes to the machine";
  cmdAbout.ToolTipText = "Version, and the machine that is tuned";
  cmdDefaults.ToolTipText = "Reset every setting to what Windows had";
  cmdDone.ToolTipText = "Leave Korvex; changes that were not applied are discarded";
  makeSections(formBook, backup, password);
  layout =
      Layout::column({pages_.layout(tabMain, sections_),
                      Layout::row({Layout::of(cmdAbout), Layout::of(cmdDefaults), Layout::space(),
                                   Layout::of(cmdApply), Layout::of(cmdDone)})});
  cmdAbout.Click += [&formBook] { formBook.showModal("frmAbout"); };
  connect();
}

void frmMain::makeSections(forms::FormBook& formBook, const BackupParts& backup,
                           protection::ProgramPassword& password) {
  sections_.push_back(std::make_unique<OfficePage>(*this, session_));
  sections_.push_back(std::make_unique<CommandButtons>(*this, session_, formBook));
  sections_.push_back(std::make_unique<BootOptions>(*this, session_, [this] { edited(); }));
  auto registryPage = std::make_unique<RegistryPage>(
      *this, session_, formBook, backup,
      RegistryPage::Hooks{[this] { return changesWaiting(); }, [this] { readAgain(); }});
  registryPage_ = registryPage.get();
  sections_.push_back(std::move(registryPage));
  sections_.push_back(std::make_unique<PasswordSection>(*this, session_, formBook, password));
}

void frmMain::connect() {
  for (const engine::TweakControl& entry : pages_.controls()) {
    auto* box = dynamic_cast<forms::CheckBox*>(entry.control);
    if (box == nullptr) continue;
    const engine::Tweak& tweak = *entry.tweak;
    box->Click += [this, box, &tweak] {
      trap(box->name() + "_Click", [this, box, &tweak] {
        pending_.p_SetForApply(*box, tweak.stateName, tweak.property, static_cast<int>(tweak.bank),
                               false);
      });
    };
  }
  cmdApply.Click += [this] { trap("cmdApply_Click", [this] { cmdApply_Click(); }); };
  cmdDefaults.Click += [this] { trap("cmdDefaults_Click", [this] { cmdDefaults_Click(); }); };
  cmdDone.Click += [this] { trap("cmdDone_Click", [this] { cmdDone_Click(); }); };
  pending_.changed += [this] { showStatus(); };
}

void frmMain::trap(const std::string& routine, const std::function<void()>& handler) {
  foundation::guarded(session_, routine, handler);
}

void frmMain::Load() {
  Busy = true;
  session_.g_bNoRecord = true;
  startResult_ = startUp_.prepare();
  if (startResult_ != StartResult::Started) return;

  readMachine();
  P_SetWindowPos(session_, *this, true);
  p_SetTabControl();
  session_.g_iOfficeLastTab =
      static_cast<std::int16_t>(readSetting(session_, "OfficeLastTab", session_.g_iOfficeLastTab));
  session_.g_bNoRecord = false;

  cmdApply.Enabled = false;
  Caption = kCaption + session_.machine().describe().windows;
  machineText_ = machineText(session_.machine());
  Progress = -1;
  Busy = false;
  showStatus();
}

void frmMain::readMachine() {
  trap("p_DetermineSettings", [this] {
    engine::readIntoForm(*this, session_, [this](int percent) { Progress = percent; });
  });
  for (const auto& section : sections_) {
    trap("p_DetermineSettings", [&section] { section->load(); });
  }
  fields_.load();
}

void frmMain::readAgain() {
  readOptions(session_);
  session_.g_bNoRecord = true;
  readMachine();
  session_.g_bNoRecord = false;
  cmdApply.Enabled = false;
}

// With the option NoSaveTab every run begins on the first page.
void frmMain::p_SetTabControl() {
  const int last = readSetting(session_, "LastTab", 1);
  const bool known = last >= 1 && last <= MainPages::kPageCount;
  tabMain.SelectedItem = known && !session_.g_bNoSaveTab ? last : 1;
}

void frmMain::edited() {
  cmdApply.Enabled = true;
  showStatus();
}

// What waits in the banks, then the writers that are no check boxes, in the product's order.
void frmMain::cmdApply_Click() {
  Busy = true;
  Progress = -1;
  std::vector<engine::FailedRoutine> failures;
  const auto add = [&failures](const std::vector<engine::FailedRoutine>& failed) {
    failures.insert(failures.end(), failed.begin(), failed.end());
  };
  const int waiting = std::max(1, changesWaiting());
  const auto step = [this, waiting] {
    Progress = 100 * (waiting - std::min(waiting, changesWaiting())) / waiting;
  };
  for (const Bank bank : {Bank::MainWindow, Bank::Configuration}) {
    add(engine::applyBank(bank, session_, pending_, regWorker_, step));
  }
  add(fields_.writeNumbers());
  std::vector<std::string> trouble;
  for (const auto& section : sections_) {
    const std::string sentence = section->apply();
    if (!sentence.empty()) trouble.push_back(sentence);
  }
  session_.trace.enter("[P_WriteExplorerDesc]");
  add(fields_.writeTexts());
  cmdApply.Enabled = false;
  readOptions(session_);
  Progress = -1;
  Busy = false;
  showStatus();
  if (!engine::finishApply(session_, failures, trouble)) cmdApply.Enabled = changesWaiting() > 0;
}

void frmMain::cmdDefaults_Click() {
  if (session_.prompts().messageBox("This will reset all values available in Korvex to default?",
                                    kButtonsYesNo | kIconQuestion,
                                    foundation::kAppTitle) != Answer::Yes) {
    return;
  }
  Busy = true;
  const DefaultsOutcome outcome =
      restoreDefaults(session_, regWorker_, pending_, [this](int percent) { Progress = percent; });
  std::string text = describeDefaults(outcome);
  for (const auto& section : sections_) {
    const std::string sentence = section->restoreDefaults();
    if (!sentence.empty()) text += fmt::format("{}{}", foundation::kCrLf, sentence);
  }
  readAgain();
  Progress = -1;
  Busy = false;
  showStatus();
  if (engine::finishApply(session_, {})) {
    session_.prompts().messageBox(
        text, kButtonsOk | (outcome.failed.empty() ? kIconInformation : kIconExclamation),
        foundation::kAppTitle);
  }
}

void frmMain::cmdDone_Click() {
  // No internet session is ever opened, so none has to be closed first. Whoever stays to apply
  // the rest must not be asked about a restart yet.
  if (!mayDiscard()) return;
  if (session_.g_bRebootNeeded) askForRestart(session_);
  close();
}

bool frmMain::mayDiscard() {
  discardAgreed_ = discardAgreed_ || !options_.askBeforeDiscarding ||
                   engine::mayDiscard(session_, changesWaiting(), "Leave Korvex");
  return discardAgreed_;
}

void frmMain::openSet(const std::string& profile) {
  tabMain.SelectedItem = static_cast<int>(engine::Page::Registry);
  trap("p_cboSavesClickEvent", [&] { registryPage_->open(profile); });
}

bool frmMain::QueryUnload() {
  if (startResult_ != StartResult::Started) return true;
  if (!session_.endRequested() && !mayDiscard()) return false;
  trap("frmMain_QueryUnload", [this] { saveState(); });
  return true;
}

void frmMain::saveState() {
  session_.trace.enter("[frmMain_QueryUnload]");
  if (session_.g_bTraceLog) session_.logWorker.appendRunLog(runLogPath(session_));
  RegistryChange change(session_.registry());
  rememberTab();
  pending_.p_DestroyUserPrefSubKeys();
  if (session_.g_bNoSaveWindPos) {
    forgetWindowPos(session_);
  } else {
    P_SetWindowPos(session_, *this, false);
  }
  session_.trace.dump("lRetVal&", change.commit());
}

void frmMain::rememberTab() {
  const auto& tab = tabMain.tabs().at(static_cast<std::size_t>(tabMain.SelectedItem.get() - 1));
  foundation::P_WriteRegValue(session_, HKEY_LOCAL_MACHINE, kConfiguration, "LastTab",
                              storedTab(tab.caption), KEY_ALL_ACCESS, true);
  foundation::P_WriteRegValue(session_, HKEY_LOCAL_MACHINE, kConfiguration, "OfficeLastTab",
                              session_.g_iOfficeLastTab, KEY_ALL_ACCESS, true);
}

int frmMain::changesWaiting() const {
  int changes = pending_.count() + fields_.changesWaiting();
  for (const auto& section : sections_) changes += section->changesWaiting();
  return changes;
}

void frmMain::showStatus() {
  if (startResult_ != StartResult::Started || session_.g_bNoRecord) return;
  StatusText = machineText_ + "  |  " + engine::waitingText(changesWaiting());
}

}  // namespace korvex::main_window
