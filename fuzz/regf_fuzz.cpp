// Feeds arbitrary bytes to what reads and writes NT hives. Beyond not crashing: every walk ends,
// and a change that was written is there when the result is read.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/common/file_descriptor.h"
#include "platform/common/host_folder.h"
#include "platform/windows_folder/regf_edit.h"
#include "platform/windows_folder/regf_header.h"

namespace {

using namespace korvex::platform;

constexpr std::size_t kMostKeys = 2000;

void require(bool holds) {
  if (!holds) std::abort();
}

// The keys that can be read, parents first. The depth is bounded by the check of the hive.
std::vector<HiveNode> keysOf(HiveFile& hive) {
  std::vector<HiveNode> keys{hive.root()};
  std::vector<HiveChild> children;
  std::vector<HiveValue> values;
  std::string target;
  for (std::size_t i = 0; i < keys.size() && keys.size() < kMostKeys; ++i) {
    hive.values(keys[i], values);
    hive.linkTarget(keys[i], target);
    const HiveNode key = keys[i];
    if (hive.children(key, children) != ERROR_SUCCESS) continue;
    for (const HiveChild& each : children) keys.push_back(each.node);
  }
  return keys;
}

bool hasValue(HiveFile& hive, HiveNode key, const std::string& name, const std::string& data) {
  std::vector<HiveValue> values;
  require(hive.values(key, values) == ERROR_SUCCESS);
  for (const HiveValue& each : values) {
    if (each.name == name) return each.data == data;
  }
  return false;
}

bool hasChild(HiveFile& hive, HiveNode key, HiveNode child) {
  std::vector<HiveChild> children;
  require(hive.children(key, children) == ERROR_SUCCESS);
  for (const HiveChild& each : children) {
    if (each.node == child) return true;
  }
  return false;
}

void changeAndReadBack(HiveFile& hive, std::size_t choice) {
  const std::vector<HiveNode> keys = keysOf(hive);
  const HiveNode changed = keys[choice % keys.size()];
  const HiveNode removed = keys[choice / 3 % keys.size()];
  Status status = ERROR_SUCCESS;
  const std::unique_ptr<HiveEdit> edit = hive.edit(status);
  if (edit == nullptr) return;
  HiveNode added = kNoNode;
  const bool isSet = edit->setValue(changed, {"korvex fuzz", REG_SZ, "\xC3\xA4"}) == ERROR_SUCCESS;
  const bool isAdded = edit->addKey(changed, "korvex fuzz \xC3\xA4", added) == ERROR_SUCCESS;
  const bool isRemoved = choice % 2 == 0 && edit->removeTree(removed) == ERROR_SUCCESS;

  const FileDescriptor file(::memfd_create("fuzz", MFD_CLOEXEC));
  if (edit->write(file.get()) != ERROR_SUCCESS) return;
  auto bytes = std::make_shared<std::string>();
  require(::lseek(file.get(), 0, SEEK_SET) == 0);
  require(readAll(file.get(), *bytes) == ERROR_SUCCESS);
  const OpenedHive again = openRegfBytes(std::move(bytes), {});
  require(again.hive != nullptr && again.hive->whyReadOnly().empty());
  keysOf(*again.hive);
  if (isRemoved) return;  // it may have taken the changed key with it
  require(!isSet || hasValue(*again.hive, changed, "korvex fuzz", "\xC3\xA4"));
  require(!isAdded || hasChild(*again.hive, changed, added));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto bytes = std::make_shared<std::string>(reinterpret_cast<const char*>(data), size);
  const std::size_t choice = size == 0 ? 0 : data[size - 1];
  // Most of what is behind the header would never be reached with a wrong sum in it.
  if (size > kRegfHeaderSize) stampRegfHeader(*bytes, 0);
  const OpenedHive opened = openRegfBytes(std::move(bytes), {});
  if (opened.hive != nullptr) {
    keysOf(*opened.hive);
    changeAndReadBack(*opened.hive, choice);
  }
  return 0;
}
