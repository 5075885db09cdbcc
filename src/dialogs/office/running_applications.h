// Which applications of Office run on the machine: while one does, its settings are not touched,
// for it writes its own over them when it is closed.
#pragma once

#include <string_view>
#include <vector>

#include "foundation/session.h"

namespace korvex::dialogs {

// Their names. A machine that nobody works at, such as the disk of one, has none.
std::vector<std::string_view> runningOfficeApplications(foundation::Session& session);

// True where one runs; then the person has been told which to close.
bool p_CheckForLoadedAppsRestore(foundation::Session& session);

// The same for Excel alone, without a word.
bool excelIsRunning(foundation::Session& session);

}  // namespace korvex::dialogs
