// frmDrWat: the crash handler of NT, and where its files go.
#pragma once

#include <string>
#include <string_view>

#include "dialogs/tweak_dialog.h"

namespace korvex::dialogs {

class frmDrWat : public TweakDialog {
 public:
  static constexpr const char* kName = "frmDrWat";

  explicit frmDrWat(const DialogParts& parts);

  forms::TextBox txtCrashDumpFile{*this, "txtCrashDumpFile", kShown};
  forms::Label lblCrashDumpFile{*this, "lblCrashDumpFile", "D&ump file:", &txtCrashDumpFile};
  forms::CommandButton cmdDrWatsonBSODSaveFile{*this, "cmdDrWatsonBSODSaveFile",
                                               "Choose dump folde&r..."};
  forms::TextBox txtLogFilePath{*this, "txtLogFilePath", kShown};
  forms::Label lblLogFilePath{*this, "lblLogFilePath", "Lo&g folder:", &txtLogFilePath};
  forms::CommandButton cmdDrWatsonLogSaveFile{*this, "cmdDrWatsonLogSaveFile",
                                              "&Choose log folder..."};

 protected:
  std::string_view applyRoutine() const override { return "cmdApply_Click"; }
  void readMore() override;

 private:
  static constexpr forms::TextBoxOptions kShown{.widthInCharacters = 40, .readOnly = true};

  void showPaths();
  void cmdDrWatsonBSODSaveFile_Click();
  void cmdDrWatsonLogSaveFile_Click();
  // At once, without the bank.
  void writePath(std::string_view what, std::string_view value, const std::string& path);
};

}  // namespace korvex::dialogs
