// What's-this help by the right mouse button.
#include "qt/whats_this.h"

#include <QMenu>
#include <QWhatsThis>
#include <QWidget>

namespace korvex::qt {
namespace {

QWidget* withHelp(QWidget* widget) {
  while (widget != nullptr && widget->whatsThis().isEmpty()) {
    widget = widget->isWindow() ? nullptr : widget->parentWidget();
  }
  return widget;
}

}  // namespace

void addWhatsThis(QMenu& menu, QWidget& widget, const QPoint& globalPlace) {
  QWidget* helped = withHelp(&widget);
  if (helped == nullptr) return;
  if (!menu.isEmpty()) menu.addSeparator();
  QObject::connect(
      menu.addAction("&What's This?"), &QAction::triggered, helped,
      [helped, globalPlace] { QWhatsThis::showText(globalPlace, helped->whatsThis(), helped); });
}

bool showWhatsThisMenu(QWidget& widget, const QPoint& globalPlace) {
  QMenu menu;
  addWhatsThis(menu, widget, globalPlace);
  if (menu.isEmpty()) return false;
  menu.exec(globalPlace);
  return true;
}

}  // namespace korvex::qt
