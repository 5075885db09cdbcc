// A drive C: in a temporary folder of the host, for tests.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "platform/common/drive_folders.h"

namespace korvex::test {

class DriveTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (std::filesystem::temp_directory_path() / "korvex-drive-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    host = name;
    std::filesystem::create_directory(host / "c");
  }
  void TearDown() override {
    std::error_code ignored;
    std::filesystem::remove_all(host, ignored);
  }

  platform::DriveFolders drives(platform::DriveOptions options = {}) const {
    return platform::DriveFolders({{'C', host / "c"}}, options);
  }
  std::filesystem::path onHost(std::string_view file) const { return host / "c" / file; }
  void put(std::string_view file, std::string_view bytes) const {
    std::filesystem::create_directories(onHost(file).parent_path());
    std::ofstream(onHost(file), std::ios::binary) << bytes;
  }
  std::string get(std::string_view file) const {
    std::ifstream stream(onHost(file), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  std::vector<std::string> hostNames(std::string_view folder = "") const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(onHost(folder))) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  std::filesystem::path host;
};

}  // namespace korvex::test
