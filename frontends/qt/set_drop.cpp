// A filter for what is dragged onto a window.
#include "qt/set_drop.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QTimer>
#include <QUrl>
#include <utility>

#include "qt/form_view.h"
#include "qt/text.h"

namespace korvex::qt {
namespace {

QString setIn(const QMimeData& data) {
  const QList<QUrl> urls = data.urls();
  if (urls.size() != 1) return {};
  const QString file = urls.front().toLocalFile();
  return file.endsWith(".kvx", Qt::CaseInsensitive) ? file : QString();
}

class SetDrop : public QObject {
 public:
  SetDrop(FormView& view, std::function<void(const std::string&)> take)
      : QObject(&view), view_(view), take_(std::move(take)) {}

  bool eventFilter(QObject*, QEvent* event) override {
    const QEvent::Type type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) return false;
    auto& drop = static_cast<QDropEvent&>(*event);
    const QString file = setIn(*drop.mimeData());
    const QWidget* modal = QApplication::activeModalWidget();
    if (file.isEmpty() || view_.form().Busy || (modal != nullptr && modal != &view_)) return false;
    drop.acceptProposedAction();
    // Whoever dragged it is not to wait for what is done with it.
    if (type == QEvent::Drop) {
      QTimer::singleShot(0, &view_, [this, path = fromQt(file)] { take_(path); });
    }
    return true;
  }

 private:
  FormView& view_;
  std::function<void(const std::string&)> take_;
};

}  // namespace

void takeDroppedSets(FormView& view, std::function<void(const std::string& file)> take) {
  view.setAcceptDrops(true);
  view.installEventFilter(new SetDrop(view, std::move(take)));
}

}  // namespace korvex::qt
