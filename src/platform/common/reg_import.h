// Reads registry-editor files into a registry, as the registry editor of a machine does.
#pragma once

#include <cstddef>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/text/reg_names.h"

namespace korvex::platform {

struct RegImportOptions {
  // Stands before the line number in messages; importRegFile uses the file's name when it is empty.
  std::string source;
  // Of files that are not Unicode, and of the text bytes in the hex data of REGEDIT4 files.
  int codePage = 1252;
  ShortRoots shortRoots = ShortRoots::No;
  // How many messages are kept; counting goes on.
  std::size_t messagesKept = 100;
};

// What became of a file. A line that is refused costs its own value or key, never the rest.
struct RegImportResult {
  // Not ERROR_SUCCESS: nothing was changed. 1017: no registry-editor file; 2, 5, ...: the file
  // could not be read; all others are the registry's own.
  Status status = ERROR_SUCCESS;
  std::string message;  // what status means here, with the file's name; empty on success
  // What was done, in lines of the file: a key that occurs twice counts twice.
  std::size_t keys = 0;
  std::size_t values = 0;
  std::size_t deletedKeys = 0;
  std::size_t deletedValues = 0;
  std::size_t refused = 0;  // lines that say nothing valid, or that the registry does not take
  std::size_t notes = 0;    // lines taken with a remark, or rightly passed over
  std::vector<std::string> messages;  // "file.reg:12: ...", refused lines and notes in file order
};

// Applies a file in its order, as one change: a registry that fails (full, read-only, busy) is left
// as it was. On the disk after registry.flush(). The stream is read in blocks, never whole.
RegImportResult importRegText(Registry& registry, std::istream& source,
                              const RegImportOptions& options = {});
RegImportResult importRegFile(Registry& registry, const std::filesystem::path& file,
                              const RegImportOptions& options = {});
// From an open descriptor at its current position; it stays open.
RegImportResult importRegDescriptor(Registry& registry, int descriptor,
                                    const RegImportOptions& options = {});

// The same without a registry: what an import would do, as far as the text alone tells.
RegImportResult checkRegText(std::istream& source, const RegImportOptions& options = {});
RegImportResult checkRegFile(const std::filesystem::path& file,
                             const RegImportOptions& options = {});

}  // namespace korvex::platform
