// frmIPAddresses as a person uses it: pairs added and taken away, and what is refused.
#include "dialogs/network/frm_ip_addresses.h"

#include "dialogs/direct_fixture.h"

namespace korvex::dialogs {
namespace {

using Items = std::vector<std::string>;

const std::string kBinding = "HKLM\\System\\CurrentControlSet\\Services\\Class\\NetTrans\\0000";

class IpAddresses : public DirectDialogTest<frmIPAddresses> {
 public:
  explicit IpAddresses(const std::string& sample = "windows-98") : DirectDialogTest(sample) {}

  void hold(const std::string& addresses, const std::string& masks) {
    registry().put(kBinding, "IPAddress", '"' + addresses + '"');
    registry().put(kBinding, "IPMask", '"' + masks + '"');
    reopened();
  }
  // The two values as they stand.
  std::string held() {
    return registry().value(kBinding, "IPAddress") + ' ' + registry().value(kBinding, "IPMask");
  }
  static void type(frmIPAddresses& form, const Items& octets) {
    const std::vector<forms::TextBox*> boxes{&form.txtIP1,   &form.txtIP2,   &form.txtIP3,
                                             &form.txtIP4,   &form.txtMask1, &form.txtMask2,
                                             &form.txtMask3, &form.txtMask4};
    for (std::size_t i = 0; i < octets.size(); ++i) boxes[i]->Text = octets[i];
  }
  void add(const Items& octets) {
    type(dialog(), octets);
    dialog().cmdAdd.press();
  }
};

class IpAddressesOnMe : public IpAddresses {
 public:
  IpAddressesOnMe() : IpAddresses("windows-me") {}
};

class IpAddressesOnNt : public IpAddresses {
 public:
  IpAddressesOnNt() : IpAddresses("windows-nt4") {}
};

TEST_F(IpAddresses, APairIsAddedSeenAgainAndTakenAway) {
  const std::string before = held();
  type(dialog(), {"10", "0", "0", "2", "255", "0", "0"});
  EXPECT_FALSE(dialog().cmdAdd.Enabled);
  dialog().txtMask4.Text = "0";
  ASSERT_TRUE(dialog().cmdAdd.Enabled);
  dialog().cmdAdd.press();
  EXPECT_EQ("\"192.168.1.15,10.0.0.2\" \"255.255.255.0,255.0.0.0\"", held());
  EXPECT_TRUE(session.g_bRebootNeeded);
  EXPECT_FALSE(dialog().cmdAdd.Enabled);  // the address must not be added twice

  EXPECT_EQ((Items{"192.168.1.15", "10.0.0.2"}), reopened().lstIPAddresses.items());
  EXPECT_EQ((Items{"255.255.255.0", "255.0.0.0"}), dialog().lstSubnet.items());
  EXPECT_FALSE(dialog().cmdRemove.Enabled);
  dialog().lstSubnet.ListIndex = 1;
  EXPECT_EQ("10.0.0.2", dialog().lstIPAddresses.selectedItem());
  dialog().cmdRemove.press();
  EXPECT_EQ(before, held());
  EXPECT_EQ(Items{"192.168.1.15"}, dialog().lstIPAddresses.items());
  EXPECT_FALSE(dialog().cmdRemove.Enabled);
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(IpAddressesOnMe, TheFirstAddressIsWrittenWithoutAComma) {
  EXPECT_TRUE(dialog().lstIPAddresses.items().empty());
  add({"10", "0", "0", "1", "255", "0", "0", "0"});
  EXPECT_EQ("\"10.0.0.1\" \"255.0.0.0\"", held());
  // A mask that was left without an address belongs to none.
  hold("", "255.255.0.0");
  EXPECT_TRUE(dialog().lstSubnet.items().empty());
  add({"10", "0", "0", "1", "255", "0", "0", "0"});
  EXPECT_EQ("\"10.0.0.1\" \"255.0.0.0\"", held());
}

TEST_F(IpAddresses, AnOctetTakesNoTextAndNoNumberBeyondItsRange) {
  struct Case {
    const char* control;
    const char* typed;
    const char* message;  // its beginning; "" where it is taken
  };
  const std::string end = "\r\n\r\nPlease check the number and try again.";
  const std::vector<Case> cases{
      {"txtIP1", "1x", "This field only accepts numerals."},
      {"txtMask4", ".", "This field only accepts numerals."},
      {"txtIP1", "0",
       "The value entered is outside the range of IP addresses.\r\nThe range is 1 - 255."},
      {"txtIP1", "256",
       "The value entered is outside the range of IP addresses.\r\nThe range is 1 - 255."},
      {"txtIP4", "256",
       "The value entered is outside the range of IP addresses.\r\nThe range is 0 - 255."},
      {"txtMask1", "999",
       "The value entered is outside the subnet mask range.\r\nThe range is 0 - 255."},
      {"txtMask1", "99999999999",
       "The value entered is outside the subnet mask range.\r\nThe range is 0 - 255."},
      {"txtIP2", "0", ""},
      {"txtIP4", "255", ""},
      {"txtMask1", "0", ""},
      {"txtIP1", "", ""},
  };
  for (const Case& c : cases) {
    auto& box = *dialog().find<forms::TextBox>(c.control);
    box.Text = "12";
    prompts.messages.clear();
    box.Text = c.typed;
    const std::string_view message = c.message;
    EXPECT_EQ(message.empty() ? c.typed : "12", box.Text.get()) << c.control << ' ' << c.typed;
    ASSERT_EQ(message.empty() ? 0u : 1u, prompts.messages.size()) << c.control << ' ' << c.typed;
    if (message.empty()) continue;
    EXPECT_EQ(message.starts_with("The") ? c.message + end : c.message, lastMessage());
    EXPECT_EQ(platform::kIconInformation, prompts.messages[0].style);
  }
  dialog().txtIP1.Text = "";
  for (const char* left : {"txtIP2", "txtIP4"}) dialog().find<forms::TextBox>(left)->Text = "";
}

TEST_F(IpAddresses, APairThatWouldDoHarmIsRefused) {
  hold("192.168.1.15,10.0.0.1", "255.255.255.0,255.0.0.0");
  const std::string before = held();
  add({"010", "0", "00", "1", "255", "0", "0", "0"});
  EXPECT_EQ("The address 10.0.0.1 is in the list already.", lastMessage());
  add({"10", "0", "0", "2", "255", "0", "255", "0"});
  EXPECT_TRUE(lastMessage().starts_with("255.0.255.0 is no subnet mask.")) << lastMessage();
  EXPECT_EQ(before, held());
  type(dialog(), {"", "", "", ""});

  hold("192.168.1.15,10.0.0.1", "255.255.255.0");
  const std::string uneven = held();
  add({"10", "0", "0", "2", "255", "0", "0", "0"});
  EXPECT_TRUE(lastMessage().starts_with("There are 2 addresses, but 1 mask:")) << lastMessage();
  EXPECT_EQ(uneven, held());
}

TEST_F(IpAddresses, TheAddressOfADhcpServerIsGivenUpOnlyWhenAgreed) {
  hold("0.0.0.0", "0.0.0.0");
  EXPECT_EQ("0.0.0.0: a DHCP server gives the address", dialog().StatusText.get());
  prompts.answers = {platform::Answer::No};
  add({"10", "0", "0", "2", "255", "0", "0", "0"});
  EXPECT_EQ("\"0.0.0.0\" \"0.0.0.0\"", held());
  EXPECT_EQ("2", dialog().txtIP4.Text.get());
  prompts.answers = {platform::Answer::Yes};
  dialog().cmdAdd.press();
  EXPECT_EQ("\"10.0.0.2\" \"255.0.0.0\"", held());
}

TEST_F(IpAddresses, UnevenListsAreShownAndEachLosesWhatStandsThere) {
  hold(" 10.0.0.1 ,110.0.0.1,10.0.0.11,", "255.0.0.0,255.255.0.0");
  EXPECT_EQ((Items{"10.0.0.1", "110.0.0.1", "10.0.0.11"}), dialog().lstIPAddresses.items());
  EXPECT_EQ("3 addresses, but 2 masks", dialog().StatusText.get());
  dialog().lstIPAddresses.ListIndex = 2;
  EXPECT_EQ(-1, dialog().lstSubnet.ListIndex);
  dialog().cmdRemove.press();
  EXPECT_EQ("\" 10.0.0.1 ,110.0.0.1,\" \"255.0.0.0,255.255.0.0\"", held());
  dialog().lstIPAddresses.ListIndex = 0;
  dialog().cmdRemove.press();
  EXPECT_EQ("\"110.0.0.1,\" \"255.255.0.0\"", held());
}

TEST_F(IpAddresses, WhatAnotherProgramWroteMeanwhileIsNotRemoved) {
  hold("10.0.0.1,10.0.0.2", "255.0.0.0,255.0.0.0");
  dialog().lstIPAddresses.ListIndex = 1;
  registry().put(kBinding, "IPAddress", "\"10.0.0.1,10.0.0.3\"");
  dialog().cmdRemove.press();
  EXPECT_EQ("\"10.0.0.1,10.0.0.3\" \"255.0.0.0,255.0.0.0\"", held());
  EXPECT_EQ((Items{"10.0.0.1", "10.0.0.3"}), dialog().lstIPAddresses.items());
  EXPECT_TRUE(lastMessage().starts_with("The addresses have been changed meanwhile."))
      << lastMessage();
}

TEST_F(IpAddresses, WithoutABindingOrWithAnythingButTextNothingCanBePressed) {
  registry().put(kBinding, "IPMask", "binary 00 01");
  EXPECT_FALSE(reopened().txtIP1.Enabled);
  EXPECT_NE(std::string::npos, dialog().StatusText->find("13 (")) << dialog().StatusText.get();
  session.regTool.DeleteRegNodes(platform::HKEY_LOCAL_MACHINE, kBinding.substr(5));
  EXPECT_FALSE(reopened().cmdAdd.Enabled || dialog().txtMask4.Enabled ||
               dialog().lstSubnet.Enabled);
  EXPECT_TRUE(dialog().cmdDone.Enabled);
  EXPECT_EQ("This machine has no network binding that addresses could be added to.",
            dialog().txtIP1.ToolTipText.get());
}

TEST_F(IpAddressesOnNt, NtHasNoSuchBinding) {
  EXPECT_FALSE(dialog().txtIP1.Enabled);
  EXPECT_EQ("This setting exists only on Windows 95, 98 and Millennium.",
            dialog().txtIP1.ToolTipText.get());
}

TEST_F(IpAddresses, BothValuesAreWrittenOrNone) {
  expectAllOrNothing({kBinding}, [](frmIPAddresses& form) {
    type(form, {"10", "0", "0", "2", "255", "0", "0", "0"});
    form.cmdAdd.press();
  });
}

}  // namespace
}  // namespace korvex::dialogs
