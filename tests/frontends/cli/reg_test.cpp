// reg query, set, delete, import and export; machine; and the command line as such.
#include <cstdlib>

#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

using Reg = CliTest;
using Reg9x = Cli9xTest;
using Usage = CliTest;
using MachineCommand = CliTest;

const std::string kTest = "HKCU\\Software\\Test";

TEST_F(Reg, ValuesOfEveryTypeComeBack) {
  const std::vector<std::pair<std::vector<std::string>, Json>> cases{
      {{"", "REG_SZ", "hello"}, "hello"},
      {{"list", "REG_MULTI_SZ", "one", "two"}, {"one", "two"}},  // words that are commands too
      {{"set", "REG_DWORD", "0xffffffff"}, 4294967295},
      {{"q", "REG_QWORD", "4294967296"}, 4294967296},
      {{"b", "REG_BINARY", "00ff"}, "00ff"},
      {{"n", "REG_NONE"}, ""},
      {{"minus", "REG_SZ", "--", "-5"}, "-5"},
      {{"\xC3\xA9", "REG_EXPAND_SZ", "%A%\xE2\x82\xAC"}, "%A%\xE2\x82\xAC"},
  };
  for (const auto& [arguments, data] : cases) {
    std::vector<std::string> args{"reg", "set", kTest};
    args.insert(args.end(), arguments.begin(), arguments.end());
    ASSERT_EQ(0, korvex(args).code) << arguments[0];
    EXPECT_EQ(data, value(kTest, arguments[0])["data"]) << arguments[0];
  }
  EXPECT_EQ("68000000",
            (json({"reg", "set", kTest, "(default)", "REG_SZ", "h"}).json())["after"]["hex"]);
  const Json all = json({"reg", "query", "HKCU\\Software"}).json();
  EXPECT_EQ("HKEY_CURRENT_USER\\Software", all["key"]);
  EXPECT_EQ(Json({"Test"}), all["subkeys"]);
}

TEST_F(Reg, QueryPrintsAsTheRegistryToolDoes) {
  korvex({"reg", "set", kTest, "b", "REG_DWORD", "181"});
  korvex({"reg", "set", kTest, "", "REG_SZ", "x"});
  korvex({"reg", "set", kTest + "\\Sub", "", "REG_SZ", "y"});
  EXPECT_EQ(
      "HKEY_CURRENT_USER\\Software\\Test\n"
      "    (Default)    REG_SZ    x\n"
      "    b    REG_DWORD    0xb5 (181)\n"
      "\n"
      "HKEY_CURRENT_USER\\Software\\Test\\Sub\n",
      korvex({"reg", "query", kTest + "\\"}).out);
}

TEST_F(Reg, DeleteTakesATreeButNoRoot) {
  korvex({"reg", "set", kTest + "\\A\\B", "v", "REG_SZ", "x"});
  korvex({"reg", "set", kTest, "v", "REG_SZ", "x"});
  EXPECT_EQ(0, korvex({"reg", "delete", kTest, "--value", "V"}).code);
  EXPECT_EQ(5, korvex({"reg", "delete", kTest, "--value", "v"}).code);
  EXPECT_EQ(2, korvex({"reg", "delete", "HKCU"}).code);
  EXPECT_EQ(0, korvex({"reg", "query", "HKCU\\Software"}).code);
  EXPECT_EQ(0, korvex({"reg", "delete", kTest}).code);
  EXPECT_EQ(5, korvex({"reg", "query", kTest}).code);
  EXPECT_EQ(5, korvex({"reg", "delete", kTest}).code);
}

TEST_F(Reg, RefusedLinesOfAnImportAreToldAndTheRestIsRead) {
  const Result result = json({"reg", "import", "-"},
                             "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Test]\n\"bad\"=oops\n"
                             "\"good\"=\"\xE9\"\n");
  EXPECT_EQ(1, result.code);
  EXPECT_EQ(1, result.json()["refused"]);
  EXPECT_NE(std::string::npos, result.err.find(":4:")) << result.err;
  EXPECT_EQ("\xC3\xA9", value(kTest, "good")["data"]);
  EXPECT_EQ(5, korvex({"reg", "import", "-"}, "no such file").code);
  EXPECT_EQ(5, korvex({"reg", "import", (machine.folder() / "none.reg").string()}).code);
}

