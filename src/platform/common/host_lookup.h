// Finding host files by the names that Windows has for them.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace korvex::platform {

// The file or folder below a folder, its parts ('\' between them) in any case; the path has the
// names as they stand. No link is followed. Nothing where it is not there.
std::optional<std::filesystem::path> hostPath(const std::filesystem::path& folder,
                                              std::string_view below);

// The folders in a folder, no links among them, sorted.
std::vector<std::filesystem::path> foldersIn(const std::filesystem::path& folder);

}  // namespace korvex::platform
