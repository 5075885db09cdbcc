// Files that only pretend, and files that record.
#include "platform/common/files_decorators.h"

#include <functional>

#include "platform/common/drive_fixture.h"

namespace korvex::platform {
namespace {

using Step = std::function<Status(Files&)>;

class FilesDecorators : public test::DriveTest {
 protected:
  void SetUp() override {
    DriveTest::SetUp();
    put("WINNT/Help/Windows.hlp", "help");
    put("WINNT/a long name.txt", "long");
    put("WINNT/locked.txt", "locked");
    drives().setAttributes("C:\\WINNT\\locked.txt", FILE_ATTRIBUTE_READONLY);
    std::filesystem::create_directory(onHost("Empty"));
  }

  // Everything below a folder, as the files themselves tell it.
  static std::string tell(Files& files, const std::string& folder) {
    std::vector<FileEntry> entries;
    std::string text = folder + ": " + std::to_string(files.list(folder + "\\*", entries)) + "\n";
    for (const FileEntry& entry : entries) {
      const std::string path = folder + "\\" + entry.name;
      std::string bytes;
      std::uint32_t attributes = 0;
      const Status read = files.read(path, bytes);
      EXPECT_EQ(ERROR_SUCCESS, files.attributes(path, attributes)) << path;
      EXPECT_EQ(attributes, entry.attributes) << path;
      text += path + " " + std::to_string(read) + " " + bytes + " " + std::to_string(attributes) +
              " " + std::to_string(bytes.size() == entry.size) + "\n";
      if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) text += tell(files, path);
    }
    return text;
  }
};

const std::vector<Step> kSteps{
    [](Files& f) { return f.replace("C:\\WINNT\\win.ini", "new"); },
    [](Files& f) { return f.append("c:/winnt/WIN.INI", "er"); },
    [](Files& f) { return f.append("C:\\WINNT\\ALONGN~1.TXT", "er"); },
    [](Files& f) { return f.replace("C:\\WINNT\\locked.txt", "no"); },
    [](Files& f) { return f.remove("C:\\WINNT\\locked.txt"); },
    [](Files& f) { return f.setAttributes("C:\\WINNT\\locked.txt", FILE_ATTRIBUTE_HIDDEN); },
    [](Files& f) { return f.replace("C:\\WINNT\\locked.txt", "yes"); },
    [](Files& f) { return f.replace("C:\\Nowhere\\a.txt", "no"); },
    [](Files& f) { return f.replace("C:\\Empty\\", "no"); },
    [](Files& f) { return f.replace("C:\\New file\\", "no"); },
    [](Files& f) { return f.replace("Q:\\a.txt", "no"); },
    [](Files& f) { return f.createFolder("C:\\Empty\\New\\Deep"); },
    [](Files& f) { return f.createFolder("C:\\Empty\\New"); },
    [](Files& f) { return f.createFolder("Q:\\New"); },
    [](Files& f) { return f.removeFolder("C:\\Empty"); },
    [](Files& f) {
      return f.copy("C:\\WINNT\\Help\\Windows.hlp", "C:\\Empty\\New\\kept", Overwrite::No);
    },
    [](Files& f) { return f.copy("C:\\WINNT\\win.ini", "C:\\Empty\\New\\kept", Overwrite::No); },
    [](Files& f) { return f.copy("C:\\WINNT\\win.ini", "C:\\WINNT\\WIN.INI", Overwrite::Yes); },
    [](Files& f) { return f.copy("C:\\WINNT\\win.ini", "C:\\Empty\\New\\kept", Overwrite::Yes); },
    [](Files& f) { return f.move("C:\\WINNT", "C:\\Empty"); },
    [](Files& f) { return f.move("C:\\WINNT", "C:\\WINNT\\Help\\Inside"); },
    [](Files& f) { return f.move("C:\\WINNT", "C:\\Windows"); },
    [](Files& f) { return f.replace("C:\\WINNT\\win.ini", "gone"); },
    [](Files& f) { return f.remove("C:\\Windows\\Help\\Windows.hlp"); },
    [](Files& f) { return f.remove("C:\\Windows\\Help\\Windows.hlp"); },
    [](Files& f) { return f.removeFolder("C:\\Windows\\Help"); },
    [](Files& f) { return f.removeFolder("C:\\Windows\\win.ini"); },
    [](Files& f) { return f.removeFolder("C:\\Empty\\New\\Deep"); },
    [](Files& f) { return f.createFolder("C:\\Windows\\win.ini\\x"); },
    [](Files& f) { return f.createFolder("C:\\Windows\\win.ini"); },
    [](Files& f) { return f.replace("C:\\WINNT", "a file in the folder's place"); },
};

// Each step ends as on a real drive, and what is read afterwards is what stands there then.
TEST_F(FilesDecorators, PretendedWritesReadBackAsRealOnesWould) {
  const std::filesystem::path copy = host / "copy";
  std::filesystem::copy(host / "c", copy, std::filesystem::copy_options::recursive);
  DriveFolders real({{'C', copy}});
  real.setAttributes("C:\\WINNT\\locked.txt", FILE_ATTRIBUTE_READONLY);
  DriveFolders inner = drives();
  PretendingFiles pretending(inner);
  const std::string before = tell(inner, "C:");
  for (std::size_t i = 0; i < kSteps.size(); ++i) {
    EXPECT_EQ(kSteps[i](real), kSteps[i](pretending)) << "step " << i;
    ASSERT_EQ(tell(real, "C:"), tell(pretending, "C:")) << "step " << i;
  }
  EXPECT_NE(before, tell(pretending, "C:"));
  EXPECT_EQ(before, tell(inner, "C:"));
  pretending.forget();
  EXPECT_EQ(before, tell(pretending, "C:"));
}

TEST_F(FilesDecorators, RecordsTellEachPathBeforeAndAfter) {
  DriveFolders inner = drives();
  RecordingFiles recording(inner);
  recording.replace("C:\\WINNT\\locked.txt", "no");
  EXPECT_TRUE(recording.records().empty());
  recording.createFolder("C:/Empty/New/Deep");
  recording.copy("C:\\WINNT\\Help\\Windows.hlp", "C:\\Empty\\kept", Overwrite::No);
  recording.move("C:\\Empty\\kept", "C:\\WINNT\\kept");
  recording.remove("C:\\WINNT\\kept");
  struct Row {
    std::string path, from, before, after;
  };
  const auto content = [](const std::optional<FileState>& state) -> std::string {
    if (!state) return "(none)";
    return state->isFolder() ? "(folder)" : state->bytes;
  };
  const std::vector<Row> expected{
      {"C:\\Empty\\New", "", "(none)", "(folder)"},
      {"C:\\Empty\\New\\Deep", "", "(none)", "(folder)"},
      {"C:\\Empty\\kept", "C:\\WINNT\\Help\\Windows.hlp", "(none)", "help"},
      {"C:\\WINNT\\kept", "C:\\Empty\\kept", "(none)", "help"},
      {"C:\\Empty\\kept", "", "help", "(none)"},
      {"C:\\WINNT\\kept", "", "help", "(none)"},
  };
  ASSERT_EQ(expected.size(), recording.records().size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const FileRecord& record = recording.records()[i];
    EXPECT_EQ(expected[i].path, record.path);
    EXPECT_EQ(expected[i].from, record.from);
    EXPECT_EQ(expected[i].before, content(record.before)) << record.path;
    EXPECT_EQ(expected[i].after, content(record.after)) << record.path;
  }
}

}  // namespace
}  // namespace korvex::platform
