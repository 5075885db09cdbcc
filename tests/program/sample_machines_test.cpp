// The sample installations hold what Korvex relies on: each is made into a machine and looked at
// through the machine's own calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/common/reg_import.h"
#include "support/machines.h"

namespace korvex::test {
namespace {

using namespace korvex::platform;  // NOLINT: the names are the tests' subject

constexpr std::string_view kCurrentVersion = R"(Software\Microsoft\Windows\CurrentVersion)";

struct Sample {
  const char* id;
  bool nt;
  const char* kernel;     // how the kernel's version begins
  const char* ieVersion;  // what Internet Explorer says of itself
  const char* office;     // the key of the installed Office, "" for none
  const char* jet;        // the newest Jet engine
};

void PrintTo(const Sample& sample, std::ostream* out) { *out << sample.id; }

constexpr Sample kSamples[] = {
    {"windows-95", false, "4.0.", "4.72.", "", "3.0"},
    {"windows-98", false, "4.10.", "5.00.", "8.0", "3.5"},
    {"windows-me", false, "4.90.", "5.50.", "9.0", "4.0"},
    {"windows-nt4", true, "4.0.", "4.72.", "8.0", "3.5"},
    {"windows-2000", true, "5.0.", "5.00.", "9.0", "4.0"},
    {"windows-2000-server", true, "5.0.", "5.00.", "", "4.0"},
};

struct Value {
  RegType type = REG_NONE;
  std::string data;  // texts without their terminating zero
  bool found = false;
};

class SampleMachine : public testing::TestWithParam<Sample> {
 protected:
  Value read(HKEY root, std::string_view path, std::string_view name) {
    OpenKey key{machine_.registry(), root, path, KEY_QUERY_VALUE};
    Value value;
    std::uint32_t size = 0;
    if (key.status() != ERROR_SUCCESS ||
        machine_.registry().RegQueryValueExA(key.get(), name, &value.type, nullptr, &size) != 0) {
      return value;
    }
    value.data.resize(size);
    value.found = machine_.registry().RegQueryValueExA(key.get(), name, &value.type,
                                                       value.data.data(), &size) == 0;
    const bool text = value.type == REG_SZ || value.type == REG_EXPAND_SZ;
    if (text && !value.data.empty() && value.data.back() == '\0') value.data.pop_back();
    return value;
  }
  std::string text(HKEY root, std::string_view path, std::string_view name) {
    return machine_->systemInfo().ExpandEnvironmentStringsA(read(root, path, name).data);
  }
  bool hasKey(HKEY root, std::string_view path) {
    return OpenKey{machine_.registry(), root, path, KEY_READ}.status() == ERROR_SUCCESS;
  }
  std::vector<std::string> subKeys(HKEY root, const std::string& path) {
    OpenKey key{machine_.registry(), root, path, KEY_READ};
    std::vector<std::string> names;
    std::string name(kNameBufferBytes, '\0');
    for (std::uint32_t index = 0; key.status() == ERROR_SUCCESS; ++index) {
      auto length = static_cast<std::uint32_t>(name.size());
      if (machine_.registry().RegEnumKeyExA(key.get(), index, name.data(), &length) != 0) break;
      names.emplace_back(name.data(), length);
    }
    return names;
  }
  std::vector<std::string> valueNames(HKEY root, const std::string& path) {
    OpenKey key{machine_.registry(), root, path, KEY_READ};
    std::vector<std::string> names;
    std::string name(kNameBufferBytes, '\0');
    for (std::uint32_t index = 0; key.status() == ERROR_SUCCESS; ++index) {
      auto length = static_cast<std::uint32_t>(name.size());
      if (machine_.registry().RegEnumValueA(key.get(), index, name.data(), &length, nullptr,
                                            nullptr, nullptr) != 0) {
        break;
      }
      names.emplace_back(name.data(), length);
    }
    return names;
  }
  std::uint32_t attributes(const std::string& path) {
    std::uint32_t attributes = 0;
    EXPECT_EQ(ERROR_SUCCESS, machine_->files().attributes(path, attributes)) << path;
    return attributes;
  }
  void expectFolder(const std::string& path, const std::string& named) {
    EXPECT_TRUE(attributes(path) & FILE_ATTRIBUTE_DIRECTORY) << named << " is no folder: " << path;
  }
  static std::string under(std::string_view key) {
    return std::string(kCurrentVersion) + "\\" + std::string(key);
  }

