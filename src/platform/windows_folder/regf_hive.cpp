// Reads an NT hive. Opening looks at the whole file once; changing it is regf_edit's.
#include "platform/windows_folder/regf_hive.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

#include "platform/common/file_descriptor.h"
#include "platform/common/host_folder.h"
#include "platform/common/whole_file.h"
#include "platform/text/text.h"
#include "platform/windows_folder/regf_check.h"
#include "platform/windows_folder/regf_edit.h"
#include "platform/windows_folder/regf_header.h"
#include "platform/windows_folder/regf_reader.h"

namespace korvex::platform {

namespace {

constexpr std::size_t kRoomForChildren = 16 << 20;  // bytes that the file may grow by

class RegfHive : public HiveFile {
 public:
  RegfHive(std::shared_ptr<const std::string> bytes, std::string whyReadOnly, std::uint32_t minor)
      : bytes_(std::move(bytes)),
        reader_(*bytes_),
        whyReadOnly_(std::move(whyReadOnly)),
        minor_(minor) {}

  HiveNode root() const override { return regfNode(reader_.cells().root()); }
  Status children(HiveNode key, std::vector<HiveChild>& children) override {
    return reader_.children(key, children);
  }
  Status values(HiveNode key, std::vector<HiveValue>& values) override {
    return reader_.values(key, values);
  }
  Status linkTarget(HiveNode key, std::string& target) override {
    return reader_.linkTarget(key, target);
  }
  std::string whyReadOnly() const override { return whyReadOnly_; }

  std::size_t largestValue() const override { return largestRegfValue(minor_); }

  // hivex writes the list of the subkeys anew for each key that is added, eight bytes an entry, and
  // looks at every name in it: 2,000 keys below a new one take 0.3 seconds and 19 MB, 4,000 take
  // 1.7 seconds and 70 MB. Windows 2000 and before load no hive that is much too large.
  bool hasRoomForChildren(std::size_t present, std::size_t added) const override {
    constexpr std::size_t kLargest = kRoomForChildren / 8;
    if (present > kLargest || added > kLargest) return false;
    return added * (present + added / 2) <= kLargest;
  }

  std::unique_ptr<HiveEdit> edit(Status& status) override {
    if (!whyReadOnly_.empty()) {
      status = ERROR_WRITE_PROTECT;
      return nullptr;
    }
    return startRegfEdit(bytes_, status);
  }

 private:
  std::shared_ptr<const std::string> bytes_;
  RegfReader reader_;
  std::string whyReadOnly_;
  std::uint32_t minor_;
};

OpenedHive failed(Status status, std::string message) {
  return {nullptr, status, std::move(message)};
}

OpenedHive readFailed(int error) {
  const Status status = statusOfErrno(error);
  return failed(status, status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND
                            ? "There is no such registry file."
                            : "The registry file cannot be read: " + describeStatus(status) + ".");
}

}  // namespace

OpenedHive openRegfBytes(std::shared_ptr<const std::string> bytes, std::string whyReadOnly) {
  RegfHeader header;
  std::string message;
  if (const Status status = readRegfHeader(*bytes, header, message)) {
    return failed(status, std::move(message));
  }
  const RegfSoundness soundness = checkRegf(*bytes);
  if (soundness == RegfSoundness::Hopeless) {
    return failed(ERROR_BADDB,
                  "This registry file is damaged and cannot be read. Put a copy from a "
                  "backup in its place.");
  }
  if (std::string why = whyHeaderForbidsWriting(header, bytes->size()); !why.empty()) {
    whyReadOnly = std::move(why);
  } else if (soundness == RegfSoundness::Damaged) {
    whyReadOnly =
        "Parts of this registry file are damaged. Let Windows repair it, or put a copy "
        "from a backup in its place.";
  }
  OpenedHive opened;
  opened.hive = std::make_unique<RegfHive>(std::move(bytes), std::move(whyReadOnly), header.minor);
  return opened;
}

OpenedHive openRegfHive(const std::filesystem::path& file) {
  const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!descriptor) return readFailed(errno);
  struct stat facts {};
  if (::fstat(descriptor.get(), &facts) != 0) return readFailed(errno);
  if (!S_ISREG(facts.st_mode)) {
    return failed(ERROR_NOT_REGISTRY_FILE,
                  "This is not a registry file, but a folder or a device.");
  }
  auto bytes = std::make_shared<std::string>();
  try {
    if (const Status status = readAll(descriptor.get(), *bytes)) {
      return failed(status, "The registry file cannot be read: " + describeStatus(status) + ".");
    }
    std::string whyReadOnly;
    if (::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) != 0) {
      whyReadOnly =
          "This registry file may not be written by you. Change its permissions, or those "
          "of the disk it is on.";
    }
    return openRegfBytes(std::move(bytes), std::move(whyReadOnly));
  } catch (const std::bad_alloc&) {
    return failed(ERROR_OUTOFMEMORY, "There is not enough memory to read this registry file.");
  }
}

}  // namespace korvex::platform
