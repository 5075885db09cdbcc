// NT hives for tests, made of the smallest valid one.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/windows_folder/hive_lookup.h"
#include "platform/windows_folder/regf_hive.h"

namespace korvex::test {

struct HiveText {
  std::string key;  // a path below the root
  std::string name;
  std::string text;
};

// A hive with these keys and texts; a text without a name makes the key only.
inline void writeHive(const std::filesystem::path& file, const std::vector<HiveText>& texts) {
  namespace p = platform;
  std::filesystem::create_directories(file.parent_path());
  const auto opened = p::openRegfHive(KORVEX_TEST_DATA_DIR "/hives/minimal");
  if (!opened.hive) throw std::runtime_error(opened.message);
  p::Status status = 0;
  const auto edit = opened.hive->edit(status);
  std::map<std::string, p::HiveNode> keys{{"", opened.hive->root()}};
  for (const HiveText& text : texts) {
    std::string path;
    for (std::size_t start = 0; start < text.key.size() && status == 0;) {
      const std::size_t end = std::min(text.key.find('\\', start), text.key.size());
      const std::string parent = path;
      path = text.key.substr(0, end);
      if (!keys.contains(path)) {
        status = edit->addKey(keys[parent], text.key.substr(start, end - start), keys[path]);
      }
      start = end + 1;
    }
    if (status == 0 && !text.name.empty()) {
      status = edit->setValue(keys[path], {text.name, p::REG_SZ, text.text + '\0'});
    }
  }
  const int target = ::open(file.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0666);
  if (status == 0) status = edit->write(target);
  ::close(target);
  if (status != 0) throw std::runtime_error(file.string() + ": " + std::to_string(status));
}

}  // namespace korvex::test
