// backup and restore of keys.
#include <fmt/format.h>

#include <algorithm>
#include <csignal>

#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

namespace fs = std::filesystem;

const std::string kTest = "HKCU\\Software\\Test";
const std::string kFull = "[HKEY_CURRENT_USER\\Software\\Test";

std::string read(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

class BackupTest : public CliTest {
 public:
  explicit BackupTest(test::Family family = test::Family::NineX) : CliTest(family) {
    fs::create_directories(host());
  }
  // A folder beside the machine.
  fs::path host() const { return machine.folder().parent_path() / "host"; }
  std::string file(const std::string& name) const { return (host() / name).string(); }
  std::string write(const std::string& name, const std::string& text) const {
    std::ofstream(host() / name, std::ios::binary) << text;
    return file(name);
  }
  void set(const std::string& key, const std::string& name, const std::string& data) {
    ASSERT_EQ(0, korvex({"reg", "set", key, name, "REG_SZ", data}).code);
  }
  std::vector<std::string> hostFiles() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(host()))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }
};

class BackupNtTest : public BackupTest {
 public:
  BackupNtTest() : BackupTest(test::Family::Nt) {}
};

class RestoreNt4 : public CliTest {
 public:
  RestoreNt4() : CliTest(std::string("windows-nt4")) {}
};

using Backup = BackupTest;
using BackupNt = BackupNtTest;
using Restore = BackupTest;
using RestoreNt = BackupNtTest;

TEST_F(Backup, BothSidesGetTheBytesOfTheMachinesEditor) {
  set(kTest + "\\Sub", "a", "caf\xC3\xA9");
  ASSERT_EQ(0, korvex({"backup", kTest, file("x.reg")}).code);
  ASSERT_EQ(0, korvex({"backup", kTest, "C:\\x.reg"}).code);
  const std::string bytes = read(file("x.reg"));
  EXPECT_EQ(
      "REGEDIT4\r\n\r\n" + kFull + "]\r\n\r\n" + kFull + "\\Sub]\r\n\"a\"=\"caf\xE9\"\r\n\r\n",
      bytes);
  EXPECT_EQ(bytes, read(machine.driveC() / "x.reg"));
  EXPECT_EQ(bytes, korvex({"backup", kTest, "-"}).out);
}

TEST_F(Backup, OnlyReadsTheMachineForAFileOfTheHost) {
  set(kTest, "a", "x");
  const auto before = everyFile();
  EXPECT_EQ(0, korvex({"backup", kTest, file("x.reg")}).code);
  EXPECT_EQ(before, everyFile());
  const auto open = machine.open(platform::OpenMode::ReadWrite);
  const auto claim = open->claimInstance(platform::Wait::No);
  EXPECT_EQ(0, korvex({"backup", kTest, file("y.reg")}).code);
}

TEST_F(Backup, ReplacesAFileOnlyWhereItIsToldTo) {
  set(kTest, "a", "x");
  for (const std::string& path : {write("x.reg", "mine"), std::string("C:\\WINDOWS\\x.reg")}) {
    std::ofstream(machine.driveC() / "WINDOWS/x.reg") << "mine";
    EXPECT_EQ(5, korvex({"backup", kTest, path}).code) << path;
    EXPECT_EQ("mine", read(machine.driveC() / "WINDOWS/x.reg"));
    EXPECT_EQ(0, korvex({"backup", kTest, path, "--overwrite"}).code) << path;
  }
  EXPECT_TRUE(read(file("x.reg")).starts_with("REGEDIT4"));
  EXPECT_TRUE(read(machine.driveC() / "WINDOWS/x.reg").starts_with("REGEDIT4"));
}

TEST_F(BackupNt, IsWholeOrThereIsNone) {
  set(kTest, "a", "x");
  set(kTest, "line\nbreak", "x");  // a name that the format has no way to write
  for (const std::string& path : {file("x.reg"), std::string("C:\\x.reg"), std::string("-")}) {
    const Result result = korvex({"backup", kTest, path});
    EXPECT_EQ(5, result.code) << path;
    EXPECT_EQ("", result.out) << path;
  }
  EXPECT_NE(std::string::npos, korvex({"backup", kTest, "-"}).err.find("korvex reg export"));
  EXPECT_EQ(5, korvex({"backup", "HKCU\\None", file("x.reg")}).code);
  EXPECT_EQ(5, korvex({"backup", "HKU\\.DEFAULT", "C:\\x.reg"}).code);
  EXPECT_TRUE(hostFiles().empty());
  EXPECT_FALSE(fs::exists(machine.driveC() / "x.reg"));
}

// Every kind of change, on keys and values whose order is not that of the alphabet.
const std::vector<std::string> kEveryChange{
    kFull + "]\r\n\"z\"=\"new data\"\r\n\"m\"=-\r\n\"new\"=dword:00000001\r\n@=\"other\"\r\n",
    "[-HKEY_CURRENT_USER\\Software\\Test\\gone]\r\n",
    kFull + "\\Fresh\\Deep]\r\n\"v\"=\"1\"\r\n" + kFull + "\\Fresh]\r\n\"w\"=\"2\"\r\n",
    kFull + "]\r\n\"b\"=-\r\n",
    kFull + "\\Again]\r\n\"x\"=\"1\"\r\n[-HKEY_CURRENT_USER\\Software\\TEST\\AGAIN]\r\n" + kFull +
        "\\AGAIN]\r\n\"x\"=\"2\"\r\n\"y\"=\"2\"\r\n",
};

