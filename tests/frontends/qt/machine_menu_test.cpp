// The menu of machines: what was opened last, what can be opened, and what cannot.
#include "qt/machine_menu.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTimer>
#include <filesystem>

#include "program/recent_machines.h"
#include "qt/form_view.h"
#include "qt/text.h"
#include "sample_form.h"
#include "support/machines.h"

namespace korvex::test {
namespace {

namespace fs = std::filesystem;

class MachineMenu : public testing::Test {
 protected:
  MachineMenu() { setenv("XDG_STATE_HOME", state_.path().c_str(), 1); }

  QAction* entry(const fs::path& folder) {
    QMenu* menu = bar_->actions().front()->menu();
    emit menu->aboutToShow();
    for (QAction* action : menu->actions()) {
      if (action->text().contains(qt::toQt(folder.string()))) return action;
    }
    return nullptr;
  }

  TemporaryFolder state_;
  SampleForm form_;
  qt::FormView view_{form_};
  std::string chosen_;
  QMenuBar* bar_ = qt::makeMachineMenu(view_, [this](const std::string& f) { chosen_ = f; });
};

TEST_F(MachineMenu, OffersTheLastMachinesFirstAndHandsOnTheChosenOne) {
  const TestMachine first(Family::Nt);
  const TestMachine second(Family::NineX);
  for (const auto* machine : {&first, &second, &first}) {
    program::rememberMachine(machine->folder());
  }
  EXPECT_EQ((std::vector{first.folder(), second.folder()}), program::recentMachines());
  ASSERT_NE(nullptr, entry(second.folder()));
  entry(second.folder())->trigger();
  EXPECT_EQ(second.folder(), chosen_);
}

TEST_F(MachineMenu, AFolderThatIsNoMachineIsToldAndNothingElseHappens) {
  const TemporaryFolder folder;
  program::rememberMachine(folder.path());
  ASSERT_NE(nullptr, entry(folder.path()));
  QString told;
  QTimer::singleShot(20, [&] {
    auto* box = dynamic_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(nullptr, box);
    told = box->text();
    box->accept();
  });
  entry(folder.path())->trigger();
  EXPECT_TRUE(told.contains(qt::toQt(folder.path().string()))) << told.toStdString();
  EXPECT_EQ("", chosen_);
}

TEST_F(MachineMenu, KeepsTenAndForgetsFoldersThatAreGone) {
  std::vector<std::unique_ptr<TemporaryFolder>> folders;
  for (int i = 0; i < 12; ++i) {
    folders.push_back(std::make_unique<TemporaryFolder>());
    program::rememberMachine(folders.back()->path());
  }
  EXPECT_EQ(10u, program::recentMachines().size());
  const fs::path gone = folders.back()->path();
  folders.pop_back();
  EXPECT_EQ(9u, program::recentMachines().size());
  EXPECT_EQ(nullptr, entry(gone));
}

}  // namespace
}  // namespace korvex::test
