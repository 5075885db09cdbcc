// Finding an installation of Windows in a folder.
#include "platform/windows_folder/installation.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <fstream>

#include "platform/common/host_lookup.h"
#include "platform/text/text.h"
#include "platform/windows_folder/hive_lookup.h"
#include "platform/windows_folder/regf_hive.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

// A Windows folder by its files: those of the NT family, or those of 95, 98 and Me.
bool hasHives(const fs::path& windows) {
  const auto config = hostPath(windows, "system32\\config");
  return config && hostPath(*config, "software") && hostPath(*config, "system");
}

bool isCreg(const fs::path& file) {
  std::array<char, 4> mark{};
  std::ifstream(file, std::ios::binary).read(mark.data(), mark.size());
  return std::memcmp(mark.data(), "CREG", mark.size()) == 0;
}

bool hasNineXFiles(const fs::path& windows) {
  for (const char* const name : {"system.dat", "user.dat"}) {
    const auto file = hostPath(windows, name);
    if (file && isCreg(*file)) return true;
  }
  return false;
}

std::vector<fs::path> windowsFolders(const fs::path& folder, bool (*wanted)(const fs::path&)) {
  if (wanted(folder)) return {folder};
  std::vector<fs::path> found = foldersIn(folder);
  std::erase_if(found, [&](const fs::path& path) { return !wanted(path); });
  return found;
}

// The hives of one Windows folder, known by what stands below their roots.
struct Candidate {
  fs::path windows;
  fs::path config;
  fs::path system;
  fs::path software;
  std::unique_ptr<HiveFile> hive;  // SOFTWARE
  HiveNode version = kNoNode;      // its Microsoft\Windows NT\CurrentVersion
  std::string systemRoot;
};

Status openFor(const fs::path& file, std::string_view mark, std::unique_ptr<HiveFile>& hive,
               std::string& message) {
  OpenedHive opened = openRegfHive(file);
  message = opened.message;
  if (opened.hive == nullptr) return opened.status;
  hive = std::move(opened.hive);
  if (hiveKey(*hive, {mark}) != kNoNode) return ERROR_SUCCESS;
  message = fmt::format("{}: this hive is not what its name says: it has no key {}.", file.string(),
                        mark);
  return ERROR_NOT_REGISTRY_FILE;
}

Status readCandidate(const fs::path& windows, Candidate& candidate, std::string& message) {
  candidate.windows = windows;
  candidate.config = hostPath(windows, "system32\\config").value_or(windows);
  candidate.system = hostPath(candidate.config, "system").value_or(windows);
  candidate.software = hostPath(candidate.config, "software").value_or(windows);
  std::unique_ptr<HiveFile> system;
  Status status = openFor(candidate.system, "Select", system, message);
  if (status == ERROR_SUCCESS) {
    status = openFor(candidate.software, "Microsoft", candidate.hive, message);
  }
  if (status != ERROR_SUCCESS) return status;
  candidate.version = hiveKey(*candidate.hive, {"Microsoft", "Windows NT", "CurrentVersion"});
  candidate.systemRoot = hiveText(*candidate.hive, candidate.version, "SystemRoot");
  return ERROR_SUCCESS;
}

bool isDriveLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }

// "C:\WINNT" for the folder WINNT; what the registry tells of another folder is of no use here.
bool namesFolder(const std::string& systemRoot, const fs::path& windows) {
  const std::string name = windows.filename().string();
  return systemRoot.size() == name.size() + 3 && isDriveLetter(systemRoot[0]) &&
         systemRoot[1] == ':' && systemRoot[2] == '\\' &&
         sameName(std::string_view(systemRoot).substr(3), name);
}

// Of several Windows folders on a drive the one whose registry says that it is this one.
Status choose(const std::vector<fs::path>& folders, Candidate& chosen, std::string& message) {
  if (folders.size() == 1) return readCandidate(folders.front(), chosen, message);
  std::vector<Candidate> fitting;
  std::string names;
  for (const fs::path& folder : folders) {
    names += (names.empty() ? "" : ", ") + folder.filename().string();
    Candidate candidate;
    std::string ignored;
    if (readCandidate(folder, candidate, ignored) != ERROR_SUCCESS) continue;
    if (namesFolder(candidate.systemRoot, folder)) fitting.push_back(std::move(candidate));
  }
  if (fitting.size() == 1) {
    chosen = std::move(fitting.front());
    return ERROR_SUCCESS;
  }
  message = fmt::format(
      "{}: there are several Windows folders here ({}). Name the one that is "
      "meant.",
      folders.front().parent_path().string(), names);
  return ERROR_ALREADY_EXISTS;
}

std::string replaced(std::string text, std::string_view variable, std::string_view value) {
  if (text.size() >= variable.size() &&
      sameName(std::string_view(text).substr(0, variable.size()), variable)) {
    text.replace(0, variable.size(), value);
  }
  return text;
}

