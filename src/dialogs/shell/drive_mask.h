// Which drives Explorer hides: the policy NoDrives of the current user, one bit for each letter.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/raw_value.h"
#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::dialogs {

constexpr std::size_t kDriveCount = 26;

// "A:" to "Z:".
std::array<std::string, kDriveCount> driveNames();

class DriveMask {
 public:
  static constexpr std::size_t kSize = 4;

  // Letter n is bit n of the little-endian number; the six bits behind Z are no drives.
  DriveMask() = default;
  explicit DriveMask(std::string_view bytes);

  bool isHidden(std::size_t letter) const { return (bits_ >> letter & 1) != 0; }
  void setHidden(std::size_t letter, bool hidden);
  void setAll(bool hidden) { bits_ = hidden ? kEveryDrive : 0; }
  std::string bytes() const;
  // "A:, D:", or "none".
  std::string text() const;
  bool operator==(const DriveMask&) const = default;

 private:
  static constexpr std::uint32_t kEveryDrive = (1U << kDriveCount) - 1;
  std::uint32_t bits_ = 0;
};

// The policy as it stands.
struct HiddenDrives {
  bool present = false;
  engine::RawValue raw;
  DriveMask mask;

  // Whether writing the mask would change nothing, the type of the value included.
  bool holds(const DriveMask& other) const;
  // Whether both are the same value, to the byte.
  bool same(const HiddenDrives& other) const;
};

// A missing value or key hides nothing. 13 for a value that is neither binary nor a DWORD: Windows
// did not write it.
platform::Status readHiddenDrives(foundation::Session& session, HiddenDrives& drives);

// A step of a change. The key is opened, not made: 2 where it is missing.
platform::Status writeHiddenDrives(foundation::Session& session, const DriveMask& mask);

}  // namespace korvex::dialogs
