// list: every tweak and how it stands on the machine. Reads the machine without any form.
#include <fmt/format.h>

#include <ostream>

#include "cli/answer_script.h"
#include "cli/commands.h"
#include "cli/manual.h"
#include "cli/tweak_json.h"
#include "cli/tweak_places.h"
#include "engine/readers.h"
#include "forms/control.h"
#include "main_window/start_up.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using engine::Tweak;
using engine::TweakState;

struct ListOptions {
  std::string page;
  std::string search;
  bool manual = false;
};

bool mentions(const Tweak& tweak, const std::string& foldedSearch) {
  for (const std::string_view text : {tweak.property, tweak.key, tweak.value, tweak.toolTip}) {
    if (platform::foldName(text).find(foldedSearch) != std::string::npos) return true;
  }
  const std::string caption = forms::plainCaption(tweak.caption);
  return platform::foldName(caption).find(foldedSearch) != std::string::npos;
}

// One tweak as this machine has it.
struct Line {
  Tweak tweak;
  TweakState state;
  std::string text;  // of a text row
};

std::string lineText(const Line& line) {
  const Tweak& tweak = line.tweak;
  std::string caption = forms::plainCaption(tweak.caption);
  if (isTextRow(tweak)) caption += fmt::format(": {}", printable(line.text));
  std::string text =
      fmt::format("  {:<11}  {:<30}  {}\n", stateName(tweak, line.state), tweak.property, caption);
  if (!line.state.reason.empty()) text += fmt::format("{:15}{}\n", "", line.state.reason);
  return text;
}

// The tweaks of one place that are looked for.
std::vector<Line> read(const TweakPlace& place, const std::string& search,
                       foundation::Session& session, engine::StateReader& reader) {
  std::vector<Line> lines;
  for (const Tweak* row : place.tweaks) {
    const Tweak tweak = engine::onMachine(*row, session);
    if (!search.empty() && !mentions(*row, search) && !mentions(tweak, search)) continue;
    const std::string text = isTextRow(*row) ? engine::readText(*row, session) : "";
    lines.push_back({tweak, rowState(tweak, reader.state(*row), text), text});
  }
  return lines;
}

ExitCode printManual(Context& context) {
  if (context.json) {
    Json json = document();
    json["manual"] = manualText();
    print(context.out, json);
  } else {
    context.out << manualText();
  }
  return ExitCode::Done;
}

ExitCode list(Context& context, const ListOptions& options) {
  if (options.manual) return printManual(context);
  const auto places = options.page.empty() ? tweakPlaces() : placesNamed(options.page);
  const std::string search = platform::foldName(options.search);
  const auto machine = context.openMachine(platform::OpenMode::Read);
  AnswerScript prompts;
  foundation::Session session(*machine, prompts);
  main_window::detectReadOnly(session);

  Json rows = Json::array();
  std::string text;
  engine::StateReader reader(session);
  for (const TweakPlace& place : places) {
    const std::vector<Line> lines = read(place, search, session, reader);
    if (lines.empty()) continue;
    text += fmt::format("{}{}\n", text.empty() ? "" : "\n", place.title);
    for (const Line& line : lines) {
      if (context.json) rows.push_back(tweakJson(line.tweak, line.state, line.text));
      text += lineText(line);
    }
  }
  if (context.json) {
    Json json = document();
    json["tweaks"] = std::move(rows);
    print(context.out, json);
  } else {
    context.out << text;
    if (text.empty()) context.note("No tweak matches.");
  }
  return ExitCode::Done;
}

}  // namespace

void addListCommand(CLI::App& app, Run& run) {
  const auto options = std::make_shared<ListOptions>();
  CLI::App* command =
      addCommand(app, "list", "List the tweaks and how they stand on the machine",
                 "  korvex list\n"
                 "  korvex list --page Security\n"
                 "  korvex list --page frmMoreSecurity\n"
                 "  korvex --json list --search NoRun\n"
                 "\n"
                 "A page is listed with the dialogs that continue it. A routine has no box; 'set'\n"
                 "can run it with the state default.");
  command
      ->add_option("--page", options->page,
                   "Only this page or dialog: Security, frmMoreSecurity, ...")
      ->type_name("PAGE");
  command
      ->add_option("--search", options->search,
                   "Only tweaks with this text in name, caption, tool tip, key or value")
      ->type_name("TEXT");
  // For those who work on Korvex: docs/tweaks.md.
  command->add_flag("--manual", options->manual, "Print the manual's page of all tweaks")
      ->group("");
  command->callback(
      [&run, options] { run = [options](Context& context) { return list(context, *options); }; });
}

}  // namespace korvex::cli
