// Opens a prefix: its three registry files, its drives, its user.
#include "platform/wine/wine_machine.h"

#include <fmt/format.h>

#include <array>
#include <cctype>
#include <cstdlib>
#include <memory>

#include "platform/common/host_lookup.h"
#include "platform/hives/hive_machine.h"
#include "platform/hives/registry_facts.h"
#include "platform/text/text.h"
#include "platform/wine/wine_programs.h"
#include "platform/wine/wine_server.h"
#include "platform/wine/wine_text.h"
#include "platform/wine/wine_version.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kDefaultSid = "S-1-5-21-0-0-0-1000";
constexpr std::string_view kShellFolders =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// dosdevices names a drive "c:" and points at its folder; "c::" is the device behind it.
DriveFolders::Map drivesOf(const fs::path& prefix) {
  DriveFolders::Map drives;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(prefix / "dosdevices", error)) {
    const std::string name = entry.path().filename().string();
    if (name.size() != 2 || name[1] != ':' || !std::isalpha(static_cast<unsigned char>(name[0]))) {
      continue;
    }
    const fs::path folder = fs::canonical(entry.path(), error);
    if (error || !fs::is_directory(folder, error)) continue;
    drives[static_cast<char>(std::toupper(static_cast<unsigned char>(name[0])))] = folder;
  }
  if (drives.empty()) drives['C'] = prefix / "drive_c";
  return drives;
}

// The head of user.reg names the user's key: "REGISTRY\User\S-1-5-21-0-0-0-1000".
std::string userKeyOf(const WineTextHeader& head) {
  const std::size_t last = head.root.rfind('\\');
  return last == std::string::npos ? std::string(kDefaultSid) : head.root.substr(last + 1);
}

// The owner of the folder in which the prefix has its Desktop: "C:\users\NAME\Desktop".
std::string userOf(const std::string& desktop) {
  const std::size_t end = desktop.rfind('\\');
  const std::size_t start =
      end == std::string::npos || end == 0 ? end : desktop.rfind('\\', end - 1);
  // Below "C:\" lies the Windows folder: a 95, 98 or Me has one Desktop for all.
  if (start != std::string::npos && start > 2) return desktop.substr(start + 1, end - start - 1);
  const char* const user = std::getenv("USER");
  return user == nullptr ? "user" : user;
}

std::string profileOf(const std::string& desktop, const std::string& user) {
  const std::size_t end = desktop.rfind('\\');
  return end == std::string::npos ? "C:\\users\\" + user : desktop.substr(0, end);
}

