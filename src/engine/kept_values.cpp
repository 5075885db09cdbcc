// Keeping and putting back.
#include "engine/kept_values.h"

#include <fmt/format.h>

#include <utility>
#include <vector>

#include "engine/at_once.h"
#include "engine/copy_tree.h"
#include "engine/raw_value.h"
#include "engine/same_data.h"

namespace korvex::engine {

using foundation::Session;
using foundation::Variant;
using platform::ERROR_FILE_NOT_FOUND;
using platform::ERROR_SUCCESS;
using platform::Status;

namespace {

constexpr std::string_view kPrevious = "SOFTWARE\\Korvex\\Previous";

// Names of values may hold backslashes, so one key can tell the values of several keys apart. A
// value that was not there has a record of its own kind: no type of data could stand for it.
std::string keptName(std::string_view key, std::string_view name) {
  return fmt::format("+{}\\{}", key, name);
}
std::string absentName(std::string_view key, std::string_view name) {
  return fmt::format("-{}\\{}", key, name);
}

// What is kept of a value.
struct Record {
  std::string name;  // "" where nothing is kept
  bool wasThere = false;
  RawValue value;
};

Status findRecord(Session& session, const Tweak& tweak, Root root, std::string_view key,
                  std::string_view name, Record& record) {
  const std::string from = keptKey(session, tweak, root);
  for (const bool wasThere : {true, false}) {
    std::string candidate = wasThere ? keptName(key, name) : absentName(key, name);
    const Status status = readRawValue(session.registry(), HKLM, from, candidate, record.value);
    if (status == ERROR_FILE_NOT_FOUND) continue;
    if (status == ERROR_SUCCESS) record = {std::move(candidate), wasThere, record.value};
    return status;
  }
  return ERROR_SUCCESS;
}

// A kept tree stands below the kept values under the full path of its key.
std::string keptTree(const Session& session, const Tweak& tweak, Root root, std::string_view key) {
  return fmt::format("{}\\{}", keptKey(session, tweak, root), key);
}

// Takes the kept record away, and what is empty above it up to the tweak's own key.
Status forget(Session& session, std::string path, const std::string& top) {
  Status status = session.regTool.DeleteRegNodes(HKLM, path);
  bool empty = true;
  while (status == ERROR_SUCCESS && path != top) {
    path.resize(path.rfind('\\'));
    status = isEmptyKey(session.registry(), HKLM, path, empty);
    if (status != ERROR_SUCCESS || !empty) return status;
    status = session.regTool.DeleteRegNodes(HKLM, path);
  }
  return status;
}

}  // namespace

std::string keptKey(const Session& session, const Tweak& tweak, Root root) {
  if (root != HKCU) return fmt::format("{}\\{}", kPrevious, tweak.property);
  // Somebody who gave no name at the logon box works with the settings of all such.
  const std::string_view user =
      session.g_sCurrentUser.empty() ? std::string_view(".DEFAULT") : session.g_sCurrentUser;
  return fmt::format("{}\\{}\\{}", kPrevious, user, tweak.property);
}

bool isKept(Session& session, const Tweak& tweak, Root root, std::string_view key,
            std::string_view name) {
  Record record;
  return findRecord(session, tweak, root, key, name, record) == ERROR_SUCCESS &&
         !record.name.empty();
}

Status keepValue(Session& session, const Tweak& tweak, Root root, std::string_view key,
                 std::string_view name, const Variant* onValue) {
  Record record;
  Status status = findRecord(session, tweak, root, key, name, record);
  if (status != ERROR_SUCCESS || !record.name.empty()) return status;
  RawValue present;
  status = readRawValue(session.registry(), root, key, name, present);
  if (missingIsFine(status) != ERROR_SUCCESS) return status;
  const bool there = status == ERROR_SUCCESS;
  const bool isOwn = onValue != nullptr && (there ? holds(present, *onValue) : onValue->isEmpty());
  if (isOwn) return ERROR_SUCCESS;
  return putRaw(session, HKLM, keptKey(session, tweak, root),
                there ? keptName(key, name) : absentName(key, name), present);
}

Status putBackValue(Session& session, const Tweak& tweak, Root root, std::string_view key,
                    std::string_view name, bool& wasKept) {
  Record record;
  Status status = findRecord(session, tweak, root, key, name, record);
  wasKept = !record.name.empty();
  if (status != ERROR_SUCCESS || !wasKept) return status;
  status = record.wasThere ? putRaw(session, root, key, name, record.value)
                           : missingIsFine(session.regTool.DeleteRegValue(root, key, name));
  if (status != ERROR_SUCCESS) return status;
  const std::string from = keptKey(session, tweak, root);
  status = session.regTool.DeleteRegValue(HKLM, from, record.name);
  if (status != ERROR_SUCCESS) return status;
  // An empty key of kept values says nothing; one that still holds some stays.
  bool empty = false;
  status = isEmptyKey(session.registry(), HKLM, from, empty);
  return status == ERROR_SUCCESS && empty ? session.regTool.DeleteRegNodes(HKLM, from) : status;
}

bool isTreeKept(Session& session, const Tweak& tweak, Root root, std::string_view key) {
  return platform::OpenKey(session.registry(), HKLM, keptTree(session, tweak, root, key),
                           platform::KEY_QUERY_VALUE)
             .status() == ERROR_SUCCESS;
}

Status keepTree(Session& session, const Tweak& tweak, Root root, std::string_view key) {
  Status status =
      platform::OpenKey(session.registry(), root, key, platform::KEY_QUERY_VALUE).status();
  if (status != ERROR_SUCCESS) return missingIsFine(status);
  const std::string to = keptTree(session, tweak, root, key);
  status = missingIsFine(session.regTool.DeleteRegNodes(HKLM, to));
  return status == ERROR_SUCCESS ? copyTree(session, root, std::string(key), HKLM, to) : status;
}

Status putBackTree(Session& session, const Tweak& tweak, Root root, std::string_view key,
                   bool& wasKept) {
  const std::string from = keptTree(session, tweak, root, key);
  Status status =
      platform::OpenKey(session.registry(), HKLM, from, platform::KEY_QUERY_VALUE).status();
  wasKept = status == ERROR_SUCCESS;
  if (!wasKept) return missingIsFine(status);
  status = copyTree(session, HKLM, from, root, std::string(key));
  return status == ERROR_SUCCESS ? forget(session, from, keptKey(session, tweak, root)) : status;
}

}  // namespace korvex::engine
