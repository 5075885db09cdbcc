// The program as a command runs it.
#include "cli/script_program.h"

#include "cli/registry_access.h"

namespace korvex::cli {
namespace {

using platform::Status;

std::unique_ptr<platform::InstanceClaim> claimFor(platform::Machine& machine, RunKind kind) {
  // A rehearsal changes nothing, so it may run beside a window.
  if (kind == RunKind::Rehearse) return std::make_unique<platform::InstanceClaim>();
  return claim(machine);
}

platform::MachineParts partsOf(platform::Registry& registry, platform::Files& files) {
  platform::MachineParts parts;
  parts.registry = &registry;
  parts.files = &files;
  return parts;
}

constexpr program::StartOptions kScripted{.doubleLoadWarning = false, .askBeforeDiscarding = false};

}  // namespace

ScriptProgram::ScriptProgram(platform::Machine& machine, AnswerScript& prompts, RunKind kind,
                             bool verbose)
    : machine_(machine),
      prompts_(prompts),
      pretending_(machine.registry()),
      recording_(kind == RunKind::Rehearse ? static_cast<platform::Registry&>(pretending_)
                                           : machine.registry()),
      pretendingFiles_(machine.files()),
      fileChange_(kind == RunKind::Rehearse ? static_cast<platform::Files&>(pretendingFiles_)
                                            : machine.files()),
      recordingFiles_(fileChange_),
      scripted_(machine, partsOf(recording_, recordingFiles_), claimFor(machine, kind)),
      log_(recording_, recordingFiles_, verbose),
      change_(recording_),
      program_(scripted_, prompts, kScripted) {
  if (change_.status() != platform::ERROR_SUCCESS) {
    throw registryFailure(change_.status(), "The machine's registry");
  }
}

void ScriptProgram::start() {
  const program::StartResult result = program_.start();
  if (result == program::StartResult::Started) {
    log_.skip();
    return;
  }
  const std::string text = prompts_.lastText();
  throw Failure(ExitCode::Failed,
                result == program::StartResult::NoRights ? "no-rights" : "start-failed",
                text.empty() ? "Korvex could not be started on this machine." : text);
}

void ScriptProgram::finish(std::string_view form) {
  const bool closed = form.empty() || program_.formBook().unload(form);
  if (closed && program_.finish()) return;
  throw Failure(ExitCode::Failed, "not-closed", "The form refuses to close.");
}

void ScriptProgram::commit() {
  Status status = change_.commit();
  if (status == platform::ERROR_SUCCESS) status = machine_.registry().flush();
  // The files were whole at each step; from here on the registry stands for them.
  if (status == platform::ERROR_SUCCESS) fileChange_.commit();
  if (status != platform::ERROR_SUCCESS) {
    throw registryFailure(status, "The changes could not be written, so nothing was changed",
                          machine_.registry().lastRefusal());
  }
}

std::string ScriptProgram::takeFilesBack() {
  const Status status = fileChange_.rollback();
  if (status == platform::ERROR_SUCCESS) return "";
  return " But not every file could be put back: " + platform::describeStatus(status) + ".";
}

}  // namespace korvex::cli
