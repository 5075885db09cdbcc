// The files behind a HiveStore: opening them, reading them again, writing what has changed.
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <utility>

#include "platform/common/host_folder.h"
#include "platform/common/whole_file.h"
#include "platform/hives/file_set.h"
#include "platform/hives/hive_store.h"
#include "platform/stored/names.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

constexpr int kAttempts = 5;
constexpr std::string_view kBefore = ".korvex-before";

bool sameValue(const HiveValue& left, const ValueBlob::Value& right) {
  return left.type == right.type && left.data == right.data;
}

}  // namespace

Status HiveStore::openHive(MountedHive& hive, std::string& message) {
  const fs::path& file = hive.mount.file;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const FileStamp before = FileStamp::of(file);
    OpenedHive opened = options_.open(FileSet::current(options_.folder, file));
    // A new version that just got its name is looked for once more.
    const bool moved = opened.status == ERROR_FILE_NOT_FOUND && fs::exists(file);
    if (opened.hive == nullptr && moved) continue;
    message = std::move(opened.message);
    if (opened.hive == nullptr) return opened.status;
    if (!(FileStamp::of(file) == before)) continue;  // replaced while it was read
    hive.file = std::move(opened.hive);
    hive.stamp = before;
    return ERROR_SUCCESS;
  }
  message = fmt::format("{}: it is being written by another program. Try again when that is done.",
                        file.string());
  return ERROR_BUSY;
}

// Puts a file's root in its place, and makes the keys above it.
void HiveStore::mount(std::size_t index) {
  const MountedHive& hive = hives_[index];
  std::int64_t id = hive.mount.base;
  std::string_view path = hive.mount.path;
  while (!path.empty()) {
    const std::size_t end = path.find('\\');
    const std::string_view name = path.substr(0, end);
    path = end == std::string_view::npos ? std::string_view() : path.substr(end + 1);
    std::string folded;
    foldInto(name, folded);
    const std::int64_t parent = id;
    std::int64_t& known = indexed(parent, folded);
    if (known == 0) {
      HiveKey& key = addLoaded(parent, name);
      known = key.id;
      HiveKey& above = *at(parent);
      above.children.insert(
          above.children.begin() + static_cast<std::ptrdiff_t>(placeFor(above, key)), key.id);
      key.isMount = key.hasChildren = key.hasValues = true;
    }
    id = known;
  }
  HiveKey& root = *at(id);
  root.hive = index;
  root.node = hive.file->root();
  root.stale = root.hasChildren = root.hasValues = false;
}

// What a kill has cut off is finished before anything is read, unless another Korvex is at it.
void HiveStore::finishInterrupted(std::string& warning) {
  if (lock_->acquire(Wait::No) != ERROR_SUCCESS) return;
  const Status status = FileSet::finishInterrupted(options_.folder, warning);
  if (status != ERROR_SUCCESS && warning.empty()) warning = describeStatus(status);
  lock_->release();
}

// Told when a machine is opened to be changed, and not only when somebody presses Apply.
Status HiveStore::checkWritable(const MountedHive& hive, std::string& message) const {
  if (options_.readOnly) return ERROR_SUCCESS;
  const fs::path& file = hive.mount.file;
  const std::string reason = hive.file->whyReadOnly();
  const auto mayWrite = [](const fs::path& path) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
  };
  if (!reason.empty()) {
    message = fmt::format("{}: {}", file.string(), reason);
  } else if (!mayWrite(file) || !mayWrite(file.parent_path())) {
    message = fmt::format(
        "{}: the machine cannot be changed here. Give yourself the right to write to the file and "
        "its folder, or open it for reading only.",
        file.string());
  } else {
    return ERROR_SUCCESS;
  }
  return ERROR_WRITE_PROTECT;
}

Status HiveStore::open(std::string& message) {
  std::string warning;
  if (!options_.readOnly) finishInterrupted(warning);
  loaded_.resize(1);  // numbers begin with kMachineKey
  for (const char* const name : {"HKEY_LOCAL_MACHINE", "HKEY_USERS"}) {
    HiveKey& key = addLoaded(0, name);
    key.isMount = key.hasChildren = key.hasValues = true;
  }
  hives_.reserve(options_.mounts.size());
  for (const HiveMount& place : options_.mounts) {
    MountedHive& hive = hives_.emplace_back();
    hive.mount = place;
    const Status status = openHive(hive, message);
    if (status != ERROR_SUCCESS) return status;
    const Status writable = checkWritable(hive, message);
    if (writable != ERROR_SUCCESS) return writable;
    mount(hives_.size() - 1);
  }
  message = std::move(warning);
  return ERROR_SUCCESS;
}

