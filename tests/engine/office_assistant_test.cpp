// P_rwAsstRemove: the Assistant's characters go together, come back as they were, and none is lost
// on the way.
#include "engine/office_assistant.h"

#include "engine/kept_values.h"
#include "engine_fixture.h"
#include "support/failing_files.h"

namespace korvex::engine {
namespace {

using namespace std::string_literals;

const std::string kActors = "C:\\WINNT\\Actors\\";
const std::string kAway = kActors + "Disable\\";
constexpr std::string_view kAssistant = "Software\\Microsoft\\Office\\9.0\\Common\\Assistant";
constexpr std::string_view kMarker = "SOFTWARE\\Korvex\\CurrentSettingsVI\\P_rwAsstRemove";
constexpr Tweak kRow{.property = "P_rwAsstRemove",
                     .root = HKCU,
                     .key = kAssistant,
                     .value = "AsstState",
                     .byDefault = dword(1),
                     .bank = Bank::Office,
                     .form = "frmSpare",
                     .control = "chkSpare",
                     .special = &RegWorker::P_rwAsstRemove,
                     .reader = p_DetermineAsstRemove};

class Assistant : public EngineTest {
 public:
  Assistant() {
    session.g_iOfficeVer = 9;
    putFile(kActors + "CLIPPIT.ACS", "clip");
    putFile(kActors + "F1.acs", "robot");
    putFile(kActors + "readme.txt", "text");
    EXPECT_EQ(
        0, machine->files().setAttributes(kActors + "F1.acs", platform::FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(0, machine->files().createFolder(kActors + "Old.acs"));
    setText(HKCU, kAssistant, "AsstPath", "C:\\WINNT\\Actors");
    setDword(HKCU, kAssistant, "AsstState", 7);
  }
  // As Apply does, with the box as the person left it.
  bool apply(int value) {
    box("chkSpare", "frmSpare").Value = value;
    createKey(HKLM, kMarker);
    prompts.messages.clear();
    return worker.run(kRow);
  }
  // Names, contents and attributes below a folder.
  std::map<std::string, std::string> tree(const std::string& folder) {
    std::map<std::string, std::string> result;
    std::vector<platform::FileEntry> entries;
    machine->files().list(folder + "\\*", entries);
    for (const platform::FileEntry& entry : entries) {
      const std::string path = folder + '\\' + entry.name;
      std::string bytes;
      machine->files().read(path, bytes);
      result[path] = fmt::format("{} {}", entry.attributes & 0x11, bytes);
      if ((entry.attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0) result.merge(tree(path));
    }
    return result;
  }
  Dump everything() {
    Dump result = dump(registry());
    for (const auto& [path, content] : tree("C:\\WINNT\\Actors")) result[path] = content;
    // The places of markers and of kept values stay, empty.
    std::erase_if(result, [](const auto& line) {
      return line.first.starts_with("HKLM\\SOFTWARE\\Korvex\\Previous") && line.second == "key";
    });
    result.erase("HKLM\\SOFTWARE\\Korvex\\CurrentSettingsVI");
    return result;
  }
  TweakState::Kind state() { return readState(kRow, session).kind; }
  std::string told() { return prompts.messages.empty() ? "" : prompts.messages[0].text; }
  // Told once, nothing changed, and the change waits.
  void expectRefused(platform::Status cause) {
    createKey(HKLM, kMarker);
    const auto before = everything();
    EXPECT_FALSE(apply(1));
    EXPECT_EQ(cause, worker.lastStatus);
    EXPECT_EQ(before, everything());
    ASSERT_EQ(1U, prompts.messages.size());
    EXPECT_EQ(
        "An error ocurred disabling the Office Assistant.\r\nThe Assistant will not be disabled.",
        told());
    EXPECT_TRUE(session.trace.contains("lRetVal&=" + std::to_string(cause)));
  }
};

TEST_F(Assistant, ItsCharactersGoAndComeBackAsTheyWere) {
  const std::map<std::string, std::string> away{{"C:\\WINNT\\Actors\\Disable", "16 "},
                                                {kAway + "CLIPPIT.ACS", "0 clip"},
                                                {kAway + "F1.acs", "1 robot"},
                                                {kActors + "Old.acs", "16 "},
                                                {kActors + "readme.txt", "0 text"}};
  struct Case {
    std::string path;
    platform::RegType type;
    std::string state;
    platform::RegType typeOfState;
  };
  for (const Case& c :
       {Case{"C:\\WINNT\\Actors", platform::REG_SZ, "\7\0\0\0"s, platform::REG_DWORD},
        Case{"C:\\WINNT\\Actors\\", platform::REG_SZ, "\0\0\0\0"s, platform::REG_DWORD},
        Case{"%SystemRoot%\\Actors\\", platform::REG_EXPAND_SZ, "1\0"s, platform::REG_SZ},
        Case{"C:\\WINNT\\Actors", platform::REG_SZ, "", platform::REG_NONE}}) {
    SCOPED_TRACE(c.path);
    setRaw(HKCU, kAssistant, "AsstPath", c.type, c.path + '\0');
    setRaw(HKCU, kAssistant, "AsstState", c.typeOfState, c.state);
    if (c.state.empty()) session.regTool.DeleteRegValue(HKCU, kAssistant, "AsstState");
    const auto before = everything();
    EXPECT_TRUE(apply(0)) << "never checked";
    EXPECT_EQ(before, everything());
    EXPECT_EQ(TweakState::Kind::Off, state());
    for (int times = 0; times < 2; ++times) {
      ASSERT_TRUE(apply(1)) << worker.lastStatus;
      EXPECT_EQ(away, tree("C:\\WINNT\\Actors"));
      EXPECT_EQ("dword:0", value(HKCU, kAssistant, "AsstState"));
      EXPECT_EQ(TweakState::Kind::On, state());
    }
    ASSERT_TRUE(apply(0));
    EXPECT_EQ(before, everything());
    EXPECT_EQ("", told());
  }
}

TEST_F(Assistant, AFileThatIsThereNowIsNotReplaced) {
  ASSERT_TRUE(apply(1));
  putFile(kActors + "clippit.acs", "newer");
  putFile(kActors + "F1.acs", "robot");  // a copy of what was put away
  putFile(kAway + "own.txt", "");
  EXPECT_EQ(TweakState::Kind::Off, state());
  expectRefused(platform::ERROR_FILE_EXISTS);
  EXPECT_TRUE(apply(0));
  EXPECT_NE(std::string::npos, told().find("stay where they are:\r\n" + kAway + "CLIPPIT.ACS"))
      << told();
  EXPECT_EQ((std::map<std::string, std::string>{{kActors + "clippit.acs", "0 newer"},
                                                {kActors + "Disable", "16 "},
                                                {kAway + "CLIPPIT.ACS", "0 clip"},
                                                {kAway + "own.txt", "0 "},
                                                {kActors + "F1.acs", "0 robot"},
                                                {kActors + "Old.acs", "16 "},
                                                {kActors + "readme.txt", "0 text"}}),
            tree("C:\\WINNT\\Actors"));
  EXPECT_EQ("dword:7", value(HKCU, kAssistant, "AsstState"));
}

TEST_F(Assistant, TheyComeBackToWhereTheyWereTakenFrom) {
  const auto before = tree("C:\\WINNT\\Actors");
  ASSERT_TRUE(apply(1));
  putFile("C:\\Other\\GENIUS.ACT", "genius");
  setText(HKCU, kAssistant, "AsstPath", "C:\\Other");
  EXPECT_TRUE(apply(1));
  EXPECT_EQ(before, tree("C:\\WINNT\\Actors"));
  ASSERT_EQ(0, session.regTool.DeleteRegValue(HKCU, kAssistant, "AsstPath"));
  EXPECT_EQ("", needsActors(kRow, session));
  EXPECT_EQ(TweakState::Kind::On, state());
  EXPECT_TRUE(apply(0));
  EXPECT_TRUE(machine->files().exists("C:\\Other\\GENIUS.ACT"));
}

TEST_F(Assistant, WithoutCharactersThereIsNothingToRemove) {
  EXPECT_EQ("", needsActors(kRow, session));
  ASSERT_EQ(0, machine->files().createFolder("C:\\Empty"));
  for (const auto& [path, cause] :
       std::map<std::string, platform::Status>{{"", platform::ERROR_PATH_NOT_FOUND},
                                               {"C:\\Empty", platform::ERROR_FILE_NOT_FOUND},
                                               {"C:\\Nowhere", platform::ERROR_FILE_NOT_FOUND},
                                               {"relative", platform::ERROR_BAD_PATHNAME}}) {
    SCOPED_TRACE(path);
    setText(HKCU, kAssistant, "AsstPath", path);
    EXPECT_EQ("There are no characters of the Office Assistant on this machine.",
              needsActors(kRow, session));
    expectRefused(cause);
  }
  session.g_iOfficeVer = 0;
  EXPECT_EQ("Only MS Office 97 & 2000 supported", needsActors(kRow, session));
}

// Each write to files, then each call of the registry: as before or as after, never between.
TEST_F(Assistant, AFailureLeavesNothingBetween) {
  test::FailingFiles files(machine->files());
  for (const auto& [value, ofFiles] : {std::pair{1, true}, {1, false}, {0, true}, {0, false}}) {
    ASSERT_TRUE(apply(1 - value));
    createKey(HKLM, kMarker);
    box("chkSpare", "frmSpare").Value = value;
    const auto before = everything();
    int failures = 0;
    for (bool done = false; !done;) {
      const int nth = failures + 1;
      ASSERT_EQ(before, everything()) << "call " << failures << (ofFiles ? " of files" : "");
      platform::FailingRegistry failing(machine.registry(), ofFiles ? 0 : nth,
                                        platform::ERROR_ACCESS_DENIED);
      platform::ComposedMachine composed(machine.get(), {.registry = &failing, .files = &files});
      foundation::Session inTrouble(composed, prompts);
      inTrouble.g_sCurrentUser = session.g_sCurrentUser;
      files.fail(ofFiles ? nth : 0, platform::ERROR_ACCESS_DENIED);
      done = RegWorker(inTrouble, book).run(kRow);
      if (!done) ++failures;
    }
    files.fail(0, 0);
    EXPECT_NE(before, everything());
    EXPECT_EQ(value == 1 ? TweakState::Kind::On : TweakState::Kind::Off, state());
    EXPECT_GT(failures, 2);
  }
}

}  // namespace
}  // namespace korvex::engine
