// Bits and bytes, reading and writing.
#include "dialogs/shell/drive_mask.h"

#include <algorithm>

#include "platform/registry.h"

namespace korvex::dialogs {

using platform::Status;

namespace {

constexpr std::string_view kPolicies =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer";
constexpr std::string_view kNoDrives = "NoDrives";
constexpr std::string_view kNames =
    "A:,B:,C:,D:,E:,F:,G:,H:,I:,J:,K:,L:,M:,N:,O:,P:,Q:,R:,S:,T:,U:,V:,W:,X:,Y:,Z:";

}  // namespace

std::array<std::string, kDriveCount> driveNames() {
  std::array<std::string, kDriveCount> names;
  std::size_t begin = 0;
  for (std::string& name : names) {
    const std::size_t end = std::min(kNames.find(',', begin), kNames.size());
    name = kNames.substr(begin, end - begin);
    begin = end + 1;
  }
  return names;
}

DriveMask::DriveMask(std::string_view bytes) {
  const std::size_t size = std::min(bytes.size(), kSize);
  for (std::size_t i = 0; i < size; ++i) {
    bits_ |= static_cast<std::uint32_t>(static_cast<std::uint8_t>(bytes[i])) << 8 * i;
  }
  bits_ &= kEveryDrive;
}

void DriveMask::setHidden(std::size_t letter, bool hidden) {
  const std::uint32_t bit = 1U << letter & kEveryDrive;
  bits_ = hidden ? bits_ | bit : bits_ & ~bit;
}

std::string DriveMask::bytes() const {
  std::string bytes;
  for (std::size_t i = 0; i < kSize; ++i) bytes += static_cast<char>(bits_ >> 8 * i & 0xFF);
  return bytes;
}

std::string DriveMask::text() const {
  std::string text;
  const auto names = driveNames();
  for (std::size_t i = 0; i < kDriveCount; ++i) {
    if (isHidden(i)) text += (text.empty() ? "" : ", ") + names[i];
  }
  return text.empty() ? "none" : text;
}

bool HiddenDrives::holds(const DriveMask& other) const {
  return present && raw.type == platform::REG_BINARY && raw.bytes == other.bytes();
}

bool HiddenDrives::same(const HiddenDrives& other) const {
  return present == other.present && raw.type == other.raw.type && raw.bytes == other.raw.bytes;
}

Status readHiddenDrives(foundation::Session& session, HiddenDrives& drives) {
  drives = {};
  const Status status = engine::readRawValue(session.registry(), platform::HKEY_CURRENT_USER,
                                             kPolicies, kNoDrives, drives.raw);
  session.trace.dump("lRetVal&", status);
  if (status != platform::ERROR_SUCCESS) return engine::missingIsFine(status);
  const bool isMask =
      drives.raw.type == platform::REG_BINARY || drives.raw.type == platform::REG_DWORD;
  if (!isMask) return platform::ERROR_INVALID_DATA;
  drives.present = true;
  drives.mask = DriveMask(drives.raw.bytes);
  return status;
}

Status writeHiddenDrives(foundation::Session& session, const DriveMask& mask) {
  const platform::OpenKey key(session.registry(), platform::HKEY_CURRENT_USER, kPolicies,
                              platform::KEY_WRITE);
  if (key.status() != platform::ERROR_SUCCESS) return key.status();
  const std::string bytes = mask.bytes();
  return session.registry().RegSetValueExA(key.get(), kNoDrives, platform::REG_BINARY, bytes.data(),
                                           static_cast<std::uint32_t>(bytes.size()));
}

}  // namespace korvex::dialogs
