// Loading, closing and disabling.
#include "dialogs/direct_dialog.h"

#include <fmt/format.h>

#include <utility>

#include "engine/apply.h"
#include "engine/readers.h"
#include "foundation/error_handler.h"

namespace korvex::dialogs {
namespace {

bool canBeUsed(const forms::Control& control) {
  if (control.kind() == forms::ControlKind::Label) return false;
  const auto* button = dynamic_cast<const forms::CommandButton*>(&control);
  return button == nullptr || button->role() != forms::CommandButton::Role::Cancel;
}

}  // namespace

DirectDialog::DirectDialog(std::string name, std::string caption, const DialogParts& parts,
                           engine::Families families)
    : Form(std::move(name), std::move(caption)), parts_(parts), families_(families) {}

void DirectDialog::Load() {
  session().trace.enter("[" + name() + ".Load]");
  readAgain();
  const engine::TweakState state =
      engine::availability({.property = {}, .families = families_}, session());
  if (state.kind == engine::TweakState::Kind::Unavailable) disableAll(std::string(state.reason));
}

void DirectDialog::readAgain() {
  const bool noRecord = std::exchange(session().g_bNoRecord, true);
  problem_.clear();
  trap("Form_Load", [this] { readMachine(); });
  session().g_bNoRecord = noRecord;
  if (!problem_.empty()) disableAll(problem_);
}

void DirectDialog::noteRead(platform::Status status) {
  session().trace.dump("lRetVal&", status);
  if (status == platform::ERROR_SUCCESS) return;
  noteProblem(fmt::format("This could not be read from the machine: {}.",
                          platform::describeStatus(status)));
}

bool DirectDialog::QueryUnload() {
  return session().endRequested() || !parts_.askBeforeDiscarding ||
         engine::mayDiscard(session(), changesWaiting(), "Close this window");
}

void DirectDialog::disableAll(const std::string& reason) {
  for (forms::Control* control : controls()) {
    if (!canBeUsed(*control)) continue;
    control->Enabled = false;
    control->ToolTipText = reason;
  }
  StatusText = reason;
}

void DirectDialog::trap(const std::string& routine, const std::function<void()>& handler) {
  foundation::guarded(session(), name() + "." + routine, handler);
}

void DirectDialog::onPress(forms::CommandButton& button, const std::function<void()>& handler) {
  button.Click +=
      [this, &button, handler] { trap(button.name() + "_Click", [&handler] { handler(); }); };
}

}  // namespace korvex::dialogs
