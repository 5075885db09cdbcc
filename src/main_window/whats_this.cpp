// The what's-this text of a tweak, derived from its row.
#include "main_window/whats_this.h"

#include <fmt/format.h>

#include "engine/modes.h"

namespace korvex::main_window {
namespace {

using engine::Decision;
using engine::Tweak;
using foundation::Variant;

std::string_view rootName(engine::Root root) {
  if (root == engine::HKCR) return "HKEY_CLASSES_ROOT";
  return root == engine::HKCU ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE";
}

std::string dataText(const Variant& value) {
  if (const std::string* text = value.string()) return fmt::format("\"{}\"", *text);
  if (const auto number = value.number()) return fmt::format("DWORD {}", *number);
  return "no value";
}

std::string outcomeText(const Decision& decision) {
  switch (decision.act) {
    case Decision::Act::Write:
      return dataText(decision.value);
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

}  // namespace

std::string whatsThis(const Tweak& tweak) {
  const std::string value =
      tweak.value.empty() ? "the default value" : fmt::format("the value {}", tweak.value);
  std::string text =
      fmt::format("Sets {} of the key {}\\{}.", value, rootName(tweak.root), tweak.key);
  // A special row does more than its mode says, and a field holds its own data.
  if (tweak.special == nullptr && tweak.shape == engine::ControlShape::CheckBox) {
    text += fmt::format(" Checked: {}. Unchecked: {}.",
                        outcomeText(engine::decide(tweak, 1, Variant())),
                        outcomeText(engine::decide(tweak, 0, Variant())));
  }
  text += fmt::format(" Windows default: {}.", outcomeText(engine::decideDefault(tweak)));
  text += tweak.reboot ? " Takes effect after a restart." : "";
  return text;
}

}  // namespace korvex::main_window
