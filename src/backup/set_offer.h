// What restoring a set would change, and doing it.
#pragma once

#include <memory>

#include "backup/config_set.h"
#include "backup/registry_backer.h"
#include "backup/restore_offer.h"
#include "foundation/session.h"

namespace korvex::backup {

// Compares the set with the machine, category by category.
std::unique_ptr<RestoreOffer> offerSet(foundation::Session& session, RegistryBacker& backer,
                                       const ConfigSet& set, const Progress& progress);

// The name of the set that keeps what restoring that set overwrites: another one for a set that is
// itself such a keeper.
std::string keeperName(const std::string& name);

}  // namespace korvex::backup
