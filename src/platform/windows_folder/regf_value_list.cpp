// Gathers the values of a key and hands them to hivex in one call, which takes new space each time.
#include "platform/windows_folder/regf_value_list.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/text/text.h"

namespace korvex::platform {

namespace {

// As many characters, of one byte or of two.
std::string standIn(const RegfStoredName& name) {
  if ((name.flags & 1) != 0 || name.bytes.empty()) return std::string(name.bytes.size(), 'x');
  std::string result;
  for (std::size_t i = 0; i < name.bytes.size() / 2; ++i) result += "\xE4\xB8\x80";
  return result;
}

}  // namespace

Status statusOfHivex(int error) {
  switch (error) {
    case EEXIST:
      return ERROR_ALREADY_EXISTS;
    case ERANGE:
      return ERROR_NO_SYSTEM_RESOURCES;
    case ENOMEM:
      return ERROR_OUTOFMEMORY;
    default:
      return ERROR_BADDB;
  }
}

void RegfValueList::add(const std::string& name, Value value) {
  byName_.emplace(foldName(name), values_.size());
  values_.push_back(std::move(value));
}

Status RegfValueList::read(const RegfCells& cells, RegfOffset key) {
  RegfKey record;
  std::vector<RegfOffset> offsets;
  if (const Status status = cells.key(key, record)) return status;
  if (const Status status = cells.valueList(record, offsets)) return status;
  RegfValue value;
  for (const RegfOffset each : offsets) {
    if (const Status status = cells.value(each, value)) return status;
    if (value.inPieces) return ERROR_NOT_SUPPORTED;
    Value kept;
    kept.name = {std::string(value.name.bytes), value.flags};
    kept.type = value.type;
    if (const Status status = cells.data(value, kept.data)) return status;
    add(value.name.text(), std::move(kept));
  }
  return ERROR_SUCCESS;
}

void RegfValueList::set(std::string_view name, RegType type, std::string data) {
  const auto found = byName_.find(foldName(name));
  if (found == byName_.end()) {
    add(std::string(name), {storedRegfName(name), type, std::move(data), false});
    return;
  }
  values_[found->second].type = type;
  values_[found->second].data = std::move(data);
}

bool RegfValueList::erase(std::string_view name) {
  const auto found = byName_.find(foldName(name));
  if (found == byName_.end()) return false;
  values_[found->second].erased = true;
  byName_.erase(found);
  return true;
}

Status RegfValueList::handOver(hive_h* hive, hive_node_h key) const {
  std::vector<std::string> names;
  std::vector<hive_set_value> sets;
  names.reserve(values_.size());  // the sets point into it
  for (const Value& each : values_) {
    if (each.erased) continue;
    names.push_back(standIn(each.name));
    hive_set_value set{};
    set.key = names.back().data();
    // Whatever the number: the type in hivex.h lists the known ones only.
    static_assert(sizeof set.t == sizeof each.type);
    std::memcpy(&set.t, &each.type, sizeof set.t);
    set.len = each.data.size();
    set.value = const_cast<char*>(each.data.data());
    sets.push_back(set);
  }
  errno = 0;
  const int result = hivex_node_set_values(hive, key, sets.size(), sets.data(), 0);
  return result == 0 ? ERROR_SUCCESS : statusOfHivex(errno);
}

std::vector<RegfStoredName> RegfValueList::names() const {
  std::vector<RegfStoredName> names;
  for (const Value& each : values_) {
    if (!each.erased) names.push_back(each.name);
  }
  return names;
}

}  // namespace korvex::platform
