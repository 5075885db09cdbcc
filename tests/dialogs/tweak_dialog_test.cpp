// What every dialog of rows does: recording, Apply, Done, and being loaded for a routine.
#include "dialogs/tweak_dialog.h"

#include "dialogs/dialog_fixture.h"
#include "dialogs/frm_about.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;
using TweakDialogTest = DialogTest;

TEST_F(TweakDialogTest, ReadingTheMachineRecordsNothing) {
  registry().put(kPolicies, "NoDispCPL", "dword 1");
  session.g_bNoRecord = true;  // as while the main window fills its own controls
  EXPECT_EQ(forms::vbChecked, box("chkNoCP").Value);
  EXPECT_TRUE(session.g_bNoRecord);
  session.g_bNoRecord = false;
  EXPECT_EQ(std::vector<std::string>{}, waiting());
  EXPECT_FALSE(dialog().cmdApply.Enabled);
  EXPECT_EQ("no changes waiting", dialog().StatusText.get());
}

TEST_F(TweakDialogTest, ApplyWritesTheBankOnceAndTracesIt) {
  box("chkNoCP").Value = forms::vbChecked;
  box("chkNoAddPrinter").Value = forms::vbChecked;
  EXPECT_TRUE(dialog().cmdApply.Enabled);
  EXPECT_EQ("2 changes waiting", dialog().StatusText.get());
  EXPECT_EQ("delete", registry().value(kPolicies, "NoDispCPL"));

  dialog().cmdApply.press();
  EXPECT_EQ("dword 1", registry().value(kPolicies, "NoDispCPL"));
  EXPECT_EQ("dword 1", registry().value(kExplorer, "NoAddPrinter"));
  EXPECT_EQ(std::vector<std::string>{}, waiting());
  EXPECT_FALSE(dialog().cmdApply.Enabled);
  EXPECT_EQ("no changes waiting", dialog().StatusText.get());
  EXPECT_NE(std::string::npos, session.trace.text().find("[frmMoreSecurity.cmdApply]"));
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(TweakDialogTest, WhatApplyCouldNotDoStaysWaiting) {
  const std::string zak = session.g_sAppPath + "\\zak.hlp";
  ASSERT_EQ(0, machine->files().createFolder(session.g_sAppPath));
  ASSERT_EQ(0, machine->files().replace(zak, "other help"));
  box("chkDisableHelp").Value = forms::vbChecked;
  box("chkNoCP").Value = forms::vbChecked;
  ASSERT_EQ(0, machine->files().remove(zak));
  dialog().cmdApply.press();
  EXPECT_EQ("dword 1", registry().value(kPolicies, "NoDispCPL"));
  EXPECT_EQ(std::vector<std::string>{"P_rwDisableHelp"}, waiting());
  EXPECT_TRUE(dialog().cmdApply.Enabled);
  EXPECT_EQ("1 change waiting", dialog().StatusText.get());
  ASSERT_EQ(1u, prompts.messages.size());
  EXPECT_NE(std::string::npos, prompts.messages[0].text.find("Disable main Windows Help file"));
}

TEST_F(TweakDialogTest, DoneAsksBeforeItDiscardsAndLeavesNothingForALaterApply) {
  prompts.answers = {Answer::No, Answer::Yes};
  host.use = [this](forms::Form&) {
    box("chkNoCP").Value = forms::vbChecked;
    dialog().cmdDone.press();  // No: stays
    EXPECT_EQ(1u, waiting().size());
    dialog().cmdDone.press();
  };
  book.showModal(frmMoreSecurity::kName);
  EXPECT_EQ("1 change has not been applied. Close this window and discard it?",
            prompts.messages.at(0).text);
  EXPECT_EQ(nullptr, book.loaded(frmMoreSecurity::kName));
  EXPECT_EQ(std::vector<std::string>{}, waiting());

  box("chkNoAddPrinter").Value = forms::vbChecked;
  dialog().cmdApply.press();
  EXPECT_EQ("delete", registry().value(kPolicies, "NoDispCPL"));
  host.use = [this](forms::Form& form) {
    EXPECT_EQ(forms::vbUnchecked, box("chkNoCP").Value);
    EXPECT_EQ(forms::vbChecked, box("chkNoAddPrinter").Value);
    form.close();  // nothing waits: no question
  };
  book.showModal(frmMoreSecurity::kName);
  EXPECT_EQ(2u, prompts.messages.size());
}

// A routine that finds its dialog not loaded loads it, and it stays loaded.
TEST_F(TweakDialogTest, LoadedForARoutineItIsReadAfreshWhenShown) {
  ASSERT_TRUE(worker.call("P_rwNoDispCPL"));
  ASSERT_NE(nullptr, book.loaded(frmMoreSecurity::kName));
  registry().put(kPolicies, "NoDispCPL", "dword 1");
  host.use = [this](forms::Form& form) {
    EXPECT_EQ(forms::vbChecked, box("chkNoCP").Value);
    form.close();
  };
  book.showModal(frmMoreSecurity::kName);
}

TEST_F(TweakDialogTest, AChangeThatWaitsInAHiddenDialogIsStillThereWhenItIsShown) {
  box("chkNoCP").Value = forms::vbChecked;
  ASSERT_TRUE(worker.call("P_rwNoAddPrinter"));  // must not load a second one
  prompts.answers = {Answer::Yes};
  host.use = [this](forms::Form& form) {
    EXPECT_EQ(forms::vbChecked, box("chkNoCP").Value);
    EXPECT_TRUE(dialog().cmdApply.Enabled);
    form.close();
  };
  book.showModal(frmMoreSecurity::kName);
}

TEST_F(TweakDialogTest, ABankIsItsDialogsAlone) {
  box("chkNoCP").Value = forms::vbChecked;
  auto& drWatson = dynamic_cast<TweakDialog&>(book.load("frmDrWat"));
  drWatson.find<forms::CheckBox>("chkDrWatsonVisible")->Value = forms::vbChecked;
  drWatson.find<forms::CheckBox>("chkDrWatsonVisible")->Value = forms::vbUnchecked;
  drWatson.cmdApply.press();
  EXPECT_EQ(std::vector<std::string>{"P_rwNoDispCPL"}, waiting());
  EXPECT_FALSE(drWatson.cmdApply.Enabled);
  EXPECT_TRUE(dialog().cmdApply.Enabled);
}

TEST_F(TweakDialogTest, AboutTellsTheMachineAndTheVersion) {
  frmAbout about(session);
  about.Load();
  std::string text;
  for (const forms::Control* control : about.controls()) text += control->Caption.get() + "\n";
  for (const char* part : {"0.", "Windows 2000 Professional", "kvxlog.log", "SOFTWARE\\Korvex"}) {
    EXPECT_NE(std::string::npos, text.find(part)) << part << " in " << text;
  }
}

}  // namespace
}  // namespace korvex::dialogs
