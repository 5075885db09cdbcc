// Saving beside, and putting in place.
#include "backup/key_batches.h"

#include <fmt/format.h>

#include <algorithm>

#include "backup/folder_tree.h"
#include "platform/file_change.h"

namespace korvex::backup {

using foundation::Session;
using namespace platform;

namespace {

constexpr std::size_t kKeysAtOnce = 32;

std::string failureOf(const std::string& path, Status status) {
  return fmt::format("{}: {}.", path, describeStatus(status));
}

Status putInPlace(FileChange& change, const std::string& from, const std::string& to) {
  // A file of that name is replaced whole, which a move cannot do.
  return change.exists(to) ? copyOver(change, from, to) : change.move(from, to);
}

}  // namespace

Status backupIntoFolder(Session& session, RegistryBacker& backer, std::span<const KeyBackup> keys,
                        const std::string& folder, const Progress& progress,
                        std::vector<KeyBackupResult>& results, std::string& message) {
  Files& files = session.files();
  results.clear();
  Status status = removeTree(files, folder);
  if (status == ERROR_SUCCESS) status = files.createFolder(folder);
  if (status != ERROR_SUCCESS) message = failureOf(folder, status);
  while (status == ERROR_SUCCESS && results.size() < keys.size()) {
    const std::size_t count = std::min(kKeysAtOnce, keys.size() - results.size());
    const auto next = keys.subspan(results.size(), count);
    std::vector<KeyBackup> batch(next.begin(), next.end());
    for (KeyBackup& key : batch) key.file = folder + '\\' + fileName(key.file);
    for (KeyBackupResult& result : backer.backupKeys(batch)) {
      if (result.status == ERROR_DISK_FULL && status == ERROR_SUCCESS) {
        status = result.status;
        message = result.message;
      }
      results.push_back(std::move(result));
    }
    const auto percent = static_cast<int>(100 * results.size() / keys.size());
    if (status == ERROR_SUCCESS && progress && !progress(percent)) status = ERROR_CANCELLED;
  }
  if (status != ERROR_SUCCESS) removeTree(files, folder);
  return status;
}

Status publishFiles(Files& files, const std::string& folder, std::span<const KeyBackup> keys,
                    std::string& message) {
  const auto staged = [&](const KeyBackup& key) { return folder + '\\' + fileName(key.file); };
  FileChange change(files);
  std::size_t done = 0;
  Status status = ERROR_SUCCESS;
  for (; done < keys.size(); ++done) {
    status = putInPlace(change, staged(keys[done]), keys[done].file);
    if (status != ERROR_SUCCESS) break;
  }
  if (status == ERROR_SUCCESS) {
    change.commit();
    return status;
  }
  message = failureOf(keys[done].file, status);
  // On a full disk the way back needs the room that the others take.
  for (const KeyBackup& key : keys.subspan(done)) files.remove(staged(key));
  if (change.rollback() != ERROR_SUCCESS) {
    message += " Some of the files that were saved before could not be put back.";
  }
  return status;
}

Status takeNameOf(Files& files, const std::string& folder, const std::string& name) {
  const std::string old = name + ".kvxold";
  Status status = removeTree(files, old);
  const bool there = files.exists(name);
  if (status == ERROR_SUCCESS && there) status = files.move(name, old);
  if (status != ERROR_SUCCESS) return status;
  status = files.move(folder, name);
  if (status == ERROR_SUCCESS) {
    removeTree(files, old);
  } else if (there) {
    files.move(old, name);
  }
  return status;
}

}  // namespace korvex::backup
