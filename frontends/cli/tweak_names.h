// Finding the tweak, form or control that a person named, and telling what might have been meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/tweak.h"

namespace korvex::cli {

// By property name, also without its prefix. Throws Failure (Usage) with the nearest names.
const engine::Tweak& tweakNamed(std::string_view name);

// Up to three of the names that are nearest to the one typed, the nearest first.
std::vector<std::string> nearestNames(std::string_view typed,
                                      const std::vector<std::string>& names);
// " Did you mean a, b or c?", or "".
std::string suggestion(std::string_view typed, const std::vector<std::string>& names);

}  // namespace korvex::cli
