// The Jet database engine of a machine: which one there is, which of its settings are meant, and
// their keys, as the rows' .adapt. A row's key is written as Jet 4.0 has it for all programs.
//
// The program's own area says what is meant while no window does: JetGlobal (DWORD; 0 is Access
// alone, else all programs, which is so where there is none), JetSelect (an entry of the list of
// engines), JetVersion ("3.5": an older Jet than the newest that is there), JetModify (DWORD; 0
// keeps all of Jet's settings from being changed).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/tweak.h"
#include "foundation/session.h"

namespace korvex::engine {

// "4.0\\", "3.5\\" or "3.0\\": the newest that is there, or the one of JetVersion where it is
// there; "" for none.
std::string jetVersionPath(foundation::Session& session);

// The engines and formats of that Jet that can be set: "JET 4.0", "TEXT" and so on, in the order of
// the registry.
std::vector<std::string> jetEngines(foundation::Session& session);
// Whether the name is an engine of its own: "JET 2.X", not "TEXT".
bool isJetEngine(std::string_view engine);

// Whether JetModify lets the settings be changed, and what is told where it does not.
bool jetMayBeChanged(foundation::Session& session);
constexpr std::string_view kJetIsKept =
    "The setting JetModify of Korvex keeps Jet's settings as they are.";

// Whether the settings of all programs are meant, or Access's own.
bool jetIsGlobal(foundation::Session& session);
// The engine whose settings the engine rows are: the chosen one where it is one, else the newest.
std::string jetEngine(foundation::Session& session);
// The entry of the list that was chosen last, also a format; the first where none was. "" for none.
// For a window that begins: while it is open it knows its entry itself.
std::string jetSelected(foundation::Session& session);

// Of HKEY_LOCAL_MACHINE: "Software\\Microsoft\\Jet\\4.0\\Engines\\TEXT".
std::string_view jetKey(foundation::Session& session, std::string_view engine);

// A row's .adapt: the key of the format that its own key ends in; of the chosen engine.
void keyOfFormat(Tweak& row, foundation::Session& session);
void keyOfEngine(Tweak& row, foundation::Session& session);
// A row's .lacks: Office, Jet, the engine or format in question, and leave to change it.
std::string_view needsFormat(const Tweak& row, foundation::Session& session);
std::string_view needsEngine(const Tweak& row, foundation::Session& session);

}  // namespace korvex::engine
