// Recording clicks, and discarding what was not applied.
#include "engine/pending_changes.h"

#include <fmt/format.h>

#include "engine/catalogue.h"
#include "engine/catalogue/rows.h"
#include "engine/raw_value.h"
#include "foundation/error_handler.h"
#include "foundation/reg_listing.h"
#include "foundation/reg_value.h"

namespace korvex::engine {

using foundation::Session;
using foundation::Variant;
using platform::HKEY;
using platform::Status;

namespace {

constexpr std::string_view kProgramKey = "SOFTWARE\\Korvex";
constexpr std::string_view kLoadValuesKey = "SOFTWARE\\Korvex\\LoadValues";

// The name under which a marker's option stands in LoadValues: without its "P_".
std::string_view loadName(std::string_view marker) {
  return marker.size() < 2 ? std::string_view{} : marker.substr(2);
}

// Integers as integers, an option button as the Boolean that it is.
Variant valueOf(const forms::Control& c) {
  if (const auto* box = dynamic_cast<const forms::CheckBox*>(&c)) {
    return static_cast<std::int16_t>(box->Value.get());
  }
  if (const auto* button = dynamic_cast<const forms::OptionButton*>(&c)) return button->Value.get();
  throw foundation::RuntimeError(foundation::kErrorInternal,
                                 fmt::format("{} has no state to record.", c.name()),
                                 "p_SetForApply");
}

std::string markerPath(int iBank, std::string_view sRoutine) {
  const std::string_view bank = bankKey(static_cast<Bank>(iBank));
  // Without a bank the marker stands beside the state key, where nothing looks for it.
  return fmt::format("{}\\{}", bank.empty() ? kProgramKey : bank, sRoutine);
}

Status createMarker(Session& session, const std::string& path) {
  HKEY key = 0;
  bool existed = false;
  const Status status =
      session.regTool.CreateRegNode(HKLM, path, key, existed, platform::KEY_ALL_ACCESS);
  session.g_lNewKey = static_cast<std::int32_t>(key);
  if (status == platform::ERROR_SUCCESS) session.registry().RegCloseKey(key);
  return status;
}

}  // namespace

PendingChanges::PendingChanges(Session& session, forms::FormBook& formBook)
    : session_(session), formBook_(formBook) {}

void PendingChanges::p_SetForApply(forms::Control& c, std::string_view sValueName,
                                   std::string_view sRoutine, int iBank, bool bOffice) {
  foundation::guarded(session_, "p_SetForApply", [&] {
    const bool byProgram = session_.g_bReverting || session_.g_bNoRecord;
    if (!byProgram && bOffice && refusedByOffice(c)) return;
    if (!byProgram) record(c, valueOf(c), sValueName, sRoutine, iBank);
    session_.g_bReverting = false;
  });
}

void PendingChanges::recordState(const forms::Control& c, std::int16_t state,
                                 std::string_view sValueName, std::string_view sRoutine,
                                 Bank bank) {
  if (session_.g_bNoRecord) return;
  foundation::guarded(session_, "p_SetForApply",
                      [&] { record(c, state, sValueName, sRoutine, static_cast<int>(bank)); });
}

bool PendingChanges::refusedByOffice(forms::Control& c) {
  const auto officeApply = [this]() -> forms::CommandButton* {
    forms::Form* office = formBook_.loaded(bankForm(Bank::Office));
    return office == nullptr ? nullptr : office->applyButton();
  };
  forms::CommandButton* apply = officeApply();
  const bool enabled = apply != nullptr && apply->Enabled;
  if (!p_CheckForLoadedAppsRestore || !p_CheckForLoadedAppsRestore()) return false;
  if (auto* box = dynamic_cast<forms::CheckBox*>(&c)) {
    session_.g_bReverting = true;  // for the Click that this assignment raises
    box->Value = box->Value == forms::vbChecked ? forms::vbUnchecked : forms::vbChecked;
    session_.g_bReverting = false;
  }
  if (apply != nullptr) apply->Enabled = enabled;
  return true;
}

void PendingChanges::record(const forms::Control& c, const Variant& value,
                            std::string_view sValueName, std::string_view sRoutine, int iBank) {
  const std::string_view state = stateKey(static_cast<Bank>(iBank));
  const std::string marker = markerPath(iBank, sRoutine);
  Status lRetVal = platform::ERROR_SUCCESS;
  {
    // Marker and state value are one change: a crash between them would lose the click.
    platform::RegistryChange change(session_.registry());
    lRetVal = change.status();
    if (lRetVal == platform::ERROR_SUCCESS) {
      // Compared first, stored after: the marker stays until the change is applied or undone.
      bool bMissing = false;
      const Variant known = foundation::P_ReadRegValue(session_, HKLM, state, sValueName, bMissing);
      const bool differs = foundation::variantText(known) != std::to_string(*value.number());
      lRetVal = differs ? createMarker(session_, marker)
                        : missingIsFine(session_.regTool.DeleteOneRegNode(HKLM, marker));
      Status written = platform::ERROR_SUCCESS;
      foundation::P_WriteRegValue(session_, HKLM, state, sValueName, value,
                                  platform::KEY_ALL_ACCESS, false, &written);
      if (lRetVal == platform::ERROR_SUCCESS) lRetVal = missingIsFine(written);
    }
    if (lRetVal == platform::ERROR_SUCCESS) lRetVal = change.commit();
  }
  // Banks below 1 do not exist, but they are the main window's as far as its button goes.
  const std::string_view owner =
      iBank < 3 ? bankForm(Bank::MainWindow) : bankForm(static_cast<Bank>(iBank));
  if (!owner.empty()) {
    if (auto* apply = formBook_.load(owner).applyButton()) apply->Enabled = true;
  }
  session_.trace.enter("[p_SetForApply]");
  session_.trace.dump("lRetVal&", lRetVal);
  session_.trace.dump("g_lNewKey&", session_.g_lNewKey);
  session_.trace.dump("c.Name", c.name());
  changed.raise();
}

std::vector<std::string> PendingChanges::waiting(Bank bank) const {
  return foundation::splitList(foundation::P_EnumRegKeysFaster(session_, HKLM, bankKey(bank)));
}

int PendingChanges::count() const {
  return static_cast<int>(waiting(Bank::MainWindow).size() + waiting(Bank::Configuration).size());
}

void PendingChanges::discard(Bank bank) {
  for (const std::string& routine : waiting(bank)) discard(bank, routine);
  changed.raise();
}

void PendingChanges::discard(Bank bank, std::string_view routine) {
  foundation::guarded(session_, "discard", [&] {
    const Status status =
        session_.regTool.DeleteRegNodes(HKLM, markerPath(static_cast<int>(bank), routine));
    session_.trace.dump("lRetVal&", status);
  });
}

void PendingChanges::p_FillLoadValues() {
  session_.trace.enter("[p_FillLoadValues]");
  platform::RegistryChange change(session_.registry());
  Status lRetVal = change.status();
  HKEY key = 0;
  bool existed = false;
  if (lRetVal == platform::ERROR_SUCCESS) {
    lRetVal = session_.regTool.CreateRegNode(HKLM, kLoadValuesKey, key, existed,
                                             platform::KEY_ALL_ACCESS);
  }
  if (lRetVal == platform::ERROR_SUCCESS) session_.registry().RegCloseKey(key);
  for (const Tweak& option : optionRows()) {
    if (lRetVal == platform::ERROR_SUCCESS) lRetVal = rememberOption(session_, option);
  }
  if (lRetVal == platform::ERROR_SUCCESS) lRetVal = change.commit();
  session_.trace.dump("lRetVal&", lRetVal);
}

Status rememberOption(Session& session, const Tweak& option) {
  platform::OpenKey loadValues(session.registry(), HKLM, kLoadValuesKey, platform::KEY_ALL_ACCESS);
  if (loadValues.status() != platform::ERROR_SUCCESS) return missingIsFine(loadValues.status());
  platform::OpenKey options(session.registry(), option.root, option.key, platform::KEY_QUERY_VALUE);
  const std::string_view name = loadName(option.property);
  if (options.status() == platform::ERROR_FILE_NOT_FOUND) {
    return missingIsFine(session.registry().RegDeleteValueA(loadValues.get(), name));
  }
  if (options.status() != platform::ERROR_SUCCESS) return options.status();
  return copyRawValue(session.registry(), options.get(), option.value, loadValues.get(), name);
}

void PendingChanges::p_DestroyUserPrefSubKeys() {
  session_.trace.enter("[p_DestroyUserPrefSubKeys]");
  platform::RegistryChange change(session_.registry());
  Status lRetVal = change.status();
  if (lRetVal == platform::ERROR_SUCCESS) lRetVal = restoreOptions();
  for (const std::string_view key : {kLoadValuesKey, bankKey(Bank::MainWindow)}) {
    // After a failure everything stays for the next start to clear: what LoadValues holds is
    // nowhere else.
    if (lRetVal == platform::ERROR_SUCCESS) {
      lRetVal = missingIsFine(session_.regTool.DeleteRegNodes(HKLM, key));
    }
  }
  if (lRetVal == platform::ERROR_SUCCESS) lRetVal = change.commit();
  session_.trace.dump("lRetVal&", lRetVal);
  changed.raise();
}

Status PendingChanges::restoreOptions() {
  auto& registry = session_.registry();
  std::vector<std::string> markers;
  const Status listed =
      listSubKeys(registry, HKLM, kConfigurationKey, platform::KEY_ALL_ACCESS, markers);
  if (listed != platform::ERROR_SUCCESS || markers.empty()) return missingIsFine(listed);
  platform::OpenKey options(registry, HKLM, kConfigurationKey, platform::KEY_ALL_ACCESS);
  if (options.status() != platform::ERROR_SUCCESS) return options.status();
  platform::OpenKey loadValues(registry, HKLM, kLoadValuesKey, platform::KEY_QUERY_VALUE);
  // Without what was kept nothing is known of the old values, and the options stay as they are.
  if (loadValues.status() != platform::ERROR_SUCCESS &&
      loadValues.status() != platform::ERROR_FILE_NOT_FOUND) {
    return loadValues.status();
  }
  for (const std::string& marker : markers) {
    const Tweak* option = findTweak(marker);
    const std::string_view name = loadName(marker);
    Status status = platform::ERROR_SUCCESS;
    if (loadValues.status() == platform::ERROR_SUCCESS && !name.empty()) {
      // Under the name that it was kept by, and under the option's own, which the program reads.
      status = copyRawValue(registry, loadValues.get(), name, options.get(), name);
      if (status == platform::ERROR_SUCCESS && option != nullptr &&
          option->bank == Bank::Configuration) {
        status = copyRawValue(registry, loadValues.get(), name, options.get(), option->value);
      }
    }
    if (status == platform::ERROR_SUCCESS) {
      status = session_.regTool.DeleteOneRegNode(options.get(), marker);
    }
    if (status != platform::ERROR_SUCCESS) return status;
  }
  return platform::ERROR_SUCCESS;
}

}  // namespace korvex::engine
