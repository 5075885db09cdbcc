// Where Windows keeps its lists.
#include "main_window/shell_lists.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "engine/raw_value.h"
#include "engine/same_name.h"
#include "platform/file_change.h"

namespace korvex::main_window {

using foundation::Session;
using platform::ERROR_SUCCESS;
using platform::HKEY_CURRENT_USER;
using platform::Status;

namespace {

// What is the list: the key with all beneath it, its own values, or one value of it.
enum class Part : std::uint8_t { Tree, Values, OneValue };

struct ListRow {
  ShellList list;
  std::string_view parent;  // of the user; "" for a key that has none
  std::string_view key;
  Part part = Part::Tree;
  std::string_view value = {};

  std::string path() const {
    return parent.empty() ? std::string(key) : fmt::format("{}\\{}", parent, key);
  }
};

constexpr std::string_view kExplorer = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer";
constexpr std::string_view kApplets = "Software\\Microsoft\\Windows\\CurrentVersion\\Applets";
constexpr std::string_view kBrowser = "Software\\Microsoft\\Internet Explorer";
constexpr std::string_view kPlayer = "Software\\Microsoft\\MediaPlayer\\Player";
constexpr std::string_view kSearchBar =
    "Software\\Microsoft\\Internet Explorer\\Explorer Bars\\"
    "{C4EE31F3-4768-11D2-BE5C-00A0C9A83DA1}";

constexpr std::array kLists{
    ListRow{ShellList::Documents, kExplorer, "RecentDocs"},
    ListRow{ShellList::TypedAddresses, kBrowser, "TypedURLs"},
    ListRow{ShellList::RunCommands, kExplorer, "RunMRU"},
    ListRow{ShellList::MenuOrder, kExplorer, "MenuOrder"},
    ListRow{ShellList::All, kExplorer, "RecentDocs"},
    ListRow{ShellList::All, kExplorer, "RunMRU"},
    ListRow{ShellList::All, kExplorer, "Doc Find Spec MRU"},
    ListRow{ShellList::All, kExplorer, "FindComputerMRU"},
    ListRow{ShellList::All, kExplorer, "PrnPortsMRU"},
    ListRow{ShellList::All, kExplorer, "StreamMRU", Part::Values},
    ListRow{ShellList::All, kExplorer, "Wallpaper\\MRU"},
    ListRow{ShellList::All, "", "InstallLocationsMRU"},
    ListRow{ShellList::All, kExplorer, "ComDlg32\\OpenSaveMRU"},
    ListRow{ShellList::All, kExplorer, "ComDlg32\\LastVisitedMRU"},
    ListRow{ShellList::All, kExplorer, "Map Network Drive MRU"},
    ListRow{ShellList::All, kSearchBar, "FilesNamedMRU"},
    ListRow{ShellList::All, kSearchBar, "ContainingTextMRU"},
    ListRow{ShellList::All, kSearchBar, "ComputerNameMRU"},
    ListRow{ShellList::All, kApplets, "Wordpad\\Recent File List"},
    ListRow{ShellList::All, kApplets, "Paint\\Recent File List"},
    ListRow{ShellList::All, kApplets, "Regedit", Part::OneValue, "LastKey"},
    ListRow{ShellList::All, kPlayer, "RecentFileList"},
    ListRow{ShellList::All, kPlayer, "RecentURLList"},
};

// A list's own book-keeping is no entry of it.
bool isOrder(std::string_view name) {
  return name.empty() || engine::sameName(name, "MRUList") || engine::sameName(name, "MRUListEx");
}

// Names of a key's values; none where it is missing.
Status listValues(Session& session, const std::string& path, std::vector<std::string>& names) {
  platform::Registry& registry = session.registry();
  const platform::OpenKey key(registry, HKEY_CURRENT_USER, path, platform::KEY_READ);
  if (key.status() != ERROR_SUCCESS) return engine::missingIsFine(key.status());
  char name[platform::kNameBufferBytes];
  for (std::uint32_t i = 0;; ++i) {
    std::uint32_t length = sizeof name;
    const Status status =
        registry.RegEnumValueA(key.get(), i, name, &length, nullptr, nullptr, nullptr);
    if (status == platform::ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
    if (status != ERROR_SUCCESS) return status;
    names.emplace_back(name, length);
  }
}

int countValues(Session& session, const std::string& path, Part part) {
  std::vector<std::string> names;
  listValues(session, path, names);
  auto count = static_cast<int>(
      std::ranges::count_if(names, [](const std::string& name) { return !isOrder(name); }));
  if (part != Part::Tree) return count;
  std::vector<std::string> children;
  engine::listSubKeys(session.registry(), HKEY_CURRENT_USER, path, platform::KEY_READ, children);
  for (const std::string& child : children) {
    count += countValues(session, path + '\\' + child, part);
  }
  return count;
}

int countRow(Session& session, const ListRow& row) {
  if (row.part != Part::OneValue) return countValues(session, row.path(), row.part);
  engine::RawValue value;
  return engine::readRawValue(session.registry(), HKEY_CURRENT_USER, row.path(), row.value,
                              value) == ERROR_SUCCESS
             ? 1
             : 0;
}

// The shortcuts of the Documents menu; what makes the folder special stays. A folder that is not
// there has none.
Status listDocuments(Session& session, std::vector<std::string>& paths) {
  const std::string& folder = session.pd.RecentPath;
  if (folder.empty()) return ERROR_SUCCESS;
  std::vector<platform::FileEntry> entries;
  const Status status = session.files().list(folder + "\\*.*", entries);
  if (status == platform::ERROR_PATH_NOT_FOUND) return ERROR_SUCCESS;
  for (const platform::FileEntry& entry : entries) {
    const bool isFolder = (entry.attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (!isFolder && !engine::sameName(entry.name, "desktop.ini")) {
      paths.push_back(folder + '\\' + entry.name);
    }
  }
  return engine::missingIsFine(status);
}

Status removeDocuments(Session& session, platform::Files& files) {
  std::vector<std::string> paths;
  Status status = listDocuments(session, paths);
  for (const std::string& path : paths) {
    std::uint32_t attributes = 0;
    if (status == ERROR_SUCCESS) status = files.attributes(path, attributes);
    if (status == ERROR_SUCCESS && (attributes & platform::FILE_ATTRIBUTE_READONLY) != 0) {
      status = files.setAttributes(path, attributes & ~platform::FILE_ATTRIBUTE_READONLY);
    }
    if (status == ERROR_SUCCESS) status = files.remove(path);
  }
  return status;
}

Status clearRow(Session& session, const ListRow& row) {
  const std::string path = row.path();
  if (row.part == Part::Tree) {
    return engine::missingIsFine(session.regTool.DeleteRegNodes(HKEY_CURRENT_USER, path));
  }
  std::vector<std::string> names{std::string(row.value)};
  Status status = ERROR_SUCCESS;
  if (row.part == Part::Values) {
    names.clear();
    status = listValues(session, path, names);
  }
  for (const std::string& name : names) {
    if (status != ERROR_SUCCESS) break;
    status = engine::missingIsFine(session.regTool.DeleteRegValue(HKEY_CURRENT_USER, path, name));
  }
  return status;
}

}  // namespace

int countEntries(ShellList list, Session& session) {
  std::vector<std::string> paths;
  if (list == ShellList::Documents) listDocuments(session, paths);
  // The registry names the same documents once more.
  if (!paths.empty()) return static_cast<int>(paths.size());
  int count = 0;
  for (const ListRow& row : kLists) {
    if (row.list == list) count += countRow(session, row);
  }
  return count;
}

Status clearList(ShellList list, Session& session) {
  platform::RegistryChange change(session.registry());
  platform::FileChange files(session.files());
  Status status = change.status();
  if (status == ERROR_SUCCESS && list == ShellList::Documents) {
    status = removeDocuments(session, files);
  }
  for (const ListRow& row : kLists) {
    if (row.list != list || status != ERROR_SUCCESS) continue;
    status = clearRow(session, row);
  }
  if (status == ERROR_SUCCESS) status = change.commit();
  if (status == ERROR_SUCCESS) files.commit();
  return status;
}

}  // namespace korvex::main_window
