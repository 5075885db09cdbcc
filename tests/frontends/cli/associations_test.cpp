// associations, and what all commands for backups have in common.
#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

namespace fs = std::filesystem;

class AssociationsTest : public CliTest {
 public:
  explicit AssociationsTest(const std::string& sample = "windows-98") : CliTest(sample) {}
  fs::path folder() const { return machine.driveC() / "Program Files/Korvex/FA"; }
  Json classOf(const std::string& type) { return value("HKCR\\" + type, "")["data"]; }
};

class Associations2000Test : public AssociationsTest {
 public:
  Associations2000Test() : AssociationsTest("windows-2000") {}
};

using Associations = AssociationsTest;
using Associations2000 = Associations2000Test;

void expectRoundTrip(AssociationsTest& test) {
  ASSERT_EQ(0, test.korvex({"associations", "save", "TXT", ".bmp", ".txt"}).code);
  EXPECT_TRUE(fs::exists(test.folder() / ".txt.reg"));
  EXPECT_TRUE(fs::exists(test.folder() / "txtfile.reg"));
  const Json saved = test.json({"associations", "list", "--saved"}).json()["types"];
  ASSERT_EQ(2U, saved.size());
  EXPECT_EQ(".txt", saved[1]["extension"]);
  EXPECT_EQ("txtfile", saved[1]["class"]);
  for (const char* type : {".txt", ".bmp"}) {
    test.korvex({"reg", "set", std::string("HKCR\\") + type, "", "REG_SZ", "taken"});
  }
  EXPECT_EQ(1, test.korvex({"associations", "restore", "--all", "--dry-run"}).code);
  EXPECT_EQ(2, test.korvex({"associations", "restore", "txt"}).code);
  EXPECT_EQ("taken", test.classOf(".txt"));
  EXPECT_EQ(0, test.korvex({"associations", "restore", "txt", "--yes"}).code);
  EXPECT_EQ("txtfile", test.classOf(".txt"));
  EXPECT_EQ("taken", test.classOf(".bmp"));
}

TEST_F(Associations, RestoreBringsBackTheTypesThatWereNamed) { expectRoundTrip(*this); }
TEST_F(Associations2000, RestoreBringsBackTheTypesThatWereNamed) { expectRoundTrip(*this); }

TEST_F(Associations, TypeThatCannotBeSavedIsMissedOnlyWhereItWasNamed) {
  korvex({"reg", "set", "HKCR\\.odd", "", "REG_SZ", "CLSID\\{0}"});
  EXPECT_EQ(5, korvex({"associations", "save", "odd"}).code);
  EXPECT_EQ(1, korvex({"associations", "save", "odd", "txt"}).code);
  EXPECT_EQ(0, korvex({"associations", "save", "--all"}).code);
  EXPECT_FALSE(fs::exists(folder() / ".odd.reg"));
}

TEST_F(Associations, SaysWhichTypesAndWhere) {
  const auto before = everyFile();
  for (const auto& args : std::vector<std::vector<std::string>>{{"save"},
                                                                {"restore"},
                                                                {"save", "txt", "--all"},
                                                                {"save", "a\\b"},
                                                                {"save", "txt", "--folder", "x"}}) {
    std::vector<std::string> all{"associations"};
    all.insert(all.end(), args.begin(), args.end());
    EXPECT_EQ(2, korvex(all).code) << args.back();
  }
  EXPECT_EQ(5, korvex({"associations", "save", "--template", "None"}).code);
  EXPECT_EQ(5, korvex({"associations", "restore", "--all", "--yes"}).code);
  EXPECT_EQ(before, everyFile());
  // A template is a choice of types.
  fs::create_directories(folder().parent_path() / "templates");
  std::ofstream(folder().parent_path() / "templates/Texts.dat") << "[FA]\r\n.txt=1\r\n";
  EXPECT_EQ(Json({"Texts"}), json({"associations", "list"}).json()["templates"]);
  EXPECT_EQ(0, korvex({"associations", "save", "--template", "texts", "--folder", "C:\\T"}).code);
  EXPECT_TRUE(fs::exists(machine.driveC() / "T/txtfile.reg"));
}

TEST_F(Associations, MachineOfSomebodyElseIsOnlyRead) {
  const auto open = machine.open(platform::OpenMode::ReadWrite);
  const auto claim = open->claimInstance(platform::Wait::No);
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"associations", "save", "txt"}, {"restore", "C:\\x.reg"}}) {
    EXPECT_EQ(4, korvex(args).code) << args[0];
  }
  EXPECT_EQ(0, korvex({"associations", "list"}).code);
}

TEST(BackupCommands, HelpOfEachHasAnExampleAndCompletionKnowsThem) {
  const std::string script = runKorvex({"completion", "bash"}).out;
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"backup"},
                                             {"restore"},
                                             {"set-of", "save"},
                                             {"set-of", "list"},
                                             {"set-of", "show"},
                                             {"set-of", "restore"},
                                             {"set-of", "erase"},
                                             {"associations", "list"},
                                             {"associations", "save"},
                                             {"associations", "restore"}}) {
    std::vector<std::string> args = words;
    args.emplace_back("--help");
    const Result result = runKorvex(args);
    EXPECT_EQ(0, result.code) << words.back();
    const std::string name = words.size() == 1 ? words[0] : words[0] + " " + words[1];
    EXPECT_NE(std::string::npos, result.out.find("  korvex ")) << name;
    EXPECT_NE(std::string::npos, script.find("\"" + name + "\") words=")) << name;
  }
}

}  // namespace
}  // namespace korvex::cli
