// Opening a machine for the backup commands.
#include "cli/backup_machine.h"

#include "cli/claimed_machine.h"
#include "main_window/start_up.h"

namespace korvex::cli {
namespace {

using platform::OpenMode;

platform::MachineParts partsFor(Access access, platform::Files& pretended) {
  platform::MachineParts parts;
  if (access == Access::Pretend) parts.files = &pretended;
  return parts;
}

}  // namespace

BackupMachine::BackupMachine(const Context& context, Access access)
    : machine_(context.openMachine(access == Access::Write ? OpenMode::ReadWrite : OpenMode::Read)),
      claim_(access == Access::Write ? claim(*machine_) : nullptr),
      pretended_(machine_->files()),
      composed_(*machine_, partsFor(access, pretended_)),
      session_(composed_, prompts_),
      backer_(session_),
      codePage_(machine_->describe().codePage) {
  main_window::detectReadOnly(session_);
}

platform::RegFormat BackupMachine::regFormat() const {
  const bool unicode = session_.g_bNT && session_.g_verInfo.majorVersion >= 5;
  return unicode ? platform::RegFormat::Version5 : platform::RegFormat::Regedit4;
}

bool isMachinePath(std::string_view path) {
  if (path.starts_with("\\\\")) return true;
  if (path.size() < 2 || path[1] != ':') return false;
  const char letter = static_cast<char>(path[0] | 0x20);
  return letter >= 'a' && letter <= 'z' && (path.size() == 2 || path[2] == '\\' || path[2] == '/');
}

}  // namespace korvex::cli
