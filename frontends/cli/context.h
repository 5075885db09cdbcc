// What every command is handed: where to read and write, the options before the command's name,
// and the machine.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "cli/failure.h"
#include "platform/machine.h"

namespace korvex::cli {

struct Streams {
  std::istream& in;
  std::ostream& out;  // data
  std::ostream& err;  // messages for people
};

class Context {
 public:
  explicit Context(const Streams& streams) : in(streams.in), out(streams.out), err(streams.err) {}

  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  bool json = false;
  bool verbose = false;
  std::string machineFolder;  // --machine or KORVEX_MACHINE; "" is the default machine
  std::string user;           // --user: whose settings; "" is the only user or the last one

  int passwordDescriptor = -1;  // --password-fd; -1: asked on the terminal

  // Throws Failure (NoMachine, Busy) with what to do, and Failed where Korvex asks for a password
  // on that machine and does not get it.
  std::unique_ptr<platform::Machine> openMachine(platform::OpenMode mode) const;
  // The same without being asked: for what tells nothing of the machine's settings.
  std::unique_ptr<platform::Machine> openUnasked(platform::OpenMode mode) const;
  // One line for people on the error stream.
  void note(std::string_view text) const;
};

// A Failure for a status of the machine: read-only and busy machines have their own exit code.
Failure machineFailure(platform::Status status, const std::string& message);

using Run = std::function<ExitCode(Context&)>;

}  // namespace korvex::cli
