// Reads and stamps the header of an NT hive.
#include "platform/windows_folder/regf_header.h"

#include "platform/windows_folder/regf_bytes.h"

namespace korvex::platform {

namespace {

constexpr std::size_t kTime = 12;
constexpr std::size_t kChecksum = 508;

// The exclusive or of all that stands before it; two results have a meaning of their own and are
// never stored.
std::uint32_t checksumOf(std::string_view bytes) {
  std::uint32_t sum = 0;
  for (std::size_t at = 0; at < kChecksum; at += 4) sum ^= read32(bytes, at);
  if (sum == 0) return 1;
  return sum == 0xFFFFFFFF ? 0xFFFFFFFE : sum;
}

}  // namespace

Status readRegfHeader(std::string_view bytes, RegfHeader& header, std::string& message) {
  if (bytes.size() < 4 || bytes.substr(0, 4) != "regf") {
    message = "This is not a registry file of Windows NT or its successors.";
    return ERROR_NOT_REGISTRY_FILE;
  }
  if (bytes.size() <= kRegfHeaderSize) {
    message =
        "This registry file is cut off: it has no keys. Put a copy from a backup in its place.";
    return ERROR_NOT_REGISTRY_FILE;
  }
  if (read32(bytes, 28) != 0) {
    message = "This is the log of a registry file. Name the file without .LOG instead.";
    return ERROR_NOT_REGISTRY_FILE;
  }
  if (read32(bytes, 20) != 1) {
    message = "This registry file has a format that Korvex does not know.";
    return ERROR_NOT_REGISTRY_FILE;
  }
  header.firstSequence = read32(bytes, 4);
  header.secondSequence = read32(bytes, 8);
  header.minor = read32(bytes, 24);
  header.root = read32(bytes, 36);
  header.binsSize = read32(bytes, 40);
  header.checksumHolds = read32(bytes, kChecksum) == checksumOf(bytes);
  return ERROR_SUCCESS;
}

std::string whyHeaderForbidsWriting(const RegfHeader& header, std::size_t fileSize) {
  if (header.isDirty()) {
    return "Windows has not finished writing this registry file: its last changes are still in the "
           "log beside it. Start Windows once and shut it down, then try again.";
  }
  if (header.minor < 3) {
    return "This registry file is of a Windows before NT 4. Korvex reads such files only.";
  }
  if (header.minor > 6) {
    return "This registry file is of a Windows that Korvex does not know. It is read only.";
  }
  if (header.binsSize == 0 || header.binsSize % 4096 != 0 ||
      header.binsSize > fileSize - kRegfHeaderSize) {
    return "This registry file is cut off. Put a copy from a backup in its place, or let Windows "
           "repair it.";
  }
  return {};
}

void stampRegfHeader(std::string& bytes, std::uint64_t time) {
  write64(bytes, kTime, time);
  write32(bytes, kChecksum, checksumOf(bytes));
}

}  // namespace korvex::platform
