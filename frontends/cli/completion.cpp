// completion bash: a completion script, made from the commands themselves.
#include <fmt/format.h>

#include <ostream>
#include <string>

#include "backup/categories.h"
#include "cli/commands.h"
#include "cli/output.h"
#include "cli/tweak_places.h"
#include "engine/catalogue.h"
#include "main_window/main_pages.h"
#include "program/program.h"

namespace korvex::cli {
namespace {

std::string optionNames(const CLI::App& app) {
  std::string names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names += " --" + name;
  }
  return names;
}

std::string commandNames(const CLI::App& app) {
  std::string names;
  for (const CLI::App* command : app.get_subcommands(nullptr)) names += " " + command->get_name();
  return names;
}

// One case for each command: its own commands and options.
void addCases(const CLI::App& app, const std::string& path, std::string& cases) {
  for (const CLI::App* command : app.get_subcommands(nullptr)) {
    const std::string name = path + " " + command->get_name();
    cases += fmt::format("    \"{}\") words=\"{}{}\" ;;\n", name.substr(1), commandNames(*command),
                         optionNames(*command));
    addCases(*command, name, cases);
  }
}

std::string groupPattern(const CLI::App& app) {
  std::string pattern;
  for (const CLI::App* command : app.get_subcommands(nullptr)) {
    if (command->get_subcommands(nullptr).empty()) continue;
    pattern += (pattern.empty() ? "" : "|") + command->get_name();
  }
  return pattern;
}

std::string tweakNames() {
  std::string names;
  for (const engine::Tweak* tweak : engine::allTweaks()) {
    names += " " + std::string(tweak->property);
  }
  return names;
}

// The words of --page that a shell can complete: a page's name may hold a blank, its key does not.
std::string pageWords() {
  std::string words;
  for (const forms::Tab& tab : main_window::MainPages::tabs()) words += " " + tab.key;
  for (const std::string& name : placeNames()) {
    if (name.starts_with("frm")) words += " " + name;
  }
  return words;
}

std::string formNames() {
  std::string names;
  for (const program::FormRow& row : program::Program::forms()) {
    names += " " + std::string(row.name);
  }
  return names;
}

// The words of --only.
std::string categoryWords() {
  std::string words;
  for (const backup::Category& category : backup::categories()) {
    words += " " + std::string(category.tag);
  }
  return words;
}

constexpr const char* kScript = R"(# bash completion for korvex; made by "korvex completion bash".
_korvex() {{
  local cur=${{COMP_WORDS[COMP_CWORD]}} prev=${{COMP_WORDS[COMP_CWORD-1]}}
  local path="" words="" word skip=0 i
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${{COMP_WORDS[i]}}
    if ((skip)); then skip=0; continue; fi
    case $word in
      --machine|--user) skip=1 ;;
      -*) ;;
      *)
        if [[ -z $path ]]; then path=$word
        elif [[ $path =~ ^({groups})$ ]]; then path="$path $word"
        else break; fi ;;
    esac
  done
  # bash takes TWEAK=STATE apart at the sign.
  if [[ $path == set && ( $cur == "=" || $prev == "=" ) ]]; then
    mapfile -t COMPREPLY < <(compgen -W "on off grey default" -- "${{cur#=}}"); return
  fi
  case $prev in
    --machine) mapfile -t COMPREPLY < <(compgen -d -- "$cur"); return ;;
    --windows) words="{windows}"; path="-" ;;
    --format) words="4 5"; path="-" ;;
    --page) words="{pages}"; path="-" ;;
    --answer) words="yes no ok cancel"; path="-" ;;
    --only) words="{categories}"; path="-" ;;
    --area) words="Reg_Run Reg_RunII Reg_RunOnce Win_Load Win_Run StartUp"; path="-" ;;
    --undo) mapfile -t COMPREPLY < <(compgen -f -- "$cur"); return ;;
  esac
  case $path in
    -) ;;
    "") words="{top}" ;;
{cases}    *) words="{options}" ;;
  esac
  case $path in
    show|set)
      local tweaks="{tweaks}"
      # The names are known without their prefix too.
      [[ -n $cur && $cur != P* ]] && tweaks=${{tweaks//P_rw/}}
      words+=$tweaks ;;
    "form show"|"form run") words+="{forms}" ;;
    "machine create"|"reg import"|"reg export"|backup|restore|"set-of show"|"set-of restore")
      mapfile -t COMPREPLY < <(compgen -W "$words" -f -- "$cur"); return ;;
  esac
  [[ $path == set && $cur != -* ]] && compopt -o nospace
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
}}
complete -o filenames -F _korvex korvex
)";

std::string bashScript(const CLI::App& app) {
  std::string cases;
  addCases(app, "", cases);
  return fmt::format(fmt::runtime(kScript), fmt::arg("groups", groupPattern(app)),
                     fmt::arg("windows", "95 98 me nt4 2000 2000-server"),
                     fmt::arg("top", commandNames(app) + optionNames(app)),
                     fmt::arg("cases", cases), fmt::arg("options", optionNames(app)),
                     fmt::arg("pages", pageWords()), fmt::arg("tweaks", tweakNames()),
                     fmt::arg("forms", formNames()), fmt::arg("categories", categoryWords()));
}

}  // namespace

void addCompletionCommand(CLI::App& app, Run& run) {
  const auto shell = std::make_shared<std::string>();
  CLI::App* command =
      addCommand(app, "completion", "Print a completion script for a shell",
                 "  korvex completion bash > ~/.local/share/bash-completion/completions/korvex");
  command->add_option("SHELL", *shell, "bash")
      ->required()
      ->check(CLI::IsMember({"bash"}).description(""))
      ->type_name("");
  command->callback([&run, &app, shell] {
    // Now, while the parser still stands.
    run = [script = bashScript(app), shell = *shell](Context& context) {
      if (context.json) {
        Json json = document();
        json["shell"] = shell;
        json["script"] = script;
        print(context.out, json);
      } else {
        context.out << script;
      }
      return ExitCode::Done;
    };
  });
}

}  // namespace korvex::cli
