// What HiveStore keeps of one key, one file and one step that may have to be undone.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/common/file_stamp.h"
#include "platform/hives/hive_file.h"
#include "platform/stored/key_store.h"

namespace korvex::platform {

// Which key of the registry a file holds.
struct HiveMount {
  std::int64_t base = kMachineKey;
  std::string path;  // below the base; "" is the base itself
  std::filesystem::path file;
};

struct MountedHive {
  HiveMount mount;
  std::unique_ptr<HiveFile> file;
  FileStamp stamp;
  std::unique_ptr<HiveEdit> edit;  // while a flush is being prepared
};

struct HiveKey : StoredKey {
  static constexpr std::size_t kNoHive = static_cast<std::size_t>(-1);

  std::size_t hive = kNoHive;  // kNoHive: above the files
  HiveNode node = kNoNode;     // kNoNode: not in the file yet
  bool isMount = false;        // the root of a file or a key above it, which cannot be removed
  bool isLink = false;
  bool stale = false;  // its file was read again since, and it was not looked for there yet
  bool gone = false;
  bool hasChildren = false;  // they have been read
  bool hasValues = false;    // likewise
  std::size_t links = 0;     // children that are links, which are not enumerated
  std::size_t added = 0;     // children that are not in the file yet
  std::vector<std::int64_t> children;
  std::uint64_t savedIn = 0;  // the change in which its values were kept for the way back
};

// A value that waits to be put on top of what the file holds by now.
struct ValueEdit {
  HiveValue value;
  bool remove = false;
};

struct RemovedKey {
  std::int64_t parent = 0;
  std::string folded;
  HiveNode node = kNoNode;
};

struct HiveUndo {
  enum class Step { Values, Create, Remove };
  Step step = Step::Values;
  std::int64_t key = 0;
  std::string values;                      // packed, of Values
  bool wasTouched = false;                 // of Values
  std::size_t position = 0;                // of Remove: among its parent's children
  bool wasInFile = false;                  // of Remove
  std::vector<std::int64_t> gone = {};     // of Remove: the keys that went with it
  std::vector<std::int64_t> touched = {};  // those of them that were
};

}  // namespace korvex::platform
