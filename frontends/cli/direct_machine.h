// DirectMachine: a machine on which a command writes at once: all of what it does, or nothing.
#pragma once

#include <string>

#include "cli/backup_machine.h"
#include "cli/registry_access.h"

namespace korvex::cli {

class DirectMachine {
 public:
  // Throws Failure as BackupMachine does. What is not committed is taken back.
  explicit DirectMachine(const Context& context)
      : machine_(context, Access::Write), change_(machine_.registry()) {
    expect(change_.status(), "The registry");
  }

  foundation::Session& session() { return machine_.session(); }
  void expect(platform::Status status, const std::string& what) {
    if (status == platform::ERROR_SUCCESS) return;
    throw registryFailure(status, what, machine_.registry().lastRefusal());
  }
  // Keeps everything, durably.
  void commit() {
    platform::Status status = change_.commit();
    if (status == platform::ERROR_SUCCESS) status = machine_.registry().flush();
    expect(status, "The changes could not be written");
  }

 private:
  BackupMachine machine_;
  platform::RegistryChange change_;
};

}  // namespace korvex::cli
