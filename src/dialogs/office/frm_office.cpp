// The groups of the window, Apply and Restore Defaults.
#include "dialogs/office/frm_office.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "dialogs/office/running_applications.h"
#include "engine/at_once.h"
#include "engine/catalogue.h"
#include "engine/numeral_field.h"
#include "engine/office.h"
#include "engine/reading_order.h"

namespace korvex::dialogs {

using engine::Tweak;
using forms::Layout;

namespace {

constexpr const char* kWord = "Microsoft Word";
constexpr const char* kExcel = "Microsoft Excel";
constexpr const char* kPowerPoint = "Microsoft PowerPoint";
constexpr const char* kAssistant = "Office Assistant";
constexpr const char* kJournaling = "Journaling";
constexpr int kAccess = 6;

std::vector<forms::Tab> groups() {
  return {
      {"&Word", "WORD", " Customize Microsoft Word "},
      {"E&xcel", "EXCEL", " Customize Microsoft Excel "},
      {"&PowerPoint", "POWERPOINT", " Customize Microsoft PowerPoint "},
      {"A&ssistant", "ASSISTANT", " Customize the Office Assistant "},
      {"&Journaling", "JOURNALING", " What Outlook keeps a journal of "},
      {"A&ccess/Jet", "ACCESS", " Settings of the Jet database engine "},
  };
}

constexpr std::string_view kFont = "Font";
constexpr const char* kDefaultFont = "Arial";
constexpr int kDefaultPoints = 10;
constexpr int kMostPoints = 409;  // that Excel takes

// "Arial,10": name and points.
platform::FontChoice fontIn(const std::string& text) {
  platform::FontChoice font{.name = kDefaultFont, .points = kDefaultPoints};
  const std::size_t comma = text.rfind(',');
  if (comma == std::string::npos || comma == 0) return font;
  const auto points = engine::numberIn(std::string_view(text).substr(comma + 1));
  if (!points || *points == 0 || *points > kMostPoints) return font;
  font.name = text.substr(0, comma);
  font.points = static_cast<int>(*points);
  return font;
}

// What Restore Defaults writes, in this order.
constexpr std::array<std::string_view, 6> kDefaulted{"P_DefSheets",          "P_DefFileMRU",
                                                     "P_WriteAutoCalculate", "P_UndoHistory",
                                                     "P_CacheSize",          "P_BitmapMemory"};

bool isOfOffice(const Tweak& row) { return row.root == engine::HKCU; }

}  // namespace

frmOffice::frmOffice(const DialogParts& parts, backup::RegistryBacker& registryBacker)
    : TweakDialog(kName, "Korvex...for Power Users - MS Office", engine::Bank::Office, parts),
      tabOffice(*this, "tabOffice", groups()),
      txtExcelFont(*this, "txtExcelFont", {.widthInCharacters = 30, .readOnly = true}),
      folders_(*this, parts),
      actors_(*this, parts),
      jet_(*this, parts, registryBacker,
           JetPanel::Rows{[this](const Which& which) { return waits(which); },
                          [this](const Which& which) { readRows(which); }}) {
  lblOffice.Visible = false;
  cmdDefaults.ToolTipText = "Gives the fields of Word and Excel and all of Jet their defaults";
  cmdDefaults.WhatsThis =
      "Writes DefSheets, DefFileMRU, AutoCalculate, UndoHistory, CacheSize and BitmapMemory, and "
      "puts the keys Software\\Microsoft\\Jet and Software\\Microsoft\\Access back as they were "
      "before the first change.";
  txtExcelFont.ToolTipText = "The font of new workbooks...default is Arial, 10";
  txtExcelFont.WhatsThis = "The value Font of Excel's options: name and points.";
  cmdExcelDefaultFont.ToolTipText = "Choose the font of new workbooks; written at once";
  cmdExcelViewMRUList.ToolTipText = "Shows the files that Excel opened last";
  arrange();
  connectButtons();
}

Layout frmOffice::groupWith(const char* title, std::vector<Layout> below) {
  Layout group = takeGroup(title);
  for (Layout& part : below) group.parts.push_back(std::move(part));
  return Layout::column({std::move(group)});
}

void frmOffice::arrange() {
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  const bool hasRecentFiles = parts().formBook.knows("frmMRUs");
  Layout excelButtons = Layout::row({of(lblExcelFont), of(txtExcelFont), of(cmdExcelDefaultFont)});
  std::vector<Layout> excel{folders_.layout(kExcel), std::move(excelButtons)};
  if (hasRecentFiles) excel.push_back(Layout::row({of(cmdExcelViewMRUList), Layout::space()}));
  cmdExcelViewMRUList.Visible = hasRecentFiles;
  std::vector<Layout> pages;
  pages.push_back(groupWith(kWord, {folders_.layout(kWord)}));
  pages.push_back(groupWith(kExcel, std::move(excel)));
  pages.push_back(groupWith(kPowerPoint, {folders_.layout(kPowerPoint)}));
  pages.push_back(groupWith(kAssistant, {actors_.layout()}));
  pages.push_back(groupWith(kJournaling, {}));
  pages.push_back(jet_.layout([this](std::string_view title) { return takeGroup(title); }));
  layout =
      Layout::column({of(lblOffice), Layout::pages(tabOffice, std::move(pages)),
                      Layout::row({Layout::space(), of(cmdDefaults), of(cmdApply), of(cmdDone)})});
}

void frmOffice::connectButtons() {
  const auto on = [this](forms::CommandButton& button, void (frmOffice::*handler)()) {
    button.Click += [this, &button, handler] {
      trap(button.name() + "_Click", [this, handler] { (this->*handler)(); });
    };
  };
  on(cmdExcelDefaultFont, &frmOffice::cmdExcelDefaultFont_Click);
  on(cmdExcelViewMRUList, &frmOffice::cmdExcelViewMRUList_Click);
  on(cmdDefaults, &frmOffice::cmdDefaults_Click);
  tabOffice.Click += [this] { trap("tabOffice_Click", [this] { tabOffice_Click(); }); };
}

void frmOffice::Load() {
  session().trace.enter("[frmOffice_Load]");
  jet_.begin();
  TweakDialog::Load();
  const bool noRecord = std::exchange(session().g_bNoRecord, true);
  trap("p_SetOfficeFrames", [this] { p_SetOfficeFrames(session().g_iOfficeLastTab); });
  session().g_bNoRecord = noRecord;
  if (session().g_iOfficeVer == 0) disableWithoutOffice();
}

// What the rows stand for beyond their own controls says itself why it cannot be used.
void frmOffice::disableWithoutOffice() {
  lblOffice.Visible = true;
  for (forms::Control* control : controls()) {
    if (control == &cmdDone || control == &tabOffice ||
        control->kind() == forms::ControlKind::Label) {
      continue;
    }
    control->Enabled = false;
    control->ToolTipText = std::string(engine::kOnlyOffice97And2000);
  }
}

void frmOffice::Unload() {
  trap("Form_Unload", [this] {
    jet_.end();
    // The whole bank: nothing of it is anybody else's.
    const std::string_view bank = engine::bankKey(engine::Bank::Office);
    if (platform::OpenKey(session().registry(), engine::HKLM, bank, platform::KEY_QUERY_VALUE)
            .status() == platform::ERROR_SUCCESS) {
      session().trace.dump("lRetVal&", session().regTool.DeleteRegNodes(engine::HKLM, bank));
    }
  });
  TweakDialog::Unload();
}

void frmOffice::p_SetOfficeFrames(int group) {
  session().trace.enter("[frmOffice.p_SetOfficeFrames]");
  const int last = static_cast<int>(tabOffice.tabs().size());
  tabOffice.SelectedItem = group >= 1 && group <= last ? group : 1;
}

void frmOffice::tabOffice_Click() {
  session().g_iOfficeLastTab = static_cast<std::int16_t>(tabOffice.SelectedItem.get());
  // Not while the window is being filled: reading writes nothing.
  if (tabOffice.SelectedItem == kAccess && !session().g_bNoRecord) jet_.cmdAccess_Click();
}

void frmOffice::readMore() {
  folders_.read();
  actors_.read();
  showExcelFont();
  jet_.p_DetermineAccessDefaultValues();
  traceCounters();
}

// What each group's reader has read, in the trace.
void frmOffice::traceCounters() {
  for (const engine::GroupReader& reader : engine::kGroupReaders) {
    const auto rows = std::ranges::count_if(engine::allTweaks(), [&reader](const Tweak* row) {
      return row->form == kName && row->group == reader.group;
    });
    session().trace.enter(fmt::format("[{}]: iCnt%={}", reader.routine, rows));
  }
}

void frmOffice::showExcelFont() {
  std::string text;
  const platform::Status status =
      engine::storedText(session(), engine::HKCU, engine::excelOptionsKey(session()), kFont, text);
  session().trace.dump("lRetVal&", status);
  if (status != platform::ERROR_SUCCESS) {
    txtExcelFont.Text = fmt::format("({})", platform::describeStatus(status));
    return;
  }
  const platform::FontChoice font = fontIn(text);
  txtExcelFont.Text = fmt::format("{}, {}", font.name, font.points);
}

void frmOffice::cmdExcelDefaultFont_Click() {
  session().trace.enter("[frmOffice.cmdExcelDefaultFont]");
  const std::string_view key = engine::excelOptionsKey(session());
  std::string text;
  engine::storedText(session(), engine::HKCU, key, kFont, text);
  const auto font = session().prompts().pickFont(fontIn(text), "New default font for Excel");
  if (!font || font->name.empty()) return;
  const std::string stored = fmt::format("{},{}", font->name, font->points);
  if (fontIn(stored).name != font->name) {
    engine::tell(session(), fmt::format("Excel takes fonts of 1 to {} points.", kMostPoints));
    return;
  }
  engine::changeOrTell(session(), "Operation failed.", platform::kIconCritical, [&] {
    return engine::putText(session(), engine::HKCU, key, kFont, stored);
  });
  showExcelFont();
}

void frmOffice::cmdExcelViewMRUList_Click() {
  session().trace.enter("[frmOffice.cmdExcelViewMRUList]");
  session().trace.enter("[Excel MRU list]");
  parts().formBook.showModal("frmMRUs");
}

bool frmOffice::mayApply() {
  if (p_CheckForLoadedAppsRestore(session())) return false;
  // Before the first change: the files are to hold what stood there then.
  const bool ofJet = waits([](const Tweak& row) { return !isOfOffice(row); });
  return !ofJet || jet_.backUpOnce();
}

// The fields of Office in the order of their rows; of Jet the six texts, then the others in the
// order in which they were changed.
std::vector<engine::FailedRoutine> frmOffice::writeFields(engine::ValueFields& fields) {
  using Order = engine::ValueFields::Order;
  auto failures = fields.write(isOfOffice);
  for (const auto& written :
       {fields.write(JetPanel::isWrittenFirst),
        fields.write(
            [](const Tweak& row) { return !isOfOffice(row) && !JetPanel::isWrittenFirst(row); },
            Order::OfEdits)}) {
    failures.insert(failures.end(), written.begin(), written.end());
  }
  return failures;
}

void frmOffice::cmdDefaults_Click() {
  session().trace.enter("[frmOffice.cmdDefaults_Click]");
  if (!engine::askYesNo(session(), "Restore Office settings to default?")) return;
  if (p_CheckForLoadedAppsRestore(session())) return;
  std::vector<engine::FailedRoutine> failures;
  const bool restored = jet_.restoreBackups();
  if (restored) {
    session().g_bDefaulting = true;
    for (const std::string_view routine : kDefaulted) {
      if (!parts().regWorker.call(routine)) {
        failures.push_back({std::string(routine), parts().regWorker.lastStatus});
      }
    }
    session().g_bDefaulting = false;
    engine::finishApply(session(), failures);
  }
  readRows([](const Tweak&) { return true; });
  const bool noRecord = std::exchange(session().g_bNoRecord, true);
  readMore();
  session().g_bNoRecord = noRecord;
}

}  // namespace korvex::dialogs
