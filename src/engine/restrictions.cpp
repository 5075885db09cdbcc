// Restrictions of more than one value, each with its reader.
#include <fmt/format.h>

#include <array>
#include <string>

#include "engine/catalogue/rows.h"
#include "engine/kept_values.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"
#include "engine/same_data.h"
#include "engine/same_name.h"

namespace korvex::engine {

using foundation::Session;
using foundation::Variant;

namespace {

constexpr std::string_view kServer =
    "System\\CurrentControlSet\\Services\\LanmanServer\\Parameters";
constexpr std::string_view kForServers = "AutoShareServer";
constexpr std::string_view kForWorkstations = "AutoShareWks";
constexpr std::string_view kAdvanced =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Advanced";
constexpr std::string_view kStartMenuLogoff = "StartMenuLogoff";
constexpr std::string_view kMapNetDrvBtn = "MapNetDrvBtn";
constexpr std::string_view kRegistryServer = "Registry Server";
constexpr std::int16_t kOn = 1;
constexpr std::int16_t kOff = 0;

constexpr const char* kRestrictedMessage =
    "Registry restrictions are now in place. By default no user or service has remote access to "
    "the\r\n"
    "registry.\r\n"
    "\r\n"
    "To add remote registry rights open regedt32.exe. Browse to the registry key:\r\n"
    "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\SecurePipeServers\\winreg\r\n"
    "Highlight the 'winreg' key. Select permissions from the Registry Editor. Add any necessary\r\n"
    "user or service rights.";

bool isThere(Session& session, Root root, std::string_view key, std::string_view name,
             const Variant& wanted) {
  RawValue value;
  return readRawValue(session.registry(), root, key, name, value) == platform::ERROR_SUCCESS &&
         holds(value, wanted);
}

TweakState fromBool(bool on) { return {on ? TweakState::Kind::On : TweakState::Kind::Off, {}}; }

// Windows sets the key up itself on 2000 and on the servers of NT 4.
bool isWindowsOwnDefault(const Session& session) {
  return session.g_eOS == foundation::Os::Windows2000 || session.g_bServer;
}

bool isRestricted(Session& session, const Tweak& tweak) {
  RawValue value;
  return readRawValue(session.registry(), tweak.root, tweak.key, tweak.value, value) ==
             platform::ERROR_SUCCESS &&
         sameName(value.text(), kRegistryServer);
}

}  // namespace

bool RegWorker::P_rwNoAdminShares(const Tweak& tweak) {
  session_.trace.enter("[P_rwNoAdminShares]");
  const bool on = wantsOn(tweak);
  for (const std::string_view value : {kForServers, kForWorkstations}) {
    if (!(on ? write(HKLM, kServer, value, kOff) : remove(HKLM, kServer, value))) return false;
  }
  return finishSpecial(tweak);
}

// Only the one of the machine's own kind has a say.
TweakState p_DetermineNoAdminShares(const Tweak&, Session& session) {
  return fromBool(
      isThere(session, HKLM, kServer, session.g_bServer ? kForServers : kForWorkstations, kOff));
}

// The other value says nothing about who set it: it is the policy that tells.
bool RegWorker::P_rwNoLogOff(const Tweak& tweak) {
  session_.trace.enter("[P_rwNoLogOff]");
  RawValue policy;
  if (!read(tweak.root, tweak.key, tweak.value, policy)) return false;
  const bool wasOn = holds(policy, kOn);
  if (wantsOn(tweak)) {
    return (wasOn ||
            keep(keepValue(session_, tweak, HKCU, kAdvanced, kStartMenuLogoff, nullptr))) &&
           write(tweak.root, tweak.key, tweak.value, kOn) &&
           write(HKCU, kAdvanced, kStartMenuLogoff, kOff) && finishSpecial(tweak);
  }
  bool wasKept = false;
  return keep(putBackValue(session_, tweak, HKCU, kAdvanced, kStartMenuLogoff, wasKept)) &&
         (wasKept || !wasOn || remove(HKCU, kAdvanced, kStartMenuLogoff)) &&
         remove(tweak.root, tweak.key, tweak.value) && finishSpecial(tweak);
}

TweakState p_DetermineNoLogOff(const Tweak& tweak, Session& session) {
  return fromBool(isThere(session, tweak.root, tweak.key, tweak.value, kOn));
}

// The policy takes the commands away, the other value the buttons of Explorer's toolbar.
bool RegWorker::P_rwNetworkDrive(const Tweak& tweak) {
  session_.trace.enter("[P_rwNetworkDrive]");
  if (wantsOn(tweak)) {
    return write(tweak.root, tweak.key, tweak.value, kOn) &&
           keepPrevious(tweak, HKCU, kAdvanced, kMapNetDrvBtn, kOff) &&
           write(HKCU, kAdvanced, kMapNetDrvBtn, kOff) && finishSpecial(tweak);
  }
  bool wasKept = false;
  return write(tweak.root, tweak.key, tweak.value, kOff) &&
         keep(putBackValue(session_, tweak, HKCU, kAdvanced, kMapNetDrvBtn, wasKept)) &&
         finishSpecial(tweak);
}

TweakState p_DetermineNetworkDrive(const Tweak& tweak, Session& session) {
  return p_DetermineNoLogOff(tweak, session);
}

bool RegWorker::P_rwNoDrives(const Tweak& tweak) {
  session_.trace.enter("[P_rwNoDrives]");
  return remove(tweak.root, tweak.key, tweak.value) && finishSpecial(tweak);
}

// The key alone closes the registry to others; what stands below it are the exceptions.
bool RegWorker::P_rwRestrictRegAccess(const Tweak& tweak) {
  session_.trace.enter("[P_rwRestrictRegAccess]");
  const bool on = wantsOn(tweak, isWindowsOwnDefault(session_));
  RawValue description;
  if (!read(tweak.root, tweak.key, tweak.value, description)) return false;
  const bool isOn = sameName(description.text(), kRegistryServer);
  if (session_.g_bDefaulting && on == isOn) return finishSpecial(tweak);
  if (!on) {
    return keep(keepTree(session_, tweak, tweak.root, tweak.key)) &&
           removeTree(tweak.root, tweak.key) && finishSpecial(tweak);
  }
  bool wasKept = false;
  if (!keep(putBackTree(session_, tweak, tweak.root, tweak.key, wasKept)) ||
      !write(tweak.root, tweak.key, tweak.value, kRegistryServer)) {
    return false;
  }
  if (!session_.g_bDefaulting) notify(kRestrictedMessage, platform::kIconInformation);
  return finishSpecial(tweak);
}

TweakState p_DetermineRestrictRegistry(const Tweak& tweak, Session& session) {
  return fromBool(isRestricted(session, tweak));
}

}  // namespace korvex::engine
