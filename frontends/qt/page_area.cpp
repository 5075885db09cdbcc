// A page that scrolls.
#include "qt/page_area.h"

#include <QLayout>
#include <QScrollBar>
#include <algorithm>

namespace korvex::qt {
namespace {

constexpr int kWidest = 960;
constexpr int kTallest = 600;
constexpr int kComfortable = 500;
constexpr int kStep = 20;
constexpr int kSmallestHeight = 80;

}  // namespace

PageArea::PageArea(QWidget* content, QWidget* parent) : QScrollArea(parent) {
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  // No stop for the Tab key: its controls are.
  setFocusPolicy(Qt::NoFocus);
  setWidget(content);
  content->setAutoFillBackground(false);
  viewport()->setAutoFillBackground(false);
}

QSize PageArea::sizeHint() const {
  const QLayout& layout = *widget()->layout();
  QSize size = layout.totalSizeHint().expandedTo(layout.totalMinimumSize());
  size.setWidth(std::min(size.width(), kWidest));
  if (layout.hasHeightForWidth()) {
    // Further columns are better than scrolling, as long as there is room for them.
    while (layout.totalHeightForWidth(size.width()) > kComfortable && size.width() < kWidest) {
      size.rwidth() += kStep;
    }
    size.setHeight(layout.totalHeightForWidth(size.width()));
    // Styles take a few pixels for frames: they must not cost the last column.
    size.rwidth() += kStep;
  }
  return size.boundedTo({kWidest, kTallest});
}

QSize PageArea::minimumSizeHint() const {
  const QSize least = widget()->layout()->totalMinimumSize();
  // Wide enough to need no horizontal bar even when the vertical one is there.
  const int width = least.width() + verticalScrollBar()->sizeHint().width();
  return {std::min(width, kWidest), std::min(least.height(), kSmallestHeight)};
}

}  // namespace korvex::qt
