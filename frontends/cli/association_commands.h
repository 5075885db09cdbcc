// What commands share that are told file types.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "backup/associations.h"
#include "foundation/session.h"

namespace korvex::cli {

// "txt" and ".TXT" are ".txt", where that is one of the known types. Throws Failure (Usage) for
// what is no file type.
std::vector<std::string> fileTypes(std::span<const std::string> typed,
                                   std::span<const backup::FileType> known);

// The types that a template names. Throws Failure where there is none of that name.
std::vector<std::string> typesOfTemplate(foundation::Session& session, const std::string& name);

// The folder that was typed for a command, checked, or the one by default.
std::string machineFolder(const std::string& typed, const std::string& byDefault);

}  // namespace korvex::cli
