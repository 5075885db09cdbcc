// In which order the main window and the dialogs read their tweaks, and under which routine's name
// each reading is traced. Rows that are not named here follow in the catalogue's order.
#pragma once

#include <array>
#include <string_view>

namespace korvex::engine {

struct ReadStep {
  std::string_view routine;
  std::string_view property;
};

inline constexpr std::array kReadingOrder{
    ReadStep{"p_DetermineStartMenu", "P_rwStartMenuSpeed"},
    ReadStep{"p_DetermineControlPanel_Printers_History", "P_rwControlPanel"},
    ReadStep{"p_DetermineControlPanel_Printers_History", "P_rwPrinters"},
    ReadStep{"p_DetermineControlPanel_Printers_History", "P_rwHistory"},
    ReadStep{"p_DetermineInherentDLLs", "P_rwInherentDLL"},
    ReadStep{"p_DetermineAutoPlay", "P_rwAutoPlay"},
    ReadStep{"p_DetermineAudioAutoPlay", "P_rwAudioCD"},
    ReadStep{"p_DetermineCDROMAccess", "P_rwCDROMAccess"},
    ReadStep{"p_DetermineCDROMAccess", "P_rwFloppyAccess"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwHideCP_P_MyC"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwViewContextMenu"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwTrayContextMenu"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwHideShutDown"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwNetworkDrive"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwFind"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwRun"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwTaskbar"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwFileMenu"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwDesktopIcons"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwNetworkNeighborhood"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwCommonProgramGroups"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwNoStartBanner"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwNoFavoritesMenu"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwNoSaveSettings"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwNoRecentDocsMenu"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwNoLogOff"},
    ReadStep{"p_DetermineExplorerPolicies", "P_rwLinkResolveIgnoreLinkInfo"},
    ReadStep{"p_DetermineDisablePwdCaching", "P_rwDisablePwdCaching"},
    ReadStep{"p_DetermineWindowAnimation", "P_rwNoWindowAnimation"},
    ReadStep{"p_DetermineShortName", "P_rwNoShortName"},
    ReadStep{"p_DetermineDomainVerification", "P_rwDomainLogonMessage"},
    ReadStep{"p_DetermineNETBIOS_DNS", "P_rwEnableDNS"},
    ReadStep{"p_DetermineAddPrintDirs_Files", "P_rwPrintDirs_Files"},
    ReadStep{"p_DetermineVerInfoOnDesktop", "P_rwPaintDesktopVersion"},
    ReadStep{"p_DetermineSmoothScrollShell", "P_rwSmoothScroll"},
    ReadStep{"p_DeterminePrintPriority", "P_rwPortThreadPriority"},
    ReadStep{"p_DetermineServerCache", "P_rwLargeSystemCache"},
    ReadStep{"p_DetermineAccessUpdate", "P_rwNtfsDisableLastAccessUpdate"},
    ReadStep{"p_DetermineKernelPaging", "P_rwDisablePagingExecutive"},
    ReadStep{"p_DetermineLastUser", "P_rwDontDisplayLastUserName"},
    ReadStep{"p_DetermineDesktopLoad_Logon", "P_rwRunLogonScriptSync"},
    ReadStep{"p_DetermineAutoPasswordChanges", "P_rwDisablePasswordChange"},
    ReadStep{"p_DetermineGhostConnections", "P_rwRestoreConnection"},
    ReadStep{"p_DetermineRASConnections", "P_rwKeepRasConnections"},
    ReadStep{"p_DetermineRestrictRegistry", "P_rwRestrictRegAccess"},
    ReadStep{"p_DetermineTaskList", "P_rwTaskList"},
    ReadStep{"p_DetermineVDM", "P_rwDefaultSeparateVDM"},
    ReadStep{"p_DetermineRogueAppsShutDown", "P_rwAutoEndTasks"},
    ReadStep{"p_DetermineSuppressServerPrintNotification", "P_rwNetPopup"},
    ReadStep{"p_DeterminePowerDown", "P_rwPowerDownAfterShutDown"},
    ReadStep{"p_DetermineClearPageFileAtShutDown", "P_rwClearPageFileAtShutdown"},
    ReadStep{"p_DetermineNumLock", "P_rwInitialKeyboardIndicators"},
    ReadStep{"p_DetermineTabCompletion", "P_rwCompletionChar"},
    ReadStep{"p_DetermineNullLogon", "P_rwRestrictAnonymous"},
    ReadStep{"p_DetermineSysPolicies", "P_rwDisableLockWorkstation"},
    ReadStep{"p_DetermineSysPolicies", "P_rwDisableChangePassword"},
    ReadStep{"p_DetermineSysPolicies", "P_rwDisableTaskMgr"},
    ReadStep{"p_DetermineUserPrefMask", "P_rwScreenTips"},
    ReadStep{"p_DetermineCOMMPwrManage", "P_rwEnablePowerManagement"},
    ReadStep{"p_DeterminePrintShareBroadcasts", "P_rwDisableServerThread"},
    ReadStep{"p_DetermineRemoveDUN", "P_rwRemoveDUN"},
    ReadStep{"p_DetermineRemoveScdulyTasks", "P_rwRemoveScdulyTasks"},
    ReadStep{"p_DetermineRemoveWebFolders", "P_rwRemoveWebFolders"},
    ReadStep{"p_DetermineNoRoamProfile", "P_rwUseHomeDirectory"},
    ReadStep{"p_DetermineFastShutDown", "P_rwFastReboot"},
    ReadStep{"p_DetermineDefrag", "P_rwDefrag"},
    // frmWinTweaksII
    ReadStep{"p_DetermineOpenWith", "P_rwOpenWith"},
    ReadStep{"p_DetermineRightClickDOS", "P_rwRightClickDOS"},
    ReadStep{"p_DetermineXMouse", "P_rwActiveWindowTracking"},
    ReadStep{"p_DetermineSmoothScrollIE", "P_rwSmoothScrollIE"},
    ReadStep{"p_Arrows", "P_rwArrows"},
    ReadStep{"p_DetermineACPIPowerSupport", "P_rwACPIOption"},
    ReadStep{"p_DetermineEnable_Disk_Cache", "P_rwEnable_Disk_Cache"},
    ReadStep{"p_DetermineOutlookLogging", "P_rwLogging"},
    ReadStep{"p_DetermineInternalSpeaker", "P_rwInternalSpeaker"},
    ReadStep{"p_DetermineShortcutPrefix", "P_rwLinks"},
    ReadStep{"p_DetermineIE5InterfaceProps", "P_rwBrandBitmap"},
    ReadStep{"p_DetermineIE5InterfaceProps", "P_rwBackBitmapIE5"},
    // frmNT4_Win2KCont, frmNTServer, frmDrWat
    ReadStep{"p_DetermineExplorerSeperateProcess", "P_rwDesktopProcess"},
    ReadStep{"p_DetermineCrashControl", "P_rwAutoReboot"},
    ReadStep{"p_DetermineLogonCredentials", "P_rwLogonCredentials"},
    ReadStep{"p_DetermineLFNonFAT", "P_rwWin31FileSystem"},
    ReadStep{"p_DetermineDesktopVersionNT5", "P_rwPaintDesktopVersionNT5"},
    ReadStep{"p_DetermineFastReboot", "P_rwEnableQuickReboot"},
    ReadStep{"p_DetermineDisallowParseAuto", "P_rwParseAutoexec"},
    ReadStep{"p_DetermineVanJacobson", "P_rwTcpMaxDupAcks"},
    ReadStep{"p_DetermineNtfsDisable8dot3NameCreation", "P_rwNtfsDisable8dot3NameCreation"},
    ReadStep{"p_DetermineTruncatedExtensions", "P_rwWin95TruncatedExtensions"},
    ReadStep{"p_DetermineLPRPrint", "P_rwUseNonRFCSourcePorts"},
    ReadStep{"p_DetermineUNIX_FTP", "P_rwMsDosDirOutput"},
    ReadStep{"p_DetermineShutDownOption", "P_rwShutdownWithOutLogon"},
    ReadStep{"p_DetermineHideServer", "P_rwHidden"},
    ReadStep{"p_DetermineMasterBrowser", "P_rwIsDomainMaster"},
    ReadStep{"p_DetermineServerMaxUsers", "P_ServerMaxUsers"},
    ReadStep{"p_DetermineBrowserElection", "P_BrowserElection"},
    ReadStep{"p_DetermineDrWatsonONOFF", "P_rwAuto"},
    ReadStep{"p_DetermineDrWatsonVisible", "P_rwVisualNotification"},
    ReadStep{"p_DetermineDrWatsonAppendOverwrite", "P_rwAppendToLogFile"},
};

// The rows of these groups are read by one routine each.
struct GroupReader {
  std::string_view group;
  std::string_view routine;
};

inline constexpr std::array kGroupReaders{
    GroupReader{"Microsoft Word", "p_DetermineWordValues"},
    GroupReader{"Microsoft Excel", "p_DetermineExcelValues"},
    // Reads as Word's does, and says so.
    GroupReader{"Microsoft PowerPoint", "p_DetermineWordValues"},
    GroupReader{"Office Assistant", "p_DetermineAssistantValues"},
    GroupReader{"Journaling", "p_DetermineWordValues"},
    GroupReader{"ENGINE INITIALIZATION SETTINGS", "p_DetermineJetEIS"},
    GroupReader{"Text", "p_DetermineJetText"},
    GroupReader{"Excel", "p_DetermineJetExcel"},
    GroupReader{"ODBC", "p_DetermineJetODBC"},
    GroupReader{"xBase", "p_DetermineJetXBase"},
};

}  // namespace korvex::engine
