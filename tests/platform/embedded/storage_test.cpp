// registry.db in bad company: damage, read-only places, full disks, foreign files.
#include <sqlite3.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <fstream>
#include <map>
#include <sstream>

#include "platform/contract/registry_access.h"
#include "support/child_process.h"
#include "support/machines.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test::ChildProcess;
using test::Family;
using test::RegistryAccess;
using test::TestMachine;

std::string bytesOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

void overwrite(const fs::path& file, std::size_t at, const std::string& bytes) {
  std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
  stream.seekp(static_cast<std::streamoff>(at));
  stream << bytes;
}

// Content, size and time stamps of everything in a folder.
std::map<std::string, std::string> snapshot(const fs::path& folder) {
  std::map<std::string, std::string> entries;
  const auto note = [&](const fs::path& path) {
    struct stat status = {};
    lstat(path.c_str(), &status);
    const bool file = S_ISREG(status.st_mode);
    entries[path.string()] =
        std::to_string(status.st_mtim.tv_sec) + "." + std::to_string(status.st_mtim.tv_nsec) + "/" +
        std::to_string(status.st_ctim.tv_nsec) + ":" + (file ? bytesOf(path) : "");
  };
  note(folder);
  for (const auto& entry : fs::recursive_directory_iterator(folder)) note(entry.path());
  return entries;
}

// The names of what differs.
test::Names differences(const std::map<std::string, std::string>& before,
                        const std::map<std::string, std::string>& after) {
  test::Names names;
  for (const auto& [name, content] : before) {
    const auto found = after.find(name);
    if (found == after.end() || found->second != content) names.push_back(name);
  }
  for (const auto& [name, content] : after) {
    if (!before.contains(name)) names.push_back(name);
  }
  return names;
}

class EmbeddedStorage : public testing::Test {
 protected:
  void SetUp() override {
    RegistryAccess access(machine.registry());
    for (int i = 0; i < 200; ++i) {
      const std::string path = "SOFTWARE\\Storage\\" + std::to_string(i);
      ASSERT_EQ(access.set(HKEY_LOCAL_MACHINE, path, "v", std::string(200, 'v')), 0);
    }
    machine.close();
  }
  // The value as a machine that is only read tells it.
  std::string readBack(const char* path, const char* name) {
    const auto reader = machine.open(OpenMode::Read);
    return RegistryAccess(reader->registry()).get(HKEY_LOCAL_MACHINE, path, name);
  }

  TestMachine machine{Family::Nt};
  fs::path database = machine.folder() / "registry.db";
};

TEST_F(EmbeddedStorage, ForeignFilesAreToldAndLeftAlone) {
  const std::string good = bytesOf(database);
  std::string otherProgram = good;
  std::string newer = good;
  otherProgram.replace(68, 4, "abcd");
  newer.replace(60, 4, "\0\0\0\2"s);
  const std::pair<std::string, Status> files[] = {
      {"", ERROR_NOT_REGISTRY_FILE},
      {"no database at all", ERROR_NOT_REGISTRY_FILE},
      {std::string(100, 'x'), ERROR_NOT_REGISTRY_FILE},
      {otherProgram, ERROR_NOT_REGISTRY_FILE},
      {newer, ERROR_NOT_REGISTRY_FILE},
      {good.substr(0, good.size() / 2), ERROR_BADDB},
  };
  for (const auto& [content, expected] : files) {
    std::ofstream(database, std::ios::binary | std::ios::trunc) << content;
    const auto before = snapshot(machine.folder());
    for (const OpenMode mode : {OpenMode::Read, OpenMode::ReadWrite}) {
      const auto opened = openEmbeddedMachine(machine.folder(), mode);
      EXPECT_EQ(opened.status, expected) << content.size();
      EXPECT_NE(opened.message.find("registry.db"), std::string::npos) << opened.message;
      EXPECT_EQ(opened.machine, nullptr);
    }
    EXPECT_EQ(differences(before, snapshot(machine.folder())), test::Names{});
  }
  fs::remove(database);
  EXPECT_EQ(openEmbeddedMachine(machine.folder(), OpenMode::Read).status, ERROR_FILE_NOT_FOUND);
  EXPECT_FALSE(looksLikeEmbeddedMachine(machine.folder()));
}

