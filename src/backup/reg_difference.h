// What a registry-editor file would change in the registry.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/session.h"
#include "platform/registry.h"

namespace korvex::backup {

// What is beneath the file's keys in the registry, and not in the file.
enum class Extras {
  Keep,    // as the registry editor leaves it
  Remove,  // so that afterwards there is what the file says and no more
};

// One change, as the registry has it and as the file wants it.
struct RegChange {
  enum class Kind { NewKey, DeletedKey, NewValue, ChangedValue, DeletedValue };
  Kind kind = Kind::ChangedValue;
  platform::HKEY root = 0;
  std::string path;  // of the key, below its root
  std::string name;
  platform::RegType typeBefore = platform::REG_NONE;
  std::string before;
  platform::RegType typeAfter = platform::REG_NONE;
  std::string after;
  bool extra = false;  // removed because the file does not have it (Extras::Remove)
};

struct RegDifference {
  // 1017: no registry-editor file; 2, 5, ...: it could not be read.
  platform::Status status = platform::ERROR_SUCCESS;
  std::string message;
  std::size_t changes = 0;
  // Lines that the registry editor would refuse, with their numbers.
  std::vector<std::string> problems;
  // The first key that does not lie in `within`; "" where all do.
  std::string outside;
};

struct CompareOptions {
  Extras extras = Extras::Keep;
  // Nothing but this key and what is beneath it is compared; a file that has others is not refused
  // but told (RegDifference::outside). Root 0: any key. Needed for Extras::Remove.
  platform::HKEY root = 0;
  std::string within;
  int codePage = 1252;
  std::string source;  // stands before line numbers
};

using RegChangeSink = std::function<void(const RegChange&)>;
// Hands the file's bytes to take, piece by piece.
using RegPieces =
    std::function<platform::Status(const std::function<platform::Status(std::string_view)>& take)>;

// Tells each change to sink, in the file's order, the extras last. Reads only. The file is not kept
// in memory; with Extras::Remove the names of its keys and values are.
RegDifference compareRegText(platform::Registry& registry, const RegPieces& text,
                             const CompareOptions& options, const RegChangeSink& sink);
// The same for a file of the machine.
RegDifference compareRegFile(foundation::Session& session, std::string_view file,
                             CompareOptions options, const RegChangeSink& sink);

// "REG_SZ "x"", "REG_DWORD 0x1", "REG_BINARY 01 02 ... (300 bytes)": at most 80 characters of data.
std::string describeData(platform::RegType type, std::string_view data);

}  // namespace korvex::backup
