// Passwords for commands: from a terminal or a file descriptor, never from an argument, where every
// user of the system could read them.
#pragma once

#include <optional>
#include <string>

namespace korvex::cli {

// The first line of what the descriptor gives, without its end; at most 1024 bytes. Throws Failure
// (Usage) where it cannot be read.
std::string readSecret(int descriptor);

// Asks on the terminal, without showing what is typed. Nothing where there is no terminal, or
// nothing was typed before its end.
std::optional<std::string> askForSecret(const std::string& question);

}  // namespace korvex::cli