  TestMachine machine_{std::string(GetParam().id)};
  SystemInfo& system_ = machine_->systemInfo();
};

std::string unquoted(std::string path) {
  std::erase(path, '"');
  return path;
}

// Also a second time, into the machine that it made.
TEST_P(SampleMachine, ImportRefusesNoLineAndHasNothingToRemark) {
  const auto folder = std::filesystem::path(KORVEX_DATA_DIR) / "machines" / GetParam().id;
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder / "registry")) {
    const RegImportResult result = importRegFile(machine_.registry(), entry.path());
    EXPECT_EQ(ERROR_SUCCESS, result.status) << result.message;
    EXPECT_EQ(0u, result.refused + result.notes)
        << (result.messages.empty() ? "" : result.messages.front());
    EXPECT_GT(result.keys, 4u) << entry.path();
    ++files;
  }
  EXPECT_GE(files, 8u);
}

TEST_P(SampleMachine, VersionsAreThoseOfTheSystem) {
  FileVersion kernel;
  const std::string file = system_.GetSystemDirectoryA() + "\\Kernel32.dll";
  ASSERT_EQ(ERROR_SUCCESS, system_.GetFileVersionInfoA(file, kernel));
  VersionInfo version;
  ASSERT_EQ(ERROR_SUCCESS, system_.GetVersionExA(version));
  EXPECT_EQ(GetParam().nt ? VER_PLATFORM_WIN32_NT : VER_PLATFORM_WIN32_WINDOWS, version.platformId);
  EXPECT_EQ(version.majorVersion, kernel.major);
  EXPECT_EQ(version.minorVersion, kernel.minor);
  const std::string begins = std::to_string(kernel.major) + "." + std::to_string(kernel.minor);
  EXPECT_EQ(GetParam().kernel, begins + ".");
  // The 9x family tells its version once more in the upper half.
  const std::string build = std::to_string(version.buildNumber & 0xFFFF);
  constexpr std::string_view kNt = R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";
  EXPECT_EQ(build, GetParam().nt
                       ? text(HKEY_LOCAL_MACHINE, kNt, "CurrentBuildNumber")
                       : text(HKEY_LOCAL_MACHINE, kCurrentVersion, "VersionNumber").substr(5));
}

TEST_P(SampleMachine, ShellFoldersAreFoldersOfTheDisk) {
  const std::string key = under(R"(Explorer\Shell Folders)");
  for (const char* needed :
       {"Desktop", "Favorites", "Start Menu", "Programs", "Startup", "AppData", "Recent", "SendTo",
        "Personal", "Cache", "Cookies", "History", "NetHood", "Fonts", "Templates"}) {
    EXPECT_TRUE(read(HKEY_CURRENT_USER, key, needed).found) << needed;
  }
  for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    for (const std::string& name : valueNames(root, key)) {
      expectFolder(text(root, key, name), name);
      const std::string twin = text(root, under(R"(Explorer\User Shell Folders)"), name);
      if (!twin.empty()) {
        EXPECT_EQ(twin, text(root, key, name)) << name;
      }
    }
  }
}

TEST_P(SampleMachine, EveryApplicationPathLeadsToAFile) {
  const std::string key = under("App Paths");
  const auto programs = subKeys(HKEY_LOCAL_MACHINE, key);
  EXPECT_GE(programs.size(), 5u);
  for (const std::string& program : programs) {
    const std::string path = unquoted(text(HKEY_LOCAL_MACHINE, key + "\\" + program, ""));
    EXPECT_FALSE(attributes(path) & FILE_ATTRIBUTE_DIRECTORY) << program;
    std::string folder = text(HKEY_LOCAL_MACHINE, key + "\\" + program, "Path");
    if (folder.ends_with(';')) folder.pop_back();
    if (!folder.empty()) expectFolder(folder, program);
  }
}

TEST_P(SampleMachine, InternetExplorerIsFoundByItsApplicationPath) {
  const std::string key = under(R"(App Paths\IEXPLORE.EXE)");
  EXPECT_TRUE(read(HKEY_LOCAL_MACHINE, key, "Path").found);
  FileVersion version;
  EXPECT_EQ(ERROR_SUCCESS, system_.GetFileVersionInfoA(text(HKEY_LOCAL_MACHINE, key, ""), version));
  const std::string told =
      text(HKEY_LOCAL_MACHINE, R"(Software\Microsoft\Internet Explorer)", "Version");
  EXPECT_TRUE(told.starts_with(GetParam().ieVersion)) << told;
  EXPECT_EQ(std::stoi(told), version.major);
  EXPECT_EQ(ERROR_SUCCESS,
            system_.GetFileVersionInfoA(system_.GetSystemDirectoryA() + "\\Shdocvw.dll", version));
}

