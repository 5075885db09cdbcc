// ExtensionList: the extensions of files that Jet's Text format opens: the value Extensions of its
// key, one list with commas. Changes are written at once; what else stands in the list stays.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/raw_value.h"
#include "forms/controls.h"
#include "forms/layout.h"
#include "foundation/session.h"

namespace korvex::dialogs {

class ExtensionList {
 public:
  // Makes the controls, which the form owns. mayChange is asked before anything is written.
  ExtensionList(forms::Form& form, foundation::Session& session, std::function<bool()> mayChange);

  forms::Layout layout();
  void read();

 private:
  // Which key is meant; not success where that could not be told.
  platform::Status findKey();
  // The value of that key as it stands; a missing one is the list that Jet takes then.
  platform::Status stored(std::string& list);
  void show(const std::string& list);
  // reason: why it cannot be used; "" where it can.
  void enable(const std::string& reason);
  // change is given the list as it stands now and alters it, or answers why it does not. True where
  // it is written.
  using Change = std::function<std::string(std::string& list)>;
  bool change(const Change& change);
  void cmdExtensionAdd_Click();
  void cmdRemoveExtension_Click();

  foundation::Session& session_;
  std::function<bool()> mayChange_;
  std::string_view key_;
  forms::ListBox& lstExtensions_;
  forms::Label& lblExtensions_;
  forms::TextBox& txtExtension_;
  forms::Label& lblExtension_;
  forms::CommandButton& cmdExtensionAdd_;
  forms::CommandButton& cmdRemoveExtension_;
};

}  // namespace korvex::dialogs
