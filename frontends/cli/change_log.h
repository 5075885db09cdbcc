// ChangeLog: what a recording registry saw, as lines for people and JSON for scripts.
#pragma once

#include <string>
#include <vector>

#include "cli/output.h"
#include "engine/tweak.h"
#include "platform/common/registry_decorators.h"

namespace korvex::cli {

using platform::RegistryRecord;

// Reads a recording registry bit by bit. Korvex's own area (SOFTWARE\Korvex) is left out unless
// verbose, but for the values there that are tweaks themselves: the program's options.
class ChangeLog {
 public:
  ChangeLog(const platform::RecordingRegistry& recording, bool verbose)
      : recording_(recording), verbose_(verbose) {}

  // What was recorded since the last call.
  std::vector<RegistryRecord> take();
  void skip() { next_ = recording_.records().size(); }

 private:
  bool worthTelling(const RegistryRecord& record) const;

  const platform::RecordingRegistry& recording_;
  bool verbose_;
  std::size_t next_ = 0;
};

// One record per value, from its first before to its last after; what ends as it began is left out.
std::vector<RegistryRecord> merged(const std::vector<RegistryRecord>& records);

// {"change":"value"|"key-created"|"key-deleted","key","name","before","after"}
Json recordJson(const RegistryRecord& record);
// Two lines, the key and the value, each indented.
std::string recordText(const RegistryRecord& record, std::string_view indent);

// "REG_DWORD 0x1 (1)", or "(none)".
std::string dataText(const std::optional<platform::RegistryData>& data);

}  // namespace korvex::cli
