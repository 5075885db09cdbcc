// uninstall list, edit, delete and restore: what the window with the entries of Add/Remove Programs
// does, for scripts.
#include <fmt/format.h>

#include <algorithm>
#include <ostream>

#include "cli/backup_machine.h"
#include "cli/commands.h"
#include "cli/direct_machine.h"
#include "cli/output.h"
#include "cli/registry_access.h"
#include "cli/tweak_names.h"
#include "dialogs/system/uninstall_entries.h"
#include "engine/numeral_field.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using dialogs::UninstallEntries;
using dialogs::UninstallEntry;
using dialogs::UninstallProgram;
using engine::TakenAway;
using platform::ERROR_SUCCESS;
using platform::Status;

struct UninstallOptions {
  std::string key;
  std::string command;
  std::string number;
};

std::vector<UninstallEntry> allEntries(const UninstallEntries& entries) {
  std::vector<UninstallEntry> all;
  const Status status = entries.read(all);
  if (status == ERROR_SUCCESS) return all;
  throw registryFailure(status, "The entries");
}

UninstallEntry named(const UninstallEntries& entries, const std::string& key) {
  const std::vector<UninstallEntry> all = allEntries(entries);
  const auto found = std::ranges::find_if(
      all, [&key](const UninstallEntry& entry) { return platform::sameName(entry.subKey, key); });
  if (found != all.end()) return *found;
  std::vector<std::string> keys;
  for (const UninstallEntry& entry : all) keys.push_back(entry.subKey);
  throw Failure(ExitCode::Failed, "not-found",
                fmt::format("Add/Remove Programs lists no entry with the key '{}'.{} 'korvex "
                            "uninstall list' names those that there are. Nothing was changed.",
                            printable(key), suggestion(key, keys)));
}

Json entryJson(const UninstallEntry& entry) {
  return {{"key", entry.subKey},
          {"name", entry.name},
          {"value",
           entry.command.type == platform::REG_NONE ? Json(nullptr) : Json(entry.commandValue)},
          {"command", entry.command.text()}};
}

Json programFound(const UninstallProgram& program) {
  if (program.state == UninstallProgram::State::Unknown) return nullptr;
  return program.state == UninstallProgram::State::Found;
}

Json itemJson(const TakenAway::Item& item) {
  return {{"number", engine::numberIn(item.id).value_or(0)},
          {"name", item.name},
          {"key", item.key.substr(item.key.rfind('\\') + 1)},
          {"when", item.when}};
}

ExitCode list(Context& context) {
  BackupMachine machine(context, Access::Read);
  const UninstallEntries entries(machine.session());
  Json json = document();
  json["entries"] = Json::array();
  for (const UninstallEntry& entry : allEntries(entries)) {
    const UninstallProgram program = entries.programOf(entry);
    Json one = entryJson(entry);
    one["program"] = program.file;
    one["programFound"] = programFound(program);
    json["entries"].push_back(std::move(one));
    if (context.json) continue;
    const bool stale = program.state == UninstallProgram::State::Missing;
    context.out << fmt::format("{:<40} {:<24} {}{}\n", printable(entry.name),
                               printable(entry.subKey), printable(entry.command.text()),
                               stale ? "  (no such program)" : "");
  }
  json["deleted"] = Json::array();
  for (const TakenAway::Item& item : entries.removed()) {
    json["deleted"].push_back(itemJson(item));
    if (context.json) continue;
    context.out << fmt::format("deleted {}: {} ({})\n", item.id, printable(item.name), item.when);
  }
  if (context.json) {
    print(context.out, json);
  } else if (json["entries"].empty()) {
    context.note("There is no program that can be uninstalled.");
  }
  return ExitCode::Done;
}

void printDone(Context& context, const char* member, const char* done, Json what,
               const std::string& name) {
  if (!context.json) {
    context.out << fmt::format("{} {}\n", done, printable(name));
    return;
  }
  Json json = document();
  json[member] = std::move(what);
  print(context.out, json);
}

