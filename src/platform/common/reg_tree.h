// Whole key trees of a registry.
#pragma once

#include <string_view>

#include "platform/registry.h"

namespace korvex::platform {

// Deletes a key with everything below it, on every kind of Windows; 2 where there is none. After a
// failure a part may be gone: bracket it with RegistryChange.
Status deleteKeyTree(Registry& registry, HKEY root, std::string_view path);

}  // namespace korvex::platform
