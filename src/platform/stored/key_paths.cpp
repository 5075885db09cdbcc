// Finding keys by path.
#include "platform/stored/key_paths.h"

#include <fmt/format.h>

#include <cstring>
#include <utility>

namespace korvex::platform {
namespace {

constexpr std::size_t kMostRemembered = 1024;
constexpr std::string_view kControlSetAlias = "CurrentControlSet";
constexpr std::string_view kFirstControlSet = "ControlSet001";
constexpr std::uint32_t kMostControlSets = 999;
constexpr std::string_view kKernelMachine = "\\Registry\\Machine";
constexpr std::string_view kKernelUser = "\\Registry\\User";
constexpr int kMostLinks = 8;

bool isFirstControlSet(std::string_view name) {
  return name.size() == kFirstControlSet.size() && namesMatch(name, kFirstControlSet);
}

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

// A link's target is told as the kernel names it. Links to links are followed only so far, as on
// Windows; what leads nowhere is not there.
Status KeyPaths::followLink(FoundKey& found) {
  std::string target;
  const Status status = store_.linkTarget(found.key, target);
  if (status != ERROR_SUCCESS || target.empty()) return status;
  const std::string_view path = target;
  std::int64_t base = 0;
  std::size_t length = 0;
  for (const auto& [name, key] :
       {std::pair{kKernelMachine, kMachineKey}, std::pair{kKernelUser, kUsersKey}}) {
    if (path.size() <= name.size() || path[name.size()] != '\\') continue;
    if (!namesMatch(path.substr(0, name.size()), name)) continue;
    base = key;
    length = name.size() + 1;
  }
  if (base == 0 || links_ >= kMostLinks) return ERROR_FILE_NOT_FOUND;
  ++links_;
  const Status followed = find({base}, path.substr(length), found);
  --links_;
  found.fixed = true;
  return followed;
}

Status KeyPaths::stepInOne(std::int64_t parent, std::string_view name, FoundKey& found) {
  found = {};
  if (places_.family == Family::Nt && name.size() == kControlSetAlias.size() &&
      namesMatch(name, kControlSetAlias)) {
    std::string target;
    const Status status = currentControlSet(parent, target);
    if (status == ERROR_SUCCESS) {
      found.fixed = true;
      const Status numbered = store_.find(parent, target, found.key);
      if (numbered != ERROR_FILE_NOT_FOUND) return numbered;
      // Wine tells a number and has the set under this very name.
      return store_.find(parent, name, found.key);
    }
    if (status != ERROR_FILE_NOT_FOUND) return status;
  }
  Status status = store_.find(parent, name, found.key);
  if (status == ERROR_FILE_NOT_FOUND && isFirstControlSet(name)) {
    status = onlyControlSet(parent, found);
  }
  return status == ERROR_SUCCESS ? followLink(found) : status;
}

// A registry that has no numbered control sets, but one that is called the current one, is Wine's.
Status KeyPaths::onlyControlSet(std::int64_t parent, FoundKey& found) {
  std::int64_t system = 0;
  const Status status = store_.find(kMachineKey, "SYSTEM", system);
  if (status != ERROR_SUCCESS || system != parent) return ERROR_FILE_NOT_FOUND;
  const Status there = store_.find(parent, kControlSetAlias, found.key);
  found.fixed = there == ERROR_SUCCESS;
  return there;
}

Status KeyPaths::step(const FoundKey& parent, std::string_view name, FoundKey& found) {
  const FoundKey from = parent;  // may be the same object as found
  if (from.under == 0) return stepInOne(from.key, name, found);
  FoundKey upper;
  FoundKey lower;
  const Status above = stepInOne(from.key, name, upper);
  if (above != ERROR_SUCCESS && above != ERROR_FILE_NOT_FOUND) return above;
  const Status below = stepInOne(from.under, name, lower);
  if (below != ERROR_SUCCESS && below != ERROR_FILE_NOT_FOUND) return below;
  found = above == ERROR_SUCCESS ? upper : lower;
  if (above == ERROR_SUCCESS && below == ERROR_SUCCESS) found.under = lower.key;
  return above == ERROR_SUCCESS ? above : below;
}

Status KeyPaths::find(const FoundKey& start, std::string_view path, FoundKey& found) {
  found = start;
  if (path.empty()) return ERROR_SUCCESS;
  const bool isLong = path.find('\\') != std::string_view::npos && links_ == 0;
  if (isLong) {
    memoryKey_.assign(reinterpret_cast<const char*>(&start.key), sizeof start.key);
    memoryKey_.append(start.under == 0 ? "." : "=").append(path);
    const auto remembered = memory_.find(memoryKey_);
    if (remembered != memory_.end()) {
      found = remembered->second;
      return ERROR_SUCCESS;
    }
  }
  while (!path.empty()) {
    const Status status = step(found, takePart(path), found);
    if (status != ERROR_SUCCESS) return status;
  }
  if (isLong) {
    if (memory_.size() >= kMostRemembered) memory_.clear();
    memory_.emplace(memoryKey_, found);
  }
  return ERROR_SUCCESS;
}

Status KeyPaths::create(const FoundKey& start, std::string_view path, bool allowed, FoundKey& found,
                        bool& created) {
  found = start;
  created = false;
  while (!path.empty()) {
    const std::int64_t parent = found.under != 0 ? found.under : found.key;
    const std::string_view name = takePart(path);
    Status status = step(found, name, found);
    created = status == ERROR_FILE_NOT_FOUND;
    if (created && !allowed) return ERROR_ACCESS_DENIED;
    if (created) {
      std::string target(name);
      if (found.fixed) status = currentControlSet(parent, target);
      // A link that leads nowhere stands under this name.
      if (status == ERROR_FILE_NOT_FOUND && found.fixed) return ERROR_ACCESS_DENIED;
      found = {};
      if (status == ERROR_FILE_NOT_FOUND || status == ERROR_SUCCESS) {
        status = store_.create(parent, target, found.key);
      }
    }
    if (status != ERROR_SUCCESS) return status;
  }
  return ERROR_SUCCESS;
}

KeyPaths::Root KeyPaths::rootOf(HKEY root) const {
  switch (root) {
    case HKEY_CLASSES_ROOT:
      return {kMachineKey, "Software\\Classes"};
    case HKEY_CURRENT_USER:
      return {kUsersKey, places_.userKey};
    case HKEY_LOCAL_MACHINE:
      return {kMachineKey, ""};
    case HKEY_USERS:
      return {kUsersKey, ""};
    case HKEY_CURRENT_CONFIG:
      return {kMachineKey, places_.configKey};
    default:
      return {};
  }
}

// Puts the user's classes over the machine's where there are such.
Status KeyPaths::findClasses(FoundKey& classes) {
  FoundKey user;
  const Status status = find({kUsersKey}, places_.userClasses, user);
  if (status == ERROR_SUCCESS) classes = {user.key, classes.key, true};
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

Status KeyPaths::findRoot(HKEY root, FoundKey& key) {
  const Root place = rootOf(root);
  if (place.base == 0) return ERROR_INVALID_HANDLE;
  FoundKey& known = roots_[root - HKEY_CLASSES_ROOT];
  if (known.key == 0) {
    FoundKey found;
    Status status = find({place.base}, place.path, found);
    if (status == ERROR_SUCCESS && root == HKEY_CLASSES_ROOT && !places_.userClasses.empty()) {
      status = findClasses(found);
    }
    if (status != ERROR_SUCCESS) return status;
    known = found;
  }
  key = known;
  return ERROR_SUCCESS;
}

Status KeyPaths::createRoot(HKEY root, std::int64_t& key) {
  const Root place = rootOf(root);
  if (place.base == 0) return ERROR_INVALID_HANDLE;
  FoundKey found;
  bool created = false;
  const Status status = create({place.base}, place.path, true, found, created);
  key = found.key;
  return status;
}

Status KeyPaths::isUserKey(std::int64_t key, bool& result) {
  FoundKey user;
  const Status status = findRoot(HKEY_CURRENT_USER, user);
  result = status == ERROR_SUCCESS && user.key == key;
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

void KeyPaths::forget() {
  memory_.clear();
  roots_.fill({});
}

}  // namespace korvex::platform
