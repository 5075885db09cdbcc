// Conditions: what a machine needs beyond its Windows.
#include "engine/conditions.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "engine/jet.h"
#include "engine_fixture.h"
#include "foundation/detection.h"
#include "support/machines.h"
#include "support/scripted_prompts.h"

namespace korvex::engine {
namespace {

class ConditionsTest : public testing::Test {
 protected:
  ConditionsTest() {
    std::ostringstream text;
    text << std::ifstream(machine_.folder() / "machine.json").rdbuf();
    json_ = text.str();
  }

  // The machine with one more field in its machine.json.
  void describe(std::string_view after, const std::string& addition) {
    machine_.close();
    std::string json = json_;
    const std::size_t at = json.find(after);
    ASSERT_NE(std::string::npos, at);
    std::ofstream(machine_.folder() / "machine.json")
        << json.insert(at + after.size(), addition + ", ");
    machine_.reopen();
  }
  // Whether the machine meets it; a reason is a sentence.
  bool meets(Condition condition) {
    foundation::Session session(machine_.get(), prompts_);
    foundation::detectSystem(session);
    const std::string reason(condition({}, session));
    EXPECT_TRUE(reason.empty() || reason.ends_with('.'));
    return reason.empty();
  }
  void nameInAppPaths(std::string_view program, std::string_view name, const std::string& text) {
    foundation::Session session(machine_.get(), prompts_);
    platform::HKEY key = 0;
    bool existed = false;
    const std::string path =
        fmt::format("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\{}", program);
    ASSERT_EQ(0, session.regTool.CreateRegNode(HKLM, path, key, existed, platform::KEY_ALL_ACCESS));
    EXPECT_EQ(0, session.regTool.CreateRegValue(text, key, std::string(name)));
    session.registry().RegCloseKey(key);
  }

  test::TestMachine machine_{test::Family::Nt};
  test::ScriptedPrompts prompts_;
  std::string json_;
};

TEST_F(ConditionsTest, TheBrowserCountsFromTheSecondServicePackField) {
  EXPECT_FALSE(meets(needsExplorer4SP2)) << "no browser";
  nameInAppPaths("IEXPLORE.EXE", "", "\"C:\\IE\\IEXPLORE.EXE\"");
  EXPECT_FALSE(meets(needsExplorer4SP2)) << "the program is gone";
  for (const auto& [version, enough] : {std::pair{"4.72.3110.2", false},
                                        {"4.72.3110.3", true},
                                        {"4.72.3110.10", true},
                                        {"4.72.2106.8", false},
                                        {"4.71.9999.9", false},
                                        {"4.100.1.0", true},
                                        {"5.0.2014.216", true}}) {
    describe("\"fileVersions\": {",
             fmt::format(R"("C:\\IE\\IEXPLORE.EXE": {{"version": "{}", "flags": 0}})", version));
    EXPECT_EQ(enough, meets(needsExplorer4SP2)) << version;
  }
}

TEST_F(ConditionsTest, AFileSystemThatIsNotToldIsTheOneNeeded) {
  EXPECT_TRUE(meets(needsFat) && meets(needsNtfs));
  for (const auto& [there, fat, ntfs] : {std::tuple{R"("C": "NTFS")", false, true},
                                         {R"("c": "ntfs")", false, true},
                                         {R"("C": "FAT")", true, false},
                                         {R"("C": "FAT32")", true, false},
                                         {R"("C": "HPFS")", false, false},
                                         {R"("D": "NTFS")", true, true}}) {
    describe("{", fmt::format(R"("fileSystems": {{{}}})", there));
    EXPECT_EQ(fat, meets(needsFat)) << there;
    EXPECT_EQ(ntfs, meets(needsNtfs)) << there;
  }
}

TEST_F(ConditionsTest, OutlookIsThereWithItsFolder) {
  nameInAppPaths("OUTLOOK.EXE", "", "C:\\Office\\OUTLOOK.EXE");
  EXPECT_FALSE(meets(needsOutlook));
  nameInAppPaths("OUTLOOK.EXE", "Path", "C:\\Office\\");
  EXPECT_TRUE(meets(needsOutlook));
}

// A machine with Office and Jet, to the last key or without.
class OfficeConditionsTest : public EngineTest {
 public:
  OfficeConditionsTest() { have({"Jet\\4.0\\Engines\\Jet 2.x", "Jet\\4.0\\Engines\\JET 4.0"}); }

