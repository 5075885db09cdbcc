// The first 4096 bytes of an NT hive, and whether they allow it to be written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace korvex::platform {

constexpr std::size_t kRegfHeaderSize = 4096;

struct RegfHeader {
  std::uint32_t firstSequence = 0;
  std::uint32_t secondSequence = 0;
  std::uint32_t minor = 0;
  std::uint32_t root = 0;      // offset of the root key's cell
  std::uint32_t binsSize = 0;  // what follows the header
  bool checksumHolds = false;

  // Windows has not finished with it: what it wrote last stands in the log only.
  bool isDirty() const { return firstSequence != secondSequence || !checksumHolds; }
};

// 1017 with a sentence for people: no hive, a hive's log, or a format that is not known.
Status readRegfHeader(std::string_view bytes, RegfHeader& header, std::string& message);

// Why a hive with this header must not be written, and what to do about it; "" where it may be.
std::string whyHeaderForbidsWriting(const RegfHeader& header, std::size_t fileSize);

// Sets the time of the last change, counted as Windows does, and the checksum. bytes are a hive's.
void stampRegfHeader(std::string& bytes, std::uint64_t time);

}  // namespace korvex::platform
