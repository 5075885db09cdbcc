// frmRightClick: entries get into the menus of the right classes, and only those come out again.
#include "dialogs/shell/frm_right_click.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;

const std::string kRecords = "HKLM\\Software\\Korvex\\Right_Click";
constexpr const char* kTool = "C:\\Program Files\\50% Note%Pad.exe";
constexpr const char* kOther = "C:\\other.exe";
constexpr const char* kCommand = "\"\"C:\\Program Files\\50% Note%Pad.exe\" \"%1\"\"";

class RightClick : public OnFailingMachine<frmRightClick> {
 public:
  explicit RightClick(const std::string& sample = "windows-98") : OnFailingMachine(sample) {
    for (const char* file : {kTool, kOther}) EXPECT_EQ(0, machine->files().replace(file, "MZ"));
  }
  void next() { window().cmdWizardNext.press(); }
  // To the page of the first of these types.
  void choose(const std::vector<std::string>& types) {
    EXPECT_EQ(0, reopen().page());
    next();
    forms::MultiList& list = window().lstFileTypes;
    for (int i = 0; i < list.ListCount(); ++i) {
      const std::string& type = list.items()[static_cast<std::size_t>(i)];
      if (std::ranges::find(types, type) != types.end()) list.setSelected(i, true);
    }
    next();
  }
  void enter(const std::string& text, const std::string& path) {
    window().txtText.Text = text;
    window().txtPath.Text = path;
    next();
  }
  void add(const std::string& type, const std::string& text, const std::string& path = kTool) {
    choose({type});
    enter(text, path);
    EXPECT_EQ(200, window().page()) << lastMessage();
  }
  std::vector<std::string> listed() {
    reopen().optRemove.Value = true;
    next();
    return window().lstEntries.items();
  }
  void remove(const std::vector<int>& items) {
    listed();
    for (const int item : items) window().lstEntries.setSelected(item, true);
    next();
  }
  std::string menu(const std::string& key) { return registry().value("HKCR\\" + key, ""); }
  std::string command(const std::string& key) { return menu(key + "\\command"); }
};

class RightClick2000 : public RightClick {
 public:
  RightClick2000() : RightClick("windows-2000") {}
};

TEST_F(RightClick, EachTypeIsCommittedOnItsOwnPage) {
  EXPECT_EQ("&Next", window().cmdWizardNext.Caption.get());
  next();
  next();
  EXPECT_TRUE(told("You must make a selection before continuing."));
  EXPECT_EQ(20, window().lstFileTypes.ListCount());
  choose({".TXT", "UNKNOWN", ".INI"});
  EXPECT_EQ(101, window().page());
  EXPECT_EQ("File type .INI (1 of 3)", window().fraEntry.Caption.get());
  enter("Edit with &Notes", kTool);
  EXPECT_EQ("\"Edit with &Notes\"", menu("inifile\\shell\\Edit with Notes"));
  EXPECT_EQ(kCommand, command("inifile\\shell\\Edit with Notes"));
  EXPECT_EQ("Edit with &Notes", window().txtText.Text.get()) << "proposed for the next one";
  EXPECT_EQ(
      "Selecting Next commits this entry to the Registry. Press Next when you are ready to move to "
      "the next file type.",
      window().lblCommit.Caption.get());
  next();
  EXPECT_EQ(102, window().page());
  EXPECT_EQ("&Finish", window().cmdWizardNext.Caption.get());
  EXPECT_NE(std::string::npos, window().lblCommit.Caption->find("Selecting Finish commits"));
  EXPECT_EQ("delete", menu("Unknown\\shell\\Edit with Notes"));
  // Cancel loses nothing that is committed.
  window().cmdCancel.press();
  EXPECT_EQ(kCommand, command("txtfile\\shell\\Edit with Notes"));
  const std::vector<std::string> own{"inifile   Edit with Notes", "txtfile   Edit with Notes"};
  EXPECT_EQ(own, listed());
}

TEST_F(RightClick, GoingBackChangesWhatWasCommitted) {
  choose({".INI", ".TXT"});
  enter("First", kTool);
  window().cmdBack.press();
  EXPECT_EQ("First", window().txtText.Text.get());
  enter("Second", kTool);
  next();
  EXPECT_EQ("&Done", window().cmdWizardNext.Caption.get());
  EXPECT_FALSE(window().cmdCancel.Visible);
  const std::vector<std::string> own{"inifile   Second", "txtfile   First"};
  EXPECT_EQ(own, listed());
  EXPECT_FALSE(registry().hasKey("HKCR\\inifile\\shell\\First"));
}

