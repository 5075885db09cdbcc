// Where the files that come with the program lie.
#pragma once

#include <filesystem>

namespace korvex::program {

// The first that exists of: $KORVEX_DATA_DIR, ../share/korvex beside the executable's folder, the
// source's data folder (a program that was not installed). Empty where there is none.
std::filesystem::path dataFolder();

// $XDG_DATA_HOME, or what the standard puts in its place ($HOME/.local/share). Empty without
// either.
std::filesystem::path userDataFolder();

// Likewise $XDG_STATE_HOME, or $HOME/.local/state.
std::filesystem::path userStateFolder();

}  // namespace korvex::program
