// associations list, save and restore.
#include "cli/association_commands.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <ostream>

#include "cli/backup_machine.h"
#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/offer_run.h"
#include "cli/output.h"
#include "cli/registry_access.h"
#include "cli/tweak_names.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using backup::FileType;
using platform::ERROR_SUCCESS;

struct TypeOptions {
  std::vector<std::string> types;
  bool all = false;
  bool saved = false;
  std::string templateName;
  std::string folder;
  OfferOptions offer;
};

bool contains(const std::vector<std::string>& types, const FileType& type) {
  return std::ranges::any_of(
      types, [&type](const std::string& one) { return platform::sameName(one, type.extension); });
}

std::string folderOf(const TypeOptions& options, BackupMachine& machine) {
  return machineFolder(options.folder, backup::associationFolder(machine.session()));
}

// A backup of all types must not be one of some of them.
std::vector<FileType> allTypes(BackupMachine& machine) {
  std::vector<FileType> types;
  const platform::Status status = backup::listTypes(machine.session(), types);
  if (status == ERROR_SUCCESS) return types;
  throw machineFailure(status, fmt::format("The file types cannot be read: {}. Nothing was saved.",
                                           platform::describeStatus(status)));
}

ExitCode list(Context& context, const TypeOptions& options) {
  BackupMachine machine(context, Access::Read);
  const bool saved = options.saved || !options.folder.empty();
  std::vector<FileType> types =
      saved ? backup::savedAssociations(machine.session(), folderOf(options, machine))
            : backup::registeredTypes(machine.session());
  if (!options.templateName.empty()) {
    const auto wanted = typesOfTemplate(machine.session(), options.templateName);
    std::erase_if(types, [&wanted](const FileType& type) { return !contains(wanted, type); });
  }
  if (context.json) {
    Json json = document();
    json["types"] = Json::array();
    for (const FileType& type : types) {
      json["types"].push_back({{"extension", type.extension},
                               {"class", type.className},
                               {"description", type.description},
                               {"canBeSaved", type.canBeSaved()}});
    }
    json["templates"] = backup::associationTemplates(machine.session());
    print(context.out, json);
    return ExitCode::Done;
  }
  for (const FileType& type : types) {
    std::string line = fmt::format("{:<12} {:<24} {}", printable(type.extension),
                                   printable(type.className), printable(type.description));
    line.erase(line.find_last_not_of(' ') + 1);
    context.out << line << '\n';
  }
  if (types.empty()) context.note(saved ? "No file type is saved there." : "No file type.");
  return ExitCode::Done;
}

// The types that the command is for, out of those that there are.
std::vector<std::string> chosenTypes(BackupMachine& machine, const TypeOptions& options,
                                     const std::vector<FileType>& present) {
  const int ways = (options.types.empty() ? 0 : 1) + (options.all ? 1 : 0) +
                   (options.templateName.empty() ? 0 : 1);
  if (ways != 1) {
    throw Failure(ExitCode::Usage, "usage",
                  "Say which file types: name them, or --all, or --template.");
  }
  if (!options.types.empty()) return fileTypes(options.types, present);
  if (!options.all) return typesOfTemplate(machine.session(), options.templateName);
  std::vector<std::string> all;
  all.reserve(present.size());
  for (const FileType& type : present) all.push_back(type.extension);
  return all;
}

void printSaved(Context& context, const backup::AssociationOutcome& outcome,
                const std::string& folder) {
  if (!context.json) {
    context.out << fmt::format("Saved {} file types in {}.\n", outcome.saved.size(),
                               printable(folder));
    return;
  }
  Json json = document();
  json["folder"] = folder;
  json["saved"] = outcome.saved;
  json["skipped"] = outcome.skipped;
  json["failed"] = Json::array();
  for (const auto& failed : outcome.failed) {
    json["failed"].push_back({{"extension", failed.extension}, {"reason", failed.reason}});
  }
  json["files"] = Json::array();
  for (const backup::KeyBackup& key : outcome.keys) json["files"].push_back(key.file);
  print(context.out, json);
}

ExitCode save(Context& context, const TypeOptions& options) {
  BackupMachine machine(context, Access::Write);
  const std::string folder = folderOf(options, machine);
  const std::vector<std::string> types = chosenTypes(machine, options, allTypes(machine));
  const Interrupt interrupt;
  const backup::AssociationOutcome outcome = backup::exportAssociations(
      machine.session(), machine.backer(), types, folder, interrupt.progress());
  if (outcome.cancelled) throw cancelledFailure("The save");
  if (outcome.status != ERROR_SUCCESS) {
    throw machineFailure(outcome.status, oneLine(outcome.message));
  }
  for (const auto& failed : outcome.failed) {
    context.note(fmt::format("{}: {}", printable(failed.extension), oneLine(failed.reason)));
  }
  // Of all types those without a class are passed over as the window does; a type that was asked
  // for is missed.
  for (const std::string& skipped : outcome.skipped) {
    if (options.all) break;
    context.note(fmt::format("{}: it has no class of its own, so there is nothing to save.",
                             printable(skipped)));
  }
  if (outcome.saved.empty() && !(options.all && outcome.failed.empty())) {
    throw Failure(ExitCode::Failed, "nothing-saved", "Nothing was saved.");
  }
  printSaved(context, outcome, folder);
  const bool missed = !outcome.failed.empty() || (!options.all && !outcome.skipped.empty());
  return missed ? ExitCode::Differences : ExitCode::Done;
}

