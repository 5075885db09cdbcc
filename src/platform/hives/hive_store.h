// The keys of a machine whose registry lies in files: read as they are asked for, changed in
// memory, written by flush().
//
// A commit is in memory only: what is worth writing a whole file for is up to the caller, who
// flushes after an Apply or a command. Until then other programs see the old registry, and a
// machine that is closed without a flush leaves its files as they were. From the first change to
// the flush this object holds the machine's lock. A flush that fails has changed nothing on the
// disk and keeps what waits, so that it can be tried again.
//
// Files that somebody else has changed are read again where this is noticed (outside of changes);
// what still waits here is put on top of what they hold now, value by value. A key that they have
// removed takes what waited in it with it.
#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/common/file_descriptor.h"
#include "platform/hives/counted_lock.h"
#include "platform/hives/hive_file.h"
#include "platform/hives/hive_key.h"
#include "platform/stored/key_store.h"

namespace korvex::platform {

struct HiveStoreOptions {
  std::filesystem::path folder;  // of the machine; all files lie in it
  std::vector<HiveMount> mounts;
  std::function<OpenedHive(const std::filesystem::path&)> open;
  KeyOrder order = KeyOrder::Alphabetical;
  bool readOnly = false;
  // The file as it was before Korvex first changed it is kept beside it ("SOFTWARE.korvex-before").
  bool keepBefore = false;
  // Before a change begins, with the reason for people where it may not, and before files get their
  // names. What the second returns in hold is held until they have them.
  std::function<Status(std::string& reason)> mayChange;
  std::function<Status(FileDescriptor& hold)> holdOthersOff;
};

class HiveStore : public KeyStore {
 public:
  // Keys made here have numbers from this one on; those of the files have lower ones.
  static constexpr std::int64_t kFirstCreated = std::int64_t{1} << 40;

  // The lock is the machine's, which may hold it for longer than a change takes.
  HiveStore(HiveStoreOptions options, std::shared_ptr<CountedLock> lock);
  ~HiveStore() override;

  // Opens the files. On failure message says what to do; else it is "" or a warning.
  Status open(std::string& message);

  Status find(std::int64_t parent, std::string_view name, std::int64_t& id) override;
  Status load(std::int64_t id, StoredKey*& key) override;
  Status childAt(std::int64_t parent, std::size_t index, StoredKey*& child) override;
  Status countChildren(std::int64_t parent, std::size_t& count, std::size_t& longestName) override;
  Status hasChildren(std::int64_t parent, bool& result) override;
  Status linkTarget(std::int64_t id, std::string& target) override;

  // 5: outside of every file; 1450: the file has no room for so many keys under one.
  Status create(std::int64_t parent, std::string_view name, std::int64_t& id) override;
  Status removeTree(std::int64_t id) override;
  // 1450: the file cannot hold so long a value.
  Status accepts(const StoredKey& key, RegType type, std::string_view data) override;
  Status aboutToChange(StoredKey& key) override;
  Status nextKey(std::int64_t& id) override;

  bool readOnly() const override { return options_.readOnly; }
  // 170: another program holds the machine.
  Status begin() override;
  Status commit() override;
  void rollback() override;
  Status flush() override;
  bool changedByOthers() override;

  std::string lastRefusal() const override { return failureText_; }

 private:
  HiveKey* at(std::int64_t id);
  HiveKey& addLoaded(std::int64_t parent, std::string_view name);
  Status fresh(std::int64_t id, HiveKey*& key);
  Status freshWithChildren(std::int64_t id, HiveKey*& key);
  Status readChildren(HiveKey& parent);
  HiveKey* adopt(HiveKey& parent, const HiveChild& child);
  Status readValues(HiveKey& key);
  std::size_t placeFor(const HiveKey& parent, const HiveKey& child);
  const std::string& indexKey(std::int64_t parent, std::string_view folded);
  std::int64_t& indexed(std::int64_t parent, std::string_view folded);

  void undo(HiveUndo& entry);
  void undoCreate(HiveKey& key);
  void undoRemove(HiveKey& key, const HiveUndo& entry);
  bool hasUnsaved() const { return !touched_.empty() || !removed_.empty(); }
  Status takeLock();
  void settleLock();
  Status settleFiles();

  // hive_store_files.cpp
  void finishInterrupted(std::string& warning);
  Status checkWritable(const MountedHive& hive, std::string& message) const;
  Status openHive(MountedHive& hive, std::string& message);
  void mount(std::size_t index);
  bool filesMoved() const;
  Status reload();
  Status keepWhatWaits();
  void makeStale();
  Status differences(HiveKey& key, std::vector<ValueEdit>& edits);
  HiveNode nodeOf(const HiveKey& key) const;
  Status editFor(const HiveKey& key, HiveEdit*& edit);
  Status editRemovals();
  Status editKey(HiveKey& key);
  Status prepareEdits();
  Status keepBefore(const MountedHive& hive);
  Status writeEdits();
  void finishEdits();

  HiveStoreOptions options_;
  std::shared_ptr<CountedLock> lock_;
  bool locked_ = false;
  std::vector<MountedHive> hives_;
  std::deque<HiveKey> loaded_;   // by number
  std::deque<HiveKey> created_;  // by number, from kFirstCreated on
  std::unordered_map<std::string, std::int64_t> index_;
  std::string indexKey_;
  std::vector<HiveUndo> undo_;
  std::uint64_t change_ = 0;  // counts them
  bool inChange_ = false;
  bool reloaded_ = false;  // not told by changedByOthers() yet

  // What is not in the files yet.
  std::set<std::int64_t> touched_;  // created keys, and those whose values have changed
  std::vector<RemovedKey> removed_;
  // After a reload: what is still to be put on top of the files, and by which names.
  std::map<std::int64_t, std::vector<ValueEdit>> waiting_;
  std::unordered_map<std::string, std::size_t> removedNames_;

  std::unordered_map<std::int64_t, HiveNode> newNodes_;  // while a flush prepares its edits
  std::string failureText_;
};

}  // namespace korvex::platform
