// Reading a key that may lie over another one.
#include "platform/stored/key_view.h"

#include <algorithm>
#include <utility>

#include "platform/stored/names.h"

namespace korvex::platform {
namespace {

void noteValue(const ValueBlob::Value& value, KeyInfo& info) {
  const auto name = static_cast<std::uint32_t>(value.name.size());
  const auto data = static_cast<std::uint32_t>(value.data.size());
  info.longestValueName = std::max(info.longestValueName, name);
  info.longestValueData = std::max(info.longestValueData, data);
  ++info.values;
}

}  // namespace

Status KeyView::value(const LayeredKey& key, std::string_view name, ValueBlob::Value& value) {
  for (const std::int64_t id : {key.key, key.under}) {
    if (id == 0) continue;
    StoredKey* stored = nullptr;
    const Status status = store_.load(id, stored);
    if (status != ERROR_SUCCESS) return status;
    const std::size_t position = stored->values.find(name);
    if (position == ValueBlob::kNone) continue;
    value = stored->values.at(position);
    return ERROR_SUCCESS;
  }
  return ERROR_FILE_NOT_FOUND;
}

Status KeyView::valueAt(const LayeredKey& key, std::size_t index, ValueBlob::Value& value) {
  StoredKey* stored = nullptr;
  Status status = store_.load(key.key, stored);
  if (status != ERROR_SUCCESS) return status;
  const std::size_t own = stored->values.count();
  if (index < own) {
    value = stored->values.at(stored->values.position(index));
    return ERROR_SUCCESS;
  }
  if (key.under == 0) return ERROR_NO_MORE_ITEMS;
  std::set<std::string> seen;
  for (std::size_t i = 0; i < own; ++i) {
    seen.insert(foldName(stored->values.at(stored->values.position(i)).name));
  }
  status = store_.load(key.under, stored);
  if (status != ERROR_SUCCESS) return status;
  index -= own;
  for (std::size_t i = 0; i < stored->values.count(); ++i) {
    value = stored->values.at(stored->values.position(i));
    if (!seen.contains(foldName(value.name)) && index-- == 0) return ERROR_SUCCESS;
  }
  return ERROR_NO_MORE_ITEMS;
}

Status KeyView::addChildren(std::int64_t key, std::set<std::string>& seen,
                            std::vector<std::pair<std::string, std::int64_t>>& children) {
  StoredKey* child = nullptr;
  Status status = ERROR_SUCCESS;
  for (std::size_t i = 0; (status = store_.childAt(key, i, child)) == ERROR_SUCCESS; ++i) {
    if (seen.insert(child->folded).second) children.emplace_back(child->folded, child->id);
  }
  return status == ERROR_NO_MORE_ITEMS ? ERROR_SUCCESS : status;
}

Status KeyView::merge(const LayeredKey& key) {
  if (merged_.key == key.key && merged_.under == key.under) return ERROR_SUCCESS;
  forget();
  std::set<std::string> seen;
  std::vector<std::pair<std::string, std::int64_t>> children;
  Status status = addChildren(key.key, seen, children);
  if (status == ERROR_SUCCESS) status = addChildren(key.under, seen, children);
  if (status != ERROR_SUCCESS) return status;
  std::sort(children.begin(), children.end());
  children_.clear();
  for (const auto& [name, id] : children) children_.push_back(id);
  merged_ = key;
  return ERROR_SUCCESS;
}

Status KeyView::childAt(const LayeredKey& key, std::size_t index, StoredKey*& child) {
  if (key.under == 0) return store_.childAt(key.key, index, child);
  const Status status = merge(key);
  if (status != ERROR_SUCCESS) return status;
  return index < children_.size() ? store_.load(children_[index], child) : ERROR_NO_MORE_ITEMS;
}

Status KeyView::info(const LayeredKey& key, KeyInfo& info) {
  KeyInfo result;
  StoredKey* stored = nullptr;
  Status status = store_.load(key.key, stored);
  if (status != ERROR_SUCCESS) return status;
  ValueBlob::Value value;
  if (key.under == 0) {
    for (std::size_t i = 0; i < stored->values.count(); ++i) {
      noteValue(stored->values.at(stored->values.position(i)), result);
    }
    std::size_t children = 0;
    std::size_t longest = 0;
    status = store_.countChildren(key.key, children, longest);
    result.subKeys = static_cast<std::uint32_t>(children);
    result.longestSubKeyName = static_cast<std::uint32_t>(longest);
    if (status == ERROR_SUCCESS) info = result;
    return status;
  }
  for (std::size_t i = 0; (status = valueAt(key, i, value)) == ERROR_SUCCESS; ++i) {
    noteValue(value, result);
  }
  if (status != ERROR_NO_MORE_ITEMS) return status;
  for (std::size_t i = 0; (status = childAt(key, i, stored)) == ERROR_SUCCESS; ++i) {
    ++result.subKeys;
    result.longestSubKeyName =
        std::max(result.longestSubKeyName, static_cast<std::uint32_t>(stored->name.size()));
  }
  if (status != ERROR_NO_MORE_ITEMS) return status;
  info = result;
  return ERROR_SUCCESS;
}

Status KeyView::hasChildren(const LayeredKey& key, bool& result) {
  const Status status = store_.hasChildren(key.key, result);
  if (status != ERROR_SUCCESS || result || key.under == 0) return status;
  return store_.hasChildren(key.under, result);
}

}  // namespace korvex::platform
