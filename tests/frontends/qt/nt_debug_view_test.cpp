// frmNTDebug's two views: each looks right, and Escape leaves the one that is shown.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

#include "dialogs/nt/frm_nt_debug.h"
#include "frontends/qt/form_check.h"
#include "program/program.h"
#include "qt/form_view.h"
#include "support/machines.h"
#include "support/scripted_prompts.h"

namespace korvex::qt {
namespace {

TEST(NtDebugView, EscapeLeavesTheLoadOrderAndThenTheWindow) {
  test::TestMachine machine("windows-nt4");
  test::ScriptedPrompts prompts;
  program::Program program(*machine, prompts, {.askBeforeDiscarding = false});
  ASSERT_EQ(program.start(), program::StartResult::Started);
  auto& form = dynamic_cast<dialogs::frmNTDebug&>(program.formBook().load("frmNTDebug"));
  {
    FormView view(form);
    view.showInPlace();
    QApplication::processEvents();
    int closed = 0;
    const auto closing = form.closeRequested.subscribe([&closed] { ++closed; });

    form.cmdShowDriverLoadOrder.press();
    QApplication::processEvents();
    EXPECT_EQ(test::checkForm(view), std::vector<std::string>{});
    QTest::keyClick(&view, Qt::Key_Escape);
    QApplication::processEvents();
    EXPECT_EQ(closed, 0);
    EXPECT_TRUE(form.txtBOOTININT.Visible);
    EXPECT_EQ(test::checkForm(view), std::vector<std::string>{});
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_EQ(closed, 1);
  }
  EXPECT_TRUE(program.finish());
}

}  // namespace
}  // namespace korvex::qt
