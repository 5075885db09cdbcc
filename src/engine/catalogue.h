// The catalogue of tweaks: all rows, and the ways to find one.
//
// To add a tweak:
//   1. Find its area's table in catalogue/ (security, system, desktop, options).
//   2. Add a row: property, root, key, value, mode, default, restart, bank, state name, control,
//      page, group, caption, tool tip, and the Windows that have it.
//   3. If the mode table cannot say what it writes, give it a special member of RegWorker; if its
//      state is more than one value, a reader. Both are rare.
//   4. Write down what it is to write, from the documents, in tests/program/expected/.
// Routine, reader, check box, command line and manual follow from the row.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "engine/tweak.h"

namespace korvex::engine {

// Every row, in the order in which start-up reads them.
const std::vector<const Tweak*>& allTweaks();

// By property name, without regard to case, with or without "P_rw" or "P_". Null where there is
// none.
const Tweak* findTweak(std::string_view property);
// The row behind a control; null where the control is no tweak's.
const Tweak* findTweakOf(std::string_view form, std::string_view control);

std::string_view pageName(Page page);  // "NT4/Win2K": the caption of its tab
std::string_view bankKey(Bank bank);   // "SOFTWARE\Korvex\CurrentSettingsII"
std::string_view stateKey(Bank bank);  // where the bank's state values stand
std::string_view bankForm(Bank bank);  // "frmMain": whose Apply button it enables

}  // namespace korvex::engine
