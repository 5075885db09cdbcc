// Admission: a machine whose Korvex asks for a password opens for no command without it.
#pragma once

#include "cli/context.h"
#include "platform/machine.h"

namespace korvex::cli {

// Asks for the password where one is set. Throws Failure (Failed) without it.
void admit(const Context& context, platform::Machine& machine);

}  // namespace korvex::cli
