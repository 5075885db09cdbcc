// The machines that were opened last, for the window's menu and for "machine list".
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace korvex::program {

constexpr std::size_t kMostRecentMachines = 10;

// Their folders, the last one first: $XDG_STATE_HOME/korvex/recent-machines, one on a line. What is
// no folder any more is left out.
std::vector<std::filesystem::path> recentMachines();

// Puts a folder in front. The list is a convenience: where it cannot be kept, nothing is said.
void rememberMachine(const std::filesystem::path& folder);

}  // namespace korvex::program
