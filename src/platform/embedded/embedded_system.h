// What an embedded machine says about itself, from machine.json; restarts and open windows.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/common/facts_system_info.h"
#include "platform/embedded/event_log.h"
#include "platform/embedded/machine_file.h"
#include "platform/files.h"
#include "platform/restart.h"
#include "platform/window_lookup.h"

namespace korvex::platform {

// File versions come from machine.json first, since a sample's files are empty.
class EmbeddedSystemInfo : public FactsSystemInfo {
 public:
  EmbeddedSystemInfo(const MachineFile& machine, Files& files)
      : FactsSystemInfo(machine, files), machine_(machine) {}

  Status GetFileVersionInfoA(std::string_view path, FileVersion& version) override;

 private:
  const MachineFile& machine_;
};

// Records the request. On NT the token's shutdown privilege must have been enabled (1314), which
// an administrator's token alone can be.
class EmbeddedRestart : public Restart {
 public:
  EmbeddedRestart(const MachineFile& machine, EventLog& events)
      : machine_(machine), events_(events) {}

  Status OpenProcessToken(std::uint32_t access, std::uint32_t& token) override;
  Status LookupPrivilegeValueA(std::string_view system, std::string_view privilege,
                               std::uint64_t& identifier) override;
  Status AdjustTokenPrivileges(std::uint32_t token, std::uint64_t identifier,
                               std::uint32_t attributes) override;
  Status ExitWindowsEx(std::uint32_t flags, std::uint32_t reserved) override;

 private:
  const MachineFile& machine_;
  EventLog& events_;
  AccessMask tokenAccess_ = 0;  // of the last token that was opened
  bool mayShutDown_ = false;
};

class EmbeddedWindows : public Windows {
 public:
  explicit EmbeddedWindows(const MachineFile& machine) : machine_(machine) {}
  bool FindWindowA(std::string_view className, std::string_view windowName) override;

 private:
  const MachineFile& machine_;
};

}  // namespace korvex::platform
