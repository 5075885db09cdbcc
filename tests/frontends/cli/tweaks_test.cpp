// list, show and set.
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "engine/catalogue.h"
#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

using List = CliTest;
using List9x = Cli9xTest;
using Show = CliTest;
using Set = CliTest;

class Show2000 : public CliTest {
 public:
  Show2000() : CliTest("windows-2000") {}
};
class Show98 : public CliTest {
 public:
  Show98() : CliTest("windows-98") {}
};

Json tweakOf(const Json& list, const std::string& property) {
  for (const Json& tweak : list["tweaks"]) {
    if (tweak["property"] == property) return tweak;
  }
  ADD_FAILURE() << property << " is not in the list";
  return {};
}

TEST_F(List, ShowsEachTweakWithItsPlaceAndState) {
  korvex({"reg", "set", kExplorer, "NoRun", "REG_DWORD", "1"});
  korvex({"reg", "set", kExplorer, "NoFind", "REG_DWORD", "2"});
  korvex({"reg", "set", kExplorer, "NoClose", "REG_SZ", "1"});  // another type is no tick
  const Json list = json({"list"}).json();
  const Json run = tweakOf(list, "P_rwRun");
  EXPECT_EQ("on", run["state"]);
  EXPECT_EQ("frmMain", run["form"]);
  EXPECT_EQ("chkHideRun", run["control"]);
  EXPECT_EQ("Hide Run on the Start menu", run["caption"]);
  EXPECT_EQ("Security", run["page"]);
  EXPECT_EQ("HKEY_CURRENT_USER", run["root"]);
  EXPECT_EQ("NoRun", run["value"]);
  EXPECT_EQ(2, run["bank"]);
  EXPECT_EQ(true, run["restart"]);
  EXPECT_EQ("grey", tweakOf(list, "P_rwFind")["state"]);
  EXPECT_EQ("off", tweakOf(list, "P_rwHideShutDown")["state"]);
  EXPECT_EQ("unavailable", tweakOf(list, "P_rwDefrag")["state"]);
  EXPECT_FALSE(tweakOf(list, "P_rwDefrag")["reason"].get<std::string>().empty());
  EXPECT_EQ("400", tweakOf(list, "P_rwStartMenuSpeed")["text"]);
}

TEST_F(List9x, TweaksOfTheOtherFamilyChangePlaces) {
  const Json list = json({"list"}).json();
  EXPECT_EQ("off", tweakOf(list, "P_rwDefrag")["state"]);
  EXPECT_EQ("unavailable", tweakOf(list, "P_rwDisableTaskMgr")["state"]);
}

TEST_F(List, FindsByPageAndText) {
  for (const char* page : {"Win Tweaks", "wintweaks"}) {
    const Json list = json({"list", "--page", page}).json();
    ASSERT_FALSE(list["tweaks"].empty());
    for (const Json& tweak : list["tweaks"]) EXPECT_EQ("Win Tweaks", tweak["page"]);
  }
  for (const char* dialog : {"frmMoreSecurity", "moresecurity"}) {
    const Json list = json({"list", "--page", dialog}).json();
    ASSERT_FALSE(list["tweaks"].empty());
    for (const Json& tweak : list["tweaks"]) EXPECT_EQ("frmMoreSecurity", tweak["form"]);
  }
  for (const char* text : {"P_rwrun", "nORUN", "hide run on"}) {
    tweakOf(json({"list", "--search", text}).json(), "P_rwRun");
  }
  EXPECT_TRUE(json({"list", "--search", "no such text"}).json()["tweaks"].empty());
  EXPECT_EQ(2, korvex({"list", "--page", "Nowhere"}).code);
}

TEST_F(List, EveryTweakStandsInOnePlaceAndNamesOfTheMachineAreFound) {
  EXPECT_EQ(engine::allTweaks().size(), json({"list"}).json()["tweaks"].size());
  // The caption of this Windows, and the one that the row begins with.
  for (const char* text : {"Network & Dial-up", "Dial-Up Networking"}) {
    const Json tweak = tweakOf(json({"list", "--search", text}).json(), "P_rwRemoveDUN");
    EXPECT_EQ("Remove Network & Dial-up from My Computer", tweak.value("caption", ""));
  }
}

TEST_F(List, PageOfTheManualSaysWhatTheRowsSay) {
  std::ostringstream page;
  page << std::ifstream(std::filesystem::path(KORVEX_DATA_DIR) / "../docs/tweaks.md").rdbuf();
  EXPECT_TRUE(page.str() == korvex({"list", "--manual"}).out)
      << "docs/tweaks.md is out of date. Make it again: korvex list --manual > docs/tweaks.md";
}

TEST_F(List, ReadingCommandsLeaveTheMachineAsItIs) {
  const auto before = everyFile();
  EXPECT_EQ(0, korvex({"list"}).code);
  EXPECT_EQ(0, korvex({"show", "P_rwRun"}).code);
  EXPECT_EQ(0, korvex({"machine", "info"}).code);
  EXPECT_EQ(0, korvex({"form", "show", "frmMain"}).code);
  EXPECT_EQ(0, korvex({"reg", "export", "HKLM", "-"}).code);
  EXPECT_EQ(before, everyFile());
}

// What "show" rehearses is what "set" then writes, for every tweak of a whole installation.
void showTellsWhatSetWrites(CliTest& cli) {
  int compared = 0;
  const auto own = cli.machine.driveC() / "Program Files" / "Korvex";
  std::filesystem::create_directories(own);
  std::ofstream(own / "zak.hlp") << "another help file";
  // The window saves Jet's keys before their first change; that is told by none of its rows.
  ASSERT_EQ(0, cli.korvex({"set", "LockRetry=21"}).code);
  const Json list = cli.json({"list"}).json();
  for (const Json& row : list["tweaks"]) {
    const std::string property = row["property"];
    if (row["state"] == "unavailable" || row.contains("text")) continue;
    for (const char* state : {"on", "off", "default"}) {
      if (row["state"] == "routine" && std::string(state) != "default") continue;
      const Json told = cli.json({"show", property}).json()[state];
      // Where it asks, the rehearsal says yes.
      const Result set = cli.json({"set", property + "=" + state, "--answer", "yes"});
      ASSERT_EQ(0, set.code) << property << set.err;
      const Json done = set.json();
      for (const Json& change : done["changes"]) {
        const bool known = std::any_of(told.begin(), told.end(), [&change](const Json& each) {
          const auto same = [&](const char* field) {
            return each.value(field, Json()) == change.value(field, Json());
          };
          return same("change") && same("key") && same("path") && same("name") && same("after");
        });
        EXPECT_TRUE(known) << property << '=' << state << ": " << change << "\n" << told;
        ++compared;
      }
    }
  }
  EXPECT_GT(compared, 40);
}

TEST_F(Show2000, TellsWhatSetWrites) { showTellsWhatSetWrites(*this); }
TEST_F(Show98, TellsWhatSetWrites) { showTellsWhatSetWrites(*this); }

TEST_F(Show98, QuestionsAreToldWithTheAnswerOfTheRehearsal) {
  const Json show = json({"show", "ControlPanel"}).json();
  ASSERT_EQ(1u, show["messages"].size()) << show;
  EXPECT_EQ("asks", show["messages"][0]["kind"]);
  EXPECT_EQ("yes", show["messages"][0]["answer"]);
  EXPECT_EQ(Json({"on"}), show["messages"][0]["states"]);
  EXPECT_EQ("folder-created", show["on"][0]["change"]);
  EXPECT_NE(std::string::npos, korvex({"show", "ControlPanel"}).out.find("\nAsks:     Would you"));
}

TEST_F(Show, TellsThatAMissingValueWouldBeDeleted) {
  const Json show = json({"show", "AudioCD"}).json();
  EXPECT_EQ(nullptr, show["on"][0]["after"]);
  EXPECT_EQ("play", show["default"].back()["after"]["data"]);
  EXPECT_EQ(nullptr, show["now"][0]["value"]);
}

TEST_F(Set, WritesTellsAndLeavesNothingPending) {
  // The second one stands in a dialog.
  const Json set = json({"set", "Run=on", "P_rwNoEntireNetwork=on"}).json();
  EXPECT_EQ("off", set["tweaks"][0]["before"]);
  EXPECT_EQ("on", set["tweaks"][0]["after"]);
  EXPECT_EQ(true, set["tweaks"][0]["restart"]);
  EXPECT_EQ(false, set["tweaks"][1]["restart"]);
  EXPECT_EQ(true, set["restartNeeded"]);
  EXPECT_EQ((Json{{"name", "NoRun"}, {"type", "REG_DWORD"}, {"data", 1}, {"hex", "01000000"}}),
            value(kExplorer, "NoRun"));
  EXPECT_EQ(5, korvex({"reg", "query", "HKLM\\SOFTWARE\\Korvex\\CurrentSettings"}).code);
  EXPECT_EQ(5, korvex({"reg", "query", "HKLM\\SOFTWARE\\Korvex\\LoadValues"}).code);

  const Json again = json({"set", "Run=on"}).json();
  EXPECT_TRUE(again["changes"].empty());
  EXPECT_EQ(false, again["restartNeeded"]);
  EXPECT_EQ(0, json({"set", "Run=off"}).code);
  EXPECT_EQ(0, value(kExplorer, "NoRun")["data"]);  // cleared is a value too
}

TEST_F(Set, BeforeAndAfterOfEachValueAreTold) {
  korvex({"reg", "set", kExplorer, "NoRun", "REG_DWORD", "1"});
  const Json changes = json({"set", "Run=grey", "Find=on"}).json()["changes"];
  const auto find = [&changes](const std::string& name) {
    for (const Json& change : changes) {
      if (change.value("name", "") == name) return change;
    }
    return Json();
  };
  EXPECT_EQ(kExplorer, find("NoRun")["key"]);
  EXPECT_EQ(1, find("NoRun")["before"]["data"]);
  EXPECT_EQ(2, find("NoRun")["after"]["data"]);
  EXPECT_EQ(nullptr, find("NoFind")["before"]);
  EXPECT_EQ(1, find("NoFind")["after"]["data"]);
  EXPECT_EQ(2u, changes.size()) << changes;  // nothing of Korvex's own area
}

TEST_F(Set, WrongArgumentsChangeNothing) {
  const std::string before = dump();
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
      {{"Run=on", "Rum=on"}, "Did you mean P_rwRun?"},
      {{"Run=on", "Find=maybe"}, "use on, off, grey or default"},
      {{"Run"}, "say what to set it to"},
      {{"Run=on", "p_rwrun=off"}, "set twice"},
      {{"AutoPlay=grey"}, "no grey state"},
      {{}, "required"},
  };
  for (const auto& [arguments, message] : cases) {
    std::vector<std::string> args{"set"};
    args.insert(args.end(), arguments.begin(), arguments.end());
    const Result result = korvex(args);
    EXPECT_EQ(2, result.code) << message;
    EXPECT_NE(std::string::npos, result.err.find(message)) << result.err;
    EXPECT_EQ("", result.out);
  }
  EXPECT_EQ(before, dump());
}

TEST_F(Set, UnavailableTweakOrRefusedTextTakesEverythingBack) {
  const std::string before = dump();
  for (const char* bad : {"Defrag=on", "Defrag=default", "StartMenuSpeed=4x", "StartMenuSpeed="}) {
    const Result result = json({"set", "Run=on", bad});
    EXPECT_EQ(5, result.code) << bad;
    EXPECT_EQ(5, result.json()["error"]["exitCode"]);
    EXPECT_EQ(before, dump()) << bad;
  }
  EXPECT_EQ(5, korvex({"set", "StartMenuSpeed=12345678901"}).code);  // longer than the field
}

class Set98 : public Show98 {
 public:
  std::filesystem::path startMenu(const std::string& user) const {
    const auto windows = machine.driveC() / "WINDOWS";
    return (user.empty() ? windows / "All Users" : windows / "Profiles" / user) / "Start Menu" /
           "Control Panel.{21EC2020-3AEA-1069-A2DD-08002B30309D}";
  }
};

TEST_F(Set98, QuestionTakesItsAnswerFromTheCommandLine) {
  const Result silent = korvex({"set", "ControlPanel=on"});
  EXPECT_EQ(5, silent.code);
  EXPECT_NE(std::string::npos, silent.err.find("--answer")) << silent.err;
  EXPECT_EQ(2, korvex({"set", "ControlPanel=on", "--answer", "maybe"}).code);
  EXPECT_FALSE(exists(startMenu("Karen")));

  const Json set = json({"set", "ControlPanel=on", "--answer", "yes", "--answer", "no"}).json();
  EXPECT_TRUE(exists(startMenu("Karen")));
  ASSERT_EQ(1u, set["changes"].size()) << set;
  EXPECT_EQ("folder-created", set["changes"][0]["change"]);
  EXPECT_EQ(nullptr, set["changes"][0]["before"]);
  EXPECT_EQ(Json({"--answer no"}), set["unusedAnswers"]);
  EXPECT_EQ(0, korvex({"set", "ControlPanel=default"}).code);
  EXPECT_FALSE(exists(startMenu("Karen")));
  EXPECT_EQ(0, korvex({"set", "ControlPanel=on", "--answer", "no"}).code);
  EXPECT_TRUE(exists(startMenu("")));
}

// The folder is made by the first form's Apply; what comes after it fails.
TEST_F(Set98, FilesAreTakenBackWithTheRegistry) {
  const std::string before = dump();
  const std::vector<std::vector<std::string>> commands{
      {"set", "Run=on", "ControlPanel=on", "DisableHelp=on", "--answer", "yes"},
      {"set", "--answer", "yes", "ControlPanel=on", "NoSaveTab=default", "DisableHelp=on"},
      {"form", "run", "frmMain", "check=chkControlPanel", "answer=yes", "press=cmdApply",
       "check=chkNoSuchBox"}};
  for (const auto& command : commands) {
    const Result result = json(command);
    EXPECT_NE(0, result.code) << command.front();
    EXPECT_EQ(std::string::npos, result.err.find("put back")) << result.err;
    EXPECT_FALSE(exists(startMenu("Karen"))) << result.out;
    EXPECT_EQ(before, dump());
  }
  // It had been there: the transcript of the run tells it.
  const Json events = json(commands.back()).json()["error"]["events"];
  EXPECT_TRUE(std::any_of(events.begin(), events.end(), [](const Json& event) {
    return event.value("change", "") == "folder-created";
  })) << events;
}

TEST_F(Set98, RoutineWithoutABoxCanOnlyBeRun) {
  EXPECT_EQ("routine", tweakOf(json({"list"}).json(), "P_rwNoDrives")["state"]);
  EXPECT_EQ(2, korvex({"set", "NoDrives=on"}).code);
  EXPECT_NE(nullptr, value(kExplorer, "NoDrives"));
  EXPECT_EQ(0, korvex({"set", "NoDrives=default"}).code);
  EXPECT_EQ(nullptr, value(kExplorer, "NoDrives"));
}

TEST_F(Set, FieldTakesTextAndItsDefault) {
  const std::string desktop = "HKCU\\Control Panel\\Desktop";
  EXPECT_EQ(0, korvex({"set", "StartMenuSpeed=65"}).code);
  EXPECT_EQ("65", value(desktop, "MenuShowDelay")["data"]);
  EXPECT_EQ(0, korvex({"set", "StartMenuSpeed=default"}).code);
  EXPECT_EQ("400", value(desktop, "MenuShowDelay")["data"]);
}

TEST_F(Set, OptionOfTheProgramIsToldAndStays) {
  const Json set = json({"set", "NoSaveTab=on"}).json();
  ASSERT_EQ(1u, set["changes"].size()) << set;
  EXPECT_EQ("HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvex\\Configuration", set["changes"][0]["key"]);
  EXPECT_EQ(1, value("HKLM\\SOFTWARE\\Korvex\\Configuration", "NoSaveTab")["data"]);
  EXPECT_EQ("on", tweakOf(json({"list"}).json(), "P_rwNoSaveTab")["state"]);
}

TEST_F(Set, OpenWindowIsNotDisturbed) {
  machine.reopen();
  const auto window = machine->claimInstance(platform::Wait::No);
  ASSERT_NE(nullptr, window);
  const Result result = json({"set", "Run=on"});
  EXPECT_EQ(4, result.code);
  EXPECT_EQ("busy", result.json()["error"]["kind"]);
  EXPECT_EQ(nullptr, value(kExplorer, "NoRun"));
  EXPECT_EQ(0, korvex({"list"}).code);  // reading goes on beside it
}

}  // namespace
}  // namespace korvex::cli
