// Writing files whole, on either side.
#include "cli/backup_files.h"

#include <fmt/format.h>

#include <filesystem>

#include "cli/value_text.h"
#include "platform/common/whole_file.h"

namespace korvex::cli {
namespace {

using namespace platform;

bool existsOnHost(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::exists(std::filesystem::symlink_status(path, ignored));
}

class HostFile : public OutputFile {
 public:
  explicit HostFile(const std::string& path)
      : path_(path), isNew_(!existsOnHost(path)), writer_(path) {}

  Status status() const { return writer_.status(); }
  Status write(std::string_view bytes) override { return writer_.write(bytes); }
  Status commit() override { return writer_.commit(); }
  void takeBack() override {
    std::error_code ignored;
    if (isNew_) std::filesystem::remove(path_, ignored);
  }

 private:
  std::string path_;
  bool isNew_;
  WholeFileWriter writer_;
};

// Grows under another name: a file of the machine can only be replaced with all of its bytes.
class MachineFile : public OutputFile {
 public:
  MachineFile(Files& files, std::string path) : files_(files), path_(std::move(path)) {
    isNew_ = !files_.exists(path_);
    for (int number = 0; temporary_.empty() || files_.exists(temporary_); ++number) {
      temporary_ = fmt::format("{}.kvx{}", path_, number);
    }
    status_ = files_.append(temporary_, "");
  }
  ~MachineFile() override {
    if (!temporary_.empty()) files_.remove(temporary_);
  }
  MachineFile(const MachineFile&) = delete;
  MachineFile& operator=(const MachineFile&) = delete;

  Status status() const { return status_; }
  Status write(std::string_view bytes) override {
    if (status_ == ERROR_SUCCESS) status_ = files_.append(temporary_, bytes);
    return status_;
  }
  Status commit() override {
    if (status_ != ERROR_SUCCESS) return status_;
    if (files_.exists(path_)) return status_ = files_.copy(temporary_, path_, Overwrite::Yes);
    status_ = files_.move(temporary_, path_);
    if (status_ == ERROR_SUCCESS) temporary_.clear();
    return status_;
  }
  void takeBack() override {
    if (isNew_) files_.remove(path_);
  }

 private:
  Files& files_;
  std::string path_;
  std::string temporary_;
  bool isNew_ = false;
  Status status_ = ERROR_SUCCESS;
};

template <typename File>
std::unique_ptr<OutputFile> opened(std::unique_ptr<File> file, const std::string& path,
                                   std::string_view what) {
  if (file->status() == ERROR_SUCCESS) return file;
  throw Failure(ExitCode::Failed, "failed",
                fmt::format("{} could not be written: {}: {}. Nothing was changed.", what,
                            printable(path), describeStatus(file->status())));
}

}  // namespace

void refuseExisting(bool exists, const std::string& path, Overwrite overwrite,
                    std::string_view what) {
  if (!exists || overwrite == Overwrite::Yes) return;
  throw Failure(ExitCode::Failed, "exists",
                fmt::format("{} could not be written: {} is there already; --overwrite replaces "
                            "it. Nothing was changed.",
                            what, printable(path)));
}

std::unique_ptr<OutputFile> makeFile(BackupMachine& machine, const std::string& path,
                                     Overwrite overwrite, std::string_view what) {
  if (isMachinePath(path)) {
    refuseExisting(machine.files().exists(path), path, overwrite, what);
    return opened(std::make_unique<MachineFile>(machine.files(), path), path, what);
  }
  refuseExisting(existsOnHost(path), path, overwrite, what);
  return opened(std::make_unique<HostFile>(path), path, what);
}

}  // namespace korvex::cli
