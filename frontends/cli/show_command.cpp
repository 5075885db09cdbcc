// show: one tweak, with what its routine would write.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <ostream>

#include "cli/commands.h"
#include "cli/rehearsal.h"
#include "cli/script_program.h"
#include "cli/tweak_json.h"
#include "cli/tweak_names.h"
#include "engine/catalogue.h"

namespace korvex::cli {
namespace {

using engine::Tweak;

bool hasBox(const Tweak& tweak) { return !isRoutine(tweak) && !isTextRow(tweak); }

Json writesJson(const Rehearsal& rehearsal) {
  Json list = changesJson({rehearsal.registry, rehearsal.files});
  for (Json& change : list) {
    if (!change.contains("path")) change.erase("before");
  }
  return list;
}

// Each message once, with the states that show it.
struct Told {
  ShownMessage message;
  std::vector<std::string> states;
  bool asks() const { return message.buttons != "ok"; }
};

std::vector<Told> toldBy(const Rehearsed& rehearsed) {
  struct State {
    const char* name;
    const Rehearsal* rehearsal;
  };
  std::vector<Told> result;
  for (const State& state : {State{"on", &rehearsed.on}, State{"off", &rehearsed.off},
                             State{"default", &rehearsed.byDefault}}) {
    for (const ShownMessage& message : state.rehearsal->messages) {
      const auto known = std::find_if(result.begin(), result.end(), [&message](const Told& told) {
        return told.message.text == message.text;
      });
      if (known == result.end()) {
        result.push_back({message, {state.name}});
      } else if (known->states.back() != state.name) {
        known->states.emplace_back(state.name);
      }
    }
  }
  return result;
}

void printJson(Context& context, const Tweak& tweak, const Rehearsed& rehearsed) {
  Json json = document();
  json["tweak"] = tweakJson(tweak, rehearsed.state, rehearsed.text);
  json["now"] = Json::array();
  for (const RegistryRecord& record : rehearsed.now) {
    const Json before = recordJson(record)["before"];
    json["now"].push_back({{"key", record.key}, {"name", record.value}, {"value", before}});
  }
  if (hasBox(tweak)) {
    json["on"] = writesJson(rehearsed.on);
    json["off"] = writesJson(rehearsed.off);
  }
  json["default"] = writesJson(rehearsed.byDefault);
  json["messages"] = Json::array();
  for (const Told& told : toldBy(rehearsed)) {
    json["messages"].push_back({{"kind", told.asks() ? "asks" : "tells"},
                                {"text", told.message.text},
                                {"buttons", told.message.buttons},
                                {"answer", told.message.answer},
                                {"states", told.states}});
  }
  print(context.out, json);
}

std::string fieldText(std::string_view title, std::string_view text) {
  return fmt::format("{:<10}{}\n", title, text);
}

std::string messagesText(const Rehearsed& rehearsed) {
  std::string text;
  for (const Told& told : toldBy(rehearsed)) {
    const std::string states = fmt::format("{}", fmt::join(told.states, ", "));
    const std::string answer =
        told.asks() ? fmt::format(" {}; here: {}", told.message.buttons, told.message.answer) : "";
    text += fieldText(told.asks() ? "Asks:" : "Tells:",
                      fmt::format("{} ({}{}{})", oneLine(told.message.text), states,
                                  answer.empty() ? "" : ";", answer));
  }
  return text;
}

std::string writeText(const RegistryRecord& record) {
  const std::string name = record.value.empty() ? "" : "  " + printable(record.value);
  std::string what;
  if (record.write == platform::RegistryWrite::CreateKey) {
    what = "makes the key";
  } else if (record.write == platform::RegistryWrite::DeleteKey) {
    what = "deletes the key";
  } else if (record.after) {
    what = dataText(record.after);
  } else {
    what = "deletes the value";
  }
  return fmt::format("{}{}: {}", printable(record.key), name, what);
}

std::string writesText(std::string_view title, const Rehearsal& rehearsal) {
  std::vector<std::string> lines;
  for (const RegistryRecord& record : rehearsal.registry) lines.push_back(writeText(record));
  for (const FileRecord& record : rehearsal.files) {
    lines.push_back(fmt::format("{}: {}", printable(record.path), stepText(record)));
  }
  if (rehearsal.failed != platform::ERROR_SUCCESS) {
    lines = {"fails: " + platform::describeStatus(rehearsal.failed)};
  } else if (lines.empty()) {
    lines.emplace_back("nothing, as the machine is now");
  }
  std::string text;
  for (const std::string& line : lines) {
    text += fieldText(title, line);
    title = "";
  }
  return text;
}

void printText(Context& context, const Tweak& tweak, const Rehearsed& rehearsed) {
  context.out << fmt::format("{}: {}\n", tweak.property, forms::plainCaption(tweak.caption));
  const auto field = [&context](std::string_view name, std::string_view value) {
    context.out << fieldText(name, value);
  };
  field("Effect:", tweak.toolTip);
  field("Where:", isRoutine(tweak) ? fmt::format("page {}", engine::pageName(tweak.page))
                                   : fmt::format("page {}, {} on {}", engine::pageName(tweak.page),
                                                 tweak.control, tweak.form));
  std::string state(stateName(tweak, rehearsed.state));
  if (isTextRow(tweak)) state += fmt::format(", \"{}\"", printable(rehearsed.text));
  if (!rehearsed.state.reason.empty()) state += fmt::format(" ({})", rehearsed.state.reason);
  field("State:", state);
  field("Restart:", tweak.reboot ? "needed" : "not needed");
  std::string title = "Now:";
  for (const RegistryRecord& record : rehearsed.now) {
    field(title, fmt::format("{}  {}: {}", printable(record.key),
                             record.value.empty() ? "(Default)" : printable(record.value),
                             dataText(record.before)));
    title.clear();
  }
  if (hasBox(tweak)) {
    context.out << writesText("On:", rehearsed.on) << writesText("Off:", rehearsed.off);
  }
  context.out << writesText("Default:", rehearsed.byDefault) << messagesText(rehearsed);
}

ExitCode show(Context& context, const std::string& name) {
  const Tweak& row = tweakNamed(name);
  const auto machine = context.openMachine(platform::OpenMode::Read);
  AnswerScript prompts({}, Unanswered::FirstButton);
  prompts.onMessage = [&context](const ShownMessage& message) { context.note(message.text); };
  ScriptProgram script(*machine, prompts, RunKind::Rehearse, false);
  script.start();
  const Tweak tweak = engine::onMachine(row, script.program().session());
  const Rehearsed rehearsed = rehearseAll(script, prompts, tweak);
  if (context.json) {
    printJson(context, tweak, rehearsed);
  } else {
    printText(context, tweak, rehearsed);
  }
  return ExitCode::Done;
}

}  // namespace

void addShowCommand(CLI::App& app, Run& run) {
  const auto name = std::make_shared<std::string>();
  CLI::App* command =
      addCommand(app, "show", "Show one tweak, what it would write and what is there now",
                 "  korvex show P_rwRun\n"
                 "  korvex --json show Run");
  command->add_option("TWEAK", *name, "Property name, also without P_rw")
      ->required()
      ->type_name("");
  command->callback(
      [&run, name] { run = [name](Context& context) { return show(context, *name); }; });
}

}  // namespace korvex::cli
