// What a window deletes comes back to the byte, once, and never over what stands there by then.
#include "engine/taken_away.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "engine/at_once.h"
#include "platform/common/composed_machine.h"
#include "platform/common/registry_decorators.h"
#include "support/machines.h"
#include "support/registry_view.h"
#include "support/scripted_prompts.h"

namespace korvex::engine {
namespace {

constexpr const char* kTree = "HKLM\\SOFTWARE\\Vendor\\Product";
constexpr const char* kDeep = "HKLM\\SOFTWARE\\Vendor\\Product\\One\\Two";

class TakenAwayTest : public testing::Test {
 protected:
  TakenAwayTest() {
    put(kTree, "", "\"the default\"");
    put(kTree, "Odd", "binary ff 00 01");
    put(kDeep, "Number", "dword 7");
    put("HKCU\\Software\\Vendor", "Order", "binary 01 02 03");
  }
  void put(const std::string& key, const std::string& name, const std::string& data) {
    test::RegistryView(machine.registry()).put(key, name, data);
  }
  std::string value(const std::string& key, const std::string& name) {
    return test::RegistryView(machine.registry()).value(key, name);
  }
  bool hasKey(const std::string& key) { return test::RegistryView(machine.registry()).hasKey(key); }
  bool change(const std::function<platform::Status()>& steps) {
    return changeAtOnce(session, "It", steps);
  }

  test::TestMachine machine{test::Family::Nt};
  test::ScriptedPrompts prompts;
  foundation::Session session{*machine, prompts};
  TakenAway trees{session, HKLM, "Uninstall"};
  TakenAway values{session, HKCU, "MenuOrder"};
};

TEST_F(TakenAwayTest, TreesAndValuesComeBackAsTheyWere) {
  ASSERT_TRUE(change([&] { return trees.removeTree("SOFTWARE\\Vendor\\Product", "A product"); }));
  ASSERT_TRUE(change([&] { return values.removeValue("Software\\Vendor", "Order", "A menu"); }));
  EXPECT_FALSE(hasKey(kTree));
  EXPECT_EQ("delete", value("HKCU\\Software\\Vendor", "Order"));

  ASSERT_EQ(1U, trees.items().size());
  EXPECT_EQ("A product", trees.items()[0].name);
  EXPECT_EQ("SOFTWARE\\Vendor\\Product", trees.items()[0].key);
  EXPECT_EQ(16U, trees.items()[0].when.size()) << trees.items()[0].when;
  ASSERT_EQ(1U, values.items().size());

  ASSERT_TRUE(change([&] { return trees.takeBack(trees.items()[0]); }));
  ASSERT_TRUE(change([&] { return values.takeBack(values.items()[0]); }));
  EXPECT_EQ("\"the default\"", value(kTree, ""));
  EXPECT_EQ("binary ff 00 01", value(kTree, "Odd"));
  EXPECT_EQ("dword 7", value(kDeep, "Number"));
  EXPECT_EQ("binary 01 02 03", value("HKCU\\Software\\Vendor", "Order"));
  EXPECT_TRUE(trees.items().empty() && values.items().empty());
}

TEST_F(TakenAwayTest, NothingIsWrittenOverAndNothingIsKeptOfWhatIsNotThere) {
  ASSERT_TRUE(change([&] { return trees.removeTree("SOFTWARE\\Vendor\\Product", "A product"); }));
  put(kTree, "Odd", "\"somebody else's\"");
  EXPECT_EQ(platform::ERROR_ALREADY_EXISTS, trees.takeBack(trees.items()[0]));
  EXPECT_EQ("\"somebody else's\"", value(kTree, "Odd"));
  EXPECT_EQ(1U, trees.items().size());
  EXPECT_EQ(platform::ERROR_FILE_NOT_FOUND, trees.removeTree("SOFTWARE\\Nothing", "x"));
  EXPECT_EQ(platform::ERROR_FILE_NOT_FOUND, values.removeValue("Software\\Vendor", "No", "x"));
  EXPECT_EQ(1U, trees.items().size());
}

TEST_F(TakenAwayTest, TheLastDeletedIsFirstAndTheOldestGoes) {
  for (int i = 0; i < 105; ++i) {
    put("HKCU\\Software\\Vendor", "Order", fmt::format("dword {}", i));
    ASSERT_TRUE(change([&] {
      return values.removeValue("Software\\Vendor", "Order", fmt::format("menu {}", i));
    }));
  }
  ASSERT_EQ(100U, values.items().size());
  EXPECT_EQ("menu 104", values.items().front().name);
  EXPECT_EQ("menu 5", values.items().back().name);
}

// Whichever call fails: the key is there whole, and no record tells otherwise.
TEST_F(TakenAwayTest, AFailureLeavesTheKeyAndNoRecord) {
  for (int nth = 1; nth < 200; ++nth) {
    platform::FailingRegistry failing(machine.registry(), nth, platform::ERROR_ACCESS_DENIED);
    platform::ComposedMachine composed(*machine, {.registry = &failing});
    foundation::Session broken(composed, prompts);
    TakenAway inBroken(broken, HKLM, "Uninstall");
    platform::Status status = platform::ERROR_SUCCESS;
    {
      platform::RegistryChange bracket(broken.registry());
      status = bracket.status();
      if (status == 0) status = inBroken.removeTree("SOFTWARE\\Vendor\\Product", "x");
      if (status == 0) status = bracket.commit();
    }
    const bool done = status == platform::ERROR_SUCCESS;
    if (done && !failing.failed()) return;
    EXPECT_EQ(done, !hasKey(kTree)) << nth;
    if (done) {
      ASSERT_TRUE(change([&] { return trees.takeBack(trees.items()[0]); }));
    }
    EXPECT_TRUE(trees.items().empty()) << nth;
    ASSERT_EQ("dword 7", value(kDeep, "Number")) << nth;
  }
  FAIL() << "it never ended";
}

}  // namespace
}  // namespace korvex::engine
