// One tweak as a line for people and as JSON: what "list", "show" and "set" have in common.
#pragma once

#include <string>
#include <string_view>

#include "cli/output.h"
#include "engine/tweak.h"
#include "foundation/session.h"

namespace korvex::cli {

std::string_view stateName(engine::TweakState::Kind kind);  // "on"
// The same for a row; one without a control has no state of its own: "routine".
std::string_view stateName(const engine::Tweak& tweak, const engine::TweakState& state);
// The fields of a row and its state. text: what a text row's field shows.
Json tweakJson(const engine::Tweak& tweak, const engine::TweakState& state,
               const std::string& text);
// How the row stands. A text row is on where its text, as readText tells it, is not the default.
engine::TweakState rowState(const engine::Tweak& tweak, engine::TweakState read,
                            const std::string& text);

// A routine without a control: it can only be run, as restore-defaults does.
bool isRoutine(const engine::Tweak& tweak);
// Whether the row is a text field: it takes a text instead of on, off and grey.
bool isTextRow(const engine::Tweak& tweak);

}  // namespace korvex::cli
