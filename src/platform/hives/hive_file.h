// One registry file of an installation: a tree of keys that is read piece by piece and written
// whole.
//
// A kind of file (Wine's text, an NT hive) implements both classes; HiveStore keeps what has been
// read and changed, and knows nothing of formats. Text is as platform/registry.h has it; whoever
// implements this converts at the file's edge, losing nothing. Nothing here compares names or keeps
// a change: that is the store's business.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"
#include "platform/status.h"

namespace korvex::platform {

// A key of a hive. Good for as long as the hive is, and for the hive that saving made of it.
using HiveNode = std::uint64_t;
constexpr HiveNode kNoNode = 0;

struct HiveChild {
  HiveNode node = kNoNode;
  std::string name;
  bool isLink = false;  // a symbolic link to another key
};

struct HiveValue {
  std::string name;  // "" is the key's default value
  RegType type = REG_NONE;
  std::string data;
};

class HiveEdit;

// A registry file as it stood on the disk when it was opened. What cannot be read gives 1009
// (damaged), never a crash or half an answer.
class HiveFile {
 public:
  virtual ~HiveFile() = default;

  virtual HiveNode root() const = 0;
  // In the order of the file. Of two children whose names differ in case only both are told.
  virtual Status children(HiveNode key, std::vector<HiveChild>& children) = 0;
  virtual Status values(HiveNode key, std::vector<HiveValue>& values) = 0;
  // What a link points at, as the kernel names it: "\Registry\Machine\Software\Classes".
  virtual Status linkTarget(HiveNode key, std::string& target) = 0;

  // Why the file can be read but must not be written, in a sentence that says what to do; "" where
  // it can be written.
  virtual std::string whyReadOnly() const = 0;
  // The largest data of one value, in bytes as they are stored.
  virtual std::size_t largestValue() const = 0;
  // False where adding so many keys to one that has so many would take unreasonably long or much.
  virtual bool hasRoomForChildren(std::size_t present, std::size_t added) const = 0;

  // A copy in memory that can be changed; the hive itself stays as it is. Null with a status.
  virtual std::unique_ptr<HiveEdit> edit(Status& status) = 0;
};

// The new version of a hive. What is not named in a call below stays to the byte where the format
// allows it: time stamps, classes, security, order, comments, unknown types. The keys whose values
// or subkeys were changed get the time of the change.
class HiveEdit {
 public:
  virtual ~HiveEdit() = default;

  // The caller has made sure that the parent has no such child.
  virtual Status addKey(HiveNode parent, std::string_view name, HiveNode& key) = 0;
  virtual Status removeTree(HiveNode key) = 0;
  // Replaces a value of that name (compared without regard to case) in its place, or adds one.
  virtual Status setValue(HiveNode key, const HiveValue& value) = 0;
  // 2: no such value.
  virtual Status deleteValue(HiveNode key, std::string_view name) = 0;

  // Writes the whole new file to an empty host file that is open for reading and writing. The
  // caller flushes and names it.
  virtual Status write(int file) = 0;
  // Once the file stands under its name: the hive that it is now, for reading on without loading
  // it again. Nodes keep their numbers, and those of addKey() are good in it.
  virtual std::unique_ptr<HiveFile> finish() = 0;
};

// The outcome of opening one: a hive, or a status with a sentence that says what to do.
struct OpenedHive {
  std::unique_ptr<HiveFile> hive;
  Status status = ERROR_SUCCESS;
  std::string message;
};

}  // namespace korvex::platform
