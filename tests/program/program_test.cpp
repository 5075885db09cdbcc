// Finding machines, and a run of the program under a front end.
#include "program/program.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <functional>
#include <optional>

#include "main_window/frm_main.h"
#include "program/data_folder.h"
#include "program/open_machine.h"
#include "support/machines.h"
#include "support/scripted_prompts.h"

namespace korvex::program {
namespace {

namespace fs = std::filesystem;
using platform::OpenMode;

// An environment variable for the time of a test.
class Environment {
 public:
  Environment(const char* name, const std::string& value) : name_(name) {
    if (const char* old = getenv(name)) old_ = old;
    setenv(name, value.c_str(), 1);
  }
  ~Environment() {
    if (old_) {
      setenv(name_, old_->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  const char* name_;
  std::optional<std::string> old_;
};

TEST(OpenMachine, DefaultMachineIsMadeOnceOnFirstUse) {
  const test::TemporaryFolder home;
  const Environment data("XDG_DATA_HOME", home.path().string());
  const fs::path folder = home.path() / "korvex" / "machines" / "default";
  const auto first = openMachine({}, OpenMode::ReadWrite);
  ASSERT_NE(nullptr, first.machine) << first.message;
  EXPECT_EQ("Windows 2000 Professional", first.machine->describe().windows);
  platform::HKEY key = 0;
  std::uint32_t disposition = 0;
  ASSERT_EQ(0,
            first.machine->registry().RegCreateKeyExA(platform::HKEY_CURRENT_USER, "Kept",
                                                      platform::KEY_ALL_ACCESS, key, disposition));
  const auto second = openMachine({}, OpenMode::Read);
  ASSERT_NE(nullptr, second.machine) << second.message;
  EXPECT_EQ(folder.string(), second.machine->describe().folder);
  EXPECT_EQ(0, platform::OpenKey(second.machine->registry(), platform::HKEY_CURRENT_USER, "Kept",
                                 platform::KEY_READ)
                   .status());
}

TEST(OpenMachine, FolderThatIsNoMachineIsToldAndLeftAlone) {
  const test::TemporaryFolder folder;
  for (const fs::path& path : {folder.path(), folder.path() / "missing"}) {
    const auto opened = openMachine(path, OpenMode::ReadWrite);
    EXPECT_EQ(nullptr, opened.machine);
    EXPECT_NE(platform::ERROR_SUCCESS, opened.status);
    EXPECT_NE(std::string::npos, opened.message.find(path.string())) << opened.message;
    EXPECT_NE(std::string::npos, opened.message.find("machine create")) << opened.message;
  }
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(DataFolder, GivenFolderComesFirstAndOnlyWhereItHasMachines) {
  const test::TemporaryFolder folder;
  const Environment given("KORVEX_DATA_DIR", folder.path().string());
  EXPECT_NE(folder.path(), dataFolder());
  fs::create_directory(folder.path() / "machines");
  EXPECT_EQ(folder.path(), dataFolder());
  std::string message;
  EXPECT_NE(0, createMachine("98", folder.path() / "new", message));
  EXPECT_NE(std::string::npos, message.find("windows-98")) << message;
}

// A person before a screen, for as long as a test says what they do.
class Host : public forms::FormHost {
 public:
  explicit Host(std::function<void(forms::Form&)> hand) : hand_(std::move(hand)) {}

  void showModal(forms::Form& form) override {
    bool gone = false;
    const forms::Subscription closed =
        form.closeRequested.subscribe([&] { gone = gone || form.QueryUnload(); });
    hand_(form);
    EXPECT_TRUE(gone) << "the window still stands";
  }

 private:
  std::function<void(forms::Form&)> hand_;
};

TEST(Program, RunShowsTheMainWindowAndEndsWithIt) {
  const test::TestMachine machine{test::Family::Nt};
  test::ScriptedPrompts prompts;
  {
    const auto opened = machine.open(OpenMode::ReadWrite);
    Program program(*opened, prompts);
    Host host([](forms::Form& form) { form.find<forms::CommandButton>("cmdDone")->press(); });
    EXPECT_EQ(0, program.run(host));
    EXPECT_EQ(nullptr, program.formBook().loaded("frmMain"));
  }
  EXPECT_TRUE(prompts.messages.empty());
}

TEST(Program, SecondInstanceEndsAfterItsMessage) {
  const test::TestMachine machine{test::Family::Nt};
  test::ScriptedPrompts prompts;
  const auto opened = machine.open(OpenMode::ReadWrite);
  const auto claim = opened->claimInstance(platform::Wait::No);
  ASSERT_NE(nullptr, claim);
  Program program(*opened, prompts);
  Host host([](forms::Form&) { ADD_FAILURE() << "a second window was shown"; });
  EXPECT_EQ(4, program.run(host));
  EXPECT_EQ(1u, prompts.messages.size());
}

// Whoever cannot say the password sees nothing of the machine and changes nothing on it.
TEST(Program, ThePasswordIsAskedForBeforeTheMainWindow) {
  test::TestMachine machine{test::Family::Nt};
  foundation::GRegTool regTool(machine.registry(), machine->systemInfo());
  platform::SodiumPasswordHash hash;
  std::string code;
  ASSERT_EQ(0, protection::ProgramPassword(regTool, hash).set("Sesame", code));
  test::ScriptedPrompts prompts;
  std::vector<std::string> shown;
  const auto run = [&](const std::string& typed) {
    Program program(machine.get(), prompts);
    Host host([&](forms::Form& form) {
      shown.push_back(form.name());
      if (form.name() != "frmLogin") return form.find<forms::CommandButton>("cmdDone")->press();
      form.find<forms::TextBox>("txtPassword")->Text = typed;
      form.find<forms::CommandButton>(typed.empty() ? "cmdCancel" : "cmdOK")->press();
    });
    return program.run(host);
  };
  EXPECT_EQ(5, run(""));
  EXPECT_EQ(std::vector<std::string>{"frmLogin"}, shown);
  const platform::OpenKey own(machine.registry(), platform::HKEY_LOCAL_MACHINE, "SOFTWARE\\Korvex",
                              platform::KEY_READ);
  EXPECT_NE(0, own.status()) << "the main window was loaded";
  shown.clear();
  EXPECT_EQ(0, run("SESAME"));
  EXPECT_EQ((std::vector<std::string>{"frmLogin", "frmMain"}), shown);
}

TEST(Program, EndAfterAnErrorClosesTheWindowWithoutAQuestion) {
  const test::TestMachine machine{test::Family::Nt};
  test::ScriptedPrompts prompts;
  const auto opened = machine.open(OpenMode::ReadWrite);
  Program program(*opened, prompts);
  Host host([&program](forms::Form& form) {
    form.find<forms::CheckBox>("chkHideRun")->Value = forms::vbChecked;
    program.session().requestEnd();
  });
  EXPECT_EQ(0, program.run(host));
  EXPECT_TRUE(prompts.messages.empty());
  EXPECT_EQ(0, program.pendingChanges().count());
}

TEST(Program, WhatAKilledRunLeftInADialogsBankIsNotCarriedOutByTheNext) {
  test::TestMachine machine{test::Family::Nt};
  const std::string marker = "SOFTWARE\\Korvex\\CurrentSettingsVII\\P_rwNoDispCPL";
  platform::HKEY key = 0;
  std::uint32_t disposition = 0;
  ASSERT_EQ(0, machine.registry().RegCreateKeyExA(platform::HKEY_LOCAL_MACHINE, marker,
                                                  platform::KEY_ALL_ACCESS, key, disposition));
  machine.registry().RegCloseKey(key);
  test::ScriptedPrompts prompts;
  Program program(machine.get(), prompts);
  ASSERT_EQ(StartResult::Started, program.start());
  EXPECT_TRUE(program.pendingChanges().waiting(engine::Bank::MoreSecurity).empty());
  EXPECT_TRUE(program.finish());
}

}  // namespace
}  // namespace korvex::program
