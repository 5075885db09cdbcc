// The state of the machine, for one tweak or many.
#include "engine/readers.h"

#include <array>
#include <cstddef>

#include "engine/defrag_entry.h"
#include "engine/help_file.h"
#include "engine/modes.h"
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

  bool isMissing() const { return status == platform::ERROR_FILE_NOT_FOUND; }
  bool is(std::int32_t number) const {
    if (status != platform::ERROR_SUCCESS || type != platform::REG_DWORD || size != 4) return false;
    std::uint32_t there = 0;
    for (int i = 3; i >= 0; --i) {
      there = there << 8 | static_cast<std::uint8_t>(data[static_cast<std::size_t>(i)]);
    }
    return there == static_cast<std::uint32_t>(number);
  }
  // Words are Windows' own, which it takes in any case; some programs store no last zero.
  bool is(std::string_view word, platform::RegType wanted) const {
    if (status != platform::ERROR_SUCCESS || type != wanted) return false;
    std::string_view there(data.data(), size);
    if (there.ends_with('\0')) there.remove_suffix(1);
    return sameName(there, word);
  }
};

// GRegTool's choice: a text that names a variable is stored as one to expand.
platform::RegType textType(std::string_view text) {
  const auto first = text.find('%');
  const bool names =
      first != std::string_view::npos && text.find('%', first + 2) != std::string_view::npos;
  return names ? platform::REG_EXPAND_SZ : platform::REG_SZ;
}

// Whether the value is what the variant would be written as.
bool holds(const ReadValue& value, const Variant& wanted) {
  if (wanted.isEmpty()) return value.isMissing();
  if (const std::string* word = wanted.string()) {
    return value.is(*word, textType(*word));
  }
  return wanted.number() && value.is(*wanted.number());
}

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
  const Mode& mode = kModes.at(static_cast<std::size_t>(tweak.mode));
  // A box that repeats what came before says nothing about the machine.
  if (mode.checked == Outcome::Current) return {};
  ReadValue value;
  value.status = session_.registry().RegQueryValueExA(open(tweak.root, tweak.key).key, tweak.value,
                                                      &value.type, value.data.data(), &value.size);
  if (mode.checked == Outcome::BoxValue && value.is(2)) return {Kind::Grey, {}};
  return fromBool(holds(value, decide(tweak, 1, {}).value));
}

TweakState readState(const Tweak& tweak, Session& session) {
  return StateReader(session).state(tweak);
}

std::string readText(const Tweak& tweak, Session& session) {
  bool bMissing = false;
  const Variant raw =
      foundation::P_ReadRegValue(session, tweak.root, tweak.key, tweak.value, bMissing, true);
  return foundation::variantText(bMissing || raw.isEmpty() ? variantOf(tweak.byDefault) : raw);
}

TweakState p_DetermineDefrag(const Tweak& tweak, Session& session) {
  return fromBool(holdsText(session, kRunOnceExKey, kTitleValue, kDefragTitle) ||
                  holdsText(session, tweak.key, tweak.value, *decide(tweak, 1, {}).value.string()));
}

}  // namespace korvex::engine
