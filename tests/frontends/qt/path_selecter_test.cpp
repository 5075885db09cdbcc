// The folder picker on the screen, over the window that asks for a folder.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QTimer>

#include "dialogs/system/frm_path_selecter.h"
#include "program/program.h"
#include "qt/form_view.h"
#include "qt/qt_host.h"
#include "qt/qt_prompts.h"
#include "support/machines.h"

namespace korvex::qt {
namespace {

// Does its steps in the picker once that is on the screen.
void inPicker(QtHost& host, std::function<void(FormView&, dialogs::frmPathSelecter&)> steps) {
  host.onShown = [steps = std::move(steps)](FormView& view) {
    auto* picker = dynamic_cast<dialogs::frmPathSelecter*>(&view.form());
    if (picker == nullptr) return;
    QTimer::singleShot(0, &view, [&view, picker, steps] {
      view.activateWindow();
      EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
      steps(view, *picker);
      // A picker that a failure left open would keep the test waiting.
      if (testing::Test::HasFailure()) picker->close();
    });
  };
}

struct PathSelecterWindow : testing::Test {
  test::TestMachine machine{"windows-98"};
  QtPrompts prompts;
  QtHost host;
  program::Program program{*machine, prompts, {.askBeforeDiscarding = false}};

  void SetUp() override {
    program.formBook().setHost(&host);
    prompts.folderPicker = [this](std::string_view title) { return program.pickFolder(title); };
    ASSERT_EQ(program::StartResult::Started, program.start());
  }
  void TearDown() override { EXPECT_TRUE(program.finish()); }
};

TEST_F(PathSelecterWindow, TheKeyboardAloneFindsAFolder) {
  ASSERT_EQ(0, machine->files().createFolder("C:\\Aaa\\Inner"));
  inPicker(host, [](FormView& view, dialogs::frmPathSelecter& picker) {
    QWidget* list = view.widgetOf(picker.DirFolder);
    QTest::keyClick(&view, Qt::Key_F, Qt::AltModifier);
    EXPECT_EQ(list, QApplication::focusWidget());
    QTest::keyClick(list, Qt::Key_Down);  // below the drive, the first folder
    EXPECT_EQ("C:\\Aaa", picker.txtCreateDirName.Text.get());
    QTest::keyClick(list, Qt::Key_O, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([&picker] {
      return picker.DirFolder.ListCount() > 0 && picker.DirFolder.items().back() == "    Inner";
    }));
    // The letter took the focus to its button.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F, Qt::AltModifier);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  });
  EXPECT_EQ("C:\\Aaa\\Inner", prompts.pickFolder("Where to?"));
}

TEST_F(PathSelecterWindow, EscapeChoosesNothingAndTheNextPickerBeginsAnew) {
  inPicker(host, [](FormView& view, dialogs::frmPathSelecter& picker) {
    EXPECT_EQ("Where to?", picker.lblInfo.Caption.get());
    picker.txtCreateDirName.Text = "C:\\WINDOWS";
    QTest::keyClick(&view, Qt::Key_Escape);
  });
  EXPECT_EQ(std::nullopt, prompts.pickFolder("Where to?"));
  inPicker(host, [](FormView& view, dialogs::frmPathSelecter& picker) {
    EXPECT_EQ("C:\\", picker.txtCreateDirName.Text.get());
    QTest::keyClick(&view, Qt::Key_Escape);
  });
  EXPECT_EQ(std::nullopt, prompts.pickFolder("And now?"));
}

}  // namespace
}  // namespace korvex::qt
