// What the windows write at once reaches Wine: after one hand at each of them, Wine's own registry
// editor has exactly what they wrote, and what they took away is gone.
#include <gtest/gtest.h>

#include <string>

#include "dialogs/shell/frm_drives.h"
#include "dialogs/shell/frm_moniker.h"
#include "dialogs/shell/frm_right_click.h"
#include "dialogs/shell/frm_run_once.h"
#include "dialogs/shell/frm_shell_folders.h"
#include "dialogs/system/frm_add_remove.h"
#include "program/one_run.h"
#include "program/wine_prefix_fixture.h"

namespace korvex::program {
namespace {

constexpr const char* kRunUser = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const char* kUninstall =
    "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Stale";
constexpr const char* kPolicies =
    "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer";
constexpr const char* kUserShellFolders =
    "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";

// A window of a running program, as a hand on it.
class Hand {
 public:
  explicit Hand(Machine& machine) : program_(machine, person_, {.askBeforeDiscarding = false}) {
    EXPECT_EQ(StartResult::Started, program_.start());
  }
  ~Hand() {
    EXPECT_EQ(0, program_.session().registry().flush());
    EXPECT_TRUE(program_.finish());
  }

  template <typename Dialog>
  Dialog& window() {
    return dynamic_cast<Dialog&>(program_.formBook().load(Dialog::kName));
  }
  static void select(forms::ListControl& list, std::string_view beginning) {
    for (int i = 0; i < list.ListCount(); ++i) {
      if (list.items()[static_cast<std::size_t>(i)].starts_with(beginning)) list.ListIndex = i;
    }
    EXPECT_TRUE(list.selectedItem().starts_with(beginning)) << list.name();
  }
  AgreeingPerson& person() { return person_; }

 private:
  AgreeingPerson person_;
  Program program_;
};

void useStartupPrograms(Hand& hand) {
  auto& window = hand.window<dialogs::frmRunOnce>();
  window.cmdShowRegRunII.press();
  Hand::select(window.lstViewAppsLaunched, "Tray");
  window.cmdMoveRight.press();
}

void useDrives(Hand& hand) {
  auto& window = hand.window<dialogs::frmDrives>();
  window.lstDrives.setChecked(25, true);
  window.cmdDone.press();
}

void useMonikers(Hand& hand) {
  auto& window = hand.window<dialogs::frmMoniker>();
  window.txtMoniker.Text = "home";
  window.txtAddress.Text = "http://www.example.com/";
  window.cmdAddMoniker.press();
}

void useShellFolders(Hand& hand) {
  auto& window = hand.window<dialogs::frmShellFolders>();
  Hand::select(window.cboShellFolders, "Personal");
  hand.person().texts = {"C:\\windows"};
  window.cmdChange.press();
}

void useAddRemove(Hand& hand) {
  auto& window = hand.window<dialogs::frmAddRemove>();
  Hand::select(window.lstPrograms, "Stale program");
  window.cmdDelete.press();
}

void useRightClick(Hand& hand) {
  auto& window = hand.window<dialogs::frmRightClick>();
  window.optAdd.Value = true;
  window.cmdWizardNext.press();
  Hand::select(window.lstFileTypes, ".TXT");
  window.cmdWizardNext.press();
  window.txtText.Text = "Look &at it";
  window.txtPath.Text = "C:\\windows\\notepad.exe";
  window.cmdWizardNext.press();
}

TEST_F(WinePrefix, WhatTheWindowsWroteIsWhatWineShows) {
  {
    const auto machine = open(OpenMode::ReadWrite);
    const test::RegistryView view(machine->registry());
    view.put(kRunUser, "Tray", "expand \"%SystemRoot%\\tray.exe /min\"");
    view.put(kPolicies, "NoRun", "dword 0");  // the window makes no key of policies
    view.put(kUninstall, "DisplayName", "\"Stale program\"");
    view.put(kUninstall, "UninstallString", "\"C:\\gone.exe\"");
    ASSERT_EQ(0, machine->registry().flush());
    ASSERT_EQ(0, machine->files().createFolder("C:\\Look") & ~183U);
  }
  const Contents wineBefore = wineSays();
  const Contents before = korvexSays();
  {
    const auto machine = open(OpenMode::ReadWrite);
    Hand hand(*machine);
    for (const auto use : {useStartupPrograms, useDrives, useMonikers, useShellFolders,
                           useAddRemove, useRightClick}) {
      use(hand);
    }
  }
  const Contents written = changes(before, korvexSays());
  const Contents wineFound = changes(wineBefore, wineSays());
  const auto wrote = [&written](const std::string& key, const std::string& value) {
    const auto found = written.find(key + " | " + value);
    return found == written.end() ? "nothing" : found->second;
  };
  EXPECT_EQ("gone", wrote(kRunUser, "Tray"));
  EXPECT_EQ("binary 00 00 00 02", wrote(kPolicies, "NoDrives"));
  EXPECT_EQ("\"http://www.example.com/\"",
            wrote("HKLM\\Software\\Microsoft\\Internet Explorer\\AboutURLs", "home"));
  EXPECT_NE("nothing", wrote(kUserShellFolders, "Personal"));
  EXPECT_EQ("gone", wrote(kUninstall, "DisplayName"));
  std::size_t commands = 0;
  for (const auto& [place, data] : written) {
    if (data.find("notepad.exe\\\" \\\"%1") != std::string::npos ||
        data.find("notepad.exe\" \"%1") != std::string::npos) {
      ++commands;
    }
    const auto found = wineFound.find(place);
    EXPECT_TRUE(found != wineFound.end() && found->second == data)
        << place << ": " << data << ", but Wine has "
        << (found == wineFound.end() ? "what it had" : found->second);
  }
  EXPECT_GE(commands, 1U) << "the entry of the right click menu";
}

}  // namespace
}  // namespace korvex::program
