// Files around other files.
#include "platform/common/files_decorators.h"

#include <algorithm>
#include <set>
#include <utility>

#include "platform/common/short_names.h"
#include "platform/text/text.h"

namespace korvex::platform {

// ---- PretendingFiles

// Where a path leads to, with what is pretended.
struct PretendingFiles::Place {
  WindowsPath path;
  std::string key;
  Status status = ERROR_SUCCESS;  // 0: it is there
  std::uint32_t attributes = 0;
  const Node* node = nullptr;

  bool found() const { return status == ERROR_SUCCESS; }
  bool missing() const { return status == ERROR_FILE_NOT_FOUND; }
  bool isFolder() const { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
  bool isReadOnly() const { return (attributes & FILE_ATTRIBUTE_READONLY) != 0; }
  std::string text() const { return formatWindowsPath(path); }
};

namespace {

WindowsPath parentOf(WindowsPath path) {
  path.parts.pop_back();
  path.trailingSeparator = false;
  return path;
}

WindowsPath childOf(WindowsPath folder, const std::string& name) {
  folder.parts.push_back(name);
  return folder;
}

bool isListed(const std::string& pattern, const std::string& name) {
  const bool wildcards = pattern.find_first_of("*?") != std::string::npos;
  return wildcards ? matchesWildcards(pattern, name) : sameName(pattern, name);
}

}  // namespace

// A short name is another name of the same file: what is there really stands by its short form.
std::string PretendingFiles::keyOf(const WindowsPath& path) const {
  WindowsPath there = path;
  there.trailingSeparator = false;
  std::string key;
  while (inner_.shortPath(formatWindowsPath(there), key) != ERROR_SUCCESS) {
    if (there.parts.empty()) return foldName(formatWindowsPath(path));
    there.parts.pop_back();
  }
  for (std::size_t i = there.parts.size(); i < path.parts.size(); ++i) {
    if (key.back() != '\\') key += '\\';
    key += path.parts[i];
  }
  return foldName(key);
}

PretendingFiles::Place PretendingFiles::locate(std::string_view path) const {
  Place place;
  place.status = parseWindowsPath(path, place.path);
  return place.status == ERROR_SUCCESS ? locate(place.path) : place;
}

PretendingFiles::Place PretendingFiles::locate(const WindowsPath& path) const {
  Place place;
  place.path = path;
  place.key = keyOf(path);
  const auto node = nodes_.find(place.key);
  if (node != nodes_.end()) {
    place.node = &node->second;
    place.attributes = node->second.attributes;
    place.status = node->second.there ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    if (place.found() && path.trailingSeparator && !place.isFolder()) {
      place.status = ERROR_INVALID_NAME;
    }
  } else {
    const std::string text = formatWindowsPath(path) + (path.trailingSeparator ? "\\" : "");
    place.status = inner_.attributes(text, place.attributes);
  }
  // Whether the folder is missing too is told by what is pretended of it.
  const bool gone = place.missing() || place.status == ERROR_PATH_NOT_FOUND;
  if (gone && !path.parts.empty()) {
    const Place parent = locate(parentOf(path));
    place.status =
        parent.found() && parent.isFolder() ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
  }
  return place;
}

PretendingFiles::Place PretendingFiles::locateForWriting(std::string_view path) const {
  Place place = locate(path);
  if (place.found() && (place.isFolder() || place.isReadOnly())) {
    place.status = ERROR_ACCESS_DENIED;
  } else if (place.missing()) {
    place.status = place.path.trailingSeparator ? ERROR_INVALID_NAME : ERROR_SUCCESS;
    place.attributes = FILE_ATTRIBUTE_ARCHIVE;
  }
  return place;
}

Status PretendingFiles::readAt(const Place& place, std::string& bytes) const {
  if (!place.found()) return place.status;
  if (place.isFolder()) return ERROR_ACCESS_DENIED;
  if (place.node == nullptr) return inner_.read(place.text(), bytes);
  bytes = place.node->bytes;
  return ERROR_SUCCESS;
}

void PretendingFiles::put(const Place& place, std::uint32_t attributes, std::string bytes) {
  std::string name = place.path.parts.empty() ? "" : place.path.parts.back();
  // A file that is replaced keeps the name as it was first written.
  if (place.node != nullptr && place.node->there) name = place.node->name;
  nodes_[place.key] = {true, attributes, std::move(name), std::move(bytes)};
}

void PretendingFiles::takeAway(const Place& place) {
  put(place, 0, "");
  nodes_[place.key].there = false;
}

Status PretendingFiles::attributes(std::string_view path, std::uint32_t& attributes) {
  const Place place = locate(path);
  if (place.found()) attributes = place.attributes;
  return place.status;
}

Status PretendingFiles::setAttributes(std::string_view path, std::uint32_t attributes) {
  const Place place = locate(path);
  if (!place.found()) return place.status;
  constexpr std::uint32_t kSettable = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                      FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;
  std::string bytes;
  const Status status = place.isFolder() ? ERROR_SUCCESS : readAt(place, bytes);
  if (status != ERROR_SUCCESS) return status;
  put(place, (attributes & kSettable) | (place.attributes & FILE_ATTRIBUTE_DIRECTORY),
      std::move(bytes));
  return ERROR_SUCCESS;
}

Status PretendingFiles::read(std::string_view path, std::string& bytes) {
  return readAt(locate(path), bytes);
}

Status PretendingFiles::replace(std::string_view path, std::string_view bytes) {
  const Place place = locateForWriting(path);
  if (place.found()) put(place, place.attributes, std::string(bytes));
  return place.status;
}

Status PretendingFiles::append(std::string_view path, std::string_view bytes) {
  const Place place = locateForWriting(path);
  if (!place.found()) return place.status;
  std::string whole;
  const Status status = readAt(locate(path), whole);
  if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) return status;
  put(place, place.attributes, whole.append(bytes));
  return ERROR_SUCCESS;
}

Status PretendingFiles::copy(std::string_view from, std::string_view to, Overwrite overwrite) {
  const Place source = locate(from);
  std::string bytes;
  Status status = readAt(source, bytes);
  if (status != ERROR_SUCCESS) return status;
  const Place there = locate(to);
  if (there.found() && !there.isFolder()) {
    if (overwrite == Overwrite::No) return ERROR_FILE_EXISTS;
    if (there.key == source.key) return ERROR_SHARING_VIOLATION;
  }
  const Place target = locateForWriting(to);
  if (target.found()) put(target, source.attributes, std::move(bytes));
  return target.status;
}

Status PretendingFiles::move(std::string_view from, std::string_view to) {
  const Place source = locate(from);
  const Place target = locate(to);
  if (!source.found()) return source.status;
  if (source.path.parts.empty()) return ERROR_ACCESS_DENIED;
  if (target.found()) return target.key == source.key ? ERROR_SUCCESS : ERROR_ALREADY_EXISTS;
  if (!target.missing()) return target.status;
  std::string bytes;
  Status status = source.isFolder() ? ERROR_SUCCESS : readAt(source, bytes);
  if (status != ERROR_SUCCESS) return status;
  put(target, source.attributes, std::move(bytes));
  if (source.isFolder()) {
    if (target.key.starts_with(source.key + "\\")) {
      nodes_.erase(target.key);
      return ERROR_SHARING_VIOLATION;
    }
    std::vector<FileEntry> entries;
    status = list(source.text() + "\\*", entries);
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) return status;
    for (const FileEntry& entry : entries) {
      status = move(formatWindowsPath(childOf(source.path, entry.name)),
                    formatWindowsPath(childOf(target.path, entry.name)));
      if (status != ERROR_SUCCESS) return status;
    }
  }
  takeAway(source);
  return ERROR_SUCCESS;
}

