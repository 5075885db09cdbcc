// One dialog on a machine whose files and registry can be made to fail from a moment on.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <string>

#include "dialogs/dialog_fixture.h"
#include "platform/common/composed_machine.h"
#include "platform/common/registry_decorators.h"
#include "support/failing_files.h"

namespace korvex::dialogs {

// The n-th call from now on fails; 0: none.
class ArmedRegistry : public platform::ForwardingRegistry {
 public:
  using ForwardingRegistry::ForwardingRegistry;

  void fail(int nth) {
    nth_ = nth;
    calls_ = 0;
  }
  bool hasFailed() const { return nth_ > 0 && calls_ >= nth_; }
  platform::Status commitChange() override {
    const platform::Status status = admit();
    if (status == 0) return inner_.commitChange();
    inner_.rollbackChange();
    return status;
  }

 protected:
  platform::Status admit() override {
    return ++calls_ == nth_ ? platform::ERROR_ACCESS_DENIED : platform::ERROR_SUCCESS;
  }

 private:
  int nth_ = 0;
  int calls_ = 0;
};

template <typename Dialog>
class OnFailingMachine : public testing::Test {
 public:
  explicit OnFailingMachine(const std::string& sample = "windows-nt4")
      : machine(sample),
        failingRegistry(machine.registry()),
        files(machine->files()),
        composed(*machine, {.registry = &failingRegistry, .files = &files}),
        session(composed, prompts),
        worker(session, book),
        pending(session, book) {
    foundation::detectSystem(session);
    book.add(Dialog::kName, [this] {
      return std::make_unique<Dialog>(DialogParts{session, worker, pending, book, true});
    });
    book.setHost(&host);
  }

  Dialog& window() { return dynamic_cast<Dialog&>(book.load(Dialog::kName)); }
  Dialog& reopen() {
    EXPECT_TRUE(book.unload(Dialog::kName));
    return window();
  }
  test::RegistryView registry() { return test::RegistryView(machine.registry()); }
  std::string lastMessage() { return prompts.messages.empty() ? "" : prompts.messages.back().text; }
  // Whether the last message has that text, for EXPECT_PRED.
  testing::AssertionResult told(const std::string& text) {
    if (lastMessage().find(text) != std::string::npos) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "told instead: " << lastMessage();
  }
  std::map<std::string, std::string> below(const std::string& key) {
    std::map<std::string, std::string> result;
    registry().dump(key, result);
    return result;
  }
  // Lets each registry call of what is done in the window fail in turn, up to the one after which
  // all is written: before that nothing is, the person is told, and no restart is offered.
  void expectAllOrNothing(const std::string& key, const std::function<void()>& apply) {
    const auto before = below(key);
    window();
    int failures = 0;
    for (; below(key) == before; ++failures) {
      ASSERT_LT(failures, 30);
      prompts.messages.clear();
      session.g_bRebootNeeded = false;
      failingRegistry.fail(failures + 1);
      apply();
      failingRegistry.fail(0);
      if (below(key) != before) break;
      EXPECT_FALSE(prompts.messages.empty()) << failures;
      EXPECT_FALSE(session.g_bRebootNeeded) << failures;
    }
    EXPECT_GT(failures, 2);
  }

  test::TestMachine machine;
  ArmedRegistry failingRegistry;
  test::FailingFiles files;
  platform::ComposedMachine composed;
  test::ScriptedPrompts prompts;
  HandHost host;
  foundation::Session session;
  forms::FormBook book;
  engine::RegWorker worker;
  engine::PendingChanges pending;
};

}  // namespace korvex::dialogs
