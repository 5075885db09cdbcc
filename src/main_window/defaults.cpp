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
  if (tweak.shape == ControlShape::TextBox) return engine::readText(tweak, session);
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

}  // namespace

DefaultsOutcome restoreDefaults(Session& session, engine::RegWorker& regWorker,
                                engine::PendingChanges& pending,
                                const std::function<void(int)>& progress) {
  session.trace.enter("[cmdDefaults_Click]");
  DefaultsOutcome outcome;
  const Defaulting mode(session);
  const auto& rows = engine::allTweaks();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Tweak& tweak = *rows[i];
    progress(static_cast<int>(i * 100 / rows.size()));
    if (engine::availability(tweak, session).kind == engine::TweakState::Kind::Unavailable) {
      continue;
    }
    const std::string before = standing(tweak, session);
    bool done = false;
    foundation::guarded(session, std::string(tweak.property),
                        [&] { done = regWorker.call(tweak.property); });
    if (!done) {
      outcome.failed.push_back({std::string(tweak.property), regWorker.lastStatus});
    } else if (standing(tweak, session) != before) {
      outcome.changed.push_back(forms::plainCaption(engine::onMachine(tweak, session).caption));
    }
  }
  for (int bank = 1; bank <= static_cast<int>(Bank::DrWat); ++bank) {
    pending.discard(static_cast<Bank>(bank));
  }
  return outcome;
}

std::string describeDefaults(const DefaultsOutcome& outcome) {
  std::string text;
  if (outcome.changed.empty()) {
    text = "Every setting has its default already.";
  } else {
    text = outcome.changed.size() == 1
               ? std::string("1 setting was reset to its default:")
               : fmt::format("{} settings were reset to their defaults:", outcome.changed.size());
    for (std::size_t i = 0; i < outcome.changed.size() && i < kMostNamed; ++i) {
      text += fmt::format("\r\n{}", outcome.changed[i]);
    }
    if (outcome.changed.size() > kMostNamed) {
      text += fmt::format("\r\nand {} more", outcome.changed.size() - kMostNamed);
    }
  }
  if (outcome.failed.empty()) return text;
  text += fmt::format("\r\n\r\n{} could not be reset:", outcome.failed.size());
  for (const engine::FailedRoutine& failure : outcome.failed) {
    text += fmt::format("\r\n{}: {}.", failure.property, platform::describeStatus(failure.status));
  }
  return text;
}

}  // namespace korvex::main_window
