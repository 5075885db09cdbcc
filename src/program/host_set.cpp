// Bringing a set from the host to a machine: into a folder of its own first, and under its name
// when it is whole.
#include "program/host_set.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>
#include <vector>

#include "backup/config_set.h"
#include "backup/folder_tree.h"
#include "platform/common/file_descriptor.h"
#include "platform/common/host_lookup.h"
#include "platform/common/whole_file.h"

namespace korvex::program {
namespace {

using namespace platform;
namespace fs = std::filesystem;

constexpr std::size_t kMostFiles = 10'000;
constexpr off_t kMostBytes = off_t{64} * 1024 * 1024;
// No set can have this ending, so nobody's files are in the way.
constexpr std::string_view kStaging = "korvex.kvxnew";

Status readHostFile(const fs::path& path, std::string& bytes) {
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!file || ::fstat(file.get(), &status) != 0) return statusOfErrno(errno);
  if (!S_ISREG(status.st_mode)) return ERROR_ACCESS_DENIED;
  if (status.st_size > kMostBytes) return ERROR_INVALID_DATA;
  bytes.resize(static_cast<std::size_t>(status.st_size));
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t got = ::read(file.get(), bytes.data() + done, bytes.size() - done);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return statusOfErrno(errno);
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  bytes.resize(done);
  return ERROR_SUCCESS;
}

class Taking {
 public:
  Taking(foundation::Session& session, const fs::path& profile)
      : session_(session),
        files_(session.files()),
        profile_(profile),
        sets_(backup::saveFolder(session)),
        staging_(inFolder(sets_, kStaging)) {}

  HostSet run() {
    Status status = stage();
    if (status == ERROR_SUCCESS) status = giveName();
    if (status != ERROR_SUCCESS) {
      backup::removeTree(files_, staging_);
      result_.status = status;
      if (result_.message.empty()) {
        result_.message = fmt::format("{} could not be taken to {}: {}.", profile_.string(), sets_,
                                      describeStatus(status));
      }
    }
    return std::move(result_);
  }

 private:
  static std::string inFolder(const std::string& folder, std::string_view name) {
    return fmt::format("{}{}{}", folder, folder.ends_with('\\') ? "" : "\\", name);
  }

  Status refuse(Status status, const std::string& why) {
    result_.message = fmt::format("{}: {}", profile_.string(), why);
    return status;
  }

  // Everything that the profile lists, as it lies beside it.
  Status stage() {
    Status status = readHostFile(profile_, profileBytes_);
    if (status == ERROR_INVALID_DATA) {
      return refuse(status, "it is too large for a record of saved settings.");
    }
    if (status != ERROR_SUCCESS) return refuse(status, describeStatus(status) + '.');
    // What a kill has left.
    status = backup::removeTree(files_, staging_);
    if (status == ERROR_SUCCESS || status == ERROR_PATH_NOT_FOUND) {
      status = files_.createFolder(staging_);
    }
    const std::string staged = inFolder(staging_, backup::kProfileFile);
    if (status == ERROR_SUCCESS) status = files_.replace(staged, profileBytes_);
    if (status == ERROR_SUCCESS) status = stageFile(std::string(backup::kContentsFile));
    if (status != ERROR_SUCCESS) return status;
    status = backup::readProfile(session_, staged, set_, result_.message);
    if (status != ERROR_SUCCESS) {
      // Told of the file that the person named.
      const std::string prefix = staged + ": ";
      if (result_.message.starts_with(prefix)) result_.message.erase(0, prefix.size());
      return refuse(status, std::string(result_.message));
    }
    if (set_.entries.size() > kMostFiles) {
      return refuse(ERROR_INVALID_DATA, fmt::format("it lists more than {} files.", kMostFiles));
    }
    for (const backup::SetEntry& entry : set_.entries) {
      status = stageEntry(entry);
      if (status != ERROR_SUCCESS) return status;
    }
    return ERROR_SUCCESS;
  }

  // A file that is missing is told by the restore, which looks at each of them.
  Status stageEntry(const backup::SetEntry& entry) {
    using Kind = backup::SetEntry::Kind;
    if (entry.kind == Kind::NoKey || entry.kind == Kind::NoFile) return ERROR_SUCCESS;
    return entry.kind == Kind::Folder ? makeFolder(inFolder(staging_, entry.file))
                                      : stageFile(entry.file);
  }

  Status stageFile(const std::string& file) {
    const std::string target = inFolder(staging_, file);
    const fs::path folder = profile_.has_parent_path() ? profile_.parent_path() : fs::path(".");
    const auto source = hostPath(folder, file);
    if (!source) return ERROR_SUCCESS;
    std::string bytes;
    Status status = readHostFile(*source, bytes);
    if (status == ERROR_INVALID_DATA) {
      return refuse(status, fmt::format("{} is larger than 64 MiB.", file));
    }
    if (status != ERROR_SUCCESS) {
      return refuse(status, fmt::format("{}: {}.", file, describeStatus(status)));
    }
    status = makeFolder(backup::parentFolder(target));
    return status == ERROR_SUCCESS ? files_.replace(target, bytes) : status;
  }

  Status makeFolder(const std::string& folder) {
    const Status status = files_.createFolder(folder);
    return status == ERROR_ALREADY_EXISTS ? ERROR_SUCCESS : status;
  }

  // The very same set may be there already, from the last time.
  bool isSameSet(const std::string& folder) {
    std::string bytes;
    return files_.read(inFolder(folder, backup::kProfileFile), bytes) == ERROR_SUCCESS &&
           bytes == profileBytes_;
  }

  // Files of it may have been missing or damaged the last time.
  Status refresh(const std::string& folder) {
    std::vector<std::string> files{std::string(backup::kContentsFile)};
    for (const backup::SetEntry& entry : set_.entries) files.push_back(entry.file);
    for (const std::string& file : files) {
      const std::string staged = inFolder(staging_, file);
      std::uint32_t attributes = 0;
      const bool isFile = files_.attributes(staged, attributes) == ERROR_SUCCESS &&
                          (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
      if (!isFile) continue;
      const Status status = backup::copyOver(files_, staged, inFolder(folder, file));
      if (status != ERROR_SUCCESS) return status;
    }
    result_.copied = true;
    return backup::removeTree(files_, staging_);
  }

  Status giveName() {
    for (std::size_t number = 1;; ++number) {
      const std::string name = number == 1 ? set_.name : fmt::format("{} ({})", set_.name, number);
      const std::string folder = inFolder(sets_, name);
      const bool there = files_.exists(folder);
      if (there && !isSameSet(folder)) continue;
      result_.profile = inFolder(folder, backup::kProfileFile);
      if (there) return refresh(folder);
      result_.copied = true;
      return files_.move(staging_, folder);
    }
  }

  foundation::Session& session_;
  Files& files_;
  fs::path profile_;
  std::string sets_;
  std::string staging_;
  std::string profileBytes_;
  backup::ConfigSet set_;
  HostSet result_;
};

}  // namespace

HostSet takeHostSet(foundation::Session& session, const fs::path& profile) {
  HostSet result;
  result.profile = session.files().pathOfHost(profile.string());
  if (!result.profile.empty()) return result;
  return Taking(session, profile).run();
}

}  // namespace korvex::program
