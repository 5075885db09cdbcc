// Routines that do more than one value: what they keep comes back, and half of it is never done.
#include <fmt/format.h>

#include <array>
#include <tuple>

#include "engine_fixture.h"

namespace korvex::engine {
namespace {

using platform::Answer;

constexpr std::string_view kShell = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer";
constexpr std::string_view kWinreg =
    "SYSTEM\\CurrentControlSet\\Control\\SecurePipeServers\\winreg";

class SpecialsTest : public EngineTest {
 public:
  // As Apply does, with the box as the person left it.
  bool apply(std::string_view property, int value) {
    const Tweak& tweak = *findTweak(property);
    put(tweak, value);
    createKey(HKLM, fmt::format("{}\\{}", bankKey(tweak.bank), property));
    return worker.call(property);
  }
  Dump everything() {
    Dump result = dump(registry());
    result.erase("HKLM\\SOFTWARE\\Korvex\\Previous");  // the place of kept values stays, empty
    return result;
  }
  bool fileExists(const std::string& path) { return machine->files().exists(path); }

  // Data that no editor would write, at the key and below it.
  void putOddTree(std::string_view path) {
    setRaw(HKLM, path, "", platform::REG_EXPAND_SZ, "%no end%");
    setRaw(HKLM, path, "Short\\number", platform::REG_DWORD, "\1\2\3");
    setRaw(HKLM, path, "Own type", 0x12345, std::string("\0\xFF\0", 3));
    setRaw(HKLM, fmt::format("{}\\Below", path), "List", platform::REG_MULTI_SZ,
           std::string("a\0b\0\0", 5));
    setRaw(HKLM, fmt::format("{}\\Below", path), "Nothing", platform::REG_BINARY, "");
    createKey(HKLM, fmt::format("{}\\Below\\Empty", path));
  }
};

TEST_F(SpecialsTest, AFolderThatWasTakenAwayComesBackByteForByte) {
  constexpr std::string_view kClass = "{7007ACC7-3202-11D1-AAD2-00805FC1270E}";
  for (const std::string_view nameSpace : {"MyComputer", "ControlPanel"}) {
    putOddTree(fmt::format("{}\\{}\\NameSpace\\{}", kShell, nameSpace, kClass));
  }
  const auto before = everything();
  EXPECT_TRUE(apply("P_rwRemoveDUN", 1));
  EXPECT_FALSE(keyExists(HKLM, fmt::format("{}\\MyComputer\\NameSpace\\{}", kShell, kClass)));
  EXPECT_FALSE(keyExists(HKLM, fmt::format("{}\\ControlPanel\\NameSpace\\{}", kShell, kClass)));
  EXPECT_TRUE(apply("P_rwRemoveDUN", 1)) << "a second time forgets nothing";
  EXPECT_TRUE(apply("P_rwRemoveDUN", 0));
  EXPECT_EQ(before, everything());
}

TEST_F(SpecialsTest, OpeningAndClosingTheRegistryKeepsItsExceptions) {
  putOddTree(fmt::format("{}\\AllowedPaths", kWinreg));
  setText(HKLM, kWinreg, "Description", "registry server");
  const auto before = everything();
  session.g_bDefaulting = true;  // 2000 sets it up itself: nothing to do, nothing to tell
  EXPECT_TRUE(apply("P_rwRestrictRegAccess", 0));
  EXPECT_EQ(before, everything());
  EXPECT_TRUE(prompts.messages.empty());

  session.g_bDefaulting = false;
  EXPECT_TRUE(apply("P_rwRestrictRegAccess", 0));
  EXPECT_FALSE(keyExists(HKLM, kWinreg));
  EXPECT_TRUE(prompts.messages.empty());
  EXPECT_TRUE(apply("P_rwRestrictRegAccess", 1));
  EXPECT_EQ("\"Registry Server\"", value(HKLM, kWinreg, "Description"));
  ASSERT_EQ(1U, prompts.messages.size());
  EXPECT_EQ(platform::kIconInformation, prompts.messages[0].style & platform::kIconMask);
  setText(HKLM, kWinreg, "Description", "registry server");
  EXPECT_EQ(before, everything());
}

// Somebody else writes to the machine while the person thinks.
class SlowPerson : public test::ScriptedPrompts {
 public:
  explicit SlowPerson(const test::TestMachine& machine) : machine_(machine) {}
  Answer messageBox(std::string_view text, int style, std::string_view title) override {
    const auto other = machine_.open(platform::OpenMode::ReadWrite);
    platform::HKEY key = 0;
    std::uint32_t disposition = 0;
    EXPECT_EQ(0, other->registry().RegCreateKeyExA(HKCU, "Meanwhile", platform::KEY_ALL_ACCESS, key,
                                                   disposition));
    other->registry().RegCloseKey(key);
    return ScriptedPrompts::messageBox(text, style, title);
  }

