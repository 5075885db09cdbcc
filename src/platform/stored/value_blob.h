// All values of one key, packed into one run of bytes as registry.db keeps them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/registry.h"

namespace korvex::platform {

// Each value: length of the name, name, type, length of the data, data; numbers in groups of seven
// bits, lowest first. Values keep the order of their creation; a replaced value keeps its place.
// Names compare without regard to case. Changes cost the same however many values there are.
class ValueBlob {
 public:
  struct Value {
    std::string_view name;
    RegType type = REG_NONE;
    std::string_view data;
  };
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  // False where the bytes are damaged; the blob is then empty.
  bool load(std::string_view packed);
  void clear();
  // Valid until the next change.
  const std::string& packed();

  std::size_t count() const { return entries_.size() - first_ - deadInside_; }
  // What the values take when packed, to within a few bytes, and what they take in memory.
  std::size_t packedBytes() const { return bytes_.size() - waste_; }
  std::size_t memoryBytes() const { return bytes_.size() + entries_.size() * sizeof(Entry); }
  // A position is good until the next change; kNone where there is no such value.
  std::size_t find(std::string_view name);
  // The index-th value in order; index must be below count().
  std::size_t position(std::size_t index);
  // Views into the blob, good until the next change.
  Value at(std::size_t position) const;

  void set(std::string_view name, RegType type, std::string_view data);
  void erase(std::size_t position);

 private:
  struct Entry {
    std::uint32_t name = 0;
    std::uint32_t nameBytes = 0;
    RegType type = REG_NONE;
    std::uint32_t data = 0;
    std::uint32_t dataBytes = 0;
    bool dead = false;
  };

  std::string_view nameOf(const Entry& entry) const {
    return {bytes_.data() + entry.name, entry.nameBytes};
  }
  void append(Entry& entry, std::string_view name, RegType type, std::string_view data);
  std::size_t findByFold(std::string_view name);
  void discard(const Entry& entry) { waste_ += 1 + entry.nameBytes + entry.dataBytes; }
  void dropDeadEntries();
  void repack();

  std::string bytes_;
  std::vector<Entry> entries_;
  std::size_t first_ = 0;       // entries before it are dead
  std::size_t deadInside_ = 0;  // dead entries from first_ on
  std::size_t waste_ = 0;       // bytes of values that were replaced or erased
  std::unordered_map<std::string, std::size_t> byFold_;  // used from kIndexFrom values on
};

}  // namespace korvex::platform
