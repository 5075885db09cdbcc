// frmRestrictRun: the policy that is written on closing, its warnings, and what stays as it was.
#include "dialogs/shell/frm_restrict_run.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;
using Items = std::vector<std::string>;
using Values = std::map<std::string, std::string>;

const std::string kExplorer =
    "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer";
const std::string kList = kExplorer + "\\RestrictRun";
const std::string kConfiguration = "HKLM\\SOFTWARE\\Korvex\\Configuration";
constexpr int kCriticalNoFirst = 4 + 16 + 256;

LogonBitmapDesk& desk() {
  static LogonBitmapDesk it;
  return it;
}
struct RestrictRunWindow : frmRestrictRun {
  explicit RestrictRunWindow(const DialogParts& parts) : frmRestrictRun(parts, desk()) {}
};

class RestrictRun : public OnFailingMachine<RestrictRunWindow> {
 public:
  explicit RestrictRun(const std::string& sample = "windows-98") : OnFailingMachine(sample) {
    book.add(frmLogon_Bitmap::kName, [this] {
      return std::make_unique<frmLogon_Bitmap>(DialogParts{session, worker, pending, book, true},
                                               desk());
    });
  }
  void hold(const Items& programs) {
    registry().put(kExplorer, "RestrictRun", "dword 1");
    for (std::size_t i = 0; i < programs.size(); ++i) {
      registry().put(kList, std::to_string(i + 1), '"' + programs[i] + '"');
    }
    reopen();
  }
  void allow(const std::string& typed) {
    host.use = [&typed](forms::Form& form) {
      auto& picker = dynamic_cast<frmLogon_Bitmap&>(form);
      picker.txtBitmap.Text = typed;
      picker.cmdBitmap_Finish.press();
    };
    const std::size_t answers = prompts.answers.size();
    prompts.answers.push_front(Answer::Yes);  // has no application path
    window().cmdAdd.press();
    if (prompts.answers.size() > answers) prompts.answers.pop_front();
  }
  void turn(bool on) { window().chkRestrictRun.Value = on ? forms::vbChecked : forms::vbUnchecked; }
  bool close() { return book.unload(RestrictRunWindow::kName); }
  std::string isOn() { return registry().value(kExplorer, "RestrictRun"); }
  Values listed() { return registry().values(kList); }
  std::string record(const std::string& name) { return registry().value(kConfiguration, name); }
};

class RestrictRunOnNt : public RestrictRun {
 public:
  RestrictRunOnNt() : RestrictRun("windows-2000") {}
};

void expectWrittenAndTakenAway(RestrictRun& test) {
  EXPECT_FALSE(test.window().cmdAdd.Enabled);
  test.turn(true);
  test.allow("korvex.exe");
  test.allow("SYSTRAY.EXE");
  test.allow(" C:\\Windows\\notepad.exe ");
  test.prompts.messages.clear();
  EXPECT_EQ((Items{"korvex.exe", "SYSTRAY.EXE", "notepad.exe"}), test.window().lstAllowed.items());
  EXPECT_EQ("delete", test.isOn()) << "written on closing";
  EXPECT_TRUE(test.close());
  EXPECT_EQ("dword 1", test.isOn());
  EXPECT_EQ((Values{{"1", "\"korvex.exe\""}, {"2", "\"SYSTRAY.EXE\""}, {"3", "\"notepad.exe\""}}),
            test.listed());
  EXPECT_TRUE(test.session.g_bRebootNeeded);
  EXPECT_EQ("delete", test.record("RR"));

  test.turn(false);
  EXPECT_TRUE(test.close());
  EXPECT_EQ("delete", test.isOn());
  EXPECT_FALSE(test.registry().hasKey(kList));
  EXPECT_TRUE(test.window().lstAllowed.items().empty());
  test.turn(true);
  test.window().cmdFormer.press();
  EXPECT_EQ((Items{"korvex.exe", "SYSTRAY.EXE", "notepad.exe"}), test.window().lstAllowed.items());
  EXPECT_TRUE(test.prompts.messages.empty());
  test.window().cmdCancel.press();
  EXPECT_TRUE(test.close());
  EXPECT_EQ("delete", test.isOn());
}

TEST_F(RestrictRun, ThePolicyIsWrittenAndTakenAwayOnClosing) { expectWrittenAndTakenAway(*this); }
TEST_F(RestrictRunOnNt, ThePolicyIsWrittenAndTakenAwayOnClosing) {
  expectWrittenAndTakenAway(*this);
}

