// The steps of "form run": what a person does, one word each.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "cli/answer_script.h"

namespace korvex::cli {

struct Step {
  enum class Kind { Check, Uncheck, Type, Secret, Select, Press };
  Kind kind = Kind::Press;
  std::string control;
  std::string text;   // Type, Select; of Secret the file descriptor; of Check and Uncheck the item,
                      // "" for a box of its own
  std::string typed;  // the whole step, for messages
};

struct Script {
  std::vector<Step> steps;
  std::deque<ScriptedAnswer> answers;  // in their order, wherever they stand between the steps
};

// The value of one --answer option: yes, no, ok, cancel, input=TEXT, file=PATH or folder=PATH.
// Throws Failure (Usage) for anything else.
ScriptedAnswer parseAnswer(const std::string& typed);

// Throws Failure (Usage) for a word that is no step.
Script parseSteps(const std::vector<std::string>& words);

}  // namespace korvex::cli
