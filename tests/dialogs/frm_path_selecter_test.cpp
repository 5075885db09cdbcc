// frmPathSelecter: going through the machine's folders, typing names, making folders.
#include "dialogs/system/frm_path_selecter.h"

#include <array>
#include <memory>

#include "dialogs/dialog_fixture.h"
#include "engine/folder_choice.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;

class PathSelecter : public DialogTest {
 public:
  PathSelecter() {
    book.add(frmPathSelecter::kName,
             [this] { return std::make_unique<frmPathSelecter>(session, desk); });
  }
  // What was chosen in one showing.
  std::optional<std::string> choose(const std::function<void(frmPathSelecter&)>& use) {
    desk.prompt = "Where & how?";
    host.use = [&use](forms::Form& form) { use(dynamic_cast<frmPathSelecter&>(form)); };
    book.showModal(frmPathSelecter::kName);
    return desk.folder;
  }
  static void select(frmPathSelecter& form, const std::string& item) {
    for (int i = 0; i < form.DirFolder.ListCount(); ++i) {
      const std::string& text = form.DirFolder.items()[static_cast<std::size_t>(i)];
      if (text.substr(text.find_first_not_of(' ')) == item) form.DirFolder.ListIndex = i;
    }
  }

  FolderDesk desk;
};

TEST_F(PathSelecter, ShowsTheMachinesDrivesAndOpensItsFolders) {
  ASSERT_EQ(0, machine->files().createFolder("C:\\Two Words\\Inner"));
  const auto folder = choose([](frmPathSelecter& form) {
    EXPECT_EQ("Where && how?", form.lblInfo.Caption.get());
    EXPECT_EQ("C:\\", form.drvDrive.selectedItem());
    EXPECT_EQ("C:\\", form.txtCreateDirName.Text.get());
    for (const std::string& item : form.DirFolder.items()) {
      EXPECT_EQ(std::string::npos, item.find(".ini")) << "a file: " << item;
    }
    select(form, "Two Words");
    EXPECT_EQ("C:\\Two Words", form.txtCreateDirName.Text.get());
    form.cmdOpen.press();
    EXPECT_EQ("C:\\", form.DirFolder.items().front());
    EXPECT_EQ("  Two Words", form.DirFolder.selectedItem());
    select(form, "Inner");
    form.DirFolder.DblClick.raise();
    EXPECT_EQ("C:\\Two Words\\Inner", form.txtCreateDirName.Text.get());
    select(form, "C:\\");  // the way back
    form.cmdOpen.press();
    select(form, "Two Words");
    form.cmdOK.press();
  });
  EXPECT_EQ("C:\\Two Words", folder);
  EXPECT_FALSE(choose([](frmPathSelecter& form) { form.cmdCancel.press(); }).has_value());
}

TEST_F(PathSelecter, AMissingFolderIsMadeOnceThePersonAgrees) {
  prompts.answers = {Answer::No, Answer::Yes};
  const auto folder = choose([this](frmPathSelecter& form) {
    form.txtCreateDirName.Text = "new/inner\\..\\deep";
    form.cmdOK.press();
    EXPECT_EQ("The folder does not exist.\r\nWould you like to create it?",
              prompts.messages.back().text);
    EXPECT_FALSE(machine->files().exists("C:\\new"));
    form.cmdOK.press();
  });
  EXPECT_EQ("C:\\new\\deep", folder);
  EXPECT_TRUE(machine->files().exists("C:\\new\\deep"));
}

TEST_F(PathSelecter, WhatIsNoFolderIsToldAndTheWindowStays) {
  ASSERT_EQ(0, machine->files().replace("C:\\file.txt", "x"));
  prompts.answers = {Answer::Yes, Answer::Yes, Answer::Yes};
  choose([this](frmPathSelecter& form) {
    for (const char* wrong : {"file.txt", "", "Q:\\x", "C:\\a*b", "nul"}) {
      form.txtCreateDirName.Text = wrong;
      const std::size_t before = prompts.messages.size();
      form.cmdOK.press();
      EXPECT_GT(prompts.messages.size(), before) << wrong;
      EXPECT_FALSE(desk.folder.has_value()) << wrong;
    }
    form.close();
  });
  prompts.answers.clear();  // how many of them ask first is not the point
}

TEST(Folders, AreTidiedToOneSpelling) {
  struct Case {
    const char* typed;
    const char* tidy;
  };
  constexpr std::array kCases{Case{"c:", "c:\\"},
                              Case{"C:\\", "C:\\"},
                              Case{" C:/WINNT// ", "C:\\WINNT"},
                              Case{"C:\\a\\.\\b\\..\\c\\", "C:\\a\\c"},
                              Case{"C:\\..\\..\\x", "C:\\x"},
                              Case{"", ""},
                              Case{"  ", ""},
                              Case{"\\\\host\\share\\", "\\\\host\\share"},
                              Case{"\\WINNT\\", "\\WINNT"},
                              Case{"rel/a", "rel\\a"}};
  for (const Case& c : kCases) EXPECT_EQ(c.tidy, engine::tidyFolder(c.typed)) << c.typed;
}

}  // namespace
}  // namespace korvex::dialogs
