// PageSection: controls of the main window beside the catalogue's rows: buttons, boot options, the
// saved-settings folder. A section makes its controls when it is constructed; the form owns them.
#pragma once

#include <string>
#include <vector>

#include "engine/tweak.h"
#include "forms/layout.h"

namespace korvex::main_window {

class PageSection {
 public:
  virtual ~PageSection() = default;
  // Groups to stand on that page after those of the rows. Asked once for each page.
  virtual std::vector<forms::Layout> groups(engine::Page page) = 0;
  // Sets the controls from the machine; called with g_bNoRecord set. Reads only.
  virtual void load() = 0;

  // For sections that Apply writes.
  virtual int changesWaiting() const { return 0; }
  // "" for done, or a sentence for the person: what could not be written and what to do.
  virtual std::string apply() { return {}; }
  // Writes what Windows has by default; as apply.
  virtual std::string restoreDefaults() { return {}; }
};

}  // namespace korvex::main_window