void fillForEveryChange(BackupTest& test) {
  test.korvex({"reg", "set", kTest, "z", "REG_EXPAND_SZ", "%old%"});
  for (const char* name : {"m", "", "b", "k", "a"}) test.set(kTest, name, "old");
  test.set(kTest + "\\Gone", "q", "\xC3\xA9");
  test.korvex({"reg", "set", kTest + "\\Gone\\Deep", "bin", "REG_BINARY", "00ff"});
  test.korvex({"reg", "set", kTest + "\\Gone\\Deep", "odd", "REG_TYPE_0x00000063", "01"});
  test.set(kTest + "\\Again", "x", "1");
  test.set(kTest + "\\Stays", "s", "1");
}

void expectUndoToTheByte(BackupTest& test, const std::string& header, bool exact) {
  fillForEveryChange(test);
  const std::string before = test.dump();
  std::string text = header + "\r\n\r\n";
  for (const std::string& part : kEveryChange) text += part + "\r\n";
  const std::string file = test.write("x.reg", text);
  std::vector<std::string> args{"restore", file};
  if (exact) args.emplace_back("--exact");
  ASSERT_EQ(0, test.korvex(args).code);
  EXPECT_NE(before, test.dump());
  EXPECT_EQ("new data", test.value(kTest, "z")["data"]);
  EXPECT_EQ(exact ? 5 : 0, test.korvex({"reg", "query", kTest + "\\Stays"}).code);
  ASSERT_EQ(0, test.korvex({"restore", file + ".undo.reg"}).code);
  EXPECT_EQ(before, test.dump());
  // And the way forth once more.
  ASSERT_EQ(0, test.korvex({"restore", file + ".undo.reg.undo.reg", "--no-undo"}).code);
  EXPECT_EQ("new data", test.value(kTest, "z")["data"]);
}

TEST_F(Restore, UndoFileBringsEverythingBackToTheByte) {
  expectUndoToTheByte(*this, "REGEDIT4", false);
}
TEST_F(RestoreNt, UndoFileBringsEverythingBackToTheByte) {
  expectUndoToTheByte(*this, "Windows Registry Editor Version 5.00", false);
}
TEST_F(RestoreNt, UndoFileBringsExtrasBackToTheByte) {
  expectUndoToTheByte(*this, "REGEDIT4", true);
}

TEST_F(Restore, ExactLeavesWhatTheFileSaysAndNoMore) {
  set(kTest + "\\Sub", "a", "1");
  ASSERT_EQ(0, korvex({"backup", kTest, file("x.reg")}).code);
  ASSERT_EQ(0, korvex({"backup", kTest, "C:\\x.reg"}).code);
  const std::string before = dump();
  for (const std::string& path : {file("x.reg"), std::string("c:/x.reg")}) {
    set(kTest + "\\Sub\\More", "b", "2");
    set(kTest + "\\Sub", "b", "2");
    ASSERT_EQ(0, korvex({"restore", path, "--overwrite"}).code) << path;
    EXPECT_EQ("2", value(kTest + "\\Sub", "b")["data"]) << path;
    ASSERT_EQ(0, korvex({"restore", path, "--exact", "--overwrite"}).code) << path;
    EXPECT_EQ(before, dump()) << path;
  }
  EXPECT_TRUE(fs::exists(machine.driveC() / "x.reg.undo.reg"));
  const std::string two =
      write("two.reg", "REGEDIT4\r\n" + kFull + "\\A]\r\n" + kFull + "\\B]\r\n");
  EXPECT_EQ(2, korvex({"restore", two, "--exact"}).code);
  EXPECT_EQ(before, dump());
}

TEST_F(Restore, ChangesNothingWithoutItsUndoFile) {
  set(kTest, "a", "1");
  const std::string before = dump();
  const std::string x = write("x.reg", "REGEDIT4\r\n" + kFull + "]\r\n\"a\"=\"2\"\r\n");
  write("x.reg.undo.reg", "mine");
  EXPECT_EQ(5, korvex({"restore", x}).code);
  EXPECT_EQ(5, korvex({"restore", x, "--undo", file("none/undo.reg")}).code);
  EXPECT_EQ(5, korvex({"restore", x, "--undo", "Q:\\undo.reg"}).code);
  EXPECT_EQ(2, korvex({"restore", x, "--undo", file("u.reg"), "--no-undo"}).code);
  EXPECT_EQ("mine", read(file("x.reg.undo.reg")));
  EXPECT_EQ(before, dump());
  EXPECT_EQ(0, korvex({"restore", x, "--undo", "C:\\undo.reg"}).code);
  EXPECT_EQ("REGEDIT4\r\n\r\n" + kFull + "]\r\n\"a\"=\"1\"\r\n\r\n",
            read(machine.driveC() / "undo.reg"));
}

