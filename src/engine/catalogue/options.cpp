// The program's own options. A row's value and its state value are one and the same here: both
// stand in Configuration under the option's name.
#include <array>

#include "engine/catalogue/rows.h"
#include "engine/reg_worker.h"

namespace korvex::engine {
namespace {

constexpr Tweak option(std::string_view property, std::string_view value, std::string_view control,
                       std::string_view group, std::string_view caption, std::string_view toolTip) {
  return {.property = property,
          .root = HKLM,
          .key = kConfigurationKey,
          .value = value,
          .mode = 0,
          .byDefault = dword(0),
          .bank = Bank::Configuration,
          .stateName = value,
          .control = control,
          .page = Page::Options,
          .group = group,
          .caption = caption,
          .toolTip = toolTip};
}

constexpr std::string_view kProgram = "Korvex";
constexpr std::string_view kAtRestart = "At each restart of Windows";

constexpr Tweak clearing(std::string_view property, std::string_view value,
                         std::string_view control, std::string_view caption,
                         std::string_view toolTip) {
  Tweak row = option(property, value, control, kAtRestart, caption, toolTip);
  row.special = &RegWorker::p_rwClearAtRestart;
  row.writes = "Checked: DWORD 1, and the support program under Run. Unchecked: DWORD 0.";
  return row;
}

constexpr std::array kRows{
    option("P_rwNoShowConfirmation", "NoShowConfirmation", "chkNoShowConfirmation", kProgram,
           "Do not show &confirmation messages",
           "Carries out commands without asking first...default is unchecked"),
    option("P_rwNoShowReboot", "NoShowReboot", "chkNoShowReboot", kProgram,
           "Do not &offer a restart when leaving",
           "Never asks to restart Windows when Korvex closes...default is unchecked"),
    option("P_rwNoSaveTab", "NoSaveTab", "chkNoSaveTab", kProgram, "Do not remember the last &page",
           "Opens Korvex on its first page each time...default is unchecked"),
    option("P_rwNoSaveWindPos", "NoSaveWindPos", "chkNoSaveWindPos", kProgram,
           "Do not remember the &window position",
           "Opens Korvex in the middle of the screen each time...default is unchecked"),
    clearing("P_rwClearRUNReboot", "ClearRUNReboot", "chkClearRUNReboot", "Clear the R&un list",
             "Clears the commands typed into Run when Windows starts...default is unchecked"),
    clearing("P_rwClearMRUsReboot", "ClearMRUsReboot", "chkClearMRUsReboot",
             "Clear all lists of &most recently used items",
             "Clears the lists of files and searches used last when Windows starts"
             "...default is unchecked"),
    clearing("P_rwClearDocsReboot", "ClearDOCSReboot", "chkClearDOCSReboot",
             "Clear the Start menu's document &list",
             "Empties Documents on the Start menu when Windows starts...default is unchecked"),
    clearing("P_rwClearIEURLListReboot", "ClearIEURLListReboot", "chkClearIEURLListReboot",
             "Clear Internet Explorer's &typed addresses",
             "Clears the addresses typed into Internet Explorer when Windows starts"
             "...default is unchecked"),
};
static_assert(propertiesAreUnique(kRows) && modesAreKnown(kRows));

}  // namespace

std::span<const Tweak> optionRows() { return kRows; }

}  // namespace korvex::engine
