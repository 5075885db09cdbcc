// Opens a file of Wine's registry text, and tells what stands in it as a hive.
#include "platform/wine/wine_text.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <new>
#include <utility>

#include "platform/common/file_descriptor.h"
#include "platform/common/host_folder.h"
#include "platform/common/whole_file.h"
#include "platform/wine/wine_text_edit.h"
#include "platform/wine/wine_text_lines.h"
#include "platform/wine/wine_text_strings.h"
#include "platform/wine/wine_text_tree.h"

namespace korvex::platform {

namespace {

constexpr std::string_view kAnyVersion = "WINE REGISTRY Version ";
constexpr std::string_view kVersion = "WINE REGISTRY Version 2";
// Wine sets no limit, but its own reader counts a line's characters in 32 bits.
constexpr std::size_t kLargestValue = 256 << 20;

class WineTextHive : public HiveFile {
 public:
  WineTextHive(std::shared_ptr<const WineTextTree> tree, std::string whyReadOnly)
      : tree_(std::move(tree)), whyReadOnly_(std::move(whyReadOnly)) {}

  HiveNode root() const override { return kWineRoot; }
  Status children(HiveNode key, std::vector<HiveChild>& children) override {
    if (!tree_->stands(key)) return ERROR_KEY_DELETED;
    tree_->children(static_cast<std::uint32_t>(key), children);
    return ERROR_SUCCESS;
  }
  Status values(HiveNode key, std::vector<HiveValue>& values) override {
    if (!tree_->stands(key)) return ERROR_KEY_DELETED;
    tree_->values(static_cast<std::uint32_t>(key), values);
    return ERROR_SUCCESS;
  }
  Status linkTarget(HiveNode key, std::string& target) override {
    if (!tree_->stands(key)) return ERROR_KEY_DELETED;
    return tree_->linkTarget(static_cast<std::uint32_t>(key), target);
  }
  std::string whyReadOnly() const override { return whyReadOnly_; }
  std::size_t largestValue() const override { return kLargestValue; }
  bool hasRoomForChildren(std::size_t, std::size_t) const override { return true; }

  std::unique_ptr<HiveEdit> edit(Status& status) override {
    status = whyReadOnly_.empty() ? ERROR_SUCCESS : ERROR_WRITE_PROTECT;
    if (status != ERROR_SUCCESS) return nullptr;
    try {
      return startWineTextEdit(*tree_);
    } catch (const std::bad_alloc&) {
      status = ERROR_OUTOFMEMORY;
      return nullptr;
    }
  }

 private:
  std::shared_ptr<const WineTextTree> tree_;
  std::string whyReadOnly_;
};

OpenedHive failed(Status status, std::string message) {
  return {nullptr, status, std::move(message)};
}

OpenedHive cannotRead(Status status) {
  return failed(status, status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND
                            ? "There is no such registry file."
                            : "The registry file cannot be read: " + describeStatus(status) + ".");
}

Status openText(const std::filesystem::path& file, FileDescriptor& descriptor) {
  descriptor.reset(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat facts {};
  if (!descriptor || ::fstat(descriptor.get(), &facts) != 0) return statusOfErrno(errno);
  return S_ISREG(facts.st_mode) ? ERROR_SUCCESS : ERROR_NOT_REGISTRY_FILE;
}

}  // namespace

std::unique_ptr<HiveFile> makeWineTextHive(std::shared_ptr<const WineTextTree> tree,
                                           std::string whyReadOnly) {
  return std::make_unique<WineTextHive>(std::move(tree), std::move(whyReadOnly));
}

OpenedHive parseWineText(std::string bytes, std::string whyReadOnly) {
  WineRecord first;
  if (!WineLines(bytes).next(false, first) || !first.line.starts_with(kAnyVersion)) {
    return failed(ERROR_NOT_REGISTRY_FILE,
                  "This is not a registry file of Wine. Put a copy from a backup in its place.");
  }
  if (first.line != kVersion) {
    return failed(ERROR_NOT_REGISTRY_FILE,
                  "This registry file of Wine is of a version that Korvex does not know: it knows "
                  "version 2. Let a Wine that writes version 2 use the prefix first.");
  }
  try {
    auto owned = std::make_shared<const std::string>(std::move(bytes));
    OpenedHive opened;
    opened.hive = makeWineTextHive(std::make_shared<const WineTextTree>(std::move(owned)),
                                   std::move(whyReadOnly));
    return opened;
  } catch (const std::bad_alloc&) {
    return failed(ERROR_OUTOFMEMORY, "There is not enough memory to read this registry file.");
  }
}

OpenedHive openWineText(const std::filesystem::path& file) {
  FileDescriptor descriptor;
  std::string bytes;
  try {
    Status status = openText(file, descriptor);
    if (status == ERROR_NOT_REGISTRY_FILE) {
      return failed(status, "This is not a registry file, but a folder or a device.");
    }
    if (status == ERROR_SUCCESS) status = readAll(descriptor.get(), bytes);
    if (status != ERROR_SUCCESS) return cannotRead(status);
  } catch (const std::bad_alloc&) {
    return failed(ERROR_OUTOFMEMORY, "There is not enough memory to read this registry file.");
  }
  std::string whyReadOnly;
  if (::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) != 0) {
    whyReadOnly =
        "This registry file may not be written by you. Change its permissions, or those of the "
        "disk it is on.";
  }
  return parseWineText(std::move(bytes), std::move(whyReadOnly));
}

WineTextHeader readWineTextHeader(std::string_view bytes) {
  constexpr std::string_view kRoot = ";; All keys relative to ";
  constexpr std::string_view kArch = "#arch=";
  WineTextHeader header;
  WineLines lines(bytes);
  WineRecord record;
  while (lines.next(false, record) && record.kind != WineRecord::Kind::Header) {
    if (record.line.starts_with(kArch)) header.arch = record.line.substr(kArch.size());
    if (!record.line.starts_with(kRoot) || !header.root.empty()) continue;
    // No closing character: the end of the line closes it.
    const std::string path = std::string(record.line.substr(kRoot.size())) + '\n';
    std::size_t at = 0;
    if (!readWineString(path, at, '\n', header.root)) header.root.clear();
    // Old ones leave out the first part.
    if (header.root.starts_with('\\')) header.root.insert(0, "REGISTRY");
  }
  return header;
}

Status readWineTextHeader(const std::filesystem::path& file, WineTextHeader& header) {
  header = {};
  FileDescriptor descriptor;
  if (const Status status = openText(file, descriptor)) return status;
  std::array<char, 4096> start{};
  ssize_t size = -1;
  do {
    size = ::read(descriptor.get(), start.data(), start.size());
  } while (size < 0 && errno == EINTR);
  if (size < 0) return statusOfErrno(errno);
  header = readWineTextHeader(std::string_view(start.data(), static_cast<std::size_t>(size)));
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform
