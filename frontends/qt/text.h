// Text between the program (UTF-8 with two extensions, see platform/registry.h) and Qt.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace korvex::qt {

// A lone surrogate comes through whole both ways; other bytes that are no text become U+FFFD.
QString toQt(std::string_view text);
std::string fromQt(const QString& text);

// A caption for a widget that knows no mnemonics: '&' dropped, "&&" an ampersand.
QString withoutMnemonics(std::string_view caption);

// Text for tool tips and what's-this pop-ups, which would take "<" for markup: long lines wrap.
QString tipText(std::string_view text);

}  // namespace korvex::qt
