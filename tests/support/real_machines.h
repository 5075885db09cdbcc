// The samples as real machines: the same registry and files in a Wine prefix or on the disk of an
// installed Windows.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "platform/common/host_lookup.h"
#include "platform/embedded/machine_file.h"
#include "platform/windows_folder/windows_machine.h"
#include "platform/wine/wine_machine.h"
#include "support/hive_builder.h"
#include "support/machines.h"
#include "support/program_file.h"

namespace korvex::test {

enum class RealKind { WinePrefix, WindowsFolder };

// Copies a key with everything below it. Keys that the target refuses are an error.
inline void copyTree(platform::Registry& from, platform::HKEY source, platform::Registry& to,
                     platform::HKEY target) {
  char name[platform::kNameBufferBytes];
  for (std::uint32_t i = 0;; ++i) {
    std::uint32_t length = sizeof name;
    std::uint32_t size = 0;
    platform::RegType type = 0;
    if (from.RegEnumValueA(source, i, name, &length, &type, nullptr, &size) != 0) break;
    const std::string valueName(name, length);
    std::string data(size, '\0');
    platform::Status status = from.RegQueryValueExA(source, valueName, &type, data.data(), &size);
    if (status == 0) status = to.RegSetValueExA(target, valueName, type, data.data(), size);
    if (status != 0) throw std::runtime_error(valueName + ": " + std::to_string(status));
  }
  for (std::uint32_t i = 0;; ++i) {
    std::uint32_t length = sizeof name;
    if (from.RegEnumKeyExA(source, i, name, &length) != 0) break;
    const platform::OpenKey below(from, source, std::string_view(name, length), platform::KEY_READ);
    platform::HKEY made = 0;
    std::uint32_t disposition = 0;
    const platform::Status status = to.RegCreateKeyExA(target, std::string_view(name, length),
                                                       platform::KEY_ALL_ACCESS, made, disposition);
    if (below.status() != 0 || status != 0) {
      throw std::runtime_error(name + (": " + std::to_string(status)));
    }
    copyTree(from, below.get(), to, made);
    to.RegCloseKey(made);
  }
}

// A sample (data/machines/<id>), or a bare machine of a family, as a real one:
//   RealMachine machine{RealKind::WinePrefix, "windows-98"};
class RealMachine : public SomeMachine {
 public:
  RealMachine(RealKind kind, const std::string& sampleId) : kind_(kind), sample_(sampleId) {
    make();
  }
  RealMachine(RealKind kind, Family family) : kind_(kind), sample_(family) { make(); }

  platform::Machine& get() override { return *machine_; }
  platform::Machine* operator->() { return machine_.get(); }
  platform::Registry& registry() { return machine_->registry(); }
  const std::filesystem::path& folder() const { return temporary_.path(); }

  void close() { machine_.reset(); }
  void reopen(platform::OpenMode mode = platform::OpenMode::ReadWrite) {
    close();
    machine_ = open(mode);
  }
  std::unique_ptr<platform::Machine> open(platform::OpenMode mode) const {
    auto opened = kind_ == RealKind::WinePrefix ? platform::openWineMachine(folder(), mode, "")
                                                : platform::openWindowsMachine(folder(), mode, "");
    if (!opened.machine) throw std::runtime_error(opened.message);
    return std::move(opened.machine);
  }

 private:
  void make() {
    copyFiles();
    if (kind_ == RealKind::WinePrefix) {
      makePrefix();
    } else {
      makeHives();
    }
    machine_ = open(platform::OpenMode::ReadWrite);
    fillRegistry();
    reopen();
    sample_.close();
  }

  std::filesystem::path drive() const {
    return kind_ == RealKind::WinePrefix ? folder() / "drive_c" : folder();
  }

  // With the attributes; programs get the versions that the sample tells of them.
  void copyFiles() {
    std::filesystem::create_directories(drive());
    const std::string command =
        "cp -a '" + sample_.driveC().string() + "/.' '" + drive().string() + "'";
    if (std::system(command.c_str()) != 0) throw std::runtime_error(command);
    platform::MachineFile told;
    std::string message;
    platform::readMachineFile(sample_.folder() / "machine.json", told, message);
    for (const auto& [path, version] : told.fileVersions) addProgram(path, version);
  }

  // path is folded; the sample has an empty file of this name, or none.
  void addProgram(const std::string& path, const platform::FileVersion& version) {
    std::filesystem::path host = drive();
    for (std::size_t start = 3; start < path.size();) {
      const std::size_t end = std::min(path.find('\\', start), path.size());
      const std::string name = path.substr(start, end - start);
      host = platform::hostPath(host, name).value_or(host / name);
      start = end + 1;
    }
    std::filesystem::create_directories(host.parent_path());
    std::ofstream(host, std::ios::binary) << programWithVersion(version);
  }

