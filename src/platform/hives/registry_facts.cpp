// Reading what a registry tells of its own Windows.
#include "platform/hives/registry_facts.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/text/text.h"

namespace korvex::platform {
namespace {

constexpr std::string_view kVersionKey = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
constexpr std::string_view kControl = "SYSTEM\\CurrentControlSet\\Control";
constexpr std::string_view kEnvironment =
    "SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment";

bool readNumber(Registry& registry, std::string_view key, std::string_view value,
                std::uint32_t& number) {
  const OpenKey open(registry, HKEY_LOCAL_MACHINE, key, KEY_READ);
  RegType type = REG_NONE;
  std::uint32_t size = sizeof number;
  std::uint32_t read = 0;
  if (open.status() != ERROR_SUCCESS ||
      registry.RegQueryValueExA(open.get(), value, &type, &read, &size) != ERROR_SUCCESS ||
      type != REG_DWORD || size != sizeof read) {
    return false;
  }
  number = read;
  return true;
}

// "5.1" and "2600"; later systems tell the version of their day in two numbers.
void readVersion(Registry& registry, VersionInfo& version) {
  const auto text = [&](std::string_view value) {
    return registryText(registry, HKEY_LOCAL_MACHINE, kVersionKey, value);
  };
  version.platformId = VER_PLATFORM_WIN32_NT;
  const std::string current = text("CurrentVersion");
  version.majorVersion = static_cast<std::uint32_t>(std::strtoul(current.c_str(), nullptr, 10));
  const std::size_t point = current.find('.');
  version.minorVersion =
      point == std::string::npos
          ? 0
          : static_cast<std::uint32_t>(std::strtoul(current.c_str() + point + 1, nullptr, 10));
  readNumber(registry, kVersionKey, "CurrentMajorVersionNumber", version.majorVersion);
  readNumber(registry, kVersionKey, "CurrentMinorVersionNumber", version.minorVersion);
  std::string build = text("CurrentBuildNumber");
  if (build.empty()) build = text("CurrentBuild");
  version.buildNumber = static_cast<std::uint32_t>(std::strtoul(build.c_str(), nullptr, 10));
  version.csdVersion = text("CSDVersion");
}

int codePageOf(Registry& registry, std::string_view value, int fallback) {
  const std::string key = std::string(kControl) + "\\Nls\\CodePage";
  const int number = std::atoi(registryText(registry, HKEY_LOCAL_MACHINE, key, value).c_str());
  return CodePage::find(number) != nullptr ? number : fallback;
}

using Variables = std::vector<std::pair<std::string, std::string>>;

void readVariables(Registry& registry, HKEY root, std::string_view key, Variables& variables) {
  const OpenKey open(registry, root, key, KEY_READ);
  if (open.status() != ERROR_SUCCESS) return;
  std::array<char, kNameBufferBytes> name{};
  for (std::uint32_t i = 0;; ++i) {
    auto length = static_cast<std::uint32_t>(name.size());
    if (registry.RegEnumValueA(open.get(), i, name.data(), &length, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      return;
    }
    variables.emplace_back(name.data(), registryText(registry, root, key, name.data()));
  }
}

// The variables may name each other in any order; what none tells stays as it is.
std::string expand(const std::map<std::string, std::string>& known, std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t start = text.find('%');
    const std::size_t end = start == std::string_view::npos ? start : text.find('%', start + 1);
    if (end == std::string_view::npos) break;
    const auto found = known.find(foldName(text.substr(start + 1, end - start - 1)));
    result += text.substr(0, start);
    result += found != known.end() ? found->second : text.substr(start, end - start + 1);
    text.remove_prefix(end + 1);
  }
  return result.append(text);
}

std::string firstOf(const std::map<std::string, std::string>& variables, const char* name) {
  const auto found = variables.find(name);
  return found == variables.end() ? std::string() : found->second;
}

void readEnvironment(Registry& registry, MachineFacts& facts) {
  auto& known = facts.environment;
  known["SYSTEMROOT"] = known["WINDIR"] = facts.windowsFolder;
  known["SYSTEMDRIVE"] = facts.windowsFolder.substr(0, 2);
  known["USERNAME"] = facts.user;
  known["COMPUTERNAME"] = facts.computerName;
  const std::string programs =
      registryText(registry, HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion",
                   "ProgramFilesDir");
  if (!programs.empty()) known["PROGRAMFILES"] = programs;
  Variables variables;
  readVariables(registry, HKEY_LOCAL_MACHINE, kEnvironment, variables);
  readVariables(registry, HKEY_CURRENT_USER, "Volatile Environment", variables);
  readVariables(registry, HKEY_CURRENT_USER, "Environment", variables);
  for (const auto& [name, text] : variables) known[foldName(name)] = expand(known, text);
  // Once more, for those that were named before they were told.
  for (auto& [name, text] : known) text = expand(known, text);
}

}  // namespace

std::string registryText(Registry& registry, HKEY root, std::string_view key,
                         std::string_view value) {
  const OpenKey open(registry, root, key, KEY_READ);
  if (open.status() != ERROR_SUCCESS) return {};
  RegType type = REG_NONE;
  std::uint32_t size = 0;
  Status status = registry.RegQueryValueExA(open.get(), value, &type, nullptr, &size);
  if (status != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ)) return {};
  std::string text(size, '\0');
  status = registry.RegQueryValueExA(open.get(), value, &type, text.data(), &size);
  if (status != ERROR_SUCCESS) return {};
  return text.substr(0, text.find('\0'));
}

std::string windowsName(const MachineFacts& facts) {
  const VersionInfo& version = facts.version;
  const bool server = facts.productType == "ServerNT" || facts.productType == "LanmanNT";
  const std::uint32_t number = version.majorVersion * 100 + version.minorVersion;
  if (facts.family == Family::NineX) {
    return number < 410 ? "Windows 95" : number < 490 ? "Windows 98" : "Windows Me";
  }
  if (version.majorVersion <= 4) {
    return std::string("Windows NT 4.0 ") + (server ? "Server" : "Workstation");
  }
  if (number == 500) return std::string("Windows 2000 ") + (server ? "Server" : "Professional");
  if (number == 501) return "Windows XP";
  if (number == 502) return "Windows Server 2003";
  return facts.name.empty() ? "Windows NT " + versionText(facts) : facts.name;
}

void readWindowsFacts(Registry& registry, std::string_view systemRoot, MachineFacts& facts) {
  readVersion(registry, facts.version);
  const std::string control(kControl);
  const auto text = [&](const std::string& key, std::string_view value) {
    return registryText(registry, HKEY_LOCAL_MACHINE, key, value);
  };
  facts.productType = text(control + "\\ProductOptions", "ProductType");
  facts.computerName = text(control + "\\ComputerName\\ComputerName", "ComputerName");
  facts.codePage = codePageOf(registry, "ACP", 1252);
  facts.oemCodePage = codePageOf(registry, "OEMCP", 437);
  facts.name = text(std::string(kVersionKey), "ProductName");
  facts.name = windowsName(facts);
  facts.windowsFolder = text(std::string(kVersionKey), "SystemRoot");
  if (facts.windowsFolder.size() < 3) facts.windowsFolder = systemRoot;
  facts.systemFolder = facts.windowsFolder + "\\system32";
  readEnvironment(registry, facts);
  facts.tempFolder = firstOf(facts.environment, "TEMP");
  if (facts.tempFolder.empty()) facts.tempFolder = facts.windowsFolder + "\\TEMP";
}

}  // namespace korvex::platform
