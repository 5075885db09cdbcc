// The group Access/Jet.
#include "dialogs/office/jet_panel.h"

#include <utility>

namespace korvex::dialogs {

using forms::Layout;

JetPanel::JetPanel(forms::Form&, const DialogParts& parts, backup::RegistryBacker& registryBacker,
                   Rows rows)
    : parts_(parts), registryBacker_(registryBacker), rows_(std::move(rows)) {}

Layout JetPanel::layout(const std::function<Layout(std::string_view)>& takeGroup) {
  return Layout::column({takeGroup("ENGINE INITIALIZATION SETTINGS"), takeGroup("Text"),
                         takeGroup("Excel"), takeGroup("ODBC"), takeGroup("xBase")});
}

void JetPanel::begin() { parts_.session.jet = {}; }
void JetPanel::p_DetermineAccessDefaultValues() {}
void JetPanel::end() { parts_.session.jet = {}; }
void JetPanel::cmdAccess_Click() {}
bool JetPanel::backUpOnce() { return true; }
bool JetPanel::restoreBackups() { return true; }
bool JetPanel::isWrittenFirst(const engine::Tweak&) { return false; }

}  // namespace korvex::dialogs
