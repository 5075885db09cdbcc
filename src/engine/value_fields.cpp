// Typing into the fields, choosing from the lists, and writing what stands there then.
#include "engine/value_fields.h"

#include <algorithm>
#include <utility>

#include "engine/at_once.h"
#include "engine/numeral_field.h"
#include "engine/same_name.h"
#include "foundation/error_handler.h"

namespace korvex::engine {

std::string ValueFields::Field::text() const {
  if (const auto* box = dynamic_cast<const forms::TextBox*>(control)) return box->Text;
  return dynamic_cast<const forms::ComboBox&>(*control).Text;
}

ValueFields::ValueFields(foundation::Session& session, RegWorker& regWorker,
                         const std::vector<TweakControl>& controls, std::function<void()> edited)
    : session_(session), regWorker_(regWorker), edited_(std::move(edited)) {
  for (const TweakControl& entry : controls) {
    if (isField(*entry.tweak)) fields_.push_back({.tweak = entry.tweak, .control = entry.control});
  }
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const auto changed = [this, i] {
      foundation::guarded(session_, fields_[i].control->name() + "_Change",
                          [this, i] { Change(fields_[i]); });
    };
    if (auto* box = dynamic_cast<forms::TextBox*>(fields_[i].control)) box->Change += changed;
    if (auto* list = dynamic_cast<forms::ComboBox*>(fields_[i].control)) list->Change += changed;
  }
}

void ValueFields::load() {
  for (Field& field : fields_) {
    field.atStart = field.applied = field.valid = field.text();
    field.changed = false;
  }
}

int ValueFields::changesWaiting() const {
  return static_cast<int>(std::ranges::count_if(
      fields_, [](const Field& field) { return field.text() != field.applied; }));
}

void ValueFields::Change(Field& field) {
  if (session_.g_bDefaulting || session_.g_bNoRecord) return;
  const std::string text = field.text();
  if (field.tweak->digitsOnly && !takesNumeral(text, field.tweak->orWord)) return takeBack(field);
  field.valid = text;
  // Set by the edit that differed: a text that is changed back is written all the same.
  field.changed = field.changed || text != field.atStart;
  if (field.changed) edited_();
}

void ValueFields::takeBack(Field& field) {
  dynamic_cast<forms::TextBox&>(*field.control).Text = field.valid;
  tell(session_, field.tweak->refusal);
}

// Nothing typed, or the word in other letters, is the word: it is shown as the next look at the
// machine shows it.
void ValueFields::showWord(Field& field) {
  const std::string text = field.text();
  const std::string_view word = field.tweak->orWord;
  auto* box = dynamic_cast<forms::TextBox*>(field.control);
  if (box != nullptr && (text.empty() || sameName(text, word))) box->Text = std::string(word);
}

std::vector<FailedRoutine> ValueFields::write(bool numbers) {
  std::vector<FailedRoutine> failures;
  for (Field& field : fields_) {
    if (!field.changed || field.tweak->digitsOnly != numbers) continue;
    if (regWorker_.call(field.tweak->property)) {
      if (!field.tweak->orWord.empty()) showWord(field);
      field.applied = field.text();
    } else {
      failures.push_back({std::string(field.tweak->property), regWorker_.lastStatus});
    }
  }
  return failures;
}

}  // namespace korvex::engine
