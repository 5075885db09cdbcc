// Checking what stands in the field.
#include "engine/numeral_field.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "engine/at_once.h"
#include "engine/same_name.h"
#include "forms/form.h"
#include "foundation/error_handler.h"

namespace korvex::engine {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

bool takesNumeral(std::string_view text, std::string_view orWord) {
  return std::ranges::all_of(text, isDigit) || sameName(text, orWord.substr(0, text.size()));
}

std::optional<std::uint32_t> numberIn(std::string_view text) {
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, number);
  if (text.empty() || parsed.ec != std::errc{} || parsed.ptr != end) return std::nullopt;
  return number;
}

std::string tooLargeText(std::string_view digits) {
  return fmt::format("{} is too large: at most 4294967295.", digits);
}

NumeralField::NumeralField(foundation::Session& session, forms::TextBox& box, std::string orWord,
                           std::function<void()> edited)
    : session_(session),
      box_(box),
      orWord_(std::move(orWord)),
      edited_(std::move(edited)),
      valid_(box.Text) {
  box_.Change += [this] {
    foundation::guarded(session_, box_.form().name() + "." + box_.name() + "_Change",
                        [this] { Change(); });
  };
}

void NumeralField::Change() {
  const std::string text = box_.Text;
  // What the machine holds is shown as it is; what a person makes of it is checked.
  if (!session_.g_bNoRecord && !takesNumeral(text, orWord_)) {
    // A text of the machine that is none itself must not be put back for ever.
    box_.Text = takesNumeral(valid_, orWord_) ? valid_ : "";
    tell(session_, "This field only accepts numerals.");
    return;
  }
  const bool changed = text != valid_;
  valid_ = text;
  if (changed && edited_ && !session_.g_bNoRecord) edited_();
}

}  // namespace korvex::engine
