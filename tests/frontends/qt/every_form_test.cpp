// Every registered form on every sample machine, as a person sees and uses it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>

#include "forms/controls.h"
#include "frontends/qt/visible_faults.h"
#include "program/program.h"
#include "qt/form_view.h"
#include "qt/style.h"
#include "support/machines.h"
#include "support/scripted_prompts.h"

namespace korvex::qt {
namespace {

using test::visibleFaults;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

// A form with a control of each kind that is laid out well.
class SampleForm : public forms::Form {
 public:
  SampleForm() : Form("frmSample", "Sample") {
    layout = forms::Layout::column({
        forms::Layout::grid(2, {forms::Layout::of(label), forms::Layout::of(text)}),
        forms::Layout::group("Boxes", {forms::Layout::of(first), forms::Layout::of(second)}),
        forms::Layout::of(list),
        forms::Layout::row({forms::Layout::space(), forms::Layout::of(ok)}),
    });
    list.AddItem("one");
    list.AccessibleName = "List";
  }
  forms::TextBox text{*this, "txtText"};
  forms::Label label{*this, "lblText", "&Text:", &text};
  forms::CheckBox first{*this, "chkFirst", "&First box"};
  forms::CheckBox second{*this, "chkSecond", "&Second box"};
  forms::ListBox list{*this, "lstList"};
  forms::CommandButton ok{*this, "cmdOk", "&OK"};
};

class Faults : public testing::Test {
 protected:
  FormView& show() {
    view_.emplace(form_);
    view_->showInPlace();
    QApplication::processEvents();
    return *view_;
  }
  std::vector<std::string> seen() {
    QApplication::processEvents();
    return visibleFaults(*view_);
  }
  SampleForm form_;
  std::optional<FormView> view_;
};

TEST_F(Faults, AGoodFormHasNone) {
  show();
  EXPECT_THAT(seen(), IsEmpty());
}

TEST_F(Faults, EachKindIsFound) {
  FormView& view = show();
  QWidget* first = view.widgetOf(form_.first);
  QWidget* second = view.widgetOf(form_.second);
  const QRect place = second->geometry();

  second->resize(10, place.height());
  EXPECT_THAT(visibleFaults(view), Contains(HasSubstr("chkSecond is cut off")));
  second->setGeometry(first->geometry());
  EXPECT_THAT(visibleFaults(view), Contains(HasSubstr("overlaps chkSecond")));
  second->setGeometry(place.translated(5000, 0));
  EXPECT_THAT(visibleFaults(view), Contains(HasSubstr("chkSecond stands outside")));
  second->setGeometry(place);
  form_.second.Caption = "&Fore";
  EXPECT_THAT(seen(), Contains(HasSubstr("chkSecond shares Alt+F with chkFirst")));
  form_.second.Caption = "&Second box";
  view.widgetOf(form_.text)->setAccessibleName("");
  EXPECT_THAT(seen(), Contains(HasSubstr("txtText has no name")));
  view.widgetOf(form_.text)->setAccessibleName("Text");
  QWidget::setTabOrder(second, first);
  EXPECT_THAT(seen(), Contains(HasSubstr("chkFirst comes after chkSecond")));
}

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

using Where = std::tuple<std::string, Look>;
class EveryForm : public testing::TestWithParam<Where> {};

TEST_P(EveryForm, LooksRightOnEveryPage) {
  const auto& [sample, look] = GetParam();
  useLook(look);
  OnSample run(sample);
  for (const program::FormRow& row : program::Program::forms()) {
    forms::Form& form = run.program.formBook().load(row.name);
    FormView view(form);
    view.showInPlace();
    auto* tabs = form.find<forms::TabStrip>("tabMain");
    const int pages = tabs == nullptr ? 1 : static_cast<int>(tabs->tabs().size());
    for (int page = 1; page <= pages; ++page) {
      if (tabs != nullptr) tabs->SelectedItem = page;
      QApplication::processEvents();
      EXPECT_THAT(visibleFaults(view), IsEmpty()) << form.name() << ", page " << page;
    }
    EXPECT_LE(view.width(), 1024);
    EXPECT_LE(view.height(), 720);
  }
}

INSTANTIATE_TEST_SUITE_P(Samples, EveryForm,
                         testing::Combine(testing::Values("windows-95", "windows-98", "windows-me",
                                                          "windows-nt4", "windows-2000",
                                                          "windows-2000-server"),
                                          testing::Values(Look::Desktop, Look::Classic)),
                         [](const auto& info) {
                           std::string name = std::get<0>(info.param);
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name +
                                  (std::get<1>(info.param) == Look::Classic ? "_classic" : "");
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
  EXPECT_THAT(form.StatusText.get(), HasSubstr("1 change waiting"));
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

class QtApplication : public testing::Environment {
 public:
  void SetUp() override {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    application_ = std::make_unique<QApplication>(count_, arguments_);
  }
  void TearDown() override { application_.reset(); }

 private:
  int count_ = 1;
  char name_[14] = "korvex-gui";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QApplication> application_;
};

const auto* const kApplication = testing::AddGlobalTestEnvironment(new QtApplication);

}  // namespace
}  // namespace korvex::qt
