// A password hash for tests that do not wait: it tells the password, and another one each time.
#pragma once

#include <string>
#include <string_view>

#include "platform/password_hash.h"

namespace korvex::test {

class PlainHash : public platform::PasswordHash {
 public:
  std::string of(std::string_view password) override {
    return std::to_string(++made_) + "|" + std::string(password);
  }
  bool matches(std::string_view hash, std::string_view password) override {
    const std::size_t bar = hash.find('|');
    return bar != std::string_view::npos && hash.substr(bar + 1) == password;
  }
  std::string randomCode() override { return "CODE-" + std::to_string(++made_); }

 private:
  int made_ = 0;
};

}  // namespace korvex::test
