// A fresh Wine prefix in a temporary folder, shared by the tests of a program; what Wine itself and
// what Korvex say of its registry. Without Wine the tests are skipped.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "platform/common/reg_import.h"
#include "platform/wine/wine_machine.h"
#include "support/machines.h"
#include "support/registry_view.h"

namespace korvex::program {

namespace fs = std::filesystem;
using namespace platform;

using Contents = std::map<std::string, std::string>;

inline int shell(const std::string& command) {
  return system(("timeout 300 " + command + " >/dev/null 2>&1 </dev/null").c_str());
}

class WinePrefix : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (shell("sh -c 'command -v wine && command -v wineserver'") != 0) return;
    folder_ = new test::TemporaryFolder;
    setenv("WINEPREFIX", prefix().c_str(), 1);
    setenv("WINEDEBUG", "-all", 1);
    setenv("WINEDLLOVERRIDES", "mscoree,mshtml=", 1);
    ASSERT_EQ(0, shell("wineboot -i"));
    ASSERT_EQ(0, shell("wineserver -w"));
  }
  static void TearDownTestSuite() {
    if (folder_ != nullptr) shell("wineserver -k");
    delete folder_;
    folder_ = nullptr;
  }
  void SetUp() override {
    if (folder_ == nullptr) GTEST_SKIP() << "Wine is not installed";
  }

  static fs::path prefix() { return folder_->path() / "prefix"; }
  static std::unique_ptr<Machine> open(OpenMode mode) {
    auto opened = openWineMachine(prefix(), mode, "");
    EXPECT_NE(nullptr, opened.machine) << opened.message;
    return std::move(opened.machine);
  }

  // What Wine itself says of the two roots, through its registry editor.
  static Contents wineSays() {
    test::TestMachine copy(test::Family::Nt);
    const fs::path file = folder_->path() / "all.reg";
    for (const char* const root : {"HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER"}) {
      EXPECT_EQ(0, shell("wine regedit /E '" + file.string() + "' " + root));
      const auto result = importRegFile(copy.registry(), file);
      EXPECT_EQ(0, result.status) << result.message;
    }
    EXPECT_EQ(0, shell("wineserver -w"));
    return contentsOf(copy.registry());
  }
  static Contents korvexSays() { return contentsOf(open(OpenMode::Read)->registry()); }
  static Contents contentsOf(Registry& registry) {
    Contents all;
    const test::RegistryView view(registry);
    for (const char* const part : {"HKCU", "HKLM\\Software", "HKLM\\System"}) {
      view.dump(part, all);
    }
    // The copy keeps as its first control set what a prefix has as the current one.
    Contents named;
    for (auto& [place, data] : all) {
      constexpr std::string_view kFirst = "HKLM\\System\\ControlSet001";
      const bool first = place.starts_with(kFirst);
      named[first ? "HKLM\\System\\CurrentControlSet" + place.substr(kFirst.size()) : place] = data;
    }
    return named;
  }
  // What differs, with what there is instead. Wine tells of keys behind links a second time, makes
  // its display adapters anew at each start, and counts the services that it has started.
  static Contents changes(Contents before, const Contents& after) {
    Contents result;
    for (const auto& [place, data] : after) {
      if (before[place] != data) result[place] = data;
      before.erase(place);
    }
    for (const auto& [place, data] : before) {
      if (!data.empty()) result[place] = "gone";
    }
    std::erase_if(result, [](const auto& change) {
      const auto names = [&](const char* part) {
        return change.first.find(part) != std::string::npos;
      };
      return names("\\Wow6432Node\\Classes") || names("\\Control\\Video") ||
             names("\\Control\\ServiceCurrent") || names("{4D36E968-E325-11CE-BFC1-08002BE10318}");
    });
    return result;
  }

  static inline test::TemporaryFolder* folder_ = nullptr;
};

}  // namespace korvex::program
