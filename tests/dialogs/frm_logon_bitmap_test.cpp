// frmLogon_Bitmap in both of its modes.
#include "dialogs/logon/frm_logon_bitmap.h"

#include "dialogs/direct_fixture.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;

constexpr const char* kUnc =
    "UNC paths are not allowed for this feature.\r\n"
    "Either move the bitmap to the local drive or"
    "map the drive as a local letter.";
constexpr const char* kNoBitmap =
    "The file must be a file with a bmp extension.\r\n"
    "Please check to see if you correctly entered the filename and then try again.";
constexpr const char* kRestored =
    "Korvex has restored the original NT logon bitmap.\r\n"
    "The next time you logon the original bitmap will be displayed.\r\n"
    "This change affects all users.";
constexpr const char* kWritten =
    "Korvex has written your custom bitmap to the registry.\r\n"
    "The next time you logon the bitmap will be displayed.\r\n"
    "To restore the default bitmap just type the word Default\r\n"
    "into the field or leave it blank. This change affects all users.";

class LogonBitmap : public DirectDialogTest<frmLogon_Bitmap> {
 public:
  explicit LogonBitmap(const std::string& sample = "windows-nt4") : DirectDialogTest(sample) {}
  std::unique_ptr<frmLogon_Bitmap> make(foundation::Session& on) override {
    return std::make_unique<frmLogon_Bitmap>(partsOn(on), desk);
  }
  std::string held() {
    return session.regTool.GetRegStr(".DEFAULT\\Control Panel\\Desktop", "Wallpaper",
                                     platform::HKEY_USERS);
  }
  // Opens the window, types, presses Finish; whether the window went.
  bool finish(const std::string& typed) {
    bool gone = false;
    host.use = [&](forms::Form& form) {
      auto& window = dynamic_cast<frmLogon_Bitmap&>(form);
      const std::string shown = window.txtBitmap.Text;
      window.txtBitmap.Text = typed;
      const auto going = form.closeRequested.subscribe([&gone] { gone = true; });
      window.cmdBitmap_Finish.press();
      if (gone) return;
      if (typed != shown) prompts.answers.push_back(Answer::Yes);  // discard what was typed
      window.cmdDone.press();
      gone = false;
    };
    book.showModal(frmLogon_Bitmap::kName);
    return gone;
  }

  LogonBitmapDesk desk;
};

class AllowedProgram : public LogonBitmap {
 public:
  AllowedProgram() : LogonBitmap("windows-98") {}
  bool finishProgram(const std::string& typed) {
    desk.mode = LogonBitmapDesk::kRestrictRun;
    return finish(typed);
  }
};

class LogonBitmapOn9x : public LogonBitmap {
 public:
  LogonBitmapOn9x() : LogonBitmap("windows-98") {}
};

TEST_F(LogonBitmap, ABitmapIsWrittenSeenAgainAndTheOriginalRestored) {
  ASSERT_EQ("(Default)", dialog().txtBitmap.Text.get());
  EXPECT_TRUE(finish("C:\\WINNT\\Gone Fishing.BMP"));
  EXPECT_EQ("C:\\WINNT\\Gone Fishing.BMP", held());
  EXPECT_EQ(kWritten, lastMessage());
  EXPECT_EQ("C:\\WINNT\\Gone Fishing.BMP", dialog().txtBitmap.Text.get());
  for (const char* typed : {"default", "", "  ", "DEFAULT", "(Default)"}) {
    EXPECT_TRUE(finish("x.bmp"));
    EXPECT_EQ("x.bmp", held());
    EXPECT_TRUE(finish(typed));
    EXPECT_EQ("(Default)", held()) << typed;
    EXPECT_EQ(kRestored, lastMessage());
  }
}

