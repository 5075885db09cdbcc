// Typing into the fields, choosing from the lists, and writing what stands there then.
#include "engine/value_fields.h"

#include <algorithm>
#include <utility>

#include "engine/at_once.h"
#include "engine/numeral_field.h"
#include "engine/readers.h"
#include "engine/same_name.h"
#include "foundation/error_handler.h"

namespace korvex::engine {
namespace {

constexpr std::uint64_t kMost = 4294967295;

bool isLetterOrBlank(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == ' ' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool takesLetters(const Tweak& row, std::string_view text) {
  if (row.digitsOnly) return takesNumeral(text, row.orWord);
  return !row.lettersOnly || std::ranges::all_of(text, isLetterOrBlank);
}

// Of a field whose value is a DWORD.
bool isTooLarge(const Tweak& row, std::string_view text) {
  const bool isNumber = row.digitsOnly && row.byDefault.kind == RowValue::Kind::Number;
  return isNumber && !text.empty() && !sameName(text, row.orWord) && !numberIn(text);
}

bool inRange(const Tweak& row, std::string_view text) {
  if (row.rangeText.empty() || text.empty() || sameName(text, row.orWord)) return true;
  const auto number = numberIn(text);
  return number && *number >= row.lowest && *number <= row.highest;
}

// Whether further digits can make it one that is taken: of 64 to 2047, 1 can, 0 and 3000 cannot.
bool canBecomeValid(const Tweak& row, std::string_view text) {
  if (inRange(row, text)) return true;
  const auto number = numberIn(text);
  if (!number || *number == 0) return false;
  std::uint64_t low = *number;
  std::uint64_t high = *number;
  while (low <= row.highest && low <= kMost) {
    if (high >= row.lowest) return true;
    low *= 10;
    high = high * 10 + 9;
  }
  return false;
}

}  // namespace

std::string ValueFields::Field::text() const {
  if (const auto* box = dynamic_cast<const forms::TextBox*>(control)) return box->Text;
  return dynamic_cast<const forms::ComboBox&>(*control).Text;
}

void ValueFields::Field::show(const std::string& text) const {
  if (auto* box = dynamic_cast<forms::TextBox*>(control)) box->Text = text;
  if (auto* list = dynamic_cast<forms::ComboBox*>(control)) list->Text = text;
}

ValueFields::ValueFields(foundation::Session& session, RegWorker& regWorker,
                         const std::vector<TweakControl>& controls, std::function<void()> edited)
    : session_(session), regWorker_(regWorker), edited_(std::move(edited)) {
  for (const TweakControl& entry : controls) {
    if (isField(*entry.tweak)) fields_.push_back({.tweak = entry.tweak, .control = entry.control});
  }
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const auto on = [this, i](const char* event, void (ValueFields::*handler)(Field&)) {
      return [this, i, event, handler] {
        foundation::guarded(session_, fields_[i].control->name() + event,
                            [this, i, handler] { (this->*handler)(fields_[i]); });
      };
    };
    if (auto* box = dynamic_cast<forms::TextBox*>(fields_[i].control)) {
      box->Change += on("_Change", &ValueFields::Change);
      box->LostFocus += on("_LostFocus", &ValueFields::LostFocus);
    }
    if (auto* list = dynamic_cast<forms::ComboBox*>(fields_[i].control)) {
      list->Change += on("_Change", &ValueFields::Change);
    }
  }
}

void ValueFields::load(const Which& which) {
  for (Field& field : fields_) {
    if (which && !which(*field.tweak)) continue;
    field.atStart = field.applied = field.valid = field.text();
    field.changed = 0;
  }
}

int ValueFields::changesWaiting(const Which& which) const {
  return static_cast<int>(std::ranges::count_if(fields_, [&which](const Field& field) {
    return field.text() != field.applied && (!which || which(*field.tweak));
  }));
}

void ValueFields::Change(Field& field) {
  if (session_.g_bDefaulting || session_.g_bNoRecord) return;
  const std::string text = field.text();
  const Tweak& row = *field.tweak;
  // What the machine holds may be anything: a text that is taken back to it is not refused again.
  if (text != field.applied) {
    if (!takesLetters(row, text)) return takeBack(field, field.valid, row.refusal);
    if (!canBecomeValid(row, text)) return takeBack(field, field.applied, row.rangeText);
    if (isTooLarge(row, text)) return takeBack(field, field.valid, tooLargeText(text));
  }
  if (text == field.applied || inRange(row, text)) field.valid = text;
  // Set by the edit that differed: a text that is changed back is written all the same.
  if (field.changed == 0 && text != field.atStart) field.changed = ++edits_;
  if (field.changed != 0) edited_();
}

// What the machine holds may be out of range: only what was typed is told.
void ValueFields::LostFocus(Field& field) {
  if (field.text() != field.applied && !inRange(*field.tweak, field.text())) {
    takeBack(field, field.applied, field.tweak->rangeText);
  }
}

void ValueFields::takeBack(Field& field, const std::string& text, std::string_view message) {
  field.show(std::string(text));  // its Change sets what text may be part of
  if (field.text() == field.applied && field.applied == field.atStart) field.changed = 0;
  tell(session_, message);
}

// Nothing typed is the default, the word in other letters is the word, and a text that stands for
// something else is what it stands for: shown as the next look at the machine shows it.
void ValueFields::finishWritten(Field& field) {
  const std::string text = field.text();
  const std::string_view word = field.tweak->orWord;
  if (!word.empty() && (text.empty() || sameName(text, word))) field.show(std::string(word));
  if (text.empty() && word.empty() && field.tweak->byDefault != kDelete) {
    field.show(defaultText(onMachine(*field.tweak, session_)));
  }
  if (field.tweak->freeText && field.tweak->textReader != nullptr) {
    field.show(readText(*field.tweak, session_));
  }
  field.applied = field.valid = field.text();
}

std::vector<FailedRoutine> ValueFields::write(const Which& which, Order order) {
  std::vector<Field*> edited;
  for (Field& field : fields_) {
    if (field.changed != 0 && (!which || which(*field.tweak))) edited.push_back(&field);
  }
  if (order == Order::OfEdits) std::ranges::stable_sort(edited, {}, &Field::changed);
  std::vector<FailedRoutine> failures;
  for (Field* field : edited) {
    const Tweak& row = *field->tweak;
    if (field->text() != field->applied && !inRange(row, field->text())) {
      takeBack(*field, field->applied, row.skipText.empty() ? row.rangeText : row.skipText);
    } else if (regWorker_.call(row.property)) {
      finishWritten(*field);
    } else {
      failures.push_back({std::string(row.property), regWorker_.lastStatus});
    }
  }
  return failures;
}

std::vector<FailedRoutine> ValueFields::writeNumbers() {
  return write([](const Tweak& row) { return row.digitsOnly; });
}

std::vector<FailedRoutine> ValueFields::writeTexts() {
  return write([](const Tweak& row) { return !row.digitsOnly; });
}

}  // namespace korvex::engine
