// Programs of an embedded machine: its registry editor, and nothing else.
#pragma once

#include <string>
#include <string_view>

#include "platform/common/registry_editor.h"
#include "platform/embedded/event_log.h"
#include "platform/embedded/machine_file.h"
#include "platform/processes.h"

namespace korvex::platform {

// Every program but the registry editor is recorded and gives ERROR_NOT_SUPPORTED.
class EmbeddedProcesses : public Processes {
 public:
  EmbeddedProcesses(const MachineFile& machine, Registry& registry, DriveFolders& files,
                    EventLog& events)
      : editor_(machine, registry, files), events_(events) {}

  Status run(std::string_view commandLine, int& exitCode, std::string& message) override;
  Status ShellExecuteA(std::string_view verb, std::string_view file, std::string_view parameters,
                       std::string_view folder, std::string& message) override;

 private:
  Status refuse(std::string_view commandLine, std::string& message);

  RegistryEditor editor_;
  EventLog& events_;
};

}  // namespace korvex::platform
