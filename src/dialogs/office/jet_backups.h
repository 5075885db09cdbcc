// JetBackups: the keys of the Jet engine as they were before Korvex first changed them: saved once
// for all, and put back together.
//
// The files lie in the folder Registry of the program's own, whatever folder is chosen for saved
// sets: a folder that moves would have the keys saved anew, as they have become meanwhile.
#pragma once

#include <string>
#include <string_view>

#include "backup/registry_backer.h"
#include "foundation/session.h"

namespace korvex::dialogs {

class JetBackups {
 public:
  JetBackups(foundation::Session& session, backup::RegistryBacker& backer)
      : session_(session), backer_(backer) {}

  // Saves each key whose file is not there yet; of a key that is not there the file says so. A
  // failure is told, once while nothing is about to be changed; before a change the person says
  // whether to go on without: false for no.
  enum class When { Opening, BeforeChange };
  bool backUpOnce(When when);

  // Puts both keys back as one change of the registry, which the caller brings to the disk. A key
  // without a file stays. False for a failure, which is told; then neither is changed.
  bool restore();

 private:
  std::string folder() const;
  std::string fileOf(std::string_view name) const;
  // What could not be saved and why; "" where all is saved.
  std::string saveMissing();

  foundation::Session& session_;
  backup::RegistryBacker& backer_;
  bool told_ = false;
};

}  // namespace korvex::dialogs
