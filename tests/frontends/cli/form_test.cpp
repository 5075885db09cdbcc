// form list, form show, form run.
#include "forms/form.h"

#include "cli/failure.h"
#include "cli/form_driver.h"
#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

using FormShow = CliTest;
using FormRun = CliTest;

// The steps on a form of the test's own; the exit code that they would end with.
int codeOf(forms::Form& form, const std::string& step) {
  try {
    for (const Step& each : parseSteps({step}).steps) perform(form, each);
    return 0;
  } catch (const Failure& failure) {
    return static_cast<int>(failure.code());
  }
}

std::vector<std::string> kinds(const Json& events) {
  std::vector<std::string> result;
  for (const Json& event : events) result.push_back(event["event"]);
  return result;
}

TEST_F(FormShow, ListsControlsAsTheyStand) {
  EXPECT_EQ("frmMain", json({"form", "list"}).json()["forms"][0]["name"]);
  korvex({"reg", "set", kExplorer, "NoRun", "REG_DWORD", "1"});
  const Json form = json({"form", "show", "FRMMAIN"}).json()["form"];
  std::map<std::string, Json> controls;
  for (const Json& control : form["controls"]) controls[control["name"]] = control;
  EXPECT_EQ("checked", controls["chkHideRun"]["state"]);
  EXPECT_EQ(false, controls["chkDefrag"]["enabled"]);
  EXPECT_EQ(false, controls["cmdApply"]["enabled"]);
  EXPECT_EQ("Security", controls["tabMain"]["state"]);
  EXPECT_EQ("TextBox", controls["txtStartMenu"]["kind"]);
  EXPECT_EQ(2, korvex({"form", "show", "frmNone"}).code);
}

TEST_F(FormShow, TellsTheMarksOfACheckedList) {
  korvex({"reg", "set", "HKCR\\.aaa", "", "REG_SZ", "aaafile"});
  EXPECT_NE(std::string::npos, korvex({"form", "show", "frmFA"}).out.find("\n    [ ] .aaa"));
  const Json form = json({"form", "show", "frmFA"}).json()["form"];
  for (const Json& control : form["controls"]) {
    if (control["name"] != "lstFA") continue;
    EXPECT_FALSE(control["items"].empty());
    EXPECT_EQ(control["items"].size(), control["marks"].size());
    EXPECT_EQ(Json(false), control["marks"][0]);
  }
}

TEST_F(FormRun, TellsChangesAndMessagesInOrder) {
  korvex({"reg", "set", kExplorer, "Other", "REG_DWORD", "1"});  // so that the key is there
  const Json run = json({"form", "run", "frmMain", "check=chkHideRun", "press=cmdApply",
                         "press=cmdDone", "answer=yes"})
                       .json();
  EXPECT_EQ((std::vector<std::string>{"step", "step", "change", "step", "message", "restart"}),
            kinds(run["events"]))
      << run;
  const Json change = run["events"][2];
  EXPECT_EQ("NoRun", change["name"]);
  EXPECT_EQ(nullptr, change["before"]);
  EXPECT_EQ(1, change["after"]["data"]);
  EXPECT_EQ("yes", run["events"][4]["answer"]);
  EXPECT_EQ(7, run["events"][5]["flags"]);
  EXPECT_EQ(1, value(kExplorer, "NoRun")["data"]);
}

TEST_F(FormRun, WithoutApplyNothingIsDone) {
  EXPECT_EQ(0, korvex({"form", "run", "frmMain", "check=chkHideRun", "check=chkNoSaveTab"}).code);
  EXPECT_EQ(nullptr, value(kExplorer, "NoRun"));
  EXPECT_EQ(5, korvex({"reg", "query", "HKLM\\SOFTWARE\\Korvex\\CurrentSettings"}).code);
  EXPECT_EQ(nullptr, value("HKLM\\SOFTWARE\\Korvex\\Configuration", "NoSaveTab"));
}

TEST_F(FormRun, QuestionWithoutAnAnswerTakesEverythingBack) {
  korvex({"reg", "set", kExplorer, "Other", "REG_DWORD", "1"});
  const std::string before = dump();
  for (const std::vector<std::string>& end :
       {std::vector<std::string>{}, {"input=x"}, {"answer=ok"}}) {
    std::vector<std::string> args{"form",           "run",          "frmMain", "check=chkHideRun",
                                  "press=cmdApply", "press=cmdDone"};
    args.insert(args.end(), end.begin(), end.end());
    const Result result = json(args);
    EXPECT_EQ(5, result.code);
    const Json error = result.json()["error"];
    EXPECT_EQ("unanswered-question", error["kind"]);
    // What was done is told all the same.
    EXPECT_EQ("NoRun", error["events"][2].value("name", "")) << error;
    EXPECT_EQ(before, dump());
  }
}

