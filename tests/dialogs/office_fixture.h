// frmOffice on a machine: what the window needs beyond other dialogs.
#pragma once

#include <memory>
#include <string>

#include "backup/registry_backer.h"
#include "dialogs/office/frm_mrus.h"
#include "dialogs/office/frm_office.h"
#include "dialogs/office/running_applications.h"
#include "dialogs/one_dialog_fixture.h"

namespace korvex::dialogs {

struct BackerOf {
  explicit BackerOf(foundation::Session& session) : backer(session) {}
  backup::RegistryBacker backer;
};

// With a backer of its own, as the fixture makes dialogs of what every dialog is given.
class OfficeUnderTest : private BackerOf, public frmOffice {
 public:
  explicit OfficeUnderTest(const DialogParts& parts)
      : BackerOf(parts.session), frmOffice(parts, backer) {}
};

class OfficeTest : public OneDialogTest<OfficeUnderTest> {
 public:
  explicit OfficeTest(const std::string& sample) : OneDialogTest(sample) {
    pending.p_CheckForLoadedAppsRestore = [this] { return p_CheckForLoadedAppsRestore(session); };
    const DialogParts parts{session, worker, pending, book, true};
    book.add(frmMRUs::kName, [parts] { return std::make_unique<frmMRUs>(parts); });
  }

  void type(std::string_view box, const std::string& text) {
    control<forms::TextBox>(box).Text = text;
    control<forms::TextBox>(box).LostFocus.raise();
  }
  std::string text(std::string_view box) { return control<forms::TextBox>(box).Text; }
  void press(std::string_view button) { control<forms::CommandButton>(button).press(); }
  void apply() { dialog().cmdApply.press(); }
  // The last message, once.
  std::string told() {
    const std::string text = prompts.messages.empty() ? "" : prompts.messages.back().text;
    prompts.messages.clear();
    return text;
  }
};

class Office97 : public OfficeTest {
 public:
  Office97() : OfficeTest("windows-98") {}
};
class Office2000 : public OfficeTest {
 public:
  Office2000() : OfficeTest("windows-2000") {}
};

}  // namespace korvex::dialogs
