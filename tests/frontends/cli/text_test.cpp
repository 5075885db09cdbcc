// Keys and values as people type and read them.
#include <gtest/gtest.h>

#include <functional>

#include "cli/failure.h"
#include "cli/key_path.h"
#include "cli/tweak_names.h"
#include "cli/value_text.h"

namespace korvex::cli {
namespace {

using std::string_literals::operator""s;

std::string failureKind(const std::function<void()>& action) {
  try {
    action();
  } catch (const Failure& failure) {
    EXPECT_EQ(ExitCode::Usage, failure.code());
    return failure.kind();
  }
  return "";
}

TEST(KeyPath, RootIsTakenInAnyCaseAndLength) {
  EXPECT_EQ("HKEY_CURRENT_USER\\Control Panel", parseKey("hkcu\\Control Panel").full());
  EXPECT_EQ("HKEY_LOCAL_MACHINE\\A\\b", parseKey("HKEY_Local_Machine\\A\\b\\").full());
  EXPECT_EQ("HKEY_USERS", parseKey("HKU").full());
  for (const char* bad : {"", "HKXX\\A", "Software", "\\HKCU", "HKCU\\\\A", "HKCU\\A\\\\B"}) {
    EXPECT_EQ("bad-key", failureKind([bad] { parseKey(bad); })) << bad;
  }
}

struct ValueCase {
  std::string type;
  std::vector<std::string> data;
  std::string bytes;
  std::string shown;
};

TEST(ValueText, DataIsReadAndShownAsWritten) {
  const std::vector<ValueCase> cases{
      {"REG_SZ", {"a b"}, "a b\0"s, "a b"},
      {"reg_expand_sz", {"%A%"}, "%A%\0"s, "%A%"},
      {"REG_SZ", {}, "\0"s, ""},
      {"REG_DWORD", {"0xB5"}, "\xB5\0\0\0"s, "0xb5 (181)"},
      {"REG_DWORD", {"4294967295"}, "\xFF\xFF\xFF\xFF", "0xffffffff (4294967295)"},
      {"REG_DWORD_BIG_ENDIAN", {"1"}, "\0\0\0\1"s, "0x1 (1)"},
      {"REG_QWORD", {"0x100000000"}, "\0\0\0\0\1\0\0\0"s, "0x100000000 (4294967296)"},
      {"REG_MULTI_SZ", {"one", "two"}, "one\0two\0\0"s, "one\\0two"},
      {"REG_MULTI_SZ", {"one\\0two"}, "one\0two\0\0"s, "one\\0two"},
      {"REG_MULTI_SZ", {}, "\0"s, ""},
      {"REG_BINARY", {"0a,1B ff"}, "\x0A\x1B\xFF", "0a1bff"},
      {"REG_NONE", {}, "", ""},
      {"REG_TYPE_0x63", {"01"}, "\x01", "01"},
  };
  for (const ValueCase& each : cases) {
    const Value value = parseValue(each.type, each.data);
    EXPECT_EQ(each.bytes, value.bytes) << each.type;
    EXPECT_EQ(each.shown, displayText(value)) << each.type;
  }
}

TEST(ValueText, NonsenseIsRefused) {
  const std::vector<std::pair<std::string, std::vector<std::string>>> cases{
      {"REG_DWORD", {"4294967296"}}, {"REG_DWORD", {"-1"}},
      {"REG_DWORD", {"1x"}},         {"REG_DWORD", {""}},
      {"REG_DWORD", {"0x"}},         {"REG_QWORD", {"18446744073709551616"}},
      {"REG_BINARY", {"abc"}},       {"REG_BINARY", {"0g"}},
      {"REG_SZ", {"a", "b"}},        {"REG_MULTI_SZ", {"a", ""}},
  };
  for (const auto& [type, data] : cases) {
    EXPECT_EQ("bad-data", failureKind([&type = type, &data = data] { parseValue(type, data); }))
        << type << data[0];
  }
  EXPECT_EQ("bad-type", failureKind([] { parseValue("REG_SZZ", {"a"}); }));
  EXPECT_EQ("bad-type", failureKind([] { parseValue("REG_TYPE_0x", {"a"}); }));
}

TEST(ValueText, HexIsWhatNtStoresAndTextsCannotSteerATerminal) {
  EXPECT_EQ("e9000000", hexOf({platform::REG_SZ, "\xC3\xA9\0"s}));
  EXPECT_EQ("01ff", hexOf({platform::REG_BINARY, "\x01\xFF"}));
  EXPECT_EQ("a\\x1b[2Jb\\x0d\\x9b\xC3\xA9", printable("a\x1B[2Jb\r\xC2\x9B\xC3\xA9"));
  // A number of another width is shown as the bytes that it is.
  EXPECT_EQ("0102", displayText({platform::REG_DWORD, "\x01\x02"}));
}

TEST(TweakNames, PrefixIsOptionalAndTyposGetHelp) {
  EXPECT_EQ("P_rwRun", tweakNamed("run").property);
  EXPECT_EQ("P_rwRun", tweakNamed("P_RWRUN").property);
  EXPECT_EQ("P_rwRun", nearestNames("Rum", {"P_rwFind", "P_rwRun"}).at(0));
  EXPECT_TRUE(nearestNames("Zzzzzz", {"P_rwFind", "P_rwRun"}).empty());
  EXPECT_EQ("unknown-tweak", failureKind([] { tweakNamed(""); }));
  EXPECT_EQ("unknown-tweak", failureKind([] { tweakNamed("P_rw"); }));
}

}  // namespace
}  // namespace korvex::cli
