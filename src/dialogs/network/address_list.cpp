// Cutting at commas, and putting together again.
#include "dialogs/network/address_list.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "platform/trimmed.h"

namespace korvex::dialogs {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::uint32_t kHighestOctet = 255;

}  // namespace

std::optional<Octets> octetsOf(std::string_view quad) {
  Octets octets{};
  const char* at = quad.data();
  const char* const end = at + quad.size();
  for (std::size_t i = 0; i < octets.size(); ++i) {
    if (i > 0 && (at == end || *at++ != '.')) return std::nullopt;
    const auto parsed = std::from_chars(at, end, octets[i]);
    if (parsed.ec != std::errc{} || octets[i] > kHighestOctet) return std::nullopt;
    at = parsed.ptr;
  }
  return at == end ? std::optional(octets) : std::nullopt;
}

std::string quadOf(const Octets& octets) {
  return fmt::format("{}.{}.{}.{}", octets[0], octets[1], octets[2], octets[3]);
}

bool isSubnetMask(const Octets& mask) {
  std::uint32_t bits = 0;
  for (const std::uint32_t octet : mask) bits = bits << 8 | octet;
  const std::uint32_t zeros = ~bits;
  return bits != 0 && (zeros & (zeros + 1)) == 0;
}

AddressList::AddressList(std::string text) : text_(std::move(text)) { cutUp(); }

void AddressList::cutUp() {
  pieces_.clear();
  quads_.clear();
  for (std::size_t begin = 0; begin < text_.size();) {
    const std::size_t end = std::min(text_.find(',', begin), text_.size());
    const std::string_view quad =
        platform::trimmed(std::string_view(text_).substr(begin, end - begin));
    if (!quad.empty()) {
      pieces_.push_back({begin, end});
      quads_.emplace_back(quad);
    }
    begin = end + 1;
  }
}

bool AddressList::holds(const Octets& octets) const {
  return std::ranges::any_of(
      quads_, [&octets](const std::string& quad) { return octetsOf(quad) == octets; });
}

void AddressList::add(std::string_view quad) {
  if (quads_.empty()) {
    text_ = quad;
  } else {
    const bool ended = text_[text_.find_last_not_of(kBlanks)] == ',';
    text_ += (ended ? "" : ",") + std::string(quad);
  }
  cutUp();
}

void AddressList::remove(std::size_t position) {
  if (position >= pieces_.size()) return;
  auto [begin, end] = pieces_[position];
  if (end < text_.size()) {
    ++end;
  } else if (begin > 0) {
    --begin;
  }
  text_.erase(begin, end - begin);
  if (text_.starts_with(',')) text_.erase(0, 1);
  cutUp();
}

}  // namespace korvex::dialogs
