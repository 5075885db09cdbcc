// Where the shell folders of the user and of all users lie, and the program's own registration.
#include <fmt/format.h>

#include <array>
#include <vector>

#include "foundation/detection.h"
#include "foundation/reg_value.h"

namespace korvex::foundation {
namespace {

using namespace platform;

constexpr std::string_view kShellFolders =
    R"(Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders)";
constexpr std::string_view kAppPaths =
    R"(SOFTWARE\Microsoft\Windows\CurrentVersion\App Paths\korvex.exe)";
constexpr std::string_view kConfiguration = R"(SOFTWARE\Korvex\Configuration)";
constexpr std::string_view kUser = "%USERPROFILE%";

// Under what a default path stands.
enum class Base { User, Windows, AllUsers };

struct FolderRow {
  std::string_view field;
  std::string ProfileFolders::*path;
  std::string_view entry;  // under Shell Folders: the user's, or for AllUsers the machine's
  Base base;
  std::string_view fallback;
};

// clang-format off
constexpr std::array kFolders{
    FolderRow{"SendToPath", &ProfileFolders::SendToPath, "SENDTO", Base::User, "SendTo"},
    FolderRow{"RecentPath", &ProfileFolders::RecentPath, "RECENT", Base::User, "Recent"},
    FolderRow{"StartUpPath", &ProfileFolders::StartUpPath, "STARTUP", Base::User, R"(Start Menu\Programs\Startup)"},
    FolderRow{"StartUpPathEx", &ProfileFolders::StartUpPathEx, "Common Startup", Base::AllUsers, R"(Start Menu\Programs\Startup)"},
    FolderRow{"StartMenuPath", &ProfileFolders::StartMenuPath, "START MENU", Base::User, "Start Menu"},
    FolderRow{"DesktopPath", &ProfileFolders::DesktopPath, "DESKTOP", Base::User, "Desktop"},
    FolderRow{"AppDataPath", &ProfileFolders::AppDataPath, "APPDATA", Base::User, "Application Data"},
    FolderRow{"PersonalPath", &ProfileFolders::PersonalPath, "PERSONAL", Base::User, "My Documents"},
    FolderRow{"ProgramPath", &ProfileFolders::ProgramPath, "PROGRAMS", Base::User, R"(Start Menu\Programs)"},
    FolderRow{"NetHoodPath", &ProfileFolders::NetHoodPath, "NETHOOD", Base::User, "NetHood"},
    FolderRow{"PrintHoodPath", &ProfileFolders::PrintHoodPath, "PRINTHOOD", Base::User, "PrintHood"},
    // The folder's own name is "Templates"; "ShellNew" is what 95 shipped with.
    FolderRow{"TemplatesPath", &ProfileFolders::TemplatesPath, "TEMPLATES", Base::User, "ShellNew"},
    FolderRow{"CachePath", &ProfileFolders::CachePath, "CACHE", Base::User, "Temporary Internet Files"},
    FolderRow{"HistoryPath", &ProfileFolders::HistoryPath, "HISTORY", Base::User, "History"},
    FolderRow{"FontsPath", &ProfileFolders::FontsPath, "FONTS", Base::Windows, "Fonts"},
    FolderRow{"FavoritesPath", &ProfileFolders::FavoritesPath, "FAVORITES", Base::User, "Favorites"},
    FolderRow{"CookiesPath", &ProfileFolders::CookiesPath, "COOKIES", Base::User, "Cookies"},
    FolderRow{"IE5ContentPath", &ProfileFolders::IE5ContentPath, "CONTENT", Base::User, R"(Local Settings\Content.IE5)"},
    FolderRow{"LocalAppDataPath", &ProfileFolders::LocalAppDataPath, "LOCAL APPDATA", Base::User, R"(Local Settings\Application Data)"},
    FolderRow{"LocalSettPath", &ProfileFolders::LocalSettPath, "LOCAL SETTINGS", Base::User, "Local Settings"},
    FolderRow{"CommMenuPath", &ProfileFolders::CommMenuPath, "Common Start Menu", Base::AllUsers, "Start Menu"},
    FolderRow{"CommStartMenuPath", &ProfileFolders::CommStartMenuPath, "Common Start Menu", Base::AllUsers, "Start Menu"},
    FolderRow{"CommAppDataPath", &ProfileFolders::CommAppDataPath, "Common AppData", Base::AllUsers, "Application Data"},
    FolderRow{"CommStartUpPath", &ProfileFolders::CommStartUpPath, "Common Startup", Base::AllUsers, R"(Start Menu\Programs\Startup)"},
    FolderRow{"CommDesktopPath", &ProfileFolders::CommDesktopPath, "Common Desktop", Base::AllUsers, "Desktop"},
    FolderRow{"CommSendToPath", &ProfileFolders::CommSendToPath, "Common SendTo", Base::AllUsers, "SendTo"},
    FolderRow{"CommPersonalPath", &ProfileFolders::CommPersonalPath, "Common Personal", Base::AllUsers, "Documents"},
    FolderRow{"CommProgramsPath", &ProfileFolders::CommProgramsPath, "Common Programs", Base::AllUsers, R"(Start Menu\Programs)"},
};
// clang-format on

// The entry under Shell Folders; "" where it is missing.
std::string shellFolder(Session& session, HKEY key, std::string_view entry) {
  const Variant value = session.regTool.GetRegValue(key, entry);
  const std::string* text = value.string();
  return text == nullptr ? std::string() : *text;
}

// A value that must stand in the registry.
struct Registration {
  std::string_view key;
  std::string_view name;
  std::string data;
};

bool stands(Session& session, const Registration& wanted) {
  return session.regTool.GetRegStr(wanted.key, wanted.name, HKEY_LOCAL_MACHINE) == wanted.data;
}

// Not there, and not merely unreadable or of another type.
bool absent(Session& session, std::string_view path, std::string_view name) {
  OpenKey key(session.registry(), HKEY_LOCAL_MACHINE, path, KEY_QUERY_VALUE);
  if (key.status() != ERROR_SUCCESS) return key.status() == ERROR_FILE_NOT_FOUND;
  std::uint32_t size = 0;
  return session.registry().RegQueryValueExA(key.get(), name, nullptr, nullptr, &size) ==
         ERROR_FILE_NOT_FOUND;
}

Status write(Session& session, const std::vector<Registration>& missing) {
  RegistryChange change(session.registry());
  if (change.status() != ERROR_SUCCESS) return change.status();
  for (const Registration& row : missing) {
    Status status = ERROR_SUCCESS;
    if (P_WriteRegValue(session, HKEY_LOCAL_MACHINE, row.key, row.name, Variant(row.data),
                        KEY_ALL_ACCESS, true, &status)) {
      return status;
    }
  }
  return change.commit();
}

// Where Dial-Up Networking keeps its phone book; 95, 98 and Me keep it in the registry.
std::string phoneBookPath(const Session& session) {
  constexpr std::string_view kStem = "ras";
  if (session.g_eOS == Os::Windows2000) {
    return fmt::format(R"({}\Microsoft\Network\Connections\Pbk\{}phone.pbk)",
                       session.pd.CommAppDataPath, kStem);
  }
  if (!session.g_bNT) return {};
  return fmt::format(R"({}{}\{}phone.pbk)", session.g_sWinSysDir, kStem, kStem);
}

}  // namespace

std::string userFolder(Session& session) {
  std::string folder = session.machine().systemInfo().ExpandEnvironmentStringsA(kUser);
  if (folder != kUser) return folder;
  if (session.g_bNT) return session.pd.PreProfilePath + session.g_sCurrentUser;
  folder = session.regTool.GetRegStr(
      R"(Software\Microsoft\Windows\CurrentVersion\ProfileReconciliation)", "ProfileDirectory",
      HKEY_CURRENT_USER);
  if (folder.empty()) folder = session.g_sWinDir;
  while (folder.ends_with('\\')) folder.pop_back();
  return folder;
}

void initializeProfileFolders(Session& session) {
  session.trace.enter("[p_InitializeProfileDirInfo]");
  OpenKey user(session.registry(), HKEY_CURRENT_USER, kShellFolders, KEY_QUERY_VALUE);
  OpenKey machine(session.registry(), HKEY_LOCAL_MACHINE, kShellFolders, KEY_QUERY_VALUE);
  const std::string userBase = userFolder(session) + '\\';
  const std::string allUsersBase = session.pd.PreProfilePath + "All Users\\";
  for (const FolderRow& row : kFolders) {
    const OpenKey& key = row.base == Base::AllUsers ? machine : user;
    std::string path;
    if (key.status() == ERROR_SUCCESS) path = shellFolder(session, key.get(), row.entry);
    if (path.empty()) {
      path = row.base == Base::User      ? userBase
             : row.base == Base::Windows ? session.g_sWinDir
                                         : allUsersBase;
      // NT 4 calls it so; every other Windows says "My Documents".
      const bool personal = row.path == &ProfileFolders::PersonalPath;
      path += personal && session.g_eOS == Os::WindowsNT4 ? "Personal" : row.fallback;
    }
    session.pd.*row.path = path;
    session.trace.dump(fmt::format("pd.{}", row.field), path);
    if (row.path == &ProfileFolders::StartUpPathEx) session.trace.dump("g_bNT", session.g_bNT);
  }
  session.g_sPhoneBookPath = phoneBookPath(session);
}

void registerProgramPath(Session& session) {
  std::vector<Registration> missing;
  const std::array rows{
      Registration{kAppPaths, "", session.g_sAppPath + R"(\korvex.exe)"},
      Registration{kAppPaths, "Path", session.g_sAppPath},
  };
  for (const Registration& row : rows) {
    if (!stands(session, row)) missing.push_back(row);
  }
  // The person may have chosen another folder for saved settings: that choice stays.
  if (absent(session, kConfiguration, "RegPath")) {
    missing.push_back({kConfiguration, "RegPath", "Registry"});
  }
  if (missing.empty()) return;
  const Status status = write(session, missing);
  session.trace.enter("[registerProgramPath]");
  session.trace.dump("lRetVal&", status);
  if (status == ERROR_SUCCESS) return;
  session.prompts().messageBox(
      "An error occurred setting Korvex's path.\r\nSome functions may not work correctly.",
      kIconExclamation | kButtonsOk, kAppTitle);
}

void p_InitializeProfileDirInfo(Session& session) {
  initializeProfileFolders(session);
  registerProgramPath(session);
}

}  // namespace korvex::foundation
