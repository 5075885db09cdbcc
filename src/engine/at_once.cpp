// Bracketing, writing and telling.
#include "engine/at_once.h"

#include <fmt/format.h>

#include "engine/apply.h"
#include "foundation/reg_value.h"

namespace korvex::engine {

using foundation::Session;
using platform::Status;

bool changeAtOnce(Session& session, std::string_view what, const std::function<Status()>& steps) {
  Status status = platform::ERROR_SUCCESS;
  {
    platform::RegistryChange change(session.registry());
    status = change.status();
    if (status == platform::ERROR_SUCCESS) status = steps();
    if (status == platform::ERROR_SUCCESS) status = change.commit();
  }
  // Nobody is asked or told while a change is open: nobody else could write meanwhile.
  return finishAtOnce(session, what, status);
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

Status dropValue(Session& session, platform::HKEY root, std::string_view key,
                 std::string_view name) {
  const Status status = session.regTool.DeleteRegValue(root, key, name);
  return status == platform::ERROR_FILE_NOT_FOUND ? platform::ERROR_SUCCESS : status;
}

void tell(Session& session, std::string_view text, int icon) {
  session.prompts().messageBox(text, platform::kButtonsOk | icon, foundation::kAppTitle);
}

bool askYesNo(Session& session, std::string_view question, int icon) {
  return session.prompts().messageBox(question, platform::kButtonsYesNo | icon,
                                      foundation::kAppTitle) == platform::Answer::Yes;
}

}  // namespace korvex::engine
