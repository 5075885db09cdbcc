// From a row and the state of its box to what is to be done.
#include "engine/modes.h"

#include <string>

namespace korvex::engine {
namespace {

using foundation::Variant;
using Act = Decision::Act;

// Constants are 16-bit integers, as the product's own are.
Variant integer(int number) { return static_cast<std::int16_t>(number); }

// The writer takes two off the length of a byte array.
constexpr std::size_t kTakenOff = 2;

}  // namespace

Variant variantOf(const RowValue& value, std::uint8_t binaryLength) {
  switch (value.kind) {
    case RowValue::Kind::Byte: {
      foundation::ByteArray bytes(binaryLength + kTakenOff, 0);
      bytes[0] = static_cast<std::uint8_t>(value.number);
      return bytes;
    }
    case RowValue::Kind::Number:
      return value.number;
    case RowValue::Kind::Text:
      return value.text;
    case RowValue::Kind::Delete:
      break;
  }
  return {};
}

Decision decide(const Tweak& tweak, int checkValue, const Variant& current) {
  const Mode& mode = modeOf(tweak);
  const bool checked = mode.testsForZero ? checkValue != 0 : checkValue == 1;
  switch (checked ? mode.checked : mode.unchecked) {
    case Outcome::BoxValue:
      return {Act::Write, integer(checkValue)};
    case Outcome::Delete:
      return {Act::Write, {}};
    case Outcome::Zero:
      return {Act::Write, integer(0)};
    case Outcome::One:
      return {Act::Write, integer(1)};
    case Outcome::Two:
      return {Act::Write, integer(2)};
    case Outcome::TextZero:
      return {Act::Write, "0"};
    case Outcome::TextOne:
      return {Act::Write, "1"};
    case Outcome::TextTwo:
      return {Act::Write, "2"};
    case Outcome::TextNo:
      return {Act::Write, "no"};
    case Outcome::TextYes:
      return {Act::Write, "yes"};
    case Outcome::Play:
      return {Act::Write, "play"};
    case Outcome::Defrag:
      return {Act::Write, "defrag.exe"};
    case Outcome::OnValue:
      return {Act::Write, variantOf(tweak.onValue, tweak.binaryLength)};
    case Outcome::ByDefault:
      return {Act::Write, variantOf(tweak.byDefault, tweak.binaryLength)};
    case Outcome::Current:
      return {Act::Write, current};
    case Outcome::Remember:
      return {Act::Remember, variantOf(tweak.onValue, tweak.binaryLength)};
    case Outcome::DeleteKey:
      return {Act::DeleteKey, {}};
    case Outcome::HelpOn:
      return {Act::SwapHelpFile, {}};
    case Outcome::HelpOff:
      return {Act::RestoreHelpFile, {}};
  }
  return {};
}

Decision decideDefault(const Tweak& tweak) {
  if (tweak.binaryLength != 0) return {Act::Write, variantOf(tweak.byDefault, tweak.binaryLength)};
  if (tweak.mode == 10) return {Act::DeleteKey, {}};
  if (tweak.mode == 21) return {Act::RestoreHelpFile, {}};
  return {Act::Write, variantOf(tweak.byDefault, tweak.binaryLength)};
}

}  // namespace korvex::engine
