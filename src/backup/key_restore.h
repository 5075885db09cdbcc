// Putting one saved key back exactly: afterwards its tree holds what the file says and no more.
#pragma once

#include <string>
#include <vector>

#include "backup/reg_difference.h"
#include "backup/registry_backer.h"
#include "backup/restore_offer.h"
#include "foundation/session.h"

namespace korvex::backup {

struct KeyRestore {
  platform::HKEY root = 0;
  std::string key;
  std::string file;               // Windows path; "" where there was no such key
  std::vector<RegChange> extras;  // without their data: to be deleted before the import
};

// Compares the key with its file, or with there being none, and adds what would change, or why it
// cannot be restored, to the item. True where there is something to do.
bool compareSavedKey(foundation::Session& session, KeyRestore& restore,
                     const std::string& nameForPeople, RestoreItem& item);
// Does it, as a part of the caller's change of the registry.
platform::Status restoreSavedKey(foundation::Session& session, RegistryBacker& backer,
                                 const KeyRestore& restore, std::string& message);

// The change as a restore tells it.
RestoreChange forPeople(const RegChange& change);
// Counts it, and keeps it where there is room.
void addChange(RestoreItem& item, RestoreChange change);

}  // namespace korvex::backup
