// A saved set dropped on a window.
#include "qt/set_drop.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

#include "qt/form_view.h"
#include "sample_form.h"

namespace korvex::test {
namespace {

TEST(SetDrop, TakesOneSavedSetWhileTheWindowIsFree) {
  SampleForm form;
  qt::FormView view(form);
  std::vector<std::string> taken;
  qt::takeDroppedSets(view, [&taken](const std::string& file) { taken.push_back(file); });
  view.showInPlace();
  const auto drop = [&view](const QStringList& urls) {
    QMimeData data;
    QList<QUrl> list;
    for (const QString& url : urls) list.push_back(QUrl(url));
    data.setUrls(list);
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&view, &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent event({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&view, &event);
    QApplication::processEvents();
    return event.isAccepted();
  };
  EXPECT_FALSE(drop({"file:///sets/profile.txt"}));
  EXPECT_FALSE(drop({"file:///a/profile.kvx", "file:///b/profile.kvx"}));
  EXPECT_FALSE(drop({"http://sets/profile.kvx"}));
  form.Busy = true;
  EXPECT_FALSE(drop({"file:///sets/profile.kvx"}));
  form.Busy = false;
  EXPECT_TRUE(drop({"file:///sets/my%20%C3%A4/PROFILE.KVX"}));
  EXPECT_EQ(taken, std::vector<std::string>{"/sets/my ä/PROFILE.KVX"});
}

}  // namespace
}  // namespace korvex::test
