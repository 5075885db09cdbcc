// Showing the state, and opening the window that changes it.
#include "main_window/password_section.h"

#include "foundation/error_handler.h"

namespace korvex::main_window {

using forms::Layout;

namespace {

constexpr const char* kWindow = "frmPassword";

}  // namespace

PasswordSection::PasswordSection(forms::Form& form, foundation::Session& session,
                                 forms::FormBook& formBook, protection::ProgramPassword& password)
    : session_(session),
      password_(password),
      lblPassword_(form.own<forms::Label>("lblPassword", "")),
      cmdPassword_(form.own<forms::CommandButton>("cmdPassword", "Pa&ssword...")) {
  cmdPassword_.ToolTipText = "Sets, changes or removes the password that Korvex asks for";
  cmdPassword_.Click += [this, &formBook] {
    foundation::guarded(session_, "cmdPassword_Click", [this, &formBook] {
      formBook.showModal(kWindow);
      p_DeterminePasswordProtection();
    });
  };
}

std::vector<Layout> PasswordSection::groups(engine::Page page) {
  if (page != engine::Page::Options) return {};
  return {Layout::group("Password", {Layout::of(lblPassword_),
                                     Layout::row({Layout::of(cmdPassword_), Layout::space()})})};
}

void PasswordSection::p_DeterminePasswordProtection() {
  session_.trace.enter("[p_DeterminePasswordProtection]");
  const bool isSet = password_.isSet();
  session_.trace.dump("bPassword", isSet);
  lblPassword_.Caption =
      isSet ? "Korvex asks for a password on this machine." : "Korvex asks for no password.";
}

}  // namespace korvex::main_window
