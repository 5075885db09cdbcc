// Running the routines, and telling what came of it.
#include "main_window/defaults.h"

#include <fmt/format.h>

#include <utility>

#include "engine/catalogue.h"
#include "engine/readers.h"
#include "forms/control.h"
#include "foundation/error_handler.h"

namespace korvex::main_window {
namespace {

using engine::Bank;
using engine::ControlShape;
using engine::Tweak;
using foundation::Session;

constexpr std::size_t kMostNamed = 15;

// How a tweak stands, so that two looks at it can be compared.
std::string standing(const Tweak& tweak, Session& session) {
  if (engine::isField(tweak)) return engine::readText(tweak, session);
  return std::to_string(static_cast<int>(engine::readState(tweak, session).kind));
}

// The mode stays on however the routine ends.
class Defaulting {
 public:
  explicit Defaulting(Session& session) : session_(session) { session_.g_bDefaulting = true; }
  ~Defaulting() { session_.g_bDefaulting = false; }

 private:
  Session& session_;
};

void reset(const Tweak& row, Session& session, engine::RegWorker& regWorker,
           DefaultsOutcome& outcome) {
  if (engine::availability(row, session).kind == engine::TweakState::Kind::Unavailable) return;
  const std::string caption = forms::plainCaption(engine::onMachine(row, session).caption);
  const std::string before = standing(row, session);
  bool raised = true;  // until it comes back
  bool done = false;
  foundation::guarded(session, std::string(row.property), [&] {
    done = regWorker.call(row.property);
    raised = false;
  });
  if (!done) {
    outcome.failed.push_back(fmt::format(
        "{}: {}.", caption,
        raised ? "an error, which the log names" : platform::describeStatus(regWorker.lastStatus)));
  } else if (standing(row, session) != before) {
    outcome.changed.push_back(caption);
  }
}

// Of many the first ones.
std::string shortened(const std::vector<std::string>& lines) {
  std::string text;
  for (std::size_t i = 0; i < lines.size() && i < kMostNamed; ++i) {
    text += fmt::format("{}{}", foundation::kCrLf, lines[i]);
  }
  if (lines.size() > kMostNamed) {
    text += fmt::format("{}and {} more", foundation::kCrLf, lines.size() - kMostNamed);
  }
  return text;
}

}  // namespace

DefaultsOutcome restoreDefaults(Session& session, engine::RegWorker& regWorker,
                                engine::PendingChanges& pending,
                                const std::function<void(int)>& progress) {
  session.trace.enter("[cmdDefaults_Click]");
  DefaultsOutcome outcome;
  const Defaulting mode(session);
  const auto& rows = engine::allTweaks();
  for (std::size_t i = 0; i < rows.size() && !session.endRequested(); ++i) {
    progress(static_cast<int>(i * 100 / rows.size()));
    reset(*rows[i], session, regWorker, outcome);
  }
  for (int bank = 1; bank <= static_cast<int>(Bank::DrWat); ++bank) {
    pending.discard(static_cast<Bank>(bank));
  }
  return outcome;
}

std::string describeDefaults(const DefaultsOutcome& outcome) {
  const std::size_t changes = outcome.changed.size();
  std::string text;
  if (changes > 0) {
    text = changes == 1 ? std::string("1 setting was reset to its default:")
                        : fmt::format("{} settings were reset to their defaults:", changes);
    text += shortened(outcome.changed);
  } else {
    text =
        outcome.failed.empty() ? "Every setting has its default already." : "No setting was reset.";
  }
  if (outcome.failed.empty()) return text;
  return fmt::format("{}\r\n\r\n{} could not be reset:{}\r\nPut the cause right and try again.",
                     text, outcome.failed.size(), shortened(outcome.failed));
}

}  // namespace korvex::main_window
