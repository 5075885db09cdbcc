// The menu "Machine".
#include "qt/machine_menu.h"

#include <QFileDialog>
#include <QLayout>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QShortcut>
#include <utility>

#include "program/open_machine.h"
#include "program/recent_machines.h"
#include "qt/form_view.h"
#include "qt/text.h"

namespace korvex::qt {
namespace {

using Chosen = std::function<void(const std::string&)>;

void choose(FormView& view, const std::string& folder, const Chosen& chosen) {
  const platform::OpenedMachine opened = program::openMachine(folder, platform::OpenMode::Read);
  if (opened.machine) {
    chosen(folder);
  } else {
    QMessageBox::critical(&view, "Korvex", toQt(opened.message));
  }
}

void fill(QMenu& menu, FormView& view, const Chosen& chosen) {
  menu.clear();
  QAction* const open = menu.addAction("&Open machine...");
  open->setShortcut(QKeySequence::Open);
  open->setToolTip(
      "Opens a machine of Korvex' own, a Wine prefix, or the drive of an installed "
      "Windows");
  QObject::connect(open, &QAction::triggered, &view, [&view, chosen] {
    const QString folder = QFileDialog::getExistingDirectory(
        &view, "Folder of the machine, Wine prefix or Windows drive");
    if (!folder.isEmpty()) choose(view, fromQt(folder), chosen);
  });
  menu.addSeparator();
  int number = 0;
  for (const auto& recent : program::recentMachines()) {
    const std::string folder = recent.string();
    QString text = toQt(folder);
    text.replace('&', "&&");
    if (++number < 10) text = QString("&%1 %2").arg(number).arg(text);
    QObject::connect(menu.addAction(text), &QAction::triggered, &view,
                     [&view, chosen, folder] { choose(view, folder, chosen); });
  }
  if (number == 0) menu.addAction("No machines were opened yet")->setEnabled(false);
}

}  // namespace

QMenuBar* makeMachineMenu(FormView& view, Chosen chosen) {
  auto* const bar = new QMenuBar(&view);
  QMenu* const menu = bar->addMenu("Machine");
  menu->setAccessibleName("Machine");
  menu->setToolTipsVisible(true);
  fill(*menu, view, chosen);
  // What was opened since by others shows up, too.
  QObject::connect(menu, &QMenu::aboutToShow, &view,
                   [menu, &view, chosen] { fill(*menu, view, chosen); });
  auto* const key = new QShortcut(Qt::Key_F10, &view);
  QObject::connect(key, &QShortcut::activated, bar,
                   [bar, menu] { bar->setActiveAction(menu->menuAction()); });
  view.layout()->setMenuBar(bar);
  return bar;
}

}  // namespace korvex::qt