ExitCode restore(Context& context, const TypeOptions& options) {
  expectConfirmable(context, options.offer);
  BackupMachine machine(context, options.offer.dryRun ? Access::Read : Access::Write);
  const std::string folder = folderOf(options, machine);
  const std::vector<FileType> saved = backup::savedAssociations(machine.session(), folder);
  const std::vector<std::string> types = chosenTypes(machine, options, saved);
  if (saved.empty()) {
    throw Failure(ExitCode::Failed, "not-found",
                  fmt::format("No file type is saved in {}.", printable(folder)));
  }
  std::unique_ptr<backup::RestoreOffer> offer;
  {
    const Interrupt interrupt;
    offer = backup::offerAssociations(machine.session(), machine.backer(), folder, types,
                                      interrupt.progress());
    if (interrupt.asked()) throw cancelledFailure("The restore");
  }
  Json json = document();
  json["folder"] = folder;
  return runOffer(context, *offer, options.offer, std::move(json));
}

void addTypes(CLI::App* command, const std::shared_ptr<TypeOptions>& options, const char* all) {
  command->add_option("TYPE", options->types, "File types: .txt, or txt")->type_name("");
  command->add_flag("--all", options->all, all);
  command->add_option("--folder", options->folder, "A folder of the machine: C:\\...")
      ->type_name("DIR");
}

void addTemplate(CLI::App* command, const std::shared_ptr<TypeOptions>& options) {
  command->add_option("--template", options->templateName, "The types that this template names")
      ->type_name("NAME");
}

void addList(CLI::App& group, Run& run) {
  const auto options = std::make_shared<TypeOptions>();
  CLI::App* command = addCommand(group, "list", "List the file types, or those that are saved",
                                 "  korvex associations list\n"
                                 "  korvex associations list --saved\n"
                                 "  korvex --json associations list --template Pictures");
  command->add_flag("--saved", options->saved, "Those that are saved");
  command->add_option("--folder", options->folder, "Those that are saved in this folder")
      ->type_name("DIR");
  addTemplate(command, options);
  command->callback(
      [&run, options] { run = [options](Context& context) { return list(context, *options); }; });
}

void addSave(CLI::App& group, Run& run) {
  const auto options = std::make_shared<TypeOptions>();
  CLI::App* command = addCommand(group, "save", "Save file types, to put them back later",
                                 "  korvex associations save .txt .bmp\n"
                                 "  korvex associations save --all --folder 'D:\\types'\n"
                                 "\n"
                                 "Each type is saved as two registry-editor files, one for its "
                                 "extension and one for its\n"
                                 "class. A type without a class of its own cannot be saved (exit "
                                 "code 1).");
  addTypes(command, options, "All registered file types");
  addTemplate(command, options);
  command->callback(
      [&run, options] { run = [options](Context& context) { return save(context, *options); }; });
}

void addRestore(CLI::App& group, Run& run) {
  const auto options = std::make_shared<TypeOptions>();
  CLI::App* command = addCommand(
      group, "restore", "Put saved file types back",
      "  korvex associations restore .txt --dry-run\n"
      "  korvex associations restore --all --yes\n"
      "\n"
      "Prints what would change and asks. What is overwritten is saved first. With --dry-run the\n"
      "exit code is 1 where something would change.");
  addTypes(command, options, "All that are saved");
  command->add_flag("--dry-run", options->offer.dryRun, "Only print what would change");
  command->add_flag("--yes", options->offer.yes, "Do not ask");
  command->callback([&run, options] {
    run = [options](Context& context) { return restore(context, *options); };
  });
}

}  // namespace

std::vector<std::string> fileTypes(std::span<const std::string> typed,
                                   std::span<const FileType> known) {
  std::vector<std::string> types;
  for (const std::string& word : typed) {
    const std::string type = word.starts_with('.') ? word : '.' + word;
    if (type.size() < 2 || type.find_first_of("\\/") != std::string::npos) {
      throw Failure(ExitCode::Usage, "bad-type",
                    fmt::format("'{}' is no file type: use .txt, or txt.", printable(word)));
    }
    const auto same = [&type](const std::string& one) { return platform::sameName(one, type); };
    if (std::ranges::any_of(types, same)) continue;
    const auto found = std::ranges::find_if(known, same, &FileType::extension);
    types.push_back(found == known.end() ? type : found->extension);
  }
  return types;
}

std::vector<std::string> typesOfTemplate(foundation::Session& session, const std::string& name) {
  std::vector<std::string> types;
  const platform::Status status = backup::readTemplate(session, name, types);
  if (status == ERROR_SUCCESS) return types;
  const std::vector<std::string> names = backup::associationTemplates(session);
  if (status != platform::ERROR_FILE_NOT_FOUND && status != platform::ERROR_PATH_NOT_FOUND &&
      status != platform::ERROR_INVALID_NAME) {
    throw machineFailure(status, fmt::format("The template {}: {}.", printable(name),
                                             platform::describeStatus(status)));
  }
  throw Failure(
      ExitCode::Failed, "no-template",
      fmt::format("There is no template named '{}'.{}{}", printable(name), suggestion(name, names),
                  names.empty() ? "" : fmt::format(" There are: {}.", fmt::join(names, ", "))));
}

std::string machineFolder(const std::string& typed, const std::string& byDefault) {
  if (typed.empty()) return byDefault;
  if (!isMachinePath(typed)) {
    throw Failure(ExitCode::Usage, "bad-folder",
                  fmt::format("'{}' is no folder of the machine: it begins with a drive letter, as "
                              "in C:\\Backup. In a shell put it in single quotes.",
                              printable(typed)));
  }
  std::string folder = typed;
  std::replace(folder.begin(), folder.end(), '/', '\\');
  while (folder.size() > 3 && folder.back() == '\\') folder.pop_back();
  return folder;
}

void addAssociationCommands(CLI::App& app, Run& run) {
  CLI::App* group = addGroup(app, "associations", "Save and restore file associations");
  addList(*group, run);
  addSave(*group, run);
  addRestore(*group, run);
}

}  // namespace korvex::cli
