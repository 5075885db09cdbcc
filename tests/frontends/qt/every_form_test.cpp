// Every registered form on every sample machine, as a person sees and uses it.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

#include "forms/controls.h"
#include "frontends/qt/form_check.h"
#include "frontends/qt/keep_look.h"
#include "program/program.h"
#include "qt/form_view.h"
#include "qt/style.h"
#include "support/machines.h"
#include "support/scripted_prompts.h"
#include "support/test_offer.h"

namespace korvex::qt {
namespace {

// A program with its main window on a sample machine.
class OnSample {
 public:
  explicit OnSample(const std::string& sample)
      : machine(sample), program(*machine, prompts, {.askBeforeDiscarding = false}) {
    EXPECT_EQ(program.start(), program::StartResult::Started);
  }
  ~OnSample() { EXPECT_TRUE(program.finish()); }

  test::TestMachine machine;
  test::ScriptedPrompts prompts;
  program::Program program;
};

enum class Font { Usual, Large };
constexpr int kLargePoints = 16;
using Where = std::tuple<std::string, Look, Font>;
class EveryForm : public testing::TestWithParam<Where> {};

TEST_P(EveryForm, LooksRightOnEveryPage) {
  const auto& [sample, look, font] = GetParam();
  const test::KeepLook kept;
  useLook(look);
  if (font == Font::Large) test::KeepLook::setPointSize(kLargePoints);
  OnSample run(sample);
  run.program.restoreDesk().offer = std::make_unique<test::TestOffer>(test::someItems());
  for (const program::FormRow& row : program::Program::forms()) {
    forms::Form& form = run.program.formBook().load(row.name);
    FormView view(form);
    view.showInPlace();
    QApplication::processEvents();
    EXPECT_EQ(test::checkForm(view), std::vector<std::string>{}) << form.name();
  }
}

INSTANTIATE_TEST_SUITE_P(Samples, EveryForm,
                         testing::Combine(testing::Values("windows-95", "windows-98", "windows-me",
                                                          "windows-nt4", "windows-2000",
                                                          "windows-2000-server"),
                                          testing::Values(Look::Desktop, Look::Classic),
                                          testing::Values(Font::Usual, Font::Large)),
                         [](const auto& info) {
                           std::string name = std::get<0>(info.param);
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name +
                                  (std::get<1>(info.param) == Look::Classic ? "_classic" : "") +
                                  (std::get<2>(info.param) == Font::Large ? "_large" : "");
                         });

TEST(MainWindow, TheKeyboardAloneTicksAndApplies) {
  OnSample run("windows-2000");
  forms::Form& form = run.program.formBook().load("frmMain");
  FormView view(form);
  view.showInPlace();
  view.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
  auto* box = form.find<forms::CheckBox>("chkHideRun");
  auto* apply = form.find<forms::CommandButton>("cmdApply");
  ASSERT_FALSE(apply->Enabled);

  for (int stops = 0; QApplication::focusWidget() != view.widgetOf(*box); ++stops) {
    ASSERT_LT(stops, 40) << "the Tab key never reaches chkHideRun";
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
  EXPECT_EQ(box->Value, forms::vbChecked);
  EXPECT_TRUE(apply->Enabled);
  EXPECT_NE(form.StatusText->find("1 change waiting"), std::string::npos);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::AltModifier);
  // A button pressed by its letter shows it for a moment before it acts.
  EXPECT_TRUE(QTest::qWaitFor([apply] { return !apply->Enabled; }));

  const platform::OpenKey key(run.machine.registry(), platform::HKEY_CURRENT_USER,
                              "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer",
                              platform::KEY_QUERY_VALUE);
  std::uint32_t value = 0;
  std::uint32_t size = sizeof value;
  platform::RegType type = 0;
  ASSERT_EQ(run.machine.registry().RegQueryValueExA(key.get(), "NoRun", &type, &value, &size), 0);
  EXPECT_EQ(type, platform::REG_DWORD);
  EXPECT_EQ(value, 1u);
}

}  // namespace
}  // namespace korvex::qt
