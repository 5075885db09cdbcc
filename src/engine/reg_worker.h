// RegWorker: carries out tweaks. Apply calls it by the names that the pending changes left.
//
// A failure of the machine is not raised: it is kept in bLastWriteFailed and lastStatus, traced,
// and the routine's pending change stays, so that the user can try again.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "engine/tweak.h"
#include "forms/form_book.h"
#include "foundation/session.h"
#include "foundation/variant.h"
#include "platform/status.h"

namespace korvex::engine {

class RegWorker {
 public:
  RegWorker(foundation::Session& session, forms::FormBook& formBook);

  // Runs the routine of that name. Throws foundation::RuntimeError for a name that is no routine.
  // Everything that one routine writes, and the end of its pending change, is one change of the
  // machine.
  bool call(std::string_view property);
  bool knows(std::string_view property) const;

  // Mode 21: swaps the Windows help file for an alternative one, and back.
  bool p_rwFlipTheHelpFile(bool on);

  // Specials, named by rows of the catalogue.
  bool P_rwDefrag(const Tweak& tweak);
  bool P_rwAutoPlay(const Tweak& tweak);
  bool P_rwStartMenuSpeed(const Tweak& tweak);

  foundation::Variant vCurrentValue;  // what the last call computed
  bool bLastWriteFailed = false;      // the failure flag of the last write
  platform::Status lastStatus = 0;    // and its status

 private:
  bool p_rwWriteRegChanges(const Tweak& tweak);
  bool p_MakeTheRegChange(const Tweak& tweak, const foundation::Variant& value);
  // The tri-state of the tweak's check box; its form is loaded where it is not.
  int checkValue(const Tweak& tweak);

  foundation::Session& session_;
  forms::FormBook& formBook_;
};

}  // namespace korvex::engine
