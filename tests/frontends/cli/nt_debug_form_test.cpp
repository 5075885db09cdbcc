// The small dialogs of NT, boot.ini and application paths through form run.
#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

using Words = std::vector<std::string>;

constexpr const char* kControl = "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Session Manager";
constexpr const char* kParameters = "HKLM\\SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters";

class NtDebugForms : public CliTest {
 public:
  NtDebugForms() : CliTest("windows-nt4") {}
  std::string file(const std::string& name) const {
    std::ifstream in(machine.driveC() / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  bool has(const std::string& name) const {
    return std::filesystem::exists(machine.driveC() / name);
  }
};
class NtDebugFormsOn98 : public CliTest {
 public:
  NtDebugFormsOn98() : CliTest("windows-98") {}
};

TEST_F(NtDebugForms, BootIniIsWrittenWithItsCopies) {
  const std::string before = file("boot.ini");
  const std::string text = "[boot loader]\ntimeout=5\n[operating systems]\nC:\\=\"DOS\"";
  const Words run{"form", "run", "frmNTDebug", "type=txtBOOTININT:" + text, "press=cmdApply"};
  EXPECT_EQ(5, korvex(run).code);  // nobody answers
  EXPECT_EQ(before, file("boot.ini"));
  EXPECT_FALSE(has("boot.mstr"));
  Words answered = run;
  answered.push_back("answer=yes");
  const Result result = korvex(answered);
  EXPECT_EQ(0, result.code) << result.err;
  EXPECT_EQ("[boot loader]\r\ntimeout=5\r\n[operating systems]\r\nC:\\=\"DOS\"\r\n",
            file("boot.ini"));
  EXPECT_EQ(before, file("boot.mstr"));
  EXPECT_EQ(before, file("boot.org"));
  EXPECT_NE(std::string::npos, korvex({"form", "show", "frmNTDebug"}).out.find("timeout=5"));
}

TEST_F(NtDebugForms, AFailingStepTakesBootIniAndItsCopiesBack) {
  const std::string before = file("boot.ini");
  EXPECT_EQ(2, korvex({"form", "run", "frmNTDebug",
                       "type=txtBOOTININT:[boot loader]\r\n[operating systems]\r\n",
                       "press=cmdApply", "answer=yes", "press=cmdNobody"})
                   .code);
  EXPECT_EQ(before, file("boot.ini"));
  EXPECT_FALSE(has("boot.mstr"));
  EXPECT_FALSE(has("boot.org"));
}

TEST_F(NtDebugForms, LookingAtTheFormsWritesNothing) {
  const auto before = everyFile();
  for (const char* form :
       {"frmNTDebug", "frmNTHeapSize", "frmL2Cache", "frmNT_IPForward", "frmFastFileAccess"}) {
    EXPECT_EQ(0, korvex({"form", "show", form}).code) << form;
  }
  EXPECT_EQ(before, everyFile());
}

TEST_F(NtDebugForms, TheLoadOrderIsSavedOnTheDesktop) {
  EXPECT_EQ(5, korvex({"form", "run", "frmNTDebug", "press=cmdDriverLoadOrderSave"}).code);
  const Result result =
      json({"form", "run", "frmNTDebug", "press=cmdShowDriverLoadOrder",
            "press=cmdDriverLoadOrderSave", "press=cmdShowLoadOrderDone", "press=cmdDone"});
  EXPECT_EQ(0, result.code) << result.err;
  EXPECT_NE(std::string::npos, result.out.find("Profiles\\\\tgreene\\\\Desktop"));
  EXPECT_EQ(
      0U,
      file("WINNT/Profiles/tgreene/Desktop/Driver Load Order.txt").find("System Bus Extender\r\n"));
  EXPECT_FALSE(has("WINNT/loadodr.dat"));
}

TEST_F(NtDebugForms, NumbersAreWrittenAtOnce) {
  EXPECT_EQ(0, korvex({"form", "run", "frmNTHeapSize", "press=cmdUp", "press=cmdApply"}).code);
  const Json heap = value(std::string(kControl) + "\\SubSystems", "Windows");
  EXPECT_EQ("REG_EXPAND_SZ", heap["type"]);
  EXPECT_NE(std::string::npos, heap["data"].get<std::string>().find("SharedSection=1024,3328 "));
  EXPECT_EQ(5, korvex({"form", "run", "frmNTHeapSize", "type=txtHeapSize:9"}).code);

  EXPECT_EQ(0,
            korvex({"form", "run", "frmL2Cache", "type=cboL2Cache:768", "press=cmdL2Apply"}).code);
  EXPECT_EQ(0,
            value(std::string(kControl) + "\\Memory Management", "SecondLevelDataCache")["data"]);
  EXPECT_EQ(
      0, korvex({"form", "run", "frmL2Cache", "select=cboL2Cache:512", "press=cmdL2Apply"}).code);
  EXPECT_EQ(512,
            value(std::string(kControl) + "\\Memory Management", "SecondLevelDataCache")["data"]);

  EXPECT_EQ(0, korvex({"form", "run", "frmNT_IPForward", "press=cmdApply"}).code);
  EXPECT_EQ(65535, value(kParameters, "MaxForwardBufferMemory")["data"]);
  const Result odd = json({"form", "run", "frmNT_IPForward", "type=txtMaxNumForwardPackets:6O"});
  EXPECT_NE(std::string::npos, odd.out.find("This field only accepts numerals."));
  EXPECT_EQ(50, value(kParameters, "MaxNumForwardPackets")["data"]);
}

TEST_F(NtDebugFormsOn98, WhatIsForNtIsDisabledWithTheReason) {
  for (const Words& step :
       {Words{"frmNTHeapSize", "press=cmdUp"}, Words{"frmL2Cache", "press=cmdL2Apply"},
        Words{"frmNT_IPForward", "type=txtMaxNumForwardPackets:60"},
        Words{"frmNTDebug", "press=cmdApply"}}) {
    EXPECT_EQ(5, korvex({"form", "run", step[0], step[1]}).code) << step[0];
  }
  const std::string shown = korvex({"form", "show", "frmNTHeapSize"}).out;
  EXPECT_NE(std::string::npos, shown.find("only on Windows NT4 and 2000")) << shown;
  EXPECT_EQ(0, korvex({"form", "run", "frmFastFileAccess", "press=cmdSelectApp",
                       "file=C:\\WINDOWS\\NOTEPAD.EXE", "press=cmdApply"})
                   .code);
}

}  // namespace
}  // namespace korvex::cli
