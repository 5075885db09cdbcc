// One holder at a time, known by name, gone with its process.
#include "platform/hives/folder_lock.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <thread>

#include "platform/hives/host_calls.h"
#include "support/child_process.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

// With and without a host that can lock folders.
class FolderLockTest : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "korvex-lock-XXXXXX").string();
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    folder_ = name;
    test::hostCalls().noFolderLocks = !GetParam();
  }
  void TearDown() override {
    test::hostCalls() = {};
    fs::remove_all(folder_);
  }

  fs::path folder_;
};

INSTANTIATE_TEST_SUITE_P(, FolderLockTest, testing::Bool());

TEST_P(FolderLockTest, HasOneHolderAndTellsItsName) {
  FolderLock first(folder_);
  FolderLock second(folder_);
  EXPECT_EQ(second.holder(), "");
  EXPECT_EQ(first.take(Wait::No), ERROR_SUCCESS);
  EXPECT_EQ(first.take(Wait::No), ERROR_SUCCESS);
  EXPECT_EQ(second.take(Wait::No), ERROR_BUSY);
  EXPECT_NE(second.holder().find("(process " + std::to_string(::getpid()) + ")"), std::string::npos)
      << second.holder();
  first.release();
  EXPECT_EQ(second.holder(), "");
  EXPECT_EQ(second.take(Wait::No), ERROR_SUCCESS);
  EXPECT_EQ(fs::is_empty(folder_), GetParam());
  EXPECT_EQ(FolderLock(folder_ / "missing").take(Wait::No), ERROR_PATH_NOT_FOUND);
}

TEST_P(FolderLockTest, AKillFreesItForWhoWaits) {
  test::ChildProcess child([&] {
    FolderLock lock(folder_);
    return lock.take(Wait::No) == ERROR_SUCCESS ? ::pause() : 1;
  });
  FolderLock lock(folder_);
  for (int i = 0; i < 1000 && lock.holder().empty(); ++i) ::usleep(1000);
  EXPECT_EQ(lock.take(Wait::No), ERROR_BUSY);
  std::thread killer([&] {
    ::usleep(100'000);
    child.kill();
  });
  EXPECT_EQ(lock.take(Wait::Yes), ERROR_SUCCESS);
  killer.join();
}

TEST_P(FolderLockTest, AskingForTheHolderStopsNobody) {
  test::ChildProcess asker([this] {
    for (FolderLock lock(folder_);;) lock.holder();
    return 0;
  });
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(300);
  while (std::chrono::steady_clock::now() < end) {
    FolderLock lock(folder_);
    ASSERT_EQ(lock.take(Wait::No), ERROR_SUCCESS);
  }
}

}  // namespace
}  // namespace korvex::platform
