// System detection: which Windows, where its folders are, whose profile, and where that lies.
//
// The routines run once, in the order in which they stand here; each fills the facts of the
// session and traces them. Only P_GetOSPlatform raises an error. Nothing but registerProgramPath
// (the last step of p_InitializeProfileDirInfo) writes to the machine.
#pragma once

#include <string>
#include <string_view>

#include "foundation/session.h"

namespace korvex::foundation {

void P_DetermineSystemPaths(Session& session);
// Throws RuntimeError "Failure determing OS." where the machine cannot tell its version.
void P_GetOSPlatform(Session& session);
void P_DetermineBuildNumber(Session& session);  // called by P_GetOSPlatform
void p_SetBatchExtension(Session& session);
void P_DetermineProfiles(Session& session);
void P_DetermineProfileDirInfo(Session& session);
// Fills pd, registers the program's path and builds the phone-book path.
void p_InitializeProfileDirInfo(Session& session);

// Which Office the user has: 2000, or else 97.
void p_DetermineOfficeRegPath(Session& session);

// The same facts without any write, for runs that only read: all routines above in their order.
void detectSystem(Session& session);

// Parts of p_InitializeProfileDirInfo.
void initializeProfileFolders(Session& session);
// Writes what does not stand there already; tells the person where that fails.
void registerProgramPath(Session& session);

// What "%USERPROFILE%" stands for, without a backslash at its end. NT knows it; 95, 98 and Me have
// no such variable: there it is the reconciled profile, or without profiles the Windows folder.
std::string userFolder(Session& session);

// Dotted numbers, a one-digit minor version padded to two ("4.00.1381.4", "4.10.2222.0"), and the
// words of the set flags ("4.00.1381.4 Debug Patched "). "" for a file without a version.
std::string GetFileVersion(Session& session, std::string_view sFile);

struct RegisteredTo {
  std::string owner;
  std::string organization;
};
RegisteredTo P_ID(Session& session);

}  // namespace korvex::foundation
