// What the person is told about an error, and what they may decide.
#include "foundation/error_handler.h"

#include <fmt/format.h>

#include <new>

namespace korvex::foundation {

using namespace platform;

AfterError ErrorHandler(Session& session, std::string_view sRoutine, const RuntimeError& error,
                        Fatal bFatal, std::string_view extra) {
  const std::string what = fmt::format("{}: {}", error.number(), error.description());
  session.trace.add(fmt::format("[ErrorHandler={}]{}", sRoutine, what));
  session.trace.add(extra);
  if (bFatal == Fatal::Yes) {
    session.prompts().messageBox(
        fmt::format("{} An error occurred processing {}.\r\n\r\nThis is a non-recoverable error.",
                    what, sRoutine),
        kIconCritical | kButtonsOk, kAppTitle);
  } else {
    const Answer answer = session.prompts().messageBox(
        fmt::format("{} An error occurred processing:  {}\r\n\r\nContinue?", what, sRoutine),
        kIconCritical | kButtonsYesNo, kAppTitle);
    if (answer == Answer::Yes) return AfterError::GoOn;
  }
  session.requestEnd();
  return AfterError::EndProgram;
}

RuntimeError currentError(std::string_view sRoutine) {
  try {
    throw;
  } catch (const RuntimeError& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return {kErrorOutOfMemory, "Out of memory", std::string(sRoutine)};
  } catch (const std::exception& error) {
    return {kErrorInternal, std::string("Internal error: ") + error.what(), std::string(sRoutine)};
  } catch (...) {
    return {kErrorInternal, "Internal error", std::string(sRoutine)};
  }
}

}  // namespace korvex::foundation
