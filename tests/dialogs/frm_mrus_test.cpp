// frmMRUs: an entry goes for good and leaves no hole, and nothing else is touched.
#include "dialogs/office/frm_mrus.h"

#include "dialogs/failing_machine.h"
#include "dialogs/office/running_applications.h"
#include "support/open_windows.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;

class MRUs : public OnFailingMachine<frmMRUs> {
 public:
  explicit MRUs(const std::string& sample, std::string key)
      : OnFailingMachine(sample), kKey(std::move(key)) {}

  std::vector<std::string> items() { return window().lstMRUs.items(); }
  void remove(int index) {
    window().lstMRUs.ListIndex = index;
    window().cmdRemove.press();
  }
  std::map<std::string, std::string> values() { return registry().values(kKey); }
  // Of the selected file.
  std::string state(int index) {
    window().lstMRUs.ListIndex = index;
    return window().lblState.Caption;
  }
  const std::string kKey;
};

class MRUsOf97 : public MRUs {
 public:
  MRUsOf97()
      : MRUs("windows-98", "HKCU\\Software\\Microsoft\\Office\\8.0\\Excel\\Recent File List") {}
};
class MRUsOf2000 : public MRUs {
 public:
  MRUsOf2000()
      : MRUs("windows-2000", "HKCU\\Software\\Microsoft\\Office\\9.0\\Excel\\Recent Files") {}
};
class MRUsOfNone : public MRUs {
 public:
  MRUsOfNone() : MRUs("windows-95", "HKCU\\Software") {}
};

TEST_F(MRUsOf97, AnEntryGoesAndTheOthersMoveUp) {
  registry().put(kKey, "File10", "\"C:\\Ten.xls\"");
  registry().put(kKey, "Max", "dword 9");
  registry().put(kKey, "File07", "\"no entry\"");
  const std::vector<std::string> all{"1 C:\\My Documents\\Price list.xls",
                                     "2 C:\\My Documents\\Tariffs 1999.xls", "3 F:\\Stock.xls",
                                     "4 C:\\IMPORTS\\Orders.xls", "10 C:\\Ten.xls"};
  EXPECT_EQ(all, items());
  EXPECT_FALSE(window().cmdRemove.Enabled) << "nothing is selected";
  remove(1);
  const std::map<std::string, std::string> left{{"File1", "\"C:\\My Documents\\Price list.xls\""},
                                                {"File2", "\"F:\\Stock.xls\""},
                                                {"File3", "\"C:\\IMPORTS\\Orders.xls\""},
                                                {"File4", "\"C:\\Ten.xls\""},
                                                {"File07", "\"no entry\""},
                                                {"Max", "dword 9"}};
  EXPECT_EQ(left, values());
  EXPECT_EQ("2 F:\\Stock.xls", window().lstMRUs.selectedItem());
  remove(3);
  EXPECT_EQ("3 C:\\IMPORTS\\Orders.xls", window().lstMRUs.selectedItem());
  EXPECT_EQ("1 file removed from the list.", window().StatusText.get());
  EXPECT_TRUE(prompts.messages.empty());
  prompts.answers = {Answer::No, Answer::Yes};
  window().cmdRemoveAll.press();
  EXPECT_EQ(3U, items().size());
  window().cmdRemoveAll.press();
  EXPECT_EQ((std::map<std::string, std::string>{{"File07", "\"no entry\""}, {"Max", "dword 9"}}),
            values());
  EXPECT_EQ("Excel's list of recent files is empty.", window().cmdRemoveAll.ToolTipText.get());
  EXPECT_FALSE(window().cmdRemove.Enabled || window().cmdRemoveAll.Enabled);
}

TEST_F(MRUsOf97, TellsWhetherTheFileIsThere) {
  ASSERT_EQ(0, machine->files().createFolder("C:\\Folder.xls"));
  const std::vector<std::pair<std::string, std::string>> cases{
      {"C:\\My Documents\\Price list.xls", "The file is there."},
      {"C:\\Nowhere\\At all.xls", "The file is missing."},
      {"C:\\Folder.xls", "The file is missing: this is a folder."},
      {"Q:\\Stock.xls", "This machine has no drive Q:."},
      {"\\\\ALDER\\plans\\Totals.xls", "It lies on the network, where it is not looked for."},
      {"Stock.xls", "This is not the full path of a file."}};
  for (std::size_t i = 0; i < cases.size(); ++i) {
    registry().put(kKey, "File" + std::to_string(i + 1), '"' + cases[i].first + '"');
  }
  for (std::size_t i = 0; i < cases.size(); ++i) {
    EXPECT_EQ(cases[i].second, state(static_cast<int>(i))) << cases[i].first;
  }
}