  void have(const std::vector<std::string>& keys) {
    for (const std::string& key : keys) createKey(HKLM, "Software\\Microsoft\\" + key);
  }
  void haveOffice(const std::string& version) {
    createKey(HKCU, "Software\\Microsoft\\Office\\" + version);
    foundation::detectSystem(session);
  }
  std::string lacks(std::string_view property) {
    return std::string(readState(*findTweak(property), session).reason);
  }
  std::string keyOf(std::string_view property) {
    return std::string(onMachine(*findTweak(property), session).key);
  }
};

TEST_F(OfficeConditionsTest, WithoutOffice97Or2000NothingOfItCanBeSet) {
  for (const char* version : {"7.0", "10.0"}) {
    haveOffice(version);
    for (const char* property : {"P_rwDraftFont", "P_DefSheets", "P_rwWdEnabled", "P_Threads"}) {
      EXPECT_EQ("Only MS Office 97 & 2000 supported", lacks(property)) << version;
    }
  }
  haveOffice("8.0");
  EXPECT_EQ("", lacks("P_rwDraftFont"));
  EXPECT_EQ("Software\\Microsoft\\Office\\8.0\\Excel\\Microsoft Excel", keyOf("P_DefSheets"));
  haveOffice("9.0");
  EXPECT_EQ("Software\\Microsoft\\Office\\9.0\\Excel\\Options", keyOf("P_DefSheets"));
}

TEST_F(OfficeConditionsTest, TheNewestJetCountsOrTheOlderOneThatIsWanted) {
  haveOffice("9.0");
  have({"Jet\\3.5\\Engines\\Jet 3.5", "Jet\\3.5\\Engines\\Text", "Jet\\3.5\\Engines\\Lotus"});
  EXPECT_EQ((std::vector<std::string>{"JET 2.X", "JET 4.0"}), jetEngines(session));
  EXPECT_NE("", lacks("P_MaxScanRows")) << "4.0 has no format Text";
  for (const char* none : {"3.0", "2.5", "4", ""}) {
    setText(HKLM, kOptions, "JetVersion", none);
    EXPECT_EQ("4.0\\", jetVersionPath(session)) << none;
  }
  setText(HKLM, kOptions, "JetVersion", "3.5");
  EXPECT_EQ((std::vector<std::string>{"JET 3.5", "TEXT"}), jetEngines(session));
  EXPECT_EQ("", lacks("P_MaxScanRows"));
  EXPECT_EQ("Software\\Microsoft\\Jet\\3.5\\Engines\\JET 3.5", keyOf("P_Threads"));
}

TEST_F(OfficeConditionsTest, TheChosenEngineAndWhoseSettingsMakeTheKey) {
  haveOffice("8.0");
  setDword(HKLM, kOptions, "JetGlobal", 0);
  EXPECT_EQ("Software\\Microsoft\\Access\\8.0\\Jet\\4.0\\Engines\\JET 4.0", keyOf("P_Threads"));
  haveOffice("9.0");
  EXPECT_EQ("Software\\Microsoft\\Access\\9.0\\Jet\\4.0\\Engines\\JET 4.0", keyOf("P_Threads"));
  setDword(HKLM, kOptions, "JetGlobal", 0xFFFFFFFF);
  setText(HKLM, kOptions, "JetSelect", "Jet 2.X");
  EXPECT_EQ("Software\\Microsoft\\Jet\\4.0\\Engines\\JET 2.X", keyOf("P_Threads"));
  have({"Jet\\4.0\\Engines\\Text"});
  for (const char* other : {"TEXT", "JET 3.5", "nonsense"}) {
    setText(HKLM, kOptions, "JetSelect", other);
    EXPECT_EQ("Software\\Microsoft\\Jet\\4.0\\Engines\\JET 4.0", keyOf("P_Threads")) << other;
  }
}

}  // namespace
}  // namespace korvex::engine
