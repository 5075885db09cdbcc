// The page "Registry" as a person uses it.
#include "main_window/registry_page.h"

#include "backup/config_set.h"
#include "main_window/window_fixture.h"

namespace korvex::main_window {
namespace {

using namespace platform;
using Names = std::vector<std::string>;

class RegistryPageTest : public testing::Test {
 protected:
  void SetUp() override {
    put("Control Panel\\Colors", "Window", "1 2 3");
    run_ = std::make_unique<KorvexRun>(*machine_);
    run_->window();
    // Whoever opens the restore window says yes to all of it.
    run_->book.add("frmRestore", [this] {
      asked_ = run_->desk.offer->question();
      const auto outcome = run_->desk.offer->restore(std::vector<bool>(12, true), {});
      EXPECT_EQ(0, outcome.status) << outcome.message;
      run_->desk.restored = outcome.status == 0;
      run_->desk.offer.reset();
      return std::make_unique<forms::Form>("frmRestore", "");
    });
  }
  void TearDown() override { run_->close(); }

  void put(std::string_view key, std::string_view name, const std::string& text) {
    HKEY opened = 0;
    std::uint32_t disposition = 0;
    Registry& registry = machine_.registry();
    ASSERT_EQ(0, registry.RegCreateKeyExA(kUser, key, KEY_ALL_ACCESS, opened, disposition));
    registry.RegSetValueExA(opened, name, REG_SZ, text.c_str(),
                            static_cast<std::uint32_t>(text.size() + 1));
    registry.RegCloseKey(opened);
  }
  template <typename T>
  T& find(std::string_view name) {
    return *run_->window().find<T>(name);
  }
  void press(std::string_view name) { find<forms::CommandButton>(name).press(); }
  forms::ComboBox& saves() { return find<forms::ComboBox>("cboSaves"); }
  // As Browse keeps it.
  void folderIs(const std::string& folder) {
    HKEY key = 0;
    machine_.registry().RegOpenKeyExA(kMachine, "SOFTWARE\\Korvex\\Configuration", KEY_ALL_ACCESS,
                                      key);
    machine_.registry().RegSetValueExA(key, "RegPath", REG_SZ, folder.c_str(),
                                       static_cast<std::uint32_t>(folder.size() + 1));
    machine_.registry().RegCloseKey(key);
  }
  std::string lastMessage() {
    return run_->prompts.messages.empty() ? "" : run_->prompts.messages.back().text;
  }
  void saveWork() {
    saves().Text = "Work";
    run_->box("chkColorConfig").Value = 1;
    press("cmdSave");
  }

