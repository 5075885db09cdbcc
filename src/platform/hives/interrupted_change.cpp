// Reading the note of a change, and bringing the change to its end.
#include "platform/hives/interrupted_change.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>

#include "platform/common/host_folder.h"
#include "platform/common/whole_file.h"

namespace korvex::platform {
namespace {

using State = FileRename::State;

constexpr off_t kLargestNote = off_t{1} << 20;

Status readNote(int folder, std::string& text) {
  FileDescriptor note;
  const Status status = openRegularFile(folder, std::string(kNoteName), note);
  if (status != ERROR_SUCCESS) return status;
  struct stat facts {};
  if (::fstat(note.get(), &facts) != 0) return statusOfErrno(errno);
  return facts.st_size > kLargestNote ? ERROR_INVALID_DATA : readAll(note.get(), text);
}

void addLine(std::string& message, std::string_view line) {
  if (!message.empty()) message += '\n';
  message += line;
}

}  // namespace

Status InterruptedChange::read(int folder) {
  files_.clear();
  std::string text;
  const Status status = readNote(folder, text);
  if (status != ERROR_SUCCESS) return status == ERROR_ACCESS_DENIED ? ERROR_INVALID_DATA : status;
  std::vector<NotedFile> noted;
  if (!parseNote(text, noted)) return ERROR_INVALID_DATA;
  for (NotedFile& one : noted) {
    File& file = files_.emplace_back();
    // Where the way has gone or become a link, the file is one that others have changed.
    const bool located = file.rename.locate(folder, one.path) == ERROR_SUCCESS;
    file.rename.noted() = std::move(one);
    if (located) file.state = file.rename.state();
  }
  return ERROR_SUCCESS;
}

bool InterruptedChange::goesOn() const {
  const auto is = [](State state) { return [state](const File& f) { return f.state == state; }; };
  return std::any_of(files_.begin(), files_.end(), is(State::New)) ||
         std::none_of(files_.begin(), files_.end(), is(State::Changed));
}

std::string InterruptedChange::newVersionOf(const std::string& path) const {
  if (!goesOn()) return {};
  for (const File& file : files_) {
    const NotedFile& noted = file.rename.noted();
    if (noted.path != path || file.state != State::Ready) continue;
    return path.substr(0, path.size() - file.rename.name().size()) + noted.newName;
  }
  return {};
}

Status InterruptedChange::leaveUnlessNew(File& file, std::string& message) {
  if (file.state == State::New) return ERROR_SUCCESS;
  std::string left;
  const Status status = file.rename.leave(left);
  if (status == ERROR_FILE_NOT_FOUND) return ERROR_SUCCESS;
  if (status == ERROR_SUCCESS) {
    addLine(message, fmt::format("{}: another program has changed it since a change of Korvex was "
                                 "cut off. What Korvex had made of it is in {}.",
                                 file.rename.noted().path, left));
  }
  return status;
}

Status InterruptedChange::finish(int folder, std::string& message) {
  const bool goes = goesOn();
  const auto fails = [&](const File& file, Status status) {
    if (status == ERROR_SUCCESS) return false;
    message = fmt::format("{}: a change that was cut off cannot be finished: {}.",
                          file.rename.noted().path, describeStatus(status));
    return true;
  };
  for (File& file : files_) {
    if (!goes || file.state != State::Ready) continue;
    const Status status = file.rename.rename();
    if (fails(file, status)) return status;
    file.state = State::New;
  }
  // Those that had been renamed before the kill are not known to be on the disk either.
  for (File& file : files_) {
    if (file.state != State::New) continue;
    const Status status = flushFolder(file.rename.folder());
    if (fails(file, status)) return status;
  }
  for (File& file : files_) {
    const Status status = leaveUnlessNew(file, message);
    if (fails(file, status)) return status;
  }
  const Status status = removeNote(folder);
  if (status != ERROR_SUCCESS) {
    message = fmt::format("{}: {}.", kNoteName, describeStatus(status));
    return status;
  }
  // The old files, where they have changed names with the new ones. What cannot be removed now is
  // tried again by the next change there.
  for (const File& file : files_) {
    if (file.rename.folder() >= 0) (void)removeOrphans(file.rename.folder());
  }
  return ERROR_SUCCESS;
}

Status removeNote(int folder) {
  if (::unlinkat(folder, std::string(kNoteName).c_str(), 0) != 0 && errno != ENOENT) {
    return statusOfErrno(errno);
  }
  return flushFolder(folder);
}

Status removeOrphans(int folder) { return removeOwnFiles(folder, isNewVersionName); }

}  // namespace korvex::platform
