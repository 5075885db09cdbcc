// System, NT and network.
#include <array>

#include "engine/catalogue/rows.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"

namespace korvex::engine {
namespace {

constexpr std::array kRows{
    // The row tells the service entry; RunOnceEx's entry comes from the special.
    Tweak{.property = "P_rwDefrag",
          .root = HKLM,
          .key = "Software\\Microsoft\\Windows\\CurrentVersion\\RunServicesOnce",
          .value = "Defrag",
          .mode = 19,
          .byDefault = kDelete,
          .stateName = "Defrag",
          .control = "chkDefrag",
          .page = Page::Windows9x,
          .group = "Disks",
          .caption = "De&fragment all drives at the next start",
          .toolTip = "Runs Disk Defragmenter once when Windows starts...default is unchecked",
          .families = k9x,
          .special = &RegWorker::P_rwDefrag,
          .reader = p_DetermineDefrag},
};
static_assert(propertiesAreUnique(kRows) && modesAreKnown(kRows));

}  // namespace

std::span<const Tweak> systemRows() { return kRows; }

}  // namespace korvex::engine
