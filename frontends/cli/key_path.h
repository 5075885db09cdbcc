// Registry keys as people type them: "HKCU\Software\..." or with the root's name in full.
#pragma once

#include <string>
#include <string_view>

#include "platform/registry.h"

namespace korvex::cli {

struct TypedKey {
  platform::HKEY root = 0;
  std::string path;  // below the root; "" is the root itself

  std::string full() const;  // "HKEY_CURRENT_USER\Software"
};

// The root in any case; one backslash at the end is dropped. Throws Failure (Usage) for what is no
// key.
TypedKey parseKey(std::string_view text);

}  // namespace korvex::cli
