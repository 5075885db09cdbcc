// Modal questions.
#include "qt/qt_prompts.h"

#include <QApplication>
#include <QCloseEvent>
#include <QColorDialog>
#include <QFontDialog>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QTextDocument>
#include <vector>

#include "qt/machine_picker.h"
#include "qt/text.h"

namespace korvex::qt {
namespace {

using namespace platform;

// Which button has the focus at first: MB_DEFBUTTON2 and MB_DEFBUTTON3.
constexpr int kDefaultButtonMask = 0xF00;
constexpr int kDefaultButtonStep = 0x100;

QWidget* windowInFront() {
  QWidget* modal = QApplication::activeModalWidget();
  return modal != nullptr ? modal : QApplication::activeWindow();
}

// A question is not the time to look busy.
class ArrowCursor {
 public:
  ArrowCursor() {
    if (QApplication::overrideCursor() == nullptr) return;
    set_ = true;
    QApplication::setOverrideCursor(Qt::ArrowCursor);
  }
  ~ArrowCursor() {
    if (set_) QApplication::restoreOverrideCursor();
  }

 private:
  bool set_ = false;
};

// As in Windows: a question that can only be answered with yes or no stays until it is.
class MessageBox : public QMessageBox {
 public:
  explicit MessageBox(bool mustAnswer) : QMessageBox(windowInFront()), mustAnswer_(mustAnswer) {
    if (mustAnswer) setWindowFlag(Qt::WindowCloseButtonHint, false);
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (mustAnswer_ && event->matches(QKeySequence::Cancel)) return event->accept();
    QMessageBox::keyPressEvent(event);
  }
  void closeEvent(QCloseEvent* event) override {
    if (mustAnswer_) return event->ignore();
    QMessageBox::closeEvent(event);
  }

 private:
  bool mustAnswer_;
};

struct ButtonRow {
  QMessageBox::StandardButton button;
  Answer answer;
};
constexpr ButtonRow kOk{QMessageBox::Ok, Answer::Ok};
constexpr ButtonRow kCancel{QMessageBox::Cancel, Answer::Cancel};
constexpr ButtonRow kYes{QMessageBox::Yes, Answer::Yes};
constexpr ButtonRow kNo{QMessageBox::No, Answer::No};

std::vector<ButtonRow> buttonsOf(int style) {
  switch (style & kButtonsMask) {
    case kButtonsOkCancel:
      return {kOk, kCancel};
    case kButtonsYesNoCancel:
      return {kYes, kNo, kCancel};
    case kButtonsYesNo:
      return {kYes, kNo};
    default:
      return {kOk};
  }
}

QMessageBox::Icon iconOf(int style) {
  switch (style & kIconMask) {
    case kIconCritical:
      return QMessageBox::Critical;
    case kIconQuestion:
      return QMessageBox::Question;
    case kIconExclamation:
      return QMessageBox::Warning;
    case kIconInformation:
      return QMessageBox::Information;
    default:
      return QMessageBox::NoIcon;
  }
}

std::optional<std::string> pick(MachinePicker& picker) {
  if (picker.exec() != QDialog::Accepted) return std::nullopt;
  return picker.picked();
}

}  // namespace

Answer QtPrompts::messageBox(std::string_view text, int style, std::string_view title) {
  const ArrowCursor cursor;
  const std::vector<ButtonRow> buttons = buttonsOf(style);
  MessageBox box((style & kButtonsMask) == kButtonsYesNo);
  box.setWindowTitle(toQt(title));
  box.setTextFormat(Qt::PlainText);
  box.setText(toQt(text).replace("\r\n", "\n"));
  box.setIcon(iconOf(style));
  for (const ButtonRow& row : buttons) box.addButton(row.button);
  const auto first = static_cast<std::size_t>((style & kDefaultButtonMask) / kDefaultButtonStep);
  box.setDefaultButton(buttons[first < buttons.size() ? first : 0].button);
  const int pressed = box.exec();
  for (const ButtonRow& row : buttons) {
    if (row.button == pressed) return row.answer;
  }
  // Escape or the close button: Cancel where there is one, else the only button.
  return buttons.back().answer;
}

std::optional<std::string> QtPrompts::inputBox(std::string_view text, std::string_view title,
                                               std::string_view proposal) {
  const ArrowCursor cursor;
  QInputDialog dialog(windowInFront());
  dialog.setWindowTitle(toQt(title));
  const QString question = toQt(text).replace("\r\n", "\n");
  dialog.setLabelText(Qt::mightBeRichText(question) ? tipText(text) : question);
  dialog.setTextValue(toQt(proposal));
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return fromQt(dialog.textValue());
}

std::optional<std::string> QtPrompts::pickFile(const FileRequest& request) {
  if (files_ == nullptr) return std::nullopt;
  const ArrowCursor cursor;
  MachinePicker picker(*files_, request, windowInFront());
  return pick(picker);
}

std::optional<std::string> QtPrompts::pickFolder(std::string_view title) {
  if (!folderPicker) return std::nullopt;
  const ArrowCursor cursor;
  return folderPicker(title);
}

std::optional<FontChoice> QtPrompts::pickFont(const FontChoice& current, std::string_view title) {
  const ArrowCursor cursor;
  QFont font;
  if (!current.name.empty()) font.setFamily(toQt(current.name));
  if (current.points > 0) font.setPointSize(current.points);
  font.setBold(current.bold);
  font.setItalic(current.italic);
  bool chosen = false;
  font = QFontDialog::getFont(&chosen, font, windowInFront(), toQt(title));
  if (!chosen) return std::nullopt;
  return FontChoice{fromQt(font.family()), font.pointSize(), font.bold(), font.italic()};
}

std::optional<std::uint32_t> QtPrompts::pickColor(std::uint32_t current) {
  const ArrowCursor cursor;
  const auto part = [current](int shift) { return static_cast<int>(current >> shift & 0xFF); };
  const QColor color = QColorDialog::getColor(QColor(part(0), part(8), part(16)), windowInFront());
  if (!color.isValid()) return std::nullopt;
  return static_cast<std::uint32_t>(color.red() | color.green() << 8 | color.blue() << 16);
}

}  // namespace korvex::qt
