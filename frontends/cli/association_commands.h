// What commands share that are told file types.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "foundation/session.h"

namespace korvex::cli {

// "txt" and ".txt" are the same: ".txt". Throws Failure (Usage) for what is no file type.
std::vector<std::string> fileTypes(std::span<const std::string> typed);

// The types that a template names. Throws Failure where there is none of that name.
std::vector<std::string> typesOfTemplate(foundation::Session& session, const std::string& name);

// The folder that was typed for a command, checked, or the one by default.
std::string machineFolder(const std::string& typed, const std::string& byDefault);

}  // namespace korvex::cli
