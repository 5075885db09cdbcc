// The classic look: grey, with edges.
#include "qt/style.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>
#include <QToolTip>

namespace korvex::qt {
namespace {

// The colours of a new Windows 2000 desktop.
constexpr QRgb kFace = 0xFFD4D0C8;
constexpr QRgb kShadow = 0xFF808080;
constexpr QRgb kDarkShadow = 0xFF404040;
constexpr QRgb kHighlight = 0xFF0A246A;
constexpr QRgb kTip = 0xFFFFFFE1;

QPalette classicPalette() {
  QPalette palette(Qt::black, QColor(kFace), Qt::white, QColor(kDarkShadow), QColor(kShadow),
                   Qt::black, Qt::white, Qt::white, QColor(kFace));
  palette.setColor(QPalette::Midlight, QColor(0xFFE3E0DA));
  palette.setColor(QPalette::Shadow, Qt::black);
  palette.setColor(QPalette::AlternateBase, QColor(0xFFF2F0EC));
  palette.setColor(QPalette::Highlight, QColor(kHighlight));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::ToolTipBase, QColor(kTip));
  palette.setColor(QPalette::ToolTipText, Qt::black);
  palette.setColor(QPalette::PlaceholderText, QColor(kShadow));
  palette.setColor(QPalette::Link, Qt::blue);
  for (const auto role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text}) {
    palette.setColor(QPalette::Disabled, role, QColor(kShadow));
  }
  palette.setColor(QPalette::Disabled, QPalette::Base, QColor(kFace));
  return palette;
}

}  // namespace

bool lookNamed(std::string_view name, Look& look) {
  if (name.empty() || name == "desktop") {
    look = Look::Desktop;
  } else if (name == "windows") {
    look = Look::Classic;
  } else {
    return false;
  }
  return true;
}

void useLook(Look look) {
  if (look == Look::Desktop) return;
  QApplication::setStyle(QStyleFactory::create("Windows"));
  const QPalette palette = classicPalette();
  QApplication::setPalette(palette);
  QToolTip::setPalette(palette);
}

}  // namespace korvex::qt
