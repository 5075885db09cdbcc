// Message boxes and inputs, and the pickers that browse a machine's own drives.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QComboBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <functional>

#include "qt/machine_picker.h"
#include "qt/qt_prompts.h"
#include "qt/text.h"
#include "support/machines.h"

namespace korvex::test {
namespace {

using platform::Answer;

// Runs the steps once the dialog that the next call opens is there.
template <typename Dialog>
void whenShown(std::function<void(Dialog&)> steps) {
  QTimer::singleShot(20, [steps = std::move(steps)] {
    auto* dialog = dynamic_cast<Dialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    steps(*dialog);
  });
}

struct Messages : ::testing::Test {
  qt::QtPrompts prompts;
  Answer ask(int style, std::function<void(QMessageBox&)> steps) {
    whenShown<QMessageBox>(std::move(steps));
    return prompts.messageBox("Is 1 < 2 & 3?\r\n<b>Sure?</b>", style, "Title");
  }
  static void press(QMessageBox& box, Qt::Key key) { QTest::keyClick(&box, key); }
};

TEST_F(Messages, ShowTheTextAsItIsWithTheIconOfTheStyle) {
  ask(platform::kButtonsOk | platform::kIconExclamation, [](QMessageBox& box) {
    EXPECT_EQ(box.text(), "Is 1 < 2 & 3?\n<b>Sure?</b>");
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.icon(), QMessageBox::Warning);
    EXPECT_EQ(box.windowTitle(), "Title");
    box.accept();
  });
}

TEST_F(Messages, EnterTakesTheDefaultButton) {
  const auto enter = [](QMessageBox& box) { press(box, Qt::Key_Return); };
  constexpr int kSecondIsDefault = 0x100;
  EXPECT_EQ(ask(platform::kButtonsOk, enter), Answer::Ok);
  EXPECT_EQ(ask(platform::kButtonsYesNo, enter), Answer::Yes);
  EXPECT_EQ(ask(platform::kButtonsYesNo | kSecondIsDefault, enter), Answer::No);
}

TEST_F(Messages, EscapeIsCancelOrTheOnlyButtonAndNoAnswerToYesOrNo) {
  const auto escape = [](QMessageBox& box) { press(box, Qt::Key_Escape); };
  EXPECT_EQ(ask(platform::kButtonsOk, escape), Answer::Ok);
  EXPECT_EQ(ask(platform::kButtonsOkCancel, escape), Answer::Cancel);
  EXPECT_EQ(ask(platform::kButtonsYesNoCancel, escape), Answer::Cancel);
  const Answer answer = ask(platform::kButtonsYesNo, [](QMessageBox& box) {
    press(box, Qt::Key_Escape);
    box.close();
    EXPECT_TRUE(box.isVisible());
    box.button(QMessageBox::No)->click();
  });
  EXPECT_EQ(answer, Answer::No);
}

TEST_F(Messages, AnInputGivesTheTextOrNothing) {
  whenShown<QInputDialog>([](QInputDialog& dialog) {
    EXPECT_EQ(dialog.textValue(), "proposal");
    QTest::keyClicks(dialog.findChild<QLineEdit*>(), "own");  // over the selected proposal
    dialog.accept();
  });
  EXPECT_EQ(prompts.inputBox("Type:", "Title", "proposal"), "own");
  whenShown<QInputDialog>([](QInputDialog& dialog) { dialog.reject(); });
  EXPECT_EQ(prompts.inputBox("Type:", "Title", "proposal"), std::nullopt);
}

TEST_F(Messages, AColourKeepsTheOrderOfItsParts) {
  whenShown<QColorDialog>([](QColorDialog& dialog) {
    EXPECT_EQ(dialog.currentColor(), QColor(0x11, 0x22, 0x33));
    dialog.setCurrentColor(QColor(0xAA, 0xBB, 0xCC));
    dialog.accept();
  });
  EXPECT_EQ(prompts.pickColor(0x00332211), 0x00CCBBAAu);
}

struct Picker : ::testing::Test {
  TestMachine machine{Family::Nt};
  platform::Files& files = machine->files();

