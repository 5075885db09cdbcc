// The folders of each Windows, and reading and writing their paths.
#include "dialogs/shell/shell_folder_paths.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "engine/at_once.h"
#include "engine/conditions.h"
#include "engine/tweak.h"
#include "foundation/detection.h"
#include "platform/text/text.h"

namespace korvex::dialogs {

using engine::Families;
using engine::k9x;
using engine::kEvery;
using engine::kNT;
using engine::kNT4;
using engine::kWin2000;
using engine::kWin95;
using engine::RawValue;
using namespace platform;

namespace {

constexpr std::string_view kPlainKey =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr std::string_view kUserKey =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";
constexpr std::string_view kUserProfile = "%USERPROFILE%";
constexpr const char* kNotDescribed = "A folder of this Windows that Korvex has no description of.";

struct FolderRow {
  std::string_view name;
  std::string_view description;
};
constexpr std::array kFolders{
    FolderRow{"AppData",
              "Parent directory used to store shortcuts for Explorer's Quick Launch bar, Outlook "
              "data files and common files for Outlook and Outlook Express."},
    FolderRow{"Cache", "Directory used to store Internet Explorer's cache files."},
    FolderRow{"Cookies", "Directory used to store Internet Explorer's cookie files."},
    FolderRow{"Desktop", "Directory used to store files on the Desktop."},
    FolderRow{"Favorites",
              "Directory used to store Internet Explorer's favorite files. The contents of this "
              "directory are viewable as Internet Explorer's Favorites list within IE, Explorer "
              "and on the Start Menu."},
    FolderRow{"Fonts",
              "Directory used to store and retrieve system fonts. It is not recommended that this "
              "path be changed."},
    FolderRow{"History",
              "Directory used to store Internet Explorer's history files. The contents of this "
              "directory constitute the browsing history of Internet Explorer."},
    FolderRow{"NetHood",
              "Hidden directory used to store objects that appear in Network Neighborhood."},
    FolderRow{"Personal",
              "Commonly known as the 'My Documents' folder. Common system folder used to store "
              "documents."},
    FolderRow{"PrintHood", "Hidden directory used to store shortcuts to printer folder items."},
    FolderRow{"Programs",
              "Directory that contains the system's program groups as seen on the Start Menu."},
    FolderRow{"Recent",
              "Hidden directory that contains shortcuts to the most recently used documents."},
    FolderRow{"SendTo",
              "Directory that contains items the user can send other items to in order to open "
              "them within the selected send to item."},
    FolderRow{"Start Menu", "Directory containing shortcuts found on the system's Start Menu."},
    FolderRow{"Startup", "Directory containing items that launch at system startup."},
    FolderRow{"Templates", "Hidden directory that contains shortcuts to template items."},
    FolderRow{"Content", "Hidden directory related to IE5."},
    FolderRow{"Local AppData", "Hidden directory related to NT5."},
    FolderRow{"Local Settings", "Hidden directory related to NT5."},
};

// Under what a default path stands: the user's folder, that of Windows, or the root of its drive.
enum class Base { User, Windows, Root };

// onlyWhereSet: these Windows get the folder with something else (Internet Explorer, Office), so
// it has a default only where it has a path.
struct DefaultRow {
  std::string_view name;
  Families families;
  Base base;
  std::string_view path;
  Families onlyWhereSet = 0;
};
constexpr Families kWithBrowser = kWin95 | kNT4;
constexpr std::array kDefaults{
    DefaultRow{"AppData", kEvery, Base::User, "Application Data", kWithBrowser},
    DefaultRow{"Cache", k9x | kNT4, Base::User, "Temporary Internet Files", kWithBrowser},
    DefaultRow{"Cache", kWin2000, Base::User, "Local Settings\\Temporary Internet Files"},
    DefaultRow{"Cookies", kEvery, Base::User, "Cookies", kWithBrowser},
    DefaultRow{"Desktop", kEvery, Base::User, "Desktop"},
    DefaultRow{"Favorites", kEvery, Base::User, "Favorites", kWithBrowser},
    DefaultRow{"Fonts", kEvery, Base::Windows, "Fonts"},
    DefaultRow{"History", k9x | kNT4, Base::User, "History", kWithBrowser},
    DefaultRow{"History", kWin2000, Base::User, "Local Settings\\History"},
    DefaultRow{"NetHood", kEvery, Base::User, "NetHood"},
    DefaultRow{"Personal", k9x, Base::Root, "My Documents", kWin95},
    DefaultRow{"Personal", kNT4, Base::User, "Personal"},
    DefaultRow{"Personal", kWin2000, Base::User, "My Documents"},
    DefaultRow{"PrintHood", kNT, Base::User, "PrintHood"},
    DefaultRow{"Programs", kEvery, Base::User, "Start Menu\\Programs"},
    DefaultRow{"Recent", kEvery, Base::User, "Recent"},
    DefaultRow{"SendTo", kEvery, Base::User, "SendTo"},
    DefaultRow{"Start Menu", kEvery, Base::User, "Start Menu"},
    DefaultRow{"Startup", k9x, Base::User, "Start Menu\\Programs\\StartUp"},
    DefaultRow{"Startup", kNT, Base::User, "Start Menu\\Programs\\Startup"},
    DefaultRow{"Templates", k9x, Base::Windows, "ShellNew"},
    DefaultRow{"Templates", kNT, Base::User, "Templates"},
    DefaultRow{"Content", kWin2000, Base::User, "Local Settings\\Content.IE5", kWin2000},
    DefaultRow{"Local AppData", kWin2000, Base::User, "Local Settings\\Application Data"},
    DefaultRow{"Local Settings", kWin2000, Base::User, "Local Settings"},
};

// Which programs keep what they have in the folder open.
constexpr std::array<std::string_view, 6> kOfBrowser{"CACHE",   "COOKIES", "FAVORITES",
                                                     "HISTORY", "APPDATA", "CONTENT"};
constexpr std::string_view kOfOutlook = "APPDATA";

// A prefix of Wine may be a later Windows, which has its folders elsewhere.
bool isKnownWindows(const foundation::Session& session) {
  const auto& version = session.g_verInfo;
  return version.majorVersion == 4 || (version.majorVersion == 5 && version.minorVersion == 0);
}

bool isText(const RawValue& value) { return value.type == REG_SZ || value.type == REG_EXPAND_SZ; }

bool sameData(const RawValue& one, const RawValue& other) {
  return one.type == other.type && one.bytes == other.bytes;
}

// The rest of a path below a folder, with its backslash; nothing where it lies elsewhere.
std::optional<std::string> restBelow(const std::string& folder, const std::string& path) {
  if (folder.empty() || path.size() < folder.size()) return std::nullopt;
  if (!sameName(std::string_view(path).substr(0, folder.size()), folder)) return std::nullopt;
  std::string rest = path.substr(folder.size());
  if (!rest.empty() && rest.front() != '\\') return std::nullopt;
  return rest;
}

}  // namespace

bool ShellFolder::isDefault() const {
  return byDefault && sameName(plain.text(), *byDefault) && sameName(userPath, *byDefault);
}

bool ShellFolder::operator==(const ShellFolder& other) const {
  return sameName(name, other.name) && sameData(plain, other.plain) && sameData(user, other.user);
}

std::string_view ShellFolderPaths::plainKey() { return kPlainKey; }
std::string_view ShellFolderPaths::userKey() { return kUserKey; }

std::string ShellFolderPaths::expanded(const RawValue& value) const {
  if (!isText(value)) return "";
  return value.type == REG_EXPAND_SZ
             ? session_.machine().systemInfo().ExpandEnvironmentStringsA(value.text())
             : value.text();
}

Status ShellFolderPaths::fill(std::string_view name, ShellFolder& folder) const {
  folder = {};
  folder.name = name;
  const auto row = std::ranges::find_if(
      kFolders, [name](const FolderRow& one) { return sameName(one.name, name); });
  folder.description = row == kFolders.end() ? std::string_view(kNotDescribed) : row->description;
  if (row != kFolders.end()) folder.name = row->name;
  Registry& registry = session_.registry();
  Status status = engine::missingIsFine(
      engine::readRawValue(registry, HKEY_CURRENT_USER, kPlainKey, name, folder.plain));
  if (status == ERROR_SUCCESS) {
    status = engine::missingIsFine(
        engine::readRawValue(registry, HKEY_CURRENT_USER, kUserKey, name, folder.user));
  }
  folder.userPath = expanded(folder.user);
  folder.path = expanded(folder.plain);
  if (folder.path.empty()) folder.path = folder.userPath;
  folder.byDefault = defaultOf(folder);
  return status;
}

Status ShellFolderPaths::read(std::vector<ShellFolder>& folders) const {
  std::vector<std::string> names;
  for (const FolderRow& row : kFolders) names.emplace_back(row.name);
  const OpenKey key(session_.registry(), HKEY_CURRENT_USER, kPlainKey, KEY_QUERY_VALUE);
  Status status = key.status();
  std::array<char, kNameBufferBytes> buffer;
  for (std::uint32_t i = 0; status == ERROR_SUCCESS; ++i) {
    auto length = static_cast<std::uint32_t>(buffer.size());
    status = session_.registry().RegEnumValueA(key.get(), i, buffer.data(), &length, nullptr,
                                               nullptr, nullptr);
    const std::string name(buffer.data(), status == ERROR_SUCCESS ? length : 0);
    const auto same = [&name](const std::string& one) { return sameName(one, name); };
    if (!name.empty() && std::ranges::none_of(names, same)) names.push_back(name);
  }
  if (status == ERROR_NO_MORE_ITEMS) status = ERROR_SUCCESS;
  status = engine::missingIsFine(status);
  folders.clear();
  for (const std::string& name : names) {
    if (status != ERROR_SUCCESS) break;
    status = fill(name, folders.emplace_back());
  }
  return status;
}

Status ShellFolderPaths::readOne(std::string_view name, ShellFolder& folder) const {
  const Status status = fill(name, folder);
  const bool known = std::ranges::any_of(
      kFolders, [name](const FolderRow& row) { return sameName(row.name, name); });
  if (status != ERROR_SUCCESS || known || folder.plain.type != REG_NONE) return status;
  return ERROR_FILE_NOT_FOUND;
}

std::optional<std::string> ShellFolderPaths::defaultOf(const ShellFolder& folder) const {
  if (!isKnownWindows(session_)) return std::nullopt;
  const Families family = engine::familyOf(session_);
  const auto row = std::ranges::find_if(kDefaults, [&](const DefaultRow& one) {
    return sameName(one.name, folder.name) && (one.families & family) != 0;
  });
  if (row == kDefaults.end()) return std::nullopt;
  if ((row->onlyWhereSet & family) != 0 && folder.path.empty()) return std::nullopt;
  switch (row->base) {
    case Base::User:
      return fmt::format("{}\\{}", foundation::userFolder(session_), row->path);
    case Base::Windows:
      return session_.g_sWinDir + std::string(row->path);
    case Base::Root:
      break;
  }
  return session_.g_sRoot + std::string(row->path);
}

std::string ShellFolderPaths::refusalOf(std::string_view name) const {
  const auto runs = [this](std::string_view windowClass) {
    return session_.machine().windows().FindWindowA(windowClass, "");
  };
  const std::string upper = foldName(name);
  if (std::ranges::find(kOfBrowser, upper) != kOfBrowser.end() && runs("IEFrame")) {
    return "Internet Explorer must be closed to modify this path.";
  }
  if (upper == kOfOutlook && runs("mspim_wnd32")) {
    return "Microsoft Outlook must be closed to modify this path.";
  }
  return "";
}

RawValue ShellFolderPaths::userValue(const ShellFolder& folder, const std::string& path) const {
  const bool expands =
      folder.user.type == REG_EXPAND_SZ || (folder.user.type == REG_NONE && session_.g_bNT);
  const auto rest = restBelow(foundation::userFolder(session_), path);
  // A path with a per cent sign of its own must not be filled in.
  if (expands && rest && rest->find('%') == std::string::npos) {
    return {REG_EXPAND_SZ, fmt::format("{}{}", kUserProfile, *rest) + '\0'};
  }
  const bool keeps = folder.user.type == REG_EXPAND_SZ && path.find('%') == std::string::npos;
  return {keeps ? REG_EXPAND_SZ : REG_SZ, path + '\0'};
}

// What stands there already is not written again.
Status ShellFolderPaths::write(const ShellFolder& folder, const std::string& path) const {
  const RawValue plain{REG_SZ, path + '\0'};
  const RawValue user = userValue(folder, path);
  Status status = ERROR_SUCCESS;
  if (!sameData(folder.plain, plain)) {
    status = engine::putRaw(session_, HKEY_CURRENT_USER, kPlainKey, folder.name, plain);
  }
  if (status == ERROR_SUCCESS && !sameData(folder.user, user)) {
    status = engine::putRaw(session_, HKEY_CURRENT_USER, kUserKey, folder.name, user);
  }
  return status;
}

std::vector<ShellFolder> ShellFolderPaths::withoutDefault(const std::vector<ShellFolder>& folders) {
  std::vector<ShellFolder> others;
  for (const ShellFolder& folder : folders) {
    if (folder.byDefault && !folder.isDefault()) others.push_back(folder);
  }
  return others;
}

Status ShellFolderPaths::P_SetShellFoldersDefault(const std::vector<ShellFolder>& folders) const {
  session_.trace.enter("[P_SetShellFoldersDefault]");
  Status status = ERROR_SUCCESS;
  for (const ShellFolder& folder : withoutDefault(folders)) {
    if (status == ERROR_SUCCESS) status = write(folder, *folder.byDefault);
  }
  return status;
}

ShellFolderPaths::There ShellFolderPaths::isThere(const std::string& path) const {
  if (path.size() < 3 || path[1] != ':') return There::Unknown;
  std::uint32_t attributes = 0;
  const Status status = session_.files().attributes(path, attributes);
  if (status == ERROR_SUCCESS) {
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? There::Yes : There::No;
  }
  const bool hasDrive = session_.files().exists(path.substr(0, 3));
  const bool missing = status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND;
  return missing && hasDrive ? There::No : There::Unknown;
}

}  // namespace korvex::dialogs
