// What every machine's files must do: statuses, case, attributes, lists, short names, no way out.
#include <gtest/gtest.h>

#include <ctime>

#include "platform/contract/machine_kinds.h"
#include "platform/files.h"

namespace korvex::platform {
namespace {

using Names = std::vector<std::string>;

class ContractFiles : public testing::TestWithParam<test::MachineKind> {
 protected:
  void SetUp() override { ASSERT_EQ(files.createFolder("C:\\t"), ERROR_SUCCESS); }

  std::string read(std::string_view path) {
    std::string bytes;
    EXPECT_EQ(files.read(path, bytes), ERROR_SUCCESS) << path;
    return bytes;
  }
  std::uint32_t attributes(std::string_view path) {
    std::uint32_t result = 0;
    EXPECT_EQ(files.attributes(path, result), ERROR_SUCCESS) << path;
    return result;
  }
  Names list(std::string_view pattern) {
    std::vector<FileEntry> entries;
    const Status status = files.list(pattern, entries);
    EXPECT_EQ(status, entries.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS) << pattern;
    Names names;
    for (const FileEntry& entry : entries) names.push_back(entry.name);
    return names;
  }

  std::unique_ptr<test::ContractMachine> made = GetParam().make();
  Machine& machine = made->machine();
  Files& files = machine.files();
};

INSTANTIATE_TEST_SUITE_P(Machines, ContractFiles, test::machineKinds(), test::machineKindName);

TEST_P(ContractFiles, FilesAreFoundWithoutRegardToCase) {
  const std::string bytes("zero \0 and \r\n", 13);
  EXPECT_EQ(files.replace("C:\\t\\Übung.TXT", bytes), ERROR_SUCCESS);
  EXPECT_EQ(read("c:/T/üBUNG.txt"), bytes);
  EXPECT_EQ(files.replace("C:\\T\\ÜBUNG.TXT", "new"), ERROR_SUCCESS);
  EXPECT_EQ(files.append("C:\\T\\übung.txt", " line"), ERROR_SUCCESS);
  EXPECT_EQ(files.append("C:\\t\\log.txt. ", "made"), ERROR_SUCCESS);
  EXPECT_EQ(list("C:\\t\\*"), (Names{"log.txt", "Übung.TXT"}));
  EXPECT_EQ(read("C:\\t\\übung.txt"), "new line");
  EXPECT_EQ(read("C:\\t\\.\\x\\..\\log.txt"), "made");
}

TEST_P(ContractFiles, StatusesAreWindows) {
  EXPECT_EQ(files.replace("C:\\t\\f", "x"), ERROR_SUCCESS);
  std::string bytes;
  EXPECT_EQ(files.read("C:\\t\\none", bytes), ERROR_FILE_NOT_FOUND);
  for (const char* path : {"C:\\none\\f", "C:\\t\\f\\g", "Q:\\f"}) {
    EXPECT_EQ(files.read(path, bytes), ERROR_PATH_NOT_FOUND) << path;
    EXPECT_EQ(files.replace(path, "x"), ERROR_PATH_NOT_FOUND) << path;
  }
  for (const char* path : {"C:\\t", "C:\\", "C:\\t\\"}) {
    EXPECT_EQ(files.read(path, bytes), ERROR_ACCESS_DENIED) << path;
    EXPECT_EQ(files.replace(path, "x"), ERROR_ACCESS_DENIED) << path;
    EXPECT_EQ(files.append(path, "x"), ERROR_ACCESS_DENIED) << path;
    EXPECT_EQ(files.remove(path), ERROR_ACCESS_DENIED) << path;
  }
  EXPECT_EQ(files.read("C:\\t\\f\\", bytes), ERROR_INVALID_NAME);
  EXPECT_EQ(files.replace("C:\\t\\new\\", "x"), ERROR_INVALID_NAME);
}

TEST_P(ContractFiles, NothingLeadsOutOfTheDrives) {
  std::string bytes;
  for (const char* path : {"C:\\..\\..\\etc\\passwd", "C:\\t.\\..\\..\\x", "/etc/passwd", "t\\f",
                           "C:f", "\\\\host\\share\\f", "\\\\?\\C:\\t\\f", "\\\\.\\C:", ""}) {
    EXPECT_EQ(files.read(path, bytes), ERROR_BAD_PATHNAME) << path;
    EXPECT_EQ(files.replace(path, "x"), ERROR_BAD_PATHNAME) << path;
    EXPECT_EQ(files.createFolder(path), ERROR_BAD_PATHNAME) << path;
  }
  for (const char* path : {"C:\\CON", "C:\\t\\NUL.txt", "C:\\t\\com1:", "C:\\t\\a:b", "C:\\t\\a*",
                           "C:\\t\\...", "C:\\t\\\xFF"}) {
    EXPECT_EQ(files.append(path, "x"), ERROR_INVALID_NAME) << path;
    EXPECT_EQ(files.replace(path, "x"), ERROR_INVALID_NAME) << path;
    EXPECT_EQ(files.createFolder(path), ERROR_INVALID_NAME) << path;
  }
  EXPECT_EQ(files.replace("C:\\t\\" + std::string(260, 'x'), "x"), ERROR_FILENAME_EXCED_RANGE);
  EXPECT_EQ(list("C:\\t\\*"), Names{});
}

TEST_P(ContractFiles, AttributesStayWithTheFile) {
  EXPECT_EQ(files.replace("C:\\t\\boot.ini", "old"), ERROR_SUCCESS);
  EXPECT_EQ(attributes("C:\\t\\boot.ini"), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(attributes("C:\\t"), FILE_ATTRIBUTE_DIRECTORY);
  // 0x80 (normal) and the directory bit are nothing that is set.
  EXPECT_EQ(files.setAttributes("C:\\t\\boot.ini", 0x90), ERROR_SUCCESS);
  EXPECT_EQ(attributes("C:\\t\\boot.ini"), 0U);
  EXPECT_EQ(files.setAttributes("C:\\t\\BOOT.INI", 39), ERROR_SUCCESS);
  for (const Status status :
       {files.replace("C:\\t\\boot.ini", "new"), files.append("C:\\t\\boot.ini", "new"),
        files.remove("C:\\t\\boot.ini")}) {
    EXPECT_EQ(status, ERROR_ACCESS_DENIED);
  }
  EXPECT_EQ(files.move("C:\\t\\boot.ini", "C:\\t\\boot.old"), ERROR_SUCCESS);
  EXPECT_EQ(attributes("C:\\t\\boot.old"), 39U);
  EXPECT_EQ(read("C:\\t\\boot.old"), "old");
  EXPECT_EQ(files.setAttributes("C:\\t\\boot.old", FILE_ATTRIBUTE_HIDDEN), ERROR_SUCCESS);
  EXPECT_EQ(files.replace("C:\\t\\boot.old", "new"), ERROR_SUCCESS);
  EXPECT_EQ(attributes("C:\\t\\boot.old"), FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(files.setAttributes("C:\\t\\none", 0), ERROR_FILE_NOT_FOUND);
}

TEST_P(ContractFiles, ACopyHasAttributesAndTimeOfItsSource) {
  EXPECT_EQ(files.replace("C:\\t\\a.txt", "content"), ERROR_SUCCESS);
  EXPECT_EQ(files.setAttributes("C:\\t\\a.txt", 39), ERROR_SUCCESS);
  std::vector<FileEntry> entries;
  EXPECT_EQ(files.list("C:\\t\\a.txt", entries), ERROR_SUCCESS);
  const std::int64_t modified = entries.at(0).modified;
  EXPECT_NEAR(static_cast<double>(modified), static_cast<double>(std::time(nullptr)), 60);
  EXPECT_EQ(files.copy("C:\\t\\A.TXT", "C:\\t\\b.txt", Overwrite::No), ERROR_SUCCESS);
  EXPECT_EQ(files.list("C:\\t\\b.*", entries), ERROR_SUCCESS);
  EXPECT_EQ(entries.at(0).attributes, 39U);
  EXPECT_EQ(entries.at(0).modified, modified);
  EXPECT_EQ(entries.at(0).size, 7U);

  EXPECT_EQ(files.copy("C:\\t\\a.txt", "C:\\t\\b.txt", Overwrite::No), ERROR_FILE_EXISTS);
  EXPECT_EQ(files.copy("C:\\t\\a.txt", "C:\\t\\b.txt", Overwrite::Yes), ERROR_ACCESS_DENIED);
  EXPECT_EQ(files.copy("C:\\t\\a.txt", "C:\\t", Overwrite::Yes), ERROR_ACCESS_DENIED);
  EXPECT_EQ(files.copy("C:\\t\\none", "C:\\t\\c", Overwrite::Yes), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(files.copy("C:\\t\\a.txt", "C:\\t\\A.TXT", Overwrite::Yes), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(files.setAttributes("C:\\t\\b.txt", 0), ERROR_SUCCESS);
  EXPECT_EQ(files.replace("C:\\t\\b.txt", "other"), ERROR_SUCCESS);
  EXPECT_EQ(files.copy("C:\\t\\a.txt", "C:\\t\\b.txt", Overwrite::Yes), ERROR_SUCCESS);
  EXPECT_EQ(read("C:\\t\\b.txt"), "content");
}

TEST_P(ContractFiles, MovesAndRemoves) {
  EXPECT_EQ(files.replace("C:\\t\\a", "1"), ERROR_SUCCESS);
  EXPECT_EQ(files.replace("C:\\t\\b", "2"), ERROR_SUCCESS);
  EXPECT_EQ(files.createFolder("C:\\t\\d\\e"), ERROR_SUCCESS);
  EXPECT_EQ(files.move("C:\\t\\a", "C:\\t\\B"), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(files.move("C:\\t\\none", "C:\\t\\c"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(files.move("C:\\t\\a", "C:\\none\\a"), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(files.move("C:\\t\\d", "C:\\t\\d\\e\\f"), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(files.move("C:\\t\\a", "C:\\t\\A"), ERROR_SUCCESS);
  EXPECT_EQ(files.move("C:\\t\\d", "C:\\t\\moved"), ERROR_SUCCESS);
  EXPECT_EQ(list("C:\\t\\*"), (Names{"A", "b", "moved"}));
  EXPECT_EQ(files.move("C:\\t\\b", "C:\\t\\moved\\e\\b"), ERROR_SUCCESS);
  EXPECT_EQ(files.remove("C:\\t\\MOVED\\E\\B"), ERROR_SUCCESS);
  EXPECT_EQ(files.remove("C:\\t\\moved\\e\\b"), ERROR_FILE_NOT_FOUND);
  EXPECT_TRUE(files.exists("C:\\t\\moved\\e\\"));
}

TEST_P(ContractFiles, FoldersComeWithTheirParentsAndGoEmpty) {
  EXPECT_EQ(files.createFolder("C:\\t\\x\\y\\z"), ERROR_SUCCESS);
  EXPECT_EQ(files.createFolder("C:\\T\\X\\Y"), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(files.replace("C:\\t\\x\\f", ""), ERROR_SUCCESS);
  EXPECT_EQ(files.createFolder("C:\\t\\x\\f"), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(files.createFolder("C:\\t\\x\\f\\g"), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(files.removeFolder("C:\\t\\x"), ERROR_DIR_NOT_EMPTY);
  EXPECT_EQ(files.removeFolder("C:\\t\\x\\f"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(files.removeFolder("C:\\t\\none"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(files.removeFolder("C:\\"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(files.removeFolder("C:\\t\\x\\y\\Z"), ERROR_SUCCESS);
  EXPECT_EQ(list("C:\\t\\x\\*"), (Names{"f", "y"}));
}

TEST_P(ContractFiles, ListsMatchAsOnWindowsAndComeSorted) {
  for (const char* name : {"b.HTM", "Ärger.txt", "a.html", "readme", "C.htm", "äpfel.txt"}) {
    EXPECT_EQ(files.replace(std::string("C:\\t\\") + name, "x"), ERROR_SUCCESS);
  }
  EXPECT_EQ(list("C:\\T\\*.*"),
            (Names{"a.html", "b.HTM", "C.htm", "readme", "äpfel.txt", "Ärger.txt"}));
  EXPECT_EQ(list("C:\\t\\*.htm"), (Names{"a.html", "b.HTM", "C.htm"}));
  EXPECT_EQ(list("C:\\t\\ä*"), (Names{"äpfel.txt", "Ärger.txt"}));
  EXPECT_EQ(list("C:\\t\\*."), Names{"readme"});
  EXPECT_EQ(list("C:\\t\\README"), Names{"readme"});
  EXPECT_EQ(list("C:\\t\\*.zip"), Names{});
  std::vector<FileEntry> entries;
  EXPECT_EQ(files.list("C:\\none\\*", entries), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(files.list("C:\\t\\readme\\*", entries), ERROR_PATH_NOT_FOUND);
}

TEST_P(ContractFiles, ShortPathsLeadToTheSameFile) {
  const std::string path = "C:\\t\\Long Folder Name\\page one.html";
  EXPECT_EQ(files.createFolder("C:\\t\\Long Folder Name"), ERROR_SUCCESS);
  EXPECT_EQ(files.createFolder("C:\\t\\Long Folder Other"), ERROR_SUCCESS);
  EXPECT_EQ(files.replace(path, "first"), ERROR_SUCCESS);
  std::string shortened;
  EXPECT_EQ(files.shortPath(path, shortened), ERROR_SUCCESS);
  EXPECT_EQ(shortened, "C:\\t\\LONGFO~1\\PAGEON~1.HTM");
  EXPECT_EQ(read(shortened), "first");
  std::string other;
  EXPECT_EQ(files.shortPath("C:\\t\\long folder other\\", other), ERROR_SUCCESS);
  EXPECT_EQ(files.replace(other + "x", "second"), ERROR_SUCCESS);
  // What comes later does not change where it leads.
  EXPECT_EQ(files.createFolder("C:\\t\\Long Folder Oops"), ERROR_SUCCESS);
  EXPECT_EQ(read(other + "x"), "second");
  EXPECT_EQ(files.shortPath("C:\\t\\none", shortened), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(files.shortPath("C:\\none\\x", shortened), ERROR_PATH_NOT_FOUND);
}

}  // namespace
}  // namespace korvex::platform
