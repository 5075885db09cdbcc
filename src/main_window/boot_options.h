// BootOptions: the options in MSDOS.SYS, on the page "Windows 9x". A row each.
//
// Before its first change ever the file is copied to its master, "msdos.mstr". The file keeps its
// attributes. When anything fails, the old file stands as it was.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/tweak.h"
#include "forms/controls.h"
#include "forms/form.h"
#include "foundation/session.h"
#include "main_window/msdos_sys.h"
#include "main_window/page_section.h"

namespace korvex::main_window {

class BootOptions : public PageSection {
 public:
  // changed is called when the person has changed an option.
  BootOptions(forms::Form& form, foundation::Session& session, std::function<void()> changed);

  std::vector<forms::Layout> groups(engine::Page page) override;
  void load() override;
  int changesWaiting() const override;
  std::string apply() override;
  std::string restoreDefaults() override;

 private:
  enum class Kind : std::uint8_t { Switch, Number, Choice };
  struct Row {
    std::string_view name;  // as in the file
    Kind kind;
    int byDefault;
    int largest;
    engine::Families families;
    std::string_view group;
    std::string_view caption;
    std::string_view toolTip;
  };
  static const std::vector<Row>& rows();

  struct Option {
    const Row* row;
    forms::Control* control;
    std::string stored;  // what stands in the file, or the default
    std::string valid;   // of a number field: the last text that it may hold
  };

  void makeControl(const Row& row, std::vector<forms::Layout>& parts);
  void Change(std::size_t option);
  std::string shown(const Option& option) const;
  void show(Option& option, const std::string& value);
  void disable(std::string_view reason);
  // What the options are to be: the option's index and its new value.
  using Wishes = std::vector<std::pair<std::size_t, std::string>>;
  std::string write(const Wishes& wishes);
  platform::Status replaceFile(const std::string& bytes, bool fromMaster);
  std::string findFile();
  std::string masterFile() const;
  void cmdRestoreMSDOSSYS_Click();

  forms::Form& form_;
  foundation::Session& session_;
  std::function<void()> changed_;
  forms::CommandButton& cmdRestoreMSDOSSYS_;
  std::vector<Option> options_;
  std::vector<forms::Layout> groups_;
  std::string file_;
  bool m_bBootChanged_ = false;
};

}  // namespace korvex::main_window
