// context-menu list, add, remove and restore: what the wizard of the window does, for scripts.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <ostream>

#include "cli/association_commands.h"
#include "cli/backup_machine.h"
#include "cli/commands.h"
#include "cli/output.h"
#include "cli/registry_access.h"
#include "dialogs/shell/right_click_entries.h"
#include "engine/raw_value.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using dialogs::kUnknownType;
using dialogs::RightClickEntries;
using dialogs::RightClickEntry;
using engine::TakenAway;
using platform::ERROR_SUCCESS;
using platform::Status;

struct MenuOptions {
  std::vector<std::string> words;  // types; for remove a type and a verb; for restore a number
  std::string text;
  std::string program;
  bool all = false;
};

// Everything that a command writes, or nothing of it.
class MenuMachine {
 public:
  explicit MenuMachine(const Context& context)
      : machine_(context, Access::Write),
        entries_(machine_.session()),
        change_(machine_.registry()) {
    expect(change_.status(), "The right click menus");
  }

  void expect(Status status, const std::string& what) {
    if (status == ERROR_SUCCESS) return;
    throw registryFailure(status, what, machine_.registry().lastRefusal());
  }
  void commit() {
    Status status = change_.commit();
    if (status == ERROR_SUCCESS) status = machine_.registry().flush();
    expect(status, "The changes could not be written");
  }

  RightClickEntries& entries() { return entries_; }

 private:
  BackupMachine machine_;
  RightClickEntries entries_;
  platform::RegistryChange change_;
};

std::string stateWord(RightClickEntries::State state) {
  switch (state) {
    case RightClickEntries::State::AsAdded:
      return "as added";
    case RightClickEntries::State::Changed:
      return "changed";
    case RightClickEntries::State::Missing:
      break;
  }
  return "missing";
}

Json entryJson(const RightClickEntry& entry) {
  return {{"types", entry.types},
          {"class", entry.className},
          {"verb", entry.verb},
          {"text", entry.text},
          {"command", entry.command}};
}

std::string lineOf(const RightClickEntry& entry) {
  return fmt::format("{:<12} {:<16} {:<24} {}  {}", printable(entry.p_FillType()),
                     printable(entry.className), printable(entry.verb), printable(entry.text),
                     printable(entry.command));
}

std::vector<RightClickEntry> ownEntries(const RightClickEntries& entries) {
  std::vector<RightClickEntry> own;
  const Status status = entries.p_DetermineRightClickEntries(own);
  if (status == ERROR_SUCCESS) return own;
  throw registryFailure(status, "The entries");
}

// "jpg" and ".JPG" are ".JPG", as the wizard writes it; other types as they are typed.
std::vector<std::string> menuTypes(const std::vector<std::string>& typed) {
  std::vector<std::string> types;
  const auto known = RightClickEntries::DetermineRightClickOptions();
  for (const std::string& word : typed) {
    std::string type(kUnknownType);
    if (!platform::sameName(word, kUnknownType)) type = fileTypes({&word, 1}, {}).front();
    const auto same = [&type](std::string_view one) { return platform::sameName(one, type); };
    const auto found = std::ranges::find_if(known, same);
    if (found != known.end()) type = *found;
    if (std::ranges::none_of(types, same)) types.push_back(type);
  }
  return types;
}

