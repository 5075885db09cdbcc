// A rehearsal: what a tweak's routine would do, learnt by running it on a machine that only
// pretends to be written.
#pragma once

#include <vector>

#include "cli/script_program.h"
#include "engine/tweak.h"

namespace korvex::cli {

// What one run of the routine does and says.
struct Rehearsal {
  std::vector<RegistryRecord> registry;
  std::vector<FileRecord> files;
  std::vector<ShownMessage> messages;
  platform::Status failed = platform::ERROR_SUCCESS;  // why it could not be carried out
};

struct Rehearsed {
  engine::TweakState state;
  std::string text;  // of a text row
  Rehearsal on, off, byDefault;
  std::vector<RegistryRecord>
      now;  // one for each value that any of them touches; "before" is what is there
};

// Of a program that was started to rehearse. The row is as the machine has it.
Rehearsed rehearseAll(ScriptProgram& script, AnswerScript& prompts, const engine::Tweak& tweak);

}  // namespace korvex::cli
