// The logon windows, the owner of Windows and further IP addresses, driven from a shell.
#include <unistd.h>

#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

const std::string kWinlogonNt = "HKLM\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
const std::string kDesktop = "HKU\\.DEFAULT\\Control Panel\\Desktop";
const std::string kBinding = "HKLM\\System\\CurrentControlSet\\Services\\Class\\NetTrans\\0000";

class DirectForms : public CliTest {
 public:
  explicit DirectForms(const std::string& sample = "windows-nt4") : CliTest(sample) {}

  Result run(std::vector<std::string> steps) {
    steps.insert(steps.begin(), {"form", "run"});
    return json(steps);
  }
  std::string text(const std::string& key, const std::string& name) {
    const Json found = value(key, name);
    return found.is_null() ? "none" : found["data"].get<std::string>();
  }
  // The first message of a run.
  static std::string messageOf(const Result& result) {
    const Json told = result.json();
    const Json& run = told.contains("error") ? told["error"] : told;
    const Json events = run.value("events", Json::array());
    for (const Json& event : events) {
      if (event["event"] == "message") return event["text"];
    }
    return "none";
  }
};

class DirectFormsOn98 : public DirectForms {
 public:
  DirectFormsOn98() : DirectForms("windows-98") {}
};

TEST_F(DirectForms, AutomaticLogonIsSwitchedOnAndOff) {
  EXPECT_EQ(2, run({"frmAutoLogon", "type=txtPassword:secret", "press=cmdApply"}).code);
  int ends[2];
  ASSERT_EQ(0, ::pipe(ends));
  ASSERT_EQ(6, ::write(ends[1], "secret", 6));
  ::close(ends[1]);
  EXPECT_EQ(0, run({"frmAutoLogon", "type=txtUserName:Tom",
                    "secret=txtPassword:" + std::to_string(ends[0]), "press=cmdApply"})
                   .code);
  ::close(ends[0]);
  EXPECT_EQ("1", text(kWinlogonNt, "AutoAdminLogon"));
  EXPECT_EQ("Tom", text(kWinlogonNt, "DefaultUserName"));
  EXPECT_EQ("secret", text(kWinlogonNt, "DefaultPassword"));
  const Result shown = korvex({"form", "show", "frmAutoLogon"});
  EXPECT_NE(std::string::npos, shown.out.find("Automatic logon is on for Tom")) << shown.out;
  EXPECT_EQ(std::string::npos, shown.out.find("secret"));
  EXPECT_EQ(0, run({"frmAutoLogon", "press=cmdDisable"}).code);
  EXPECT_EQ("", text(kWinlogonNt, "DefaultPassword"));
  EXPECT_EQ(5, run({"frmAutoLogon", "press=cmdDisable"}).code);  // there is nothing to switch off
}

TEST_F(DirectForms, TheLogonMessageAndBitmapAreWritten) {
  const Result message = run({"frmCustomLogon", "type=txtLogonCaption:Stop",
                              "type=txtLogonMessage:a\nb", "press=cmdLogonMessageApply"});
  EXPECT_EQ("Your custom message has been written to the registry.", messageOf(message));
  EXPECT_EQ("Stop", text(kWinlogonNt, "LegalNoticeCaption"));
  EXPECT_EQ("a\r\nb", text(kWinlogonNt, "LegalNoticeText"));
  EXPECT_EQ(0, run({"frmLogon_Bitmap", "press=cndBitmap_Browse", "file=C:\\WINNT\\x.bmp",
                    "press=cmdBitmap_Finish"})
                   .code);
  EXPECT_EQ("C:\\WINNT\\x.bmp", text(kDesktop, "Wallpaper"));
  const Result refused = run({"frmLogon_Bitmap", "type=txtBitmap:x.jpg", "press=cmdBitmap_Finish"});
  EXPECT_EQ(0u, messageOf(refused).find("The file must be a file with a bmp extension."));
  EXPECT_EQ("C:\\WINNT\\x.bmp", text(kDesktop, "Wallpaper"));
}

TEST_F(DirectFormsOn98, WhatWindows98HasNotIsRefusedWithItsReason) {
  const Result bitmap = korvex({"form", "run", "frmLogon_Bitmap", "type=txtBitmap:x.bmp"});
  EXPECT_EQ(5, bitmap.code);
  EXPECT_NE(std::string::npos, bitmap.err.find("Windows NT4 and 2000")) << bitmap.err;
  // Its code page has no Cyrillic.
  const Result owner = run({"frmSystemInformation", "type=txtUserName:\xD0\x9F", "press=cmdApply"});
  EXPECT_NE(std::string::npos, messageOf(owner).find("code page cannot hold")) << owner.out;
}

TEST_F(DirectFormsOn98, AnAddressIsAddedAndTakenAwayWithItsMask) {
  const std::vector<std::string> typed{
      "frmIPAddresses",    "type=txtIP1:10",  "type=txtIP2:0",   "type=txtIP3:0",   "type=txtIP4:1",
      "type=txtMask1:255", "type=txtMask2:0", "type=txtMask3:0", "type=txtMask4:0", "press=cmdAdd"};
  EXPECT_EQ(0, run(typed).code);
  EXPECT_EQ("192.168.1.15,10.0.0.1", text(kBinding, "IPAddress"));
  EXPECT_EQ("255.255.255.0,255.0.0.0", text(kBinding, "IPMask"));
  EXPECT_EQ("The address 10.0.0.1 is in the list already.", messageOf(run(typed)));
  EXPECT_EQ(0,
            run({"frmIPAddresses", "select=lstIPAddresses:192.168.1.15", "press=cmdRemove"}).code);
  EXPECT_EQ("10.0.0.1", text(kBinding, "IPAddress"));
  EXPECT_EQ("255.0.0.0", text(kBinding, "IPMask"));
  EXPECT_EQ(5, run({"frmIPAddresses", "type=txtIP1:10", "press=cmdAdd"}).code);
  EXPECT_EQ("This field only accepts numerals.",
            messageOf(run({"frmIPAddresses", "type=txtMask2:x"})));
}

TEST_F(DirectForms, TheOwnerIsWrittenAndNtHasNoAddresses) {
  EXPECT_EQ(0, run({"frmSystemInformation", "type=txtCompany:Ostrow", "press=cmdApply"}).code);
  EXPECT_EQ("Ostrow", text("HKLM\\Software\\Microsoft\\Windows NT\\CurrentVersion",
                           "RegisteredOrganization"));
  EXPECT_NE(std::string::npos, korvex({"form", "run", "frmIPAddresses", "type=txtIP1:1"})
                                   .err.find("Windows 95, 98 and Millennium"));
}

}  // namespace
}  // namespace korvex::cli
