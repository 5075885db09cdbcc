// One run of Korvex on one machine.
#include "program/program.h"

#include <array>
#include <memory>
#include <utility>

#include "dialogs/frm_about.h"
#include "dialogs/frm_restore.h"
#include "dialogs/logon/frm_auto_logon.h"
#include "dialogs/logon/frm_custom_logon.h"
#include "dialogs/logon/frm_login.h"
#include "dialogs/logon/frm_logon_bitmap.h"
#include "dialogs/logon/frm_password.h"
#include "dialogs/network/frm_ip_addresses.h"
#include "dialogs/network/frm_nt_ip_forward.h"
#include "dialogs/nt/frm_dos_colors.h"
#include "dialogs/nt/frm_dr_wat.h"
#include "dialogs/nt/frm_ex_prof_dirs.h"
#include "dialogs/nt/frm_l2_cache.h"
#include "dialogs/nt/frm_nt4_win2k_cont.h"
#include "dialogs/nt/frm_nt_debug.h"
#include "dialogs/nt/frm_nt_heap_size.h"
#include "dialogs/nt/frm_nt_server.h"
#include "dialogs/nt/frm_screensaver.h"
#include "dialogs/office/frm_mrus.h"
#include "dialogs/office/frm_office.h"
#include "dialogs/office/running_applications.h"
#include "dialogs/shell/frm_drives.h"
#include "dialogs/shell/frm_fa.h"
#include "dialogs/shell/frm_moniker.h"
#include "dialogs/shell/frm_restrict_run.h"
#include "dialogs/shell/frm_right_click.h"
#include "dialogs/shell/frm_run_once.h"
#include "dialogs/shell/frm_shell_folders.h"
#include "dialogs/shell/frm_start_menu_config.h"
#include "dialogs/system/frm_add_remove.h"
#include "dialogs/system/frm_fast_file_access.h"
#include "dialogs/system/frm_ie_title_bar.h"
#include "dialogs/system/frm_more_security.h"
#include "dialogs/system/frm_system_information.h"
#include "dialogs/system/frm_win_tweaks_ii.h"
#include "main_window/frm_main.h"

