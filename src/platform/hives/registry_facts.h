// What a registry tells of its own Windows.
#pragma once

#include <string>
#include <string_view>

#include "platform/common/machine_facts.h"
#include "platform/registry.h"

namespace korvex::platform {

// A text value with %variables% as they stand; "" where there is none.
std::string registryText(Registry& registry, HKEY root, std::string_view key,
                         std::string_view value);

// Version, product, code pages, computer's name, environment and folders of an NT. user must be
// set before; systemRoot ("C:\WINNT") is used where the registry does not tell.
void readWindowsFacts(Registry& registry, std::string_view systemRoot, MachineFacts& facts);

// "Windows 2000 Professional": the product's own name where it has one.
std::string windowsName(const MachineFacts& facts);

}  // namespace korvex::platform
