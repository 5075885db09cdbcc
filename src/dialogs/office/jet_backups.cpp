// Saving and putting back.
#include "dialogs/office/jet_backups.h"

#include <fmt/format.h>

#include <array>
#include <vector>

#include "backup/key_restore.h"
#include "engine/at_once.h"
#include "engine/tweak.h"
#include "platform/text/text.h"

namespace korvex::dialogs {

using backup::KeyBackup;
using backup::KeyRestore;
using backup::RestoreItem;
using engine::HKLM;
using foundation::kCrLf;
using platform::ERROR_SUCCESS;
using platform::Status;

namespace {

struct SavedKey {
  std::string_view file;
  std::string_view key;
};
constexpr std::array kSavedKeys{
    SavedKey{"jet.reg", "Software\\Microsoft\\Jet"},
    SavedKey{"jetaccess.reg", "Software\\Microsoft\\Access"},
};

// The file of a key that was not there: putting it back takes away what came since.
constexpr std::string_view kNoSuchKey = "REGEDIT4\r\n\r\n; There was no such key.\r\n";

bool isMissing(Status status) {
  return status == platform::ERROR_FILE_NOT_FOUND || status == platform::ERROR_PATH_NOT_FOUND;
}

// Lines that an editor takes are not enough: what is not in the file is deleted. One that has lost
// its end breaks off in a line, and one of another key, or of none, does not name the key.
bool isWhole(std::string text, std::string_view key) {
  if (text.starts_with("\xFF\xFE")) text = platform::utf16leToUtf8(text.substr(2));
  const std::string heading = platform::foldName(fmt::format("\n[HKEY_LOCAL_MACHINE\\{}]", key));
  return text.ends_with('\n') && platform::foldName(text).find(heading) != std::string::npos;
}

}  // namespace

std::string JetBackups::folder() const { return session_.g_sAppPath + "\\Registry"; }

std::string JetBackups::fileOf(std::string_view name) const {
  return fmt::format("{}\\{}", folder(), name);
}

std::string JetBackups::saveMissing() {
  std::vector<KeyBackup> wanted;
  std::vector<std::string> ofNoKey;
  for (const SavedKey& saved : kSavedKeys) {
    const std::string file = fileOf(saved.file);
    if (session_.files().exists(file)) continue;
    const platform::OpenKey key(session_.registry(), HKLM, saved.key, platform::KEY_READ);
    if (key.status() == platform::ERROR_FILE_NOT_FOUND) {
      ofNoKey.push_back(file);
    } else {
      wanted.push_back({HKLM, std::string(saved.key), file});
    }
  }
  if (wanted.empty() && ofNoKey.empty()) return {};
  const Status made = session_.files().createFolder(folder());
  session_.trace.dump("lRetVal&", made);
  if (made != ERROR_SUCCESS && made != platform::ERROR_ALREADY_EXISTS) {
    return fmt::format("{}: {}.", folder(), platform::describeStatus(made));
  }
  std::string failures;
  for (const std::string& file : ofNoKey) {
    const Status status = session_.files().replace(file, kNoSuchKey);
    session_.trace.dump("lRetVal&", status);
    if (status != ERROR_SUCCESS) {
      failures += fmt::format("{}{}: {}.", failures.empty() ? "" : kCrLf, file,
                              platform::describeStatus(status));
    }
  }
  if (wanted.empty()) return failures;
  for (const backup::KeyBackupResult& result : backer_.backupKeys(wanted)) {
    session_.trace.dump("lRetVal&", result.status);
    if (result.saved) continue;
    failures += fmt::format("{}{}", failures.empty() ? "" : kCrLf, result.message);
  }
  return failures;
}

bool JetBackups::backUpOnce(When when) {
  // Nothing of it can be changed either.
  if (session_.machine().describe().readOnly) return true;
  const std::string failures = saveMissing();
  if (failures.empty()) return true;
  const std::string text =
      fmt::format("The settings of Jet could not be saved as they are now:{}{}", kCrLf, failures);
  if (when == When::BeforeChange) {
    return engine::askYesNo(
        session_,
        fmt::format("{}{}{}Restore Defaults could not bring them back. Change them all the same?",
                    text, kCrLf, kCrLf),
        platform::kIconExclamation | platform::kDefaultButton2);
  }
  if (!told_) engine::tell(session_, text, platform::kIconExclamation);
  told_ = true;
  return true;
}

bool JetBackups::restore() {
  std::vector<KeyRestore> restores;
  std::string message;
  for (const SavedKey& saved : kSavedKeys) {
    KeyRestore restore{HKLM, std::string(saved.key), fileOf(saved.file), {}};
    std::uint32_t attributes = 0;
    if (isMissing(session_.files().attributes(restore.file, attributes))) continue;
    RestoreItem item;
    const std::string file = restore.file;
    std::string text;
    const Status read = session_.files().read(file, text);
    const bool wasThere = read != ERROR_SUCCESS || text != kNoSuchKey;
    if (!wasThere) restore.file.clear();
    const bool differs = compareSavedKey(session_, restore, file, item);
    if (item.restorable && wasThere && read == ERROR_SUCCESS &&
        !isWhole(std::move(text), saved.key)) {
      item.restorable = false;
      item.problems.push_back(restore.file + ": it is not what was saved.");
    }
    if (!item.restorable && message.empty()) message = item.problems.front();
    if (differs) restores.push_back(std::move(restore));
  }
  platform::RegistryChange change(session_.registry());
  Status status = message.empty() ? ERROR_SUCCESS : platform::ERROR_INVALID_DATA;
  if (status == ERROR_SUCCESS && !restores.empty()) status = change.status();
  for (const KeyRestore& restore : restores) {
    if (status == ERROR_SUCCESS) status = restoreSavedKey(session_, backer_, restore, message);
  }
  if (status == ERROR_SUCCESS && !restores.empty()) status = change.commit();
  session_.trace.dump("lRetVal&", status);
  if (status == ERROR_SUCCESS) return true;
  if (message.empty()) message = platform::describeStatus(status) + '.';
  engine::tell(session_,
               fmt::format("The settings of Jet could not be restored: {}{}Nothing was changed. "
                           "Put the cause right and try again.",
                           message, kCrLf),
               platform::kIconExclamation);
  return false;
}

}  // namespace korvex::dialogs
