// frmCustomLogon: the message before logon, written and cleared.
#include "dialogs/logon/frm_custom_logon.h"

#include "dialogs/direct_fixture.h"

namespace korvex::dialogs {
namespace {

const std::string kWinlogon = "HKLM\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";

class CustomLogon : public DirectDialogTest<frmCustomLogon> {
 public:
  explicit CustomLogon(const std::string& sample = "windows-2000-server")
      : DirectDialogTest(sample) {}

  std::string held() {
    return registry().value(kWinlogon, "LegalNoticeCaption") + ' ' +
           registry().value(kWinlogon, "LegalNoticeText");
  }
};

class CustomLogonOn9x : public CustomLogon {
 public:
  CustomLogonOn9x() : CustomLogon("windows-95") {}
};

TEST_F(CustomLogon, AMessageIsWrittenSeenAgainAndCleared) {
  EXPECT_EQ("Authorized use only", dialog().txtLogonCaption.Text.get());
  dialog().txtLogonCaption.Text = "50% off, 20% on";
  dialog().txtLogonMessage.Text = "one\ntwo\r\nthree";
  dialog().cmdLogonMessageApply.press();
  EXPECT_EQ("\"50% off, 20% on\" \"one\r\ntwo\r\nthree\"", held());
  EXPECT_EQ("Your custom message has been written to the registry.", lastMessage());
  EXPECT_EQ(platform::kIconInformation, prompts.messages.back().style);

  EXPECT_EQ("one\r\ntwo\r\nthree", reopened().txtLogonMessage.Text.get());
  dialog().txtLogonCaption.Text = "";
  dialog().cmdLogonMessageApply.press();
  EXPECT_EQ("Your custom message has been written to the registry.", lastMessage());
  dialog().txtLogonMessage.Text = "";
  dialog().cmdLogonMessageApply.press();
  EXPECT_EQ("\"\" \"\"", held());
  EXPECT_EQ("Your custom message has been cleared from the system.", lastMessage());
}

TEST_F(CustomLogon, WhatStoodThereStaysToTheByteUnlessItIsTyped) {
  registry().put(kWinlogon, "LegalNoticeText", "\"by hand\nwith a bare line feed\"");
  dialog().txtLogonCaption.Text = "Other";
  dialog().cmdLogonMessageApply.press();
  EXPECT_EQ("\"Other\" \"by hand\nwith a bare line feed\"", held());
}

TEST_F(CustomLogonOn9x, TheKeyIsThatOfNtOnEverySystem) {
  dialog().txtLogonCaption.Text = "Caption";
  dialog().txtLogonMessage.Text = "Text";
  dialog().cmdLogonMessageApply.press();
  EXPECT_EQ("\"Caption\" \"Text\"", held());
  EXPECT_EQ("delete",
            registry().value("HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Winlogon",
                             "LegalNoticeCaption"));
}

TEST_F(CustomLogonOn9x, WhatTheCodePageCannotHoldIsToldAndNothingIsWritten) {
  const std::string before = held();
  dialog().txtLogonCaption.Text = "Caption";
  dialog().txtLogonMessage.Text = "\xD0\x9F\xD1\x80\xD0\xB8";  // Cyrillic
  dialog().cmdLogonMessageApply.press();
  EXPECT_EQ(before, held());
  ASSERT_EQ(1u, prompts.messages.size());
  EXPECT_NE(std::string::npos, lastMessage().find("code page cannot hold the text"))
      << lastMessage();
  prompts.answers = {platform::Answer::Yes};
  EXPECT_TRUE(book.unload(frmCustomLogon::kName));
}

TEST_F(CustomLogon, BothTextsAreWrittenOrNone) {
  expectAllOrNothing({kWinlogon}, [](frmCustomLogon& form) {
    form.txtLogonCaption.Text = "Caption";
    form.txtLogonMessage.Text = "Text";
    form.cmdLogonMessageApply.press();
  });
}

}  // namespace
}  // namespace korvex::dialogs
