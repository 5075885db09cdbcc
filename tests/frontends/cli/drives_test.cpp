// drives list, hide and show, and the windows of drives and programs as scripts drive them.
#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

class DrivesTest : public CliTest {
 public:
  explicit DrivesTest(const std::string& sample = "windows-98") : CliTest(sample) {}
  Json noDrives() { return value(kExplorer, "NoDrives"); }
};
class Drives2000Test : public DrivesTest {
 public:
  Drives2000Test() : DrivesTest("windows-2000") {}
};
using Drives = DrivesTest;
using Drives2000 = Drives2000Test;

void expectHiddenAndShown(DrivesTest& test) {
  test.korvex({"reg", "set", kExplorer, "NoDrives", "REG_DWORD", "4"});
  const Json hidden = test.json({"drives", "hide", "Y:", "a", "A:\\"}).json();
  EXPECT_EQ(Json({"A:", "C:", "Y:"}), hidden["hidden"]);
  EXPECT_EQ(true, hidden["changed"]);
  EXPECT_EQ("REG_DWORD", hidden["before"]["type"]);
  EXPECT_EQ("REG_BINARY", test.noDrives()["type"]);
  EXPECT_EQ("05000001", test.noDrives()["hex"]);
  const Json listed = test.json({"drives", "list"}).json();
  ASSERT_EQ(26u, listed["drives"].size());
  EXPECT_EQ(Json({{"drive", "A:"}, {"kind", "floppy disk drive"}, {"hidden", true}}),
            listed["drives"][0]);
  EXPECT_EQ(false, listed["drives"][25]["hidden"]);
  EXPECT_EQ("Hidden drives: A:, Y:\n", test.korvex({"drives", "show", "C"}).out);
  EXPECT_EQ(Json::array(), test.json({"drives", "show", "--all"}).json()["hidden"]);
  EXPECT_EQ("00000000", test.noDrives()["hex"]);
  EXPECT_EQ(false, test.json({"drives", "show", "Q"}).json()["changed"]);
}

TEST_F(Drives, AreHiddenAndShownOneByOne) { expectHiddenAndShown(*this); }
TEST_F(Drives2000, AreHiddenAndShownOneByOne) { expectHiddenAndShown(*this); }

TEST_F(Drives, WhatCannotBeDoneChangesNothing) {
  const std::string before = dump();
  for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
           {"hide"}, {"hide", "1"}, {"hide", "CD"}, {"hide", ""}, {"show", "C", "--all"}}) {
    std::vector<std::string> all{"drives"};
    all.insert(all.end(), args.begin(), args.end());
    EXPECT_EQ(2, korvex(all).code) << args.back();
  }
  EXPECT_EQ(before, dump());
  {
    const auto open = machine.open(platform::OpenMode::ReadWrite);
    const auto claim = open->claimInstance(platform::Wait::No);
    EXPECT_EQ(4, korvex({"drives", "hide", "C"}).code);
    EXPECT_EQ(0, korvex({"drives", "list"}).code);
  }
  korvex({"reg", "delete", kExplorer});
  const Result result = json({"drives", "hide", "C"});
  EXPECT_EQ(5, result.code);
  EXPECT_EQ("no-policies", result.json()["error"]["kind"]);
  EXPECT_EQ(nullptr, noDrives());
}

TEST_F(Drives, TheWindowOfMoreSecurityLeadsToBothPolicies) {
  EXPECT_EQ(0, korvex({"form", "run", "frmMoreSecurity", "press=cmdHideDrives",
                       "check=lstDrives:Z:", "press=cmdDone"})
                   .code);
  EXPECT_EQ("00000002", noDrives()["hex"]);
  const Result run = korvex({"form", "run", "frmMoreSecurity", "press=cmdRestrictRun",
                             "check=chkRestrictRun", "press=cmdAdd", "type=txtBitmap:notepad.exe",
                             "answer=yes", "press=cmdBitmap_Finish", "answer=no", "press=cmdDone"});
  EXPECT_EQ(0, run.code) << run.err << run.out;
  EXPECT_EQ(1, value(kExplorer, "RestrictRun")["data"]);
  EXPECT_EQ("notepad.exe", value(kExplorer + "\\RestrictRun", "1")["data"]);
  EXPECT_EQ("korvex.exe", value(kExplorer + "\\RestrictRun", "2")["data"]);
  EXPECT_EQ("systray.exe", value(kExplorer + "\\RestrictRun", "3")["data"]);
}

}  // namespace
}  // namespace korvex::cli
