// Showing an offer, and carrying it out.
#include "dialogs/frm_restore.h"

#include <fmt/format.h>

#include <vector>

#include "forms/long_work.h"
#include "foundation/error_handler.h"

namespace korvex::dialogs {
namespace {

using backup::RestoreItem;
using forms::Layout;
using foundation::kCrLf;

constexpr std::size_t kMostLines = 2000;

std::string counted(std::size_t count, std::string_view what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string itemText(const RestoreItem& item) {
  if (!item.restorable) {
    const std::string reason = item.problems.empty() ? "" : ": " + item.problems.front();
    return fmt::format("{} (cannot be restored{})", item.caption, reason);
  }
  std::string what =
      item.changeCount == 0 ? "nothing would change" : counted(item.changeCount, "change");
  if (!item.problems.empty()) what += ", " + counted(item.problems.size(), "problem");
  return fmt::format("{} ({})", item.caption, what);
}

// Problems and changes, line by line, with a count of those that there was no room for.
class ChangeText {
 public:
  void add(const RestoreItem& item, bool withCaption) {
    // What cannot be restored changes nothing.
    const std::size_t changes = item.restorable ? item.changeCount : 0;
    const std::size_t wanted = item.problems.size() + changes;
    std::size_t shown = 0;
    if (withCaption && wanted > 0 && hasRoom()) line(item.caption + ":");
    for (const std::string& problem : item.problems) shown += entry("! " + problem);
    if (changes > 0) {
      for (const backup::RestoreChange& change : item.changes) shown += entry(describe(change));
    }
    more_ += wanted - shown;
  }

  std::string text() const {
    if (more_ > 0) return fmt::format("{}... and {} more", text_, more_);
    return text_.empty() ? "Nothing would change." : text_;
  }

 private:
  bool hasRoom() const { return lines_ < kMostLines; }
  std::size_t entry(const std::string& text) {
    if (!hasRoom()) return 0;
    line(text);
    return 1;
  }
  void line(const std::string& text) {
    text_ += text;
    text_ += kCrLf;
    ++lines_;
  }

  std::string text_;
  std::size_t lines_ = 0;
  std::size_t more_ = 0;
};

}  // namespace

frmRestore::frmRestore(foundation::Session& session, backup::RestoreDesk& desk)
    : Form(kName, "Korvex...for Power Users - Restore"), session_(session), desk_(desk) {
  lstItems.ToolTipText = "What is ticked is restored; select one to see only its changes";
  cmdSelectAll.ToolTipText = "Tick everything that can be restored";
  cmdClearAll.ToolTipText = "Tick nothing";
  cmdRestore.ToolTipText = "Restore what is ticked: all of it or nothing";
  cmdCancel.ToolTipText = "Close this window; nothing is changed";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {of(lblQuestion),
       Layout::row({Layout::column({of(lblItems), of(lstItems),
                                    Layout::row({of(cmdSelectAll), of(cmdClearAll)})}),
                    Layout::column({of(lblChanges), of(txtChanges)})}),
       of(lblSavedFirst), Layout::row({Layout::space(), of(cmdRestore), of(cmdCancel)})});
  lstItems.ItemCheck += [this] { showWhatIsTicked(); };
  lstItems.Click += [this] { showChanges(); };
  cmdSelectAll.Click += [this] { lstItems.setAllChecked(true); };
  cmdClearAll.Click += [this] { lstItems.setAllChecked(false); };
  cmdRestore.Click += [this] { trap("cmdRestore_Click", &frmRestore::cmdRestore_Click); };
  cmdCancel.Click += [this] { close(); };
}

void frmRestore::trap(const char* routine, void (frmRestore::*handler)()) {
  foundation::guarded(session_, fmt::format("{}.{}", kName, routine),
                      [this, handler] { (this->*handler)(); });
}

void frmRestore::Load() {
  desk_.restored = false;
  trap("Form_Load", &frmRestore::fill);
}

void frmRestore::fill() {
  if (!desk_.offer) {
    lblQuestion.Caption = "Nothing has been chosen to be restored.";
    for (forms::Control* control : controls()) {
      control->Enabled = control == &lblQuestion || control == &cmdCancel;
    }
    return;
  }
  lblQuestion.Caption = forms::captionOf(desk_.offer->question());
  lblSavedFirst.Caption =
      "What is overwritten is saved first, so that it can be restored in its turn.";
  filling_ = true;
  int index = 0;
  for (const RestoreItem& item : desk_.offer->items()) {
    lstItems.AddItem(itemText(item));
    lstItems.setCheckable(index, item.restorable);
    lstItems.setChecked(index, item.changeCount > 0);
    ++index;
  }
  filling_ = false;
  showChanges();
  showWhatIsTicked();
}

void frmRestore::showChanges() {
  if (!desk_.offer) return;
  const std::vector<RestoreItem>& items = desk_.offer->items();
  const int selected = lstItems.ListIndex;
  ChangeText text;
  if (selected >= 0) {
    const RestoreItem& item = items[static_cast<std::size_t>(selected)];
    lblChanges.Caption = fmt::format("C&hanges of {}:", forms::captionOf(item.caption));
    text.add(item, false);
  } else {
    lblChanges.Caption = "C&hanges:";
    for (const RestoreItem& item : items) text.add(item, items.size() > 1);
  }
  txtChanges.Text = text.text();
}

void frmRestore::showWhatIsTicked() {
  if (filling_) return;
  const std::size_t ticked = lstItems.checkedItems().size();
  cmdRestore.Enabled = ticked > 0;
  cmdClearAll.Enabled = ticked > 0;
  StatusText = lstItems.stateText();
}

void frmRestore::cmdRestore_Click() {
  if (!desk_.offer || Busy) return;
  session_.trace.enter("[frmRestore.cmdRestore]");
  std::vector<bool> chosen;
  for (int i = 0; i < lstItems.ListCount(); ++i) chosen.push_back(lstItems.isChecked(i));
  backup::RestoreOutcome outcome;
  {
    forms::LongWork work(*this);
    outcome = desk_.offer->restore(chosen, work.progress());
  }
  tellOutcome(outcome);
}

void frmRestore::tellOutcome(const backup::RestoreOutcome& outcome) {
  platform::Prompts& prompts = session_.prompts();
  if (outcome.cancelled) {
    StatusText = "The operation has been canceled. Nothing was changed.";
    return;
  }
  if (outcome.status != platform::ERROR_SUCCESS) {
    const std::string why = platform::describeStatus(outcome.status) + ". Nothing was changed.";
    prompts.messageBox(outcome.message.empty() ? why : outcome.message, platform::kIconCritical,
                       foundation::kAppTitle);
    return;
  }
  desk_.restored = true;
  std::string text = "What was ticked has been restored.";
  if (!outcome.savedAs.empty()) {
    text += fmt::format("{}What stood there before has been saved: {}", kCrLf, outcome.savedAs);
  }
  if (!outcome.message.empty()) text += fmt::format("{}{}", kCrLf, outcome.message);
  prompts.messageBox(text, platform::kIconInformation, foundation::kAppTitle);
  close();
}

}  // namespace korvex::dialogs
