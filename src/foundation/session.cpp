// The life of a session.
#include "foundation/session.h"

namespace korvex::foundation {

std::string_view osName(Os os) {
  switch (os) {
    case Os::Unknown:
      return "";
    case Os::Windows95:
      return "Windows 95";
    case Os::Windows98:
      return "Windows 98";
    case Os::WindowsMe:
      return "Windows Millennium";
    case Os::WindowsNT4:
      return "Windows NT4";
    case Os::Windows2000:
      return "Windows 2000";
  }
  return "";
}

Session::Session(platform::Machine& machine, platform::Prompts& prompts)
    : regTool(machine.registry(), machine.systemInfo()),
      logWorker(machine, trace),
      machine_(machine),
      prompts_(prompts) {}

void Session::requestEnd() {
  if (endRequested_) return;
  endRequested_ = true;
  if (onEndRequested) onEndRequested();
}

}  // namespace korvex::foundation
