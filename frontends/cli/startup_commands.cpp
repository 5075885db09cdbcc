// startup list, disable, enable, add, delete and restore: what the window of startup programs does,
// for scripts.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <ostream>

#include "cli/backup_machine.h"
#include "cli/commands.h"
#include "cli/output.h"
#include "cli/registry_access.h"
#include "cli/tweak_names.h"
#include "dialogs/shell/startup_apps.h"
#include "dialogs/shell/startup_program.h"
#include "engine/numeral_field.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using dialogs::StartupApps;
using dialogs::StartupArea;
using dialogs::StartupAreaRow;
using dialogs::StartupEntries;
using dialogs::StartupEntry;
using dialogs::StartupLists;
using engine::TakenAway;
using platform::ERROR_SUCCESS;
using platform::sameName;
using platform::Status;

struct StartupOptions {
  std::string name;  // of an entry, or the path of a program
  std::string area;
  bool deleted = false;
  bool replace = false;
};

std::string_view nameOf(StartupArea area) {
  return dialogs::startupAreas()[static_cast<std::size_t>(area)].name;
}

// The areas that --area means: all of them without it.
std::vector<StartupAreaRow> areasOf(const std::string& typed) {
  std::vector<StartupAreaRow> found;
  std::vector<std::string> names;
  for (const StartupAreaRow& row : dialogs::startupAreas()) {
    names.emplace_back(row.name);
    if (typed.empty() || sameName(row.name, typed)) found.push_back(row);
  }
  if (!found.empty()) return found;
  throw Failure(ExitCode::Usage, "unknown-area",
                fmt::format("There is no area '{}'. There are: {}.", printable(typed),
                            fmt::join(names, ", ")));
}

StartupLists listsOf(StartupApps& apps, StartupArea area) {
  StartupLists lists;
  const Status status = apps.p_EnumReg(area, lists);
  if (status == ERROR_SUCCESS) return lists;
  throw registryFailure(status, fmt::format("The area {} cannot be read", nameOf(area)));
}

Json entryJson(foundation::Session& session, const StartupEntry& entry) {
  const dialogs::StartupProgram program = dialogs::programOf(session, entry);
  Json json{{"area", nameOf(entry.area)},
            {"name", entry.name},
            {"command", entry.command},
            {"on", entry.on},
            {"origin", entry.origin}};
  json["program"] = program.path.empty() ? Json(nullptr) : Json(program.path);
  json["programExists"] = program.there ? Json(*program.there) : Json(nullptr);
  return json;
}

void printEntry(Context& context, foundation::Session& session, const StartupEntry& entry) {
  const dialogs::StartupProgram program = dialogs::programOf(session, entry);
  context.out << fmt::format(
      "{:<12} {:<4} {:<28} {}{}\n", nameOf(entry.area), entry.on ? "on" : "off",
      printable(entry.name.empty() ? "(Default)" : entry.name), printable(entry.command),
      program.there.value_or(true) ? "" : "  (no such program)");
}

void listDeleted(Context& context, StartupApps& apps, const std::vector<StartupAreaRow>& areas) {
  Json json = document();
  json["deleted"] = Json::array();
  for (const StartupAreaRow& row : areas) {
    for (const TakenAway::Item& item : apps.place(row.area).deleted()) {
      json["deleted"].push_back({{"area", row.name}, {"name", item.name}, {"when", item.when}});
      if (context.json) continue;
      context.out << fmt::format("{:<12} {:<16}  {}\n", row.name, item.when, printable(item.name));
    }
  }
  if (context.json) {
    print(context.out, json);
  } else if (json["deleted"].empty()) {
    context.note("Nothing was deleted.");
  }
}

