// frmMRUs: Excel's recent files. Entries are taken away at once; those behind move up, for Excel
// counts from File1 without a hole.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "dialogs/direct_dialog.h"
#include "engine/raw_value.h"

namespace korvex::dialogs {

class frmMRUs : public DirectDialog {
 public:
  static constexpr const char* kName = "frmMRUs";

  explicit frmMRUs(const DialogParts& parts);

  forms::ListBox lstMRUs{*this, "lstMRUs", 9};
  forms::Label lblMRUs{*this, "lblMRUs", "Excel's recent &files:", &lstMRUs};
  forms::TextBox txtFile{*this, "txtFile", {.widthInCharacters = 60, .readOnly = true}};
  forms::Label lblFile{*this, "lblFile", "Full &path:", &txtFile};
  forms::Label lblState{*this, "lblState", ""};
  forms::CommandButton cmdRemove{*this, "cmdRemove", "&Remove"};
  forms::CommandButton cmdRemoveAll{*this, "cmdRemoveAll", "Remove &all..."};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;

 private:
  struct Entry {
    std::uint32_t number = 0;
    std::string name;  // as it stands: "File1"
    engine::RawValue value;
    std::string text() const;  // of the list
  };
  using Entries = std::vector<Entry>;

  void cmdRemove_Click();
  void cmdRemoveAll_Click();
  // In the order of their numbers. Values that are no entries are left out.
  platform::Status readEntries(Entries& entries) const;
  // The value name of the entry with that number, however it is written; "" for none.
  static std::string p_DetermineRegLeftValue(const Entries& entries, std::string_view wanted);
  // Whether the machine still has what is shown; what it has is shown where not, and told.
  bool isAsShown();
  // One change of the machine: these entries, numbered from 1, and none of the others.
  bool write(const Entries& remaining);
  platform::Status writeSteps(const Entries& remaining) const;
  void showWhatCanBeDone();
  std::string whetherThere(const Entry& entry) const;

  Entries shown_;
};

}  // namespace korvex::dialogs
