#include "foundation/greg_tool.h"

#include "fixture.h"
#include "platform/common/registry_decorators.h"

namespace korvex::foundation {
namespace {

using namespace platform;
using namespace std::string_literals;
using test::Family;
using test::Stored;
using test::TestRun;
using test::text;

constexpr std::string_view kPath = R"(Software\Test)";
constexpr std::string_view kShellFolders =
    R"(Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders)";

class GRegToolOnNT : public ::testing::Test {
 protected:
  TestRun run{Family::Nt};
  GRegTool& tool = run.session.regTool;
  test::Key key = run.key(HKEY_CURRENT_USER, kPath);

  Stored written(const Variant& value) {
    EXPECT_EQ(tool.CreateRegValue(value, key.get(), "v"), 0);
    return key.value("v").value_or(Stored{});
  }
};

TEST_F(GRegToolOnNT, TheKindChoosesTheRegistryType) {
  EXPECT_EQ(written(std::int16_t{2}), (Stored{REG_DWORD, "\x02\0\0\0"s}));
  EXPECT_EQ(written(std::int32_t{-2}), (Stored{REG_DWORD, "\xFE\xFF\xFF\xFF"s}));
  EXPECT_EQ(written(true), (Stored{REG_DWORD, "\xFF\xFF\xFF\xFF"s}));
  EXPECT_EQ(written(false), (Stored{REG_DWORD, "\0\0\0\0"s}));
  EXPECT_EQ(written("1"), text("1"));
  EXPECT_EQ(written(""), text(""));
}

TEST_F(GRegToolOnNT, AByteArrayIsWrittenWithoutItsTwoSpareBytes) {
  EXPECT_EQ(written(ByteArray{1, 2, 3, 4, 5, 6}), (Stored{REG_BINARY, "\1\2\3\4"s}));
  EXPECT_EQ(written(ByteArray{1, 2}), (Stored{REG_BINARY, ""s}));
  EXPECT_EQ(written(ByteArray{1}), (Stored{REG_BINARY, ""s}));
}

TEST_F(GRegToolOnNT, AnEmptyVariantIsRefusedAndWritesNothing) {
  EXPECT_EQ(tool.CreateRegValue({}, key.get(), "v"), ERROR_INVALID_DATA);
  EXPECT_FALSE(key.value("v"));
}

TEST_F(GRegToolOnNT, ASecondPercentSignTwoOnMakesAnExpandableString) {
  EXPECT_EQ(written("100%").type, REG_SZ);
  EXPECT_EQ(written("%SystemRoot").type, REG_SZ);
  EXPECT_EQ(written("%%").type, REG_SZ);
  EXPECT_EQ(written("%1%").type, REG_EXPAND_SZ);
  EXPECT_EQ(written(R"(%SystemRoot%\System32\shell32.dll,-154)").type, REG_EXPAND_SZ);
  EXPECT_EQ(written(R"(%SystemRoot%\%x%)").type, REG_EXPAND_SZ);
}

TEST_F(GRegToolOnNT, ReadsEachTypeAsItsKind) {
  key.put("sz", "a\xC3\xA4");
  key.put("unterminated", REG_SZ, "abc");
  key.put("empty", REG_SZ, "");
  key.put("multi", REG_MULTI_SZ, "a\0b\0\0"s);
  key.put("expand", REG_EXPAND_SZ, "%systemroot%\\x;%nosuch%\0"s);
  key.put("dword", REG_DWORD, "\x04\x03\x02\x81"s);
  key.put("big", REG_DWORD_BIG_ENDIAN, "\x81\x02\x03\x04"s);
  key.put("binary", REG_BINARY, "\x95\0\0\0"s);
  key.put("odd", 0x1234, "\1"s);

  EXPECT_EQ(tool.GetRegValue(key.get(), "SZ"), Variant("a\xC3\xA4"));
  EXPECT_EQ(tool.GetRegValue(key.get(), "unterminated"), Variant("abc"));
  EXPECT_EQ(tool.GetRegValue(key.get(), "empty"), Variant(""));
  EXPECT_EQ(tool.GetRegValue(key.get(), "multi"), Variant("a\0b\0"s));
  EXPECT_EQ(tool.GetRegValue(key.get(), "expand"), Variant("C:\\WINNT\\x;%nosuch%"));
  const auto number = static_cast<std::int32_t>(0x81020304U);
  EXPECT_EQ(tool.GetRegValue(key.get(), "dword"), Variant(number));
  EXPECT_EQ(tool.GetRegValue(key.get(), "big"), Variant(number));
  EXPECT_EQ(tool.GetRegValue(key.get(), "binary"), Variant(ByteArray{0x95, 0, 0, 0}));
  EXPECT_EQ(tool.GetRegValue(key.get(), "odd"), Variant(ByteArray{1}));
}

TEST_F(GRegToolOnNT, AMissingValueIsEmptyOrMinusOneByTheReadMode) {
  EXPECT_TRUE(tool.GetRegValue(key.get(), "none").isEmpty());
  tool.g_sGetRegValueMode = "RETVAL";
  EXPECT_EQ(tool.GetRegValue(key.get(), "none"), Variant(std::int32_t{-1}));
}

TEST_F(GRegToolOnNT, PathReadersAnswerNothingForWhatIsNotThere) {
  key.put("text", "words");
  key.put("number", REG_DWORD, "\x02\x01\0\0"s);
  key.put("binary", REG_BINARY, "\x95\0\0\0"s);
  key.put("long", REG_BINARY, "12345"s);
  EXPECT_EQ(tool.GetRegStr(kPath, "text", HKEY_CURRENT_USER), "words");
  EXPECT_EQ(tool.GetRegStr(kPath, "number", HKEY_CURRENT_USER), "");
  EXPECT_EQ(tool.GetRegStr(kPath, "none", HKEY_CURRENT_USER), "");
  EXPECT_EQ(tool.GetRegStr("No\\Such", "text", HKEY_CURRENT_USER), "");
  EXPECT_EQ(tool.GetRegInt(kPath, "number", HKEY_CURRENT_USER), 0x102);
  EXPECT_EQ(tool.GetRegInt(kPath, "binary", HKEY_CURRENT_USER), 0x95);
  EXPECT_EQ(tool.GetRegInt(kPath, "long", HKEY_CURRENT_USER), 0);
  EXPECT_EQ(tool.GetRegInt("No\\Such", "number", HKEY_CURRENT_USER), 0);
}

TEST_F(GRegToolOnNT, ShellFolderGettersReadTheUsersKeyAndEndInABackslash) {
  EXPECT_EQ(tool.GetDesktop(), "\\");
  run.key(HKEY_CURRENT_USER, kShellFolders).put("Desktop", R"(C:\Desk)");
  run.key(HKEY_CURRENT_USER, kShellFolders).put("Common Startup", R"(C:\All)");
  run.key(HKEY_LOCAL_MACHINE, kShellFolders).put("Common Programs", R"(C:\Machine)");
  EXPECT_EQ(tool.GetDesktop(), R"(C:\Desk\)");
  EXPECT_EQ(tool.GetCommonStartup(), R"(C:\All\)");
  EXPECT_EQ(tool.GetCommonPrograms(), "\\");
}

TEST_F(GRegToolOnNT, EnumerationEndsWith259AndKeepsTypes) {
  key.put("a", "x");
  key.put("b", REG_BINARY, "\1\2"s);
  std::string name;
  Variant value;
  RegType type = 0;
  EXPECT_EQ(tool.GetRegValueNext(key.get(), 1, name, value, type, false), 0);
  EXPECT_EQ(name, "b");
  EXPECT_EQ(value, Variant(ByteArray{1, 2}));
  EXPECT_EQ(type, REG_BINARY);
  EXPECT_EQ(tool.GetRegValueNext(key.get(), 2, name, value, type, false), ERROR_NO_MORE_ITEMS);
}

TEST_F(GRegToolOnNT, ALongerSubKeyThatCameSinceTheLastQueryIsReadWhole) {
  run.key(HKEY_CURRENT_USER, R"(Software\Test\a)");
  std::string name;
  EXPECT_EQ(tool.GetRegNodeNext(key.get(), 0, name, true), 0);
  run.key(HKEY_CURRENT_USER, R"(Software\Test\b much longer than that)");
  EXPECT_EQ(tool.GetRegNodeNext(key.get(), 1, name, false), 0);
  EXPECT_EQ(name, "b much longer than that");
  EXPECT_EQ(tool.GetRegNodeNext(key.get(), 2, name, false), ERROR_NO_MORE_ITEMS);
}

TEST_F(GRegToolOnNT, ExistedTellsWhetherTheKeyStoodThere) {
  HKEY made = 0;
  bool existed = true;
  for (const bool expected : {false, true}) {
    EXPECT_EQ(tool.CreateRegNode(key.get(), "New\\Deep", made, existed, KEY_ALL_ACCESS), 0);
    EXPECT_EQ(existed, expected);
    run.machine.registry().RegCloseKey(made);
  }
}

TEST_F(GRegToolOnNT, DeletingAValueTellsWhatWasMissing) {
  key.put("v", "x");
  EXPECT_EQ(tool.DeleteRegValue(HKEY_CURRENT_USER, "", "v"), kEmptySubKey);
  EXPECT_EQ(tool.DeleteRegValue(HKEY_CURRENT_USER, "No\\Such", "v"), ERROR_FILE_NOT_FOUND);
  EXPECT_TRUE(key.value("v"));
  EXPECT_EQ(tool.DeleteRegValue(HKEY_CURRENT_USER, kPath, "v"), 0);
  EXPECT_EQ(tool.DeleteRegValue(HKEY_CURRENT_USER, kPath, "v"), ERROR_FILE_NOT_FOUND);
}

// What both families must do: a tree goes only through DeleteRegNodes.
class Trees : public ::testing::TestWithParam<Family> {
 protected:
  Trees() {
    for (const auto* path : {R"(Software\T\a\b\c)", R"(Software\T\a\d)", R"(Software\T\e)"}) {
      run.key(HKEY_CURRENT_USER, path);
    }
  }
  TestRun run{GetParam()};
  GRegTool& tool = run.session.regTool;
};

TEST_P(Trees, DeleteOneRegNodeKeepsAKeyThatHasSubkeys) {
  EXPECT_EQ(tool.DeleteOneRegNode(HKEY_CURRENT_USER, R"(Software\T\a)"), ERROR_ACCESS_DENIED);
  EXPECT_TRUE(run.hasKey(HKEY_CURRENT_USER, R"(Software\T\a\b\c)"));
  EXPECT_EQ(tool.DeleteOneRegNode(HKEY_CURRENT_USER, R"(Software\T\e)"), 0);
  EXPECT_FALSE(run.hasKey(HKEY_CURRENT_USER, R"(Software\T\e)"));
  EXPECT_EQ(tool.DeleteOneRegNode(HKEY_CURRENT_USER, R"(Software\T\e)"), ERROR_FILE_NOT_FOUND);
}

TEST_P(Trees, DeleteRegNodesTakesTheTreeAndNothingBesideIt) {
  EXPECT_EQ(tool.DeleteRegNodes(HKEY_CURRENT_USER, R"(Software\T\a)"), 0);
  EXPECT_FALSE(run.hasKey(HKEY_CURRENT_USER, R"(Software\T\a)"));
  EXPECT_TRUE(run.hasKey(HKEY_CURRENT_USER, R"(Software\T\e)"));
  EXPECT_EQ(tool.DeleteRegNodes(HKEY_CURRENT_USER, R"(Software\T\a)"), ERROR_FILE_NOT_FOUND);
}

TEST_P(Trees, ARootIsNeverEmptied) {
  EXPECT_EQ(tool.DeleteRegNodes(HKEY_CURRENT_USER, ""), ERROR_ACCESS_DENIED);
  EXPECT_TRUE(run.hasKey(HKEY_CURRENT_USER, R"(Software\T\a\b\c)"));
}

INSTANTIATE_TEST_SUITE_P(Families, Trees, ::testing::Values(Family::Nt, Family::NineX),
                         [](const auto& info) {
                           return info.param == Family::Nt ? "NT" : "NineX";
                         });

// Every registry call fails once, for good: the tool comes back with the status each time.
TEST(GRegToolFaults, ATreeThatCannotGoEndsTheLoopAndTellsWhy) {
  TestRun run(Family::Nt);
  int failures = 0;
  for (int nth = 1;; ++nth) {
    run.key(HKEY_CURRENT_USER, R"(Software\T\a\b)");
    FailingRegistry failing(run.machine.registry(), nth, ERROR_REGISTRY_IO_FAILED,
                            Afterwards::KeepFailing);
    GRegTool tool(failing, run.machine->systemInfo());
    const Status status = tool.DeleteRegNodes(HKEY_CURRENT_USER, R"(Software\T)");
    if (!failing.failed()) {
      EXPECT_EQ(status, 0);
      break;
    }
    ++failures;
    EXPECT_EQ(status, ERROR_REGISTRY_IO_FAILED) << "at call " << nth;
    EXPECT_TRUE(run.hasKey(HKEY_CURRENT_USER, R"(Software\T)"));
  }
  EXPECT_GT(failures, 5);
}

}  // namespace
}  // namespace korvex::foundation
