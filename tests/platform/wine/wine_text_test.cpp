// What is read of Wine's registry text, and what a change leaves to the byte.
#include "platform/wine/wine_text.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <functional>
#include <regex>

#include "platform/common/file_descriptor.h"
#include "platform/common/host_folder.h"

namespace korvex::platform {
namespace {

const std::string kStart =
    "WINE REGISTRY Version 2\n;; All keys relative to REGISTRY\\\\Machine\n\n";

std::string zeroEnded(std::string text) { return text += '\0'; }

std::unique_ptr<HiveFile> opened(const std::string& keys) {
  OpenedHive result = parseWineText(kStart + keys);
  EXPECT_NE(result.hive, nullptr) << result.message;
  return std::move(result.hive);
}

HiveNode find(HiveFile& hive, std::string_view path) {
  HiveNode node = hive.root();
  while (!path.empty() && node != kNoNode) {
    const std::string_view name = path.substr(0, path.find('\\'));
    path.remove_prefix(std::min(path.size(), name.size() + 1));
    std::vector<HiveChild> children;
    EXPECT_EQ(hive.children(node, children), ERROR_SUCCESS);
    node = kNoNode;
    for (const HiveChild& child : children) {
      if (child.name == name) node = child.node;
    }
  }
  return node;
}

// "name=type:data" of each, a line each, with a dot for each NUL.
std::string told(HiveFile& hive, std::string_view path) {
  std::vector<HiveValue> values;
  EXPECT_EQ(hive.values(find(hive, path), values), ERROR_SUCCESS);
  std::string text;
  for (const HiveValue& each : values) {
    text += each.name + '=' + std::to_string(each.type) + ':' + each.data + '\n';
  }
  std::replace(text.begin(), text.end(), '\0', '.');
  return text;
}

std::string toldOf(const std::string& lines) { return told(*opened("[k] 1\n" + lines), "k"); }

std::string written(HiveEdit& edit) {
  const FileDescriptor file(::memfd_create("test", MFD_CLOEXEC));
  EXPECT_EQ(edit.write(file.get()), ERROR_SUCCESS);
  ::lseek(file.get(), 0, SEEK_SET);
  std::string bytes;
  EXPECT_EQ(readAll(file.get(), bytes), ERROR_SUCCESS);
  return bytes;
}

// Behind the start, after a change, with T for the times that are those of the change.
std::string changed(const std::string& keys,
                    const std::function<void(HiveEdit&, HiveFile&)>& change) {
  const auto hive = opened(keys);
  Status status = ERROR_SUCCESS;
  const auto edit = hive->edit(status);
  change(*edit, *hive);
  const std::string text = written(*edit);
  EXPECT_EQ(text.substr(0, kStart.size()), kStart);
  return std::regex_replace(text.substr(kStart.size()),
                            std::regex("\\] [0-9]{10}\\b(\n#time=[0-9a-f]{15}\\b)?"), "] T$1");
}

std::string withTime(const std::string& text) {
  return std::regex_replace(text, std::regex("#time=1d[0-9a-f]{13}\\b"), "#time=T");
}

std::function<void(HiveEdit&, HiveFile&)> setting(const std::string& path, HiveValue value) {
  return [=](HiveEdit& edit, HiveFile& hive) {
    EXPECT_EQ(edit.setValue(find(hive, path), value), ERROR_SUCCESS);
  };
}

HiveNode addKey(HiveEdit& edit, HiveNode parent, std::string_view name) {
  HiveNode key = kNoNode;
  EXPECT_EQ(edit.addKey(parent, name, key), ERROR_SUCCESS);
  return key;
}

TEST(WineText, ValuesAreReadAsWineReadsThem) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"\"a\"=\"x\\\\y\\\"z\" ;more\n", "a=1:x\\y\"z.\n"},
      {"@=str:\"\"\n", "=1:.\n"},
      {"\"a\" = str(2):\"%p%\"\n", "a=2:%p%.\n"},
      {"  \"a\"=str(7):\"b\\0c\\0\"\r\n", "a=7:b.c..\n"},
      {"\"\\x20ac\\xd83d\\xde00\\xe9g\"=\"\\x00e9a\\xd83d\"\n",
       "\u20AC\U0001F600\u00E9g=1:\u00E9a\xED\xA0\xBD.\n"},
      {"\"a\"=\"\\t\\e\\1\\0001b\\q\\x\"\n", "a=1:\t\x1B\x01.1bqx.\n"},
      {"\"a\"=\"\xC3\xA9\xFF\xF0\x9F\x98\x80\"\n", "a=1:\u00E9\U0001F600.\n"},
      {"\"a\"=dword:00343332\n\"b\"=dword:-1\n", "a=4:234.\nb=4:\xFF\xFF\xFF\xFF\n"},
      {"\"a\"=hex:41,42,\\ x\n\n\"b\"=hex:1\n", "a=3:AB\nb=3:\x01\n"},
      {"\"a\"=hex(ffff0012):41,\\\n  42,0x43,44,\n", "a=4294901778:ABCD\n"},
      {"\"a\"=hex(1):41,00,42\n\"b\"=hex(7):\n",
       "a=1:A\xFF"
       "B\nb=7:\n"},
      {"\"a\"=\"1\"\n\"b\"=\"2\"\n\"A\"=\"3\"\n", "a=1:3.\nb=1:2.\n"},
      {"\"n\\0m\"=\"x\"\n", "n\u2400m=1:x.\n"},
  };
  for (const auto& [lines, expected] : cases) EXPECT_EQ(toldOf(lines), expected) << lines;
}