TEST_P(SampleMachine, CurrentControlSetIsThatOfTheComputer) {
  const std::string control = R"(System\CurrentControlSet\Control)";
  EXPECT_EQ(system_.GetComputerNameA(),
            text(HKEY_LOCAL_MACHINE, control + R"(\ComputerName\ComputerName)", "ComputerName"));
  EXPECT_EQ(machine_->describe().product,
            text(HKEY_LOCAL_MACHINE, control + R"(\ProductOptions)", "ProductType"));
  EXPECT_EQ(GetParam().nt, hasKey(HKEY_LOCAL_MACHINE, R"(SYSTEM\Select)"));
  EXPECT_EQ(GetParam().nt, hasKey(HKEY_LOCAL_MACHINE, R"(SYSTEM\ControlSet001\Services\Tcpip)"));
  EXPECT_TRUE(hasKey(HKEY_CURRENT_CONFIG, ""));
  if (GetParam().nt) {
    const Value groups = read(HKEY_LOCAL_MACHINE, control + R"(\ServiceGroupOrder)", "List");
    EXPECT_EQ(REG_MULTI_SZ, groups.type);
    EXPECT_GE(std::count(groups.data.begin(), groups.data.end(), '\0'), 20);
  } else {
    const Value driver =
        read(HKEY_LOCAL_MACHINE, R"(System\CurrentControlSet\Services\VxD\VCOMM)", "StaticVxD");
    EXPECT_EQ(REG_SZ, driver.type);
    EXPECT_EQ("*vcomm", driver.data);
  }
}

TEST_P(SampleMachine, UserValuesHaveTheTypesOfTheSystem) {
  const Value delay = read(HKEY_CURRENT_USER, R"(Control Panel\Desktop)", "MenuShowDelay");
  EXPECT_EQ(REG_SZ, delay.type);
  EXPECT_GE(std::stoi(delay.data), 200);
  const Value autoRun =
      read(HKEY_CURRENT_USER, under(R"(Policies\Explorer)"), "NoDriveTypeAutoRun");
  EXPECT_EQ(GetParam().nt ? REG_DWORD : REG_BINARY, autoRun.type);
  EXPECT_EQ(std::string("\x95\0\0\0", 4), autoRun.data);
  EXPECT_EQ("play", text(HKEY_CLASSES_ROOT, R"(AudioCD\shell)", ""));
  EXPECT_EQ("Paint.Picture", text(HKEY_CLASSES_ROOT, ".bmp", ""));
  if (GetParam().nt) {
    const Value floppies =
        read(HKEY_LOCAL_MACHINE, R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion\Winlogon)",
             "AllocateFloppies");
    EXPECT_EQ(REG_SZ, floppies.type);
    EXPECT_EQ("0", floppies.data);
  }
}

TEST_P(SampleMachine, OwnerStandsWhereTheSystemKeepsIt) {
  const std::string nt = R"(Software\Microsoft\Windows NT\CurrentVersion)";
  const std::string key = GetParam().nt ? nt : std::string(kCurrentVersion);
  const std::string other = GetParam().nt ? std::string(kCurrentVersion) : nt;
  EXPECT_FALSE(text(HKEY_LOCAL_MACHINE, key, "RegisteredOwner").empty());
  EXPECT_TRUE(text(HKEY_LOCAL_MACHINE, other, "RegisteredOwner").empty());
  EXPECT_FALSE(system_.GetUserNameA().empty());
}

TEST_P(SampleMachine, BootFilesAreHiddenAndOfTheRightSize) {
  constexpr std::uint32_t kRhs =
      FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  const std::string file = GetParam().nt ? "C:\\BOOT.INI" : "C:\\MSDOS.SYS";
  EXPECT_EQ(kRhs, attributes(file) & kRhs) << file;
  std::string bytes;
  ASSERT_EQ(ERROR_SUCCESS, machine_->files().read(file, bytes));
  EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'),
            std::count(bytes.begin(), bytes.end(), '\r'));
  InitFiles& ini = machine_->initFiles();
  if (GetParam().nt) {
    const std::string start = ini.GetPrivateProfileStringA("boot loader", "default", "", file);
    EXPECT_FALSE(ini.GetPrivateProfileStringA("operating systems", start, "", file).empty());
  } else {
    EXPECT_GT(bytes.size(), 1024u);
    EXPECT_EQ(system_.GetWindowsDirectoryA(),
              ini.GetPrivateProfileStringA("Paths", "WinDir", "", file));
  }
}

