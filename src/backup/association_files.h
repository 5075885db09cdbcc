// The list of keys in a folder of saved file types that a restore has made.
//
// "keys.dat" lists the keys that it saved, under "[Kept]", and those that were not there then,
// under "[Absent]", each with its extension: "txtfile=.txt".
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/session.h"

namespace korvex::backup {

constexpr std::string_view kKeysFile = "keys.dat";

// A key, and the extension with which it is restored.
using ListedKey = std::pair<std::string, std::string>;

// With its line end.
std::string keysLine(const ListedKey& key);
// Of a section; none where the folder has no such file.
std::vector<ListedKey> listedKeys(foundation::Session& session, const std::string& folder,
                                  std::string_view section);

}  // namespace korvex::backup
