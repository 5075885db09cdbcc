// frmL2Cache: one of three sizes, in KB.
#include "dialogs/nt/frm_l2_cache.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

constexpr const char* kMemory =
    "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Memory Management";
constexpr const char* kValue = "SecondLevelDataCache";
constexpr const char* kWrong =
    "You have entered an incorrect L2 cache value. Valid values are either 256, 512 or 1024.";

class L2Cache : public OnFailingMachine<frmL2Cache> {
 public:
  using OnFailingMachine::OnFailingMachine;
  std::string value() { return registry().value(kMemory, kValue); }
  void apply(const std::string& size) {
    window().cboL2Cache.Text = size;
    window().cmdL2Apply.press();
  }
};
class L2CacheOnMe : public L2Cache {
 public:
  L2CacheOnMe() : L2Cache("windows-me") {}
};

TEST_F(L2Cache, WritesOneOfTheThreeInKilobytes) {
  EXPECT_EQ("Currently, HAL defaults to 0K if L2 is not recognized.",
            window().lblCurrent.Caption.get());
  for (const char* size : {"256", "1024", "512"}) {
    apply(size);
    EXPECT_EQ("dword " + std::string(size), value());
  }
  EXPECT_TRUE(session.g_bRebootNeeded);
  EXPECT_EQ("Currently, HAL defaults to 512K if L2 is not recognized.",
            window().lblCurrent.Caption.get());
  EXPECT_EQ("512", reopen().cboL2Cache.selectedItem());
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(L2Cache, RefusesEveryOtherNumber) {
  for (const char* size : {"768", "", "0512", "512 ", "512K", "-256", "4294967552"}) {
    prompts.messages.clear();
    apply(size);
    EXPECT_EQ(kWrong, lastMessage()) << size;
  }
  EXPECT_EQ("dword 0", value());
  EXPECT_FALSE(session.g_bRebootNeeded);
}

TEST_F(L2Cache, ShowsWhatStandsThereOfWhateverSize) {
  registry().put(kMemory, kValue, "dword 4294967295");
  EXPECT_EQ("Currently, HAL defaults to 4294967295K if L2 is not recognized.",
            window().lblCurrent.Caption.get());
  EXPECT_EQ("", window().cboL2Cache.Text.get());
  expectAllOrNothing(kMemory, [this] { apply("256"); });
  EXPECT_EQ("dword 256", value());
}

TEST_F(L2CacheOnMe, SaysThatItIsForNt) {
  EXPECT_FALSE(window().cboL2Cache.Enabled);
  EXPECT_FALSE(window().cmdL2Apply.Enabled);
  EXPECT_EQ("This setting exists only on Windows NT4 and 2000.", window().StatusText.get());
}

}  // namespace
}  // namespace korvex::dialogs
