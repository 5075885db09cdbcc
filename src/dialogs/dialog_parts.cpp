// Making openers, and walking layouts.
#include "dialogs/dialog_parts.h"

#include <string>

#include "foundation/error_handler.h"

namespace korvex::dialogs {

forms::CommandButton* makeOpener(forms::Form& form, const DialogParts& parts, const Opener& row) {
  if (!parts.formBook.knows(row.opens)) return nullptr;
  auto& button = form.own<forms::CommandButton>(row.name, row.caption);
  button.ToolTipText = row.toolTip;
  button.Click += [routine = form.name() + "." + row.name + "_Click", opens = row.opens,
                   &session = parts.session, &book = parts.formBook] {
    foundation::guarded(session, routine, [&book, opens] { book.showModal(opens); });
  };
  return &button;
}

std::vector<forms::Control*> controlsIn(const forms::Layout& layout) {
  std::vector<forms::Control*> controls;
  if (layout.control != nullptr) controls.push_back(layout.control);
  for (const forms::Layout& part : layout.parts) {
    for (forms::Control* control : controlsIn(part)) controls.push_back(control);
  }
  return controls;
}

}  // namespace korvex::dialogs
