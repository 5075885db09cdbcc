// The registry editor of machines on which Windows' own cannot run: to the same bytes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/common/drive_folders.h"
#include "platform/common/machine_facts.h"
#include "platform/registry.h"

namespace korvex::platform {

// "regedit /e FILE [KEY]" and "regedit /s FILE", also with a folder before the program's name, in
// any case and order of the switches. The exit code is 1 where it has failed, and message says why.
class RegistryEditor {
 public:
  RegistryEditor(const MachineFacts& facts, Registry& registry, DriveFolders& files)
      : facts_(facts), registry_(registry), files_(files) {}

  // Whether a command line starts the registry editor.
  static bool isMeant(std::string_view commandLine);
  Status run(std::string_view commandLine, int& exitCode, std::string& message);

 private:
  Status exportKeys(const std::string& file, const std::string& key, std::string& message);
  Status importFile(const std::string& file, std::string& message);

  const MachineFacts& facts_;
  Registry& registry_;
  DriveFolders& files_;
};

// The words of a command line: set off by blanks, which quotes keep in a word.
std::vector<std::string> commandWords(std::string_view commandLine);

// The command line of a program and its parameters, as ShellExecuteA is given them.
std::string commandLineOf(std::string_view file, std::string_view parameters);

}  // namespace korvex::platform
