// One run of Korvex on one machine.
#include "program/program.h"

#include <array>
#include <memory>

#include "dialogs/frm_about.h"
#include "dialogs/frm_restore.h"
#include "dialogs/shell/frm_fa.h"
#include "dialogs/system/frm_more_security.h"
#include "main_window/frm_main.h"

namespace korvex::program {
namespace {

using main_window::frmMain;

constexpr std::string_view kMainWindow = frmMain::kName;

// A dialog that is nothing but the rows of its bank.
struct RowsDialog {
  engine::Bank bank;
  FormRow form;
  const char* caption;
};
constexpr std::array kRowsDialogs{
    RowsDialog{engine::Bank::WinTweaksII,
               {"frmWinTweaksII", "Win Tweaks, continued"},
               "Korvex...for Power Users - Win Tweaks II"},
    RowsDialog{engine::Bank::NT4_Win2KCont,
               {"frmNT4_Win2KCont", "NT4/Win2K, continued"},
               "Korvex...for Power Users - NT4/Win2K continued"},
    RowsDialog{engine::Bank::NTServer,
               {"frmNTServer", "Server settings of NT"},
               "Korvex...for Power Users -  NT Server"},
    RowsDialog{engine::Bank::DrWat,
               {"frmDrWat", "Dr. Watson of NT"},
               "Korvex...for Power Users - Dr. Watson"},
};

constexpr std::array kForms{FormRow{kMainWindow, "The main window"},
                            FormRow{dialogs::frmMoreSecurity::kName, "Further restrictions"},
                            kRowsDialogs[0].form,
                            kRowsDialogs[1].form,
                            kRowsDialogs[2].form,
                            kRowsDialogs[3].form,
                            FormRow{dialogs::frmFA::kName, "File associations"},
                            FormRow{dialogs::frmRestore::kName, "What a restore would change"},
                            FormRow{dialogs::frmAbout::kName, "Version and machine"}};

constexpr int kExitDone = 0;
constexpr int kExitBusy = 4;
constexpr int kExitFailed = 5;

}  // namespace

std::span<const FormRow> Program::forms() { return kForms; }

Program::Program(platform::Machine& machine, platform::Prompts& prompts, StartOptions options)
    : session_(machine, prompts),
      registryBacker_(session_),
      regWorker_(session_, formBook_),
      pendingChanges_(session_, formBook_) {
  formBook_.add(std::string(kMainWindow), [this, options] {
    return std::make_unique<frmMain>(session_, regWorker_, pendingChanges_, formBook_,
                                     main_window::BackupParts{registryBacker_, restoreDesk_},
                                     options);
  });
  addDialogs({session_, regWorker_, pendingChanges_, options.askBeforeDiscarding});
}

void Program::addDialogs(const dialogs::DialogParts& parts) {
  formBook_.add(dialogs::frmMoreSecurity::kName,
                [parts] { return std::make_unique<dialogs::frmMoreSecurity>(parts); });
  for (const RowsDialog& dialog : kRowsDialogs) {
    formBook_.add(std::string(dialog.form.name), [parts, &dialog] {
      return std::make_unique<dialogs::TweakDialog>(std::string(dialog.form.name), dialog.caption,
                                                    dialog.bank, parts);
    });
  }
  formBook_.add(dialogs::frmFA::kName, [this] {
    return std::make_unique<dialogs::frmFA>(session_, formBook_, registryBacker_, restoreDesk_);
  });
  formBook_.add(dialogs::frmRestore::kName,
                [this] { return std::make_unique<dialogs::frmRestore>(session_, restoreDesk_); });
  formBook_.add(dialogs::frmAbout::kName,
                [this] { return std::make_unique<dialogs::frmAbout>(session_); });
}

Program::~Program() { formBook_.setHost(nullptr); }

StartResult Program::start() {
  const auto& mainWindow = dynamic_cast<const frmMain&>(formBook_.load(kMainWindow));
  StartResult result = mainWindow.startResult();
  if (result == StartResult::Started && session_.endRequested()) result = StartResult::Failed;
  if (result != StartResult::Started) {
    finish();
    return result;
  }
  // What a run that never ended left in the dialogs' banks: nobody remembers having clicked it.
  pendingChanges_.discard(engine::Bank::MoreSecurity);
  for (const RowsDialog& dialog : kRowsDialogs) pendingChanges_.discard(dialog.bank);
  return result;
}

bool Program::finish() {
  // The main window goes last: the others record in keys that go with it.
  for (const FormRow& form : kForms) {
    if (form.name != kMainWindow && !formBook_.unload(form.name)) return false;
  }
  return formBook_.unload(kMainWindow);
}

void Program::openSet(const std::string& profile) {
  dynamic_cast<frmMain&>(formBook_.load(kMainWindow)).openSet(profile);
}

int Program::run(forms::FormHost& host) {
  formBook_.setHost(&host);
  switch (start()) {
    case StartResult::Started:
      break;
    case StartResult::SecondInstance:
      return kExitBusy;
    default:
      return kExitFailed;
  }
  session_.onEndRequested = [this] {
    if (forms::Form* mainWindow = formBook_.loaded(kMainWindow)) mainWindow->close();
  };
  formBook_.showModal(kMainWindow);
  session_.onEndRequested = nullptr;
  return kExitDone;
}

}  // namespace korvex::program
