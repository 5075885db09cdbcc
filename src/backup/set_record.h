// The values of a set's record, taken one by one from wherever they are read.
#pragma once

#include <string>
#include <string_view>

#include "backup/config_set.h"

namespace korvex::backup {

// A name that is none of the record's is passed over.
void takeRecordText(std::string_view name, std::string text, ConfigSet& set);
void takeRecordFlag(std::string_view name, bool value, ConfigSet& set);

}  // namespace korvex::backup
