// Packs and unpacks the values of a key.
#include "platform/stored/value_blob.h"

#include "platform/stored/names.h"
#include "platform/text/text.h"

namespace korvex::platform {
namespace {

// Below this a search from value to value is quicker than keeping folded names.
constexpr std::size_t kIndexFrom = 24;
constexpr std::size_t kKeptBytes = 16 << 10;
constexpr std::size_t kKeptEntries = 256;
constexpr std::size_t kWasteLimit = 1 << 20;

void putNumber(std::string& bytes, std::uint32_t number) {
  while (number >= 0x80) {
    bytes.push_back(static_cast<char>(number | 0x80));
    number >>= 7;
  }
  bytes.push_back(static_cast<char>(number));
}

bool takeNumber(std::string_view bytes, std::size_t& at, std::uint32_t& number) {
  std::uint64_t result = 0;
  for (int shift = 0; shift < 35 && at < bytes.size(); shift += 7) {
    const auto byte = static_cast<unsigned char>(bytes[at++]);
    result |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
    if (byte < 0x80) {
      number = static_cast<std::uint32_t>(result);
      return result <= 0xFFFFFFFF;
    }
  }
  return false;
}

bool takeBytes(std::string_view bytes, std::size_t& at, std::uint32_t& start,
               std::uint32_t& count) {
  if (!takeNumber(bytes, at, count) || count > bytes.size() - at) return false;
  start = static_cast<std::uint32_t>(at);
  at += count;
  return true;
}

}  // namespace

void ValueBlob::clear() {
  bytes_.clear();
  entries_.clear();
  byFold_.clear();
  first_ = deadInside_ = 0;
  waste_ = 0;
  // A large key's room is not kept for the small ones that follow it.
  if (bytes_.capacity() > kKeptBytes) std::string().swap(bytes_);
  if (entries_.capacity() > kKeptEntries) std::vector<Entry>().swap(entries_);
}

bool ValueBlob::load(std::string_view packed) {
  clear();
  if (packed.size() > 0xFFFFFFFF) return false;
  bytes_.assign(packed);
  for (std::size_t at = 0; at < bytes_.size();) {
    Entry entry;
    if (!takeBytes(bytes_, at, entry.name, entry.nameBytes) ||
        !takeNumber(bytes_, at, entry.type) ||
        !takeBytes(bytes_, at, entry.data, entry.dataBytes)) {
      clear();
      return false;
    }
    entries_.push_back(entry);
  }
  return true;
}

void ValueBlob::append(Entry& entry, std::string_view name, RegType type, std::string_view data) {
  putNumber(bytes_, static_cast<std::uint32_t>(name.size()));
  entry.name = static_cast<std::uint32_t>(bytes_.size());
  entry.nameBytes = static_cast<std::uint32_t>(name.size());
  bytes_.append(name);
  entry.type = type;
  putNumber(bytes_, type);
  putNumber(bytes_, static_cast<std::uint32_t>(data.size()));
  entry.data = static_cast<std::uint32_t>(bytes_.size());
  entry.dataBytes = static_cast<std::uint32_t>(data.size());
  bytes_.append(data);
}

const std::string& ValueBlob::packed() {
  if (waste_ > 0) repack();
  return bytes_;
}

void ValueBlob::repack() {
  dropDeadEntries();
  const std::string old = std::move(bytes_);
  bytes_.clear();
  bytes_.reserve(old.size());
  for (Entry& entry : entries_) {
    const std::string_view name(old.data() + entry.name, entry.nameBytes);
    const std::string_view data(old.data() + entry.data, entry.dataBytes);
    append(entry, name, entry.type, data);
  }
  waste_ = 0;
}

void ValueBlob::dropDeadEntries() {
  if (first_ == 0 && deadInside_ == 0) return;
  std::erase_if(entries_, [](const Entry& entry) { return entry.dead; });
  byFold_.clear();
  first_ = deadInside_ = 0;
}

std::size_t ValueBlob::find(std::string_view name) {
  if (count() >= kIndexFrom) return findByFold(name);
  for (std::size_t i = first_; i < entries_.size(); ++i) {
    if (!entries_[i].dead && namesMatch(nameOf(entries_[i]), name)) return i;
  }
  return kNone;
}

std::size_t ValueBlob::findByFold(std::string_view name) {
  if (byFold_.empty()) {
    for (std::size_t i = first_; i < entries_.size(); ++i) {
      if (!entries_[i].dead) byFold_.emplace(foldName(nameOf(entries_[i])), i);
    }
  }
  const auto found = byFold_.find(foldName(name));
  return found == byFold_.end() ? kNone : found->second;
}

std::size_t ValueBlob::position(std::size_t index) {
  // Dead values at the front, which a loop that deletes number 0 leaves, are just skipped.
  if (deadInside_ > 0) dropDeadEntries();
  return first_ + index;
}

ValueBlob::Value ValueBlob::at(std::size_t position) const {
  const Entry& entry = entries_[position];
  return {nameOf(entry), entry.type, {bytes_.data() + entry.data, entry.dataBytes}};
}

void ValueBlob::set(std::string_view name, RegType type, std::string_view data) {
  const std::size_t found = find(name);
  if (found == kNone) {
    Entry& entry = entries_.emplace_back();
    append(entry, name, type, data);
    if (!byFold_.empty()) byFold_.emplace(foldName(name), entries_.size() - 1);
    return;
  }
  // The name stays as it was first written. It is copied, since appending may move it.
  Entry& entry = entries_[found];
  discard(entry);
  append(entry, std::string(nameOf(entry)), type, data);
  if (waste_ > kWasteLimit && waste_ > bytes_.size() / 2) repack();
}

void ValueBlob::erase(std::size_t position) {
  if (!byFold_.empty()) byFold_.erase(foldName(nameOf(entries_[position])));
  entries_[position].dead = true;
  discard(entries_[position]);
  if (position + 1 == entries_.size()) {
    entries_.pop_back();
  } else if (position != first_) {
    ++deadInside_;
    return;
  } else {
    ++first_;
  }
  while (first_ < entries_.size() && entries_[first_].dead) {
    ++first_;
    --deadInside_;
  }
  if (count() == 0) clear();
}

}  // namespace korvex::platform