Status PretendingFiles::remove(std::string_view path) {
  const Place place = locate(path);
  if (!place.found()) return place.status;
  if (place.isFolder() || place.isReadOnly()) return ERROR_ACCESS_DENIED;
  takeAway(place);
  return ERROR_SUCCESS;
}

Status PretendingFiles::createFolder(std::string_view path) {
  WindowsPath whole;
  Status status = parseWindowsPath(path, whole);
  WindowsPath folder = whole;
  folder.trailingSeparator = false;
  folder.parts.clear();
  if (status == ERROR_SUCCESS) status = locate(folder).status;
  bool made = false;
  for (std::size_t i = 0; status == ERROR_SUCCESS && i < whole.parts.size(); ++i) {
    folder.parts.push_back(whole.parts[i]);
    const Place place = locate(folder);
    made = place.missing();
    if (made) {
      put(place, FILE_ATTRIBUTE_DIRECTORY, "");
    } else if (!place.found()) {
      status = place.status;
    } else if (!place.isFolder()) {
      status = i + 1 == whole.parts.size() ? ERROR_ALREADY_EXISTS : ERROR_PATH_NOT_FOUND;
    }
  }
  return status == ERROR_SUCCESS && !made ? ERROR_ALREADY_EXISTS : status;
}

Status PretendingFiles::removeFolder(std::string_view path) {
  const Place place = locate(path);
  if (!place.found()) return place.status;
  if (place.path.parts.empty() || !place.isFolder() || place.isReadOnly()) {
    return ERROR_ACCESS_DENIED;
  }
  std::vector<FileEntry> entries;
  const Status status = list(place.text() + "\\*", entries);
  if (status == ERROR_SUCCESS) return ERROR_DIR_NOT_EMPTY;
  if (status != ERROR_FILE_NOT_FOUND) return status;
  takeAway(place);
  return ERROR_SUCCESS;
}

