// Bracketing, writing and telling.
#include "engine/at_once.h"

#include <fmt/format.h>

#include "engine/apply.h"
#include "engine/raw_value.h"
#include "foundation/reg_value.h"

namespace korvex::engine {

using foundation::Session;
using platform::Status;

namespace {

// Nobody is asked or told while the change is open: nobody else could write meanwhile.
Status change(Session& session, const std::function<Status()>& steps) {
  platform::RegistryChange bracket(session.registry());
  Status status = bracket.status();
  if (status == platform::ERROR_SUCCESS) status = steps();
  return status == platform::ERROR_SUCCESS ? bracket.commit() : status;
}

}  // namespace

bool changeAtOnce(Session& session, std::string_view what, const std::function<Status()>& steps) {
  return finishAtOnce(session, what, change(session, steps));
}

bool changeOrTell(Session& session, std::string_view message, int icon,
                  const std::function<Status()>& steps) {
  const Status status = change(session, steps);
  session.trace.dump("lRetVal&", status);
  if (status == platform::ERROR_SUCCESS) return finishApply(session, {});
  tell(session, message, icon);
  return false;
}

bool finishAtOnce(Session& session, std::string_view what, Status status) {
  session.trace.dump("lRetVal&", status);
  if (status == platform::ERROR_SUCCESS) return finishApply(session, {});
  tell(session,
       fmt::format("{} could not be changed: {}.\r\nNothing was changed. Put the cause right and "
                   "try again.",
                   what, platform::describeStatus(status)),
       platform::kIconExclamation);
  return false;
}

Status putValue(Session& session, platform::HKEY root, std::string_view key, std::string_view name,
                const foundation::Variant& value) {
  Status status = platform::ERROR_SUCCESS;
  foundation::P_WriteRegValue(session, root, key, name, value, platform::KEY_ALL_ACCESS, true,
                              &status);
  return status;
}

Status putText(Session& session, platform::HKEY root, std::string_view key, std::string_view name,
               const std::string& text) {
  platform::Registry& registry = session.registry();
  platform::HKEY opened = 0;
  std::uint32_t disposition = 0;
  Status status =
      registry.RegCreateKeyExA(root, key, platform::KEY_ALL_ACCESS, opened, disposition);
  if (status == platform::ERROR_SUCCESS) {
    status = registry.RegSetValueExA(opened, name, platform::REG_SZ, text.c_str(),
                                     static_cast<std::uint32_t>(text.size() + 1));
    registry.RegCloseKey(opened);
  }
  session.trace.dump("[putText]: sValueName$", name);
  return status;
}

Status putRaw(Session& session, platform::HKEY root, std::string_view key, std::string_view name,
              const RawValue& value) {
  platform::HKEY opened = 0;
  bool existed = false;
  Status status =
      session.regTool.CreateRegNode(root, key, opened, existed, platform::KEY_ALL_ACCESS);
  if (status != platform::ERROR_SUCCESS) return status;
  status = session.registry().RegSetValueExA(opened, name, value.type, value.bytes.data(),
                                             static_cast<std::uint32_t>(value.bytes.size()));
  session.registry().RegCloseKey(opened);
  return status;
}

Status dropValue(Session& session, platform::HKEY root, std::string_view key,
                 std::string_view name) {
  const Status status = session.regTool.DeleteRegValue(root, key, name);
  return status == platform::ERROR_FILE_NOT_FOUND ? platform::ERROR_SUCCESS : status;
}

Status storedText(Session& session, platform::HKEY root, std::string_view key,
                  std::string_view name, std::string& text) {
  RawValue value;
  const Status status = readRawValue(session.registry(), root, key, name, value);
  text = value.text();
  return missingIsFine(status);
}

void tell(Session& session, std::string_view text, int icon) {
  session.prompts().messageBox(text, platform::kButtonsOk | icon, foundation::kAppTitle);
}

bool askYesNo(Session& session, std::string_view question, int icon) {
  return session.prompts().messageBox(question, platform::kButtonsYesNo | icon,
                                      foundation::kAppTitle) == platform::Answer::Yes;
}

}  // namespace korvex::engine
