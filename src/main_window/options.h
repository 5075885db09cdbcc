// The program's own options and what the window remembers, under SOFTWARE\Korvex\Configuration.
#pragma once

#include <cstdint>
#include <string_view>

#include "forms/form.h"
#include "foundation/session.h"

namespace korvex::main_window {

constexpr std::string_view kConfiguration = "SOFTWARE\\Korvex\\Configuration";

// Sets the session's option flags (g_bNoShowReboot, ...) from what is stored; a missing one is off.
void readOptions(foundation::Session& session);

// The window's position. Load: into form.place (nothing there means centred). Save: from it; a
// window that was never placed leaves what is stored.
void P_SetWindowPos(foundation::Session& session, forms::Form& form, bool bLoad);
void forgetWindowPos(foundation::Session& session);

// A whole number stored under Configuration; fallback where it is missing.
std::int32_t readSetting(foundation::Session& session, std::string_view name,
                         std::int32_t fallback);

}  // namespace korvex::main_window
