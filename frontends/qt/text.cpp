// Conversion of text.
#include "qt/text.h"

#include <QTextDocument>

namespace korvex::qt {
namespace {

constexpr int kWrapTipsLongerThan = 70;

// The UTF-16 unit of a surrogate in its three-byte form (ED A0..BF 80..BF) at the position; 0 for
// anything else.
char16_t surrogateAt(std::string_view text, std::size_t at) {
  if (at + 3 > text.size()) return 0;
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
  if (byte(0) != 0xED || byte(1) < 0xA0 || byte(1) > 0xBF || (byte(2) & 0xC0) != 0x80) return 0;
  return static_cast<char16_t>(0xD000 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F));
}

QString plainUtf8(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

QString toQt(std::string_view text) {
  QString result;
  std::size_t start = 0;
  for (std::size_t at = text.find('\xED'); at != std::string_view::npos;) {
    const char16_t unit = surrogateAt(text, at);
    if (unit == 0) {
      at = text.find('\xED', at + 1);
      continue;
    }
    result += plainUtf8(text.substr(start, at - start));
    result += QChar(unit);
    start = at + 3;
    at = text.find('\xED', start);
  }
  return start == 0 ? plainUtf8(text) : result + plainUtf8(text.substr(start));
}

std::string fromQt(const QString& text) {
  std::string result;
  qsizetype start = 0;
  const auto addUpTo = [&](qsizetype end) {
    result += QStringView(text).mid(start, end - start).toUtf8().toStdString();
  };
  for (qsizetype i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i].unicode();
    if (!QChar::isSurrogate(unit)) continue;
    if (QChar::isHighSurrogate(unit) && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
      ++i;
      continue;
    }
    addUpTo(i);
    result += static_cast<char>(0xED);
    result += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
    result += static_cast<char>(0x80 | (unit & 0x3F));
    start = i + 1;
  }
  addUpTo(text.size());
  return result;
}

QString withoutMnemonics(std::string_view caption) {
  std::string plain;
  for (std::size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == '&' && ++i == caption.size()) break;
    plain += caption[i];
  }
  return toQt(plain);
}

QString tipText(std::string_view text) {
  QString plain = toQt(text);
  if (plain.size() <= kWrapTipsLongerThan && !Qt::mightBeRichText(plain)) return plain;
  return "<qt>" + plain.toHtmlEscaped().replace('\n', "<br>") + "</qt>";
}

}  // namespace korvex::qt
