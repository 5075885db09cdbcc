// Saved sets of configuration that lie anywhere on the system that Korvex runs on: a profile.kvx
// opened from the desktop, a set brought from another machine.
#pragma once

#include <filesystem>
#include <string>

#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::program {

struct HostSet {
  platform::Status status = platform::ERROR_SUCCESS;
  std::string message;  // for people
  std::string profile;  // the Windows path of its profile.kvx
  bool copied = false;  // the set was copied into the machine's folder of saved sets
};

// A set that a drive of the machine holds is taken where it lies. Of any other the files that its
// profile lists are copied into the machine's folder of saved sets, under the set's name, or with a
// number where that name is taken by another set; links are not followed.
HostSet takeHostSet(foundation::Session& session, const std::filesystem::path& profile);

}  // namespace korvex::program
