// What a machine says about itself: Windows version, folders, names, rights, file versions.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace korvex::platform {

constexpr std::uint32_t VER_PLATFORM_WIN32_WINDOWS = 1;  // 95, 98, Me
constexpr std::uint32_t VER_PLATFORM_WIN32_NT = 2;

struct VersionInfo {  // OSVERSIONINFOA
  std::uint32_t platformId = 0;
  std::uint32_t majorVersion = 0;
  std::uint32_t minorVersion = 0;
  std::uint32_t buildNumber = 0;
  std::string csdVersion;  // "Service Pack 6" or ""
};

// Source: verrsrc.h as Windows documents it.
constexpr std::uint32_t VS_FF_DEBUG = 0x1;
constexpr std::uint32_t VS_FF_PRERELEASE = 0x2;
constexpr std::uint32_t VS_FF_PATCHED = 0x4;
constexpr std::uint32_t VS_FF_PRIVATEBUILD = 0x8;
constexpr std::uint32_t VS_FF_INFOINFERRED = 0x10;
constexpr std::uint32_t VS_FF_SPECIALBUILD = 0x20;

struct FileVersion {  // the part of VS_FIXEDFILEINFO that is used
  std::uint16_t major = 0;
  std::uint16_t minor = 0;
  std::uint16_t build = 0;
  std::uint16_t revision = 0;
  std::uint32_t flags = 0;  // VS_FF_... bits
};

class SystemInfo {
 public:
  virtual ~SystemInfo() = default;

  // The high bit is set on 95, 98 and Me; low byte major, next byte minor version.
  virtual std::uint32_t GetVersion() = 0;
  virtual Status GetVersionExA(VersionInfo& info) = 0;
  // Folders without a trailing backslash (but "C:\").
  virtual std::string GetWindowsDirectoryA() = 0;
  virtual std::string GetSystemDirectoryA() = 0;
  // With a trailing backslash, as Windows returns it.
  virtual std::string GetTempPathA() = 0;
  // %NAME% without regard to case; an unknown name stays as it is.
  virtual std::string ExpandEnvironmentStringsA(std::string_view text) = 0;
  virtual Status GetShortPathNameA(std::string_view path, std::string& result) = 0;
  virtual std::string GetUserNameA() = 0;
  virtual std::string GetComputerNameA() = 0;
  // GetFileVersionInfoA and VerQueryValueA in one. 2: no such file; 1813 would be Windows' word for
  // a file without a version resource, told here as ERROR_INVALID_DATA.
  virtual Status GetFileVersionInfoA(std::string_view path, FileVersion& version) = 0;
  // The file system of a drive ("C:\\" or "C:"): "FAT", "FAT32", "NTFS"; "" where it cannot be
  // told.
  virtual std::string fileSystemOf(std::string_view) { return {}; }
  // Whether the user may administer the machine; always true on 95, 98 and Me.
  virtual bool isAdministrator() = 0;
};

}  // namespace korvex::platform
