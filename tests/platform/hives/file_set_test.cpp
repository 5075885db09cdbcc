// Several files that change together: what stands after success, failures and kills.
#include "platform/hives/file_set.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <map>
#include <random>

#include "platform/hives/commit_note.h"
#include "platform/hives/host_calls.h"
#include "support/child_process.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

// The files of a change by path; empty content stands for a file that is not there.
using Contents = std::map<std::string, std::string>;

const Contents kOld{{"system.reg", "old system"}, {"user.reg", "old user"}, {"sub/new.reg", ""}};
const Contents kNew{{"system.reg", "new, longer system"},
                    {"user.reg", "new user"},
                    {"sub/new.reg", "made by the change"}};

class FileSetTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "korvex-set-XXXXXX").string();
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    folder_ = fs::path(name) / "machine";
    reset();
  }
  void TearDown() override { fs::remove_all(folder_.parent_path()); }

  void reset() {
    fs::remove_all(folder_);
    fs::create_directories(folder_ / "sub");
    for (const auto& [path, bytes] : kOld) put(path, bytes);
  }
  void put(const std::string& path, const std::string& bytes) const {
    if (!bytes.empty()) std::ofstream(folder_ / path, std::ios::binary) << bytes;
  }
  static std::string bytesOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  Contents contents() const {
    Contents found;
    for (const auto& [path, bytes] : kOld) found[path] = bytesOf(folder_ / path);
    return found;
  }
  // What a reader is to take for the files.
  Contents seen() const {
    Contents found;
    for (const auto& [path, bytes] : kOld) {
      found[path] = bytesOf(FileSet::current(folder_, folder_ / path));
    }
    return found;
  }
  std::vector<std::string> ownFiles() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder_)) {
      const std::string name = entry.path().filename().string();
      if (name.starts_with(".korvex-")) names.push_back(name);
    }
    return names;
  }
  static FileSet::Writer writing(const std::string& bytes) {
    return [bytes](int file) {
      const bool done = ::write(file, bytes.data(), bytes.size()) == ssize_t(bytes.size());
      return done ? ERROR_SUCCESS : ERROR_DISK_FULL;
    };
  }
  Status change(const Contents& wanted, std::string& message) const {
    FileSet files(folder_);
    for (const auto& [path, bytes] : wanted) files.add(folder_ / path, writing(bytes));
    return files.commit(message);
  }
  Status change(const Contents& wanted = kNew) const {
    std::string message;
    return change(wanted, message);
  }
  Status finish() {
    message_.clear();
    return FileSet::finishInterrupted(folder_, message_);
  }
  // Leaves the note and all new versions behind, nothing renamed.
  void cutOffBeforeTheRenames() {
    // Flushed, named, for each of three; three folders flushed; the note flushed, named, renamed,
    // its folder flushed.
    test::ChildProcess child([this] {
      test::hostCalls() = {.killAt = 14};
      return static_cast<int>(change());
    });
    ASSERT_EQ(child.wait(), -1);
    ASSERT_TRUE(fs::exists(folder_ / kNoteName));
    ASSERT_EQ(contents(), kOld);
  }

  fs::path folder_;
  std::string message_;
};

struct Fault {
  int test::HostCalls::*at;
  bool noExchange;
};

class FileSetFault : public FileSetTest, public testing::WithParamInterface<Fault> {};

// A kill before each call that changes the disk, or its failure.
TEST_P(FileSetFault, LeavesAllNewOrAllOldAtEveryCall) {
  int turn = 0;
  int old = 0;
  for (bool reached = true; reached;) {
    ++turn;
    reset();
    const bool fails = GetParam().at == &test::HostCalls::failAt;
    test::ChildProcess child([&] {
      test::HostCalls& calls = test::hostCalls();
      calls = {.noExchange = GetParam().noExchange};
      calls.*GetParam().at = turn;
      std::string message;
      const Status status = change(kNew, message);
      if (calls.count < turn) return 2;
      return status == ERROR_SUCCESS ? 0 : message.empty() ? 3 : 1;
    });
    const int result = child.wait();
    SCOPED_TRACE(testing::Message() << "call " << turn << ", result " << result);
    reached = result != 2;
    ASSERT_TRUE(result == 2 || fails == (result == 0 || result == 1));
    if (result == 0) {
      EXPECT_EQ(contents(), kNew);
    } else if (result == 1 && !GetParam().noExchange) {
      EXPECT_EQ(contents(), kOld);
    }
    const Contents before = seen();
    EXPECT_TRUE(before == kOld || before == kNew);
    old += before == kOld ? 1 : 0;
    EXPECT_EQ(finish(), ERROR_SUCCESS) << message_;
    EXPECT_EQ(message_, "");
    EXPECT_EQ(contents(), before);
    EXPECT_EQ(change(), ERROR_SUCCESS);
    EXPECT_EQ(contents(), kNew);
    EXPECT_EQ(ownFiles(), std::vector<std::string>());
  }
  // Until the note has its name, and all after that.
  EXPECT_GT(old, 10);
  EXPECT_GE(turn - old, 5);
}