namespace korvex::program {
namespace {

using main_window::frmMain;

constexpr std::string_view kMainWindow = frmMain::kName;

// A dialog: its name, what it is for, and how it is made of what every dialog is given. One that
// needs more is made by addDialogs.
struct DialogRow {
  FormRow form;
  std::unique_ptr<forms::Form> (*make)(const dialogs::DialogParts&) = nullptr;
};

template <typename Dialog>
std::unique_ptr<forms::Form> make(const dialogs::DialogParts& parts) {
  return std::make_unique<Dialog>(parts);
}

constexpr std::array kDialogs{
    DialogRow{{dialogs::frmMoreSecurity::kName, "Further restrictions"},
              make<dialogs::frmMoreSecurity>},
    DialogRow{{dialogs::frmWinTweaksII::kName, "Win Tweaks, continued"},
              make<dialogs::frmWinTweaksII>},
    DialogRow{{dialogs::frmNT4_Win2KCont::kName, "NT4/Win2K, continued"},
              make<dialogs::frmNT4_Win2KCont>},
    DialogRow{{dialogs::frmNTServer::kName, "Server settings of NT"}, make<dialogs::frmNTServer>},
    DialogRow{{dialogs::frmDrWat::kName, "Dr. Watson of NT"}, make<dialogs::frmDrWat>},
    DialogRow{{dialogs::frmOffice::kName, "Word, Excel, PowerPoint, the Assistant and Jet"}},
    DialogRow{{dialogs::frmPathSelecter::kName, "The folder picker"}},
    DialogRow{{dialogs::frmLogin::kName, "Asks for the password of Korvex"}},
    DialogRow{{dialogs::frmPassword::kName, "Sets the password of Korvex"}},
    DialogRow{{dialogs::frmNTDebug::kName, "Boot.ini, and the load order of NT's drivers"},
              make<dialogs::frmNTDebug>},
    DialogRow{{dialogs::frmNTHeapSize::kName, "Desktop heap of NT"}, make<dialogs::frmNTHeapSize>},
    DialogRow{{dialogs::frmL2Cache::kName, "Second-level cache of NT"}, make<dialogs::frmL2Cache>},
    DialogRow{{dialogs::frmNT_IPForward::kName, "Forwarding buffers of TCP/IP"},
              make<dialogs::frmNT_IPForward>},
    DialogRow{{dialogs::frmFastFileAccess::kName, "Programs that start by their name"},
              make<dialogs::frmFastFileAccess>},
    DialogRow{{dialogs::frmSystemInformation::kName, "Owner and company of Windows"},
              make<dialogs::frmSystemInformation>},
    DialogRow{{dialogs::frmAutoLogon::kName, "Automatic logon"}, make<dialogs::frmAutoLogon>},
    DialogRow{{dialogs::frmCustomLogon::kName, "The message before logon"},
              make<dialogs::frmCustomLogon>},
    DialogRow{{dialogs::frmLogon_Bitmap::kName, "The bitmap behind the logon prompt of NT"}},
    DialogRow{{dialogs::frmIPAddresses::kName, "Further IP addresses of Windows 9x"},
              make<dialogs::frmIPAddresses>},
    DialogRow{{dialogs::frmMRUs::kName, "Excel's recent files"}, make<dialogs::frmMRUs>},
    DialogRow{{dialogs::frmRightClick::kName, "Entries in the right click menus of file types"},
              make<dialogs::frmRightClick>},
    DialogRow{{dialogs::frmMoniker::kName, "Short names that the browser opens"},
              make<dialogs::frmMoniker>},
    DialogRow{{dialogs::frmIETitleBar::kName, "The title bar of Internet Explorer"},
              make<dialogs::frmIETitleBar>},
    DialogRow{{dialogs::frmDrives::kName, "Drives that Explorer hides"}, make<dialogs::frmDrives>},
    DialogRow{{dialogs::frmRestrictRun::kName, "The only programs that may run"}},
    DialogRow{{dialogs::frmScreensaver::kName, "The screen saver at the logon prompt of NT"},
              make<dialogs::frmScreensaver>},
    DialogRow{{dialogs::frmDOSColors::kName, "Colors of the command prompt of NT"},
              make<dialogs::frmDOSColors>},
    DialogRow{{dialogs::frmAddRemove::kName, "Programs that can be uninstalled"},
              make<dialogs::frmAddRemove>},
    DialogRow{{dialogs::frmStartMenuConfig::kName, "The order of the Start menu"},
              make<dialogs::frmStartMenuConfig>},
    DialogRow{{dialogs::frmShellFolders::kName, "The special folders of the user"},
              make<dialogs::frmShellFolders>},
    DialogRow{{dialogs::frmExProfDirs::kName, "Folders that do not roam"},
              make<dialogs::frmExProfDirs>},
    DialogRow{{dialogs::frmFA::kName, "File associations"}},
    DialogRow{{dialogs::frmRunOnce::kName, "Programs that Windows starts by itself"},
              make<dialogs::frmRunOnce>},
    DialogRow{{dialogs::frmRestore::kName, "What a restore would change"}},
    DialogRow{{dialogs::frmAbout::kName, "Version and machine"}},
};

constexpr auto kForms = [] {
  std::array<FormRow, kDialogs.size() + 1> forms{FormRow{kMainWindow, "The main window"}};
  for (std::size_t i = 0; i < kDialogs.size(); ++i) forms[i + 1] = kDialogs[i].form;
  return forms;
}();

constexpr int kFirstBankOfDialogs = static_cast<int>(engine::Bank::WinTweaksII);
constexpr int kLastBank = static_cast<int>(engine::Bank::DrWat);

constexpr int kExitDone = 0;
constexpr int kExitBusy = 4;
constexpr int kExitFailed = 5;

}  // namespace

std::span<const FormRow> Program::forms() { return kForms; }

Program::Program(platform::Machine& machine, platform::Prompts& prompts, StartOptions options)
    : session_(machine, prompts),
      registryBacker_(session_),
      password_(session_.regTool, passwordHash_),
      regWorker_(session_, formBook_),
      pendingChanges_(session_, formBook_) {
  pendingChanges_.p_CheckForLoadedAppsRestore = [this] {
    return dialogs::p_CheckForLoadedAppsRestore(session_);
  };
  formBook_.add(std::string(kMainWindow), [this, options] {
    return std::make_unique<frmMain>(session_, regWorker_, pendingChanges_, formBook_,
                                     main_window::BackupParts{registryBacker_, restoreDesk_},
                                     password_, options);
  });
  addDialogs({session_, regWorker_, pendingChanges_, formBook_, options.askBeforeDiscarding});
}

void Program::addDialogs(const dialogs::DialogParts& parts) {
  for (const DialogRow& row : kDialogs) {
    if (row.make == nullptr) continue;
    formBook_.add(std::string(row.form.name), [parts, &row] { return row.make(parts); });
  }
  formBook_.add(dialogs::frmOffice::kName, [this, parts] {
    return std::make_unique<dialogs::frmOffice>(parts, registryBacker_);
  });
  formBook_.add(dialogs::frmFA::kName, [this] {
    return std::make_unique<dialogs::frmFA>(session_, formBook_, registryBacker_, restoreDesk_);
  });
  formBook_.add(dialogs::frmRestore::kName,
                [this] { return std::make_unique<dialogs::frmRestore>(session_, restoreDesk_); });
  formBook_.add(dialogs::frmPathSelecter::kName, [this] {
    return std::make_unique<dialogs::frmPathSelecter>(session_, folderDesk_);
  });
  formBook_.add(dialogs::frmLogin::kName,
                [this] { return std::make_unique<dialogs::frmLogin>(session_, password_); });
  formBook_.add(dialogs::frmPassword::kName,
                [this] { return std::make_unique<dialogs::frmPassword>(session_, password_); });
  formBook_.add(dialogs::frmLogon_Bitmap::kName, [this, parts] {
    return std::make_unique<dialogs::frmLogon_Bitmap>(parts, logonBitmapDesk_);
  });
  formBook_.add(dialogs::frmRestrictRun::kName, [this, parts] {
    return std::make_unique<dialogs::frmRestrictRun>(parts, logonBitmapDesk_);
  });
  formBook_.add(dialogs::frmAbout::kName,
                [this] { return std::make_unique<dialogs::frmAbout>(session_); });
}

Program::~Program() { formBook_.setHost(nullptr); }

StartResult Program::start() {
  const auto& mainWindow = dynamic_cast<const frmMain&>(formBook_.load(kMainWindow));
  StartResult result = mainWindow.startResult();
  if (result == StartResult::Started && session_.endRequested()) result = StartResult::Failed;
  if (result != StartResult::Started) {
    finish();
    return result;
  }
  // What a run that never ended left in the dialogs' banks: nobody remembers having clicked it.
  for (int bank = kFirstBankOfDialogs; bank <= kLastBank; ++bank) {
    pendingChanges_.discard(static_cast<engine::Bank>(bank));
  }
  return result;
}

bool Program::finish() {
  // The main window goes last: the others record in keys that go with it.
  for (const FormRow& form : kForms) {
    if (form.name != kMainWindow && !formBook_.unload(form.name)) return false;
  }
  return formBook_.unload(kMainWindow);
}

void Program::openSet(const std::string& profile) {
  dynamic_cast<frmMain&>(formBook_.load(kMainWindow)).openSet(profile);
}

std::optional<std::string> Program::pickFolder(std::string_view prompt) {
  folderDesk_.prompt = prompt;
  formBook_.showModal(dialogs::frmPathSelecter::kName);
  folderDesk_.prompt.clear();
  return std::exchange(folderDesk_.folder, std::nullopt);
}

int Program::run(forms::FormHost& host) {
  formBook_.setHost(&host);
  if (!dialogs::ValidateKorvexSecurity(session_, formBook_, password_)) return kExitFailed;
  switch (start()) {
    case StartResult::Started:
      break;
    case StartResult::SecondInstance:
      return kExitBusy;
    default:
      return kExitFailed;
  }
  session_.onEndRequested = [this] {
    if (forms::Form* mainWindow = formBook_.loaded(kMainWindow)) mainWindow->close();
  };
  formBook_.showModal(kMainWindow);
  session_.onEndRequested = nullptr;
  return kExitDone;
}

}  // namespace korvex::program
