// reg import, reg export: registry-editor files.
#include <fmt/format.h>

#include <istream>
#include <ostream>

#include "cli/output.h"
#include "cli/reg_commands.h"
#include "cli/registry_access.h"
#include "platform/common/reg_export.h"
#include "platform/common/reg_import.h"

namespace korvex::cli {
namespace {

using namespace platform;

constexpr std::string_view kStandardStream = "-";

struct FileOptions {
  std::string file;
  std::string key;
  int format = 0;  // 0: what the machine's Windows writes
};

void noteAll(const Context& context, const std::vector<std::string>& messages, std::size_t count) {
  for (const std::string& message : messages) context.note(printable(message));
  if (count > messages.size()) {
    context.note(fmt::format("... and {} more.", count - messages.size()));
  }
}

void printImport(Context& context, const RegImportResult& result) {
  noteAll(context, result.messages, result.refused + result.notes);
  if (!context.json) {
    context.out << fmt::format(
        "{} keys and {} values imported, {} keys and {} values deleted, {} lines refused.\n",
        result.keys, result.values, result.deletedKeys, result.deletedValues, result.refused);
    return;
  }
  Json json = document();
  json["keys"] = result.keys;
  json["values"] = result.values;
  json["deletedKeys"] = result.deletedKeys;
  json["deletedValues"] = result.deletedValues;
  json["refused"] = result.refused;
  json["notes"] = result.notes;
  json["messages"] = result.messages;
  print(context.out, json);
}

ExitCode importFile(Context& context, const FileOptions& options) {
  const auto machine = context.openMachine(OpenMode::ReadWrite);
  RegImportOptions how;
  how.codePage = machine->describe().codePage;
  const bool fromInput = options.file == kStandardStream;
  if (fromInput) how.source = "(standard input)";
  const RegImportResult result = fromInput ? importRegText(machine->registry(), context.in, how)
                                           : importRegFile(machine->registry(), options.file, how);
  if (result.status != ERROR_SUCCESS) throw machineFailure(result.status, result.message);
  const Status flushed = machine->registry().flush();
  if (flushed != ERROR_SUCCESS) {
    throw registryFailure(flushed, "The import", machine->registry().lastRefusal());
  }
  printImport(context, result);
  return result.refused == 0 ? ExitCode::Done : ExitCode::Differences;
}

RegFormat formatFor(Machine& machine, int format) {
  if (format != 0) return format == 4 ? RegFormat::Regedit4 : RegFormat::Version5;
  VersionInfo version;
  machine.systemInfo().GetVersionExA(version);
  const bool unicode = version.platformId == VER_PLATFORM_WIN32_NT && version.majorVersion >= 5;
  return unicode ? RegFormat::Version5 : RegFormat::Regedit4;
}

void printExport(Context& context, const RegExportResult& result, RegFormat format) {
  noteAll(context, result.leftOut, result.leftOutCount);
  const int number = format == RegFormat::Regedit4 ? 4 : 5;
  if (!context.json) {
    context.out << fmt::format("{} keys and {} values exported in format {}, {} left out.\n",
                               result.keys, result.values, number, result.leftOutCount);
    return;
  }
  Json json = document();
  json["keys"] = result.keys;
  json["values"] = result.values;
  json["format"] = number;
  json["leftOutCount"] = result.leftOutCount;
  json["leftOut"] = result.leftOut;
  print(context.out, json);
}

ExitCode exportKey(Context& context, const FileOptions& options) {
  const TypedKey key = parseKey(options.key);
  const bool toOutput = options.file == kStandardStream;
  if (toOutput && context.json) {
    throw Failure(ExitCode::Usage, "usage",
                  "--json and an export to the standard output exclude each other. Name a file.");
  }
  const auto machine = context.openMachine(OpenMode::Read);
  RegExportOptions how;
  how.format = formatFor(*machine, options.format);
  how.codePage = machine->describe().codePage;
  const std::vector<KeyPath> keys{{key.root, key.path}};
  const RegExportResult result = toOutput
                                     ? exportRegText(machine->registry(), keys, context.out, how)
                                     : exportRegFile(machine->registry(), keys, options.file, how);
  if (result.status != ERROR_SUCCESS) {
    if (result.status == ERROR_FILE_NOT_FOUND) {
      throw registryFailure(result.status, "The key " + printable(key.full()));
    }
    throw Failure(ExitCode::Failed, "failed", result.message);
  }
  if (toOutput) {
    noteAll(context, result.leftOut, result.leftOutCount);
  } else {
    printExport(context, result, how.format);
  }
  return result.leftOutCount == 0 ? ExitCode::Done : ExitCode::Differences;
}

}  // namespace

void addRegFileCommands(CLI::App& group, Run& run) {
  const auto imported = std::make_shared<FileOptions>();
  CLI::App* importing =
      addCommand(group, "import", "Read a registry-editor file into the registry",
                 "  korvex reg import settings.reg\n"
                 "  korvex reg import - < settings.reg\n"
                 "\n"
                 "A line that says nothing valid is refused, told with its number, "
                 "and the rest is read\n"
                 "(exit code 1). The import is one change: all of it or nothing.");
  importing->add_option("FILE", imported->file, "The file; - is the standard input")
      ->required()
      ->type_name("");
  importing->callback([&run, imported] {
    run = [imported](Context& context) { return importFile(context, *imported); };
  });

  const auto exported = std::make_shared<FileOptions>();
  CLI::App* command = addCommand(
      group, "export", "Write a key with everything below it to a registry-editor file",
      "  korvex reg export 'HKCU\\Control Panel' panel.reg\n"
      "  korvex reg export HKLM - --format 4\n"
      "\n"
      "Text that format 4 cannot hold in the machine's code page is named and left out (exit code "
      "1).");
  command->add_option("KEY", exported->key, "HKCU\\Software\\..., or with the root's name in full")
      ->required()
      ->type_name("");
  command->add_option("FILE", exported->file, "The file; - is the standard output")
      ->required()
      ->type_name("");
  command
      ->add_option("--format", exported->format,
                   "4 (REGEDIT4) or 5 (Unicode); without it what the machine's Windows writes")
      ->check(CLI::IsMember({4, 5}).description(""))
      ->type_name("4|5");
  command->callback([&run, exported] {
    run = [exported](Context& context) { return exportKey(context, *exported); };
  });
}

}  // namespace korvex::cli
