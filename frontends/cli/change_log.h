// ChangeLog: what a recording machine saw, as lines for people and JSON for scripts.
#pragma once

#include <string>
#include <vector>

#include "cli/file_steps.h"
#include "cli/output.h"
#include "engine/tweak.h"
#include "platform/common/registry_decorators.h"

namespace korvex::cli {

using platform::RegistryRecord;

struct Changes {
  std::vector<RegistryRecord> registry;
  std::vector<FileRecord> files;
  bool empty() const { return registry.empty() && files.empty(); }
};

// Reads a recording registry and recording files bit by bit. Korvex's own area (SOFTWARE\Korvex)
// and its logs are left out unless verbose, but for the values there that are tweaks themselves:
// the program's options.
class ChangeLog {
 public:
  ChangeLog(const platform::RecordingRegistry& registry, const platform::RecordingFiles& files,
            bool verbose)
      : registry_(registry), files_(files), verbose_(verbose) {}

  // What was recorded since the last call. Steps on files that were taken back are not told.
  Changes take();
  void skip();

 private:
  bool worthTelling(const RegistryRecord& record) const;

  const platform::RecordingRegistry& registry_;
  const platform::RecordingFiles& files_;
  bool verbose_;
  std::size_t nextWrite_ = 0;
  std::size_t nextStep_ = 0;
};

// One record per value, from its first before to its last after; what ends as it began is left
// out. Of a tree that was deleted the topmost key is told.
std::vector<RegistryRecord> merged(const std::vector<RegistryRecord>& records);
Changes merged(const Changes& changes);

// {"change":"value"|"key-created"|"key-deleted","key","name","before","after"}
Json recordJson(const RegistryRecord& record);
// Two lines, the key and the value, each indented.
std::string recordText(const RegistryRecord& record, std::string_view indent);

// All of them, one after the other: the registry's, then the files'.
Json changesJson(const Changes& changes);
std::string changesText(const Changes& changes, std::string_view indent);

// "REG_DWORD 0x1 (1)", or "(none)".
std::string dataText(const std::optional<platform::RegistryData>& data);

}  // namespace korvex::cli