TEST_F(RestrictRun, WarnsOfWhatWouldBeRestrictedAndNoAddsIt) {
  struct Case {
    Items programs;
    std::string warning;
    Items added;
  };
  const std::string need = "You may need Korvex in order to restore the system to normal.\r\n";
  const std::string vital =
      "Systray is a vital Windows component. Not allowing it to run could make Windows "
      "unstable.\r\n";
  const std::vector<Case> cases{
      {{"x.exe"},
       "You have selected to restrict Korvex and Systray from running.\r\n" + need + "Further, " +
           vital + "Are you certain you wish to disallow these applications?",
       {"korvex.exe", "systray.exe"}},
      {{"x.exe", "SysTray.exe"},
       "You have selected to restrict Korvex from running.\r\n" + need +
           "Are you certain you wish to restrict Korvex?",
       {"korvex.exe"}},
      {{"x.exe", "KORVEX.EXE"},
       "You have selected to restrict Systray from running.\r\n" + vital +
           "Are you certain you wish to restrict Systray?",
       {"systray.exe"}},
  };
  for (const Case& c : cases) {
    for (const Answer answer : {Answer::Yes, Answer::No}) {
      Items programs = c.programs;
      programs.emplace_back("y.exe");
      hold(programs);
      window().lstAllowed.ListIndex = static_cast<int>(programs.size()) - 1;
      window().cmdRemove.press();
      prompts.answers = {answer};
      prompts.messages.clear();
      ASSERT_TRUE(close());
      ASSERT_FALSE(prompts.messages.empty());
      EXPECT_EQ(c.warning, prompts.messages[0].text);
      EXPECT_EQ(kCriticalNoFirst, prompts.messages[0].style);
      EXPECT_EQ(answer == Answer::Yes ? "dword 1" : "dword 0", record("RR"));
      Items expected = c.programs;
      if (answer == Answer::No) expected.insert(expected.end(), c.added.begin(), c.added.end());
      EXPECT_EQ(expected, window().lstAllowed.items());
      session.regTool.DeleteRegNodes(platform::HKEY_CURRENT_USER, kList.substr(5));
    }
  }
}

TEST_F(RestrictRun, AnEmptyListSwitchesThePolicyOff) {
  turn(true);
  EXPECT_TRUE(close());
  EXPECT_EQ(
      "You have selected to enable retricted applications but have not set\r\n"
      "any applications to run.\r\n\r\n"
      "This is not a valid configuration and the option has been disabled.",
      lastMessage());
  EXPECT_EQ(platform::kIconCritical, prompts.messages.back().style);
  EXPECT_EQ("delete", isOn());
  EXPECT_EQ("dword 1", record("RRm"));
  EXPECT_TRUE(window().StatusText->starts_with("Switched off")) << window().StatusText.get();
  turn(true);
  allow("korvex.exe");
  allow("systray.exe");
  EXPECT_TRUE(close());
  EXPECT_EQ("delete", record("RRm"));

  // One that stands there is mended, too.
  session.regTool.DeleteRegNodes(platform::HKEY_CURRENT_USER, kList.substr(5));
  window();
  EXPECT_TRUE(close());
  EXPECT_EQ("delete", isOn());
}

TEST_F(RestrictRun, WithNothingChangedNothingIsWritten) {
  hold({"x.exe", "b.exe"});
  registry().put(kList, "10", "\"j.exe\"");
  registry().put(kList, "9", "\"i.exe\"");
  registry().put(kList, "odd", "dword 7");
  const auto before = below(kExplorer);
  EXPECT_EQ((Items{"x.exe", "b.exe", "i.exe", "j.exe"}), reopen().lstAllowed.items());
  allow("B.EXE");
  EXPECT_TRUE(told("B.EXE is in the list already."));
  turn(false);
  turn(true);
  EXPECT_TRUE(close());
  EXPECT_EQ(before, below(kExplorer));
  EXPECT_FALSE(session.g_bRebootNeeded);
}

TEST_F(RestrictRun, WhatAnotherProgramWroteMeanwhileIsShownInstead) {
  hold({"korvex.exe", "systray.exe"});
  allow("notepad.exe");
  registry().put(kList, "3", "\"calc.exe\"");
  EXPECT_FALSE(close());
  EXPECT_EQ((Items{"korvex.exe", "systray.exe", "calc.exe"}), window().lstAllowed.items());
  EXPECT_TRUE(told("have been changed meanwhile"));
  EXPECT_TRUE(close());
}

TEST_F(RestrictRun, ThePolicyIsWrittenWholeOrNotAtAll) {
  hold({"korvex.exe", "systray.exe"});
  allow("notepad.exe");
  expectAllOrNothing(kExplorer, [this] {
    // What could not be read before writing is chosen once more.
    if (book.loaded(RestrictRunWindow::kName) == nullptr) window();
    if (window().lstAllowed.ListCount() < 3) window().lstAllowed.AddItem("notepad.exe");
    close();
  });
  EXPECT_EQ(3u, listed().size());
}

}  // namespace
}  // namespace korvex::dialogs
