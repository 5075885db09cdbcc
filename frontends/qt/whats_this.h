// What's-this help by the right mouse button, as Windows dialogs have it.
#pragma once

#include <QPoint>

class QMenu;
class QWidget;

namespace korvex::qt {

// Adds "What's This?" where the widget, or one that it lies in, has such a text.
void addWhatsThis(QMenu& menu, QWidget& widget, const QPoint& globalPlace);

// The pop-up menu for a place in a window; false where there is nothing to tell.
bool showWhatsThisMenu(QWidget& widget, const QPoint& globalPlace);

}  // namespace korvex::qt
