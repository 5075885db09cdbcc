// frmFastFileAccess: programs of this machine, and no others, get an application path.
#include "dialogs/system/frm_fast_file_access.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;

const std::string kAppPaths = "HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths";
constexpr const char* kTool = "C:\\Tools\\Editor.exe";

class FastFileAccess : public OnFailingMachine<frmFastFileAccess> {
 public:
  explicit FastFileAccess(const std::string& sample = "windows-98") : OnFailingMachine(sample) {
    for (const char* folder : {"C:\\Tools", "C:\\Tools\\Folder.exe", "C:\\Other"}) {
      EXPECT_EQ(0, machine->files().createFolder(folder));
    }
    for (const char* file : {kTool, "C:\\Tools\\read.me", "C:\\Other\\EDITOR.EXE"}) {
      EXPECT_EQ(0, machine->files().replace(file, "MZ"));
    }
  }
  void apply(const std::string& path) {
    window().txtApp.Text = path;
    window().cmdApply.press();
  }
  std::string entry(const std::string& name) {
    return registry().value(kAppPaths + '\\' + name, "");
  }
};

TEST_F(FastFileAccess, AddsTheChosenProgram) {
  prompts.texts = {std::nullopt, kTool};
  window().cmdSelectApp.press();
  EXPECT_EQ("", window().txtApp.Text.get());
  window().cmdSelectApp.press();
  EXPECT_EQ("Indentify application to add to Fast File Access", lastMessage());
  EXPECT_EQ("delete", entry("Editor.exe"));
  window().cmdApply.press();
  EXPECT_EQ("\"C:\\Tools\\Editor.exe\"", entry("Editor.exe"));
  EXPECT_EQ("Editor.exe has been added.", window().StatusText.get());
  EXPECT_EQ("", window().txtApp.Text.get());
  // Its own entry again, as people type it.
  apply(" \"c:/tools/editor.EXE\" ");
  EXPECT_EQ("\"c:\\tools\\editor.EXE\"", entry("Editor.exe"));
}

TEST_F(FastFileAccess, AnotherProgramOfThatNameIsShownFirst) {
  apply(kTool);
  registry().put(kAppPaths + "\\Editor.exe", "Path", "\"C:\\Tools\"");
  prompts.answers = {Answer::No};
  apply("C:\\Other\\EDITOR.EXE");
  EXPECT_TRUE(told("C:\\Tools\\Editor.exe"));
  EXPECT_EQ("\"C:\\Tools\\Editor.exe\"", entry("Editor.exe"));
  prompts.answers = {Answer::Yes};
  window().cmdApply.press();
  EXPECT_EQ("\"C:\\Other\\EDITOR.EXE\"", entry("Editor.exe"));
}

TEST_F(FastFileAccess, RefusesWhatIsNoProgramOfThisMachine) {
  const auto before = below(kAppPaths);
  const std::vector<std::pair<std::string, std::string>> cases{
      {"", "Select an application first."},
      {"Editor.exe", "not the full path"},
      {"\\\\SERVER\\Share\\Editor.exe", "not the full path"},
      {"C:\\Tools\\read.me", "does not end in .exe"},
      {"C:\\Tools\\.exe", "does not end in .exe"},
      {"C:\\Tools\\Missing.exe", "cannot be found: 2"},
      {"Q:\\Editor.exe", "cannot be found: 3"},
      {"C:\\Tools\\Folder.exe", "is a folder"},
  };
  for (const auto& [path, message] : cases) {
    apply(path);
    EXPECT_TRUE(told(message)) << path;
  }
  EXPECT_EQ(before, below(kAppPaths));
  prompts.answers = {Answer::Yes};
  EXPECT_TRUE(book.unload(frmFastFileAccess::kName));
}

TEST_F(FastFileAccess, AFailureIsToldInTheProductsWords) {
  expectAllOrNothing(kAppPaths, [this] { apply(kTool); });
  machine->files().replace("C:\\Tools\\b.exe", "MZ");
  failingRegistry.fail(1);
  apply("C:\\Tools\\b.exe");
  EXPECT_EQ("An error occurred. This application has not been added.", lastMessage());
  EXPECT_EQ("delete", entry("b.exe"));
  EXPECT_NE(std::string::npos, window().StatusText->find("5 (")) << window().StatusText.get();
}

}  // namespace
}  // namespace korvex::dialogs
