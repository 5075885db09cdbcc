// Taking a typed key apart.
#include "cli/key_path.h"

#include "cli/failure.h"
#include "cli/value_text.h"
#include "platform/text/reg_names.h"

namespace korvex::cli {
namespace {

Failure noKey(std::string_view text, const std::string& why) {
  return {ExitCode::Usage, "bad-key", "'" + printable(text) + "' is no registry key: " + why};
}

}  // namespace

TypedKey parseKey(std::string_view text) {
  const auto parsed = platform::parseKeyPath(text, platform::ShortRoots::Yes);
  if (!parsed) {
    throw noKey(text,
                "it must begin with HKCR, HKCU, HKLM, HKU or HKCC, or with such a name in full "
                "(HKEY_CURRENT_USER\\Software\\...). In a shell put it in single quotes.");
  }
  const std::string_view path = parsed->path;
  if (path.starts_with('\\') || path.ends_with('\\') ||
      path.find("\\\\") != std::string_view::npos) {
    throw noKey(text, "it has an empty part (two backslashes in a row).");
  }
  return {parsed->root, std::string(path)};
}

std::string TypedKey::full() const { return platform::fullKeyName(root, path); }

}  // namespace korvex::cli
