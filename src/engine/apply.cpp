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
                                     PendingChanges& pending, RegWorker& worker,
                                     const std::function<void()>& done) {
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
    if (done) done();
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

bool finishApply(foundation::Session& session, const std::vector<FailedRoutine>& failures,
                 const std::vector<std::string>& furtherTrouble) {
  std::vector<std::string> sentences = furtherTrouble;
  if (!failures.empty()) sentences.insert(sentences.begin(), describeFailures(failures));
  const platform::Status flushed = session.registry().flush();
  if (flushed != platform::ERROR_SUCCESS) {
    const std::string reason = session.registry().lastRefusal();
    sentences.push_back("The changes could not be brought to the disk: " +
                        (reason.empty() ? platform::describeStatus(flushed) + '.' : reason));
  }
  if (sentences.empty()) return true;
  session.prompts().messageBox(fmt::format("{}", fmt::join(sentences, foundation::kCrLf)),
                               platform::kButtonsOk | platform::kIconExclamation,
                               foundation::kAppTitle);
  return false;
}

std::string waitingText(int changes) {
  if (changes == 0) return "no changes waiting";
  return changes == 1 ? "1 change waiting" : fmt::format("{} changes waiting", changes);
}

bool mayDiscard(foundation::Session& session, int changes, std::string_view leaving) {
  if (changes == 0 || session.g_bNoShowConfirmation) return true;
  const std::string text =
      fmt::format("{} not been applied. {} and discard {}?",
                  changes == 1 ? "1 change has" : fmt::format("{} changes have", changes), leaving,
                  changes == 1 ? "it" : "them");
  return session.prompts().messageBox(text, platform::kButtonsYesNo | platform::kIconQuestion,
                                      foundation::kAppTitle) == platform::Answer::Yes;
}

}  // namespace korvex::engine
