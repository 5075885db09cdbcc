// Finding a server by its lock, held here by a process that plays one.
#include "platform/wine/wine_server.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <array>
#include <fstream>

#include "support/child_process.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

class WineServerTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "korvex-wine-XXXXXX").string();
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    root_ = name;
    for (const fs::path& folder : {prefix_(), temporary_()}) fs::create_directory(folder);
    struct stat facts {};
    ASSERT_EQ(::stat(prefix_().c_str(), &facts), 0);
    server_ = fmt::format("server-{:x}-{:x}", facts.st_dev, facts.st_ino);
    upstream_ = fmt::format(".wine-{}", ::getuid());
  }
  void TearDown() override { fs::remove_all(root_); }

  fs::path prefix_() const { return root_ / "prefix"; }
  fs::path temporary_() const { return root_ / "tmp"; }
  WineServer server() const { return WineServer(prefix_(), temporary_()); }
  // Makes the server's folder and lock file below the temporary folder.
  fs::path makeLock(const fs::path& parent, mode_t mode = 0700) const {
    const fs::path folder = temporary_() / parent / server_;
    fs::create_directories(folder);
    ::chmod(folder.c_str(), 0700);
    ::chmod(folder.parent_path().c_str(), mode);
    std::ofstream(folder / "lock").flush();
    return folder / "lock";
  }
  void nameFolder(const std::string& name) const {
    std::ofstream(prefix_() / "wineserver", std::ios::binary) << name;
  }
  void makeOld() const {
    std::ofstream(prefix_() / "system.reg") << "WINE REGISTRY Version 2\n";
    const timespec times[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
    ::utimensat(AT_FDCWD, (prefix_() / "system.reg").c_str(), times, 0);
  }

  fs::path root_;
  std::string server_;
  std::string upstream_;
};

struct flock wholeLock() {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_len = 1;
  return lock;
}

// A process that holds the lock as a server does, until it is killed.
class PlayedServer {
 public:
  explicit PlayedServer(const fs::path& lockFile)
      : child_([&] {
          const int file = ::open(lockFile.c_str(), O_RDWR);
          struct flock lock = wholeLock();
          return ::fcntl(file, F_SETLK, &lock) == 0 ? ::pause() : 1;
        }) {
    const FileDescriptor file(::open(lockFile.c_str(), O_RDONLY));
    struct flock lock {};
    for (int i = 0; i < 1000 && lock.l_pid == 0; ++i) {
      ::usleep(1000);
      lock = wholeLock();
      ::fcntl(file.get(), F_GETLK, &lock);
    }
    EXPECT_NE(lock.l_type, F_UNLCK);
  }
  void kill() { child_.kill(); }

 private:
  test::ChildProcess child_;
};

TEST_F(WineServerTest, IsSeenInBothPlacesAndOnlyWhileItRuns) {
  nameFolder("wine-Ab12Cd");
  for (const std::string& parent : {upstream_, std::string("wine-Ab12Cd")}) {
    SCOPED_TRACE(parent);
    const fs::path lock = makeLock(parent);
    EXPECT_FALSE(server().process());
    PlayedServer played(lock);
    EXPECT_TRUE(server().process());
    FileDescriptor hold;
    EXPECT_EQ(server().keepAway(hold), ERROR_BUSY);
    EXPECT_FALSE(hold);
    EXPECT_TRUE(server().process());
    played.kill();
    EXPECT_FALSE(server().process());
  }
}