TEST_F(FormRun, ControlThatAPersonCannotUseStopsTheRun) {
  const std::string before = dump();
  const std::vector<std::pair<std::string, int>> cases{
      {"check=chkDefrag", 5},   {"press=cmdApply", 5},         {"check=chkNobody", 2},
      {"press=chkHideRun", 2},  {"check=cmdDone", 2},          {"type=txtStartMenu:12345678901", 5},
      {"type=chkHideRun:x", 2}, {"select=tabMain:Nowhere", 2}, {"select=chkHideRun:x", 2},
  };
  for (const auto& [step, code] : cases) {
    EXPECT_EQ(code, korvex({"form", "run", "frmMain", step}).code) << step;
  }
  EXPECT_NE(std::string::npos,
            korvex({"form", "run", "frmMain", "check=chkDefrag"}).err.find("Windows 95"));
  EXPECT_EQ(before, dump());
}

TEST(FormSteps, ItemsOfACheckedListAreNamedByTheirTextOrItsBeginning) {
  forms::Form form("frm", "");
  forms::CheckList list(form, "lstFA");
  const forms::CheckBox box(form, "chk");
  for (const char* item : {".txt  Text Document", ".TX", "IE Favorites", "IE Other", "a:b"}) {
    list.AddItem(item);
  }
  list.setCheckable(4, false);
  const std::vector<std::tuple<std::string, int, std::string>> cases{
      {"check=lstFA:.TXT", 0, "1 of 5 checked"},
      {"check=lstFA:.tx", 0, "2 of 5 checked"},
      {"check=lstFA:IE", 2, "2 of 5 checked"},  // which of the two?
      {"check=lstFA:IE Fav", 2, "2 of 5 checked"},
      {"check=LSTFA:ie favorites", 0, "3 of 5 checked"},
      {"uncheck=lstFA:.txt", 0, "2 of 5 checked"},
      {"check=lstFA:a:b", 5, "2 of 5 checked"},  // cannot be checked
      {"check=lstFA", 2, "2 of 5 checked"},
      {"check=chk:x", 2, "2 of 5 checked"},
      {"select=lstFA:.txt", 0, "2 of 5 checked"},
  };
  for (const auto& [step, code, state] : cases) {
    EXPECT_EQ(code, codeOf(form, step)) << step;
    EXPECT_EQ(state, list.stateText()) << step;
  }
  EXPECT_EQ((std::vector<std::string>{".TX", "IE Favorites"}), list.checkedItems());
  EXPECT_EQ(".txt  Text Document", list.selectedItem());
}

TEST_F(FormRun, StepsAreCheckedBeforeAnythingIsDone) {
  const auto before = everyFile();
  for (const char* step :
       {"tick=chkHideRun", "check", "check=", "type=txtStartMenu", "answer=perhaps"}) {
    const Result result = korvex({"form", "run", "frmMain", "check=chkHideRun", step});
    EXPECT_EQ(2, result.code) << step;
  }
  EXPECT_EQ(2, korvex({"form", "run", "frmNone"}).code);
  EXPECT_EQ(before, everyFile());
}

TEST_F(FormRun, MessageIsToldAndLeftOverAnswersAreNamed) {
  const Json run = json({"form", "run", "frmMain", "type=txtStartMenu:1x", "answer=yes"}).json();
  EXPECT_EQ((std::vector<std::string>{"step", "message"}), kinds(run["events"]));
  EXPECT_EQ("This field accepts numerical characters only.", run["events"][1]["text"]);
  EXPECT_EQ(Json({"answer=yes"}), run["unusedAnswers"]);
}

TEST_F(FormRun, ClosedFormTakesNoMoreSteps) {
  const Result result = json({"form", "run", "frmMain", "press=cmdDone", "check=chkHideRun"});
  EXPECT_EQ(5, result.code);
  EXPECT_EQ("form-closed", result.json()["error"]["kind"]);
}

TEST_F(FormRun, PageTurnedIsThePageOfTheNextRun) {
  EXPECT_EQ(0, korvex({"form", "run", "frmMain", "select=tabMain:options"}).code);
  const Json form = json({"form", "show", "frmMain"}).json()["form"];
  for (const Json& control : form["controls"]) {
    if (control["name"] == "tabMain") {
      EXPECT_EQ("Options", control["state"]);
    }
  }
}

}  // namespace
}  // namespace korvex::cli