// When the hive was written last: what it says itself, where that can be.
std::int64_t timeOf(const fs::path& hive) {
  constexpr std::int64_t kTicksPerSecond = 10'000'000;
  constexpr std::int64_t kUnixEpoch = 11'644'473'600;  // seconds since 1601
  constexpr std::int64_t kFirst = 725'846'400;         // 1993, the year of the first NT
  constexpr std::int64_t kLast = 4'102'444'800;        // 2100
  std::array<char, 20> header{};
  std::ifstream(hive, std::ios::binary).read(header.data(), header.size());
  std::int64_t ticks = 0;
  std::memcpy(&ticks, header.data() + 12, sizeof ticks);
  const std::int64_t seconds = ticks / kTicksPerSecond - kUnixEpoch;
  if (seconds >= kFirst && seconds < kLast) return seconds;
  struct stat status {};
  return ::stat(hive.c_str(), &status) == 0 ? status.st_mtim.tv_sec : 0;
}

bool isSystemAccount(std::string_view sid) {
  return sid == "S-1-5-18" || sid == "S-1-5-19" || sid == "S-1-5-20";
}

// False where the profile lies on another drive, or its hive is missing.
bool findProfile(const Installation& found, InstalledUser& user) {
  if (user.profile.size() < 4 || !sameName(user.profile.substr(0, 1), {&found.letter, 1}) ||
      user.profile.substr(1, 2) != ":\\") {
    return false;
  }
  const auto folder = hostPath(found.drive, user.profile.substr(3));
  const auto hive = folder ? hostPath(*folder, "ntuser.dat") : folder;
  if (!hive) return false;
  user.folder = *folder;
  user.hive = *hive;
  user.classes =
      hostPath(*folder, "Local Settings\\Application Data\\Microsoft\\Windows\\UsrClass.dat")
          .value_or(hostPath(*folder, "AppData\\Local\\Microsoft\\Windows\\UsrClass.dat")
                        .value_or(fs::path()));
  user.name = user.profile.substr(user.profile.rfind('\\') + 1);
  user.used = timeOf(*hive);
  return true;
}

void findUsers(Candidate& candidate, Installation& found) {
  const HiveNode list = hiveChild(*candidate.hive, candidate.version, "ProfileList");
  std::vector<HiveChild> sids;
  if (list == kNoNode || candidate.hive->children(list, sids) != ERROR_SUCCESS) return;
  std::string missing;
  for (const HiveChild& sid : sids) {
    InstalledUser user;
    user.sid = sid.name;
    user.profile = hiveText(*candidate.hive, sid.node, "ProfileImagePath");
    if (user.profile.empty() || isSystemAccount(sid.name)) continue;
    user.profile = replaced(user.profile, "%SystemDrive%", found.windowsFolder.substr(0, 2));
    user.profile = replaced(user.profile, "%SystemRoot%", found.windowsFolder);
    if (findProfile(found, user)) {
      found.users.push_back(user);
    } else {
      missing += (missing.empty() ? "" : ", ") + user.profile;
    }
  }
  std::stable_sort(found.users.begin(), found.users.end(),
                   [](const auto& a, const auto& b) { return a.used > b.used; });
  if (!missing.empty()) found.evidence += "; not on this drive: " + missing;
}

}  // namespace

FolderKind kindOfWindowsFolder(const fs::path& folder) {
  if (!windowsFolders(folder, hasHives).empty()) return FolderKind::NtFamily;
  if (!windowsFolders(folder, hasNineXFiles).empty()) return FolderKind::Windows9x;
  return FolderKind::Unknown;
}

Status findInstallation(const fs::path& folder, Installation& installation, std::string& message) {
  std::error_code error;
  const fs::path real = fs::canonical(folder, error);
  const std::vector<fs::path> folders = windowsFolders(real, hasHives);
  if (error || folders.empty()) {
    message = fmt::format(
        "{}: there is no Windows folder with the hives SYSTEM and SOFTWARE in "
        "system32/config. Name the drive of an installed Windows.",
        folder.string());
    return ERROR_FILE_NOT_FOUND;
  }
  Candidate candidate;
  const Status status = choose(folders, candidate, message);
  if (status != ERROR_SUCCESS) return status;
  Installation found;
  found.windows = candidate.windows;
  found.drive = candidate.windows.parent_path();
  found.config = candidate.config;
  found.system = candidate.system;
  found.software = candidate.software;
  found.defaultUser = hostPath(candidate.config, "default").value_or(fs::path());
  const bool told = namesFolder(candidate.systemRoot, candidate.windows);
  found.windowsFolder =
      told ? candidate.systemRoot : "C:\\" + candidate.windows.filename().string();
  found.letter =
      static_cast<char>(std::toupper(static_cast<unsigned char>(found.windowsFolder.front())));
  found.evidence = fmt::format("hives in {}", fs::relative(found.config, found.drive).string());
  findUsers(candidate, found);
  installation = std::move(found);
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform
