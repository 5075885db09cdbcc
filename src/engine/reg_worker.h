// RegWorker: carries out tweaks. Apply calls it by the names that the pending changes left.
//
// A failure of the machine is not raised: it is kept in bLastWriteFailed and lastStatus, traced,
// and the routine's pending change stays, so that the user can try again. What the routine had
// written by then is rolled back, and g_bRebootNeeded keeps what the routine before it said.
//
// A routine's result is true for success. Its writes to the registry and to files are one change.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "engine/modes.h"
#include "engine/raw_value.h"
#include "engine/tweak.h"
#include "forms/form_book.h"
#include "foundation/session.h"
#include "foundation/variant.h"
#include "platform/file_change.h"
#include "platform/status.h"

namespace korvex::engine {

class RegWorker {
 public:
  RegWorker(foundation::Session& session, forms::FormBook& formBook);

  // Runs the routine of that name ("P_rwRun", case ignored). Throws foundation::RuntimeError for a
  // name that is no routine. Everything that one routine writes, and the end of its pending change,
  // is one change of the machine.
  bool call(std::string_view property);
  // The same for a row whose facts a form has filled in: it stands in no table.
  bool run(const Tweak& tweak);
  bool knows(std::string_view property) const;

  // Mode 21: swaps the Windows help file for an alternative one, and back.
  bool p_rwFlipTheHelpFile(bool on);

  // Specials, named by rows of the catalogue.
  bool P_rwDefrag(const Tweak& tweak);
  bool P_rwStartMenuSpeed(const Tweak& tweak);
  // The four options that have a support program clear a list at the next start.
  bool p_rwClearAtRestart(const Tweak& tweak);
  // A field whose text is the value; an empty one writes byDefault.
  bool p_rwWriteText(const Tweak& tweak);
  // The box itself, told as the row's value.
  bool P_rwAppendToLogFile(const Tweak& tweak);
  // server.cpp
  bool P_ServerMaxUsers(const Tweak& tweak);
  bool P_BrowserElection(const Tweak& tweak);
  // office_values.cpp: a field whose text is the value, as number or text; an empty one writes
  // byDefault. Out of range nothing comes here (ValueFields).
  bool P_UpdateOfficeValues(const Tweak& tweak);
  bool p_WriteJetChanges(const Tweak& tweak);
  bool P_WriteAutoCalculate(const Tweak& tweak);
  // The database engine's switches: always with a restart.
  bool p_rwWriteJetVals(const Tweak& tweak);
  // office_assistant.cpp
  bool P_rwAsstRemove(const Tweak& tweak);
  // restrictions.cpp
  bool P_rwNoAdminShares(const Tweak& tweak);
  bool P_rwNoLogOff(const Tweak& tweak);
  bool P_rwRestrictRegAccess(const Tweak& tweak);
  bool P_rwNetworkDrive(const Tweak& tweak);
  bool P_rwNoDrives(const Tweak& tweak);
  // shell_folders.cpp
  bool p_HandleRemoveOfNameSpace(const Tweak& tweak);
  bool p_PrintersAndControlPanelAndHistory(const Tweak& tweak);
  bool askForWhom(const Tweak& tweak);  // you only, or all users
  // shell_verbs.cpp: P_rwRightClickDOS, P_rwPrintDirs_Files, P_rwOpenWith
  bool p_rwShellVerbs(const Tweak& tweak);
  // shell_icons.cpp
  bool P_rwInherentDLL(const Tweak& tweak);
  bool P_rwBMP(const Tweak& tweak);
  bool p_rwToolbarBitmaps(const Tweak& tweak);
  bool P_rwScreenTips(const Tweak& tweak);
  bool P_rwArrows(const Tweak& tweak);

  foundation::Variant vCurrentValue;  // what the last call computed
  bool bLastWriteFailed = false;      // the failure flag of the last write
  platform::Status lastStatus = 0;    // and its status

 private:
  bool p_rwWriteRegChanges(const Tweak& tweak);
  bool p_MakeTheRegChange(const Tweak& tweak, const foundation::Variant& value);
  bool writeKeepingPrevious(const Tweak& tweak, const foundation::Variant& value);
  bool writeField(const Tweak& tweak);
  bool writeDefragEntry();
  bool removeDefragEntry();
  bool registerSupportProgram();
  bool disableAssistant(const Tweak& tweak);
  bool enableAssistant(const Tweak& tweak);
  // The tri-state of the tweak's check box (shownState); its form is loaded where it is not.
  int checkValue(const Tweak& tweak);
  // The text of the row's field; in restore-defaults mode the default.
  std::string fieldText(const Tweak& tweak);
  // What the routine is to do: by its box, or in restore-defaults mode.
  Decision decisionFor(const Tweak& tweak);
  bool endPendingChange(const Tweak& tweak);
  // Keeps a status of the machine; a failure stays kept until the next call. True for success.
  bool keep(platform::Status status);
  // A missing key or value reads as an empty one. False where it could not be read.
  bool read(Root root, std::string_view key, std::string_view name, RawValue& value);
  bool write(Root root, std::string_view key, std::string_view name,
             const foundation::Variant& value);
  // A missing value or key is no error.
  bool remove(Root root, std::string_view key, std::string_view name);
  bool removeTree(Root root, std::string_view key);
  // The machine's files, within the change of the routine that runs.
  platform::Files& files() { return *files_; }

  // Kept values (kept_values.h), for rows of one value and for specials. Keeping happens once:
  // what is kept already stays, and isOn tells that the value there is the tweak's own.
  bool keepPrevious(const Tweak& tweak, Root root, std::string_view key, std::string_view name,
                    const foundation::Variant& onValue);
  // Puts back what was kept and forgets it; where nothing was kept, fallback is written (an empty
  // one deletes).
  bool putBackPrevious(const Tweak& tweak, Root root, std::string_view key, std::string_view name,
                       const foundation::Variant& fallback);
  // The end of a special: marker and restart flag.
  bool finishSpecial(const Tweak& tweak);
  // Whether the box is checked; in restore-defaults mode whether checked is the default.
  bool wantsOn(const Tweak& tweak, bool onByDefault = false);
  // For the person, shown when the routine is done.
  void notify(std::string text, int icon);

  foundation::Session& session_;
  forms::FormBook& formBook_;
  std::optional<platform::FileChange> files_;
  bool forAllUsers_ = false;  // the answer to askForWhom
  // What a routine has to tell the person. Shown when its bracket is closed: nobody else can write
  // to the machine while one is open.
  std::string notice_;
  int noticeIcon_ = 0;
};

}  // namespace korvex::engine
