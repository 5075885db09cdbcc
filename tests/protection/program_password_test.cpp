// The password in the registry: what opens, what stands there, and what a failure leaves.
#include "protection/program_password.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/common/registry_decorators.h"
#include "platform/secrets/sodium_password_hash.h"
#include "support/machines.h"
#include "support/plain_hash.h"
#include "support/registry_view.h"

namespace korvex::protection {
namespace {

using Match = ProgramPassword::Match;

const std::string kKey = "HKCR\\Korvex.Protection";

class Protection : public testing::TestWithParam<test::Family> {
 public:
  Protection() : machine(GetParam()) {}
  test::RegistryView view() { return test::RegistryView(machine.registry()); }

  test::TestMachine machine;
  foundation::GRegTool regTool{machine.registry(), machine->systemInfo()};
  test::PlainHash hash;
  ProgramPassword password{regTool, hash};
};

INSTANTIATE_TEST_SUITE_P(Families, Protection,
                         testing::Values(test::Family::Nt, test::Family::NineX));

TEST_P(Protection, OpensForThePasswordInAnyCaseAndForNothingElse) {
  EXPECT_FALSE(password.isSet());
  EXPECT_EQ(Match::None, password.check(""));
  std::string code;
  ASSERT_EQ(0, password.set("Stra\xC3\x9F"
                            "e \xC3\x84rger",
                            code));
  EXPECT_TRUE(password.isSet());
  EXPECT_EQ(Match::Password, password.check("stra\xC3\x9F"
                                            "E \xC3\xA4RGER"));
  EXPECT_EQ(Match::None, password.check("strase arger"));
  EXPECT_EQ(Match::None, password.check(""));
  EXPECT_EQ(Match::ResetCode, password.check(code));
  EXPECT_EQ(
      "\"2|STRA\xC3\x9F"
      "E \xC3\x84RGER\"",
      view().value(kKey, "Encrypted"));
}

TEST_P(Protection, ANewPasswordTakesTheOldOneAndItsCodeAway) {
  std::string first, second;
  ASSERT_EQ(0, password.set("one", first));
  ASSERT_EQ(0, password.set("two", second));
  EXPECT_EQ(Match::None, password.check("one"));
  EXPECT_EQ(Match::None, password.check(first));
  EXPECT_EQ(Match::ResetCode, password.check(second));
  ASSERT_EQ(0, password.clear());
  EXPECT_FALSE(password.isSet());
  EXPECT_FALSE(view().hasKey(kKey));
  EXPECT_EQ(0, password.clear()) << "none there is no error";
}

TEST_P(Protection, AnEmptyPasswordIsNone) {
  std::string code;
  EXPECT_EQ(platform::ERROR_INVALID_PARAMETER, password.set("", code));
  EXPECT_FALSE(password.isSet());
}

// Whoever damages the value must not be let in by it.
TEST_P(Protection, AValueThatIsNoHashOpensForNothing) {
  view().put(kKey, "Encrypted", "dword 1");
  EXPECT_TRUE(password.isSet());
  EXPECT_EQ(Match::None, password.check("1"));
  view().put(kKey, "Encrypted", "\"\"");
  EXPECT_TRUE(password.isSet());
  EXPECT_EQ(Match::None, password.check(""));
}

TEST_P(Protection, AFailingWriteLeavesThePasswordAsItWas) {
  std::string code, unused;
  ASSERT_EQ(0, password.set("old", code));
  int failures = 0;
  for (int nth = 1;; ++nth) {
    ASSERT_LT(nth, 50);
    platform::FailingRegistry failing(machine.registry(), nth, platform::ERROR_DISK_FULL);
    foundation::GRegTool tool(failing, machine->systemInfo());
    ProgramPassword changed(tool, hash);
    if (changed.set("new", unused) == 0 && !failing.failed()) break;
    ++failures;
    EXPECT_EQ(Match::Password, password.check("old")) << nth;
    EXPECT_EQ(Match::ResetCode, password.check(code)) << nth;
  }
  EXPECT_GE(failures, 4) << "the bracket, the key, two values";
  EXPECT_EQ(Match::Password, password.check("new"));
}

TEST(SodiumPasswordHash, KnowsItsPasswordsAndRefusesWhatIsNoHashOfItsOwn) {
  platform::SodiumPasswordHash hash;
  const std::string made = hash.of("PASSWORD");
  EXPECT_NE(made, hash.of("PASSWORD")) << "the salt";
  EXPECT_EQ(std::string::npos, made.find("PASSWORD"));
  EXPECT_TRUE(hash.matches(made, "PASSWORD"));
  EXPECT_FALSE(hash.matches(made, "PASSWORd"));
  EXPECT_FALSE(hash.matches(made, ""));
  for (const std::string& wrong :
       {std::string(), std::string("PASSWORD"), made.substr(0, made.size() / 2),
        std::string(500, '$'),
        // Four gigabytes, a million rounds: nobody waits for it.
        std::string("$argon2id$v=19$m=4194304,t=1000000,p=1$c29tZXNhbHRzb21lc2FsdA$"
                    "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA")}) {
    EXPECT_FALSE(hash.matches(wrong, "PASSWORD")) << wrong;
  }
  const std::string code = hash.randomCode();
  EXPECT_EQ(24u, code.size()) << code;
  EXPECT_NE(code, hash.randomCode());
}

}  // namespace
}  // namespace korvex::protection
