// FormView: the window of one form.
//
// It shows what the form's properties say and hands on what the user does; it decides nothing. The
// close button asks the form to close (Form::close); whoever shows the view ends it. The form must
// outlive it.
#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <map>
#include <vector>

#include "forms/form.h"
#include "qt/bindings.h"
#include "qt/load_progress.h"

class QLabel;
class QProgressBar;
class QPushButton;
class QStatusBar;

namespace korvex::qt {

class FormView : public QDialog {
 public:
  // Without a parent it is a main window, which can be minimized; with one it is a dialog over it.
  explicit FormView(forms::Form& form, QWidget* parent = nullptr);
  ~FormView() override;

  // Shows the window at the form's place, moved onto a screen where it is off every one.
  void showInPlace();

  forms::Form& form() const { return form_; }
  // Null for a control that is not in the layout.
  QWidget* widgetOf(const forms::Control& control) const;
  // Controls that the form forgot in its layout: nobody sees them.
  std::vector<const forms::Control*> unplacedControls() const;

  void reject() override;  // Escape

  // How long the form must be busy until the bar shows, in milliseconds.
  int progressDelay = kShowProgressAfterMs;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void makeStatusBar();
  void prepareButtons();
  void chainTabOrder(const std::vector<QWidget*>& order);
  void showStatus();
  void showBusy();
  void showCursor();
  void showWork();
  QSize initialSize(const QRect& available) const;
  void keepOnScreen();
  void rememberPlace();
  void scrollToFocus(QWidget* focused);
  forms::CommandButton* buttonWith(forms::CommandButton::Role role) const;

  forms::Form& form_;
  std::map<const forms::Control*, QWidget*> widgets_;
  QStatusBar* statusBar_ = nullptr;
  QLabel* statusText_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QPushButton* cancel_ = nullptr;
  bool waitCursor_ = false;
  bool showingWork_ = false;
  QElapsedTimer busySince_;
  QElapsedTimer shownSince_;
  bool busyForLong_ = false;
  bool shown_ = false;
  Bindings bindings_;  // goes first
};

}  // namespace korvex::qt
