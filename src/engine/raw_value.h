// Registry values and keys as they stand. Absent (2), present (0) and unreadable (any
// other status) stay three answers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace korvex::engine {

struct RawValue {
  platform::RegType type = platform::REG_NONE;
  std::string bytes;

  std::string text() const;  // "" where it is no text; without its last zero
  std::int32_t number(std::int32_t otherwise) const;  // of a REG_DWORD
};

platform::Status readRawValue(platform::Registry& registry, platform::HKEY key,
                              std::string_view name, RawValue& value);
platform::Status readRawValue(platform::Registry& registry, platform::HKEY root,
                              std::string_view path, std::string_view name, RawValue& value);

// An absent value makes the other one absent too.
platform::Status copyRawValue(platform::Registry& registry, platform::HKEY from,
                              std::string_view fromName, platform::HKEY to,
                              std::string_view toName);

// Names of a key's subkeys in the registry's order; what stood in names goes. Unlike the listing of
// the foundation, a key that could not be read does not look like an empty one.
platform::Status listSubKeys(platform::Registry& registry, platform::HKEY root,
                             std::string_view path, platform::AccessMask access,
                             std::vector<std::string>& names);

// Whether the key has neither values nor subkeys.
platform::Status isEmptyKey(platform::Registry& registry, platform::HKEY root,
                            std::string_view path, bool& empty);

// For steps to which a missing key or value is no error.
constexpr platform::Status missingIsFine(platform::Status status) {
  return status == platform::ERROR_FILE_NOT_FOUND ? platform::ERROR_SUCCESS : status;
}

}  // namespace korvex::engine
