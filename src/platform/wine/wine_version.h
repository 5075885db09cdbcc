// Which Windows a prefix is set to be.
#pragma once

#include "platform/common/machine_facts.h"
#include "platform/registry.h"

namespace korvex::platform {

// Wine's own setting (HKCU\Software\Wine, Version) goes before what the registry of a Windows
// tells; facts are those of the registry.
void applyWineVersion(Registry& registry, MachineFacts& facts);

}  // namespace korvex::platform
