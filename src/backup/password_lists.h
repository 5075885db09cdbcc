// The section "Password Lists" of system.ini (Windows 95, 98 and Me), and its copy in a set.
//
// The copy is UTF-8, whatever the machine's code page: a set may go to another machine.
#pragma once

#include <string>

#include "foundation/session.h"
#include "platform/files.h"

namespace korvex::backup {

// The lines "NAME=FILE", each ended by a line feed; "" where there are none, and on NT.
std::string passwordLists(foundation::Session& session);
// The copy's text.
std::string passwordListsText(foundation::Session& session);

// Whether system.ini says what the copy says.
bool hasPasswordLists(foundation::Session& session, const std::string& copy);
// Makes it say so, line by line; the way back goes through files.
platform::Status writePasswordLists(foundation::Session& session, platform::Files& files,
                                    const std::string& copy);

}  // namespace korvex::backup
