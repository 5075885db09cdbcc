// What must be put right in place in a hive that hivex has written, so that Windows finds what was
// added and people see when it was.
//
// hivex sorts subkeys by their ASCII letters only, makes leaves that Windows 2000 and NT 4 do not
// know ("lh"), cannot write every name and leaves all times as they were. No cell is moved or
// grown.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "platform/windows_folder/regf_cells.h"

namespace korvex::platform {

// A value's name as it must stand in the file.
struct RegfStoredName {
  std::string bytes;
  std::uint16_t flags = 0;  // of the value: 1 for one byte per character
};

RegfStoredName storedRegfName(std::string_view text);

// All of these: 1009 where the hive is not as it must be. They change bytes of a whole hive.
Status setRegfKeyTime(std::string& bytes, RegfOffset key, std::uint64_t time);
// names are those of all values of the key, in their order; each as long as the one that is there.
Status setRegfValueNames(std::string& bytes, RegfOffset key,
                         const std::vector<RegfStoredName>& names);
// Puts the added ones of a key's subkeys where Windows looks for them; the others keep their order.
Status orderRegfChildren(std::string& bytes, RegfOffset key, const std::set<RegfOffset>& added);

}  // namespace korvex::platform
