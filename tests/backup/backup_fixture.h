// A machine with its session, as the backup works on them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "backup/registry_backer.h"
#include "foundation/detection.h"
#include "foundation/session.h"
#include "platform/common/composed_machine.h"
#include "support/failing_files.h"
#include "support/machines.h"
#include "support/registry_view.h"
#include "support/scripted_prompts.h"

namespace korvex::backup {

// Hands every command on and remembers it; a command file with its text.
class RecordingProcesses : public platform::Processes {
 public:
  explicit RecordingProcesses(platform::Machine& machine) : machine_(machine) {}

  platform::Status run(std::string_view commandLine, int& exitCode, std::string& message) override {
    commands.emplace_back(commandLine);
    std::string text;
    if (commandLine.size() > 2 && commandLine.front() == '"') {
      machine_.files().read(commandLine.substr(1, commandLine.size() - 2), text);
    }
    texts.push_back(text);
    return refuse ? platform::ERROR_NOT_SUPPORTED
                  : machine_.processes().run(commandLine, exitCode, message);
  }
  platform::Status ShellExecuteA(std::string_view, std::string_view, std::string_view,
                                 std::string_view, std::string&) override {
    return platform::ERROR_NOT_SUPPORTED;
  }

  std::vector<std::string> commands;
  std::vector<std::string> texts;
  bool refuse = false;

 private:
  platform::Machine& machine_;
};

struct BackupRun {
  explicit BackupRun(const std::string& sample) : machine(sample) { detect(); }
  explicit BackupRun(test::Family family) : machine(family) { detect(); }

  void detect() { foundation::detectSystem(session); }
  test::RegistryView view() { return test::RegistryView(machine.registry()); }
  std::string read(const std::string& path) {
    std::string bytes;
    EXPECT_EQ(0, machine->files().read(path, bytes)) << path;
    return bytes;
  }
  void write(const std::string& path, std::string_view bytes) {
    machine->files().createFolder(path.substr(0, path.rfind('\\')));
    ASSERT_EQ(0, machine->files().replace(path, bytes)) << path;
  }
  std::vector<std::string> names(const std::string& folder) {
    std::vector<platform::FileEntry> entries;
    machine->files().list(folder + "\\*", entries);
    std::vector<std::string> result;
    for (const auto& entry : entries) result.push_back(entry.name);
    return result;
  }

  test::TestMachine machine;
  RecordingProcesses processes{*machine};
  test::FailingFiles files{machine->files()};
  platform::ComposedMachine composed{*machine, {.files = &files, .processes = &processes}};
  test::ScriptedPrompts prompts;
  foundation::Session session{composed, prompts};
  RegistryBacker backer{session};
};

}  // namespace korvex::backup
