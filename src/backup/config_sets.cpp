// Saving, finding and erasing sets.
#include "backup/config_sets.h"

#include <fmt/format.h>

#include <algorithm>

#include "backup/categories.h"
#include "backup/folder_tree.h"
#include "backup/set_offer.h"
#include "backup/set_writer.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::kCrLf;
using namespace platform;

namespace {

// A guess at what the keys of a category take on the disk, and all file types together.
constexpr std::uint64_t kBytesPerCategory = std::uint64_t{256} * 1024;
constexpr std::uint64_t kBytesOfFileTypes = std::uint64_t{4} * 1024 * 1024;

std::string joined(const std::string& folder, std::string_view name) {
  return fmt::format("{}{}{}", folder, folder.ends_with('\\') ? "" : "\\", name);
}

}  // namespace

std::string ConfigSets::folderFor(const SaveRequest& request) const {
  return joined(request.folder.empty() ? saveFolder(session_) : request.folder, request.name);
}

DiskState ConfigSets::checkDisk(const SaveRequest& request) {
  std::uint64_t needed = 0;
  for (const std::string& tag : request.tags) {
    const Category* const category = findCategory(tag);
    if (category == nullptr) continue;
    std::vector<SourceFile> files;
    findFiles(session_, *category, files);
    for (const SourceFile& file : files) needed += file.size;
    needed += category->copies == FileCopies::FileTypes ? kBytesOfFileTypes : kBytesPerCategory;
  }
  std::uint64_t room = 0;
  const Status status = session_.files().freeSpace(folderFor(request), room);
  if (status == ERROR_NOT_READY || status == ERROR_PATH_NOT_FOUND) return DiskState::NotReady;
  return status == ERROR_SUCCESS && room < needed ? DiskState::NotEnoughSpace : DiskState::Ready;
}

SaveOutcome ConfigSets::save(const SaveRequest& request, const Progress& progress) {
  SaveOutcome refused;
  refused.message = whyNoSetName(request.name);
  if (!refused.message.empty()) {
    refused.status = ERROR_INVALID_NAME;
    return refused;
  }
  SaveJob job;
  job.name = request.name;
  job.folder = folderFor(request);
  // In the order of the table, whatever the order of the request.
  for (const Category& category : categories()) {
    const auto same = [&](const std::string& tag) { return sameName(tag, category.tag); };
    if (std::ranges::none_of(request.tags, same)) continue;
    CategoryJob one;
    const Status status = jobFor(session_, category, one);
    if (status != ERROR_SUCCESS) {
      refused.status = status;
      refused.message =
          fmt::format("{}: {}.", category.captionFor(session_), describeStatus(status));
      return refused;
    }
    one.extensions = request.extensions;
    job.categories.push_back(std::move(one));
  }
  return writeSet(session_, backer_, job, progress);
}

Status ConfigSets::find(std::string_view nameOrProfile, ConfigSet& set, std::string& message) {
  std::string profile(nameOrProfile);
  if (profile.find_first_of("\\/") == std::string::npos) {
    const Status status = readRecord(session_, nameOrProfile, set, message);
    if (status == ERROR_FILE_NOT_FOUND) return status;
    // The folder tells what is in it now; the record, where it is.
    const std::string folder = presentFolder(session_.files(), set.folder);
    ConfigSet present;
    const Status read = readProfile(session_, joined(folder, kProfileFile), present, message);
    if (read == ERROR_INVALID_DATA) return read;
    if (read == ERROR_SUCCESS && sameName(present.name, set.name)) {
      present.name = set.name;
      set = std::move(present);
    }
    return status;
  }
  std::uint32_t attributes = 0;
  if (session_.files().attributes(profile, attributes) == ERROR_SUCCESS &&
      (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    profile = joined(profile, kProfileFile);
  }
  return readProfile(session_, profile, set, message);
}

bool ConfigSets::isAvailable(const ConfigSet& set) {
  ConfigSet present;
  std::string ignored;
  const std::string folder = presentFolder(session_.files(), set.folder);
  return !folder.empty() &&
         readProfile(session_, joined(folder, kProfileFile), present, ignored) == ERROR_SUCCESS &&
         sameName(present.name, set.name);
}

std::unique_ptr<RestoreOffer> ConfigSets::offer(const ConfigSet& set, const Progress& progress) {
  return offerSet(session_, backer_, set, progress);
}

// First the folder steps aside, then the record goes; only then are files deleted, and none but the
// set's own.
EraseOutcome ConfigSets::erase(const ConfigSet& set, bool recordOnly) {
  session_.trace.enter("[cmdErase]");
  EraseOutcome outcome;
  Files& files = session_.files();
  const std::string aside = set.folder + ".kvxold";
  const bool hasFolder = !recordOnly && isAvailable(set);
  Status status = hasFolder ? healSet(files, set.folder) : ERROR_SUCCESS;
  if (status == ERROR_SUCCESS && hasFolder) status = files.move(set.folder, aside);
  const bool moved = hasFolder && status == ERROR_SUCCESS;
  if (status == ERROR_SUCCESS) {
    RegistryChange change(session_.registry());
    status = change.status();
    if (status == ERROR_SUCCESS) status = deleteRecord(session_, set.name);
    if (status == ERROR_FILE_NOT_FOUND) status = ERROR_SUCCESS;  // a set that was only opened
    if (status == ERROR_SUCCESS) status = change.commit();
    if (status == ERROR_SUCCESS) status = session_.registry().flush();
  }
  session_.trace.dump("lRetVal&", status);
  if (status != ERROR_SUCCESS) {
    if (moved) files.move(aside, set.folder);
    outcome.status = status;
    outcome.message = fmt::format(
        "An error occurred deleting the folder.{0}{1}.{0}The operation has been "
        "canceled.",
        kCrLf, describeStatus(status));
    return outcome;
  }
  if (!moved) return outcome;
  for (const SetEntry& entry : set.entries) {
    if (entry.kind == SetEntry::Kind::Key || entry.kind == SetEntry::Kind::File) {
      removeFile(files, joined(aside, entry.file));
    }
  }
  removeFile(files, joined(aside, kBookmarksFile));
  removeFile(files, joined(aside, kContentsFile));
  removeFile(files, joined(aside, kProfileFile));
  std::vector<TreeEntry> left;
  listTree(files, aside, left);
  const bool foreign = std::ranges::any_of(left, [](const TreeEntry& e) { return !e.isFolder(); });
  if (foreign) {
    outcome.foreignFilesStay = files.move(aside, set.folder) == ERROR_SUCCESS;
  } else {
    removeTree(files, aside);
  }
  return outcome;
}

}  // namespace korvex::backup
