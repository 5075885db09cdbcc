// The simplest registry file there could be, for testing the store without a real format: a line
// "path" for each key and "path=name=text" for each value.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/hives/hive_file.h"

namespace korvex::test {

class LineHive : public platform::HiveFile {
 public:
  struct Key {
    std::string name;
    platform::HiveNode parent = 0;
    std::vector<std::pair<std::string, std::string>> values;
    bool gone = false;
  };

  explicit LineHive(const std::filesystem::path& file) : keys_(2) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
      const std::size_t name = line.find('=');
      const platform::HiveNode key = keyAt(line.substr(0, name));
      if (name == std::string::npos) continue;
      const std::size_t data = line.find('=', name + 1);
      keys_[key].values.emplace_back(line.substr(name + 1, data - name - 1),
                                     line.substr(data + 1) + '\0');
    }
  }
  explicit LineHive(std::vector<Key> keys) : keys_(std::move(keys)) {}

  platform::HiveNode root() const override { return 1; }
  platform::Status children(platform::HiveNode key,
                            std::vector<platform::HiveChild>& children) override {
    for (platform::HiveNode i = 2; i < keys_.size(); ++i) {
      if (keys_[i].parent == key && !keys_[i].gone) children.push_back({i, keys_[i].name, false});
    }
    return 0;
  }
  platform::Status values(platform::HiveNode key,
                          std::vector<platform::HiveValue>& values) override {
    for (const auto& [name, data] : keys_[key].values) {
      values.push_back({name, platform::REG_SZ, data});
    }
    return 0;
  }
  platform::Status linkTarget(platform::HiveNode, std::string&) override { return 0; }
  std::string whyReadOnly() const override { return {}; }
  std::size_t largestValue() const override { return 100; }
  bool hasRoomForChildren(std::size_t present, std::size_t added) const override {
    return present + added <= 5;
  }
  std::unique_ptr<platform::HiveEdit> edit(platform::Status& status) override;

 private:
  platform::HiveNode keyAt(const std::string& path) {
    platform::HiveNode key = 1;
    for (std::size_t start = 0; start < path.size();) {
      const std::size_t end = std::min(path.find('\\', start), path.size());
      const std::string name = path.substr(start, end - start);
      platform::HiveNode found = 2;
      while (found < keys_.size() && (keys_[found].parent != key || keys_[found].name != name)) {
        ++found;
      }
      if (found == keys_.size()) keys_.push_back({name, key, {}, false});
      key = found;
      start = end + 1;
    }
    return key;
  }

  std::vector<Key> keys_;  // 0 is no key, 1 the root
};

class LineEdit : public platform::HiveEdit {
 public:
  explicit LineEdit(std::vector<LineHive::Key> keys) : keys_(std::move(keys)) {}

  platform::Status addKey(platform::HiveNode parent, std::string_view name,
                          platform::HiveNode& key) override {
    key = keys_.size();
    keys_.push_back({std::string(name), parent, {}, false});
    return 0;
  }
  platform::Status removeTree(platform::HiveNode key) override {
    keys_[key].gone = true;
    for (platform::HiveNode i = 2; i < keys_.size(); ++i) {
      if (keys_[i].parent == key && !keys_[i].gone) removeTree(i);
    }
    return 0;
  }
  platform::Status setValue(platform::HiveNode key, const platform::HiveValue& value) override {
    for (auto& [name, data] : keys_[key].values) {
      if (name != value.name) continue;
      data = value.data;
      return 0;
    }
    keys_[key].values.emplace_back(value.name, value.data);
    return 0;
  }
  platform::Status deleteValue(platform::HiveNode key, std::string_view name) override {
    return std::erase_if(keys_[key].values, [&](const auto& v) { return v.first == name; }) > 0
               ? 0
               : platform::ERROR_FILE_NOT_FOUND;
  }
  platform::Status write(int file) override {
    std::string text;
    for (platform::HiveNode i = 2; i < keys_.size(); ++i) {
      if (keys_[i].gone) continue;
      std::string path = keys_[i].name;
      for (platform::HiveNode up = keys_[i].parent; up > 1; up = keys_[up].parent) {
        path = keys_[up].name + '\\' + path;
      }
      text += path + '\n';
      for (const auto& [name, data] : keys_[i].values) {
        text += path + '=' + name + '=' + data.substr(0, data.find('\0')) + '\n';
      }
    }
    return ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size())
               ? 0
               : platform::ERROR_DISK_FULL;
  }
  std::unique_ptr<platform::HiveFile> finish() override {
    return std::make_unique<LineHive>(std::move(keys_));
  }

 private:
  std::vector<LineHive::Key> keys_;
};

inline std::unique_ptr<platform::HiveEdit> LineHive::edit(platform::Status& status) {
  status = 0;
  return std::make_unique<LineEdit>(keys_);
}

}  // namespace korvex::test
