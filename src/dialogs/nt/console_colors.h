// The sixteen colors of a console, and those that command prompts of the current user begin with.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::dialogs {

constexpr std::size_t kConsoleColors = 16;

// As the command "color /?" lists them.
constexpr std::array<const char*, kConsoleColors> kColorNames{
    "Black",     "Blue",         "Green",        "Aqua",        "Red",         "Purple",
    "Yellow",    "White",        "Gray",         "Light Blue",  "Light Green", "Light Aqua",
    "Light Red", "Light Purple", "Light Yellow", "Bright White"};

// A console's color attribute: the background in the upper four bits.
struct ConsoleColors {
  std::size_t text = 7;  // as consoles are at first
  std::size_t background = 0;

  static ConsoleColors of(std::uint32_t attribute) { return {attribute & 15, attribute >> 4 & 15}; }
  std::int32_t attribute() const { return static_cast<std::int32_t>(background << 4 | text); }
  bool operator==(const ConsoleColors&) const = default;
};

struct PromptColors {
  bool chosen = false;     // the prompt has colors of its own
  ConsoleColors colors;    // those, or what a console has without
  ConsoleColors usual;     // what a console has without
  bool byMachine = false;  // where the user has no value, that of all users counts
  std::array<std::uint32_t, kConsoleColors>
      palette{};  // 0x00BBGGRR, as the user's console has them
};

// A missing value and 0 are no choice. 13 for a value that is no DWORD.
platform::Status readPromptColors(foundation::Session& session, PromptColors& stored);

// A step of a change; an attribute of 0 leaves the colors to the console.
platform::Status writePromptColors(foundation::Session& session, std::int32_t attribute);

}  // namespace korvex::dialogs
