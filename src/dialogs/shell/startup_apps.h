// StartupApps: all six startup areas, for the window and the command line.
//
// Whoever writes calls tidyUp() first, and flushes the registry afterwards (engine/at_once.h).
#pragma once

#include <array>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "dialogs/shell/startup_folders.h"
#include "dialogs/shell/startup_place.h"

namespace korvex::dialogs {

struct StartupAreaRow {
  StartupArea area;
  std::string_view name;     // of the store
  std::string_view heading;  // after "Startup Apps"
};
std::span<const StartupAreaRow> startupAreas();

// Both lists of an area.
struct StartupLists {
  StartupEntries launched;
  StartupEntries switchedOff;
};

class StartupApps {
 public:
  explicit StartupApps(foundation::Session& session);

  platform::Status p_EnumReg(StartupArea area, StartupLists& lists);
  // Finishes what a kill has cut off, and gathers what earlier versions switched off. Writes; what
  // cannot be tidied up stays and is traced.
  void tidyUp();
  // The area of a move that was interrupted and is not finished yet, and what it moved.
  std::optional<PendingMove> interrupted();

  StartupPlace& place(StartupArea area) { return *places_[static_cast<std::size_t>(area)]; }
  const StartupFolders& folders() const { return *folders_; }

  // As StartupPlace has them. While an interrupted move cannot be finished each gives its status.
  platform::Status switchOff(const StartupEntry& entry);
  platform::Status switchOn(const StartupEntry& entry, Replace replace);
  platform::Status forget(const StartupEntry& entry);
  platform::Status takeBack(StartupArea area, const engine::TakenAway::Item& item);
  // The file's path in full. shortPathFails tells that there is none in 8.3 form.
  platform::Status add(StartupArea area, const std::string& path, bool& shortPathFails);

 private:
  platform::Status finishInterrupted();

  foundation::Session& session_;
  StartupFolders* folders_ = nullptr;
  std::array<std::unique_ptr<StartupPlace>, 6> places_;
};

}  // namespace korvex::dialogs
