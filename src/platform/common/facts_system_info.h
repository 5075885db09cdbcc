// What a machine says about itself, from facts that were gathered when it was opened.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/common/machine_facts.h"
#include "platform/files.h"
#include "platform/system_info.h"

namespace korvex::platform {

// File versions come from the files' own version resources.
class FactsSystemInfo : public SystemInfo {
 public:
  // Both are the caller's.
  FactsSystemInfo(const MachineFacts& facts, Files& files) : facts_(facts), files_(files) {}

  std::uint32_t GetVersion() override;
  Status GetVersionExA(VersionInfo& info) override;
  std::string GetWindowsDirectoryA() override { return facts_.windowsFolder; }
  std::string GetSystemDirectoryA() override { return facts_.systemFolder; }
  std::string GetTempPathA() override;
  std::string ExpandEnvironmentStringsA(std::string_view text) override;
  Status GetShortPathNameA(std::string_view path, std::string& result) override {
    return files_.shortPath(path, result);
  }
  std::string GetUserNameA() override { return facts_.user; }
  std::string GetComputerNameA() override { return facts_.computerName; }
  Status GetFileVersionInfoA(std::string_view path, FileVersion& version) override;
  std::string fileSystemOf(std::string_view drive) override;
  bool isAdministrator() override { return facts_.administrator; }

 private:
  const MachineFacts& facts_;
  Files& files_;
};

}  // namespace korvex::platform
