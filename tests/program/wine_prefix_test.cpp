// Korvex and Wine on the same prefix: what one wrote the other reads, and neither writes behind the
// other's back.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "backup/categories.h"
#include "backup/config_sets.h"
#include "backup/reg_difference.h"
#include "main_window/start_up.h"
#include "program/one_run.h"
#include "program/wine_prefix_fixture.h"

namespace korvex::program {
namespace {

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
