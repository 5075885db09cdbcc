// frmNT4_Win2KCont: the list of errors that pop up, which is no row, and the buttons to others.
#include "dialogs/nt/frm_nt4_win2k_cont.h"

#include "dialogs/one_dialog_fixture.h"

namespace korvex::dialogs {
namespace {

using FrmNT4Win2KCont = OneDialogTest<frmNT4_Win2KCont>;

class FrmNT4Win2KContOn98 : public FrmNT4Win2KCont {
 public:
  FrmNT4Win2KContOn98() : FrmNT4Win2KCont("windows-98") {}
};

constexpr const char* kWindows = "HKLM\\System\\CurrentControlSet\\Control\\Windows";
constexpr const char* kErrPopUp = "NoPopUpsOnBoot";

TEST_F(FrmNT4Win2KCont, AChosenEntryIsWrittenByApplyAsItsIndexAndReadBack) {
  for (const int index : {1, 2, 0}) {
    dialog().cboErrBootPopUp.ListIndex = index;
    EXPECT_EQ("1 change waiting", dialog().StatusText.get());
    dialog().cmdApply.press();
    EXPECT_EQ("dword " + std::to_string(index), registry().value(kWindows, kErrPopUp));
    EXPECT_FALSE(dialog().cmdApply.Enabled);
    EXPECT_EQ(index, reopened().cboErrBootPopUp.ListIndex);
  }
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(FrmNT4Win2KCont, WithoutAChoiceApplyLeavesTheEntryAlone) {
  EXPECT_EQ(0, dialog().cboErrBootPopUp.ListIndex);
  control<forms::CheckBox>("chkForceReboot").Value =
      1 - control<forms::CheckBox>("chkForceReboot").Value;
  dialog().cmdApply.press();
  EXPECT_EQ("delete", registry().value(kWindows, kErrPopUp));
  EXPECT_TRUE(traced("[frmNT4_Win2KCont.cmdApply]"));

  dialog().cboErrBootPopUp.ListIndex = 2;
  dialog().cmdApply.press();
  registry().put(kWindows, kErrPopUp, "dword 1");  // by another program
  control<forms::CheckBox>("chkFastReboot").Value = forms::vbChecked;
  dialog().cmdApply.press();
  EXPECT_EQ("dword 1", registry().value(kWindows, kErrPopUp)) << "written once";
}

TEST_F(FrmNT4Win2KCont, AValueThatIsNoEntrySelectsNone) {
  for (const char* data : {"dword 7", "dword -1", "\"1\""}) {
    registry().put(kWindows, kErrPopUp, data);
    EXPECT_EQ(-1, reopened().cboErrBootPopUp.ListIndex) << data;
    EXPECT_FALSE(dialog().cmdApply.Enabled);
  }
  dialog().cboErrBootPopUp.ListIndex = 0;
  dialog().cmdApply.press();
  EXPECT_EQ("dword 0", registry().value(kWindows, kErrPopUp));
}

TEST_F(FrmNT4Win2KCont, WhatCouldNotBeWrittenIsToldAndStaysWaiting) {
  dialog().cboErrBootPopUp.ListIndex = 1;
  refusing.refused = kErrPopUp;
  dialog().cmdApply.press();
  ASSERT_EQ(1U, prompts.messages.size());
  EXPECT_NE(std::string::npos, prompts.messages[0].text.find("Control Event Viewer pop-up errors"));
  EXPECT_EQ("delete", registry().value(kWindows, kErrPopUp));
  EXPECT_TRUE(dialog().cmdApply.Enabled);
  EXPECT_EQ("1 change waiting", dialog().StatusText.get());
  refusing.refused.clear();
  dialog().cmdApply.press();
  EXPECT_EQ("dword 1", registry().value(kWindows, kErrPopUp));
  EXPECT_EQ(1U, prompts.messages.size());
}

TEST_F(FrmNT4Win2KCont, ChecksTheFileSystemOfTheSystemDrive) {
  EXPECT_TRUE(control<forms::CheckBox>("chkNo83NameNTFS").Enabled);
  expectNone("chkNoLFNonFAT", "Windows is not on a FAT drive.");
}

TEST_F(FrmNT4Win2KContOn98, HasNothingToUseAndWritesNothing) {
  book.add("frmNTHeapSize", [] { return std::make_unique<forms::Form>("frmNTHeapSize", ""); });
  expectNone("cmdChangeDesktopHeap", kOnlyNt);
  for (const forms::Frame* frame :
       {&dialog().frmEclectic, &dialog().frmNetwork, &dialog().fraPerformance}) {
    EXPECT_FALSE(frame->Enabled) << frame->name();
  }
  expectNone("cboErrBootPopUp", kOnlyNt);
  expectNone("lblErrBootPopUp", kOnlyNt);
  expectNone("chkForceReboot", kOnlyNt);
  EXPECT_TRUE(dialog().cmdDone.Enabled);
  EXPECT_FALSE(dialog().cmdApply.Enabled);
  EXPECT_FALSE(registry().hasKey(kWindows));
}

TEST_F(FrmNT4Win2KCont, ButtonsToWindowsThatTheProgramHasOpenThem) {
  EXPECT_EQ(nullptr, dialog().find("cmdChangeDesktopHeap"));
  EXPECT_TRUE(book.unload(frmNT4_Win2KCont::kName));
  std::vector<std::string> opened;
  struct Target : forms::Form {
    Target(const std::string& name, std::vector<std::string>& opened)
        : Form(name, name), opened_(opened) {}
    void Load() override { opened_.push_back(name()); }
    std::vector<std::string>& opened_;
  };
  const std::vector<std::pair<const char*, std::string>> cases{
      {"cmdScreensaver", "frmScreensaver"},       {"cmdDOSBoxColors", "frmDOSColors"},
      {"cmdExcludeProfileDirs", "frmExProfDirs"}, {"cmdMaxIPForward", "frmNT_IPForward"},
      {"cmdChangeDesktopHeap", "frmNTHeapSize"},
  };
  for (const auto& [button, form] : cases) {
    book.add(form, [name = form, &opened] { return std::make_unique<Target>(name, opened); });
  }
  for (const auto& [button, form] : cases) {
    ASSERT_NE(nullptr, dialog().find(button)) << button;
    control<forms::CommandButton>(button).press();
    ASSERT_FALSE(opened.empty()) << button;
    EXPECT_EQ(form, opened.back());
  }
}

}  // namespace
}  // namespace korvex::dialogs