std::string windowsFolderOf(Registry& registry) {
  const std::string told = registryText(
      registry, HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion", "SystemRoot");
  return told.size() > 3 ? told : "C:\\windows";
}

// Wine has system32 whatever it is set to; a prefix made of a 95, 98 or Me may have System only.
void useSystemFolder(const DriveFolders::Map& drives, MachineFacts& facts) {
  const auto drive = drives.find(facts.windowsFolder.front());
  if (drive == drives.end() || hostPath(drive->second, facts.systemFolder.substr(3))) return;
  const std::string other = facts.windowsFolder + "\\SYSTEM";
  if (hostPath(drive->second, other.substr(3))) facts.systemFolder = other;
}

Status readFacts(Registry& registry, const std::string& wanted, const DriveFolders::Map& drives,
                 MachineFacts& facts, std::string& message) {
  const std::string desktop = registryText(registry, HKEY_CURRENT_USER, kShellFolders, "Desktop");
  facts.user = userOf(desktop);
  readWindowsFacts(registry, windowsFolderOf(registry), facts);
  facts.environment.try_emplace("USERPROFILE", profileOf(desktop, facts.user));
  applyWineVersion(registry, facts);
  useSystemFolder(drives, facts);
  // What Wine tells of every drive that is no disk image.
  for (const auto& [letter, folder] : drives) facts.fileSystems[std::string(1, letter)] = "NTFS";
  if (wanted.empty() || sameName(wanted, facts.user)) return ERROR_SUCCESS;
  message = fmt::format("There is no user {} here; the prefix is {}'s.", wanted, facts.user);
  return ERROR_FILE_NOT_FOUND;
}

std::string whoRuns(const fs::path& folder, pid_t server) {
  // A server in another container has no number here.
  const std::string process = server > 0 ? fmt::format(", process {}", server) : "";
  return fmt::format(
      "{}: programs of this prefix are running (wineserver{}), and their server would overwrite "
      "what is written now. Close them, or wait for their end with \"wineserver -w\", and try "
      "again; reading is possible meanwhile.",
      folder.string(), process);
}

HiveMachineOptions optionsFor(const fs::path& folder, OpenMode mode, const std::string& user,
                              const std::shared_ptr<WineServer>& server) {
  HiveMachineOptions options;
  WineTextHeader head;
  readWineTextHeader(folder / "user.reg", head);  // a bad one is told when the file is opened
  const std::string sid = userKeyOf(head);
  options.kind = "wine";
  options.evidence = fmt::format("system.reg, user.reg and {} of a Wine prefix{}{}",
                                 fs::exists(folder / "dosdevices") ? "dosdevices" : "drive_c",
                                 head.arch.empty() ? "" : ", ", head.arch);
  options.store.folder = folder;
  options.store.mounts = {{kMachineKey, "", folder / "system.reg"},
                          {kUsersKey, sid, folder / "user.reg"}};
  if (fs::exists(folder / "userdef.reg")) {
    options.store.mounts.push_back({kUsersKey, ".Default", folder / "userdef.reg"});
  }
  options.store.open = openWineText;
  options.store.readOnly = mode == OpenMode::Read;
  options.store.mayChange = [server, folder](std::string& reason) {
    const auto running = server->process();
    if (running) reason = whoRuns(folder, *running);
    return running ? ERROR_BUSY : ERROR_SUCCESS;
  };
  options.store.holdOthersOff = [server](FileDescriptor& hold) { return server->keepAway(hold); };
  options.places.userKey = sid;
  options.places.configKey = "System\\CurrentControlSet\\Hardware Profiles\\Current";
  options.drives = drivesOf(folder);
  options.readFacts = [user, drives = options.drives](Registry& registry, MachineFacts& facts,
                                                      std::string& message) {
    return readFacts(registry, user, drives, facts, message);
  };
  options.start = [folder](std::string_view commandLine, Wait wait, int& exitCode,
                           std::string& message) {
    return startWithWine(folder, commandLine, wait, exitCode, message);
  };
  return options;
}

}  // namespace

bool looksLikeWinePrefix(const fs::path& folder) {
  std::error_code error;
  return fs::is_regular_file(folder / "system.reg", error) &&
         fs::is_regular_file(folder / "user.reg", error) &&
         (fs::is_directory(folder / "dosdevices", error) ||
          fs::is_directory(folder / "drive_c", error));
}

OpenedMachine openWineMachine(const fs::path& folder, OpenMode mode, const std::string& user) {
  const fs::path prefix = fs::weakly_canonical(folder);
  const auto server = std::make_shared<WineServer>(prefix);
  const auto running = server->process();
  if (running && mode == OpenMode::ReadWrite) {
    return {nullptr, ERROR_BUSY, whoRuns(prefix, *running)};
  }
  OpenedMachine opened = openHiveMachine(optionsFor(prefix, mode, user, server));
  if (opened.machine && mode == OpenMode::ReadWrite && server->mayRunUnseen()) {
    if (!opened.message.empty()) opened.message += ' ';
    opened.message += fmt::format(
        "{}: the prefix was in use a moment ago, or is in use where its server cannot be seen from "
        "here (in a container). Make sure that none of its programs runs.",
        prefix.string());
  }
  return opened;
}

}  // namespace korvex::platform
