// Finding host files by the names that Windows has for them.
#include "platform/common/host_lookup.h"

#include <fcntl.h>

#include <algorithm>

#include "platform/common/host_folder.h"

namespace korvex::platform {

namespace fs = std::filesystem;

std::optional<fs::path> hostPath(const fs::path& folder, std::string_view below) {
  FileDescriptor place(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  fs::path path = folder;
  while (!below.empty()) {
    const std::size_t end = below.find('\\');
    const std::string_view name = below.substr(0, end);
    below = end == std::string_view::npos ? std::string_view() : below.substr(end + 1);
    HostEntry entry;
    if (!place || name.empty() || findEntry(place.get(), name, entry) != ERROR_SUCCESS) return {};
    path /= entry.name;
    FileDescriptor next;
    if (entry.isFolder() && openSubFolder(place.get(), entry.name, next) != ERROR_SUCCESS) {
      return {};
    }
    place = std::move(next);
  }
  return path;
}

std::vector<fs::path> foldersIn(const fs::path& folder) {
  std::vector<fs::path> folders;
  std::error_code error;
  fs::directory_iterator entries(folder, fs::directory_options::skip_permission_denied, error);
  for (const fs::directory_iterator end; !error && entries != end; entries.increment(error)) {
    std::error_code unknown;
    if (entries->symlink_status(unknown).type() == fs::file_type::directory) {
      folders.push_back(entries->path());
    }
  }
  std::sort(folders.begin(), folders.end());
  return folders;
}

}  // namespace korvex::platform
