// Finding installed Windows on disks of many shapes, and refusing what must not be written.
#include "platform/windows_folder/installation.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/windows_folder/windows_machine.h"
#include "support/hive_builder.h"
#include "support/temporary_folder.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

constexpr const char* kVersion = "Microsoft\\Windows NT\\CurrentVersion";
const std::string kUserA = std::string(kVersion) + "\\ProfileList\\S-1-5-21-1-2-3-1000";
const std::string kUserB = std::string(kVersion) + "\\ProfileList\\S-1-5-21-1-2-3-1001";

class InstallationTest : public testing::Test {
 protected:
  // A Windows folder with its hives, in whatever case its name has.
  void install(const std::string& windows, const std::string& systemRoot,
               std::vector<test::HiveText> more = {}) {
    const fs::path config = drive() / windows / "System32" / "CONFIG";
    test::writeHive(config / "SYSTEM", {{"Select", "", ""}, {"ControlSet001", "", ""}});
    more.push_back({kVersion, "SystemRoot", systemRoot});
    more.push_back({kVersion, "CurrentVersion", "4.0"});
    test::writeHive(config / "software", more);
  }
  void addProfile(const std::string& folder) {
    test::writeHive(drive() / folder / "ntuser.dat", {{"Software", "", ""}});
  }
  // The hive's own time of its last change, in seconds since 1601.
  void setTime(const fs::path& hive, std::uint64_t seconds) {
    const std::uint64_t ticks = seconds * 10'000'000;
    std::fstream file(hive, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(12);
    file.write(reinterpret_cast<const char*>(&ticks), sizeof ticks);
  }
  const fs::path& drive() const { return folder_.path(); }

  Installation found;
  std::string message;

 private:
  test::TemporaryFolder folder_;
};

TEST_F(InstallationTest, IsFoundByItsDriveOrByItsFolderWithUsersByTheirLastUse) {
  install("winnt", "D:\\WINNT",
          {{kUserA, "ProfileImagePath", "%SystemRoot%\\Profiles\\anna"},
           {kUserB, "ProfileImagePath", "%SystemDrive%\\Documents and Settings\\Bert"},
           {std::string(kVersion) + "\\ProfileList\\S-1-5-18", "ProfileImagePath", "D:\\winnt"},
           {std::string(kVersion) + "\\ProfileList\\S-1-5-21-9", "ProfileImagePath", "E:\\away"}});
  addProfile("winnt/Profiles/anna");
  addProfile("Documents and Settings/Bert");
  setTime(drive() / "winnt/Profiles/anna/ntuser.dat", 12'600'000'000);
  setTime(drive() / "Documents and Settings/Bert/ntuser.dat", 12'700'000'000);
  for (const fs::path& named : {drive(), drive() / "winnt"}) {
    EXPECT_EQ(FolderKind::NtFamily, kindOfWindowsFolder(named));
    ASSERT_EQ(ERROR_SUCCESS, findInstallation(named, found, message)) << message;
    EXPECT_EQ('D', found.letter);
    EXPECT_EQ("D:\\WINNT", found.windowsFolder);
    EXPECT_TRUE(fs::equivalent(drive(), found.drive));
    ASSERT_EQ(2u, found.users.size());
    EXPECT_EQ("Bert", found.users[0].name);
    EXPECT_EQ("anna", found.users[1].name);
    EXPECT_EQ("D:\\WINNT\\Profiles\\anna", found.users[1].profile);
    EXPECT_NE(std::string::npos, found.evidence.find("E:\\away")) << found.evidence;
  }
}

TEST_F(InstallationTest, OfSeveralTheOneThatSaysSoItselfIsTaken) {
  install("WINDOWS", "C:\\WINDOWS", {{kUserA, "ProfileImagePath", "C:\\WINDOWS\\Profiles\\a"}});
  install("OLD", "C:\\WINNT");
  ASSERT_EQ(ERROR_SUCCESS, findInstallation(drive(), found, message)) << message;
  EXPECT_EQ("WINDOWS", found.windows.filename());
  install("WINNT", "C:\\WINNT");
  EXPECT_EQ(ERROR_ALREADY_EXISTS, findInstallation(drive(), found, message));
  EXPECT_NE(std::string::npos, message.find("WINNT")) << message;
  EXPECT_EQ(ERROR_SUCCESS, findInstallation(drive() / "WINNT", found, message)) << message;
  EXPECT_EQ("WINNT", found.windows.filename());
}

TEST_F(InstallationTest, WhatIsMissingOrAnotherThingIsTold) {
  EXPECT_EQ(FolderKind::Unknown, kindOfWindowsFolder(drive()));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, findInstallation(drive(), found, message));
  install("WINNT", "C:\\WINNT");
  const auto nobody = openWindowsMachine(drive(), OpenMode::Read, "");
  EXPECT_EQ(nullptr, nobody.machine);
  EXPECT_NE(std::string::npos, nobody.message.find("NTUSER.DAT")) << nobody.message;
  // A hive under another's name.
  const fs::path config = drive() / "WINNT/System32/CONFIG";
  fs::copy_file(config / "SYSTEM", config / "software", fs::copy_options::overwrite_existing);
  EXPECT_EQ(ERROR_NOT_REGISTRY_FILE, findInstallation(drive(), found, message));
  EXPECT_NE(std::string::npos, message.find("software")) << message;
  // Links are not followed.
  fs::rename(drive() / "WINNT", drive() / "elsewhere");
  fs::create_directory_symlink("elsewhere", drive() / "WINNT");
  fs::remove_all(drive() / "elsewhere");
  EXPECT_EQ(FolderKind::Unknown, kindOfWindowsFolder(drive()));
}

TEST_F(InstallationTest, Windows9xIsRecognisedAndRefusedWithWhatToDo) {
  fs::create_directories(drive() / "Windows");
  std::ofstream(drive() / "Windows" / "SYSTEM.DAT") << "CREG and so on";
  EXPECT_EQ(FolderKind::Windows9x, kindOfWindowsFolder(drive()));
  const auto opened = openWindowsMachine(drive(), OpenMode::Read, "");
  EXPECT_EQ(ERROR_NOT_SUPPORTED, opened.status);
  EXPECT_NE(std::string::npos, opened.message.find("regedit")) << opened.message;
}

TEST_F(InstallationTest, UsersAreChosenByNameAndHivesThatMustStayAsTheyAreAreOnlyRead) {
  install("WINNT", "C:\\WINNT",
          {{kUserA, "ProfileImagePath", "C:\\Users\\Anna"},
           {kUserB, "ProfileImagePath", "C:\\Users\\Bert"}});
  addProfile("Users/Anna");
  addProfile("Users/Bert");
  const auto bert = openWindowsMachine(drive(), OpenMode::ReadWrite, "bert");
  ASSERT_NE(nullptr, bert.machine) << bert.message;
  EXPECT_EQ("Bert", bert.machine->describe().user);
  const auto nobody = openWindowsMachine(drive(), OpenMode::Read, "carol");
  EXPECT_EQ(nullptr, nobody.machine);
  EXPECT_NE(std::string::npos, nobody.message.find("Anna")) << nobody.message;

  // The second sequence number behind: Windows was not shut down.
  const fs::path software = drive() / "WINNT/System32/CONFIG/software";
  std::fstream file(software, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(4);
  file.put('\x7F');
  file.close();
  const auto dirty = openWindowsMachine(drive(), OpenMode::ReadWrite, "Anna");
  EXPECT_EQ(nullptr, dirty.machine);
  EXPECT_EQ(ERROR_WRITE_PROTECT, dirty.status);
  EXPECT_NE(std::string::npos, dirty.message.find("software")) << dirty.message;
  const auto read = openWindowsMachine(drive(), OpenMode::Read, "Anna");
  EXPECT_NE(nullptr, read.machine) << read.message;
}

}  // namespace
}  // namespace korvex::platform
