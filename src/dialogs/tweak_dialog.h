// TweakDialog: a dialog made of the rows of its bank. A click is recorded at once, cmdApply carries
// the bank out, and what was not applied is gone when the dialog closes. A dialog with more than
// rows derives from it and says how that is read, counted and written.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "dialogs/dialog_parts.h"
#include "engine/apply.h"
#include "engine/tweak_controls.h"
#include "engine/value_fields.h"
#include "forms/form.h"

namespace korvex::dialogs {

class TweakDialog : public forms::Form {
 public:
  // applyName is that of the Apply button, where the product calls it otherwise.
  TweakDialog(std::string name, std::string caption, engine::Bank bank, const DialogParts& parts,
              std::string applyName = "cmdApply");

  void Load() override;
  bool QueryUnload() override;
  void Unload() override;
  // Loaded for a routine that asks for its boxes it stays hidden; when a person comes to see it,
  // the machine may be another. A change that waits in it stays.
  bool reloadsToShow() const override { return changesWaiting() == 0; }

  forms::CommandButton* applyButton() override { return &cmdApply; }

  forms::CommandButton cmdApply;
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  // Whether a click on the row's box is to be recorded; false takes the click back.
  virtual bool accepts(const engine::Tweak&, const forms::CheckBox&) { return true; }

  // The group of that title gets a name; where the machine has none of its tweaks, all of the frame
  // is disabled, with their reason. For constructors.
  void enclose(forms::Frame& frame);

  // Asked before Apply does anything; false leaves everything waiting.
  virtual bool mayApply() { return true; }
  // Writes what stands in the fields, after the bank.
  virtual std::vector<engine::FailedRoutine> writeFields(engine::ValueFields& fields);

  // Under which name Apply is traced: "[frmX.cmdApply]".
  virtual std::string_view applyRoutine() const { return cmdApply.name(); }

  // What the dialog has beyond its rows. Reading happens after the rows, with g_bNoRecord set, and
  // writes nothing.
  virtual void readMore() {}
  // Changes of it that Apply would write.
  virtual int moreChanges() const { return 0; }
  // Writes them, after the bank and the fields: a sentence for the person for each that failed.
  virtual std::vector<std::string> applyMore() { return {}; }
  // To be called when something of it was changed by the person.
  void edited();

  // For a choice of what some rows stand for: whether changes of them wait, and reading them again,
  // which drops those.
  using Which = std::function<bool(const engine::Tweak&)>;
  bool waits(const Which& which) const;
  void readRows(const Which& which);

  // The group of that title, for a dialog that places its groups itself. For constructors.
  forms::Layout takeGroup(std::string_view title);

  // Puts a part below what the group of that title has; a group of that title is made where there
  // is none. For constructors.
  void addTo(std::string_view group, forms::Layout part);
  // The same with a button that opens another window; nothing where there is no such window.
  void addOpener(std::string_view group, const Opener& row);

  foundation::Session& session() const { return parts_.session; }
  const DialogParts& parts() const { return parts_; }
  // Runs handler in an error trap under "frmX.routine".
  void trap(const std::string& routine, const std::function<void()>& handler);

 private:
  void connect(const engine::TweakControl& entry);
  void connectBox(forms::CheckBox& box, const engine::Tweak& tweak);
  void connectOption(forms::OptionButton& button, const engine::Tweak& tweak);
  void cmdApply_Click();
  void disableFrames();
  int changesWaiting() const;
  void showStatus();

  DialogParts parts_;
  engine::Bank bank_;
  engine::TweakControls controls_;
  engine::ValueFields fields_;
  std::vector<forms::Frame*> frames_;
  forms::Subscription changed_;
  bool reverting_ = false;
};

}  // namespace korvex::dialogs
