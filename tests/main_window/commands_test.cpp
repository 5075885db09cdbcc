// The one-shot buttons: what goes, what stays, what is asked and told.
#include "main_window/commands.h"

#include <algorithm>
#include <map>
#include <ostream>
#include <string>

#include "main_window/window_fixture.h"
#include "support/registry_view.h"

namespace korvex::main_window {
namespace {

using platform::Answer;
using Contents = std::map<std::string, std::string>;

const std::string kShell = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
const std::string kWeb = "HKCU\\Software\\Microsoft\\Internet Explorer\\";
const std::string kApplets = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\";
const std::string kConfigurationKey = "HKLM\\SOFTWARE\\Korvex\\Configuration";

class CommandsOn : public testing::Test {
 public:
  explicit CommandsOn(const std::string& sample) : machine(sample) {}

  test::RegistryView view() { return test::RegistryView(machine.registry()); }
  static forms::CommandButton& button(KorvexRun& run, std::string_view name) {
    return *run.window().find<forms::CommandButton>(name);
  }

  test::TestMachine machine;
};
struct CommandsOn95 : CommandsOn {
  CommandsOn95() : CommandsOn("windows-95") {}
};
struct CommandsOn98 : CommandsOn {
  CommandsOn98() : CommandsOn("windows-98") {}
};
struct CommandsOn2000 : CommandsOn {
  CommandsOn2000() : CommandsOn("windows-2000") {}
};

struct ClearCase {
  const char* button;
  const char* question;  // "" where none is asked
  const char* reported;
  std::vector<std::string> gone;  // all that begins with one of these
  std::string kept;
};
void PrintTo(const ClearCase& c, std::ostream* out) { *out << c.button; }

class ClearCommand : public CommandsOn98, public testing::WithParamInterface<ClearCase> {
 public:
  ClearCommand() {
    view().put(kShell + "RunMRU", "a", "\"winver\\1\"");
    view().put(kShell + "RecentDocs\\.txt", "0", "binary 61 00");
    view().put(kWeb + "TypedURLs", "url1", "\"http://localhost/\"");
    view().put(kApplets + "Regedit", "LastKey", "\"HKEY_USERS\"");
    view().put(kApplets + "Regedit", "FindFlags", "dword 14");
    machine->files().replace(kRecent + "Locked.lnk", "x");
    machine->files().setAttributes(kRecent + "Locked.lnk", platform::FILE_ATTRIBUTE_READONLY);
  }

  // The user's part of the registry and his documents.
  Contents contents() {
    Contents result;
    view().dump("HKCU", result);
    std::vector<platform::FileEntry> entries;
    machine->files().list(kRecent + "*.*", entries);
    for (const auto& entry : entries) result["file " + entry.name] = std::to_string(entry.size);
    return result;
  }
  bool asks() const { return *GetParam().question != '\0'; }

