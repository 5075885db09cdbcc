// Options of Office and Jet from a shell: fields with ranges, switches, and whose settings are
// meant.
#include "cli_fixture.h"

namespace korvex::cli {
namespace {

const std::string kExcel = "HKCU\\Software\\Microsoft\\Office\\9.0\\Excel\\Options";
const std::string kEngines = "\\Jet\\4.0\\Engines\\";
const std::string kGlobal = "HKLM\\Software\\Microsoft" + kEngines;
const std::string kAccess = "HKLM\\Software\\Microsoft\\Access\\9.0" + kEngines;

class OfficeTest : public CliTest {
 public:
  OfficeTest() : CliTest("windows-2000") {}
  Json data(const std::string& key, const std::string& name) { return value(key, name)["data"]; }
};

using Office = OfficeTest;

TEST_F(Office, ANumberOutOfRangeChangesNothingElseEither) {
  ASSERT_EQ(0, korvex({"set", "DefSheets=5", "Threads=4"}).code);
  EXPECT_EQ(5, data(kExcel, "DefSheets"));
  const std::string before = dump();
  for (const auto& [wish, told] :
       {std::pair{"DefSheets=0", "Valid range for this setting is 1 - 100."},
        {"DefSheets=101", "Valid range for this setting is 1 - 100."},
        {"CacheSize=6", "The valid range for this setting is 64 - 2047."},
        {"MaxBufferSize=8", "The valid range for this setting is 9 - 4096."},
        {"BitmapMemory=4294967296", "4294967296 is too large"},
        {"UserCommitSync=1", "This field accepts alpha characters only."}}) {
    const Json error = json({"set", "User=Ann", "Threads=6", wish}).json()["error"];
    EXPECT_EQ("refused", error["kind"]) << wish;
    EXPECT_NE(std::string::npos, error["message"].get<std::string>().find(told)) << error;
  }
  EXPECT_EQ(5, korvex({"set", "DefSheets=0"}).code);
  EXPECT_EQ(before, dump());
}

TEST_F(Office, AFieldOfJetGoesWhereItIsMeantAndBackToItsDefault) {
  ASSERT_EQ(0, korvex({"set", "Threads=4"}).code);
  EXPECT_EQ(4, data(kGlobal + "Jet 4.0", "Threads"));
  EXPECT_EQ(3, data(kAccess + "Jet 4.0", "Threads"));
  ASSERT_EQ(0, korvex({"set", "Threads=default"}).code);
  EXPECT_EQ(3, data(kGlobal + "Jet 4.0", "Threads"));

  const std::string options = "HKLM\\SOFTWARE\\Korvex\\Configuration";
  ASSERT_EQ(0, korvex({"reg", "set", options, "JetGlobal", "REG_DWORD", "0"}).code);
  ASSERT_EQ(0, korvex({"set", "Threads=7", "SnapshotOnly=on"}).code);
  EXPECT_EQ(7, data(kAccess + "Jet 4.0", "Threads"));
  EXPECT_EQ(1, data(kAccess + "ODBC", "SnapshotOnly"));
  EXPECT_EQ(3, data(kGlobal + "Jet 4.0", "Threads"));
  EXPECT_EQ(0, data(kGlobal + "ODBC", "SnapshotOnly"));
}

TEST_F(Office, ASwitchThatAnySetupWroteIsOnAndNeedsARestart) {
  const std::string odbc = kGlobal + "ODBC";
  ASSERT_EQ(0xFFFFFFFFU, data(odbc, "FatBlastRows"));
  EXPECT_EQ(0, korvex({"set", "FatBlastRows=on"}).code);
  EXPECT_EQ(0xFFFFFFFFU, data(odbc, "FatBlastRows")) << "was on already";
  const Json off = json({"set", "FatBlastRows=off"}).json();
  EXPECT_NE(std::string::npos, off.dump().find("\"restart\":true")) << off;
  EXPECT_EQ(0, data(odbc, "FatBlastRows"));
  EXPECT_EQ(0, korvex({"set", "FatBlastRows=default"}).code);
  EXPECT_EQ(0xFFFFFFFFU, data(odbc, "FatBlastRows"));
}

}  // namespace
}  // namespace korvex::cli
