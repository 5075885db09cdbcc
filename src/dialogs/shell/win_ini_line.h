// WinIniLine: where one key of WIN.INI's section "Windows" stands. On NT the registry may say that
// it is a value of the registry (IniFileMapping); everywhere else it is a line of the file.
#pragma once

#include <optional>
#include <string>

#include "foundation/session.h"
#include "platform/file_change.h"
#include "platform/registry.h"

namespace korvex::dialogs {

class WinIniLine {
 public:
  WinIniLine(foundation::Session& session, std::string key);

  // "" where there is none. A status for what could not be read.
  platform::Status read(std::string& text) const;
  // A step of a change, of the registry where it stands there, else of the files.
  platform::Status write(platform::FileChange& files, const std::string& text) const;
  bool isInRegistry() const { return mapped_.has_value(); }
  // "C:\WINDOWS\WIN.INI, load="
  std::string place() const;

 private:
  struct Mapping {
    platform::HKEY root;
    std::string key;
  };
  std::optional<Mapping> mapping() const;
  std::string mappedTo(const std::string& key, const std::string& value) const;
  std::string file() const;

  foundation::Session& session_;
  std::string key_;
  std::optional<Mapping> mapped_;
};

}  // namespace korvex::dialogs
