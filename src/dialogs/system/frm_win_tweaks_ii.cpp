// The parts of the window, its guards, and what its buttons write.
#include "dialogs/system/frm_win_tweaks_ii.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

#include "dialogs/system/search_engines.h"
#include "engine/at_once.h"
#include "engine/numeral_field.h"

namespace korvex::dialogs {

using engine::askYesNo;
using engine::tell;
using forms::Layout;
using platform::ERROR_SUCCESS;
using platform::Status;

namespace {

constexpr std::array kOpeners{
    Opener{"cmdAdjustShellFolders", "S&hare Common Folders",
           "Opens a window that moves the folders of the user, such as Desktop and Favorites",
           "frmShellFolders"},
    Opener{"cmdFastFileAccess", "Fast Fi&le Access",
           "Opens a window that makes a program start by its bare name", "frmFastFileAccess"},
    Opener{"cmdMoniker", "Create moniker for IE Favorite bookmark",
           "Opens a window that gives an address a short name", "frmMoniker"},
    Opener{"cmdExplorerTitleBar", "Change Internet E&xplorer title bar",
           "Opens a window that sets what the browser's title bar says", "frmIETitleBar"},
    Opener{"cmdAddIPAddresses", "Assign additional IP addresses to a single &NIC card",
           "Opens a window that gives the first network card further addresses", "frmIPAddresses"},
    Opener{"cmdEditAddRemove", "Remove entry from Control Panel's Add&/Remove applet",
           "Opens a window with the programs that can be uninstalled", "frmAddRemove"},
};

constexpr std::string_view kBinding = "System\\CurrentControlSet\\Services\\Class\\NetTrans\\0000";
constexpr const char* kNoBinding =
    "There is no TCP/IP binding that Windows 95, 98 or Millennium keeps (NetTrans\\0000).";
constexpr std::string_view kPowerToysVerb = "Directory\\Shell\\DosHere";
constexpr const char* kNeedsBrowser = "Needs Internet Explorer 3 or later.";
constexpr int kFirstBrowser = 3;  // that searches, and completes addresses

bool hasKey(foundation::Session& session, engine::Root root, std::string_view key) {
  return platform::OpenKey(session.registry(), root, key, platform::KEY_QUERY_VALUE).status() ==
         ERROR_SUCCESS;
}

void disable(std::initializer_list<forms::Control*> controls, const std::string& reason) {
  for (forms::Control* control : controls) {
    control->Enabled = false;
    control->ToolTipText = reason;
  }
}

}  // namespace

frmWinTweaksII::frmWinTweaksII(const DialogParts& parts)
    : TweakDialog(kName, "Korvex...for Power Users - Win Tweaks II", engine::Bank::WinTweaksII,
                  parts, "cmdMainApply"),
      domains_(parts.session) {
  describeControls();
  arrange();
  connectButtons();
}

void frmWinTweaksII::describeControls() {
  cmdlblIconCache.ToolTipText =
      "Lets Explorer keep more icons ready...default is 512...restart required";
  cmdlblIconCache.WhatsThis =
      "Writes the text value Max Cached Icons at once, and on Windows 95, 98 and Millennium the "
      "same number as maxcachefile in system.ini, section vcache.";
  cmdRebuildIconCache.ToolTipText =
      "Deletes the file with Explorer's icons, so that wrong ones are drawn anew";
  cboIEDefaultSearch.ToolTipText = "Which engine is asked for words typed as an address";
  cboIEDefaultSearch.WhatsThis =
      "Writes the default value of Software\\Microsoft\\Internet Explorer\\SearchURL of the user "
      "as soon as an engine is chosen.";
  cboExplorerSearch.ToolTipText =
      "What is put behind a single word typed as an address...default is 'com', 'edu', 'org'";
  cboExplorerSearch.WhatsThis =
      "The values 1, 2 and so on of Software\\Microsoft\\Internet Explorer\\Main\\UrlTemplate. "
      "They are tried in this order.";
  cmdRemoveExplorerDomain.ToolTipText = "Take the selected domain out of the list, at once";
  txtAddExplorerDomain.ToolTipText = "A domain to try after the others, such as net or co.uk";
  cmdApply.ToolTipText = "Add the new domain to the list, at once";
}

void frmWinTweaksII::arrange() {
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  const std::string domains = fraExplorerSearchDomain.Caption.get();
  addTo("Icon cache", Layout::row({of(cmdlblIconCache), Layout::space()}));
  addTo("Icon cache", Layout::row({of(cmdRebuildIconCache), Layout::space()}));
  addTo("Search", of(lblIEDefaultSearch));
  addTo("Search", Layout::row({of(cboIEDefaultSearch), Layout::space()}));
  addTo(domains,
        Layout::grid(3, {of(lblExplorerSearch), of(cboExplorerSearch), of(cmdRemoveExplorerDomain),
                         of(lblAddExplorerDomain), of(txtAddExplorerDomain), of(cmdApply)}));
  enclose(fraExplorerSearchDomain);
  for (const Opener& row : kOpeners) addOpener("More", row);
}

void frmWinTweaksII::connectButtons() {
  const auto on = [this](forms::Event& event, const char* routine,
                         void (frmWinTweaksII::*handler)()) {
    event += [this, routine, handler] {
      if (filling_ || session().g_bNoRecord) return;
      trap(routine, [this, handler] { (this->*handler)(); });
    };
  };
  on(cmdlblIconCache.Click, "cmdlblIconCache_Click", &frmWinTweaksII::cmdlblIconCache_Click);
  on(cmdRebuildIconCache.Click, "cmdRebuildIconCache_Click",
     &frmWinTweaksII::cmdRebuildIconCache_Click);
  on(cboIEDefaultSearch.Click, "cboIEDefaultSearch_Click",
     &frmWinTweaksII::cboIEDefaultSearch_Click);
  on(cmdApply.Click, "cmdApply_Click", &frmWinTweaksII::cmdApply_Click);
  on(cmdRemoveExplorerDomain.Click, "cmdRemoveExplorerDomain_Click",
     &frmWinTweaksII::cmdRemoveExplorerDomain_Click);
}

void frmWinTweaksII::Load() {
  trap("p_ValidateControls", [this] { p_ValidateControls(); });
  TweakDialog::Load();
}

// What is none of the rows' business: those tell themselves what they lack.
void frmWinTweaksII::p_ValidateControls() {
  session().trace.enter("[p_ValidateControls]");
  forms::Control* addresses = find("cmdAddIPAddresses");
  if (addresses != nullptr && !hasKey(session(), engine::HKLM, kBinding)) {
    disable({addresses}, kNoBinding);
  }
  if (session().g_iExplrVer < kFirstBrowser) {
    disable({&cboIEDefaultSearch, &cboExplorerSearch, &cmdRemoveExplorerDomain,
             &txtAddExplorerDomain, &cmdApply},
            kNeedsBrowser);
  }
}

void frmWinTweaksII::readMore() {
  p_DetermineIEDefaultSearch();
  if (readDomains()) p_InitializeSearchDomains("", 0);
}

bool frmWinTweaksII::accepts(const engine::Tweak& tweak, const forms::CheckBox& box) {
  const bool checked = box.Value == forms::vbChecked;
  if (tweak.property == "P_rwOpenWith") {
    session().trace.enter("[frmWinTweaksII.chkOpenWith_Click]");
    return !checked || acceptsOpenWith();
  }
  return tweak.property != "P_rwRightClickDOS" || !checked || acceptsDosBox();
}

bool frmWinTweaksII::acceptsOpenWith() {
  if (!session().machine().windows().FindWindowA("MOM Parent", "")) return true;
  return askYesNo(session(),
                  "This option will break the MS Office Shortcut bar.\r\n"
                  "For more information select the '?' in the upper right\r\n"
                  "corner and drop it onto this option.\r\n"
                  "Do you wish to continue?");
}

// A second command of the same kind would only crowd the menu: the box stays clear.
bool frmWinTweaksII::acceptsDosBox() {
  if (!hasKey(session(), engine::HKCR, kPowerToysVerb)) return true;
  tell(session(),
       "This function is already being provided by the PowerToys.\r\n"
       "There is no need to add this functionality again.",
       platform::kIconExclamation);
  return false;
}

void frmWinTweaksII::cmdlblIconCache_Click() {
  session().trace.enter("[cmdlblIconCache_Click]");
  std::string size;
  const Status status = iconCacheSize(session(), size);
  if (status != ERROR_SUCCESS) {
    tell(
        session(),
        fmt::format("The icon cache size could not be read: {}.", platform::describeStatus(status)),
        platform::kIconExclamation);
    return;
  }
  while (true) {
    const std::string answer =
        session()
            .prompts()
            .inputBox("Enter a new upper limit to the icon cache size. Default is 512.",
                      "Change icon cache size", size)
            .value_or("");
    if (answer.empty()) return session().trace.add("USER_CANCEL");
    if (engine::takesNumeral(answer)) {
      if (!finishIconCache("The icon cache size", setIconCacheSize(session(), answer))) return;
      session().g_bRebootNeeded = true;
      return tell(session(),
                  "Resizing of your icon cache file will occur at the next reboot of the system.");
    }
    tell(session(),
         "The cache size value should be a numerical value only.\r\n\r\n"
         "Please check the value entered and try again.");
  }
}

void frmWinTweaksII::cmdRebuildIconCache_Click() {
  session().trace.enter("[cmdRebuildIconCache_Click]");
  if (!askYesNo(session(), "Rebuild icon cache file?")) return;
  const IconCacheChange change = deleteIconCache(session());
  if (change.status == platform::ERROR_FILE_NOT_FOUND) {
    return tell(session(), "There is no icon cache file. Windows makes one when it starts next.");
  }
  if (!finishIconCache("The icon cache file", change)) return;
  StatusText = "The icon cache file is deleted. Windows makes a new one when it starts next.";
}

bool frmWinTweaksII::finishIconCache(const std::string& what, const IconCacheChange& change) {
  if (change.takenBack == ERROR_SUCCESS) {
    return engine::finishAtOnce(session(), what, change.status);
  }
  session().trace.dump("lRetVal&", change.status);
  tell(session(),
       fmt::format("{} could not be changed: {}.\r\nThe files of Windows could not be put back as "
                   "they were: {}.",
                   what, platform::describeStatus(change.status),
                   platform::describeStatus(change.takenBack)),
       platform::kIconExclamation);
  return false;
}

void frmWinTweaksII::p_DetermineIEDefaultSearch() {
  session().trace.enter("[p_DetermineIEDefaultSearch]");
  const Status status = readSearchEngine(session(), engine_);
  if (status != ERROR_SUCCESS) session().trace.dump("lRetVal&", status);
  session().trace.dump("cboIEDefaultSearch.Text$", engine_);
  filling_ = true;
  cboIEDefaultSearch.Clear();
  for (const SearchEngine& engine : searchEngines()) {
    cboIEDefaultSearch.AddItem(std::string(engine.name));
  }
  // Only where it is what stands there: nobody could choose it.
  if (engine_ == kUnknownEngine) cboIEDefaultSearch.AddItem(engine_);
  showEngine(engine_);
  filling_ = false;
}

void frmWinTweaksII::showEngine(const std::string& name) {
  const bool wasFilling = std::exchange(filling_, true);
  const auto& items = cboIEDefaultSearch.items();
  const auto item = std::ranges::find(items, name);
  cboIEDefaultSearch.ListIndex = item == items.end() ? -1 : static_cast<int>(item - items.begin());
  filling_ = wasFilling;
}

void frmWinTweaksII::cboIEDefaultSearch_Click() {
  const std::string chosen = cboIEDefaultSearch.selectedItem();
  if (chosen == engine_) return;
  const auto engines = searchEngines();
  const auto engine = std::ranges::find(engines, chosen, &SearchEngine::name);
  if (engine == engines.end()) {
    showEngine(engine_);
    return tell(session(), "You cannot write an unknown address as the default search URL.");
  }
  const bool written = engine::changeAtOnce(session(), "The default search engine",
                                            [&] { return writeSearchEngine(session(), *engine); });
  if (written) engine_ = chosen;
  showEngine(engine_);
}

bool frmWinTweaksII::readDomains() {
  const Status status = domains_.read();
  if (status == ERROR_SUCCESS) return true;
  session().trace.dump("lRetVal&", status);
  disable(
      {&cboExplorerSearch, &cmdRemoveExplorerDomain, &txtAddExplorerDomain, &cmdApply},
      fmt::format("The search domains could not be read: {}.", platform::describeStatus(status)));
  return false;
}

void frmWinTweaksII::p_InitializeSearchDomains(const std::string& selected, int otherwise) {
  const bool wasFilling = std::exchange(filling_, true);
  cboExplorerSearch.Clear();
  for (const std::string& domain : domains_.names()) cboExplorerSearch.AddItem(domain);
  const auto& items = cboExplorerSearch.items();
  const auto item = std::ranges::find(items, selected);
  const int place = item == items.end() ? std::min(otherwise, cboExplorerSearch.ListCount() - 1)
                                        : static_cast<int>(item - items.begin());
  cboExplorerSearch.ListIndex = place;
  filling_ = wasFilling;
}

void frmWinTweaksII::cmdApply_Click() {
  session().trace.enter("[frmWinTweaksII.cmdApply_Click]");
  const std::string domain = tidyDomain(txtAddExplorerDomain.Text.get());
  const std::string wrong = whyNoDomain(domain);
  if (!wrong.empty()) return tell(session(), wrong);
  if (!readDomains()) return;
  if (domains_.has(domain)) {
    return tell(session(), fmt::format("The domain .{} is in the list already.", domain));
  }
  domains_.add(domain);
  if (writeDomains()) txtAddExplorerDomain.Text = "";
  p_InitializeSearchDomains(domain, 0);
}

void frmWinTweaksII::cmdRemoveExplorerDomain_Click() {
  session().trace.enter("[cmdRemoveExplorerDomain_Click]");
  if (cboExplorerSearch.ListCount() == 0) {
    return tell(session(), "There are no search domains to remove.");
  }
  const int place = cboExplorerSearch.ListIndex;
  const std::string domain = cboExplorerSearch.selectedItem();
  if (domain.empty()) return tell(session(), "Select the search domain to remove.");
  if (!askYesNo(session(), fmt::format("Remove .{} domain?", domain))) return;
  if (!readDomains()) return;
  domains_.remove(domain);
  writeDomains();
  p_InitializeSearchDomains("", place);
}

// After a failure the list is again what the machine has.
bool frmWinTweaksII::writeDomains() {
  const bool written = engine::changeAtOnce(session(), "The list of search domains",
                                            [this] { return domains_.write(); });
  return readDomains() && written;
}

}  // namespace korvex::dialogs
