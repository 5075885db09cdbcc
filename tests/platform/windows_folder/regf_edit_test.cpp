// Changing NT hives: what must change, and what must stay to the byte.
#include <hivex.h>

#include <cstdlib>
#include <ctime>

#include "regf_fixture.h"

namespace korvex::platform {

namespace {

using namespace regf_test;

constexpr std::uint64_t kSecondsTo1970 = 11644473600;

// "kept" with a class, a link, an odd type and odd value names, beside "other"; all times 1.
std::string furnished() {
  std::string bytes = changed(hiveFile("minimal"), [](HiveEdit& edit, HiveNode root) {
    const HiveNode kept = addKey(edit, root, "kept");
    setValue(edit, kept, "", REG_SZ, std::string("text\0", 5));
    setValue(edit, kept, "aXb", 0xFFFF0012, "123456");
    setValue(edit, kept, "M\xC3\xBC", 0x00200000, "");
    setValue(edit, kept, "\xED\xA0\x80x", REG_MULTI_SZ, std::string("a\0b\0\0", 5));
    setValue(edit, kept, "\xCE\xA9", REG_DWORD, "1234");
    setValue(edit, addKey(edit, root, "classy"), "class", REG_BINARY, "classclass");
    const HiveNode link = addKey(edit, root, "link");
    setValue(edit, link, "SymbolicLinkValue", REG_LINK, std::string("\\\0R\0", 4));
    addKey(edit, addKey(edit, root, "other"), "below");
  });
  const RegfOffset classy = regfOffset(child(bytes, "classy"));
  bend(bytes, classy, 48, valuesAt(bytes, regfNode(classy))[0].dataCell);
  write16(bytes, RegfCells::place(classy) + 74, 10);
  bend(bytes, classy, 36, 0);
  bend(bytes, regfOffset(child(bytes, "link")), 0, 0x00306B6E);  // flags: a link, narrow name
  const std::size_t name = bytes.find("aXb");
  bytes[name + 1] = '\0';
  for (const char* key : {"kept", "classy", "link", "other"}) {
    const RegfOffset cell = regfOffset(child(bytes, key));
    bend(bytes, cell, 4, 1);
    bend(bytes, cell, 8, 0);
  }
  return bytes;
}

std::string recordOf(const std::string& bytes, const char* key) {
  return std::string(RegfCells(bytes).cell(regfOffset(child(bytes, key))));
}

TEST(RegfEdit, WhatIsNotNamedStaysToTheByte) {
  const std::string before = furnished();
  const HiveNode kept = child(before, "kept");
  const std::string after = changed(before, [&](HiveEdit& edit, HiveNode) {
    setValue(edit, kept, "m\xC3\x9C", REG_SZ, "new");  // another case: the same value
    setValue(edit, kept, "added", REG_BINARY, std::string("\0\1", 2));
    EXPECT_EQ(edit.deleteValue(kept, "\xCF\x89"), ERROR_SUCCESS);
    EXPECT_EQ(edit.deleteValue(kept, "\xCF\x89"), ERROR_FILE_NOT_FOUND);
  });
  for (const char* key : {"classy", "link", "other"}) {
    EXPECT_EQ(recordOf(after, key), recordOf(before, key)) << key;
  }
  const std::vector<RegfValue> values = valuesAt(after, kept);
  const std::vector<RegfValue> old = valuesAt(before, kept);
  ASSERT_EQ(values.size(), 5U);
  std::string data;
  std::string oldData;
  for (const std::size_t i : {0, 1, 3}) {
    EXPECT_EQ(values[i].name.bytes, old[i].name.bytes);
    EXPECT_EQ(values[i].flags, old[i].flags);
    EXPECT_EQ(values[i].type, old[i].type);
    RegfCells(after).data(values[i], data);
    RegfCells(before).data(old[i], oldData);
    EXPECT_EQ(data, oldData);
  }
  EXPECT_EQ(values[1].name.bytes, std::string_view("a\0b", 3));
  EXPECT_EQ(values[2].name.text(), "M\xC3\xBC");
  EXPECT_EQ(values[2].type, REG_SZ);
  RegfCells(after).data(values[2], data);
  EXPECT_EQ(data, std::string_view("n\0e\0w\0", 6));  // no zero that was not given
  EXPECT_EQ(values[4].name.text(), "added");
}

TEST(RegfEdit, TimesAndNumbersTellTheChange) {
  const std::string before = furnished();
  const HiveNode other = child(before, "other");
  const std::string after =
      changed(before, [&](HiveEdit& edit, HiveNode) { addKey(edit, other, "new"); });
  const auto age = [&](std::uint64_t time) {
    return std::abs(std::time(nullptr) -
                    static_cast<std::time_t>(time / 10000000 - kSecondsTo1970));
  };
  EXPECT_LT(age(readNumber<std::uint64_t>(after, 12)), 60);
  EXPECT_LT(age(readNumber<std::uint64_t>(recordOf(after, "other"), 4)), 60);
  EXPECT_EQ(readNumber<std::uint64_t>(recordOf(after, "kept"), 4), 1U);
  EXPECT_EQ(read32(after, 4), read32(before, 4) + 1);
  EXPECT_EQ(read32(after, 8), read32(before, 8) + 1);
  EXPECT_EQ(openBytes(after).hive->whyReadOnly(), "");
}

TEST(RegfEdit, NewKeysStandWhereWindowsLooksForThem) {
  struct {
    std::uint32_t minor;
    const char* leaf;
    std::uint32_t second;  // what the list tells of "AB"
  } cases[] = {{3, "lf", 0x00006261}, {5, "lh", 'A' * 37 + 'B'}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.leaf);
    std::string bytes = hiveFile("minimal");
    write32(bytes, 24, each.minor);
    stampRegfHeader(bytes, 0);
    // In two changes, so that there is a list that the second must fit into.
    for (const auto& names : {std::vector<const char*>{"\xC3\xA4rger", "a"},
                              {"\xCE\xA9", "Zz", "_", "ab", "\xC3\xA4rG"}}) {
      bytes = changed(bytes, [&](HiveEdit& edit, HiveNode root) {
        for (const char* name : names) addKey(edit, root, name);
      });
    }
    const OpenedHive opened = openBytes(bytes);
    std::vector<HiveChild> children;
    ASSERT_EQ(opened.hive->children(opened.hive->root(), children), ERROR_SUCCESS);
    std::string order;
    for (const HiveChild& child : children) order += child.name + " ";
    EXPECT_EQ(order, "a ab Zz _ \xC3\xA4rG \xC3\xA4rger \xCE\xA9 ");
    const RegfCells cells(bytes);
    const std::string_view list = cells.cell(keyAt(bytes, regfNode(cells.root())).childList);
    EXPECT_EQ(list.substr(0, 2), each.leaf);
    EXPECT_EQ(read32(list, 4 + 8 + 4), each.second);
  }
}

TEST(RegfEdit, TreesGoWithTheirCountsAndHivexReadsTheRest) {
  const std::string before = furnished();
  const RegfOffset security = keyAt(before, child(before, "kept")).security;
  const std::uint32_t count = read32(RegfCells(before).cell(security), 12);
  std::string after = changed(before, [&](HiveEdit& edit, HiveNode root) {
    const HiveNode other = child(before, "other");
    const HiveNode lost = addKey(edit, other, "lost");
    setValue(edit, lost, "value", REG_SZ, "goes with its key");
    EXPECT_EQ(edit.removeTree(other), ERROR_SUCCESS);
    EXPECT_EQ(edit.setValue(lost, {"x", REG_SZ, "x"}), ERROR_KEY_DELETED);
    EXPECT_EQ(edit.removeTree(other), ERROR_KEY_DELETED);
    EXPECT_EQ(edit.removeTree(root), ERROR_ACCESS_DENIED);
  });
  EXPECT_EQ(child(after, "other"), kNoNode);
  EXPECT_EQ(read32(RegfCells(after).cell(security), 12), count - 2);  // itself and "below"

  const FileDescriptor file(::memfd_create("test", MFD_CLOEXEC));
  ASSERT_EQ(::write(file.get(), after.data(), after.size()), static_cast<ssize_t>(after.size()));
  hive_h* other = hivex_open(("/proc/self/fd/" + std::to_string(file.get())).c_str(), 0);
  ASSERT_NE(other, nullptr);
  EXPECT_EQ(hivex_node_nr_children(other, hivex_root(other)), 3U);
  EXPECT_EQ(hivex_node_nr_values(other, child(after, "kept")), 5U);
  hivex_close(other);
}

TEST(RegfEdit, ReadsOnWithTheSameNodes) {
  const OpenedHive opened = openBytes(furnished());
  Status status = ERROR_SUCCESS;
  const auto edit = opened.hive->edit(status);
  const HiveNode added = addKey(*edit, opened.hive->root(), "new");
  setValue(*edit, added, "name", REG_EXPAND_SZ, "%a%");
  std::string bytes;
  ASSERT_EQ(written(*edit, bytes), ERROR_SUCCESS);
  const auto after = edit->finish();
  ASSERT_NE(after, nullptr);
  std::vector<HiveValue> values;
  ASSERT_EQ(after->values(added, values), ERROR_SUCCESS);
  ASSERT_EQ(values.size(), 1U);
  EXPECT_EQ(values[0].data, "%a%");
  EXPECT_EQ(child(bytes, "new"), added);
}

TEST(RegfEdit, RefusesWhatTheFileCannotHold) {
  const std::string bytes = furnished();
  const OpenedHive opened = openBytes(bytes);
  Status status = ERROR_SUCCESS;
  const auto edit = opened.hive->edit(status);
  const HiveNode kept = child(bytes, "kept");
  const HiveNode link = child(bytes, "link");
  HiveNode key = kNoNode;
  std::string target;
  EXPECT_EQ(opened.hive->linkTarget(link, target), ERROR_SUCCESS);
  EXPECT_EQ(target, "\\R");
  EXPECT_EQ(edit->setValue(link, {"x", REG_SZ, ""}), ERROR_ACCESS_DENIED);
  EXPECT_EQ(edit->addKey(link, "x", key), ERROR_ACCESS_DENIED);
  EXPECT_EQ(edit->addKey(kept, std::string_view("a\0b", 3), key), ERROR_INVALID_NAME);
  EXPECT_EQ(edit->addKey(kept, "\xED\xA0\x80", key), ERROR_NO_UNICODE_TRANSLATION);
  const std::size_t largest = opened.hive->largestValue();
  EXPECT_EQ(edit->setValue(kept, {"x", REG_BINARY, std::string(largest + 1, 'x')}),
            ERROR_INVALID_PARAMETER);
  setValue(*edit, kept, "x", REG_BINARY, std::string(largest, 'x'));
  std::string after;
  EXPECT_EQ(written(*edit, after), ERROR_SUCCESS);
  EXPECT_TRUE(opened.hive->hasRoomForChildren(0, 2000));
  EXPECT_TRUE(opened.hive->hasRoomForChildren(20000, 50));
  EXPECT_FALSE(opened.hive->hasRoomForChildren(0, 20000));
  EXPECT_FALSE(opened.hive->hasRoomForChildren(1, static_cast<std::size_t>(-1)));
}

}  // namespace

}  // namespace korvex::platform
