// ConfigSets: saving, restoring and erasing named sets of configuration.
//
// A set is made in a folder of its own and takes its name when it is whole: a save that fails, is
// cancelled or killed leaves what was there before. A restore first saves what it overwrites as a
// set, and is one change: all of it or nothing.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "backup/config_set.h"
#include "backup/registry_backer.h"
#include "backup/restore_offer.h"
#include "foundation/session.h"

namespace korvex::backup {

struct SaveRequest {
  std::string name;
  std::string folder;                   // the set's folder is made in it; "" is saveFolder()
  std::vector<std::string> tags;        // of categories
  std::vector<std::string> extensions;  // of FAConfig; none: all registered types
};

struct SaveOutcome {
  // Not ERROR_SUCCESS: nothing was saved, and what was there before is unchanged.
  platform::Status status = platform::ERROR_SUCCESS;
  std::string message;  // for people
  bool cancelled = false;
  struct Failed {
    std::string caption;
    std::string reason;
  };
  std::vector<Failed> failed;  // categories that could not be saved
  std::size_t files = 0;       // in the set
};

// What a disk says before a save or a restore.
enum class DiskState { Ready, NotReady, NotEnoughSpace };

struct EraseOutcome {
  platform::Status status = platform::ERROR_SUCCESS;  // otherwise nothing was erased
  std::string message;
  bool foreignFilesStay = false;  // the folder holds files that are none of the set's
};

class ConfigSets {
 public:
  ConfigSets(foundation::Session& session, RegistryBacker& backer)
      : session_(session), backer_(backer) {}

  // The set's own folder for that request.
  std::string folderFor(const SaveRequest& request) const;
  // Whether the save fits on its disk, by the size of the files and a guess at that of the keys.
  DiskState checkDisk(const SaveRequest& request);
  SaveOutcome save(const SaveRequest& request, const Progress& progress);

  // The set of that name, or of a profile.kvx given by its Windows path, as it lies on the disk.
  platform::Status find(std::string_view nameOrProfile, ConfigSet& set, std::string& message);
  // Whether its folder is there and has its profile.kvx.
  bool isAvailable(const ConfigSet& set);

  // What restoring would change, by category; compares everything.
  std::unique_ptr<RestoreOffer> offer(const ConfigSet& set, const Progress& progress);

  // recordOnly: the folder is not there.
  EraseOutcome erase(const ConfigSet& set, bool recordOnly);

 private:
  foundation::Session& session_;
  RegistryBacker& backer_;
};

}  // namespace korvex::backup
