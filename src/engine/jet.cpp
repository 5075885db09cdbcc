// Which Jet, which engine, which key.
#include "engine/jet.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "engine/catalogue/rows.h"
#include "engine/office.h"
#include "engine/raw_value.h"
#include "engine/same_name.h"

namespace korvex::engine {

using foundation::Session;

namespace {

constexpr std::string_view kJet = "Software\\Microsoft\\Jet\\";
constexpr std::array<std::string_view, 3> kVersions{"4.0", "3.5", "3.0"};
// What can be set. The first four are engines of their own, the newest first.
constexpr std::array<std::string_view, 8> kEngines{"JET 4.0", "JET 3.5", "JET 3.X", "JET 2.X",
                                                   "ODBC",    "EXCEL",   "TEXT",    "XBASE"};
constexpr std::size_t kOwnEngines = 4;

// A failure looks like something that is not there, and is kept.
bool isThere(Session& session, platform::Status status) {
  if (missingIsFine(status) != platform::ERROR_SUCCESS) {
    session.trace.dump("lRetVal&", status);
    if (session.jet.unreadable == 0) session.jet.unreadable = status;
  }
  return status == platform::ERROR_SUCCESS;
}

bool hasKey(Session& session, const std::string& path) {
  const platform::OpenKey key(session.registry(), HKLM, path, platform::KEY_QUERY_VALUE);
  return isThere(session, key.status());
}

// The name as the list has it; "" where it is none of them.
std::string_view known(std::string_view engine) {
  const auto found = std::ranges::find_if(
      kEngines, [engine](std::string_view name) { return sameName(name, engine); });
  return found == kEngines.end() ? std::string_view{} : *found;
}

std::string setting(Session& session, std::string_view name) {
  RawValue value;
  isThere(session, readRawValue(session.registry(), HKLM, kConfigurationKey, name, value));
  return value.text();
}

std::string accessVersion(const Session& session) {
  return session.g_iOfficeVer == 0 ? "" : fmt::format("{}.0\\", session.g_iOfficeVer);
}

std::string_view lastPart(std::string_view key) { return key.substr(key.rfind('\\') + 1); }

// Whether this Jet has it, without the list of all.
bool hasEngine(Session& session, std::string_view engine) {
  const std::string version = jetVersionPath(session);
  return !version.empty() && hasKey(session, fmt::format("{}{}Engines\\{}", kJet, version, engine));
}

}  // namespace

std::string jetVersionPath(Session& session) {
  const std::string wanted = setting(session, "JetVersion");
  if (std::ranges::find(kVersions, std::string_view(wanted).substr(0, 3)) != kVersions.end() &&
      hasKey(session, fmt::format("{}{}", kJet, wanted.substr(0, 3)))) {
    return wanted.substr(0, 3) + '\\';
  }
  for (const std::string_view version : kVersions) {
    if (hasKey(session, fmt::format("{}{}", kJet, version))) return fmt::format("{}\\", version);
  }
  return {};
}

std::vector<std::string> jetEngines(Session& session) {
  const std::string version = jetVersionPath(session);
  if (version.empty()) return {};
  std::vector<std::string> there;
  const platform::Status listed =
      listSubKeys(session.registry(), HKLM, fmt::format("{}{}Engines", kJet, version),
                  platform::KEY_READ, there);
  if (listed != platform::ERROR_SUCCESS) session.trace.dump("lRetVal&", listed);
  std::vector<std::string> result;
  for (const std::string& name : there) {
    if (!known(name).empty()) result.emplace_back(known(name));
  }
  return result;
}

bool isJetEngine(std::string_view engine) {
  return std::ranges::any_of(kEngines.begin(), kEngines.begin() + kOwnEngines,
                             [engine](std::string_view name) { return sameName(name, engine); });
}

bool jetMayBeChanged(Session& session) {
  RawValue modify;
  const platform::Status status =
      readRawValue(session.registry(), HKLM, kConfigurationKey, "JetModify", modify);
  return status != platform::ERROR_SUCCESS || modify.number(1) != 0;
}

bool jetIsGlobal(Session& session) {
  if (session.jet.global) return *session.jet.global;
  RawValue global;
  isThere(session, readRawValue(session.registry(), HKLM, kConfigurationKey, "JetGlobal", global));
  return global.number(1) != 0;
}

std::string jetSelected(Session& session) {
  for (const std::string& name : {session.jet.engine, setting(session, "JetSelect")}) {
    if (!known(name).empty() && hasEngine(session, name)) return std::string(known(name));
  }
  const std::vector<std::string> engines = jetEngines(session);
  return engines.empty() ? "" : engines.front();
}

std::string jetEngine(Session& session) {
  for (const std::string& name : {session.jet.engine, setting(session, "JetSelect")}) {
    if (isJetEngine(name) && hasEngine(session, name)) return std::string(known(name));
  }
  for (std::size_t i = 0; i < kOwnEngines; ++i) {
    if (hasEngine(session, kEngines[i])) return std::string(kEngines[i]);
  }
  return {};
}

std::string_view jetKey(Session& session, std::string_view engine) {
  const std::string start =
      jetIsGlobal(session)
          ? std::string(kJet)
          : fmt::format("Software\\Microsoft\\Access\\{}Jet\\", accessVersion(session));
  return session.lasting(fmt::format("{}{}Engines\\{}", start, jetVersionPath(session), engine));
}

void keyOfFormat(Tweak& row, Session& session) {
  session.jet.unreadable = 0;
  row.key = jetKey(session, lastPart(row.key));
  row.unreadable = session.jet.unreadable;
}

void keyOfEngine(Tweak& row, Session& session) {
  session.jet.unreadable = 0;
  const std::string engine = jetEngine(session);
  if (!engine.empty()) row.key = jetKey(session, engine);
  row.unreadable = session.jet.unreadable;
}

std::string_view needsFormat(const Tweak& row, Session& session) {
  if (session.g_iOfficeVer == 0) return kOnlyOffice97And2000;
  if (!hasEngine(session, lastPart(row.key))) {
    return "The Jet engine of this machine has no such format.";
  }
  return jetMayBeChanged(session) ? "" : kJetIsKept;
}

std::string_view needsEngine(const Tweak&, Session& session) {
  if (session.g_iOfficeVer == 0) return kOnlyOffice97And2000;
  if (jetEngine(session).empty()) return "There is no Jet database engine on this machine.";
  return jetMayBeChanged(session) ? "" : kJetIsKept;
}

}  // namespace korvex::engine
