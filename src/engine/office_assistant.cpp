// Moving the characters, and telling where they are.
//
// The folder that they were taken from is kept beside the previous AsstState: AsstPath may name
// another one by the time they are to come back.
#include "engine/office_assistant.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "engine/at_once.h"
#include "engine/kept_values.h"
#include "engine/office.h"
#include "engine/raw_value.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"
#include "engine/same_data.h"
#include "engine/same_name.h"

namespace korvex::engine {

using foundation::Session;
using foundation::Variant;
using platform::ERROR_SUCCESS;
using platform::Files;
using platform::Status;

namespace {

constexpr std::string_view kAsstPath = "AsstPath";
constexpr std::string_view kAsstState = "AsstState";
constexpr std::string_view kFolder = "Folder";  // of the kept values
constexpr std::int32_t kAssistantOff = 0;
const std::string kStay =
    "Another file of the same name is in the folder of the Office Assistant now. These files stay "
    "where they are:";

std::string disabled(const std::string& folder) { return folder + "\\Disable"; }

std::string withoutLastBackslash(std::string folder) {
  folder.resize(folder.find_last_not_of("\\/") + 1);
  return folder;
}

// Where Office looks for the characters, without a backslash at its end; "" where it is not told.
Status actorFolder(Session& session, const Tweak& tweak, std::string& folder) {
  RawValue value;
  const Status status =
      missingIsFine(readRawValue(session.registry(), tweak.root, tweak.key, kAsstPath, value));
  folder = value.text();
  if (value.type == platform::REG_EXPAND_SZ) {
    folder = session.machine().systemInfo().ExpandEnvironmentStringsA(folder);
  }
  folder = withoutLastBackslash(std::move(folder));
  return status;
}

// Where the characters were that are put away; "" for none.
Status folderTakenFrom(Session& session, const Tweak& tweak, std::string& folder) {
  return storedText(session, HKLM, keptKey(session, tweak, tweak.root), kFolder, folder);
}

// The names of the characters' files in a folder. A folder that is not there has none.
Status listActors(Files& files, const std::string& folder, std::vector<std::string>& names) {
  std::vector<platform::FileEntry> entries;
  const Status status = files.list(folder + "\\*.ac*", entries);
  for (const platform::FileEntry& entry : entries) {
    if ((entry.attributes & platform::FILE_ATTRIBUTE_DIRECTORY) == 0) names.push_back(entry.name);
  }
  return status == platform::ERROR_PATH_NOT_FOUND ? ERROR_SUCCESS : missingIsFine(status);
}

bool hasActors(Files& files, const std::string& folder) {
  std::vector<std::string> names;
  return !folder.empty() && listActors(files, folder, names) == ERROR_SUCCESS && !names.empty();
}

// A copy of the same bytes stands for the file already.
Status dropCopy(Files& files, const std::string& path, const std::string& other, bool& isCopy) {
  std::string bytes;
  std::string otherBytes;
  Status status = files.read(path, bytes);
  if (status == ERROR_SUCCESS) status = files.read(other, otherBytes);
  isCopy = status == ERROR_SUCCESS && bytes == otherBytes;
  if (!isCopy) return status;
  status = files.setAttributes(path, platform::FILE_ATTRIBUTE_ARCHIVE);  // it may be READONLY
  return status == ERROR_SUCCESS ? files.remove(path) : status;
}

// Another file of the same name is never replaced: its name goes to stayed, and the file stays.
Status moveActors(Files& files, const std::string& from, const std::string& to,
                  std::vector<std::string>& stayed) {
  std::vector<std::string> names;
  Status status = listActors(files, from, names);
  for (const std::string& name : names) {
    if (status != ERROR_SUCCESS) break;
    const std::string source = fmt::format("{}\\{}", from, name);
    const std::string target = fmt::format("{}\\{}", to, name);
    if (!files.exists(target)) {
      status = files.move(source, target);
      continue;
    }
    bool isCopy = false;
    status = dropCopy(files, source, target, isCopy);
    if (!isCopy) stayed.push_back(name);
  }
  return status;
}

Status putAway(Files& files, const std::string& folder) {
  std::vector<std::string> names;
  Status status = listActors(files, folder, names);
  if (status != ERROR_SUCCESS) return status;
  if (names.empty()) {
    // Away already, or there never were any.
    return hasActors(files, disabled(folder)) ? ERROR_SUCCESS : platform::ERROR_FILE_NOT_FOUND;
  }
  if (!files.exists(disabled(folder))) status = files.createFolder(disabled(folder));
  std::vector<std::string> stayed;
  if (status == ERROR_SUCCESS) status = moveActors(files, folder, disabled(folder), stayed);
  if (status != ERROR_SUCCESS) return status;
  return stayed.empty() ? ERROR_SUCCESS : platform::ERROR_FILE_EXISTS;
}

// What came back and what could not.
struct BroughtBack {
  bool any = false;
  std::string places;  // of those that stayed, a line each
};

Status bringBack(Files& files, const std::string& folder, BroughtBack& result) {
  if (folder.empty() || !hasActors(files, disabled(folder))) return ERROR_SUCCESS;
  result.any = true;
  std::vector<std::string> stayed;
  Status status = moveActors(files, disabled(folder), folder, stayed);
  for (const std::string& name : stayed) {
    result.places += fmt::format("\r\n{}\\{}", disabled(folder), name);
  }
  if (status != ERROR_SUCCESS) return status;
  std::vector<platform::FileEntry> rest;
  status = missingIsFine(files.list(disabled(folder) + "\\*", rest));
  if (status != ERROR_SUCCESS || !rest.empty()) return status;
  return files.removeFolder(disabled(folder));
}

// Both folders, as far as they are told.
Status readFolders(Session& session, const Tweak& tweak, std::string& present, std::string& from) {
  const Status status = actorFolder(session, tweak, present);
  return status == ERROR_SUCCESS ? folderTakenFrom(session, tweak, from) : status;
}

bool anyAway(Files& files, const std::string& present, const std::string& from) {
  return (!present.empty() && hasActors(files, disabled(present))) ||
         (!from.empty() && hasActors(files, disabled(from)));
}

}  // namespace

bool RegWorker::P_rwAsstRemove(const Tweak& tweak) {
  session_.trace.enter("[P_rwAsstRemove]");
  const bool on = wantsOn(tweak);
  if ((on ? disableAssistant(tweak) : enableAssistant(tweak)) && finishSpecial(tweak)) return true;
  session_.trace.dump("lRetVal&", lastStatus);
  notify(on ? "An error ocurred disabling the Office Assistant.\r\n"
              "The Assistant will not be disabled."
            : "An error occurred enabling the Office Assistant.\r\n"
              "The Assistant will stay disabled.",
         platform::kIconCritical);
  return false;
}

bool RegWorker::disableAssistant(const Tweak& tweak) {
  std::string folder;
  std::string from;
  if (!keep(readFolders(session_, tweak, folder, from))) return false;
  session_.trace.dump("sPath$", folder);
  if (folder.empty()) return keep(platform::ERROR_PATH_NOT_FOUND);
  BroughtBack ofOther;  // the characters of a folder that Office no longer looks at
  if (!sameName(from, folder) && !keep(bringBack(files(), from, ofOther))) return false;
  if (!ofOther.places.empty()) notify(kStay + ofOther.places, platform::kIconInformation);
  return keep(putAway(files(), folder)) &&
         keep(putText(session_, HKLM, keptKey(session_, tweak, tweak.root), kFolder, folder)) &&
         // Whatever it is, also the tweak's own: it tells what to come back to.
         keep(keepValue(session_, tweak, tweak.root, tweak.key, kAsstState, nullptr)) &&
         write(tweak.root, tweak.key, kAsstState, kAssistantOff);
}

bool RegWorker::enableAssistant(const Tweak& tweak) {
  std::string folder;
  std::string from;
  RawValue state;
  BroughtBack back;
  bool wasKept = false;
  const std::string kept = keptKey(session_, tweak, tweak.root);
  if (!keep(readFolders(session_, tweak, folder, from)) ||
      !read(tweak.root, tweak.key, kAsstState, state) || !keep(bringBack(files(), from, back)) ||
      (!sameName(from, folder) && !keep(bringBack(files(), folder, back))) ||
      !remove(HKLM, kept, kFolder)) {
    return false;
  }
  // What was set since, perhaps by its own box in the same Apply, is newer than what was kept.
  const bool off = holds(state, Variant(kAssistantOff));
  if (off ? !keep(putBackValue(session_, tweak, tweak.root, tweak.key, kAsstState, wasKept))
          : !removeTree(HKLM, kept)) {
    return false;
  }
  // Another program put them away, and nobody knows what the value was: without one Office shows
  // the Assistant.
  const bool unknown = !wasKept && back.any && off;
  if (unknown && !remove(tweak.root, tweak.key, kAsstState)) return false;
  if (!back.places.empty()) notify(kStay + back.places, platform::kIconInformation);
  return true;
}

// The files tell: what AsstState holds has a box of its own.
TweakState p_DetermineAsstRemove(const Tweak& tweak, Session& session) {
  std::string folder;
  std::string from;
  const bool on = readFolders(session, tweak, folder, from) == ERROR_SUCCESS &&
                  !hasActors(session.files(), folder) && anyAway(session.files(), folder, from);
  return {on ? TweakState::Kind::On : TweakState::Kind::Off, {}};
}

std::string_view needsActors(const Tweak& row, Session& session) {
  const std::string_view reason = needsOffice(row, session);
  const Tweak tweak = onMachine(row, session);  // asked before the key is that of this Office
  std::string folder;
  std::string from;
  if (!reason.empty() || readFolders(session, tweak, folder, from) != ERROR_SUCCESS) return reason;
  return hasActors(session.files(), folder) || anyAway(session.files(), folder, from)
             ? ""
             : "There are no characters of the Office Assistant on this machine.";
}

}  // namespace korvex::engine
