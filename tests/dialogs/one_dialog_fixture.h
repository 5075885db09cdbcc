// One dialog on a machine, driven as a person does: opened, changed, closed, opened again. Where a
// test says so the machine refuses to write a value.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "dialogs/dialog_parts.h"
#include "engine/pending_changes.h"
#include "engine/reg_worker.h"
#include "forms/form_book.h"
#include "foundation/detection.h"
#include "platform/common/composed_machine.h"
#include "platform/common/registry_decorators.h"
#include "support/machines.h"
#include "support/registry_view.h"
#include "support/scripted_prompts.h"

namespace korvex::dialogs {

class RefusingRegistry : public platform::ForwardingRegistry {
 public:
  using ForwardingRegistry::ForwardingRegistry;
  platform::Status RegSetValueExA(platform::HKEY key, std::string_view name, platform::RegType type,
                                  const void* data, std::uint32_t size) override {
    if (!refused.empty() && name == refused) return platform::ERROR_ACCESS_DENIED;
    return ForwardingRegistry::RegSetValueExA(key, name, type, data, size);
  }
  std::string refused;  // the value's name
};

// Which programs have a window open, by its class.
struct OpenWindows : platform::Windows {
  bool FindWindowA(std::string_view className, std::string_view) override {
    return classes.contains(std::string(className));
  }
  std::set<std::string> classes;
};

template <typename Dialog>
class OneDialogTest : public testing::Test {
 public:
  explicit OneDialogTest(const std::string& sample = "windows-2000")
      : machine(sample),
        refusing(machine.registry()),
        composed(machine.get(), {.registry = &refusing, .windows = &windows}),
        session(composed, prompts),
        worker(session, book),
        pending(session, book) {
    foundation::detectSystem(session);
    registry().put("HKLM\\SOFTWARE\\Korvex\\CurrentSettings", "", "\"\"");
    const DialogParts parts{session, worker, pending, book, true};
    book.add(Dialog::kName, [parts] { return std::make_unique<Dialog>(parts); });
  }

  test::RegistryView registry() { return test::RegistryView(machine.registry()); }
  Dialog& dialog() { return dynamic_cast<Dialog&>(book.load(Dialog::kName)); }
  Dialog& reopened() {
    EXPECT_TRUE(book.unload(Dialog::kName));
    return dialog();
  }
  template <typename Control>
  Control& control(std::string_view name) {
    return *dialog().template find<Control>(name);
  }
  bool traced(std::string_view piece) {
    return session.trace.text().find(piece) != std::string::npos;
  }
  // A control that cannot be used, with the reason as its tool tip.
  void expectNone(std::string_view name, std::string_view reason) {
    EXPECT_FALSE(dialog().find(name)->Enabled) << name;
    EXPECT_EQ(reason, dialog().find(name)->ToolTipText.get()) << name;
  }

  test::TestMachine machine;
  RefusingRegistry refusing;
  OpenWindows windows;
  platform::ComposedMachine composed;
  test::ScriptedPrompts prompts;
  foundation::Session session;
  forms::FormBook book;
  engine::RegWorker worker;
  engine::PendingChanges pending;
};

constexpr std::string_view kOnlyNt = "This setting exists only on Windows NT4 and 2000.";

}  // namespace korvex::dialogs
