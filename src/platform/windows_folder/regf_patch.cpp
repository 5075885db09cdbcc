// Times, names and the order of subkeys, put right in the bytes of an NT hive.
#include "platform/windows_folder/regf_patch.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "platform/text/text.h"
#include "platform/windows_folder/regf_bytes.h"

namespace korvex::platform {

namespace {

constexpr std::size_t kKeyTime = 4;
constexpr std::size_t kValueFlags = 16;
constexpr std::size_t kValueName = 20;

std::u16string unitsOf(std::string_view text) {
  const std::string bytes = utf8ToUtf16le(text);
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) units[i] = read16(bytes, i * 2);
  return units;
}

// An entry of a subkey list.
struct Entry {
  RegfOffset key = kNoCell;
  char kind = 0;  // of the leaf it stood in: 'f', 'h' or 'i'
  std::uint32_t hint = 0;
  bool isNew = false;
  std::string name;
  std::u16string sortName;
};

// The beginning of the name, for leaves of Windows 2000 and before.
std::uint32_t hintOf(const std::string& name) {
  std::uint32_t hint = 0;
  unsigned shift = 0;
  for (const char16_t unit : unitsOf(name)) {
    if (shift == 32 || unit > 0xFF) break;
    hint |= std::uint32_t{unit} << shift;
    shift += 8;
  }
  return hint;
}

std::uint32_t hashOf(const std::u16string& upperName) {
  std::uint32_t hash = 0;
  for (const char16_t unit : upperName) hash = hash * 37 + unit;
  return hash;
}

Status readEntries(const RegfCells& cells, const RegfChildLists& lists,
                   const std::set<RegfOffset>& added, std::vector<Entry>& entries) {
  RegfKey key;
  for (const RegfChildLists::Leaf& leaf : lists.leaves) {
    const std::string_view bytes = cells.cell(leaf.cell);
    const std::size_t step = RegfCells::entrySize(bytes);
    for (std::size_t at = 4; at < 4 + leaf.count * step; at += step) {
      Entry entry;
      entry.key = read32(bytes, at);
      entry.kind = bytes[1];
      if (step == 8) entry.hint = read32(bytes, at + 4);
      entry.isNew = added.count(entry.key) != 0;
      if (const Status status = cells.key(entry.key, key)) return status;
      entry.name = key.name.text();
      entry.sortName = unitsOf(foldName(entry.name));
      entries.push_back(std::move(entry));
    }
  }
  return ERROR_SUCCESS;
}

std::vector<Entry> inOrder(std::vector<Entry> entries) {
  const auto byName = [](const Entry& left, const Entry& right) {
    return left.sortName < right.sortName;
  };
  const auto firstNew = std::stable_partition(entries.begin(), entries.end(),
                                              [](const Entry& each) { return !each.isNew; });
  std::sort(firstNew, entries.end(), byName);
  std::vector<Entry> result;
  result.reserve(entries.size());
  std::merge(std::make_move_iterator(entries.begin()), std::make_move_iterator(firstNew),
             std::make_move_iterator(firstNew), std::make_move_iterator(entries.end()),
             std::back_inserter(result), byName);
  return result;
}

void writeLeaf(std::string& bytes, const RegfChildLists::Leaf& leaf, std::uint32_t minor,
               std::vector<Entry>::const_iterator entry) {
  const std::size_t place = RegfCells::place(leaf.cell);
  if (bytes[place + 1] == 'h' && minor < 5) bytes[place + 1] = 'f';
  const char kind = bytes[place + 1];
  const std::size_t step = kind == 'i' ? 4 : 8;
  for (std::size_t i = 0; i < leaf.count; ++i, ++entry) {
    const std::size_t at = place + 4 + i * step;
    write32(bytes, at, entry->key);
    if (kind == 'i') continue;
    const bool asItWas = !entry->isNew && entry->kind == kind;
    const std::uint32_t made = kind == 'f' ? hintOf(entry->name) : hashOf(entry->sortName);
    write32(bytes, at + 4, asItWas ? entry->hint : made);
  }
}

}  // namespace

RegfStoredName storedRegfName(std::string_view text) {
  const std::u16string units = unitsOf(text);
  const bool isNarrow = std::all_of(units.begin(), units.end(), [](char16_t c) { return c < 256; });
  if (!isNarrow) return {utf8ToUtf16le(text), 0};
  return {std::string(units.begin(), units.end()), static_cast<std::uint16_t>(!units.empty())};
}

Status setRegfKeyTime(std::string& bytes, RegfOffset offset, std::uint64_t time) {
  RegfKey key;
  if (const Status status = RegfCells(bytes).key(offset, key)) return status;
  write64(bytes, RegfCells::place(offset) + kKeyTime, time);
  return ERROR_SUCCESS;
}

Status setRegfValueNames(std::string& bytes, RegfOffset offset,
                         const std::vector<RegfStoredName>& names) {
  const RegfCells cells(bytes);
  RegfKey key;
  std::vector<RegfOffset> values;
  if (const Status status = cells.key(offset, key)) return status;
  if (const Status status = cells.valueList(key, values)) return status;
  if (values.size() != names.size()) return ERROR_BADDB;
  RegfValue value;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (const Status status = cells.value(values[i], value)) return status;
    if (value.name.bytes.size() != names[i].bytes.size()) return ERROR_BADDB;
    const std::size_t place = RegfCells::place(values[i]);
    write16(bytes, place + kValueFlags, names[i].flags);
    bytes.replace(place + kValueName, names[i].bytes.size(), names[i].bytes);
  }
  return ERROR_SUCCESS;
}

Status orderRegfChildren(std::string& bytes, RegfOffset offset, const std::set<RegfOffset>& added) {
  const RegfCells cells(bytes);
  RegfKey key;
  RegfChildLists lists;
  std::vector<Entry> entries;
  if (const Status status = cells.key(offset, key)) return status;
  if (const Status status = cells.childLists(key, lists)) return status;
  if (const Status status = readEntries(cells, lists, added, entries)) return status;
  entries = inOrder(std::move(entries));
  auto next = entries.cbegin();
  for (const RegfChildLists::Leaf& leaf : lists.leaves) {
    writeLeaf(bytes, leaf, read32(bytes, 24), next);
    next += leaf.count;
  }
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform
