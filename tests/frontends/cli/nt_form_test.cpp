// The dialogs of NT from a shell: form run, and their rows in show and set.
#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

class NtForms : public CliTest {
 public:
  NtForms() : CliTest(std::string("windows-2000-server")) {}
  // Exit code of a run on a form that ends with Apply and Done.
  int run(const std::string& form, std::vector<std::string> steps) {
    steps.insert(steps.begin(), {"form", "run", form});
    steps.insert(steps.end(), {"press=cmdApply", "press=cmdDone"});
    return korvex(steps).code;
  }
};

const std::string kControl = "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Windows";
const std::string kServer = "HKLM\\SYSTEM\\CurrentControlSet\\Services\\LanManServer\\Parameters";
const std::string kBrowser = "HKLM\\SYSTEM\\CurrentControlSet\\Services\\Browser\\Parameters";
const std::string kDrWatson = "HKLM\\SOFTWARE\\Microsoft\\DrWatson";

TEST_F(NtForms, TheListOfErrorsIsChosenByItsText) {
  EXPECT_EQ(0, run("frmNT4_Win2KCont",
                   {"select=cboErrBootPopUp:All system & application errors are suppressed!"}));
  EXPECT_EQ(2, value(kControl, "NoPopUpsOnBoot")["data"]);
  EXPECT_EQ(5, run("frmNT4_Win2KCont", {})) << "Apply is disabled: nothing was changed";
}

TEST_F(NtForms, UsersAndElectionsAreTypedAndChosen) {
  EXPECT_EQ(0, run("frmNTServer", {"type=txtMaxServerUsers:40", "select=cboBrowseElections:no"}));
  EXPECT_EQ(40, value(kServer, "Users")["data"]);
  EXPECT_EQ("No", value(kBrowser, "MaintainServerList")["data"]);

  const Json refused = json({"form", "run", "frmNTServer", "type=txtMaxServerUsers:12a"}).json();
  EXPECT_TRUE(refused["events"][1]["text"].get<std::string>().starts_with(
      "The max number of simultaneously logged on users to"));
  EXPECT_EQ(40, value(kServer, "Users")["data"]);

  EXPECT_EQ(0, run("frmNTServer", {"type=txtMaxServerUsers:default"}));
  EXPECT_EQ(nullptr, value(kServer, "Users"));
}

TEST_F(NtForms, TheirFieldsAreSetShownAndResetByName) {
  EXPECT_EQ(0, korvex({"set", "ServerMaxUsers=12", "P_BrowserElection=Auto"}).code);
  EXPECT_EQ(12, value(kServer, "Users")["data"]);
  EXPECT_EQ("Auto", value(kBrowser, "MaintainServerList")["data"]);
  Json tweak = json({"show", "P_ServerMaxUsers"}).json()["tweak"];
  EXPECT_EQ("12", tweak["text"]);
  EXPECT_EQ("on", tweak["state"]);
  EXPECT_EQ(5, korvex({"set", "ServerMaxUsers=many"}).code);
  EXPECT_EQ(0, korvex({"set", "ServerMaxUsers=default"}).code);
  EXPECT_EQ(nullptr, value(kServer, "Users"));
  tweak = json({"show", "servermaxusers"}).json()["tweak"];
  EXPECT_EQ("Default", tweak["text"]);
  EXPECT_EQ("off", tweak["state"]);
}

TEST_F(NtForms, ThePrintersQuestionNeedsItsAnswer) {
  const std::string lpr = "HKLM\\SOFTWARE\\Microsoft\\LPDSVC\\lpr";
  EXPECT_EQ(5, korvex({"set", "UseNonRFCSourcePorts=on"}).code);
  EXPECT_EQ(5, korvex({"set", "UseNonRFCSourcePorts=on", "--answer", "no"}).code);
  EXPECT_EQ(0, value(lpr, "UseNonRFCSourcePorts")["data"]);
  EXPECT_EQ(0, korvex({"set", "UseNonRFCSourcePorts=on", "--answer", "yes"}).code);
  EXPECT_EQ(1, value(lpr, "UseNonRFCSourcePorts")["data"]);
}

TEST_F(NtForms, ThePairOfOptionsIsABoxToTheCommandLine) {
  EXPECT_EQ(0, korvex({"set", "P_rwAppendToLogFile=off"}).code);
  EXPECT_EQ(0, value(kDrWatson, "AppendToLogFile")["data"]);
  const Json shown = json({"show", "AppendToLogFile"}).json();
  EXPECT_EQ("off", shown["tweak"]["state"]);
  EXPECT_EQ(1, shown["on"][0]["after"]["data"]);
  EXPECT_EQ(0, shown["off"][0]["after"]["data"]);
  EXPECT_EQ(0, run("frmDrWat", {"check=optAppend_Overwrite0"}));
  EXPECT_EQ(1, value(kDrWatson, "AppendToLogFile")["data"]);
}

TEST_F(NtForms, TheFolderOfTheDumpIsWrittenWithoutApply) {
  const Result result = korvex({"form", "run", "frmDrWat", "press=cmdDrWatsonBSODSaveFile",
                                "folder=C:\\WINNT", "press=cmdDone"});
  EXPECT_EQ(0, result.code) << result.err;
  EXPECT_EQ("C:\\WINNT\\user.dmp", value(kDrWatson, "CrashDumpFile")["data"]);
}

}  // namespace
}  // namespace korvex::cli
