// Fields for text boxes.
#pragma once

#include <QWidget>

#include "forms/controls.h"
#include "qt/bindings.h"

namespace korvex::qt {

QWidget* makeTextBox(forms::TextBox& control, QWidget* parent, Bindings& bindings);

}  // namespace korvex::qt
