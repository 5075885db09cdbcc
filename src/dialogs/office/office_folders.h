// OfficeFolders: the folders of Word, Excel and PowerPoint. Each is shown, and written as soon as
// another one is chosen.
#pragma once

#include <string_view>
#include <vector>

#include "dialogs/dialog_parts.h"
#include "forms/controls.h"
#include "forms/layout.h"

namespace korvex::dialogs {

class OfficeFolders {
 public:
  // Makes the controls, which the form owns.
  OfficeFolders(forms::Form& form, const DialogParts& parts);

  // Those of an application ("Microsoft Word"): label, field and button beside each other.
  forms::Layout layout(std::string_view group) const;
  void read();

 private:
  struct Row;
  struct Folder {
    const Row* row;
    forms::TextBox* field;
    forms::Label* label;
    forms::CommandButton* button;
  };
  struct Place {
    std::string_view key;
    std::string_view value;
  };
  static const std::vector<Row>& rows();

  Place placeOf(const Row& row) const;
  void show(const Folder& folder);
  void P_BrowseDialog(const Folder& folder);

  DialogParts parts_;
  std::vector<Folder> folders_;
};

}  // namespace korvex::dialogs
