// The trace within its limit.
#include "foundation/trace.h"

#include <fmt/format.h>

#include <algorithm>

namespace korvex::foundation {

void TraceText::add(std::string_view piece) {
  if (piece.empty()) return;
  std::size_t room = std::min(kLongestPiece, limit_ / 2);
  const bool cut = piece.size() > room;
  // Not in the middle of a character.
  while (cut && room > 0 && (static_cast<unsigned char>(piece[room]) & 0xC0U) == 0x80U) --room;
  const std::size_t start = pieces_.size();
  pieces_ += piece.substr(0, room);
  std::replace(pieces_.begin() + static_cast<std::ptrdiff_t>(start), pieces_.end(), '\0', ' ');
  if (cut) pieces_ += "...";
  pieces_ += '\0';
  if (pieces_.size() > limit_) dropOldest();
}

void TraceText::dump(std::string_view name, std::string_view value) {
  add(fmt::format("{}={}", name, value));
}

std::string TraceText::text() const {
  if (dropped_ == 0) return pieces_;
  std::string text = fmt::format("[TraceText]: {} older pieces were dropped", dropped_);
  text += '\0';
  return text + pieces_;
}

bool TraceText::contains(std::string_view piece) const {
  return pieces_.find(piece) != std::string::npos;
}

// Down to half of the limit at once, so that a long run does not move the text at every piece.
void TraceText::dropOldest() {
  const std::size_t cut = pieces_.find('\0', pieces_.size() - limit_ / 2 - 1) + 1;
  const auto end = pieces_.begin() + static_cast<std::ptrdiff_t>(cut);
  dropped_ += static_cast<std::size_t>(std::count(pieces_.begin(), end, '\0'));
  pieces_.erase(pieces_.begin(), end);
}

}  // namespace korvex::foundation
