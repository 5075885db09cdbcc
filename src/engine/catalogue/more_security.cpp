// Restrictions of frmMoreSecurity: all are policies of the user but two of the machine. The rows
// stand in the dialog's order; those of one frame need not be neighbours.
#include <array>

#include "engine/catalogue/rows.h"
#include "engine/conditions.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"

namespace korvex::engine {
namespace {

constexpr std::string_view kWinOldApp =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\WinOldApp";
constexpr std::string_view kRestrictions =
    "Software\\Policies\\Microsoft\\Internet Explorer\\Restrictions";
constexpr std::string_view kServer =
    "System\\CurrentControlSet\\Services\\LanmanServer\\Parameters";

// The frames.
constexpr std::string_view kWin9x = "Windows 9x specific";
constexpr std::string_view kExplorer = "Internet Explorer 4.x SP2 and higher specific";
constexpr std::string_view kSystem = "Start menu and system";
constexpr std::string_view kNetwork = "Network and printers";
constexpr std::string_view kDisplay = "Display applet";

// What all rows share: 1 when checked, no value otherwise.
constexpr Tweak restriction(std::string_view property, std::string_view key, std::string_view value,
                            std::string_view control, std::string_view group,
                            std::string_view caption, std::string_view toolTip) {
  return {.property = property,
          .root = HKCU,
          .key = key,
          .value = value,
          .mode = 1,
          .byDefault = kDelete,
          .bank = Bank::MoreSecurity,
          .stateName = value,
          .form = "frmMoreSecurity",
          .control = control,
          .page = Page::Security,
          .group = group,
          .caption = caption,
          .toolTip = toolTip};
}

constexpr Tweak only(Families families, Tweak row) {
  row.families = families;
  return row;
}
constexpr Tweak withDesktopUpdate(Families families, Tweak row) {
  row.needsDesktopUpdate = families;
  return row;
}
constexpr Tweak afterRestart(Tweak row) {
  row.reboot = true;
  return row;
}
constexpr Tweak ofTheBrowser(Tweak row) {
  row.lacks = needsExplorer4SP2;
  return row;
}
// Two policies of one name, the user's and the machine's, have a state each.
constexpr Tweak withState(std::string_view stateName, Tweak row) {
  row.stateName = stateName;
  return row;
}
constexpr Tweak helpFile(Tweak row) {
  row.root = HKLM;
  row.mode = 21;
  return row;
}
constexpr Tweak adminShares(Tweak row) {
  row.root = HKLM;
  row.families = kNT;
  row.writes =
      "Checked: AutoShareServer and AutoShareWks DWORD 0. Unchecked: both values are deleted.";
  row.special = &RegWorker::P_rwNoAdminShares;
  row.reader = p_DetermineNoAdminShares;
  return row;
}

constexpr std::array kRows{
    afterRestart(only(
        k9x,
        restriction("P_rwNoRealMode", kWinOldApp, "NoRealMode", "chkNoRealMode", kWin9x,
                    "Disable 'Restart in MS-DOS mode' from shut down menu",
                    "Takes the choice from Shut Down...default is unchecked...restart required"))),
    withState(
        "DisablePwdCachingII",
        only(k9x, restriction("P_rwDisablePwdCachingII", kPoliciesNetwork, "DisablePwdCaching",
                              "chkWin9xNoPassCache", kWin9x, "Disable Password cachin&g",
                              "Keeps no passwords of this user...default is unchecked"))),
    only(k9x, restriction("P_rwDisabled", kWinOldApp, "Disabled", "chkWin9xNoMSDOS", kWin9x,
                          "Disable MS&-DOS based programs && prompt",
                          "Starts no MS-DOS programs from Windows...default is unchecked")),
    only(k9x, restriction("P_rwNoPwdPage", kPoliciesSystem, "NoPwdPage", "chkWin9xNoChangePass",
                          kWin9x, "Disable Change Password tab in Pass&words",
                          "Hides the tab in Control Panel...default is unchecked")),
    only(k9x,
         restriction("P_rwNoProfilePage", kPoliciesSystem, "NoProfilePage", "chkWin9xNoUserProfile",
                     kWin9x, "Disable User &Profiles tab in Passwords",
                     "Hides the tab in Control Panel...default is unchecked")),
    only(k9x, restriction("P_rwNoAdminPage", kPoliciesSystem, "NoAdminPage",
                          "chkWin9xNoRemoteAdmin", kWin9x, "Disable &Remote Admin tab in Passwords",
                          "Hides the tab in Control Panel...default is unchecked")),
    only(k9x,
         restriction("P_rwNoVirtMemPage", kPoliciesSystem, "NoVirtMemPage", "chkWin9xNoVirtMem",
                     kWin9x, "Disable Virtual Mem b&utton on Performance tab",
                     "Hides the button in System...default is unchecked")),
    only(k9x, restriction("P_rwNoFileSysPage", kPoliciesSystem, "NoFileSysPage",
                          "chkWin9xNoFileSystembutton", kWin9x,
                          "Disable File S&ystem button on Performance tab",
                          "Hides the button in System...default is unchecked")),
    only(k9x, restriction("P_rwNoConfigPage", kPoliciesSystem, "NoConfigPage",
                          "chkWin9xNoHardwaretab", kWin9x, "Disable &Hardware Profiles tab",
                          "Hides the tab in System...default is unchecked")),
    ofTheBrowser(restriction("P_rwNoTheaterMode", kRestrictions, "NoTheaterMode",
                             "chkExplNoCRTL_F11", kExplorer, "Disable F1&1",
                             "Keeps the browser from filling the screen...default is unchecked")),
    ofTheBrowser(restriction("P_rwNoFindFiles", kRestrictions, "NoFindFiles", "chkExplNoCRTL_F3",
                             kExplorer, "Disable F&3",
                             "Keeps Search from being opened...default is unchecked")),
    ofTheBrowser(restriction("P_rwNoBrowserClose", kRestrictions, "NoBrowserClose",
                             "chkExplNoCRTL_F4", kExplorer, "Disable ALT + F&4",
                             "Keeps the browser from being closed...default is unchecked")),
    ofTheBrowser(restriction("P_rwNoBrowserContextMenu", kRestrictions, "NoBrowserContextMenu",
                             "chkExplNoRightClick", kExplorer, "Disable right clic&k menu",
                             "Shows no menu on a page...default is unchecked")),
    ofTheBrowser(restriction("P_rwNoSelectDownloadDir", kRestrictions, "NoSelectDownloadDir",
                             "chkExplNoSaveDown", kExplorer, "Disable sa&ving of downloaded files",
                             "Asks for no folder for a download...default is unchecked")),
    ofTheBrowser(restriction("P_rwNoFavorites", kRestrictions, "NoFavorites", "chkExplNoFavMod",
                             kExplorer, "Disable &modification of Favorites menu",
                             "Adds and changes no favorites...default is unchecked")),
    ofTheBrowser(restriction("P_rwNoBrowserOptions", kRestrictions, "NoBrowserOptions",
                             "chkExplNoOptions", kExplorer,
                             "Disable In&ternet Options on View menu",
                             "Keeps the browser's options as they are...default is unchecked")),
    ofTheBrowser(restriction("P_rwNoBrowserSaveAs", kRestrictions, "NoBrowserSaveAs",
                             "chkExplNoSaveAs", kExplorer, "Disable &Save and Save As on File menu",
                             "Saves no pages...default is unchecked")),
    ofTheBrowser(restriction("P_rwNoFileNew", kRestrictions, "NoFileNew", "chkExplNoCRTL_N",
                             kExplorer, "Disable CTRL &+ N",
                             "Opens no further window...default is unchecked")),
    ofTheBrowser(restriction("P_rwNoFileOpen", kRestrictions, "NoFileOpen", "chkExplNoOpen",
                             kExplorer, "Disable &Open command on File menu",
                             "Opens no files and addresses from the menu...default is unchecked")),
    afterRestart(withDesktopUpdate(
        kWin95 | kNT4,
        restriction("P_rwNoChangeStartMenu", kPoliciesExplorer, "NoChangeStartMenu",
                    "chkNoContextonStartMenu", kSystem, "Disable &Start Menu right click",
                    "Keeps the Start menu from being changed with the mouse...default is "
                    "unchecked...restart required"))),
    helpFile(
        restriction("P_rwDisableHelp", kServer, "DisableHelp", "chkDisableHelp", kSystem,
                    "Disable main Windows &Help file",
                    "Shows another help file in place of Windows' own...default is unchecked")),
    withDesktopUpdate(
        kWin95 | kNT4,
        restriction("P_rwNoFolderOptions", kPoliciesExplorer, "NoFolderOptions", "chkNoSetFolders",
                    kSystem, "Disable Start/Settings/Folder Options men&u choice",
                    "Hides Folder Options...default is unchecked")),
    withDesktopUpdate(kWin95 | kNT4,
                      restriction("P_rwNoSetActiveDesktop", kPoliciesExplorer, "NoSetActiveDesktop",
                                  "chkNoSetActiveDesktop", kSystem,
                                  "Hide Acti&ve Desktop item from Start/Settings menu",
                                  "Hides Active Desktop...default is unchecked")),
    afterRestart(
        adminShares(restriction("P_rwNoAdminShares", kServer, "NoAdminShares", "chkNoAdminShares",
                                kNetwork, "Permanently remove hidden default admin shares",
                                "Makes no shares like C$ when the server starts...default is "
                                "unchecked...restart required"))),
    only(k9x, restriction("P_rwNoNetSetup", kPoliciesNetwork, "NoNetSetup",
                          "chkNoNetworkProperties", kNetwork, "Disable Network propert&ies dialog",
                          "Keeps the network settings as they are...default is unchecked")),
    only(k9x, restriction("P_rwNoFileSharingControl", kPoliciesNetwork, "NoFileSharingControl",
                          "chkNoFileSharingControl", kNetwork, "Disable &file/folder sharing",
                          "Hides the controls that share folders...default is unchecked")),
    afterRestart(
        restriction("P_rwNoDeletePrinter", kPoliciesExplorer, "NoDeletePrinter",
                    "chkNoDeletePrinter", kNetwork, "Disable prin&ter removal",
                    "Keeps printers from being deleted...default is unchecked...restart required")),
    afterRestart(
        restriction("P_rwNoAddPrinter", kPoliciesExplorer, "NoAddPrinter", "chkNoAddPrinter",
                    kNetwork, "Disable Add P&rinter",
                    "Keeps printers from being added...default is unchecked...restart required")),
    afterRestart(
        withDesktopUpdate(kWin95, restriction("P_rwEnforceShellExtensionSecurity", kPoliciesSystem,
                                              "EnforceShellExtensionSecurity", "chkShellExtensions",
                                              kSystem, "Use approved shell &extensions only",
                                              "Loads only the extensions that are on the "
                                              "list...default is unchecked...restart required"))),
    restriction("P_rwNoWorkgroupContents", kPoliciesNetwork, "NoWorkgroupContents",
                "chkNoWorkgroupContents", kNetwork,
                "Hide &workgroup contents in Network Neighborhood",
                "Shows no computers of the workgroup...default is unchecked"),
    restriction("P_rwNoEntireNetwork", kPoliciesNetwork, "NoEntireNetwork", "chkNoEntireNetwork",
                kNetwork, "Hide 'Entire &Network' in Network Neighborhood",
                "Shows only the own workgroup...default is unchecked"),
    restriction("P_rwDisableRegistryTools", kPoliciesSystem, "DisableRegistryTools",
                "chkNoRegistryTools", kSystem, "Disable re&gistry editing tools",
                "Keeps the registry editor from being opened...default is unchecked"),
    restriction("P_rwNoDispScrSavPage", kPoliciesSystem, "NoDispScrSavPage", "chkNoCPScreenSaver",
                kDisplay, "Hide Display applet '&Screen Saver' tab",
                "Hides the tab in Control Panel...default is unchecked"),
    restriction("P_rwNoDispCPL", kPoliciesSystem, "NoDispCPL", "chkNoCP", kDisplay,
                "Hide &Control Panel's 'Display' applet",
                "Hides all of Display...default is unchecked"),
    restriction("P_rwNoDispBackgroundPage", kPoliciesSystem, "NoDispBackgroundPage",
                "chkNOCPBackgroundTab", kDisplay, "Hide Display applet '&Background' tab",
                "Hides the tab in Control Panel...default is unchecked"),
    restriction("P_rwNoDispAppearancePage", kPoliciesSystem, "NoDispAppearancePage",
                "chkNOCPAppearTab", kDisplay, "&Hide Display applet 'Appearance' tab",
                "Hides the tab in Control Panel...default is unchecked"),
    restriction("P_rwNoDispSettings", kPoliciesSystem, "NoDispSettingsPage", "chkNoCPSettingsTab",
                kDisplay, "Hide Displa&y applet 'Settings' tab",
                "Hides the tab in Control Panel...default is unchecked"),
};
static_assert(propertiesAreUnique(kRows) && modesAreKnown(kRows));

}  // namespace

std::span<const Tweak> moreSecurityRows() { return kRows; }

}  // namespace korvex::engine
