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
// any case and order of the switches; and command files that hold nothing else. The exit code is 1
// where one of them has failed, and message says why.
class RegistryEditor {
 public:
  RegistryEditor(const MachineFacts& facts, Registry& registry, DriveFolders& files)
      : facts_(facts), registry_(registry), files_(files) {}

  // Whether a command line starts the registry editor, or a command file (.bat, .cmd) that starts
  // nothing but the registry editor.
  bool isMeant(std::string_view commandLine);
  Status run(std::string_view commandLine, int& exitCode, std::string& message);

 private:
  bool readCommands(const std::vector<std::string>& words, std::vector<std::string>& commands);
  Status runOne(std::string_view commandLine, std::string& message);
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
