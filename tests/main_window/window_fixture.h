// The main window on a fresh machine, without a front end.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "engine/catalogue.h"
#include "forms/form_book.h"
#include "main_window/frm_main.h"
#include "platform/common/composed_machine.h"
#include "platform/common/registry_decorators.h"
#include "support/machines.h"
#include "support/plain_hash.h"
#include "support/scripted_prompts.h"

namespace korvex::main_window {

constexpr std::string_view kExplorer =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer";
constexpr std::string_view kState = "SOFTWARE\\Korvex\\CurrentSettings";
constexpr std::string_view kLoadValues = "SOFTWARE\\Korvex\\LoadValues";
constexpr platform::HKEY kUser = platform::HKEY_CURRENT_USER;
constexpr platform::HKEY kMachine = platform::HKEY_LOCAL_MACHINE;

// What stands in a registry, as a person would look it up.
class Look {
 public:
  explicit Look(platform::Registry& registry) : registry_(registry) {}

  bool hasKey(platform::HKEY root, std::string_view path) const {
    return platform::OpenKey(registry_, root, path, platform::KEY_QUERY_VALUE).status() == 0;
  }
  // "dword 1", "text 400", "" for none.
  std::string value(platform::HKEY root, std::string_view path, std::string_view name) const {
    const platform::OpenKey key(registry_, root, path, platform::KEY_QUERY_VALUE);
    char data[256];
    std::uint32_t size = sizeof data;
    platform::RegType type = 0;
    if (key.status() != 0 || registry_.RegQueryValueExA(key.get(), name, &type, data, &size) != 0) {
      return "";
    }
    if (type == platform::REG_SZ) return "text " + std::string(data, size - 1);
    if (type != platform::REG_DWORD) return "type " + std::to_string(type);
    std::int32_t number = 0;
    std::memcpy(&number, data, sizeof number);
    return "dword " + std::to_string(number);
  }
  void put(platform::HKEY root, std::string_view path, std::string_view name,
           std::int32_t number) const {
    platform::HKEY key = 0;
    std::uint32_t disposition = 0;
    ASSERT_EQ(0, registry_.RegCreateKeyExA(root, path, platform::KEY_ALL_ACCESS, key, disposition));
    EXPECT_EQ(0, registry_.RegSetValueExA(key, name, platform::REG_DWORD, &number, 4));
    registry_.RegCloseKey(key);
  }
  void makeKey(platform::HKEY root, std::string_view path) const {
    platform::HKEY key = 0;
    std::uint32_t disposition = 0;
    ASSERT_EQ(0, registry_.RegCreateKeyExA(root, path, platform::KEY_ALL_ACCESS, key, disposition));
    registry_.RegCloseKey(key);
  }

 private:
  platform::Registry& registry_;
};

// One run of the program as far as the main window goes. Several may follow each other on a
// machine; one that goes without close() has crashed.
class KorvexRun {
 public:
  explicit KorvexRun(platform::Machine& machine, StartOptions options = {})
      : session(machine, prompts), worker(session, book), pending(session, book) {
    book.add(frmMain::kName, [this, options] {
      return std::make_unique<frmMain>(session, worker, pending, book, BackupParts{backer, desk},
                                       password, options);
    });
  }

  frmMain& window() { return dynamic_cast<frmMain&>(book.load(frmMain::kName)); }
  bool close() { return book.unload(frmMain::kName); }
  forms::CheckBox& box(std::string_view control) {
    return *window().find<forms::CheckBox>(control);
  }
  forms::TextBox& menuSpeed() { return *window().find<forms::TextBox>("txtStartMenu"); }

  test::ScriptedPrompts prompts;
  foundation::Session session;
  forms::FormBook book;
  backup::RegistryBacker backer{session};
  backup::RestoreDesk desk;
  engine::RegWorker worker;
  engine::PendingChanges pending;
  test::PlainHash hash;
  protection::ProgramPassword password{session.regTool, hash};
};

class WindowTest : public testing::Test {
 public:
  explicit WindowTest(test::Family family = test::Family::Nt) : machine(family) {}

  Look look() { return Look(machine.registry()); }
  // As an installation whose user may not administer it.
  void takeRightsAway() {
    const auto file = machine.folder() / "machine.json";
    std::stringstream text;
    text << std::ifstream(file).rdbuf();
    std::string json = text.str();
    const std::string right = "\"administrator\": true";
    const std::size_t at = json.find(right);
    ASSERT_NE(std::string::npos, at) << json;
    json.replace(at, right.size(), "\"administrator\": false");
    std::ofstream(file) << json;
    machine.reopen();
  }
  std::vector<platform::MachineEvent> events() {
    std::vector<platform::MachineEvent> result;
    EXPECT_EQ(0, platform::readMachineEvents(machine.folder(), result));
    return result;
  }

  test::TestMachine machine;
};

class WindowTest9x : public WindowTest {
 public:
  WindowTest9x() : WindowTest(test::Family::NineX) {}
};

}  // namespace korvex::main_window
