// READONLY, HIDDEN, SYSTEM and ARCHIVE of the files in one host folder.
//
// They live in the extended attribute "user.DOSATTRIB" as Wine and Samba keep them: the text "0x27"
// (a zero may follow), or Samba's newer record, in which only the number is changed. READONLY is
// also the lack of every write permission, as Wine has it, and both are set; a folder's permissions
// say nothing. Where the host has no extended attributes, a file ".korvex-attributes" in the folder
// holds a line "0x27 NAME" for each name; it is also asked where a file has no such attribute. A
// file without either is ARCHIVE, a folder nothing.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "platform/common/host_folder.h"
#include "platform/status.h"

namespace korvex::platform {

class DosAttributes {
 public:
  // The folder's descriptor stays the caller's.
  DosAttributes(int folder, bool extendedAttributes)
      : folder_(folder), extendedAttributes_(extendedAttributes) {}

  // A file that may not be opened has what its permissions tell.
  Status read(const HostEntry& entry, std::uint32_t& attributes);
  Status write(const HostEntry& entry, std::uint32_t attributes);
  // On an open file that is about to get its name in this folder: finish() once it has it.
  Status prepare(int file, std::uint32_t attributes, bool& finished);
  Status finish(const std::string& name, std::uint32_t attributes);

  // What the file beside says of a name, which a rename does not carry along.
  Status beside(const std::string& name, std::optional<std::uint32_t>& attributes);
  Status forget(const std::string& name);

 private:
  Status load();
  Status save();

  int folder_;
  bool extendedAttributes_;
  bool loaded_ = false;
  std::map<std::string, std::uint32_t> table_;  // what the file beside says
};

}  // namespace korvex::platform
