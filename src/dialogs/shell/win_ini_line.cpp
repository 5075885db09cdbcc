// Finding, reading and writing.
#include "dialogs/shell/win_ini_line.h"

#include <fmt/format.h>

#include <utility>

#include "engine/at_once.h"
#include "engine/raw_value.h"
#include "engine/same_name.h"
#include "platform/text/reg_names.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using platform::ERROR_FILE_NOT_FOUND;
using platform::ERROR_SUCCESS;
using platform::HKEY_CURRENT_USER;
using platform::HKEY_LOCAL_MACHINE;
using platform::Status;

namespace {

constexpr std::string_view kFile = "WIN.INI";
constexpr std::string_view kSection = "Windows";
constexpr std::string_view kIniFileMapping =
    "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\IniFileMapping\\win.ini";

}  // namespace

WinIniLine::WinIniLine(foundation::Session& session, std::string key)
    : session_(session), key_(std::move(key)) {
  if (session_.g_bNT) mapped_ = mapping();
}

std::string WinIniLine::mappedTo(const std::string& key, const std::string& value) const {
  return session_.regTool.GetRegStr(key, value, HKEY_LOCAL_MACHINE);
}

// The section is a key with a value for each of its own keys and the default value for all others,
// or a value for all of them.
std::optional<WinIniLine::Mapping> WinIniLine::mapping() const {
  const std::string file(kIniFileMapping);
  const std::string section = fmt::format("{}\\{}", file, kSection);
  std::string target = mappedTo(section, key_);
  if (target.empty()) target = mappedTo(section, "");
  if (target.empty()) target = mappedTo(file, std::string(kSection));
  target.erase(0, target.find_first_not_of("!#@"));
  if (target.size() <= 4) return std::nullopt;
  const std::string below = target.substr(4);
  if (engine::sameName(target.substr(0, 4), "USR:")) return Mapping{HKEY_CURRENT_USER, below};
  if (!engine::sameName(target.substr(0, 4), "SYS:")) return std::nullopt;
  return Mapping{HKEY_LOCAL_MACHINE, "SOFTWARE\\" + below};
}

std::string WinIniLine::file() const { return session_.g_sWinDir + std::string(kFile); }

std::string WinIniLine::place() const {
  if (!mapped_) return fmt::format("{}, {}=", file(), key_);
  return fmt::format("{}, {}", platform::fullKeyName(mapped_->root, mapped_->key), key_);
}

Status WinIniLine::read(std::string& text) const {
  text.clear();
  if (mapped_) {
    return engine::storedText(session_, mapped_->root, mapped_->key, key_, text);
  }
  // The profile functions tell nothing of a file that cannot be read.
  std::string bytes;
  const Status status = engine::missingIsFine(session_.files().read(file(), bytes));
  if (status != ERROR_SUCCESS) return status;
  // They drop quotes around a value, but not around one of a whole section.
  const std::string lines =
      session_.machine().initFiles().GetPrivateProfileSectionA(kSection, kFile);
  for (std::size_t at = 0; at < lines.size(); at = lines.find('\0', at) + 1) {
    const std::string line(lines.c_str() + at);
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    if (!engine::sameName(platform::trimmed(line.substr(0, equals)), key_)) continue;
    text = platform::trimmed(std::string_view(line).substr(equals + 1));
    break;
  }
  return status;
}

Status WinIniLine::write(platform::FileChange& files, const std::string& text) const {
  std::string before;
  Status status = read(before);
  if (status != ERROR_SUCCESS || before == text) return status;
  if (mapped_) {
    engine::RawValue value;
    const Status there =
        engine::readRawValue(session_.registry(), mapped_->root, mapped_->key, key_, value);
    if (engine::missingIsFine(there) != ERROR_SUCCESS) return there;
    if (there == ERROR_FILE_NOT_FOUND) value.type = platform::REG_SZ;
    value.bytes = text + '\0';
    return engine::putRaw(session_, mapped_->root, mapped_->key, key_, value);
  }
  // The profile functions go past the changes of files: the file is written as it stands first, so
  // that each of those knows the way back.
  std::string bytes;
  status = files.read(file(), bytes);
  if (status == ERROR_SUCCESS) status = files.replace(file(), bytes);
  if (status == ERROR_FILE_NOT_FOUND) status = files.guard(file());
  if (status != ERROR_SUCCESS) return status;
  return session_.machine().initFiles().WriteProfileStringA(kSection, key_, text);
}

}  // namespace korvex::dialogs
