// The page of a window for docs/windows: a picture of each of its tabs, and what each control does,
// taken from the window itself.
#pragma once

#include <QString>
#include <string>

#include "forms/form.h"

namespace korvex::qt {

class FormView;

// The page's text. purpose is a sentence without a full stop; pictures stand beside it as
// NAME.png, or NAME-1.png and so on for the tabs.
std::string handbookPage(const forms::Form& form, const std::string& purpose);

// Writes the text and the pictures into the folder; the view is on the screen. Pages that are there
// already stay. False where a file could not be written.
bool writeHandbookPage(FormView& view, const std::string& purpose, const QString& folder);

// Whether the machine has the window: some control of it can be used, beyond the one that closes
// it.
bool canBeUsed(const forms::Form& form);

}  // namespace korvex::qt
