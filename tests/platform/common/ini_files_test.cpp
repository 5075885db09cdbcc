// The profile functions on files: Windows' reading of a value, UTF-16 files, files that fail.
#include "platform/common/ini_files.h"

#include <sys/stat.h>

#include "platform/common/drive_fixture.h"

namespace korvex::platform {
namespace {

// A disk that cannot be read just now.
class UnreadableFolders : public DriveFolders {
 public:
  using DriveFolders::DriveFolders;
  Status read(std::string_view, std::string&) override { return ERROR_GEN_FAILURE; }
};

class IniFiles_ : public test::DriveTest {
 protected:
  DriveFolders files() const { return drives(); }
};

TEST_F(IniFiles_, Utf16FilesStayUtf16) {
  const auto utf16 = [](std::string_view text) { return "\xFF\xFE" + utf8ToUtf16le(text); };
  put("win/app.ini", utf16("[a]\r\nname=日本\r\n"));
  DriveFolders folders = files();
  IniFiles ini(folders, "C:\\WIN", *CodePage::find(1252), SectionGap::None);
  EXPECT_EQ(ini.GetPrivateProfileStringA("a", "name", "", "app.ini"), "日本");
  EXPECT_EQ(ini.WritePrivateProfileStringA("a", "other", "Ω", "app.ini"), ERROR_SUCCESS);
  EXPECT_EQ(get("win/app.ini"), utf16("[a]\r\nname=日本\r\nother=Ω\r\n"));
}

TEST_F(IniFiles_, AFileThatCannotBeReadIsNotWritten) {
  std::filesystem::create_directories(onHost("win"));
  ASSERT_EQ(::mkfifo(onHost("win/WIN.INI").c_str(), 0600), 0);
  DriveFolders folders = files();
  IniFiles ini(folders, "C:\\win", *CodePage::find(1252), SectionGap::None);
  EXPECT_EQ(ini.GetProfileStringA("windows", "load", "none  "), "none");
  EXPECT_EQ(ini.WriteProfileStringA("windows", "load", "x"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ini.WritePrivateProfileStringA("a", "b", "c", "C:\\none\\x.ini"), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(ini.WritePrivateProfileStringA("a", "b", "c", "..\\x.ini"), ERROR_BAD_PATHNAME);
  EXPECT_EQ(ini.WritePrivateProfileStringA("a", "b", "c", "C:\\CON"), ERROR_INVALID_NAME);
}

TEST_F(IniFiles_, AFailedReadIsNotTakenForAnEmptyFile) {
  put("win/win.ini", "[a]\r\nx=1\r\n");
  UnreadableFolders folders({{'C', host / "c"}});
  IniFiles ini(folders, "C:\\win", *CodePage::find(1252), SectionGap::None);
  EXPECT_EQ(ini.WriteProfileStringA("b", "y", "2"), ERROR_GEN_FAILURE);
  EXPECT_EQ(get("win/win.ini"), "[a]\r\nx=1\r\n");
}

TEST_F(IniFiles_, WhatChangesNothingWritesNothing) {
  put("win/win.ini", "[a]\r\nx=1\r\n");
  DriveFolders folders({{'C', host / "c"}}, {.readOnly = true});
  IniFiles ini(folders, "C:\\win", *CodePage::find(1252), SectionGap::None);
  EXPECT_EQ(ini.WriteProfileStringA("a", "x", "1"), ERROR_SUCCESS);
  EXPECT_EQ(ini.WriteProfileStringA("a", "none", std::nullopt), ERROR_SUCCESS);
  EXPECT_EQ(ini.WritePrivateProfileStringA("a", std::nullopt, std::nullopt, "none.ini"),
            ERROR_SUCCESS);
  EXPECT_EQ(ini.WriteProfileStringA("a", "x", "2"), ERROR_WRITE_PROTECT);
}

}  // namespace
}  // namespace korvex::platform