// NT 4 writes 8-bit text: what it would have to keep does not fit.
TEST_F(RestoreNt4, RefusesWhatItsUndoFileCannotHold) {
  const std::string folder = machine.folder().parent_path();
  ASSERT_EQ(0, korvex({"reg", "set", kTest, "a", "REG_SZ", "\xD0\xAF"}).code);
  const std::string x = folder + "/x.reg";
  std::ofstream(x) << "REGEDIT4\r\n" << kFull << "]\r\n\"a\"=\"2\"\r\n";
  const Result refused = korvex({"restore", x});
  EXPECT_EQ(5, refused.code);
  EXPECT_NE(std::string::npos, refused.err.find("--no-undo")) << refused.err;
  EXPECT_EQ("\xD0\xAF", value(kTest, "a")["data"]);
  EXPECT_FALSE(fs::exists(x + ".undo.reg"));
  EXPECT_EQ(0, korvex({"restore", x, "--no-undo"}).code);
}

TEST_F(Restore, DryRunTellsAndWritesNothing) {
  set(kTest, "a", "1");
  const std::string x =
      write("x.reg", "REGEDIT4\r\n" + kFull + "]\r\n\"a\"=\"2\"\r\n\"e\x1B\"=\"3\"\r\n");
  const auto before = everyFile();
  const Result text = korvex({"restore", x, "--dry-run"});
  EXPECT_EQ(1, text.code);
  EXPECT_EQ(
      "* HKEY_CURRENT_USER\\Software\\Test  a = REG_SZ \"2\", was REG_SZ \"1\"\n"
      "+ HKEY_CURRENT_USER\\Software\\Test  e\\x1b = REG_SZ \"3\"\n",
      text.out);
  const Json told = json({"restore", x, "--dry-run"}).json();
  EXPECT_EQ(2, told["changeCount"]);
  EXPECT_EQ(1, told["changedValues"]);
  EXPECT_EQ("ChangedValue", told["changes"][0]["kind"]);
  EXPECT_EQ(false, told["restored"]);
  EXPECT_EQ(before, everyFile());
  EXPECT_EQ(std::vector<std::string>{"x.reg"}, hostFiles());
}

TEST_F(Restore, RefusedLinesAreNamedOnEitherSide) {
  const std::string text = "REGEDIT4\r\n" + kFull + "]\r\n\"bad\"=oops\r\n\"good\"=\"1\"\r\n";
  std::ofstream(machine.driveC() / "y.reg") << text;
  for (const std::string& path : {write("x.reg", text), std::string("C:\\y.reg")}) {
    const Result result = korvex({"restore", path});
    EXPECT_EQ(1, result.code) << path << result.err;
    EXPECT_NE(std::string::npos, result.err.find(":3:")) << result.err;
    EXPECT_EQ("1", value(kTest, "good")["data"]);
    korvex({"reg", "delete", kTest});
  }
  EXPECT_EQ(5, korvex({"restore", write("no.reg", "no such file")}).code);
  EXPECT_EQ(5, korvex({"restore", file("none.reg")}).code);
  EXPECT_EQ(2, korvex({"restore", "-"}).code);
}

TEST_F(RestoreNt, PrintsNoMoreThanAPersonReads) {
  std::string text = "REGEDIT4\r\n";
  for (int i = 0; i < 3000; ++i) text += fmt::format("{}\\K{}]\r\n\"a\"=\"1\"\r\n", kFull, i);
  const std::string x = write("x.reg", text);
  const Result printed = korvex({"restore", x, "--dry-run"});
  EXPECT_EQ(201, std::count(printed.out.begin(), printed.out.end(), '\n'));
  EXPECT_NE(std::string::npos, printed.out.find("... and 5802 more."));
  const Json told = json({"restore", x}).json();
  EXPECT_EQ(6002, told["changeCount"]);  // with the keys above them
  EXPECT_EQ(2000U, told["changes"].size());
  // All of them go with the one key that was new.
  EXPECT_EQ(0, korvex({"restore", told["undo"].get<std::string>()}).code);
  EXPECT_EQ(5, korvex({"reg", "query", kTest}).code);
}

TEST_F(Restore, ControlCChangesNothing) {
  const std::string x = write("x.reg", "REGEDIT4\r\n" + kFull + "]\r\n\"a\"=\"2\"\r\n");
  const auto before = dump();
  sigset_t interrupt{};
  sigset_t old{};
  sigemptyset(&interrupt);
  sigaddset(&interrupt, SIGINT);
  pthread_sigmask(SIG_BLOCK, &interrupt, &old);
  raise(SIGINT);
  const Result result = json({"restore", x});
  pthread_sigmask(SIG_SETMASK, &old, nullptr);
  EXPECT_EQ(5, result.code);
  EXPECT_EQ("cancelled", result.json()["error"]["kind"]);
  EXPECT_EQ(before, dump());
  EXPECT_EQ(std::vector<std::string>{"x.reg"}, hostFiles());
}

}  // namespace
}  // namespace korvex::cli
