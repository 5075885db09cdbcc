// Programs of an embedded machine: its registry editor, and nothing else.
#pragma once

#include <string>
#include <string_view>

#include "platform/common/drive_folders.h"
#include "platform/embedded/event_log.h"
#include "platform/embedded/machine_file.h"
#include "platform/processes.h"
#include "platform/registry.h"

namespace korvex::platform {

// "regedit /e FILE [KEY]" and "regedit /s FILE", also with a folder before the program's name, in
// any case and order of the switches. Every other program is recorded and gives
// ERROR_NOT_SUPPORTED. The editor's exit code is 1 where it has failed, and message says why.
class EmbeddedProcesses : public Processes {
 public:
  EmbeddedProcesses(const MachineFile& machine, Registry& registry, DriveFolders& files,
                    EventLog& events)
      : machine_(machine), registry_(registry), files_(files), events_(events) {}

  Status run(std::string_view commandLine, int& exitCode, std::string& message) override;
  Status ShellExecuteA(std::string_view verb, std::string_view file, std::string_view parameters,
                       std::string_view folder, std::string& message) override;

 private:
  Status exportKeys(const std::string& file, const std::string& key, std::string& message);
  Status importFile(const std::string& file, std::string& message);
  Status refuse(std::string_view commandLine, std::string& message);

  const MachineFile& machine_;
  Registry& registry_;
  DriveFolders& files_;
  EventLog& events_;
};

}  // namespace korvex::platform
