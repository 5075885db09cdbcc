// Files of the categories.
#include "backup/category_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "backup/folder_tree.h"
#include "backup/password_lists.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::Session;
using namespace platform;

namespace {

constexpr std::string_view kCursors = "Control Panel\\Cursors";
constexpr std::string_view kNavigator = "SOFTWARE\\Netscape\\Netscape Navigator";

// The folder of the set that the files of a category go to, with its backslash; "" is the set's
// own.
std::string_view folderInSet(FileCopies copies) {
  switch (copies) {
    case FileCopies::Cursors:
      return "Cursor\\";
    case FileCopies::Wallpaper:
      return "Wallpaper\\";
    case FileCopies::FileTypes:
      return "FA\\";
    case FileCopies::Favorites:
      return "IE\\";
    case FileCopies::Bookmarks:
      return "Mozilla\\";
    default:
      return "";
  }
}

// What the files of a category may be. A set can come from anywhere: it must not bring programs.
bool isOfTheKind(FileCopies copies, const std::string& path) {
  static constexpr std::array<std::string_view, 2> kCursorFiles{".cur", ".ani"};
  static constexpr std::array<std::string_view, 8> kPictures{".bmp", ".dib", ".jpg", ".jpeg",
                                                             ".gif", ".png", ".htm", ".html"};
  static constexpr std::array<std::string_view, 2> kDialUpFiles{".pbk", ".pwl"};
  std::span<const std::string_view> known;
  if (copies == FileCopies::Cursors) known = kCursorFiles;
  if (copies == FileCopies::Wallpaper) known = kPictures;
  if (copies == FileCopies::DialUp) known = kDialUpFiles;
  return std::ranges::find(known, extensionOf(path)) != known.end();
}

// A path as the registry has it, in full: without variables, below base where it is only a name.
std::string fullPath(Session& session, const std::string& text, const std::string& base) {
  std::string path = session.machine().systemInfo().ExpandEnvironmentStringsA(text);
  if (path.empty() || (path.size() > 2 && path[1] == ':')) return path;
  return base + path;
}

// The machine's file, once; one that is not there, or not of the kind, is none of the category's.
void add(Session& session, const Category& category, const std::string& place,
         std::vector<SourceFile>& files) {
  if (place.empty() || !isOfTheKind(category.copies, place)) return;
  std::vector<FileEntry> found;
  if (session.files().list(place, found) != ERROR_SUCCESS || found.size() != 1) return;
  const auto same = [&place](const SourceFile& file) { return sameName(file.place, place); };
  if (std::ranges::any_of(files, same)) return;
  SourceFile file{place, nameInSet(category, place), found[0].attributes, found[0].size};
  if (file.isFolder()) return;
  const auto taken = [&file](const SourceFile& other) { return sameName(other.file, file.file); };
  const std::string folder(folderInSet(category.copies));
  for (int number = 2; std::ranges::any_of(files, taken); ++number) {
    file.file = fmt::format("{}{}_{}", folder, number, fileName(place));
  }
  files.push_back(std::move(file));
}

Status findCursors(Session& session, const Category& category, std::vector<SourceFile>& files) {
  const OpenKey key(session.registry(), HKEY_CURRENT_USER, kCursors, KEY_READ);
  if (key.status() == ERROR_FILE_NOT_FOUND) return ERROR_SUCCESS;
  if (key.status() != ERROR_SUCCESS) return key.status();
  char name[kNameBufferBytes];
  for (std::uint32_t i = 0;; ++i) {
    std::uint32_t length = sizeof name;
    const Status status =
        session.registry().RegEnumValueA(key.get(), i, name, &length, nullptr, nullptr, nullptr);
    if (status == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
    if (status != ERROR_SUCCESS) return status;
    const std::string text = session.regTool.GetRegStr(kCursors, {name, length}, HKEY_CURRENT_USER);
    if (text.empty()) continue;
    add(session, category, fullPath(session, text, session.g_sWinDir + "Cursors\\"), files);
  }
}

// The picture that Windows shows, and the one of the Active Desktop.
void findWallpaper(Session& session, const Category& category, std::vector<SourceFile>& files) {
  constexpr std::string_view kActive = "Software\\Microsoft\\Internet Explorer\\Desktop\\General";
  const std::array<std::pair<std::string_view, std::string_view>, 3> values{
      {{"Control Panel\\Desktop", "Wallpaper"},
       {kActive, "Wallpaper"},
       {kActive, "BackupWallpaper"}}};
  for (const auto& [key, name] : values) {
    const std::string text = session.regTool.GetRegStr(key, name, HKEY_CURRENT_USER);
    if (text.empty() || sameName(text, "(None)")) continue;
    add(session, category, fullPath(session, text, session.g_sWinDir), files);
  }
}

std::string phoneBookFolder(const Session& session) {
  return session.g_sPhoneBookPath.empty() ? "" : parentFolder(session.g_sPhoneBookPath);
}

Status findDialUp(Session& session, const Category& category, std::vector<SourceFile>& files) {
  const std::string folder = phoneBookFolder(session);
  if (!folder.empty()) {
    std::vector<FileEntry> found;
    const Status status = session.files().list(folder + "\\*.pbk", found);
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND &&
        status != ERROR_PATH_NOT_FOUND) {
      return status;
    }
    for (const FileEntry& entry : found) {
      add(session, category, folder + '\\' + entry.name, files);
    }
  }
  const std::string lines = passwordLists(session);
  for (std::string_view rest = lines; !rest.empty();) {
    const std::string line(rest.substr(0, rest.find('\n')));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    add(session, category, fullPath(session, line.substr(equals + 1), session.g_sWinDir), files);
  }
  return ERROR_SUCCESS;
}

Status findFavorites(Session& session, std::vector<SourceFile>& files) {
  const std::string& folder = session.pd.FavoritesPath;
  std::vector<TreeEntry> entries;
  const Status status = folder.empty() ? ERROR_SUCCESS : listTree(session.files(), folder, entries);
  for (const TreeEntry& entry : entries) {
    files.push_back(
        {folder + '\\' + entry.path, "IE\\" + entry.path, entry.attributes, entry.size});
  }
  return status;
}

bool isRegistered(Session& session) {
  HKEY key = HKEY_CLASSES_ROOT;
  char name[kNameBufferBytes];
  for (std::uint32_t i = 0;; ++i) {
    std::uint32_t length = sizeof name;
    if (session.registry().RegEnumKeyExA(key, i, name, &length) != ERROR_SUCCESS) return false;
    if (length > 1 && name[0] == '.') return true;
  }
}

}  // namespace

