// The engine of RegWorker: the call by name, the mode table carried out, the end of a pending
// change. Routines with work of their own stand in specials.cpp and help_file.cpp.
#include "engine/reg_worker.h"

#include <fmt/format.h>

#include <utility>

#include "engine/catalogue.h"
#include "engine/kept_values.h"
#include "engine/pending_changes.h"
#include "engine/tweak_controls.h"
#include "foundation/reg_value.h"
#include "foundation/runtime_error.h"

namespace korvex::engine {

using foundation::RuntimeError;
using foundation::Variant;
using platform::Status;
using Act = Decision::Act;

RegWorker::RegWorker(foundation::Session& session, forms::FormBook& formBook)
    : session_(session), formBook_(formBook) {}

bool RegWorker::knows(std::string_view property) const {
  const Tweak* tweak = findTweak(property);
  // A routine has one name; the short form is for people.
  return tweak != nullptr && tweak->property.size() == property.size();
}

bool RegWorker::call(std::string_view property) {
  if (!knows(property)) {
    throw RuntimeError(foundation::kErrorNoSuchRoutine,
                       fmt::format("RegWorker has no routine named {}.", property), "RegWorker");
  }
  return run(*findTweak(property));
}

bool RegWorker::run(const Tweak& row) {
  // Before the bracket: loading a form reads and records what the machine has. Defaults need none.
  if (row.shape != ControlShape::None && !session_.g_bDefaulting) formBook_.load(row.form);
  const Tweak tweak = onMachine(row, session_);

  bLastWriteFailed = false;
  lastStatus = platform::ERROR_SUCCESS;
  notice_.clear();
  const bool rebootNeededBefore = session_.g_bRebootNeeded;
  if (!keep(tweak.unreadable)) return false;
  if (tweak.ask != nullptr && !(this->*tweak.ask)(tweak)) return keep(platform::ERROR_CANCELLED);
  {
    platform::RegistryChange change(session_.registry());
    files_.emplace(session_.files());
    const bool done =
        keep(change.status()) &&
        (tweak.special != nullptr ? (this->*tweak.special)(tweak) : p_rwWriteRegChanges(tweak));
    if (done && keep(change.commit())) files_->commit();
    keep(files_->rollback());
    files_.reset();
  }
  if (bLastWriteFailed) session_.g_bRebootNeeded = rebootNeededBefore;
  if (!notice_.empty()) {
    session_.prompts().messageBox(notice_, platform::kButtonsOk | noticeIcon_,
                                  foundation::kAppTitle);
  }
  return !bLastWriteFailed;
}

bool RegWorker::p_rwWriteRegChanges(const Tweak& tweak) {
  session_.trace.enter(fmt::format("[p_rwWriteRegChanges_{}]", tweak.property));
  const Decision decision = decisionFor(tweak);
  bool done = true;
  switch (decision.act) {
    case Act::Write:
      done = tweak.keepsPrevious ? writeKeepingPrevious(tweak, decision.value)
                                 : p_MakeTheRegChange(tweak, decision.value);
      break;
    case Act::Remember:
      vCurrentValue = decision.value;
      return endPendingChange(tweak);
    case Act::DeleteKey: {
      const Status status = session_.regTool.DeleteRegNodes(tweak.root, tweak.key);
      return keep(missingIsFine(status)) && endPendingChange(tweak);
    }
    case Act::SwapHelpFile:
    case Act::RestoreHelpFile:
      done = p_rwFlipTheHelpFile(decision.act == Act::SwapHelpFile) && endPendingChange(tweak);
      break;
  }
  // No "or": the routine that ran last decides.
  if (done) session_.g_bRebootNeeded = tweak.reboot;
  return done;
}

bool RegWorker::p_MakeTheRegChange(const Tweak& tweak, const Variant& value) {
  // The first comparison lets integer 0 through: it is written, though it equals false.
  const bool deletes = !foundation::looselyEqual(value, "0") && foundation::isFalse(value);
  vCurrentValue = value;
  return (deletes ? remove(tweak.root, tweak.key, tweak.value)
                  : write(tweak.root, tweak.key, tweak.value, value)) &&
         endPendingChange(tweak);
}

bool RegWorker::writeKeepingPrevious(const Tweak& tweak, const Variant& value) {
  const Variant on = decide(tweak, 1, vCurrentValue).value;
  if (value == on) {
    return keepPrevious(tweak, tweak.root, tweak.key, tweak.value, on) &&
           p_MakeTheRegChange(tweak, value);
  }
  vCurrentValue = value;
  return putBackPrevious(tweak, tweak.root, tweak.key, tweak.value, value) &&
         endPendingChange(tweak);
}

int RegWorker::checkValue(const Tweak& tweak) {
  const std::optional<int> state = shownState(formBook_.load(tweak.form), tweak);
  if (!state) {
    throw RuntimeError(foundation::kErrorInternal,
                       fmt::format("{} has no check box {}.", tweak.form, tweak.control),
                       std::string(tweak.property));
  }
  return *state;
}

Decision RegWorker::decisionFor(const Tweak& tweak) {
  if (session_.g_bDefaulting) return decideDefault(tweak);
  return decide(tweak, checkValue(tweak), vCurrentValue);
}

bool RegWorker::endPendingChange(const Tweak& tweak) {
  const std::string marker = fmt::format("{}\\{}", bankKey(tweak.bank), tweak.property);
  const Status status = session_.regTool.DeleteRegNodes(HKLM, marker);
  session_.trace.dump("lRetVal&", status);
  // Defaults and scripts run routines that were never pending.
  if (!keep(missingIsFine(status))) return false;
  // From now on this is what closing must leave alone.
  return tweak.bank != Bank::Configuration || keep(rememberOption(session_, tweak));
}

bool RegWorker::finishSpecial(const Tweak& tweak) {
  if (!endPendingChange(tweak)) return false;
  session_.g_bRebootNeeded = tweak.reboot;
  return true;
}

bool RegWorker::wantsOn(const Tweak& tweak, bool onByDefault) {
  return session_.g_bDefaulting ? onByDefault : checkValue(tweak) == 1;
}

void RegWorker::notify(std::string text, int icon) {
  notice_ = std::move(text);
  noticeIcon_ = icon;
}

bool RegWorker::keep(Status status) {
  if (status == platform::ERROR_SUCCESS) return true;
  if (!bLastWriteFailed) lastStatus = status;  // the first failure is the cause of the others
  bLastWriteFailed = true;
  return false;
}

bool RegWorker::read(Root root, std::string_view key, std::string_view name, RawValue& value) {
  value = {};
  const Status status = readRawValue(session_.registry(), root, key, name, value);
  return keep(missingIsFine(status));
}

bool RegWorker::write(Root root, std::string_view key, std::string_view name,
                      const Variant& value) {
  Status status = platform::ERROR_SUCCESS;
  foundation::P_WriteRegValue(session_, root, key, name, value, platform::KEY_ALL_ACCESS, true,
                              &status);
  return keep(status);
}

bool RegWorker::remove(Root root, std::string_view key, std::string_view name) {
  const Status status = session_.regTool.DeleteRegValue(root, key, name);
  session_.trace.dump("lRetVal&", status);
  return keep(missingIsFine(status));
}

bool RegWorker::removeTree(Root root, std::string_view key) {
  const Status status = session_.regTool.DeleteRegNodes(root, key);
  session_.trace.dump("lRetVal&", status);
  return keep(missingIsFine(status));
}

bool RegWorker::keepPrevious(const Tweak& tweak, Root root, std::string_view key,
                             std::string_view name, const Variant& onValue) {
  return keep(keepValue(session_, tweak, root, key, name, &onValue));
}

bool RegWorker::putBackPrevious(const Tweak& tweak, Root root, std::string_view key,
                                std::string_view name, const Variant& fallback) {
  bool wasKept = false;
  if (!keep(putBackValue(session_, tweak, root, key, name, wasKept))) return false;
  if (wasKept) return true;
  return fallback.isEmpty() ? remove(root, key, name) : write(root, key, name, fallback);
}

}  // namespace korvex::engine
