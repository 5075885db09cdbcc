// frmStartMenuConfig: the walk, and that one folder's order goes and comes back.
#include "dialogs/shell/frm_start_menu_config.h"

#include "dialogs/failing_machine.h"

namespace korvex::dialogs {
namespace {

using platform::Answer;

const std::string kRoot = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MenuOrder";

class StartMenuConfig : public OnFailingMachine<frmStartMenuConfig> {
 public:
  explicit StartMenuConfig(const std::string& sample = "windows-98") : OnFailingMachine(sample) {}

  using Items = std::vector<std::string>;
  const Items& folders() { return window().lstStartSub.items(); }
  void choose(const std::string& folder) {
    const auto found = std::ranges::find(folders(), folder);
    ASSERT_NE(folders().end(), found) << folder;
    window().lstStartSub.ListIndex = static_cast<int>(found - folders().begin());
  }
  void force(Answer answer) {
    prompts.answers = {answer};
    window().cmdForceAlpha.press();
  }
  bool hasOrder(const std::string& folder) {
    return registry().value(kRoot + folder + "\\Menu", "Order") != "delete";
  }
};
class StartMenuConfig95 : public StartMenuConfig {
 public:
  StartMenuConfig95() : StartMenuConfig("windows-95") {}
};

TEST_F(StartMenuConfig, WalksDownAndUpButNotAboveTheRoot) {
  EXPECT_EQ((Items{"Favorites", "Start Menu"}), folders());
  choose("Start Menu");
  EXPECT_EQ((Items{"..", "&Programs"}), folders()) << "Menu is no folder";
  choose("&Programs");
  choose("Accessories");
  EXPECT_EQ((Items{"..", "System Tools"}), folders());
  EXPECT_EQ((Items{"MenuOrder", "Start Menu", "Start Menu\\&Programs",
                   "Start Menu\\&Programs\\Accessories"}),
            window().cboStartParent.items());
  EXPECT_EQ("Start Menu\\Programs\\Accessories has an order of its own.",
            window().lblState.Caption.get());
  choose("System Tools");
  EXPECT_NE(std::string::npos, window().lblState.Caption->find("in alphabetical order"));
  choose("..");
  EXPECT_EQ((Items{"..", "System Tools"}), folders());
  window().cboStartParent.ListIndex = 1;
  EXPECT_EQ((Items{"..", "&Programs"}), folders());
  // A folder that somebody deletes meanwhile: the next one above is shown.
  choose("&Programs");
  ASSERT_EQ(0, session.regTool.DeleteRegNodes(platform::HKEY_CURRENT_USER, kRoot.substr(5)));
  window().cboStartParent.ListIndex = 1;
  EXPECT_TRUE(folders().empty());
}

TEST_F(StartMenuConfig, ForgetsTheOrderOfOneFolderAndGivesItBack) {
  const auto before = below(kRoot);
  choose("Start Menu");
  choose("&Programs");
  force(Answer::No);
  EXPECT_EQ(
      "Are you sure you want to force the following Start Menu folder alphabetical?\r\n"
      "Start Menu\\Programs\r\nAfter rebooting alphabetical order will be restored.",
      lastMessage());
  EXPECT_EQ(before, below(kRoot));
  force(Answer::Yes);
  EXPECT_FALSE(hasOrder("\\Start Menu\\&Programs"));
  EXPECT_TRUE(hasOrder("\\Start Menu"));
  EXPECT_TRUE(hasOrder("\\Start Menu\\&Programs\\Accessories"));
  EXPECT_TRUE(session.g_bRebootNeeded);
  window().cmdForceAlpha.press();
  EXPECT_EQ("Menu is already forced alphabetical.", lastMessage());
  reopen().cmdTakeBack.press();
  EXPECT_EQ(before, below(kRoot));
  window().cmdAccel.press();
  EXPECT_EQ("Not implemented.", lastMessage());
}

TEST_F(StartMenuConfig, AFailureIsToldAndTakenBack) {
  choose("Favorites");
  expectAllOrNothing(kRoot, [this] {
    prompts.answers = {Answer::Yes};
    window().cmdForceAlpha.press();
    prompts.answers.clear();
    failingRegistry.fail(0);
    if (!hasOrder("\\Favorites")) return;
    EXPECT_EQ("Selected menu was not restored to alphabetical.", lastMessage());
    EXPECT_TRUE(below("HKCU\\Software\\Korvex\\Deleted\\MenuOrder\\1").size() < 2);
    window().cboStartParent.ListIndex = 0;
    choose("Favorites");
  });
  EXPECT_EQ(1, window().cboKept.ListCount());
}

TEST_F(StartMenuConfig95, NeedsTheDesktopUpdate) {
  ASSERT_EQ(0, session.regTool.DeleteRegNodes(platform::HKEY_CURRENT_USER, kRoot.substr(5)));
  session.g_sShellVersion = "4.72.3110";
  EXPECT_TRUE(folders().empty());
  window().cmdForceAlpha.press();
  EXPECT_EQ("Menu is already forced alphabetical.", lastMessage());
  session.g_sShellVersion = "4.70.1155";
  reopen();
  EXPECT_FALSE(window().cmdForceAlpha.Enabled || window().lstStartSub.Enabled);
  EXPECT_EQ("Needs the desktop update of Internet Explorer 4 on this Windows.",
            window().cmdForceAlpha.ToolTipText.get());
}

}  // namespace
}  // namespace korvex::dialogs
