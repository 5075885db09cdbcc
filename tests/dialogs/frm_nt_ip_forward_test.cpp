// frmNT_IPForward: two numbers, neither below what the system has now.
#include "dialogs/network/frm_nt_ip_forward.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;

constexpr const char* kParameters = "HKLM\\SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters";

class IPForward : public OnFailingMachine<frmNT_IPForward> {
 public:
  using OnFailingMachine::OnFailingMachine;
  std::string value(const char* name) { return registry().value(kParameters, name); }
  std::string written() {
    return value("MaxForwardBufferMemory") + ", " + value("MaxNumForwardPackets");
  }
  std::string shown() {
    return window().txtMaxForwardBufferMemory.Text.get() + ", " +
           window().txtMaxNumForwardPackets.Text.get();
  }
  void apply(const std::string& memory, const std::string& packets) {
    window().txtMaxForwardBufferMemory.Text = memory;
    window().txtMaxNumForwardPackets.Text = packets;
    window().cmdApply.press();
  }
};
class IPForwardOn95 : public IPForward {
 public:
  IPForwardOn95() : IPForward("windows-95") {}
};

TEST_F(IPForward, TheDefaultsCanBeWrittenAsTheyStand) {
  EXPECT_EQ("delete, delete", written());
  EXPECT_EQ("0xFFFF, 50", shown());
  window().cmdApply.press();
  EXPECT_EQ("dword 65535, dword 50", written());
  EXPECT_TRUE(session.g_bRebootNeeded);
  EXPECT_EQ("65535, 50", shown());
  apply("0xffff", "4294967295");
  EXPECT_EQ("dword 65535, dword -1", written());
  reopen();
  EXPECT_EQ("65535, 4294967295", shown());
}

TEST_F(IPForward, TakesDigitsOnlyWhileOneTypes) {
  window().txtMaxForwardBufferMemory.Text = "0xFFFG";
  EXPECT_EQ("This field only accepts numerals.", lastMessage());
  EXPECT_EQ("0xFFFF", window().txtMaxForwardBufferMemory.Text.get());
  window().txtMaxForwardBufferMemory.Text = "70000";
  window().txtMaxForwardBufferMemory.Text = "70000x";
  window().txtMaxNumForwardPackets.Text = "0x";
  window().txtMaxNumForwardPackets.Text = "-1";
  EXPECT_EQ("70000, 50", shown());
  EXPECT_EQ(4U, prompts.messages.size());
  prompts.answers = {Answer::Yes};
  EXPECT_TRUE(book.unload(frmNT_IPForward::kName));
}

TEST_F(IPForward, RefusesOnApplyWhatIsNoNumberOf32Bits) {
  apply("4294967296", "50");
  EXPECT_TRUE(told("MaxForwardBufferMemory must be a number from 0 to 4294967295."));
  apply("0x", "50");
  EXPECT_TRUE(told("MaxForwardBufferMemory must be"));
  apply("65535", "");
  EXPECT_TRUE(told("MaxNumForwardPackets must be"));
  EXPECT_EQ("delete, delete", written());
}

TEST_F(IPForward, NeitherMayBeLessThanWhatTheSystemHas) {
  registry().put(kParameters, "ForwardBufferMemory", "dword 74240");
  registry().put(kParameters, "NumForwardPackets", "dword 3000000000");
  const auto before = below(kParameters);
  apply("74239", "3000000000");
  EXPECT_EQ(
      "This value must be greater than or equal to the ForwardBufferMemory parameter (74240).",
      lastMessage());
  apply("74240", "2999999999");
  EXPECT_EQ("This value must be greater than or equal to the NumForwardPackets value (3000000000).",
            lastMessage());
  EXPECT_EQ(before, below(kParameters));
  apply("74240", "3000000000");
  EXPECT_EQ("dword 74240, dword -1294967296", written());
}

TEST_F(IPForward, WritesBothOrNone) {
  expectAllOrNothing(kParameters, [this] { apply("80000", "60"); });
  EXPECT_EQ("dword 80000, dword 60", written());
}

TEST_F(IPForward, WithoutTheProtocolThereIsNothingToSet) {
  session.regTool.DeleteRegNodes(platform::HKEY_LOCAL_MACHINE,
                                 "SYSTEM\\CurrentControlSet\\Services\\Tcpip");
  EXPECT_FALSE(window().cmdApply.Enabled);
  EXPECT_NE(std::string::npos, window().StatusText->find("not installed"));
}

TEST_F(IPForwardOn95, SaysThatItIsForNt) {
  EXPECT_FALSE(window().txtMaxNumForwardPackets.Enabled);
  EXPECT_EQ("This setting exists only on Windows NT4 and 2000.", window().StatusText.get());
}

}  // namespace
}  // namespace korvex::dialogs
