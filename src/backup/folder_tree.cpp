// Walking folders of a machine.
#include "backup/folder_tree.h"

#include <algorithm>

namespace korvex::backup {

using namespace platform;

namespace {

constexpr std::uint32_t kKept = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;

Status listBelow(Files& files, const std::string& folder, const std::string& below,
                 std::vector<TreeEntry>& entries) {
  std::vector<FileEntry> found;
  const std::string place = below.empty() ? folder : folder + '\\' + below;
  const Status status = files.list(place + "\\*", found);
  if (status == ERROR_FILE_NOT_FOUND || (below.empty() && status == ERROR_PATH_NOT_FOUND)) {
    return ERROR_SUCCESS;
  }
  if (status != ERROR_SUCCESS) return status;
  for (const FileEntry& entry : found) {
    const std::string path = below.empty() ? entry.name : below + '\\' + entry.name;
    entries.push_back({path, entry.attributes, entry.size});
    if (!entries.back().isFolder()) continue;
    const Status inner = listBelow(files, folder, path, entries);
    if (inner != ERROR_SUCCESS) return inner;
  }
  return ERROR_SUCCESS;
}

Status clearReadOnly(Files& files, const std::string& path) {
  std::uint32_t attributes = 0;
  const Status status = files.attributes(path, attributes);
  if (status != ERROR_SUCCESS || (attributes & FILE_ATTRIBUTE_READONLY) == 0) return status;
  return files.setAttributes(path, attributes & kKept & ~FILE_ATTRIBUTE_READONLY);
}

}  // namespace

Status listTree(Files& files, const std::string& folder, std::vector<TreeEntry>& entries) {
  return listBelow(files, folder, "", entries);
}

Status removeFile(Files& files, const std::string& path) {
  const Status status = clearReadOnly(files, path);
  return status == ERROR_SUCCESS ? files.remove(path) : status;
}

Status removeTree(Files& files, const std::string& folder) {
  std::vector<TreeEntry> entries;
  Status status = listTree(files, folder, entries);
  for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
    if (status != ERROR_SUCCESS) return status;
    const std::string path = folder + '\\' + entry->path;
    if (!entry->isFolder()) {
      status = removeFile(files, path);
    } else {
      status = clearReadOnly(files, path);
      if (status == ERROR_SUCCESS) status = files.removeFolder(path);
    }
  }
  if (status != ERROR_SUCCESS || !files.exists(folder)) return status;
  status = clearReadOnly(files, folder);
  return status == ERROR_SUCCESS ? files.removeFolder(folder) : status;
}

Status copyOver(Files& files, const std::string& from, const std::string& to) {
  Status status = clearReadOnly(files, to);
  if (status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND) {
    status = files.createFolder(parentFolder(to));
    if (status == ERROR_ALREADY_EXISTS) status = ERROR_SUCCESS;
  }
  return status == ERROR_SUCCESS ? files.copy(from, to, Overwrite::Yes) : status;
}

Status measure(Files& files, const std::string& path, std::uint64_t& size,
               std::uint64_t& checksum) {
  // Source: the FNV hash as its authors document it.
  constexpr std::uint64_t kOffset = 0xcbf29ce484222325;
  constexpr std::uint64_t kPrime = 0x100000001b3;
  size = 0;
  checksum = kOffset;
  return files.readPieces(path, [&](std::string_view piece) {
    size += piece.size();
    for (const char c : piece) checksum = (checksum ^ static_cast<unsigned char>(c)) * kPrime;
    return ERROR_SUCCESS;
  });
}

std::string parentFolder(const std::string& path) {
  const std::size_t slash = path.find_last_of("\\/");
  if (slash == std::string::npos) return "";
  return slash < 3 ? path.substr(0, slash + 1) : path.substr(0, slash);
}

std::string fileName(const std::string& path) {
  const std::size_t slash = path.find_last_of("\\/");
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string extensionOf(const std::string& path) {
  const std::string name = fileName(path);
  const std::size_t dot = name.rfind('.');
  std::string extension = dot == std::string::npos ? "" : name.substr(dot);
  std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return extension;
}

}  // namespace korvex::backup
