// Where the applications of Office keep a user's options: the rows' .adapt. A row's key is written
// as Office 2000 has it; Office 97 keeps some elsewhere.
#pragma once

#include <string_view>

#include "engine/tweak.h"
#include "foundation/session.h"

namespace korvex::engine {

constexpr std::string_view kOnlyOffice97And2000 = "Only MS Office 97 & 2000 supported";

// A row's .lacks: Office 97 or 2000.
std::string_view needsOffice(const Tweak&, foundation::Session& session);

// The row's key, under the user's Office: "...\\9.0\\Word\\Options" is "...\\8.0\\Word\\Options".
void keyOfOffice(Tweak& row, foundation::Session& session);
// The same of Excel, which kept its options under another name in Office 97.
void keyOfExcel(Tweak& row, foundation::Session& session);

// Of HKEY_CURRENT_USER, for what is no row: the part below the user's Office ("Word\\Options").
std::string_view officeKey(foundation::Session& session, std::string_view below);
// "Excel\\Options", or what Office 97 has in its place.
std::string_view excelOptionsKey(foundation::Session& session);
// The key with Excel's recent files.
std::string_view excelRecentKey(foundation::Session& session);

}  // namespace korvex::engine