TEST(WineText, WhatCannotBeReadIsNoValueAndLosesNoOther) {
  const std::string after = "\"z\"=\"ok\"\n";
  for (const std::string lines :
       {"\"a\"=\"open\n", "\"a\n", "\"a\":\"x\"\n", "\"a\"=hex:1,,2\n", "\"a\"=hex:100\n",
        "\"a\"=hex:zz\n", "\"a\"=str(1):\"x\"\n", "\"a\"=HEX:1\n", "\"a\"=hex(3:1\n", "a=1\n",
        "\"a\"=hex:1,\\\n  ,2\n", "\"a\"=hex:1,\\\n\"lost\"=\"x\"\n", "\"a\"=hex:1,\\\n[key]\n"}) {
    EXPECT_EQ(toldOf(lines + after), "z=1:ok.\n") << lines;
    // It stays, and in its place.
    const std::string text = changed("[k] 1\n" + lines + after, setting("k", {"m", REG_NONE, "A"}));
    EXPECT_NE(text.find(lines), std::string::npos) << lines;
    EXPECT_EQ(toldOf(text.substr(text.find('\n') + 1)), "m=0:A\nz=1:ok.\n") << lines;
  }
}

TEST(WineText, KeysAreReadAsWineReadsThem) {
  const auto hive = opened(
      "[a\\\\\\\\B \\[\\x20ac\\]\\\\c\\\\] 5\n#class=\"C\"\n\n[A] 1\n\"x\"=\"1\"\n[bad\n"
      "\"lost\"=hex:1,\\\n[A\\\\l] 3\n#link\n"
      "\"symboliclinkvalue\"=hex(6):5c,00,52,00\n[a]\n\"y\"=\"2\"\n[a\\\\n\\0l] 1\n\n[] "
      "1\n\"r\"=\"0\"\n");
  EXPECT_NE(find(*hive, "a\\B [\u20AC]\\c"), kNoNode);
  EXPECT_EQ(told(*hive, "a"), "x=1:1.\ny=1:2.\n");
  EXPECT_EQ(told(*hive, "a\\B [\u20AC]"), "");
  EXPECT_EQ(told(*hive, ""), "r=1:0.\n");
  std::vector<HiveChild> children;
  ASSERT_EQ(hive->children(find(*hive, "a"), children), ERROR_SUCCESS);
  ASSERT_EQ(children.size(), 2U);
  EXPECT_FALSE(children[0].isLink);
  EXPECT_TRUE(children[1].isLink);
  std::string target;
  EXPECT_EQ(hive->linkTarget(children[1].node, target), ERROR_SUCCESS);
  EXPECT_EQ(target, "\\R");
  EXPECT_EQ(hive->linkTarget(children[0].node, target), ERROR_FILE_NOT_FOUND);
  std::string deep = "[";
  for (int level = 0; level < 600; ++level) deep += "d\\\\";
  EXPECT_EQ(find(*opened(deep + "] 1\n"), "d"), kNoNode);
}

