// The mode table: what the state of a check box means for a tweak's value.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/tweak.h"
#include "foundation/variant.h"

namespace korvex::engine {

// What one side of a mode stands for.
enum class Outcome : std::uint8_t {
  BoxValue,   // the box itself: 0, 1 or 2
  Delete,     // the value goes
  Zero,       // integer 0
  One,        // integer 1
  Two,        // integer 2
  TextZero,   // "0"
  TextOne,    // "1"
  TextTwo,    // "2"
  TextNo,     // "no"
  TextYes,    // "yes"
  Play,       // "play"
  Defrag,     // "defrag.exe"
  OnValue,    // the row's onValue
  ByDefault,  // the row's byDefault
  Current,    // what an earlier call computed
  Remember,   // the row's onValue is kept as the current value, nothing is written
  DeleteKey,  // the row's whole key goes
  HelpOn,     // the Windows help file is swapped
  HelpOff,    // and comes back
};

// "Checked" is the value 1; the mode that tests for 0 takes its checked side for all but 0.
struct Mode {
  std::int16_t number;
  Outcome checked;
  Outcome unchecked;
  bool testsForZero = false;
};

// Several modes say the same. Every number stays: rows refer to them.
constexpr std::array kModes{
    Mode{0, Outcome::BoxValue, Outcome::BoxValue},
    Mode{1, Outcome::One, Outcome::Delete},
    Mode{2, Outcome::Zero, Outcome::Delete},
    Mode{3, Outcome::OnValue, Outcome::ByDefault},
    Mode{4, Outcome::TextOne, Outcome::TextZero},
    Mode{5, Outcome::TextOne, Outcome::Delete},
    Mode{6, Outcome::ByDefault, Outcome::OnValue, true},
    Mode{7, Outcome::Delete, Outcome::Zero},
    Mode{8, Outcome::Zero, Outcome::One},
    Mode{9, Outcome::Delete, Outcome::One},
    Mode{10, Outcome::Remember, Outcome::DeleteKey},
    Mode{11, Outcome::Delete, Outcome::Play},
    Mode{12, Outcome::TextOne, Outcome::TextTwo},
    Mode{13, Outcome::OnValue, Outcome::ByDefault},
    Mode{14, Outcome::TextNo, Outcome::ByDefault},
    Mode{15, Outcome::Current, Outcome::Current},
    Mode{16, Outcome::TextZero, Outcome::TextOne},
    Mode{17, Outcome::OnValue, Outcome::OnValue},
    Mode{18, Outcome::Two, Outcome::Delete},
    Mode{19, Outcome::Defrag, Outcome::Delete},
    Mode{20, Outcome::TextNo, Outcome::TextYes},
    Mode{21, Outcome::HelpOn, Outcome::HelpOff},
};

constexpr bool numberedInOrder() {
  for (std::size_t i = 0; i < kModes.size(); ++i) {
    if (kModes[i].number != static_cast<std::int16_t>(i)) return false;
  }
  return true;
}
static_assert(numberedInOrder() && kModes.size() == 22);

// The binary engine's modes: the byte comes from the row. Mode 3 is the shortcut prefix, whose
// default is no value at all.
constexpr std::array kBinaryModes{
    Mode{0, Outcome::OnValue, Outcome::ByDefault},
    Mode{1, Outcome::ByDefault, Outcome::OnValue},
    Mode{2, Outcome::OnValue, Outcome::OnValue},
    Mode{3, Outcome::OnValue, Outcome::ByDefault},
};

// The mode of a row, in the table of its engine.
constexpr const Mode& modeOf(const Tweak& tweak) {
  const auto number = static_cast<std::size_t>(tweak.mode);
  return tweak.binaryLength == 0 ? kModes.at(number) : kBinaryModes.at(number);
}

// What a routine has to do. Only Write brings a value to the machine (an empty one deletes).
struct Decision {
  enum class Act : std::uint8_t { Write, Remember, DeleteKey, SwapHelpFile, RestoreHelpFile };
  Act act = Act::Write;
  foundation::Variant value;

  bool operator==(const Decision&) const = default;
};

// binaryLength: of a byte, how long its binary value is.
foundation::Variant variantOf(const RowValue& value, std::uint8_t binaryLength = 0);

// checkValue is 0, 1 or 2; current is what an earlier call computed.
Decision decide(const Tweak& tweak, int checkValue, const foundation::Variant& current);
// The same in restore-defaults mode, whatever the box shows.
Decision decideDefault(const Tweak& tweak);

}  // namespace korvex::engine
