// Which Jet of a machine is meant, which of its engines, and whose key.
#include "engine/jet.h"

#include <gtest/gtest.h>

#include "engine/catalogue.h"
#include "engine/readers.h"
#include "foundation/detection.h"
#include "support/machines.h"
#include "support/registry_view.h"
#include "support/scripted_prompts.h"

namespace korvex::engine {
namespace {

constexpr const char* kConfiguration = "HKLM\\SOFTWARE\\Korvex\\Configuration";
constexpr const char* kJet = "HKLM\\Software\\Microsoft\\Jet\\";

class Jet : public testing::Test {
 public:
  Jet() : session(machine.get(), prompts) { foundation::detectSystem(session); }
  void set(const std::string& name, const std::string& data) {
    test::RegistryView(machine.registry()).put(kConfiguration, name, data);
  }
  void makeEngine(const std::string& path) {
    test::RegistryView(machine.registry()).put(kJet + path, "", "\"\"");
  }
  std::string key(std::string_view property) {
    return std::string(onMachine(*findTweak(property), session).key);
  }
  std::string_view whyNot(std::string_view property) {
    return availability(*findTweak(property), session).reason;
  }

  test::TestMachine machine{test::Family::NineX};
  test::ScriptedPrompts prompts;
  foundation::Session session;
};

TEST_F(Jet, TheNewestIsMeantOrTheOlderOneThatIsPinned) {
  EXPECT_EQ("", jetVersionPath(session));
  for (const char* version : {"3.0", "3.5", "4.0"}) {
    makeEngine(std::string(version) + "\\Engines\\Jet " + version);
    EXPECT_EQ(std::string(version) + '\\', jetVersionPath(session));
  }
  makeEngine("3.5\\Engines\\Jet 2.x");
  makeEngine("3.5\\Engines\\Lotus");
  makeEngine("3.5\\Engines\\Text");
  for (const char* pin : {"\"3.5\"", "\"3.5\\\""}) {
    set("JetVersion", pin);
    EXPECT_EQ("3.5\\", jetVersionPath(session)) << pin;
  }
  EXPECT_EQ((std::vector<std::string>{"JET 3.5", "JET 2.X", "TEXT"}), jetEngines(session));
  for (const char* pin : {"\"2.5\"", "\"\"", "\"3\"", "dword 3"}) {
    set("JetVersion", pin);
    EXPECT_EQ("4.0\\", jetVersionPath(session)) << pin;
  }
}

TEST_F(Jet, RowsAreOfTheChosenEngineAndOfWhomTheSwitchMeans) {
  for (const char* engine : {"Jet 2.x", "Jet 3.x", "Jet 4.0", "Excel", "Text"}) {
    makeEngine(std::string("4.0\\Engines\\") + engine);
  }
  session.g_iOfficeVer = 9;
  EXPECT_EQ("Software\\Microsoft\\Jet\\4.0\\Engines\\JET 4.0", key("P_Threads"));
  set("JetSelect", "\"Jet 3.x\"");
  EXPECT_EQ("Software\\Microsoft\\Jet\\4.0\\Engines\\JET 3.X", key("P_Threads"));
  EXPECT_EQ("JET 3.X", jetSelected(session));
  set("JetSelect", "\"TEXT\"");
  EXPECT_EQ("Software\\Microsoft\\Jet\\4.0\\Engines\\JET 4.0", key("P_Threads"));
  EXPECT_EQ("TEXT", jetSelected(session));
  set("JetSelect", "\"ODBC\"");
  EXPECT_EQ("JET 2.X", jetSelected(session)) << "the first, where that one is not there";
  set("JetGlobal", "dword 0");
  session.jet.engine = "JET 2.X";
  EXPECT_EQ("Software\\Microsoft\\Access\\9.0\\Jet\\4.0\\Engines\\JET 2.X", key("P_Threads"));
  EXPECT_EQ("Software\\Microsoft\\Access\\9.0\\Jet\\4.0\\Engines\\TEXT", key("P_MaxScanRows"));
  session.jet.global = true;
  EXPECT_EQ("Software\\Microsoft\\Jet\\4.0\\Engines\\TEXT", key("P_MaxScanRows"));
  EXPECT_EQ("", whyNot("P_MaxScanRows"));
  EXPECT_NE("", whyNot("P_QueryTimeout")) << "there is no ODBC";
  set("JetModify", "dword 1");
  EXPECT_EQ("", whyNot("P_Threads"));
  set("JetModify", "dword 0");
  EXPECT_EQ(kJetIsKept, whyNot("P_Threads"));
  EXPECT_EQ(kJetIsKept, whyNot("P_rwFirstRowHasNames"));
}

}  // namespace
}  // namespace korvex::engine
