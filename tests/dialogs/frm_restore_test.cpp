// frmRestore: what it shows of an offer, and what it does with what is ticked.
#include "dialogs/frm_restore.h"

#include "dialogs/dialog_fixture.h"
#include "support/test_offer.h"

namespace korvex::dialogs {
namespace {

using backup::RestoreItem;
using Kind = backup::RestoreChange::Kind;
using test::kDesktopKey;
using test::someItems;
using test::TestOffer;

class FrmRestore : public DialogTest {
 public:
  FrmRestore() {
    book.add(frmRestore::kName, [this] { return std::make_unique<frmRestore>(session, desk); });
  }
  void makeOffer(std::vector<RestoreItem> items) {
    auto made = std::make_unique<TestOffer>(std::move(items));
    offer = made.get();
    desk.offer = std::move(made);
  }
  frmRestore& open(std::vector<RestoreItem> items = someItems()) {
    makeOffer(std::move(items));
    return form();
  }
  frmRestore& form() { return dynamic_cast<frmRestore&>(book.load(frmRestore::kName)); }

  backup::RestoreDesk desk;
  TestOffer* offer = nullptr;
};

TEST_F(FrmRestore, TicksWhatWouldChangeAndTellsWhatCannotBeRestored) {
  frmRestore& window = open();
  EXPECT_EQ("Restore the selected settings for R&&D?", window.lblQuestion.Caption.get());
  EXPECT_EQ((std::vector<std::string>{"Desktop configuration (4 changes)",
                                      "Color configuration (1 change, 1 problem)",
                                      "Keyboard configuration (nothing would change)",
                                      "Power (cannot be restored: It is damaged.)"}),
            window.lstItems.items());
  EXPECT_EQ("2 of 4 checked", window.lstItems.stateText());
  window.cmdSelectAll.press();
  EXPECT_FALSE(window.lstItems.isChecked(3));
  EXPECT_EQ("3 of 4 checked", window.StatusText.get());
  window.cmdClearAll.press();
  EXPECT_FALSE(window.cmdRestore.Enabled);
}

TEST_F(FrmRestore, ShowsTheChangesOfTheSelectedItemOrOfAll) {
  frmRestore& window = open();
  const std::string desktop = "* " + kDesktopKey +
                              "  Wallpaper = REG_SZ \"b\", was REG_SZ \"a\"\r\n"
                              "+ " +
                              kDesktopKey +
                              "\\New\r\n"
                              "+ " +
                              kDesktopKey +
                              "\\New  (Default) = REG_DWORD 0x1\r\n"
                              "- " +
                              kDesktopKey + "  Old, was REG_SZ \"o\"\r\n";
  const std::string colors = "! colors.reg is missing.\r\n- C:\\WINNT\\old.cur\r\n";
  EXPECT_EQ("Desktop configuration:\r\n" + desktop + "Color configuration:\r\n" + colors +
                "Power:\r\n! It is damaged.\r\n",
            window.txtChanges.Text.get());
  window.lstItems.ListIndex = 1;
  EXPECT_EQ(colors, window.txtChanges.Text.get());
  window.lstItems.ListIndex = 2;
  EXPECT_EQ("Nothing would change.", window.txtChanges.Text.get());
}

TEST_F(FrmRestore, CountsTheChangesThatAreTooManyToShow) {
  RestoreItem large{"ShareConfig", "Local shares", true, {}, {}, 30000};
  large.changes.assign(RestoreItem::kMostChanges, {Kind::NewFile, "C:\\x", "", "", ""});
  frmRestore& window = open({large, large});
  const std::string all = window.txtChanges.Text;
  EXPECT_EQ(2000, std::count(all.begin(), all.end(), '\n'));
  EXPECT_TRUE(all.ends_with("\r\n... and 58001 more")) << all.substr(all.size() - 40);
  window.lstItems.ListIndex = 0;
  EXPECT_TRUE(window.txtChanges.Text->ends_with("... and 28000 more"));
}

TEST_F(FrmRestore, RestoresWhatIsTickedTellsWhereTheOldIsAndCloses) {
  makeOffer(someItems());
  offer->outcome.savedAs = "Before Work";
  host.use = [this](forms::Form& shown) {
    auto& window = dynamic_cast<frmRestore&>(shown);
    offer->during = [&window] {
      EXPECT_TRUE(window.Busy && window.CanCancel);
      EXPECT_FALSE(window.QueryUnload()) << "while it is restoring";
    };
    window.lstItems.setChecked(1, false);
    window.cmdRestore.press();
    EXPECT_EQ((std::vector<std::vector<bool>>{{true, false, false, false}}), offer->asked);
  };
  book.showModal(frmRestore::kName);
  ASSERT_EQ(1u, prompts.messages.size());
  EXPECT_EQ(platform::kIconInformation, prompts.messages[0].style);
  EXPECT_NE(std::string::npos, prompts.messages[0].text.find("Before Work"));
  EXPECT_TRUE(desk.restored);
  EXPECT_FALSE(desk.offer) << "the next window would offer it again";
}

TEST_F(FrmRestore, StaysOpenWhereItFailsOrIsCancelled) {
  frmRestore& window = open();
  bool closed = false;
  window.closeRequested += [&closed] { closed = true; };
  offer->outcome = {platform::ERROR_DISK_FULL, "The disk is full.", "", false};
  window.cmdRestore.press();
  ASSERT_EQ(1u, prompts.messages.size());
  EXPECT_EQ(platform::kIconCritical, prompts.messages[0].style);
  EXPECT_EQ("The disk is full.", prompts.messages[0].text);

  offer->outcome = {};
  offer->during = [&window] { window.CancelAsked = true; };
  window.cmdRestore.press();
  EXPECT_TRUE(offer->wentOn) << "the end of the first was not asked for";
  EXPECT_EQ(1u, prompts.messages.size());
  EXPECT_FALSE(window.Busy || closed || desk.restored);
}

TEST_F(FrmRestore, WithoutAnOfferOnlyCancelWorks) {
  frmRestore& window = form();
  for (const forms::Control* control : window.controls()) {
    const bool usable = control == &window.cmdCancel || control == &window.lblQuestion;
    EXPECT_EQ(usable, control->Enabled.get()) << control->name();
  }
}

}  // namespace
}  // namespace korvex::dialogs
