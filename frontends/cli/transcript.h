// Transcript: what happened during "form run", in order: steps, messages, changes.
#pragma once

#include <string>
#include <vector>

#include "cli/answer_script.h"
#include "cli/change_log.h"

namespace korvex::cli {

class Transcript {
 public:
  explicit Transcript(ChangeLog& log) : log_(log) {}

  void step(const std::string& typed);
  // The changes made so far come before the message.
  void message(const ShownMessage& message);
  void restart(std::uint32_t flags);
  void addChanges();

  const Json& json() const { return json_; }
  const std::string& text() const { return text_; }

 private:
  ChangeLog& log_;
  Json json_ = Json::array();
  std::string text_;
};

}  // namespace korvex::cli