ExitCode edit(Context& context, const UninstallOptions& options) {
  if (options.command.empty()) {
    throw Failure(ExitCode::Usage, "empty-command", "The new command is empty.");
  }
  DirectMachine machine(context);
  UninstallEntries entries(machine.session());
  const UninstallEntry entry = named(entries, options.key);
  machine.expect(entries.edit(entry, options.command), printable(entry.name));
  machine.commit();
  const UninstallEntry now = named(entries, options.key);
  printDone(context, "edited", "Edited", entryJson(now), now.name);
  return ExitCode::Done;
}

ExitCode remove(Context& context, const UninstallOptions& options) {
  DirectMachine machine(context);
  UninstallEntries entries(machine.session());
  const UninstallEntry entry = named(entries, options.key);
  machine.expect(entries.remove(entry), printable(entry.name));
  machine.commit();
  printDone(context, "deleted", "Deleted", entryJson(entry), entry.text);
  return ExitCode::Done;
}

ExitCode restore(Context& context, const UninstallOptions& options) {
  DirectMachine machine(context);
  UninstallEntries entries(machine.session());
  const std::vector<TakenAway::Item> kept = entries.removed();
  const auto item = options.number.empty()
                        ? kept.begin()
                        : std::ranges::find(kept, options.number, &TakenAway::Item::id);
  if (item == kept.end()) {
    throw Failure(ExitCode::Failed, "not-found",
                  kept.empty() ? "No entry was deleted that could be put back."
                               : fmt::format("There is no deleted entry '{}': 'korvex uninstall "
                                             "list' names them.",
                                             printable(options.number)));
  }
  machine.expect(entries.takeBack(*item), printable(item->name));
  machine.commit();
  printDone(context, "restored", "Restored", itemJson(*item), item->name);
  return ExitCode::Done;
}

template <typename Handler>
void onCommand(CLI::App* command, Run& run, const std::shared_ptr<UninstallOptions>& options,
               Handler handler) {
  command->callback([&run, options, handler] {
    run = [options, handler](Context& context) { return handler(context, *options); };
  });
}

}  // namespace

void addUninstallCommands(CLI::App& app, Run& run) {
  CLI::App* group = addGroup(app, "uninstall", "The entries of Add/Remove Programs");
  addCommand(*group, "list", "List the entries, and those that were deleted",
             "  korvex uninstall list\n"
             "  korvex --json uninstall list\n"
             "\n"
             "Name, key and uninstall command; and where the program of the command is gone.")
      ->callback([&run] { run = list; });

  const auto options = std::make_shared<UninstallOptions>();
  CLI::App* editing =
      addCommand(*group, "edit", "Change an entry's uninstall command",
                 "  korvex uninstall edit WinZip --command 'C:\\Zip\\WINZIP32.EXE /uninstall'\n"
                 "\n"
                 "Writes the value that holds the command by now, with its type.");
  editing->add_option("KEY", options->key, "The entry's key, as listed")->type_name("")->required();
  editing->add_option("--command", options->command, "The new command")
      ->type_name("TEXT")
      ->required();
  onCommand(editing, run, options, edit);

  CLI::App* deleting = addCommand(*group, "delete", "Delete an entry; it is kept",
                                  "  korvex uninstall delete WinZip\n"
                                  "\n"
                                  "Only the entry goes, not the program.");
  deleting->add_option("KEY", options->key, "The entry's key, as listed")
      ->type_name("")
      ->required();
  onCommand(deleting, run, options, remove);

  CLI::App* restoring = addCommand(*group, "restore", "Put a deleted entry back",
                                   "  korvex uninstall restore\n"
                                   "  korvex uninstall restore 3\n"
                                   "\n"
                                   "The one that was deleted last, or that of the number.");
  restoring->add_option("NUMBER", options->number, "Of the deleted entry, as listed")
      ->type_name("");
  onCommand(restoring, run, options, restore);
}

}  // namespace korvex::cli
