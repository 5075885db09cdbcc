// Reading and writing of DOS attributes on the host.
#include "platform/common/dos_attributes.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/xattr.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>

#include "platform/common/whole_file.h"
#include "platform/files.h"

namespace korvex::platform {
namespace {

constexpr const char* kName = "user.DOSATTRIB";
constexpr std::string_view kBeside = ".korvex-attributes";
constexpr std::uint32_t kKept = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;
constexpr mode_t kWriteBits = S_IWUSR | S_IWGRP | S_IWOTH;

// Samba's record: an empty text, then little-endian at 2 the version (3 to 5), at 8 flags whose
// lowest bit says that the attributes are there, at 12 the attributes.
constexpr std::size_t kRecordFlags = 8;
constexpr std::size_t kRecordAttributes = 12;
constexpr std::size_t kRecordSize = 16;

bool isRecord(std::string_view value) {
  return value.size() >= kRecordSize && value[0] == 0 && value[2] >= 3 && value[2] <= 5 &&
         value[3] == 0 && (value[kRecordFlags] & 1) != 0;
}

std::optional<std::uint32_t> parseHex(std::string_view text) {
  if (!text.starts_with("0x")) return std::nullopt;
  std::uint32_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 2, end, number, 16);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::optional<std::uint32_t> parseValue(std::string_view value) {
  if (isRecord(value)) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      number |= static_cast<std::uint32_t>(static_cast<unsigned char>(value[kRecordAttributes + i]))
                << (8 * i);
    }
    return number;
  }
  return parseHex(value.substr(0, value.find('\0')));
}

// The value that says attributes; what else the old one says stays.
std::string changedValue(std::string value, std::uint32_t attributes) {
  const std::uint32_t number = (parseValue(value).value_or(0) & ~kKept) | attributes;
  if (!isRecord(value)) return fmt::format("0x{:x}", number);
  for (std::size_t i = 0; i < 4; ++i) {
    value[kRecordAttributes + i] = static_cast<char>((number >> (8 * i)) & 0xFF);
  }
  return value;
}

// The raw value; nothing where there is none or the host keeps none.
Status getValue(int file, std::optional<std::string>& value) {
  std::array<char, 4096> buffer{};
  const ssize_t size = ::fgetxattr(file, kName, buffer.data(), buffer.size());
  if (size >= 0) {
    value.emplace(buffer.data(), static_cast<std::size_t>(size));
    return ERROR_SUCCESS;
  }
  const bool absent = errno == ENODATA || errno == ENOTSUP || errno == ERANGE;
  return absent ? ERROR_SUCCESS : statusOfErrno(errno);
}

// As Wine does: every write permission goes; the owner's comes back.
mode_t modeFor(mode_t mode, std::uint32_t attributes) {
  if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) return mode & ~kWriteBits;
  return (mode & kWriteBits) != 0 ? mode : mode | S_IWUSR;
}

Status openAny(int folder, const HostEntry& entry, FileDescriptor& file) {
  return entry.isFolder() ? openSubFolder(folder, entry.name, file)
                          : openRegularFile(folder, entry.name, file);
}

}  // namespace

Status DosAttributes::read(const HostEntry& entry, std::uint32_t& attributes) {
  std::optional<std::string> value;
  if (extendedAttributes_) {
    FileDescriptor file;
    Status status = openAny(folder_, entry, file);
    if (status == ERROR_SUCCESS) status = getValue(file.get(), value);
    if (status != ERROR_SUCCESS && status != ERROR_ACCESS_DENIED) return status;
  }
  std::optional<std::uint32_t> stored;
  if (value) stored = parseValue(*value);
  if (!stored) {
    const Status status = beside(entry.name, stored);
    if (status != ERROR_SUCCESS) return status;
  }
  attributes = stored.value_or(entry.isFolder() ? 0 : FILE_ATTRIBUTE_ARCHIVE) & kKept;
  if (entry.isFolder()) {
    attributes |= FILE_ATTRIBUTE_DIRECTORY;
  } else if ((entry.status.st_mode & kWriteBits) == 0) {
    attributes |= FILE_ATTRIBUTE_READONLY;
  }
  return ERROR_SUCCESS;
}

Status DosAttributes::write(const HostEntry& entry, std::uint32_t attributes) {
  FileDescriptor file;
  Status status = openAny(folder_, entry, file);
  bool finished = false;
  if (status == ERROR_SUCCESS) status = prepare(file.get(), attributes, finished);
  if (status == ERROR_SUCCESS && ::fsync(file.get()) != 0) status = statusOfErrno(errno);
  if (status != ERROR_SUCCESS || finished) return status;
  return finish(entry.name, attributes);
}

Status DosAttributes::prepare(int file, std::uint32_t attributes, bool& finished) {
  finished = false;
  attributes &= kKept;
  struct stat status {};
  if (::fstat(file, &status) != 0) return statusOfErrno(errno);
  const mode_t mode = status.st_mode & 07777;
  const bool isFolder = S_ISDIR(status.st_mode);
  if (extendedAttributes_) {
    std::optional<std::string> old;
    const Status read = getValue(file, old);
    if (read != ERROR_SUCCESS) return read;
    const std::string value = changedValue(old.value_or(""), attributes);
    // The host lets nobody but root set it on a file that is not writable.
    if (!isFolder && (mode & S_IWUSR) == 0 && ::fchmod(file, mode | S_IWUSR) != 0) {
      return statusOfErrno(errno);
    }
    finished = ::fsetxattr(file, kName, value.data(), value.size(), 0) == 0;
    if (!finished && errno != ENOTSUP) {
      const int error = errno;
      if (!isFolder) (void)!::fchmod(file, mode);
      return statusOfErrno(error);
    }
  }
  if (!isFolder && ::fchmod(file, modeFor(mode, attributes)) != 0) return statusOfErrno(errno);
  return ERROR_SUCCESS;
}

Status DosAttributes::finish(const std::string& name, std::uint32_t attributes) {
  const Status status = load();
  if (status != ERROR_SUCCESS) return status;
  table_[name] = attributes & kKept;
  return save();
}

Status DosAttributes::beside(const std::string& name, std::optional<std::uint32_t>& attributes) {
  attributes.reset();
  const Status status = load();
  const auto found = table_.find(name);
  if (found != table_.end()) attributes = found->second;
  return status;
}

Status DosAttributes::forget(const std::string& name) {
  const Status status = load();
  return status != ERROR_SUCCESS || table_.erase(name) == 0 ? status : save();
}

Status DosAttributes::load() {
  if (loaded_) return ERROR_SUCCESS;
  FileDescriptor file;
  std::string text;
  Status status = openRegularFile(folder_, std::string(kBeside), file);
  if (status == ERROR_SUCCESS) status = readAll(file.get(), text);
  if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) return status;
  loaded_ = true;
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos) continue;
    if (const auto number = parseHex(line.substr(0, blank))) {
      table_[std::string(line.substr(blank + 1))] = *number;
    }
  }
  return ERROR_SUCCESS;
}

Status DosAttributes::save() {
  std::string text;
  for (const auto& [name, number] : table_) text += fmt::format("0x{:x} {}\n", number, name);
  return replaceWholeFile(folder_, std::string(kBeside), text);
}

}  // namespace korvex::platform
