// Registries of real installations, where there are any on the host: KORVEX_REAL_DATA names the
// folder that holds them as *.reg, else a folder "shared/real" beside the sources is tried.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

#include "platform/common/reg_fixture.h"
#include "platform/text/reg_parser.h"
#include "platform/text/reg_writer.h"
#include "support/machines.h"

namespace korvex::platform {
namespace {

using namespace korvex::test;

std::filesystem::path realFolder() {
  if (const char* named = std::getenv("KORVEX_REAL_DATA")) return named;
  const std::filesystem::path data = KORVEX_TEST_DATA_DIR;
  return (data / "../../../shared/real").lexically_normal();
}

std::vector<std::filesystem::path> realFiles() {
  std::vector<std::filesystem::path> files;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(realFolder(), missing)) {
    if (entry.path().extension() == ".reg") files.push_back(entry.path());
  }
  return files;
}

#define SKIP_WITHOUT_REAL_FILES() \
  if (realFiles().empty())        \
  GTEST_SKIP() << "no *.reg files in " << realFolder() << "; KORVEX_REAL_DATA can name a folder"

TEST(RegRealFiles, NothingIsRefused) {
  SKIP_WITHOUT_REAL_FILES();
  for (const auto& file : realFiles()) {
    TestMachine machine{Family::Nt};
    const auto result = importRegFile(machine.registry(), file);
    EXPECT_EQ(result.status, ERROR_SUCCESS) << result.message;
    EXPECT_EQ(result.refused, 0U) << result.messages.front();
    EXPECT_GT(result.values, 0U) << file;
  }
}

// Writes down again what it hears.
class Copier : public RegTextSink {
 public:
  RegStep beginKey(std::size_t, const KeyPath& key) override {
    if (begun_) writer.endKey();
    begun_ = true;
    EXPECT_EQ(writer.beginKey(fullKeyName(key.root, key.path)), nullptr);
    return RegStep::Done;
  }
  RegStep deleteKey(std::size_t, const KeyPath&) override { return RegStep::Refused; }
  RegStep setValue(std::size_t, std::string_view name, RegType type,
                   std::string_view data) override {
    EXPECT_EQ(writer.value(name, type, data), nullptr) << name;
    return RegStep::Done;
  }
  RegStep deleteValue(std::size_t, std::string_view) override { return RegStep::Refused; }
  void problem(std::size_t line, std::string_view text) override {
    ADD_FAILURE() << line << ": " << text;
  }
  void note(std::size_t, std::string_view) override {}

  RegTextWriter writer{RegFormat::Version5, *CodePage::find(1252)};

 private:
  bool begun_ = false;
};

TEST(RegRealFiles, ReadAndWrittenAgainIsTheSameToTheByte) {
  SKIP_WITHOUT_REAL_FILES();
  for (const auto& file : realFiles()) {
    std::ifstream stream(file, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    Copier copier;
    copier.writer.header();
    RegTextParser parser(copier, *CodePage::find(1252), ShortRoots::No);
    parser.feed(text);
    parser.finish();
    copier.writer.endKey();
    EXPECT_TRUE(copier.writer.bytes() == text) << file;
  }
}

// Whether the export named this value, its key or a key above it.
bool isNamed(const std::set<std::string>& named, const std::pair<std::string, std::string>& place) {
  constexpr std::string_view reason = "the code page cannot hold it";
  const auto& [path, value] = place;
  if (named.contains(fmt::format("{}: value \"{}\": {}", path, value, reason))) return true;
  for (std::size_t end = path.size(); end != std::string::npos && end > 0;
       end = path.rfind('\\', end - 1)) {
    if (named.contains(fmt::format("{}: {}", path.substr(0, end), reason))) return true;
  }
  return false;
}

// Exports the whole registry, imports it into a fresh machine and compares: exactly what the export
// named may be missing, and nothing may have changed.
void expectRoundTrip(TestMachine& source, const RegistryContents& expected, RegFormat format) {
  RegExportOptions options;
  options.format = format;
  options.messagesKept = 100000;
  const auto copy = source.folder().parent_path() / "copy.reg";
  const auto exported = exportRegFile(source.registry(), wholeRegistry(), copy, options);
  ASSERT_EQ(exported.status, ERROR_SUCCESS) << exported.message;
  EXPECT_TRUE(format == RegFormat::Regedit4 || exported.leftOutCount == 0);
  TestMachine target{Family::Nt};
  EXPECT_EQ(importRegFile(target.registry(), copy).refused, 0U);
  const RegistryContents found = contentsOf(target.registry());
  const std::set<std::string> named(exported.leftOut.begin(), exported.leftOut.end());
  std::size_t missing = 0;
  for (const auto& [place, data] : expected) {
    const auto copied = found.find(place);
    if (copied != found.end()) {
      EXPECT_EQ(copied->second, data) << place.first << " " << place.second;
    } else {
      ++missing;
      EXPECT_TRUE(isNamed(named, place)) << place.first << " " << place.second;
    }
  }
  EXPECT_EQ(found.size() + missing, expected.size());
  EXPECT_GE(missing, exported.leftOutCount);
}

TEST(RegRealFiles, ExportComesBackInBothFormats) {
  SKIP_WITHOUT_REAL_FILES();
  for (const auto& file : realFiles()) {
    TestMachine source{Family::Nt};
    ASSERT_EQ(importRegFile(source.registry(), file).status, ERROR_SUCCESS);
    const RegistryContents expected = contentsOf(source.registry());
    expectRoundTrip(source, expected, RegFormat::Version5);
    expectRoundTrip(source, expected, RegFormat::Regedit4);
  }
}

}  // namespace
}  // namespace korvex::platform
