// Walks the bins and the tree of keys of an NT hive once.
#include "platform/windows_folder/regf_check.h"

#include <vector>

#include "platform/windows_folder/regf_bytes.h"
#include "platform/windows_folder/regf_cells.h"
#include "platform/windows_folder/regf_header.h"

namespace korvex::platform {

namespace {

constexpr std::size_t kBinHeader = 32;
constexpr std::uint32_t kDeepest = 512;  // Windows' own limit

class Walk {
 public:
  explicit Walk(std::string_view bytes)
      : bytes_(bytes), cells_(bytes), unclaimed_(cells_.size() / 8), seen_(cells_.size() / 8) {}

  RegfSoundness run() {
    RegfKey root;
    if (cells_.key(cells_.root(), root) != ERROR_SUCCESS) return RegfSoundness::Hopeless;
    if (cells_.size() != read32(bytes_, 40)) whole_ = false;
    for (std::size_t at = 0; whole_ && at < cells_.size();) whole_ = takeBin(at);
    waiting_.push_back({cells_.root(), 0});
    claim(cells_.root());
    while (!waiting_.empty()) {
      const Waiting next = waiting_.back();
      waiting_.pop_back();
      if (next.depth > kDeepest) return RegfSoundness::Hopeless;
      if (!takeKey(next)) whole_ = false;
    }
    return whole_ ? RegfSoundness::Whole : RegfSoundness::Damaged;
  }

 private:
  struct Waiting {
    RegfOffset key;
    std::uint32_t depth;
  };

  // Marks the cells in use of one bin, which must fill it; at moves behind it.
  bool takeBin(std::size_t& at) {
    const std::string_view bins = bytes_.substr(kRegfHeaderSize, cells_.size());
    if (bins.size() - at < kBinHeader || bins.substr(at, 4) != "hbin") return false;
    const std::size_t size = read32(bins, at + 8);
    if (read32(bins, at + 4) != at || size == 0 || size % 4096 != 0 || size > bins.size() - at) {
      return false;
    }
    const std::size_t end = at + size;
    for (at += kBinHeader; at < end;) {
      const auto stored = static_cast<std::int32_t>(read32(bins, at));
      const auto length = static_cast<std::size_t>(stored < 0 ? -std::int64_t{stored} : stored);
      if (length == 0 || length % 8 != 0 || length > end - at) return false;
      unclaimed_[at / 8] = stored < 0;
      at += length;
    }
    return true;
  }

  bool claim(RegfOffset cell) {
    if (cells_.cell(cell).empty() || !unclaimed_[cell / 8]) return false;
    unclaimed_[cell / 8] = false;
    return true;
  }

  bool takeKey(const Waiting& waiting) {
    RegfKey key;
    if (cells_.key(waiting.key, key) != ERROR_SUCCESS) return false;
    const bool belongings = (key.classCell == kNoCell || claim(key.classCell)) &&
                            takeSecurity(key.security) && takeValues(key);
    return takeChildren(waiting, key) && belongings;
  }

  // Descriptors hang together in a ring; each is looked at when the first key that has it comes.
  bool takeSecurity(RegfOffset first) {
    return isSecurity(first) && isSecurity(read32(cells_.cell(first), 4)) &&
           isSecurity(read32(cells_.cell(first), 8));
  }
  bool isSecurity(RegfOffset offset) {
    const std::string_view cell = cells_.cell(offset);
    return cell.size() >= 20 && cell.substr(0, 2) == "sk" && read32(cell, 12) != 0;
  }

  bool takeValues(const RegfKey& key) {
    if (key.valueCount == 0) return true;
    std::vector<RegfOffset> values;
    if (!claim(key.valueList) || cells_.valueList(key, values) != ERROR_SUCCESS) return false;
    RegfValue value;
    for (const RegfOffset each : values) {
      if (!claim(each) || cells_.value(each, value) != ERROR_SUCCESS) return false;
      // Also where there are no data: hivex frees what is said to be their cell, whatever it is.
      if (!value.isShort && !claim(value.dataCell)) return false;
      if (value.inPieces && !takePieces(value)) return false;
    }
    return true;
  }

  bool takePieces(const RegfValue& value) {
    std::vector<RegfOffset> pieces;
    if (!claim(cells_.pieceList(value))) return false;
    if (cells_.pieces(value, pieces) != ERROR_SUCCESS) return false;
    for (const RegfOffset each : pieces) {
      if (!claim(each)) return false;
    }
    return true;
  }

  // What waits is told by the same calls that read the hive, so that a key which reading reaches
  // is one that has been seen here, also in a damaged hive.
  bool takeChildren(const Waiting& waiting, const RegfKey& key) {
    if (key.childCount == 0) return true;
    std::vector<RegfOffset> children;
    if (cells_.children(waiting.key, children) != ERROR_SUCCESS) return false;
    bool sound = takeLists(key);
    for (const RegfOffset each : children) {
      if (!claim(each)) sound = false;
      if (seen_[each / 8]) continue;
      seen_[each / 8] = true;
      waiting_.push_back({each, waiting.depth + 1});
    }
    return sound;
  }

  bool takeLists(const RegfKey& key) {
    RegfChildLists lists;
    if (cells_.childLists(key, lists) != ERROR_SUCCESS) return false;
    if (lists.index != kNoCell && !claim(lists.index)) return false;
    for (const RegfChildLists::Leaf& each : lists.leaves) {
      if (!claim(each.cell)) return false;
    }
    return true;
  }

  std::string_view bytes_;
  RegfCells cells_;
  std::vector<bool> unclaimed_;  // by every eighth byte: a cell in use that nothing has claimed
  std::vector<bool> seen_;       // keys that wait or have been walked
  std::vector<Waiting> waiting_;
  bool whole_ = true;
};

}  // namespace

RegfSoundness checkRegf(std::string_view bytes) { return Walk(bytes).run(); }

}  // namespace korvex::platform
