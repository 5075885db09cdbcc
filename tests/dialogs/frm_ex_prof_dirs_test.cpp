// frmExProfDirs: names that lead out of the profile or to nothing are refused, the others written.
#include "dialogs/nt/frm_ex_prof_dirs.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

const std::string kWinlogon = "HKCU\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
constexpr const char* kValue = "ExcludeProfileDirs";

class ExProfDirs : public OnFailingMachine<frmExProfDirs> {
 public:
  explicit ExProfDirs(const std::string& sample = "windows-nt4") : OnFailingMachine(sample) {}
  void exclude(const std::string& names) {
    window().txtExclude.Text = names;
    window().cmdExclude.press();
  }
  std::string stored() { return registry().value(kWinlogon, kValue); }
};
class ExProfDirs98 : public ExProfDirs {
 public:
  ExProfDirs98() : ExProfDirs("windows-98") {}
};

TEST_F(ExProfDirs, KeepsTheFirstAndReportsTheSecond) {
  EXPECT_EQ((std::vector<std::string>{"Temporary Internet Files", "History"}),
            window().lstExcluded.items());
  exclude("Desktop;Nowhere");
  EXPECT_EQ("\"Temporary Internet Files;History;Desktop\"", stored());
  EXPECT_EQ(
      "The following directories either did not exsist or were improperly formatted.\r\nNowhere"
      "\r\nPlease check these entries and try again.",
      lastMessage());
  EXPECT_EQ("Nowhere", window().txtExclude.Text.get());
}

TEST_F(ExProfDirs, RefusesWhatIsNoFolderOfTheProfile) {
  session.files().replace("C:\\WINNT\\Profiles\\tgreene\\file.txt", "x");
  const std::string before = stored();
  for (const char* name : {"..", "..\\All Users", "Desktop\\..", "Desktop\\..\\..\\All Users",
                           "\\Desktop", "Desktop\\", "Start Menu\\\\Programs", "C:\\WINNT", ".",
                           "Start Menu/Programs", "Desk*", "file.txt"}) {
    prompts.messages.clear();
    exclude(name);
    EXPECT_TRUE(told("either did not exsist")) << name;
    EXPECT_EQ(before, stored()) << name;
  }
  prompts.messages.clear();
  exclude(" ; history ;Start Menu\\Programs; START MENU\\programs ;");
  EXPECT_EQ("\"Temporary Internet Files;History;Start Menu\\Programs\"", stored());
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(ExProfDirs, ClearTakesTheSelectedOneAndKeepsTheType) {
  window().cmdClear.press();
  EXPECT_EQ("You must first select an item to remove.", lastMessage());
  window().lstExcluded.ListIndex = 1;
  window().cmdClear.press();
  EXPECT_EQ("\"Temporary Internet Files\"", stored());
  // What others wrote meanwhile stays.
  registry().put(kWinlogon, kValue, "\"Personal; Temporary Internet Files;;personal\"");
  window().cmdClear.press();
  EXPECT_TRUE(told("changed meanwhile"));
  EXPECT_EQ((std::vector<std::string>{"Personal", "Temporary Internet Files"}),
            window().lstExcluded.items());
  window().lstExcluded.ListIndex = 0;
  window().cmdClear.press();
  window().cmdClear.press();
  EXPECT_EQ("\"\"", stored()) << "the neighbour is selected then";
  registry().put(kWinlogon, kValue, "binary 41 00");
  reopen();
  EXPECT_FALSE(window().cmdExclude.Enabled || window().cmdClear.Enabled);
  EXPECT_EQ("binary 41 00", stored());
}

TEST_F(ExProfDirs, AFailureIsToldAndTakenBack) {
  expectAllOrNothing(kWinlogon, [this] {
    exclude("Desktop");
    failingRegistry.fail(0);
    window().txtExclude.Text = "";
    reopen();
  });
  EXPECT_EQ("\"Temporary Internet Files;History;Desktop\"", stored());
}

TEST_F(ExProfDirs98, HasNoRoamingProfileOfNt) {
  EXPECT_FALSE(window().cmdExclude.Enabled || window().txtExclude.Enabled);
  EXPECT_EQ("This setting exists only on Windows NT4 and 2000.",
            window().cmdExclude.ToolTipText.get());
}

}  // namespace
}  // namespace korvex::dialogs