TEST(WineText, ValuesAreWrittenAsWineWritesThem) {
  const std::vector<std::pair<HiveValue, std::string>> cases = {
      {{"", REG_SZ,
        zeroEnded("a\"b\\[]\n\x01"
                  "8\x01"
                  "7\x7F")},
       R"(@="a\"b\\[]\n\18\0017)"
       "\x7F\""},
      {{"n\u00E9a", REG_EXPAND_SZ, zeroEnded("\u20AC1\U0001F600")},
       R"("n\x00e9a"=str(2):"\x20ac1\xd83d\xde00")"},
      {{"m", REG_MULTI_SZ, zeroEnded(zeroEnded("a"))}, R"("m"=str(7):"a\0")"},
      {{"m", REG_MULTI_SZ, zeroEnded("")}, R"("m"=str(7):"")"},
      {{"u", REG_SZ, "a"}, "\"u\"=hex(1):61,00"},
      {{"o", REG_EXPAND_SZ,
        "a\xFF"
        "b"},
       "\"o\"=hex(2):61,00,62"},
      {{"e", REG_SZ, ""}, "\"e\"=hex(1):"},
      {{"d", REG_DWORD,
        "\x01"
        "234"},
       "\"d\"=dword:34333201"},
      {{"d", REG_DWORD, "123"}, "\"d\"=hex(4):31,32,33"},
      {{"t", 0xFFFF0012, "1"}, "\"t\"=hex(ffff0012):31"},
      {{"longer", REG_BINARY, std::string(25, '1')},
       "\"longer\"=hex:31,31,31,31,31,31,31,31,31,31,31,31,31,31,31,31,31,31,31,31,31,31,\\\n"
       "  31,31,31"},
  };
  for (const auto& [value, line] : cases) {
    const std::string text = changed("[k] 1\n#time=1\n", setting("k", value));
    EXPECT_EQ(withTime(text), "[k] T\n#time=T\n" + line + '\n');
    std::vector<HiveValue> values;
    const auto again = opened(text);
    ASSERT_EQ(again->values(find(*again, "k"), values), ERROR_SUCCESS);
    ASSERT_EQ(values.size(), 1U) << line;
    EXPECT_EQ(values[0].name + values[0].data, value.name + value.data) << line;
    EXPECT_EQ(values[0].type, value.type) << line;
  }
}

