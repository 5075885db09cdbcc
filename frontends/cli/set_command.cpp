// set: ticks boxes, types into fields and presses Apply, all or nothing.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <deque>
#include <ostream>

#include "cli/commands.h"
#include "cli/form_driver.h"
#include "cli/registry_access.h"
#include "cli/script_program.h"
#include "cli/steps.h"
#include "cli/tweak_json.h"
#include "cli/tweak_names.h"
#include "dialogs/office/frm_office.h"
#include "dialogs/office/running_applications.h"
#include "engine/readers.h"
#include "engine/tweak_controls.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using engine::Tweak;
using engine::TweakState;

// One TWEAK=STATE of the command line.
struct Wish {
  const Tweak* tweak = nullptr;
  std::string typed;  // "on", "default", the text of a text row
  bool byDefault = false;
  int box = 0;                // a CheckValue
  bool applied = false;       // its routine ran: there was something to change
  std::string before, after;  // "on", or the text of a text row
};

struct WordRow {
  std::string_view word;
  int box;
};
constexpr std::array kWords{WordRow{"on", forms::vbChecked}, WordRow{"off", forms::vbUnchecked},
                            WordRow{"grey", forms::vbGrayed}};
constexpr std::string_view kDefaultWord = "default";
constexpr int kModeOfTheBoxItself = 0;

struct SetOptions {
  std::vector<std::string> wishes;
  std::vector<std::string> answers;
};

Failure badWish(const std::string& argument, std::string_view why) {
  return {ExitCode::Usage, "bad-state", fmt::format("'{}': {}", printable(argument), why)};
}

Wish parseWish(const std::string& argument) {
  const std::size_t equals = argument.find('=');
  Wish wish;
  wish.tweak = &tweakNamed(argument.substr(0, equals));
  if (equals == std::string::npos) {
    throw badWish(argument, "say what to set it to: TWEAK=on, off, grey or default.");
  }
  wish.typed = argument.substr(equals + 1);
  wish.byDefault = wish.typed == kDefaultWord;
  if (wish.byDefault || isTextRow(*wish.tweak)) return wish;
  if (isRoutine(*wish.tweak)) {
    throw badWish(argument, "this is a routine without a box; only default can be asked for.");
  }
  const auto word = std::find_if(kWords.begin(), kWords.end(),
                                 [&wish](const WordRow& row) { return row.word == wish.typed; });
  if (word == kWords.end()) throw badWish(argument, "use on, off, grey or default.");
  wish.box = word->box;
  if (wish.box == forms::vbGrayed && wish.tweak->mode != kModeOfTheBoxItself) {
    throw badWish(argument, "this tweak has no grey state; use on, off or default.");
  }
  return wish;
}

std::vector<Wish> parseWishes(const std::vector<std::string>& arguments) {
  std::vector<Wish> wishes;
  for (const std::string& argument : arguments) {
    Wish wish = parseWish(argument);
    const bool twice = std::any_of(wishes.begin(), wishes.end(), [&wish](const Wish& earlier) {
      return earlier.tweak == wish.tweak;
    });
    if (twice) throw badWish(argument, "the same tweak is set twice.");
    wishes.push_back(std::move(wish));
  }
  return wishes;
}

std::string stateText(const Tweak& tweak, foundation::Session& session) {
  if (isTextRow(tweak)) return engine::readText(tweak, session);
  return std::string(stateName(tweak, engine::readState(tweak, session)));
}

void readBefore(std::vector<Wish>& wishes, foundation::Session& session) {
  for (Wish& wish : wishes) {
    const TweakState state = engine::availability(*wish.tweak, session);
    if (state.kind == TweakState::Kind::Unavailable) {
      throw Failure(ExitCode::Failed, "unavailable",
                    fmt::format("{} is not available on this machine: {} Nothing was changed.",
                                wish.tweak->property, state.reason));
    }
    wish.before = stateText(*wish.tweak, session);
  }
}

void throwIfUnanswered(const AnswerScript& prompts) {
  if (prompts.failure().empty()) return;
  throw Failure(ExitCode::Failed, "unanswered-question",
                fmt::format("{}. Give the answer with --answer, once for each question, in their "
                            "order. Nothing was changed.",
                            prompts.failure()));
}

[[noreturn]] void refused(const Wish& wish, const AnswerScript& prompts) {
  throw Failure(
      ExitCode::Failed, "refused",
      fmt::format("{} could not be set to '{}': {} Nothing was changed.", wish.tweak->property,
                  printable(wish.typed),
                  prompts.lastText().empty() ? "the form refused it." : prompts.lastText()));
}

bool isWaiting(ScriptProgram& script, const Tweak& tweak) {
  const auto waiting = script.program().pendingChanges().waiting(tweak.bank);
  return std::find(waiting.begin(), waiting.end(), tweak.property) != waiting.end();
}