TEST_F(Reg, ExportIsWhatImportReads) {
  const std::string file = (machine.folder() / "out.reg").string();
  korvex({"reg", "set", kTest, "v", "REG_SZ", "\xE2\x82\xAC\xD0\xAF"});
  EXPECT_EQ(0, korvex({"reg", "export", kTest, file}).code);
  const std::string unicode = korvex({"reg", "export", kTest, "-"}).out;
  EXPECT_TRUE(unicode.starts_with("\xFF\xFEW"));
  korvex({"reg", "delete", kTest});
  EXPECT_EQ(0, korvex({"reg", "import", file}).code);
  EXPECT_EQ(unicode, korvex({"reg", "export", kTest, "-"}).out);
  // Format 4 has no Cyrillic here: named, left out, and told by the exit code.
  const Result four = korvex({"reg", "export", kTest, "-", "--format", "4"});
  EXPECT_EQ(1, four.code);
  EXPECT_TRUE(four.out.starts_with("REGEDIT4\r\n"));
  EXPECT_NE(std::string::npos, four.err.find("Software\\Test"));
  EXPECT_EQ(5, korvex({"reg", "export", "HKCU\\None", file + "2"}).code);
  EXPECT_FALSE(std::filesystem::exists(file + "2"));
  EXPECT_EQ(2, json({"reg", "export", kTest, "-"}).code);
}

TEST_F(Reg9x, ExportIsInTheFormatOfTheWindows) {
  EXPECT_EQ(0, korvex({"reg", "set", kTest, "v", "REG_SZ", "x"}).code);
  EXPECT_TRUE(korvex({"reg", "export", kTest, "-"}).out.starts_with("REGEDIT4\r\n"));
  EXPECT_EQ(5, korvex({"reg", "set", kTest, "v", "REG_SZ", "\xD0\xAF"}).code);
  EXPECT_EQ("x", value(kTest, "v")["data"]);
}

TEST_F(Usage, FailureIsOneObjectAndASentence) {
  for (const auto& args : std::vector<std::vector<std::string>>{{"frob"},
                                                                {"reg"},
                                                                {"reg", "qery"},
                                                                {"set"},
                                                                {"list", "--nope"},
                                                                {"reg", "query", "X"}}) {
    const Result result = json(args);
    EXPECT_EQ(2, result.code) << args[0];
    EXPECT_EQ(2, result.json()["error"]["exitCode"]);
    EXPECT_FALSE(result.err.empty());
  }
  EXPECT_NE(std::string::npos, korvex({"lst"}).err.find("Did you mean list"));
}

TEST_F(Usage, HelpOfEveryCommandHasAnExample) {
  const std::vector<std::vector<std::string>> commands{
      {"machine", "create"},
      {"machine", "info"},
      {"list"},
      {"show"},
      {"set"},
      {"reg", "query"},
      {"reg", "set"},
      {"reg", "delete"},
      {"reg", "import"},
      {"reg", "export"},
      {"form", "list"},
      {"form", "show"},
      {"form", "run"},
      {"completion"},
  };
  for (std::vector<std::string> args : commands) {
    args.emplace_back("--help");
    const Result result = runKorvex(args);
    EXPECT_EQ(0, result.code) << args[0];
    EXPECT_NE(std::string::npos, result.out.find("  korvex ")) << args[0] << result.out;
  }
  EXPECT_TRUE(runKorvex({"--version"}).out.starts_with("korvex "));
  EXPECT_NE(std::string::npos, runKorvex({"completion", "bash"}).out.find("P_rwRun"));
}

TEST_F(Usage, MachineIsNamedByTheEnvironmentToo) {
  ASSERT_EQ(0, setenv("KORVEX_MACHINE", machine.folder().c_str(), 1));
  EXPECT_NE(std::string::npos, runKorvex({"machine", "info"}).out.find(machine.folder().string()));
  EXPECT_EQ(3, runKorvex({"--machine", "/nowhere", "list"}).code);
  unsetenv("KORVEX_MACHINE");
}

TEST_F(MachineCommand, CreateMakesAWholeMachineOnce) {
  const std::string folder = (machine.folder().parent_path() / "new").string();
  const Result made = runKorvex({"--json", "machine", "create", "--windows", "98", folder});
  ASSERT_EQ(0, made.code) << made.err;
  EXPECT_EQ("Windows 98", made.json()["machine"]["windows"].get<std::string>().substr(0, 10));
  EXPECT_EQ(0, runKorvex({"--machine", folder, "set", "Defrag=on"}).code);
  EXPECT_EQ(5, runKorvex({"machine", "create", "--windows", "98", folder}).code);
  EXPECT_EQ(2, runKorvex({"machine", "create", "--windows", "3.1", folder + "2"}).code);
  EXPECT_FALSE(std::filesystem::exists(folder + "2"));
  EXPECT_EQ(3, runKorvex({"--machine", folder + "2", "list"}).code);
}

}  // namespace
}  // namespace korvex::cli
