// The icon: three sliders, as on a mixing desk.
#include "qt/icon.h"

#include <QPainter>
#include <QPixmap>
#include <array>

namespace korvex::qt {
namespace {

// Drawn on a board of 16 by 16.
constexpr double kBoard = 16;
constexpr std::array<double, 3> kKnobs{10.2, 4.8, 7.6};

QPixmap drawn(int size) {
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(size / kBoard, size / kBoard);

  QLinearGradient board(0, 0, 0, kBoard);
  board.setColorAt(0, QColor(0x2A, 0x8C, 0x8C));
  board.setColorAt(1, QColor(0x0B, 0x4F, 0x5C));
  painter.setPen(Qt::NoPen);
  painter.setBrush(board);
  painter.drawRoundedRect(QRectF(0.5, 0.5, 15, 15), 3, 3);

  for (std::size_t i = 0; i < kKnobs.size(); ++i) {
    const double x = 4 + 4.0 * static_cast<double>(i);
    painter.setPen(QPen(QColor(255, 255, 255, 150), 1, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(x, 3.2), QPointF(x, 12.8));
    painter.setPen(Qt::NoPen);
    painter.setBrush(i == 1 ? QColor(0xFF, 0xC8, 0x3D) : QColor(Qt::white));
    painter.drawRoundedRect(QRectF(x - 1.5, kKnobs[i] - 1.1, 3, 2.2), 0.7, 0.7);
  }
  return pixmap;
}

}  // namespace

QIcon programIcon() {
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 64, 128, 256}) icon.addPixmap(drawn(size));
  return icon;
}

}  // namespace korvex::qt
