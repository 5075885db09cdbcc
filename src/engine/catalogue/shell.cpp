// What special routines do to the shell: its folders, menus and icons, and restrictions of several
// values.
#include <array>

#include "engine/catalogue/rows.h"
#include "engine/conditions.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"
#include "engine/shell_folders.h"
#include "engine/shell_icons.h"

namespace korvex::engine {
namespace {

constexpr std::string_view kNameSpaceKey =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MyComputer\\NameSpace";
constexpr std::string_view kWinlogon = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";

// The captions of 2000, whose folders are other ones or have other names.
void nameFor2000(Tweak& row, foundation::Session& session) {
  if (session.g_eOS != foundation::Os::Windows2000) return;
  if (row.property == "P_rwRemoveDUN") row.caption = "Remo&ve Network && Dial-up from My Computer";
  if (row.property == "P_rwRemoveWebFolders") {
    row.caption = "Remove Administrati&ve Tools from My Computer";
    row.toolTip =
        "Takes the folder away until the box is cleared...default is unchecked"
        "...restart required";
  }
}

// NT 4 spells the value its own way.
void nameForNt4(Tweak& row, foundation::Session& session) {
  if (session.g_eOS == foundation::Os::WindowsNT4) row.value = "UserPreferencemask";
}

constexpr Tweak nameSpace(std::string_view property, std::string_view stateName,
                          std::string_view control, std::string_view value,
                          std::string_view caption) {
  return {.property = property,
          .root = HKLM,
          .key = kNameSpaceKey,
          .value = value,
          .reboot = true,
          .stateName = stateName,
          .control = control,
          .page = Page::WinTweaks,
          .group = "My Computer",
          .caption = caption,
          .toolTip =
              "Takes the folder away until the box is cleared...default is unchecked"
              "...restart required",
          .writes =
              "Takes the folder's class key under MyComputer\\NameSpace or "
              "ControlPanel\\NameSpace of HKEY_LOCAL_MACHINE away. Checked: it is kept "
              "aside and deleted. Unchecked: it comes back.",
          .special = &RegWorker::p_HandleRemoveOfNameSpace,
          .reader = p_DetermineNameSpace,
          .lacks = needsNameSpaceFolder,
          .adapt = nameFor2000};
}

constexpr Tweak cascade(std::string_view property, std::string_view stateName,
                        std::string_view control, std::string_view caption,
                        std::string_view toolTip, Condition lacks = nullptr) {
  return {.property = property,
          .root = HKCU,
          .key = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders",
          .value = stateName,
          .stateName = stateName,
          .control = control,
          .page = Page::WinTweaks,
          .group = "Start menu",
          .caption = caption,
          .toolTip = toolTip,
          .writes =
              "A folder whose name ends in a class. Checked: it is made in your Start menu or in "
              "that of all users. Unchecked: "
              "it is removed from both.",
          .special = &RegWorker::p_PrintersAndControlPanelAndHistory,
          .ask = &RegWorker::askForWhom,
          .reader = p_DetermineControlPanel_Printers_History,
          .lacks = lacks};
}

constexpr Tweak drives(std::string_view property, std::string_view value, std::string_view control,
                       std::string_view caption, std::string_view toolTip) {
  return {.property = property,
          .root = HKLM,
          .key = kWinlogon,
          .value = value,
          .mode = 4,
          .byDefault = text("0"),
          .reboot = true,
          .stateName = value,
          .control = control,
          .page = Page::NT4Win2K,
          .group = "Drives",
          .caption = caption,
          .toolTip = toolTip,
          .families = kNT};
}

constexpr std::array kRows{
    cascade("P_rwControlPanel", "CascadeControlPanel", "chkControlPanel",
            "Cascade Control &Panel on the Start menu",
            "Shows Control Panel's content as a menu...default is unchecked"),
    cascade("P_rwPrinters", "CascadePrinters", "chkPrinters", "Cascade Pr&inters on the Start menu",
            "Shows the printers as a menu...default is unchecked"),
    cascade("P_rwHistory", "CascadeHistory", "chkHistory", "Cascade &History on the Start menu",
            "Shows the pages visited as a menu...default is unchecked", needsExplorer4),
    nameSpace("P_rwRemoveDUN", "RemoveDUN", "chkRemoveDUN", "RemoveDUN",
              "Remo&ve Dial-Up Networking from My Computer"),
    nameSpace("P_rwRemoveScdulyTasks", "RemoveScdulyTasks", "chkRemoveScdulyTasks",
              "RemoveScdulyTasks", "Remove Scheduled &Tasks from My Computer"),
    nameSpace("P_rwRemoveWebFolders", "RemoveWebFolders", "chkRemoveWebFolders", "RemoveWebFolders",
              "Remove &Web Folders from My Computer"),
    Tweak{.property = "P_rwPrintDirs_Files",
          .root = HKCR,
          .key = "Directory\\shell\\Print_Directory\\command",
          .value = "",
          .stateName = "PrintDirs_Files",
          .control = "chkAddPrintDirs_Files",
          .page = Page::WinTweaks,
          .group = "Right-click menus and icons",
          .caption = "Add Print Directory to ri&ght-click menus",
          .toolTip = "Prints the list of a folder's or a drive's files...default is unchecked",
          .writes = "Checked: the verbs Print_Directory and Print_Directory_Tree of Directory and "
                    "Drive, with a command that prints dir's output. Unchecked: none of them.",
          .special = &RegWorker::p_rwShellVerbs,
          .reader = p_DetermineShellVerbs},
    Tweak{.property = "P_rwInherentDLL",
          .root = HKCR,
          .key = "dllfile\\DefaultIcon",
          .value = "",
          .reboot = true,
          .stateName = "InherentDLLs",
          .control = "chkInherentDLL",
          .page = Page::WinTweaks,
          .group = "Right-click menus and icons",
          .caption = "Show the own icons of .d&ll and .cpl files",
          .toolTip = "Draws the first icon in each file...default is unchecked"
                     "...restart required",
          .writes = "Checked: \"%1\", also in cplfile\\DefaultIcon. Unchecked: what stood there "
                    "before, or the icon of shell32.dll.",
          .special = &RegWorker::P_rwInherentDLL,
          .reader = p_DetermineInherentDLLs},
    Tweak{.property = "P_rwBMP",
          .root = HKCR,
          .key = ".bmp",
          .value = "",
          .reboot = true,
          .stateName = "BMP",
          .control = "chkBMP",
          .page = Page::WinTweaks,
          .group = "Right-click menus and icons",
          .caption = "Show bitmaps as their own ic&ons",
          .toolTip = "Draws each .bmp file's picture small...default is unchecked"
                     "...restart required",
          .writes = "Sets the default value of DefaultIcon of the file type of .bmp. Checked: "
                    "\"%1\", and what stood there in "
                    "BackUpDefaultIcon. Unchecked: BackUpDefaultIcon comes back.",
          .special = &RegWorker::P_rwBMP,
          .reader = p_DetermineBMP,
          .lacks = needsBitmapClass},
    Tweak{.property = "P_rwScreenTips",
          .root = HKCU,
          .key = kDesktopKey,
          .value = "UserPreferencesMask",
          .reboot = true,
          .stateName = "UserPreferencesMask",
          .control = "chkScreenTips",
          .page = Page::WinTweaks,
          .group = "Windows and folders",
          .caption = "Show no screen tips o&n window buttons",
          .toolTip = "Leaves the tips on Minimize, Maximize and Close out...default is unchecked"
                     "...restart required",
          .writes = "Checked: bit 80 hex of the first byte cleared. Unchecked: the bit set. The "
                    "others stay.",
          .families = kWin98 | kWinMe | kNT,
          .needsDesktopUpdate = kNT4,
          .special = &RegWorker::P_rwScreenTips,
          .reader = p_DetermineUserPrefMask,
          .adapt = nameForNt4},
    Tweak{.property = "P_rwNoLogOff",
          .root = HKCU,
          .key = kPoliciesExplorer,
          .value = "NoLogOff",
          .mode = 1,
          .reboot = true,
          .stateName = "NoLogOff",
          .control = "chkNoLogOff",
          .page = Page::Security,
          .group = "Start menu",
          .caption = "Hide Log Off on the Start menu",
          .toolTip = "Removes Log Off from the Start menu...default is unchecked"
                     "...restart required",
          .writes = "Checked: DWORD 1, and StartMenuLogoff DWORD 0 under Explorer\\Advanced. "
                    "Unchecked: no value, and StartMenuLogoff as it was before.",
          .needsDesktopUpdate = kWin95 | kNT4,
          .special = &RegWorker::P_rwNoLogOff,
          .reader = p_DetermineNoLogOff},
    Tweak{.property = "P_rwNetworkDrive",
          .root = HKCU,
          .key = kPoliciesExplorer,
          .value = "NoNetConnectDisconnect",
          .mode = 17,
          .byDefault = dword(0),
          .onValue = dword(1),
          .reboot = true,
          .stateName = "NoNetConnectDisconnect",
          .control = "chkHideMap_DisconnectNetworkDrive",
          .page = Page::Security,
          .group = "Desktop and Explorer",
          .caption = "Hide Map and Disconnect Network Drive",
          .toolTip = "Removes the commands and buttons from Explorer...default is unchecked"
                     "...restart required",
          .writes = "Checked: DWORD 1, and MapNetDrvBtn DWORD 0 under Explorer\\Advanced. "
                    "Unchecked: DWORD 0, and MapNetDrvBtn as it was before.",
          .special = &RegWorker::P_rwNetworkDrive,
          .reader = p_DetermineNetworkDrive},
    Tweak{.property = "P_rwNoDrives",
          .root = HKCU,
          .key = kPoliciesExplorer,
          .value = "NoDrives",
          .shape = ControlShape::None,
          .group = "Desktop and Explorer",
          .caption = "Show all drives in My Computer",
          .toolTip = "Takes the list of hidden drives away",
          .special = &RegWorker::P_rwNoDrives},
    Tweak{.property = "P_rwRestrictRegAccess",
          .root = HKLM,
          .key = "SYSTEM\\CurrentControlSet\\Control\\SecurePipeServers\\winreg",
          .value = "Description",
          .mode = 10,
          .onValue = text("Registry Server"),
          .reboot = true,
          .stateName = "RestrictRegAccess",
          .control = "chkRestrictRegistry",
          .page = Page::Security,
          .group = "Passwords and logon",
          .caption = "Close the registry to the network",
          .toolTip = "Keeps other computers out of this one's registry"
                     "...default depends on the Windows...restart required",
          .writes = "Checked: \"Registry Server\", which makes the key. Unchecked: the key is kept "
                    "aside and deleted.",
          .families = kNT,
          .special = &RegWorker::P_rwRestrictRegAccess,
          .reader = p_DetermineRestrictRegistry},
    drives("P_rwFloppyAccess", "AllocateFloppies", "chkNoFloppyAccess",
           "Keep &floppy drives to the user at the computer",
           "Closes them to the network and to other users...default is unchecked"
           "...restart required"),
    drives("P_rwCDROMAccess", "AllocateCDRoms", "chkNoCDROMAccess",
           "Keep CD-ROM drives to the user at the computer",
           "Closes them to the network and to other users...default is unchecked"
           "...restart required"),
};
static_assert(propertiesAreUnique(kRows) && modesAreKnown(kRows));

}  // namespace

std::span<const Tweak> shellRows() { return kRows; }

}  // namespace korvex::engine
