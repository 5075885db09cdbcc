// form run: the steps of a script carried out on a form, all of them or none.
#include "cli/form_run.h"

#include <fmt/format.h>

#include <ostream>

#include "cli/form_driver.h"
#include "cli/script_program.h"
#include "cli/transcript.h"
#include "cli/tweak_names.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using forms::Form;

// Tells the transcript about a restart, and hands it on.
class ToldRestart : public platform::Restart {
 public:
  ToldRestart(platform::Restart& inner, std::function<void(std::uint32_t)> told)
      : inner_(inner), told_(std::move(told)) {}

  platform::Status OpenProcessToken(std::uint32_t access, std::uint32_t& token) override {
    return inner_.OpenProcessToken(access, token);
  }
  platform::Status LookupPrivilegeValueA(std::string_view system, std::string_view privilege,
                                         std::uint64_t& identifier) override {
    return inner_.LookupPrivilegeValueA(system, privilege, identifier);
  }
  platform::Status AdjustTokenPrivileges(std::uint32_t token, std::uint64_t identifier,
                                         std::uint32_t attributes) override {
    return inner_.AdjustTokenPrivileges(token, identifier, attributes);
  }
  platform::Status ExitWindowsEx(std::uint32_t flags, std::uint32_t reserved) override {
    const platform::Status status = inner_.ExitWindowsEx(flags, reserved);
    if (status == platform::ERROR_SUCCESS) told_(flags);
    return status;
  }

 private:
  platform::Restart& inner_;
  std::function<void(std::uint32_t)> told_;
};

// Carries the steps out on a form, and on every form that this one opens.
class Driver : public forms::FormHost {
 public:
  Driver(const Script& script, AnswerScript& prompts, Transcript& transcript,
         const foundation::Session& session)
      : script_(script), prompts_(prompts), transcript_(transcript), session_(session) {}

  // Until the steps are done or the form asks to be closed.
  void drive(Form& form) {
    driveUntil(form, [] { return true; });
  }

  // A form that another one shows: it stays while it refuses to go.
  void showModal(Form& form) override {
    const auto mayClose = [&form] { return form.QueryUnload(); };
    if (!driveUntil(form, mayClose) && !mayClose()) {
      throw Failure(ExitCode::Failed, "not-closed", form.name() + " refuses to close.");
    }
  }

  bool done() const { return next_ >= script_.steps.size(); }
  const Step& nextStep() const { return script_.steps[next_]; }

 private:
  // True where the form asked to be closed, and may.
  bool driveUntil(Form& form, const std::function<bool()>& mayClose) {
    bool closing = false;
    const forms::Subscription closed =
        form.closeRequested.subscribe([&closing, &mayClose] { closing = mayClose(); });
    while (!closing && !session_.endRequested() && next_ < script_.steps.size()) {
      const Step& step = script_.steps[next_++];
      transcript_.step(step.typed);
      perform(form, step);
      transcript_.addChanges();
      if (!prompts_.failure().empty()) {
        throw Failure(ExitCode::Failed, "unanswered-question",
                      fmt::format("At {}, {}.", step.typed, prompts_.failure()));
      }
    }
    return closing;
  }

  const Script& script_;
  AnswerScript& prompts_;
  Transcript& transcript_;
  const foundation::Session& session_;
  std::size_t next_ = 0;
};

void noteLeftOver(const Context& context, const AnswerScript& prompts) {
  for (const ScriptedAnswer& answer : prompts.leftOver()) {
    context.note(fmt::format("korvex: {} was not needed: nothing asked for it.", answer.step));
  }
}

void printResult(Context& context, const Transcript& transcript, const AnswerScript& prompts) {
  noteLeftOver(context, prompts);
  if (!context.json) {
    context.out << transcript.text();
    return;
  }
  Json json = document();
  json["events"] = transcript.json();
  json["unusedAnswers"] = Json::array();
  for (const ScriptedAnswer& answer : prompts.leftOver()) {
    json["unusedAnswers"].push_back(answer.step);
  }
  print(context.out, json);
}

void runSteps(ScriptProgram& script, Driver& driver, const std::string& formName) {
  program::Program& program = script.program();
  program.formBook().setHost(&driver);
  script.start();
  Form& form = program.formBook().load(formName);
  driver.drive(form);
  if (!driver.done()) {
    throw Failure(ExitCode::Failed, "form-closed",
                  fmt::format("{} has closed, so {} cannot be carried out.", formName,
                              driver.nextStep().typed));
  }
  script.finish(formName);
}

}  // namespace

std::string formNamed(const std::string& typed) {
  std::vector<std::string> names;
  for (const program::FormRow& row : program::Program::forms()) {
    if (platform::sameName(row.name, typed)) return std::string(row.name);
    names.emplace_back(row.name);
  }
  throw Failure(ExitCode::Usage, "unknown-form",
                fmt::format("There is no form named '{}'.{} 'korvex form list' shows them all.",
                            printable(typed), suggestion(typed, names)));
}

ExitCode runForm(Context& context, const std::string& form, const std::vector<std::string>& words) {
  const std::string name = formNamed(form);
  const Script script = parseSteps(words);
  const auto machine = context.openMachine(platform::OpenMode::ReadWrite);
  AnswerScript prompts(script.answers);
  Transcript* told = nullptr;
  ToldRestart restart(machine->restart(), [&told](std::uint32_t flags) { told->restart(flags); });
  platform::ComposedMachine telling(*machine, {.restart = &restart});
  ScriptProgram run(telling, prompts, RunKind::Write, context.verbose);
  Transcript transcript(run.log());
  told = &transcript;
  prompts.onMessage = [&transcript](const ShownMessage& message) { transcript.message(message); };

  Driver driver(script, prompts, transcript, run.program().session());
  try {
    runSteps(run, driver, name);
    run.commit();
  } catch (const Failure& failure) {
    // What happened is told, and then taken back.
    transcript.addChanges();
    if (!context.json) context.out << transcript.text();
    throw FailureWithEvents(
        failure.code(), failure.kind(),
        failure.what() + std::string(" Nothing of this run was kept.") + run.takeFilesBack(),
        transcript.json());
  }
  printResult(context, transcript, prompts);
  return ExitCode::Done;
}

}  // namespace korvex::cli
