// The dialogs on a machine, without a main window.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "dialogs/system/frm_more_security.h"
#include "dialogs/tweak_dialog.h"
#include "forms/form_book.h"
#include "foundation/detection.h"
#include "support/machines.h"
#include "support/registry_view.h"
#include "support/scripted_prompts.h"

namespace korvex::dialogs {

// Shows a form by letting a test use it, which has to close it.
class HandHost : public forms::FormHost {
 public:
  void showModal(forms::Form& form) override {
    bool gone = false;
    const auto closing =
        form.closeRequested.subscribe([&gone, &form] { gone = gone || form.QueryUnload(); });
    if (use) use(form);
    EXPECT_TRUE(gone) << form.name() << " was left open";
  }
  std::function<void(forms::Form&)> use;
};

class DialogTest : public testing::Test {
 public:
  static constexpr const char* kPolicies =
      "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\System";
  static constexpr const char* kExplorer =
      "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer";
  static constexpr const char* kBank = "HKLM\\SOFTWARE\\Korvex\\CurrentSettingsVII";

  explicit DialogTest(const std::string& sample = "windows-2000")
      : machine(sample),
        session(machine.get(), prompts),
        worker(session, book),
        pending(session, book) {
    foundation::detectSystem(session);
    registry().put("HKLM\\SOFTWARE\\Korvex\\CurrentSettings", "", "\"\"");
    const DialogParts parts{session, worker, pending, book, true};
    book.add(frmMoreSecurity::kName, [parts] { return std::make_unique<frmMoreSecurity>(parts); });
    book.add("frmDrWat", [parts] {
      return std::make_unique<TweakDialog>("frmDrWat", "", engine::Bank::DrWat, parts);
    });
    book.setHost(&host);
  }

  test::RegistryView registry() { return test::RegistryView(machine.registry()); }
  frmMoreSecurity& dialog() {
    return dynamic_cast<frmMoreSecurity&>(book.load(frmMoreSecurity::kName));
  }
  forms::CheckBox& box(std::string_view control) {
    return *dialog().find<forms::CheckBox>(control);
  }
  std::vector<std::string> waiting() { return pending.waiting(engine::Bank::MoreSecurity); }

  test::TestMachine machine;
  test::ScriptedPrompts prompts;
  HandHost host;
  foundation::Session session;
  forms::FormBook book;
  engine::RegWorker worker;
  engine::PendingChanges pending;
};

}  // namespace korvex::dialogs
