// Korvex and Wine on the same prefix: what one wrote the other reads, and neither writes behind the
// other's back. Runs where Wine is installed, on a prefix of its own in a temporary folder.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>

#include "backup/categories.h"
#include "backup/config_sets.h"
#include "backup/reg_difference.h"
#include "main_window/start_up.h"
#include "platform/common/reg_import.h"
#include "platform/wine/wine_machine.h"
#include "program/one_run.h"
#include "support/machines.h"
#include "support/registry_view.h"

namespace korvex::program {
namespace {

namespace fs = std::filesystem;
using namespace platform;

using Contents = std::map<std::string, std::string>;

int shell(const std::string& command) {
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

  static test::TemporaryFolder* folder_;
};

test::TemporaryFolder* WinePrefix::folder_ = nullptr;

TEST_F(WinePrefix, EveryTweakReachesWineAsItWasWritten) {
  const Contents wineBefore = wineSays();
  const Contents before = korvexSays();
  ASSERT_GT(before.size(), 20000u) << "this is not the registry of a prefix";
  {
    const auto machine = open(OpenMode::ReadWrite);
    OneRun run(*machine);
    run.putSupportFiles();
    const std::string help = machine->systemInfo().GetWindowsDirectoryA() + "\\Help";
    machine->files().createFolder(help);
    EXPECT_EQ(0, machine->files().replace(help + "\\Windows.hlp", "help"));
    run.clickAll();
    run.apply();
  }
  const Contents written = changes(before, korvexSays());
  EXPECT_GT(written.size(), 100u);
  const Contents wineFound = changes(wineBefore, wineSays());
  for (const auto& [place, data] : written) {
    const auto found = wineFound.find(place);
    EXPECT_TRUE(found != wineFound.end() && found->second == data)
        << place << ": " << data << ", but Wine has "
        << (found == wineFound.end() ? "what it had" : found->second);
  }
  // Wine itself changes little of its own accord when it starts.
  std::size_t others = 0;
  for (const auto& [place, data] : wineFound) {
    if (written.contains(place)) continue;
    ++others;
    EXPECT_LT(others, 20u) << place << ": " << data;
  }
}

TEST_F(WinePrefix, WhatWineWroteStaysAsItIs) {
  const auto readAll = [] {
    std::string text;
    for (const char* const name : {"system.reg", "user.reg", "userdef.reg"}) {
      std::ostringstream file;
      file << std::ifstream(prefix() / name).rdbuf();
      text += file.str();
    }
    return text;
  };
  const std::string before = readAll();
  {
    const auto machine = open(OpenMode::ReadWrite);
    const OneRun run(*machine);
  }
  EXPECT_TRUE(before == readAll()) << "opening a window wrote to the prefix";

  const Contents earlier = wineSays();
  const Contents wine = wineSays();
  {
    const auto machine = open(OpenMode::ReadWrite);
    const test::RegistryView view(machine->registry());
    view.put("HKCU\\Software\\Korvex test", "v", "\"1\"");
    ASSERT_EQ(0, machine->registry().flush());
    ASSERT_EQ(0, machine->registry().RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\Korvex test"));
    ASSERT_EQ(0, machine->registry().flush());
  }
  // Wine itself writes the time of its start here and there.
  Contents found = changes(wine, wineSays());
  for (const auto& [place, data] : changes(earlier, wine)) found.erase(place);
  EXPECT_EQ(found, Contents{});
}

TEST_F(WinePrefix, WhileWineRunsItIsReadAndNotWritten) {
  const auto early = open(OpenMode::ReadWrite);
  ASSERT_EQ(0, shell("wineserver -p"));
  ASSERT_EQ(0, shell("wine reg query HKCU"));
  const auto refused = openWineMachine(prefix(), OpenMode::ReadWrite, "");
  EXPECT_EQ(nullptr, refused.machine);
  EXPECT_EQ(ERROR_BUSY, refused.status);
  EXPECT_NE(std::string::npos, refused.message.find("wineserver")) << refused.message;
  EXPECT_FALSE(korvexSays().empty());
  EXPECT_EQ(ERROR_BUSY, early->registry().beginChange());
  ASSERT_EQ(0, shell("wineserver -k"));
  ASSERT_EQ(0, shell("wineserver -w"));
  EXPECT_EQ(0, early->registry().beginChange());
  early->registry().rollbackChange();
}

// Every file of a saved set, as Windows 98 and as Windows 2000 write them.
TEST_F(WinePrefix, TakesEveryFileOfASavedSetToTheSameValues) {
  for (const char* const sample : {"windows-98", "windows-2000"}) {
    test::TestMachine saving{std::string(sample)};
    test::ScriptedPrompts prompts;
    foundation::Session session(*saving, prompts);
    main_window::detectReadOnly(session);
    backup::RegistryBacker backer(session);
    backup::ConfigSets sets(session, backer);
    backup::SaveRequest request{"All", "C:\\Saves", {}, {}};
    for (const backup::Category& category : backup::categories()) {
      if (backup::whyNotSaved(session, category).empty()) request.tags.emplace_back(category.tag);
    }
    const backup::SaveOutcome saved = sets.save(request, {});
    ASSERT_EQ(0, saved.status) << saved.message;
    ASSERT_EQ(0U, saved.failed.size()) << saved.failed.front().reason;

    std::vector<fs::path> files;
    std::string arguments;
    for (const auto& entry : fs::recursive_directory_iterator(saving.driveC() / "Saves" / "All")) {
      if (entry.path().extension() != ".reg") continue;
      files.push_back(entry.path());
      arguments += " '" + entry.path().string() + "'";
    }
    ASSERT_LT(50U, files.size());
    ASSERT_EQ(0, shell("wine regedit /S" + arguments));
    ASSERT_EQ(0, shell("wineserver -w"));

    const auto prefix = open(OpenMode::Read);
    for (const fs::path& file : files) {
      std::ifstream stream(file, std::ios::binary);
      const std::string text{std::istreambuf_iterator<char>(stream), {}};
      std::string different;
      const auto result = backup::compareRegText(
          prefix->registry(), [&](const auto& take) { return take(text); }, {},
          [&](const backup::RegChange& one) { different += one.path + " | " + one.name + "\n"; });
      EXPECT_EQ(0, result.status) << file << ": " << result.message;
      EXPECT_EQ("", different) << file;
      EXPECT_EQ(0U, result.problems.size()) << file;
    }
  }
}

}  // namespace
}  // namespace korvex::program
