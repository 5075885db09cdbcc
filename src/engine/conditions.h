// Facts of a machine, beyond its Windows, without which a tweak does not exist there: the rows'
// .lacks. Each returns the reason for people, or "".
#pragma once

#include <string_view>

#include "engine/tweak.h"
#include "foundation/session.h"

namespace korvex::engine {

// The machine's Windows as a row's set tells it; every one where it was not detected.
Families familyOf(const foundation::Session& session);

// The browser's restrictions: Internet Explorer 4.72.3110.3 (4.01 SP2) or later.
std::string_view needsExplorer4SP2(const Tweak&, foundation::Session& session);
std::string_view needsExplorer4(const Tweak&, foundation::Session& session);
std::string_view needsExplorer5(const Tweak&, foundation::Session& session);
// A file system of the system drive; a machine that cannot tell has it.
std::string_view needsNtfs(const Tweak&, foundation::Session& session);
std::string_view needsFat(const Tweak&, foundation::Session& session);
// App Paths tells where Outlook is.
std::string_view needsOutlook(const Tweak&, foundation::Session& session);
// The logon dialog is Windows' own (msgina.dll).
std::string_view needsMsGina(const Tweak&, foundation::Session& session);

}  // namespace korvex::engine
