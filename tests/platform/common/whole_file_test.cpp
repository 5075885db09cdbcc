// Files that are replaced whole: what stands after success, failure and a kill.
#include "platform/common/whole_file.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/common/drive_fixture.h"

namespace korvex::platform {
namespace {

class WholeFile : public test::DriveTest {};

// Runs work in a process of its own and returns its wait status.
template <typename Work>
int inChild(Work work) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work() ? 0 : 1);
  int status = -1;
  ::waitpid(child, &status, 0);
  return status;
}

TEST_F(WholeFile, KeepsModeAndExtendedAttributes) {
  put("a.ini", "old");
  ASSERT_EQ(::chmod(onHost("a.ini").c_str(), 0640), 0);
  const bool extended = ::setxattr(onHost("a.ini").c_str(), "user.note", "hi", 2, 0) == 0;
  ASSERT_EQ(replaceWholeFile(onHost("a.ini"), "new"), ERROR_SUCCESS);
  EXPECT_EQ(get("a.ini"), "new");
  struct stat status {};
  ASSERT_EQ(::stat(onHost("a.ini").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
  if (extended) {
    char value[8] = {};
    EXPECT_EQ(::getxattr(onHost("a.ini").c_str(), "user.note", value, sizeof value), 2);
  }
}

TEST_F(WholeFile, WithoutACommitTheOldFileStandsAlone) {
  put("a.ini", "old");
  {
    WholeFileWriter writer(onHost("a.ini"));
    EXPECT_EQ(writer.write("half of the"), ERROR_SUCCESS);
    EXPECT_EQ(get("a.ini"), "old");
  }
  EXPECT_EQ(hostNames(), (std::vector<std::string>{"a.ini"}));
  EXPECT_EQ(get("a.ini"), "old");
}

TEST_F(WholeFile, AKillLeavesTheOldFileAndAtMostAnOwnOne) {
  put("a.ini", "old");
  const int status = inChild([&] {
    WholeFileWriter writer(onHost("a.ini"));
    writer.write(std::string(100'000, 'x'));
    return ::kill(::getpid(), SIGKILL) == 0;
  });
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(get("a.ini"), "old");
  for (const std::string& name : hostNames()) {
    EXPECT_TRUE(name == "a.ini" || name.starts_with(kOwnFilePrefix)) << name;
  }
}

TEST_F(WholeFile, AFullDiskGives112AndChangesNothing) {
  put("a.ini", "old");
  put("log.txt", "line\n");
  const int status = inChild([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{4096, 4096};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const std::string much(100'000, 'x');
    return replaceWholeFile(onHost("a.ini"), much) == ERROR_DISK_FULL &&
           drives().append("C:\\log.txt", much) == ERROR_DISK_FULL;
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(hostNames(), (std::vector<std::string>{"a.ini", "log.txt"}));
  EXPECT_EQ(get("a.ini"), "old");
  EXPECT_EQ(get("log.txt"), "line\n");
}

TEST_F(WholeFile, TheFirstFailureStays) {
  WholeFileWriter writer(onHost("missing/a.ini"));
  EXPECT_EQ(writer.status(), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(writer.write("x"), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(writer.commit(), ERROR_PATH_NOT_FOUND);
  std::filesystem::create_directory(onHost("folder"));
  EXPECT_EQ(replaceWholeFile(onHost("folder"), "x"), ERROR_ACCESS_DENIED);
}

TEST_F(WholeFile, RefusesAFileThatMayNotBeWritten) {
  put("a.ini", "old");
  ASSERT_EQ(::chmod(onHost("a.ini").c_str(), 0444), 0);
  for (const auto& folder : {host, host / "c"}) ASSERT_EQ(::chmod(folder.c_str(), 0777), 0);
  const int status = inChild([&] {
    if (::geteuid() == 0 && ::setuid(65534) != 0) return false;
    return replaceWholeFile(onHost("a.ini"), "new") == ERROR_ACCESS_DENIED &&
           replaceWholeFile(onHost("b.ini"), "new") == ERROR_SUCCESS;
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(get("a.ini"), "old");
  EXPECT_EQ(get("b.ini"), "new");
}

TEST_F(WholeFile, APersonsLinkKeepsPointingAtTheNewFile) {
  put("real.reg", "old");
  std::filesystem::create_symlink("real.reg", onHost("link.reg"));
  EXPECT_EQ(replaceWholeFile(onHost("link.reg"), "new"), ERROR_SUCCESS);
  EXPECT_TRUE(std::filesystem::is_symlink(onHost("link.reg")));
  EXPECT_EQ(get("real.reg"), "new");
}

}  // namespace
}  // namespace korvex::platform
