// Desktop, Explorer and Start menu.
#include <array>

#include "engine/catalogue/rows.h"
#include "engine/reg_worker.h"

namespace korvex::engine {
namespace {

constexpr std::string_view kWindows = "Windows and folders";

// What Explorer's Type column says of a kind of program.
constexpr Tweak description(std::string_view property, std::string_view fileClass,
                            std::string_view windowsText, std::string_view control,
                            std::string_view buddy, std::string_view caption,
                            std::string_view toolTip) {
  return {.property = property,
          .root = HKCR,
          .key = fileClass,
          .value = "",
          .byDefault = text(windowsText),
          .control = control,
          .buddy = buddy,
          .shape = ControlShape::TextBox,
          .page = Page::WinTweaks,
          .group = "File type descriptions",
          .caption = caption,
          .toolTip = toolTip,
          .special = &RegWorker::p_rwWriteText};
}

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
          .digitsOnly = true,
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
    Tweak{.property = "P_rwSmoothScroll",
          .root = HKCU,
          .key = kDesktopKey,
          .value = "SmoothScroll",
          .mode = 0,
          .byDefault = dword(0),
          .stateName = "SmoothScroll",
          .control = "chkSmartScrollShell",
          .page = Page::WinTweaks,
          .group = kWindows,
          .caption = "Scroll lists and windows smoothly",
          .toolTip = "Moves the content of Explorer's windows in small steps"
                     "...default is unchecked",
          .families = kWin98 | kWinMe | kNT,
          .needsDesktopUpdate = kNT4},
    Tweak{.property = "P_rwNoWindowAnimation",
          .root = HKCU,
          .key = "Control Panel\\desktop\\WindowMetrics",
          .value = "MinAnimate",
          .mode = 16,
          .byDefault = text("1"),
          .reboot = true,
          .stateName = "MinAnimate",
          .control = "chkWindowAnimation",
          .page = Page::WinTweaks,
          .group = kWindows,
          .caption = "Do not animate windows",
          .toolTip = "Minimizes and restores windows at once...default is unchecked"
                     "...restart required"},
    Tweak{.property = "P_rwExplorerView",
          .root = HKCR,
          .key = "CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\shell\\Open\\Command",
          .value = "",
          .mode = 3,
          .byDefault = kDelete,
          .onValue = text("explorer.exe"),
          .stateName = "ExplorerView",
          .control = "chkExplorerView",
          .page = Page::WinTweaks,
          .group = kWindows,
          .caption = "Open My Computer in E&xplorer's two panes",
          .toolTip = "Shows the tree of folders beside My Computer's content"
                     "...default is unchecked"},
    description("P_rwExplorerDescExe", "exefile", "Application", "txtExplorerDesc", "ExplorerDesc",
                "Programs (.exe):", "What Explorer calls such files...default is Application"),
    description("P_rwExplorerDescDll", "dllfile", "Application Extension", "txtExplorerDescDll",
                "ExplorerDescDll", "Libraries (.dll):",
                "What Explorer calls such files...default is Application Extension"),
    description("P_rwExplorerDescCom", "comfile", "MS-DOS Application", "txtExplorerDescCom",
                "ExplorerDescCom", "MS-DOS programs (.com):",
                "What Explorer calls such files...default is MS-DOS Application"),
};
static_assert(propertiesAreUnique(kRows) && modesAreKnown(kRows));

}  // namespace

std::span<const Tweak> desktopRows() { return kRows; }

}  // namespace korvex::engine
