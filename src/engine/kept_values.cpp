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

// Names of values may hold backslashes, so one key can tell the values of several keys apart.
std::string keptName(std::string_view key, std::string_view name) {
  return fmt::format("{}\\{}", key, name);
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
  RawValue value;
  return readRawValue(session.registry(), HKLM, keptKey(session, tweak, root), keptName(key, name),
                      value) == ERROR_SUCCESS;
}

Status keepValue(Session& session, const Tweak& tweak, Root root, std::string_view key,
                 std::string_view name, const Variant& onValue) {
  if (isKept(session, tweak, root, key, name)) return ERROR_SUCCESS;
  RawValue present;
  const Status status = readRawValue(session.registry(), root, key, name, present);
  if (missingIsFine(status) != ERROR_SUCCESS) return status;
  if (status == ERROR_SUCCESS ? holds(present, onValue) : onValue.isEmpty()) return ERROR_SUCCESS;
  if (status == ERROR_FILE_NOT_FOUND) present = {};
  return writeRaw(session, HKLM, keptKey(session, tweak, root), keptName(key, name), present);
}

Status putBackValue(Session& session, const Tweak& tweak, Root root, std::string_view key,
                    std::string_view name, bool& wasKept) {
  const std::string from = keptKey(session, tweak, root);
  RawValue kept;
  Status status =
      readRawValue(session.registry(), HKLM, from, keptName(key, name), kept);
  wasKept = status == ERROR_SUCCESS;
  if (!wasKept) return missingIsFine(status);
  const bool wasAbsent = kept.type == platform::REG_NONE && kept.bytes.empty();
  status = wasAbsent ? missingIsFine(session.regTool.DeleteRegValue(root, key, name))
                     : writeRaw(session, root, key, name, kept);
  if (status != ERROR_SUCCESS) return status;
  status = session.regTool.DeleteRegValue(HKLM, from, keptName(key, name));
  if (status != ERROR_SUCCESS) return status;
  // An empty key of kept values says nothing; one that still holds some stays.
  bool empty = false;
  status = isEmptyKey(session.registry(), HKLM, from, empty);
  return status == ERROR_SUCCESS && empty ? session.regTool.DeleteRegNodes(HKLM, from) : status;
}

}  // namespace korvex::engine
