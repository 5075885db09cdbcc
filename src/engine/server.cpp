// What a server is to the others of its network: how many users it takes, and its part in the
// elections of a browser. Writers and readers.
#include <array>
#include <string>

#include "engine/numeral_field.h"
#include "engine/raw_value.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"
#include "engine/same_name.h"

namespace korvex::engine {

using foundation::Session;
using foundation::Variant;

namespace {

constexpr std::string_view kTooManyUsers =
    "The max number of simultaneously logged on users to\r\n"
    "your server can be 4294967295 at most.\r\n"
    "Leave the field blank to set the default value.";

struct Election {
  std::string_view word;
  std::string_view data;
};
constexpr std::array kElections{Election{"Yes", "Yes"}, Election{"No", "No"},
                                Election{"False", "No"}};
constexpr std::string_view kAuto = "Auto";

// Anything that Windows does not know is what it does by itself.
std::string_view electionFor(std::string_view word) {
  for (const Election& election : kElections) {
    if (sameName(word, election.word)) return election.data;
  }
  return kAuto;
}

}  // namespace

bool RegWorker::P_ServerMaxUsers(const Tweak& tweak) {
  session_.trace.enter("[P_ServerMaxUsers]");
  const std::string text = fieldText(tweak);
  Variant users;
  if (!text.empty() && !sameName(text, tweak.orWord)) {
    const auto number = numberIn(text);
    if (!number) {
      notify(std::string(takesNumeral(text) ? kTooManyUsers : tweak.refusal),
             platform::kIconInformation);
      return keep(platform::ERROR_INVALID_DATA);
    }
    users = static_cast<std::int32_t>(*number);
  }
  if (!p_MakeTheRegChange(tweak, users)) return false;
  session_.g_bRebootNeeded = tweak.reboot;
  return true;
}

bool RegWorker::P_BrowserElection(const Tweak& tweak) {
  session_.trace.enter("[P_BrowserElection]");
  if (!p_MakeTheRegChange(tweak, std::string(electionFor(fieldText(tweak))))) return false;
  session_.g_bRebootNeeded = tweak.reboot;
  return true;
}

// The server reads a DWORD; to it any other value is none.
std::string p_DetermineServerMaxUsers(const Tweak& tweak, Session& session) {
  RawValue users;
  session.trace.dump("lRetVal&",
                     readRawValue(session.registry(), tweak.root, tweak.key, tweak.value, users));
  if (users.type != platform::REG_DWORD || users.bytes.size() != sizeof(std::uint32_t)) {
    return std::string(tweak.orWord);
  }
  return std::to_string(static_cast<std::uint32_t>(users.number(0)));
}

std::string p_DetermineBrowserElection(const Tweak& tweak, Session& session) {
  return std::string(electionFor(session.regTool.GetRegStr(tweak.key, tweak.value, tweak.root)));
}

}  // namespace korvex::engine