ExitCode list(Context& context, const StartupOptions& options) {
  const std::vector<StartupAreaRow> areas = areasOf(options.area);
  BackupMachine machine(context, Access::Read);
  StartupApps apps(machine.session());
  if (const auto move = apps.interrupted()) {
    context.note(fmt::format("Moving {} was interrupted; the next change finishes it.",
                             printable(move->name)));
  }
  if (options.deleted) {
    listDeleted(context, apps, areas);
    return ExitCode::Done;
  }
  Json json = document();
  json["entries"] = Json::array();
  for (const StartupAreaRow& row : areas) {
    const StartupLists lists = listsOf(apps, row.area);
    for (const StartupEntries& entries : {lists.launched, lists.switchedOff}) {
      for (const StartupEntry& entry : entries) {
        json["entries"].push_back(entryJson(machine.session(), entry));
        if (!context.json) printEntry(context, machine.session(), entry);
      }
    }
  }
  if (context.json) {
    print(context.out, json);
  } else if (json["entries"].empty()) {
    context.note("Nothing starts by itself, and nothing was switched off.");
  }
  return ExitCode::Done;
}

// A machine to write to, tidied up first as the window does it.
class StartupMachine {
 public:
  explicit StartupMachine(const Context& context)
      : machine_(context, Access::Write), apps_(machine_.session()) {
    apps_.tidyUp();
  }

  StartupApps& apps() { return apps_; }
  foundation::Session& session() { return machine_.session(); }

  void finish(Status status, const std::string& name) {
    if (status == platform::ERROR_FILE_NOT_FOUND) {
      throw Failure(ExitCode::Failed, "changed",
                    fmt::format("{} has been changed or removed meanwhile. Nothing was changed.",
                                printable(name)));
    }
    if (status == ERROR_SUCCESS) status = machine_.registry().flush();
    if (status == ERROR_SUCCESS) return;
    const std::string reason = machine_.registry().lastRefusal();
    throw machineFailure(
        status, fmt::format("{} could not be changed: {}. Nothing was changed.", printable(name),
                            reason.empty() ? platform::describeStatus(status) : reason));
  }

 private:
  BackupMachine machine_;
  StartupApps apps_;
};

void printDone(Context& context, foundation::Session& session, const StartupEntry& entry,
               std::string_view done) {
  if (!context.json) {
    context.out << fmt::format("{} {} ({}).\n", done, printable(entry.name), nameOf(entry.area));
    return;
  }
  Json json = document();
  json["entry"] = entryJson(session, entry);
  print(context.out, json);
}

bool isNamed(const StartupEntry& entry, const std::string& typed) {
  return sameName(entry.name, typed) || sameName(entry.command, typed);
}

// The entries of that name, on or off; a file may be named by its path.
StartupEntries entriesNamed(StartupApps& apps, const StartupOptions& options, bool on) {
  StartupEntries found;
  for (const StartupAreaRow& row : areasOf(options.area)) {
    StartupLists lists = listsOf(apps, row.area);
    for (StartupEntry& entry : on ? lists.launched : lists.switchedOff) {
      if (isNamed(entry, options.name)) found.push_back(std::move(entry));
    }
  }
  return found;
}

// The one of that name. Nothing where it is in the other state already.
std::optional<StartupEntry> entryNamed(StartupApps& apps, const StartupOptions& options, bool on) {
  const StartupEntries found = entriesNamed(apps, options, on);
  std::vector<std::string> places;
  for (const StartupEntry& entry : found) {
    const std::string place =
        entry.isFile ? entry.command : fmt::format("--area {}", nameOf(entry.area));
    if (std::ranges::find(places, place) == places.end()) places.push_back(place);
  }
  if (places.size() > 1) {
    throw Failure(ExitCode::Usage, "ambiguous",
                  fmt::format("There are several entries named '{}'. Say which: {}.",
                              printable(options.name), fmt::join(places, ", ")));
  }
  // A program that stands twice on a line is the same one.
  if (!found.empty()) return found.front();
  if (!entriesNamed(apps, options, !on).empty()) return std::nullopt;
  std::vector<std::string> names;
  for (const StartupAreaRow& row : areasOf(options.area)) {
    const StartupLists lists = listsOf(apps, row.area);
    for (const StartupEntry& entry : on ? lists.launched : lists.switchedOff) {
      names.push_back(entry.name);
    }
  }
  throw Failure(ExitCode::Failed, "not-found",
                fmt::format("There is no entry named '{}'.{}", printable(options.name),
                            suggestion(options.name, names)));
}

