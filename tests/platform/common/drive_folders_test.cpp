// Drive folders on the host: no way out, attributes where Wine and Samba look, odd host names.
#include "platform/common/drive_folders.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <atomic>
#include <thread>

#include "platform/common/drive_fixture.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

class DriveFolders_ : public test::DriveTest {
 protected:
  Names listed(DriveFolders& files, std::string_view pattern) const {
    std::vector<FileEntry> entries;
    files.list(pattern, entries);
    Names names;
    for (const FileEntry& entry : entries) names.push_back(entry.name);
    return names;
  }
};

TEST_F(DriveFolders_, NoLinkIsFollowed) {
  std::ofstream(host / "secret.txt") << "secret";
  put("real.txt", "inside");
  fs::create_symlink("/", onHost("root"));
  fs::create_symlink(host / "secret.txt", onHost("Secret.txt"));
  fs::create_symlink("real.txt", onHost("inside.txt"));
  fs::create_symlink("../secret.txt", onHost("A long link name.txt"));
  DriveFolders files = drives();
  std::string bytes;
  for (const char* path : {"C:\\Secret.txt", "C:\\SECRET.TXT", "C:\\inside.txt",
                           "C:\\root\\etc\\passwd", "C:\\ROOT\\etc"}) {
    EXPECT_EQ(files.read(path, bytes), ERROR_ACCESS_DENIED) << path;
    EXPECT_EQ(files.replace(path, "x"), ERROR_ACCESS_DENIED) << path;
    EXPECT_EQ(files.append(path, "x"), ERROR_ACCESS_DENIED) << path;
    EXPECT_EQ(files.remove(path), ERROR_ACCESS_DENIED) << path;
    EXPECT_EQ(files.move("C:\\real.txt", path), ERROR_ACCESS_DENIED) << path;
    EXPECT_EQ(files.copy("C:\\real.txt", path, Overwrite::Yes), ERROR_ACCESS_DENIED) << path;
  }
  EXPECT_EQ(files.createFolder("C:\\root\\tmp\\korvex-was-here"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(files.read("C:\\ALONGL~1.TXT", bytes), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(listed(files, "C:\\*"), Names{"real.txt"});
  std::ifstream secret(host / "secret.txt");
  std::getline(secret, bytes);
  EXPECT_EQ(bytes, "secret");
}

TEST_F(DriveFolders_, AFolderThatTurnsIntoALinkLeadsNowhere) {
  fs::create_directory(host / "outside");
  std::ofstream(host / "outside" / "f.txt") << "outside";
  put("sub/f.txt", "inside");
  fs::create_symlink(host / "outside", onHost("trap"));
  std::atomic<bool> done = false;
  std::thread swapper([&] {
    while (!done) {
      ::renameat2(AT_FDCWD, onHost("sub").c_str(), AT_FDCWD, onHost("trap").c_str(),
                  RENAME_EXCHANGE);
    }
  });
  DriveFolders files = drives();
  int reached = 0;
  for (int i = 0; i < 5000; ++i) {
    std::string bytes;
    if (files.read("C:\\sub\\f.txt", bytes) != ERROR_SUCCESS) continue;
    ++reached;
    EXPECT_EQ(bytes, "inside");
  }
  done = true;
  swapper.join();
  EXPECT_GT(reached, 0);
  EXPECT_EQ(fs::file_size(host / "outside" / "f.txt"), 7U);
}

TEST_F(DriveFolders_, AFifoIsNeverWaitedFor) {
  ASSERT_EQ(::mkfifo(onHost("WIN.INI").c_str(), 0600), 0);
  DriveFolders files = drives();
  std::string bytes;
  EXPECT_EQ(files.read("C:\\win.ini", bytes), ERROR_ACCESS_DENIED);
  EXPECT_EQ(files.read("C:\\WIN.INI", bytes), ERROR_ACCESS_DENIED);
  EXPECT_EQ(files.append("C:\\WIN.INI", "x"), ERROR_ACCESS_DENIED);
  EXPECT_FALSE(files.exists("C:\\WIN.INI"));
}

TEST_F(DriveFolders_, NamesThatWindowsCannotHoldAreNotListed) {
  for (const char* name : {"good.txt", "a:b", "que?", "trailing.", "blank ", "con.txt", "\xFF.txt",
                           "back\\slash", ".korvex-attributes", "line\nbreak"}) {
    put(name, "x");
  }
  DriveFolders files = drives();
  EXPECT_EQ(listed(files, "C:\\*"), Names{"good.txt"});
  EXPECT_EQ(files.replace("C:\\.korvex-attributes", "x"), ERROR_ACCESS_DENIED);
  // They are not Korvex' to delete either.
  put("folder/que?", "x");
  EXPECT_EQ(files.removeFolder("C:\\folder"), ERROR_DIR_NOT_EMPTY);
}

TEST_F(DriveFolders_, TheExactCaseWinsWhereTwoNamesFoldAlike) {
  put("readme.txt", "lower");
  put("README.TXT", "upper");
  DriveFolders files = drives();
  std::string bytes;
  EXPECT_EQ(files.read("C:\\readme.txt", bytes), ERROR_SUCCESS);
  EXPECT_EQ(bytes, "lower");
  EXPECT_EQ(files.read("C:\\ReadMe.txt", bytes), ERROR_SUCCESS);
  EXPECT_EQ(bytes, "upper");
  EXPECT_EQ(listed(files, "C:\\r*").size(), 2U);
}

std::string extendedAttribute(const fs::path& file) {
  char value[64] = {};
  const ssize_t size = ::getxattr(file.c_str(), "user.DOSATTRIB", value, sizeof value);
  return size < 0 ? "none" : std::string(value, static_cast<std::size_t>(size));
}

TEST_F(DriveFolders_, AttributesAreWineAndSambas) {
  put("boot.ini", "x");
  if (::setxattr(onHost("boot.ini").c_str(), "user.DOSATTRIB", "0x6", 4, 0) != 0) {
    GTEST_SKIP() << "the temporary folder has no extended attributes";
  }
  DriveFolders files = drives();
  std::uint32_t attributes = 0;
  EXPECT_EQ(files.attributes("C:\\boot.ini", attributes), ERROR_SUCCESS);
  EXPECT_EQ(attributes, FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
  // Wine takes read-only from the permissions.
  EXPECT_EQ(files.setAttributes("C:\\boot.ini", 0x27), ERROR_SUCCESS);
  EXPECT_EQ(extendedAttribute(onHost("boot.ini")), "0x27");
  EXPECT_EQ(fs::status(onHost("boot.ini")).permissions() & fs::perms(0222), fs::perms::none);
  EXPECT_EQ(files.setAttributes("C:\\boot.ini", 0), ERROR_SUCCESS);
  EXPECT_EQ(files.attributes("C:\\boot.ini", attributes), ERROR_SUCCESS);
  EXPECT_EQ(attributes, 0U);
  EXPECT_EQ(files.replace("C:\\boot.ini", "y"), ERROR_SUCCESS);
  ASSERT_EQ(::chmod(onHost("boot.ini").c_str(), 0444), 0);
  EXPECT_EQ(files.replace("C:\\boot.ini", "z"), ERROR_ACCESS_DENIED);
}

TEST_F(DriveFolders_, SambasRecordKeepsItsTimes) {
  put("a.txt", "x");
  std::string record("\0\0\4\0\4\0\0\0\x51\0\0\0\x22\0\0\0creation", 24);
  if (::setxattr(onHost("a.txt").c_str(), "user.DOSATTRIB", record.data(), record.size(), 0) != 0) {
    GTEST_SKIP() << "the temporary folder has no extended attributes";
  }
  DriveFolders files = drives();
  std::uint32_t attributes = 0;
  EXPECT_EQ(files.attributes("C:\\a.txt", attributes), ERROR_SUCCESS);
  EXPECT_EQ(attributes, FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(files.setAttributes("C:\\a.txt", FILE_ATTRIBUTE_SYSTEM), ERROR_SUCCESS);
  record[12] = 4;
  EXPECT_EQ(extendedAttribute(onHost("a.txt")), record);
}

TEST_F(DriveFolders_, AttributesLieBesideWhereTheHostHasNone) {
  DriveFolders files = drives({.extendedAttributes = false});
  const auto attributesOf = [&](std::string_view path) {
    std::uint32_t attributes = 0xFFFFFFFF;
    files.attributes(path, attributes);
    return attributes;
  };
  put("sub/a.txt", "x");
  EXPECT_EQ(attributesOf("C:\\sub\\a.txt"), FILE_ATTRIBUTE_ARCHIVE);
  ASSERT_EQ(files.setAttributes("C:\\sub\\a.txt", FILE_ATTRIBUTE_HIDDEN), ERROR_SUCCESS);
  EXPECT_EQ(extendedAttribute(onHost("sub/a.txt")), "none");
  EXPECT_EQ(files.replace("C:\\SUB\\A.TXT", "y"), ERROR_SUCCESS);
  EXPECT_EQ(files.copy("C:\\sub\\a.txt", "C:\\copy.txt", Overwrite::No), ERROR_SUCCESS);
  EXPECT_EQ(files.move("C:\\sub\\a.txt", "C:\\sub\\b.txt"), ERROR_SUCCESS);
  EXPECT_EQ(attributesOf("C:\\copy.txt"), FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(attributesOf("C:\\sub\\b.txt"), FILE_ATTRIBUTE_HIDDEN);
  // A new file is not what an old one of its name was.
  EXPECT_EQ(files.replace("C:\\sub\\a.txt", "new"), ERROR_SUCCESS);
  EXPECT_EQ(attributesOf("C:\\sub\\a.txt"), FILE_ATTRIBUTE_ARCHIVE);
  fs::remove(onHost("sub/b.txt"));
  EXPECT_EQ(files.append("C:\\sub\\b.txt", "new"), ERROR_SUCCESS);
  EXPECT_EQ(attributesOf("C:\\sub\\b.txt"), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(files.remove("C:\\sub\\a.txt"), ERROR_SUCCESS);
  EXPECT_EQ(files.remove("C:\\sub\\b.txt"), ERROR_SUCCESS);
  EXPECT_EQ(files.removeFolder("C:\\sub"), ERROR_SUCCESS);
}

TEST_F(DriveFolders_, AReadOnlyMachineIsLeftAlone) {
  put("a.txt", "x");
  DriveFolders files = drives({.readOnly = true});
  const auto time = fs::last_write_time(onHost(""));
  std::vector<FileEntry> entries;
  EXPECT_EQ(files.list("C:\\*", entries), ERROR_SUCCESS);
  for (const Status status :
       {files.replace("C:\\a.txt", "y"), files.append("C:\\a.txt", "y"), files.remove("C:\\a.txt"),
        files.copy("C:\\a.txt", "C:\\b.txt", Overwrite::No), files.move("C:\\a.txt", "C:\\b.txt"),
        files.createFolder("C:\\d"), files.setAttributes("C:\\a.txt", 1),
        files.removeFolder("C:\\d")}) {
    EXPECT_EQ(status, ERROR_WRITE_PROTECT);
  }
  EXPECT_EQ(hostNames(), Names{"a.txt"});
  EXPECT_EQ(get("a.txt"), "x");
  EXPECT_EQ(fs::last_write_time(onHost("")), time);
}

TEST_F(DriveFolders_, DrivesThatAreNotThereAndMovesBetweenDrives) {
  fs::create_directory(host / "d");
  DriveFolders files({{'C', host / "c"}, {'D', host / "d"}, {'E', host / "gone"}});
  std::uint32_t attributes = 0;
  EXPECT_EQ(files.attributes("Q:\\x", attributes), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(files.attributes("E:\\", attributes), ERROR_NOT_READY);
  EXPECT_EQ(files.attributes("d:\\", attributes), ERROR_SUCCESS);
  put("a.txt", "x");
  EXPECT_EQ(files.move("C:\\a.txt", "D:\\b.txt"), ERROR_SUCCESS);
  EXPECT_FALSE(files.exists("C:\\a.txt"));
  EXPECT_TRUE(files.exists("D:\\B.TXT"));
}

TEST_F(DriveFolders_, LargeFilesGoPieceByPiece) {
  put("old.reg", "old");
  DriveFolders files = drives();
  std::unique_ptr<WholeFileWriter> writer;
  ASSERT_EQ(files.openToReplace("C:\\OLD.REG", writer), ERROR_SUCCESS);
  writer->write("new ");
  writer->write("text");
  EXPECT_EQ(get("old.reg"), "old");
  EXPECT_EQ(writer->commit(), ERROR_SUCCESS);
  FileDescriptor file;
  ASSERT_EQ(files.openToRead("C:\\OLD.REG", file), ERROR_SUCCESS);
  char bytes[16] = {};
  EXPECT_EQ(::read(file.get(), bytes, sizeof bytes), 8);
  EXPECT_STREQ(bytes, "new text");
}

}  // namespace
}  // namespace korvex::platform
