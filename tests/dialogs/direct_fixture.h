// A dialog that writes at once, on a machine, and on one whose registry fails.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "dialogs/dialog_fixture.h"
#include "platform/common/composed_machine.h"
#include "platform/common/registry_decorators.h"

namespace korvex::dialogs {

template <typename Dialog>
class DirectDialogTest : public DialogTest {
 public:
  using Values = std::map<std::string, std::string>;

  explicit DirectDialogTest(const std::string& sample) : DialogTest(sample) {
    book.add(Dialog::kName, [this] { return make(session); });
  }

  DialogParts partsOn(foundation::Session& on) { return {on, worker, pending, book, true}; }
  // Overridden where a dialog is made of more than its parts.
  virtual std::unique_ptr<Dialog> make(foundation::Session& on) {
    if constexpr (std::is_constructible_v<Dialog, const DialogParts&>) {
      return std::make_unique<Dialog>(partsOn(on));
    }
    return nullptr;
  }
  Dialog& dialog() { return dynamic_cast<Dialog&>(book.load(Dialog::kName)); }
  // As after closing the window and opening it again; nothing may wait to be written.
  Dialog& reopened() {
    EXPECT_TRUE(book.unload(Dialog::kName));
    return dialog();
  }
  std::string lastMessage() const {
    return prompts.messages.empty() ? "none" : prompts.messages.back().text;
  }

  // Has act use the dialog on a registry whose n-th call fails, for each n until none does. After
  // each the values of the keys are as before or as after a run without a failure, and as before
  // means that the person was told, or could not press at all.
  void expectAllOrNothing(const std::vector<std::string>& keys,
                          const std::function<void(Dialog&)>& act) {
    const auto before = valuesOf(keys);
    runOn(machine.registry(), act);
    const auto after = valuesOf(keys);
    ASSERT_NE(before, after);
    for (int n = 1;; ++n) {
      ASSERT_LT(n, 300);
      put(before);
      prompts.messages.clear();
      platform::FailingRegistry failing(machine.registry(), n, platform::ERROR_DISK_FULL);
      const bool usable = runOn(failing, act);
      const auto now = valuesOf(keys);
      EXPECT_TRUE(now == before || now == after) << "call " << n;
      EXPECT_TRUE(now != before || !usable || !prompts.messages.empty()) << "call " << n;
      if (!failing.failed()) break;
    }
    EXPECT_EQ(after, valuesOf(keys));
  }

 private:
  std::map<std::string, Values> valuesOf(const std::vector<std::string>& keys) {
    std::map<std::string, Values> result;
    for (const std::string& key : keys) result[key] = registry().values(key);
    return result;
  }
  void put(const std::map<std::string, Values>& state) {
    for (const auto& [key, values] : state) {
      for (const auto& [name, data] : registry().values(key)) {
        if (!values.contains(name)) {
          session.regTool.DeleteRegValue(platform::HKEY_LOCAL_MACHINE, key.substr(5), name);
        }
      }
      for (const auto& [name, data] : values) registry().put(key, name, data);
    }
  }
  // Whether anything could be pressed or typed.
  bool runOn(platform::Registry& failing, const std::function<void(Dialog&)>& act) {
    platform::ComposedMachine composed(machine.get(), {.registry = &failing});
    foundation::Session inTrouble(composed, prompts);
    inTrouble.g_bNT = session.g_bNT;
    inTrouble.g_eOS = session.g_eOS;
    inTrouble.g_sWinSysDir = session.g_sWinSysDir;
    const auto form = make(inTrouble);
    form->Load();
    bool usable = false;
    for (const forms::Control* control : form->controls()) {
      usable = usable || (control->kind() == forms::ControlKind::TextBox && control->Enabled);
    }
    if (usable) act(*form);
    return usable;
  }
};

}  // namespace korvex::dialogs