TEST_P(SampleMachine, IniFilesHaveTheLinesOfTheSystem) {
  InitFiles& ini = machine_->initFiles();
  const std::string keys = ini.GetProfileStringA("Windows", std::nullopt, "");
  EXPECT_NE(std::string::npos, keys.find("load"));
  EXPECT_NE(std::string::npos, keys.find("run"));
  const std::string devices = ini.GetPrivateProfileSectionA("386Enh", "system.ini");
  std::size_t count = 0;
  for (std::size_t at = devices.find("device="); at != std::string::npos;
       at = devices.find("device=", at + 1)) {
    ++count;
  }
  if (GetParam().nt) {
    EXPECT_EQ(0u, count);
  } else {
    EXPECT_GE(count, 5u);  // several of one key: what a rewrite must not fold together
  }
}

TEST_P(SampleMachine, ProgramsStartFromSeveralAreas) {
  EXPECT_FALSE(valueNames(HKEY_LOCAL_MACHINE, under("Run")).empty());
  EXPECT_TRUE(hasKey(HKEY_LOCAL_MACHINE, under("RunOnce")));
  EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, under("Run")));
  EXPECT_EQ(!GetParam().nt, !valueNames(HKEY_LOCAL_MACHINE, under("RunServices")).empty());
  std::size_t links = 0;
  for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    const char* const name = root == HKEY_CURRENT_USER ? "Startup" : "Common Startup";
    std::vector<FileEntry> files;
    machine_->files().list(text(root, under(R"(Explorer\Shell Folders)"), name) + R"(\*.lnk)",
                           files);
    links += files.size();
  }
  EXPECT_GE(links, 1u);
}

TEST_P(SampleMachine, SomeProgramsUninstallOnlyQuietly) {
  const std::string key = under("Uninstall");
  std::size_t named = 0;
  std::size_t quiet = 0;
  for (const std::string& program : subKeys(HKEY_LOCAL_MACHINE, key)) {
    const bool shown = read(HKEY_LOCAL_MACHINE, key + "\\" + program, "DisplayName").found;
    named += shown ? 1 : 0;
    quiet += !shown && read(HKEY_LOCAL_MACHINE, key + "\\" + program, "QuietDisplayName").found;
  }
  EXPECT_GE(named, 2u);
  EXPECT_GE(quiet, 1u);
}

TEST_P(SampleMachine, OfficeAndJetAreOfOneAge) {
  const std::string office = GetParam().office;
  const std::string base = R"(Software\Microsoft\Office\)";
  for (const std::string version : {"8.0", "9.0"}) {
    EXPECT_EQ(office == version, hasKey(HKEY_CURRENT_USER, base + version)) << version;
  }
  if (!office.empty()) {
    FileVersion word;
    const std::string program = text(HKEY_LOCAL_MACHINE, under(R"(App Paths\WINWORD.EXE)"), "");
    EXPECT_EQ(ERROR_SUCCESS, system_.GetFileVersionInfoA(program, word)) << program;
    EXPECT_EQ(std::stoi(office), word.major);
    EXPECT_TRUE(hasKey(HKEY_CURRENT_USER, base + office + R"(\Word\Options)"));
    const std::string actors = base + office + R"(\Common\Assistant)";
    const std::string actor = text(HKEY_CURRENT_USER, actors, "AsstFile");
    EXPECT_TRUE(
        machine_->files().exists(text(HKEY_CURRENT_USER, actors, "AsstPath") + "\\" + actor))
        << actor;
  }
  const std::string jet = R"(Software\Microsoft\Jet\)" + std::string(GetParam().jet);
  EXPECT_EQ(REG_DWORD, read(HKEY_LOCAL_MACHINE, jet + R"(\Engines\Text)", "MaxScanRows").type);
  EXPECT_EQ(std::string("4.0") == GetParam().jet,
            hasKey(HKEY_LOCAL_MACHINE, R"(Software\Microsoft\Jet\4.0)"));
}

INSTANTIATE_TEST_SUITE_P(All, SampleMachine, testing::ValuesIn(kSamples), [](const auto& info) {
  std::string name = info.param.id;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

// The one sample with user profiles: the user's own key is not the default user's.
TEST(SampleMachines, ProfilesOfWindows98AreOn) {
  TestMachine machine{"windows-98"};
  OpenKey mine{machine.registry(), HKEY_CURRENT_USER,
               R"(Software\Microsoft\Windows\CurrentVersion\ProfileReconciliation)", KEY_READ};
  EXPECT_EQ(ERROR_SUCCESS, mine.status());
  OpenKey everyone{machine.registry(), HKEY_USERS,
                   R"(.DEFAULT\Software\Microsoft\Windows\CurrentVersion\ProfileReconciliation)",
                   KEY_READ};
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, everyone.status());
}

}  // namespace
}  // namespace korvex::test
