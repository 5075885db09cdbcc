// RegWorker: carries out tweaks. Apply calls it by the names that the pending changes left.
//
// A failure of the machine is not raised: it is kept in bLastWriteFailed and lastStatus, traced,
// and the routine's pending change stays, so that the user can try again. What the routine had
// written by then is rolled back, and g_bRebootNeeded keeps what the routine before it said.
//
// A routine's result is true for success.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "engine/modes.h"
#include "engine/raw_value.h"
#include "engine/tweak.h"
#include "forms/form_book.h"
#include "foundation/session.h"
#include "foundation/variant.h"
#include "platform/status.h"

namespace korvex::engine {

class RegWorker {
 public:
  RegWorker(foundation::Session& session, forms::FormBook& formBook);

  // Runs the routine of that name ("P_rwRun", case ignored). Throws foundation::RuntimeError for a
  // name that is no routine. Everything that one routine writes, and the end of its pending change,
  // is one change of the machine.
  bool call(std::string_view property);
  // The same for a row whose facts a form has filled in: it stands in no table.
  bool run(const Tweak& tweak);
  bool knows(std::string_view property) const;

  // Mode 21: swaps the Windows help file for an alternative one, and back.
  bool p_rwFlipTheHelpFile(bool on);

  // Specials, named by rows of the catalogue.
  bool P_rwDefrag(const Tweak& tweak);
  bool P_rwStartMenuSpeed(const Tweak& tweak);
  // The four options that have a support program clear a list at the next start.
  bool p_rwClearAtRestart(const Tweak& tweak);

  foundation::Variant vCurrentValue;  // what the last call computed
  bool bLastWriteFailed = false;      // the failure flag of the last write
  platform::Status lastStatus = 0;    // and its status

 private:
  bool p_rwWriteRegChanges(const Tweak& tweak);
  bool p_MakeTheRegChange(const Tweak& tweak, const foundation::Variant& value);
  bool writeDefragEntry();
  bool removeDefragEntry();
  bool registerSupportProgram();
  // The tri-state of the tweak's check box; its form is loaded where it is not.
  int checkValue(const Tweak& tweak);
  // What the routine is to do: by its box, or in restore-defaults mode.
  Decision decisionFor(const Tweak& tweak);
  bool endPendingChange(const Tweak& tweak);
  // Keeps a status of the machine; a failure stays kept until the next call. True for success.
  bool keep(platform::Status status);
  // A missing key or value reads as an empty one. False where it could not be read.
  bool read(Root root, std::string_view key, std::string_view name, RawValue& value);
  bool write(Root root, std::string_view key, std::string_view name,
             const foundation::Variant& value);
  // A missing value or key is no error.
  bool remove(Root root, std::string_view key, std::string_view name);

  foundation::Session& session_;
  forms::FormBook& formBook_;
  // What a routine has to tell the person. Shown when its bracket is closed: nobody else can write
  // to the machine while one is open.
  std::string notice_;
  int noticeIcon_ = 0;
};

}  // namespace korvex::engine
