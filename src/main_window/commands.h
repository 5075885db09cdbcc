// CommandButtons: the main window's buttons that act at once or open another window. A row each:
// name, caption, place and handler.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/tweak.h"
#include "forms/controls.h"
#include "forms/form.h"
#include "forms/form_book.h"
#include "foundation/session.h"
#include "main_window/page_section.h"
#include "main_window/shell_lists.h"

namespace korvex::main_window {

class CommandButtons : public PageSection {
 public:
  CommandButtons(forms::Form& form, foundation::Session& session, forms::FormBook& formBook);

  std::vector<forms::Layout> groups(engine::Page page) override;
  // Disables what this Windows has not, with the reason, and shows the folders.
  void load() override;

  struct Noun {
    std::string_view one;
    std::string_view many;
    std::string of(int count) const;  // "1 document"
  };

 private:
  struct Row {
    const char* name;
    const char* caption;
    engine::Page page;
    const char* group;
    const char* toolTip;
    engine::Families families;
    engine::Families needsDesktopUpdate;
    void (CommandButtons::*handler)();
    const char* opens = nullptr;        // the window, instead of a handler
    engine::Condition lacks = nullptr;  // why this machine cannot have it, beyond its Windows
  };
  static const std::vector<Row>& rows();

  // A button to a window that the program does not have is left out.
  bool exists(const Row& row) const;
  void press(const Row& row);
  void cmdStartMenuAlpha_Click();
  void cmdChangePrintSpool_Click();
  void cmdInstallPath_Click();
  void cmdBrowse_Click();
  void cmdClearDOCSNow_Click();
  void cmdClearIEURLList_Click();
  void cmdClearMRUs_Click();
  void cmdClearRUN_Click();
  void cmdMSConfig_Click();
  void cmdWinCompat_Click();

  // The question first where there is one; then the list goes and the person hears how much it was.
  void clear(ShellList list, std::string_view question, const Noun& noun);
  // These two tell the person what failed.
  bool cleared(ShellList list, std::string_view what);
  bool write(std::string_view key, std::string_view name, const std::string& text,
             std::string_view what);
  void start(const std::string& program);
  void p_DetermineDefaultPrintSpoolDir();
  void p_DetermineLogonMessage();
  void showRegPath();

  forms::Form& form_;
  foundation::Session& session_;
  forms::FormBook& formBook_;
  forms::Label& lblPrintSpool_;
  forms::Label& lblLogonMessage_;
  forms::TextBox& txtRegPath_;
  forms::Label& lblRegPath_;
};

}  // namespace korvex::main_window
