// LogWorker: writes the trace to log files of the machine.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/trace.h"
#include "platform/machine.h"

namespace korvex::foundation {

class LogWorker {
 public:
  // The run log is cut to its newer half when it has grown beyond this.
  static constexpr std::uint64_t kRunLogLimit = 1 << 20;

  LogWorker(platform::Machine& machine, TraceText& trace) : machine_(machine), trace_(trace) {}

  // Writes the text, a line for each piece, to KORVEX.LOG in the temporary folder. True when it
  // was written; the status of a failure is in the trace.
  bool cP_WriteToLogFile(std::string_view sText, bool bOverwrite);

  // The program's own log: appends the trace of this run; makes the folder where it is missing.
  platform::Status appendRunLog(std::string_view sPath);
  platform::Status boundRunLog(std::string_view sPath, std::uint64_t limit = kRunLogLimit);

 private:
  std::string logPath() const;

  platform::Machine& machine_;
  TraceText& trace_;
};

// The lines that a log file gets for a text: up to its first empty piece, lone carriage returns
// left out, and an empty line at the end.
std::string logLines(std::string_view text);

}  // namespace korvex::foundation
