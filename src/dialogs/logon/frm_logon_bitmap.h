// frmLogon_Bitmap: the bitmap behind the logon prompt of NT. It writes at once.
//
// In its second mode it asks for a program that may run where programs are restricted, on every
// Windows, and writes nothing: the name lies on the desk afterwards.
#pragma once

#include <string>
#include <string_view>

#include "dialogs/direct_dialog.h"

namespace korvex::dialogs {

// Between the form and a window that wants a program's name from it: that window sets the mode,
// shows the form and takes the name. The form takes the mode when it is made: it is for one
// showing.
struct LogonBitmapDesk {
  static constexpr std::string_view kRestrictRun = "RESTRICT_RUN";

  std::string mode;  // kRestrictRun, or "" for the bitmap
  std::string name;  // "notepad.exe"; "" where none was chosen
};

class frmLogon_Bitmap : public DirectDialog {
 public:
  static constexpr const char* kName = "frmLogon_Bitmap";

  frmLogon_Bitmap(const DialogParts& parts, LogonBitmapDesk& desk);

  // In the mode that the desk tells then.
  bool reloadsToShow() const override { return true; }

  forms::TextBox txtBitmap{*this, "txtBitmap", {.widthInCharacters = 50}};
  forms::Label lblBitmap{*this, "lblBitmap", "", &txtBitmap};
  forms::CommandButton cndBitmap_Browse{*this, "cndBitmap_Browse", "&Browse..."};
  forms::CommandButton cmdBitmap_Finish{*this, "cmdBitmap_Finish", "&Finish",
                                        forms::CommandButton::Role::Default};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;
  int changesWaiting() const override { return txtBitmap.Text.get() == shown_ ? 0 : 1; }

 private:
  bool asksForProgram() const { return mode_ == LogonBitmapDesk::kRestrictRun; }
  void describe();
  void cndBitmap_Browse_Click();
  void cmdBitmap_Finish_Click();
  void finishBitmap(const std::string& typed);
  void finishProgram(const std::string& typed);
  // Told where it is one.
  bool isOnAnotherComputer(std::string_view path) const;
  bool writeWallpaper(const std::string& wallpaper);
  // Closes without the question about what was typed: it is done.
  void leave();

  LogonBitmapDesk& desk_;
  std::string mode_;
  std::string shown_;  // what the field held at first
};

}  // namespace korvex::dialogs
