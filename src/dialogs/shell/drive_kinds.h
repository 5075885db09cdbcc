// What each drive of a machine is, as far as its files and its registry tell.
#pragma once

#include <array>

#include "dialogs/shell/drive_mask.h"
#include "forms/controls.h"
#include "foundation/session.h"

namespace korvex::dialogs {

using DriveKinds = std::array<forms::ItemPicture, kDriveCount>;

// None for a letter without a drive. A: and B: are floppies where nothing else is said; a drive of
// which only its folder is known is a hard disk.
DriveKinds driveKinds(foundation::Session& session);

}  // namespace korvex::dialogs
