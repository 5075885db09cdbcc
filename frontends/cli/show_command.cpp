// show: one tweak, with what its routine would write. The routine really runs, on a registry that
// only pretends to write.
#include <fmt/format.h>

#include <algorithm>
#include <ostream>

#include "cli/commands.h"
#include "cli/key_path.h"
#include "cli/script_program.h"
#include "cli/tweak_json.h"
#include "cli/tweak_names.h"
#include "engine/catalogue.h"
#include "engine/readers.h"
#include "platform/common/text.h"

namespace korvex::cli {
namespace {

using engine::Tweak;
using engine::TweakState;
using Records = std::vector<RegistryRecord>;

struct Rehearsed {
  TweakState state;
  std::string text;  // of a text row
  Records on, off, byDefault;
  Records now;  // one for each value that any of them touches; "before" is what is there
};

bool sameValue(const RegistryRecord& a, const RegistryRecord& b) {
  return platform::sameName(a.key, b.key) && platform::sameName(a.value, b.value);
}

// The value of the row itself, absent before and after.
RegistryRecord ownValue(const Tweak& tweak) {
  RegistryRecord record;
  record.write = platform::RegistryWrite::DeleteValue;
  record.key = TypedKey{tweak.root, std::string(tweak.key)}.full();
  record.value = tweak.value;
  return record;
}

Records rehearse(ScriptProgram& script, const Tweak& tweak) {
  script.log().skip();
  script.program().regWorker().call(tweak.property);
  Records records = script.log().take();
  const RegistryRecord own = ownValue(tweak);
  const bool touched = std::any_of(records.begin(), records.end(),
                                   [&own](const auto& record) { return sameValue(record, own); });
  // Deleting what is not there leaves no record; that it would be deleted is the answer all the
  // same.
  if (!touched && tweak.special == nullptr) records.push_back(own);
  return records;
}

Records rehearseChecked(ScriptProgram& script, const Tweak& tweak, forms::CheckBox& box,
                        forms::CheckValue value) {
  foundation::Session& session = script.program().session();
  session.g_bNoRecord = true;
  box.Value = value;
  session.g_bNoRecord = false;
  return rehearse(script, tweak);
}

void addNow(Records& now, const Records& records) {
  for (const RegistryRecord& record : records) {
    const bool value = record.write == platform::RegistryWrite::SetValue ||
                       record.write == platform::RegistryWrite::DeleteValue;
    const bool known = std::any_of(now.begin(), now.end(), [&record](const auto& earlier) {
      return sameValue(earlier, record);
    });
    if (value && !known) now.push_back(record);
  }
}

Rehearsed rehearseAll(ScriptProgram& script, const Tweak& tweak) {
  program::Program& program = script.program();
  Rehearsed result;
  result.state = rowState(tweak, program.session());
  if (isTextRow(tweak)) {
    result.text = engine::readText(tweak, program.session());
  } else if (auto* box = program.formBook().load(tweak.form).find<forms::CheckBox>(tweak.control)) {
    result.on = rehearseChecked(script, tweak, *box, forms::vbChecked);
    result.off = rehearseChecked(script, tweak, *box, forms::vbUnchecked);
  }
  program.session().g_bDefaulting = true;
  result.byDefault = rehearse(script, tweak);
  program.session().g_bDefaulting = false;
  for (const Records* records : {&result.on, &result.off, &result.byDefault}) {
    addNow(result.now, *records);
  }
  return result;
}

Json writesJson(const Records& records) {
  Json list = Json::array();
  for (const RegistryRecord& record : records) {
    Json json = recordJson(record);
    json.erase("before");
    list.push_back(std::move(json));
  }
  return list;
}

void printJson(Context& context, const Tweak& tweak, const Rehearsed& rehearsed) {
  Json json = document();
  json["tweak"] = tweakJson(tweak, rehearsed.state, rehearsed.text);
  json["now"] = Json::array();
  for (const RegistryRecord& record : rehearsed.now) {
    const Json before = recordJson(record)["before"];
    json["now"].push_back({{"key", record.key}, {"name", record.value}, {"value", before}});
  }
  if (!isTextRow(tweak)) {
    json["on"] = writesJson(rehearsed.on);
    json["off"] = writesJson(rehearsed.off);
  }
  json["default"] = writesJson(rehearsed.byDefault);
  print(context.out, json);
}

std::string writesText(std::string_view title, const Records& records) {
  std::string text;
  for (const RegistryRecord& record : records) {
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
    const std::string value = record.value.empty() ? "" : "  " + printable(record.value);
    text += fmt::format("{:<10}{}{}: {}\n", title, printable(record.key), value, what);
    title = "";
  }
  return text;
}

void printText(Context& context, const Tweak& tweak, const Rehearsed& rehearsed) {
  context.out << fmt::format("{}: {}\n", tweak.property, forms::plainCaption(tweak.caption));
  const auto field = [&context](std::string_view name, const std::string& value) {
    context.out << fmt::format("{:<10}{}\n", name, value);
  };
  field("Effect:", std::string(tweak.toolTip));
  field("Where:",
        fmt::format("page {}, {} on {}", engine::pageName(tweak.page), tweak.control, tweak.form));
  std::string state(stateName(rehearsed.state.kind));
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
  context.out << writesText("On:", rehearsed.on) << writesText("Off:", rehearsed.off)
              << writesText("Default:", rehearsed.byDefault);
}

ExitCode show(Context& context, const std::string& name) {
  const Tweak& tweak = tweakNamed(name);
  const auto machine = context.openMachine(platform::OpenMode::Read);
  AnswerScript prompts;
  prompts.onMessage = [&context](const ShownMessage& message) { context.note(message.text); };
  ScriptProgram script(*machine, prompts, RunKind::Rehearse, false);
  script.start();
  const Rehearsed rehearsed = rehearseAll(script, tweak);
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
