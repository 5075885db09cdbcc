// QtPrompts: modal questions as Qt dialogs over the active window.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "platform/prompts.h"

namespace korvex::qt {

class QtPrompts : public platform::Prompts {
 public:
  // Message boxes and inputs need no machine; the pickers find nothing before there is one.
  void setFiles(platform::Files& files) { files_ = &files; }
  // The window that picks folders is one of the program's own.
  std::function<std::optional<std::string>(std::string_view)> folderPicker;

  platform::Answer messageBox(std::string_view text, int style, std::string_view title) override;
  std::optional<std::string> inputBox(std::string_view text, std::string_view title,
                                      std::string_view proposal) override;
  std::optional<std::string> pickFile(const platform::FileRequest& request) override;
  std::optional<std::string> pickFolder(std::string_view title) override;
  std::optional<platform::FontChoice> pickFont(const platform::FontChoice& current,
                                               std::string_view title) override;
  std::optional<std::uint32_t> pickColor(std::uint32_t current) override;

 private:
  platform::Files* files_ = nullptr;
};

}  // namespace korvex::qt
