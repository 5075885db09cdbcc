// Security and policy restrictions of the main window.
//
// Which Windows have a restriction: the shell's own of Windows 95 everywhere; those that came with
// the shell of Internet Explorer 4 on 98, Me and 2000, and before them with its desktop update;
// menus that the NT 4 service packs brought, on NT 4 without it; the logon dialog's on NT.
#include <array>

#include "engine/catalogue/rows.h"
#include "engine/conditions.h"

namespace korvex::engine {
namespace {

constexpr std::string_view kStartMenu = "Start menu";
constexpr std::string_view kDesktop = "Desktop and Explorer";
constexpr std::string_view kLogon = "Passwords and logon";

// What all rows share: the state of the box is written, and 0 is the default.
constexpr Tweak restriction(std::string_view property, std::string_view key, std::string_view value,
                            std::string_view control, std::string_view group,
                            std::string_view caption, std::string_view toolTip,
                            Families families = kEvery, Families needsDesktopUpdate = 0) {
  return {.property = property,
          .root = HKCU,
          .key = key,
          .value = value,
          .mode = 0,
          .byDefault = dword(0),
          .reboot = true,
          .bank = Bank::MainWindow,
          .stateName = value,
          .control = control,
          .page = Page::Security,
          .group = group,
          .caption = caption,
          .toolTip = toolTip,
          .families = families,
          .needsDesktopUpdate = needsDesktopUpdate};
}

constexpr Tweak noRestart(Tweak row) {
  row.reboot = false;
  return row;
}

constexpr Tweak ofTheMachine(Tweak row) {
  row.root = HKLM;
  return row;
}

// On the buttons of the dialog behind Ctrl+Alt+Del.
constexpr Tweak ofTheLogonDialog(Tweak row) {
  row.lacks = needsMsGina;
  return row;
}

constexpr Tweak deletedWhenCleared(Tweak row) {
  row.mode = 1;
  row.byDefault = kDelete;
  return row;
}

constexpr std::array kRows{
    restriction("P_rwRun", kPoliciesExplorer, "NoRun", "chkHideRun", kStartMenu,
                "Hide R&un on the Start menu",
                "Removes Run from the Start menu...default is unchecked...restart required"),
    restriction("P_rwFind", kPoliciesExplorer, "NoFind", "chkHideFind", kStartMenu,
                "Hide &Find on the Start menu",
                "Removes Find, or Search, from the Start menu...default is unchecked"
                "...restart required"),
    restriction("P_rwHideShutDown", kPoliciesExplorer, "NoClose", "chkHideShutDown", kStartMenu,
                "Hide S&hut Down on the Start menu",
                "Removes Shut Down from the Start menu...default is unchecked"
                "...restart required"),
    restriction("P_rwHideCP_P_MyC", kPoliciesExplorer, "NoSetFolders",
                "chkHideControlPanel_Printers_MyComputer", kStartMenu,
                "Hide &Control Panel and Printers",
                "Removes Control Panel and Printers from Settings and from My Computer"
                "...default is unchecked...restart required"),
    restriction("P_rwTaskbar", kPoliciesExplorer, "NoSetTaskbar", "chkHideTaskbar", kStartMenu,
                "Hide &Taskbar settings on the Start menu",
                "Removes Taskbar from the Start menu's Settings...default is unchecked"
                "...restart required"),
    restriction("P_rwNoRecentDocsMenu", kPoliciesExplorer, "NoRecentDocsMenu", "chkNoDocuments",
                kStartMenu, "Hide D&ocuments on the Start menu",
                "Removes Documents from the Start menu...default is unchecked...restart required",
                kEvery, kWin95 | kNT4),
    restriction("P_rwNoFavoritesMenu", kPoliciesExplorer, "NoFavoritesMenu", "chkNoFavorites",
                kStartMenu, "Hide Fa&vorites on the Start menu",
                "Removes Favorites from the Start menu...default is unchecked...restart required",
                kEvery, kWin95 | kNT4),
    restriction("P_rwCommonProgramGroups", kPoliciesExplorer, "NoCommonGroups",
                "chkHideCommonProgramGroups", kStartMenu, "Hide common program &groups",
                "Removes the program groups of all users from the Start menu"
                "...default is unchecked...restart required",
                kWin98 | kWinMe | kNT),
    restriction("P_rwNoStartBanner", kPoliciesExplorer, "NoStartBanner", "chkClickHere", kStartMenu,
                "Hide 'Click here to begin' on the taskbar",
                "Shows no arrow to the Start button after logon...default is unchecked"
                "...restart required",
                kWin95 | kWin98 | kNT4),
    restriction("P_rwDesktopIcons", kPoliciesExplorer, "NoDesktop", "chkHideDesktopIcons", kDesktop,
                "Hide all icons on the des&ktop",
                "Shows an empty desktop...default is unchecked...restart required"),
    restriction("P_rwNetworkNeighborhood", kPoliciesExplorer, "NoNetHood",
                "chkHideNetworkNeighborhood", kDesktop, "Hide &Network Neighborhood",
                "Removes Network Neighborhood, or My Network Places, from the desktop"
                "...default is unchecked...restart required"),
    restriction("P_rwFileMenu", kPoliciesExplorer, "NoFileMenu", "chkHideFileMenu", kDesktop,
                "Hide the Fi&le menu in Explorer",
                "Removes the File menu from Explorer and My Computer...default is unchecked"
                "...restart required",
                kEvery, kWin95),
    restriction("P_rwViewContextMenu", kPoliciesExplorer, "NoViewContextMenu",
                "chkHideViewContextMenu", kDesktop, "Disable right-click &menus of icons",
                "Shows no menu on a right click on the desktop and in Explorer"
                "...default is unchecked...restart required",
                kEvery, kWin95),
    restriction("P_rwTrayContextMenu", kPoliciesExplorer, "NoTrayContextMenu",
                "chkHideTrayContextMenu", kDesktop, "Disable r&ight-click menus of the taskbar",
                "Shows no menu on a right click on the taskbar and on Start"
                "...default is unchecked...restart required",
                kEvery, kWin95),
    restriction("P_rwNoSaveSettings", kPoliciesExplorer, "NoSaveSettings", "chkIgnoreChanges",
                kDesktop, "Ignore changes of the desktop at exit",
                "Keeps open windows, icons and the taskbar from being saved when Windows ends"
                "...default is unchecked...restart required"),
    deletedWhenCleared(
        restriction("P_rwLinkResolveIgnoreLinkInfo", kPoliciesExplorer, "LinkResolveIgnoreLinkInfo",
                    "chkLinkFileTracking", kDesktop, "Disable link file tracking",
                    "Looks for a moved file only where its shortcut says...default is unchecked"
                    "...restart required")),
    noRestart(ofTheMachine(
        restriction("P_rwDisablePwdCaching", kPoliciesNetwork, "DisablePwdCaching",
                    "chkDisablePwdCaching", kLogon, "Disable &password caching",
                    "Keeps no passwords in the user's password list...default is unchecked", k9x))),
    noRestart(ofTheLogonDialog(restriction("P_rwDisableLockWorkstation", kPoliciesSystem,
                                           "DisableLockWorkstation", "chkDisableLockWorkstation",
                                           kLogon, "Disable Lock &Workstation",
                                           "Removes locking from the Windows security dialog"
                                           "...default is unchecked",
                                           kNT))),
    ofTheLogonDialog(restriction("P_rwDisableChangePassword", kPoliciesSystem,
                                 "DisableChangePassword", "chkDisableChangePassword", kLogon,
                                 "Disable Change Password",
                                 "Removes Change Password from the Windows security dialog"
                                 "...default is unchecked...restart required",
                                 kNT)),
    ofTheLogonDialog(restriction(
        "P_rwDisableTaskMgr", kPoliciesSystem, "DisableTaskMgr", "chkDisableTaskManager", kLogon,
        "Disable Task Manager",
        "Keeps Task Manager from being opened...default is unchecked...restart required", kNT)),
    ofTheMachine(restriction("P_rwRestrictAnonymous", "SYSTEM\\CurrentControlSet\\Control\\LSA",
                             "RestrictAnonymous", "chkNullLogon", kLogon,
                             "Restrict anon&ymous network logons",
                             "Keeps unnamed users from listing accounts and shares"
                             "...default is unchecked...restart required",
                             kNT)),
};
static_assert(propertiesAreUnique(kRows) && modesAreKnown(kRows));

}  // namespace

std::span<const Tweak> securityRows() { return kRows; }

}  // namespace korvex::engine
