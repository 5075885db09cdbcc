// frmSystemInformation: owner and company on both families.
#include "dialogs/system/frm_system_information.h"

#include "dialogs/direct_fixture.h"

namespace korvex::dialogs {
namespace {

const std::string kNt = "HKLM\\Software\\Microsoft\\Windows NT\\CurrentVersion";
const std::string k9x = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion";

class SystemInformation : public DirectDialogTest<frmSystemInformation> {
 public:
  explicit SystemInformation(const std::string& sample = "windows-nt4")
      : DirectDialogTest(sample) {}

  std::string held(const std::string& key) {
    return registry().value(key, "RegisteredOwner") + ' ' +
           registry().value(key, "RegisteredOrganization");
  }
};

class SystemInformationOn9x : public SystemInformation {
 public:
  SystemInformationOn9x() : SystemInformation("windows-95") {}
};

TEST_F(SystemInformation, OwnerAndCompanyAreWrittenAndSeenAgain) {
  EXPECT_EQ("Thomas Greene", dialog().txtUserName.Text.get());
  EXPECT_EQ("Greene & Ostrow Architects", dialog().txtCompany.Text.get());
  const std::string other = held(k9x);
  EXPECT_FALSE(dialog().cmdApply.Enabled);
  dialog().txtCompany.Text = "100% Ostrow, 0% Greene";
  ASSERT_TRUE(dialog().cmdApply.Enabled);
  dialog().cmdApply.press();
  EXPECT_FALSE(dialog().cmdApply.Enabled);
  EXPECT_EQ("\"Thomas Greene\" \"100% Ostrow, 0% Greene\"", held(kNt));
  EXPECT_EQ(other, held(k9x));
  EXPECT_EQ("100% Ostrow, 0% Greene", reopened().txtCompany.Text.get());
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(SystemInformationOn9x, TheKeyIsThatOf9xAndAMissingValueIsEmpty) {
  session.regTool.DeleteRegValue(platform::HKEY_LOCAL_MACHINE, k9x.substr(5), "RegisteredOwner");
  EXPECT_EQ("", dialog().txtUserName.Text.get());
  dialog().txtUserName.Text = "Pat";
  dialog().cmdApply.press();
  EXPECT_EQ("\"Pat\" \"\"", held(k9x));
  EXPECT_EQ("delete delete", held(kNt));
}

TEST_F(SystemInformationOn9x, WhatTheCodePageCannotHoldIsToldAndNothingIsWritten) {
  const std::string before = held(k9x);
  dialog().txtUserName.Text = "Patricia";
  dialog().txtCompany.Text = "\xD0\x9F\xD1\x80\xD0\xB8";  // Cyrillic
  dialog().cmdApply.press();
  EXPECT_EQ(before, held(k9x));
  EXPECT_NE(std::string::npos, lastMessage().find("code page cannot hold the text"))
      << lastMessage();
  EXPECT_TRUE(dialog().cmdApply.Enabled);  // to be put right
  prompts.answers = {platform::Answer::Yes};
  EXPECT_TRUE(book.unload(frmSystemInformation::kName));
}

TEST_F(SystemInformation, BothAreWrittenOrNone) {
  expectAllOrNothing({kNt}, [](frmSystemInformation& form) {
    form.txtUserName.Text = "Somebody";
    form.txtCompany.Text = "Some firm";
    form.cmdApply.press();
  });
}

}  // namespace
}  // namespace korvex::dialogs