void click(forms::Form& form, const Tweak& tweak, int value) {
  if (tweak.shape == engine::ControlShape::OptionPair) {
    perform(form, {Step::Kind::Check, engine::optionName(tweak, value == 1 ? 0 : 1), "", ""});
  } else {
    setCheckBox(form, tweak.control, value);
  }
}

// What the hand does on one form: every wish for it, then its Apply button.
void applyOnForm(ScriptProgram& script, std::vector<Wish>& wishes, std::string_view formName,
                 const AnswerScript& prompts) {
  forms::Form& form = script.program().formBook().load(formName);
  for (Wish& wish : wishes) {
    if (wish.byDefault || wish.tweak->form != formName) continue;
    // Rows are set by their names, whatever the window would show of them at the moment.
    if (forms::Control* control = form.find(wish.tweak->control)) control->Visible = true;
    if (isTextRow(*wish.tweak)) {
      fillField(form, wish.tweak->control, wish.typed);
      // A list knows its items without regard to case.
      const std::string stands = form.find(wish.tweak->control)->stateText();
      if (!platform::sameName(stands, wish.typed)) refused(wish, prompts);
      wish.applied = wish.typed != wish.before;
    } else {
      click(form, *wish.tweak, wish.box);
      throwIfUnanswered(prompts);
      // A form may take a click back.
      if (engine::shownState(form, *wish.tweak) != wish.box) refused(wish, prompts);
      wish.applied = isWaiting(script, *wish.tweak);
    }
  }
  auto* apply = form.applyButton();
  if (apply != nullptr) apply->press();
  throwIfUnanswered(prompts);
  // A change that could not be made leaves the button enabled, and its reason in a message.
  if (apply != nullptr && apply->Enabled) {
    throw Failure(ExitCode::Failed, "refused", prompts.lastText() + "\nNothing was changed.");
  }
}

// What Apply does before its first change of Jet.
void saveJet(ScriptProgram& script, const Tweak& tweak, const AnswerScript& prompts) {
  if (tweak.bank != engine::Bank::Office || tweak.root != engine::HKLM) return;
  forms::Form& office = script.program().formBook().load(tweak.form);
  const bool goOn = dynamic_cast<dialogs::frmOffice&>(office).backUpJetOnce();
  throwIfUnanswered(prompts);
  if (!goOn) throw Failure(ExitCode::Failed, "refused", prompts.lastText());
}

void applyDefaults(ScriptProgram& script, std::vector<Wish>& wishes, const AnswerScript& prompts) {
  program::Program& program = script.program();
  for (Wish& wish : wishes) {
    if (!wish.byDefault) continue;
    wish.applied = true;
    saveJet(script, *wish.tweak, prompts);
    program.session().g_bDefaulting = true;
    program.regWorker().call(wish.tweak->property);
    program.session().g_bDefaulting = false;
    throwIfUnanswered(prompts);
    if (program.regWorker().bLastWriteFailed) {
      throw registryFailure(program.regWorker().lastStatus, std::string(wish.tweak->property));
    }
  }
}

// The controls of frmOffice ask by themselves; here it is one answer for all of them, and for
// default, which clicks none.
void refuseWhileOfficeRuns(ScriptProgram& script, const std::vector<Wish>& wishes) {
  const auto wish = std::find_if(wishes.begin(), wishes.end(), [](const Wish& each) {
    return each.tweak->bank == engine::Bank::Office &&
           (each.byDefault || each.typed != each.before);
  });
  if (wish == wishes.end()) return;
  const auto running = dialogs::runningOfficeApplications(script.program().session());
  if (running.empty()) return;
  throw Failure(
      ExitCode::Busy, "office-running",
      fmt::format("{} could not be set to '{}' while applications of Office are "
                  "running. Close these first: {}. Nothing was changed.",
                  wish->tweak->property, printable(wish->typed), fmt::join(running, ", ")));
}

void apply(ScriptProgram& script, std::vector<Wish>& wishes, const AnswerScript& prompts) {
  refuseWhileOfficeRuns(script, wishes);
  std::vector<std::string_view> formNames;
  for (const Wish& wish : wishes) {
    const auto known = std::find(formNames.begin(), formNames.end(), wish.tweak->form);
    if (!wish.byDefault && known == formNames.end()) formNames.push_back(wish.tweak->form);
  }
  for (const std::string_view name : formNames) applyOnForm(script, wishes, name, prompts);
  applyDefaults(script, wishes, prompts);
}

// What a set command has done.
struct Outcome {
  std::vector<Wish> wishes;
  Changes changes;
  std::vector<std::string> unusedAnswers;
  bool restartNeeded = false;   // for one of the tweaks at least
  bool restartOffered = false;  // what the window would do on leaving: the last routine decides
};

