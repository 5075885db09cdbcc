// password status, password set, password clear.
#include <fmt/format.h>

#include <ostream>

#include "cli/commands.h"
#include "cli/output.h"
#include "cli/registry_access.h"
#include "cli/secrets.h"
#include "foundation/greg_tool.h"
#include "platform/secrets/sodium_password_hash.h"
#include "platform/text/text.h"
#include "protection/program_password.h"

namespace korvex::cli {
namespace {

using protection::ProgramPassword;

// A machine that is opened without being asked, and its password.
class Protected {
 public:
  Protected(const Context& context, platform::OpenMode mode)
      : machine_(context.openUnasked(mode)),
        regTool_(machine_->registry(), machine_->systemInfo()),
        password_(regTool_, hash_) {}

  ProgramPassword& password() { return password_; }

  void finish(platform::Status status) {
    if (status == platform::ERROR_SUCCESS) status = machine_->registry().flush();
    if (status != platform::ERROR_SUCCESS) {
      throw registryFailure(status, "The password could not be changed",
                            machine_->registry().lastRefusal());
    }
  }

 private:
  std::unique_ptr<platform::Machine> machine_;
  foundation::GRegTool regTool_;
  platform::SodiumPasswordHash hash_;
  ProgramPassword password_;
};

std::string secretFrom(int descriptor, const std::string& question, const char* option) {
  if (descriptor >= 0) return readSecret(descriptor);
  if (const auto typed = askForSecret(question)) return *typed;
  throw Failure(ExitCode::Failed, "password-needed",
                fmt::format("A password is needed. Start the command in a terminal, or give it "
                            "with {}.",
                            option));
}

// The reset code will do as well: that is what it is for.
void proveMayChange(const Context& context, ProgramPassword& password) {
  if (!password.isSet()) return;
  const std::string typed =
      secretFrom(context.passwordDescriptor, "Present password: ", "--password-fd");
  if (password.check(typed) != ProgramPassword::Match::None) return;
  throw Failure(ExitCode::Failed, "wrong-password", "Invalid Password, try again!");
}

std::string newPassword(int descriptor) {
  std::string wanted = secretFrom(descriptor, "New password: ", "--new-password-fd");
  if (wanted.empty()) {
    throw Failure(ExitCode::Usage, "empty-password", "The new password is empty.");
  }
  if (descriptor >= 0) return wanted;
  const auto again = askForSecret("Once more: ");
  if (again && platform::sameName(*again, wanted)) return wanted;
  throw Failure(ExitCode::Failed, "passwords-differ",
                "The two passwords differ. Nothing was changed.");
}

void tellState(Context& context, bool isSet, const std::string& resetCode) {
  if (context.json) {
    Json json = document();
    json["password"] = {{"set", isSet}};
    if (!resetCode.empty()) json["password"]["resetCode"] = resetCode;
    return print(context.out, json);
  }
  context.out << (isSet ? "Korvex asks for a password on this machine.\n"
                        : "Korvex asks for no password on this machine.\n");
  if (resetCode.empty()) return;
  context.out << fmt::format("Reset code: {}\n", resetCode);
  context.note(
      "Keep the reset code in a safe place: 'korvex password clear' takes it in the "
      "password's place.");
}

ExitCode status(Context& context) {
  Protected machine(context, platform::OpenMode::Read);
  tellState(context, machine.password().isSet(), "");
  return ExitCode::Done;
}

ExitCode set(Context& context, int newDescriptor) {
  Protected machine(context, platform::OpenMode::ReadWrite);
  proveMayChange(context, machine.password());
  const std::string wanted = newPassword(newDescriptor);
  std::string resetCode;
  machine.finish(machine.password().set(wanted, resetCode));
  tellState(context, true, resetCode);
  return ExitCode::Done;
}

ExitCode clear(Context& context) {
  Protected machine(context, platform::OpenMode::ReadWrite);
  proveMayChange(context, machine.password());
  machine.finish(machine.password().clear());
  tellState(context, false, "");
  return ExitCode::Done;
}

}  // namespace

void addPasswordCommands(CLI::App& app, Run& run) {
  CLI::App* group = addGroup(app, "password", "Set or take away Korvex's own password");
  addCommand(*group, "status", "Tell whether Korvex asks for a password on the machine",
             "  korvex password status")
      ->callback([&run] { run = status; });

  const auto descriptor = std::make_shared<int>(-1);
  CLI::App* setting = addCommand(
      *group, "set", "Set or change the password",
      "  korvex password set\n"
      "  korvex password set --new-password-fd 3 3< new.txt\n"
      "  korvex --password-fd 3 password set --new-password-fd 4 3< old.txt 4< new.txt\n"
      "\n"
      "Upper and lower case do not count. The reset code that is printed takes the password\n"
      "away for whoever has forgotten it.");
  setting
      ->add_option("--new-password-fd", *descriptor,
                   "Take the new password from this file descriptor")
      ->check(CLI::NonNegativeNumber.description(""))
      ->type_name("N");
  setting->callback([&run, descriptor] {
    run = [descriptor](Context& context) { return set(context, *descriptor); };
  });

  addCommand(*group, "clear", "Take the password away; needs it, or the reset code",
             "  korvex password clear\n"
             "  korvex --password-fd 3 password clear 3< code.txt")
      ->callback([&run] { run = clear; });
}

}  // namespace korvex::cli
