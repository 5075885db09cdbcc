// NT hives that are whole, dirty, old, cut off and damaged.
#include <hivex.h>

#include <cstdlib>
#include <random>

#include "regf_fixture.h"

namespace korvex::platform {

namespace {

using namespace regf_test;

struct HeaderCase {
  const char* what;
  std::size_t at;
  std::uint32_t number;
  bool sumIsRight;
  Status status;
  const char* says;
};

TEST(RegfHeader, OnlyWhatWindowsHasFinishedMayBeWritten) {
  const HeaderCase cases[] = {
      {"another kind of file", 0, 0x47455243, true, ERROR_NOT_REGISTRY_FILE, "not a registry file"},
      {"a log", 28, 1, true, ERROR_NOT_REGISTRY_FILE, "log"},
      {"another format", 20, 2, true, ERROR_NOT_REGISTRY_FILE, "does not know"},
      {"numbers that differ", 4, 7, true, ERROR_SUCCESS, "Start Windows once and shut it down"},
      {"a wrong sum", 508, 7, false, ERROR_SUCCESS, "Start Windows once and shut it down"},
      {"Windows NT 3", 24, 2, true, ERROR_SUCCESS, "before NT 4"},
      {"a format to come", 24, 7, true, ERROR_SUCCESS, "does not know"},
      {"more bins than bytes", 40, 0x2000, true, ERROR_SUCCESS, "cut off"},
      {"no root", 36, 0x28, true, ERROR_BADDB, "damaged"},
  };
  for (const HeaderCase& each : cases) {
    SCOPED_TRACE(each.what);
    std::string bytes = hiveFile("minimal");
    write32(bytes, each.at, each.number);
    if (each.sumIsRight) stampRegfHeader(bytes, 0);
    const OpenedHive opened = openBytes(bytes);
    ASSERT_EQ(opened.status, each.status);
    const std::string said = opened.hive ? opened.hive->whyReadOnly() : opened.message;
    EXPECT_NE(said.find(each.says), std::string::npos) << said;
    if (!opened.hive) continue;
    std::vector<HiveValue> values;
    EXPECT_EQ(opened.hive->values(opened.hive->root(), values), ERROR_SUCCESS);
    Status status = ERROR_SUCCESS;
    EXPECT_EQ(opened.hive->edit(status), nullptr);
    EXPECT_EQ(status, ERROR_WRITE_PROTECT);
  }
}

// Compares a key and all below it with what hivex tells.
void expectSame(HiveFile& hive, HiveNode key, hive_h* other, int& keys, int& all) {
  ++keys;
  std::vector<HiveValue> values;
  ASSERT_EQ(hive.values(key, values), ERROR_SUCCESS);
  hive_value_h* theirs = hivex_node_values(other, key);
  for (const HiveValue& value : values) {
    const hive_value_h their = theirs[&value - values.data()];
    hive_type type{};
    std::size_t size = 0;
    char* data = hivex_value_value(other, their, &type, &size);
    char* name = hivex_value_key(other, their);
    EXPECT_EQ(value.name, name);
    EXPECT_EQ(value.type, static_cast<RegType>(type));
    EXPECT_EQ(regfDataFromText(value.type, value.data), std::string(data, size));
    std::free(name);
    std::free(data);
    ++all;
  }
  EXPECT_EQ(theirs[values.size()], 0U);
  std::free(theirs);
  std::vector<HiveChild> children;
  ASSERT_EQ(hive.children(key, children), ERROR_SUCCESS);
  EXPECT_EQ(children.size(), hivex_node_nr_children(other, key));
  for (const HiveChild& each : children) {
    char* name = hivex_node_name(other, each.node);
    EXPECT_EQ(each.name, name);
    std::free(name);
    expectSame(hive, each.node, other, keys, all);
  }
}

TEST(RegfHive, TellsWhatHivexTells) {
  const OpenedHive opened = openBytes(hiveFile("unicode"));
  ASSERT_NE(opened.hive, nullptr);
  hive_h* other = hivex_open(KORVEX_TEST_DATA_DIR "/hives/unicode", 0);
  ASSERT_NE(other, nullptr);
  int keys = 0;
  int values = 0;
  expectSame(*opened.hive, opened.hive->root(), other, keys, values);
  EXPECT_EQ(keys, 3);
  EXPECT_EQ(values, 22);
  hivex_close(other);
}

TEST(RegfHive, ReadsDataThatLiesInPieces) {
  const std::string first(16344, 'a');
  std::string bytes = changed(hiveFile("minimal"), [&](HiveEdit& edit, HiveNode root) {
    setValue(edit, root, "long", REG_BINARY, "1234");
    setValue(edit, root, "head", REG_BINARY, "dbdbdbdb");
    setValue(edit, root, "list", REG_BINARY, "listlist");
    setValue(edit, root, "first", REG_BINARY, first);
    setValue(edit, root, "second", REG_BINARY, "bbbbbbbb");
  });
  const RegfOffset root = RegfCells(bytes).root();
  const std::vector<RegfValue> values = valuesAt(bytes, regfNode(root));
  const RegfOffset value = read32(RegfCells(bytes).cell(keyAt(bytes, regfNode(root)).valueList), 0);
  write16(bytes, RegfCells::place(values[1].dataCell) + 2, 2);
  bend(bytes, values[1].dataCell, 4, values[2].dataCell);
  bend(bytes, values[2].dataCell, 0, values[3].dataCell);
  bend(bytes, values[2].dataCell, 4, values[4].dataCell);
  bend(bytes, value, 4, 16344 + 6);
  bend(bytes, value, 8, values[1].dataCell);
  bend(bytes, root, 36, 1);
  const OpenedHive opened = openBytes(bytes);
  std::vector<HiveValue> read;
  ASSERT_EQ(opened.hive->values(opened.hive->root(), read), ERROR_SUCCESS);
  ASSERT_EQ(read.size(), 1U);
  EXPECT_EQ(read[0].data, first + "bbbbbb");
  EXPECT_EQ(opened.hive->whyReadOnly(), "");
  // hivex would write it into one cell, which Windows could not read.
  Status status = ERROR_SUCCESS;
  EXPECT_EQ(opened.hive->edit(status)->setValue(opened.hive->root(), {"x", REG_DWORD, "1234"}),
            ERROR_NOT_SUPPORTED);
}

// Three keys, one below the other, and a value with data of its own in each.
std::string chain() {
  return changed(hiveFile("minimal"), [](HiveEdit& edit, HiveNode root) {
    HiveNode key = root;
    for (const char* name : {"one", "two", "three"}) {
      key = addKey(edit, key, name);
      setValue(edit, key, "value", REG_SZ, "some text");
      setValue(edit, key, "other", REG_SZ, "other text");
    }
  });
}

TEST(RegfHive, DamageOfOneKeyIsToldForThatKeyAndForbidsWriting) {
  const std::string whole = chain();
  const HiveNode one = child(whole, "one");
  const RegfOffset root = RegfCells(whole).root();
  const std::vector<RegfValue> values = valuesAt(whole, one);
  const RegfOffset firstValue = read32(RegfCells(whole).cell(keyAt(whole, one).valueList), 0);
  struct {
    const char* what;
    RegfOffset cell;
    std::size_t field;
    std::uint32_t number;
    Status children, values;
  } cases[] = {
      {"no data, but a cell for them", firstValue, 4, 0, ERROR_SUCCESS, ERROR_SUCCESS},
      {"its own ancestor's list", regfOffset(one), 28, keyAt(whole, regfNode(root)).childList,
       ERROR_BADDB, ERROR_SUCCESS},
      {"more subkeys than listed", regfOffset(one), 20, 2, ERROR_BADDB, ERROR_SUCCESS},
      {"more values than listed", regfOffset(one), 36, 0x10000000, ERROR_SUCCESS, ERROR_BADDB},
      {"a list outside of the file", regfOffset(one), 40, 0x7FFFFFF8, ERROR_SUCCESS, ERROR_BADDB},
      {"a class that is another's cell", regfOffset(one), 48, values[0].dataCell, ERROR_SUCCESS,
       ERROR_SUCCESS},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.what);
    std::string bytes = whole;
    bend(bytes, each.cell, each.field, each.number);
    if (each.cell == firstValue) bend(bytes, firstValue, 8, kNoCell);
    const OpenedHive opened = openBytes(bytes);
    ASSERT_NE(opened.hive, nullptr);
    EXPECT_NE(opened.hive->whyReadOnly().find("damaged"), std::string::npos);
    std::vector<HiveChild> children;
    std::vector<HiveValue> read;
    EXPECT_EQ(opened.hive->children(one, children), each.children);
    EXPECT_EQ(opened.hive->values(one, read), each.values);
    EXPECT_EQ(opened.hive->children(regfNode(root), children), ERROR_SUCCESS);
  }
}

// Reads all, changes something and reads the result; false where nothing could be changed.
bool survives(std::string bytes, unsigned choice) {
  const OpenedHive opened = openBytes(std::move(bytes));
  if (!opened.hive) return false;
  std::vector<HiveNode> keys{opened.hive->root()};
  for (std::size_t i = 0; i < keys.size(); ++i) {
    EXPECT_LT(i, 1000U);
    std::vector<HiveChild> children;
    std::vector<HiveValue> values;
    opened.hive->values(keys[i], values);
    if (opened.hive->children(keys[i], children) != ERROR_SUCCESS) continue;
    for (const HiveChild& each : children) keys.push_back(each.node);
  }
  Status status = ERROR_SUCCESS;
  const auto edit = opened.hive->edit(status);
  if (!edit) return false;
  const HiveNode key = keys[choice % keys.size()];
  HiveNode added = kNoNode;
  edit->setValue(key, {"value", REG_SZ, "new"});
  edit->addKey(key, "new", added);
  edit->removeTree(keys.back());
  std::string after;
  if (written(*edit, after) != ERROR_SUCCESS) return false;
  EXPECT_EQ(openBytes(after).hive->whyReadOnly(), "");
  return true;
}

TEST(RegfHive, NoDamageCrashesOrGoesRound) {
  std::mt19937 random(1);
  int changedOnes = 0;
  const std::string hives[] = {chain(), hiveFile("unicode")};
  for (unsigned i = 0; i < 4000; ++i) {
    std::string bytes = hives[i % 2];
    const std::size_t room = bytes.size() - kRegfHeaderSize;
    for (unsigned flips = 1 + random() % 4; flips > 0; --flips) {
      char& hit = bytes[kRegfHeaderSize + random() % room];
      hit = static_cast<char>(hit ^ (1 << random() % 8));
      const std::size_t from = kRegfHeaderSize + random() % (room / 4) * 4;
      const std::size_t to = kRegfHeaderSize + random() % (room / 4) * 4;
      if (i % 3 == 0) write32(bytes, to, read32(bytes, from));
    }
    if (i % 10 == 0) bytes.resize(random() % bytes.size());
    changedOnes += survives(std::move(bytes), i) ? 1 : 0;
  }
  EXPECT_GT(changedOnes, 400);  // much of a hive is free space
}

}  // namespace

}  // namespace korvex::platform