ExitCode list(Context& context) {
  BackupMachine machine(context, Access::Read);
  const RightClickEntries entries(machine.session());
  const std::vector<RightClickEntry> own = ownEntries(entries);
  const std::vector<TakenAway::Item> kept = entries.kept();
  Json json = document();
  json["entries"] = Json::array();
  for (const RightClickEntry& entry : own) {
    RightClickEntries::State state{};
    const Status status = entries.stateOf(entry, state);
    const std::string word = status == ERROR_SUCCESS ? stateWord(state) : "unreadable";
    const bool there = machine.files().exists(entry.program());
    Json one = entryJson(entry);
    one["program"] = entry.program();
    one["programExists"] = there;
    one["state"] = word;
    json["entries"].push_back(std::move(one));
    if (context.json) continue;
    context.out << lineOf(entry) << (there ? "" : "  (no such program)")
                << (word == "as added" ? "" : "  (" + word + ")") << '\n';
  }
  json["kept"] = Json::array();
  for (const TakenAway::Item& item : kept) {
    json["kept"].push_back({{"name", item.name}, {"key", item.key}, {"when", item.when}});
  }
  if (context.json) {
    print(context.out, json);
  } else if (own.empty()) {
    context.note("There is no entry that Korvex has added.");
  }
  return ExitCode::Done;
}

void printChanged(Context& context, const char* member, const char* done,
                  const std::vector<RightClickEntry>& changed) {
  Json json = document();
  json[member] = Json::array();
  for (const RightClickEntry& entry : changed) {
    json[member].push_back(entryJson(entry));
    if (!context.json) context.out << fmt::format("{} {}\n", done, lineOf(entry));
  }
  if (context.json) print(context.out, json);
}

void noteOddities(Context& context, const std::string& type, const RightClickEntries::Plan& plan) {
  if (!plan.registered) {
    context.note(
        fmt::format("{} is not registered: the entry is written for the class {}, and "
                    "appears as soon as {} is registered under that name.",
                    printable(type), printable(plan.entry.className), printable(type)));
  }
  if (plan.replaced && plan.replaced->command != plan.entry.command) {
    context.note(fmt::format("{}: replaces {}", printable(plan.replaced->line()),
                             printable(plan.replaced->command)));
  }
}

ExitCode add(Context& context, const MenuOptions& options) {
  const std::vector<std::string> types = menuTypes(options.words);
  MenuMachine machine(context);
  std::vector<RightClickEntry> added;
  for (const std::string& type : types) {
    if (const auto refusal = machine.entries().refusalOf(type, options.text, options.program)) {
      throw Failure(ExitCode::Failed, "refused", refusal->message + " Nothing was changed.");
    }
    RightClickEntries::Plan plan;
    Status status = machine.entries().plan(type, options.text, options.program, plan);
    if (status == ERROR_SUCCESS) status = machine.entries().add(plan.entry);
    machine.expect(status, fmt::format("The right click menu of {}", printable(type)));
    noteOddities(context, type, plan);
    // A further type of the same class is a further word of the same entry.
    std::erase_if(added, [&plan](const RightClickEntry& one) {
      return platform::sameName(one.key(), plan.entry.key());
    });
    added.push_back(plan.entry);
  }
  machine.commit();
  printChanged(context, "added", "Added", added);
  return ExitCode::Done;
}

// The entries that a type, or a class, and a verb name.
std::vector<RightClickEntry> named(const RightClickEntries& entries, const MenuOptions& options) {
  std::vector<RightClickEntry> own = ownEntries(entries);
  if (options.all) return own;
  const std::string& typed = options.words[0];
  const std::string& verb = options.words[1];
  const auto isMeant = [&typed](const std::string& type) {
    return platform::sameName(type, typed) || platform::sameName(type, '.' + typed);
  };
  std::erase_if(own, [&](const RightClickEntry& entry) {
    const bool fits =
        platform::sameName(entry.verb, verb) &&
        (platform::sameName(entry.className, typed) || std::ranges::any_of(entry.types, isMeant));
    return !fits;
  });
  if (!own.empty()) return own;
  throw Failure(ExitCode::Failed, "not-found",
                fmt::format("Korvex has added no entry '{}' for {}. 'korvex context-menu list' "
                            "names those that there are. Nothing was changed.",
                            printable(verb), printable(typed)));
}

