// Copying a key of the registry with everything beneath it.
#pragma once

#include <string>

#include "engine/tweak.h"
#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::engine {

// Values and subkeys are copied as they stand, type and bytes; what the target has besides stays.
// 2 where there is no such key. The first failure ends it: a caller copies within a change.
platform::Status copyTree(foundation::Session& session, Root root, const std::string& from,
                          Root toRoot, const std::string& to);

}  // namespace korvex::engine