bool HiveStore::filesMoved() const {
  for (const MountedHive& hive : hives_) {
    if (!(FileStamp::of(hive.mount.file) == hive.stamp)) return true;
  }
  return false;
}

// What a key's values have become, against the file.
Status HiveStore::differences(HiveKey& key, std::vector<ValueEdit>& edits) {
  Status status = readValues(key);
  if (status != ERROR_SUCCESS) return status;
  std::vector<HiveValue> before;
  if (key.node != kNoNode) status = hives_[key.hive].file->values(key.node, before);
  if (status != ERROR_SUCCESS) return status;
  std::unordered_map<std::string, const HiveValue*> byName;
  for (const HiveValue& value : before) byName.emplace(foldName(value.name), &value);
  for (const auto& [folded, value] : byName) {
    if (key.values.find(value->name) == ValueBlob::kNone) {
      edits.push_back({{value->name, REG_NONE, {}}, true});
    }
  }
  for (std::size_t i = 0; i < key.values.count(); ++i) {
    const ValueBlob::Value value = key.values.at(key.values.position(i));
    const auto known = byName.find(foldName(value.name));
    if (known != byName.end() && sameValue(*known->second, value)) continue;
    edits.push_back({{std::string(value.name), value.type, std::string(value.data)}, false});
  }
  return ERROR_SUCCESS;
}

// Before the files are read again: what is to be put on top of them.
Status HiveStore::keepWhatWaits() {
  std::map<std::int64_t, std::vector<ValueEdit>> waiting;
  for (const std::int64_t id : touched_) {
    // What has not been read since the last reload still waits.
    HiveKey& key = *at(id);
    if (key.stale || !key.hasValues) {
      if (const auto found = waiting_.find(id); found != waiting_.end()) waiting.insert(*found);
      continue;
    }
    const Status status = differences(key, waiting[id]);
    if (status != ERROR_SUCCESS) return status;
  }
  waiting_ = std::move(waiting);
  removedNames_.clear();
  for (std::size_t i = 0; i < removed_.size(); ++i) {
    removedNames_[indexKey(removed_[i].parent, removed_[i].folded)] = i;
  }
  return ERROR_SUCCESS;
}

// Every key is to be looked for again; the ones that no file has yet stay.
void HiveStore::makeStale() {
  for (HiveKey& key : loaded_) {
    if (key.hive == HiveKey::kNoHive || key.gone) continue;
    key.stale = true;
    key.node = kNoNode;
    key.hasChildren = key.hasValues = false;
    std::erase_if(key.children, [](std::int64_t id) { return id < kFirstCreated; });
  }
  for (HiveKey& key : created_) {
    if (key.gone) continue;
    key.stale = key.node != kNoNode;
    key.node = kNoNode;
    key.hasChildren = key.hasValues = false;
    std::erase_if(key.children, [](std::int64_t id) { return id < kFirstCreated; });
  }
  for (RemovedKey& removed : removed_) removed.node = kNoNode;
}

Status HiveStore::reload() {
  Status status = keepWhatWaits();
  if (status != ERROR_SUCCESS) return status;
  std::vector<MountedHive> fresh;
  for (const MountedHive& hive : hives_) {
    MountedHive& again = fresh.emplace_back();
    again.mount = hive.mount;
    status = openHive(again, failureText_);
    if (status != ERROR_SUCCESS) return status;
    status = checkWritable(again, failureText_);
    if (status != ERROR_SUCCESS) return status;
  }
  hives_ = std::move(fresh);
  makeStale();
  for (std::size_t i = 0; i < hives_.size(); ++i) mount(i);
  reloaded_ = true;
  return ERROR_SUCCESS;
}

HiveNode HiveStore::nodeOf(const HiveKey& key) const {
  if (key.node != kNoNode) return key.node;
  const auto found = newNodes_.find(key.id);
  return found == newNodes_.end() ? kNoNode : found->second;
}

Status HiveStore::editFor(const HiveKey& key, HiveEdit*& edit) {
  MountedHive& hive = hives_[key.hive];
  Status status = ERROR_SUCCESS;
  if (hive.edit == nullptr) hive.edit = hive.file->edit(status);
  edit = hive.edit.get();
  return status;
}

Status HiveStore::editRemovals() {
  for (std::size_t i = 0; i < removed_.size(); ++i) {
    HiveKey* parent = nullptr;
    Status status = freshWithChildren(removed_[i].parent, parent);
    if (status == ERROR_KEY_DELETED) continue;
    const HiveNode node = removed_[i].node;
    if (status == ERROR_SUCCESS && node == kNoNode) continue;  // somebody else did so, too
    HiveEdit* edit = nullptr;
    if (status == ERROR_SUCCESS) status = editFor(*parent, edit);
    if (status == ERROR_SUCCESS) status = edit->removeTree(node);
    if (status != ERROR_SUCCESS) return status;
  }
  return ERROR_SUCCESS;
}

