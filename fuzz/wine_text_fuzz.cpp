// Feeds arbitrary bytes to what reads and writes Wine's registry text. Beyond not crashing: what is
// written without a change is what was read, and after changes the result is the tree as it was
// with just these changes.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/common/file_descriptor.h"
#include "platform/common/host_folder.h"
#include "platform/text/text.h"
#include "platform/wine/wine_text.h"

namespace {

using namespace korvex::platform;

constexpr std::size_t kMostKeys = 500;

void require(bool holds) {
  if (!holds) std::abort();
}

struct Key {
  HiveNode node = kNoNode;
  bool isLink = false;
  std::string linkTarget;
  std::map<std::string, std::pair<RegType, std::string>> values;

  bool operator==(const Key& other) const {
    return isLink == other.isLink && linkTarget == other.linkTarget && values == other.values;
  }
};
// By folded path: of two spellings of a key one may go with the lines that have it.
using Keys = std::map<std::string, Key>;

void readKey(HiveFile& hive, const std::string& path, Key key, Keys& keys) {
  std::vector<HiveValue> values;
  std::vector<HiveChild> children;
  require(hive.values(key.node, values) == ERROR_SUCCESS);
  require(hive.children(key.node, children) == ERROR_SUCCESS);
  if (key.isLink) hive.linkTarget(key.node, key.linkTarget);
  for (HiveValue& value : values) {
    key.values.insert({value.name, {value.type, std::move(value.data)}});
  }
  keys[path] = std::move(key);
  for (const HiveChild& child : children) {
    readKey(hive, path + '\\' + foldName(child.name), {child.node, child.isLink, {}, {}}, keys);
  }
}

Keys keysOf(HiveFile& hive) {
  Keys keys;
  readKey(hive, {}, {hive.root(), false, {}, {}}, keys);
  return keys;
}

std::string written(HiveEdit& edit) {
  const FileDescriptor file(::memfd_create("fuzz", MFD_CLOEXEC));
  require(edit.write(file.get()) == ERROR_SUCCESS);
  require(::lseek(file.get(), 0, SEEK_SET) == 0);
  std::string bytes;
  require(readAll(file.get(), bytes) == ERROR_SUCCESS);
  return bytes;
}

Keys::iterator pick(Keys& keys, unsigned choice) {
  auto key = keys.begin();
  std::advance(key, choice % keys.size());
  return key;
}

// True where a value of that name, in any case, is told; or a name that could be told for two.
bool isTaken(const Key& key, const std::string& name) {
  return std::any_of(key.values.begin(), key.values.end(),
                     [&](const auto& each) { return sameName(each.first, name); });
}

void setOne(HiveEdit& edit, Key& key, unsigned choice) {
  static const std::vector<HiveValue> kNew = {{"korvex fuzz", REG_SZ, std::string("\xC3\xA4\0", 3)},
                                              {"", REG_DWORD, "abcd"},
                                              {"\xED\xA0\x80", REG_SZ, "odd\xFF\x01"},
                                              {"a", REG_BINARY, std::string(60, '\x7F')},
                                              {"Z", 0xFFFF0007, "abcd"}};
  HiveValue value = kNew[choice % kNew.size()];
  if (choice % 3 == 0 && !key.values.empty()) value.name = key.values.begin()->first;
  if (isTaken(key, value.name) && !key.values.contains(value.name)) return;
  require(edit.setValue(key.node, value) == ERROR_SUCCESS);
  key.values[value.name] = {value.type, value.data};
}

void changeOne(HiveEdit& edit, Keys& keys, unsigned kind, unsigned choice) {
  const auto place = pick(keys, choice);
  Key& key = place->second;
  if (key.isLink) return;
  if (kind == 0 && place->first.empty()) {
    require(edit.removeTree(key.node) != ERROR_SUCCESS);
  } else if (kind == 0) {
    require(edit.removeTree(key.node) == ERROR_SUCCESS);
    const std::string below = place->first + '\\';
    keys.erase(place);
    std::erase_if(keys, [&](const auto& each) { return each.first.starts_with(below); });
  } else if (kind == 1 && !key.values.empty()) {
    require(edit.deleteValue(key.node, key.values.begin()->first) == ERROR_SUCCESS);
    key.values.erase(key.values.begin());
  } else if (kind == 2) {
    const std::string name = choice % 2 == 0 ? "korvex [\xC3\xA4]" : "_korvex";
    const std::string path = place->first + '\\' + foldName(name);
    HiveNode added = kNoNode;
    if (keys.contains(path) || path.size() > 1000) return;
    require(edit.addKey(key.node, name, added) == ERROR_SUCCESS);
    keys[path].node = added;
  } else {
    setOne(edit, key, choice);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  readWineTextHeader(bytes);
  const OpenedHive opened = parseWineText(bytes);
  if (opened.hive == nullptr) return 0;
  Keys keys = keysOf(*opened.hive);
  Status status = ERROR_SUCCESS;
  require(written(*opened.hive->edit(status)) == bytes);
  // Names with a NUL are told with a symbol, so that two could be told as one.
  if (keys.size() > kMostKeys || bytes.find("\\0") != std::string::npos ||
      bytes.find("\\x0") != std::string::npos || bytes.find("2400") != std::string::npos) {
    return 0;
  }
  const std::unique_ptr<HiveEdit> edit = opened.hive->edit(status);
  for (std::size_t i = 1; i <= 4 && i <= size; ++i) {
    changeOne(*edit, keys, data[size - i] % 4, data[size - i] / 4U + data[i * 37 % size]);
  }
  const OpenedHive again = parseWineText(written(*edit));
  require(again.hive != nullptr && keysOf(*again.hive) == keys);
  const std::unique_ptr<HiveFile> finished = edit->finish();
  require(keysOf(*finished) == keys);
  return 0;
}
