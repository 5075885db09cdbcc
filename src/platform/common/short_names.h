// 8.3 names for long ones.
//
// A short name that was handed out may live on in WIN.INI or in the registry, so it must not come
// to mean another file when the folder changes. Windows numbers colliding names in the order of
// their creation and records that on the disk; here reading a machine writes nothing on it, and the
// order of creation does not survive a copy of its folder. So the short name follows from the names
// alone: of several long names with the same first six characters and extension the first in
// alphabetical order (without regard to case) has "PROGRA~1", as every machine expects of "Program
// Files", and each other one carries a hash of its whole name ("PR3F0A~1"), the form that Windows
// itself uses from the fifth on. A name that comes or goes later changes no hashed name, and "~1"
// only where it sorts first.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvex::platform {

// True for a name that is its own short name, in any case: ASCII, at most eight characters, a dot
// and three more, none of them a blank or one of + , ; = [ ].
bool isShortName(std::string_view name);

// The short names of all the names of one folder, in the same order. The result does not depend on
// the order of the names.
std::vector<std::string> shortNames(const std::vector<std::string>& names);

}  // namespace korvex::platform