 private:
  const test::TestMachine& machine_;
};

class CascadeTest : public SpecialsTest {
 public:
  static constexpr const char* kFolder = "\\Printers.{2227A280-3AEA-1069-A2DE-08002B30309D}";
  const std::string mine = session.pd.StartMenuPath + kFolder;
  const std::string everybodys = session.pd.CommStartMenuPath + kFolder;
};

TEST_F(CascadeTest, TheAnswerSaysForWhomAndWithoutOneNothingIsDone) {
  for (const auto& [answer, forMe, forAll] : {std::tuple{Answer::Yes, true, false},
                                              {Answer::No, false, true},
                                              {Answer::Cancel, false, false}}) {
    SCOPED_TRACE(static_cast<int>(answer));
    SlowPerson person(machine);
    person.answers = {answer};
    foundation::Session asking(machine.get(), person);
    asking.pd = session.pd;
    RegWorker asked(asking, book);
    const std::string marker = fmt::format("{}\\P_rwPrinters", kState);
    createKey(HKLM, marker);
    put(*findTweak("P_rwPrinters"), 1);
    EXPECT_EQ(forMe || forAll, asked.call("P_rwPrinters"));
    EXPECT_EQ(forMe || forAll ? 0 : platform::ERROR_CANCELLED, asked.lastStatus);
    EXPECT_EQ(forMe || forAll, !keyExists(HKLM, marker));
    EXPECT_EQ(forMe, fileExists(mine));
    EXPECT_EQ(forAll, fileExists(everybodys));
    ASSERT_EQ(1U, person.messages.size());
    EXPECT_EQ(
        "Would you like the cascading Printers menu enabled\r\n"
        "for you only (Yes) or all users (No)?",
        person.messages[0].text);
    EXPECT_EQ(platform::kButtonsYesNo | platform::kIconQuestion, person.messages[0].style);
    if (forMe || forAll) {
      EXPECT_TRUE(asked.call("P_rwPrinters"));
      EXPECT_EQ(1U, person.messages.size()) << "what is there needs no question";
    }
    EXPECT_TRUE(apply("P_rwPrinters", 0));
    EXPECT_FALSE(fileExists(mine) || fileExists(everybodys));
  }
}

TEST_F(CascadeTest, AFailureOfTheRegistryTakesTheFolderBack) {
  int failures = 0;
  for (int n = 1; n < 50; ++n) {
    createKey(HKLM, fmt::format("{}\\P_rwPrinters", kState));
    put(*findTweak("P_rwPrinters"), 1);
    prompts.answers = {Answer::Yes};
    platform::FailingRegistry failing(machine.registry(), n, platform::ERROR_ACCESS_DENIED);
    platform::ComposedMachine failed(machine.get(), {.registry = &failing});
    foundation::Session inTrouble(failed, prompts);
    inTrouble.pd = session.pd;
    const bool done = RegWorker(inTrouble, book).call("P_rwPrinters");
    EXPECT_EQ(done, fileExists(mine)) << "call " << n;
    if (!failing.failed()) break;
    if (done) {
      EXPECT_EQ(0, machine->files().removeFolder(mine));  // a failure that cost nothing
    } else {
      ++failures;
    }
  }
  EXPECT_GT(failures, 1);
  EXPECT_TRUE(fileExists(mine));
}

TEST_F(CascadeTest, AFolderWithContentStaysAndSoDoesTheOther) {
  EXPECT_EQ(0, machine->files().createFolder(mine));
  putFile(everybodys + "\\Laser.lnk", "shortcut");
  EXPECT_FALSE(apply("P_rwPrinters", 0));
  EXPECT_EQ(platform::ERROR_DIR_NOT_EMPTY, worker.lastStatus);
  EXPECT_TRUE(waits(kState, "P_rwPrinters"));
  EXPECT_TRUE(fileExists(mine) && fileExists(everybodys));
}

TEST_F(SpecialsTest, ScreenTipsAreOneBitOfManyAndForeignDataIsLeftAlone) {
  struct Case {
    const char* title;
    platform::RegType type;
    std::string before;  // "" is no value
    int box;
    platform::Status status;
    std::string after;
  };
  const std::string mask("\x9E\x3E\x05\x80\x10\0", 6);
  const std::string cleared("\x1E\x3E\x05\x80\x10\0", 6);
  const std::array cases{
      Case{"taken away", platform::REG_BINARY, mask, 1, 0, cleared},
      Case{"brought back", platform::REG_BINARY, cleared, 0, 0, mask},
      Case{"taken away twice", platform::REG_BINARY, cleared, 1, 0, cleared},
      Case{"too short", platform::REG_BINARY, "\x9E\x3E\x05", 1, platform::ERROR_INVALID_DATA, ""},
      Case{"a text", platform::REG_SZ, "9e3e0580", 0, platform::ERROR_INVALID_DATA, ""},
      Case{"missing", platform::REG_BINARY, "", 0, 0, ""},
      Case{"missing", platform::REG_BINARY, "", 1, 0, "\x1E\x3E\x05\x80"},
  };
  constexpr std::string_view kKey = "Control Panel\\Desktop";
  constexpr std::string_view kName = "UserPreferencesMask";
  for (const Case& c : cases) {
    SCOPED_TRACE(fmt::format("{}, box {}", c.title, c.box));
    session.regTool.DeleteRegValue(HKCU, kKey, kName);
    if (!c.before.empty()) setRaw(HKCU, kKey, kName, c.type, c.before);
    const std::string before = value(HKCU, kKey, kName);
    EXPECT_EQ(c.status == 0, apply("P_rwScreenTips", c.box));
    EXPECT_EQ(c.status, worker.lastStatus);
    const RawValue after{platform::REG_BINARY, c.after};
    EXPECT_EQ(c.after.empty() ? before : shown(after), value(HKCU, kKey, kName));
  }
}

TEST_F(SpecialsTest, TheIconOfBitmapsComesBackWithItsTypeAndAMissingOneIsMissingAgain) {
  constexpr std::string_view kIcon = "Paint.Picture\\DefaultIcon";
  setText(HKCR, ".bmp", "", "Paint.Picture");
  for (const bool had : {true, false}) {
    SCOPED_TRACE(had);
    createKey(HKCR, kIcon);
    if (had) setRaw(HKCR, kIcon, "", platform::REG_EXPAND_SZ, "%no end%");
    const auto before = everything();
    EXPECT_TRUE(apply("P_rwBMP", 1));
    EXPECT_EQ("\"%1\"", value(HKCR, kIcon, ""));
    EXPECT_TRUE(apply("P_rwBMP", 1)) << "a second time keeps the first icon";
    EXPECT_TRUE(apply("P_rwBMP", 0));
    EXPECT_EQ(before, everything());
    session.regTool.DeleteRegValue(HKCR, kIcon, "");
  }
}

}  // namespace
}  // namespace korvex::engine
