// Which Windows a prefix is set to be.
#include "platform/wine/wine_version.h"

#include <cstdio>
#include <iterator>
#include <string>
#include <string_view>

#include "platform/hives/registry_facts.h"
#include "platform/text/text.h"

namespace korvex::platform {
namespace {

struct NamedVersion {
  std::string_view name;
  std::uint32_t major, minor, build;
  const char* servicePack;
  bool nt;
};

// Source: the names that Wine's configuration program stores, and the versions they stand for.
constexpr NamedVersion kVersions[] = {
    {"win95", 4, 0, 950, "", false},
    {"win98", 4, 10, 2222, " A ", false},
    {"winme", 4, 90, 3000, " ", false},
    {"nt351", 3, 51, 1057, "Service Pack 5", true},
    {"nt40", 4, 0, 1381, "Service Pack 6a", true},
    {"win2k", 5, 0, 2195, "Service Pack 4", true},
    {"winxp", 5, 1, 2600, "Service Pack 3", true},
    {"winxp64", 5, 2, 3790, "Service Pack 2", true},
    {"win2003", 5, 2, 3790, "Service Pack 2", true},
    {"vista", 6, 0, 6002, "Service Pack 2", true},
    {"win2008", 6, 0, 6002, "Service Pack 2", true},
    {"win7", 6, 1, 7601, "Service Pack 1", true},
    {"win2008r2", 6, 1, 7601, "Service Pack 1", true},
    {"win8", 6, 2, 9200, "", true},
    {"win81", 6, 3, 9600, "", true},
    {"win10", 10, 0, 19043, "", true},
    {"win11", 10, 0, 22000, "", true},
};

void use(const NamedVersion& version, MachineFacts& facts) {
  facts.family = version.nt ? Family::Nt : Family::NineX;
  facts.version = {version.nt ? VER_PLATFORM_WIN32_NT : VER_PLATFORM_WIN32_WINDOWS, version.major,
                   version.minor, version.build, version.servicePack};
}

// A prefix that is a 95, 98 or Me has no version of NT, but "4.10.2222".
void useNineX(Registry& registry, MachineFacts& facts) {
  constexpr std::string_view kKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion";
  const std::string text = registryText(registry, HKEY_LOCAL_MACHINE, kKey, "VersionNumber");
  unsigned major = 0;
  unsigned minor = 0;
  unsigned build = 0;
  if (std::sscanf(text.c_str(), "%u.%u.%u", &major, &minor, &build) != 3 || major != 4) return;
  facts.family = Family::NineX;
  facts.version = {VER_PLATFORM_WIN32_WINDOWS, major, minor, build,
                   registryText(registry, HKEY_LOCAL_MACHINE, kKey, "SubVersionNumber")};
}

}  // namespace

void applyWineVersion(Registry& registry, MachineFacts& facts) {
  const std::string set = registryText(registry, HKEY_CURRENT_USER, "Software\\Wine", "Version");
  bool named = false;
  for (const NamedVersion& version : kVersions) {
    if (!sameName(version.name, set)) continue;
    use(version, facts);
    named = true;
  }
  if (!named && facts.version.majorVersion == 0) useNineX(registry, facts);
  if (facts.family == Family::NineX) {
    facts.productType.clear();
  } else if (facts.productType.empty()) {
    facts.productType = "WinNT";
  }
  facts.name = windowsName(facts);
}

}  // namespace korvex::platform
