// Changes an NT hive through hivex, which keeps all that is not named: classes, security, flags.
//
// Values are gathered and handed over once per key when the hive is written, as hivex sets all
// values of a key at a time and every call takes new space. Their names are put in afterwards
// (regf_patch.h): hivex takes no NUL and no lone surrogate, and would spoil the neighbours' names.
#include "platform/windows_folder/regf_edit.h"

#include <hivex.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/common/file_descriptor.h"
#include "platform/common/host_folder.h"
#include "platform/common/text.h"
#include "platform/common/whole_file.h"
#include "platform/windows_folder/regf_bytes.h"
#include "platform/windows_folder/regf_check.h"
#include "platform/windows_folder/regf_patch.h"
#include "platform/windows_folder/regf_reader.h"

namespace korvex::platform {

namespace {

constexpr std::size_t kLongestKeyName = 255;
constexpr std::size_t kLongestValueName = 16383;

Status statusOfHivex(int error) {
  switch (error) {
    case EEXIST:
      return ERROR_ALREADY_EXISTS;
    case ERANGE:
      return ERROR_NO_SYSTEM_RESOURCES;
    case ENOMEM:
      return ERROR_OUTOFMEMORY;
    default:
      return ERROR_BADDB;
  }
}

std::string pathOf(const FileDescriptor& file) {
  return "/proc/self/fd/" + std::to_string(file.get());
}

Status writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return statusOfErrno(written < 0 ? errno : ENOSPC);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return ERROR_SUCCESS;
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

// The values of one key as they are to be, in their order.
struct ValueList {
  struct Value {
    RegfStoredName name;
    RegType type = REG_NONE;
    std::string data;
    bool deleted = false;
  };
  std::vector<Value> values;
  std::unordered_map<std::string, std::size_t> byName;  // folded

  void add(const std::string& name, Value value) {
    byName.emplace(foldName(name), values.size());
    values.push_back(std::move(value));
  }
};

// What hivex is to write for a name until its bytes are put in: as many characters, of one byte or
// of two.
std::string standIn(const RegfStoredName& name) {
  if ((name.flags & 1) != 0 || name.bytes.empty()) return std::string(name.bytes.size(), 'x');
  std::string result;
  for (std::size_t i = 0; i < name.bytes.size() / 2; ++i) result += "\xE4\xB8\x80";
  return result;
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
  Status valuesOf(HiveNode key, ValueList*& list);
  Status readValues(HiveNode key, ValueList& list) const;

  Status build();
  Status handOver(HiveNode key, const ValueList& list);
  Status commit(std::string& bytes);
  Status putRight(std::string& bytes) const;
  Status putKeyRight(std::string& bytes, HiveNode key, const ValueList& list) const;

  std::shared_ptr<const std::string> before_;
  RegfReader reader_;
  hive_h* hive_;
  std::map<HiveNode, HiveNode> added_;  // with their parents
  std::set<HiveNode> removed_;
  std::set<HiveNode> touched_;  // whose values or subkeys have changed
  std::map<HiveNode, ValueList> values_;
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

Status RegfEdit::readValues(HiveNode key, ValueList& list) const {
  if (added_.count(key) != 0) return ERROR_SUCCESS;
  const RegfCells& cells = reader_.cells();
  RegfKey record;
  std::vector<RegfOffset> offsets;
  if (const Status status = cells.key(regfOffset(key), record)) return status;
  if (const Status status = cells.valueList(record, offsets)) return status;
  RegfValue value;
  for (const RegfOffset each : offsets) {
    if (const Status status = cells.value(each, value)) return status;
    // hivex would put such data into one cell, which Windows does not read.
    if (value.inPieces) return ERROR_NOT_SUPPORTED;
    ValueList::Value kept;
    kept.name = {std::string(value.name.bytes), value.flags};
    kept.type = value.type;
    if (const Status status = cells.data(value, kept.data)) return status;
    list.add(value.name.text(), std::move(kept));
  }
  return ERROR_SUCCESS;
}

Status RegfEdit::valuesOf(HiveNode key, ValueList*& list) {
  if (const Status status = mayChange(key)) return status;
  auto found = values_.find(key);
  if (found == values_.end()) {
    ValueList read;
    if (const Status status = readValues(key, read)) return status;
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
  ValueList* list = nullptr;
  if (const Status status = valuesOf(key, list)) return status;
  const auto found = list->byName.find(foldName(value.name));
  if (found != list->byName.end()) {
    ValueList::Value& old = list->values[found->second];
    old.type = value.type;
    old.data = std::move(data);
  } else {
    list->add(value.name, {storedRegfName(value.name), value.type, std::move(data), false});
  }
  touched_.insert(key);
  after_.reset();
  return ERROR_SUCCESS;
}

Status RegfEdit::deleteValue(HiveNode key, std::string_view name) {
  ValueList* list = nullptr;
  if (const Status status = valuesOf(key, list)) return status;
  const auto found = list->byName.find(foldName(name));
  if (found == list->byName.end()) return ERROR_FILE_NOT_FOUND;
  list->values[found->second].deleted = true;
  list->byName.erase(found);
  touched_.insert(key);
  after_.reset();
  return ERROR_SUCCESS;
}

Status RegfEdit::handOver(HiveNode key, const ValueList& list) {
  std::vector<std::string> names;
  std::vector<hive_set_value> sets;
  names.reserve(list.values.size());  // the sets point into it
  for (const ValueList::Value& each : list.values) {
    if (each.deleted) continue;
    names.push_back(standIn(each.name));
    hive_set_value set{};
    set.key = names.back().data();
    // Whatever the number: the type in hivex.h lists the known ones only.
    std::memcpy(&set.t, &each.type, sizeof set.t);
    set.len = each.data.size();
    set.value = const_cast<char*>(each.data.data());
    sets.push_back(set);
  }
  errno = 0;
  const int result = hivex_node_set_values(hive_, key, sets.size(), sets.data(), 0);
  return result == 0 ? ERROR_SUCCESS : statusOfHivex(errno);
}

Status RegfEdit::commit(std::string& bytes) {
  const FileDescriptor file = memoryFile();
  if (!file) return statusOfErrno(errno);
  errno = 0;
  if (hivex_commit(hive_, pathOf(file).c_str(), 0) != 0) return statusOfErrno(errno);
  return readAll(file.get(), bytes);
}

Status RegfEdit::putKeyRight(std::string& bytes, HiveNode key, const ValueList& list) const {
  std::vector<RegfStoredName> names;
  for (const ValueList::Value& each : list.values) {
    if (!each.deleted) names.push_back(each.name);
  }
  return setRegfValueNames(bytes, regfOffset(key), names);
}

Status RegfEdit::putRight(std::string& bytes) const {
  for (const auto& [key, list] : values_) {
    if (!stands(key)) continue;
    if (const Status status = putKeyRight(bytes, key, list)) return status;
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
    if (const Status status = handOver(key, list)) return status;
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
