// machine create, machine info.
#include <fmt/format.h>

#include <ostream>

#include "cli/commands.h"
#include "cli/output.h"
#include "program/open_machine.h"
#include "program/recent_machines.h"

namespace korvex::cli {
namespace {

struct CreateOptions {
  std::string windows;
  std::string folder;
};

void printDescription(Context& context, const platform::MachineDescription& machine) {
  if (context.json) {
    Json json = document();
    json["machine"] = {{"kind", machine.kind},         {"folder", machine.folder},
                       {"windows", machine.windows},   {"version", machine.version},
                       {"product", machine.product},   {"user", machine.user},
                       {"computer", machine.computer}, {"evidence", machine.evidence},
                       {"codePage", machine.codePage}, {"readOnly", machine.readOnly}};
    print(context.out, json);
    return;
  }
  const auto line = [&context](std::string_view name, std::string_view value) {
    if (!value.empty()) context.out << fmt::format("{:<12} {}\n", name, printable(value));
  };
  line("Folder:", machine.folder);
  line("Kind:", machine.kind);
  line("Windows:", machine.windows);
  line("Version:", machine.version);
  line("Product:", machine.product);
  line("User:", machine.user);
  line("Computer:", machine.computer);
  line("Recognised:", machine.evidence);
}

ExitCode create(Context& context, const CreateOptions& options) {
  std::string message;
  const auto status = program::createMachine(options.windows, options.folder, message);
  if (status != platform::ERROR_SUCCESS) throw machineFailure(status, message);
  context.machineFolder = options.folder;
  context.note(fmt::format("Made a machine in {}.", options.folder));
  printDescription(context, context.openUnasked(platform::OpenMode::Read)->describe());
  return ExitCode::Done;
}

ExitCode listRecent(Context& context) {
  const auto folders = program::recentMachines();
  if (context.json) {
    Json json = document();
    json["machines"] = Json::array();
    for (const auto& folder : folders) json["machines"].push_back(folder.string());
    print(context.out, json);
    return ExitCode::Done;
  }
  for (const auto& folder : folders) context.out << printable(folder.string()) << '\n';
  return ExitCode::Done;
}

}  // namespace

void addMachineCommands(CLI::App& app, Run& run) {
  CLI::App* group = addGroup(app, "machine", "Make a machine, or tell what one is");

  const auto options = std::make_shared<CreateOptions>();
  CLI::App* created = addCommand(*group, "create", "Make a machine from a sample installation",
                                 "  korvex machine create --windows 98 ~/machines/win98");
  created->add_option("--windows", options->windows, "Which Windows")
      ->required()
      ->check(CLI::IsMember(program::windowsNames()).description(""))
      ->type_name("95|98|me|nt4|2000|2000-server");
  created->add_option("DIR", options->folder, "Its folder; new or empty")
      ->required()
      ->type_name("");
  created->callback(
      [&run, options] { run = [options](Context& context) { return create(context, *options); }; });

  CLI::App* info = addCommand(*group, "info", "Tell which Windows a machine is, and whose",
                              "  korvex --machine ~/machines/win98 machine info\n"
                              "  korvex --json machine info");
  info->callback([&run] {
    run = [](Context& context) {
      printDescription(context, context.openUnasked(platform::OpenMode::Read)->describe());
      return ExitCode::Done;
    };
  });

  CLI::App* list = addCommand(*group, "list", "List the machines that were opened last",
                              "  korvex machine list");
  list->callback([&run] { run = listRecent; });
}

}  // namespace korvex::cli
