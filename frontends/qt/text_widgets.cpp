// Fields for text boxes: one line, several lines, passwords.
#include "qt/text_widgets.h"

#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <algorithm>
#include <memory>

#include "qt/text.h"
#include "qt/whats_this.h"

namespace korvex::qt {
namespace {

constexpr int kWideField = 30;  // characters; from here on a field takes the width that is left
constexpr int kUnlimited = 32767;

bool leavesField(const QFocusEvent& event) {
  return event.reason() != Qt::ActiveWindowFocusReason && event.reason() != Qt::PopupFocusReason;
}

void showMenu(std::unique_ptr<QMenu> menu, QWidget& widget, const QPoint& place) {
  addWhatsThis(*menu, widget, place);
  menu->exec(place);
}

class LineField : public QLineEdit {
 public:
  LineField(forms::TextBox& control, QWidget* parent) : QLineEdit(parent), control_(control) {
    setEchoMode(control.options().password ? Password : Normal);
    setReadOnly(control.options().readOnly);
    setSizePolicy(control.options().widthInCharacters >= kWideField ? QSizePolicy::Expanding
                                                                    : QSizePolicy::Maximum,
                  QSizePolicy::Fixed);
  }

  QSize sizeHint() const override {
    constexpr int kCharactersOfQt = 17;  // what QLineEdit's own hint has room for
    const QFontMetrics metrics = fontMetrics();
    const QSize own = QLineEdit::sizeHint();
    const int characters = control_.options().widthInCharacters + 1;
    return {own.width() - metrics.horizontalAdvance('x') * kCharactersOfQt +
                metrics.horizontalAdvance('0') * characters,
            own.height()};
  }
  QSize minimumSizeHint() const override {
    if (control_.options().widthInCharacters < kWideField) return sizeHint();
    return QLineEdit::minimumSizeHint().expandedTo({sizeHint().width() / 2, 0});
  }

  void show(const std::string& text) {
    const QString shown = toQt(text);
    if (shown == QLineEdit::text()) return;
    // A text that the form sets is never cut; the user can add nothing to one that is too long.
    const int limit = control_.options().maxLength;
    setMaxLength(limit == 0 ? kUnlimited : std::max(limit, static_cast<int>(shown.size())));
    setText(shown);
  }

 protected:
  void focusOutEvent(QFocusEvent* event) override {
    QLineEdit::focusOutEvent(event);
    if (leavesField(*event)) control_.LostFocus.raise();
  }
  void contextMenuEvent(QContextMenuEvent* event) override {
    showMenu(std::unique_ptr<QMenu>(createStandardContextMenu()), *this, event->globalPos());
  }

 private:
  forms::TextBox& control_;
};

class TextField : public QPlainTextEdit {
 public:
  TextField(forms::TextBox& control, QWidget* parent) : QPlainTextEdit(parent), control_(control) {
    setReadOnly(control.options().readOnly);
    if (!control.options().wraps) setLineWrapMode(NoWrap);
    setTabChangesFocus(true);
  }

  QSize sizeHint() const override {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance('0') * control_.options().widthInCharacters,
            metrics.lineSpacing() * control_.options().rows + 2 * frameWidth() +
                metrics.lineSpacing() / 2};
  }
  QSize minimumSizeHint() const override { return {sizeHint().width() / 2, sizeHint().height()}; }

  void show(const std::string& text) {
    const QString shown = toQt(text).replace("\r\n", "\n");
    if (shown == typed()) return;
    showing_ = true;
    setPlainText(shown);
    showing_ = false;
    last_ = shown;
  }

  void take() {
    if (showing_) return;
    const int limit = control_.options().maxLength;
    if (limit > 0 && typed().size() > std::max<qsizetype>(limit, last_.size())) {
      const int position = textCursor().position();
      showing_ = true;
      setPlainText(last_);
      showing_ = false;
      QTextCursor cursor = textCursor();
      cursor.setPosition(std::min(position, static_cast<int>(last_.size())));
      setTextCursor(cursor);
      return;
    }
    last_ = typed();
    control_.Text = fromQt(QString(last_).replace("\n", "\r\n"));
  }

 protected:
  void focusOutEvent(QFocusEvent* event) override {
    QPlainTextEdit::focusOutEvent(event);
    if (leavesField(*event)) control_.LostFocus.raise();
  }
  void contextMenuEvent(QContextMenuEvent* event) override {
    showMenu(std::unique_ptr<QMenu>(createStandardContextMenu()), *this, event->globalPos());
  }

 private:
  // toPlainText would make blanks of no-break spaces: a file's text must come back as it is.
  QString typed() const {
    return document()
        ->toRawText()
        .replace(QChar::ParagraphSeparator, '\n')
        .replace(QChar::LineSeparator, '\n');
  }

  forms::TextBox& control_;
  QString last_;
  bool showing_ = false;
};

}  // namespace

QWidget* makeTextBox(forms::TextBox& control, QWidget* parent, Bindings& bindings) {
  if (control.options().multiLine) {
    auto* field = new TextField(control, parent);
    bindings.follow(control.Text, [&control, field] { field->show(control.Text); });
    QObject::connect(field, &QPlainTextEdit::textChanged, field, [field] { field->take(); });
    return field;
  }
  auto* field = new LineField(control, parent);
  if (control.options().maxLength > 0) field->setMaxLength(control.options().maxLength);
  bindings.follow(control.Text, [&control, field] { field->show(control.Text); });
  QObject::connect(field, &QLineEdit::textEdited, field,
                   [&control](const QString& text) { control.Text = fromQt(text); });
  return field;
}

}  // namespace korvex::qt
