// Makes an embedded machine from a sample folder.
#include <fmt/format.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "platform/common/drive_folders.h"
#include "platform/common/reg_import.h"
#include "platform/embedded/database.h"
#include "platform/embedded/embedded_machine.h"
#include "platform/embedded/machine_file.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

// A folder that goes with everything in it unless it has been kept.
class FolderInWork {
 public:
  explicit FolderInWork(fs::path path) : path_(std::move(path)) {}
  ~FolderInWork() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
  }
  FolderInWork(const FolderInWork&) = delete;
  FolderInWork& operator=(const FolderInWork&) = delete;
  const fs::path& path() const { return path_; }
  void keep() { path_.clear(); }

 private:
  fs::path path_;
};

Status fault(const fs::path& path, const std::error_code& error, std::string& message) {
  message = fmt::format("{}: {}.", path.string(), error.message());
  return statusOfErrno(error.value());
}

// The sample's entries of one kind in the order of their names.
std::vector<fs::path> entriesOf(const fs::path& folder, bool (*wanted)(const fs::path&)) {
  std::vector<fs::path> entries;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (wanted(entry.path())) entries.push_back(entry.path());
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

bool isDrive(const fs::path& path) {
  const std::string name = path.filename().string();
  return name.size() == 7 && name.starts_with("drive_") && fs::is_directory(path);
}

bool isRegistryText(const fs::path& path) { return path.extension() == ".reg"; }

Status copyDrives(const fs::path& sample, const fs::path& target, std::string& message) {
  for (const fs::path& drive : entriesOf(sample, isDrive)) {
    std::error_code error;
    fs::copy(drive, target / drive.filename(),
             fs::copy_options::recursive | fs::copy_options::skip_symlinks, error);
    if (error) return fault(drive, error, message);
    // A sample that was installed for reading only makes a machine that can be changed.
    for (const auto& entry : fs::recursive_directory_iterator(target / drive.filename(), error)) {
      fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::add, error);
    }
    fs::permissions(target / drive.filename(), fs::perms::owner_write, fs::perm_options::add,
                    error);
    if (error) return fault(drive, error, message);
  }
  return ERROR_SUCCESS;
}

Status importAll(Machine& machine, const fs::path& sample, int codePage, std::string& message) {
  RegistryChange change(machine.registry());
  RegImportOptions options;
  options.codePage = codePage;
  // The user's key is there even where the sample says nothing about the user.
  HKEY user = 0;
  std::uint32_t disposition = 0;
  Status status =
      machine.registry().RegCreateKeyExA(HKEY_CURRENT_USER, "", KEY_READ, user, disposition);
  machine.registry().RegCloseKey(user);
  for (const fs::path& file : entriesOf(sample / "registry", isRegistryText)) {
    if (status != ERROR_SUCCESS) break;
    const RegImportResult result = importRegFile(machine.registry(), file, options);
    status = result.status;
    message = result.message;
    if (status == ERROR_SUCCESS && result.refused > 0) {
      message = result.messages.empty() ? file.string() : result.messages.front();
      status = ERROR_INVALID_DATA;
    }
  }
  return status == ERROR_SUCCESS ? change.commit() : status;
}

Status setAttributes(Machine& machine, const MachineFile& file, std::string& message) {
  for (const auto& [path, attributes] : file.initialAttributes) {
    const Status status = machine.files().setAttributes(path, attributes);
    if (status == ERROR_SUCCESS) continue;
    message = fmt::format("{}: its attributes: {}.", path, describeStatus(status));
    return status;
  }
  return ERROR_SUCCESS;
}

Status fill(const fs::path& sample, const fs::path& folder, std::string& message) {
  MachineFile file;
  Status status = readMachineFile(sample / "machine.json", file, message);
  if (status == ERROR_SUCCESS) {
    status = copyMachineFile(sample / "machine.json", folder / "machine.json", message);
  }
  if (status == ERROR_SUCCESS) status = Database::create(folder / "registry.db", message);
  if (status == ERROR_SUCCESS) status = copyDrives(sample, folder, message);
  if (status != ERROR_SUCCESS) return status;
  OpenedMachine opened = openEmbeddedMachine(folder, OpenMode::ReadWrite);
  message = opened.message;
  if (!opened.machine) return opened.status;
  status = importAll(*opened.machine, sample, file.codePage, message);
  if (status == ERROR_SUCCESS) status = setAttributes(*opened.machine, file, message);
  if (status == ERROR_SUCCESS) status = opened.machine->registry().flush();
  if (status != ERROR_SUCCESS && message.empty()) message = describeStatus(status);
  return status;
}

}  // namespace

Status createEmbeddedMachine(const fs::path& sample, const fs::path& folder, std::string& message) {
  message.clear();
  std::error_code error;
  const fs::path target = fs::absolute(folder).lexically_normal();
  if (fs::exists(target, error) && !(fs::is_directory(target, error) && fs::is_empty(target))) {
    message = fmt::format("{}: it exists already. Name a new or an empty folder.", target.string());
    return ERROR_ALREADY_EXISTS;
  }
  const fs::path parent =
      target.has_filename() ? target.parent_path() : target.parent_path().parent_path();
  fs::create_directories(parent, error);
  if (error) return fault(parent, error, message);
  std::string name = (parent / ".korvex-new-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    return fault(parent, std::error_code(errno, std::generic_category()), message);
  }
  FolderInWork work{name};
  // mkdtemp's folders are their owner's alone; a machine is as open as the folders around it.
  const mode_t mask = umask(0);
  umask(mask);
  fs::permissions(work.path(), static_cast<fs::perms>(0777 & ~mask), error);
  const Status status = fill(sample, work.path(), message);
  if (status != ERROR_SUCCESS) return status;
  fs::rename(work.path(), target, error);
  if (error) return fault(target, error, message);
  work.keep();
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform
