// list, show and set.
#include <algorithm>

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
  for (const char* text : {"P_rwrun", "nORUN", "hide run on"}) {
    tweakOf(json({"list", "--search", text}).json(), "P_rwRun");
  }
  EXPECT_TRUE(json({"list", "--search", "no such text"}).json()["tweaks"].empty());
  EXPECT_EQ(2, korvex({"list", "--page", "Nowhere"}).code);
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
  const Json list = cli.json({"list"}).json();
  for (const Json& row : list["tweaks"]) {
    const std::string property = row["property"];
    if (row["state"] == "unavailable" || row.contains("text")) continue;
    for (const char* state : {"on", "off", "default"}) {
      const Json told = cli.json({"show", property}).json()[state];
      const Result set = cli.json({"set", property + "=" + state});
      ASSERT_EQ(0, set.code) << property << set.err;
      const Json done = set.json();
      for (const Json& change : done["changes"]) {
        const bool known = std::any_of(told.begin(), told.end(), [&change](const Json& each) {
          return each["change"] == change["change"] && each["key"] == change["key"] &&
                 (!change.contains("name") ||
                  (each["name"] == change["name"] && each["after"] == change["after"]));
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

TEST_F(Show, TellsThatAMissingValueWouldBeDeleted) {
  const Json show = json({"show", "AudioCD"}).json();
  EXPECT_EQ(nullptr, show["on"][0]["after"]);
  EXPECT_EQ("play", show["default"].back()["after"]["data"]);
  EXPECT_EQ(nullptr, show["now"][0]["value"]);
}

TEST_F(Set, WritesTellsAndLeavesNothingPending) {
  const Json set = json({"set", "Run=on", "P_rwDisableLockWorkstation=on"}).json();
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
