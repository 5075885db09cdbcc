// frmNTHeapSize: only the number changes, in steps, between two bounds.
#include "dialogs/nt/frm_nt_heap_size.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

using namespace platform;

constexpr const char* kSubSystems =
    "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\SubSystems";

class HeapSize : public OnFailingMachine<frmNTHeapSize> {
 public:
  using OnFailingMachine::OnFailingMachine;

  // Opens the window on that line.
  frmNTHeapSize& on(const std::string& line) {
    registry().put(kSubSystems, "Windows", '"' + line + '"');
    return reopen();
  }
  std::string line() { return registry().value(kSubSystems, "Windows"); }
};
class HeapSizeOn98 : public HeapSize {
 public:
  HeapSizeOn98() : HeapSize("windows-98") {}
};

TEST_F(HeapSize, ChangesNothingButTheNumber) {
  const std::string before = line();
  ASSERT_NE(std::string::npos, before.find("SharedSection=1024,3072 "));
  EXPECT_EQ("3072", window().txtHeapSize.Text.get());
  EXPECT_FALSE(window().cmdApply.Enabled);
  window().cmdUp.press();
  EXPECT_EQ(before, line());
  window().cmdApply.press();
  std::string wanted = before;
  wanted.replace(wanted.find("3072"), 4, "3328");
  EXPECT_EQ(wanted, line());  // REG_EXPAND_SZ as before
  EXPECT_TRUE(session.g_bRebootNeeded);
  EXPECT_FALSE(window().cmdApply.Enabled);
  on("csrss SharedSection=1024,2048,512 ServerDll=basesrv,1").cmdDown.press();
  window().cmdApply.press();
  EXPECT_EQ("\"csrss SharedSection=1024,1792,512 ServerDll=basesrv,1\"", line());  // REG_SZ
  EXPECT_EQ("1792", window().txtHeapSize.Text.get());
}

TEST_F(HeapSize, StopsAtBothEnds) {
  on("SharedSection=1024,2048").cmdDown.press();
  window().cmdDown.press();
  EXPECT_EQ("1792", window().txtHeapSize.Text.get());
  EXPECT_EQ(0U, lastMessage().find("You cannot lower the heap any further.\r\nThis value should "));
  EXPECT_TRUE(told("(as it would decrease performance), but should only bemodified"));
  prompts.answers = {Answer::No, Answer::Yes};  // to discard it
  EXPECT_FALSE(book.unload(frmNTHeapSize::kName));
  EXPECT_EQ("2048", reopen().txtHeapSize.Text.get());
}

TEST_F(HeapSize, FiveDigitsAreTheMost) {
  on("SharedSection=1024,9984").cmdUp.press();
  EXPECT_EQ("10240", window().txtHeapSize.Text.get());
  window().cmdUp.press();
  EXPECT_EQ("10240", window().txtHeapSize.Text.get());
  EXPECT_TRUE(told("You cannot raise the heap value larger."));
  window().cmdApply.press();
  EXPECT_EQ("\"SharedSection=1024,10240\"", line());
  // Below the lowest: it can only be raised.
  on("SharedSection=1024,512").cmdDown.press();
  EXPECT_TRUE(told("You cannot lower"));
  window().cmdUp.press();
  EXPECT_EQ("768", window().txtHeapSize.Text.get());
  window().cmdApply.press();
}

TEST_F(HeapSize, KeepsWhatAnotherProgramPutBeside) {
  on("SharedSection=1024,3072").cmdUp.press();
  registry().put(kSubSystems, "Windows", "\"SharedSection=2048,3072,256 Windows=On\"");
  window().cmdApply.press();
  EXPECT_EQ("\"SharedSection=2048,3328,256 Windows=On\"", line());
  window().cmdUp.press();
  registry().put(kSubSystems, "Windows", "\"SharedSection=2048\"");
  window().cmdApply.press();
  EXPECT_TRUE(told("could not be changed: 13"));
  EXPECT_EQ("\"SharedSection=2048\"", line());
  prompts.answers = {Answer::Yes};
  EXPECT_TRUE(book.unload(frmNTHeapSize::kName));
}

TEST_F(HeapSize, ALineWithoutTheNumberIsLeftAlone) {
  for (const char* wrong :
       {"", "csrss ServerDll=basesrv,1", "SharedSection=1024 ServerDll=basesrv,1",
        "SharedSection=1024,", "SharedSection=1024, 3072", "SharedSection=1024,0x800",
        "NoSharedSection=1024,3072", "SharedSection=1024,99999999999"}) {
    on(wrong);
    EXPECT_FALSE(window().cmdUp.Enabled) << wrong;
    EXPECT_FALSE(window().cmdApply.Enabled) << wrong;
    EXPECT_NE(std::string::npos, window().StatusText->find("no second number")) << wrong;
  }
  registry().put(kSubSystems, "Windows", "dword 3072");
  EXPECT_FALSE(reopen().cmdUp.Enabled);
  EXPECT_EQ("3072", on("\tsharedsection=1,3072").txtHeapSize.Text.get());
}

TEST_F(HeapSize, AWriteThatFailsChangesNothing) {
  window().cmdUp.press();
  expectAllOrNothing(kSubSystems, [this] { window().cmdApply.press(); });
  EXPECT_NE(std::string::npos, line().find("SharedSection=1024,3328 "));
}

TEST_F(HeapSizeOn98, SaysThatItIsForNt) {
  EXPECT_EQ("This setting exists only on Windows NT4 and 2000.", window().StatusText.get());
  EXPECT_FALSE(window().cmdUp.Enabled);
}

}  // namespace
}  // namespace korvex::dialogs
