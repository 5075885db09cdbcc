// Where Windows keeps its lists.
#include "main_window/shell_lists.h"

#include <fmt/format.h>

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

struct ListRow {
  ShellList list;
  std::string_view parent;  // of the user
  std::string_view key;
  std::string_view value = {};  // "" for the whole key

  std::string path() const { return fmt::format("{}\\{}", parent, key); }
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
    ListRow{ShellList::All, kExplorer, "StreamMRU"},
    ListRow{ShellList::All, kExplorer, "ComDlg32\\OpenSaveMRU"},
    ListRow{ShellList::All, kExplorer, "ComDlg32\\LastVisitedMRU"},
    ListRow{ShellList::All, kExplorer, "Map Network Drive MRU"},
    ListRow{ShellList::All, kSearchBar, "FilesNamedMRU"},
    ListRow{ShellList::All, kSearchBar, "ContainingTextMRU"},
    ListRow{ShellList::All, kSearchBar, "ComputerNameMRU"},
    ListRow{ShellList::All, kApplets, "Wordpad\\Recent File List"},
    ListRow{ShellList::All, kApplets, "Paint\\Recent File List"},
    ListRow{ShellList::All, kApplets, "Regedit", "LastKey"},
    ListRow{ShellList::All, kPlayer, "RecentFileList"},
    ListRow{ShellList::All, kPlayer, "RecentURLList"},
};

// A list's own book-keeping is no entry of it.
bool isOrder(std::string_view name) {
  return name.empty() || engine::sameName(name, "MRUList") || engine::sameName(name, "MRUListEx");
}

int countValues(Session& session, const std::string& path) {
  platform::Registry& registry = session.registry();
  const platform::OpenKey key(registry, HKEY_CURRENT_USER, path, platform::KEY_READ);
  if (key.status() != ERROR_SUCCESS) return 0;
  int count = 0;
  char name[platform::kNameBufferBytes];
  for (std::uint32_t i = 0;; ++i) {
    std::uint32_t length = sizeof name;
    if (registry.RegEnumValueA(key.get(), i, name, &length, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      break;
    }
    if (!isOrder({name, length})) ++count;
  }
  std::vector<std::string> children;
  engine::listSubKeys(registry, HKEY_CURRENT_USER, path, platform::KEY_READ, children);
  for (const std::string& child : children) count += countValues(session, path + '\\' + child);
  return count;
}

int countRow(Session& session, const ListRow& row) {
  if (row.value.empty()) return countValues(session, row.path());
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
    status = engine::missingIsFine(
        row.value.empty()
            ? session.regTool.DeleteRegNodes(HKEY_CURRENT_USER, row.path())
            : session.regTool.DeleteRegValue(HKEY_CURRENT_USER, row.path(), row.value));
  }
  if (status == ERROR_SUCCESS) status = change.commit();
  if (status == ERROR_SUCCESS) files.commit();
  return status;
}

}  // namespace korvex::main_window