TEST(WineText, AChangeTouchesItsOwnLinesOnly) {
  const std::string before =
      "#arch=win32\n#new=option\n\n[A] 11\n#time=1dd7abfd6dfab20\n\"x\"=\"1\"\n\n[B\\\\k] 22 ;s\n"
      "#class=\"C\"\n ;c\n#time=5\n#other=1\n\"M\"=hex:01,\\\n  02\n\"b\" = \"x\" ;y\n\"c\"=\"z\"\n"
      "?\n\n;end\n\n[C] ;n\n\"m\"=\"1\"\n\"x\"=dword:1\n\"M\"=\"2\"";
  EXPECT_EQ(changed(before, [](HiveEdit&, HiveFile&) {}), before);
  const auto edited = [](HiveEdit& edit, HiveFile& hive) {
    const HiveNode key = find(hive, "B\\k");
    EXPECT_EQ(edit.setValue(key, {"B", REG_DWORD, std::string(4, '\0')}), ERROR_SUCCESS);
    EXPECT_EQ(edit.setValue(key, {"Z", REG_NONE, "z"}), ERROR_SUCCESS);
    EXPECT_EQ(edit.setValue(key, {"_", REG_NONE, "_"}), ERROR_SUCCESS);  // not sorted: at the end
    EXPECT_EQ(edit.deleteValue(key, "m"), ERROR_SUCCESS);
    EXPECT_EQ(edit.deleteValue(key, "m"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(edit.deleteValue(find(hive, "C"), "m"), ERROR_SUCCESS);
  };
  EXPECT_EQ(withTime(changed(before, edited)),
            "#arch=win32\n#new=option\n\n[A] 11\n#time=T\n\"x\"=\"1\"\n\n[B\\\\k] T ;s\n"
            "#class=\"C\"\n ;c\n#time=T\n#other=1\n\"b\" =dword:00000000\n\"c\"=\"z\"\n"
            "\"_\"=hex(0):5f\n\"Z\"=hex(0):7a\n?\n\n;end\n\n[C] T ;n\n#time=T\n\"x\"=dword:1\n");
  EXPECT_EQ(withTime(changed("[k] 1\n\"a\"=hex:\n\"C\"=hex:\n", setting("k", {"B", 3, ""}))),
            "[k] T\n#time=T\n\"a\"=hex:\n\"B\"=hex:\n\"C\"=hex:\n");
}

TEST(WineText, KeysComeAndGoWhereWineSortsThem) {
  const std::string before =
      "[A\\\\b] 1\n\n[C\\\\d] 2\n\"x\"=\"1\"\n\n[c\\\\D\\\\e] 3\n\n[E] 4\n\n[E\\\\f] 4\n\n[C\\\\d] "
      "5\n\"y\"=\"2\"\n";
  const auto edited = [](HiveEdit& edit, HiveFile& hive) {
    const HiveNode top = addKey(edit, hive.root(), "D");
    addKey(edit, addKey(edit, top, "z [\u00E9]"), "below");
    addKey(edit, top, "_");
    EXPECT_EQ(edit.setValue(addKey(edit, hive.root(), "z"), {"v", 3, "1"}), ERROR_SUCCESS);
    EXPECT_EQ(edit.setValue(find(hive, "C"), {"v", 3, "1"}), ERROR_SUCCESS);
    EXPECT_EQ(edit.removeTree(find(hive, "C\\d")), ERROR_SUCCESS);
    EXPECT_EQ(edit.removeTree(find(hive, "E\\f")), ERROR_SUCCESS);
    EXPECT_EQ(edit.removeTree(find(hive, "A\\b")), ERROR_SUCCESS);  // "A" stays
    EXPECT_EQ(edit.removeTree(addKey(edit, top, "gone")), ERROR_SUCCESS);
    HiveNode none = kNoNode;
    for (const std::string_view name : {"", "a\\b"}) EXPECT_NE(edit.addKey(top, name, none), 0);
    EXPECT_NE(edit.addKey(find(hive, "C\\d"), "x", none), ERROR_SUCCESS);
    EXPECT_NE(edit.removeTree(hive.root()), ERROR_SUCCESS);
  };
  EXPECT_EQ(withTime(changed(before, edited)),
            "[A] T\n#time=T\n\n[C] T\n#time=T\n\"v\"=hex:31\n\n[D\\\\_] T\n#time=T\n"
            "\n[D\\\\z \\[\\xe9\\]\\\\below] T\n#time=T\n\n[E] T\n#time=T\n\n[z] "
            "T\n#time=T\n\"v\"=hex:31\n");
}

// A line that ends in a comma and a backslash takes whatever comes behind it.
TEST(WineText, NothingIsAddedToAValueThatIsCutOff) {
  const auto edited = [](HiveEdit& edit, HiveFile& hive) { addKey(edit, hive.root(), "z"); };
  for (const std::string end : {"\"a\"=hex:1,\\", "\"a\"=hex:1,\\\n"}) {
    const std::string text = changed("[k] 1\n" + end, edited);
    EXPECT_EQ(text.find("[k] 1\n" + end), 0U);
    const auto again = opened(text);
    EXPECT_EQ(told(*again, "k"), "");
    EXPECT_NE(find(*again, "z"), kNoNode);
    EXPECT_EQ(toldOf(changed("[k] 1\n" + end, setting("k", {"b", 3, "1"})).substr(7)), "b=3:1\n");
    const auto replaced = [&](HiveEdit& edit, HiveFile& hive) {
      EXPECT_EQ(edit.removeTree(find(hive, "k")), ERROR_SUCCESS);
      edited(edit, hive);
    };
    EXPECT_EQ(withTime(changed("[k] 1\n" + end, replaced)), "[z] T\n#time=T\n");
  }
}

TEST(WineText, ThePlacesOfKeysOutliveWriting) {
  auto hive = opened("[a\\\\b] 1\n\"x\"=\"1\"\n");
  const HiveNode old = find(*hive, "a\\b");
  HiveNode added = kNoNode;
  for (int round = 0; round < 3; ++round) {
    Status status = ERROR_SUCCESS;
    const auto edit = hive->edit(status);
    const std::string data(1, static_cast<char>('0' + round));
    if (round == 0) added = addKey(*edit, find(*hive, "a"), "c");
    for (const HiveNode key : {old, added}) EXPECT_EQ(edit->setValue(key, {"n", 3, data}), 0);
    const std::string before = told(*hive, "a\\b");
    const std::string text = written(*edit);
    EXPECT_EQ(told(*hive, "a\\b"), before);
    hive = edit->finish();
    EXPECT_EQ(find(*hive, "a\\c"), added);
    const auto again = parseWineText(text).hive;
    for (HiveFile* each : {hive.get(), again.get()}) {
      EXPECT_EQ(told(*each, "a\\b"), "n=3:" + data + "\nx=1:1.\n");
      EXPECT_EQ(told(*each, "a\\c"), "n=3:" + data + "\n");
    }
  }
}

TEST(WineText, OtherFilesAreRefused) {
  for (const std::string text : {"", "REGEDIT4\n", "WINE REGISTRY Version 1\n",
                                 "WINE REGISTRY Version 22\n", " WINE REGISTRY Version 2\n"}) {
    const OpenedHive result = parseWineText(text + "[k] 1\n");
    EXPECT_EQ(result.status, ERROR_NOT_REGISTRY_FILE) << text;
    EXPECT_FALSE(result.message.empty());
  }
  EXPECT_EQ(openWineText("/").status, ERROR_NOT_REGISTRY_FILE);
  EXPECT_EQ(openWineText("/nowhere/system.reg").status, ERROR_FILE_NOT_FOUND);
}

TEST(WineText, TheHeaderTellsRootAndArchitecture) {
  WineTextHeader header = readWineTextHeader(kStart + "#arch=win64\n\n[k] 1\n#arch=win32\n");
  EXPECT_EQ(header.root, "REGISTRY\\Machine");
  EXPECT_EQ(header.arch, "win64");
  header =
      readWineTextHeader("WINE REGISTRY Version 2\n;; All keys relative to \\\\User\\\\.Default");
  EXPECT_EQ(header.root, "REGISTRY\\User\\.Default");
  EXPECT_EQ(header.arch, "");
}

}  // namespace
}  // namespace korvex::platform
