// Commands on the right-click menus of folders, drives and files.
#include <fmt/format.h>

#include <array>
#include <string>
#include <vector>

#include "engine/raw_value.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"
#include "engine/same_name.h"

namespace korvex::engine {

using foundation::Session;

namespace {

// Where a command line begins depends on the Windows.
enum class Shell : std::uint8_t { AsItStands, CommandPrompt, OpenAs };

struct Verb {
  std::string_view property;
  std::string_view key;       // below HKEY_CLASSES_ROOT
  std::string_view menuText;  // "" where Windows has its own
  std::string_view command;
  Shell shell = Shell::AsItStands;
};

constexpr std::string_view kPrint = "command.com /c dir /ogn /v /l >prn %1";
constexpr std::string_view kPrintTree = "command.com /c dir /ogn /v /l /s >prn %1";

constexpr std::array kVerbs{
    Verb{"P_rwRightClickDOS", "Directory\\Shell\\Open DOS Box here", "Open DOS &Box here",
         " /k CD %1", Shell::CommandPrompt},
    Verb{"P_rwRightClickDOS", "Drive\\Shell\\Open DOS Box here", "Open DOS &Box here", " /k CD %1",
         Shell::CommandPrompt},
    Verb{"P_rwPrintDirs_Files", "Directory\\shell\\Print_Directory", "Print Directory", kPrint},
    Verb{"P_rwPrintDirs_Files", "Drive\\shell\\Print_Directory", "Print Directory", kPrint},
    Verb{"P_rwPrintDirs_Files", "Directory\\shell\\Print_Directory_Tree", "Print Directory Tree",
         kPrintTree},
    Verb{"P_rwPrintDirs_Files", "Drive\\shell\\Print_Directory_Tree", "Print Directory Tree",
         kPrintTree},
    Verb{"P_rwOpenWith", "*\\shell\\openas", "", " shell32.dll,OpenAs_RunDLL %1", Shell::OpenAs},
};

std::string commandOf(const Verb& verb, const Session& session) {
  switch (verb.shell) {
    case Shell::CommandPrompt:
      return fmt::format("{}{}", session.g_bNT ? "cmd.exe" : "command.com", verb.command);
    case Shell::OpenAs:
      return fmt::format("{}rundll32.exe{}",
                         session.g_bNT ? session.g_sWinSysDir : session.g_sWinDir, verb.command);
    case Shell::AsItStands:
      break;
  }
  return std::string(verb.command);
}

std::string commandKey(const Verb& verb) { return fmt::format("{}\\command", verb.key); }

}  // namespace

bool RegWorker::p_rwShellVerbs(const Tweak& tweak) {
  session_.trace.enter(fmt::format("[{}]", tweak.property));
  const bool on = wantsOn(tweak);
  for (const Verb& verb : kVerbs) {
    if (verb.property != tweak.property) continue;
    if (!on) {
      if (!removeTree(HKCR, verb.key)) return false;
      continue;
    }
    const bool named = verb.menuText.empty() || write(HKCR, verb.key, "", verb.menuText);
    if (!named || !write(HKCR, commandKey(verb), "", commandOf(verb, session_))) return false;
  }
  return finishSpecial(tweak);
}

// The first of its commands tells: a folder's verb counts though a drive's is gone.
TweakState p_DetermineShellVerbs(const Tweak& tweak, Session& session) {
  for (const Verb& verb : kVerbs) {
    if (verb.property != tweak.property) continue;
    RawValue value;
    const platform::Status status =
        readRawValue(session.registry(), HKCR, commandKey(verb), "", value);
    const bool there =
        status == platform::ERROR_SUCCESS && sameName(value.text(), commandOf(verb, session));
    return {there ? TweakState::Kind::On : TweakState::Kind::Off, {}};
  }
  return {};
}

}  // namespace korvex::engine
