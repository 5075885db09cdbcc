// Bringing a path into one form.
#include "foundation/fix_path.h"

#include "platform/trimmed.h"

namespace korvex::foundation {

std::string P_FixPathGen(TraceText& trace, std::string_view sPath) {
  // Of a text of several pieces the trace takes the first, or it would hold itself.
  trace.dump("[P_FixPathGen]: sPath$", sPath.substr(0, sPath.find('\0')));
  if (sPath.find('\0') != std::string_view::npos) return std::string(sPath);
  std::string path;
  for (const char c : platform::trimmed(sPath, " \"")) {
    const char next = c == '/' ? '\\' : c;
    const bool doubled = next == '\\' && path.ends_with('\\') && path != "\\";
    if (!doubled) path += next;
  }
  return path;
}

}  // namespace korvex::foundation
