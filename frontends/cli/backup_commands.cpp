// backup: one key with everything beneath it, whole or not at all.
#include "cli/backup_commands.h"

#include <fmt/format.h>

#include <ostream>

#include "cli/backup_files.h"
#include "cli/interrupt.h"
#include "cli/key_path.h"
#include "cli/output.h"
#include "cli/registry_access.h"
#include "platform/common/reg_export.h"

namespace korvex::cli {
namespace {

using namespace platform;

constexpr std::string_view kStandardOutput = "-";
constexpr std::string_view kWhat = "The backup";

struct BackupOptions {
  std::string key;
  std::string file;
  bool overwrite = false;

  Overwrite mode() const { return overwrite ? Overwrite::Yes : Overwrite::No; }
};

void printDone(Context& context, const TypedKey& key, const BackupOptions& options,
               const RegExportResult* counts) {
  if (context.json) {
    Json json = document();
    json["key"] = key.full();
    json["file"] = options.file;
    json["keys"] = counts != nullptr ? Json(counts->keys) : Json(nullptr);
    json["values"] = counts != nullptr ? Json(counts->values) : Json(nullptr);
    print(context.out, json);
  } else if (counts != nullptr) {
    context.out << fmt::format("Saved {}: {} keys and {} values, in {}.\n", printable(key.full()),
                               counts->keys, counts->values, printable(options.file));
  } else {
    context.out << fmt::format("Saved {} in {}.\n", printable(key.full()), printable(options.file));
  }
}

// By the machine's own editor, to a place of the machine.
ExitCode backupOnMachine(Context& context, const TypedKey& key, const BackupOptions& options) {
  BackupMachine machine(context, Access::Write);
  refuseExisting(machine.files().exists(options.file), options.file, options.mode(), kWhat);
  const Interrupt interrupt;
  if (!machine.backer().P_rbBackupRegistryKey(key.root, key.path, options.file)) {
    const Status status = machine.backer().lastStatus();
    throw Failure(ExitCode::Failed, status == ERROR_FILE_NOT_FOUND ? "not-found" : "failed",
                  fmt::format("{} Nothing was saved.", printable(machine.backer().lastMessage())));
  }
  printDone(context, key, options, nullptr);
  return ExitCode::Done;
}

// Throws Failure where the text could not be made, or not whole.
void expectWhole(Context& context, const TypedKey& key, const RegExportResult& result) {
  if (result.status == ERROR_FILE_NOT_FOUND) {
    throw registryFailure(result.status, "The key " + printable(key.full()));
  }
  if (result.status != ERROR_SUCCESS) {
    throw Failure(ExitCode::Failed, "failed",
                  fmt::format("{}. Nothing was saved.", printable(result.message)));
  }
  if (result.leftOutCount == 0) return;
  for (const std::string& one : result.leftOut) context.note(printable(one));
  throw Failure(ExitCode::Failed, "left-out",
                fmt::format("{} keys or values cannot be written as the registry editor of this "
                            "Windows writes them, so nothing was saved: a backup is whole. 'korvex "
                            "reg export' saves the others; its --format 5 can hold every text.",
                            result.leftOutCount));
}

// By Korvex, as that editor would write it; the machine is only read.
ExitCode backupOnHost(Context& context, const TypedKey& key, const BackupOptions& options) {
  BackupMachine machine(context, Access::Read);
  RegExportOptions how;
  how.format = machine.regFormat();
  how.codePage = machine.codePage();
  const std::vector<KeyPath> keys{{key.root, key.path}};
  if (options.file == kStandardOutput) {
    // What is on the output cannot be taken back, so it is tried first.
    const auto nowhere = [](std::string_view) { return ERROR_SUCCESS; };
    expectWhole(context, key, exportRegPieces(machine.registry(), keys, nowhere, how));
    expectWhole(context, key, exportRegText(machine.registry(), keys, context.out, how));
    return ExitCode::Done;
  }
  const auto file = makeFile(machine, options.file, options.mode(), kWhat);
  const auto write = [&file](std::string_view piece) { return file->write(piece); };
  const RegExportResult result = exportRegPieces(machine.registry(), keys, write, how);
  expectWhole(context, key, result);
  const Status status = file->commit();
  if (status != ERROR_SUCCESS) {
    throw Failure(
        ExitCode::Failed, "failed",
        fmt::format("{}: {}. Nothing was saved.", printable(options.file), describeStatus(status)));
  }
  printDone(context, key, options, &result);
  return ExitCode::Done;
}

ExitCode backupKey(Context& context, const BackupOptions& options) {
  const TypedKey key = parseKey(options.key);
  if (options.file == kStandardOutput && context.json) {
    throw Failure(ExitCode::Usage, "usage",
                  "--json and a backup to the standard output exclude each other. Name a file.");
  }
  return isMachinePath(options.file) ? backupOnMachine(context, key, options)
                                     : backupOnHost(context, key, options);
}

}  // namespace

void addBackupCommands(CLI::App& app, Run& run) {
  const auto options = std::make_shared<BackupOptions>();
  CLI::App* command = addCommand(
      app, "backup", "Save a key with everything below it, whole or not at all",
      "  korvex backup 'HKCU\\Control Panel' panel.reg\n"
      "  korvex backup 'HKLM\\Software\\Test' 'C:\\backup\\test.reg'\n"
      "\n"
      "A path with a drive letter is one of the machine, and its registry editor writes the file;\n"
      "for any other the machine is only read. What the file cannot hold fails the backup, and\n"
      "nothing is written. 'restore' puts it back.");
  command->add_option("KEY", options->key, "HKCU\\Software\\..., or with the root's name in full")
      ->required()
      ->type_name("");
  command->add_option("FILE", options->file, "The file; - is the standard output")
      ->required()
      ->type_name("");
  command->add_flag("--overwrite", options->overwrite, "Replace a file that is there already");
  command->callback([&run, options] {
    run = [options](Context& context) { return backupKey(context, *options); };
  });
  addRestoreCommand(app, run);
}

}  // namespace korvex::cli
