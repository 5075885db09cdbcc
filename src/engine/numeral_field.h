// NumeralField: a text box that takes digits only. Any other text is told and taken back as soon as
// it stands there, however it got there.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "forms/controls.h"
#include "foundation/session.h"

namespace korvex::engine {

// Whether the text can become what a field takes: digits, or a word that stands for no number
// ("Default"), without regard to case, as far as it is typed.
bool takesNumeral(std::string_view text, std::string_view orWord = {});

// The text as a number; nothing for an empty one, one with anything but digits, or one too large.
std::optional<std::uint32_t> numberIn(std::string_view text);

// What is told of digits that are too large for a DWORD.
std::string tooLargeText(std::string_view digits);

class NumeralField {
 public:
  // The session and the box outlive it. edited is called after each edit that the field takes; not
  // while the form reads the machine.
  NumeralField(foundation::Session& session, forms::TextBox& box, std::string orWord = {},
               std::function<void()> edited = {});
  NumeralField(const NumeralField&) = delete;
  NumeralField& operator=(const NumeralField&) = delete;

  // Nothing for an empty field, the word, or a number beyond 32 bits.
  std::optional<std::uint32_t> number() const { return numberIn(box_.Text.get()); }

 private:
  void Change();

  foundation::Session& session_;
  forms::TextBox& box_;
  std::string orWord_;
  std::function<void()> edited_;
  std::string valid_;  // the last text that it took
};

}  // namespace korvex::engine