ExitCode disable(Context& context, const StartupOptions& options) {
  StartupMachine machine(context);
  auto entry = entryNamed(machine.apps(), options, true);
  if (!entry) {
    context.note(fmt::format("{} is off already.", printable(options.name)));
    entry = entryNamed(machine.apps(), options, false);
  } else {
    machine.finish(machine.apps().switchOff(*entry), entry->name);
  }
  entry->on = false;
  printDone(context, machine.session(), *entry, "Off:");
  return ExitCode::Done;
}

ExitCode enable(Context& context, const StartupOptions& options) {
  StartupMachine machine(context);
  auto entry = entryNamed(machine.apps(), options, false);
  if (!entry) {
    context.note(fmt::format("{} is on already.", printable(options.name)));
    entry = entryNamed(machine.apps(), options, true);
  } else {
    const Status status = machine.apps().switchOn(
        *entry, options.replace ? dialogs::Replace::Yes : dialogs::Replace::No);
    if (status == platform::ERROR_ALREADY_EXISTS) {
      throw Failure(ExitCode::Failed, "name-taken",
                    fmt::format("Another entry named '{}' starts there already. With --replace it "
                                "is put in its place, and the other one is kept. Nothing was "
                                "changed.",
                                printable(entry->name)));
    }
    machine.finish(status, entry->name);
  }
  entry->on = true;
  printDone(context, machine.session(), *entry, "On:");
  return ExitCode::Done;
}

ExitCode forget(Context& context, const StartupOptions& options) {
  StartupMachine machine(context);
  const auto entry = entryNamed(machine.apps(), options, false);
  if (!entry) {
    throw Failure(ExitCode::Failed, "still-on",
                  fmt::format("{} is on. Only what is off can be deleted: disable it first.",
                              printable(options.name)));
  }
  machine.finish(machine.apps().forget(*entry), entry->name);
  printDone(context, machine.session(), *entry, "Deleted:");
  return ExitCode::Done;
}

ExitCode add(Context& context, const StartupOptions& options) {
  const StartupAreaRow row = areasOf(options.area).front();
  if (!isMachinePath(options.name)) {
    throw Failure(
        ExitCode::Usage, "bad-path",
        fmt::format("'{}' is no path of the machine: it begins with a drive letter, as in "
                    "C:\\Tools\\clock.exe. In a shell put it in single quotes.",
                    printable(options.name)));
  }
  StartupMachine machine(context);
  bool shortPathFails = false;
  const Status status = machine.apps().add(row.area, options.name, shortPathFails);
  if (shortPathFails) {
    throw Failure(ExitCode::Failed, "no-short-path",
                  fmt::format("The short path of {} cannot be obtained: {}. Nothing was changed.",
                              printable(options.name), platform::describeStatus(status)));
  }
  if (status == platform::ERROR_ALREADY_EXISTS) {
    throw Failure(ExitCode::Failed, "already-there",
                  fmt::format("{} starts from {} already. Nothing was changed.",
                              printable(options.name), row.name));
  }
  machine.finish(status, options.name);
  if (context.json) {
    Json json = document();
    json["added"] = {{"area", row.name}, {"path", options.name}};
    print(context.out, json);
  } else {
    context.out << fmt::format("Added: {} ({}).\n", printable(options.name), row.name);
  }
  return ExitCode::Done;
}

