// set-of list and set-of show.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <ostream>

#include "cli/interrupt.h"
#include "cli/set_of_commands.h"

namespace korvex::cli {
namespace {

using backup::ConfigSet;
using backup::SetEntry;

std::string_view kindWord(SetEntry::Kind kind) {
  switch (kind) {
    case SetEntry::Kind::Key:
      return "key";
    case SetEntry::Kind::File:
      return "file";
    case SetEntry::Kind::Folder:
      return "folder";
    case SetEntry::Kind::NoKey:
      return "no-key";
    case SetEntry::Kind::NoFile:
      return "no-file";
  }
  return "";
}

Json entriesJson(const ConfigSet& set) {
  Json entries = Json::array();
  for (const SetEntry& entry : set.entries) {
    entries.push_back({{"file", entry.file},
                       {"kind", kindWord(entry.kind)},
                       {"category", entry.tag},
                       {"size", entry.size},
                       {"place", entry.place}});
  }
  return entries;
}

ExitCode list(Context& context) {
  BackupMachine machine(context, Access::Read);
  backup::ConfigSets sets(machine.session(), machine.backer());
  Json rows = Json::array();
  std::string text;
  for (const std::string& name : backup::savedSets(machine.session())) {
    ConfigSet set;
    std::string message;
    const bool understood = sets.find(name, set, message) == platform::ERROR_SUCCESS;
    set.name = name;
    const bool available = understood && sets.isAvailable(set);
    std::string note = available ? "" : "  (The folder containing this save is not available.)";
    if (!understood) note = "  (" + oneLine(message) + ")";
    text += fmt::format("{}  {}  {}{}\n", printable(name), printable(set.saved),
                        printable(set.folder), note);
    rows.push_back(setJson(machine.session(), set, available));
  }
  if (context.json) {
    Json json = document();
    json["folder"] = backup::saveFolder(machine.session());
    json["sets"] = std::move(rows);
    print(context.out, json);
  } else {
    context.out << text;
    if (text.empty()) context.note("Nothing is saved.");
  }
  return ExitCode::Done;
}

void printRecord(Context& context, const foundation::Session& session, const ConfigSet& set) {
  const auto line = [&context](std::string_view name, const std::string& value) {
    if (!value.empty()) context.out << fmt::format("{:<12} {}\n", name, printable(value));
  };
  line("Name:", set.name);
  line("Folder:", set.folder);
  line("Saved:", set.saved);
  line("Windows:", set.windows);
  line("Computer:", set.computer);
  line("User:", set.user);
  line("Holds:", fmt::format("{}", fmt::join(captionsOf(session, set), ", ")));
  context.out << '\n';
  for (const SetEntry& entry : set.entries) {
    const bool nothing =
        entry.kind == SetEntry::Kind::NoKey || entry.kind == SetEntry::Kind::NoFile;
    const bool sized = entry.kind == SetEntry::Kind::Key || entry.kind == SetEntry::Kind::File;
    std::string size = sized ? fmt::format("{} bytes", entry.size) : "folder";
    if (nothing) size = "was not there";
    context.out << fmt::format("{:<24} {:>14}  {}\n", printable(entry.file), size,
                               printable(entry.place));
  }
  context.out << '\n';
}

ExitCode show(Context& context, const std::string& name) {
  // A set that lies outside the machine is looked at without bringing it there.
  BackupMachine machine(context, Access::Pretend);
  backup::ConfigSets sets(machine.session(), machine.backer());
  const ConfigSet set = findSet(machine, name);
  const bool available = sets.isAvailable(set);
  const Interrupt interrupt;
  const auto offer = sets.offer(set, interrupt.progress());
  if (interrupt.asked()) throw cancelledFailure("The comparison");
  const std::vector<backup::RestoreItem>& items = offer->items();
  if (context.json) {
    Json json = document();
    json["set"] = setJson(machine.session(), set, available);
    json["set"]["files"] = entriesJson(set);
    json["items"] = itemsJson(items);
    printItems(context, items);
    print(context.out, json);
  } else {
    printRecord(context, machine.session(), set);
    if (!available) context.note("The folder containing this save is not available.");
    context.out << "A restore would change:\n";
    printItems(context, items);
  }
  return available && !hasProblems(items) ? ExitCode::Done : ExitCode::Differences;
}

}  // namespace

void addSetOfShow(CLI::App& group, Run& run) {
  CLI::App* listing = addCommand(group, "list", "List the saved sets",
                                 "  korvex set-of list\n"
                                 "  korvex --json set-of list");
  listing->callback([&run] { run = list; });

  const auto name = std::make_shared<std::string>();
  CLI::App* command = addCommand(group, "show", "Show what a set holds, and what it would change",
                                 "  korvex set-of show Work\n"
                                 "  korvex set-of show ~/saves/Work/profile.kvx\n"
                                 "\n"
                                 "The exit code is 1 where something of it is missing, damaged or "
                                 "does not fit.");
  command->add_option("NAME", *name, "Its name, or its profile.kvx")->required()->type_name("");
  command->callback(
      [&run, name] { run = [name](Context& context) { return show(context, *name); }; });
}

}  // namespace korvex::cli
