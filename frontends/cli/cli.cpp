// Taking the command line apart, running the command, and telling how it failed.
#include "cli/cli.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ostream>

#include "cli/commands.h"
#include "cli/output.h"
#include "cli/tweak_names.h"

namespace korvex::cli {
namespace {

constexpr std::array kGroups{
    addMachineCommands,     addListCommand,      addShowCommand,     addSetCommand,
    addRegCommands,         addBackupCommands,   addSetOfCommands,   addAssociationCommands,
    addContextMenuCommands, addDrivesCommands,   addStartupCommands, addUninstallCommands,
    addShellFolderCommands, addPasswordCommands, addFormCommands,    addCompletionCommand};

constexpr const char* kFooter =
    "Examples:\n"
    "  korvex list --search run           which tweaks there are, and how they stand\n"
    "  korvex show P_rwRun                what ticking it would write\n"
    "  korvex set P_rwRun=on              tick it and press Apply\n"
    "  korvex --machine ~/win98 machine info\n"
    "\n"
    "Without --machine and KORVEX_MACHINE the default machine is used, a Windows 2000\n"
    "that is made on first use.\n"
    "\n"
    "Exit codes: 0 done; 1 done, but not all (refused lines, texts left out); 2 wrong\n"
    "usage; 3 no machine; 4 machine busy or read-only; 5 failed, nothing changed.";

void reportFailure(const Failure& failure, const Context& context) {
  context.note(fmt::format("korvex: {}", failure.what()));
  if (!context.json) return;
  Json json = document();
  json["error"] = {{"kind", failure.kind()},
                   {"exitCode", static_cast<int>(failure.code())},
                   {"message", failure.what()}};
  if (const auto* told = dynamic_cast<const FailureWithEvents*>(&failure)) {
    json["error"]["events"] = told->events();
  }
  print(context.out, json);
}

void addOptions(CLI::App& app, Context& context) {
  app.require_subcommand(1);
  app.set_version_flag("--version", "korvex " KORVEX_VERSION, "Print the version");
  app.set_help_flag("-h,--help", "Print this help");
  app.footer(kFooter);
  app.get_formatter()->column_width(30);
  app.add_option("--machine", context.machineFolder, "Folder of the machine to work on")
      ->type_name("DIR")
      ->envname("KORVEX_MACHINE");
  app.add_option("--user", context.user, "Whose settings, where a machine has several users")
      ->type_name("NAME");
  app.add_option("--password-fd", context.passwordDescriptor,
                 "Take Korvex's own password from this file descriptor, where one is set")
      ->check(CLI::NonNegativeNumber.description(""))
      ->type_name("N");
  app.add_flag("--json", context.json, "Print one JSON object instead of text");
  app.add_flag("-v,--verbose", context.verbose, "Also print the writes in Korvex's own area");
}

// CLI11 tells only that a command is missing; what was typed in its place says more.
std::string usageText(const CLI::App& app, const CLI::ParseError& error) {
  std::string text = error.what();
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
    const CLI::App* group = &app;
    while (!group->get_subcommands().empty()) group = group->get_subcommands().front();
    const std::vector<std::string> left = app.remaining(true);
    std::vector<std::string> names;
    for (const CLI::App* command : group->get_subcommands(nullptr)) {
      names.push_back(command->get_name());
    }
    if (!names.empty() && !left.empty()) {
      text = fmt::format("There is no command '{}'.{}", printable(left.front()),
                         suggestion(left.front(), names));
    } else if (!names.empty()) {
      text = fmt::format("A command is missing: {}.", fmt::join(names, ", "));
    }
  }
  return text + "\nRun 'korvex --help', or '--help' after a command.";
}

// Nothing to run where help or the version was asked for and printed.
Run parse(std::vector<std::string> args, Context& context) {
  // A wrong command line is told as JSON too, so this must be known before it is parsed.
  const auto end = std::find(args.begin(), args.end(), "--");
  context.json = std::find(args.begin(), end, "--json") != end;

  Run run;
  CLI::App app("Tunes a Windows 95, 98, Me, NT 4 or 2000 installation.", "korvex");
  addOptions(app, context);
  for (const AddCommands add : kGroups) add(app, run);
  std::reverse(args.begin(), args.end());  // CLI11 takes them last first
  try {
    app.parse(std::move(args));
  } catch (const CLI::Success& asked) {
    app.exit(asked, context.out, context.err);
    return {};
  } catch (const CLI::ParseError& error) {
    throw Failure(ExitCode::Usage, "usage", usageText(app, error));
  }
  return run;
}

ExitCode run(std::vector<std::string> args, Context& context) {
  try {
    const Run command = parse(std::move(args), context);
    return command ? command(context) : ExitCode::Done;
  } catch (const Failure& failure) {
    reportFailure(failure, context);
    return failure.code();
  } catch (const std::exception& error) {
    const Failure failure(ExitCode::Failed, "internal", error.what());
    reportFailure(failure, context);
    return failure.code();
  }
}

}  // namespace

CLI::App* addGroup(CLI::App& parent, const char* name, const char* help) {
  CLI::App* group = parent.add_subcommand(name, help);
  group->require_subcommand(1);
  group->fallthrough();
  group->footer("'--help' after a command tells more.");
  return group;
}

CLI::App* addCommand(CLI::App& parent, const char* name, const char* help, const char* examples) {
  CLI::App* command = parent.add_subcommand(name, help);
  command->footer(std::string("Examples:\n") + examples);
  command->fallthrough();
  return command;
}

int runCli(std::vector<std::string> args, const Streams& streams) {
  Context context(streams);
  const ExitCode code = run(std::move(args), context);
  context.out.flush();
  if (!context.out) {
    context.note("korvex: the output could not be written.");
    return static_cast<int>(ExitCode::Failed);
  }
  return static_cast<int>(code);
}

}  // namespace korvex::cli
