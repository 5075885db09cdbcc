// Writes keys of a registry as a registry-editor file, as the registry editor of a machine does.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"
#include "platform/text/reg_names.h"
#include "platform/text/reg_writer.h"

namespace korvex::platform {

struct RegExportOptions {
  RegFormat format = RegFormat::Version5;
  int codePage = 1252;             // of Regedit4
  std::size_t messagesKept = 100;  // of leftOut; counting goes on
};

struct RegExportResult {
  // Not ERROR_SUCCESS: a file is as it was before; a stream holds a part. 2: no such key.
  Status status = ERROR_SUCCESS;
  std::string message;  // what status means here; empty on success
  std::size_t keys = 0;
  std::size_t values = 0;
  // What is not in the text although the registry has it: text that the format cannot hold, keys
  // that vanished or may not be read. A key is left out with its tree, which counts once.
  std::size_t leftOutCount = 0;
  std::vector<std::string> leftOut;  // full name of the key, the value's name and the reason
};

// The whole registry: HKEY_LOCAL_MACHINE and HKEY_USERS; the other roots are parts of these.
std::vector<KeyPath> wholeRegistry();

// One file with the trees of keys, in their order: header, blank line, then depth first, subkeys
// sorted without regard to case, the default value first, the others as the registry has them.
RegExportResult exportRegFile(Registry& registry, const std::vector<KeyPath>& keys,
                              const std::filesystem::path& file,
                              const RegExportOptions& options = {});
RegExportResult exportRegText(Registry& registry, const std::vector<KeyPath>& keys,
                              std::ostream& sink, const RegExportOptions& options = {});
// Pieces of the file in order; a status other than success from sink ends the export with it.
RegExportResult exportRegPieces(Registry& registry, const std::vector<KeyPath>& keys,
                                const std::function<Status(std::string_view)>& sink,
                                const RegExportOptions& options = {});

}  // namespace korvex::platform
