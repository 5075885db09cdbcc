// How a command fails: an exit code that scripts can rely on, and a sentence that says what to do.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace korvex::cli {

enum class ExitCode {
  Done = 0,
  Differences = 1,  // done, but not all of it: refused lines of an import, texts left out
  Usage = 2,        // the words of the command were wrong; nothing was touched
  NoMachine = 3,    // no machine there, or one that cannot be opened
  Busy = 4,         // another program holds the machine, or it is read-only
  Failed = 5,       // it did not work, and nothing was changed
};

class Failure : public std::runtime_error {
 public:
  // kind: a word for scripts, "unknown-tweak"; it stays the same from version to version.
  Failure(ExitCode code, std::string kind, const std::string& message)
      : std::runtime_error(message), code_(code), kind_(std::move(kind)) {}

  ExitCode code() const { return code_; }
  const std::string& kind() const { return kind_; }

 private:
  ExitCode code_;
  std::string kind_;
};

}  // namespace korvex::cli
