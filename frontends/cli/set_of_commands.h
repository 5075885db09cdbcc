// What the commands for saved sets share.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "backup/config_sets.h"
#include "cli/backup_machine.h"
#include "cli/commands.h"
#include "cli/offer_run.h"
#include "cli/output.h"

namespace korvex::cli {

// "ColorConfig,Cursor" -> the tags as they are written; also without "Config" and in any case.
// Throws Failure (Usage) for a word that is none.
std::vector<std::string> categoryTags(const std::vector<std::string>& typed);

// The set of that name, or of a profile.kvx on the machine or the host. A set that lies outside the
// machine is copied to it. Throws Failure where there is none, or it cannot be believed.
backup::ConfigSet findSet(BackupMachine& machine, const std::string& nameOrProfile);

// "ColorConfig (Color configuration)" for each category that the set holds.
std::vector<std::string> captionsOf(const foundation::Session& session,
                                    const backup::ConfigSet& set);
Json setJson(const foundation::Session& session, const backup::ConfigSet& set, bool available);

void addSetOfSave(CLI::App& group, Run& run);     // save, erase
void addSetOfShow(CLI::App& group, Run& run);     // list, show
void addSetOfRestore(CLI::App& group, Run& run);  // restore

}  // namespace korvex::cli
