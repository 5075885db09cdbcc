// Changes an NT hive through hivex, which keeps all that is not named: classes, security, flags.
//
// Values are handed over once per key, when the hive is written; then regf_patch.h puts right what
// hivex leaves.
#include "platform/windows_folder/regf_edit.h"

#include <hivex.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "platform/common/file_descriptor.h"
#include "platform/common/host_folder.h"
#include "platform/common/whole_file.h"
#include "platform/text/text.h"
#include "platform/windows_folder/regf_bytes.h"
#include "platform/windows_folder/regf_check.h"
#include "platform/windows_folder/regf_patch.h"
#include "platform/windows_folder/regf_reader.h"
#include "platform/windows_folder/regf_value_list.h"

namespace korvex::platform {

namespace {

constexpr std::size_t kLongestKeyName = 255;
constexpr std::size_t kLongestValueName = 16383;

std::string pathOf(const FileDescriptor& file) {
  return "/proc/self/fd/" + std::to_string(file.get());
}

FileDescriptor memoryFile() { return FileDescriptor(::memfd_create("korvex-hive", MFD_CLOEXEC)); }

// Tenths of a microsecond since 1601.
std::uint64_t windowsTimeNow() {
  using namespace std::chrono;
  constexpr std::uint64_t kSecondsTo1970 = 11644473600;
  const auto now = duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count();
  return kSecondsTo1970 * 10000000 + static_cast<std::uint64_t>(now) / 100;
}

// hivex takes no lone surrogates, which begin like this.
bool isPlainUnicode(std::string_view name) {
  for (std::size_t at = 0; at + 1 < name.size(); ++at) {
    if (name[at] == '\xED' && static_cast<unsigned char>(name[at + 1]) >= 0xA0) return false;
  }
  return isWellFormed(name);
}

class RegfEdit : public HiveEdit {
 public:
  RegfEdit(std::shared_ptr<const std::string> before, hive_h* hive)
      : before_(std::move(before)), reader_(*before_), hive_(hive) {}
  ~RegfEdit() override { hivex_close(hive_); }
  RegfEdit(const RegfEdit&) = delete;
  RegfEdit& operator=(const RegfEdit&) = delete;

  Status addKey(HiveNode parent, std::string_view name, HiveNode& key) override;
  Status removeTree(HiveNode key) override;
  Status setValue(HiveNode key, const HiveValue& value) override;
  Status deleteValue(HiveNode key, std::string_view name) override;
  Status write(int file) override;
  std::unique_ptr<HiveFile> finish() override;

 private:
  HiveNode root() const { return regfNode(reader_.cells().root()); }
  HiveNode parentOf(HiveNode key) const;
  bool stands(HiveNode key) const;
  Status mayChange(HiveNode key) const;
  Status valuesOf(HiveNode key, RegfValueList*& list);

  Status build();
  Status commit(std::string& bytes);
  Status putRight(std::string& bytes) const;