TEST_F(MRUsOf2000, KindsOfDataStayWhatTheyAre) {
  registry().put(kKey, "FILE2", "binary 41 00");
  const platform::OpenKey key(machine.registry(), platform::HKEY_CURRENT_USER, kKey.substr(5),
                              platform::KEY_ALL_ACCESS);
  ASSERT_EQ(0, machine.registry().RegSetValueExA(key.get(), "file6", platform::REG_EXPAND_SZ,
                                                 "%TEMP%\\a&b.xls", 15));
  ASSERT_EQ(4U, items().size());
  EXPECT_EQ("2 (no text: data of type 3)", items()[1]);
  EXPECT_EQ("6 %TEMP%\\a&b.xls", items()[3]);
  remove(0);
  EXPECT_EQ((std::map<std::string, std::string>{{"File1", "binary 41 00"},
                                                {"File2", "\"\\\\ALDER\\plans\\Totals.xls\""},
                                                {"File3", "expand \"%TEMP%\\a&b.xls\""}}),
            values());
  EXPECT_EQ("This is not the full path of a file.", state(2));
  EXPECT_EQ("%TEMP%\\a&b.xls", window().txtFile.Text.get());
}

TEST_F(MRUsOf2000, AnEntryThatSomebodyElsePutThereIsNotRemoved) {
  window().lstMRUs.ListIndex = 0;
  registry().put(kKey, "File1", "\"C:\\Opened just now.xls\"");
  const auto before = values();
  window().cmdRemove.press();
  EXPECT_EQ(before, values());
  EXPECT_TRUE(told("changed meanwhile"));
  EXPECT_EQ("1 C:\\Opened just now.xls", items()[0]);
  EXPECT_EQ(-1, window().lstMRUs.ListIndex);
}

TEST_F(MRUsOf2000, AFailureIsToldAndTakenBack) {
  expectAllOrNothing(kKey, [this] {
    remove(0);
    failingRegistry.fail(0);
    reopen();
  });
  EXPECT_EQ(2U, values().size());
  // What cannot be read is not written over.
  window().lstMRUs.ListIndex = 0;
  failingRegistry.fail(1);
  window().cmdRemove.press();
  EXPECT_EQ("Operation failed.", lastMessage());
  failingRegistry.fail(1);
  reopen();
  EXPECT_NE(std::string::npos, window().StatusText->find("could not be read"));
  EXPECT_FALSE(window().cmdRemoveAll.Enabled || window().lstMRUs.Enabled);
}

TEST_F(MRUsOfNone, NothingCanBeDone) {
  for (const forms::Control* control : std::initializer_list<forms::Control*>{
           &window().lstMRUs, &window().cmdRemove, &window().cmdRemoveAll}) {
    EXPECT_FALSE(control->Enabled) << control->name();
    EXPECT_EQ("Only MS Office 97 & 2000 supported", control->ToolTipText.get());
  }
  EXPECT_TRUE(window().cmdDone.Enabled);
}

// Windows as machine.json has them.
class RunningApplications : public testing::Test {
 public:
  static std::string told(const std::vector<std::string>& classes, std::int16_t version) {
    test::TestMachine machine{test::Family::Nt};
    machine.close();
    test::setOpenWindows(machine.folder(), classes);
    machine.reopen();
    test::ScriptedPrompts prompts;
    foundation::Session session(machine.get(), prompts);
    session.g_iOfficeVer = version;
    const bool runs = p_CheckForLoadedAppsRestore(session);
    EXPECT_EQ(runs, !prompts.messages.empty());
    EXPECT_TRUE(session.trace.contains("[p_CheckForLoadedAppsRestore]"));
    return runs ? prompts.messages[0].text : "";
  }
  static std::string message(const std::string& list) {
    return "Korvex has determined that the following application(s) are running:\r\n\r\n" + list +
           "\r\nThese application(s) MUST be closed in order to properly tweak MS\r\n"
           "Office settings.";
  }
};

TEST_F(RunningApplications, AreToldInTheirOrder) {
  EXPECT_EQ("", told({"Notepad"}, 9));
  EXPECT_EQ(message("Microsoft Outlook\r\nMicrosoft Word\r\nMicrosoft Excel\r\n"
                    "Microsoft PowerPoint\r\nMicrosoft Access\r\n"),
            told({"OpusApp", "OMain", "PP9FrameClass", "mspim_wnd32", "XLMAIN"}, 9));
  EXPECT_EQ(message("Microsoft Word\r\n"), told({"PP97FrameClass", "opusapp"}, 9));
  EXPECT_EQ(message("Microsoft PowerPoint\r\n"), told({"PP97FrameClass", "PP9FrameClass"}, 8));
  EXPECT_EQ("", told({"PP9FrameClass"}, 8));
}

}  // namespace
}  // namespace korvex::dialogs