// The last one that was deleted, of all or of that name.
ExitCode restore(Context& context, const StartupOptions& options) {
  const std::vector<StartupAreaRow> areas = areasOf(options.area);
  StartupMachine machine(context);
  std::optional<TakenAway::Item> last;
  StartupArea area = areas.front().area;
  for (const StartupAreaRow& row : areas) {
    for (const TakenAway::Item& item : machine.apps().place(row.area).deleted()) {
      if (!options.name.empty() && !sameName(item.name, options.name)) continue;
      // Each area tells its last one first. Those of one minute count by their numbers.
      const auto age = [](const TakenAway::Item& one) {
        return std::pair(one.when, engine::numberIn(one.id).value_or(0));
      };
      if (last && age(*last) >= age(item)) break;
      last = item;
      area = row.area;
      break;
    }
  }
  if (!last) {
    throw Failure(ExitCode::Failed, "not-found",
                  options.name.empty()
                      ? "Nothing was deleted."
                      : fmt::format("No entry named '{}' was deleted. 'korvex startup list "
                                    "--deleted' shows them all.",
                                    printable(options.name)));
  }
  const Status status = machine.apps().takeBack(area, *last);
  if (status == platform::ERROR_ALREADY_EXISTS) {
    throw Failure(ExitCode::Failed, "name-taken",
                  fmt::format("Another entry named '{}' stands there by now. Nothing was changed.",
                              printable(last->name)));
  }
  machine.finish(status, last->name);
  if (context.json) {
    Json json = document();
    json["restored"] = {{"area", nameOf(area)}, {"name", last->name}};
    print(context.out, json);
  } else {
    context.out << fmt::format("Taken back: {} ({}).\n", printable(last->name), nameOf(area));
  }
  return ExitCode::Done;
}

using Command = ExitCode (*)(Context&, const StartupOptions&);

// A command with --area; word is the name of its argument, "" for none.
CLI::App* addOne(CLI::App& group, Run& run, const char* name, const char* help,
                 const char* examples, const char* word,
                 const std::shared_ptr<StartupOptions>& options, Command command) {
  CLI::App* added = addCommand(group, name, help, examples);
  if (*word != '\0') added->add_option(word, options->name, "Its name in the list")->type_name("");
  added
      ->add_option("--area", options->area,
                   "Reg_Run, Reg_RunII, Reg_RunOnce, Win_Load, Win_Run or StartUp")
      ->type_name("AREA");
  added->callback([&run, options, command] {
    run = [options, command](Context& context) { return command(context, *options); };
  });
  return added;
}

}  // namespace

void addStartupCommands(CLI::App& app, Run& run) {
  CLI::App* group = addGroup(app, "startup", "Show and change what Windows starts by itself");
  const auto options = [] { return std::make_shared<StartupOptions>(); };

  const auto listing = options();
  addOne(*group, run, "list", "List what starts, and what was switched off",
         "  korvex startup list\n"
         "  korvex --json startup list --area Reg_Run\n"
         "  korvex startup list --deleted",
         "", listing, list)
      ->add_flag("--deleted", listing->deleted, "List what was deleted instead");

  addOne(*group, run, "disable", "Switch an entry off; it is kept as it was",
         "  korvex startup disable TaskMonitor\n"
         "  korvex startup disable LoadPowerProfile --area Reg_RunOnce",
         "NAME", options(), disable)
      ->get_option("NAME")
      ->required();

  const auto enabling = options();
  CLI::App* on = addOne(*group, run, "enable", "Switch an entry on again",
                        "  korvex startup enable TaskMonitor", "NAME", enabling, enable);
  on->get_option("NAME")->required();
  on->add_flag("--replace", enabling->replace,
               "Put it in the place of another entry of its name, which is kept");

  const auto adding = options();
  CLI::App* more = addOne(*group, run, "add", "Have Windows start a program",
                          "  korvex startup add 'C:\\Tools\\clock.exe' --area Reg_RunII\n"
                          "  korvex startup add 'C:\\Tools\\clock.exe' --area StartUp\n"
                          "\n"
                          "It is written with its short (8.3) path; in the area StartUp a shortcut "
                          "is made.",
                          "PATH", adding, add);
  more->get_option("PATH")->required()->description("A file of the machine");
  more->get_option("--area")->required();

  addOne(*group, run, "delete", "Delete an entry that is switched off",
         "  korvex startup delete TaskMonitor\n"
         "\n"
         "What is deleted can be taken back with 'korvex startup restore'.",
         "NAME", options(), forget)
      ->get_option("NAME")
      ->required();

  addOne(*group, run, "restore", "Take a deleted entry back, without NAME the last one",
         "  korvex startup restore\n"
         "  korvex startup restore TaskMonitor",
         "NAME", options(), restore);
}

}  // namespace korvex::cli
