// ActorFiles: where the Office Assistant's characters lie, and which one is shown.
#pragma once

#include <string>
#include <string_view>

#include "dialogs/dialog_parts.h"
#include "forms/controls.h"
#include "forms/layout.h"

namespace korvex::dialogs {

class ActorFiles {
 public:
  // Makes the controls, which the form owns.
  ActorFiles(forms::Form& form, const DialogParts& parts);

  forms::Layout layout();
  void read();

 private:
  struct Shown {
    forms::TextBox* field;
    forms::Label* label;
    forms::CommandButton* button;
  };
  Shown make(forms::Form& form, const std::string& name, const char* caption, const char* toolTip,
             const char* button, const char* buttonTip, void (ActorFiles::*handler)());
  void show(const Shown& shown, std::string_view value, std::string_view undeterminable);

  void p_ChangeCurrentActor();
  void changeActorPath();
  void changeActorSourcePath();
  void changeFolder(std::string_view value, std::string_view title);
  void write(std::string_view value, const std::string& text);
  std::string_view key() const;

  DialogParts parts_;
  Shown path_;
  Shown source_;
  Shown actor_;
};

}  // namespace korvex::dialogs