// What others could have put there would let them stop or mislead us.
TEST_F(WineServerTest, BelievesNoFolderThatIsNotTheOwnersAlone) {
  const fs::path elsewhere = root_ / "elsewhere" / server_;
  fs::create_directories(elsewhere);
  fs::permissions(root_ / "elsewhere", fs::perms::owner_all);
  fs::permissions(elsewhere, fs::perms::owner_all);
  std::ofstream(elsewhere / "lock").flush();
  PlayedServer outside(elsewhere / "lock");
  for (const std::string name :
       {"../elsewhere", "..", ".", "", "/", "x/../../elsewhere", "link", "missing"}) {
    std::error_code ignored;
    fs::create_directory_symlink(root_ / "elsewhere", temporary_() / "link", ignored);
    nameFolder(name);
    EXPECT_FALSE(server().process()) << name;
  }
  fs::remove(prefix_() / "wineserver");
  fs::create_directory_symlink(root_ / "elsewhere", temporary_() / upstream_);
  EXPECT_FALSE(server().process());
  fs::remove(temporary_() / upstream_);
  PlayedServer open(makeLock(upstream_, 0755));
  EXPECT_FALSE(server().process());
  ::chmod((temporary_() / upstream_).c_str(), 0700);
  EXPECT_TRUE(server().process());
}

TEST_F(WineServerTest, KeepAwayHoldsTheLockUntilItIsClosed) {
  FileDescriptor hold;
  EXPECT_EQ(server().keepAway(hold), ERROR_SUCCESS);
  EXPECT_FALSE(hold);  // nothing to hold, and nothing made
  EXPECT_TRUE(fs::is_empty(temporary_()));
  const fs::path lock = makeLock(upstream_);
  ASSERT_EQ(server().keepAway(hold), ERROR_SUCCESS);
  const auto couldStart = [&] {
    test::ChildProcess child([&] {
      struct flock wanted = wholeLock();
      const int file = ::open(lock.c_str(), O_RDWR);
      if (::fcntl(file, F_SETLK, &wanted) == 0) return 0;
      // Who asks must find this process, and none that stands for every process.
      ::fcntl(file, F_GETLK, &wanted);
      return wanted.l_pid == ::getppid() ? 1 : 2;
    });
    return child.wait();
  };
  EXPECT_EQ(couldStart(), 1);
  hold.reset();
  EXPECT_EQ(couldStart(), 0);
}

TEST_F(WineServerTest, MayRunUnseenWhereFilesAreYoungAndNoLockIsFound) {
  makeOld();
  EXPECT_FALSE(server().mayRunUnseen());
  std::ofstream(prefix_() / "user.reg") << "WINE REGISTRY Version 2\n";
  EXPECT_TRUE(server().mayRunUnseen());
  makeLock(upstream_);
  EXPECT_FALSE(server().mayRunUnseen());
}

TEST_F(WineServerTest, MayRunUnseenWhereAProgramOfWineUsesThePrefix) {
  makeOld();
  fs::create_directory_symlink(prefix_(), root_ / "link");
  fs::create_directory(root_ / "home");
  fs::create_directory_symlink(prefix_(), root_ / "home/.wine");
  struct Case {
    const char* program;
    std::string variable;
    bool seen;
  };
  const std::vector<Case> cases{
      {"wineserver64", "WINEPREFIX=" + (root_ / "link").string(), true},
      {"wine64-preloader", "HOME=" + (root_ / "home").string(), true},
      {"wineserver64", "WINEPREFIX=" + temporary_().string(), false},
      {"shell", "WINEPREFIX=" + prefix_().string(), false},
  };
  for (const Case& one : cases) {
    const std::string program = (root_ / one.program).string();
    fs::copy_file("/bin/sleep", program, fs::copy_options::overwrite_existing);
    std::array<int, 2> started{};
    ASSERT_EQ(::pipe2(started.data(), O_CLOEXEC), 0);
    test::ChildProcess child([&] {
      std::string variable = one.variable;
      std::string seconds = "60";
      std::string name = one.program;
      char* arguments[] = {name.data(), seconds.data(), nullptr};
      char* variables[] = {variable.data(), nullptr};
      return ::execve(program.c_str(), arguments, variables);
    });
    ::close(started[1]);
    char byte = 0;
    EXPECT_EQ(::read(started[0], &byte, 1), 0);  // closed by the start of the program
    ::close(started[0]);
    EXPECT_EQ(server().mayRunUnseen(), one.seen) << one.program << " " << one.variable;
  }
}

}  // namespace
}  // namespace korvex::platform
