// The page of a window tells every control, by tab and group, and has its pictures beside it.
#include "qt/handbook.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>

#include "frontends/qt/sample_form.h"
#include "qt/form_view.h"
#include "qt/text.h"
#include "support/temporary_folder.h"

namespace korvex::test {
namespace {

TEST(Handbook, TellsEveryControlAndShowsEveryTab) {
  SampleForm form;
  form.tabPages.SelectedItem = 2;
  qt::FormView view(form);
  view.showInPlace();
  const TemporaryFolder folder;
  const QString path = qt::toQt(folder.path().string());
  ASSERT_TRUE(qt::canBeUsed(form));
  ASSERT_TRUE(qt::writeHandbookPage(view, "A window for tests", path));
  QFile file(path + '/' + qt::toQt(form.name()) + ".md");
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const std::string page = file.readAll().toStdString();
  for (const forms::Control* control : form.controls()) {
    const bool told = control->kind() != forms::ControlKind::Label &&
                      control->kind() != forms::ControlKind::Frame &&
                      control->kind() != forms::ControlKind::TabStrip;
    if (!told || view.widgetOf(*control) == nullptr) continue;
    EXPECT_NE(std::string::npos, page.find("| `" + control->name() + "` |")) << control->name();
  }
  for (std::size_t i = 1; i <= form.tabPages.tabs().size(); ++i) {
    const QString name = qt::toQt(form.name()) + '-' + QString::number(i) + ".png";
    EXPECT_NE(std::string::npos, page.find(qt::fromQt(name)));
    EXPECT_FALSE(QImage(path + '/' + name).isNull()) << name.toStdString();
  }
  EXPECT_EQ(2, form.tabPages.SelectedItem.get()) << "as it was";
  EXPECT_FALSE(qt::writeHandbookPage(view, "x", path + "/missing"));
}

}  // namespace
}  // namespace korvex::test
