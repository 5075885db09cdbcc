// The writer's rules, the other way round.
#include "engine/same_data.h"

#include <cstdint>

#include "engine/same_name.h"

namespace korvex::engine {
namespace {

using foundation::Variant;

// GRegTool's choice: a text that names a variable is stored as one to expand.
platform::RegType textType(std::string_view text) {
  const auto first = text.find('%');
  const bool names =
      first != std::string_view::npos && text.find('%', first + 2) != std::string_view::npos;
  return names ? platform::REG_EXPAND_SZ : platform::REG_SZ;
}

// And of a byte array it leaves the last two out.
std::string_view writtenBytes(const foundation::ByteArray& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size() < 2 ? 0 : bytes.size() - 2};
}

bool isNumber(std::string_view bytes, std::int32_t number) {
  if (bytes.size() != 4) return false;
  std::uint32_t there = 0;
  for (std::size_t i = 4; i-- > 0;) there = there << 8 | static_cast<std::uint8_t>(bytes[i]);
  return there == static_cast<std::uint32_t>(number);
}

}  // namespace

bool holds(platform::RegType type, std::string_view bytes, const Variant& wanted) {
  if (const std::string* word = wanted.string()) {
    if (bytes.ends_with('\0')) bytes.remove_suffix(1);  // some programs store none
    return type == textType(*word) && sameName(bytes, *word);
  }
  if (const foundation::ByteArray* array = wanted.bytes()) {
    return type == platform::REG_BINARY && bytes == writtenBytes(*array);
  }
  return wanted.number() && type == platform::REG_DWORD && isNumber(bytes, *wanted.number());
}

}  // namespace korvex::engine
