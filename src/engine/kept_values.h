// Kept values: what stood in a value before a tweak first replaced it, so that it can come back.
//
// They stand in the program's own area, under SOFTWARE\Korvex\Previous and the tweak's property;
// a value of HKEY_CURRENT_USER below the user's name, for another user had something else there.
// That a value was not there is a record of its own.
#pragma once

#include <string>
#include <string_view>

#include "engine/tweak.h"
#include "foundation/session.h"
#include "foundation/variant.h"
#include "platform/status.h"

namespace korvex::engine {

// Where the tweak's values of that root are kept.
std::string keptKey(const foundation::Session& session, const Tweak& tweak, Root root);

// Does nothing where something is kept already, or where the value is the tweak's own onValue
// (null: it never is).
platform::Status keepValue(foundation::Session& session, const Tweak& tweak, Root root,
                           std::string_view key, std::string_view name,
                           const foundation::Variant* onValue);

// Puts the value back with the type and the bytes that it had, and forgets it.
platform::Status putBackValue(foundation::Session& session, const Tweak& tweak, Root root,
                              std::string_view key, std::string_view name, bool& wasKept);

// Whether something is kept. Reads only.
bool isKept(foundation::Session& session, const Tweak& tweak, Root root, std::string_view key,
            std::string_view name);

// The same for a whole key. Its values and subkeys are copied as they stand; keeping again replaces
// what was kept. A key that is not there is not kept.
platform::Status keepTree(foundation::Session& session, const Tweak& tweak, Root root,
                          std::string_view key);
// Copies what was kept over the key and forgets it.
platform::Status putBackTree(foundation::Session& session, const Tweak& tweak, Root root,
                             std::string_view key, bool& wasKept);
bool isTreeKept(foundation::Session& session, const Tweak& tweak, Root root, std::string_view key);

}  // namespace korvex::engine
