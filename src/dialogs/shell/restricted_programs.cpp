// Reading and writing the policy.
#include "dialogs/shell/restricted_programs.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "engine/at_once.h"
#include "engine/numeral_field.h"
#include "engine/raw_value.h"
#include "engine/same_name.h"
#include "engine/taken_away.h"
#include "platform/registry.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using engine::RawValue;
using foundation::Session;
using platform::ERROR_SUCCESS;
using platform::HKEY_CURRENT_USER;
using platform::Status;

namespace {

constexpr std::string_view kPolicies =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer";
constexpr std::string_view kList =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer\\RestrictRun";
constexpr std::string_view kKeptLists = "SOFTWARE\\Korvex\\Deleted\\RestrictRun";
constexpr std::string_view kRestrictRun = "RestrictRun";
constexpr std::int32_t kOn = 1;

// Windows looks at the bytes, not at the type.
bool isOn(const RawValue& value) {
  const bool isNumber = value.type == platform::REG_DWORD || value.type == platform::REG_BINARY;
  return isNumber && value.bytes.find_first_not_of('\0') != std::string::npos;
}

struct Entry {
  std::optional<std::uint32_t> number;  // of the value's name
  std::string program;
};

Status readEntries(platform::Registry& registry, std::string_view path,
                   std::vector<Entry>& entries) {
  const platform::OpenKey key(registry, HKEY_CURRENT_USER, path, platform::KEY_READ);
  if (key.status() != ERROR_SUCCESS) return engine::missingIsFine(key.status());
  std::array<char, platform::kNameBufferBytes> name;
  for (std::uint32_t i = 0;; ++i) {
    auto length = static_cast<std::uint32_t>(name.size());
    Status status =
        registry.RegEnumValueA(key.get(), i, name.data(), &length, nullptr, nullptr, nullptr);
    if (status == platform::ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
    if (status != ERROR_SUCCESS) return status;
    const std::string_view valueName(name.data(), length);
    RawValue value;
    status = engine::readRawValue(registry, key.get(), valueName, value);
    if (status != ERROR_SUCCESS) return status;
    if (!value.text().empty()) entries.push_back({engine::numberIn(valueName), value.text()});
  }
}

Status readPrograms(platform::Registry& registry, std::string_view path,
                    std::vector<std::string>& programs) {
  std::vector<Entry> entries;
  const Status status = readEntries(registry, path, entries);
  const auto hasNumber = [](const Entry& entry) { return entry.number.has_value(); };
  if (std::ranges::all_of(entries, hasNumber)) {
    std::ranges::stable_sort(entries, {}, &Entry::number);
  }
  for (Entry& entry : entries) programs.push_back(std::move(entry.program));
  return status;
}

// Takes the list away. One that is not replaced by another is kept.
Status removeList(Session& session, bool replaced) {
  if (replaced) {
    return engine::missingIsFine(session.regTool.DeleteRegNodes(HKEY_CURRENT_USER, kList));
  }
  return engine::missingIsFine(
      engine::TakenAway(session, HKEY_CURRENT_USER, kRestrictRun).removeTree(kList, kRestrictRun));
}

}  // namespace

bool RestrictedPrograms::allows(std::string_view program) const {
  return std::ranges::any_of(programs, [program](const std::string& allowed) {
    return engine::sameName(allowed, program);
  });
}

std::string programName(std::string_view typed) {
  constexpr std::string_view kAround = " \t\"";
  const std::string_view path = platform::trimmed(typed, kAround);
  return std::string(path.substr(path.find_last_of("\\/:") + 1));  // npos + 1 is 0
}

Status readRestrictedPrograms(Session& session, RestrictedPrograms& stored) {
  stored = {};
  RawValue value;
  Status status = engine::missingIsFine(
      engine::readRawValue(session.registry(), HKEY_CURRENT_USER, kPolicies, kRestrictRun, value));
  if (status == ERROR_SUCCESS) status = readPrograms(session.registry(), kList, stored.programs);
  session.trace.dump("lRetVal&", status);
  stored.on = isOn(value);
  return status;
}

Status writeRestrictedPrograms(Session& session, const RestrictedPrograms& wanted) {
  const bool applies = wanted.on && !wanted.programs.empty();
  Status status = removeList(session, applies);
  if (status == ERROR_SUCCESS) {
    status = engine::dropValue(session, HKEY_CURRENT_USER, kPolicies, kRestrictRun);
  }
  if (!applies) return status;
  if (status == ERROR_SUCCESS) {
    status = engine::putValue(session, HKEY_CURRENT_USER, kPolicies, kRestrictRun, kOn);
  }
  for (std::size_t i = 0; status == ERROR_SUCCESS && i < wanted.programs.size(); ++i) {
    status = engine::putText(session, HKEY_CURRENT_USER, kList, std::to_string(i + 1),
                             wanted.programs[i]);
  }
  return status;
}

std::vector<std::string> formerPrograms(Session& session) {
  std::vector<std::string> programs;
  const auto kept = engine::TakenAway(session, HKEY_CURRENT_USER, kRestrictRun).items();
  if (kept.empty()) return programs;
  const std::string content = std::string(kKeptLists) + '\\' + kept.front().id + "\\Content";
  if (readPrograms(session.registry(), content, programs) != ERROR_SUCCESS) programs.clear();
  return programs;
}

}  // namespace korvex::dialogs
