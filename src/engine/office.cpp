// Office 97 and 2000: the same options, not always in the same place.
#include "engine/office.h"

#include <fmt/format.h>

namespace korvex::engine {
namespace {

constexpr std::string_view kOffice2000 = "Software\\Microsoft\\Office\\9.0\\";
constexpr std::int16_t kVersion2000 = 9;

bool is97(const foundation::Session& session) {
  return session.g_iOfficeVer != 0 && session.g_iOfficeVer < kVersion2000;
}

}  // namespace

std::string_view needsOffice(const Tweak&, foundation::Session& session) {
  return session.g_iOfficeVer == 0 ? kOnlyOffice97And2000 : "";
}

std::string_view officeKey(foundation::Session& session, std::string_view below) {
  if (session.g_sOfficePath.empty())
    return session.lasting(fmt::format("{}{}", kOffice2000, below));
  return session.lasting(fmt::format("{}\\{}", session.g_sOfficePath, below));
}

std::string_view excelOptionsKey(foundation::Session& session) {
  return officeKey(session, is97(session) ? "Excel\\Microsoft Excel" : "Excel\\Options");
}

std::string_view excelRecentKey(foundation::Session& session) {
  return officeKey(session, is97(session) ? "Excel\\Recent File List" : "Excel\\Recent Files");
}

void keyOfOffice(Tweak& row, foundation::Session& session) {
  if (row.key.starts_with(kOffice2000)) {
    row.key = officeKey(session, row.key.substr(kOffice2000.size()));
  }
}

void keyOfExcel(Tweak& row, foundation::Session& session) { row.key = excelOptionsKey(session); }

}  // namespace korvex::engine
