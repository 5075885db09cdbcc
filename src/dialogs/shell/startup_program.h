// Which file a startup command starts, found as Windows finds it.
#pragma once

#include <optional>
#include <string>

#include "dialogs/shell/startup_place.h"
#include "foundation/session.h"

namespace korvex::dialogs {

struct StartupProgram {
  std::string path;           // "" where none was found
  std::optional<bool> there;  // nothing where that cannot be told
  std::string state;          // a sentence for people
};

// Quotes, arguments behind a path with blanks, %variables%, a missing extension; names without a
// folder in the system folder, the Windows folder and under App Paths. A file that is a shortcut is
// followed.
StartupProgram programOf(foundation::Session& session, const StartupEntry& entry);

}  // namespace korvex::dialogs
