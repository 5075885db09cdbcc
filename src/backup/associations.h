// File associations: the registered file types, saving them type by type, and the templates that
// name a choice of them.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "backup/registry_backer.h"
#include "backup/restore_offer.h"
#include "foundation/session.h"

namespace korvex::backup {

struct FileType {
  std::string extension;    // ".txt"
  std::string className;    // "txtfile"; "" for none
  std::string description;  // "Text Document"; "" where the class has none
  // False: no class, or one that holds "CLSID"; nothing is saved of it.
  bool canBeSaved() const;
};

// Sorted by extension, without regard to case. A status: the list is not whole.
platform::Status listTypes(foundation::Session& session, std::vector<FileType>& types);
// The same for showing: as far as it could be read.
std::vector<FileType> registeredTypes(foundation::Session& session);

// The folders of saved associations and of templates: below the program's own, "\FA\" and
// "\templates", without a last backslash.
std::string associationFolder(const foundation::Session& session);
std::string templateFolder(const foundation::Session& session);

// The file that a key's name is saved to: ".txt" -> ".txt.reg"; characters that no file name
// may hold stand as %XX.
std::string associationFile(std::string_view keyName);

struct AssociationOutcome {
  platform::Status status = platform::ERROR_SUCCESS;  // of the folder, or a full disk
  std::string message;
  bool cancelled = false;
  std::vector<std::string> saved;    // extensions
  std::vector<std::string> skipped;  // those without a class, or with one that holds "CLSID"
  struct Failed {
    std::string extension;
    std::string reason;
  };
  std::vector<Failed> failed;
  std::vector<KeyBackup> keys;  // what was written, a class that several types share once
  // Classes that an extension names and that are not there: there was nothing to save.
  std::vector<KeyBackup> missing;
};

// Saves the key of each extension and of its class into the folder, which is made where it is
// missing. A type is saved with all of its keys or not at all, and what is saved replaces what
// stands there together, or not at all.
AssociationOutcome exportAssociations(foundation::Session& session, RegistryBacker& backer,
                                      std::span<const std::string> extensions,
                                      const std::string& folder, const Progress& progress);

// What is saved in a folder, by extension.
std::vector<FileType> savedAssociations(foundation::Session& session, const std::string& folder);

// The folder below the association folder in which a restore from `folder` first saves what it
// overwrites: "Before restore", or "Before taking back" where it restores from that one itself.
std::string keeperFolder(const foundation::Session& session, const std::string& folder);

// What restoring these would change, type by type. What it overwrites is first saved below the
// folder.
std::unique_ptr<RestoreOffer> offerAssociations(foundation::Session& session,
                                                RegistryBacker& backer, const std::string& folder,
                                                std::span<const std::string> extensions,
                                                const Progress& progress);

// Templates, by name, sorted.
std::vector<std::string> associationTemplates(foundation::Session& session);
platform::Status readTemplate(foundation::Session& session, std::string_view name,
                              std::vector<std::string>& extensions);
platform::Status writeTemplate(foundation::Session& session, std::string_view name,
                               std::span<const std::string> extensions);
platform::Status removeTemplate(foundation::Session& session, std::string_view name);
// "" where it can name a template, else what is wrong, for people.
std::string whyNoTemplateName(std::string_view name);

}  // namespace korvex::backup
