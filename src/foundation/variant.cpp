// The string form of variants and their comparison.
#include "foundation/variant.h"

#include <fmt/format.h>

#include <charconv>

namespace korvex::foundation {
namespace {

std::optional<std::int32_t> numberIn(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

bool isInteger(const Variant& value) {
  return value.kind() == Variant::Kind::Integer || value.kind() == Variant::Kind::Long;
}

}  // namespace

std::optional<std::int32_t> Variant::number() const {
  if (const auto* boolean = std::get_if<bool>(&data_)) return *boolean ? -1 : 0;
  if (const auto* integer = std::get_if<std::int16_t>(&data_)) return *integer;
  if (const auto* integer = std::get_if<std::int32_t>(&data_)) return *integer;
  return std::nullopt;
}

std::string variantText(const Variant& value) {
  switch (value.kind()) {
    case Variant::Kind::Empty:
      return {};
    case Variant::Kind::Boolean:
      return *value.number() != 0 ? "True" : "False";
    case Variant::Kind::Integer:
    case Variant::Kind::Long:
      return std::to_string(*value.number());
    case Variant::Kind::String:
      return *value.string();
    case Variant::Kind::Bytes:
      return fmt::format("{:02x}", fmt::join(*value.bytes(), " "));
  }
  return {};
}

bool looselyEqual(const Variant& left, const Variant& right) {
  if (left.bytes() != nullptr || right.bytes() != nullptr) return left == right;
  if (left.isString() && isInteger(right)) return numberIn(*left.string()) == right.number();
  if (isInteger(left) && right.isString()) return looselyEqual(right, left);
  if (left.isString() || right.isString()) return variantText(left) == variantText(right);
  return left.number().value_or(0) == right.number().value_or(0);
}

bool isFalse(const Variant& value) { return !value.isString() && looselyEqual(value, false); }

}  // namespace korvex::foundation
