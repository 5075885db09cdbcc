// Many keys, saved a batch at a time into a folder that takes its name when it is whole.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "backup/registry_backer.h"
#include "backup/restore_offer.h"
#include "foundation/session.h"

namespace korvex::backup {

// Makes the folder anew and saves the keys into it, under the names of their files; a result for
// each, in order. Other than success: the folder could not be made, the disk is full, or it was
// cancelled; the folder is gone then, and the message says why.
platform::Status backupIntoFolder(foundation::Session& session, RegistryBacker& backer,
                                  std::span<const KeyBackup> keys, const std::string& folder,
                                  const Progress& progress, std::vector<KeyBackupResult>& results,
                                  std::string& message);

// Moves the files that were saved in the folder to where their keys say, over what is there: all of
// them, or what stood there before comes back.
platform::Status publishFiles(platform::Files& files, const std::string& folder,
                              std::span<const KeyBackup> keys, std::string& message);

// Gives the folder the name of another, which goes; after a failure that one stands as it was.
platform::Status takeNameOf(platform::Files& files, const std::string& folder,
                            const std::string& name);

}  // namespace korvex::backup
