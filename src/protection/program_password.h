// ProgramPassword: the password without which Korvex does not open on a machine.
//
// It lies in the machine's registry, in the program's own key, as a hash of the text in one case:
// upper and lower case do not count. A second hash is of the reset code: typed in the password's
// place it takes the password away. Neither keeps anybody out who can edit the registry by other
// means; both keep those out who only have Korvex.
#pragma once

#include <string>
#include <string_view>

#include "foundation/greg_tool.h"
#include "platform/password_hash.h"

namespace korvex::protection {

// Below HKEY_CLASSES_ROOT; the two text values.
constexpr std::string_view kProtectionKey = "Korvex.Protection";
constexpr std::string_view kPasswordValue = "Encrypted";
constexpr std::string_view kResetValue = "Passw";

class ProgramPassword {
 public:
  enum class Match { None, Password, ResetCode };

  // Both outlive it.
  ProgramPassword(foundation::GRegTool& regTool, platform::PasswordHash& hash)
      : regTool_(regTool), hash_(hash) {}

  // Whatever stands there counts as a password: one that cannot be read opens nothing.
  bool isSet();
  Match check(std::string_view typed);
  // Sets or changes it, as one change. resetCode receives the new code, for the person to keep.
  // 87 for an empty password, 1450 where memory was short, else the registry's status.
  platform::Status set(std::string_view password, std::string& resetCode);
  // Takes password and reset code away, as one change. None there is no error.
  platform::Status clear();

 private:
  bool matches(std::string_view value, std::string_view folded);

  foundation::GRegTool& regTool_;
  platform::PasswordHash& hash_;
};

}  // namespace korvex::protection
