// What every dialog is given, and buttons that open another one.
#pragma once

#include "engine/pending_changes.h"
#include "engine/reg_worker.h"
#include "forms/form.h"
#include "forms/form_book.h"
#include "forms/layout.h"
#include "foundation/session.h"

namespace korvex::dialogs {

// The objects outlive the dialogs.
struct DialogParts {
  foundation::Session& session;
  engine::RegWorker& regWorker;
  engine::PendingChanges& pending;
  forms::FormBook& formBook;
  // Whether closing asks before it discards changes; not where nobody is in front of it.
  bool askBeforeDiscarding = true;
};

// A button that opens another window of the program.
struct Opener {
  const char* name;  // "cmdDrWatson"
  const char* caption;
  const char* toolTip;
  const char* opens;  // "frmDrWat"
};

// Makes the button; null where the program has no such window.
forms::CommandButton* makeOpener(forms::Form& form, const DialogParts& parts, const Opener& row);

// All controls of a part of a layout, in its order.
std::vector<forms::Control*> controlsIn(const forms::Layout& layout);

}  // namespace korvex::dialogs
