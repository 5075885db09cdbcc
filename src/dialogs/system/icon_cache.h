// The file in which Explorer keeps the icons that it draws, and how many it may keep there.
#pragma once

#include <string>

#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::dialogs {

// The limit as it stands, or Windows' own where none is set. A status other than success where it
// could not be read.
platform::Status iconCacheSize(foundation::Session& session, std::string& size);

// What came of a change: its status, and that of taking it back where it failed.
struct IconCacheChange {
  platform::Status status = platform::ERROR_SUCCESS;
  platform::Status takenBack = platform::ERROR_SUCCESS;
};

// Sets the limit; on Windows 95, 98 and Me the same number is the ceiling of the disk cache in
// system.ini. All of it or nothing.
IconCacheChange setIconCacheSize(foundation::Session& session, const std::string& size);

// Deletes the file, whatever its attributes: Windows makes a new one. 2 where there is none.
IconCacheChange deleteIconCache(foundation::Session& session);

}  // namespace korvex::dialogs
