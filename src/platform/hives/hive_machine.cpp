// Opens a machine of registry files and puts its parts together.
#include "platform/hives/hive_machine.h"

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <utility>

#include "platform/common/facts_system_info.h"
#include "platform/common/ini_files.h"
#include "platform/common/registry_editor.h"
#include "platform/stored/stored_registry.h"

namespace korvex::platform {
namespace {

constexpr std::uint32_t kToken = 4;

class CountedClaim : public InstanceClaim {
 public:
  explicit CountedClaim(std::shared_ptr<CountedLock> lock) : lock_(std::move(lock)) {}
  ~CountedClaim() override {
    lock_->claimed = false;
    lock_->release();
  }

 private:
  std::shared_ptr<CountedLock> lock_;
};

// Windows is not running: it starts anew by itself the next time.
class NothingToRestart : public Restart {
 public:
  Status OpenProcessToken(std::uint32_t /*access*/, std::uint32_t& token) override {
    token = kToken;
    return ERROR_SUCCESS;
  }
  Status LookupPrivilegeValueA(std::string_view /*system*/, std::string_view /*privilege*/,
                               std::uint64_t& identifier) override {
    identifier = 0;
    return ERROR_SUCCESS;
  }
  Status AdjustTokenPrivileges(std::uint32_t /*token*/, std::uint64_t /*identifier*/,
                               std::uint32_t /*attributes*/) override {
    return ERROR_SUCCESS;
  }
  Status ExitWindowsEx(std::uint32_t /*flags*/, std::uint32_t /*reserved*/) override {
    return ERROR_NOT_READY;
  }
  bool systemRuns() override { return false; }
};

class NoWindows : public Windows {
 public:
  bool FindWindowA(std::string_view /*className*/, std::string_view /*windowName*/) override {
    return false;
  }
};

class HiveProcesses : public Processes {
 public:
  HiveProcesses(const HiveMachineOptions& options, const MachineFacts& facts, Registry& registry,
                DriveFolders& files)
      : options_(options), registry_(registry), editor_(facts, registry, files) {}

  Status run(std::string_view commandLine, int& exitCode, std::string& message) override {
    if (editor_.isMeant(commandLine)) return editor_.run(commandLine, exitCode, message);
    return start(commandLine, Wait::Yes, exitCode, message);
  }
  Status ShellExecuteA(std::string_view /*verb*/, std::string_view file,
                       std::string_view parameters, std::string_view /*folder*/,
                       std::string& message) override {
    const std::string commandLine = commandLineOf(file, parameters);
    int exitCode = 0;
    if (editor_.isMeant(commandLine)) return editor_.run(commandLine, exitCode, message);
    return start(commandLine, Wait::No, exitCode, message);
  }

 private:
  Status start(std::string_view commandLine, Wait wait, int& exitCode, std::string& message) {
    exitCode = 1;
    if (commandLine.empty()) return ERROR_INVALID_PARAMETER;
    if (!options_.start) {
      message = fmt::format("{} was not started: this machine does not run.", commandLine);
      return ERROR_NOT_SUPPORTED;
    }
    // The program is to find what was applied.
    const Status status = registry_.flush();
    return status == ERROR_SUCCESS ? options_.start(commandLine, wait, exitCode, message) : status;
  }

  const HiveMachineOptions& options_;
  Registry& registry_;
  RegistryEditor editor_;
};

class HiveMachine : public Machine {
 public:
  explicit HiveMachine(HiveMachineOptions options)
      : options_(std::move(options)),
        lock_(std::make_shared<CountedLock>(options_.store.folder)),
        store_(options_.store, lock_) {}

  Status open(std::string& message) {
    Status status = store_.open(message);
    if (status != ERROR_SUCCESS) return status;
    if (options_.placesFrom) {
      StoredRegistry reader(store_, {.places = options_.places});
      options_.placesFrom(reader, options_.places);
    }
    StoredRegistry reader(store_, {.places = options_.places});
    status = options_.readFacts(reader, facts_, message);
    if (status != ERROR_SUCCESS) return status;
    options_.places.family = facts_.family;
    parts_.emplace(*this);
    return ERROR_SUCCESS;
  }

  Registry& registry() override { return parts_->registry; }
  InitFiles& initFiles() override { return parts_->initFiles; }
  Files& files() override { return parts_->files; }
  SystemInfo& systemInfo() override { return parts_->systemInfo; }
  Processes& processes() override { return parts_->processes; }
  Restart& restart() override { return restart_; }
  Windows& windows() override { return windows_; }

  MachineDescription describe() override {
    return {options_.kind,
            options_.store.folder.string(),
            facts_.name,
            versionText(facts_),
            facts_.productType,
            facts_.user,
            facts_.computerName,
            options_.evidence,
            options_.store.readOnly,
            facts_.codePage};
  }

  std::unique_ptr<InstanceClaim> claimInstance(Wait wait) override {
    if (lock_->claimed || lock_->acquire(wait) != ERROR_SUCCESS) return nullptr;
    lock_->claimed = true;
    return std::make_unique<CountedClaim>(lock_);
  }
  std::string claimHolder() override { return lock_->holder(); }

 private:
  // What needs the facts.
  struct Parts {
    explicit Parts(HiveMachine& machine)
        : registry(machine.store_, {.places = machine.options_.places}),
          files(machine.options_.drives, {.readOnly = machine.options_.store.readOnly}),
          initFiles(files, machine.facts_.windowsFolder, *CodePage::find(machine.facts_.codePage),
                    machine.facts_.family == Family::Nt ? SectionGap::None : SectionGap::BlankLine),
          systemInfo(machine.facts_, files),
          processes(machine.options_, machine.facts_, registry, files) {}
    StoredRegistry registry;
    DriveFolders files;
    IniFiles initFiles;
    FactsSystemInfo systemInfo;
    HiveProcesses processes;
  };

  HiveMachineOptions options_;
  std::shared_ptr<CountedLock> lock_;
  HiveStore store_;
  MachineFacts facts_;
  std::optional<Parts> parts_;
  NothingToRestart restart_;
  NoWindows windows_;
};

}  // namespace

OpenedMachine openHiveMachine(HiveMachineOptions options) {
  OpenedMachine opened;
  auto machine = std::make_unique<HiveMachine>(std::move(options));
  opened.status = machine->open(opened.message);
  if (opened.status == ERROR_SUCCESS) opened.machine = std::move(machine);
  return opened;
}

}  // namespace korvex::platform
