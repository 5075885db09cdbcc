// The question whether to restart Windows now, and the restart.
#pragma once

#include "foundation/session.h"

namespace korvex::main_window {

// Asks, unless the person never wants to be asked, and restarts on Yes. On NT and 2000
// g_bRebootNeeded is cleared then; on 95, 98 and Me the program ends after it.
void askForRestart(foundation::Session& session);

// Enables SeShutdownPrivilege for this process, as NT demands before a restart.
void p_AdjustToken(foundation::Session& session);

}  // namespace korvex::main_window
