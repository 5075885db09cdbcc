// StartUp: what happens between starting Korvex and seeing its window, in the product's order.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "engine/pending_changes.h"
#include "foundation/session.h"
#include "platform/machine.h"

namespace korvex::main_window {

struct StartOptions {
  // Whether a second instance tells the person (DOUBLE_LOAD_WARNING) or just ends
  // (NO_DOUBLE_LOAD_WARNING).
  bool doubleLoadWarning = true;
  // Whether closing asks before it discards changes that were not applied. A front end without a
  // person in front of it discards them, as the product always did.
  bool askBeforeDiscarding = true;
};

enum class StartResult { NotYet, Started, SecondInstance, NoRights, Failed };

class StartUp {
 public:
  StartUp(foundation::Session& session, engine::PendingChanges& pending, StartOptions options);

  // Everything up to the reading of the controls. Anything but Started means that the program is
  // to end; the person has been told then (but see doubleLoadWarning).
  StartResult prepare();

  void p_LogHouseWork();
  bool p_CheckLocalInstance();
  bool p_DetermineRights();
  void P_CheckPFIAssociation();

 private:
  foundation::Session& session_;
  engine::PendingChanges& pending_;
  StartOptions options_;
  std::unique_ptr<platform::InstanceClaim> claim_;
};

// The facts that the readers need, found without any write: for runs that show no window.
void detectReadOnly(foundation::Session& session);

// The program's own log; "" before the program's folder is known.
std::string runLogPath(const foundation::Session& session);

}  // namespace korvex::main_window
