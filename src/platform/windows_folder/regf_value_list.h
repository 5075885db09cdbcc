// The values of one key of an NT hive while they are changed.
#pragma once

#include <hivex.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/windows_folder/regf_cells.h"
#include "platform/windows_folder/regf_patch.h"

namespace korvex::platform {

// Begins empty, as for a new key. Names are compared as Windows does; what is not changed keeps its
// place, its name's very bytes and its data.
class RegfValueList {
 public:
  // 50: there are data in pieces; hivex would put them into one cell, which Windows does not read.
  Status read(const RegfCells& cells, RegfOffset key);

  // data are as they lie in the file.
  void set(std::string_view name, RegType type, std::string data);
  bool erase(std::string_view name);

  // Replaces the key's values in hivex' copy. Their names are stand-ins of the same length, until
  // setRegfValueNames puts in these: hivex takes no NUL and no lone surrogate in a name.
  Status handOver(hive_h* hive, hive_node_h key) const;
  std::vector<RegfStoredName> names() const;

 private:
  struct Value {
    RegfStoredName name;
    RegType type = REG_NONE;
    std::string data;
    bool erased = false;
  };
  void add(const std::string& name, Value value);

  std::vector<Value> values_;
  std::unordered_map<std::string, std::size_t> byName_;  // folded
};

// Windows' number for what hivex has told through errno.
Status statusOfHivex(int error);

}  // namespace korvex::platform