  std::shared_ptr<const std::string> before_;
  RegfReader reader_;
  hive_h* hive_;
  std::map<HiveNode, HiveNode> added_;  // with their parents
  std::set<HiveNode> removed_;
  std::set<HiveNode> touched_;  // whose values or subkeys have changed
  std::map<HiveNode, RegfValueList> values_;
  std::shared_ptr<const std::string> after_;  // null until it is built
};

HiveNode RegfEdit::parentOf(HiveNode key) const {
  if (const auto found = added_.find(key); found != added_.end()) return found->second;
  RegfKey record;
  const Status status = reader_.cells().key(regfOffset(key), record);
  return status == ERROR_SUCCESS ? regfNode(record.parent) : kNoNode;
}

// A whole hive leads from each key to its root.
bool RegfEdit::stands(HiveNode key) const {
  for (int depth = 0; key != kNoNode && depth < 2000; ++depth) {
    if (removed_.count(key) != 0) return false;
    if (key == root()) return true;
    key = parentOf(key);
  }
  return false;
}

// A link belongs to what it points at: Windows changes it through calls of its own.
Status RegfEdit::mayChange(HiveNode key) const {
  if (!stands(key)) return ERROR_KEY_DELETED;
  RegfKey record;
  if (added_.count(key) != 0) return ERROR_SUCCESS;
  if (const Status status = reader_.cells().key(regfOffset(key), record)) return status;
  return record.isLink() ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

Status RegfEdit::addKey(HiveNode parent, std::string_view name, HiveNode& key) {
  if (name.empty() || name.find('\0') != name.npos || name.find('\\') != name.npos ||
      characterCount(name) > kLongestKeyName) {
    return ERROR_INVALID_NAME;
  }
  if (!isPlainUnicode(name)) return ERROR_NO_UNICODE_TRANSLATION;
  if (const Status status = mayChange(parent)) return status;
  errno = 0;
  const hive_node_h node = hivex_node_add_child(hive_, parent, std::string(name).c_str());
  if (node == 0) return statusOfHivex(errno);
  key = node;
  added_[key] = parent;
  touched_.insert({key, parent});
  after_.reset();
  return ERROR_SUCCESS;
}

Status RegfEdit::removeTree(HiveNode key) {
  if (key == root()) return ERROR_ACCESS_DENIED;
  if (!stands(key)) return ERROR_KEY_DELETED;
  const HiveNode parent = parentOf(key);
  errno = 0;
  if (hivex_node_delete_child(hive_, key) != 0) return statusOfHivex(errno);
  removed_.insert(key);
  touched_.insert(parent);
  after_.reset();
  return ERROR_SUCCESS;
}

Status RegfEdit::valuesOf(HiveNode key, RegfValueList*& list) {
  if (const Status status = mayChange(key)) return status;
  auto found = values_.find(key);
  if (found == values_.end()) {
    RegfValueList read;
    if (added_.count(key) == 0) {
      if (const Status status = read.read(reader_.cells(), regfOffset(key))) return status;
    }
    found = values_.emplace(key, std::move(read)).first;
  }
  list = &found->second;
  return ERROR_SUCCESS;
}

Status RegfEdit::setValue(HiveNode key, const HiveValue& value) {
  std::string data = regfDataFromText(value.type, value.data);
  if (data.size() > largestRegfValue(read32(*before_, 24)) ||
      characterCount(value.name) > kLongestValueName ||
      value.name.find('\0') != std::string::npos) {
    return ERROR_INVALID_PARAMETER;
  }
  RegfValueList* list = nullptr;
  if (const Status status = valuesOf(key, list)) return status;
  list->set(value.name, value.type, std::move(data));
  touched_.insert(key);
  after_.reset();
  return ERROR_SUCCESS;
}

Status RegfEdit::deleteValue(HiveNode key, std::string_view name) {
  RegfValueList* list = nullptr;
  if (const Status status = valuesOf(key, list)) return status;
  if (!list->erase(name)) return ERROR_FILE_NOT_FOUND;
  touched_.insert(key);
  after_.reset();
  return ERROR_SUCCESS;
}

Status RegfEdit::commit(std::string& bytes) {
  const FileDescriptor file = memoryFile();
  if (!file) return statusOfErrno(errno);
  errno = 0;
  if (hivex_commit(hive_, pathOf(file).c_str(), 0) != 0) return statusOfErrno(errno);
  return readAll(file.get(), bytes);
}

Status RegfEdit::putRight(std::string& bytes) const {
  for (const auto& [key, list] : values_) {
    if (!stands(key)) continue;
    if (const Status status = setRegfValueNames(bytes, regfOffset(key), list.names()))
      return status;
  }
  std::map<HiveNode, std::set<RegfOffset>> newChildren;
  for (const auto& [key, parent] : added_) {
    if (stands(key)) newChildren[parent].insert(regfOffset(key));
  }
  for (const auto& [parent, children] : newChildren) {
    if (const Status status = orderRegfChildren(bytes, regfOffset(parent), children)) return status;
  }
  const std::uint64_t now = windowsTimeNow();
  for (const HiveNode key : touched_) {
    if (!stands(key)) continue;
    if (const Status status = setRegfKeyTime(bytes, regfOffset(key), now)) return status;
  }
  stampRegfHeader(bytes, now);
  return ERROR_SUCCESS;
}

Status RegfEdit::build() {
  for (const auto& [key, list] : values_) {
    if (!stands(key)) continue;
    if (const Status status = list.handOver(hive_, key)) return status;
  }
  auto bytes = std::make_shared<std::string>();
  if (const Status status = commit(*bytes)) return status;
  if (const Status status = putRight(*bytes)) return status;
  // The machine's registry is at stake: what is not whole is not written.
  if (checkRegf(*bytes) != RegfSoundness::Whole) return ERROR_BADDB;
  after_ = std::move(bytes);
  return ERROR_SUCCESS;
}

Status RegfEdit::write(int file) {
  if (after_ == nullptr) {
    if (const Status status = build()) return status;
  }
  return writeAll(file, *after_);
}

std::unique_ptr<HiveFile> RegfEdit::finish() {
  return after_ == nullptr ? nullptr : openRegfBytes(after_, {}).hive;
}

}  // namespace

std::unique_ptr<HiveEdit> startRegfEdit(std::shared_ptr<const std::string> bytes, Status& status) {
  const FileDescriptor file = memoryFile();
  if (!file) {
    status = statusOfErrno(errno);
    return nullptr;
  }
  // What may follow the bins is no part of the hive, and hivex would stumble over it.
  const std::size_t size = kRegfHeaderSize + read32(*bytes, 40);
  status = writeAll(file.get(), std::string_view(*bytes).substr(0, size));
  if (status != ERROR_SUCCESS) return nullptr;
  errno = 0;
  hive_h* hive = hivex_open(pathOf(file).c_str(), HIVEX_OPEN_WRITE);
  if (hive == nullptr) {
    status = statusOfHivex(errno);
    return nullptr;
  }
  return std::make_unique<RegfEdit>(std::move(bytes), hive);
}

}  // namespace korvex::platform