std::string bookmarksPath(Session& session) {
  // Version 4 has a folder for each of its users; version 3 one list for each user of Windows.
  const std::string users = std::string(kNavigator) + "\\Users";
  const std::string user = session.regTool.GetRegStr(users, "CurrentUser", HKEY_LOCAL_MACHINE);
  if (!user.empty()) {
    const std::string folder =
        session.regTool.GetRegStr(users + '\\' + user, "DirRoot", HKEY_LOCAL_MACHINE);
    if (!folder.empty()) return folder + "\\bookmark.htm";
  }
  return session.regTool.GetRegStr(std::string(kNavigator) + "\\Bookmark List", "File Location",
                                   HKEY_CURRENT_USER);
}

Status findFiles(Session& session, const Category& category, std::vector<SourceFile>& files) {
  switch (category.copies) {
    case FileCopies::Cursors:
      return findCursors(session, category, files);
    case FileCopies::Wallpaper:
      findWallpaper(session, category, files);
      return ERROR_SUCCESS;
    case FileCopies::DialUp:
      return findDialUp(session, category, files);
    case FileCopies::Favorites:
      return findFavorites(session, files);
    case FileCopies::Bookmarks: {
      const std::string path = bookmarksPath(session);
      std::uint32_t attributes = 0;
      if (path.empty()) return ERROR_SUCCESS;
      const Status status = session.files().attributes(path, attributes);
      if (status == ERROR_SUCCESS) {
        files.push_back({path, nameInSet(category, path), attributes, 0});
      }
      return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND ? ERROR_SUCCESS
                                                                              : status;
    }
    default:
      return ERROR_SUCCESS;
  }
}

bool hasFiles(Session& session, const Category& category) {
  if (category.copies == FileCopies::FileTypes) return isRegistered(session);
  if (category.copies == FileCopies::DialUp && !passwordLists(session).empty()) return true;
  std::vector<SourceFile> files;
  return findFiles(session, category, files) == ERROR_SUCCESS && !files.empty();
}

std::string nameInSet(const Category& category, const std::string& place) {
  if (category.copies == FileCopies::Bookmarks) return "Mozilla\\bookmark.htm";
  return std::string(folderInSet(category.copies)) + fileName(place);
}

bool ownsItsFolder(const Category& category, const SourceFile& file) {
  return category.copies == FileCopies::Favorites ||
         (category.copies == FileCopies::DialUp && extensionOf(file.place) == ".pbk");
}

bool placeFor(Session& session, const Category& category, const SetEntry& entry, std::string& place,
              std::string& why) {
  const auto refuse = [&](std::string reason) {
    why = fmt::format("{}: {}", entry.file, reason);
    return false;
  };
  const std::string folder(folderInSet(category.copies));
  const bool ours = entry.file.size() > folder.size() &&
                    sameName(std::string_view(entry.file).substr(0, folder.size()), folder);
  if (category.copies == FileCopies::None || !ours) {
    return refuse("no file of this kind belongs to this category.");
  }
  place = entry.place;
  if (category.copies == FileCopies::Favorites) {
    if (session.pd.FavoritesPath.empty()) return refuse("this user has no favorites.");
    place = session.pd.FavoritesPath + '\\' + entry.file.substr(folder.size());
    return true;
  }
  if (category.copies == FileCopies::Bookmarks) {
    place = bookmarksPath(session);
    return !place.empty() || refuse("this machine has no such browser.");
  }
  if (!isOfTheKind(category.copies, entry.place) || !isOfTheKind(category.copies, entry.file)) {
    return refuse("no file of this kind belongs to this category.");
  }
  if (extensionOf(place) == ".pbk") {
    const std::string books = phoneBookFolder(session);
    if (books.empty()) return refuse("this Windows keeps no phone books.");
    place = books + '\\' + fileName(entry.place);
  }
  if (!session.files().exists(parentFolder(place))) {
    return refuse(fmt::format("the folder {} is not on this machine.", parentFolder(place)));
  }
  return true;
}

}  // namespace korvex::backup
