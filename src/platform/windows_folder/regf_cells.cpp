// Tells the cells of an NT hive. Nothing here trusts a number that stands in the file.
#include "platform/windows_folder/regf_cells.h"

#include <algorithm>

#include "platform/text/text.h"
#include "platform/windows_folder/regf_bytes.h"
#include "platform/windows_folder/regf_header.h"

namespace korvex::platform {

namespace {

constexpr std::size_t kKeyFixed = 76;
constexpr std::size_t kValueFixed = 20;
constexpr std::size_t kPieceSize = 16344;
constexpr std::uint32_t kStoredInValue = 0x80000000;

void readOffsets(std::string_view cell, std::size_t count, std::vector<RegfOffset>& offsets) {
  offsets.reserve(count);
  for (std::size_t i = 0; i < count; ++i) offsets.push_back(read32(cell, i * 4));
}

}  // namespace

std::string RegfName::text() const {
  if (isWide) return utf16leToUtf8(bytes);
  std::string result;
  result.reserve(bytes.size());
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x80) {
      result += character;
    } else {
      result += static_cast<char>(0xC0 | (byte >> 6));
      result += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return result;
}

RegfCells::RegfCells(std::string_view bytes)
    : bins_(bytes.substr(kRegfHeaderSize, read32(bytes, 40))), root_(read32(bytes, 36)) {}

std::string_view RegfCells::cell(RegfOffset offset) const {
  if (offset % 8 != 0 || offset >= bins_.size() || bins_.size() - offset < 8) return {};
  const auto size = static_cast<std::int32_t>(read32(bins_, offset));
  if (size >= -4) return {};
  const auto length = static_cast<std::size_t>(-static_cast<std::int64_t>(size));
  if (length > bins_.size() - offset) return {};
  return bins_.substr(offset + 4, length - 4);
}

Status RegfCells::key(RegfOffset offset, RegfKey& key) const {
  const std::string_view bytes = cell(offset);
  if (bytes.size() < kKeyFixed || bytes.substr(0, 2) != "nk") return ERROR_BADDB;
  const std::size_t nameLength = read16(bytes, 72);
  if (nameLength > bytes.size() - kKeyFixed) return ERROR_BADDB;
  key.flags = read16(bytes, 2);
  key.parent = read32(bytes, 16);
  key.childCount = read32(bytes, 20);
  key.childList = read32(bytes, 28);
  key.valueCount = read32(bytes, 36);
  key.valueList = read32(bytes, 40);
  key.security = read32(bytes, 44);
  key.classCell = read32(bytes, 48);
  key.name = {bytes.substr(kKeyFixed, nameLength), (key.flags & 0x20) == 0};
  return key.name.isWide && nameLength % 2 != 0 ? ERROR_BADDB : ERROR_SUCCESS;
}

std::size_t RegfCells::entrySize(std::string_view leaf) {
  const std::string_view kind = leaf.substr(0, 2);
  if (kind == "lf" || kind == "lh") return 8;
  return kind == "li" ? 4 : 0;
}

Status RegfCells::leaf(RegfOffset offset, RegfChildLists::Leaf& leaf) const {
  const std::string_view bytes = cell(offset);
  const std::size_t step = entrySize(bytes);
  if (step == 0 || bytes.size() < 4) return ERROR_BADDB;
  leaf = {offset, read16(bytes, 2)};
  return leaf.count <= (bytes.size() - 4) / step ? ERROR_SUCCESS : ERROR_BADDB;
}

template <typename Take>
Status RegfCells::forEachLeaf(const RegfKey& key, Take take) const {
  if (key.childCount == 0) return ERROR_SUCCESS;
  const std::string_view bytes = cell(key.childList);
  if (bytes.size() < 4) return ERROR_BADDB;
  const bool isIndex = bytes.substr(0, 2) == "ri";
  const std::size_t count = isIndex ? read16(bytes, 2) : 1;
  if (isIndex && count > (bytes.size() - 4) / 4) return ERROR_BADDB;
  std::uint64_t total = 0;
  RegfChildLists::Leaf each;
  for (std::size_t i = 0; i < count; ++i) {
    const RegfOffset offset = isIndex ? read32(bytes, 4 + i * 4) : key.childList;
    if (const Status status = leaf(offset, each)) return status;
    total += each.count;
    if (total > key.childCount) return ERROR_BADDB;
    if (const Status status = take(each)) return status;
  }
  return total == key.childCount ? ERROR_SUCCESS : ERROR_BADDB;
}

Status RegfCells::childLists(const RegfKey& key, RegfChildLists& lists) const {
  if (cell(key.childList).substr(0, 2) == "ri") lists.index = key.childList;
  return forEachLeaf(key, [&](const RegfChildLists::Leaf& each) {
    lists.leaves.push_back(each);
    return ERROR_SUCCESS;
  });
}

// Looks at each key as it comes: a list that is not this parent's ends with its first entry.
Status RegfCells::childrenOf(const RegfChildLists::Leaf& leaf, RegfOffset parent,
                             std::vector<RegfOffset>& children) const {
  const std::string_view bytes = cell(leaf.cell);
  const std::size_t step = entrySize(bytes);
  RegfKey child;
  for (std::size_t i = 0; i < leaf.count; ++i) {
    const RegfOffset offset = read32(bytes, 4 + i * step);
    if (const Status status = key(offset, child)) return status;
    if (child.parent != parent || offset == root_) return ERROR_BADDB;
    children.push_back(offset);
  }
  return ERROR_SUCCESS;
}

Status RegfCells::children(RegfOffset offset, std::vector<RegfOffset>& children) const {
  RegfKey parent;
  if (const Status status = key(offset, parent)) return status;
  // A key takes 80 bytes at least: a larger number repeats itself.
  if (parent.childCount > bins_.size() / 80) return ERROR_BADDB;
  children.reserve(parent.childCount);
  return forEachLeaf(
      parent, [&](const RegfChildLists::Leaf& each) { return childrenOf(each, offset, children); });
}

Status RegfCells::valueList(const RegfKey& key, std::vector<RegfOffset>& values) const {
  if (key.valueCount == 0) return ERROR_SUCCESS;
  const std::string_view bytes = cell(key.valueList);
  if (key.valueCount > bytes.size() / 4) return ERROR_BADDB;
  readOffsets(bytes, key.valueCount, values);
  return ERROR_SUCCESS;
}

Status RegfCells::value(RegfOffset offset, RegfValue& value) const {
  const std::string_view bytes = cell(offset);
  if (bytes.size() < kValueFixed || bytes.substr(0, 2) != "vk") return ERROR_BADDB;
  const std::size_t nameLength = read16(bytes, 2);
  if (nameLength > bytes.size() - kValueFixed) return ERROR_BADDB;
  value.size = read32(bytes, 4) & ~kStoredInValue;
  value.type = read32(bytes, 12);
  value.flags = read16(bytes, 16);
  value.name = {bytes.substr(kValueFixed, nameLength), (value.flags & 1) == 0};
  if (value.name.isWide && nameLength % 2 != 0) return ERROR_BADDB;
  value.inPieces = false;
  value.shortData = read32(bytes, 8);
  value.isShort = (read32(bytes, 4) & kStoredInValue) != 0;
  value.dataCell = value.isShort ? kNoCell : value.shortData;
  if (value.isShort) return value.size <= 4 ? ERROR_SUCCESS : ERROR_BADDB;
  const std::string_view data = cell(value.dataCell);
  value.inPieces = data.size() < value.size;
  const bool listsPieces = value.size > kPieceSize && data.size() >= 8 && data.substr(0, 2) == "db";
  return value.inPieces && !listsPieces ? ERROR_BADDB : ERROR_SUCCESS;
}

RegfOffset RegfCells::pieceList(const RegfValue& value) const {
  return read32(cell(value.dataCell), 4);
}

Status RegfCells::pieces(const RegfValue& value, std::vector<RegfOffset>& cells) const {
  const std::size_t count = read16(cell(value.dataCell), 2);
  const std::string_view bytes = cell(pieceList(value));
  if (count > bytes.size() / 4 || count != (value.size + kPieceSize - 1) / kPieceSize) {
    return ERROR_BADDB;
  }
  readOffsets(bytes, count, cells);
  std::size_t left = value.size;
  for (const RegfOffset each : cells) {
    const std::size_t wanted = std::min(left, kPieceSize);
    if (cell(each).size() < wanted) return ERROR_BADDB;
    left -= wanted;
  }
  return ERROR_SUCCESS;
}

Status RegfCells::data(const RegfValue& value, std::string& bytes) const {
  if (value.isShort) {
    bytes.assign(reinterpret_cast<const char*>(&value.shortData), std::min(value.size, 4U));
    return ERROR_SUCCESS;
  }
  if (!value.inPieces) {
    bytes.assign(cell(value.dataCell).substr(0, value.size));
    return ERROR_SUCCESS;
  }
  std::vector<RegfOffset> cells;
  if (const Status status = pieces(value, cells)) return status;
  bytes.clear();
  for (const RegfOffset each : cells) {
    bytes += cell(each).substr(0, std::min(value.size - bytes.size(), kPieceSize));
  }
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform
