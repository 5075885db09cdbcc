// The policy RestrictRun of the current user: where it is on, Explorer starts no programs but those
// of its list.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::dialogs {

struct RestrictedPrograms {
  bool on = false;
  std::vector<std::string> programs;  // file names: "notepad.exe"

  bool operator==(const RestrictedPrograms&) const = default;
  // Without regard to case.
  bool allows(std::string_view program) const;
};

// "C:\WINNT\notepad.exe" as the policy knows it: "notepad.exe". Blanks and quotation marks around
// it go.
std::string programName(std::string_view typed);

// A missing switch is off, a missing key an empty list. Values that are no text are no programs;
// where all are named by numbers, they come in that order.
platform::Status readRestrictedPrograms(foundation::Session& session, RestrictedPrograms& stored);

// A step of a change: what stood there goes, and the new policy is written where it is on and has
// programs.
// A list that goes without another one in its place is kept (engine/taken_away.h).
platform::Status writeRestrictedPrograms(foundation::Session& session,
                                         const RestrictedPrograms& wanted);

// The list that was kept last; empty where there is none.
std::vector<std::string> formerPrograms(foundation::Session& session);

}  // namespace korvex::dialogs
