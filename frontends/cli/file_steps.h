// What was done to files, as lines for people and JSON for scripts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/output.h"
#include "platform/common/files_decorators.h"

namespace korvex::cli {

using platform::FileRecord;

// One record per path, from its first before to its last after; what ends as it began is left out.
std::vector<FileRecord> merged(const std::vector<FileRecord>& records);

// {"change":"file-created"|"file-changed"|"file-deleted"|"folder-created"|"folder-deleted"|
//  "attributes-changed","path","from","before":{"size","attributes"},"after"}; "from" only for what
// was copied or moved there.
Json recordJson(const FileRecord& record);
// "makes the folder", "changes the file, 10 -> 20 bytes": for what is only rehearsed.
std::string stepText(const FileRecord& record);
// One line, the path and what became of it.
std::string recordText(const FileRecord& record, std::string_view indent);

}  // namespace korvex::cli