TEST_F(RightClick, WrongFieldsWriteNothing) {
  const auto before = below("HKCR\\txtfile");
  choose({".TXT"});
  enter("", kTool);
  EXPECT_TRUE(
      told("Korvex needs to know the text as you wish it to appear within the right click "
           "menu."));
  EXPECT_EQ("Place text here", window().txtText.Text.get());
  next();
  EXPECT_EQ(2U, prompts.messages.size()) << "the text in the field is no menu text";
  enter("&Edit", " ");
  EXPECT_TRUE(told("as the secondary application to launch .TXT."));
  EXPECT_EQ("Enter path here", window().txtPath.Text.get());
  next();
  EXPECT_TRUE(told("as the secondary application to launch .TXT."));
  for (const char* path : {"C:\\none.exe", "C:\\Program Files", "other.exe", "Q:\\x.exe"}) {
    enter("&Edit", path);
    EXPECT_TRUE(
        told(std::string(path) + " is not a valid path. Please check the path and try again."));
  }
  enter("&A&B", kTool);
  EXPECT_TRUE(told("one accelerator character only"));
  EXPECT_EQ(102, window().page());
  EXPECT_EQ(before, below("HKCR\\txtfile"));
  EXPECT_FALSE(registry().hasKey(kRecords));
}

TEST_F(RightClick, BitmapsWithoutAClassAreWrittenAndRemovedUnderBoth) {
  ASSERT_EQ(0, session.regTool.DeleteRegNodes(platform::HKEY_CLASSES_ROOT, ".bmp"));
  registry().put("HKCR\\Paint.Picture\\shell\\Retouch", "", "\"of another program\"");
  add(".BMP", "Touch");
  EXPECT_EQ(kCommand, command("bmpfile\\shell\\Touch"));
  EXPECT_FALSE(registry().hasKey("HKCR\\Paint.Picture\\shell\\Touch"));
  // A verb that the other class has is not taken: removing would find it there.
  add(".BMP", "Retouch");
  EXPECT_EQ(kCommand, command("bmpfile\\shell\\Retouch 2"));
  registry().put("HKCR\\Paint.Picture\\shell\\Touch\\command", "", "\"x\"");
  remove({0, 1});
  EXPECT_EQ(202, window().page()) << lastMessage();
  EXPECT_FALSE(registry().hasKey("HKCR\\Paint.Picture\\shell\\Touch"));
  EXPECT_TRUE(registry().hasKey("HKCR\\Paint.Picture\\shell\\Retouch"));
  EXPECT_TRUE(registry().hasKey("HKCR\\Paint.Picture\\shell\\open\\command"));
  EXPECT_FALSE(registry().hasKey("HKCR\\bmpfile"));
  EXPECT_TRUE(listed().empty());
}

TEST_F(RightClick, RecordsOfBothBitmapClassesAreOneEntry) {
  add(".BMP", "Touch");
  const std::vector<std::string> one{"Paint.Picture   Touch"};
  // As a record of before .BMP had its class.
  const platform::OpenKey key(machine.registry(), platform::HKEY_LOCAL_MACHINE, kRecords.substr(5),
                              platform::KEY_ALL_ACCESS);
  const std::string record("Text=Touch\0Command=x\0Type=.BMP\0\0", 32);
  ASSERT_EQ(0, machine.registry().RegSetValueExA(key.get(), "bmpfile\\Touch",
                                                 platform::REG_MULTI_SZ, record.data(), 32));
  registry().put("HKCR\\bmpfile\\shell\\Touch\\command", "", "\"x\"");
  EXPECT_EQ(one, listed());
  remove({0});
  EXPECT_FALSE(registry().hasKey("HKCR\\bmpfile") ||
               registry().hasKey("HKCR\\Paint.Picture\\shell\\Touch"));
  EXPECT_TRUE(listed().empty());
}

TEST_F(RightClick, VerbsOfOthersAndOfWindowsAreLeftAlone) {
  const std::string open = command("txtfile\\shell\\open");
  registry().put("HKCR\\txtfile\\shell\\Edit_Me_", "", "\"of another program\"");
  add(".TXT", "&Open");
  add(".TXT", "Edit\\Me?");
  EXPECT_EQ(open, command("txtfile\\shell\\open"));
  EXPECT_EQ("\"of another program\"", menu("txtfile\\shell\\Edit_Me_"));
  EXPECT_EQ("\"&Open\"", menu("txtfile\\shell\\Open 2"));
  EXPECT_EQ("\"Edit\\Me?\"", menu("txtfile\\shell\\Edit_Me_ 2"));
  // The same entry again, with its letter elsewhere, replaces its own.
  add(".TXT", "O&pen", kOther);
  EXPECT_EQ("\"O&pen\"", menu("txtfile\\shell\\Open 2"));
  EXPECT_EQ("\"\"C:\\other.exe\" \"%1\"\"", command("txtfile\\shell\\Open 2"));
  EXPECT_EQ(2U, listed().size());
}

TEST_F(RightClick, TypesOfOneClassShareAnEntry) {
  add(".JPEG", "View");
  add(".JPG", "View");
  ASSERT_EQ(1U, listed().size());
  window().lstEntries.ListIndex = 0;
  EXPECT_EQ(".JPEG, .JPG: View  \"C:\\Program Files\\50% Note%Pad.exe\" \"%1\"",
            window().txtEntry.Text.get());
  choose({".GIF"});
  enter("View", kTool);
  ASSERT_EQ(0, session.regTool.DeleteRegValue(platform::HKEY_LOCAL_MACHINE, kRecords.substr(5),
                                              "giffile\\View"));
  // Another program for the second type would take the first one's away.
  add(".PCX", "Paint");
  choose({".BMP"});
  prompts.answers = {Answer::No, Answer::Yes};
  enter("Paint", kOther);
  EXPECT_TRUE(told("Paint.Picture has this entry already, for .PCX"));
  EXPECT_EQ(kCommand, command("Paint.Picture\\shell\\Paint"));
  next();
  EXPECT_EQ("\"\"C:\\other.exe\" \"%1\"\"", command("Paint.Picture\\shell\\Paint"));
}

