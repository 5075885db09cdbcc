// Routines of RegWorker that the mode table cannot carry out alone.
#include <fmt/format.h>

#include <string>

#include "engine/catalogue.h"
#include "engine/catalogue/rows.h"
#include "engine/defrag_entry.h"
#include "engine/numeral_field.h"
#include "engine/reg_worker.h"
#include "engine/same_name.h"
#include "foundation/runtime_error.h"

namespace korvex::engine {

namespace {

constexpr std::string_view kRunKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr std::string_view kRunEntry = "Korvex";
constexpr std::string_view kSupportFile = "kvxsup.exe";

std::string supportProgram(const foundation::Session& session) {
  return fmt::format("{}\\{}", session.g_sAppPath, kSupportFile);
}

}  // namespace

// The service entry is the row's own. RunOnceEx shows its entries in a window whose title and
// flags stand in the key itself and serve every program's entries: those of others stay.
bool RegWorker::P_rwDefrag(const Tweak& tweak) {
  const Decision decision = decisionFor(tweak);
  return (decision.value.isEmpty() ? removeDefragEntry() : writeDefragEntry()) &&
         p_rwWriteRegChanges(tweak);
}

bool RegWorker::writeDefragEntry() {
  RawValue title;
  RawValue flags;
  if (!read(HKLM, kRunOnceExKey, kTitleValue, title) ||
      !read(HKLM, kRunOnceExKey, kFlagsValue, flags)) {
    return false;
  }
  return (!title.bytes.empty() || write(HKLM, kRunOnceExKey, kTitleValue, kDefragTitle)) &&
         (!flags.bytes.empty() || write(HKLM, kRunOnceExKey, kFlagsValue, kDefragFlags)) &&
         write(HKLM, kDefragEntryKey, kDefragCommandValue, kDefragCommand);
}

bool RegWorker::removeDefragEntry() {
  RawValue title;
  RawValue flags;
  if (!keep(missingIsFine(session_.regTool.DeleteRegNodes(HKLM, kDefragEntryKey))) ||
      !read(HKLM, kRunOnceExKey, kTitleValue, title) ||
      !read(HKLM, kRunOnceExKey, kFlagsValue, flags)) {
    return false;
  }
  if (!sameName(title.text(), kDefragTitle)) return true;
  return remove(HKLM, kRunOnceExKey, kTitleValue) &&
         (flags.number(0) != kDefragFlags || remove(HKLM, kRunOnceExKey, kFlagsValue));
}

std::string RegWorker::fieldText(const Tweak& tweak) {
  if (session_.g_bDefaulting) return std::string(tweak.byDefault.text);
  const forms::Form& form = formBook_.load(tweak.form);
  if (const auto* box = form.find<forms::TextBox>(tweak.control)) return box->Text;
  if (const auto* list = form.find<forms::ComboBox>(tweak.control)) return list->Text;
  throw foundation::RuntimeError(foundation::kErrorInternal,
                                 fmt::format("{} has no field {}.", tweak.form, tweak.control),
                                 std::string(tweak.property));
}

bool RegWorker::P_rwStartMenuSpeed(const Tweak& tweak) {
  session_.trace.enter("[P_rwStartMenuSpeed]");
  const std::string figure = fieldText(tweak);
  if (figure.empty() || !takesNumeral(figure)) {
    notify("This field accepts numerical characters only.", platform::kIconInformation);
    return keep(platform::ERROR_INVALID_DATA);
  }
  if (!p_MakeTheRegChange(tweak, figure)) return false;
  session_.g_bRebootNeeded = tweak.reboot;
  return true;
}

bool RegWorker::p_rwWriteText(const Tweak& tweak) {
  session_.trace.enter(fmt::format("[{}]", tweak.property));
  const std::string text = fieldText(tweak);
  if (!p_MakeTheRegChange(tweak, text.empty() ? variantOf(tweak.byDefault) : text)) return false;
  session_.g_bRebootNeeded = tweak.reboot;
  return true;
}

bool RegWorker::P_rwAppendToLogFile(const Tweak& tweak) {
  Tweak filled = tweak;
  if (!session_.g_bDefaulting) filled.onValue = dword(checkValue(tweak) == 1 ? 1 : 0);
  return p_rwWriteRegChanges(filled);
}

bool RegWorker::p_rwClearAtRestart(const Tweak& tweak) {
  if (!p_rwWriteRegChanges(tweak)) return false;
  const bool on = foundation::looselyEqual(vCurrentValue, std::int16_t{1});
  if (tweak.property == "P_rwClearDocsReboot") {
    constexpr std::string_view kFolder = "RecentFolder";
    if (!(on ? write(HKLM, kConfigurationKey, kFolder, session_.pd.RecentPath)
             : remove(HKLM, kConfigurationKey, kFolder))) {
      return false;
    }
  }
  if (on && !session_.files().exists(supportProgram(session_))) {
    notify(fmt::format("The support file, '{}', could not be found.\r\n"
                       "This file should reside in the same folder as Korvex.\r\n"
                       "This function will not work unless the file is present.",
                       kSupportFile),
           platform::kIconExclamation);
  }
  return registerSupportProgram();
}

// The support program runs while one of its options is on. Without its file nothing is registered:
// Windows would complain at each start. The options stay, for when the file is there.
bool RegWorker::registerSupportProgram() {
  bool wanted = false;
  for (const Tweak& option : optionRows()) {
    if (option.special != &RegWorker::p_rwClearAtRestart) continue;
    RawValue value;
    if (!read(option.root, option.key, option.value, value)) return false;
    wanted = wanted || value.number(0) == 1;
  }
  const std::string program = supportProgram(session_);
  return wanted && session_.files().exists(program)
             ? write(HKLM, kRunKey, kRunEntry, fmt::format("\"{}\"", program))
             : remove(HKLM, kRunKey, kRunEntry);
}

}  // namespace korvex::engine
