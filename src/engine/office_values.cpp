// The values behind the fields of frmOffice, and the database engine's switches: writers and
// readers.
#include <array>
#include <string>

#include "engine/at_once.h"
#include "engine/numeral_field.h"
#include "engine/raw_value.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"
#include "engine/same_name.h"

namespace korvex::engine {

using foundation::Session;
using foundation::Variant;

namespace {

// What Excel adds up in its status bar, by the numbers of its functions.
struct AutoCalculate {
  std::string_view name;
  std::int32_t code;
};
constexpr std::array kAutoCalculates{
    AutoCalculate{"Count Nums", 0}, AutoCalculate{"Sum", 4}, AutoCalculate{"Average", 5},
    AutoCalculate{"Min", 6},        AutoCalculate{"Max", 7}, AutoCalculate{"Count", 361},
};
constexpr std::int32_t kSum = 4;

std::int32_t codeOf(std::string_view name) {
  for (const AutoCalculate& function : kAutoCalculates) {
    if (sameName(function.name, name)) return function.code;
  }
  return kSum;
}

}  // namespace

bool RegWorker::P_UpdateOfficeValues(const Tweak& tweak) {
  session_.trace.enter("[P_UpdateOfficeValues]");
  return writeField(tweak);
}

bool RegWorker::p_WriteJetChanges(const Tweak& tweak) {
  session_.trace.enter("[p_WriteJetChanges]");
  return writeField(tweak);
}

// The field's text, or the default where there is none: as the kind of value that the default is.
bool RegWorker::writeField(const Tweak& tweak) {
  const std::string text = session_.g_bDefaulting ? std::string{} : fieldText(tweak);
  Variant value = variantOf(tweak.byDefault);
  if (!text.empty() && tweak.digitsOnly) {
    const auto number = numberIn(text);
    if (!number) {
      notify(tooLargeText(text), platform::kIconInformation);
      return keep(platform::ERROR_INVALID_DATA);
    }
    value = static_cast<std::int32_t>(*number);
  } else if (!text.empty()) {
    vCurrentValue = text;
    return keep(putText(session_, tweak.root, tweak.key, tweak.value, text)) &&
           endPendingChange(tweak);
  }
  return p_MakeTheRegChange(tweak, value);
}

bool RegWorker::P_WriteAutoCalculate(const Tweak& tweak) {
  session_.trace.enter("[P_WriteAutoCalculate]");
  const std::int32_t code = session_.g_bDefaulting ? kSum : codeOf(fieldText(tweak));
  return p_MakeTheRegChange(tweak, code);
}

std::string p_DetermineAutoCalculate(const Tweak& tweak, Session& session) {
  RawValue code;
  const platform::Status status =
      readRawValue(session.registry(), tweak.root, tweak.key, tweak.value, code);
  if (missingIsFine(status) != platform::ERROR_SUCCESS) session.trace.dump("lRetVal&", status);
  const std::int32_t number = code.number(kSum);
  for (const AutoCalculate& function : kAutoCalculates) {
    if (function.code == number) return std::string(function.name);
  }
  return std::to_string(number);  // a function that only Excel knows
}

bool RegWorker::p_rwWriteJetVals(const Tweak& tweak) {
  if (!p_rwWriteRegChanges(tweak)) return false;
  session_.g_bRebootNeeded = true;
  return true;
}

// Jet takes the default for what is missing, and any number but 0 for a yes.
TweakState p_DetermineJetVals(const Tweak& tweak, Session& session) {
  RawValue value;
  const platform::Status status =
      readRawValue(session.registry(), tweak.root, tweak.key, tweak.value, value);
  if (missingIsFine(status) != platform::ERROR_SUCCESS) session.trace.dump("lRetVal&", status);
  bool on = tweak.byDefault.number != 0;
  if (status == platform::ERROR_SUCCESS && tweak.binaryLength != 0) {
    on = value.type == platform::REG_BINARY && !value.bytes.empty() && value.bytes[0] != 0;
  } else if (status == platform::ERROR_SUCCESS) {
    on = value.number(0) != 0;
  }
  return {on ? TweakState::Kind::On : TweakState::Kind::Off, {}};
}

}  // namespace korvex::engine
