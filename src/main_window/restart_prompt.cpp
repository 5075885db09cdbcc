// The question whether to restart Windows now.
#include "main_window/restart_prompt.h"

#include <fmt/format.h>

namespace korvex::main_window {
namespace {

using foundation::Session;
using namespace platform;

constexpr std::uint32_t kRestartNT = EWX_SHUTDOWN | EWX_REBOOT | EWX_FORCE;
constexpr std::uint32_t kReservedNT = 0xFFFFFFFF;

}  // namespace

void p_AdjustToken(Session& session) {
  session.trace.enter("[p_AdjustToken]");
  Restart& restart = session.machine().restart();
  std::uint32_t token = 0;
  std::uint64_t identifier = 0;
  // Not checked here: without the privilege ExitWindowsEx says so.
  restart.OpenProcessToken(kTokenAdjustPrivilegesAndQuery, token);
  restart.LookupPrivilegeValueA("", "SeShutdownPrivilege", identifier);
  restart.AdjustTokenPrivileges(token, identifier, SE_PRIVILEGE_ENABLED);
}

void askForRestart(Session& session) {
  if (session.g_bNoShowReboot || !session.machine().restart().systemRuns()) return;
  const std::string text = fmt::format(
      "Some of your selections require a reboot before they take affect.{0}{0}"
      "Would you like Korvex to reboot your system now?",
      foundation::kCrLf);
  const Answer answer =
      session.prompts().messageBox(text, kButtonsYesNo | kIconQuestion, foundation::kAppTitle);
  if (answer != Answer::Yes) return;

  Status status = ERROR_SUCCESS;
  if (session.g_bNT) {
    p_AdjustToken(session);
    status = session.machine().restart().ExitWindowsEx(kRestartNT, kReservedNT);
    session.g_bRebootNeeded = false;
  } else {
    status = session.machine().restart().ExitWindowsEx(EWX_REBOOT, 0);
  }
  session.trace.dump("lRetVal&", status);
  if (status == ERROR_SUCCESS) return;
  session.prompts().messageBox(
      fmt::format("Windows could not be restarted: {}. Please restart it yourself.",
                  describeStatus(status)),
      kButtonsOk | kIconExclamation, foundation::kAppTitle);
}

}  // namespace korvex::main_window