  const std::string kRecent = "C:\\WINDOWS\\Profiles\\Karen\\Recent\\";
};

TEST_P(ClearCommand, TakesWhatItNamesAndNothingElse) {
  KorvexRun run(machine.get());
  Contents expected;
  auto& pressed = button(run, GetParam().button);
  const Contents before = contents();
  for (const auto& [name, data] : before) {
    const bool goes = std::ranges::any_of(GetParam().gone, [&name = name](const std::string& gone) {
      return name.starts_with(gone);
    });
    if (!goes) expected[name] = data;
  }
  ASSERT_TRUE(expected.contains(GetParam().kept)) << "is not there";
  if (asks()) run.prompts.answers = {Answer::Yes};
  pressed.press();
  EXPECT_EQ(expected, contents());
  ASSERT_EQ(asks() ? 2u : 1u, run.prompts.messages.size());
  if (asks()) {
    EXPECT_EQ(GetParam().question, run.prompts.messages.front().text);
  }
  EXPECT_EQ(GetParam().reported, run.prompts.messages.back().text);

  if (asks()) run.prompts.answers = {Answer::Yes};
  pressed.press();
  const std::string& text = run.prompts.messages.back().text;
  EXPECT_TRUE(text == "There was nothing to clear." || text.ends_with("order of its own.")) << text;
}

TEST_P(ClearCommand, LeavesEverythingWhereThePersonSaysNo) {
  if (!asks()) return;
  KorvexRun run(machine.get());
  auto& pressed = button(run, GetParam().button);
  const Contents before = contents();
  run.prompts.answers = {Answer::No};
  pressed.press();
  EXPECT_EQ(before, contents());
  EXPECT_EQ(1u, run.prompts.messages.size());
}

// Carries out some deletions and ends of changes, and refuses those after them.
class Refusing : public platform::ForwardingRegistry {
 public:
  using ForwardingRegistry::ForwardingRegistry;
  platform::Status RegDeleteKeyA(platform::HKEY key, std::string_view name) override {
    return refuses() ? platform::ERROR_DISK_FULL : ForwardingRegistry::RegDeleteKeyA(key, name);
  }
  platform::Status RegDeleteValueA(platform::HKEY key, std::string_view name) override {
    return refuses() ? platform::ERROR_DISK_FULL : ForwardingRegistry::RegDeleteValueA(key, name);
  }
  platform::Status commitChange() override {
    if (!refuses()) return ForwardingRegistry::commitChange();
    ForwardingRegistry::rollbackChange();
    return platform::ERROR_DISK_FULL;
  }
  bool armed = false;
  int allowed = 0;

