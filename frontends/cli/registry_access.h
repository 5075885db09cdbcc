// Reading whole values and keys through the plain registry calls.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/key_path.h"
#include "cli/value_text.h"
#include "platform/registry.h"

namespace korvex::cli {

using NamedValue = std::pair<std::string, Value>;

// Statuses are the registry's; a value that grows while it is read is read again.
platform::Status readValue(platform::Registry& registry, platform::HKEY key, std::string_view name,
                           Value& value);
// All values of an open key, the default value first, the others in the registry's order.
platform::Status readValues(platform::Registry& registry, platform::HKEY key,
                            std::vector<NamedValue>& values);
platform::Status readSubkeys(platform::Registry& registry, platform::HKEY key,
                             std::vector<std::string>& names);

// Deletes a key with everything below it. To be called inside a RegistryChange.
platform::Status deleteTree(platform::Registry& registry, const TypedKey& key);

// "HKEY_CURRENT_USER\X: 2 (file not found)" as a Failure: a missing key or value is told as such.
class Failure;
Failure registryFailure(platform::Status status, const std::string& what,
                        const std::string& reason = {});

}  // namespace korvex::cli
