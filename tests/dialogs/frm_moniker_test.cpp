// frmMoniker: only what Korvex has added is listed and removed, and no other program's name is
// lost.
#include "dialogs/shell/frm_moniker.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;

const std::string kUrls = "HKLM\\SOFTWARE\\Microsoft\\Internet Explorer\\AboutURLs";
const std::string kOwn = "HKLM\\SOFTWARE\\Korvex\\Moniker";

class Monikers : public OnFailingMachine<frmMoniker> {
 public:
  explicit Monikers(const std::string& sample = "windows-98") : OnFailingMachine(sample) {
    session.g_iExplrVer = 5;
  }
  void add(const std::string& name, const std::string& address) {
    window().txtMoniker.Text = name;
    window().txtAddress.Text = address;
    window().cmdAddMoniker.press();
  }
  void remove(int index) {
    window().lstMonikers.ListIndex = index;
    window().cmdRemoveMoniker.press();
  }
  std::string url(const std::string& name) { return registry().value(kUrls, name); }
  std::string own(const std::string& name) { return registry().value(kOwn, name); }
};

class Monikers2000 : public Monikers {
 public:
  Monikers2000() : Monikers("windows-2000") {}
};

void expectRoundTrip(Monikers& test) {
  const auto before = test.registry().values(kUrls);
  EXPECT_TRUE(test.window().lstMonikers.items().empty()) << "those of the browser are not ours";
  EXPECT_FALSE(test.window().cmdRemoveMoniker.Enabled);
  test.add("  news ", "hTTp://www.example.com/%20a%20=b ");
  test.add("b", "http://b");
  EXPECT_EQ("\"hTTp://www.example.com/%20a%20=b\"", test.url("news")) << "text, not one to expand";
  EXPECT_EQ("\"hTTp://www.example.com/%20a%20=b\"", test.own("news"));
  const std::vector<std::string> lines{"news  >>  hTTp://www.example.com/%20a%20=b",
                                       "b  >>  http://b"};
  EXPECT_EQ(lines, test.reopen().lstMonikers.items());
  test.remove(0);
  test.remove(0);
  EXPECT_EQ(before, test.registry().values(kUrls));
  EXPECT_TRUE(test.registry().values(kOwn).empty());
  EXPECT_TRUE(test.window().lstMonikers.items().empty());
  EXPECT_TRUE(test.prompts.messages.empty());
}

TEST_F(Monikers, AreAddedListedAndRemoved) { expectRoundTrip(*this); }
TEST_F(Monikers2000, AreAddedListedAndRemoved) { expectRoundTrip(*this); }

TEST_F(Monikers, WrongNamesAndAddressesAreRefused) {
  const auto before = below(kUrls);
  for (const char* address : {"www.example.com", "https://www.example.com", "", "http:/x"}) {
    add("news", address);
    EXPECT_TRUE(
        told("The web address is not formatted correctly.\r\n"
             "Make sure the address is formatted like the\r\n"
             "following examples:"))
        << address;
  }
  add(" ", "http://x");
  EXPECT_TRUE(told("Enter the name"));
  for (const char* name : {"a=b", "a>b"}) {
    add(name, "http://x");
    EXPECT_TRUE(told("must not hold = or >")) << name;
  }
  add("news", "http://");
  EXPECT_TRUE(told("is not the address of a page"));
  EXPECT_EQ(before, below(kUrls));
  EXPECT_FALSE(registry().hasKey(kOwn));
  window().txtMoniker.Text = "";
  window().txtAddress.Text = "";
}

TEST_F(Monikers, NameOfAnotherProgramIsAskedForAndComesBack) {
  const std::string blank = url("blank");
  const std::string home = url("Home");
  ASSERT_EQ("dword 270", home);
  prompts.answers = {Answer::No, Answer::Yes, Answer::Yes};
  add("Blank", "http://mine");
  EXPECT_TRUE(told("Another program has added this name."));
  EXPECT_EQ(blank, url("blank"));
  EXPECT_EQ("Blank", window().txtMoniker.Text.get());
  window().cmdAddMoniker.press();
  EXPECT_EQ("\"http://mine\"", url("blank"));
  add("Home", "http://home");
  EXPECT_EQ("\"http://home\"", url("Home"));
  remove(0);
  EXPECT_EQ(blank, url("blank"));
  remove(0);
  EXPECT_EQ(home, url("Home"));
  // One's own is asked for only where the address is another one.
  add("b", "http://b");
  add("b", "http://b");
  prompts.answers = {Answer::Yes};
  add("b", "http://c");
  EXPECT_FALSE(told("Another program"));
  EXPECT_EQ("\"http://c\"", url("b"));
}

TEST_F(Monikers, WhatAnotherProgramChangedIsAskedFor) {
  for (const char* name : {"a", "b", "c"}) add(name, "http://" + std::string(name));
  for (const char* name : {"a", "b"}) registry().put(kUrls, name, "\"http://theirs\"");
  prompts.answers = {Answer::Cancel, Answer::No, Answer::Yes};
  remove(0);
  EXPECT_TRUE(told("http://theirs"));
  EXPECT_EQ("\"http://a\"", own("a"));
  remove(0);
  EXPECT_EQ("\"http://theirs\"", url("a"));
  EXPECT_EQ("delete", own("a"));
  remove(0);
  EXPECT_EQ("delete", url("b"));
  // Gone from both by another hand.
  window().lstMonikers.ListIndex = 0;
  ASSERT_EQ(0, session.regTool.DeleteRegValue(platform::HKEY_LOCAL_MACHINE, kOwn.substr(5), "c"));
  window().cmdRemoveMoniker.press();
  EXPECT_TRUE(told("changed meanwhile"));
  EXPECT_EQ("\"http://c\"", url("c"));
}

TEST_F(Monikers2000, FailureLeavesBothKeysAsTheyWere) {
  window();
  expectAllOrNothing("HKLM\\SOFTWARE\\Microsoft\\Internet Explorer", [this] {
    add("news", "http://news");
    EXPECT_EQ(url("news"), own("news"));
  });
  EXPECT_EQ("\"http://news\"", own("news"));
}

TEST_F(Monikers2000, FailureToWriteHasItsOwnMessage) {
  window();
  bool own = false;
  for (int n = 1; n < 60 && url("news") == "delete"; ++n) {
    window().txtMoniker.Text = "";
    window().txtAddress.Text = "";
    reopen();
    failingRegistry.fail(n);
    add("news", "http://news");
    failingRegistry.fail(0);
    own = own || told("An error occurred creating the moniker. The moniker was not saved.");
  }
  EXPECT_TRUE(own);
}

TEST_F(Monikers, NeedABrowser) {
  session.g_iExplrVer = 2;
  EXPECT_FALSE(window().cmdAddMoniker.Enabled);
  EXPECT_EQ("Needs Internet Explorer 3 or later.", window().txtAddress.ToolTipText.get());
}

}  // namespace
}  // namespace korvex::dialogs
