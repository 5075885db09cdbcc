// OfficePage: what the page "MS Office" says of the Office on this machine.
#pragma once

#include <vector>

#include "forms/controls.h"
#include "forms/form.h"
#include "foundation/session.h"
#include "main_window/page_section.h"

namespace korvex::main_window {

class OfficePage : public PageSection {
 public:
  OfficePage(forms::Form& form, foundation::Session& session);

  std::vector<forms::Layout> groups(engine::Page page) override;
  void load() override { p_DetermineOfficeValues(); }

 private:
  void p_DetermineOfficeValues();

  foundation::Session& session_;
  forms::Label& lblOffice_;
};

}  // namespace korvex::main_window
