// AnswerScript: the person in front of a command. Messages are kept and told; questions are
// answered from what the command line gave.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/prompts.h"

namespace korvex::cli {

struct ScriptedAnswer {
  enum class Kind { Button, Input, File, Folder, Font };
  Kind kind = Kind::Button;
  std::string text;  // "yes", "no", "ok", "cancel"; the input; the path
  std::string step;  // as it was typed, for messages
};

struct ShownMessage {
  std::string title;
  std::string text;
  std::string buttons;  // "ok", "yes/no", "input", "file", ...
  std::string answer;   // "" where none was left
};

// What becomes of a question that no answer was given for: the command fails, or, in a rehearsal,
// the first button is pressed.
enum class Unanswered { Fails, FirstButton };

// A box with nothing but OK answers itself. Every other question takes the next answer; "cancel"
// fits input boxes and pickers too. A question without an answer that fits is answered with
// Cancel, whatever its buttons (No may mean something), and failure() tells about it: the command
// then takes everything back.
class AnswerScript : public platform::Prompts {
 public:
  explicit AnswerScript(std::deque<ScriptedAnswer> answers = {},
                        Unanswered unanswered = Unanswered::Fails)
      : answers_(std::move(answers)), unanswered_(unanswered) {}

  std::function<void(const ShownMessage&)> onMessage;

  // The question that could not be answered, and why; "" for none.
  const std::string& failure() const { return failure_; }
  const std::deque<ScriptedAnswer>& leftOver() const { return answers_; }
  // The text of the last message shown; "" for none.
  const std::string& lastText() const { return lastText_; }

  platform::Answer messageBox(std::string_view text, int style, std::string_view title) override;
  std::optional<std::string> inputBox(std::string_view text, std::string_view title,
                                      std::string_view proposal) override;
  std::optional<std::string> pickFile(const platform::FileRequest& request) override;
  std::optional<std::string> pickFolder(std::string_view title) override;
  std::optional<platform::FontChoice> pickFont(const platform::FontChoice& current,
                                               std::string_view title) override;
  std::optional<std::uint32_t> pickColor(std::uint32_t current) override;

 private:
  std::optional<std::string> askForText(ShownMessage message, ScriptedAnswer::Kind kind);
  void show(const ShownMessage& message);
  void fail(std::string_view question, std::string_view buttons);

  std::deque<ScriptedAnswer> answers_;
  Unanswered unanswered_;
  std::string failure_;
  std::string lastText_;
  int refusals_ = 0;
};

}  // namespace korvex::cli
