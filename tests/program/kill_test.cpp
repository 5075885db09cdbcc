// A kill at any moment of Apply and of an import: the machine is sound and every change is whole.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <random>
#include <set>
#include <sstream>
#include <string>

#include "backup/config_sets.h"
#include "dialogs/nt/boot_file.h"
#include "forms/controls.h"
#include "main_window/start_up.h"
#include "platform/common/reg_export.h"
#include "platform/common/reg_import.h"
#include "program/program.h"
#include "support/child_process.h"
#include "support/machines.h"
#include "support/real_machines.h"
#include "support/registry_view.h"
#include "support/scripted_prompts.h"

namespace korvex::program {
namespace {

using platform::HKEY_LOCAL_MACHINE;

constexpr const char* kRunOnceEx = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnceEx";
constexpr const char* kServices = "Software\\Microsoft\\Windows\\CurrentVersion\\RunServicesOnce";

// The whole registry as text: reads every page of every key that is there.
std::string wholeText(platform::Registry& registry) {
  std::ostringstream text;
  const auto result = platform::exportRegText(registry, platform::wholeRegistry(), text,
                                              {.format = platform::RegFormat::Regedit4});
  EXPECT_EQ(result.status, 0) << result.message;
  return text.str();
}

bool has(platform::Registry& registry, const char* path, const char* value) {
  const platform::OpenKey key(registry, HKEY_LOCAL_MACHINE, path, platform::KEY_QUERY_VALUE);
  return key.status() == 0 &&
         registry.RegQueryValueExA(key.get(), value, nullptr, nullptr, nullptr) == 0;
}

// A child tells its parent that it is at work now.
class Bell {
 public:
  Bell() { EXPECT_EQ(pipe(ends_), 0); }
  ~Bell() {
    close(ends_[0]);
    if (ends_[1] >= 0) close(ends_[1]);
  }
  Bell(const Bell&) = delete;
  Bell& operator=(const Bell&) = delete;
  void ring() const { EXPECT_EQ(write(ends_[1], "!", 1), 1); }
  // For the parent: a child that dies without ringing ends the wait too.
  void await() {
    close(ends_[1]);
    ends_[1] = -1;
    char byte = 0;
    EXPECT_EQ(read(ends_[0], &byte, 1), 1);
  }

