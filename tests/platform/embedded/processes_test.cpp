// Several processes on one machine: nothing is lost, and a kill leaves whole changes only.
#include <sqlite3.h>

#include <chrono>
#include <cstring>
#include <random>
#include <thread>

#include "platform/contract/registry_access.h"
#include "support/child_process.h"
#include "support/machines.h"

namespace korvex::platform {
namespace {

using test::ChildProcess;
using test::RegistryAccess;
using test::TestMachine;

constexpr const char* kPlace = "SOFTWARE\\Together";

std::uint32_t numberAt(RegistryAccess& access, const std::string& path, const char* name) {
  std::uint32_t number = 0;
  const std::string bytes = access.get(HKEY_LOCAL_MACHINE, path, name);
  if (bytes.size() == sizeof number) std::memcpy(&number, bytes.data(), sizeof number);
  return number;
}

Status setNumber(RegistryAccess& access, const std::string& path, const char* name,
                 std::uint32_t number) {
  const std::string_view bytes(reinterpret_cast<const char*>(&number), sizeof number);
  return access.set(HKEY_LOCAL_MACHINE, path, name, bytes, REG_DWORD);
}

// Counts up, and makes a key for each step, many times.
int countUp(TestMachine& machine, const std::string& who, int steps) {
  const auto mine = machine.open(OpenMode::ReadWrite);
  RegistryAccess access(mine->registry());
  for (int i = 0; i < steps; ++i) {
    RegistryChange change(mine->registry());
    if (change.status() != ERROR_SUCCESS) return 1;
    const std::uint32_t next = numberAt(access, kPlace, "count") + 1;
    const std::string key = std::string(kPlace) + "\\" + who + std::to_string(i);
    if (access.create(HKEY_LOCAL_MACHINE, key) != ERROR_SUCCESS) return 2;
    if (setNumber(access, kPlace, "count", next) != ERROR_SUCCESS) return 3;
    if (change.commit() != ERROR_SUCCESS) return 4;
  }
  return 0;
}

TEST(EmbeddedProcesses, TwoWritersLoseNothing) {
  TestMachine machine{test::Family::Nt};
  machine.close();
  constexpr int kSteps = 150;
  ChildProcess first([&] { return countUp(machine, "a", kSteps); });
  ChildProcess second([&] { return countUp(machine, "b", kSteps); });
  EXPECT_EQ(first.wait(), 0);
  EXPECT_EQ(second.wait(), 0);
  machine.reopen(OpenMode::Read);
  RegistryAccess access(machine.registry());
  EXPECT_EQ(numberAt(access, kPlace, "count"), 2U * kSteps);
  EXPECT_EQ(access.subKeys(HKEY_LOCAL_MACHINE, kPlace).size(), 2U * kSteps);
}

// Each step writes its number in two keys and tells the parent when it is on the disk.
int writePairs(TestMachine& machine, std::uint32_t from, int told) {
  const auto mine = machine.open(OpenMode::ReadWrite);
  RegistryAccess access(mine->registry());
  for (std::uint32_t i = from;; ++i) {
    RegistryChange change(mine->registry());
    if (setNumber(access, "SOFTWARE\\Left", "n", i) != ERROR_SUCCESS) return 1;
    const std::string key = "SOFTWARE\\Step" + std::to_string(i % 50);
    if (i % 2 == 0) {
      access.create(HKEY_LOCAL_MACHINE, key);
    } else {
      mine->registry().RegDeleteKeyA(HKEY_LOCAL_MACHINE, key);
    }
    if (setNumber(access, "SOFTWARE\\Right", "n", i) != ERROR_SUCCESS) return 2;
    if (change.commit() != ERROR_SUCCESS) return 3;
    if (i % 8 == 0 && mine->registry().flush() != ERROR_SUCCESS) return 4;
    if (write(told, &i, sizeof i) != sizeof i) return 5;
  }
}

// The last number that came through the pipe.
std::uint32_t lastTold(int pipe, std::uint32_t last) {
  std::uint32_t number = 0;
  while (read(pipe, &number, sizeof number) == sizeof number) last = number;
  return last;
}

bool isSound(const std::filesystem::path& folder) {
  sqlite3* database = nullptr;
  bool sound = false;
  const auto note = [](void* result, int, char** values, char**) {
    *static_cast<bool*>(result) = std::strcmp(values[0], "ok") == 0;
    return 0;
  };
  sqlite3_open((folder / "registry.db").c_str(), &database);
  sqlite3_exec(database, "PRAGMA integrity_check", note, &sound, nullptr);
  sqlite3_close(database);
  return sound;
}

TEST(EmbeddedProcesses, AKillLeavesWholeChanges) {
  TestMachine machine{test::Family::Nt};
  machine.close();
  std::mt19937 random(20000217);
  std::uniform_int_distribution<int> microseconds(500, 20000);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  std::uint32_t last = 0;
  int kills = 0;
  for (; kills < 250 && std::chrono::steady_clock::now() < end; ++kills) {
    int told[2];
    ASSERT_EQ(pipe(told), 0);
    ChildProcess writer([&] { return writePairs(machine, last + 1, told[1]); });
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
    writer.kill();
    close(told[1]);
    const std::uint32_t committed = lastTold(told[0], last);
    close(told[0]);
    machine.reopen(kills % 3 == 0 ? OpenMode::ReadWrite : OpenMode::Read);
    RegistryAccess access(machine.registry());
    const std::uint32_t left = numberAt(access, "SOFTWARE\\Left", "n");
    ASSERT_EQ(left, numberAt(access, "SOFTWARE\\Right", "n")) << kills;
    // The change after the last one told may have been committed too.
    ASSERT_TRUE(left == committed || left == committed + 1) << kills;
    machine.close();
    ASSERT_TRUE(kills % 25 != 0 || isSound(machine.folder())) << kills;
    last = left;
  }
  EXPECT_GT(kills, 20);
  EXPECT_GT(last, 100U) << "the writers hardly ever got to write";
  EXPECT_TRUE(isSound(machine.folder()));
}

}  // namespace
}  // namespace korvex::platform