  void SetUp() override {
    for (const char* path :
         {"C:\\WINNT\\win.ini", "C:\\WINNT\\Clouds.bmp", "C:\\WINNT\\notes.txt"}) {
      ASSERT_EQ(files.replace(path, "x"), 0);
    }
  }
  static void type(qt::MachinePicker& picker, const char* text) {
    picker.findChild<QLineEdit*>()->setText(text);
    picker.accept();
  }
  static QString message(qt::MachinePicker& picker) {
    for (const auto* label : picker.findChildren<QLabel*>()) {
      if (label->wordWrap() && label->isVisibleTo(&picker)) return label->text();
    }
    return "";
  }
  static QStringList names(const QAbstractItemModel& model, const QModelIndex& folder) {
    QStringList result;
    for (int row = 0; row < model.rowCount(folder); ++row) {
      result += model.index(row, 0, folder).data().toString();
    }
    return result;
  }
};

TEST_F(Picker, ShowsTheMachinesDrivesFoldersFirstAndOnlyTheFilesOfTheType) {
  qt::MachinePicker picker(
      files, {"Open", "Bitmaps (*.bmp)|*.bmp|All files (*.*)|*.*", "", "C:\\winnt", false},
      nullptr);
  auto& tree = *picker.findChild<QTreeView*>();
  EXPECT_EQ(names(*tree.model(), {}), QStringList{"C:"});
  EXPECT_EQ(names(*tree.model(), tree.currentIndex()),
            (QStringList{"system32", "Temp", "Clouds.bmp"}));
  picker.findChild<QComboBox*>()->setCurrentIndex(1);
  EXPECT_EQ(names(*tree.model(), tree.currentIndex()),
            (QStringList{"system32", "Temp", "Clouds.bmp", "notes.txt", "win.ini"}));
}

TEST_F(Picker, TheKeyboardAloneOpensFoldersAndPicksAFile) {
  qt::QtPrompts prompts;
  prompts.setFiles(files);
  whenShown<qt::MachinePicker>([](qt::MachinePicker& picker) {
    auto& tree = *picker.findChild<QTreeView*>();
    tree.setFocus();
    for (const auto key : {Qt::Key_Right, Qt::Key_Down, Qt::Key_Down, Qt::Key_Right, Qt::Key_Down,
                           Qt::Key_Down, Qt::Key_Down}) {
      QTest::keyClick(&tree, key);
    }
    QTest::keyClick(&tree, Qt::Key_Return);
  });
  EXPECT_EQ(prompts.pickFile({"Open", "", "", "", false}), "C:\\WINNT\\Clouds.bmp");
}

TEST_F(Picker, OnlyWhatExistsCanBeOpenedAndARelativeNameBelongsToTheFolder) {
  qt::MachinePicker picker(files, {"Open", "", "", "C:\\WINNT", false}, nullptr);
  type(picker, "missing.bmp");
  EXPECT_EQ(picker.picked(), "");
  EXPECT_TRUE(message(picker).startsWith("C:\\WINNT\\missing.bmp: 2"))
      << message(picker).toStdString();
  type(picker, "system32");
  EXPECT_EQ(picker.picked(), "") << "a folder is opened, not picked";
  type(picker, "..\\.\\clouds.BMP");
  EXPECT_EQ(picker.picked(), "C:\\WINNT\\clouds.BMP") << message(picker).toStdString();
}

TEST_F(Picker, SavingAddsTheExtensionNeedsTheFolderAndAsksBeforeItReplaces) {
  const platform::FileRequest request{"Save", "Text (*.txt)|*.txt", "", "C:\\WINNT", true};
  qt::MachinePicker fresh(files, request, nullptr);
  type(fresh, "C:\\none\\a");
  EXPECT_EQ(message(fresh), "There is no folder C:\\none.");
  type(fresh, "new");
  EXPECT_EQ(fresh.picked(), "C:\\WINNT\\new.txt");

  qt::MachinePicker over(files, request, nullptr);
  whenShown<QMessageBox>([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); });
  type(over, "notes");
  EXPECT_EQ(over.picked(), "") << "not replacing is the default";
  whenShown<QMessageBox>([](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); });
  type(over, "notes");
  EXPECT_EQ(over.picked(), "C:\\WINNT\\notes.txt");
}

TEST(Text, EveryTextOfARegistryComesThroughWhole) {
  for (const std::string text : {"plain", "\xC3\xA9t\xC3\xA9", "\xF0\x9F\x98\x80", "a\xED\xA0\x80z",
                                 "\xED\xB0\x80", "\xED\x9F\xBF", "\xED\xA0\xBD\xED\xA0\xBD"}) {
    EXPECT_EQ(qt::fromQt(qt::toQt(text)), text);
  }
  EXPECT_EQ(qt::withoutMnemonics("Fish && &chips"), "Fish & chips");
}

}  // namespace
}  // namespace korvex::test