 private:
  bool refuses() { return armed && --allowed < 0; }
};

TEST_P(ClearCommand, ThatFailsLeavesEverythingAndSaysSo) {
  Refusing refusing(machine.registry());
  platform::ComposedMachine guarded(machine.get(), {.registry = &refusing});
  KorvexRun run(guarded);
  auto& pressed = button(run, GetParam().button);
  const Contents before = contents();
  int failures = 0;
  for (int allowed = 0; contents() == before; ++allowed) {
    ASSERT_LT(allowed, 1000);
    run.prompts.messages.clear();
    if (asks()) run.prompts.answers = {Answer::Yes};
    refusing.armed = true;
    refusing.allowed = allowed;
    pressed.press();
    refusing.armed = false;
    const std::string& text = run.prompts.messages.back().text;
    if (text.find(" could not be changed: ") != std::string::npos) ++failures;
  }
  EXPECT_EQ(GetParam().reported, run.prompts.messages.back().text);
  EXPECT_GE(failures, 2) << "a deletion and the end of the change";
}

INSTANTIATE_TEST_SUITE_P(
    Buttons, ClearCommand,
    testing::Values(ClearCase{"cmdClearDOCSNow",
                              "Clear documents from Start Menu now?\r\n(4 documents)",
                              "4 documents cleared.",
                              {kShell + "RecentDocs", "file "},
                              kShell + "RunMRU | a"},
                    ClearCase{"cmdClearIEURLList",
                              "Clear Internet Explorer's URL list now?\r\n(3 addresses)",
                              "3 addresses cleared.",
                              {kWeb + "TypedURLs"},
                              kShell + "RecentDocs\\.txt | 0"},
                    ClearCase{
                        "cmdClearMRUs",
                        "Clear all MRU lists now?\r\n(17 entries)",
                        "17 entries cleared.",
                        {kShell + "RecentDocs", kShell + "RunMRU", kShell + "Doc Find Spec MRU",
                         kShell + "FindComputerMRU", kShell + "PrnPortsMRU",
                         kShell + "StreamMRU | ", "HKCU\\InstallLocationsMRU",
                         kApplets + "Paint\\Recent File List", kApplets + "Regedit | LastKey"},
                        kApplets + "Regedit | FindFlags"},
                    ClearCase{"cmdClearRUN",
                              "",
                              "4 commands cleared.",
                              {kShell + "RunMRU"},
                              kShell + "RecentDocs\\.txt | 0"},
                    ClearCase{"cmdStartMenuAlpha",
                              "Force Start Menu items alphabetical?\r\n(4 stored orders)",
                              "Operation complete.",
                              {kShell + "MenuOrder"},
                              kShell + "RunMRU | a"}));

TEST_F(CommandsOn98, NoConfirmationSkipsTheQuestionButTellsWhatWent) {
  view().put(kConfigurationKey, "NoShowConfirmation", "dword 1");
  KorvexRun run(machine.get());
  button(run, "cmdClearDOCSNow").press();
  ASSERT_EQ(1u, run.prompts.messages.size());
  EXPECT_EQ("3 documents cleared.", run.prompts.messages[0].text);
}

TEST_F(CommandsOn2000, FoldersAndPathsAreKeptAsTheyWereChosen) {
  const std::string printers = "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Print\\Printers";
  const std::string setup = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Setup";
  struct Case {
    const char* button;
    const char* asked;
    std::string key;
    const char* value;
    const char* shownBy;  // a control whose text or caption ends with it
    const char* told;
  };
  const Case cases[]{
      {"cmdChangePrintSpool", "Identify a new default printer spool directory.", printers,
       "DefaultSpoolDirectory", "lblPrintSpool", "Default spool directory successfully changed."},
      {"cmdInstallPath", "Type the new source path for Windows to search at.", setup, "SourcePath",
       nullptr, nullptr},
      {"cmdBrowse", "Identify the folder where registry settings will be stored.",
       kConfigurationKey, "RegPath", "txtRegPath", nullptr}};
  ASSERT_EQ(0, machine->files().createFolder("C:\\Two Words"));
  KorvexRun run(machine.get());
  EXPECT_EQ("C:\\Program Files\\Korvex\\Registry",
            run.window().find<forms::TextBox>("txtRegPath")->Text.get());
  for (const Case& c : cases) {
    SCOPED_TRACE(c.button);
    const std::string before = view().value(c.key, c.value);
    run.prompts.texts = {std::nullopt, "C:\\Two Words"};
    run.prompts.messages.clear();
    auto& pressed = button(run, c.button);
    pressed.press();
    EXPECT_EQ(before, view().value(c.key, c.value));
    pressed.press();
    EXPECT_EQ("\"C:\\Two Words\"", view().value(c.key, c.value));
    EXPECT_EQ(c.asked, run.prompts.messages[0].text);
    ASSERT_EQ(c.told == nullptr ? 2u : 3u, run.prompts.messages.size());
    if (c.told != nullptr) {
      EXPECT_EQ(c.told, run.prompts.messages[2].text);
    }
    if (c.shownBy != nullptr) {
      EXPECT_TRUE(run.window().find(c.shownBy)->stateText().ends_with("C:\\Two Words") ||
                  run.window().find(c.shownBy)->Caption->ends_with(": C:\\Two Words"));
    }
  }
}

TEST_F(CommandsOn95, WhatThisWindowsHasNotIsDisabledWithTheReason) {
  KorvexRun run(machine.get());
  for (const char* name : {"cmdMSConfig", "cmdChangePrintSpool"}) {
    EXPECT_FALSE(button(run, name).Enabled) << name;
    EXPECT_FALSE(button(run, name).ToolTipText->empty()) << name;
  }
  EXPECT_FALSE(run.window().find("lblPrintSpool")->Visible);
  EXPECT_TRUE(button(run, "cmdWinCompat").Enabled);
}

TEST_F(CommandsOn98, AMachineThatCannotRunAProgramSaysSoItself) {
  KorvexRun run(machine.get());
  for (const char* program : {"msconfig.exe", "mkcompat.exe"}) {
    std::string sentence;
    EXPECT_NE(0, machine->processes().ShellExecuteA("open", program, "", "", sentence));
    run.prompts.messages.clear();
    button(run, program[1] == 's' ? "cmdMSConfig" : "cmdWinCompat").press();
    ASSERT_EQ(1u, run.prompts.messages.size());
    EXPECT_EQ(sentence, run.prompts.messages[0].text);
  }
}

}  // namespace
}  // namespace korvex::main_window
