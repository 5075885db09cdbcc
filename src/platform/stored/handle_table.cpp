// Handles: two zero bits, twenty bits for the place from 1 on, nine for its generation.
#include "platform/stored/handle_table.h"

namespace korvex::platform {
namespace {

constexpr unsigned kZeroBits = 2;
constexpr unsigned kPlaceBits = 20;
constexpr unsigned kGenerationShift = kZeroBits + kPlaceBits;
constexpr std::uint32_t kPlaceMask = (1U << kPlaceBits) - 1;
constexpr std::uint32_t kGenerationMask = (1U << 9) - 1;  // the top bit is the predefined roots'

HKEY handleOf(std::uint32_t place, std::uint32_t generation) {
  return ((place + 1) << kZeroBits) | (generation << kGenerationShift);
}

}  // namespace

HKEY HandleTable::add(const OpenKeyEntry& entry) {
  if (unused_.empty()) {
    if (places_.size() >= kPlaceMask) return 0;
    unused_.push_back(static_cast<std::uint32_t>(places_.size()));
    places_.emplace_back();
  }
  const std::uint32_t index = unused_.back();
  unused_.pop_back();
  Place& place = places_[index];
  place.entry = entry;
  place.open = true;
  return handleOf(index, place.generation);
}

const HandleTable::Place* HandleTable::placeOf(HKEY handle) const {
  const std::uint32_t index = ((handle >> kZeroBits) & kPlaceMask) - 1;
  if (index >= places_.size()) return nullptr;
  const Place& place = places_[index];
  return place.open && handle == handleOf(index, place.generation) ? &place : nullptr;
}

const OpenKeyEntry* HandleTable::find(HKEY handle) const {
  const Place* const place = placeOf(handle);
  return place == nullptr ? nullptr : &place->entry;
}

bool HandleTable::remove(HKEY handle) {
  const Place* const found = placeOf(handle);
  if (found == nullptr) return false;
  const auto index = static_cast<std::uint32_t>(found - places_.data());
  places_[index].open = false;
  places_[index].generation = (places_[index].generation + 1) & kGenerationMask;
  unused_.push_back(index);
  return true;
}

void HandleTable::loseKeysFrom(std::int64_t key) {
  for (Place& place : places_) {
    if (!place.open) continue;
    if (place.entry.key >= key) place.entry.key = kGone;
    if (place.entry.under >= key) place.entry.under = 0;
  }
}

}  // namespace korvex::platform