INSTANTIATE_TEST_SUITE_P(, FileSetFault,
                         testing::Values(Fault{&test::HostCalls::killAt, false},
                                         Fault{&test::HostCalls::failAt, false},
                                         Fault{&test::HostCalls::killAt, true},
                                         Fault{&test::HostCalls::failAt, true}));

TEST_F(FileSetTest, AKillWhileItIsFinishedLosesNothing) {
  for (int turn = 1, result = -1; result == -1; ++turn) {
    reset();
    cutOffBeforeTheRenames();
    test::ChildProcess child([&] {
      test::hostCalls() = {.killAt = turn};
      return static_cast<int>(finish());
    });
    result = child.wait();
    EXPECT_EQ(seen(), kNew) << turn;
    EXPECT_EQ(finish(), ERROR_SUCCESS) << message_;
    EXPECT_EQ(contents(), kNew) << turn;
    EXPECT_EQ(ownFiles(), std::vector<std::string>()) << turn;
  }
}

TEST_F(FileSetTest, KillsAtAnyMomentLeaveAllNewOrAllOld) {
  std::mt19937 random(20000217);
  const auto begin = std::chrono::steady_clock::now();
  ASSERT_EQ(change(), ERROR_SUCCESS);
  const auto oneChange = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - begin);
  Contents last = kNew;
  for (int round = 0; round < 40; ++round) {
    test::ChildProcess child([&] {
      for (int i = 0;; ++i) {
        Contents next = kNew;
        for (auto& [path, bytes] : next) bytes = std::to_string(round * 100000 + i);
        if (change(next) != ERROR_SUCCESS) return 1;
      }
    });
    ::usleep(500 + random() % (4 * static_cast<unsigned>(oneChange.count())));
    child.kill();
    const Contents expected = seen();
    ASSERT_EQ(finish(), ERROR_SUCCESS) << message_;
    const Contents now = contents();
    ASSERT_EQ(now, expected);
    ASSERT_EQ(now.at("system.reg") == now.at("user.reg"), now != kNew);
    ASSERT_EQ(now.at("sub/new.reg") == now.at("user.reg"), now != kNew);
    last = now;
  }
  EXPECT_NE(last, kNew);
}

TEST_F(FileSetTest, TheOldFileStandsWhereItsCheckFails) {
  struct Case {
    const char* name;
    std::function<Status()> check;
    FileSet::Writer write;
    Status expected;
  };
  const std::vector<Case> cases{
      {"the caller says no", [] { return ERROR_BUSY; }, writing("x"), ERROR_BUSY},
      {"changed meanwhile", [this] { return put("user.reg", "theirs"), ERROR_SUCCESS; },
       writing("x"), ERROR_SHARING_VIOLATION},
      {"not written", {}, [](int) { return ERROR_DISK_FULL; }, ERROR_DISK_FULL},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    reset();
    FileSet files(folder_);
    files.add(folder_ / "system.reg", writing("y"));
    files.add(folder_ / "user.reg", one.write);
    files.checkBeforeRename(one.check);
    std::string message;
    EXPECT_EQ(files.commit(message), one.expected);
    EXPECT_NE(message, "");
    EXPECT_EQ(bytesOf(folder_ / "system.reg"), "old system");
    EXPECT_NE(bytesOf(folder_ / "user.reg"), "x");
    EXPECT_EQ(ownFiles(), std::vector<std::string>());
  }
}

TEST_F(FileSetTest, WhatOthersWriteBetweenCheckAndRenameIsNotLost) {
  test::hostCalls().beforeExchange = [this] {
    if (bytesOf(folder_ / "user.reg") == "old user") put("user.reg", "theirs, just now");
  };
  EXPECT_EQ(change(), ERROR_SHARING_VIOLATION);
  test::hostCalls() = {};
  Contents expected = kOld;
  expected["user.reg"] = "theirs, just now";
  EXPECT_EQ(contents(), expected);
  EXPECT_EQ(ownFiles(), std::vector<std::string>());
}

TEST_F(FileSetTest, WhatOthersHaveChangedSinceIsLeftAlone) {
  cutOffBeforeTheRenames();
  put("user.reg", "theirs, later");
  EXPECT_EQ(seen().at("system.reg"), "old system");  // half a change is none
  EXPECT_EQ(finish(), ERROR_SUCCESS);
  EXPECT_NE(message_.find("user.reg"), std::string::npos);
  EXPECT_EQ(bytesOf(folder_ / "system.reg"), "old system");
  EXPECT_EQ(bytesOf(folder_ / "user.reg"), "theirs, later");
  std::vector<std::string> left = ownFiles();
  EXPECT_EQ(left.size(), 3U);
  for (const std::string& name : left) EXPECT_TRUE(name.starts_with(kLeftVersionPrefix)) << name;
  EXPECT_EQ(finish(), ERROR_SUCCESS);
  EXPECT_EQ(ownFiles(), left);
}

