// A machine made of another one with some of its parts replaced: decorators for dry runs, records
// and faults go in here.
#pragma once

#include <memory>

#include "platform/common/ini_files.h"
#include "platform/machine.h"

namespace korvex::platform {

// Null: the inner machine's own part; INI files are those of replaced files. Parts are not owned. A
// replaced part serves its callers only: the inner machine's other parts (its registry editor, say)
// keep using the original.
struct MachineParts {
  Registry* registry = nullptr;
  Files* files = nullptr;
  InitFiles* initFiles = nullptr;
  Processes* processes = nullptr;
  Restart* restart = nullptr;
  Windows* windows = nullptr;
};

class ComposedMachine : public Machine {
 public:
  ComposedMachine(Machine& inner, MachineParts parts) : inner_(inner), parts_(parts) {
    if (parts.files == nullptr || parts.initFiles != nullptr) return;
    const auto* ini = dynamic_cast<const IniFiles*>(&inner.initFiles());
    if (ini != nullptr) iniOfFiles_ = ini->over(*parts.files);
    parts_.initFiles = iniOfFiles_.get();
  }

  Registry& registry() override { return parts_.registry ? *parts_.registry : inner_.registry(); }
  InitFiles& initFiles() override {
    return parts_.initFiles ? *parts_.initFiles : inner_.initFiles();
  }
  Files& files() override { return parts_.files ? *parts_.files : inner_.files(); }
  SystemInfo& systemInfo() override { return inner_.systemInfo(); }
  Processes& processes() override {
    return parts_.processes ? *parts_.processes : inner_.processes();
  }
  Restart& restart() override { return parts_.restart ? *parts_.restart : inner_.restart(); }
  Windows& windows() override { return parts_.windows ? *parts_.windows : inner_.windows(); }
  MachineDescription describe() override { return inner_.describe(); }
  std::unique_ptr<InstanceClaim> claimInstance(Wait wait) override {
    return inner_.claimInstance(wait);
  }
  std::string claimHolder() override { return inner_.claimHolder(); }

 private:
  Machine& inner_;
  MachineParts parts_;
  std::unique_ptr<IniFiles> iniOfFiles_;
};

}  // namespace korvex::platform
