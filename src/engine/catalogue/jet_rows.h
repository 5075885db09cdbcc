// Settings of the Jet database engine and of the formats that it reads. Keys are those of Jet 4.0
// for all programs; which Jet, which engine and whose key is meant, engine/jet.h tells. The rows of
// a format share what stands in its function.
#include <array>

#include "engine/catalogue/rows.h"
#include "engine/jet.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"

namespace korvex::engine::jet_rows {

constexpr Tweak ofJet(Tweak row, std::string_view key, std::string_view group) {
  row.root = HKLM;
  row.key = key;
  row.bank = Bank::Office;
  row.form = "frmOffice";
  row.page = Page::MSOffice;
  row.group = group;
  row.lacks = needsFormat;
  row.adapt = keyOfFormat;
  return row;
}

// A field for a DWORD; an empty one writes the default.
constexpr Tweak number(Tweak row) {
  row.shape = ControlShape::TextBox;
  row.digitsOnly = true;
  row.special = &RegWorker::p_WriteJetChanges;
  row.writes = "The number of the field, as a DWORD.";
  return row;
}

// A field for words, and one with proposals.
constexpr Tweak words(Tweak row) {
  row.shape = ControlShape::TextBox;
  row.lettersOnly = true;
  row.refusal = "This field accepts alpha characters only.";
  row.special = &RegWorker::p_WriteJetChanges;
  row.writes = "The text of the field.";
  return row;
}
constexpr Tweak list(Tweak row, std::span<const std::string_view> choices) {
  row.shape = ControlShape::ComboBox;
  row.choices = choices;
  row.freeText = true;
  row.special = &RegWorker::p_WriteJetChanges;
  row.writes = "The text of the field.";
  return row;
}

// A switch of one byte: checked is 1.
constexpr Tweak byteSwitch(Tweak row, bool onByDefault) {
  row.binaryLength = 1;
  row.mode = onByDefault ? 1 : 0;
  row.byDefault = byte(onByDefault ? 1 : 0);
  row.onValue = byte(onByDefault ? 0 : 1);
  row.reboot = true;
  row.reader = p_DetermineJetVals;
  return row;
}

// A switch that is a number: checked is 1.
constexpr Tweak numberSwitch(Tweak row, std::int32_t byDefault) {
  row.mode = 0;
  row.byDefault = dword(byDefault);
  row.reboot = true;
  row.writes = "Checked: DWORD 1. Unchecked: DWORD 0.";
  row.special = &RegWorker::p_rwWriteJetVals;
  row.reader = p_DetermineJetVals;
  return row;
}

}  // namespace korvex::engine::jet_rows
