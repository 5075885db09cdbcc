// The store of pending changes: what a click records, and what closing discards.
#include "engine/pending_changes.h"

#include <fmt/format.h>

#include <functional>

#include "engine_fixture.h"

namespace korvex::engine {
namespace {

class PendingChangesTest : public EngineTest {
 public:
  void record(forms::Control& c, int iBank, bool bOffice = false) {
    pending.p_SetForApply(c, "Spare", "P_rwSpare", iBank, bOffice);
  }
  void close() { pending.p_DestroyUserPrefSubKeys(); }
  // A new run on what the last one left, as the main window begins it.
  void nextRun() {
    close();
    start();
  }
};

TEST_F(PendingChangesTest, AClickRecordsStateAndMarkerAndEnablesApply) {
  setDword(HKLM, kState, "NoRun", 0);
  int told = 0;
  pending.changed += [&told] { ++told; };
  click("P_rwRun", 1);
  EXPECT_TRUE(waits(kState, "P_rwRun"));
  EXPECT_EQ("dword:1", value(HKLM, kState, "NoRun"));
  EXPECT_TRUE(applyEnabled());
  EXPECT_EQ(1, told);
  EXPECT_EQ(1, pending.count());
  EXPECT_EQ("", value(HKCU, kExplorer, "NoRun")) << "nothing is applied by a click";
  EXPECT_TRUE(session.trace.contains("[p_SetForApply]"));
  EXPECT_TRUE(session.trace.contains("c.Name=chkHideRun"));
}

TEST_F(PendingChangesTest, SecondClickKeepsTheMarker) {
  setDword(HKLM, kState, "NoRun", 0);
  click("P_rwRun", 1);
  click("P_rwRun", 0);
  EXPECT_TRUE(waits(kState, "P_rwRun")) << "compared with the first click, not with the machine";
  EXPECT_EQ("dword:0", value(HKLM, kState, "NoRun"));
}

TEST_F(PendingChangesTest, ASettingEqualToItsRecordedStateLosesItsMarker) {
  setDword(HKLM, kState, "NoRun", 1);
  createKey(HKLM, fmt::format("{}\\P_rwRun", kState));
  click("P_rwRun", 1);
  EXPECT_FALSE(waits(kState, "P_rwRun"));
}

TEST_F(PendingChangesTest, TheProgramsOwnAssignmentsRecordNothing) {
  const auto before = dump(registry());
  session.g_bNoRecord = true;
  click("P_rwRun", 1);
  session.g_bNoRecord = false;
  session.g_bReverting = true;
  click("P_rwRun", 0);
  EXPECT_FALSE(session.g_bReverting) << "the nested click clears the flag";
  EXPECT_EQ(before, dump(registry()));
  EXPECT_FALSE(applyEnabled());
}

TEST_F(PendingChangesTest, EachBankHasItsKeyAndTheDialogsShareTheStateKey) {
  forms::CheckBox& c = box("chkSpare", "frmSpare");
  c.Value = 1;
  record(c, 9);
  EXPECT_TRUE(waits("SOFTWARE\\Korvex\\CurrentSettingsVIII", "P_rwSpare"));
  EXPECT_EQ("dword:1", value(HKLM, kState, "Spare"));
  EXPECT_TRUE(applyEnabled("frmDrWat")) << "the dialog is loaded for it";
  EXPECT_FALSE(applyEnabled());

  record(c, 1);
  EXPECT_TRUE(waits(kOptions, "P_rwSpare"));
  EXPECT_EQ("dword:1", value(HKLM, kOptions, "Spare"));
  EXPECT_TRUE(applyEnabled());
}

TEST_F(PendingChangesTest, ABankThatDoesNotExistRecordsNothingUseful) {
  forms::CheckBox& c = box("chkSpare", "frmSpare");
  c.Value = 1;
  record(c, 10);
  EXPECT_TRUE(keyExists(HKLM, "SOFTWARE\\Korvex\\P_rwSpare"));
  EXPECT_FALSE(applyEnabled());
  EXPECT_EQ(0, pending.count());
  c.Value = 0;
  record(c, 0);
  EXPECT_TRUE(applyEnabled()) << "below 3 is the main window's";
}

TEST_F(PendingChangesTest, AnOptionButtonIsRecordedByItsBoolean) {
  auto& button = *book.load("frmSpare").find<forms::OptionButton>("optSpare");
  button.Value = true;
  record(button, 2);
  EXPECT_EQ("dword:ffffffff", value(HKLM, kState, "Spare"));
  EXPECT_TRUE(waits(kState, "P_rwSpare"));
  record(button, 2);
  EXPECT_FALSE(waits(kState, "P_rwSpare")) << "the same state is no change";
}

TEST_F(PendingChangesTest, WithoutAStateKeyAClickStillWaits) {
  registry().RegDeleteKeyA(HKLM, kState);
  forms::CheckBox& c = box("chkSpare", "frmSpare");
  record(c, 9);
  EXPECT_TRUE(waits("SOFTWARE\\Korvex\\CurrentSettingsVIII", "P_rwSpare"));
  EXPECT_FALSE(keyExists(HKLM, kState)) << "it is not created here";
}

TEST_F(PendingChangesTest, WhileOfficeRunsABoxFlipsBackAndNothingIsRecorded) {
  const auto before = dump(registry());
  forms::CheckBox& c = box("chkSpare", "frmOffice");
  c.Click += [&] { record(c, 7, true); };
  int asked = 0;
  bool running = true;
  pending.p_CheckForLoadedAppsRestore = [&] { return ++asked, running; };
  c.Value = 1;
  EXPECT_EQ(0, c.Value);
  EXPECT_EQ(1, asked) << "not again for the program's own assignment";
  EXPECT_FALSE(session.g_bReverting);
  EXPECT_EQ(before, dump(registry()));
  EXPECT_FALSE(applyEnabled("frmOffice"));

  auto& button = *book.load("frmOffice").find<forms::OptionButton>("optSpare");
  button.Value = true;
  record(button, 7, true);
  EXPECT_TRUE(button.Value) << "an option button is left as it is";
  running = false;
  c.Value = 1;
  EXPECT_TRUE(waits("SOFTWARE\\Korvex\\CurrentSettingsVI", "P_rwSpare"))
      << "and must not swallow the next click";
  EXPECT_TRUE(applyEnabled("frmOffice"));
}

// Runs work with the n-th call failing, for each n until none fails; check runs after each.
void withFaults(EngineTest& test, const std::function<void(PendingChanges&)>& work,
                const std::function<void()>& check) {
  for (int n = 1; n < 300; ++n) {
    SCOPED_TRACE(fmt::format("call {} fails", n));
    platform::FailingRegistry failing(test.machine.registry(), n,
                                      platform::ERROR_REGISTRY_IO_FAILED);
    platform::ComposedMachine faulty(test.machine.get(), {.registry = &failing});
    foundation::Session session(faulty, test.prompts);
    PendingChanges pending(session, test.book);
    work(pending);
    check();
    if (testing::Test::HasFatalFailure()) return;
    if (!failing.failed()) {
      EXPECT_GT(n, 4) << "nothing was made to fail";
      return;
    }
  }
  ADD_FAILURE() << "no end";
}

TEST_F(PendingChangesTest, AFailedRecordLeavesStateAndMarkerTogether) {
  setDword(HKLM, kState, "NoRun", 0);
  box("chkHideRun").Value = 1;
  int recorded = 0;
  withFaults(
      *this,
      [this](PendingChanges& faulty) {
        faulty.p_SetForApply(box("chkHideRun"), "NoRun", "P_rwRun", 2, false);
      },
      [&] {
        const bool waiting = waits(kState, "P_rwRun");
        ASSERT_EQ(waiting ? "dword:1" : "dword:0", value(HKLM, kState, "NoRun"));
        if (!waiting) return;
        ++recorded;
        setDword(HKLM, kState, "NoRun", 0);
        registry().RegDeleteKeyA(HKLM, fmt::format("{}\\P_rwRun", kState));
      });
  EXPECT_GT(recorded, 0);
}

TEST_F(PendingChangesTest, ClosingDiscardsWhatWasNotApplied) {
  setDword(HKLM, "SOFTWARE\\Korvex\\CurrentSettingsVI\\P_rwSpare", "x", 1);
  click("P_rwRun", 1);
  click("P_rwFind", 1);
  EXPECT_TRUE(worker.call("P_rwFind"));
  close();
  EXPECT_FALSE(keyExists(HKLM, kState));
  EXPECT_FALSE(keyExists(HKLM, kLoadValues));
  EXPECT_EQ("", value(HKCU, kExplorer, "NoRun"));
  EXPECT_EQ("dword:1", value(HKCU, kExplorer, "NoFind"));
  EXPECT_TRUE(keyExists(HKLM, "SOFTWARE\\Korvex\\CurrentSettingsVI\\P_rwSpare"))
      << "the dialogs' banks are theirs";
}

TEST_F(PendingChangesTest, AnOptionNotAppliedHasItsOldValueAgain) {
  setDword(HKLM, kOptions, "NoShowReboot", 1);
  setText(HKLM, kOptions, "NoSaveTab", "odd");
  nextRun();
  EXPECT_EQ("dword:1", value(HKLM, kLoadValues, "rwNoShowReboot"));
  click("P_rwNoShowReboot", 0);
  click("P_rwNoSaveTab", 1);
  click("P_rwClearDocsReboot", 1);  // had no value; its marker differs in case from it
  EXPECT_EQ("dword:0", value(HKLM, kOptions, "NoShowReboot"));
  close();
  EXPECT_EQ("dword:1", value(HKLM, kOptions, "NoShowReboot"));
  EXPECT_EQ("\"odd\"", value(HKLM, kOptions, "NoSaveTab")) << "whatever its type was";
  EXPECT_EQ("", value(HKLM, kOptions, "ClearDOCSReboot"));
  for (const char* option : {"P_rwNoShowReboot", "P_rwNoSaveTab", "P_rwClearDocsReboot"}) {
    EXPECT_FALSE(waits(kOptions, option));
  }
}

TEST_F(PendingChangesTest, AnAppliedOptionOutlivesTheRunAndIsWhatLaterClicksReturnTo) {
  click("P_rwNoShowReboot", 1);
  EXPECT_TRUE(worker.call("P_rwNoShowReboot"));
  EXPECT_FALSE(waits(kOptions, "P_rwNoShowReboot"));
  nextRun();
  EXPECT_EQ("dword:1", value(HKLM, kOptions, "NoShowReboot"));

  click("P_rwNoShowReboot", 0);
  EXPECT_TRUE(worker.call("P_rwNoShowReboot"));
  click("P_rwNoShowReboot", 1);
  close();
  EXPECT_EQ("dword:0", value(HKLM, kOptions, "NoShowReboot")) << "the applied one, not the first";
}

TEST_F(PendingChangesTest, WhatACrashedRunLeftIsRestoredAtTheNextStart) {
  setDword(HKLM, kOptions, "NoShowReboot", 0);
  nextRun();
  click("P_rwNoShowReboot", 1);
  click("P_rwRun", 1);
  nextRun();  // no closing between
  EXPECT_EQ("dword:0", value(HKLM, kOptions, "NoShowReboot"));
  EXPECT_EQ("dword:0", value(HKLM, kLoadValues, "rwNoShowReboot"));
  EXPECT_EQ(0, pending.count());
}

TEST_F(PendingChangesTest, WithoutLoadValuesAnOptionIsNotTakenForOneThatHadNone) {
  setDword(HKLM, kOptions, "NoShowReboot", 1);
  createKey(HKLM, fmt::format("{}\\P_rwNoShowReboot", kOptions));
  registry().RegDeleteKeyA(HKLM, kLoadValues);
  close();
  EXPECT_EQ("dword:1", value(HKLM, kOptions, "NoShowReboot"));
  EXPECT_FALSE(waits(kOptions, "P_rwNoShowReboot"));
}

TEST_F(PendingChangesTest, AFailureWhileClosingLosesNoOldValue) {
  setDword(HKLM, kOptions, "NoShowReboot", 1);
  nextRun();
  click("P_rwNoShowReboot", 0);
  nextRun();  // from now on each run leaves what the one before it left
  click("P_rwNoShowReboot", 0);
  const auto before = dump(registry());
  withFaults(
      *this, [](PendingChanges& faulty) { faulty.p_DestroyUserPrefSubKeys(); },
      [&] {
        if (keyExists(HKLM, kLoadValues)) {
          ASSERT_EQ(before, dump(registry()));
          return;
        }
        ASSERT_EQ("dword:1", value(HKLM, kOptions, "NoShowReboot"));
        ASSERT_FALSE(waits(kOptions, "P_rwNoShowReboot"));
        start();  // for the next round
        click("P_rwNoShowReboot", 0);
      });
}

}  // namespace
}  // namespace korvex::engine
