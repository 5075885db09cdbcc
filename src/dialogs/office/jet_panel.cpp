// Choosing an engine or format, and whose settings.
#include "dialogs/office/jet_panel.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "engine/at_once.h"
#include "engine/catalogue.h"
#include "engine/catalogue/rows.h"
#include "engine/jet.h"
#include "engine/raw_value.h"
#include "engine/readers.h"
#include "engine/reading_order.h"
#include "engine/tweak_controls.h"
#include "foundation/error_handler.h"

namespace korvex::dialogs {

using engine::HKLM;
using engine::kConfigurationKey;
using engine::Tweak;
using forms::Layout;
using platform::ERROR_SUCCESS;
using platform::Status;

// A format that Jet reads besides its own.
struct JetPanel::Format {
  std::string_view entry;  // of the list
  const char* group;       // of the rows, and the frame's caption
  const char* frame;
};

namespace {

constexpr const char* kEngineGroup = "ENGINE INITIALIZATION SETTINGS";
constexpr std::string_view kTextEntry = "TEXT";
constexpr std::string_view kJet2x = "JET 2.X";
constexpr std::string_view kJetSelect = "JetSelect";
constexpr std::string_view kJetGlobal = "JetGlobal";
constexpr int kEntries = 7;
constexpr int kKeyWidth = 60;
constexpr const char* kListTip = "Whose settings are shown: a Jet engine or a format it reads";
constexpr const char* kGlobalTip =
    "Checked: the settings of all programs. Unchecked: Access's own...default is checked";
constexpr const char* kKeyTip = "The registry key of what is shown, to be copied";

// What the fields of Jet 2.x are called, and what they say, where that is not as in the others.
struct Jet2x {
  std::string_view value;
  const char* toolTip;
  const char* caption = "";
};
constexpr std::array kJet2xTexts{
    Jet2x{"LockRetry", " Integer value...default is 20 "},
    Jet2x{"CommitLockRetry", " Integer value...default is 20 "},
    Jet2x{"LockDelay", " Measured in milliseconds..Integer value "},
    Jet2x{"SharedAsyncDelay", " Measured in milliseconds..Integer value ",
          "SharedAsyncDelay (millisec)"},
    Jet2x{"LockedPageTimeout", " Measured in miliseconds..Integer value...default is .5 sec ",
          "LockedPageTimeout (millisec)"},
    Jet2x{"FlushTransactionTimeout",
          " Measured in milliseconds..Integer value...default is .5 sec ",
          "FlushTransactionTimeout (millisec)"},
    Jet2x{"ForceOSFlush", " Integer value...default is 0 "},
    Jet2x{"PagesLockedToTableLock", " Integer value...default is 0 "},
    Jet2x{"IdleFrequency", " Measured in milliseconds..Integer value...default is 1 sec ",
          "IdleFrequency (milisec)"},
    Jet2x{"ReadAheadPages", " Integer value...default is 16 "},
    Jet2x{"Threads", " Integer value...default is 3 "},
    Jet2x{"UserCommitSync", " 'Yes' or 'No' value...default is 'Yes' "},
    Jet2x{"ImplicitCommitSync", " 'Yes' or 'No' value...default is 'No' "},
    Jet2x{"ExclusiveAsyncDelay", " Measured in milliseconds..Integer value...default is 2 sec ",
          "ExclusiveAsyncDelay (millisec)"},
    Jet2x{"CursorTimeout", " Measured in miliseconds..Integer value...default is 5 sec ",
          "CursorTimeout (millisec)"},
    Jet2x{"PageTimeout", " Measured in milliseconds..Integer value...default is 5 sec "},
    Jet2x{"MaxLocksPerFile", " Integer value...default is 9500 "},
};

constexpr std::array<std::string_view, 6> kWrittenFirst{
    "Date", "DataCodePage", "CollatingSequence", "CharacterSet", "Format", "ImportMixedTypes"};

bool isOfJet(const Tweak& row) { return row.bank == engine::Bank::Office && row.root == HKLM; }
bool isOfEngine(const Tweak& row) { return row.adapt == engine::keyOfEngine; }

std::vector<const Tweak*> rowsThat(const std::function<bool(const Tweak&)>& which) {
  std::vector<const Tweak*> rows;
  for (const Tweak* row : engine::allTweaks()) {
    if (isOfJet(*row) && which(*row)) rows.push_back(row);
  }
  return rows;
}

// Many boxes below each other stand in two columns instead, above the fields.
Layout compact(Layout group) {
  constexpr std::ptrdiff_t kMostBoxes = 8;
  const auto isBox = [](const Layout& part) { return part.kind == Layout::Kind::Control; };
  const auto boxes = std::ranges::find_if_not(group.parts, isBox);
  if (boxes - group.parts.begin() <= kMostBoxes) return group;
  std::vector<Layout> columns(std::make_move_iterator(group.parts.begin()),
                              std::make_move_iterator(boxes));
  group.parts.erase(group.parts.begin() + 1, boxes);
  group.parts.front() = Layout::row({Layout::grid(2, std::move(columns)), Layout::space()});
  return group;
}

// The fields in two halves beside each other, or below each other where there is not the room. A
// grid's parts are labels and fields in turn.
Layout inHalves(Layout group) {
  std::vector<Layout> pairs = std::move(group.parts.back().parts.front().parts);
  const auto middle = pairs.begin() + static_cast<std::ptrdiff_t>((pairs.size() / 2 + 1) / 2 * 2);
  std::vector<Layout> second(std::make_move_iterator(middle), std::make_move_iterator(pairs.end()));
  pairs.erase(middle, pairs.end());
  group.parts.back() =
      Layout::flow({Layout::grid(2, std::move(pairs)), Layout::grid(2, std::move(second))});
  return group;
}

void show(forms::Form& form, const Tweak& row, const std::string& text) {
  if (auto* box = form.find<forms::TextBox>(row.control)) box->Text = text;
  if (auto* list = form.find<forms::ComboBox>(row.control)) list->Text = text;
}

}  // namespace

const std::array<JetPanel::Format, 4>& JetPanel::formats() {
  static constexpr std::array kFormats{
      Format{kTextEntry, "Text", "fraJetText"},
      Format{"EXCEL", "Excel", "fraJetExcel"},
      Format{"ODBC", "ODBC", "fraJetODBC"},
      Format{"XBASE", "xBase", "fraJetXBase"},
  };
  return kFormats;
}

std::string_view JetPanel::groupOf(std::string_view entry) {
  const auto format = std::ranges::find(formats(), entry, &Format::entry);
  return format == formats().end() ? kEngineGroup : format->group;
}

JetPanel::JetPanel(forms::Form& form, const DialogParts& parts,
                   backup::RegistryBacker& registryBacker, Rows rows)
    : form_(form),
      parts_(parts),
      session_(parts.session),
      rows_(std::move(rows)),
      backups_(parts.session, registryBacker),
      lstJetEngines_(form.own<forms::ListBox>("lstJetEngines", kEntries)),
      lblJetEngines_(
          form.own<forms::Label>("lblJetEngines", "&Engines and formats:", &lstJetEngines_)),
      chkGlobal_(form.own<forms::CheckBox>("chkGlobal", "&Global (all programs)")),
      txtEngineKey_(form.own<forms::TextBox>(
          "txtEngineKey", forms::TextBoxOptions{.widthInCharacters = kKeyWidth, .readOnly = true})),
      lblEngineKey_(form.own<forms::Label>("lblEngineKey", "&Key:", &txtEngineKey_)),
      extensions_(form, parts.session, [this] { return backUpOnce(); }),
      fraEIS_(form.own<forms::Frame>("fraEIS", kEngineGroup)),
      fraISAM_(form.own<forms::Frame>("fraISAM", "ISAM Settings")) {
  for (std::size_t i = 0; i < formats().size(); ++i) {
    frames_[i] = &form.own<forms::Frame>(formats()[i].frame, formats()[i].group);
  }
  lstJetEngines_.WhatsThis =
      "What the newest Jet of this machine has; the value JetVersion of the key "
      "HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvex\\Configuration, \"3.5\" say, makes it an older one "
      "that "
      "is there, too. Its value JetModify as DWORD 0 keeps all settings of Jet from being changed.";
  chkGlobal_.WhatsThis =
      "Checked, the key of the Jet engine itself is meant, which is for all programs; unchecked, "
      "Access's copy of it, which is for Access alone. Nothing is written by choosing.";
  chkGlobal_.Value = forms::vbChecked;
  const auto on = [this](forms::Event& event, const char* routine, void (JetPanel::*handler)()) {
    event += [this, routine, handler] {
      if (filling_) return;
      foundation::guarded(session_, routine, [this, handler] { (this->*handler)(); });
    };
  };
  on(lstJetEngines_.Click, "lstJetEngines_Click", &JetPanel::lstJetEngines_Click);
  on(chkGlobal_.Click, "chkGlobal_Click", &JetPanel::chkGlobal_Click);
}

Layout JetPanel::layout(const std::function<Layout(std::string_view)>& takeGroup) {
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  const auto framed = [this](forms::Frame& frame, Layout group) {
    insides_.push_back({&frame, controlsIn(group)});
    group.control = &frame;
    return group;
  };
  std::vector<Layout> formatGroups;
  for (std::size_t i = 0; i < formats().size(); ++i) {
    Layout group = compact(takeGroup(formats()[i].group));
    if (formats()[i].entry == kTextEntry) group.parts.push_back(extensions_.layout());
    formatGroups.push_back(framed(*frames_[i], std::move(group)));
  }
  Layout isam = Layout::group("ISAM Settings", std::move(formatGroups));
  isam.control = &fraISAM_;
  Layout choice = Layout::row(
      {Layout::column({of(lblJetEngines_), of(lstJetEngines_)}),
       Layout::column({of(lblEngineKey_), of(txtEngineKey_), of(chkGlobal_), Layout::space()})});
  return Layout::column({std::move(choice), framed(fraEIS_, inHalves(takeGroup(kEngineGroup))),
                         std::move(isam), Layout::space()});
}

void JetPanel::begin() {
  session_.jet = {};
  entry_ = engine::jetSelected(session_);
  session_.jet = {.global = engine::jetIsGlobal(session_), .engine = engine::jetEngine(session_)};
  touched_ = false;
}

void JetPanel::p_DetermineAccessDefaultValues() {
  session_.trace.enter("[p_DetermineAccessDefaultValues]");
  for (const char* name : {"JetVersion", "JetModify", "JetGlobal"}) {
    engine::RawValue value;
    const Status status =
        engine::readRawValue(session_.registry(), HKLM, kConfigurationKey, name, value);
    session_.trace.dump(fmt::format("{}&", name), engine::missingIsFine(status));
  }
  p_DetermineJetVersions();
  if (!engine::jetMayBeChanged(session_)) showKept(isOfJet);
  extensions_.read();
  traceReaders({});
  showChoice();
}

void JetPanel::p_DetermineJetVersions() {
  session_.trace.enter("[p_DetermineJetVersions]");
  const std::vector<std::string> engines = engine::jetEngines(session_);
  const bool filling = std::exchange(filling_, true);
  lstJetEngines_.Clear();
  for (const std::string& name : engines) lstJetEngines_.AddItem(name);
  // An entry that a restore has taken away cannot stay chosen.
  if (std::ranges::find(engines, entry_) == engines.end()) {
    entry_ = engines.empty() ? "" : engines.front();
  }
  session_.jet.engine = engine::jetEngine(session_);
  chkGlobal_.Value = engine::jetIsGlobal(session_) ? forms::vbChecked : forms::vbUnchecked;
  filling_ = filling;
  const auto enable = [&engines](forms::Control& control, const char* toolTip) {
    control.Enabled = !engines.empty();
    control.ToolTipText =
        engines.empty() ? "There is no Jet database engine on this machine." : toolTip;
  };
  enable(lstJetEngines_, kListTip);
  enable(lblJetEngines_, kListTip);
  enable(chkGlobal_, kGlobalTip);
  enable(txtEngineKey_, kKeyTip);
  enable(lblEngineKey_, kKeyTip);
  session_.trace.dump("iCnt%", static_cast<std::int32_t>(engines.size()));
}

// Rows that cannot be changed have not been read, but are to be seen.
void JetPanel::showKept(const Rows::Which& which) {
  for (const Tweak* row : rowsThat(which)) {
    Tweak readable = engine::onMachine(*row, session_);
    readable.lacks = nullptr;
    if (isField(readable)) {
      show(form_, readable, engine::readText(readable, session_));
    } else {
      const bool isOn = engine::readState(readable, session_).kind == engine::TweakState::Kind::On;
      engine::showState(form_, readable, isOn ? forms::vbChecked : forms::vbUnchecked);
    }
  }
}

void JetPanel::readRows(const Rows::Which& which) {
  rows_.read(which);
  if (engine::jetMayBeChanged(session_)) return;
  const bool noRecord = std::exchange(session_.g_bNoRecord, true);
  showKept(which);
  session_.g_bNoRecord = noRecord;
}

// Of one group, or for an empty one what no group names.
void JetPanel::traceReaders(std::string_view group) {
  const auto trace = [this](std::string_view routine, const Rows::Which& which) {
    session_.trace.enter(fmt::format("[{}]: iCnt%={}", routine, rowsThat(which).size()));
  };
  for (const engine::GroupReader& reader : engine::kGroupReaders) {
    if (reader.group != group) continue;
    trace(reader.routine, [group](const Tweak& row) { return row.group == group; });
  }
  for (const std::string_view value : {"FirstRowHasNames", "ImportMixedTypes"}) {
    const auto ofValue = [value, group](const Tweak& row) {
      return row.value == value && (group.empty() || row.group == group);
    };
    if (rowsThat(ofValue).empty()) continue;
    trace(fmt::format("p_Determine{}", value), ofValue);
  }
}

bool JetPanel::mayDiscard(const Rows::Which& which, std::string_view name) {
  if (session_.g_bNoRecord || session_.g_bNoShowConfirmation || !rows_.wait(which)) return true;
  return engine::askYesNo(session_,
                          fmt::format("Changes of {} have not been applied. Discard them?", name));
}

void JetPanel::lstJetEngines_Click() {
  const std::string chosen = lstJetEngines_.selectedItem();
  if (chosen == entry_) return;
  const std::string engineBefore = engine::jetEngine(session_);
  const bool changesEngine = engine::isJetEngine(chosen) && chosen != engineBefore;
  if (chosen.empty() || (changesEngine && !mayDiscard(isOfEngine, engineBefore))) {
    return showChoice();
  }
  entry_ = chosen;
  touched_ = true;
  if (changesEngine) session_.jet.engine = chosen;
  const std::string_view group = groupOf(entry_);
  const auto shown = [group](const Tweak& row) { return isOfJet(row) && row.group == group; };
  // What waits of a format goes on waiting while others are shown.
  if (changesEngine || !rows_.wait(shown)) readRows(shown);
  if (entry_ == kTextEntry) extensions_.read();
  traceReaders(group);
  showChoice();
}

void JetPanel::chkGlobal_Click() {
  const bool global = chkGlobal_.Value == forms::vbChecked;
  if (global == engine::jetIsGlobal(session_)) return;
  if (!mayDiscard(isOfJet, "Jet")) return showChoice();
  session_.jet.global = global;
  touched_ = true;
  readRows(isOfJet);
  extensions_.read();
  showChoice();
}

void JetPanel::showChoice() {
  const bool filling = std::exchange(filling_, true);
  const auto& items = lstJetEngines_.items();
  const auto item = std::ranges::find(items, entry_);
  lstJetEngines_.ListIndex = item == items.end() ? -1 : static_cast<int>(item - items.begin());
  chkGlobal_.Value = engine::jetIsGlobal(session_) ? forms::vbChecked : forms::vbUnchecked;
  filling_ = filling;
  const std::string key = P_ReturnRegPathToRW();
  txtEngineKey_.Text = key.empty() ? "" : "HKEY_LOCAL_MACHINE\\" + key;
  const std::string_view group = groupOf(entry_);
  fraISAM_.Visible = group != kEngineGroup;
  for (const Inside& inside : insides_) {
    inside.frame->Visible = inside.frame->Caption.get() == group;
    for (forms::Control* control : inside.controls) control->Visible = inside.frame->Visible.get();
  }
  p_ReSetControlsTo2x();
}

// After reading, which gives each field its row's tool tip.
void JetPanel::p_ReSetControlsTo2x() {
  const bool is2x = engine::jetEngine(session_) == kJet2x;
  if (is2x) session_.trace.enter("[p_ReSetControlsTo2x]");
  for (const Tweak* row : rowsThat(isOfEngine)) {
    forms::Control* field = form_.find(row->control);
    forms::Control* label = form_.find(fmt::format("lbl{}", row->buddy));
    if (field == nullptr || label == nullptr) continue;
    const auto text = std::ranges::find(kJet2xTexts, row->value, &Jet2x::value);
    const bool other = is2x && text != kJet2xTexts.end();
    label->Caption = other && *text->caption != '\0' ? text->caption : std::string(row->caption);
    if (!field->Enabled) continue;  // which says why
    field->ToolTipText = other ? text->toolTip : std::string(row->toolTip);
    label->ToolTipText = field->ToolTipText.get();
  }
}

std::string JetPanel::P_ReturnRegPathToRW() const {
  return entry_.empty() ? "" : std::string(engine::jetKey(session_, entry_));
}

void JetPanel::cmdAccess_Click() {
  session_.trace.enter("[frmOffice.cmdAccess]");
  // Without an Office that is known nothing of it can be changed.
  if (session_.g_iOfficeVer == 0) return;
  touched_ = true;
  backups_.backUpOnce(JetBackups::When::Opening);
}

bool JetPanel::backUpOnce() { return backups_.backUpOnce(JetBackups::When::BeforeChange); }

bool JetPanel::restoreBackups() { return !engine::jetMayBeChanged(session_) || backups_.restore(); }

bool JetPanel::isWrittenFirst(const Tweak& row) {
  return isOfJet(row) && std::ranges::find(kWrittenFirst, row.value) != kWrittenFirst.end();
}

void JetPanel::end() {
  if (touched_ && !entry_.empty()) remember();
  session_.jet = {};
}

// What stands there already is not written again.
void JetPanel::remember() {
  const bool global = engine::jetIsGlobal(session_);
  engine::RawValue stored;
  platform::Registry& registry = session_.registry();
  const bool hasGlobal = engine::readRawValue(registry, HKLM, kConfigurationKey, kJetGlobal,
                                              stored) == ERROR_SUCCESS &&
                         stored.type == platform::REG_DWORD && (stored.number(0) != 0) == global;
  std::string entry;
  engine::storedText(session_, HKLM, kConfigurationKey, kJetSelect, entry);
  if (hasGlobal && entry == entry_) return;
  platform::RegistryChange change(registry);
  Status status = change.status();
  if (status == ERROR_SUCCESS && !hasGlobal) {
    status = engine::putValue(session_, HKLM, kConfigurationKey, kJetGlobal, global);
  }
  if (status == ERROR_SUCCESS && entry != entry_) {
    status = engine::putText(session_, HKLM, kConfigurationKey, kJetSelect, entry_);
  }
  if (status == ERROR_SUCCESS) status = change.commit();
  session_.trace.dump("lRetVal&", status);
}

}  // namespace korvex::dialogs
