// PageArea: a page that scrolls once its window is smaller than it.
#pragma once

#include <QScrollArea>

namespace korvex::qt {

class PageArea : public QScrollArea {
 public:
  // Takes the content. The page looks like the window around it.
  PageArea(QWidget* content, QWidget* parent);

  // The size at which nothing scrolls, at most that of a small screen.
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
};

}  // namespace korvex::qt