Status HiveStore::editKey(HiveKey& key) {
  HiveEdit* edit = nullptr;
  std::vector<ValueEdit> edits;
  Status status = differences(key, edits);
  if (status == ERROR_SUCCESS && nodeOf(key) == kNoNode) {
    HiveNode node = kNoNode;
    status = editFor(key, edit);
    if (status == ERROR_SUCCESS) status = edit->addKey(nodeOf(*at(key.parent)), key.name, node);
    if (status == ERROR_SUCCESS) newNodes_[key.id] = node;
  }
  for (const auto& [value, remove] : edits) {
    if (status == ERROR_SUCCESS) status = editFor(key, edit);
    if (status != ERROR_SUCCESS) return status;
    const HiveNode node = nodeOf(key);
    status = remove ? edit->deleteValue(node, value.name) : edit->setValue(node, value);
  }
  return status;
}

Status HiveStore::prepareEdits() {
  Status status = editRemovals();
  // Parents have lower numbers than what was created below them.
  for (auto next = touched_.begin(); status == ERROR_SUCCESS && next != touched_.end();) {
    const std::int64_t id = *next++;
    HiveKey* key = nullptr;
    HiveKey* parent = nullptr;
    status = fresh(id, key);
    if (status == ERROR_SUCCESS && !key->isMount) status = fresh(key->parent, parent);
    if (status == ERROR_KEY_DELETED) {
      // Somebody else has removed it, or what it stands below.
      at(id)->gone = true;
      touched_.erase(id);
      status = ERROR_SUCCESS;
    } else if (status == ERROR_SUCCESS) {
      status = editKey(*key);
    }
  }
  return status;
}

Status HiveStore::keepBefore(const MountedHive& hive) {
  fs::path copy = hive.mount.file;
  copy += kBefore;
  std::error_code error;
  if (fs::exists(copy, error)) return ERROR_SUCCESS;
  FileDescriptor from(::open(hive.mount.file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!from) return statusOfErrno(errno);
  std::string bytes;
  const Status status = readAll(from.get(), bytes);
  return status == ERROR_SUCCESS ? replaceWholeFile(copy, bytes) : status;
}

Status HiveStore::writeEdits() {
  FileSet files(options_.folder);
  FileDescriptor hold;
  for (MountedHive& hive : hives_) {
    if (hive.edit == nullptr) continue;
    const Status status = options_.keepBefore ? keepBefore(hive) : ERROR_SUCCESS;
    if (status != ERROR_SUCCESS) {
      failureText_ =
          fmt::format("{}{}: {}.", hive.mount.file.string(), kBefore, describeStatus(status));
      return status;
    }
    files.add(hive.mount.file, [&hive](int file) { return hive.edit->write(file); });
  }
  files.checkBeforeRename([&] {
    const Status status = options_.holdOthersOff ? options_.holdOthersOff(hold) : ERROR_SUCCESS;
    return status == ERROR_SUCCESS && filesMoved() ? ERROR_BUSY : status;
  });
  return files.commit(failureText_);
}

void HiveStore::finishEdits() {
  for (MountedHive& hive : hives_) {
    if (hive.edit == nullptr) continue;
    hive.file = hive.edit->finish();
    hive.edit.reset();
    hive.stamp = FileStamp::of(hive.mount.file);
  }
  for (const auto& [id, node] : newNodes_) {
    at(id)->node = node;
    --at(at(id)->parent)->added;
  }
  touched_.clear();
  removed_.clear();
  removedNames_.clear();
  waiting_.clear();
}

Status HiveStore::flush() {
  failureText_.clear();
  // What is inside a change is not committed; whoever committed before it flushes after it.
  if (!hasUnsaved() || inChange_) return ERROR_SUCCESS;
  Status status = options_.mayChange ? options_.mayChange(failureText_) : ERROR_SUCCESS;
  if (status == ERROR_SUCCESS && filesMoved()) status = reload();
  if (status == ERROR_SUCCESS) status = prepareEdits();
  if (status == ERROR_SUCCESS) status = writeEdits();
  if (status == ERROR_SUCCESS) finishEdits();
  for (MountedHive& hive : hives_) hive.edit.reset();
  newNodes_.clear();
  settleLock();
  return status;
}

}  // namespace korvex::platform