 private:
  int ends_[2] = {-1, -1};
};

// Kills the work a random while after it has begun, round after round; after each kill the machine
// is opened again and judged.
template <typename AnyMachine, typename Work, typename Judge>
void killAgainAndAgain(AnyMachine& machine, int rounds, int longestMicroseconds, Work work,
                       Judge judge) {
  std::mt19937 random(20001125);
  std::uniform_int_distribution<useconds_t> wait(0, longestMicroseconds);
  machine.close();
  for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
    Bell bell;
    test::ChildProcess child([&] {
      work(round, bell);
      return 0;
    });
    bell.await();
    usleep(wait(random));
    child.kill();
    machine.reopen(platform::OpenMode::Read);
    judge(machine.registry(), round);
    machine.close();
  }
}

// Ticks or clears every box in turn and applies, for as long as it lives; the box whose routine
// writes in two places before and after each of the others. It rings once that is done once.
void applyForEver(const test::TestMachine& machine, const Bell& bell) {
  const auto opened = machine.open(platform::OpenMode::ReadWrite);
  test::ScriptedPrompts prompts;
  Program program(*opened, prompts);
  ASSERT_EQ(program.start(), StartResult::Started);
  forms::Form& form = program.formBook().load("frmMain");
  const auto applyOther = [&form](forms::CheckBox& box) {
    box.Value = box.Value == forms::vbChecked ? forms::vbUnchecked : forms::vbChecked;
    form.find<forms::CommandButton>("cmdApply")->press();
  };
  auto& defrag = *form.find<forms::CheckBox>("chkDefrag");
  applyOther(defrag);
  bell.ring();
  while (true) {
    for (forms::Control* control : form.controls()) {
      auto* box = dynamic_cast<forms::CheckBox*>(control);
      if (box == nullptr || box == &defrag || !box->Enabled) continue;
      applyOther(*box);
      applyOther(defrag);
    }
  }
}

TEST(Kill, DuringApplyLeavesEveryRoutineWhole) {
  test::TestMachine machine("windows-98");
  int ticked = 0;
  int cleared = 0;
  killAgainAndAgain(
      machine, 150, 15'000, [&](int, const Bell& bell) { applyForEver(machine, bell); },
      [&](platform::Registry& registry, int round) {
        wholeText(registry);
        const bool service = has(registry, kServices, "Defrag");
        EXPECT_EQ(service, has(registry, (std::string(kRunOnceEx) + "\\Defrag").c_str(), "1"));
        EXPECT_EQ(service, has(registry, kRunOnceEx, "Title")) << "round " << round;
        ++(service ? ticked : cleared);
      });
  // Both states were met: the kills fell before and after the routine's change.
  EXPECT_GT(ticked, 0);
  EXPECT_GT(cleared, 0);
}

void put(platform::Registry& registry, platform::HKEY root, std::uint32_t number) {
  platform::HKEY key = 0;
  std::uint32_t disposition = 0;
  ASSERT_EQ(0, registry.RegCreateKeyExA(root, "Software\\Killed", platform::KEY_ALL_ACCESS, key,
                                        disposition));
  ASSERT_EQ(0, registry.RegSetValueExA(key, "n", platform::REG_DWORD, &number, sizeof number));
  registry.RegCloseKey(key);
}

std::uint32_t numberIn(platform::Registry& registry, platform::HKEY root) {
  const platform::OpenKey key(registry, root, "Software\\Killed", platform::KEY_READ);
  std::uint32_t number = 0;
  std::uint32_t size = sizeof number;
  platform::RegType type = 0;
  EXPECT_EQ(0, registry.RegQueryValueExA(key.get(), "n", &type, &number, &size));
  return number;
}

class KillReal : public testing::TestWithParam<test::RealKind> {};

// Machine and user lie in two files there.
TEST_P(KillReal, BetweenTwoFilesLeavesBothOldOrBothNew) {
  test::RealMachine machine(GetParam(), test::Family::Nt);
  const auto write = [](platform::Machine& target, std::uint32_t number) {
    put(target.registry(), platform::HKEY_LOCAL_MACHINE, number);
    put(target.registry(), platform::HKEY_CURRENT_USER, number);
    EXPECT_EQ(0, target.registry().flush());
  };
  write(machine.get(), 0);
  std::uint32_t last = 0;
  int moved = 0;
  killAgainAndAgain(
      machine, 100, 12'000,
      [&](int, const Bell& bell) {
        const auto opened = machine.open(platform::OpenMode::ReadWrite);
        bell.ring();
        for (std::uint32_t number = last + 1;; ++number) write(*opened, number);
      },
      [&](platform::Registry& registry, int round) {
        const std::uint32_t now = numberIn(registry, platform::HKEY_LOCAL_MACHINE);
        EXPECT_EQ(now, numberIn(registry, platform::HKEY_CURRENT_USER)) << "round " << round;
        EXPECT_GE(now, last) << "what was on the disk is gone";
        moved += now > last ? 1 : 0;
        last = now;
      });
  EXPECT_GT(moved, 10);
}

INSTANTIATE_TEST_SUITE_P(Machines, KillReal,
                         testing::Values(test::RealKind::WinePrefix, test::RealKind::WindowsFolder),
                         [](const auto& kind) {
                           return kind.param == test::RealKind::WinePrefix ? "WinePrefix"
                                                                           : "WindowsFolder";
                         });

std::string generation(int number) {
  std::string text = "REGEDIT4\r\n\r\n";
  for (int key = 0; key < 400; ++key) {
    text += "[HKEY_LOCAL_MACHINE\\Software\\Killed\\" + std::to_string(key) + "]\r\n";
    text += "\"generation\"=\"" + std::to_string(number) + "\"\r\n\r\n";
  }
  return text;
}

TEST(Kill, DuringImportLeavesTheOldOrTheNew) {
  test::TestMachine machine(test::Family::Nt);
  std::istringstream first(generation(0));
  ASSERT_EQ(platform::importRegText(machine.registry(), first).refused, 0u);
  int written = 0;
  killAgainAndAgain(
      machine, 150, 12'000,
      [&](int round, const Bell& bell) {
        const auto opened = machine.open(platform::OpenMode::ReadWrite);
        bell.ring();
        for (int i = 1;; ++i) {
          std::istringstream source(generation(1000 * round + i));
          platform::importRegText(opened->registry(), source);
        }
      },
      [&](platform::Registry& registry, int round) {
        const std::string text = wholeText(registry);
        const std::string name = "\"generation\"=\"";
        std::size_t at = text.find(name);
        ASSERT_NE(at, std::string::npos);
        const std::string line = text.substr(at, text.find("\r\n", at) - at);
        int same = 0;
        int all = 0;
        for (; at != std::string::npos; at = text.find(name, at + 1)) {
          ++all;
          same += text.compare(at, line.size(), line) == 0 ? 1 : 0;
        }
        EXPECT_EQ(all, 400) << "round " << round;
        EXPECT_EQ(same, all) << "round " << round << ": " << line;
        written += line == name + "0\"" ? 0 : 1;
      });
  EXPECT_GT(written, 0);
}

// Saves one set over and over, each time from other colours and another cursor.
void saveForEver(const test::TestMachine& machine, const Bell& bell) {
  const auto opened = machine.open(platform::OpenMode::ReadWrite);
  test::ScriptedPrompts prompts;
  foundation::Session session(*opened, prompts);
  main_window::detectReadOnly(session);
  backup::RegistryBacker backer(session);
  backup::ConfigSets sets(session, backer);
  const test::RegistryView view(opened->registry());
  const std::string cursor = session.g_sWinDir + "Cursors\\one.cur";
  view.put("HKCU\\Control Panel\\Cursors", "Hand", '"' + cursor + '"');
  for (int number = 0;; ++number) {
    view.put("HKCU\\Control Panel\\Colors", "Window", fmt::format("\"{}\"", number));
    opened->files().replace(cursor, fmt::format("{}", number));
    const auto saved = sets.save({"Work", "C:\\Saves", {"ColorConfig", "CursorConfig"}, {}}, {});
    if (saved.status != 0) _exit(1);
    if (number == 0) bell.ring();
  }
}

TEST(Kill, ASavedSetIsAlwaysOneThatWasWholeOnce) {
  test::TestMachine machine("windows-98");
  killAgainAndAgain(
      machine, 60, 40'000, [&](int, const Bell& bell) { saveForEver(machine, bell); },
      [&](platform::Registry&, int round) {
        test::ScriptedPrompts prompts;
        foundation::Session session(machine.get(), prompts);
        main_window::detectReadOnly(session);
        backup::RegistryBacker backer(session);
        backup::ConfigSets sets(session, backer);
        backup::ConfigSet set;
        std::string message;
        ASSERT_EQ(0, sets.find("Work", set, message)) << message << " in round " << round;
        EXPECT_TRUE(sets.isAvailable(set));
        const auto offer = sets.offer(set, {});
        ASSERT_EQ(2U, offer->items().size());
        for (const auto& item : offer->items()) {
          EXPECT_EQ(0U, item.problems.size()) << item.problems.front() << " in round " << round;
        }
      });
}

// A boot file that tells its number in every line.
std::string bootText(int number) {
  std::string text = "[boot loader]\r\n";
  for (int line = 0; line < 200; ++line) text += fmt::format("timeout={}\r\n", number);
  return text + "[operating systems]\r\n";
}

bool isWholeBootFile(const std::string& text) {
  const std::string mark = "timeout=";
  const std::size_t at = text.find(mark);
  return at != std::string::npos && text == bootText(std::stoi(text.substr(at + mark.size())));
}

TEST(Kill, TheBootFileAndItsCopiesAreAlwaysThereAndWhole) {
  test::TestMachine machine("windows-2000");
  ASSERT_EQ(0, machine->files().setAttributes(dialogs::kBootIni, 0));
  ASSERT_EQ(0, machine->files().replace(dialogs::kBootIni, bootText(0)));
  std::set<std::string> seen;
  killAgainAndAgain(
      machine, 60, 12'000,
      [&](int round, const Bell& bell) {
        const auto opened = machine.open(platform::OpenMode::ReadWrite);
        test::ScriptedPrompts prompts;
        foundation::Session session(*opened, prompts);
        dialogs::BootFile file(session);
        for (int i = 1;; ++i) {
          if (file.write(bootText(1000 * round + i)).status != 0) _exit(1);
          if (i == 1) bell.ring();
        }
      },
      [&](platform::Registry&, int round) {
        const auto contentOf = [&machine](std::string_view path) {
          std::string bytes;
          EXPECT_EQ(0, machine->files().read(path, bytes)) << path;
          return bytes;
        };
        const std::string now = contentOf(dialogs::kBootIni);
        EXPECT_TRUE(isWholeBootFile(now)) << "round " << round << ": " << now.size();
        EXPECT_TRUE(isWholeBootFile(contentOf(dialogs::kBootPrevious))) << "round " << round;
        EXPECT_EQ(bootText(0), contentOf(dialogs::kBootMaster)) << "round " << round;
        seen.insert(now);
      });
  EXPECT_GT(seen.size(), 10U) << "nothing was written";
}

}  // namespace
}  // namespace korvex::program
