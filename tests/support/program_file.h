// The smallest programs that tell a version.
#pragma once

#include <cstdint>
#include <string>

#include "platform/system_info.h"

namespace korvex::test {

inline void putNumber(std::string& bytes, std::size_t at, std::uint32_t value, int size) {
  if (bytes.size() < at + 4) bytes.resize(at + 4);
  for (int i = 0; i < size; ++i) {
    bytes[at + static_cast<std::size_t>(i)] = static_cast<char>(value >> (8 * i));
  }
}

// VS_VERSIONINFO with its fixed part; in 16-bit files the name is in bytes.
inline std::string versionInfo(const platform::FileVersion& version, bool sixteenBit) {
  std::string info;
  const std::string name("VS_VERSION_INFO\0", 16);
  const std::size_t nameAt = sixteenBit ? 4 : 6;
  info.resize(nameAt);
  for (const char c : name) {
    info += c;
    if (!sixteenBit) info += '\0';
  }
  info.resize((info.size() + 3) / 4 * 4);
  const std::size_t fixed = info.size();
  info.resize(fixed + 52);
  putNumber(info, 0, static_cast<std::uint32_t>(info.size()), 2);
  putNumber(info, 2, 52, 2);
  putNumber(info, fixed, 0xFEEF04BD, 4);
  putNumber(info, fixed + 4, 0x10000, 4);
  putNumber(info, fixed + 8, std::uint32_t{version.major} << 16 | version.minor, 4);
  putNumber(info, fixed + 12, std::uint32_t{version.build} << 16 | version.revision, 4);
  putNumber(info, fixed + 16, 0x00630063, 4);  // the product's version is another one
  putNumber(info, fixed + 24, 0x3F, 4);
  putNumber(info, fixed + 28, version.flags, 4);
  return info;
}

// A PE file of one section, its resources.
inline std::string programWithVersion(const platform::FileVersion& version, bool wide = false) {
  constexpr std::uint32_t kAddress = 0x1000;
  constexpr std::uint32_t kOffset = 0x200;
  const std::string info = versionInfo(version, false);
  std::string section(0x60, '\0');
  // Type, name and language have a directory of one entry each.
  for (std::uint32_t level = 0; level < 3; ++level) {
    const std::uint32_t at = level * 0x18;
    putNumber(section, at + 14, 1, 2);
    putNumber(section, at + 16, level == 0 ? 16 : level == 1 ? 1 : 0x409, 4);
    putNumber(section, at + 20, level == 2 ? 0x48 : 0x80000000 | (at + 0x18), 4);
  }
  putNumber(section, 0x48, kAddress + 0x60, 4);
  putNumber(section, 0x4C, static_cast<std::uint32_t>(info.size()), 4);
  section += info;
  std::string file(kOffset, '\0');
  file.replace(0, 2, "MZ");
  putNumber(file, 0x3C, 0x40, 4);
  file.replace(0x40, 2, "PE");
  const std::size_t optional = 0x58;
  const std::size_t directories = optional + (wide ? 112 : 96);
  putNumber(file, 0x46, 1, 2);
  putNumber(file, 0x54, wide ? 240 : 224, 2);
  putNumber(file, optional, wide ? 0x20B : 0x10B, 2);
  putNumber(file, directories - 4, 16, 4);
  putNumber(file, directories + 16, kAddress, 4);
  putNumber(file, directories + 20, static_cast<std::uint32_t>(section.size()), 4);
  const std::size_t header = optional + (wide ? 240 : 224);
  file.replace(header, 5, ".rsrc");
  putNumber(file, header + 8, static_cast<std::uint32_t>(section.size()), 4);
  putNumber(file, header + 12, kAddress, 4);
  putNumber(file, header + 16, static_cast<std::uint32_t>(section.size()), 4);
  putNumber(file, header + 20, kOffset, 4);
  return file + section;
}

// An NE file with a resource of another type before the version.
inline std::string program16WithVersion(const platform::FileVersion& version) {
  const std::string info = versionInfo(version, true);
  std::string file(0x100, '\0');
  file.replace(0, 2, "MZ");
  putNumber(file, 0x3C, 0x40, 4);
  file.replace(0x40, 2, "NE");
  putNumber(file, 0x64, 0x40, 2);  // of the resource table
  std::size_t at = 0x80;
  putNumber(file, at, 4, 2);  // units of 16 bytes
  putNumber(file, at + 2, 0x8003, 2);
  putNumber(file, at + 4, 1, 2);
  at += 2 + 8 + 12;
  putNumber(file, at, 0x8010, 2);
  putNumber(file, at + 2, 1, 2);
  putNumber(file, at + 8, 0x10, 2);
  putNumber(file, at + 10, static_cast<std::uint32_t>((info.size() + 15) / 16), 2);
  file += info;
  file.resize((file.size() + 15) / 16 * 16);
  return file;
}

}  // namespace korvex::test
