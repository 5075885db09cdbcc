// Reading, setting and deleting.
#include "dialogs/system/icon_cache.h"

#include <string_view>

#include "engine/at_once.h"
#include "engine/raw_value.h"
#include "platform/file_change.h"

namespace korvex::dialogs {

using foundation::Session;
using platform::ERROR_SUCCESS;
using platform::HKEY_LOCAL_MACHINE;
using platform::Status;

namespace {

constexpr std::string_view kExplorerKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer";
constexpr std::string_view kMaxCachedIcons = "Max Cached Icons";
constexpr std::string_view kWindowsLimit = "512";

constexpr std::string_view kSystemIni = "system.ini";
constexpr std::string_view kDiskCache = "vcache";

Status setDiskCache(Session& session, platform::FileChange& files, std::string_view ceiling) {
  Status status = files.guard(session.g_sWinDir + std::string(kSystemIni));
  platform::InitFiles& ini = session.machine().initFiles();
  if (status == ERROR_SUCCESS) {
    status = ini.WritePrivateProfileStringA(kDiskCache, "mincachefile", "0", kSystemIni);
  }
  if (status == ERROR_SUCCESS) {
    status = ini.WritePrivateProfileStringA(kDiskCache, "maxcachefile", ceiling, kSystemIni);
  }
  return status;
}

IconCacheChange finish(platform::FileChange& files, Status status) {
  if (status != ERROR_SUCCESS) return {status, files.rollback()};
  files.commit();
  return {};
}

}  // namespace

Status iconCacheSize(Session& session, std::string& size) {
  engine::RawValue value;
  const Status status = engine::missingIsFine(engine::readRawValue(
      session.registry(), HKEY_LOCAL_MACHINE, kExplorerKey, kMaxCachedIcons, value));
  size = value.text();
  if (size.empty()) size = kWindowsLimit;
  return status;
}

IconCacheChange setIconCacheSize(Session& session, const std::string& size) {
  platform::FileChange files(session.files());
  platform::RegistryChange change(session.registry());
  Status status = change.status();
  if (status == ERROR_SUCCESS) {
    status = engine::putValue(session, HKEY_LOCAL_MACHINE, kExplorerKey, kMaxCachedIcons, size);
  }
  if (status == ERROR_SUCCESS && !session.g_bNT) status = setDiskCache(session, files, size);
  if (status == ERROR_SUCCESS) status = change.commit();
  return finish(files, status);
}

IconCacheChange deleteIconCache(Session& session) {
  platform::FileChange files(session.files());
  const std::string path = session.g_sWinDir + "ShellIconCache";
  // A hidden or read-only file is not deleted as it stands.
  Status status = files.setAttributes(path, 0);
  if (status == ERROR_SUCCESS) status = files.remove(path);
  return finish(files, status);
}

}  // namespace korvex::dialogs
