// form list, form show; form run's command line.
#include <fmt/format.h>

#include <ostream>

#include "cli/commands.h"
#include "cli/form_run.h"
#include "cli/output.h"
#include "cli/script_program.h"

namespace korvex::cli {
namespace {

struct RunOptions {
  std::string form;
  std::vector<std::string> steps;
};

ExitCode list(Context& context) {
  Json rows = Json::array();
  for (const program::FormRow& row : program::Program::forms()) {
    if (context.json) {
      rows.push_back({{"name", row.name}, {"title", row.title}});
    } else {
      context.out << fmt::format("{:<20}  {}\n", row.name, row.title);
    }
  }
  if (context.json) {
    Json json = document();
    json["forms"] = std::move(rows);
    print(context.out, json);
  }
  return ExitCode::Done;
}

Json controlJson(const forms::Control& control) {
  Json json{{"name", control.name()},
            {"kind", kindName(control.kind())},
            {"caption", forms::plainCaption(control.Caption.get())},
            {"accessibleName", control.accessibleName()},
            {"state", control.stateText()},
            {"enabled", control.Enabled.get()},
            {"visible", control.Visible.get()},
            {"toolTip", control.ToolTipText.get()}};
  if (const auto* list = dynamic_cast<const forms::ListControl*>(&control)) {
    json["items"] = list->items();
    if (const auto* marked = dynamic_cast<const forms::CheckList*>(list)) {
      // One mark per item; null for one that cannot be checked.
      json["marks"] = Json::array();
      for (int i = 0; i < marked->ListCount(); ++i) {
        json["marks"].push_back(marked->isCheckable(i) ? Json(marked->isChecked(i)) : Json());
      }
    }
    if (const auto* several = dynamic_cast<const forms::MultiList*>(list)) {
      json["selected"] = several->selectedItems();
    }
  } else if (const auto* strip = dynamic_cast<const forms::TabStrip*>(&control)) {
    json["items"] = Json::array();
    for (const forms::Tab& tab : strip->tabs()) json["items"].push_back(tab.caption);
  }
  return json;
}

std::string controlLine(const forms::Control& control) {
  std::string line =
      fmt::format("  {:<26}  {:<13}  {:<14}  {}", control.name(), kindName(control.kind()),
                  printable(control.stateText()), control.accessibleName());
  if (!control.Visible) {
    line += "  (hidden)";
  } else if (!control.Enabled) {
    line += "  (disabled)";
  }
  line += '\n';
  if (const auto* marked = dynamic_cast<const forms::CheckList*>(&control)) {
    for (int i = 0; i < marked->ListCount(); ++i) {
      const char mark = !marked->isCheckable(i) ? '-' : marked->isChecked(i) ? 'x' : ' ';
      line += fmt::format("    [{}] {}\n", mark,
                          printable(marked->items()[static_cast<std::size_t>(i)]));
    }
  }
  return line;
}

ExitCode show(Context& context, const std::string& typed) {
  const std::string name = formNamed(typed);
  const auto machine = context.openMachine(platform::OpenMode::Read);
  AnswerScript prompts;
  prompts.onMessage = [&context](const ShownMessage& message) { context.note(message.text); };
  ScriptProgram script(*machine, prompts, RunKind::Rehearse, false);
  script.start();
  const forms::Form& form = script.program().formBook().load(name);
  if (!context.json) {
    context.out << fmt::format("{}: {}\n", form.name(), form.Caption.get());
    for (const forms::Control* control : form.controls()) context.out << controlLine(*control);
    if (!form.StatusText->empty()) context.out << form.StatusText.get() << '\n';
    return ExitCode::Done;
  }
  Json json = document();
  json["form"] = {{"name", form.name()},
                  {"caption", form.Caption.get()},
                  {"statusText", form.StatusText.get()},
                  {"controls", Json::array()}};
  for (const forms::Control* control : form.controls()) {
    json["form"]["controls"].push_back(controlJson(*control));
  }
  print(context.out, json);
  return ExitCode::Done;
}

void addRun(CLI::App& group, Run& run) {
  const auto options = std::make_shared<RunOptions>();
  CLI::App* command = addCommand(
      group, "run", "Drive a form as a person would, step by step",
      "  korvex form run frmMain check=chkHideRun press=cmdApply\n"
      "  korvex form run frmMain check=chkHideRun press=cmdApply press=cmdDone answer=no\n"
      "  korvex form run frmMain type=txtStartMenu:200 press=cmdApply\n"
      "\n"
      "Steps:\n"
      "  check=C  uncheck=C             tick or clear a check box (check= also sets an option)\n"
      "  check=C:ITEM  uncheck=C:ITEM   tick or clear an item of a list, named by its text or by\n"
      "                                 the beginning of it, up to a blank; where several can be\n"
      "                                 selected, one more or one less\n"
      "  type=C:TEXT                    type into a field\n"
      "  secret=C:FD                    type a password, read from that file descriptor\n"
      "  select=C:ITEM                  select an item of a list or a tab\n"
      "  press=C                        press a button\n"
      "  answer=yes|no|ok|cancel        answer a question\n"
      "  input=TEXT file=PATH folder=PATH font=NAME,POINTS\n"
      "                        what is typed or picked where a form asks for it\n"
      "\n"
      "Answers are used in their order, each by the next question; a message that only has OK\n"
      "needs none. At the end the form is closed, and what was not applied is discarded. A step\n"
      "that fails, or a question with no answer left, ends with exit code 5, and everything the\n"
      "run had changed is taken back.");
  command->add_option("FORM", options->form, "Name of the form")->required()->type_name("");
  command->add_option("STEP", options->steps, "What to do, in order")->type_name("");
  command->callback([&run, options] {
    run = [options](Context& context) { return runForm(context, options->form, options->steps); };
  });
}

}  // namespace

void addFormCommands(CLI::App& app, Run& run) {
  CLI::App* group = addGroup(app, "form", "List, show and drive the forms");
  CLI::App* listing = addCommand(*group, "list", "List the forms", "  korvex form list");
  listing->callback([&run] { run = [](Context& context) { return list(context); }; });

  const auto name = std::make_shared<std::string>();
  CLI::App* showing = addCommand(*group, "show", "Show the controls of a form and their states",
                                 "  korvex form show frmMain\n"
                                 "  korvex --json form show frmMain");
  showing->add_option("FORM", *name, "Name of the form")->required()->type_name("");
  showing->callback(
      [&run, name] { run = [name](Context& context) { return show(context, *name); }; });
  addRun(*group, run);
}

}  // namespace korvex::cli
