// drives list, drives hide, drives show: which drives Explorer hides from the user.
#include <fmt/format.h>

#include <ostream>
#include <set>

#include "cli/backup_machine.h"
#include "cli/commands.h"
#include "cli/output.h"
#include "cli/registry_access.h"
#include "dialogs/shell/drive_kinds.h"
#include "dialogs/shell/drive_mask.h"

namespace korvex::cli {
namespace {

using dialogs::DriveMask;
using dialogs::HiddenDrives;
using dialogs::kDriveCount;
using platform::ERROR_SUCCESS;
using platform::Status;

struct DriveOptions {
  std::vector<std::string> drives;
  bool all = false;
};

// "D", "d:" and "D:\" are drive 3.
std::size_t driveNumber(const std::string& typed) {
  const std::string rest = typed.empty() ? "none" : typed.substr(1);
  const char letter = static_cast<char>(typed.empty() ? 0 : typed[0] & ~0x20);
  if (letter < 'A' || letter > 'Z' || !(rest.empty() || rest == ":" || rest == ":\\")) {
    throw Failure(ExitCode::Usage, "bad-drive",
                  fmt::format("'{}' is no drive: use C, or C:.", printable(typed)));
  }
  return static_cast<std::size_t>(letter - 'A');
}

std::set<std::size_t> drivesMeant(const DriveOptions& options) {
  if (options.all == !options.drives.empty()) {
    throw Failure(ExitCode::Usage, "usage", "Say which drives: name them, or --all.");
  }
  std::set<std::size_t> drives;
  for (const std::string& typed : options.drives) drives.insert(driveNumber(typed));
  for (std::size_t i = 0; options.all && i < kDriveCount; ++i) drives.insert(i);
  return drives;
}

HiddenDrives read(BackupMachine& machine) {
  HiddenDrives drives;
  const Status status = dialogs::readHiddenDrives(machine.session(), drives);
  if (status == ERROR_SUCCESS) return drives;
  throw machineFailure(status, fmt::format("The hidden drives cannot be read: {}.",
                                           platform::describeStatus(status)));
}

Json valueOf(const HiddenDrives& drives) {
  if (!drives.present) return nullptr;
  return valueJson("NoDrives", {drives.raw.type, drives.raw.bytes});
}

ExitCode list(Context& context) {
  BackupMachine machine(context, Access::Read);
  const HiddenDrives drives = read(machine);
  const dialogs::DriveKinds kinds = dialogs::driveKinds(machine.session());
  const auto names = dialogs::driveNames();
  Json json = document();
  json["drives"] = Json::array();
  for (std::size_t i = 0; i < kDriveCount; ++i) {
    const bool hidden = drives.mask.isHidden(i);
    const std::string kind(forms::pictureName(kinds[i]));
    if (context.json) {
      json["drives"].push_back({{"drive", names[i]}, {"kind", kind}, {"hidden", hidden}});
      continue;
    }
    const std::string_view state = hidden ? "hidden" : "shown";
    context.out << (kind.empty() ? fmt::format("{}  {}\n", names[i], state)
                                 : fmt::format("{}  {:<6}  {}\n", names[i], state, kind));
  }
  json["value"] = valueOf(drives);
  if (context.json) print(context.out, json);
  return ExitCode::Done;
}

void write(BackupMachine& machine, const DriveMask& mask) {
  platform::Registry& registry = machine.registry();
  platform::RegistryChange change(registry);
  Status status = change.status();
  if (status == ERROR_SUCCESS) status = dialogs::writeHiddenDrives(machine.session(), mask);
  if (status == platform::ERROR_FILE_NOT_FOUND) {
    throw Failure(ExitCode::Failed, "no-policies",
                  "The user has no key of Explorer's policies that the drives could be written to. "
                  "Nothing was changed.");
  }
  if (status == ERROR_SUCCESS) status = change.commit();
  if (status == ERROR_SUCCESS) status = registry.flush();
  if (status != ERROR_SUCCESS) {
    throw registryFailure(status, "The hidden drives could not be changed", registry.lastRefusal());
  }
}

void tell(Context& context, const HiddenDrives& before, const HiddenDrives& after) {
  const bool changed = !after.same(before);
  if (!context.json) {
    context.out << fmt::format("Hidden drives: {}\n", after.mask.text());
    context.note(changed ? "Explorer reads them when it starts." : "Nothing had to be written.");
    return;
  }
  Json json = document();
  json["hidden"] = Json::array();
  const auto names = dialogs::driveNames();
  for (std::size_t i = 0; i < kDriveCount; ++i) {
    if (after.mask.isHidden(i)) json["hidden"].push_back(names[i]);
  }
  json["changed"] = changed;
  json["before"] = valueOf(before);
  json["after"] = valueOf(after);
  print(context.out, json);
}

ExitCode change(Context& context, const DriveOptions& options, bool hide) {
  const std::set<std::size_t> drives = drivesMeant(options);
  BackupMachine machine(context, Access::Write);
  const HiddenDrives before = read(machine);
  DriveMask mask = before.mask;
  for (const std::size_t drive : drives) mask.setHidden(drive, hide);
  // A value that is missing hides nothing, as one of zeros would.
  if (mask != before.mask || (before.present && !before.holds(mask))) write(machine, mask);
  tell(context, before, read(machine));
  return ExitCode::Done;
}

void addChange(CLI::App& group, Run& run, bool hide) {
  const auto options = std::make_shared<DriveOptions>();
  CLI::App* command =
      hide ? addCommand(group, "hide", "Hide drives in My Computer and Explorer",
                        "  korvex drives hide A B\n"
                        "  korvex --json drives hide D:\n"
                        "\n"
                        "The other drives stay as they are. A hidden drive is not locked: programs "
                        "still reach\n"
                        "it. Explorer shows the change when it starts the next time.")
           : addCommand(group, "show", "Show hidden drives again",
                        "  korvex drives show D\n"
                        "  korvex drives show --all");
  command->add_option("DRIVE", options->drives, "Drives: C, or C:")->type_name("");
  command->add_flag("--all", options->all, "Every drive");
  command->callback([&run, options, hide] {
    run = [options, hide](Context& context) { return change(context, *options, hide); };
  });
}

}  // namespace

void addDrivesCommands(CLI::App& app, Run& run) {
  CLI::App* group = addGroup(app, "drives", "Hide drives in Explorer, and show them");
  addCommand(*group, "list", "List the drives: what each is, and whether it is hidden",
             "  korvex drives list\n"
             "  korvex --json drives list")
      ->callback([&run] { run = list; });
  addChange(*group, run, true);
  addChange(*group, run, false);
}

}  // namespace korvex::cli
