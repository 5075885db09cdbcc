// The classic look: grey, with edges.
#include "qt/style.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <QToolTip>
#include <QWidget>
#include <algorithm>

namespace korvex::qt {
namespace {

// The colours of a new Windows 2000 desktop.
constexpr QRgb kFace = 0xFFD4D0C8;
constexpr QRgb kShadow = 0xFF808080;
constexpr QRgb kDarkShadow = 0xFF404040;
constexpr QRgb kHighlight = 0xFF0A246A;
constexpr QRgb kTip = 0xFFFFFFE1;

// The boxes and circles of the classic look are drawn for one size of text.
constexpr int kIndicator = 13;

// Lets them grow with the font, and makes the grey state of a box unmistakable.
class ClassicStyle : public QProxyStyle {
 public:
  ClassicStyle() : QProxyStyle(QStyleFactory::create("Windows")) {}

  int pixelMetric(PixelMetric metric, const QStyleOption* option,
                  const QWidget* widget) const override {
    switch (metric) {
      case PM_IndicatorWidth:
      case PM_IndicatorHeight:
      case PM_ExclusiveIndicatorWidth:
      case PM_ExclusiveIndicatorHeight:
        break;
      default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
    const QFontMetrics metrics(widget != nullptr ? widget->font() : QApplication::font());
    return std::max(kIndicator, metrics.ascent());
  }

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    if (element != PE_IndicatorCheckBox && element != PE_IndicatorRadioButton) {
      return QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
    QStyleOptionButton drawn;
    static_cast<QStyleOption&>(drawn) = *option;
    drawn.rect = QRect(0, 0, kIndicator, kIndicator);
    if ((option->state & State_NoChange) != 0) {
      drawn.palette.setColor(QPalette::Text, QColor(kShadow));
      drawn.palette.setColor(QPalette::Base, QColor(kFace));
    }
    painter->save();
    painter->translate(option->rect.topLeft());
    painter->scale(option->rect.width() / double{kIndicator},
                   option->rect.height() / double{kIndicator});
    QProxyStyle::drawPrimitive(element, &drawn, painter, widget);
    painter->restore();
  }
};

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
  QApplication::setStyle(new ClassicStyle);
  // The application took the style over, which clang-tidy cannot know.
  const QPalette palette = classicPalette();  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)
  QApplication::setPalette(palette);
  QToolTip::setPalette(palette);
}

}  // namespace korvex::qt
