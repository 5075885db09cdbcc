// What the shell draws: icons of files, the browser's bitmaps, screen tips.
#include "engine/shell_icons.h"

#include <fmt/format.h>

#include <array>
#include <span>
#include <string>

#include "engine/catalogue/rows.h"
#include "engine/kept_values.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"
#include "engine/same_data.h"
#include "engine/same_name.h"

namespace korvex::engine {

using foundation::Os;
using foundation::Session;
using foundation::Variant;
using platform::ERROR_SUCCESS;
using platform::Status;

namespace {

// "The file itself": Explorer shows each file's own icon.
constexpr std::string_view kOwnIcon = "%1";
constexpr std::array<std::string_view, 2> kLibraryIcons{"dllfile\\DefaultIcon",
                                                        "cplfile\\DefaultIcon"};
constexpr std::string_view kBackUp = "BackUpDefaultIcon";

std::string stockIcon(const Session& session) {
  return session.g_bNT ? "%SystemRoot%\\System32\\shell32.dll,-154"
                       : session.g_sWinSysDir + "shell32.dll,-154";
}

TweakState fromBool(bool on) { return {on ? TweakState::Kind::On : TweakState::Kind::Off, {}}; }

bool isOwnIcon(Session& session, std::string_view key) {
  RawValue value;
  return readRawValue(session.registry(), HKCR, key, "", value) == ERROR_SUCCESS &&
         value.text() == kOwnIcon;
}

constexpr std::string_view kBitmap = ".bmp";

std::string iconKeyOf(const RawValue& fileClass) {
  const std::string name = fileClass.text();
  return name.empty() ? "" : name + "\\DefaultIcon";
}

std::string bitmapIconKey(Session& session) {
  RawValue fileClass;
  readRawValue(session.registry(), HKCR, kBitmap, "", fileClass);
  return iconKeyOf(fileClass);
}

// The pictures of the browser's toolbar that a box takes away.
struct ToolbarBitmap {
  std::string_view property;
  std::string_view value;
};
constexpr std::array kBitmaps{ToolbarBitmap{"P_rwBrandBitmap", "BrandBitmap"},
                              ToolbarBitmap{"P_rwBrandBitmap", "SmBrandBitmap"},
                              ToolbarBitmap{"P_rwBackBitmapIE5", "BackBitmapIE5"}};

bool isThere(Session& session, const Tweak& tweak, std::string_view name) {
  RawValue value;
  return readRawValue(session.registry(), tweak.root, tweak.key, name, value) == ERROR_SUCCESS;
}

// Explorer draws the arrow on files of a class that has this value, whatever it holds.
constexpr std::string_view kIsShortcut = "IsShortcut";
constexpr std::array<std::string_view, 2> kShortcutClasses{"lnkfile", "piffile"};

bool hasClass(Session& session, std::string_view name) {
  return platform::OpenKey(session.registry(), HKCR, name, platform::KEY_QUERY_VALUE).status() ==
         ERROR_SUCCESS;
}

// What Windows has before anybody sets it, for a machine that has no value yet.
constexpr unsigned char kTipsBit = 0x80;
std::string defaultMask(const Session& session) {
  switch (session.g_eOS) {
    case Os::Windows98:
      return {'\xBE', '\0', '\0', '\0'};
    case Os::WindowsMe:
      return {'\xBE', '\x08', '\0', '\0'};
    case Os::WindowsNT4:
      return {'\xA0', '\0', '\0', '\0'};
    default:
      return {'\x9E', '\x3E', '\x05', '\x80'};
  }
}

Variant bytesOf(std::string_view mask) {
  foundation::ByteArray bytes(mask.begin(), mask.end());
  bytes.resize(bytes.size() + 2);  // the writer takes two off
  return bytes;
}

}  // namespace

bool RegWorker::P_rwInherentDLL(const Tweak& tweak) {
  session_.trace.enter("[P_rwInherentDLL]");
  const bool on = wantsOn(tweak);
  const Variant stock = stockIcon(session_);
  for (const std::string_view key : kLibraryIcons) {
    const bool done =
        on ? keepPrevious(tweak, HKCR, key, "", kOwnIcon) && write(HKCR, key, "", kOwnIcon)
           : putBackPrevious(tweak, HKCR, key, "", stock) &&
                 (!session_.g_bDefaulting || write(HKCR, key, "", stock));
    if (!done) return false;
  }
  return finishSpecial(tweak);
}

TweakState p_DetermineInherentDLLs(const Tweak&, Session& session) {
  return fromBool(isOwnIcon(session, kLibraryIcons[0]) && isOwnIcon(session, kLibraryIcons[1]));
}

// The way back stands beside the icon, where the user of another tool finds it too.
bool RegWorker::P_rwBMP(const Tweak& tweak) {
  session_.trace.enter("[P_rwBMP]");
  RawValue fileClass;
  RawValue present;
  if (!read(HKCR, kBitmap, "", fileClass)) return false;
  const std::string key = iconKeyOf(fileClass);
  if (key.empty()) return finishSpecial(tweak);
  if (!read(HKCR, key, "", present)) return false;
  const bool on = wantsOn(tweak);
  if (on == (present.text() == kOwnIcon)) return finishSpecial(tweak);
  if (!on) {
    RawValue backUp;
    if (!read(HKCR, key, kBackUp, backUp)) return false;
    if (backUp.type == platform::REG_NONE) return remove(HKCR, key, "") && finishSpecial(tweak);
  } else if (!write(HKCR, key, kBackUp, "")) {
    return false;  // also makes the key
  }
  {
    const platform::OpenKey icon(session_.registry(), HKCR, key, platform::KEY_ALL_ACCESS);
    const std::string_view from = on ? "" : kBackUp;
    const std::string_view to = on ? kBackUp : "";
    if (!keep(icon.status()) ||
        !keep(copyRawValue(session_.registry(), icon.get(), from, icon.get(), to))) {
      return false;
    }
  }
  return (on ? write(HKCR, key, "", kOwnIcon) : remove(HKCR, key, kBackUp)) && finishSpecial(tweak);
}

TweakState p_DetermineBMP(const Tweak&, Session& session) {
  const std::string key = bitmapIconKey(session);
  return fromBool(!key.empty() && isOwnIcon(session, key));
}

std::string_view needsBitmapClass(const Tweak&, Session& session) {
  return bitmapIconKey(session).empty() ? "No file type is registered for .bmp." : "";
}

// Checked means Windows' own pictures: the other ones go, and come back when it is cleared.
bool RegWorker::p_rwToolbarBitmaps(const Tweak& tweak) {
  session_.trace.enter(fmt::format("[{}]", tweak.property));
  const bool on = wantsOn(tweak, true);
  for (const ToolbarBitmap& bitmap : kBitmaps) {
    if (bitmap.property != tweak.property) continue;
    bool wasKept = false;
    const bool done =
        on ? keepPrevious(tweak, tweak.root, tweak.key, bitmap.value, {}) &&
                 remove(tweak.root, tweak.key, bitmap.value)
           : keep(putBackValue(session_, tweak, tweak.root, tweak.key, bitmap.value, wasKept));
    if (!done) return false;
  }
  return finishSpecial(tweak);
}

TweakState p_DetermineIE5InterfaceProps(const Tweak& tweak, Session& session) {
  for (const ToolbarBitmap& bitmap : kBitmaps) {
    if (bitmap.property == tweak.property && isThere(session, tweak, bitmap.value)) return {};
  }
  return fromBool(true);
}

std::string_view needsToolbarBitmap(const Tweak& tweak, Session& session) {
  if (session.g_iExplrVer < 5) return "Needs Internet Explorer 5 or later.";
  for (const ToolbarBitmap& bitmap : kBitmaps) {
    if (bitmap.property != tweak.property) continue;
    if (isThere(session, tweak, bitmap.value) ||
        isKept(session, tweak, tweak.root, tweak.key, bitmap.value)) {
      return "";
    }
  }
  return "No other picture is set for it.";
}

// What was without an arrow before the box was checked stays so when it is cleared.
bool RegWorker::P_rwArrows(const Tweak& tweak) {
  session_.trace.enter("[P_rwArrows]");
  const bool on = wantsOn(tweak);
  RawValue mark;
  if (!read(HKCR, tweak.key, kIsShortcut, mark)) return false;
  const bool hadArrows = mark.type != platform::REG_NONE || !mark.bytes.empty();
  for (const std::string_view key : kShortcutClasses) {
    if (on) {
      const bool kept =
          !hadArrows || keep(keepValue(session_, tweak, HKCR, key, kIsShortcut, nullptr));
      if (!kept || !remove(HKCR, key, kIsShortcut)) return false;
      continue;
    }
    bool wasKept = false;
    if (!keep(putBackValue(session_, tweak, HKCR, key, kIsShortcut, wasKept))) return false;
    const bool asWindowsHasIt = session_.g_bDefaulting || (!wasKept && !hadArrows);
    if (asWindowsHasIt && hasClass(session_, key) && !write(HKCR, key, kIsShortcut, "")) {
      return false;
    }
  }
  return finishSpecial(tweak);
}

TweakState p_Arrows(const Tweak& tweak, Session& session) {
  return fromBool(!isThere(session, tweak, kIsShortcut));
}

std::string_view needsShortcutClass(const Tweak& tweak, Session& session) {
  return hasClass(session, tweak.key) ? "" : "No file type is registered for shortcuts.";
}

// One bit of many: the others stay as they are.
bool RegWorker::P_rwScreenTips(const Tweak& tweak) {
  session_.trace.enter("[P_rwScreenTips]");
  const bool on = wantsOn(tweak);
  RawValue mask;
  if (!read(tweak.root, tweak.key, tweak.value, mask)) return false;
  if (mask.type == platform::REG_NONE && mask.bytes.empty()) {
    if (!on) return finishSpecial(tweak);
    mask = {platform::REG_BINARY, defaultMask(session_)};
  }
  if (mask.type != platform::REG_BINARY || mask.bytes.size() < 4) {
    return keep(platform::ERROR_INVALID_DATA);
  }
  const auto first = static_cast<unsigned char>(mask.bytes[0]);
  mask.bytes[0] = static_cast<char>(on ? first & ~kTipsBit : first | kTipsBit);
  return write(tweak.root, tweak.key, tweak.value, bytesOf(mask.bytes)) && finishSpecial(tweak);
}

TweakState p_DetermineUserPrefMask(const Tweak& tweak, Session& session) {
  RawValue mask;
  const bool there =
      readRawValue(session.registry(), tweak.root, tweak.key, tweak.value, mask) == ERROR_SUCCESS &&
      mask.type == platform::REG_BINARY && mask.bytes.size() >= 4;
  return fromBool(there && (static_cast<unsigned char>(mask.bytes[0]) & kTipsBit) == 0);
}

}  // namespace korvex::engine
