// SodiumPasswordHash: password hashes by libsodium (Argon2id).
#pragma once

#include "platform/password_hash.h"

namespace korvex::platform {

class SodiumPasswordHash : public PasswordHash {
 public:
  std::string of(std::string_view password) override;
  bool matches(std::string_view hash, std::string_view password) override;
  std::string randomCode() override;
};

}  // namespace korvex::platform
