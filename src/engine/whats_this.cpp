// The what's-this text of a tweak, derived from its row.
#include "engine/whats_this.h"

#include <fmt/format.h>

#include "engine/modes.h"

namespace korvex::engine {
namespace {

using foundation::Variant;

std::string_view rootName(Root root) {
  if (root == HKCR) return "HKEY_CLASSES_ROOT";
  return root == HKCU ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE";
}

// Without the two bytes that the writer takes off.
std::string hexText(const foundation::ByteArray& bytes) {
  std::string text = "binary";
  for (std::size_t i = 0; i + 2 < bytes.size(); ++i) text += fmt::format(" {:02x}", bytes[i]);
  return text;
}

std::string dataText(const Variant& value) {
  if (const std::string* text = value.string()) return fmt::format("\"{}\"", *text);
  if (const auto number = value.number()) return fmt::format("DWORD {}", *number);
  if (const foundation::ByteArray* bytes = value.bytes()) return hexText(*bytes);
  return "no value";
}

std::string outcomeText(const Tweak& tweak, const Decision& decision, bool putsBack) {
  switch (decision.act) {
    case Decision::Act::Write:
      return (tweak.keepsPrevious && putsBack ? "what stood there before, or " : "") +
             dataText(decision.value);
    case Decision::Act::Remember:
      return "nothing is written";
    case Decision::Act::DeleteKey:
      return "the key is deleted";
    case Decision::Act::SwapHelpFile:
      return "the help file is swapped";
    case Decision::Act::RestoreHelpFile:
      return "the help file is restored";
  }
  return "";
}

// What the tweak works on.
std::string subject(const Tweak& tweak) {
  if (tweak.special == nullptr && decide(tweak, 1, Variant()).act == Decision::Act::SwapHelpFile) {
    return "Swaps Windows.hlp, and Windows2.hlp where it is there, in the Help folder of Windows.";
  }
  const std::string value =
      tweak.value.empty() ? "the default value" : fmt::format("the value {}", tweak.value);
  return fmt::format("Sets {} of the key {}\\{}.", value, rootName(tweak.root), tweak.key);
}

}  // namespace

WrittenTexts writtenTexts(const Tweak& tweak) {
  WrittenTexts texts;
  // What a special writes its mode cannot tell.
  if (tweak.special == nullptr && tweak.shape == ControlShape::CheckBox) {
    texts.checked = outcomeText(tweak, decide(tweak, 1, Variant()), false);
    texts.unchecked = outcomeText(tweak, decide(tweak, 0, Variant()), true);
  }
  if (tweak.special == nullptr || isField(tweak)) {
    texts.byDefault = outcomeText(tweak, decideDefault(tweak), true);
  }
  return texts;
}

bool tellsOfTheValue(const Tweak& tweak) {
  return tweak.writes.empty() || tweak.writes.starts_with("Checked:") ||
         tweak.writes.starts_with("The number of the field") ||
         tweak.writes.starts_with("The text of the field") || tweak.writes.starts_with("A DWORD:");
}

std::string whatsThis(const Tweak& tweak) {
  const WrittenTexts texts = writtenTexts(tweak);
  std::string text = subject(tweak);
  if (!texts.checked.empty()) {
    text += fmt::format(" Checked: {}. Unchecked: {}.", texts.checked, texts.unchecked);
  } else if (!tweak.writes.empty()) {
    text = tellsOfTheValue(tweak) ? fmt::format("{} {}", text, tweak.writes)
                                  : std::string(tweak.writes);
  }
  if (!texts.byDefault.empty()) text += fmt::format(" Windows default: {}.", texts.byDefault);
  text += tweak.reboot ? " Takes effect after a restart." : "";
  return text;
}

}  // namespace korvex::engine
