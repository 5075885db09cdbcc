// Writing one set: its folder, its files, its record, and all of it in place of what was there.
#pragma once

#include <string>
#include <vector>

#include "backup/category_files.h"
#include "backup/config_sets.h"
#include "backup/registry_backer.h"
#include "backup/restore_offer.h"
#include "foundation/session.h"

namespace korvex::backup {

// What is to be saved of one category.
struct CategoryJob {
  const Category* category = nullptr;
  std::vector<KeyBackup> keys;          // file: the name in the set
  std::vector<SourceFile> files;        // places that are not there are recorded as such
  bool fileTypes = false;               // the export of file types
  std::vector<std::string> extensions;  // of these; none: of all that are registered
  bool mayBeEmpty = false;              // that there is nothing is worth keeping too
};

struct SaveJob {
  std::string name;
  std::string folder;  // the set's own
  std::vector<CategoryJob> categories;
  // A category that cannot be saved makes the save fail, also where nothing stood there before.
  bool allOrNothing = false;
};

// The job that saves a category as it stands.
platform::Status jobFor(foundation::Session& session, const Category& category, CategoryJob& job);

SaveOutcome writeSet(foundation::Session& session, RegistryBacker& backer, const SaveJob& job,
                     const Progress& progress);

// Puts right what a save or an erasing left that was killed between two steps: the old set is back
// under its name, or the new one is. Nothing else is touched.
platform::Status healSet(platform::Files& files, const std::string& folder);
// Where the set lies now: in its folder, or where a killed save left it.
std::string presentFolder(platform::Files& files, const std::string& folder);

}  // namespace korvex::backup
