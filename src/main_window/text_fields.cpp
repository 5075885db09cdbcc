// Typing into the fields, and writing what was typed.
#include "main_window/text_fields.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "foundation/error_handler.h"

namespace korvex::main_window {
namespace {

bool isNumber(const std::string& text) {
  return std::all_of(text.begin(), text.end(),
                     [](unsigned char c) { return std::isdigit(c) != 0; });
}

}  // namespace

TextFields::TextFields(foundation::Session& session, engine::RegWorker& regWorker,
                       const std::vector<engine::TweakControl>& controls,
                       std::function<void()> edited)
    : session_(session), regWorker_(regWorker), edited_(std::move(edited)) {
  for (const engine::TweakControl& entry : controls) {
    auto* box = dynamic_cast<forms::TextBox*>(entry.control);
    if (box == nullptr) continue;
    const bool digitsOnly = entry.tweak->special == &engine::RegWorker::P_rwStartMenuSpeed;
    fields_.push_back({entry.tweak, box, digitsOnly, "", "", "", false});
  }
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    fields_[i].box->Change += [this, i] {
      foundation::guarded(session_, fields_[i].box->name() + "_Change",
                          [this, i] { Change(fields_[i]); });
    };
  }
}

void TextFields::load() {
  for (Field& field : fields_) {
    field.atStart = field.applied = field.valid = field.box->Text;
    field.changed = false;
  }
}

int TextFields::changesWaiting() const {
  return static_cast<int>(std::ranges::count_if(
      fields_, [](const Field& field) { return field.box->Text.get() != field.applied; }));
}

void TextFields::Change(Field& field) {
  if (session_.g_bDefaulting || session_.g_bNoRecord) return;
  const std::string text = field.box->Text;
  if (field.digitsOnly && !isNumber(text)) {
    field.box->Text = field.valid;
    session_.prompts().messageBox("This field accepts numerical characters only.",
                                  platform::kButtonsOk | platform::kIconInformation,
                                  foundation::kAppTitle);
    return;
  }
  field.valid = text;
  // Set by the edit that differed: a text that is changed back is written all the same.
  field.changed = field.changed || text != field.atStart;
  if (field.changed) edited_();
}

std::vector<engine::FailedRoutine> TextFields::write(bool digitsOnly) {
  std::vector<engine::FailedRoutine> failures;
  for (Field& field : fields_) {
    if (!field.changed || field.digitsOnly != digitsOnly) continue;
    const std::string text = field.box->Text;
    if (regWorker_.call(field.tweak->property)) {
      field.applied = text;
    } else {
      failures.push_back({std::string(field.tweak->property), regWorker_.lastStatus});
    }
  }
  return failures;
}

std::vector<engine::FailedRoutine> TextFields::writeMenuSpeed() { return write(true); }

std::vector<engine::FailedRoutine> TextFields::P_WriteExplorerDesc() {
  session_.trace.enter("[P_WriteExplorerDesc]");
  return write(false);
}

}  // namespace korvex::main_window
