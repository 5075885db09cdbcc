// frmNTHeapSize: the desktop heap of Windows NT, a number in the command line of its subsystem.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "dialogs/direct_dialog.h"

namespace korvex::dialogs {

// Where the second number behind "SharedSection=" stands in the line.
struct HeapNumber {
  std::size_t at = 0;
  std::size_t length = 0;
  std::uint32_t kilobytes = 0;
};
// Nothing where the line has no such number.
std::optional<HeapNumber> findHeapNumber(std::string_view line);

class frmNTHeapSize : public DirectDialog {
 public:
  static constexpr const char* kName = "frmNTHeapSize";

  explicit frmNTHeapSize(const DialogParts& parts);

  forms::Label lblInfo{*this, "lblInfo",
                       "Every program that shows windows takes part of the desktop heap. Where it "
                       "is used up, windows stay away or show only a part of themselves."};
  forms::TextBox txtHeapSize{*this, "txtHeapSize", {.widthInCharacters = 8, .readOnly = true}};
  forms::Label lblHeapSize{*this, "lblHeapSize", "Desktop &heap in KB:", &txtHeapSize};
  forms::CommandButton cmdUp{*this, "cmdUp", "&Up"};
  forms::CommandButton cmdDown{*this, "cmdDown", "Dow&n"};
  forms::CommandButton cmdApply{*this, "cmdApply", "&Apply"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override { p_DetermineHeapSize(); }
  int changesWaiting() const override { return shown_ == stored_ ? 0 : 1; }

 private:
  void p_DetermineHeapSize();
  // The line with the shown number in place of its own.
  platform::Status p_AdjustLeftValue(std::string& line) const;
  void cmdUp_Click();
  void cmdDown_Click();
  void cmdApply_Click();
  void show(std::uint32_t kilobytes);

  std::uint32_t stored_ = 0;
  std::uint32_t shown_ = 0;
};

}  // namespace korvex::dialogs
