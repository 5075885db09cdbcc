// A machine as the backup commands work on it: claimed where they write, with what is known of its
// Windows, and the object that saves and restores keys.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "backup/registry_backer.h"
#include "cli/answer_script.h"
#include "cli/context.h"
#include "foundation/session.h"
#include "platform/common/composed_machine.h"
#include "platform/common/files_decorators.h"
#include "platform/text/reg_writer.h"

namespace korvex::cli {

// Pretend: the machine is only read; files seem to be written and nothing is changed.
enum class Access { Read, Pretend, Write };

class BackupMachine {
 public:
  // Throws Failure where there is no such machine, or it is busy or read-only.
  BackupMachine(const Context& context, Access access);

  foundation::Session& session() { return session_; }
  backup::RegistryBacker& backer() { return backer_; }
  platform::Registry& registry() { return session_.registry(); }
  platform::Files& files() { return session_.files(); }
  int codePage() const { return codePage_; }
  // What the registry editor of its Windows writes.
  platform::RegFormat regFormat() const;

 private:
  std::unique_ptr<platform::Machine> machine_;
  std::unique_ptr<platform::InstanceClaim> claim_;
  platform::PretendingFiles pretended_;
  platform::ComposedMachine composed_;
  AnswerScript prompts_;
  foundation::Session session_;
  backup::RegistryBacker backer_;
  int codePage_ = 0;
};

// "C:\backup\x.reg" or "\\server\share\x.reg": a path of the machine. All others are the host's.
bool isMachinePath(std::string_view path);

}  // namespace korvex::cli
