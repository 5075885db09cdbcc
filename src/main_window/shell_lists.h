// The lists of what was used last, which a person may want gone: documents, typed addresses, the
// Run list and all the others; and the order that the items of the menus were dragged into.
#pragma once

#include <cstdint>

#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::main_window {

enum class ShellList : std::uint8_t { Documents, TypedAddresses, RunCommands, MenuOrder, All };

// How many entries there are to clear. Reads only.
int countEntries(ShellList list, foundation::Session& session);
// All of it is cleared or nothing. All takes the registry's lists only: the documents' shortcuts
// stay, which their own command clears.
platform::Status clearList(ShellList list, foundation::Session& session);

}  // namespace korvex::main_window
