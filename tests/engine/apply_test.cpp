// The apply pipeline over one bank.
#include "engine/apply.h"

#include <fmt/format.h>

#include "engine_fixture.h"

namespace korvex::engine {
namespace {

class ApplyTest : public EngineTest {};

// A machine whose policy on one value is not this user's to change.
class Denying : public platform::ForwardingRegistry {
 public:
  using ForwardingRegistry::ForwardingRegistry;
  platform::Status RegSetValueExA(platform::HKEY key, std::string_view valueName,
                                  platform::RegType type, const void* data,
                                  std::uint32_t size) override {
    if (valueName == "NoDesktop") return platform::ERROR_ACCESS_DENIED;
    return ForwardingRegistry::RegSetValueExA(key, valueName, type, data, size);
  }
};

TEST_F(ApplyTest, RunsWhatWaitsAndLeavesNoMarker) {
  click("P_rwRun", 1);
  click("P_rwFind", 1);
  click("P_rwNoShowReboot", 1);
  EXPECT_TRUE(applyBank(Bank::MainWindow, session, pending, worker).empty());
  EXPECT_EQ("dword:1", value(HKCU, kExplorer, "NoRun"));
  EXPECT_EQ("dword:1", value(HKCU, kExplorer, "NoFind"));
  EXPECT_TRUE(pending.waiting(Bank::MainWindow).empty());
  EXPECT_EQ(1, pending.count()) << "the other bank waits on";

  const auto before = dump(registry());
  EXPECT_TRUE(applyBank(Bank::MainWindow, session, pending, worker).empty());
  EXPECT_TRUE(applyBank(Bank::DrWat, session, pending, worker).empty()) << "a key that is missing";
  EXPECT_EQ(before, dump(registry()));
}

TEST_F(ApplyTest, TheBoxCountsNotTheStateValue) {
  click("P_rwRun", 1);
  box("chkHideRun").Value = 0;  // by the program, unrecorded
  applyBank(Bank::MainWindow, session, pending, worker);
  EXPECT_EQ("dword:0", value(HKCU, kExplorer, "NoRun"));
}

TEST_F(ApplyTest, AnUnknownMarkerIsLoggedStaysAndStopsNothing) {
  createKey(HKLM, fmt::format("{}\\P_rwAAA", kState));  // before the others in the list
  click("P_rwRun", 1);
  const auto failures = applyBank(Bank::MainWindow, session, pending, worker);
  EXPECT_EQ("dword:1", value(HKCU, kExplorer, "NoRun"));
  EXPECT_TRUE(waits(kState, "P_rwAAA"));
  ASSERT_EQ(1U, failures.size());
  EXPECT_EQ("P_rwAAA", failures[0].property);
  EXPECT_NE(std::string::npos, session.trace.text().find("[ErrorHandler="));
  EXPECT_TRUE(prompts.messages.empty()) << "Apply asks nobody";
  EXPECT_NE(std::string::npos, describeFailures(failures).find("P_rwAAA"));
}

TEST_F(ApplyTest, OneRefusedChangeStaysAndIsNamedWhileTheOthersAreMade) {
  click("P_rwDesktopIcons", 1);
  click("P_rwRun", 1);
  Denying denying(registry());
  platform::ComposedMachine faulty(machine.get(), {.registry = &denying});
  foundation::Session faultySession(faulty, prompts);
  PendingChanges faultyPending(faultySession, book);
  RegWorker faultyWorker(faultySession, book);
  const auto failures = applyBank(Bank::MainWindow, faultySession, faultyPending, faultyWorker);
  ASSERT_EQ(1U, failures.size());
  EXPECT_EQ("P_rwDesktopIcons", failures[0].property);
  EXPECT_EQ(platform::ERROR_ACCESS_DENIED, failures[0].status);
  EXPECT_TRUE(waits(kState, "P_rwDesktopIcons"));
  EXPECT_EQ("", value(HKCU, kExplorer, "NoDesktop"));
  EXPECT_EQ("dword:1", value(HKCU, kExplorer, "NoRun"));

  const std::string message = describeFailures(failures);
  EXPECT_NE(std::string::npos, message.find("Hide all icons on the desktop: 5")) << message;
  EXPECT_EQ("", describeFailures({}));
}

}  // namespace
}  // namespace korvex::engine
