// Lists of dotted quads as the values of a network binding hold them: "10.0.0.1,10.0.0.2".
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvex::dialogs {

using Octets = std::array<std::uint32_t, 4>;  // each 0 to 255

// Nothing where the text is no dotted quad. Zeros in front count nothing: "010.0.0.1" is 10.0.0.1.
std::optional<Octets> octetsOf(std::string_view quad);
std::string quadOf(const Octets& octets);
// Ones, at least one of them, and then only zeros.
bool isSubnetMask(const Octets& mask);

// One such value. What is not asked to be changed keeps its every byte, blanks and empty pieces
// too.
class AddressList {
 public:
  AddressList() = default;
  explicit AddressList(std::string text);

  const std::string& text() const { return text_; }
  // What stands between the commas, without blanks around it; empty pieces are none.
  const std::vector<std::string>& quads() const { return quads_; }
  bool holds(const Octets& octets) const;

  void add(std::string_view quad);
  // Cuts out that one with the comma after it, or the one before it where it is the last. Nothing
  // happens where there is none.
  void remove(std::size_t position);

 private:
  struct Piece {
    std::size_t begin;
    std::size_t end;  // where its comma stands, or the text ends
  };
  void cutUp();

  std::string text_;
  std::vector<Piece> pieces_;  // of quads_, in the same order
  std::vector<std::string> quads_;
};

}  // namespace korvex::dialogs
