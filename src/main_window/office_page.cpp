// Finding Office.
#include "main_window/office_page.h"

#include <array>
#include <string_view>

#include "platform/registry.h"

namespace korvex::main_window {
namespace {

struct OfficeRow {
  std::string_view key;  // of the user; the newer one wins
  const char* text;
};
constexpr std::array kOffices{
    OfficeRow{"Software\\Microsoft\\Office\\9.0", "Microsoft Office 2000 is installed."},
    OfficeRow{"Software\\Microsoft\\Office\\8.0", "Microsoft Office 97 is installed."},
};
constexpr const char* kNone = "Only MS Office 97 && 2000 supported";

}  // namespace

OfficePage::OfficePage(forms::Form& form, foundation::Session& session)
    : session_(session), lblOffice_(form.own<forms::Label>("lblOffice", kNone)) {}

std::vector<forms::Layout> OfficePage::groups(engine::Page page) {
  if (page != engine::Page::MSOffice) return {};
  return {forms::Layout::group("Microsoft Office", {forms::Layout::of(lblOffice_)})};
}

void OfficePage::p_DetermineOfficeValues() {
  session_.trace.enter("[p_DetermineOfficeValues]");
  lblOffice_.Caption = kNone;
  for (const OfficeRow& office : kOffices) {
    const platform::OpenKey key(session_.registry(), platform::HKEY_CURRENT_USER, office.key,
                                platform::KEY_QUERY_VALUE);
    if (key.status() != platform::ERROR_SUCCESS) continue;
    lblOffice_.Caption = office.text;
    return;
  }
}

}  // namespace korvex::main_window
