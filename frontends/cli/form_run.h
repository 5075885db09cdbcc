// form run: drives a form as a person would.
#pragma once

#include <string>
#include <vector>

#include "cli/context.h"

namespace korvex::cli {

ExitCode runForm(Context& context, const std::string& form, const std::vector<std::string>& words);

// The registered name of a form, typed in any case. Throws Failure (Usage).
std::string formNamed(const std::string& typed);

}  // namespace korvex::cli
