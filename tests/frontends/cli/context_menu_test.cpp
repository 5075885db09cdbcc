// context-menu: what the wizard does, all of it or nothing.
#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

class ContextMenu : public CliTest {
 public:
  ContextMenu() : CliTest("windows-2000") {
    std::filesystem::create_directories(machine.driveC() / "Tools");
    std::ofstream(machine.driveC() / "Tools/a b.exe") << "MZ";
  }
  Result add(std::vector<std::string> types, const std::string& text,
             const std::string& program = "C:\\Tools\\a b.exe") {
    types.insert(types.begin(), {"context-menu", "add"});
    types.insert(types.end(), {"--text", text, "--program", program});
    return korvex(types);
  }
  Json entries() { return json({"context-menu", "list"}).json()["entries"]; }
  std::string data(const std::string& key) {
    const Json found = value("HKCR\\" + key, "");
    return found.is_null() ? "" : found["data"].get<std::string>();
  }
};

TEST_F(ContextMenu, ListsWhatItAdded) {
  EXPECT_EQ(0, add({"jpg", ".JPEG", "unknown", "txt"}, "&View it").code);
  const Json list = entries();
  ASSERT_EQ(3U, list.size());
  EXPECT_EQ(Json({".JPG", ".JPEG"}), list[0]["types"]);
  EXPECT_EQ("Unknown", list[1]["class"]);
  EXPECT_EQ("View it", list[2]["verb"]);
  EXPECT_EQ("&View it", list[2]["text"]);
  EXPECT_EQ("\"C:\\Tools\\a b.exe\" \"%1\"", list[2]["command"]);
  EXPECT_EQ("\"C:\\Tools\\a b.exe\" \"%1\"", data("txtfile\\shell\\View it\\command"));
  EXPECT_EQ(true, list[2]["programExists"]);
  EXPECT_EQ("as added", list[2]["state"]);
  std::filesystem::remove(machine.driveC() / "Tools/a b.exe");
  korvex({"reg", "set", "HKCR\\txtfile\\shell\\View it", "", "REG_SZ", "x"});
  EXPECT_EQ(false, entries()[2]["programExists"]);
  EXPECT_EQ("changed", entries()[2]["state"]);
  EXPECT_NE(std::string::npos,
            korvex({"context-menu", "list"}).out.find("(no such program)  (changed)"));
}

TEST_F(ContextMenu, RefusedTypeLeavesTheOthersUnwritten) {
  const auto before = everyFile();
  EXPECT_EQ(5, add({"txt"}, "&").code);
  EXPECT_EQ(5, add({"txt"}, "View", "C:\\Tools").code);
  EXPECT_EQ(2, add({"a\\b"}, "View").code);
  EXPECT_EQ(2, korvex({"context-menu", "add", "txt", "--text", "View"}).code);
  // The class of the second type cannot be a key.
  korvex({"reg", "set", "HKCR\\.odd", "", "REG_SZ", "\\odd"});
  const std::string text = dump();
  EXPECT_EQ(5, add({"txt", "odd"}, "View").code);
  EXPECT_EQ(text, dump());
  EXPECT_NE(before, everyFile()) << "the reg set above is seen";
}

TEST_F(ContextMenu, RemovesAndRestores) {
  const std::string before = dump();
  add({"txt", "ini"}, "View");
  korvex({"reg", "set", "HKCR\\txtfile\\shell\\View\\command", "", "REG_SZ", "other.exe"});
  EXPECT_EQ(5, korvex({"context-menu", "remove", "txt", "open"}).code);
  EXPECT_EQ(2, korvex({"context-menu", "remove", "txt"}).code);
  EXPECT_EQ(2, korvex({"context-menu", "remove", "txt", "View", "--all"}).code);
  EXPECT_EQ(5, korvex({"context-menu", "restore"}).code);
  const Result removed = json({"context-menu", "remove", "TXT", "view"});
  EXPECT_EQ("txtfile", removed.json()["removed"][0]["class"]);
  EXPECT_EQ("", data("txtfile\\shell\\View\\command"));
  EXPECT_EQ(1U, entries().size());
  EXPECT_EQ(0, korvex({"context-menu", "restore"}).code);
  EXPECT_EQ("other.exe", data("txtfile\\shell\\View\\command"));
  EXPECT_EQ("View", data("txtfile\\shell\\View"));
  EXPECT_EQ(1U, entries().size()) << "it is another program's now";
  EXPECT_EQ(0, korvex({"context-menu", "remove", "--all"}).code);
  EXPECT_EQ("", data("inifile\\shell\\View"));
  EXPECT_EQ(0, korvex({"context-menu", "remove", "--all"}).code);
}

TEST_F(ContextMenu, NotedWhereAnEntryStaysUnseenOrIsReplaced) {
  const Result unseen = add({"zzz"}, "View");
  EXPECT_NE(std::string::npos, unseen.err.find(".zzz is not registered"));
  std::ofstream(machine.driveC() / "Tools/c.exe") << "MZ";
  const Result replaced = add({"zzz"}, "V&iew", "C:\\Tools\\c.exe");
  EXPECT_NE(std::string::npos, replaced.err.find("a b.exe"));
  EXPECT_EQ(1U, entries().size());
}

TEST_F(ContextMenu, MachineOfSomebodyElseIsOnlyRead) {
  const auto open = machine.open(platform::OpenMode::ReadWrite);
  const auto claim = open->claimInstance(platform::Wait::No);
  EXPECT_EQ(4, add({"txt"}, "View").code);
  EXPECT_EQ(4, korvex({"context-menu", "remove", "--all"}).code);
  EXPECT_EQ(0, korvex({"context-menu", "list"}).code);
}

}  // namespace
}  // namespace korvex::cli
