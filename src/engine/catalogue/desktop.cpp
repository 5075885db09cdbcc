// Desktop, Explorer and Start menu.
#include <array>

#include "engine/catalogue/rows.h"
#include "engine/reg_worker.h"

namespace korvex::engine {
namespace {

constexpr std::array kRows{
    Tweak{.property = "P_rwStartMenuSpeed",
          .root = HKCU,
          .key = kDesktopKey,
          .value = "MenuShowDelay",
          .byDefault = text("400"),
          .reboot = true,
          .control = "txtStartMenu",
          .buddy = "StartMenu",
          .shape = ControlShape::TextBox,
          .page = Page::WinTweaks,
          .group = "Start menu",
          .caption = "Start &menu delay in milliseconds:",
          .toolTip = "How long Windows waits before it opens a submenu...default is 400"
                     "...restart required",
          .special = &RegWorker::P_rwStartMenuSpeed},
    // On NT the CD-ROM driver's own Autorun switch has a say too. The box stands for the policy
    // alone: a state that clearing the box cannot clear would be no state of the box.
    Tweak{.property = "P_rwAutoPlay",
          .root = HKCU,
          .key = kPoliciesExplorer,
          .value = "NoDriveTypeAutoRun",
          .mode = 13,
          .byDefault = dword(149),
          .onValue = dword(181),
          .reboot = true,
          .stateName = "NoDriveTypeAutoRun",
          .control = "chkAutoPlay",
          .page = Page::WinTweaks,
          .group = "CD-ROM",
          .caption = "Do not start data CDs automaticall&y",
          .toolTip = "Turns AutoPlay off for CD-ROM drives...default is unchecked"
                     "...restart required"},
    Tweak{.property = "P_rwAudioCD",
          .root = HKLM,
          .key = "Software\\CLASSES\\AudioCD\\shell",
          .value = "",
          .mode = 11,
          .byDefault = text("play"),
          .stateName = "NoAudioCDAutoRun",
          .control = "chkAudioCD",
          .page = Page::WinTweaks,
          .group = "CD-ROM",
          .caption = "Do not play audio &CDs automatically",
          .toolTip = "Takes the play command off audio CDs...default is unchecked"},
};
static_assert(propertiesAreUnique(kRows) && modesAreKnown(kRows));

}  // namespace

std::span<const Tweak> desktopRows() { return kRows; }

}  // namespace korvex::engine
