// The way back of every step.
#include "platform/file_change.h"

#include <algorithm>
#include <utility>

namespace korvex::platform {
namespace {

// "C:\A\B" -> "C:\A"; "" where nothing is above but the drive.
std::string parentOf(const std::string& path) {
  const std::size_t slash = path.find_last_of("\\/", path.size() - 1);
  return slash == std::string::npos || slash < 3 ? "" : path.substr(0, slash);
}

}  // namespace

FileChange::~FileChange() { rollback(); }

Status FileChange::rollback() {
  Status first = ERROR_SUCCESS;
  for (auto undo = undo_.rbegin(); undo != undo_.rend(); ++undo) {
    const Status status = (*undo)();
    if (first == ERROR_SUCCESS) first = status;
  }
  undo_.clear();
  return first;
}

bool FileChange::stands(std::string_view path, std::uint32_t attributes, std::string_view bytes) {
  std::uint32_t attributesNow = 0;
  std::string bytesNow;
  return files_.attributes(path, attributesNow) == ERROR_SUCCESS && attributesNow == attributes &&
         files_.read(path, bytesNow) == ERROR_SUCCESS && bytesNow == bytes;
}

Status FileChange::guard(std::string_view path) {
  Undo undo;
  const Status status = remember(path, undo);
  if (status == ERROR_SUCCESS) undo_.push_back(std::move(undo));
  return status;
}

Status FileChange::remember(std::string_view path, Undo& undo) {
  const std::string name(path);
  std::uint32_t attributes = 0;
  Status status = files_.attributes(name, attributes);
  if (status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND) {
    undo = [this, name] { return files_.exists(name) ? files_.remove(name) : ERROR_SUCCESS; };
    return ERROR_SUCCESS;
  }
  std::string bytes;
  if (status == ERROR_SUCCESS) status = files_.read(name, bytes);
  undo = [this, name, attributes, bytes = std::move(bytes)] {
    if (stands(name, attributes, bytes)) return ERROR_SUCCESS;
    const Status written = files_.replace(name, bytes);
    return written == ERROR_SUCCESS ? files_.setAttributes(name, attributes) : written;
  };
  return status;
}

template <typename Step>
Status FileChange::step(std::string_view path, Step&& step) {
  Undo undo;
  Status status = remember(path, undo);
  if (status == ERROR_SUCCESS) status = step();
  if (status == ERROR_SUCCESS) undo_.push_back(std::move(undo));
  return status;
}

Status FileChange::attributes(std::string_view path, std::uint32_t& attributes) {
  return files_.attributes(path, attributes);
}

Status FileChange::setAttributes(std::string_view path, std::uint32_t attributes) {
  std::uint32_t before = 0;
  Status status = files_.attributes(path, before);
  if (status == ERROR_SUCCESS) status = files_.setAttributes(path, attributes);
  if (status == ERROR_SUCCESS) {
    undo_.push_back(
        [this, name = std::string(path), before] { return files_.setAttributes(name, before); });
  }
  return status;
}

Status FileChange::read(std::string_view path, std::string& bytes) {
  return files_.read(path, bytes);
}

Status FileChange::replace(std::string_view path, std::string_view bytes) {
  return step(path, [&] { return files_.replace(path, bytes); });
}

Status FileChange::append(std::string_view path, std::string_view bytes) {
  return step(path, [&] { return files_.append(path, bytes); });
}

Status FileChange::copy(std::string_view from, std::string_view to, Overwrite overwrite) {
  return step(to, [&] { return files_.copy(from, to, overwrite); });
}

Status FileChange::move(std::string_view from, std::string_view to) {
  const Status status = files_.move(from, to);
  if (status == ERROR_SUCCESS) {
    undo_.push_back([this, source = std::string(from), target = std::string(to)] {
      return files_.move(target, source);
    });
  }
  return status;
}

Status FileChange::remove(std::string_view path) {
  return step(path, [&] { return files_.remove(path); });
}

Status FileChange::createFolder(std::string_view path) {
  // The folders on the way that are not there yet are made too.
  std::vector<std::string> missing;
  for (std::string folder(path); !folder.empty() && !files_.exists(folder);
       folder = parentOf(folder)) {
    missing.push_back(folder);
  }
  const Status status = files_.createFolder(path);
  std::reverse(missing.begin(), missing.end());
  for (const std::string& folder : missing) {
    if (!files_.exists(folder)) continue;
    undo_.push_back([this, folder] { return files_.removeFolder(folder); });
  }
  return status;
}

Status FileChange::removeFolder(std::string_view path) {
  std::uint32_t attributes = 0;
  Status status = files_.attributes(path, attributes);
  if (status == ERROR_SUCCESS) status = files_.removeFolder(path);
  if (status == ERROR_SUCCESS) {
    undo_.push_back([this, name = std::string(path), attributes] {
      const Status made = files_.createFolder(name);
      return made == ERROR_SUCCESS ? files_.setAttributes(name, attributes) : made;
    });
  }
  return status;
}

Status FileChange::list(std::string_view pattern, std::vector<FileEntry>& entries) {
  return files_.list(pattern, entries);
}

Status FileChange::shortPath(std::string_view path, std::string& result) {
  return files_.shortPath(path, result);
}

Status FileChange::readPieces(std::string_view path,
                              const std::function<Status(std::string_view)>& take) {
  return files_.readPieces(path, take);
}

Status FileChange::freeSpace(std::string_view path, std::uint64_t& bytes) {
  return files_.freeSpace(path, bytes);
}

std::string FileChange::pathOfHost(std::string_view hostPath) {
  return files_.pathOfHost(hostPath);
}

}  // namespace korvex::platform
