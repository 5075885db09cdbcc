// Routines of RegWorker that the mode table cannot carry out alone.
#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "engine/catalogue.h"
#include "engine/catalogue/rows.h"
#include "engine/defrag_entry.h"
#include "engine/reg_worker.h"
#include "engine/same_name.h"
#include "foundation/reg_listing.h"
#include "foundation/runtime_error.h"

namespace korvex::engine {

namespace {

constexpr std::string_view kRunKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr std::string_view kRunEntry = "Korvex";
constexpr std::string_view kSupportFile = "kvxsup.exe";

}  // namespace

// The service entry is the row's own. RunOnceEx shows its entries in a window whose title and
// flags stand in the key itself and serve every program's entries: those of others stay.
bool RegWorker::P_rwDefrag(const Tweak& tweak) {
  const Decision decision = decisionFor(tweak);
  return (decision.value.isEmpty() ? removeDefragEntry() : writeDefragEntry()) &&
         p_rwWriteRegChanges(tweak);
}

bool RegWorker::writeDefragEntry() {
  auto& tool = session_.regTool;
  if (tool.GetRegStr(kRunOnceExKey, kTitleValue, HKLM).empty() &&
      !write(HKLM, kRunOnceExKey, kTitleValue, kDefragTitle)) {
    return false;
  }
  const bool hasFlags = foundation::P_DoesRegValueExsist(session_, HKLM, kRunOnceExKey,
                                                         platform::KEY_QUERY_VALUE, kFlagsValue);
  if (!hasFlags && !write(HKLM, kRunOnceExKey, kFlagsValue, kDefragFlags)) return false;
  return write(HKLM, kDefragEntryKey, kDefragCommandValue, kDefragCommand);
}

bool RegWorker::removeDefragEntry() {
  auto& tool = session_.regTool;
  const platform::Status status = tool.DeleteRegNodes(HKLM, kDefragEntryKey);
  if (status != platform::ERROR_FILE_NOT_FOUND && !keep(status)) return false;
  if (!sameName(tool.GetRegStr(kRunOnceExKey, kTitleValue, HKLM), kDefragTitle)) {
    return true;
  }
  return remove(HKLM, kRunOnceExKey, kTitleValue) &&
         (tool.GetRegInt(kRunOnceExKey, kFlagsValue, HKLM) != kDefragFlags ||
          remove(HKLM, kRunOnceExKey, kFlagsValue));
}

bool RegWorker::P_rwStartMenuSpeed(const Tweak& tweak) {
  session_.trace.enter("[P_rwStartMenuSpeed]");
  std::string figure(tweak.byDefault.text);
  if (!session_.g_bDefaulting) {
    const auto* box = formBook_.load(tweak.form).find<forms::TextBox>(tweak.control);
    if (box == nullptr) {
      throw foundation::RuntimeError(
          foundation::kErrorInternal,
          fmt::format("{} has no text box {}.", tweak.form, tweak.control), "P_rwStartMenuSpeed");
    }
    figure = box->Text.get();
  }
  const bool digits =
      !figure.empty() && std::ranges::all_of(figure, [](char c) { return c >= '0' && c <= '9'; });
  if (!digits) {
    notice_ = "This field accepts numerical characters only.";
    noticeIcon_ = platform::kIconInformation;
    return keep(platform::ERROR_INVALID_DATA);
  }
  if (!p_MakeTheRegChange(tweak, figure)) return false;
  session_.g_bRebootNeeded = tweak.reboot;
  return true;
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
  const std::string program = fmt::format("{}\\{}", session_.g_sAppPath, kSupportFile);
  if (on && !session_.files().exists(program)) {
    notice_ = fmt::format(
        "The support file, '{}', could not be found.\r\n"
        "This file should reside in the same folder as Korvex.\r\n"
        "This function will not work unless the file is present.",
        kSupportFile);
    noticeIcon_ = platform::kIconExclamation;
  }
  return registerSupportProgram();
}

// The support program runs while one of its options is on. Without its file nothing is registered:
// Windows would complain at each start. The options stay, for when the file is there.
bool RegWorker::registerSupportProgram() {
  const auto isOn = [this](const Tweak& option) {
    return option.special == &RegWorker::p_rwClearAtRestart &&
           session_.regTool.GetRegInt(option.key, option.value, option.root) == 1;
  };
  const std::string program = fmt::format("{}\\{}", session_.g_sAppPath, kSupportFile);
  if (std::ranges::any_of(optionRows(), isOn) && session_.files().exists(program)) {
    return write(HKLM, kRunKey, kRunEntry, fmt::format("\"{}\"", program));
  }
  return remove(HKLM, kRunKey, kRunEntry);
}

}  // namespace korvex::engine
