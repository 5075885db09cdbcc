// Keeping, listing and giving back.
#include "engine/taken_away.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ctime>

#include "engine/at_once.h"
#include "engine/copy_tree.h"
#include "engine/numeral_field.h"
#include "engine/raw_value.h"

namespace korvex::engine {

using platform::ERROR_SUCCESS;
using platform::Status;

namespace {

constexpr std::string_view kDeleted = "SOFTWARE\\Korvex\\Deleted";
constexpr std::string_view kContent = "Content";  // the subkey of a record
constexpr std::string_view kName = "Name";
constexpr std::string_view kKey = "Key";
constexpr std::string_view kValue = "Value";  // of a deleted value only
constexpr std::string_view kWhen = "When";
constexpr std::size_t kMostRecords = 100;

std::string now() {
  const std::time_t time = std::time(nullptr);
  std::tm local{};
  localtime_r(&time, &local);
  std::array<char, 32> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &local);
  return {text.data(), length};
}

}  // namespace

TakenAway::TakenAway(foundation::Session& session, Root root, std::string_view area)
    : session_(session), root_(root), area_(fmt::format("{}\\{}", kDeleted, area)) {}

std::string TakenAway::path(std::string_view id) const { return fmt::format("{}\\{}", area_, id); }

std::vector<TakenAway::Item> TakenAway::items() const {
  std::vector<std::string> ids;
  const Status listed = listSubKeys(session_.registry(), root_, area_, platform::KEY_READ, ids);
  if (missingIsFine(listed) != ERROR_SUCCESS) session_.trace.dump("lRetVal&", listed);
  std::vector<Item> result;
  for (const std::string& id : ids) {
    const auto text = [&](std::string_view name) {
      return session_.regTool.GetRegStr(path(id), name, root_);
    };
    RawValue value;
    const bool isValue =
        readRawValue(session_.registry(), root_, path(id), kValue, value) == ERROR_SUCCESS;
    result.push_back({id, text(kName), text(kKey), isValue, value.text(), text(kWhen)});
  }
  std::ranges::sort(result, [](const Item& one, const Item& other) {
    return numberIn(one.id).value_or(0) > numberIn(other.id).value_or(0);
  });
  return result;
}

Status TakenAway::record(std::string& content, std::string_view key, const std::string* value,
                         std::string_view name) {
  const std::vector<Item> there = items();
  const std::uint32_t last = there.empty() ? 0 : numberIn(there.front().id).value_or(0);
  const std::string to = path(fmt::format("{}", last + 1));
  content = fmt::format("{}\\{}", to, kContent);
  Status status = putText(session_, root_, to, kName, std::string(name));
  if (status == ERROR_SUCCESS) status = putText(session_, root_, to, kKey, std::string(key));
  if (status == ERROR_SUCCESS) status = putText(session_, root_, to, kWhen, now());
  if (status == ERROR_SUCCESS && value != nullptr) {
    status = putText(session_, root_, to, kValue, *value);
  }
  return status == ERROR_SUCCESS ? forgetOldest() : status;
}

Status TakenAway::forgetOldest() {
  const std::vector<Item> there = items();
  Status status = ERROR_SUCCESS;
  for (std::size_t i = kMostRecords; i < there.size() && status == ERROR_SUCCESS; ++i) {
    status = session_.regTool.DeleteRegNodes(root_, path(there[i].id));
  }
  return status;
}

Status TakenAway::removeTree(std::string_view key, std::string_view name) {
  Status status = platform::OpenKey(session_.registry(), root_, key, platform::KEY_READ).status();
  std::string content;
  if (status == ERROR_SUCCESS) status = record(content, key, nullptr, name);
  if (status == ERROR_SUCCESS) status = copyTree(session_, root_, std::string(key), root_, content);
  return status == ERROR_SUCCESS ? session_.regTool.DeleteRegNodes(root_, key) : status;
}

Status TakenAway::removeValue(std::string_view key, std::string_view value, std::string_view name) {
  RawValue data;
  Status status = readRawValue(session_.registry(), root_, key, value, data);
  std::string content;
  const std::string valueName(value);
  if (status == ERROR_SUCCESS) status = record(content, key, &valueName, name);
  if (status == ERROR_SUCCESS) status = putRaw(session_, root_, content, value, data);
  return status == ERROR_SUCCESS ? session_.regTool.DeleteRegValue(root_, key, value) : status;
}

Status TakenAway::takeBack(const Item& item) {
  const std::string content = fmt::format("{}\\{}", path(item.id), kContent);
  RawValue there;
  Status status =
      item.isValue
          ? readRawValue(session_.registry(), root_, item.key, item.value, there)
          : platform::OpenKey(session_.registry(), root_, item.key, platform::KEY_READ).status();
  if (status == ERROR_SUCCESS) return platform::ERROR_ALREADY_EXISTS;
  if (missingIsFine(status) != ERROR_SUCCESS) return status;
  if (item.isValue) {
    status = readRawValue(session_.registry(), root_, content, item.value, there);
    if (status == ERROR_SUCCESS) status = putRaw(session_, root_, item.key, item.value, there);
  } else {
    status = copyTree(session_, root_, content, root_, item.key);
  }
  return status == ERROR_SUCCESS ? session_.regTool.DeleteRegNodes(root_, path(item.id)) : status;
}

}  // namespace korvex::engine
