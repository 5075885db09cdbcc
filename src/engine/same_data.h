// Whether a value of the registry is what a variant would be written as: data and type.
#pragma once

#include <string_view>

#include "engine/raw_value.h"
#include "foundation/variant.h"

namespace korvex::engine {

// Words are Windows' own, which it takes in any case. An empty variant stands for no value at all:
// nothing that is there holds it.
bool holds(platform::RegType type, std::string_view bytes, const foundation::Variant& wanted);
inline bool holds(const RawValue& value, const foundation::Variant& wanted) {
  return holds(value.type, value.bytes, wanted);
}

}  // namespace korvex::engine
