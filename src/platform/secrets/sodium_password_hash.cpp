// Hashing by libsodium.
#include "platform/secrets/sodium_password_hash.h"

#include <sodium.h>

#include <array>
#include <stdexcept>

namespace korvex::platform {
namespace {

// Without those that are taken for each other: 0 and O, 1, I and L.
constexpr std::string_view kAlphabet = "23456789ABCDEFGHJKMNPQRSTUVWXYZ";
constexpr int kGroups = 5;
constexpr int kGroupLength = 4;

void begin() {
  static const int begun = sodium_init();
  if (begun < 0) throw std::runtime_error("libsodium could not be initialised");
}

}  // namespace

std::string SodiumPasswordHash::of(std::string_view password) {
  begin();
  std::array<char, crypto_pwhash_STRBYTES> hash{};
  const int made =
      crypto_pwhash_str(hash.data(), password.data(), password.size(),
                        crypto_pwhash_OPSLIMIT_INTERACTIVE, crypto_pwhash_MEMLIMIT_INTERACTIVE);
  return made == 0 ? std::string(hash.data()) : "";
}

bool SodiumPasswordHash::matches(std::string_view hash, std::string_view password) {
  begin();
  // The library reads to the zero within these bytes.
  std::array<char, crypto_pwhash_STRBYTES> stored{};
  if (hash.size() >= stored.size()) return false;
  hash.copy(stored.data(), hash.size());
  // A hash that somebody else put there must not make the check cost minutes or gigabytes.
  if (crypto_pwhash_str_needs_rehash(stored.data(), crypto_pwhash_OPSLIMIT_INTERACTIVE,
                                     crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0) {
    return false;
  }
  return crypto_pwhash_str_verify(stored.data(), password.data(), password.size()) == 0;
}

std::string SodiumPasswordHash::randomCode() {
  begin();
  std::string code;
  for (int i = 0; i < kGroups * kGroupLength; ++i) {
    if (i > 0 && i % kGroupLength == 0) code += '-';
    code += kAlphabet[randombytes_uniform(static_cast<std::uint32_t>(kAlphabet.size()))];
  }
  return code;
}

}  // namespace korvex::platform
