// Taking steps apart.
#include "cli/steps.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "cli/failure.h"
#include "cli/value_text.h"

namespace korvex::cli {
namespace {

enum class Text { None, MayBe, Due };
struct StepRow {
  std::string_view word;
  Step::Kind kind;
  Text text;
};
constexpr std::array kSteps{
    StepRow{"check", Step::Kind::Check, Text::MayBe},
    StepRow{"uncheck", Step::Kind::Uncheck, Text::MayBe},
    StepRow{"type", Step::Kind::Type, Text::Due},
    StepRow{"secret", Step::Kind::Secret, Text::Due},
    StepRow{"select", Step::Kind::Select, Text::Due},
    StepRow{"press", Step::Kind::Press, Text::None},
};

struct AnswerRow {
  std::string_view word;
  ScriptedAnswer::Kind kind;
};
constexpr std::array kAnswers{
    AnswerRow{"answer", ScriptedAnswer::Kind::Button},
    AnswerRow{"input", ScriptedAnswer::Kind::Input},
    AnswerRow{"file", ScriptedAnswer::Kind::File},
    AnswerRow{"folder", ScriptedAnswer::Kind::Folder},
    AnswerRow{"font", ScriptedAnswer::Kind::Font},
};
constexpr std::array<std::string_view, 4> kButtonWords{"yes", "no", "ok", "cancel"};

Failure badStep(const std::string& word, std::string_view why) {
  return {ExitCode::Usage, "bad-step", fmt::format("'{}' is no step: {}", printable(word), why)};
}

Step parseStep(const StepRow& row, const std::string& typed, const std::string& rest) {
  Step step{row.kind, rest, "", typed};
  const std::size_t colon = row.text == Text::None ? std::string::npos : rest.find(':');
  if (colon != std::string::npos) {
    step.control = rest.substr(0, colon);
    step.text = rest.substr(colon + 1);
  } else if (row.text == Text::Due) {
    throw badStep(typed, fmt::format("write {}=CONTROL:TEXT.", row.word));
  }
  if (step.control.empty()) throw badStep(typed, "it names no control.");
  return step;
}

bool isButton(const std::string& word) {
  return std::find(kButtonWords.begin(), kButtonWords.end(), word) != kButtonWords.end();
}

}  // namespace

ScriptedAnswer parseAnswer(const std::string& typed) {
  if (isButton(typed)) return {ScriptedAnswer::Kind::Button, typed, "--answer " + typed};
  const std::size_t equals = typed.find('=');
  for (const AnswerRow& row : kAnswers) {
    if (row.kind == ScriptedAnswer::Kind::Button || equals == std::string::npos) continue;
    if (typed.substr(0, equals) == row.word) {
      return {row.kind, typed.substr(equals + 1), "--answer " + typed};
    }
  }
  throw Failure(ExitCode::Usage, "bad-answer",
                fmt::format("'{}' is no answer: use yes, no, ok, cancel, input=TEXT, file=PATH or "
                            "folder=PATH.",
                            printable(typed)));
}

Script parseSteps(const std::vector<std::string>& words) {
  Script script;
  for (const std::string& typed : words) {
    const std::size_t equals = typed.find('=');
    const std::string word = typed.substr(0, equals);
    const std::string rest = equals == std::string::npos ? "" : typed.substr(equals + 1);
    const auto step = std::find_if(kSteps.begin(), kSteps.end(),
                                   [&word](const StepRow& row) { return row.word == word; });
    const auto answer = std::find_if(kAnswers.begin(), kAnswers.end(),
                                     [&word](const AnswerRow& row) { return row.word == word; });
    if (equals == std::string::npos || (step == kSteps.end() && answer == kAnswers.end())) {
      throw badStep(
          typed,
          "use check=C, uncheck=C, check=C:ITEM, uncheck=C:ITEM, type=C:TEXT, secret=C:FD, "
          "select=C:ITEM, press=C, answer=yes|no|ok|cancel, input=TEXT, file=PATH or "
          "folder=PATH.");
    }
    if (step != kSteps.end()) {
      script.steps.push_back(parseStep(*step, typed, rest));
      continue;
    }
    if (answer->kind == ScriptedAnswer::Kind::Button && !isButton(rest)) {
      throw badStep(typed, "an answer is yes, no, ok or cancel.");
    }
    script.answers.push_back({answer->kind, rest, typed});
  }
  return script;
}

}  // namespace korvex::cli