void PretendingFiles::listPretended(const WindowsPath& folder, const std::string& pattern,
                                    std::vector<FileEntry>& entries) const {
  std::set<std::string> known;
  std::erase_if(entries, [&](FileEntry& entry) {
    std::string entryKey = keyOf(childOf(folder, entry.name));
    const auto node = nodes_.find(entryKey);
    known.insert(std::move(entryKey));
    if (node == nodes_.end()) return false;
    entry.attributes = node->second.attributes;
    entry.size = node->second.bytes.size();
    return !node->second.there;
  });
  for (const auto& pretended : nodes_) {
    const std::string& key = pretended.first;
    const Node& node = pretended.second;
    if (!node.there || node.name.empty() || !isListed(pattern, node.name)) continue;
    if (known.contains(key) || keyOf(childOf(folder, node.name)) != key) continue;
    const std::string shortName = shortNames({node.name}).front();
    entries.push_back({node.name, shortName, node.attributes, node.bytes.size(), 0});
  }
  std::sort(entries.begin(), entries.end(), [](const FileEntry& a, const FileEntry& b) {
    return foldName(a.name) < foldName(b.name);
  });
}

Status PretendingFiles::list(std::string_view pattern, std::vector<FileEntry>& entries) {
  const Status real = inner_.list(pattern, entries);
  if (nodes_.empty()) return real;
  WindowsPath folder;
  std::string last;
  const Status status = parseWindowsPattern(pattern, folder, last);
  if (status != ERROR_SUCCESS) return status;
  const Place place = locate(folder);
  if (!place.found() || !place.isFolder()) {
    entries.clear();
    return ERROR_PATH_NOT_FOUND;
  }
  if (real != ERROR_SUCCESS && real != ERROR_FILE_NOT_FOUND && real != ERROR_PATH_NOT_FOUND) {
    return real;
  }
  listPretended(folder, last, entries);
  return entries.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
}

