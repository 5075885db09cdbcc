// Does to a form what a person's hand does: no disabled or hidden control is touched, and a field
// takes no more characters than fit.
#pragma once

#include <string>
#include <string_view>

#include "cli/steps.h"
#include "forms/form.h"

namespace korvex::cli {

// Throws Failure: Usage for a control or item that is not there or of another kind, Failed for one
// that a person cannot use now.
void perform(forms::Form& form, const Step& step);

// Sets a check box to a CheckValue.
void setCheckBox(forms::Form& form, std::string_view control, int value);
// Types into a text box, or selects in a list that takes no other text.
void fillField(forms::Form& form, std::string_view control, const std::string& text);
void typeText(forms::Form& form, std::string_view control, const std::string& text);

}  // namespace korvex::cli
