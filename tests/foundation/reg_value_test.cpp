#include "foundation/reg_value.h"

#include "fixture.h"
#include "foundation/reg_listing.h"

namespace korvex::foundation {
namespace {

using namespace platform;
using namespace std::string_literals;
using test::Family;
using test::TestRun;
using test::text;

constexpr std::string_view kPath = R"(Software\Test)";

class RegValue : public ::testing::Test {
 protected:
  TestRun run{Family::Nt};
  Session& session = run.session;
};

TEST_F(RegValue, AMissingKeyIsMadeOnlyWhenAskedFor) {
  Status status = 0;
  EXPECT_TRUE(
      P_WriteRegValue(session, HKEY_CURRENT_USER, kPath, "v", "1", KEY_ALL_ACCESS, false, &status));
  EXPECT_EQ(status, ERROR_FILE_NOT_FOUND);
  EXPECT_FALSE(run.hasKey(HKEY_CURRENT_USER, kPath));
  EXPECT_FALSE(
      P_WriteRegValue(session, HKEY_CURRENT_USER, kPath, "v", "1", KEY_ALL_ACCESS, true, &status));
  EXPECT_EQ(status, 0);
  EXPECT_EQ(run.key(HKEY_CURRENT_USER, kPath).value("v"), text("1"));
}

TEST_F(RegValue, TheResultIsAnErrorFlag) {
  run.key(HKEY_CURRENT_USER, kPath);
  Status status = 0;
  EXPECT_TRUE(
      P_WriteRegValue(session, HKEY_CURRENT_USER, kPath, "v", "1", KEY_QUERY_VALUE, true, &status));
  EXPECT_EQ(status, ERROR_ACCESS_DENIED);
  EXPECT_TRUE(
      P_WriteRegValue(session, HKEY_CURRENT_USER, kPath, "v", {}, KEY_ALL_ACCESS, true, &status));
  EXPECT_EQ(status, ERROR_INVALID_DATA);
  EXPECT_TRUE(session.trace.contains("lRetVal&=5"s));
}

TEST_F(RegValue, ReadsTheStringFormUnlessRaw) {
  run.key(HKEY_CURRENT_USER, kPath).put("v", REG_DWORD, "\1\0\0\0"s);
  bool missing = true;
  EXPECT_EQ(P_ReadRegValue(session, HKEY_CURRENT_USER, kPath, "v", missing), Variant("1"));
  EXPECT_FALSE(missing);
  EXPECT_EQ(P_ReadRegValue(session, HKEY_CURRENT_USER, kPath, "v", missing, true),
            Variant(std::int32_t{1}));
}

TEST_F(RegValue, AMissingKeyAndAMissingValueAreTwoAnswers) {
  run.key(HKEY_CURRENT_USER, kPath);
  bool missing = true;
  EXPECT_EQ(P_ReadRegValue(session, HKEY_CURRENT_USER, kPath, "v", missing), Variant(""));
  EXPECT_FALSE(missing);
  EXPECT_TRUE(P_ReadRegValue(session, HKEY_CURRENT_USER, "No\\Such", "v", missing).isEmpty());
  EXPECT_TRUE(missing);
}

TEST_F(RegValue, ListsValuesAndSubkeysWithTheirZeros) {
  auto key = run.key(HKEY_CURRENT_USER, kPath);
  EXPECT_EQ(P_EnumRegValues(session, HKEY_CURRENT_USER, kPath, KEY_READ, false, false), "");
  key.put("b", "x");
  key.put("a", REG_DWORD, "\2\0\0\0"s);
  run.key(HKEY_CURRENT_USER, R"(Software\Test\Sub)");
  run.key(HKEY_CURRENT_USER, R"(Software\Test\Another)");

  EXPECT_EQ(P_EnumRegValues(session, HKEY_CURRENT_USER, kPath, KEY_READ, false, false),
            "b\0a\0\0"s);
  EXPECT_EQ(P_EnumRegValues(session, HKEY_CURRENT_USER, kPath, KEY_READ, false, true),
            "b=x\0a=2\0\0"s);
  EXPECT_EQ(P_EnumRegValues(session, HKEY_CURRENT_USER, kPath, KEY_READ, true, false),
            "Another\0Sub\0\0"s);
  EXPECT_EQ(P_EnumRegKeysFaster(session, HKEY_CURRENT_USER, kPath), "Another\0Sub\0"s);
  EXPECT_EQ(P_EnumRegKeysFaster(session, HKEY_CURRENT_USER, "No\\Such"), "");
}

TEST_F(RegValue, SplittingAListKeepsOnlyNames) {
  EXPECT_EQ(splitList("a\0\0b\0\0"s), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(splitList("a"), (std::vector<std::string>{"a"}));
  EXPECT_TRUE(splitList("").empty());
}

TEST_F(RegValue, AValueIsFoundInAnyCaseWhateverItHolds) {
  auto key = run.key(HKEY_CURRENT_USER, kPath);
  key.put("NoDrives", REG_BINARY, "");
  key.put("\xC3\x84nderung", "");
  const auto exists = [&](std::string_view name) {
    return P_DoesRegValueExsist(session, HKEY_CURRENT_USER, kPath, KEY_QUERY_VALUE, name);
  };
  EXPECT_TRUE(exists("nodrives"));
  EXPECT_TRUE(exists("\xC3\xA4NDERUNG"));
  EXPECT_FALSE(exists("NoDrive"));
  EXPECT_FALSE(exists(""));
  EXPECT_FALSE(P_DoesRegValueExsist(session, HKEY_CURRENT_USER, "No\\Such", KEY_READ, "v"));
}

}  // namespace
}  // namespace korvex::foundation
