// The profile functions over the files of a machine.
//
// As on Windows, a read that fails for whatever reason gives the fallback, or nothing. A file that
// begins with FF FE is UTF-16, as NT keeps them; every other one is in the machine's code page.
#pragma once

#include <memory>
#include <string>

#include "platform/common/ini_document.h"
#include "platform/files.h"
#include "platform/init_files.h"
#include "platform/text/text.h"

namespace korvex::platform {

class IniFiles : public InitFiles {
 public:
  // windowsFolder is a Windows path. A new section is set off by a blank line on 95, 98 and Me and
  // follows at once on NT and 2000.
  IniFiles(Files& files, std::string windowsFolder, const CodePage& codePage, SectionGap gap);

  // The same functions over other files, such as a decorator of these.
  std::unique_ptr<IniFiles> over(Files& files) const {
    return std::make_unique<IniFiles>(files, windowsFolder_, codePage_, gap_);
  }

  std::string GetPrivateProfileStringA(std::optional<std::string_view> section,
                                       std::optional<std::string_view> key,
                                       std::string_view fallback, std::string_view file) override;
  Status WritePrivateProfileStringA(std::string_view section, std::optional<std::string_view> key,
                                    std::optional<std::string_view> value,
                                    std::string_view file) override;
  std::string GetPrivateProfileSectionA(std::string_view section, std::string_view file) override;
  std::string GetProfileStringA(std::optional<std::string_view> section,
                                std::optional<std::string_view> key,
                                std::string_view fallback) override;
  Status WriteProfileStringA(std::string_view section, std::optional<std::string_view> key,
                             std::optional<std::string_view> value) override;

 private:
  std::string pathOf(std::string_view file) const;
  Status load(const std::string& path, IniDocument& document, bool& unicode) const;
  IniDocument readable(std::string_view file) const;

  Files& files_;
  std::string windowsFolder_;
  const CodePage& codePage_;
  SectionGap gap_;
};

}  // namespace korvex::platform
