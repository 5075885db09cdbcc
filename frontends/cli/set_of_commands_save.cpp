// set-of save and set-of erase.
#include <fmt/format.h>

#include <algorithm>
#include <ostream>

#include "backup/categories.h"
#include "cli/association_commands.h"
#include "cli/interrupt.h"
#include "cli/registry_access.h"
#include "cli/set_of_commands.h"

namespace korvex::cli {
namespace {

using platform::ERROR_SUCCESS;

struct SaveOptions {
  std::string name;
  std::vector<std::string> only;
  std::vector<std::string> types;
  std::string templateName;
  std::string folder;
  bool overwrite = false;
};

struct EraseOptions {
  std::string name;
  bool recordOnly = false;
};

// The categories that this machine has something of.
std::vector<std::string> presentTags(foundation::Session& session) {
  std::vector<std::string> tags;
  for (const backup::Category& category : backup::categories()) {
    if (backup::whyNotSaved(session, category).empty()) tags.emplace_back(category.tag);
  }
  return tags;
}

backup::SaveRequest requestFor(BackupMachine& machine, const SaveOptions& options) {
  backup::SaveRequest request;
  request.name = options.name;
  request.folder = machineFolder(options.folder, "");
  request.tags = options.only.empty() ? presentTags(machine.session()) : categoryTags(options.only);
  request.extensions = options.templateName.empty()
                           ? fileTypes(options.types, backup::registeredTypes(machine.session()))
                           : typesOfTemplate(machine.session(), options.templateName);
  const bool hasTypes = std::ranges::find(request.tags, "FAConfig") != request.tags.end();
  if (!request.extensions.empty() && !hasTypes) {
    throw Failure(ExitCode::Usage, "usage",
                  "File types are named, but FAConfig is not among the categories to be saved.");
  }
  return request;
}

void checkDisk(Context& context, backup::ConfigSets& sets, const backup::SaveRequest& request) {
  switch (sets.checkDisk(request)) {
    case backup::DiskState::Ready:
      return;
    case backup::DiskState::NotReady:
      throw Failure(ExitCode::Failed, "not-ready",
                    fmt::format("{}: The disk is not ready. Nothing was saved.",
                                printable(sets.folderFor(request))));
    case backup::DiskState::NotEnoughSpace:
      // The save itself tells, and leaves nothing half done.
      context.note(
          "The disk where the save will occur may not have enough space to complete the "
          "operation.");
  }
}

// A save that another one would be forgotten for.
void refuseEarlier(backup::ConfigSets& sets, const backup::SaveRequest& request) {
  backup::ConfigSet earlier;
  std::string ignored;
  const std::string folder = sets.folderFor(request);
  const bool there = sets.find(request.name, earlier, ignored) == ERROR_SUCCESS ||
                     sets.find(fmt::format("{}\\{}", folder, backup::kProfileFile), earlier,
                               ignored) == ERROR_SUCCESS;
  if (!there) return;
  throw Failure(ExitCode::Failed, "exists",
                fmt::format("There is a save named {} already, of {}, in {}; --overwrite replaces "
                            "it. Nothing was saved.",
                            printable(earlier.name), earlier.saved, printable(earlier.folder)));
}

void printSaved(Context& context, const backup::SaveRequest& request, const std::string& folder,
                const backup::SaveOutcome& outcome) {
  if (!outcome.failed.empty()) context.note("The following items could not be saved.");
  for (const auto& failed : outcome.failed) {
    context.note(fmt::format("{}: {}", printable(failed.caption), oneLine(failed.reason)));
  }
  if (!context.json) {
    context.out << fmt::format("Saved {}: {} of {} categories, {} files, in {}.\n",
                               printable(request.name), request.tags.size() - outcome.failed.size(),
                               request.tags.size(), outcome.files, printable(folder));
    return;
  }
  Json json = document();
  json["name"] = request.name;
  json["folder"] = folder;
  json["requested"] = request.tags;
  json["files"] = outcome.files;
  json["failed"] = Json::array();
  for (const auto& failed : outcome.failed) {
    json["failed"].push_back({{"caption", failed.caption}, {"reason", failed.reason}});
  }
  print(context.out, json);
}

ExitCode save(Context& context, const SaveOptions& options) {
  const std::string wrongName = backup::whyNoSetName(options.name);
  if (!wrongName.empty()) throw Failure(ExitCode::Usage, "bad-name", wrongName);
  categoryTags(options.only);
  BackupMachine machine(context, Access::Write);
  backup::ConfigSets sets(machine.session(), machine.backer());
  const backup::SaveRequest request = requestFor(machine, options);
  if (!options.overwrite) refuseEarlier(sets, request);
  checkDisk(context, sets, request);
  const Interrupt interrupt;
  const backup::SaveOutcome outcome = sets.save(request, interrupt.progress());
  if (outcome.cancelled) throw cancelledFailure("The save");
  if (outcome.status != ERROR_SUCCESS) {
    throw machineFailure(outcome.status, oneLine(outcome.message));
  }
  printSaved(context, request, sets.folderFor(request), outcome);
  return outcome.failed.empty() ? ExitCode::Done : ExitCode::Differences;
}

void printErased(Context& context, const backup::ConfigSet& set, bool recordOnly, bool stays) {
  if (stays) {
    context.note(fmt::format("{} holds files that are none of the save's, so it stays.",
                             printable(set.folder)));
  }
  if (context.json) {
    Json json = document();
    json["erased"] = set.name;
    json["folder"] = set.folder;
    json["recordOnly"] = recordOnly;
    json["foreignFilesStay"] = stays;
    print(context.out, json);
    return;
  }
  context.out << fmt::format("Erased {}.\n", printable(set.name));
  if (recordOnly) context.out << "Only the information stored in Korvex will be erased.\n";
}

ExitCode erase(Context& context, const EraseOptions& options) {
  BackupMachine machine(context, Access::Write);
  backup::ConfigSets sets(machine.session(), machine.backer());
  backup::ConfigSet set;
  std::string message;
  const platform::Status status = sets.find(options.name, set, message);
  // A record that cannot be understood can still be erased.
  if (status != ERROR_SUCCESS && !(options.recordOnly && status == platform::ERROR_INVALID_DATA)) {
    throw Failure(ExitCode::Failed,
                  status == platform::ERROR_FILE_NOT_FOUND ? "not-found" : "damaged",
                  oneLine(message));
  }
  if (!options.recordOnly && !sets.isAvailable(set)) {
    throw Failure(ExitCode::Failed, "not-available",
                  fmt::format("The folder containing this save is not available. ({}) Add "
                              "--record-only to erase what Korvex has stored of it.",
                              printable(set.folder)));
  }
  const backup::EraseOutcome outcome = sets.erase(set, options.recordOnly);
  if (outcome.status != ERROR_SUCCESS) {
    throw machineFailure(outcome.status, oneLine(outcome.message));
  }
  printErased(context, set, options.recordOnly, outcome.foreignFilesStay);
  return ExitCode::Done;
}

void addErase(CLI::App& group, Run& run) {
  const auto options = std::make_shared<EraseOptions>();
  CLI::App* command = addCommand(group, "erase", "Delete a saved set, folder and record",
                                 "  korvex set-of erase Work\n"
                                 "  korvex set-of erase Work --record-only");
  command->add_option("NAME", options->name, "The set's name")->required()->type_name("");
  command->add_flag("--record-only", options->recordOnly,
                    "Only what Korvex has stored of it; the folder stays");
  command->callback(
      [&run, options] { run = [options](Context& context) { return erase(context, *options); }; });
}

}  // namespace

void addSetOfSave(CLI::App& group, Run& run) {
  const auto options = std::make_shared<SaveOptions>();
  CLI::App* command = addCommand(
      group, "save", "Save configuration under a name",
      "  korvex set-of save Work\n"
      "  korvex set-of save Look --only Color,Cursor,Desktop\n"
      "  korvex set-of save Types --only FA --types .txt,.bmp --folder 'D:\\saves'\n"
      "\n"
      "Without --only every category is saved that the machine has something of. What cannot be\n"
      "saved is named (exit code 1). With --overwrite an earlier save of that name is replaced\n"
      "when the new one is whole.");
  command->add_option("NAME", options->name, "Its name, and that of its folder")
      ->required()
      ->type_name("");
  command
      ->add_option("--only", options->only,
                   "Only these categories: ColorConfig, or Color; with commas between them")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("TAG,...");
  CLI::Option* types =
      command
          ->add_option("--types", options->types, "Of the file associations only these: .txt,.bmp")
          ->delimiter(',')
          ->allow_extra_args(false)
          ->type_name("TYPE,...");
  command
      ->add_option("--template", options->templateName,
                   "Of the file associations only those that this template names")
      ->excludes(types)
      ->type_name("NAME");
  command->add_option("--folder", options->folder, "Folder of the machine to save in: C:\\...")
      ->type_name("DIR");
  command->add_flag("--overwrite", options->overwrite, "Replace an earlier save of that name");
  command->callback(
      [&run, options] { run = [options](Context& context) { return save(context, *options); }; });
  addErase(group, run);
}

}  // namespace korvex::cli
