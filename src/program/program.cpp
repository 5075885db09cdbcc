// One run of Korvex on one machine.
#include "program/program.h"

#include <array>
#include <memory>

#include "main_window/frm_main.h"

namespace korvex::program {
namespace {

using main_window::frmMain;

constexpr std::string_view kMainWindow = frmMain::kName;
constexpr std::array kForms{FormRow{kMainWindow, "The main window"}};

constexpr int kExitDone = 0;
constexpr int kExitBusy = 4;
constexpr int kExitFailed = 5;

}  // namespace

std::span<const FormRow> Program::forms() { return kForms; }

Program::Program(platform::Machine& machine, platform::Prompts& prompts, StartOptions options)
    : session_(machine, prompts),
      regWorker_(session_, formBook_),
      pendingChanges_(session_, formBook_) {
  formBook_.add(std::string(kMainWindow), [this, options] {
    return std::make_unique<frmMain>(session_, regWorker_, pendingChanges_, formBook_, options);
  });
}

Program::~Program() { formBook_.setHost(nullptr); }

StartResult Program::start() {
  const auto& mainWindow = dynamic_cast<const frmMain&>(formBook_.load(kMainWindow));
  StartResult result = mainWindow.startResult();
  if (result == StartResult::Started && session_.endRequested()) result = StartResult::Failed;
  if (result != StartResult::Started) finish();
  return result;
}

bool Program::finish() { return formBook_.unload(kMainWindow); }

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
