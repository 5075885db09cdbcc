// Finding keys by path.
#include "platform/embedded/key_paths.h"

#include <fmt/format.h>

#include <cstring>
#include <utility>

#include "platform/embedded/database_file.h"

namespace korvex::platform {
namespace {

constexpr std::size_t kMostRemembered = 1024;
constexpr std::string_view kControlSetAlias = "CurrentControlSet";
constexpr std::uint32_t kMostControlSets = 999;

// Takes the first part of a path off it.
std::string_view takePart(std::string_view& path) {
  const std::size_t end = path.find('\\');
  const std::string_view part = path.substr(0, end);
  path = end == std::string_view::npos ? std::string_view() : path.substr(end + 1);
  return part;
}

}  // namespace

Status KeyPaths::check(std::string_view path) const {
  if (path.empty()) return ERROR_SUCCESS;
  if (path.front() == '\\' || path.back() == '\\') return ERROR_BAD_PATHNAME;
  while (!path.empty()) {
    const std::string_view part = takePart(path);
    if (part.empty()) return ERROR_BAD_PATHNAME;
    const Status status = rules_.checkName(part);
    if (status != ERROR_SUCCESS) return status;
  }
  return ERROR_SUCCESS;
}

Status KeyPaths::currentControlSet(std::int64_t parent, std::string& name) {
  FoundKey found;
  std::int64_t system = 0;
  StoredKey* select = nullptr;
  Status status = store_.find(kMachineKey, "SYSTEM", system);
  if (status != ERROR_SUCCESS || system != parent) return ERROR_FILE_NOT_FOUND;
  status = store_.find(parent, "Select", found.key);
  if (status == ERROR_SUCCESS) status = store_.load(found.key, select);
  if (status != ERROR_SUCCESS) return status;
  const std::size_t position = select->values.find("Current");
  if (position == ValueBlob::kNone) return ERROR_FILE_NOT_FOUND;
  const auto value = select->values.at(position);
  std::uint32_t number = 0;
  if (value.type != REG_DWORD || value.data.size() != sizeof number) return ERROR_FILE_NOT_FOUND;
  std::memcpy(&number, value.data.data(), sizeof number);
  if (number > kMostControlSets) return ERROR_FILE_NOT_FOUND;
  name = fmt::format("ControlSet{:03}", number);
  return ERROR_SUCCESS;
}

Status KeyPaths::step(std::int64_t parent, std::string_view name, FoundKey& found) {
  found.fixed = false;
  if (family_ == Family::Nt && name.size() == kControlSetAlias.size() &&
      namesMatch(name, kControlSetAlias)) {
    std::string target;
    const Status status = currentControlSet(parent, target);
    if (status == ERROR_SUCCESS) {
      found.fixed = true;
      return store_.find(parent, target, found.key);
    }
    if (status != ERROR_FILE_NOT_FOUND) return status;
  }
  return store_.find(parent, name, found.key);
}

Status KeyPaths::find(std::int64_t start, std::string_view path, FoundKey& found) {
  found = {start, false};
  if (path.empty()) return ERROR_SUCCESS;
  const bool isLong = path.find('\\') != std::string_view::npos;
  if (isLong) {
    memoryKey_.assign(reinterpret_cast<const char*>(&start), sizeof start);
    memoryKey_.append(path);
    const auto remembered = memory_.find(memoryKey_);
    if (remembered != memory_.end()) {
      found = remembered->second;
      return ERROR_SUCCESS;
    }
  }
  while (!path.empty()) {
    const Status status = step(found.key, takePart(path), found);
    if (status != ERROR_SUCCESS) return status;
  }
  if (isLong) {
    if (memory_.size() >= kMostRemembered) memory_.clear();
    memory_.emplace(memoryKey_, found);
  }
  return ERROR_SUCCESS;
}

Status KeyPaths::create(std::int64_t start, std::string_view path, bool allowed, FoundKey& found,
                        bool& created) {
  found = {start, false};
  created = false;
  while (!path.empty()) {
    const std::int64_t parent = found.key;
    const std::string_view name = takePart(path);
    Status status = step(parent, name, found);
    created = status == ERROR_FILE_NOT_FOUND;
    if (created && !allowed) return ERROR_ACCESS_DENIED;
    if (created) {
      std::string target(name);
      if (found.fixed) status = currentControlSet(parent, target);
      if (status == ERROR_FILE_NOT_FOUND || status == ERROR_SUCCESS) {
        status = store_.create(parent, target, found.key);
      }
    }
    if (status != ERROR_SUCCESS) return status;
  }
  return ERROR_SUCCESS;
}

KeyPaths::Root KeyPaths::rootOf(HKEY root) const {
  const bool nt = family_ == Family::Nt;
  switch (root) {
    case HKEY_CLASSES_ROOT:
      return {kMachineKey, "Software\\Classes"};
    case HKEY_CURRENT_USER:
      return {kUsersKey, userKey_};
    case HKEY_LOCAL_MACHINE:
      return {kMachineKey, ""};
    case HKEY_USERS:
      return {kUsersKey, ""};
    case HKEY_CURRENT_CONFIG:
      return {kMachineKey,
              nt ? "SYSTEM\\CurrentControlSet\\Hardware Profiles\\Current" : "Config\\0001"};
    default:
      return {};
  }
}

Status KeyPaths::findRoot(HKEY root, std::int64_t& key) {
  const Root place = rootOf(root);
  if (place.base == 0) return ERROR_INVALID_HANDLE;
  std::int64_t& known = roots_[root - HKEY_CLASSES_ROOT];
  if (known == 0) {
    FoundKey found;
    const Status status = find(place.base, place.path, found);
    if (status != ERROR_SUCCESS) return status;
    known = found.key;
  }
  key = known;
  return ERROR_SUCCESS;
}

Status KeyPaths::createRoot(HKEY root, std::int64_t& key) {
  const Root place = rootOf(root);
  if (place.base == 0) return ERROR_INVALID_HANDLE;
  FoundKey found;
  bool created = false;
  const Status status = create(place.base, place.path, true, found, created);
  key = found.key;
  return status;
}

Status KeyPaths::isUserKey(std::int64_t key, bool& result) {
  std::int64_t user = 0;
  const Status status = findRoot(HKEY_CURRENT_USER, user);
  result = status == ERROR_SUCCESS && user == key;
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

void KeyPaths::forget() {
  memory_.clear();
  roots_.fill(0);
}

}  // namespace korvex::platform
