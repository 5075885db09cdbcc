// Lists and combo boxes.
#pragma once

#include <QWidget>

#include "forms/controls.h"
#include "qt/bindings.h"

namespace korvex::qt {

QWidget* makeListBox(forms::ListBox& control, QWidget* parent, Bindings& bindings);
QWidget* makeComboBox(forms::ComboBox& control, QWidget* parent, Bindings& bindings);

}  // namespace korvex::qt
