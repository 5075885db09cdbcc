// shell-folders list, set and default: what the window with the shell folders does, for scripts.
#include <fmt/format.h>

#include <algorithm>
#include <ostream>

#include "cli/backup_machine.h"
#include "cli/commands.h"
#include "cli/direct_machine.h"
#include "cli/output.h"
#include "cli/tweak_names.h"
#include "dialogs/shell/shell_folder_paths.h"
#include "engine/folder_choice.h"
#include "platform/file_change.h"

namespace korvex::cli {
namespace {

using dialogs::ShellFolder;
using dialogs::ShellFolderPaths;
using platform::ERROR_SUCCESS;
using platform::Status;
using There = ShellFolderPaths::There;

struct FolderOptions {
  std::string name;
  std::string path;
  bool create = false;
};

std::vector<ShellFolder> allFolders(const ShellFolderPaths& paths) {
  std::vector<ShellFolder> folders;
  const Status status = paths.read(folders);
  if (status == ERROR_SUCCESS) return folders;
  throw registryFailure(status, "The shell folders");
}

ShellFolder named(const ShellFolderPaths& paths, const std::string& name) {
  ShellFolder folder;
  const Status status = paths.readOne(name, folder);
  if (status == ERROR_SUCCESS) return folder;
  if (status != platform::ERROR_FILE_NOT_FOUND) throw registryFailure(status, name);
  std::vector<std::string> names;
  for (const ShellFolder& one : allFolders(paths)) names.push_back(one.name);
  throw Failure(
      ExitCode::Usage, "unknown-folder",
      fmt::format("There is no shell folder '{}'.{}", printable(name), suggestion(name, names)));
}

Json thereJson(There there) {
  return there == There::Unknown ? Json(nullptr) : Json(there == There::Yes);
}

Json folderJson(const ShellFolderPaths& paths, const ShellFolder& folder) {
  return {{"name", folder.name},
          {"path", folder.path},
          {"userPath", folder.userPath},
          {"default", folder.byDefault ? Json(*folder.byDefault) : Json(nullptr)},
          {"isDefault", folder.isDefault()},
          {"exists", folder.path.empty() ? Json(nullptr) : thereJson(paths.isThere(folder.path))},
          {"description", folder.description}};
}

ExitCode list(Context& context) {
  BackupMachine machine(context, Access::Read);
  const ShellFolderPaths paths(machine.session());
  Json json = document();
  json["folders"] = Json::array();
  for (const ShellFolder& folder : allFolders(paths)) {
    json["folders"].push_back(folderJson(paths, folder));
    if (context.json) continue;
    const bool missing = !folder.path.empty() && paths.isThere(folder.path) == There::No;
    context.out << fmt::format("{:<22} {}{}\n", printable(folder.name),
                               folder.path.empty() ? "-" : printable(folder.path),
                               missing ? "  (no such folder)" : "");
  }
  if (context.json) print(context.out, json);
  return ExitCode::Done;
}

void expectClosed(const ShellFolderPaths& paths, const ShellFolder& folder) {
  const std::string refusal = paths.refusalOf(folder.name);
  if (refusal.empty()) return;
  throw Failure(ExitCode::Busy, "application-running", refusal + " Nothing was changed.");
}

void printChanged(Context& context, const ShellFolderPaths& paths,
                  const std::vector<ShellFolder>& changed) {
  Json json = document();
  json["changed"] = Json::array();
  for (const ShellFolder& one : changed) {
    const ShellFolder now = named(paths, one.name);
    json["changed"].push_back(folderJson(paths, now));
    if (context.json) continue;
    context.out << fmt::format("{}: {}\n", printable(now.name), printable(now.path));
  }
  if (context.json) print(context.out, json);
  context.note(changed.empty() ? "Nothing was to be changed."
                               : "You must reboot for the changes to take effect. Files were not "
                                 "moved.");
}

// The folder as it is written; made where it is missing and that was asked for.
std::string folderFor(const FolderOptions& options, const ShellFolderPaths& paths,
                      platform::Files& files) {
  const std::string path = engine::tidyFolder(options.path);
  if (!isMachinePath(path) || path.size() < 3) {
    throw Failure(ExitCode::Usage, "bad-folder",
                  fmt::format("'{}' is no folder of the machine: it begins with a drive letter, as "
                              "in C:\\Data. In a shell put it in single quotes.",
                              printable(options.path)));
  }
  if (path.starts_with("\\\\")) return path;  // cannot be looked at from here
  if (paths.isThere(path) == There::Yes) return path;
  if (!options.create) {
    throw Failure(ExitCode::Failed, "no-folder",
                  fmt::format("{} is no folder of the machine; with --create it is made. Nothing "
                              "was changed.",
                              printable(path)));
  }
  const Status status = files.createFolder(path);
  if (status == ERROR_SUCCESS) return path;
  throw machineFailure(status, fmt::format("{} could not be made: {}. Nothing was changed.",
                                           printable(path), platform::describeStatus(status)));
}

ExitCode set(Context& context, const FolderOptions& options) {
  DirectMachine machine(context);
  const ShellFolderPaths paths(machine.session());
  const ShellFolder folder = named(paths, options.name);
  expectClosed(paths, folder);
  platform::FileChange made(machine.session().files());
  const std::string path = folderFor(options, paths, made);
  std::vector<ShellFolder> changed;
  if (folder.path != path || folder.userPath != path) {
    machine.expect(paths.write(folder, path), printable(folder.name));
    changed.push_back(folder);
  }
  machine.commit();
  made.commit();
  printChanged(context, paths, changed);
  return ExitCode::Done;
}

ExitCode toDefault(Context& context, const FolderOptions& options) {
  DirectMachine machine(context);
  const ShellFolderPaths paths(machine.session());
  std::vector<ShellFolder> meant;
  if (options.name.empty()) {
    meant = allFolders(paths);
  } else {
    meant.push_back(named(paths, options.name));
  }
  if (std::ranges::none_of(meant, [](const auto& one) { return one.byDefault.has_value(); })) {
    const std::string what = options.name.empty() ? "any folder" : printable(meant[0].name);
    throw Failure(
        ExitCode::Failed, "no-default",
        fmt::format("Korvex knows no default of {} in this Windows. Nothing was changed.", what));
  }
  const std::vector<ShellFolder> changed = ShellFolderPaths::withoutDefault(meant);
  for (const ShellFolder& folder : changed) expectClosed(paths, folder);
  machine.expect(paths.P_SetShellFoldersDefault(changed), "The shell folders");
  machine.commit();
  printChanged(context, paths, changed);
  return ExitCode::Done;
}

}  // namespace

void addShellFolderCommands(CLI::App& app, Run& run) {
  CLI::App* group = addGroup(app, "shell-folders", "Desktop, Favorites and the user's others");
  addCommand(*group, "list", "List the folders with their paths",
             "  korvex shell-folders list\n"
             "  korvex --json shell-folders list")
      ->callback([&run] { run = list; });

  const auto options = std::make_shared<FolderOptions>();
  CLI::App* setting = addCommand(*group, "set", "Give a folder another path",
                                 "  korvex shell-folders set Personal 'D:\\Documents'\n"
                                 "  korvex shell-folders set Desktop 'C:\\Desk' --create\n"
                                 "\n"
                                 "Windows takes the new path from its next start on. Files are not "
                                 "moved. While Internet\n"
                                 "Explorer or Outlook has the folder in use the exit code is 4.");
  setting->add_option("NAME", options->name, "The folder's name, as listed")
      ->type_name("")
      ->required();
  setting->add_option("PATH", options->path, "A folder of the machine: C:\\...")
      ->type_name("")
      ->required();
  setting->add_flag("--create", options->create, "Make the folder where it is missing");
  setting->callback(
      [&run, options] { run = [options](Context& context) { return set(context, *options); }; });

  CLI::App* defaulting =
      addCommand(*group, "default", "Put folders back to where Windows has them by itself",
                 "  korvex shell-folders default Favorites\n"
                 "  korvex shell-folders default\n"
                 "\n"
                 "Without a name all of them. A folder that the machine's Windows does not have "
                 "stays as it is.");
  defaulting->add_option("NAME", options->name, "The folder's name, as listed")->type_name("");
  defaulting->callback([&run, options] {
    run = [options](Context& context) { return toDefault(context, *options); };
  });
}

}  // namespace korvex::cli
