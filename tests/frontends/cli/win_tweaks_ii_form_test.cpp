// frmWinTweaksII from a script: its rows, and what it writes at once.
#include <fstream>
#include <iterator>

#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

const std::string kSearchUrl =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Internet Explorer\\SearchURL";
const std::string kTemplates =
    "HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Internet Explorer\\Main\\UrlTemplate";
const std::string kIcons =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer";

class WinTweaksIIOn98 : public CliTest {
 public:
  WinTweaksIIOn98() : CliTest("windows-98") {}
};
class WinTweaksIIOnMe : public CliTest {
 public:
  WinTweaksIIOnMe() : CliTest("windows-me") {}
};

std::vector<std::string> messages(const Json& run) {
  std::vector<std::string> texts;
  for (const Json& event : run["events"]) {
    if (event["event"] == "message" || event["event"] == "input") texts.push_back(event["text"]);
  }
  return texts;
}

Json controlOf(const Json& form, const std::string& name) {
  for (const Json& control : form["form"]["controls"]) {
    if (control["name"] == name) return control;
  }
  return nullptr;
}

// An INI file is a file like any other: told, and taken back with everything else.
TEST_F(WinTweaksIIOn98, IniFilesAreToldAndTakenBackWithTheRun) {
  const std::filesystem::path ini = machine.driveC() / "WINDOWS" / "SYSTEM.INI";
  const auto content = [&ini] {
    std::ifstream file(ini, std::ios::binary);
    return std::string{std::istreambuf_iterator<char>(file), {}};
  };
  const std::string before = content();
  ASSERT_FALSE(before.empty());
  EXPECT_EQ(2, korvex({"form", "run", "frmWinTweaksII", "press=cmdlblIconCache", "input=2048",
                       "press=cmdNoSuchButton"})
                   .code);
  EXPECT_EQ(before, content());
  const auto run = korvex({"form", "run", "frmWinTweaksII", "press=cmdlblIconCache", "input=2048"});
  EXPECT_EQ(0, run.code);
  EXPECT_NE(before, content());
  EXPECT_NE(std::string::npos, run.out.find("system.ini")) << run.out;
}

TEST_F(WinTweaksIIOn98, TheRowsWaitForTheMainApply) {
  const std::string lnkfile = "HKEY_CLASSES_ROOT\\lnkfile";
  EXPECT_EQ(0, korvex({"form", "run", "frmWinTweaksII", "check=chkArrows"}).code);
  EXPECT_NE(nullptr, value(lnkfile, "IsShortcut"));
  EXPECT_EQ(
      0, korvex({"form", "run", "frmWinTweaksII", "check=chkArrows", "press=cmdMainApply"}).code);
  EXPECT_EQ(nullptr, value(lnkfile, "IsShortcut"));
  EXPECT_EQ("checked",
            controlOf(json({"form", "show", "frmWinTweaksII"}).json(), "chkArrows")["state"]);
  EXPECT_EQ(0, korvex({"set", "P_rwArrows=off"}).code) << "its Apply has another name";
  EXPECT_EQ("", value(lnkfile, "IsShortcut")["data"]);
}

TEST_F(WinTweaksIIOn98, BadInputIsAskedForAgain) {
  const Json run =
      json({"form", "run", "frmWinTweaksII", "press=cmdlblIconCache", "input=lots", "input=2048"})
          .json();
  EXPECT_EQ("2048", value(kIcons, "Max Cached Icons")["data"]);
  EXPECT_EQ(4U, messages(run).size()) << run;
  // Nobody answers the second time: the run is taken back.
  const std::string before = dump();
  EXPECT_EQ(5, korvex({"form", "run", "frmWinTweaksII", "press=cmdlblIconCache", "input=x"}).code);
  EXPECT_EQ(before, dump());
}

TEST_F(WinTweaksIIOn98, TheEngineAndTheDomainsAreWrittenAtOnce) {
  const Json run =
      json({"form", "run", "frmWinTweaksII", "select=cboIEDefaultSearch:HotBot",
            "type=txtAddExplorerDomain:..net", "press=cmdApply", "type=txtAddExplorerDomain:.net",
            "press=cmdApply", "select=cboExplorerSearch:edu", "press=cmdRemoveExplorerDomain",
            "answer=yes"})
          .json();
  EXPECT_EQ("http://www.hotbot.com/?MT=%s", value(kSearchUrl, "")["data"]);
  EXPECT_EQ("www.%s.org", value(kTemplates, "2")["data"]);
  EXPECT_EQ("www.%s.net", value(kTemplates, "3")["data"]);
  EXPECT_EQ(nullptr, value(kTemplates, "4"));
  const auto said = messages(run);
  ASSERT_EQ(2U, said.size()) << run;
  EXPECT_TRUE(said[0].starts_with("A search domain consists of"));
  EXPECT_EQ("Remove .edu domain?", said[1]);
  EXPECT_EQ((std::vector<std::string>{"com", "org", "net"}),
            controlOf(json({"form", "show", "frmWinTweaksII"}).json(), "cboExplorerSearch")["items"]
                .get<std::vector<std::string>>());
}

TEST_F(WinTweaksIIOnMe, WhatTheFormRefusesIsRefusedToAScript) {
  const std::string before = dump();
  const Result set = korvex({"set", "P_rwRightClickDOS=on"});
  EXPECT_EQ(5, set.code);
  EXPECT_NE(std::string::npos, set.err.find("already being provided by the PowerToys"));
  EXPECT_EQ(before, dump());
}

}  // namespace
}  // namespace korvex::cli
