// The application around the windows.
#include "qt/application.h"

#include <gtest/gtest.h>

#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <stdexcept>

#include "qt/form_view.h"
#include "qt/qt_host.h"
#include "sample_form.h"

namespace korvex::test {
namespace {

TEST(Application, AHandlerThatThrowsIsShownAndTheWindowLivesOn) {
  SampleForm form;
  form.cmdAdd.Click += [] { throw std::logic_error("the reason"); };
  form.tabPages.SelectedItem = 2;
  qt::QtHost host;
  QString shown;
  host.onShown = [&](qt::FormView& view) {
    QTimer::singleShot(0, &view, [&] {
      QTimer::singleShot(20, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) return;
        shown = box->text();
        box->accept();
      });
      QTest::mouseClick(view.widgetOf(form.cmdAdd), Qt::LeftButton);
      EXPECT_TRUE(view.isVisible());
      form.close();
    });
  };
  host.showModal(form);
  EXPECT_EQ(shown, "Something went wrong: the reason");
}

}  // namespace
}  // namespace korvex::test
