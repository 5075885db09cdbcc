// Reading a file twice: to compare, and to import.
#include "cli/restore_source.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <utility>

#include "cli/value_text.h"
#include "platform/common/reg_import.h"
#include "platform/common/whole_file.h"
#include "platform/text/reg_parser.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using namespace platform;

constexpr std::size_t kBlock = std::size_t{64} * 1024;

bool liesIn(std::string_view path, std::string_view key) {
  const std::string folded = foldName(path);
  const std::string top = foldName(key);
  return top.empty() || folded == top || folded.starts_with(top + '\\');
}

// Finds the key at the top of a file, or two that lie beside each other.
class TopKey : public RegTextSink {
 public:
  RegStep beginKey(std::size_t /*line*/, const KeyPath& key) override { return take(key, true); }
  RegStep deleteKey(std::size_t /*line*/, const KeyPath& key) override { return take(key, false); }
  RegStep setValue(std::size_t, std::string_view, RegType, std::string_view) override {
    return RegStep::Done;
  }
  RegStep deleteValue(std::size_t, std::string_view) override { return RegStep::Done; }
  void problem(std::size_t, std::string_view) override {}
  void note(std::size_t, std::string_view) override {}

  HKEY root = 0;  // 0: there is no key
  std::string path;
  bool isHeld = false;  // the file has values of it, or would make it
  std::string other;

 private:
  RegStep take(const KeyPath& key, bool begins) {
    const bool below = root == key.root && liesIn(key.path, path);
    const bool above = root == 0 || (root == key.root && liesIn(path, key.path));
    if (!below && !above) {
      other = fullKeyName(key.root, key.path);
      return RegStep::Stop;
    }
    if (above) {
      isHeld = begins || (isHeld && sameName(path, key.path));
      root = key.root;
      path = key.path;
    }
    return RegStep::Done;
  }
};

Failure unreadable(const std::string& path, Status status) {
  return {ExitCode::Failed, "failed",
          fmt::format("{}: {}. Nothing was changed.", printable(path), describeStatus(status))};
}

}  // namespace

RestoreSource::RestoreSource(BackupMachine& machine, const std::string& path,
                             const Interrupt& interrupt)
    : machine_(machine), path_(path), onMachine_(isMachinePath(path)), interrupt_(interrupt) {
  if (onMachine_) return;
  file_.reset(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file_ || ::fstat(file_.get(), &status) != 0) throw unreadable(path, statusOfErrno(errno));
  if (S_ISREG(status.st_mode)) return;
  throw Failure(ExitCode::Usage, "usage",
                printable(path) + " is no file that can be read twice. Name a regular file.");
}

Status RestoreSource::readAll(const std::function<Status(std::string_view)>& take) {
  const auto buffer = std::make_unique<char[]>(kBlock);
  for (off_t at = 0;;) {
    const ssize_t got = ::pread(file_.get(), buffer.get(), kBlock, at);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return statusOfErrno(errno);
    if (got == 0) return ERROR_SUCCESS;
    const Status status = take({buffer.get(), static_cast<std::size_t>(got)});
    if (status != ERROR_SUCCESS) return status;
    at += got;
  }
}

backup::RegPieces RestoreSource::pieces() {
  return [this](const std::function<Status(std::string_view)>& take) {
    const auto takeUnlessAsked = [&](std::string_view piece) {
      return interrupt_.asked() ? ERROR_CANCELLED : take(piece);
    };
    return onMachine_ ? machine_.files().readPieces(path_, takeUnlessAsked)
                      : readAll(takeUnlessAsked);
  };
}

backup::CompareOptions RestoreSource::onlyKey() {
  const CodePage* codePage = CodePage::find(machine_.codePage());
  if (codePage == nullptr) codePage = CodePage::find(1252);
  TopKey top;
  RegTextParser parser(top, *codePage, ShortRoots::No);
  bool wanted = true;
  const Status status = pieces()([&](std::string_view piece) {
    if (wanted) wanted = parser.feed(piece);
    return ERROR_SUCCESS;
  });
  if (status != ERROR_SUCCESS) throw unreadable(path_, status);
  if (wanted) parser.finish();
  if (!parser.headerAccepted()) throw unreadable(path_, ERROR_NOT_REGISTRY_FILE);
  if (!top.other.empty() || !top.isHeld) {
    const std::string why =
        top.other.empty()
            ? "has none"
            : fmt::format("has {} and {}", fullKeyName(top.root, top.path), top.other);
    throw Failure(ExitCode::Usage, "several-keys",
                  fmt::format("--exact needs a file with one key that holds all others; {} {}.",
                              printable(path_), printable(why)));
  }
  backup::CompareOptions options;
  options.extras = backup::Extras::Remove;
  options.root = top.root;
  options.within = top.path;
  return options;
}

RestoreSource::Import RestoreSource::import() {
  Import import;
  if (onMachine_) {
    backup::RegistryBacker& backer = machine_.backer();
    if (backer.P_rbRestoreRegistryKey(path_)) return import;
    import.messages.push_back(backer.lastMessage());
    // Its word for lines that it has refused.
    if (backer.lastStatus() == ERROR_INVALID_DATA) {
      import.refused = 1;
    } else {
      import.status = backer.lastStatus();
      import.message = backer.lastMessage();
    }
    return import;
  }
  RegImportOptions how;
  how.source = path_;
  how.codePage = machine_.codePage();
  if (::lseek(file_.get(), 0, SEEK_SET) != 0) {
    import.status = statusOfErrno(errno);
    import.message = fmt::format("{}: {}", path_, describeStatus(import.status));
    return import;
  }
  RegImportResult result = importRegDescriptor(machine_.registry(), file_.get(), how);
  import.status = result.status;
  import.message = result.message;
  import.refused = result.refused;
  import.messages = std::move(result.messages);
  return import;
}

}  // namespace korvex::cli
