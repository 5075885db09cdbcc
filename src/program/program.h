// Program: the composition root. One run of Korvex on one machine.
//
// It makes the objects that a run shares, registers the forms, starts the main window and ends it.
// The machine and the prompts must outlive it.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "backup/registry_backer.h"
#include "backup/restore_offer.h"
#include "dialogs/dialog_parts.h"
#include "dialogs/logon/frm_logon_bitmap.h"
#include "dialogs/system/frm_path_selecter.h"
#include "engine/pending_changes.h"
#include "engine/reg_worker.h"
#include "forms/form_book.h"
#include "foundation/session.h"
#include "main_window/start_up.h"
#include "platform/machine.h"
#include "platform/prompts.h"
#include "platform/secrets/sodium_password_hash.h"
#include "protection/program_password.h"

namespace korvex::program {

using main_window::StartOptions;
using main_window::StartResult;

struct FormRow {
  std::string_view name;
  std::string_view title;  // for people: what the form is for
};

class Program {
 public:
  // Every form, in the order of registration; the first is the main window.
  static std::span<const FormRow> forms();

  Program(platform::Machine& machine, platform::Prompts& prompts, StartOptions options = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Loads the main window. On anything but Started the program is over; nothing needs to be
  // finished then.
  StartResult start();
  // Closes the main window as its close button does. False where it refuses to go.
  bool finish();
  // Shows a saved set, given by the Windows path of its profile.kvx, in the main window; once that
  // has started.
  void openSet(const std::string& profile);
  // For a front end with a screen: start, show the main window until it goes, finish. The program's
  // exit code: 0, or 4 for a second instance, 5 where start-up refused.
  int run(forms::FormHost& host);

  // Shows the folder picker; for prompts of a front end with a screen. Nothing for a cancel.
  std::optional<std::string> pickFolder(std::string_view prompt);

  foundation::Session& session() { return session_; }
  forms::FormBook& formBook() { return formBook_; }
  engine::RegWorker& regWorker() { return regWorker_; }
  engine::PendingChanges& pendingChanges() { return pendingChanges_; }
  backup::RegistryBacker& registryBacker() { return registryBacker_; }
  backup::RestoreDesk& restoreDesk() { return restoreDesk_; }

 private:
  void addDialogs(const dialogs::DialogParts& parts);

  foundation::Session session_;
  backup::RegistryBacker registryBacker_;
  platform::SodiumPasswordHash passwordHash_;
  protection::ProgramPassword password_;
  // The desks outlive the forms.
  backup::RestoreDesk restoreDesk_;
  dialogs::LogonBitmapDesk logonBitmapDesk_;
  dialogs::FolderDesk folderDesk_;
  forms::FormBook formBook_;
  engine::RegWorker regWorker_;
  engine::PendingChanges pendingChanges_;
};

}  // namespace korvex::program
