// The cells of an NT hive: keys, values and the lists of both, told with every bound checked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"
#include "platform/status.h"

namespace korvex::platform {

// Where a cell begins, counted from the end of the header: what the file itself calls it.
using RegfOffset = std::uint32_t;
constexpr RegfOffset kNoCell = 0xFFFFFFFF;

// A name as it is stored: one byte per character where that is enough (Latin-1), else UTF-16.
struct RegfName {
  std::string_view bytes;
  bool isWide = false;

  std::string text() const;
};

struct RegfKey {
  RegfName name;
  std::uint16_t flags = 0;
  RegfOffset parent = kNoCell;
  std::uint32_t childCount = 0;
  RegfOffset childList = kNoCell;
  std::uint32_t valueCount = 0;
  RegfOffset valueList = kNoCell;
  RegfOffset security = kNoCell;
  RegfOffset classCell = kNoCell;

  bool isLink() const { return (flags & 0x10) != 0; }
};

struct RegfValue {
  RegfName name;
  std::uint16_t flags = 0;
  RegType type = REG_NONE;
  std::uint32_t size = 0;
  bool isShort = false;  // up to four bytes stand in the value itself, without a cell
  std::uint32_t shortData = 0;
  RegfOffset dataCell = kNoCell;
  bool inPieces = false;  // dataCell tells of pieces, which hold 16344 bytes each
};

// A list of subkeys as it lies in the file: leaves with an entry per key, below an index or alone.
struct RegfChildLists {
  struct Leaf {
    RegfOffset cell = kNoCell;
    std::uint16_t count = 0;
  };
  RegfOffset index = kNoCell;
  std::vector<Leaf> leaves;
};

class RegfCells {
 public:
  // The bytes of a whole hive that has a header; they must outlive this.
  explicit RegfCells(std::string_view bytes);

  // The contents of a cell that is in use; empty where there is none.
  std::string_view cell(RegfOffset offset) const;
  // Where the contents of a cell begin in the file. The cell is there.
  static std::size_t place(RegfOffset offset) { return std::size_t{offset} + 4096 + 4; }
  std::size_t size() const { return bins_.size(); }  // of all cells
  RegfOffset root() const { return root_; }

  // All of these give 1009 where the file is not as it must be.
  Status key(RegfOffset offset, RegfKey& key) const;
  Status childLists(const RegfKey& key, RegfChildLists& lists) const;
  // The subkeys in the order of the file. Each says that this key is its parent, so that following
  // them never comes round.
  Status children(RegfOffset offset, std::vector<RegfOffset>& children) const;
  Status valueList(const RegfKey& key, std::vector<RegfOffset>& values) const;
  Status value(RegfOffset offset, RegfValue& value) const;
  Status data(const RegfValue& value, std::string& bytes) const;
  RegfOffset pieceList(const RegfValue& value) const;
  Status pieces(const RegfValue& value, std::vector<RegfOffset>& cells) const;

  // The bytes that each entry of such a leaf takes; 0 for what is no leaf.
  static std::size_t entrySize(std::string_view leaf);

 private:
  Status leaf(RegfOffset offset, RegfChildLists::Leaf& leaf) const;
  Status childrenOf(const RegfChildLists::Leaf& leaf, RegfOffset parent,
                    std::vector<RegfOffset>& children) const;
  // The leaves of a key, each handed over before the next one is looked at.
  template <typename Take>
  Status forEachLeaf(const RegfKey& key, Take take) const;

  std::string_view bins_;
  RegfOffset root_;
};

}  // namespace korvex::platform