TEST_F(EmbeddedStorage, TornPagesAreStatusesNotCrashes) {
  const std::string good = bytesOf(database);
  int told = 0;
  for (std::size_t page = 0; page < good.size(); page += 8192) {
    overwrite(database, page == 0 ? 100 : page, std::string(3000, '\xA5'));
    auto opened = openEmbeddedMachine(machine.folder(), OpenMode::Read);
    Status status = opened.status;
    if (opened.machine) {
      RegistryAccess access(opened.machine->registry());
      for (int i = 0; i < 200 && status == 0; ++i) {
        status = access.open(HKEY_LOCAL_MACHINE, "SOFTWARE\\Storage\\" + std::to_string(i));
        access.get(HKEY_LOCAL_MACHINE, "SOFTWARE\\Storage\\" + std::to_string(i), "v");
      }
    }
    opened.machine.reset();
    if (status == ERROR_BADDB) ++told;
    std::ofstream(database, std::ios::binary | std::ios::trunc) << good;
  }
  EXPECT_GE(told, 3);
}

TEST_F(EmbeddedStorage, ReadingChangesNothingInAnyState) {
  const auto checkReading = [&](const char* state, const std::string& expected) {
    const auto before = snapshot(machine.folder());
    EXPECT_EQ(readBack("SOFTWARE\\Storage\\7", "state"), expected) << state;
    EXPECT_EQ(differences(before, snapshot(machine.folder())), test::Names{}) << state;
  };
  const auto write = [](Machine& writer, const char* value) {
    RegistryAccess access(writer.registry());
    return access.set(HKEY_LOCAL_MACHINE, "SOFTWARE\\Storage\\7", "state", value);
  };
  checkReading("closed", "status 2");
  EXPECT_FALSE(fs::exists(database.string() + "-wal"));
  {
    const auto writer = machine.open(OpenMode::ReadWrite);
    ASSERT_EQ(write(*writer, "in the log"), ERROR_SUCCESS);
    checkReading("a writer is there", "in the log");
    ASSERT_EQ(write(*writer, "more"), ERROR_SUCCESS);
    checkReading("a writer goes on", "more");
  }
  ChildProcess killed([&] {
    const auto writer = machine.open(OpenMode::ReadWrite);
    if (write(*writer, "killed") != ERROR_SUCCESS) return 1;
    raise(SIGKILL);
    return 2;
  });
  EXPECT_EQ(killed.wait(), -1);
  ASSERT_GT(fs::file_size(database.string() + "-wal"), 0U);
  checkReading("a writer was killed", "killed");
  fs::remove(database.string() + "-shm");
  checkReading("copied without the index", "killed");
  machine.reopen();
  machine.close();
  EXPECT_FALSE(fs::exists(database.string() + "-wal"));
  checkReading("closed again", "killed");
}

TEST_F(EmbeddedStorage, AReaderKeepsItsStateWhileOthersWrite) {
  const auto reader = machine.open(OpenMode::Read);
  RegistryAccess theirs(reader->registry());
  machine.reopen();
  RegistryAccess mine(machine.registry());
  const std::string before = theirs.dump(HKEY_LOCAL_MACHINE, "SOFTWARE");
  for (int i = 0; i < 200; ++i) {  // more than what makes a long log
    const std::string path = "SOFTWARE\\Storage\\" + std::to_string(i);
    ASSERT_EQ(mine.set(HKEY_LOCAL_MACHINE, path, "v", std::string(70000, 'n')), ERROR_SUCCESS);
  }
  machine.close();
  EXPECT_EQ(theirs.dump(HKEY_LOCAL_MACHINE, "SOFTWARE"), before);
  EXPECT_EQ(readBack("SOFTWARE\\Storage\\9", "v").size(), 70000U);
}

TEST_F(EmbeddedStorage, ALogThatReadersCountOnDoesNotStartOver) {
  machine.reopen();
  RegistryAccess mine(machine.registry());
  for (int i = 0; i < 50; ++i) {
    const std::string path = "SOFTWARE\\Storage\\" + std::to_string(i);
    ASSERT_EQ(mine.set(HKEY_LOCAL_MACHINE, path, "v", std::string(9000, 'n')), ERROR_SUCCESS);
  }
  // All of the log is moved, but it stays, as when another connection was reading just then.
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(database.c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "PRAGMA wal_checkpoint(PASSIVE)", nullptr, nullptr, nullptr), 0);
  auto reader = machine.open(OpenMode::Read);
  RegistryAccess theirs(reader->registry());
  const std::string large(9000, 'x');
  EXPECT_EQ(mine.set(HKEY_LOCAL_MACHINE, "SOFTWARE\\Storage\\3", "v", large), ERROR_BUSY);
  for (int i = 0; i < 50; ++i) {
    const std::string path = "SOFTWARE\\Storage\\" + std::to_string(i);
    EXPECT_EQ(theirs.get(HKEY_LOCAL_MACHINE, path, "v"), std::string(9000, 'n')) << i;
  }
  reader.reset();
  EXPECT_EQ(mine.set(HKEY_LOCAL_MACHINE, "SOFTWARE\\Storage\\3", "v", large), ERROR_SUCCESS);
  EXPECT_EQ(readBack("SOFTWARE\\Storage\\3", "v"), large);
  sqlite3_close(other);
}

