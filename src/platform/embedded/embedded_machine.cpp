// Opens an embedded machine and puts its parts together.
#include "platform/embedded/embedded_machine.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <utility>

#include "platform/common/drive_folders.h"
#include "platform/common/ini_files.h"
#include "platform/embedded/database.h"
#include "platform/embedded/database_keys.h"
#include "platform/embedded/embedded_processes.h"
#include "platform/embedded/embedded_system.h"
#include "platform/embedded/machine_file.h"
#include "platform/embedded/machine_lock.h"
#include "platform/stored/stored_registry.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kDrivePrefix = "drive_";

class LockClaim : public InstanceClaim {
 public:
  explicit LockClaim(std::unique_ptr<MachineLock> lock) : lock_(std::move(lock)) {}

 private:
  std::unique_ptr<MachineLock> lock_;
};

DriveFolders::Map drivesOf(const fs::path& folder) {
  DriveFolders::Map drives;
  std::error_code error;
  for (char letter = 'a'; letter <= 'z'; ++letter) {
    const fs::path drive = folder / (std::string(kDrivePrefix) + letter);
    if (fs::is_directory(drive, error)) drives[static_cast<char>(letter - 'a' + 'A')] = drive;
  }
  return drives;
}

RegistryTraits traitsOf(const MachineFile& machine) {
  const bool nt = machine.family == Family::Nt;
  const char* const config =
      nt ? "SYSTEM\\CurrentControlSet\\Hardware Profiles\\Current" : "Config\\0001";
  return {.places = {machine.family, machine.userKey, "", config},
          .codePage = nt ? nullptr : CodePage::find(machine.codePage)};
}

class EmbeddedMachine : public Machine {
 public:
  EmbeddedMachine(fs::path folder, const MachineFile& file, std::unique_ptr<Database> database)
      : folder_(std::move(folder)),
        file_(file),
        database_(std::move(database)),
        keys_(*database_, keyOrderOf(file_.family)),
        registry_(keys_, traitsOf(file_)),
        files_(drivesOf(folder_), {.readOnly = database_->readOnly()}),
        initFiles_(files_, file_.windowsFolder, *CodePage::find(file_.codePage),
                   file_.family == Family::Nt ? SectionGap::None : SectionGap::BlankLine),
        events_(*database_, registry_),
        systemInfo_(file_, files_),
        processes_(file_, registry_, files_, events_),
        restart_(file_, events_),
        windows_(file_) {}

  Status prepare() { return keys_.prepare(); }

  Registry& registry() override { return registry_; }
  InitFiles& initFiles() override { return initFiles_; }
  Files& files() override { return files_; }
  SystemInfo& systemInfo() override { return systemInfo_; }
  Processes& processes() override { return processes_; }
  Restart& restart() override { return restart_; }
  Windows& windows() override { return windows_; }

  MachineDescription describe() override {
    return {"embedded",
            folder_.string(),
            file_.name,
            versionText(file_),
            file_.productType,
            file_.user,
            file_.computerName,
            "machine.json and registry.db",
            database_->readOnly(),
            file_.codePage};
  }

  std::unique_ptr<InstanceClaim> claimInstance(Wait wait) override {
    auto lock = std::make_unique<MachineLock>(folder_ / "machine.json", LockKind::Exclusive);
    const bool taken =
        lock->opened() && lock->take(MachineLock::kInstanceByte, LockKind::Exclusive, wait);
    return taken ? std::make_unique<LockClaim>(std::move(lock)) : nullptr;
  }

 private:
  fs::path folder_;
  MachineFile file_;
  std::unique_ptr<Database> database_;
  DatabaseKeys keys_;
  StoredRegistry registry_;
  DriveFolders files_;
  IniFiles initFiles_;
  EventLog events_;
  EmbeddedSystemInfo systemInfo_;
  EmbeddedProcesses processes_;
  EmbeddedRestart restart_;
  EmbeddedWindows windows_;
};

bool mayWrite(const fs::path& path) {
  return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

// What must be writable for a machine that is to be changed.
Status checkWritable(const fs::path& folder, std::string& message) {
  for (const fs::path& path : {folder, folder / "machine.json", folder / "registry.db"}) {
    if (mayWrite(path)) continue;
    message = fmt::format(
        "{}: the machine cannot be changed here. Give yourself the right to write to it, or open "
        "it for reading only.",
        path.string());
    return ERROR_WRITE_PROTECT;
  }
  return ERROR_SUCCESS;
}

}  // namespace

bool looksLikeEmbeddedMachine(const fs::path& folder) {
  std::error_code error;
  return fs::is_regular_file(folder / "machine.json", error) &&
         fs::is_regular_file(folder / "registry.db", error);
}

OpenedMachine openEmbeddedMachine(const fs::path& folder, OpenMode mode) {
  OpenedMachine opened;
  MachineFile file;
  opened.status = readMachineFile(folder / "machine.json", file, opened.message);
  // What is no registry is told as such, also where it could not be written.
  if (opened.status == ERROR_SUCCESS && mode == OpenMode::ReadWrite &&
      fs::exists(folder / "registry.db")) {
    opened.status = checkWritable(folder, opened.message);
  }
  if (opened.status != ERROR_SUCCESS) return opened;
  auto database = Database::open(folder, mode, opened.status, opened.message);
  if (database == nullptr) return opened;
  auto machine = std::make_unique<EmbeddedMachine>(folder, file, std::move(database));
  opened.status = machine->prepare();
  if (opened.status == ERROR_SUCCESS) {
    opened.machine = std::move(machine);
  } else {
    opened.message = fmt::format("{}: the registry is damaged. Restore it from a backup.",
                                 (folder / "registry.db").string());
  }
  return opened;
}

Status readMachineEvents(const fs::path& folder, std::vector<MachineEvent>& events) {
  std::string message;
  Status status = ERROR_SUCCESS;
  const auto database = Database::open(folder, OpenMode::Read, status, message);
  if (database == nullptr) return status;
  DatabaseKeys keys(*database, KeyOrder::Alphabetical);
  StoredRegistry registry(keys, {});
  return EventLog(*database, registry).read(events);
}

}  // namespace korvex::platform
