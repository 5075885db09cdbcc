// Finding VS_FIXEDFILEINFO in the bytes of a program.
#include "platform/common/version_resource.h"

#include <cstdint>
#include <optional>

#include "platform/text/text.h"

namespace korvex::platform {
namespace {

// Bytes that are read by offset and never beyond their end.
class Bytes {
 public:
  explicit Bytes(std::string_view bytes) : bytes_(bytes) {}

  std::uint32_t number(std::uint64_t at, int size) {
    if (at > bytes_.size() || bytes_.size() - at < static_cast<std::uint64_t>(size)) {
      beyond_ = true;
      return 0;
    }
    std::uint32_t value = 0;
    for (int i = size - 1; i >= 0; --i) {
      value = value << 8 | static_cast<unsigned char>(bytes_[at + static_cast<unsigned>(i)]);
    }
    return value;
  }
  std::uint16_t word(std::uint64_t at) { return static_cast<std::uint16_t>(number(at, 2)); }
  std::uint32_t dword(std::uint64_t at) { return number(at, 4); }

  std::string_view part(std::uint64_t at, std::uint64_t size) {
    if (at > bytes_.size() || bytes_.size() - at < size) {
      beyond_ = true;
      return {};
    }
    return bytes_.substr(at, size);
  }
  // Whether something was asked for that is not there.
  bool beyond() const { return beyond_; }

 private:
  std::string_view bytes_;
  bool beyond_ = false;
};

constexpr std::uint32_t kFixedSignature = 0xFEEF04BD;
constexpr std::uint32_t kVersionType = 16;  // RT_VERSION

// VS_VERSIONINFO: lengths, its name, and at the next multiple of four the fixed part. In 16-bit
// files the name is in bytes and there is no type.
Status readInfo(std::string_view resource, bool sixteenBit, FileVersion& version) {
  Bytes bytes(resource);
  const std::uint64_t name = sixteenBit ? 4 : 6;
  const std::uint64_t nameBytes = sixteenBit ? 16 : 32;  // "VS_VERSION_INFO" and its zero
  const std::string_view key = bytes.part(name, nameBytes);
  const std::string text = sixteenBit ? std::string(key) : utf16leToUtf8(key);
  const std::uint64_t fixed = (name + nameBytes + 3) / 4 * 4;
  const bool found =
      text == std::string_view("VS_VERSION_INFO\0", 16) && bytes.dword(fixed) == kFixedSignature;
  const std::uint32_t high = bytes.dword(fixed + 8);
  const std::uint32_t low = bytes.dword(fixed + 12);
  const std::uint32_t flags = bytes.dword(fixed + 24) & bytes.dword(fixed + 28);
  if (!found || bytes.beyond()) return ERROR_INVALID_DATA;
  version = {static_cast<std::uint16_t>(high >> 16), static_cast<std::uint16_t>(high),
             static_cast<std::uint16_t>(low >> 16), static_cast<std::uint16_t>(low), flags};
  return ERROR_SUCCESS;
}

// The first entry of a resource directory, or the one with this number. Offsets are within the
// resource section; the high bit of the result tells another directory.
std::optional<std::uint32_t> entryOf(Bytes& section, std::uint64_t directory,
                                     std::optional<std::uint32_t> number) {
  const std::uint32_t count = section.word(directory + 12) + section.word(directory + 14);
  for (std::uint32_t i = 0; i < count && !section.beyond(); ++i) {
    const std::uint64_t entry = directory + 16 + std::uint64_t{8} * i;
    if (!number || section.dword(entry) == *number) return section.dword(entry + 4);
  }
  return {};
}

constexpr std::uint32_t kSubdirectory = 0x80000000;

// Three levels: type, name, language.
Status readPeSection(std::string_view section, std::uint32_t address, FileVersion& version) {
  Bytes bytes(section);
  const auto type = entryOf(bytes, 0, kVersionType);
  if (!type || (*type & kSubdirectory) == 0) return ERROR_INVALID_DATA;
  const auto name = entryOf(bytes, *type & ~kSubdirectory, {});
  if (!name || (*name & kSubdirectory) == 0) return ERROR_INVALID_DATA;
  const auto language = entryOf(bytes, *name & ~kSubdirectory, {});
  if (!language || (*language & kSubdirectory) != 0) return ERROR_INVALID_DATA;
  const std::uint32_t data = bytes.dword(*language);
  const std::uint32_t size = bytes.dword(std::uint64_t{*language} + 4);
  if (bytes.beyond() || data < address) return ERROR_INVALID_DATA;
  return readInfo(bytes.part(data - address, size), false, version);
}

Status readPe(std::string_view file, std::uint64_t header, FileVersion& version) {
  Bytes bytes(file);
  constexpr std::uint32_t kPe32Plus = 0x20B;
  constexpr std::uint32_t kResources = 2;  // of the data directories
  const std::uint32_t sections = bytes.word(header + 6);
  const std::uint64_t optional = header + 24;
  const std::uint64_t directories = optional + (bytes.word(optional) == kPe32Plus ? 112 : 96);
  const std::uint32_t address = bytes.dword(directories + std::uint64_t{8} * kResources);
  if (bytes.dword(directories - 4) <= kResources || address == 0) return ERROR_INVALID_DATA;
  const std::uint64_t table = optional + bytes.word(header + 20);
  for (std::uint32_t i = 0; i < sections && !bytes.beyond(); ++i) {
    const std::uint64_t section = table + std::uint64_t{40} * i;
    const std::uint32_t start = bytes.dword(section + 12);
    const std::uint32_t size = bytes.dword(section + 16);
    if (address < start || address - start >= size) continue;
    const std::uint32_t skipped = address - start;
    return readPeSection(
        bytes.part(std::uint64_t{bytes.dword(section + 20)} + skipped, size - skipped), address,
        version);
  }
  return ERROR_INVALID_DATA;
}

// A list of types, each with its resources; offsets and lengths are shifted.
Status readNe(std::string_view file, std::uint64_t header, FileVersion& version) {
  Bytes bytes(file);
  constexpr std::uint32_t kMostTypes = 0x10000;
  const std::uint64_t table = header + bytes.word(header + 0x24);
  const std::uint32_t shift = bytes.word(table);
  std::uint64_t type = table + 2;
  if (shift > 16) return ERROR_INVALID_DATA;
  for (std::uint32_t i = 0; i < kMostTypes && !bytes.beyond(); ++i) {
    const std::uint32_t id = bytes.word(type);
    const std::uint32_t count = bytes.word(type + 2);
    if (id == 0) break;
    if (id == (0x8000 | kVersionType) && count > 0) {
      const std::uint64_t offset = std::uint64_t{bytes.word(type + 8)} << shift;
      const std::uint64_t size = std::uint64_t{bytes.word(type + 10)} << shift;
      return readInfo(bytes.part(offset, size), true, version);
    }
    type += 8 + std::uint64_t{12} * count;
  }
  return ERROR_INVALID_DATA;
}

}  // namespace

Status readVersionResource(std::string_view file, FileVersion& version) {
  Bytes bytes(file);
  constexpr std::uint32_t kMz = 0x5A4D;
  constexpr std::uint32_t kPe = 0x00004550;
  constexpr std::uint32_t kNe = 0x454E;
  if (bytes.word(0) != kMz) return ERROR_INVALID_DATA;
  const std::uint32_t header = bytes.dword(0x3C);
  if (bytes.dword(header) == kPe) return readPe(file, header, version);
  return bytes.word(header) == kNe ? readNe(file, header, version) : ERROR_INVALID_DATA;
}

}  // namespace korvex::platform