TEST_F(EmbeddedStorage, OnAReadOnlyFileSystem) {
  ChildProcess child([&] {
    const std::string path = machine.folder().string();
    if (unshare(CLONE_NEWNS) != 0 ||
        mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount(path.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) != 0 ||
        mount(nullptr, path.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) != 0) {
      return 77;
    }
    if (readBack("SOFTWARE\\Storage\\7", "v").size() != 200) return 1;
    const auto opened = openEmbeddedMachine(machine.folder(), OpenMode::ReadWrite);
    if (opened.status != ERROR_WRITE_PROTECT) return 2;
    return opened.message.find("reading only") == std::string::npos ? 3 : 0;
  });
  const int result = child.wait();
  if (result == 77) GTEST_SKIP() << "this process may not mount";
  EXPECT_EQ(result, 0);
}

TEST_F(EmbeddedStorage, AFullDiskRollsTheWholeChangeBack) {
  ChildProcess child([&] {
    signal(SIGXFSZ, SIG_IGN);
    const auto writer = machine.open(OpenMode::ReadWrite);
    Registry& registry = writer->registry();
    RegistryAccess access(registry);
    const std::string before = access.dump(HKEY_LOCAL_MACHINE, "SOFTWARE");
    const rlimit limit = {2 << 20, RLIM_INFINITY};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return 1;
    RegistryChange change(registry);
    Status status = ERROR_SUCCESS;
    HKEY key = 0;
    std::uint32_t disposition = 0;
    registry.RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\New", KEY_ALL_ACCESS, key, disposition);
    for (int i = 0; i < 1000 && status == ERROR_SUCCESS; ++i) {
      const std::string path = "SOFTWARE\\Storage\\" + std::to_string(i);
      status = access.set(HKEY_LOCAL_MACHINE, path, "large", std::string(60000, 'x'));
    }
    if (status != ERROR_DISK_FULL) return 2;
    if (change.commit() != ERROR_DISK_FULL) return 3;
    if (access.dump(HKEY_LOCAL_MACHINE, "SOFTWARE") != before) return 4;
    if (registry.RegSetValueExA(key, "v", REG_SZ, "", 1) != ERROR_KEY_DELETED) return 5;
    // A single write that finds no room is told too, and what fits goes on.
    const std::string large(3 << 20, 'x');
    const char* const place = "SOFTWARE\\Storage\\1";
    if (access.set(HKEY_LOCAL_MACHINE, place, "large", large) != ERROR_DISK_FULL) return 6;
    if (access.dump(HKEY_LOCAL_MACHINE, "SOFTWARE") != before) return 7;
    return access.set(HKEY_LOCAL_MACHINE, place, "small", "fits") == ERROR_SUCCESS ? 0 : 8;
  });
  EXPECT_EQ(child.wait(), 0);
  EXPECT_EQ(readBack("SOFTWARE\\Storage\\1", "small"), "fits");
  EXPECT_EQ(readBack("SOFTWARE\\Storage\\1", "large"), "status 2");
}

TEST_F(EmbeddedStorage, ABusyMachineSaysSo) {
  const auto first = machine.open(OpenMode::ReadWrite);
  const auto second = machine.open(OpenMode::ReadWrite);
  const RegistryChange change(first->registry());
  RegistryAccess access(second->registry());
  EXPECT_EQ(second->registry().beginChange(), ERROR_BUSY);
  // Reading goes on, and so does opening what is there.
  EXPECT_EQ(access.create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Storage\\7"), ERROR_SUCCESS);
  EXPECT_EQ(access.get(HKEY_LOCAL_MACHINE, "SOFTWARE\\Storage\\7", "v").size(), 200U);
}

}  // namespace
}  // namespace korvex::platform
