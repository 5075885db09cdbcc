// Registered file types, and saving them.
#include "backup/associations.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

#include "backup/folder_tree.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::Session;
using namespace platform;

namespace {

constexpr std::size_t kKeysAtOnce = 32;

std::string defaultValue(Session& session, std::string_view key) {
  return session.regTool.GetRegStr(key, "", HKEY_CLASSES_ROOT);
}

bool isMissing(Session& session, const KeyBackup& key) {
  return OpenKey(session.registry(), key.root, key.subKey, KEY_READ).status() ==
         ERROR_FILE_NOT_FOUND;
}

// The keys of a choice of extensions, each once, with their files.
struct Choice {
  std::vector<KeyBackup> keys;
  std::vector<std::string> extensions;  // whose key it is; of a class its first extension
  std::set<std::string> seen;           // folded

  void add(const std::string& key, const std::string& extension, const std::string& folder) {
    if (!seen.insert(foldName(key)).second) return;
    keys.push_back({HKEY_CLASSES_ROOT, key, folder + '\\' + associationFile(key)});
    extensions.push_back(extension);
  }
};

}  // namespace

bool FileType::canBeSaved() const {
  return !className.empty() && foldName(className).find("CLSID") == std::string::npos;
}

std::string associationFolder(const Session& session) { return session.g_sAppPath + "\\FA"; }

std::string associationFile(std::string_view keyName) {
  constexpr std::string_view kForbidden = "\\/:*?\"<>|%";
  std::string file;
  for (const char c : keyName) {
    const bool plain = (c < 0 || c >= ' ') && kForbidden.find(c) == std::string_view::npos;
    file += plain ? std::string(1, c) : fmt::format("%{:02X}", static_cast<unsigned char>(c));
  }
  return file + ".reg";
}

std::vector<FileType> registeredTypes(Session& session) {
  std::vector<FileType> types;
  char name[kNameBufferBytes];
  for (std::uint32_t i = 0;; ++i) {
    std::uint32_t length = sizeof name;
    const Status status = session.registry().RegEnumKeyExA(HKEY_CLASSES_ROOT, i, name, &length);
    if (status != ERROR_SUCCESS) break;
    if (length < 2 || name[0] != '.') continue;
    FileType type;
    type.extension.assign(name, length);
    type.className = defaultValue(session, type.extension);
    if (!type.className.empty()) type.description = defaultValue(session, type.className);
    types.push_back(std::move(type));
  }
  std::ranges::sort(types, {}, [](const FileType& type) { return foldName(type.extension); });
  return types;
}

AssociationOutcome exportAssociations(Session& session, RegistryBacker& backer,
                                      std::span<const std::string> extensions,
                                      const std::string& folder, const Progress& progress) {
  session.trace.enter("[p_ExportFileAssociations]");
  AssociationOutcome outcome;
  Files& files = session.files();
  const auto fail = [&](Status status, std::string message) {
    outcome.status = status;
    outcome.message = std::move(message);
    outcome.cancelled = status == ERROR_CANCELLED;
    return outcome;
  };
  Choice choice;
  for (const std::string& extension : extensions) {
    const FileType type{extension, defaultValue(session, extension), ""};
    if (!type.canBeSaved()) {
      outcome.skipped.push_back(extension);
      continue;
    }
    outcome.saved.push_back(extension);
    choice.add(type.className, extension, folder);
    choice.add(extension, extension, folder);
  }
  // All is written beside the folder first: a cancel or a full disk leaves what was there.
  const std::string staging = folder + ".kvxnew";
  Status status = removeTree(files, staging);
  if (status == ERROR_SUCCESS || status == ERROR_PATH_NOT_FOUND) {
    status = files.createFolder(staging);
  }
  if (status != ERROR_SUCCESS) {
    return fail(status, fmt::format("{}: {}.", staging, describeStatus(status)));
  }
  for (std::size_t at = 0; at < choice.keys.size() && status == ERROR_SUCCESS; at += kKeysAtOnce) {
    const std::size_t count = std::min(kKeysAtOnce, choice.keys.size() - at);
    std::vector<KeyBackup> batch(choice.keys.begin() + static_cast<std::ptrdiff_t>(at),
                                 choice.keys.begin() + static_cast<std::ptrdiff_t>(at + count));
    for (KeyBackup& key : batch) key.file = staging + '\\' + fileName(key.file);
    const std::vector<KeyBackupResult> results = backer.backupKeys(batch);
    for (std::size_t i = 0; i < count && status == ERROR_SUCCESS; ++i) {
      if (results[i].saved) {
        outcome.keys.push_back(choice.keys[at + i]);
      } else if (results[i].status == ERROR_FILE_NOT_FOUND &&
                 isMissing(session, choice.keys[at + i])) {
        outcome.missing.push_back(choice.keys[at + i]);
      } else if (results[i].status == ERROR_DISK_FULL) {
        status = fail(ERROR_DISK_FULL, results[i].message).status;
      } else {
        outcome.failed.push_back({choice.extensions[at + i], results[i].message});
      }
    }
    const auto percent = static_cast<int>(90 * (at + count) / choice.keys.size());
    if (status == ERROR_SUCCESS && progress && !progress(percent)) {
      status = fail(ERROR_CANCELLED, "Cancelled. Nothing was saved.").status;
    }
  }
  if (status == ERROR_SUCCESS) {
    status = files.createFolder(folder);
    if (status == ERROR_ALREADY_EXISTS) status = ERROR_SUCCESS;
  }
  for (const KeyBackup& key : outcome.keys) {
    if (status != ERROR_SUCCESS) break;
    const std::string from = staging + '\\' + fileName(key.file);
    status = files.exists(key.file) ? copyOver(files, from, key.file) : files.move(from, key.file);
    if (status != ERROR_SUCCESS) {
      fail(status, fmt::format("{}: {}.", key.file, describeStatus(status)));
    }
  }
  removeTree(files, staging);
  if (status != ERROR_SUCCESS) {
    outcome.saved.clear();
    outcome.keys.clear();
  }
  return outcome;
}

}  // namespace korvex::backup
