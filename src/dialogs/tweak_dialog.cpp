// The dialog's life and its handlers.
#include "dialogs/tweak_dialog.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "engine/catalogue.h"
#include "engine/readers.h"
#include "foundation/error_handler.h"

namespace korvex::dialogs {

using forms::Layout;

namespace {

Layout* groupOf(Layout& layout, std::string_view title) {
  if (layout.kind == Layout::Kind::Group && layout.title == title) return &layout;
  for (Layout& part : layout.parts) {
    if (Layout* group = groupOf(part, title)) return group;
  }
  return nullptr;
}

}  // namespace

TweakDialog::TweakDialog(std::string name, std::string caption, engine::Bank bank,
                         const DialogParts& parts, std::string applyName)
    : Form(std::move(name), std::move(caption)),
      cmdApply(*this, std::move(applyName), "&Apply"),
      parts_(parts),
      bank_(bank),
      controls_(*this),
      fields_(parts.session, parts.regWorker, controls_.all(), [this] { edited(); }) {
  cmdApply.ToolTipText = "Write the changes to the machine";
  cmdDone.ToolTipText = "Close this window; changes that were not applied are discarded";
  cmdApply.Enabled = false;
  layout =
      Layout::column({Layout::flow(controls_.groups()), Layout::space(),
                      Layout::row({Layout::space(), Layout::of(cmdApply), Layout::of(cmdDone)})});
  for (const engine::TweakControl& entry : controls_.all()) connect(entry);
  cmdApply.Click += [this] { trap(cmdApply.name() + "_Click", [this] { cmdApply_Click(); }); };
  cmdDone.Click += [this] { close(); };
  changed_ = parts_.pending.changed.subscribe([this] { showStatus(); });
}

void TweakDialog::connect(const engine::TweakControl& entry) {
  if (auto* box = dynamic_cast<forms::CheckBox*>(entry.control)) connectBox(*box, *entry.tweak);
  if (auto* button = dynamic_cast<forms::OptionButton*>(entry.control)) {
    connectOption(*button, *entry.tweak);
  }
}

void TweakDialog::connectBox(forms::CheckBox& box, const engine::Tweak& tweak) {
  box.Click += [this, &box, &tweak] {
    if (reverting_) return;
    trap(box.name() + "_Click", [this, &box, &tweak] {
      if (!parts_.session.g_bNoRecord && !accepts(tweak, box)) {
        reverting_ = true;
        box.Value = box.Value == forms::vbChecked ? forms::vbUnchecked : forms::vbChecked;
        reverting_ = false;
        return;
      }
      parts_.pending.p_SetForApply(box, tweak.stateName, tweak.property, static_cast<int>(bank_),
                                   bank_ == engine::Bank::Office);
    });
  };
}

void TweakDialog::connectOption(forms::OptionButton& button, const engine::Tweak& tweak) {
  button.Click += [this, &button, &tweak] {
    const std::string routine = std::string(tweak.control) + "_Click";
    trap(routine, [this, &routine, &button, &tweak] {
      if (parts_.session.g_bNoRecord) return;
      parts_.session.trace.enter(fmt::format("[{}]", routine));
      const auto state = static_cast<std::int16_t>(engine::shownState(*this, tweak).value_or(0));
      parts_.pending.recordState(button, state, tweak.stateName, tweak.property, bank_);
    });
  };
}

void TweakDialog::trap(const std::string& routine, const std::function<void()>& handler) {
  foundation::guarded(parts_.session, fmt::format("{}.{}", name(), routine), handler);
}

void TweakDialog::Load() {
  // The main window may be filling its own controls when it needs this one.
  const bool noRecord = std::exchange(parts_.session.g_bNoRecord, true);
  trap("Form_Load", [this] {
    engine::readIntoForm(*this, parts_.session, [this](int percent) { Progress = percent; });
    readMore();
  });
  fields_.load();
  disableFrames();
  parts_.session.g_bNoRecord = noRecord;
  Progress = -1;
  cmdApply.Enabled = changesWaiting() > 0;
  showStatus();
}

void TweakDialog::enclose(forms::Frame& frame) {
  Layout* group = groupOf(layout, frame.Caption.get());
  if (group == nullptr) throw std::logic_error(name() + " has no group " + frame.Caption.get());
  group->control = &frame;
  frames_.push_back(&frame);
}

void TweakDialog::disableFrames() {
  for (forms::Frame* frame : frames_) {
    std::vector<forms::Control*> inside;
    for (const Layout& part : groupOf(layout, frame->Caption.get())->parts) {
      for (forms::Control* control : controlsIn(part)) {
        if (control->kind() != forms::ControlKind::Label) inside.push_back(control);
      }
    }
    const auto usable = [](const forms::Control* control) { return control->Enabled.get(); };
    if (inside.empty() || std::ranges::any_of(inside, usable)) continue;
    frame->ToolTipText = inside.front()->ToolTipText.get();
    frame->Enabled = false;
  }
}

void TweakDialog::cmdApply_Click() {
  parts_.session.trace.enter(fmt::format("[{}.{}]", name(), applyRoutine()));
  if (!mayApply()) return;
  Busy = true;
  auto failures = engine::applyBank(bank_, parts_.session, parts_.pending, parts_.regWorker);
  const auto written = writeFields(fields_);
  failures.insert(failures.end(), written.begin(), written.end());
  const std::vector<std::string> trouble = applyMore();
  cmdApply.Enabled = false;
  Busy = false;
  showStatus();
  if (!engine::finishApply(parts_.session, failures, trouble)) {
    cmdApply.Enabled = changesWaiting() > 0;
  }
}

std::vector<engine::FailedRoutine> TweakDialog::writeFields(engine::ValueFields& fields) {
  auto failures = fields.writeNumbers();
  const auto texts = fields.writeTexts();
  failures.insert(failures.end(), texts.begin(), texts.end());
  return failures;
}

bool TweakDialog::waits(const Which& which) const {
  const std::vector<std::string> waiting = parts_.pending.waiting(bank_);
  return fields_.changesWaiting(which) > 0 ||
         std::ranges::any_of(waiting, [&which](const std::string& routine) {
           const engine::Tweak* row = engine::findTweak(routine);
           return row != nullptr && which(*row);
         });
}

void TweakDialog::readRows(const Which& which) {
  for (const std::string& routine : parts_.pending.waiting(bank_)) {
    const engine::Tweak* row = engine::findTweak(routine);
    if (row != nullptr && which(*row)) parts_.pending.discard(bank_, routine);
  }
  const bool noRecord = std::exchange(parts_.session.g_bNoRecord, true);
  engine::readIntoForm(*this, parts_.session, {}, which);
  parts_.session.g_bNoRecord = noRecord;
  fields_.load(which);
  cmdApply.Enabled = changesWaiting() > 0;
  showStatus();
}

Layout TweakDialog::takeGroup(std::string_view title) {
  std::vector<Layout>& groups = layout.parts.front().parts;
  const auto group = std::ranges::find(groups, title, &Layout::title);
  if (group == groups.end()) throw std::logic_error(name() + " has no group " + std::string(title));
  Layout result = std::move(*group);
  groups.erase(group);
  return result;
}

void TweakDialog::edited() {
  if (parts_.session.g_bNoRecord) return;
  cmdApply.Enabled = true;
  showStatus();
}

void TweakDialog::addTo(std::string_view group, Layout part) {
  if (Layout* found = groupOf(layout, group)) {
    found->parts.push_back(std::move(part));
  } else {
    layout.parts.front().parts.push_back(Layout::group(std::string(group), {std::move(part)}));
  }
}

void TweakDialog::addOpener(std::string_view group, const Opener& row) {
  forms::CommandButton* button = makeOpener(*this, parts_, row);
  if (button != nullptr) addTo(group, Layout::row({Layout::of(*button), Layout::space()}));
}

bool TweakDialog::QueryUnload() {
  return parts_.session.endRequested() || !parts_.askBeforeDiscarding ||
         engine::mayDiscard(parts_.session, changesWaiting(), "Close this window");
}

// A marker that stayed would be carried out by a later Apply, with a box that says otherwise.
void TweakDialog::Unload() {
  if (!parts_.pending.waiting(bank_).empty()) parts_.pending.discard(bank_);
}

int TweakDialog::changesWaiting() const {
  return static_cast<int>(parts_.pending.waiting(bank_).size()) + fields_.changesWaiting() +
         moreChanges();
}

void TweakDialog::showStatus() { StatusText = engine::waitingText(changesWaiting()); }

}  // namespace korvex::dialogs