  void makePrefix() {
    std::filesystem::create_directory(folder() / "dosdevices");
    std::filesystem::create_directory_symlink("../drive_c", folder() / "dosdevices" / "c:");
    const auto write = [this](const char* file, const std::string& root) {
      std::ofstream(folder() / file) << "WINE REGISTRY Version 2\n;; All keys relative to REGISTRY"
                                     << root << "\n\n#arch=win64\n";
    };
    write("system.reg", "\\\\Machine");
    write("user.reg", "\\\\User\\\\S-1-5-21-1000-500");
    write("userdef.reg", "\\\\User\\\\.Default");
  }

  // Just enough to be recognised; the rest comes through the registry.
  void makeHives() {
    const auto hives = folder() / "WINNT" / "system32" / "config";
    const std::string version = "Microsoft\\Windows NT\\CurrentVersion";
    writeHive(hives / "SYSTEM", {{"Select", "", ""}, {"ControlSet001", "", ""}});
    writeHive(hives / "software",
              {{"Classes", "", ""},
               {version, "SystemRoot", "C:\\WINNT"},
               {version, "CurrentVersion", "5.0"},
               {version, "CurrentBuildNumber", "2195"},
               {version + "\\ProfileList\\" + kSid, "ProfileImagePath", profile()}});
    writeHive(hives / "default", {{"Control Panel", "", ""}, {"Software", "", ""}});
    std::string below = profile().substr(3);
    for (char& c : below) c = c == '\\' ? '/' : c;
    writeHive(folder() / below / "NTUSER.DAT", {{"Control Panel", "", ""}, {"Software", "", ""}});
  }
  std::string profile() { return sample_->systemInfo().ExpandEnvironmentStringsA("%USERPROFILE%"); }

  void fillRegistry() {
    platform::RegistryChange change(machine_->registry());
    copyBelow(platform::HKEY_CURRENT_USER, "");
    copyBelow(platform::HKEY_USERS, ".DEFAULT");
    if (kind_ == RealKind::WinePrefix) {
      copyBelow(platform::HKEY_LOCAL_MACHINE, "");
      sayVersion();
    } else {
      copyBelow(platform::HKEY_LOCAL_MACHINE, "SYSTEM");
      copyBelow(platform::HKEY_LOCAL_MACHINE, "SOFTWARE");
    }
    platform::Status status = change.commit();
    if (status == 0) status = machine_->registry().flush();
    if (status != 0) throw std::runtime_error("filling: " + std::to_string(status));
  }

  // A key that the sample lacks is left out.
  void copyBelow(platform::HKEY root, const char* path) {
    const platform::OpenKey from(sample_.registry(), root, path, platform::KEY_READ);
    const platform::OpenKey to(machine_->registry(), root, path, platform::KEY_ALL_ACCESS);
    if (from.status() != 0) return;
    if (to.status() != 0) throw std::runtime_error(path);
    copyTree(sample_.registry(), from.get(), machine_->registry(), to.get());
  }

  // As Wine's configuration program does.
  void sayVersion() {
    platform::VersionInfo version;
    sample_->systemInfo().GetVersionExA(version);
    const std::uint32_t number = version.majorVersion * 100 + version.minorVersion;
    const bool nt = version.platformId == platform::VER_PLATFORM_WIN32_NT;
    const std::string name = nt ? (number >= 500 ? "win2k" : "nt40")
                                : (number >= 490   ? "winme"
                                   : number >= 410 ? "win98"
                                                   : "win95");
    platform::HKEY key = 0;
    std::uint32_t disposition = 0;
    platform::Registry& registry = machine_->registry();
    registry.RegCreateKeyExA(platform::HKEY_CURRENT_USER, "Software\\Wine",
                             platform::KEY_ALL_ACCESS, key, disposition);
    registry.RegSetValueExA(key, "Version", platform::REG_SZ, name.c_str(),
                            static_cast<std::uint32_t>(name.size() + 1));
    registry.RegCloseKey(key);
    if (!nt) return;
    registry.RegCreateKeyExA(platform::HKEY_LOCAL_MACHINE,
                             "Software\\Microsoft\\Windows NT\\CurrentVersion",
                             platform::KEY_ALL_ACCESS, key, disposition);
    registry.RegSetValueExA(key, "SystemRoot", platform::REG_SZ, "C:\\WINNT", 9);
    registry.RegCloseKey(key);
  }

  static constexpr const char* kSid = "S-1-5-21-1000-500";

  RealKind kind_;
  TestMachine sample_;
  TemporaryFolder temporary_;
  std::unique_ptr<platform::Machine> machine_;
};

}  // namespace korvex::test
