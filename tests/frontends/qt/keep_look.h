// Puts style, colours and font of the application back.
#pragma once

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace korvex::test {

class KeepLook {
 public:
  KeepLook() = default;
  ~KeepLook() {
    QApplication::setStyle(QStyleFactory::create(style_));
    QApplication::setPalette(palette_);
    QApplication::setFont(font_);
  }
  KeepLook(const KeepLook&) = delete;
  KeepLook& operator=(const KeepLook&) = delete;

  static void setPointSize(int points) {
    QFont font = QApplication::font();
    font.setPointSize(points);
    QApplication::setFont(font);
  }

 private:
  QString style_ = QApplication::style()->name();
  QPalette palette_ = QApplication::palette();
  QFont font_ = QApplication::font();
};

}  // namespace korvex::test
