// Asking the person for a folder of the machine.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/session.h"

namespace korvex::engine {

// Shows the folder picker under that prompt. A folder that is not there is made where the person
// agrees. Nothing for a cancel; a path without a backslash at its end (but "C:\").
std::optional<std::string> chooseFolder(foundation::Session& session, std::string_view prompt);

// Whether the path is a folder by now: a missing one is offered to be made. What is wrong with the
// path is told.
bool agreeOnFolder(foundation::Session& session, const std::string& path);

// The path with backslashes only, without blanks around it, without "." and ".." in it and without
// a backslash at its end (but "C:\"); "C:" is "C:\".
std::string tidyFolder(std::string_view path);

}  // namespace korvex::engine
