// What lies in memory and what reaches the files: flushes, foreign changes, locks.
#include "platform/hives/hive_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sstream>

#include "platform/hives/line_hive.h"
#include "platform/stored/stored_registry.h"
#include "support/registry_view.h"
#include "support/temporary_folder.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;
using test::LineHive;

std::string contentOf(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

// A machine of two files, each time opened anew.
class HiveStoreTest : public testing::Test {
 protected:
  struct Open {
    explicit Open(HiveStoreOptions options)
        : lock(std::make_shared<CountedLock>(options.folder)), store(std::move(options), lock) {
      EXPECT_EQ(0, store.open(message)) << message;
    }
    void put(const std::string& path, const std::string& name, const std::string& data) {
      view.put(path, name, '"' + data + '"');
    }
    std::string value(const std::string& path, const std::string& name) {
      return view.value(path, name);
    }
    std::string message;
    std::shared_ptr<CountedLock> lock;
    HiveStore store;
    StoredRegistry registry{store, {.places = {Family::Nt, "User", "", "SYSTEM\\Config"}}};
    test::RegistryView view{registry};
  };

  void SetUp() override {
    write(software, "Vendor\nVendor=Old=was\nVendor\\Deep=In=deep\nOther=Name=x\n");
    write(user, "Desk=Wall=blue\n");
  }
  static void write(const fs::path& file, const std::string& text) {
    // Written anew each time, as Windows and Wine do.
    std::ofstream(file.string() + ".new") << text;
    fs::rename(file.string() + ".new", file);
  }
  HiveStoreOptions options() const {
    HiveStoreOptions result;
    result.folder = folder.path();
    result.mounts = {{kMachineKey, "SOFTWARE", software}, {kUsersKey, "User", user}};
    result.open = [](const fs::path& file) {
      OpenedHive opened;
      opened.hive = std::make_unique<LineHive>(file);
      return opened;
    };
    return result;
  }

  test::TemporaryFolder folder;
  fs::path software = folder.path() / "software";
  fs::path user = folder.path() / "user";
};

TEST_F(HiveStoreTest, OnlyAFlushWritesAndOnlyFilesThatHaveChanged) {
  Open machine(options());
  const std::string before = contentOf(software);
  struct stat untouched {};
  ASSERT_EQ(0, stat(user.c_str(), &untouched));
  machine.put("HKLM\\SOFTWARE\\Vendor", "New", "v");
  machine.put("HKLM\\SOFTWARE\\Made\\Here", "A", "1");
  machine.put("HKCU\\Desk", "Wall", "blue");
  ASSERT_EQ(0, machine.registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Other"));
  EXPECT_EQ(before, contentOf(software));
  ASSERT_EQ(0, machine.registry.flush());
  EXPECT_EQ(
      "Vendor\nVendor=Old=was\nVendor=New=v\nVendor\\Deep\nVendor\\Deep=In=deep\n"
      "Made\nMade\\Here\nMade\\Here=A=1\n",
      contentOf(software));
  struct stat now {};
  ASSERT_EQ(0, stat(user.c_str(), &now));
  EXPECT_EQ(untouched.st_ino, now.st_ino) << "the same value again is no change";
  // What was made is in the file now, and can be changed there.
  ASSERT_EQ(0, machine.registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Made\\Here"));
  ASSERT_EQ(0, machine.registry.flush());
  EXPECT_EQ(std::string::npos, contentOf(software).find("Here"));
}

TEST_F(HiveStoreTest, AMachineThatIsClosedWithoutAFlushLeavesItsFilesAndItsLock) {
  const std::string before = contentOf(software);
  {
    Open machine(options());
    machine.put("HKLM\\SOFTWARE\\Vendor", "New", "v");
    Open second(options());
    HKEY key = 0;
    std::uint32_t disposition = 0;
    EXPECT_EQ(ERROR_BUSY, second.registry.RegCreateKeyExA(HKEY_CURRENT_USER, "Desk\\New",
                                                          KEY_ALL_ACCESS, key, disposition));
    EXPECT_NE(std::string::npos, second.registry.lastRefusal().find(std::to_string(getpid())))
        << second.registry.lastRefusal();
  }
  EXPECT_EQ(before, contentOf(software));
  Open after(options());
  after.put("HKCU\\Desk", "Wall", "red");
  EXPECT_EQ(0, after.registry.flush());
  EXPECT_NE(std::string::npos, contentOf(user).find("red"));
}

TEST_F(HiveStoreTest, WhatOthersWroteIsReadAgainAndWhatWaitsGoesOnTop) {
  Open machine(options());
  const OpenKey vendor(machine.registry, HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor", KEY_ALL_ACCESS);
  const OpenKey deep(machine.registry, HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Deep", KEY_READ);
  machine.put("HKLM\\SOFTWARE\\Vendor", "Ours", "1");
  machine.put("HKLM\\SOFTWARE\\Made", "A", "1");
  ASSERT_EQ(0, machine.registry.RegDeleteValueA(vendor.get(), "Old"));
  ASSERT_EQ(0, machine.registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Other"));
  write(software,
        "Earlier\nVendor\nVendor=Old=again\nVendor=Theirs=2\nMade=B=theirs\nOther=Name=y\n");

  EXPECT_EQ("\"2\"", machine.value("HKLM\\SOFTWARE\\Vendor", "Theirs"));
  EXPECT_EQ("\"1\"", machine.value("HKLM\\SOFTWARE\\Vendor", "Ours"));
  EXPECT_EQ("delete", machine.value("HKLM\\SOFTWARE\\Vendor", "Old"));
  EXPECT_FALSE(machine.view.hasKey("HKLM\\SOFTWARE\\Other"));
  EXPECT_EQ(ERROR_KEY_DELETED,
            machine.registry.RegQueryValueExA(deep.get(), "In", nullptr, nullptr, nullptr));
  EXPECT_EQ(0,
            machine.registry.RegQueryValueExA(vendor.get(), "Theirs", nullptr, nullptr, nullptr));
  ASSERT_EQ(0, machine.registry.flush());
  Open again(options());
  std::map<std::string, std::string> all;
  again.view.dump("HKLM\\SOFTWARE", all);
  EXPECT_EQ((std::map<std::string, std::string>{{"HKLM\\SOFTWARE", "key"},
                                                {"HKLM\\SOFTWARE\\Earlier", "key"},
                                                {"HKLM\\SOFTWARE\\Made", "key"},
                                                {"HKLM\\SOFTWARE\\Made | A", "\"1\""},
                                                {"HKLM\\SOFTWARE\\Made | B", "\"theirs\""},
                                                {"HKLM\\SOFTWARE\\Vendor", "key"},
                                                {"HKLM\\SOFTWARE\\Vendor | Ours", "\"1\""},
                                                {"HKLM\\SOFTWARE\\Vendor | Theirs", "\"2\""}}),
            all);
}

TEST_F(HiveStoreTest, WhatOthersRemovedTakesWhatWaitedInItWithIt) {
  Open machine(options());
  machine.put("HKLM\\SOFTWARE\\Made\\Here", "A", "1");
  ASSERT_EQ(0, machine.registry.flush());
  machine.put("HKLM\\SOFTWARE\\Made\\Here", "B", "2");
  machine.put("HKLM\\SOFTWARE\\Vendor\\Deep\\New", "C", "3");
  machine.put("HKCU\\Desk", "Wall", "red");
  write(software, "Vendor\n");
  EXPECT_FALSE(machine.view.hasKey("HKLM\\SOFTWARE\\Made\\Here"));
  EXPECT_FALSE(machine.view.hasKey("HKLM\\SOFTWARE\\Made"));
  EXPECT_EQ(0, machine.registry.flush());
  EXPECT_EQ("Vendor\n", contentOf(software));
  EXPECT_EQ("Desk\nDesk=Wall=red\n", contentOf(user));
  machine.put("HKLM\\SOFTWARE\\Made", "A", "again");
  EXPECT_EQ(0, machine.registry.flush());
  EXPECT_EQ("Vendor\nMade\nMade=A=again\n", contentOf(software));
}

TEST_F(HiveStoreTest, AFlushThatFailsChangesNothingAndCanBeTriedAgain) {
  HiveStoreOptions broken = options();
  bool refuse = true;
  broken.holdOthersOff = [&](FileDescriptor&) { return refuse ? ERROR_BUSY : ERROR_SUCCESS; };
  Open machine(broken);
  const std::string before = contentOf(software) + contentOf(user);
  machine.put("HKLM\\SOFTWARE\\Vendor", "New", "v");
  machine.put("HKCU\\Desk", "Wall", "red");
  EXPECT_EQ(ERROR_BUSY, machine.registry.flush());
  EXPECT_EQ(before, contentOf(software) + contentOf(user));
  EXPECT_EQ("\"v\"", machine.value("HKLM\\SOFTWARE\\Vendor", "New"));
  refuse = false;
  EXPECT_EQ(0, machine.registry.flush());
  EXPECT_NE(std::string::npos, contentOf(user).find("red"));
}

TEST_F(HiveStoreTest, WhatAFileCannotHoldIsRefusedAtOnce) {
  Open machine(options());
  const OpenKey vendor(machine.registry, HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor", KEY_ALL_ACCESS);
  const std::string data(101, 'x');
  EXPECT_EQ(ERROR_NO_SYSTEM_RESOURCES,
            machine.registry.RegSetValueExA(vendor.get(), "v", REG_BINARY, data.data(), 101));
  EXPECT_EQ(0, machine.registry.RegSetValueExA(vendor.get(), "v", REG_BINARY, data.data(), 100));
  EXPECT_EQ(ERROR_NO_SYSTEM_RESOURCES,
            machine.registry.RegSetValueExA(vendor.get(), "t", REG_SZ, data.data(), 60))
      << "text takes two bytes for each character";
  HKEY key = 0;
  std::uint32_t disposition = 0;
  for (const char* const name : {"1", "2", "3", "4"}) {
    EXPECT_EQ(0, machine.registry.RegCreateKeyExA(vendor.get(), name, KEY_READ, key, disposition));
  }
  EXPECT_EQ(ERROR_NO_SYSTEM_RESOURCES,
            machine.registry.RegCreateKeyExA(vendor.get(), "5", KEY_READ, key, disposition));
  EXPECT_EQ(ERROR_ACCESS_DENIED, machine.registry.RegCreateKeyExA(HKEY_LOCAL_MACHINE, "HARDWARE",
                                                                  KEY_READ, key, disposition));
  EXPECT_EQ(ERROR_ACCESS_DENIED, machine.registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE"));
}

TEST_F(HiveStoreTest, TheFirstChangeOfAFileKeepsItAsItWas) {
  HiveStoreOptions keeping = options();
  keeping.keepBefore = true;
  const std::string before = contentOf(software);
  for (const char* const text : {"first", "second"}) {
    Open machine(keeping);
    machine.put("HKLM\\SOFTWARE\\Vendor", "New", text);
    ASSERT_EQ(0, machine.registry.flush());
    EXPECT_EQ(before, contentOf(software.string() + ".korvex-before"));
  }
  EXPECT_FALSE(fs::exists(user.string() + ".korvex-before"));
}

TEST_F(HiveStoreTest, AMachineOpenedForReadingStaysAsItWas) {
  HiveStoreOptions reading = options();
  reading.readOnly = true;
  Open machine(reading);
  HKEY key = 0;
  std::uint32_t disposition = 0;
  EXPECT_EQ(ERROR_WRITE_PROTECT,
            machine.registry.RegCreateKeyExA(HKEY_CURRENT_USER, "New", KEY_READ, key, disposition));
  write(user, "Desk=Wall=green\n");
  EXPECT_EQ("\"blue\"", machine.value("HKCU\\Desk", "Wall"));
}

}  // namespace
}  // namespace korvex::platform
