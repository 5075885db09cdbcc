// Sets that lie outside the machine.
#include "program/host_set.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <regex>

#include "backup/config_sets.h"
#include "backup/folder_tree.h"
#include "backup/registry_backer.h"
#include "main_window/start_up.h"
#include "support/machines.h"
#include "support/scripted_prompts.h"

namespace korvex::program {
namespace {

namespace fs = std::filesystem;

class HostSets : public testing::Test {
 public:
  HostSets() {
    main_window::detectReadOnly(session);
    backup::ConfigSets sets(session, backer);
    const backup::SaveRequest request{"Look", "C:\\Saves", {"ColorConfig"}, {}};
    EXPECT_EQ(0, sets.save(request, {}).status);
    fs::copy(machine.driveC() / "Saves/Look", host(), fs::copy_options::recursive);
  }
  fs::path host() const { return machine.folder().parent_path() / "host"; }
  fs::path folder() const { return machine.driveC() / "Program Files/Korvex/Registry"; }
  HostSet take() { return takeHostSet(session, host() / "profile.kvx"); }
  // A list with one more file, vouched for by the record; as anybody could write them.
  void addToContents(const std::string& line) {
    std::string list;
    std::string record;
    machine->files().read("C:\\Saves\\Look\\contents.dat", list);
    machine->files().read("C:\\Saves\\Look\\profile.kvx", record);
    list += line + "\r\n";
    std::uint64_t size = 0;
    std::uint64_t checksum = 0;
    EXPECT_EQ(0, machine->files().replace("C:\\list", list));
    EXPECT_EQ(0, backup::measure(machine->files(), "C:\\list", size, checksum));
    record = std::regex_replace(record, std::regex(R"("Contents"="[^"]*")"),
                                fmt::format("\"Contents\"=\"{}|{:016x}\"", size, checksum));
    std::ofstream(host() / "contents.dat", std::ios::binary) << list;
    std::ofstream(host() / "profile.kvx", std::ios::binary) << record;
  }

  test::TestMachine machine{"windows-98"};
  test::ScriptedPrompts prompts;
  foundation::Session session{*machine, prompts};
  backup::RegistryBacker backer{session};
};

TEST_F(HostSets, SetOnADriveIsTakenWhereItLies) {
  const HostSet set = takeHostSet(session, machine.driveC() / "Saves/Look/profile.kvx");
  EXPECT_EQ("C:\\Saves\\Look\\profile.kvx", set.profile);
  EXPECT_FALSE(set.copied);
  EXPECT_FALSE(fs::exists(folder()));
}

TEST_F(HostSets, SetFromOutsideIsCopiedWholeAndOnce) {
  fs::rename(host() / "colors.reg", host() / "COLORS.REG");  // as other systems write it
  std::ofstream(host() / "private.txt") << "none of the set's";
  const HostSet first = take();
  ASSERT_EQ(0, first.status) << first.message;
  EXPECT_TRUE(first.copied);
  EXPECT_EQ("C:\\Program Files\\Korvex\\Registry\\Look\\profile.kvx", first.profile);
  EXPECT_FALSE(fs::exists(folder() / "Look/private.txt"));
  backup::ConfigSets sets(session, backer);
  backup::ConfigSet set;
  std::string message;
  ASSERT_EQ(0, sets.find(first.profile, set, message)) << message;
  const auto offer = sets.offer(set, {});
  EXPECT_TRUE(offer->items()[0].restorable);
  EXPECT_TRUE(offer->items()[0].problems.empty()) << offer->items()[0].problems[0];
  EXPECT_EQ(first.profile, take().profile);
  // Another set of that name gets a number.
  std::ofstream(host() / "profile.kvx", std::ios::app) << "\r\n";
  EXPECT_EQ("C:\\Program Files\\Korvex\\Registry\\Look (2)\\profile.kvx", take().profile);
}

TEST_F(HostSets, NothingIsTakenThatDoesNotBelongToIt) {
  const fs::path secret = machine.folder().parent_path() / "secret";
  std::ofstream(secret) << "secret";
  // By a link, by "..", and without the file.
  fs::remove(host() / "colors.reg");
  fs::create_symlink(secret, host() / "colors.reg");
  HostSet set = take();
  EXPECT_TRUE(set.status != 0 || !fs::exists(folder() / "Look/colors.reg"));
  fs::remove_all(folder());
  addToContents("F|ColorConfig|6|0|..\\secret|C:\\x");
  set = take();
  EXPECT_NE(0, set.status);
  EXPECT_TRUE(set.message.starts_with((host() / "profile.kvx").string())) << set.message;
  EXPECT_NE(std::string::npos, set.message.find("cannot be understood")) << set.message;
  // The record itself by a link.
  fs::remove(host() / "profile.kvx");
  fs::create_symlink(machine.driveC() / "Saves/Look/profile.kvx", host() / "other.kvx");
  fs::create_symlink(secret, host() / "profile.kvx");
  EXPECT_NE(0, take().status);
  EXPECT_TRUE(!fs::exists(folder()) || fs::is_empty(folder()));
}

TEST_F(HostSets, HugeFilesAreRefusedAndLeaveNothing) {
  fs::resize_file(host() / "colors.reg", std::uintmax_t{65} * 1024 * 1024);
  const HostSet set = take();
  EXPECT_NE(0, set.status);
  EXPECT_NE(std::string::npos, set.message.find("64 MiB")) << set.message;
  EXPECT_TRUE(fs::is_empty(folder()));
}

TEST_F(HostSets, ReadOnlyMachineSaysSo) {
  machine.reopen(platform::OpenMode::Read);
  foundation::Session reading{*machine, prompts};
  main_window::detectReadOnly(reading);
  const HostSet set = takeHostSet(reading, host() / "profile.kvx");
  EXPECT_EQ(platform::ERROR_WRITE_PROTECT, set.status) << set.message;
}

}  // namespace
}  // namespace korvex::program
