// What a file of Wine's registry text holds: its keys, and the runs of bytes that it is made of.
//
// Keys and blocks are numbered; 0 is none. A key's number is its node.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/hives/hive_file.h"

namespace korvex::platform {

constexpr std::uint32_t kWineRoot = 1;
// As many levels as Windows has: no path leads deeper.
constexpr std::size_t kMostWineLevels = 512;

struct WineKey {
  std::string name;
  std::uint32_t parent = 0;
  std::uint32_t firstChild = 0;
  std::uint32_t lastChild = 0;
  std::uint32_t previous = 0;  // among the parent's children
  std::uint32_t next = 0;
  std::uint32_t firstBlock = 0;  // none: it stands there only as part of its subkeys' paths
  bool isLink = false;
  bool isHidden = false;  // no call can name it
  bool isGone = false;
};

// A key's header line with all that follows up to the next key; the blank lines before it, too.
// The file's first block is what stands before its first key. A header that cannot be read makes a
// block without a key.
struct WineBlock {
  std::string_view text;                     // of the file, or of owned
  std::shared_ptr<const std::string> owned;  // a block that has been changed
  std::uint32_t key = 0;
  std::uint32_t nextOfKey = 0;  // the next place where the same key stands
  std::uint32_t previous = 0;   // in the file
  std::uint32_t next = 0;
};

class WineTextTree {
 public:
  // The first line of bytes has been looked at.
  explicit WineTextTree(std::shared_ptr<const std::string> bytes);

  bool stands(HiveNode node) const {
    return node != kNoNode && node < keys_.size() && !keys_[node].isGone;
  }
  const WineKey& key(std::uint32_t number) const { return keys_[number]; }
  const WineBlock& block(std::uint32_t number) const { return blocks_[number]; }
  std::uint32_t keyCount() const { return static_cast<std::uint32_t>(keys_.size()); }
  // The first block of a key or of what is below it; 0 where none of them has one.
  std::uint32_t firstBlockOf(std::uint32_t key) const;
  std::size_t depthOf(std::uint32_t key) const;

  void children(std::uint32_t key, std::vector<HiveChild>& children) const;
  void values(std::uint32_t key, std::vector<HiveValue>& values) const;
  Status linkTarget(std::uint32_t key, std::string& target) const;

  std::uint32_t addKey(std::uint32_t parent, std::string_view name);
  // The key with all below it, and their blocks.
  void removeTree(std::uint32_t key);
  // Puts the children in this order; they are the same ones.
  void setChildren(std::uint32_t parent, const std::vector<std::uint32_t>& children);

  // Before that block; 0 stands for the end of the file. The key has no block yet.
  void insertBlock(std::uint32_t before, std::uint32_t key, std::string text);
  void setText(std::uint32_t block, std::string text);
  std::uint32_t lastBlock() const { return lastBlock_; }
  // Makes sure that what is put behind the last block is not read as part of its last line.
  void closeEnd();

 private:
  struct Reading;
  void readBlocks();
  void addBlock(Reading& reading, std::size_t end);
  std::uint32_t keyOfPath(Reading& reading, std::string_view path);
  void removeBlock(std::uint32_t block);
  std::uint32_t linkKey(std::uint32_t parent, std::string_view name);

  std::shared_ptr<const std::string> bytes_;
  std::vector<WineKey> keys_;
  std::vector<WineBlock> blocks_;
  std::uint32_t lastBlock_ = 0;
  std::string closing_;  // what the end of the file lacks
};

// A NUL in a value's name as its symbol.
std::string withVisibleNul(std::string name);

}  // namespace korvex::platform
