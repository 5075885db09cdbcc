// Numbers in the bytes of an NT hive: little-endian, as every host of Korvex. Whoever calls has
// checked the bounds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace korvex::platform {

template <typename Number>
Number readNumber(std::string_view bytes, std::size_t at) {
  Number result = 0;
  std::memcpy(&result, bytes.data() + at, sizeof result);
  return result;
}

template <typename Number>
void writeNumber(std::string& bytes, std::size_t at, Number number) {
  std::memcpy(bytes.data() + at, &number, sizeof number);
}

inline std::uint16_t read16(std::string_view bytes, std::size_t at) {
  return readNumber<std::uint16_t>(bytes, at);
}
inline std::uint32_t read32(std::string_view bytes, std::size_t at) {
  return readNumber<std::uint32_t>(bytes, at);
}
inline void write16(std::string& bytes, std::size_t at, std::uint16_t number) {
  writeNumber(bytes, at, number);
}
inline void write32(std::string& bytes, std::size_t at, std::uint32_t number) {
  writeNumber(bytes, at, number);
}
inline void write64(std::string& bytes, std::size_t at, std::uint64_t number) {
  writeNumber(bytes, at, number);
}

}  // namespace korvex::platform