  test::TestMachine machine_{"windows-2000"};
  std::unique_ptr<KorvexRun> run_;
  std::string asked_;
};

TEST_F(RegistryPageTest, ASetIsSavedChosenRestoredAndErased) {
  press("cmdSave");
  EXPECT_EQ("Type a name for the save first.", lastMessage());
  EXPECT_FALSE(find<forms::CommandButton>("cmdRestore").Enabled);
  saveWork();
  EXPECT_EQ(Names{"Work"}, saves().items());
  EXPECT_EQ(Names{"Color configuration"}, find<forms::CheckList>("lstRegRestore").items());
  EXPECT_NE(std::string::npos, run_->window().StatusText->find("Work saved"));

  run_->box("chkColorConfig").Value = 0;
  run_->box("chkKeyboardConfig").Value = 1;
  saves().Text = "";
  EXPECT_EQ(Names{}, find<forms::CheckList>("lstRegRestore").items());
  saves().ListIndex = 0;
  EXPECT_EQ(1, run_->box("chkColorConfig").Value);
  EXPECT_EQ(0, run_->box("chkKeyboardConfig").Value);

  put("Control Panel\\Colors", "Window", "9 9 9");
  press("cmdRestore");
  EXPECT_EQ("Restore the selected settings for Work?", asked_);
  EXPECT_EQ("text 1 2 3",
            Look(machine_.registry()).value(kUser, "Control Panel\\Colors", "Window"));
  EXPECT_EQ((Names{"Work", "Work (before restore)"}), saves().items());
  EXPECT_TRUE(run_->session.g_bRebootNeeded);

  run_->prompts.answers = {Answer::No, Answer::Yes};
  press("cmdErase");
  EXPECT_EQ("Remove the saved settings for Work?", lastMessage());
  press("cmdErase");
  EXPECT_EQ(Names{"Work (before restore)"}, saves().items());
  EXPECT_FALSE(machine_->files().exists("C:\\Program Files\\Korvex\\Registry\\Work"));
  run_->session.g_bRebootNeeded = false;
}

TEST_F(RegistryPageTest, SavingOverASetIsAskedForAndTheBoxesComeBackInTheNextRun) {
  saveWork();
  run_->prompts.answers = {Answer::No, Answer::Yes};
  press("cmdSave");
  EXPECT_EQ(0U, lastMessage().find("There is a save named Work already, of "));
  press("cmdSave");
  // In another folder the old one would be forgotten.
  folderIs("C:\\Other");
  run_->prompts.answers = {Answer::No};
  press("cmdSave");
  EXPECT_NE(std::string::npos, lastMessage().find("stays there, and is no longer listed"));
  run_->close();
  run_ = std::make_unique<KorvexRun>(*machine_);
  EXPECT_EQ(1, run_->box("chkColorConfig").Value);
  EXPECT_EQ(0, run_->box("chkKeyboardConfig").Value);
}

TEST_F(RegistryPageTest, WhatIsNotThereIsToldInTheProductsWords) {
  saveWork();
  ASSERT_EQ(0,
            machine_->files().move("C:\\Program Files\\Korvex\\Registry\\Work", "C:\\Elsewhere"));
  press("cmdRestore");
  EXPECT_EQ("The current save cannot be located on disk.\r\nLocate the proper disk and try again.",
            lastMessage());
  run_->prompts.answers = {Answer::Yes, Answer::Ok};
  press("cmdErase");
  EXPECT_EQ(
      "The folder containing this save is not available.\r\nOnly the information stored in "
      "Korvex will be erased.",
      lastMessage());
  EXPECT_EQ(Names{}, saves().items());
  EXPECT_TRUE(machine_->files().exists("C:\\Elsewhere\\profile.kvx"));
  // It can still be opened where it lies, and by a wrong file nothing is lost.
  run_->window().openSet("C:\\Elsewhere\\profile.kvx");
  EXPECT_EQ("C:\\Elsewhere\\profile.kvx", saves().Text.get());
  EXPECT_EQ(6, run_->window().tabMain.SelectedItem);
  press("cmdRestore");
  EXPECT_EQ("Restore the selected settings for Work?", asked_);
  run_->window().openSet("C:\\missing.kvx");
  EXPECT_EQ(0U, lastMessage().find("C:\\missing.kvx: 2 "));
  EXPECT_EQ("C:\\Elsewhere\\profile.kvx", saves().Text.get());
  run_->session.g_bRebootNeeded = false;
}

TEST_F(RegistryPageTest, AFolderThatCannotBeMadeAndADriveThatIsNotThereEndTheSave) {
  folderIs("Q:\\Saves");
  saveWork();
  EXPECT_EQ("The disk is not ready.", lastMessage());
  ASSERT_EQ(0, machine_->files().replace("C:\\taken", "a file"));
  folderIs("C:\\taken");
  press("cmdSave");
  EXPECT_EQ(0U, lastMessage().find("\r\nAn error occurred creating the path:\r\nC:\\taken\\Work\r\n"
                                   "Processing cannot continue."))
      << lastMessage();
  EXPECT_EQ(kIconExclamation, run_->prompts.messages.back().style);
  EXPECT_EQ(Names{}, saves().items());
}

TEST_F(RegistryPageTest, ARestoreDoesNotMixWithChangesThatWait) {
  saveWork();
  run_->box("chkHideRun").Value = 1;
  press("cmdRestore");
  EXPECT_EQ(0U, lastMessage().find("There are changes that have not been applied."));
  EXPECT_EQ("", asked_);
  run_->prompts.answers = {Answer::Yes};
}

}  // namespace
}  // namespace korvex::main_window
