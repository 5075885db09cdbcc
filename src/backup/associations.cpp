// Registered file types, and saving them.
#include "backup/associations.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "backup/folder_tree.h"
#include "backup/key_batches.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::Session;
using namespace platform;

namespace {

std::string defaultValue(Session& session, std::string_view key) {
  return session.regTool.GetRegStr(key, "", HKEY_CLASSES_ROOT);
}

// The keys of a choice of types, each once, with their files in a folder.
std::vector<KeyBackup> keysOf(std::span<const FileType> types, const std::string& folder) {
  std::vector<KeyBackup> keys;
  std::set<std::string> seen;
  for (const FileType& type : types) {
    for (const std::string* const key : {&type.className, &type.extension}) {
      if (!seen.insert(foldName(*key)).second) continue;
      keys.push_back({HKEY_CLASSES_ROOT, *key, folder + '\\' + associationFile(*key)});
    }
  }
  return keys;
}

// Types of which a key could not be saved, with the reason, are not saved at all: an extension
// without its class, or with an older one, would be half a backup.
std::vector<FileType> dropFailed(std::span<const FileType> types, std::span<const KeyBackup> keys,
                                 std::span<const KeyBackupResult> results,
                                 std::vector<AssociationOutcome::Failed>& failed) {
  std::map<std::string, std::string> reasons;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const bool isThere = results[i].status != ERROR_FILE_NOT_FOUND;
    if (!results[i].saved && isThere) reasons[foldName(keys[i].subKey)] = results[i].message;
  }
  std::vector<FileType> whole;
  for (const FileType& type : types) {
    auto reason = reasons.find(foldName(type.extension));
    if (reason == reasons.end()) reason = reasons.find(foldName(type.className));
    if (reason == reasons.end()) {
      whole.push_back(type);
    } else {
      failed.push_back({type.extension, reason->second});
    }
  }
  return whole;
}

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

Status listTypes(Session& session, std::vector<FileType>& types) {
  Status status = ERROR_SUCCESS;
  types.clear();
  char name[kNameBufferBytes];
  for (std::uint32_t i = 0;; ++i) {
    std::uint32_t length = sizeof name;
    status = session.registry().RegEnumKeyExA(HKEY_CLASSES_ROOT, i, name, &length);
    if (status != ERROR_SUCCESS) break;
    if (length < 2 || name[0] != '.') continue;
    FileType type;
    type.extension.assign(name, length);
    type.className = defaultValue(session, type.extension);
    if (!type.className.empty()) type.description = defaultValue(session, type.className);
    types.push_back(std::move(type));
  }
  std::ranges::sort(types, {}, [](const FileType& type) { return foldName(type.extension); });
  return status == ERROR_NO_MORE_ITEMS ? ERROR_SUCCESS : status;
}

std::vector<FileType> registeredTypes(Session& session) {
  std::vector<FileType> types;
  listTypes(session, types);
  return types;
}

AssociationOutcome exportAssociations(Session& session, RegistryBacker& backer,
                                      std::span<const std::string> extensions,
                                      const std::string& folder, const Progress& progress) {
  session.trace.enter("[p_ExportFileAssociations]");
  AssociationOutcome outcome;
  std::vector<FileType> types;
  for (const std::string& extension : extensions) {
    FileType type{extension, defaultValue(session, extension), ""};
    if (type.canBeSaved()) {
      types.push_back(std::move(type));
    } else {
      outcome.skipped.push_back(extension);
    }
  }
  // All is written beside the folder first: a cancel or a full disk leaves what was there.
  const std::vector<KeyBackup> keys = keysOf(types, folder);
  const std::string staging = folder + ".kvxnew";
  std::vector<KeyBackupResult> results;
  outcome.status =
      backupIntoFolder(session, backer, keys, staging, progress, results, outcome.message);
  outcome.cancelled = outcome.status == ERROR_CANCELLED;
  if (outcome.cancelled) outcome.message = "Cancelled. Nothing was saved.";
  if (outcome.status != ERROR_SUCCESS) return outcome;

  types = dropFailed(types, keys, results, outcome.failed);
  std::set<std::string> whole;
  for (const KeyBackup& key : keysOf(types, folder)) whole.insert(foldName(key.file));
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (!whole.contains(foldName(keys[i].file))) continue;
    (results[i].saved ? outcome.keys : outcome.missing).push_back(keys[i]);
  }
  Files& files = session.files();
  outcome.status = files.createFolder(folder);
  if (outcome.status == ERROR_ALREADY_EXISTS) outcome.status = ERROR_SUCCESS;
  if (outcome.status != ERROR_SUCCESS) {
    outcome.message = fmt::format("{}: {}.", folder, describeStatus(outcome.status));
  } else {
    outcome.status = publishFiles(files, staging, outcome.keys, outcome.message);
  }
  removeTree(files, staging);
  if (outcome.status != ERROR_SUCCESS) {
    outcome.keys.clear();
    outcome.missing.clear();
    return outcome;
  }
  for (const FileType& type : types) outcome.saved.push_back(type.extension);
  return outcome;
}

}  // namespace korvex::backup
