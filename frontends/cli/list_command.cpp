// list: every tweak and how it stands on the machine. Reads the machine without any form.
#include <fmt/format.h>

#include <algorithm>
#include <ostream>

#include "cli/answer_script.h"
#include "cli/commands.h"
#include "cli/tweak_json.h"
#include "cli/tweak_names.h"
#include "engine/catalogue.h"
#include "engine/readers.h"
#include "forms/control.h"
#include "main_window/main_pages.h"
#include "main_window/start_up.h"
#include "platform/common/text.h"

namespace korvex::cli {
namespace {

using engine::Tweak;
using engine::TweakState;

struct ListOptions {
  std::string page;
  std::string search;
};

// Throws Failure (Usage) for what is no page. "Win Tweaks" is also found as "wintweaks".
engine::Page pageNamed(const std::string& name) {
  const auto tabs = main_window::MainPages::tabs();
  std::vector<std::string> names;
  for (std::size_t i = 0; i < tabs.size(); ++i) {
    if (platform::sameName(tabs[i].caption, name) || platform::sameName(tabs[i].key, name)) {
      return static_cast<engine::Page>(i + 1);
    }
    names.push_back(tabs[i].caption);
  }
  throw Failure(ExitCode::Usage, "unknown-page",
                fmt::format("There is no page '{}'. The pages are: {}.", printable(name),
                            fmt::join(names, ", ")));
}

bool mentions(const Tweak& tweak, const std::string& foldedSearch) {
  for (const std::string_view text : {tweak.property, tweak.key, tweak.value, tweak.toolTip}) {
    if (platform::foldName(text).find(foldedSearch) != std::string::npos) return true;
  }
  const std::string caption = forms::plainCaption(tweak.caption);
  return platform::foldName(caption).find(foldedSearch) != std::string::npos;
}

std::vector<const Tweak*> chosen(const ListOptions& options) {
  const std::string search = platform::foldName(options.search);
  std::vector<const Tweak*> result = engine::allTweaks();
  if (!options.page.empty()) {
    const engine::Page page = pageNamed(options.page);
    std::erase_if(result, [page](const Tweak* tweak) { return tweak->page != page; });
  }
  std::erase_if(result, [&search](const Tweak* tweak) { return !mentions(*tweak, search); });
  std::stable_sort(result.begin(), result.end(),
                   [](const Tweak* a, const Tweak* b) { return a->page < b->page; });
  return result;
}

std::string line(const Tweak& tweak, const TweakState& state, const std::string& text) {
  std::string caption = forms::plainCaption(tweak.caption);
  if (isTextRow(tweak)) caption += fmt::format(": {}", printable(text));
  if (state.kind == TweakState::Kind::Unavailable) caption += fmt::format("  ({})", state.reason);
  return fmt::format("  {:<11}  {:<28}  {}\n", stateName(state.kind), tweak.property, caption);
}

ExitCode list(Context& context, const ListOptions& options) {
  const std::vector<const Tweak*> tweaks = chosen(options);
  const auto machine = context.openMachine(platform::OpenMode::Read);
  AnswerScript prompts;
  foundation::Session session(*machine, prompts);
  main_window::detectReadOnly(session);

  Json rows = Json::array();
  std::string text;
  const Tweak* previous = nullptr;
  for (const Tweak* tweak : tweaks) {
    const TweakState state = rowState(*tweak, session);
    const std::string field = isTextRow(*tweak) ? engine::readText(*tweak, session) : "";
    if (context.json) {
      rows.push_back(tweakJson(*tweak, state, field));
      continue;
    }
    if (previous == nullptr || previous->page != tweak->page) {
      text += fmt::format("{}{}\n", previous == nullptr ? "" : "\n", engine::pageName(tweak->page));
    }
    text += line(*tweak, state, field);
    previous = tweak;
  }
  if (context.json) {
    Json json = document();
    json["tweaks"] = std::move(rows);
    print(context.out, json);
  } else {
    context.out << text;
    if (tweaks.empty()) context.note("No tweak matches.");
  }
  return ExitCode::Done;
}

}  // namespace

void addListCommand(CLI::App& app, Run& run) {
  const auto options = std::make_shared<ListOptions>();
  CLI::App* command = addCommand(app, "list", "List the tweaks and how they stand on the machine",
                                 "  korvex list\n"
                                 "  korvex list --page Security\n"
                                 "  korvex --json list --search NoRun");
  command->add_option("--page", options->page, "Only this page: Security, Options, ...")
      ->type_name("PAGE");
  command
      ->add_option("--search", options->search,
                   "Only tweaks with this text in name, caption, tool tip, key or value")
      ->type_name("TEXT");
  command->callback(
      [&run, options] { run = [options](Context& context) { return list(context, *options); }; });
}

}  // namespace korvex::cli
