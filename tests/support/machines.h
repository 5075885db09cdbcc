// Machines for tests: a fresh one in a temporary folder in one line, gone with the object.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/embedded/embedded_machine.h"
#include "support/temporary_folder.h"

namespace korvex::test {

enum class Family { Nt, NineX };

// A machine of whatever kind.
class SomeMachine {
 public:
  virtual ~SomeMachine() = default;
  virtual platform::Machine& get() = 0;
};

// A machine made from a sample folder (data/machines/<id>) or from next to nothing:
//   TestMachine machine{Family::Nt};           // Windows 2000 with an almost empty registry
//   TestMachine machine{"windows-98"};         // a whole sample
//   machine->registry().RegOpenKeyExA(...)
class TestMachine : public SomeMachine {
 public:
  explicit TestMachine(Family family) { create(makeBareSample(family), family == Family::Nt); }
  explicit TestMachine(const std::string& sampleId) {
    create(std::filesystem::path(KORVEX_DATA_DIR) / "machines" / sampleId, false);
  }

  platform::Machine& operator*() { return *machine_; }
  platform::Machine* operator->() { return machine_.get(); }
  platform::Machine& get() override { return *machine_; }
  platform::Registry& registry() { return machine_->registry(); }
  // The machine's folder, and where a file of its C: drive lies on the host.
  std::filesystem::path folder() const { return temporary_.path() / "machine"; }
  std::filesystem::path driveC() const { return folder() / "drive_c"; }

  void close() { machine_.reset(); }
  void reopen(platform::OpenMode mode = platform::OpenMode::ReadWrite) {
    close();
    machine_ = open(mode);
  }
  // One more machine object on the same folder, as another process would have it.
  std::unique_ptr<platform::Machine> open(platform::OpenMode mode) const {
    auto opened = platform::openEmbeddedMachine(folder(), mode);
    if (!opened.machine) throw std::runtime_error(opened.message);
    return std::move(opened.machine);
  }

 private:
  void create(const std::filesystem::path& sample, bool controlSet) {
    std::string message;
    if (platform::createEmbeddedMachine(sample, folder(), message) != platform::ERROR_SUCCESS) {
      throw std::runtime_error(message);
    }
    machine_ = open(platform::OpenMode::ReadWrite);
    if (controlSet) writeControlSet();
  }

  // A bare NT machine has control set 1 as its current one.
  void writeControlSet() {
    namespace p = platform;
    p::HKEY key = 0;
    std::uint32_t disposition = 0;
    p::Registry& registry = machine_->registry();
    const std::uint32_t one = 1;
    const char* const kSelect = "SYSTEM\\Select";
    const char* const kProfile = "SYSTEM\\ControlSet001\\Hardware Profiles\\Current";
    p::Status status = registry.RegCreateKeyExA(p::HKEY_LOCAL_MACHINE, kSelect, p::KEY_ALL_ACCESS,
                                                key, disposition);
    if (status == 0) status = registry.RegSetValueExA(key, "Current", p::REG_DWORD, &one, 4);
    registry.RegCloseKey(key);
    if (status == 0) {
      status = registry.RegCreateKeyExA(p::HKEY_LOCAL_MACHINE, kProfile, p::KEY_ALL_ACCESS, key,
                                        disposition);
    }
    registry.RegCloseKey(key);
    if (status != 0) throw std::runtime_error("the bare machine's control set");
  }

  std::filesystem::path makeBareSample(Family family) {
    auto sample = temporary_.path() / "sample";
    const std::string windows = family == Family::Nt ? "WINNT" : "WINDOWS";
    const std::string system = windows + (family == Family::Nt ? "/system32" : "/SYSTEM");
    for (const auto& part : {system, windows + "/Temp", std::string("Program Files")}) {
      std::filesystem::create_directories(sample / "drive_c" / part);
    }
    std::ofstream(sample / "machine.json") << (family == Family::Nt ? kBareNt : kBareNineX);
    return sample;
  }

  static constexpr std::string_view kBareNt = R"({
  "schemaVersion": 1, "windows": "2000", "name": "Windows 2000 Professional", "platform": "NT",
  "version": {"major": 5, "minor": 0, "build": 2195, "csd": ""}, "productType": "WinNT",
  "user": "Tester", "computerName": "BARE-NT", "administrator": true,
  "codePage": 1252, "oemCodePage": 437, "userKey": "S-1-5-21-1000-500",
  "windowsFolder": "C:\\WINNT", "systemFolder": "C:\\WINNT\\system32",
  "tempFolder": "C:\\WINNT\\Temp",
  "environment": {"SystemRoot": "C:\\WINNT",
                  "USERPROFILE": "C:\\Documents and Settings\\Tester"},
  "fileVersions": {"C:\\WINNT\\system32\\kernel32.dll": {"version": "5.0.2195.1", "flags": 0}},
  "openWindows": [{"class": "OpusApp", "title": "Document1 - Microsoft Word"}]
})";
  static constexpr std::string_view kBareNineX = R"({
  "schemaVersion": 1, "windows": "98", "name": "Windows 98", "platform": "9x",
  "version": {"major": 4, "minor": 10, "build": 2222, "csd": " A "}, "productType": "",
  "user": "Tester", "computerName": "BARE-9X", "administrator": true,
  "codePage": 1252, "oemCodePage": 437, "userKey": ".DEFAULT",
  "windowsFolder": "C:\\WINDOWS", "systemFolder": "C:\\WINDOWS\\SYSTEM",
  "tempFolder": "C:\\WINDOWS\\Temp", "environment": {"windir": "C:\\WINDOWS"},
  "fileVersions": {"C:\\WINDOWS\\SYSTEM\\kernel32.dll": {"version": "4.10.2222.0", "flags": 0}},
  "openWindows": []
})";

  TemporaryFolder temporary_;
  std::unique_ptr<platform::Machine> machine_;
};

}  // namespace korvex::test