TEST_F(RightClick2000, EntryNeverBecomesWhatADoubleClickStarts) {
  for (const std::string verb : {"make", "play back"}) {
    registry().put("HKCR\\.mov", "", "\"movie\"");
    registry().put("HKCR\\movie\\shell\\" + verb + "\\command", "", "\"x\"");
  }
  add(".MOV", "Convert");
  add(".MOV", "Zoom");
  EXPECT_EQ("\"Convert\"", menu("movie\\shell\\~Convert"));
  EXPECT_EQ("\"Zoom\"", menu("movie\\shell\\Zoom"));
  // Open or a verb that the class names comes first anyway.
  add(".TXT", "Convert");
  EXPECT_EQ("\"Convert\"", menu("txtfile\\shell\\Convert"));
}

TEST_F(RightClick2000, RemovingKeepsWhatOthersChanged) {
  add(".TXT", "One");
  add(".TXT", "Two");
  add(".TXT", "Three");
  const std::string two = "HKCR\\txtfile\\shell\\Two";
  registry().put(two + "\\command", "", "\"changed\"");
  registry().put(two + "\\ddeexec", "", "\"[Open]\"");
  const auto changed = below(two);
  listed();
  next();
  EXPECT_TRUE(told("You have not selected an item for removal."));
  EXPECT_FALSE(window().cmdTakeBack.Enabled);
  remove({0, 1});
  EXPECT_EQ(202, window().page()) << lastMessage();
  EXPECT_FALSE(registry().hasKey(two) || registry().hasKey("HKCR\\txtfile\\shell\\One"));
  EXPECT_FALSE(registry().hasKey("HKCR\\SOFTWARE")) << "kept outside of the classes";
  EXPECT_EQ(std::vector<std::string>{"txtfile   Three"}, listed());
  prompts.answers = {Answer::No, Answer::Yes};
  window().cmdTakeBack.press();
  EXPECT_FALSE(registry().hasKey(two));
  window().cmdTakeBack.press();
  EXPECT_EQ(changed, below(two));
  EXPECT_FALSE(window().cmdTakeBack.Enabled);
}

TEST_F(RightClick2000, RecordsChangedMeanwhileAreShownAgain) {
  add(".TXT", "One");
  add(".TXT", "Two");
  listed();
  window().lstEntries.setSelected(0, true);
  ASSERT_EQ(0, session.regTool.DeleteRegValue(platform::HKEY_LOCAL_MACHINE, kRecords.substr(5),
                                              "txtfile\\One"));
  next();
  EXPECT_TRUE(told("changed meanwhile"));
  EXPECT_EQ(std::vector<std::string>{"txtfile   Two"}, window().lstEntries.items());
  EXPECT_TRUE(registry().hasKey("HKCR\\txtfile\\shell\\One\\command"));
}

TEST_F(RightClick2000, AddingIsAllOrNothing) {
  choose({".CMD"});
  expectAllOrNothing("HKCR\\cmdfile", [this] {
    enter("Edit in Notes", kTool);
    EXPECT_EQ(registry().hasKey("HKCR\\cmdfile\\shell\\Edit in Notes"),
              registry().hasKey(kRecords));
  });
  EXPECT_EQ(kCommand, command("cmdfile\\shell\\Edit in Notes"));
}

TEST_F(RightClick2000, WhatCannotBeRemovedStaysWhole) {
  add(".TXT", "One");
  add(".TXT", "Two");
  const auto before = below("HKCR\\txtfile");
  const auto records = below(kRecords);
  bool partly = false;
  for (int n = 1; n < 400 && below(kRecords).size() == records.size(); ++n) {
    listed();
    for (const int item : {0, 1}) window().lstEntries.setSelected(item, true);
    prompts.messages.clear();
    failingRegistry.fail(n);
    next();
    const bool failed = failingRegistry.hasFailed();
    failingRegistry.fail(0);
    const auto now = below("HKCR\\txtfile");
    const auto left = below(kRecords);
    for (const std::string verb : {"One", "Two"}) {
      EXPECT_EQ(left.contains(kRecords + " | txtfile\\" + verb),
                now.contains("HKCR\\txtfile\\shell\\" + verb + "\\command | "))
          << verb << n;
    }
    EXPECT_EQ(left.size() == records.size(), before == now) << n;
    if (!failed) break;
    EXPECT_FALSE(prompts.messages.empty()) << n;
    partly = partly || left.size() + 1 == records.size();
    EXPECT_EQ(left.size() - 1, window().lstEntries.items().size()) << n;
  }
  EXPECT_TRUE(partly);
}

}  // namespace
}  // namespace korvex::dialogs
