// ScriptProgram: the program as a command runs it, without a person: questions are answered from a
// script, and every write is recorded.
#pragma once

#include <memory>

#include "cli/answer_script.h"
#include "cli/change_log.h"
#include "cli/claimed_machine.h"
#include "platform/common/files_decorators.h"
#include "platform/file_change.h"
#include "program/program.h"

namespace korvex::cli {

// Rehearse pretends to write: for commands that only read. Write holds the claim on the machine and
// brackets the whole run into one change of registry and files, which commit() keeps; without it
// all is taken back.
enum class RunKind { Rehearse, Write };

class ScriptProgram {
 public:
  // Throws Failure where the machine is busy or read-only.
  ScriptProgram(platform::Machine& machine, AnswerScript& prompts, RunKind kind, bool verbose);

  // Loads the main window; what that wrote is not in the log. Throws Failure where start-up ends
  // the program.
  void start();
  // Closes a form that was driven, and the main window, as their close buttons do.
  void finish(std::string_view form = {});
  // Keeps everything, durably.
  void commit();
  // Puts the files back as they were, now. "", or a sentence about what could not be put back.
  std::string takeFilesBack();
  // A rehearsal begins again from the machine as it is.
  void forgetRehearsal() { pretendingFiles_.forget(); }

  program::Program& program() { return program_; }
  ChangeLog& log() { return log_; }

 private:
  platform::Machine& machine_;
  AnswerScript& prompts_;
  std::unique_ptr<platform::InstanceClaim> claim_;
  platform::PretendingRegistry pretending_;
  platform::RecordingRegistry recording_;
  platform::PretendingFiles pretendingFiles_;
  // The way back for files, as change_ is for the registry.
  platform::FileChange fileChange_;
  platform::RecordingFiles recordingFiles_;
  ClaimedMachine scripted_;
  ChangeLog log_;
  // Before the program, so that it goes after it: nothing the program does outlives a roll-back.
  platform::RegistryChange change_;
  program::Program program_;
};

}  // namespace korvex::cli
