// Restarting a machine. An embedded machine records the request; the live system carries it out.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/status.h"

namespace korvex::platform {

constexpr std::uint32_t EWX_SHUTDOWN = 1;
constexpr std::uint32_t EWX_REBOOT = 2;
constexpr std::uint32_t EWX_FORCE = 4;

constexpr std::uint32_t kTokenAdjustPrivilegesAndQuery = 40;
constexpr std::uint32_t SE_PRIVILEGE_ENABLED = 2;

class Restart {
 public:
  virtual ~Restart() = default;

  virtual Status OpenProcessToken(std::uint32_t access, std::uint32_t& token) = 0;
  virtual Status LookupPrivilegeValueA(std::string_view system, std::string_view privilege,
                                       std::uint64_t& identifier) = 0;
  virtual Status AdjustTokenPrivileges(std::uint32_t token, std::uint64_t identifier,
                                       std::uint32_t attributes) = 0;
  // False where Windows is not running and so takes everything in when it starts.
  virtual bool systemRuns() { return true; }
  // flags: EWX_... bits. Needs the shutdown privilege on NT (5 without it).
  virtual Status ExitWindowsEx(std::uint32_t flags, std::uint32_t reserved) = 0;
};

}  // namespace korvex::platform
