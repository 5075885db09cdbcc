// Records of sets in the registry, and their names.
#include "backup/config_set.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "backup/categories.h"
#include "backup/set_record.h"
#include "foundation/reg_value.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::Session;
using namespace platform;

namespace {

constexpr std::string_view kConfiguration = "SOFTWARE\\Korvex\\Configuration";
constexpr std::string_view kForbidden = "\\/:*?\"<>|";
constexpr std::size_t kLongestName = 100;

std::string setKey(std::string_view name) { return fmt::format("{}\\{}", kSetsKey, name); }

bool isDevice(std::string_view name) {
  static constexpr std::array<std::string_view, 4> kDevices{"CON", "PRN", "AUX", "NUL"};
  const std::string_view stem = name.substr(0, name.find('.'));
  const bool numbered = stem.size() == 4 && stem[3] >= '0' && stem[3] <= '9' &&
                        (sameName(stem.substr(0, 3), "COM") || sameName(stem.substr(0, 3), "LPT"));
  return numbered || std::ranges::any_of(kDevices, [stem](auto d) { return sameName(d, stem); });
}

// One part of a path: nothing that leads anywhere else.
bool isFileName(std::string_view name) {
  if (name.empty() || name.back() == '.' || name.back() == ' ' || isDevice(name)) return false;
  return std::none_of(name.begin(), name.end(), [](char c) {
    return (c >= 0 && c < ' ') || kForbidden.find(c) != std::string_view::npos;
  });
}

Status readValues(Session& session, const std::string& path, ConfigSet& set) {
  const OpenKey key(session.registry(), HKEY_LOCAL_MACHINE, path, KEY_READ);
  if (key.status() != ERROR_SUCCESS) return key.status();
  for (std::uint32_t i = 0;; ++i) {
    std::string name;
    foundation::Variant value;
    RegType type = REG_NONE;
    const Status status = session.regTool.GetRegValueNext(key.get(), i, name, value, type, false);
    if (status == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
    if (status != ERROR_SUCCESS) return status;
    if (type == REG_DWORD) {
      const bool holds = session.regTool.GetRegInt(path, name, HKEY_LOCAL_MACHINE) != 0;
      takeRecordFlag(name, holds, set);
    } else {
      takeRecordText(name, session.regTool.GetRegStr(path, name, HKEY_LOCAL_MACHINE), set);
    }
  }
}

}  // namespace

bool ConfigSet::holds(std::string_view tag) const {
  return std::ranges::any_of(tags, [tag](const std::string& one) { return sameName(one, tag); });
}

bool isFileInSet(std::string_view file) {
  while (!file.empty()) {
    const std::size_t slash = file.find('\\');
    if (!isFileName(file.substr(0, slash))) return false;
    if (slash == std::string_view::npos) return true;
    file.remove_prefix(slash + 1);
  }
  return false;
}

std::string whyNoSetName(std::string_view name) {
  if (name.empty()) return "Type a name for the save first.";
  if (characterCount(name) > kLongestName) {
    return fmt::format("A name may have {} characters at most.", kLongestName);
  }
  if (!isFileName(name) || name.front() == ' ' || name.front() == '.') {
    return "The name of a save is the name of its folder: it may not hold \\ / : * ? \" < > |, "
           "begin or end with a blank or a dot, or be the name of a device.";
  }
  for (const std::string_view ending : {".kvxnew", ".kvxold"}) {
    if (name.size() > ending.size() && sameName(name.substr(name.size() - ending.size()), ending)) {
      return fmt::format("The ending {} is Korvex's own. Choose another name.", ending);
    }
  }
  return "";
}

std::string saveFolder(Session& session) {
  const std::string stored =
      session.regTool.GetRegStr(kConfiguration, "RegPath", HKEY_LOCAL_MACHINE);
  const bool isWhole = stored.size() > 1 && (stored[1] == ':' || stored.starts_with("\\\\"));
  std::string folder =
      isWhole ? stored
              : fmt::format("{}\\{}", session.g_sAppPath, stored.empty() ? "Registry" : stored);
  while (folder.size() > 3 && folder.back() == '\\') folder.pop_back();
  return folder;
}

std::vector<std::string> savedSets(Session& session) {
  std::vector<std::string> names;
  const OpenKey key(session.registry(), HKEY_LOCAL_MACHINE, kSetsKey, KEY_READ);
  if (key.status() != ERROR_SUCCESS) return names;
  for (std::uint32_t i = 0;; ++i) {
    std::string name;
    if (session.regTool.GetRegNodeNext(key.get(), i, name, i == 0) != ERROR_SUCCESS) break;
    names.push_back(name);
  }
  std::ranges::sort(names, {}, [](const std::string& name) { return foldName(name); });
  return names;
}

Status readRecord(Session& session, std::string_view name, ConfigSet& set, std::string& message) {
  set = {};
  set.name = name;
  const auto fail = [&](Status status, std::string_view why) {
    message = fmt::format("The save {}: {}", name, why);
    return status;
  };
  const Status status =
      name.empty() ? ERROR_FILE_NOT_FOUND : readValues(session, setKey(name), set);
  if (status == ERROR_FILE_NOT_FOUND) return fail(status, "there is no such save.");
  return status == ERROR_SUCCESS ? status : fail(status, describeStatus(status) + '.');
}

Status writeRecord(Session& session, const ConfigSet& set) {
  RegistryChange change(session.registry());
  Status status = change.status();
  if (status == ERROR_SUCCESS) status = deleteRecord(session, set.name);
  if (status == ERROR_FILE_NOT_FOUND) status = ERROR_SUCCESS;
  const std::string path = setKey(set.name);
  const auto write = [&](const std::string& key, std::string_view name,
                         const foundation::Variant& value) {
    if (status == ERROR_SUCCESS) {
      foundation::P_WriteRegValue(session, HKEY_LOCAL_MACHINE, key, name, value, KEY_ALL_ACCESS,
                                  true, &status);
    }
  };
  // REG_SZ whatever stands in it: a "%" would make other writers expand it.
  const auto writeText = [&](const std::string& key, std::string_view name,
                             const std::string& text) {
    HKEY opened = 0;
    std::uint32_t disposition = 0;
    if (status == ERROR_SUCCESS) {
      status = session.registry().RegCreateKeyExA(HKEY_LOCAL_MACHINE, key, KEY_ALL_ACCESS, opened,
                                                  disposition);
    }
    if (status != ERROR_SUCCESS) return;
    status = session.registry().RegSetValueExA(opened, name, REG_SZ, text.c_str(),
                                               static_cast<std::uint32_t>(text.size() + 1));
    session.registry().RegCloseKey(opened);
  };
  writeText(path, "Path", set.folder);
  writeText(path, "Saved", set.saved);
  writeText(path, "Windows", set.windows);
  writeText(path, "Computer", set.computer);
  writeText(path, "User", set.user);
  writeText(path, "Contents", set.contents);
  for (const Category& category : categories()) {
    write(path, category.tag, std::int32_t{set.holds(category.tag) ? 1 : 0});
  }
  return status == ERROR_SUCCESS ? change.commit() : status;
}

Status deleteRecord(Session& session, std::string_view name) {
  if (name.empty()) return ERROR_FILE_NOT_FOUND;
  return session.regTool.DeleteRegNodes(HKEY_LOCAL_MACHINE, setKey(name));
}

}  // namespace korvex::backup
