// frmNTDebug as a person uses it: boot.ini with its copies, and the load order of drivers.
#include "dialogs/nt/frm_nt_debug.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;

constexpr const char* kIni = "C:\\boot.ini";
constexpr const char* kMaster = "C:\\boot.mstr";
constexpr const char* kPrevious = "C:\\boot.org";
constexpr const char* kWork = "C:\\WINNT\\loadodr.dat";
constexpr std::uint32_t kAll = 39;
const std::string kOld = "[boot loader]\r\ntimeout=30\r\n[operating systems]\r\nC:\\=\"DOS\"\r\n";
const std::string kNew = "[boot loader]\r\ntimeout=5\r\n[operating systems]\r\nC:\\=\"DOS\"\r\n";

class NtDebug : public OnFailingMachine<frmNTDebug> {
 public:
  explicit NtDebug(const std::string& sample = "windows-nt4") : OnFailingMachine(sample) {
    if (sample == "windows-nt4") write(kIni, kOld, 7);
  }

  // Applies, with an answer to each question.
  void apply(std::deque<Answer> answers = {Answer::Yes}) {
    prompts.answers = std::move(answers);
    window().cmdApply.press();
  }
  void write(const std::string& path, const std::string& bytes, std::uint32_t attributes = 0x20) {
    if (machine->files().exists(path)) machine->files().setAttributes(path, 0);
    ASSERT_EQ(0, machine->files().replace(path, bytes));
    ASSERT_EQ(0, machine->files().setAttributes(path, attributes));
  }
  void erase(const std::string& path) {
    if (!machine->files().exists(path)) return;
    machine->files().setAttributes(path, 0);
    ASSERT_EQ(0, machine->files().remove(path));
  }
  std::string content(const std::string& path) {
    std::string bytes;
    return machine->files().read(path, bytes) == 0 ? bytes : "none";
  }
  void expectAsBefore(const std::string& copiesBefore);
  std::uint32_t attributes(const std::string& path) {
    std::uint32_t found = 0;
    return machine->files().attributes(path, found) == 0 ? found : ~0U;
  }
};
class NtDebugOn98 : public NtDebug {
 public:
  NtDebugOn98() : NtDebug("windows-98") {}
};

TEST_F(NtDebug, KeepsTheFirstFileAndTheOneBefore) {
  EXPECT_EQ(kOld, window().txtBOOTININT.Text.get());
  window().txtBOOTININT.Text = kNew;
  apply({Answer::No});
  EXPECT_EQ(
      "Korvex is about to make changes to your Windows NT boot.ini file.\r\n"
      "Are you sure you want to write these changes?",
      lastMessage());
  EXPECT_EQ(kOld, content(kIni));
  EXPECT_EQ("none", content(kMaster));
  apply();
  EXPECT_EQ(kNew, content(kIni));
  EXPECT_EQ(kOld, content(kMaster));
  EXPECT_EQ(kOld, content(kPrevious));
  // Without the end of its last line: that is written all the same, and only once.
  const std::string third = "[boot loader]\n[operating systems]\rC:\\=\"X\"";
  window().txtBOOTININT.Text = third;
  apply();
  EXPECT_EQ("[boot loader]\r\n[operating systems]\r\nC:\\=\"X\"\r\n", content(kIni));
  EXPECT_EQ(kOld, content(kMaster));
  EXPECT_EQ(kNew, content(kPrevious));
  for (const char* path : {kIni, kMaster, kPrevious}) EXPECT_EQ(kAll, attributes(path)) << path;
  reopen();
  const std::string shown = window().txtBOOTININT.Text;
  apply();
  EXPECT_EQ(shown, content(kIni));
}

// What a failed Apply leaves: the old file, and copies that are whole or what they were.
void NtDebug::expectAsBefore(const std::string& copiesBefore) {
  EXPECT_EQ(kOld, content(kIni));
  EXPECT_EQ(7U, attributes(kIni));
  EXPECT_EQ(kNew, window().txtBOOTININT.Text.get());
  EXPECT_TRUE(told("could not be written: 5 (")) << "the reason";
  EXPECT_TRUE(told("The old file stands under its name as it was, with its attributes."));
  for (const char* copy : {kMaster, kPrevious}) {
    const std::string now = content(copy);
    EXPECT_EQ(now == "none" ? ~0U : kAll, attributes(copy)) << copy;
    EXPECT_TRUE(now == kOld || now == copiesBefore) << copy << " holds " << now;
    EXPECT_EQ(now == kOld, lastMessage().find(copy) != std::string::npos) << copy;
  }
}

TEST_F(NtDebug, WhicheverStepFailsTheOldFileIsBackAsItWas) {
  for (const std::string before : {"none", "older"}) {
    int failures = 0;
    while (true) {
      write(kIni, kOld, 7);
      for (const char* copy : {kMaster, kPrevious}) {
        erase(copy);
        if (before != "none") write(copy, before, kAll);
      }
      reopen().txtBOOTININT.Text = kNew;
      files.fail(failures + 1, platform::ERROR_ACCESS_DENIED);
      apply();
      const bool failed = files.hasFailed();
      files.fail(0, 0);
      if (!failed) break;
      ++failures;
      expectAsBefore(before);
      // The master is never overwritten.
      EXPECT_TRUE(before == "none" || content(kMaster) == before);
      window().txtBOOTININT.Text = kOld;
    }
    EXPECT_EQ(before == "none" ? 7 : 8, failures);
    EXPECT_EQ(kNew, content(kIni));
  }
}

