// Versions in program files, whole and damaged.
#include "platform/common/version_resource.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "support/program_file.h"

namespace korvex::platform {
namespace {

std::vector<std::string> programs(const FileVersion& version) {
  return {test::programWithVersion(version), test::programWithVersion(version, true),
          test::program16WithVersion(version)};
}

TEST(VersionResource, IsTheFileVersionWithTheFlagsThatCount) {
  const FileVersion expected{4, 72, 3110, 65535, VS_FF_DEBUG | VS_FF_SPECIALBUILD};
  for (const std::string& program : programs(expected)) {
    FileVersion version;
    EXPECT_EQ(ERROR_SUCCESS, readVersionResource(program, version));
    EXPECT_EQ(4, version.major);
    EXPECT_EQ(72, version.minor);
    EXPECT_EQ(3110, version.build);
    EXPECT_EQ(65535, version.revision);
    EXPECT_EQ(expected.flags, version.flags);
  }
}

TEST(VersionResource, FilesWithoutOneAreTold) {
  FileVersion version{1, 2, 3, 4, 5};
  std::string unsignedInfo = test::programWithVersion({5, 0, 1, 1, 0});
  unsignedInfo[unsignedInfo.find("\xBD\x04\xEF\xFE")] = 'x';
  std::string noResources = test::programWithVersion({5, 0, 1, 1, 0});
  test::putNumber(noResources, 0x58 + 96 + 16, 0, 4);
  for (const std::string& file :
       {std::string(), std::string("MZ"), std::string(4096, '\0'), unsignedInfo, noResources}) {
    EXPECT_EQ(ERROR_INVALID_DATA, readVersionResource(file, version));
  }
  EXPECT_EQ(3, version.build) << "nothing was found, and something was changed";
}

TEST(VersionResource, DamageGivesAVersionOrNone) {
  std::mt19937 random(2000);
  for (const std::string& program : programs({5, 0, 2195, 1, 0})) {
    FileVersion version;
    for (std::size_t length = 0; length < program.size(); ++length) {
      // A copy of its own, so that a look beyond its end is noticed.
      const std::vector<char> cut(program.begin(),
                                  program.begin() + static_cast<std::ptrdiff_t>(length));
      const Status status = readVersionResource({cut.data(), cut.size()}, version);
      EXPECT_TRUE(status == ERROR_INVALID_DATA || version.build == 2195) << length;
    }
    for (int i = 0; i < 5000; ++i) {
      std::vector<char> bent(program.begin(), program.end());
      for (int flips = 0; flips < 3; ++flips) {
        bent[random() % bent.size()] ^= static_cast<char>(1U << random() % 8);
      }
      const Status status = readVersionResource({bent.data(), bent.size()}, version);
      EXPECT_TRUE(status == ERROR_INVALID_DATA || status == ERROR_SUCCESS);
    }
  }
}

}  // namespace
}  // namespace korvex::platform
