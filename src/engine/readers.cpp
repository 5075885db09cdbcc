// The state of the machine, for one tweak or many.
#include "engine/readers.h"

#include <array>
#include <cstddef>

#include "engine/defrag_entry.h"
#include "engine/help_file.h"
#include "engine/modes.h"
#include "engine/raw_value.h"
#include "engine/same_data.h"
#include "engine/same_name.h"
#include "foundation/reg_value.h"

namespace korvex::engine {

using foundation::Session;
using foundation::Variant;
using platform::Status;
using Act = Decision::Act;
using Kind = TweakState::Kind;

namespace {

// What a row writes is a number or a word: longer data is something else.
constexpr std::size_t kLongestData = 260;

// One value as it stands, in a buffer of its own.
struct ReadValue {
  Status status = platform::ERROR_SUCCESS;
  platform::RegType type = platform::REG_NONE;
  std::uint32_t size = kLongestData;
  std::array<char, kLongestData> data;

  // Whether the value is what the variant would be written as.
  bool holds(const Variant& wanted) const {
    if (wanted.isEmpty()) return status == platform::ERROR_FILE_NOT_FOUND;
    return status == platform::ERROR_SUCCESS &&
           engine::holds(type, std::string_view(data.data(), size), wanted);
  }
};

TweakState fromBool(bool on) { return {on ? Kind::On : Kind::Off, {}}; }

bool holdsText(Session& session, std::string_view key, std::string_view name,
               std::string_view word) {
  return sameName(session.regTool.GetRegStr(key, name, HKLM), word);
}

}  // namespace

StateReader::~StateReader() {
  for (const Opened& opened : opened_) {
    if (opened.status == platform::ERROR_SUCCESS) session_.registry().RegCloseKey(opened.key);
  }
}

const StateReader::Opened& StateReader::open(Root root, std::string_view path) {
  // From the end: neighbouring rows share their key.
  for (auto opened = opened_.rbegin(); opened != opened_.rend(); ++opened) {
    if (opened->root == root && opened->path == path) return *opened;
  }
  Opened opened{root, path, platform::ERROR_SUCCESS, 0};
  opened.status =
      session_.registry().RegOpenKeyExA(root, path, platform::KEY_QUERY_VALUE, opened.key);
  if (opened.status != platform::ERROR_SUCCESS && opened.status != platform::ERROR_FILE_NOT_FOUND) {
    session_.trace.dump("lRetVal&", opened.status);
  }
  return opened_.emplace_back(opened);
}

TweakState StateReader::state(const Tweak& tweak) {
  const TweakState available = availability(tweak, session_);
  if (available.kind == Kind::Unavailable) return available;
  if (tweak.adapt != nullptr) return stateOfRow(onMachine(tweak, session_));
  return stateOfRow(tweak);
}

TweakState StateReader::stateOfRow(const Tweak& tweak) {
  if (tweak.reader != nullptr) return tweak.reader(tweak, session_);
  const Decision checked = decide(tweak, 1, {});
  if (checked.act == Act::SwapHelpFile) {
    for (const HelpFilePaths& paths : helpFiles(session_)) {
      if (session_.files().exists(paths.kept)) return fromBool(true);
    }
    return {};
  }
  const Status key = open(tweak.root, tweak.key).status;
  // The mode that deletes the key has nothing else to show.
  if (checked.act == Act::Remember) return fromBool(key == platform::ERROR_SUCCESS);
  return key == platform::ERROR_SUCCESS ? stateOfValue(tweak) : TweakState{};
}

TweakState StateReader::stateOfValue(const Tweak& tweak) {
  const Mode& mode = modeOf(tweak);
  // A box that repeats what came before says nothing about the machine.
  if (mode.checked == Outcome::Current) return {};
  ReadValue value;
  value.status = session_.registry().RegQueryValueExA(open(tweak.root, tweak.key).key, tweak.value,
                                                      &value.type, value.data.data(), &value.size);
  if (mode.checked == Outcome::BoxValue && value.holds(2)) return {Kind::Grey, {}};
  return fromBool(value.holds(decide(tweak, 1, {}).value));
}

TweakState readState(const Tweak& tweak, Session& session) {
  return StateReader(session).state(tweak);
}

std::string defaultText(const Tweak& tweak) {
  return tweak.byDefault == kDelete ? std::string(tweak.orWord)
                                    : foundation::variantText(variantOf(tweak.byDefault));
}

std::string readText(const Tweak& row, Session& session) {
  const Tweak tweak = onMachine(row, session);
  if (tweak.textReader != nullptr) return tweak.textReader(tweak, session);
  bool bMissing = false;
  const Variant raw =
      foundation::P_ReadRegValue(session, tweak.root, tweak.key, tweak.value, bMissing, true);
  if (bMissing || raw.isEmpty()) return defaultText(tweak);
  // A DWORD has no sign.
  const auto number = raw.number();
  return number && tweak.digitsOnly ? std::to_string(static_cast<std::uint32_t>(*number))
                                    : foundation::variantText(raw);
}

TweakState p_DetermineDefrag(const Tweak& tweak, Session& session) {
  return fromBool(holdsText(session, kRunOnceExKey, kTitleValue, kDefragTitle) ||
                  holdsText(session, tweak.key, tweak.value, *decide(tweak, 1, {}).value.string()));
}

TweakState p_DetermineDrWatsonAppendOverwrite(const Tweak& tweak, Session& session) {
  RawValue append;
  const Status status =
      readRawValue(session.registry(), tweak.root, tweak.key, tweak.value, append);
  // What could not be read is not told to be on.
  if (missingIsFine(status) != platform::ERROR_SUCCESS) session.trace.dump("lRetVal&", status);
  return fromBool(status == platform::ERROR_FILE_NOT_FOUND || append.number(0) != 0);
}

TweakState p_DetermineLogonCredentials(const Tweak& tweak, Session& session) {
  const std::string name = session.regTool.GetRegStr(tweak.key, tweak.value, tweak.root);
  return fromBool(name.find(" on ") != std::string::npos);
}

}  // namespace korvex::engine