TEST_F(NtDebug, AsksAboutATextThatCannotStartWindows) {
  window().txtBOOTININT.Text = "[Boot Loader]\r\n";
  apply({Answer::No});
  EXPECT_TRUE(told("no section [operating systems]"));
  window().txtBOOTININT.Text = "; [boot loader]\r\n";
  apply({Answer::Yes, Answer::No});
  EXPECT_NE(std::string::npos, prompts.messages[1].text.find("no section [boot loader]"));
  EXPECT_EQ(kOld, content(kIni));
  window().txtBOOTININT.Text = " [BOOT LOADER] \r\n\t[Operating Systems]\r\n";
  apply();
  EXPECT_EQ(" [BOOT LOADER] \r\n\t[Operating Systems]\r\n", content(kIni));
}

TEST_F(NtDebug, WritesTheCodePageOfTheMachineOrNothing) {
  write(kIni, kOld + "\xE4\xA0\x81\r\n");
  reopen();
  EXPECT_EQ(kOld + "\xC3\xA4\xC2\xA0\xC2\x81\r\n", window().txtBOOTININT.Text.get());
  window().txtBOOTININT.Text = kNew + "\xC3\xA4\xC2\xA0\xC2\x81\r\n";
  apply();
  EXPECT_EQ(kNew + "\xE4\xA0\x81\r\n", content(kIni));
  window().txtBOOTININT.Text = kNew + "\xE6\x97\xA5";  // no letter of the west
  apply({});
  EXPECT_TRUE(told("code page"));
  EXPECT_EQ(kNew + "\xE4\xA0\x81\r\n", content(kIni));
  EXPECT_EQ(kOld + "\xE4\xA0\x81\r\n", content(kPrevious));
}

TEST_F(NtDebug, AFileThatAnotherProgramHasChangedIsAskedFor) {
  window().txtBOOTININT.Text = kNew;
  write(kIni, kOld + "C:\\NT5=\"New\"\r\n");
  apply({Answer::No});
  EXPECT_EQ(kOld + "C:\\NT5=\"New\"\r\n", content(kIni));
  erase(kIni);
  apply({});
  EXPECT_TRUE(told("cannot be read"));
  EXPECT_EQ("none", content(kIni));
  EXPECT_EQ("none", content(kMaster));
}

TEST_F(NtDebug, WhatIsNoBootFileCannotBeEdited) {
  using namespace std::string_literals;
  for (const std::string& bytes : {"[boot loader]\0"s, "MZ\x90\x03"s, std::string(70000, 'x')}) {
    write(kIni, bytes);
    reopen();
    EXPECT_FALSE(window().txtBOOTININT.Enabled);
    EXPECT_FALSE(window().cmdApply.Enabled);
    EXPECT_EQ(0U, window().StatusText->find(kIni));
  }
}

TEST_F(NtDebug, ListsTheGroupsInTheirOrderAndSavesThem) {
  EXPECT_EQ("none", content(kWork));
  window().cmdShowDriverLoadOrder.press();
  EXPECT_FALSE(window().cmdApply.Visible);
  const std::string order = window().txtDriverLoadOrder.Text;
  EXPECT_EQ(0U, order.find("System Bus Extender\r\nSCSI miniport\r\nport\r\nPrimary disk\r\n"));
  EXPECT_EQ(order, content(kWork));
  EXPECT_FALSE(order.ends_with("\r\n\r\n"));
  window().cmdDriverLoadOrderSave.press();
  const std::string desktop = session.pd.DesktopPath;
  EXPECT_EQ("Korvex saved the file as \"Driver load order.txt\" at " + desktop, lastMessage());
  EXPECT_EQ(order, content(desktop + "\\Driver Load Order.txt"));
  write(desktop + "\\Driver Load Order.txt", "mine");
  prompts.answers = {Answer::No};
  window().cmdDriverLoadOrderSave.press();
  EXPECT_EQ("mine", content(desktop + "\\Driver Load Order.txt"));
  files.fail(1, platform::ERROR_DISK_FULL);
  prompts.answers = {Answer::Yes};
  window().cmdDriverLoadOrderSave.press();
  EXPECT_TRUE(told("cannot be written: 112"));
  window().cmdShowLoadOrderDone.press();
  EXPECT_TRUE(window().cmdApply.Visible);
  window().cmdDone.press();
  EXPECT_EQ("none", content(kWork));
}

TEST_F(NtDebug, ClosingByTheCornerLeavesNoWorkFile) {
  window().cmdShowDriverLoadOrder.press();
  EXPECT_NE("none", content(kWork));
  EXPECT_TRUE(book.unload(frmNTDebug::kName));
  EXPECT_EQ("none", content(kWork));
}

TEST_F(NtDebug, WhatWasTypedIsNotLostWithoutAQuestion) {
  window().txtBOOTININT.Text = kNew;
  prompts.answers = {Answer::No};
  EXPECT_FALSE(book.unload(frmNTDebug::kName));
  prompts.answers = {Answer::Yes};
  EXPECT_TRUE(book.unload(frmNTDebug::kName));
  EXPECT_EQ(kOld, content(kIni));
}

TEST_F(NtDebugOn98, IsForMachinesThatBootNtToo) {
  EXPECT_EQ("This information is valid in Windows NT or Windows NT/Other OS dual boot setup only.",
            window().txtBOOTININT.Text.get());
  EXPECT_FALSE(window().cmdApply.Enabled);
  EXPECT_FALSE(window().cmdShowDriverLoadOrder.Enabled);
  EXPECT_EQ("This setting exists only on Windows NT4 and 2000.",
            window().cmdShowDriverLoadOrder.ToolTipText.get());
  EXPECT_TRUE(window().cmdDone.Enabled);
  write(kIni, kOld);
  reopen();
  window().txtBOOTININT.Text = kNew;
  apply();
  EXPECT_EQ(kNew, content(kIni));
}

}  // namespace
}  // namespace korvex::dialogs
