// Telling which Office.
#include "main_window/office_page.h"

namespace korvex::main_window {
namespace {

constexpr std::int16_t kOffice97 = 8;
constexpr std::int16_t kOffice2000 = 9;

const char* textFor(std::int16_t version) {
  switch (version) {
    case kOffice2000:
      return "Microsoft Office 2000 is installed.";
    case kOffice97:
      return "Microsoft Office 97 is installed.";
    default:
      return "Only MS Office 97 && 2000 supported";
  }
}

}  // namespace

OfficePage::OfficePage(forms::Form& form, foundation::Session& session)
    : session_(session), lblOffice_(form.own<forms::Label>("lblOffice", "")) {}

std::vector<forms::Layout> OfficePage::groups(engine::Page page) {
  if (page != engine::Page::MSOffice) return {};
  return {forms::Layout::group("Microsoft Office", {forms::Layout::of(lblOffice_)})};
}

void OfficePage::p_DetermineOfficeValues() {
  session_.trace.enter("[p_DetermineOfficeValues]");
  lblOffice_.Caption = textFor(session_.g_iOfficeVer);
}

}  // namespace korvex::main_window
