// The program's own options and the window's position.
#include "main_window/options.h"

#include <array>
#include <charconv>

#include "foundation/reg_value.h"

namespace korvex::main_window {
namespace {

using foundation::Session;
using foundation::Variant;

struct OptionRow {
  std::string_view value;
  bool Session::*flag;
};

constexpr std::array kOptions{
    OptionRow{"NoShowConfirmation", &Session::g_bNoShowConfirmation},
    OptionRow{"NoShowReboot", &Session::g_bNoShowReboot},
    OptionRow{"NoSaveWindPos", &Session::g_bNoSaveWindPos},
    OptionRow{"NoSaveTab", &Session::g_bNoSaveTab},
    OptionRow{"ClearIEURLListReboot", &Session::g_bClearIEURLListReboot},
    OptionRow{"ClearDOCSReboot", &Session::g_bClearDOCSReboot},
    OptionRow{"ClearRUNReboot", &Session::g_bClearRUNReboot},
    OptionRow{"ClearMRUsReboot", &Session::g_bClearMRUsReboot},
    // Not on any page: for finding out what went wrong on a machine.
    OptionRow{"TraceLog", &Session::g_bTraceLog},
};

constexpr std::array<std::string_view, 3> kPosition{"AppMin", "WinTop", "WinLeft"};
constexpr std::int32_t kMinimized = 1;

void write(Session& session, std::string_view name, std::int32_t value) {
  foundation::P_WriteRegValue(session, platform::HKEY_LOCAL_MACHINE, kConfiguration, name, value,
                              platform::KEY_ALL_ACCESS, true);
}

}  // namespace

std::int32_t readSetting(Session& session, std::string_view name, std::int32_t fallback) {
  bool missing = false;
  const Variant value = foundation::P_ReadRegValue(session, platform::HKEY_LOCAL_MACHINE,
                                                   kConfiguration, name, missing, true);
  if (const auto number = value.number()) return *number;
  // "LastTab" is a text.
  const std::string text = foundation::variantText(value);
  std::int32_t number = 0;
  const char* end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, number);
  return parsed.ec == std::errc{} && parsed.ptr == end ? number : fallback;
}

void readOptions(Session& session) {
  for (const OptionRow& row : kOptions) session.*row.flag = readSetting(session, row.value, 0) != 0;
}

void P_SetWindowPos(Session& session, forms::Form& form, bool bLoad) {
  session.trace.enter("[P_SetWindowPos]");
  if (!bLoad) {
    if (!form.place) return;
    write(session, "AppMin", form.place->state);
    write(session, "WinTop", form.place->top);
    write(session, "WinLeft", form.place->left);
    return;
  }
  forms::WindowPlace place{readSetting(session, "AppMin", 0), 0, 0};
  if (place.state != kMinimized) {
    // Below 1 the window is centred; the front end knows the screen and does it.
    place.top = readSetting(session, "WinTop", 0);
    place.left = readSetting(session, "WinLeft", 0);
  }
  if (place == forms::WindowPlace{}) return;
  form.place = place;
}

void forgetWindowPos(Session& session) {
  for (const std::string_view name : kPosition) {
    session.regTool.DeleteRegValue(platform::HKEY_LOCAL_MACHINE, kConfiguration, name);
  }
}

}  // namespace korvex::main_window
