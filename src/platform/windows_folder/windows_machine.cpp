// Opens an installation's disk: its hives, its user, its drive.
#include "platform/windows_folder/windows_machine.h"

#include <fmt/format.h>
#include <sys/vfs.h>

#include <algorithm>

#include "platform/hives/hive_machine.h"
#include "platform/hives/registry_facts.h"
#include "platform/text/text.h"
#include "platform/windows_folder/installation.h"
#include "platform/windows_folder/regf_hive.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

std::string namesOf(const std::vector<InstalledUser>& users) {
  std::string names;
  for (const InstalledUser& user : users) names += (names.empty() ? "" : ", ") + user.name;
  return names;
}

const InstalledUser* chooseUser(const std::vector<InstalledUser>& users, const std::string& name) {
  if (name.empty()) return users.empty() ? nullptr : &users.front();
  const auto found = std::find_if(users.begin(), users.end(), [&](const InstalledUser& user) {
    return sameName(user.name, name) || sameName(user.sid, name);
  });
  return found == users.end() ? nullptr : &*found;
}

std::vector<HiveMount> mountsOf(const Installation& found, const InstalledUser& user) {
  std::vector<HiveMount> mounts{{kMachineKey, "SYSTEM", found.system},
                                {kMachineKey, "SOFTWARE", found.software},
                                {kUsersKey, user.sid, user.hive}};
  if (!found.defaultUser.empty()) mounts.push_back({kUsersKey, ".DEFAULT", found.defaultUser});
  if (!user.classes.empty()) mounts.push_back({kUsersKey, user.sid + "_Classes", user.classes});
  return mounts;
}

// What the host says the drive's file system is; a copy on a host's own file system tells nothing.
// Source: the numbers of statfs(2).
std::string fileSystemOf(const fs::path& drive) {
  constexpr long kNtfs = 0x5346544e;
  constexpr long kNtfs3 = 0x7366746e;
  constexpr long kFuseBlock = 0x65735546;  // ntfs-3g
  constexpr long kFat = 0x4d44;
  struct statfs status {};
  if (::statfs(drive.c_str(), &status) != 0) return {};
  const auto type = static_cast<long>(status.f_type);
  if (type == kNtfs || type == kNtfs3 || type == kFuseBlock) return "NTFS";
  return type == kFat ? "FAT32" : "";
}

// The hardware profile that the machine started with last.
std::string configKeyOf(Registry& registry) {
  constexpr std::string_view kIds = "SYSTEM\\CurrentControlSet\\Control\\IDConfigDB";
  const OpenKey ids(registry, HKEY_LOCAL_MACHINE, kIds, KEY_READ);
  std::uint32_t number = 1;
  std::uint32_t size = sizeof number;
  RegType type = REG_NONE;
  if (ids.status() != ERROR_SUCCESS ||
      registry.RegQueryValueExA(ids.get(), "CurrentConfig", &type, &number, &size) != 0 ||
      type != REG_DWORD) {
    number = 1;
  }
  return fmt::format("SYSTEM\\CurrentControlSet\\Hardware Profiles\\{:04}", number);
}

Status readFacts(Registry& registry, const Installation& found, const InstalledUser& user,
                 MachineFacts& facts, std::string& message) {
  facts.user = user.name;
  readWindowsFacts(registry, found.windowsFolder, facts);
  facts.windowsFolder = found.windowsFolder;
  facts.environment[foldName("USERPROFILE")] = user.profile;
  const std::string system = fileSystemOf(found.drive);
  if (!system.empty()) facts.fileSystems[std::string(1, found.letter)] = system;
  if (facts.version.majorVersion >= 4) return ERROR_SUCCESS;
  message = fmt::format("{}: this is Windows NT {}, which is older than Korvex knows.",
                        found.windows.string(), versionText(facts));
  return ERROR_NOT_SUPPORTED;
}

OpenedMachine refused(Status status, std::string message) {
  return {nullptr, status, std::move(message)};
}

HiveMachineOptions optionsFor(const Installation& found, const InstalledUser& user, OpenMode mode) {
  HiveMachineOptions options;
  options.kind = "windows-folder";
  options.evidence = found.evidence;
  options.store.folder = found.drive;
  options.store.mounts = mountsOf(found, user);
  options.store.open = openRegfHive;
  options.store.readOnly = mode == OpenMode::Read;
  options.store.keepBefore = true;
  options.places.userKey = user.sid;
  if (!user.classes.empty()) options.places.userClasses = user.sid + "_Classes";
  options.drives[found.letter] = found.drive;
  options.placesFrom = [](Registry& registry, RegistryPlaces& places) {
    places.configKey = configKeyOf(registry);
  };
  options.readFacts = [found, user](Registry& registry, MachineFacts& facts, std::string& message) {
    return readFacts(registry, found, user, facts, message);
  };
  return options;
}

}  // namespace

OpenedMachine openWindowsMachine(const fs::path& folder, OpenMode mode, const std::string& user) {
  if (kindOfWindowsFolder(folder) == FolderKind::Windows9x) {
    return refused(ERROR_NOT_SUPPORTED,
                   fmt::format("{}: this is Windows 95, 98 or Me, whose registry files cannot be "
                               "opened yet. Export its registry there with \"regedit /e\" and "
                               "import it into a machine made with 'korvex machine create'.",
                               folder.string()));
  }
  Installation found;
  std::string message;
  const Status status = findInstallation(folder, found, message);
  if (status != ERROR_SUCCESS) return refused(status, message);
  const InstalledUser* const chosen = chooseUser(found.users, user);
  if (chosen == nullptr) {
    const std::string have = found.users.empty() ? std::string("no user's NTUSER.DAT was found")
                                                 : "there is " + namesOf(found.users);
    return refused(ERROR_FILE_NOT_FOUND, user.empty()
                                             ? fmt::format("{}: {}.", found.drive.string(), have)
                                             : fmt::format("{}: there is no user {} here; {}.",
                                                           found.drive.string(), user, have));
  }
  return openHiveMachine(optionsFor(found, *chosen, mode));
}

}  // namespace korvex::platform
