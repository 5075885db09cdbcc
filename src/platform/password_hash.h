// Passwords of Korvex itself: turning one into a text that does not tell it.
#pragma once

#include <string>
#include <string_view>

namespace korvex::platform {

class PasswordHash {
 public:
  virtual ~PasswordHash() = default;
  // A salted hash as printable ASCII, another one each time. Deliberately slow: about a tenth of a
  // second. "" where the system has not the memory for it.
  virtual std::string of(std::string_view password) = 0;
  // Whether that hash was made of that password; false for a text that is no hash.
  virtual bool matches(std::string_view hash, std::string_view password) = 0;
  // Letters and digits that nobody can guess, for people to write down: "7KQ2-M9XT-...".
  virtual std::string randomCode() = 0;
};

}  // namespace korvex::platform
