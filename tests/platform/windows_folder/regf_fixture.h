// Hives for tests: in memory, grown from the smallest valid one, and bent where a test needs it.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/common/file_descriptor.h"
#include "platform/common/host_folder.h"
#include "platform/windows_folder/regf_bytes.h"
#include "platform/windows_folder/regf_cells.h"
#include "platform/windows_folder/regf_edit.h"
#include "platform/windows_folder/regf_header.h"
#include "platform/windows_folder/regf_reader.h"

namespace korvex::platform::regf_test {

inline std::string hiveFile(const std::string& name) {
  const FileDescriptor file(
      ::open((KORVEX_TEST_DATA_DIR "/hives/" + name).c_str(), O_RDONLY | O_CLOEXEC));
  std::string bytes;
  EXPECT_EQ(readAll(file.get(), bytes), ERROR_SUCCESS);
  return bytes;
}

inline OpenedHive openBytes(std::string bytes) {
  return openRegfBytes(std::make_shared<std::string>(std::move(bytes)), {});
}

inline Status written(HiveEdit& edit, std::string& bytes) {
  const FileDescriptor file(::memfd_create("test", MFD_CLOEXEC));
  if (const Status status = edit.write(file.get())) return status;
  ::lseek(file.get(), 0, SEEK_SET);
  return readAll(file.get(), bytes);
}

// The hive after a change that must work.
inline std::string changed(const std::string& bytes,
                           const std::function<void(HiveEdit&, HiveNode root)>& change) {
  const OpenedHive opened = openBytes(bytes);
  Status status = ERROR_SUCCESS;
  const auto edit = opened.hive->edit(status);
  EXPECT_EQ(status, ERROR_SUCCESS) << opened.hive->whyReadOnly();
  change(*edit, opened.hive->root());
  std::string result;
  EXPECT_EQ(written(*edit, result), ERROR_SUCCESS);
  return result;
}

inline HiveNode addKey(HiveEdit& edit, HiveNode parent, std::string_view name) {
  HiveNode key = kNoNode;
  EXPECT_EQ(edit.addKey(parent, name, key), ERROR_SUCCESS) << name;
  return key;
}

inline void setValue(HiveEdit& edit, HiveNode key, const std::string& name, RegType type,
                     std::string data) {
  EXPECT_EQ(edit.setValue(key, {name, type, std::move(data)}), ERROR_SUCCESS) << name;
}

inline HiveNode child(const std::string& bytes, std::string_view name) {
  const RegfReader reader(bytes);
  std::vector<HiveChild> children;
  EXPECT_EQ(reader.children(regfNode(reader.cells().root()), children), ERROR_SUCCESS);
  for (const HiveChild& each : children) {
    if (each.name == name) return each.node;
  }
  return kNoNode;
}

inline RegfKey keyAt(const std::string& bytes, HiveNode node) {
  RegfKey key;
  EXPECT_EQ(RegfCells(bytes).key(regfOffset(node), key), ERROR_SUCCESS);
  return key;
}

inline std::vector<RegfValue> valuesAt(const std::string& bytes, HiveNode node) {
  const RegfCells cells(bytes);
  std::vector<RegfOffset> offsets;
  EXPECT_EQ(cells.valueList(keyAt(bytes, node), offsets), ERROR_SUCCESS);
  std::vector<RegfValue> values(offsets.size());
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    EXPECT_EQ(cells.value(offsets[i], values[i]), ERROR_SUCCESS);
  }
  return values;
}

// Puts a number into a cell: the fields of keys are 20 the number of subkeys, 28 their list, 36
// the number of values, 40 their list, 48 the class.
inline void bend(std::string& bytes, RegfOffset cell, std::size_t field, std::uint32_t number) {
  write32(bytes, RegfCells::place(cell) + field, number);
}

}  // namespace korvex::platform::regf_test
