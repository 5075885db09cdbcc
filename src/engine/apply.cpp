// Running the routines that wait in a bank.
#include "engine/apply.h"

#include <fmt/format.h>

#include "engine/catalogue.h"
#include "engine/raw_value.h"
#include "forms/control.h"
#include "foundation/error_handler.h"

namespace korvex::engine {
namespace {

// The trap of Apply: it logs as the common handler does, but asks nobody. The other changes are
// made in any case, and the caller tells what failed in one message.
void logError(foundation::Session& session) {
  const foundation::RuntimeError error = foundation::currentError("cmdApply");
  session.trace.add(
      fmt::format("[ErrorHandler=cmdApply]{}: {}", error.number(), error.description()));
}

std::string cause(const FailedRoutine& failure) {
  if (failure.status != platform::ERROR_SUCCESS) return platform::describeStatus(failure.status);
  if (findTweak(failure.property) == nullptr) return "this version of Korvex has no such setting";
  return "an error, which the log names";
}

std::string nameForPeople(const FailedRoutine& failure) {
  if (failure.property.empty()) return "The list of what is waiting";
  const Tweak* tweak = findTweak(failure.property);
  return tweak == nullptr ? failure.property : forms::plainCaption(tweak->caption);
}

}  // namespace

std::vector<FailedRoutine> applyBank(Bank bank, foundation::Session& session,
                                     PendingChanges& pending, RegWorker& worker) {
  std::vector<FailedRoutine> failures;
  std::vector<std::string> routines;
  const platform::Status listed = missingIsFine(
      listSubKeys(session.registry(), HKLM, bankKey(bank), platform::KEY_ALL_ACCESS, routines));
  session.trace.dump("[cmdApply]: lRetVal&", listed);
  if (listed != platform::ERROR_SUCCESS) failures.push_back({"", listed});
  for (const std::string& routine : routines) {
    try {
      if (!worker.call(routine)) failures.push_back({routine, worker.lastStatus});
    } catch (...) {
      logError(session);
      failures.push_back({routine, platform::ERROR_SUCCESS});
    }
  }
  pending.changed.raise();
  return failures;
}

std::string describeFailures(const std::vector<FailedRoutine>& failures) {
  if (failures.empty()) return {};
  std::string text = failures.size() == 1 ? "One change could not be made and is still waiting:"
                                          : "Some changes could not be made and are still waiting:";
  for (const FailedRoutine& failure : failures) {
    text += fmt::format("\r\n{}: {}.", nameForPeople(failure), cause(failure));
  }
  return text + "\r\nPut the cause right and apply again, or leave to discard them.";
}

}  // namespace korvex::engine
