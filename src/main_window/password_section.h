// PasswordSection: on the Options page, whether Korvex asks for a password, and the way to set one.
#pragma once

#include <vector>

#include "forms/controls.h"
#include "forms/form.h"
#include "forms/form_book.h"
#include "foundation/session.h"
#include "main_window/page_section.h"
#include "protection/program_password.h"

namespace korvex::main_window {

class PasswordSection : public PageSection {
 public:
  PasswordSection(forms::Form& form, foundation::Session& session, forms::FormBook& formBook,
                  protection::ProgramPassword& password);

  std::vector<forms::Layout> groups(engine::Page page) override;
  void load() override { p_DeterminePasswordProtection(); }

 private:
  void p_DeterminePasswordProtection();

  foundation::Session& session_;
  protection::ProgramPassword& password_;
  forms::Label& lblPassword_;
  forms::CommandButton& cmdPassword_;
};

}  // namespace korvex::main_window
