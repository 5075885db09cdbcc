// Answers from the command line.
#include "cli/answer_script.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>

#include "cli/value_text.h"

namespace korvex::cli {
namespace {

using platform::Answer;

struct ButtonRow {
  int buttons;
  std::string_view text;
};
constexpr std::array kButtons{
    ButtonRow{platform::kButtonsOk, "ok"},
    ButtonRow{platform::kButtonsOkCancel, "ok/cancel"},
    ButtonRow{platform::kButtonsYesNoCancel, "yes/no/cancel"},
    ButtonRow{platform::kButtonsYesNo, "yes/no"},
};

struct AnswerRow {
  std::string_view word;
  Answer answer;
};
constexpr std::array kAnswers{AnswerRow{"ok", Answer::Ok}, AnswerRow{"cancel", Answer::Cancel},
                              AnswerRow{"yes", Answer::Yes}, AnswerRow{"no", Answer::No}};

constexpr int kPatience = 100;

std::string_view buttonText(int style) {
  for (const ButtonRow& row : kButtons) {
    if (row.buttons == (style & platform::kButtonsMask)) return row.text;
  }
  return "ok";
}

// Whether a word is one of "yes/no/cancel".
bool offers(std::string_view buttons, std::string_view word) {
  return ("/" + std::string(buttons) + "/").find("/" + std::string(word) + "/") !=
         std::string::npos;
}

}  // namespace

void AnswerScript::show(const ShownMessage& message) {
  lastText_ = message.text;
  if (onMessage) onMessage(message);
}

void AnswerScript::fail(std::string_view question, std::string_view buttons) {
  // A handler that asks until it gets an answer must not hang a script.
  if (++refusals_ > kPatience) throw std::runtime_error("a question was asked again and again");
  if (!failure_.empty()) return;
  const std::string asked = oneLine(question);
  failure_ = answers_.empty()
                 ? fmt::format("a question has no answer left: \"{}\" ({})", asked, buttons)
                 : fmt::format("the next answer, {}, does not fit the question: \"{}\" ({})",
                               answers_.front().step, asked, buttons);
}

Answer AnswerScript::messageBox(std::string_view text, int style, std::string_view title) {
  ShownMessage message{std::string(title), std::string(text), std::string(buttonText(style)), ""};
  if (message.buttons == "ok") {
    message.answer = "ok";
    show(message);
    return Answer::Ok;
  }
  if (unanswered_ == Unanswered::FirstButton && answers_.empty()) {
    const std::string first = message.buttons.substr(0, message.buttons.find('/'));
    answers_.push_back({ScriptedAnswer::Kind::Button, first, first});
  }
  const bool fits = failure_.empty() && !answers_.empty() &&
                    answers_.front().kind == ScriptedAnswer::Kind::Button &&
                    offers(message.buttons, answers_.front().text);
  if (fits) {
    message.answer = answers_.front().text;
    answers_.pop_front();
  }
  show(message);
  if (!fits) {
    fail(text, message.buttons);
    return Answer::Cancel;
  }
  for (const AnswerRow& row : kAnswers) {
    if (row.word == message.answer) return row.answer;
  }
  return Answer::Cancel;
}

std::optional<std::string> AnswerScript::askForText(ShownMessage message,
                                                    ScriptedAnswer::Kind kind) {
  const bool given = failure_.empty() && !answers_.empty();
  const bool cancel = given && answers_.front().kind == ScriptedAnswer::Kind::Button &&
                      answers_.front().text == "cancel";
  const bool fits = given && (cancel || answers_.front().kind == kind);
  std::optional<std::string> result;
  if (fits) {
    message.answer = answers_.front().text;
    if (!cancel) result = answers_.front().text;
    answers_.pop_front();
  }
  show(message);
  if (!fits) fail(message.text, message.buttons);
  return result;
}

std::optional<std::string> AnswerScript::inputBox(std::string_view text, std::string_view title,
                                                  std::string_view) {
  return askForText({std::string(title), std::string(text), "input", ""},
                    ScriptedAnswer::Kind::Input);
}

std::optional<std::string> AnswerScript::pickFile(const platform::FileRequest& request) {
  return askForText({request.title, request.title, "file", ""}, ScriptedAnswer::Kind::File);
}

std::optional<std::string> AnswerScript::pickFolder(std::string_view title) {
  return askForText({std::string(title), std::string(title), "folder", ""},
                    ScriptedAnswer::Kind::Folder);
}

// "Arial,10": name and points.
std::optional<platform::FontChoice> AnswerScript::pickFont(const platform::FontChoice& current,
                                                           std::string_view title) {
  const auto answer =
      askForText({std::string(title), std::string(title), "font", ""}, ScriptedAnswer::Kind::Font);
  if (!answer) return std::nullopt;
  const std::size_t comma = std::min(answer->rfind(','), answer->size());
  platform::FontChoice font = current;
  font.name = answer->substr(0, comma);
  if (comma < answer->size()) font.points = std::atoi(answer->c_str() + comma + 1);
  return font;
}

// No step stands for this one yet.

std::optional<std::uint32_t> AnswerScript::pickColor(std::uint32_t) {
  fail("a colour", "colour");
  return std::nullopt;
}

}  // namespace korvex::cli