void printJson(Context& context, const Outcome& outcome) {
  Json json = document();
  json["tweaks"] = Json::array();
  for (const Wish& wish : outcome.wishes) {
    json["tweaks"].push_back({{"property", wish.tweak->property},
                              {"requested", wish.typed},
                              {"before", wish.before},
                              {"after", wish.after},
                              {"applied", wish.applied},
                              {"restart", wish.tweak->reboot}});
  }
  json["changes"] = changesJson(outcome.changes);
  json["unusedAnswers"] = outcome.unusedAnswers;
  json["restartNeeded"] = outcome.restartNeeded;
  json["restartOffered"] = outcome.restartOffered;
  print(context.out, json);
}

void printText(Context& context, const Outcome& outcome) {
  for (const Wish& wish : outcome.wishes) {
    std::string note;
    if (!wish.applied) {
      note = "  (already so)";
    } else if (wish.tweak->reboot) {
      note = "  (takes effect after a restart)";
    }
    const std::string change =
        isRoutine(*wish.tweak)
            ? "carried out"
            : fmt::format("{} -> {}", printable(wish.before), printable(wish.after));
    context.out << fmt::format("{}: {}{}\n", wish.tweak->property, change, note);
  }
  context.out << changesText(outcome.changes, "");
  if (outcome.changes.empty()) context.out << "Nothing had to be written.\n";
  context.out << (outcome.restartNeeded ? "A restart is needed.\n" : "No restart is needed.\n");
}

Outcome carryOut(ScriptProgram& script, std::vector<Wish> wishes, const AnswerScript& prompts) {
  script.start();
  foundation::Session& session = script.program().session();
  readBefore(wishes, session);
  apply(script, wishes, prompts);

  Outcome outcome;
  outcome.changes = merged(script.log().take());
  for (Wish& wish : wishes) {
    wish.after = stateText(*wish.tweak, session);
    const bool counts = wish.applied && wish.tweak->reboot && !outcome.changes.empty();
    outcome.restartNeeded = outcome.restartNeeded || counts;
  }
  outcome.wishes = std::move(wishes);
  outcome.restartOffered = session.g_bRebootNeeded && !session.g_bNoShowReboot;
  for (const ScriptedAnswer& answer : prompts.leftOver()) {
    outcome.unusedAnswers.push_back(answer.step);
  }
  script.finish();
  script.commit();
  return outcome;
}

ExitCode set(Context& context, const SetOptions& options) {
  std::vector<Wish> wishes = parseWishes(options.wishes);
  std::deque<ScriptedAnswer> answers;
  for (const std::string& answer : options.answers) answers.push_back(parseAnswer(answer));
  const auto machine = context.openMachine(platform::OpenMode::ReadWrite);
  AnswerScript prompts(std::move(answers));
  prompts.onMessage = [&context, &prompts](const ShownMessage& message) {
    // What follows from a question without an answer says nothing new.
    if (prompts.failure().empty()) context.note(message.text);
  };
  ScriptProgram script(*machine, prompts, RunKind::Write, context.verbose);
  Outcome outcome;
  try {
    outcome = carryOut(script, std::move(wishes), prompts);
  } catch (const Failure& failure) {
    throw Failure(failure.code(), failure.kind(), failure.what() + script.takeFilesBack());
  }
  for (const std::string& answer : outcome.unusedAnswers) {
    context.note(fmt::format("korvex: {} was not needed: nothing asked for it.", answer));
  }
  if (context.json) {
    printJson(context, outcome);
  } else {
    printText(context, outcome);
  }
  return ExitCode::Done;
}

}  // namespace

void addSetCommand(CLI::App& app, Run& run) {
  const auto options = std::make_shared<SetOptions>();
  CLI::App* command = addCommand(
      app, "set", "Tick the boxes of tweaks and press Apply",
      "  korvex set P_rwRun=on\n"
      "  korvex set Run=on Find=off NoFavoritesMenu=default\n"
      "  korvex set StartMenuSpeed=200\n"
      "  korvex set ControlPanel=on --answer yes\n"
      "\n"
      "grey writes what a greyed box stands for, where a tweak has that state; default writes the\n"
      "Windows default. Either all of it is done or nothing. A tweak that asks something needs an\n"
      "answer for each question: yes, no, ok, cancel, input=TEXT, file=PATH, folder=PATH or "
      "font=NAME,POINTS.");
  command
      ->add_option("TWEAK=STATE", options->wishes,
                   "Property name, also without P_rw, and on, off, grey or default; for a field "
                   "its text")
      ->required()
      ->type_name("");
  command->add_option("--answer", options->answers, "Answers the next question; can be repeated")
      ->allow_extra_args(false)
      ->type_name("ANSWER");
  command->callback(
      [&run, options] { run = [options](Context& context) { return set(context, *options); }; });
}

}  // namespace korvex::cli
