// Conditions: what a machine needs beyond its Windows.
#include "engine/conditions.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

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

}  // namespace
}  // namespace korvex::engine
