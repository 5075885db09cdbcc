// What Korvex exports, Wine's own registry editor imports to the same keys, types and bytes. Runs
// where Wine is installed, on a prefix of its own in a temporary folder.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "platform/common/reg_export.h"
#include "platform/common/reg_import.h"
#include "support/machines.h"

namespace korvex::platform {
namespace {

constexpr std::string_view kPath = "Software\\Korvex test";

struct Value {
  RegType type;
  std::string data;
  bool operator==(const Value&) const = default;
};
// Full key path and value name to value; a key itself stands under the name "\".
using Contents = std::map<std::pair<std::string, std::string>, Value>;

void collect(Registry& registry, HKEY root, const std::string& path, Contents& contents) {
  const OpenKey key(registry, root, path, KEY_READ);
  ASSERT_EQ(key.status(), ERROR_SUCCESS) << path;
  contents[{path, "\\"}] = {};
  char name[kNameBufferBytes];
  for (std::uint32_t i = 0;; ++i) {
    std::uint32_t length = sizeof name;
    std::uint32_t size = 0;
    RegType type = REG_NONE;
    if (registry.RegEnumValueA(key.get(), i, name, &length, &type, nullptr, &size) != 0) break;
    std::string data(size, '\0');
    const std::string valueName(name, length);
    ASSERT_EQ(registry.RegQueryValueExA(key.get(), valueName, &type, data.data(), &size), 0);
    contents[{path, valueName}] = {type, data};
  }
  for (std::uint32_t i = 0;; ++i) {
    std::uint32_t length = sizeof name;
    if (registry.RegEnumKeyExA(key.get(), i, name, &length) != 0) break;
    collect(registry, root, path + "\\" + std::string(name, length), contents);
  }
}

void set(Registry& registry, const std::string& path, std::string_view name, RegType type,
         std::string_view data) {
  HKEY key = 0;
  std::uint32_t disposition = 0;
  ASSERT_EQ(registry.RegCreateKeyExA(HKEY_CURRENT_USER, path, KEY_ALL_ACCESS, key, disposition), 0);
  ASSERT_EQ(registry.RegSetValueExA(key, name, type, data.data(),
                                    static_cast<std::uint32_t>(data.size())),
            0);
  registry.RegCloseKey(key);
}

using namespace std::string_literals;

void fillWithEveryKind(Registry& registry, bool unicode) {
  const std::string path(kPath);
  set(registry, path, "", REG_SZ, "the default\0"s);
  set(registry, path, "quoted \"name\" \\ with = and ;", REG_SZ, "say \"no\" to C:\\Temp\\\0"s);
  set(registry, path, "two lines", REG_SZ, "first\r\nsecond\0"s);
  set(registry, path, "empty", REG_SZ, "\0"s);
  set(registry, path, "expand", REG_EXPAND_SZ,
      "%SystemRoot%\\system32\\a long enough path to wrap\0"s);
  set(registry, path, "list", REG_MULTI_SZ, "one\0two\0\0"s);
  set(registry, path, "number", REG_DWORD, "\x78\x56\x34\x12"s);
  set(registry, path, "short number", REG_DWORD, "\x78\x56"s);
  set(registry, path, "bytes", REG_BINARY, std::string(300, '\xA5'));
  set(registry, path, "no bytes", REG_BINARY, "");
  set(registry, path, "big endian", REG_DWORD_BIG_ENDIAN, "\1\2\3\4"s);
  set(registry, path, "odd type", 0x12345, "\1\2\3"s);
  set(registry, path + "\\sub [key] \"q\"", "umlaut \xC3\xA4", REG_SZ, "gr\xC3\xBC\xC3\x9F\x65\0"s);
  if (unicode)
    set(registry, path + "\\\xD0\x9F\xD1\x80", "\xE6\x97\xA5", REG_SZ,
        "\xE2\x82\xAC \xF0\x9F\x98\x80\0"s);
}

class WineRegedit : public testing::TestWithParam<RegFormat> {
 protected:
  void SetUp() override {
    if (system("command -v wine >/dev/null && command -v wineserver >/dev/null") != 0) {
      GTEST_SKIP() << "Wine is not installed";
    }
    setenv("WINEPREFIX", (folder_.path() / "prefix").c_str(), 1);
    setenv("WINEDEBUG", "-all", 1);
    setenv("WINEDLLOVERRIDES", "mscoree,mshtml=", 1);
  }
  void TearDown() override { wine("wineserver -k"); }

  static int wine(const std::string& command) {
    return system(("timeout 120 " + command + " >/dev/null 2>&1 </dev/null").c_str());
  }

  test::TemporaryFolder folder_;
};

TEST_P(WineRegedit, ImportsWhatWeExportToTheSameKeysTypesAndBytes) {
  test::TestMachine ours(test::Family::Nt);
  test::TestMachine theirs(test::Family::Nt);
  fillWithEveryKind(ours.registry(), GetParam() == RegFormat::Version5);
  const auto exported = folder_.path() / "ours.reg";
  const auto returned = folder_.path() / "theirs.reg";

  const auto result = exportRegFile(ours.registry(), {{HKEY_CURRENT_USER, kPath}}, exported,
                                    {.format = GetParam()});
  ASSERT_EQ(result.status, ERROR_SUCCESS) << result.message;
  ASSERT_EQ(result.leftOutCount, 0u);
  ASSERT_EQ(wine("wine regedit /S '" + exported.string() + "'"), 0);
  ASSERT_EQ(wine("wine regedit /E '" + returned.string() + "' 'HKEY_CURRENT_USER\\" +
                 std::string(kPath) + "'"),
            0);
  const auto import = importRegFile(theirs.registry(), returned);
  ASSERT_EQ(import.status, ERROR_SUCCESS) << import.message;

  Contents expected;
  Contents found;
  collect(ours.registry(), HKEY_CURRENT_USER, std::string(kPath), expected);
  collect(theirs.registry(), HKEY_CURRENT_USER, std::string(kPath), found);
  // Wine writes a DWORD that is not four bytes long as garbage: nothing to compare with there.
  found[{std::string(kPath), "short number"}] = expected[{std::string(kPath), "short number"}];
  for (const auto& [place, value] : expected) {
    ASSERT_TRUE(found.contains(place)) << place.first << " : " << place.second;
    EXPECT_EQ(found[place].type, value.type) << place.first << " : " << place.second;
    EXPECT_EQ(found[place].data, value.data) << place.first << " : " << place.second;
  }
  EXPECT_EQ(found.size(), expected.size());
}

INSTANTIATE_TEST_SUITE_P(BothFormats, WineRegedit,
                         testing::Values(RegFormat::Regedit4, RegFormat::Version5),
                         [](const auto& format) {
                           return format.param == RegFormat::Regedit4 ? "Regedit4" : "Version5";
                         });

}  // namespace
}  // namespace korvex::platform
