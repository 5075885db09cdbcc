// The startup commands: what they list, change and refuse.
#include <algorithm>

#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

class StartupCommands : public CliTest {
 public:
  StartupCommands() : CliTest("windows-98") {}

  // "on", "off", "on off" or "" of an entry.
  std::string state(const std::string& name, const std::string& area) {
    std::string result;
    const Json listed = json({"startup", "list", "--area", area}).json();
    for (const Json& entry : listed["entries"]) {
      if (entry["name"] != name) continue;
      result += (result.empty() ? "" : " ") + std::string(entry["on"] ? "on" : "off");
    }
    return result;
  }
};

TEST_F(StartupCommands, ListTellsAllAndTouchesNothing) {
  const auto before = everyFile();
  const Json listed = json({"startup", "list"}).json();
  const Json& entries = listed["entries"];
  EXPECT_EQ(before, everyFile());
  const auto office = std::ranges::find_if(
      entries, [](const Json& entry) { return entry["name"] == "Microsoft Office.lnk"; });
  ASSERT_NE(entries.end(), office);
  EXPECT_EQ("StartUp", (*office)["area"]);
  EXPECT_EQ("C:\\WINDOWS\\Profiles\\Karen\\Start Menu\\Programs\\StartUp", (*office)["origin"]);
  EXPECT_TRUE((*office)["on"].get<bool>());
  const Result text = korvex({"startup", "list", "--area", "reg_runii"});
  EXPECT_EQ(0U, text.out.find("Reg_RunII    on   NetWatch")) << text.out;
  EXPECT_EQ(std::string::npos, text.out.find("(no such program)")) << text.out;
  std::filesystem::remove(machine.driveC() / "Program Files" / "NetWatch" / "nwatch.exe");
  const Result gone = korvex({"startup", "list", "--area", "Reg_RunII"});
  EXPECT_NE(std::string::npos, gone.out.find("(no such program)")) << gone.out;
  EXPECT_EQ(2, korvex({"startup", "list", "--area", "Boot"}).code);
}

TEST_F(StartupCommands, AnEntryIsSwitchedDeletedAndTakenBack) {
  ASSERT_EQ(0, korvex({"startup", "disable", "hp status.LNK"}).code);
  EXPECT_EQ("off", state("HP Status.lnk", "StartUp"));
  const Result again = korvex({"startup", "disable", "HP Status.lnk"});
  EXPECT_EQ(0, again.code);
  EXPECT_NE(std::string::npos, again.err.find("off already")) << again.err;
  EXPECT_EQ(5, korvex({"startup", "delete", "TaskMonitor"}).code) << "it is on";
  ASSERT_EQ(0, korvex({"startup", "delete", "HP Status.lnk"}).code);
  EXPECT_EQ("", state("HP Status.lnk", "StartUp"));
  EXPECT_EQ("HP Status.lnk", json({"startup", "list", "--deleted"}).json()["deleted"][0]["name"]);
  ASSERT_EQ(0, korvex({"startup", "restore"}).code);
  const Result on = json({"startup", "enable", "HP Status.lnk"});
  EXPECT_EQ(0, on.code) << on.err;
  EXPECT_EQ("C:\\WINDOWS\\All Users\\Start Menu\\Programs\\StartUp", on.json()["entry"]["origin"]);
  EXPECT_EQ("on", state("HP Status.lnk", "StartUp"));
  EXPECT_EQ(5, korvex({"startup", "restore"}).code);
  EXPECT_EQ(5, korvex({"startup", "disable", "No Such"}).code);
}

TEST_F(StartupCommands, ANameInSeveralAreasIsRefusedWithTheAreas) {
  const Result both = korvex({"startup", "disable", "LoadPowerProfile"});
  EXPECT_EQ(2, both.code);
  EXPECT_NE(std::string::npos, both.err.find("--area Reg_Run, --area Reg_RunOnce")) << both.err;
  ASSERT_EQ(0, korvex({"startup", "disable", "LoadPowerProfile", "--area", "Reg_RunOnce"}).code);
  EXPECT_EQ("on", state("LoadPowerProfile", "Reg_Run"));
  EXPECT_EQ("off", state("LoadPowerProfile", "Reg_RunOnce"));
  // Its program has put itself back.
  ASSERT_EQ(0,
            korvex({"reg", "set", "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\RunServices",
                    "LoadPowerProfile", "REG_SZ", "new.exe"})
                .code);
  const std::vector<std::string> enable{"startup", "enable", "LoadPowerProfile"};
  EXPECT_EQ(5, korvex(enable).code);
  EXPECT_EQ("on off", state("LoadPowerProfile", "Reg_RunOnce"));
  EXPECT_EQ(0, korvex({"startup", "enable", "LoadPowerProfile", "--replace"}).code);
  EXPECT_EQ("on", state("LoadPowerProfile", "Reg_RunOnce"));
}

TEST_F(StartupCommands, AProgramIsAddedAndAWrongPathRefused) {
  const std::string path = "C:\\WINDOWS\\WIN.INI";
  EXPECT_EQ(0, korvex({"startup", "add", path, "--area", "Win_Load"}).code);
  EXPECT_EQ("on", state(path, "Win_Load"));
  EXPECT_EQ(5, korvex({"startup", "add", path, "--area", "Win_Load"}).code);
  EXPECT_EQ(0, korvex({"startup", "disable", path}).code);
  EXPECT_EQ("off", state(path, "Win_Load"));
  EXPECT_EQ(5, korvex({"startup", "add", "C:\\none.exe", "--area", "Reg_Run"}).code);
  EXPECT_EQ(2, korvex({"startup", "add", "/tmp/x", "--area", "Reg_Run"}).code);
  EXPECT_EQ(2, korvex({"startup", "add", path}).code);
}

}  // namespace
}  // namespace korvex::cli
