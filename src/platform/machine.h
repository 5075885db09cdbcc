// A machine: everything Korvex asks of one Windows installation, in one place.
//
// A new kind of machine is a folder beside embedded/ that implements this class and passes the
// contract tests (tests/platform/contract); docs/porting.md lists what it must supply.
#pragma once

#include <memory>
#include <string>

#include "platform/files.h"
#include "platform/init_files.h"
#include "platform/processes.h"
#include "platform/registry.h"
#include "platform/restart.h"
#include "platform/status.h"
#include "platform/system_info.h"
#include "platform/window_lookup.h"

namespace korvex::platform {

enum class OpenMode { Read, ReadWrite };
enum class Wait { No, Yes };

// For people and for "machine info"; what a machine is, not what Korvex does with it.
struct MachineDescription {
  std::string kind;     // "embedded"
  std::string folder;   // host path
  std::string windows;  // "Windows 2000 Professional"
  std::string version;  // "5.0.2195"
  std::string product;  // "WinNT", "ServerNT", "LanmanNT", or "" on 95, 98 and Me
  std::string user;
  std::string computer;
  std::string evidence;  // how the folder was recognised
  bool readOnly = false;
  int codePage = 1252;  // of its 8-bit text
};

// Held by the one Korvex that changes a machine; goes with the object.
class InstanceClaim {
 public:
  virtual ~InstanceClaim() = default;
};

class Machine {
 public:
  virtual ~Machine() = default;

  virtual Registry& registry() = 0;
  virtual InitFiles& initFiles() = 0;
  virtual Files& files() = 0;
  virtual SystemInfo& systemInfo() = 0;
  virtual Processes& processes() = 0;
  virtual Restart& restart() = 0;
  virtual Windows& windows() = 0;

  virtual MachineDescription describe() = 0;
  // Nothing where another Korvex holds the claim. Wait::Yes waits a few seconds for it: scripts
  // that follow each other closely queue up instead of failing.
  virtual std::unique_ptr<InstanceClaim> claimInstance(Wait wait) = 0;
  // Who holds the claim, for people: "korvex-gui (process 1234)"; "" where that cannot be told.
  virtual std::string claimHolder() { return {}; }
};

// The outcome of opening a machine: a machine, or a status with a sentence that says what to do.
struct OpenedMachine {
  std::unique_ptr<Machine> machine;
  Status status = ERROR_SUCCESS;
  std::string message;
};

}  // namespace korvex::platform