TEST_F(LogonBitmap, WhatIsNoLocalBitmapIsRefused) {
  const std::vector<std::pair<const char*, const char*>> cases{
      {"\\\\server\\share\\x.txt", kUnc}, {"//server/share/x.bmp", kUnc},
      {"C:\\x.jpg", kNoBitmap},           {"C:\\bmp", kNoBitmap},
      {"C:\\WINNT\\.bmp", kNoBitmap},     {"(None)", kNoBitmap},
  };
  for (const auto& [typed, message] : cases) {
    prompts.messages.clear();
    EXPECT_FALSE(finish(typed)) << typed;
    EXPECT_EQ(message, prompts.messages.front().text) << typed;
    EXPECT_EQ("(Default)", held()) << typed;
  }
}

TEST_F(LogonBitmap, BrowseTakesAFileOfThisMachineOnly) {
  prompts.texts = {std::nullopt, "\\\\server\\x.bmp", "C:\\WINNT\\x.bmp"};
  dialog().cndBitmap_Browse.press();
  dialog().cndBitmap_Browse.press();
  EXPECT_EQ("(Default)", dialog().txtBitmap.Text.get());
  EXPECT_EQ(kUnc, lastMessage());
  EXPECT_EQ(platform::kIconCritical, prompts.messages.back().style);
  dialog().cndBitmap_Browse.press();
  EXPECT_EQ("C:\\WINNT\\x.bmp", dialog().txtBitmap.Text.get());
  EXPECT_EQ("Locate the bitmap file...", lastMessage());
}

TEST_F(LogonBitmap, AMissingValueIsTheDefault) {
  session.regTool.DeleteRegValue(platform::HKEY_USERS, ".DEFAULT\\Control Panel\\Desktop",
                                 "Wallpaper");
  EXPECT_EQ("(Default)", reopened().txtBitmap.Text.get());
  EXPECT_EQ("", held());
}

TEST_F(LogonBitmapOn9x, OnlyNtHasIt) {
  EXPECT_FALSE(dialog().cmdBitmap_Finish.Enabled || dialog().txtBitmap.Enabled);
  EXPECT_EQ("This setting exists only on Windows NT4 and 2000.", dialog().StatusText.get());
}

TEST_F(AllowedProgram, OfARegisteredProgramOnlyItsNameIsHandedBack) {
  ASSERT_TRUE(registry().hasKey(
      "HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\IEXPLORE.EXE"));
  desk.mode = LogonBitmapDesk::kRestrictRun;
  EXPECT_EQ("Add allowed Windows application...", dialog().Caption.get());
  EXPECT_EQ(
      "Type the Windows executable name or browse for it.\r\n"
      "(Only the executable name is needed, i.e., notepad.exe)",
      dialog().lblBitmap.Caption.get());
  const std::string before = held();
  EXPECT_TRUE(finishProgram("C:\\Program Files\\Internet Explorer\\iexplore.exe"));
  EXPECT_EQ("iexplore.exe", desk.name);
  EXPECT_EQ(before, held());
  EXPECT_NE("Add allowed Windows application...", reopened().Caption.get());  // the bitmap's again
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(AllowedProgram, AnUnregisteredOneIsAskedFor) {
  prompts.answers = {Answer::No};
  EXPECT_FALSE(finishProgram("kvnone.exe"));
  EXPECT_EQ(
      "The application you have chosen does not have a application path key within the regstry.\r\n"
      "This may mean that Windows will be unable to find the application to allow it to run .\r\n"
      "Please test the application before using it in a production enviroment.\r\n"
      "Do you wish to continue with this application?",
      prompts.messages.front().text);
  EXPECT_EQ("", desk.name);
  prompts.answers = {Answer::Yes};
  EXPECT_TRUE(finishProgram("kvnone.exe"));
  EXPECT_EQ("kvnone.exe", desk.name);
  for (const char* typed : {"", "C:\\", "*.exe"}) {
    EXPECT_FALSE(finishProgram(typed)) << typed;
    EXPECT_EQ("", desk.name) << typed;
  }
}

}  // namespace
}  // namespace korvex::dialogs
