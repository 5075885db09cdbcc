// The common error handler, and the trap that routes errors to it.
#pragma once

#include <exception>
#include <string_view>
#include <utility>

#include "foundation/runtime_error.h"
#include "foundation/session.h"

namespace korvex::foundation {

enum class AfterError { GoOn, EndProgram };
enum class Fatal { No, Yes };

// Traces the error and tells the person. A fatal error ends the program; otherwise the person
// decides. Ending means Session::requestEnd: the caller returns, and the program closes.
AfterError ErrorHandler(Session& session, std::string_view sRoutine, const RuntimeError& error,
                        Fatal bFatal, std::string_view extra = {});

// Any exception as the run-time error that it is to the product. Called inside a catch block.
RuntimeError currentError(std::string_view sRoutine);

// Runs fn in an error trap: whatever it throws goes to the error handler under the routine's name.
// GoOn means that fn ended well, or that the person wants to go on after it.
template <typename Function>
AfterError guarded(Session& session, std::string_view sRoutine, Function&& fn,
                   Fatal bFatal = Fatal::No) {
  try {
    std::forward<Function>(fn)();
    return AfterError::GoOn;
  } catch (...) {
    return ErrorHandler(session, sRoutine, currentError(sRoutine), bFatal);
  }
}

}  // namespace korvex::foundation