ExitCode remove(Context& context, const MenuOptions& options) {
  if (options.all ? !options.words.empty() : options.words.size() != 2) {
    throw Failure(ExitCode::Usage, "usage", "Say which entry: a type and a verb, or --all.");
  }
  MenuMachine machine(context);
  const std::vector<RightClickEntry> chosen = named(machine.entries(), options);
  for (const RightClickEntry& entry : chosen) {
    machine.expect(machine.entries().remove(entry), printable(entry.line()));
  }
  machine.commit();
  printChanged(context, "removed", "Removed", chosen);
  if (chosen.empty()) context.note("There was no entry to remove.");
  return ExitCode::Done;
}

ExitCode restore(Context& context) {
  MenuMachine machine(context);
  const std::vector<TakenAway::Item> kept = machine.entries().kept();
  if (kept.empty()) {
    throw Failure(ExitCode::Failed, "not-found", "Nothing was kept that could be put back.");
  }
  const TakenAway::Item& last = kept.front();
  machine.expect(machine.entries().takeBack(last), printable(last.name));
  machine.commit();
  Json json = document();
  json["restored"] = {{"name", last.name}, {"key", last.key}, {"when", last.when}};
  if (context.json) {
    print(context.out, json);
  } else {
    context.out << fmt::format("Restored {}\n", printable(last.name));
  }
  return ExitCode::Done;
}

void addAdd(CLI::App& group, Run& run) {
  const auto options = std::make_shared<MenuOptions>();
  CLI::App* command = addCommand(
      group, "add", "Add a program to the right click menu of file types",
      "  korvex context-menu add txt ini --text '&Edit with Notes' --program 'C:\\Tools\\n.exe'\n"
      "  korvex context-menu add UNKNOWN --text '&View' --program 'C:\\Program Files\\View.exe'\n"
      "\n"
      "UNKNOWN stands for files of unregistered types. The letter behind the ampersand chooses\n"
      "the entry from the keyboard. Verbs of other programs are never overwritten; an entry of\n"
      "Korvex's with the same text is replaced. All types are written, or none.");
  command->add_option("TYPE", options->words, "File types: .txt, or txt")
      ->type_name("")
      ->required();
  command->add_option("--text", options->text, "What the menu says")->type_name("TEXT")->required();
  command->add_option("--program", options->program, "A program of the machine: C:\\...")
      ->type_name("PATH")
      ->required();
  command->callback(
      [&run, options] { run = [options](Context& context) { return add(context, *options); }; });
}

void addRemove(CLI::App& group, Run& run) {
  const auto options = std::make_shared<MenuOptions>();
  CLI::App* command = addCommand(
      group, "remove", "Remove entries that Korvex has added",
      "  korvex context-menu remove txt 'Edit with Notes'\n"
      "  korvex context-menu remove --all\n"
      "\n"
      "The file type, or its class, and the verb as 'context-menu list' tells them. What another\n"
      "program has changed since is kept: 'context-menu restore' puts it back.");
  command->add_option("ENTRY", options->words, "TYPE VERB")->type_name("")->expected(0, 2);
  command->add_flag("--all", options->all, "All that Korvex has added");
  command->callback(
      [&run, options] { run = [options](Context& context) { return remove(context, *options); }; });
}

}  // namespace

void addContextMenuCommands(CLI::App& app, Run& run) {
  CLI::App* group = addGroup(app, "context-menu", "Entries in the right click menus of file types");
  addCommand(*group, "list", "List the entries that Korvex has added",
             "  korvex context-menu list\n"
             "  korvex --json context-menu list\n"
             "\n"
             "Types, class, verb, menu text and command; and whether the program is gone, or the\n"
             "entry was changed or removed by another program.")
      ->callback([&run] { run = list; });
  addAdd(*group, run);
  addRemove(*group, run);
  addCommand(*group, "restore", "Put back what was removed last and not as Korvex wrote it",
             "  korvex context-menu restore")
      ->callback([&run] { run = restore; });
}

}  // namespace korvex::cli
