// TraceText: the trace of one run, in memory.
//
// Pieces are joined with Chr(0), each one followed by it. The text never grows beyond its limit:
// the oldest pieces go, and the first piece then tells how many went. A piece holds no Chr(0)
// itself (it would end the line, or the whole log): it stands there as a blank.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace korvex::foundation {

class TraceText {
 public:
  static constexpr std::size_t kLimit = 1 << 20;
  static constexpr std::size_t kLongestPiece = 16 << 10;

  explicit TraceText(std::size_t limit = kLimit) : limit_(limit) {}

  // One piece as it stands; an empty one is left out. Overlong ones are cut.
  void add(std::string_view piece);
  // A routine's first piece: "[p_SetForApply]".
  void enter(std::string_view bracketedName) { add(bracketedName); }
  // A variable: "lRetVal&=5", "g_bNT=True". The name carries the type suffix.
  void dump(std::string_view name, std::string_view value);
  void dump(std::string_view name, const char* value) { dump(name, std::string_view(value)); }
  void dump(std::string_view name, std::int64_t value) { dump(name, std::to_string(value)); }
  void dump(std::string_view name, std::uint32_t value) { dump(name, std::int64_t{value}); }
  void dump(std::string_view name, std::int32_t value) { dump(name, std::int64_t{value}); }
  void dump(std::string_view name, std::int16_t value) { dump(name, std::int64_t{value}); }
  void dump(std::string_view name, bool value) {
    dump(name, std::string_view(value ? "True" : "False"));
  }

  std::string text() const;
  bool contains(std::string_view piece) const;
  std::size_t dropped() const { return dropped_; }

 private:
  void dropOldest();

  std::size_t limit_;
  std::string pieces_;
  std::size_t dropped_ = 0;
};

}  // namespace korvex::foundation