Status PretendingFiles::shortPath(std::string_view path, std::string& result) {
  const Place place = locate(path);
  if (!place.found()) return place.status;
  if (inner_.shortPath(path, result) == ERROR_SUCCESS) return ERROR_SUCCESS;
  WindowsPath text = place.path;
  for (std::string& part : text.parts) part = shortNames({part}).front();
  result = formatWindowsPath(text);
  return ERROR_SUCCESS;
}

// ---- RecordingFiles

namespace {

std::string written(std::string_view path) {
  WindowsPath parsed;
  return parseWindowsPath(path, parsed) == ERROR_SUCCESS ? formatWindowsPath(parsed)
                                                         : std::string(path);
}

}  // namespace

std::optional<FileState> RecordingFiles::stateOf(std::string_view path) const {
  FileState state;
  if (inner_.attributes(path, state.attributes) != ERROR_SUCCESS) return std::nullopt;
  // What cannot be read is told by its attributes alone.
  if (!state.isFolder()) inner_.read(path, state.bytes);
  return state;
}

template <typename Step>
Status RecordingFiles::step(std::string_view path, std::string_view from, Step&& step) {
  FileRecord record{written(path), from.empty() ? "" : written(from), stateOf(path), std::nullopt};
  const Status status = step();
  if (status != ERROR_SUCCESS) return status;
  record.after = stateOf(path);
  records_.push_back(std::move(record));
  return status;
}

Status RecordingFiles::attributes(std::string_view path, std::uint32_t& attributes) {
  return inner_.attributes(path, attributes);
}

Status RecordingFiles::setAttributes(std::string_view path, std::uint32_t attributes) {
  return step(path, "", [&] { return inner_.setAttributes(path, attributes); });
}

Status RecordingFiles::read(std::string_view path, std::string& bytes) {
  return inner_.read(path, bytes);
}

Status RecordingFiles::replace(std::string_view path, std::string_view bytes) {
  return step(path, "", [&] { return inner_.replace(path, bytes); });
}

Status RecordingFiles::append(std::string_view path, std::string_view bytes) {
  return step(path, "", [&] { return inner_.append(path, bytes); });
}

Status RecordingFiles::copy(std::string_view from, std::string_view to, Overwrite overwrite) {
  return step(to, from, [&] { return inner_.copy(from, to, overwrite); });
}

Status RecordingFiles::move(std::string_view from, std::string_view to) {
  FileRecord gone{written(from), "", stateOf(from), std::nullopt};
  const Status status = step(to, from, [&] { return inner_.move(from, to); });
  const bool sameFile = sameName(gone.path, written(to));
  if (status == ERROR_SUCCESS && !sameFile) records_.push_back(std::move(gone));
  return status;
}

Status RecordingFiles::remove(std::string_view path) {
  return step(path, "", [&] { return inner_.remove(path); });
}

Status RecordingFiles::createFolder(std::string_view path) {
  std::vector<std::string> missing;
  WindowsPath folder;
  const bool parsed = parseWindowsPath(path, folder) == ERROR_SUCCESS;
  for (; parsed && !folder.parts.empty(); folder.parts.pop_back()) {
    std::string name = formatWindowsPath(folder);
    if (inner_.exists(name)) break;
    missing.push_back(std::move(name));
  }
  const Status status = inner_.createFolder(path);
  // Also where it stopped on the way: what was made by then is there.
  for (auto name = missing.rbegin(); name != missing.rend(); ++name) {
    if (auto state = stateOf(*name))
      records_.push_back({*name, "", std::nullopt, std::move(state)});
  }
  return status;
}

Status RecordingFiles::removeFolder(std::string_view path) {
  return step(path, "", [&] { return inner_.removeFolder(path); });
}

Status RecordingFiles::list(std::string_view pattern, std::vector<FileEntry>& entries) {
  return inner_.list(pattern, entries);
}

Status RecordingFiles::shortPath(std::string_view path, std::string& result) {
  return inner_.shortPath(path, result);
}

}  // namespace korvex::platform
