// The files of a machine in its drive folders: what a folder holds, and short names.
#include <algorithm>
#include <tuple>
#include <utility>

#include "platform/common/dos_attributes.h"
#include "platform/common/drive_folders.h"
#include "platform/common/host_folder.h"
#include "platform/common/short_names.h"
#include "platform/common/windows_path.h"
#include "platform/text/text.h"

namespace korvex::platform {
namespace {

// A host may find a name without regard to case by itself: then no name is just the one given.
std::size_t indexOf(const std::vector<std::string>& names, const std::string& name) {
  auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) {
    found = std::find_if(names.begin(), names.end(),
                         [&](const std::string& other) { return sameName(other, name); });
  }
  return static_cast<std::size_t>(found - names.begin());
}

// Which of the names of a folder the last part of a pattern means.
Status select(int folder, const std::string& pattern, const std::vector<std::string>& names,
              const std::vector<std::string>& shorts, std::vector<std::size_t>& selected) {
  if (pattern.find_first_of("*?") == std::string::npos) {
    // A name without wildcards means one file, as everywhere.
    HostEntry entry;
    const Status status =
        pattern.empty() ? ERROR_FILE_NOT_FOUND : findEntry(folder, pattern, entry);
    if (status != ERROR_SUCCESS) return status;
    const std::size_t index = indexOf(names, entry.name);
    if (index < names.size()) selected.push_back(index);
    return ERROR_SUCCESS;
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (matchesWildcards(pattern, names[i]) || matchesWildcards(pattern, shorts[i])) {
      selected.push_back(i);
    }
  }
  return ERROR_SUCCESS;
}

void sortByFoldedName(std::vector<FileEntry>& entries) {
  std::vector<std::pair<std::string, FileEntry>> keyed;
  keyed.reserve(entries.size());
  for (FileEntry& entry : entries) {
    std::string folded = foldName(entry.name);
    keyed.emplace_back(std::move(folded), std::move(entry));
  }
  std::sort(keyed.begin(), keyed.end(), [](const auto& left, const auto& right) {
    return std::tie(left.first, left.second.name) < std::tie(right.first, right.second.name);
  });
  entries.clear();
  for (auto& [folded, entry] : keyed) entries.push_back(std::move(entry));
}

// The 8.3 form of a name that stands in the folder.
Status shorten(int folder, const std::string& name, std::string& result) {
  result = name;
  if (isShortName(name)) return ERROR_SUCCESS;
  std::vector<std::string> names;
  const Status status = windowsNames(folder, names);
  if (status != ERROR_SUCCESS) return status;
  const std::size_t index = indexOf(names, name);
  if (index == names.size()) return ERROR_FILE_NOT_FOUND;
  result = shortNames(names)[index];
  return ERROR_SUCCESS;
}

}  // namespace

Status DriveFolders::list(std::string_view pattern, std::vector<FileEntry>& entries) {
  entries.clear();
  WindowsPath path;
  std::string last;
  FileDescriptor folder;
  Status status = parseWindowsPattern(pattern, path, last);
  if (status == ERROR_SUCCESS) status = openDrive(path.drive, folder);
  for (std::size_t i = 0; status == ERROR_SUCCESS && i < path.parts.size(); ++i) {
    status = enterFolder(folder, path.parts[i]);
  }
  std::vector<std::string> names;
  if (status == ERROR_SUCCESS) status = windowsNames(folder.get(), names);
  if (status != ERROR_SUCCESS) return status;

  const std::vector<std::string> shorts = shortNames(names);
  std::vector<std::size_t> selected;
  status = select(folder.get(), last, names, shorts, selected);
  if (status != ERROR_SUCCESS) return status;
  DosAttributes dosAttributes(folder.get(), options_.extendedAttributes);
  for (const std::size_t i : selected) {
    HostEntry entry;
    status = statEntry(folder.get(), names[i], entry);
    // It may have gone, or become something else, since the folder was read.
    if (status == ERROR_FILE_NOT_FOUND || status == ERROR_ACCESS_DENIED) continue;
    FileEntry result{names[i], shorts[i], 0, 0, entry.status.st_mtime};
    if (!entry.isFolder()) result.size = static_cast<std::uint64_t>(entry.status.st_size);
    if (status == ERROR_SUCCESS) status = dosAttributes.read(entry, result.attributes);
    if (status == ERROR_FILE_NOT_FOUND) continue;
    if (status != ERROR_SUCCESS) return status;
    entries.push_back(std::move(result));
  }
  sortByFoldedName(entries);
  return entries.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
}

Status DriveFolders::shortPath(std::string_view path, std::string& result) {
  std::uint32_t ignored = 0;
  WindowsPath parsed;
  FileDescriptor folder;
  Status status = attributes(path, ignored);  // the statuses of a path that names nothing
  if (status == ERROR_SUCCESS) status = parseWindowsPath(path, parsed);
  if (status == ERROR_SUCCESS) status = openDrive(parsed.drive, folder);
  for (std::size_t i = 0; status == ERROR_SUCCESS && i < parsed.parts.size(); ++i) {
    std::string& part = parsed.parts[i];
    HostEntry entry;
    status = findEntry(folder.get(), part, entry);
    if (status == ERROR_SUCCESS) status = shorten(folder.get(), entry.name, part);
    if (status == ERROR_SUCCESS && i + 1 < parsed.parts.size()) {
      status = enterFolder(folder, entry.name);
    }
  }
  if (status == ERROR_SUCCESS) result = formatWindowsPath(parsed);
  return status;
}

}  // namespace korvex::platform
