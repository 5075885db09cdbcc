// Asking for the password.
#include "cli/admission.h"

#include "cli/secrets.h"
#include "foundation/greg_tool.h"
#include "platform/secrets/sodium_password_hash.h"
#include "protection/program_password.h"

namespace korvex::cli {
namespace {

using protection::ProgramPassword;

constexpr int kTries = 3;  // of a person at a terminal

void judge(ProgramPassword::Match match) {
  if (match == ProgramPassword::Match::Password) return;
  if (match == ProgramPassword::Match::ResetCode) {
    throw Failure(ExitCode::Failed, "reset-code",
                  "This is the reset code: it only takes the password away, with 'korvex password "
                  "clear'.");
  }
  throw Failure(ExitCode::Failed, "wrong-password", "Invalid Password, try again!");
}

}  // namespace

void admit(const Context& context, platform::Machine& machine) {
  foundation::GRegTool regTool(machine.registry(), machine.systemInfo());
  platform::SodiumPasswordHash hash;
  ProgramPassword password(regTool, hash);
  if (!password.isSet()) return;
  if (context.passwordDescriptor >= 0) {
    return judge(password.check(readSecret(context.passwordDescriptor)));
  }
  for (int left = kTries; left > 0; --left) {
    const auto typed = askForSecret("Password of Korvex on this machine: ");
    if (!typed) {
      throw Failure(ExitCode::Failed, "password-needed",
                    "Korvex asks for a password on this machine. Start the command in a terminal, "
                    "or give the password with --password-fd.");
    }
    const ProgramPassword::Match match = password.check(*typed);
    if (match != ProgramPassword::Match::None || left == 1) return judge(match);
    context.note("Invalid Password, try again!");
  }
}

}  // namespace korvex::cli
