// Keys saved by the registry editor, and loaded again.
#include "backup/registry_backer.h"

#include "backup/backup_fixture.h"
#include "platform/common/reg_export.h"

namespace korvex::backup {
namespace {

using namespace platform;
using test::Family;
using Names = std::vector<std::string>;

constexpr const char* kKey = "Software\\Test\\Inner";

TEST(RegistryBacker, TheEditorIsGivenShortNamesInACommandFileAndLeavesTheFileAsItWritesIt) {
  for (const Family family : {Family::Nt, Family::NineX}) {
    BackupRun run(family);
    run.view().put("HKCU\\Software\\Test\\Inner", "Percent", "\"100% sure\"");
    run.write("C:\\Program Files\\My Saves\\old.txt", "");
    const std::string file = "C:\\Program Files\\My Saves\\my settings.v2.reg";

    ASSERT_TRUE(run.backer.P_rbBackupRegistryKey(HKEY_CURRENT_USER, kKey, file))
        << run.backer.lastMessage();

    ASSERT_EQ(1U, run.processes.commands.size());
    const bool nt = family == Family::Nt;
    EXPECT_EQ(nt ? "\"C:\\WINNT\\Temp\\kvxrb.cmd\"" : "\"C:\\WINDOWS\\Temp\\kvxrb.bat\"",
              run.processes.commands[0]);
    EXPECT_EQ(
        "@echo off\r\nregedit /e \"C:\\PROGRA~1\\MYSAVE~1\\mysettin.tmp\" "
        "\"HKEY_CURRENT_USER\\Software\\Test\\Inner\"\r\n",
        run.processes.texts[0]);
    EXPECT_EQ(Names{}, run.names(nt ? "C:\\WINNT\\Temp" : "C:\\WINDOWS\\Temp"));
    EXPECT_EQ((Names{"my settings.v2.reg", "old.txt"}), run.names("C:\\Program Files\\My Saves"));

    int exitCode = 0;
    std::string message;
    run.machine->processes().run(
        "regedit /e C:\\direct.reg HKEY_CURRENT_USER\\Software\\Test\\Inner", exitCode, message);
    EXPECT_EQ(run.read("C:\\direct.reg"), run.read(file));
  }
}

TEST(RegistryBacker, WhatCannotBeSavedWholeLeavesNoFileAndTheOldOneAsItWas) {
  BackupRun run(Family::NineX);
  run.view().put("HKCU\\Software\\Test", "Name", "\"x\"");
  run.write("C:\\Saved\\old.reg", "old");
  const auto fails = [&](HKEY root, const char* key, const char* file, Status status) {
    EXPECT_FALSE(run.backer.P_rbBackupRegistryKey(root, key, file)) << key;
    EXPECT_EQ(status, run.backer.lastStatus()) << run.backer.lastMessage();
    EXPECT_NE("", run.backer.lastMessage());
  };
  fails(HKEY_CURRENT_USER, "Software\\Missing", "C:\\Saved\\old.reg", ERROR_FILE_NOT_FOUND);
  fails(HKEY_USERS, ".DEFAULT", "C:\\Saved\\old.reg", ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Names{}, run.processes.commands);
  fails(HKEY_CURRENT_USER, "Software\\Test", "C:\\No such folder\\new.reg", ERROR_GEN_FAILURE);
  fails(HKEY_CURRENT_USER, "Software\\Test", "Q:\\new.reg", ERROR_GEN_FAILURE);
  run.processes.refuse = true;
  fails(HKEY_CURRENT_USER, "Software\\Test", "C:\\Saved\\old.reg", ERROR_GEN_FAILURE);
  EXPECT_EQ("old", run.read("C:\\Saved\\old.reg"));
  EXPECT_EQ(Names{"old.reg"}, run.names("C:\\Saved"));
}

// On NT 4 the editor writes 8-bit text: what that cannot hold would be missing without a word.
TEST(RegistryBacker, WhatTheEditorLeavesOutFailsThatKeyAndNoOtherOfTheBatch) {
  BackupRun run("windows-nt4");
  run.view().put("HKCU\\Software\\TestA", "Name", "\"x\"");
  run.view().put("HKCU\\Software\\TestB", "\xE6\x97\xA5", "\"x\"");
  run.view().put("HKCU\\Software\\TestC", "Name", "\"y\"");
  run.write("C:\\Saved\\b.reg", "old");
  const std::vector<KeyBackup> batch{{HKEY_CURRENT_USER, "Software\\TestA", "C:\\Saved\\a.reg"},
                                     {HKEY_CURRENT_USER, "Software\\TestB", "C:\\Saved\\b.reg"},
                                     {HKEY_CURRENT_USER, "Software\\Gone", "C:\\Saved\\g.reg"},
                                     {HKEY_CURRENT_USER, "Software\\TestC", "C:\\Saved\\c.reg"}};

  const auto results = run.backer.backupKeys(batch);

  ASSERT_EQ(4U, results.size());
  EXPECT_TRUE(results[0].saved && results[3].saved);
  EXPECT_FALSE(results[1].saved || results[2].saved);
  EXPECT_NE(std::string::npos, results[1].message.find("TestB")) << results[1].message;
  EXPECT_EQ((Names{"a.reg", "b.reg", "c.reg"}), run.names("C:\\Saved"));
  EXPECT_EQ("old", run.read("C:\\Saved\\b.reg"));
  EXPECT_NE(std::string::npos, run.read("C:\\Saved\\c.reg").find("\"Name\"=\"y\""));
}

TEST(RegistryBacker, FilesOfOneBatchWithTheSameStemDoNotMeet) {
  BackupRun run(Family::Nt);
  std::vector<KeyBackup> batch;
  for (const char* name : {".txt", ".text", ".", "long name one", "long name two"}) {
    run.view().put(std::string("HKCR\\") + name, "", '"' + std::string(name) + '"');
    batch.push_back({HKEY_CLASSES_ROOT, name, std::string("C:\\") + name + ".reg"});
  }
  std::size_t saved = 0;
  for (const KeyBackupResult& result : run.backer.backupKeys(batch)) saved += result.saved ? 1 : 0;
  EXPECT_EQ(5U, saved);
  EXPECT_EQ(1U, run.processes.commands.size());
  for (const KeyBackup& one : batch) {
    const std::string bytes = run.read(one.file);
    std::string plain;
    for (const char c : bytes) {
      if (c != '\0') plain += c;
    }
    EXPECT_NE(std::string::npos, plain.find("@=\"" + one.subKey + '"')) << one.file;
  }
}

TEST(RegistryBacker, AMappedDriveIsItsNetworkFolder) {
  BackupRun run(Family::Nt);
  run.view().put("HKCU\\Network\\h", "RemotePath", "\"\\\\server\\home\"");
  run.view().put("HKCU\\Network\\Persistent\\K", "RemotePath", "\"\\\\server\\kept\"");
  run.view().put("HKCU\\Software\\Test", "Name", "\"x\"");

  EXPECT_EQ("\\\\server\\home\\a b.reg", run.backer.P_rbGetShortName("H:\\a b.reg"));
  EXPECT_EQ("\\\\server\\kept", run.backer.P_rbGetShortName("K:"));
  EXPECT_EQ("C:\\PROGRA~1", run.backer.P_rbGetShortName("C:\\Program Files"));

  EXPECT_FALSE(
      run.backer.P_rbBackupRegistryKey(HKEY_CURRENT_USER, "Software\\Test", "K:\\saves\\a b.reg"));
  EXPECT_NE(std::string::npos,
            run.processes.texts.at(0).find("regedit /e \"\\\\server\\kept\\saves\\ab.tmp\" "));
}

TEST(RegistryBacker, RestoringAddsWhatTheFileHasAndTellsWhatItCouldNot) {
  BackupRun run(Family::Nt);
  run.view().put("HKCU\\Software\\Test", "Name", "\"saved\"");
  run.write("C:\\Program Files\\Saves\\x.txt", "");
  const std::string file = "C:\\Program Files\\Saves\\test key.reg";
  ASSERT_TRUE(run.backer.P_rbBackupRegistryKey(HKEY_CURRENT_USER, "Software\\Test", file));
  run.view().put("HKCU\\Software\\Test", "Name", "\"changed\"");
  run.view().put("HKCU\\Software\\Test", "Other", "\"stays\"");

  EXPECT_TRUE(run.backer.P_rbRestoreRegistryKey(file)) << run.backer.lastMessage();

  EXPECT_EQ("Regedit.exe /s C:\\PROGRA~1\\Saves\\TESTKE~1.REG", run.processes.commands.back());
  EXPECT_EQ("\"saved\"", run.view().value("HKCU\\Software\\Test", "Name"));
  EXPECT_EQ("\"stays\"", run.view().value("HKCU\\Software\\Test", "Other"));

  EXPECT_FALSE(run.backer.P_rbRestoreRegistryKey("C:\\missing.reg"));
  run.write("C:\\bad.reg",
            "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Test]\r\n\"Name\"=what\r\n");
  EXPECT_FALSE(run.backer.P_rbRestoreRegistryKey("C:\\bad.reg"));
  EXPECT_NE("", run.backer.lastMessage());
  EXPECT_EQ("before", RegistryBacker::StripNulls(std::string_view("before\0after", 12)));
}

}  // namespace
}  // namespace korvex::backup
