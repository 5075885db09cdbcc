// Keeping and putting back.
#include "engine/kept_values.h"

#include <fmt/format.h>

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

Status writeRaw(Session& session, Root root, std::string_view path, std::string_view name,
                const RawValue& value) {
  platform::HKEY key = 0;
  bool existed = false;
  Status status = session.regTool.CreateRegNode(root, path, key, existed, platform::KEY_ALL_ACCESS);
  if (status != ERROR_SUCCESS) return status;
  status = session.registry().RegSetValueExA(key, name, value.type, value.bytes.data(),
                                             static_cast<std::uint32_t>(value.bytes.size()));
  session.registry().RegCloseKey(key);
  return status;
}

}  // namespace

std::string keptKey(const Session& session, const Tweak& tweak, Root root) {
  if (root != HKCU) return fmt::format("{}\\{}", kPrevious, tweak.property);
  return fmt::format("{}\\{}\\{}", kPrevious, session.g_sCurrentUser, tweak.property);
}

bool isKept(Session& session, const Tweak& tweak, Root root, std::string_view key,
            std::string_view name) {
  const platform::OpenKey from(session.registry(), HKLM, keptKey(session, tweak, root),
                               platform::KEY_QUERY_VALUE);
  if (from.status() != ERROR_SUCCESS) return false;
  RawValue value;
  return readRawValue(session.registry(), from.get(), keptName(key, name), value) ==
             ERROR_SUCCESS ||
         readRawValue(session.registry(), from.get(), absentName(key, name), value) ==
             ERROR_SUCCESS;
}

Status keepValue(Session& session, const Tweak& tweak, Root root, std::string_view key,
                 std::string_view name, const Variant& onValue) {
  if (isKept(session, tweak, root, key, name)) return ERROR_SUCCESS;
  RawValue present;
  const Status status = readRawValue(session.registry(), root, key, name, present);
  if (missingIsFine(status) != ERROR_SUCCESS) return status;
  const bool there = status == ERROR_SUCCESS;
  if (there ? holds(present, onValue) : onValue.isEmpty()) return ERROR_SUCCESS;
  return writeRaw(session, HKLM, keptKey(session, tweak, root),
                  there ? keptName(key, name) : absentName(key, name), present);
}

Status putBackValue(Session& session, const Tweak& tweak, Root root, std::string_view key,
                    std::string_view name, bool& wasKept) {
  wasKept = isKept(session, tweak, root, key, name);
  if (!wasKept) return ERROR_SUCCESS;
  const std::string from = keptKey(session, tweak, root);
  std::string record = keptName(key, name);
  RawValue kept;
  Status status = readRawValue(session.registry(), HKLM, from, record, kept);
  if (status == ERROR_FILE_NOT_FOUND) {
    record = absentName(key, name);
    status = missingIsFine(session.regTool.DeleteRegValue(root, key, name));
  } else if (status == ERROR_SUCCESS) {
    status = writeRaw(session, root, key, name, kept);
  }
  if (status != ERROR_SUCCESS) return status;
  status = session.regTool.DeleteRegValue(HKLM, from, record);
  if (status != ERROR_SUCCESS) return status;
  // An empty key of kept values says nothing; one that still holds some stays.
  bool empty = false;
  status = isEmptyKey(session.registry(), HKLM, from, empty);
  return status == ERROR_SUCCESS && empty ? session.regTool.DeleteRegNodes(HKLM, from) : status;
}

}  // namespace korvex::engine
