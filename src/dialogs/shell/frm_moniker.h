// frmMoniker: short names that Internet Explorer opens behind "about:". Korvex lists and removes
// only those that it has added; of them it keeps a copy of its own.
#pragma once

#include <string>
#include <vector>

#include "dialogs/direct_dialog.h"
#include "engine/raw_value.h"
#include "engine/taken_away.h"

namespace korvex::dialogs {

class frmMoniker : public DirectDialog {
 public:
  static constexpr const char* kName = "frmMoniker";

  explicit frmMoniker(const DialogParts& parts);

  forms::ListBox lstMonikers{*this, "lstMonikers", 8};
  forms::Label lblMonikers{*this, "lblMonikers", "&Monikers that Korvex has added:", &lstMonikers};
  forms::TextBox txtMoniker{*this, "txtMoniker", {.maxLength = 255, .widthInCharacters = 20}};
  forms::Label lblMoniker{*this, "lblMoniker", "&Name behind \"about:\":", &txtMoniker};
  forms::TextBox txtAddress{*this, "txtAddress", {.widthInCharacters = 45}};
  forms::Label lblAddress{*this, "lblAddress", "&Web address:", &txtAddress};
  forms::CommandButton cmdAddMoniker{*this, "cmdAddMoniker", "&Add"};
  forms::CommandButton cmdRemoveMoniker{*this, "cmdRemoveMoniker", "&Remove"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;
  int changesWaiting() const override;

 private:
  struct Moniker {
    std::string name;
    std::string address;
    std::string line() const;  // of the list
  };
  // What a removal does to the value that Internet Explorer reads.
  enum class Browser { Delete, Leave };

  void cmdAddMoniker_Click();
  void cmdRemoveMoniker_Click();
  void showWhatCanBeDone();
  platform::Status readMonikers(std::vector<Moniker>& monikers) const;
  platform::Status readBrowser(const std::string& name, engine::RawValue& value) const;
  static std::string refusalOf(const std::string& name, const std::string& address);
  bool agreesToReplace(const std::vector<Moniker>& own, const Moniker& moniker,
                       const engine::RawValue& there, bool& foreign) const;
  platform::Status add(const Moniker& moniker, bool foreign);
  bool isAsShown(const Moniker& moniker);
  bool chooseRemoval(const Moniker& moniker, Browser& browser) const;
  platform::Status remove(const std::string& name, Browser browser, std::string& back);
  void tellUnread(platform::Status status);

  engine::TakenAway taken_;
  std::vector<Moniker> shown_;
};

}  // namespace korvex::dialogs