TEST_F(FileSetTest, ADamagedNoteIsToldAndRenamesNothing) {
  cutOffBeforeTheRenames();
  const std::string note = bytesOf(folder_ / kNoteName);
  std::vector<std::string> damaged{"", note.substr(0, note.size() / 2), std::string(5000, '\0')};
  for (std::size_t at = 0; at < note.size(); at += 7) {
    damaged.push_back(note);
    damaged.back()[at] ^= 4;
  }
  for (const std::string& text : damaged) {
    std::ofstream(folder_ / kNoteName, std::ios::binary) << text;
    EXPECT_EQ(seen(), kOld);
    EXPECT_EQ(finish(), ERROR_INVALID_DATA);
    EXPECT_NE(message_.find(".korvex-commit"), std::string::npos);
    EXPECT_EQ(change(), ERROR_INVALID_DATA);
    ASSERT_EQ(contents(), kOld) << text;
  }
}

// Somebody else has made the note, well-formed, to have files renamed that are none of ours.
TEST_F(FileSetTest, AHostileNoteLeadsNowhereElse) {
  const fs::path outside = folder_.parent_path() / "outside";
  fs::create_directories(outside);
  std::ofstream(outside / "victim") << "victim";
  const std::string newName = ".korvex-new-0123456789abcdef";
  std::ofstream(outside / newName) << "evil";
  fs::create_directory_symlink(outside, folder_ / "z");
  fs::create_symlink(outside / "victim", folder_ / "link.reg");
  const auto stamp = [](const fs::path& file) {
    struct stat facts {};
    ::lstat(file.c_str(), &facts);
    return LastingStamp{true, facts.st_ino, facts.st_size, facts.st_mtim.tv_sec,
                        facts.st_mtim.tv_nsec};
  };
  for (const std::string path :
       {"../outside/victim", "z/victim", "/outside/victim", "sub/../../outside/victim", "link.reg",
        "./system.reg", "sub//new.reg", ".korvex-commit", "z", "sub", ""}) {
    for (const std::string& from : {newName, "../outside/" + newName, std::string("user.reg")}) {
      SCOPED_TRACE(testing::Message() << path << " from " << from);
      put(newName, "evil");
      const std::string parent = fs::path(path).parent_path().string();
      const std::vector<NotedFile> files{
          {path, from, stamp(folder_ / path), stamp(folder_ / parent / from)}};
      std::ofstream(folder_ / kNoteName) << encodeNote(files);
      EXPECT_EQ(FileSet::current(folder_, folder_ / path), folder_ / path);
      finish();
      EXPECT_EQ(bytesOf(outside / "victim"), "victim");
      EXPECT_EQ(bytesOf(outside / newName), "evil");
      EXPECT_EQ(contents(), kOld);
      EXPECT_TRUE(fs::is_symlink(folder_ / "link.reg"));
      EXPECT_TRUE(fs::is_symlink(folder_ / "z"));
      fs::remove(folder_ / kNoteName);
    }
  }
}

TEST_F(FileSetTest, OnlyItsOwnOrphansGo) {
  for (const char* const name :
       {".korvex-new-0123456789abcdef", ".korvex-new-0123456789abcdeX", ".korvex-new-01",
        ".korvex-left-0123456789abcdef", "new-0123456789abcdef"}) {
    put(name, "x");
    put("sub/" + std::string(name), "x");
  }
  EXPECT_EQ(finish(), ERROR_SUCCESS);
  EXPECT_EQ(ownFiles().size(), 7U);
  EXPECT_EQ(change(), ERROR_SUCCESS);
  EXPECT_EQ(ownFiles().size(), 6U);  // those below "sub" with the next change there
  EXPECT_FALSE(fs::exists(folder_ / "sub/.korvex-new-0123456789abcdef"));
}

TEST_F(FileSetTest, LinksAreFollowedWithinTheFolderOnly) {
  fs::rename(folder_ / "user.reg", folder_ / "sub/real.reg");
  fs::create_symlink("sub/real.reg", folder_ / "user.reg");
  ASSERT_EQ(::chmod((folder_ / "sub/real.reg").c_str(), 0640), 0);
  EXPECT_EQ(change(), ERROR_SUCCESS);
  EXPECT_TRUE(fs::is_symlink(folder_ / "user.reg"));
  EXPECT_EQ(bytesOf(folder_ / "sub/real.reg"), "new user");
  struct stat facts {};
  ASSERT_EQ(::stat((folder_ / "user.reg").c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 0777U, 0640U);
  const fs::path outside = folder_.parent_path() / "outside.reg";
  std::ofstream(outside) << "theirs";
  fs::create_symlink(outside, folder_ / "out.reg");
  fs::create_symlink("nowhere", folder_ / "dangling.reg");
  fs::create_directory_symlink("..", folder_ / "up");
  for (const char* const path : {"out.reg", "dangling.reg", "up/outside.reg", "sub"}) {
    EXPECT_EQ(change({{"system.reg", "x"}, {path, "x"}}), ERROR_ACCESS_DENIED) << path;
  }
  EXPECT_EQ(change({{"missing/a.reg", "x"}}), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(bytesOf(outside), "theirs");
  EXPECT_EQ(bytesOf(folder_ / "system.reg"), "new, longer system");
}

}  // namespace
}  // namespace korvex::platform
