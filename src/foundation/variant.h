// Variant: what a registry value is on its way through Korvex.
//
// The kinds matter: the kind decides the registry type that is written, and Boolean false or empty
// means "delete the value" to the tweaks. A 16- and a 32-bit integer of the same number are equal.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace korvex::foundation {

using ByteArray = std::vector<std::uint8_t>;

class Variant {
 public:
  enum class Kind { Empty, Boolean, Integer, Long, String, Bytes };

  Variant() = default;
  Variant(bool value) : data_(value) {}
  Variant(std::int16_t value) : data_(value) {}
  Variant(std::int32_t value) : data_(value) {}
  Variant(std::string value) : data_(std::move(value)) {}
  Variant(std::string_view value) : data_(std::string(value)) {}
  // Without this a text literal would be taken for a Boolean.
  Variant(const char* value) : data_(std::string(value)) {}
  Variant(ByteArray value) : data_(std::move(value)) {}

  Kind kind() const { return static_cast<Kind>(data_.index()); }
  bool isEmpty() const { return kind() == Kind::Empty; }
  bool isString() const { return kind() == Kind::String; }

  // Null where the variant is of another kind.
  const std::string* string() const { return std::get_if<std::string>(&data_); }
  const ByteArray* bytes() const { return std::get_if<ByteArray>(&data_); }
  // Integers as they are, a Boolean as -1 or 0, nothing for the other kinds.
  std::optional<std::int32_t> number() const;

  // The same kind and the same content.
  bool operator==(const Variant& other) const = default;

 private:
  std::variant<std::monostate, bool, std::int16_t, std::int32_t, std::string, ByteArray> data_;
};

// The string form: integers in decimal, "True" or "False", bytes as "95 00 00 00", "" for empty.
std::string variantText(const Variant& value);

// The product's comparison of two variants. Integers compare by number; an integer and a text by
// number where the text is one; a Boolean is a number beside an integer but "True" or "False"
// beside a text; empty is 0, False or "". Texts compare exactly. Bytes equal only bytes.
bool looselyEqual(const Variant& left, const Variant& right);

// Not a string, and false: Boolean false, integer 0 or empty.
bool isFalse(const Variant& value);

}  // namespace korvex::foundation
