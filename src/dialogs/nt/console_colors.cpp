// Reading and writing the colors of command prompts.
#include "dialogs/nt/console_colors.h"

#include <fmt/format.h>

#include <string_view>

#include "engine/at_once.h"
#include "engine/raw_value.h"
#include "platform/registry.h"

namespace korvex::dialogs {

using engine::RawValue;
using foundation::Session;
using platform::ERROR_SUCCESS;
using platform::HKEY_CURRENT_USER;
using platform::HKEY_LOCAL_MACHINE;
using platform::Status;

namespace {

constexpr std::string_view kProcessor = "Software\\Microsoft\\Command Processor";
constexpr std::string_view kDefaultColor = "DefaultColor";
constexpr std::string_view kConsole = "Console";
constexpr std::uint32_t kAttribute = 0xFF;

// What Windows has where the user's console says nothing else.
constexpr std::array<std::uint32_t, kConsoleColors> kPalette{
    0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0xC0C0C0,
    0x808080, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};

// 0 where it is missing.
Status readAttribute(Session& session, platform::HKEY root, std::uint32_t& attribute,
                     bool& present) {
  RawValue value;
  const Status status =
      engine::readRawValue(session.registry(), root, kProcessor, kDefaultColor, value);
  present = status == ERROR_SUCCESS;
  if (present && value.type != platform::REG_DWORD) return platform::ERROR_INVALID_DATA;
  attribute = static_cast<std::uint32_t>(value.number(0)) & kAttribute;
  return engine::missingIsFine(status);
}

std::uint32_t ofConsole(Session& session, const std::string& name, std::uint32_t otherwise) {
  RawValue value;
  engine::readRawValue(session.registry(), HKEY_CURRENT_USER, kConsole, name, value);
  return static_cast<std::uint32_t>(value.number(static_cast<std::int32_t>(otherwise)));
}

}  // namespace

Status readPromptColors(Session& session, PromptColors& stored) {
  stored = {};
  stored.usual = ConsoleColors::of(
      ofConsole(session, "ScreenColors", static_cast<std::uint32_t>(ConsoleColors{}.attribute())));
  for (std::size_t i = 0; i < kConsoleColors; ++i) {
    stored.palette[i] = ofConsole(session, fmt::format("ColorTable{:02}", i), kPalette[i]);
  }
  std::uint32_t attribute = 0;
  bool present = false;
  const Status status = readAttribute(session, HKEY_CURRENT_USER, attribute, present);
  session.trace.dump("lRetVal&", status);
  if (status != ERROR_SUCCESS) return status;
  std::uint32_t ofAll = 0;
  bool presentForAll = false;
  if (!present &&
      readAttribute(session, HKEY_LOCAL_MACHINE, ofAll, presentForAll) == ERROR_SUCCESS) {
    stored.byMachine = ofAll != 0;
    attribute = ofAll;
  }
  stored.chosen = attribute != 0;
  stored.colors = stored.chosen ? ConsoleColors::of(attribute) : stored.usual;
  return status;
}

Status writePromptColors(Session& session, std::int32_t attribute) {
  return engine::putValue(session, HKEY_CURRENT_USER, kProcessor, kDefaultColor, attribute);
}

}  // namespace korvex::dialogs
