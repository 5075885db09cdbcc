// Making 8.3 names out of long ones.
#include "platform/common/short_names.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <set>
#include <tuple>
#include <utility>

#include "platform/text/text.h"

namespace korvex::platform {
namespace {

constexpr std::size_t kBaseLength = 8;
constexpr std::size_t kExtensionLength = 3;
constexpr std::size_t kBasisLength = 6;        // what a "~1" leaves of the base
constexpr std::size_t kHashedBasisLength = 2;  // what a hash and "~1" leave of it

bool isShortCharacter(char c) {
  constexpr std::string_view kOthers = "!#$%&'()-@^_`{}~";
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         kOthers.find(c) != std::string_view::npos;
}

// Upper-cased, without blanks and dots; every character that has no place in an 8.3 name is one
// '_', so that the name is the same in every code page.
std::string shortened(std::string_view text, std::size_t length) {
  std::string result;
  for (const char c : foldName(text)) {
    if (result.size() == length) break;
    const bool continues = (static_cast<unsigned char>(c) & 0xC0) == 0x80;
    if (c == ' ' || c == '.' || continues) continue;
    result += isShortCharacter(c) ? c : '_';
  }
  return result;
}

struct Stem {
  std::string basis;      // up to six characters
  std::string extension;  // with its dot, or ""
};

Stem stemOf(std::string_view name) {
  name.remove_prefix(std::min(name.find_first_not_of(". "), name.size()));
  const std::size_t dot = name.rfind('.');
  Stem stem{shortened(name.substr(0, dot), kBasisLength), ""};
  if (stem.basis.empty()) stem.basis = "_";
  if (dot != std::string_view::npos) {
    const std::string extension = shortened(name.substr(dot + 1), kExtensionLength);
    if (!extension.empty()) stem.extension = "." + extension;
  }
  return stem;
}

std::string hashed(const Stem& stem, std::string_view name, int number) {
  std::uint32_t hash = 2166136261U;  // FNV-1a, folded to 16 bits
  for (const char c : foldName(name)) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
  }
  std::array<char, 8> digits{};
  std::snprintf(digits.data(), digits.size(), "%04X", (hash >> 16U ^ hash) & 0xFFFFU);
  const std::string tail = "~" + std::to_string(number);
  const std::string base = stem.basis.substr(0, kHashedBasisLength) + digits.data();
  return base.substr(0, kBaseLength - tail.size()) + tail + stem.extension;
}

}  // namespace

bool isShortName(std::string_view name) {
  const std::size_t dot = name.find('.');
  const std::string_view base = name.substr(0, dot);
  const std::string_view extension =
      dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
  return !base.empty() && base.size() <= kBaseLength && extension.size() <= kExtensionLength &&
         (dot == std::string_view::npos || !extension.empty()) &&
         std::all_of(base.begin(), base.end(), isShortCharacter) &&
         std::all_of(extension.begin(), extension.end(), isShortCharacter);
}

std::vector<std::string> shortNames(const std::vector<std::string>& names) {
  std::vector<std::pair<std::string, std::size_t>> order;  // folded name, index
  std::vector<std::string> result(names.size());
  std::set<std::string, std::less<>> taken;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (isShortName(names[i])) {
      result[i] = names[i];
      taken.insert(foldName(names[i]));
    } else {
      order.emplace_back(foldName(names[i]), i);
    }
  }
  std::sort(order.begin(), order.end(), [&](const auto& left, const auto& right) {
    // Two names that differ in case only are told apart by their bytes.
    return std::tie(left.first, names[left.second]) < std::tie(right.first, names[right.second]);
  });

  std::vector<std::size_t> later;
  for (const auto& [folded, i] : order) {
    const Stem stem = stemOf(names[i]);
    const std::string first = stem.basis + "~1" + stem.extension;
    if (taken.insert(first).second) {
      result[i] = first;
    } else {
      later.push_back(i);
    }
  }
  for (const std::size_t i : later) {
    const Stem stem = stemOf(names[i]);
    int number = 1;
    while (!taken.insert(hashed(stem, names[i], number)).second) ++number;
    result[i] = hashed(stem, names[i], number);
  }
  return result;
}

}  // namespace korvex::platform
