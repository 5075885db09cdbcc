// The store of pending changes: a click is recorded in the registry at once, and carried out on
// Apply. The registry is the queue; nothing is held in memory.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/tweak.h"
#include "forms/form_book.h"
#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::engine {

class PendingChanges {
 public:
  PendingChanges(foundation::Session& session, forms::FormBook& formBook);

  // Records a click on c: state value, marker, and the owner's Apply button (cmdApply of the
  // bank's form). bOffice: refused, and the box flipped back, while Office applications run.
  void p_SetForApply(forms::Control& c, std::string_view sValueName, std::string_view sRoutine,
                     int iBank, bool bOffice);

  // The same for a choice whose state is not its control's value, such as a button of
  // an option pair. Compared, stored and marked as p_SetForApply does it.
  void recordState(const forms::Control& c, std::int16_t state, std::string_view sValueName,
                   std::string_view sRoutine, Bank bank);

  // Routine names waiting in a bank, in the registry's order of enumeration.
  std::vector<std::string> waiting(Bank bank) const;
  // How many changes wait in the main window's two banks.
  int count() const;

  // Takes a bank's markers away: what a dialog that closes did not apply.
  void discard(Bank bank);
  void discard(Bank bank, std::string_view routine);

  // At start-up: what each option of bank 1 is now, for the way back.
  void p_FillLoadValues();
  // At closing: options that were not applied get their old values back, and the run's keys go.
  void p_DestroyUserPrefSubKeys();

  // Tells that a change was recorded or carried out (for status bars).
  forms::Event changed;
  // Whether Office applications run; the Office subsystem sets it. Unset means no.
  std::function<bool()> p_CheckForLoadedAppsRestore;

 private:
  bool refusedByOffice(forms::Control& c);
  void record(const forms::Control& c, const foundation::Variant& value,
              std::string_view sValueName, std::string_view sRoutine, int iBank);
  platform::Status restoreOptions();

  foundation::Session& session_;
  forms::FormBook& formBook_;
};

// Keeps an option's present value as the one that closing brings back; an option that has none is
// remembered as having none. Does nothing before p_FillLoadValues.
platform::Status rememberOption(foundation::Session& session, const Tweak& option);

}  // namespace korvex::engine
