// machine.json and the making of machines from samples.
#include <fstream>
#include <sstream>

#include "platform/contract/registry_access.h"
#include "support/machines.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;
using test::TestMachine;

std::string textOf(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

TEST(MachineFile, EachFaultIsToldWithFileAndField) {
  TestMachine machine{test::Family::Nt};
  machine.close();
  const fs::path file = machine.folder() / "machine.json";
  const std::string good = textOf(file);
  struct Fault {
    std::string from, to, told;
  };
  const Fault faults[] = {
      {"\"schemaVersion\": 1", "\"schemaVersion\": 2", "schemaVersion must be 1"},
      {"\"platform\": \"NT\"", "\"platform\": \"OS/2\"", "platform must be"},
      {"\"major\": 5", "\"major\": \"5\"", "version.major must be a whole number"},
      {"\"build\": 2195", "\"build\": -1", "version.build must be a whole number"},
      {"\"user\": \"Tester\"", "\"usr\": \"Tester\"", "user is missing"},
      {"\"administrator\": true", "\"administrator\": 1", "administrator must be true or false"},
      {"\"codePage\": 1252", "\"codePage\": 932", "codePage 932 is not known"},
      {"S-1-5-21-1000-500", "a\\\\b", "userKey must be"},
      {"\"windowsFolder\": \"C:", "\"windowsFolder\": \"", "windowsFolder must be a folder"},
      {"5.0.2195.1", "5.0.2195", "kernel32.dll.version must be four numbers"},
      {"5.0.2195.1", "5.0.2195.1.7", "kernel32.dll.version must be four numbers"},
      {"\"class\": \"OpusApp\"", "\"klass\": \"OpusApp\"", "openWindows.class is missing"},
      {"\"openWindows\": [", "\"openWindows\": 7, \"x\": [", "openWindows must be a list"},
      {"\"openWindows\"", "\"fileSystems\": {\"System\": \"NTFS\"}, \"openWindows\"",
       "fileSystems.System must be named for a drive letter"},
      {"{", "[", "this is not JSON"},
  };
  for (const Fault& fault : faults) {
    std::string bad = good;
    const std::size_t at = bad.find(fault.from);
    ASSERT_NE(at, std::string::npos) << fault.from;
    std::ofstream(file) << bad.replace(at, fault.from.size(), fault.to);
    const auto opened = openEmbeddedMachine(machine.folder(), OpenMode::Read);
    EXPECT_EQ(opened.status, ERROR_INVALID_DATA) << fault.told;
    EXPECT_NE(opened.message.find("machine.json"), std::string::npos) << opened.message;
    EXPECT_NE(opened.message.find(fault.told), std::string::npos) << opened.message;
  }
  std::ofstream(file) << good;
  EXPECT_NE(openEmbeddedMachine(machine.folder(), OpenMode::Read).machine, nullptr);
}

class NewMachine : public testing::Test {
 protected:
  void SetUp() override {
    TestMachine bare{test::Family::Nt};
    fs::create_directories(sample / "registry");
    fs::create_directories(sample / "drive_c" / "WINNT");
    std::string json = textOf(bare.folder() / "machine.json");
    json.insert(json.find('{') + 1,
                R"("note": "kept", "initialAttributes": {"C:\\boot.ini": "RHS"},)");
    std::ofstream(sample / "machine.json") << json;
    std::ofstream(sample / "drive_c" / "boot.ini") << "[boot loader]\r\n";
    std::ofstream(sample / "registry" / "20-b.reg")
        << "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Order]\r\n\"last\"=\"b\"\r\n";
    std::ofstream(sample / "registry" / "10-a.reg")
        << "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Order]\r\n\"last\"=\"a\"\r\n";
  }
  Status create() {
    message.clear();
    return createEmbeddedMachine(sample, target, message);
  }
  std::size_t entriesBeside() {
    std::size_t entries = 0;
    for (const auto& entry : fs::directory_iterator(target.parent_path())) {
      entries += entry.path().empty() ? 0 : 1;
    }
    return entries;
  }

  test::TemporaryFolder temporary;
  fs::path sample = temporary.path() / "sample";
  fs::path target = temporary.path() / "machines" / "one";
  std::string message;
};

TEST_F(NewMachine, HasTheSamplesRegistryFilesAndAttributes) {
  fs::create_directories(target);  // an empty folder will do
  ASSERT_EQ(create(), ERROR_SUCCESS) << message;
  auto opened = openEmbeddedMachine(target, OpenMode::Read);
  ASSERT_NE(opened.machine, nullptr) << opened.message;
  test::RegistryAccess access(opened.machine->registry());
  EXPECT_EQ(access.get(HKEY_CURRENT_USER, "Order", "last"), std::string("b\0", 2));
  std::uint32_t attributes = 0;
  EXPECT_EQ(opened.machine->files().attributes("C:\\BOOT.INI", attributes), ERROR_SUCCESS);
  EXPECT_EQ(attributes & 7,
            FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
  const std::string json = textOf(target / "machine.json");
  EXPECT_NE(json.find("\"note\": \"kept\""), std::string::npos);
  EXPECT_EQ(json.find("initialAttributes"), std::string::npos);
}

TEST_F(NewMachine, IsWholeOrNotThere) {
  fs::create_directories(target);
  std::ofstream(target / "mine.txt") << "mine";
  EXPECT_EQ(create(), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(textOf(target / "mine.txt"), "mine");
  fs::remove_all(target);
  std::ofstream(sample / "registry" / "30-bad.reg") << "REGEDIT4\r\n\r\n[HKEY_NOWHERE\\x]\r\n";
  EXPECT_EQ(create(), ERROR_INVALID_DATA);
  EXPECT_NE(message.find("30-bad.reg"), std::string::npos) << message;
  EXPECT_EQ(entriesBeside(), 0U);
  fs::remove(sample / "registry" / "30-bad.reg");
  fs::remove(sample / "drive_c" / "boot.ini");
  EXPECT_EQ(create(), ERROR_FILE_NOT_FOUND);
  EXPECT_NE(message.find("boot.ini"), std::string::npos) << message;
  EXPECT_EQ(entriesBeside(), 0U);
}

TEST(EmbeddedMachine, RecordsTheLastHundredRequests) {
  TestMachine machine{test::Family::NineX};
  int exitCode = 0;
  std::string message;
  for (int i = 0; i < 99; ++i) {
    EXPECT_EQ(machine->processes().run("calc.exe " + std::to_string(i), exitCode, message),
              ERROR_NOT_SUPPORTED);
  }
  EXPECT_NE(message.find("calc.exe 98"), std::string::npos) << message;
  EXPECT_EQ(machine->restart().ExitWindowsEx(EWX_REBOOT | EWX_FORCE, 0), ERROR_SUCCESS);
  EXPECT_EQ(machine->processes().ShellExecuteA("open", "C:\\x y.txt", "", "", message),
            ERROR_NOT_SUPPORTED);
  std::vector<MachineEvent> events;
  EXPECT_EQ(readMachineEvents(machine.folder(), events), ERROR_SUCCESS);
  ASSERT_EQ(events.size(), 100U);
  EXPECT_EQ(events[0].detail, "calc.exe 1");
  EXPECT_EQ(events[98].kind + events[98].detail, "restart6");
  EXPECT_EQ(events[99].kind + events[99].detail, "program\"C:\\x y.txt\"");
}

TEST(EmbeddedMachine, FindsTheWindowsOfTheFile) {
  TestMachine machine{test::Family::Nt};
  EXPECT_TRUE(machine->windows().FindWindowA("OPUSAPP", ""));
  EXPECT_TRUE(machine->windows().FindWindowA("OpusApp", "Document1 - Microsoft Word"));
  EXPECT_FALSE(machine->windows().FindWindowA("OpusApp", "Document2"));
  EXPECT_FALSE(machine->windows().FindWindowA("XLMAIN", ""));
}

}  // namespace
}  // namespace korvex::platform
