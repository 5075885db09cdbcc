// What the categories of a configuration set have beside registry keys: where those files lie on a
// machine, and where a set may put them.
#pragma once

#include <string>
#include <vector>

#include "backup/categories.h"
#include "backup/config_set.h"
#include "foundation/session.h"

namespace korvex::backup {

// The file of a set that keeps the section "Password Lists" of system.ini.
constexpr std::string_view kPasswordsFile = "Passwords.dat";
// The one that says where the bookmarks came from: section "NETSCAPE", entry "BookPath".
constexpr std::string_view kBookmarksFile = "Mozilla\\moz.dat";

// One file or folder of the machine, and its name in the set.
struct SourceFile {
  std::string place;
  std::string file;
  std::uint32_t attributes = 0;
  std::uint64_t size = 0;

  bool isFolder() const { return (attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0; }
};

// Whether the category has anything beside its keys here: files, or registered file types.
bool hasFiles(foundation::Session& session, const Category& category);

// The files as they stand, folders before what is in them. What a value names and is not there is
// no file. The text files that a save makes itself (Passwords.dat, moz.dat) are not among them.
platform::Status findFiles(foundation::Session& session, const Category& category,
                           std::vector<SourceFile>& files);
// The name in the set for one more file of the category that lies there.
std::string nameInSet(const Category& category, const std::string& place);

// Where a file of a set goes on this machine. False: it may not, or cannot, go anywhere, and why
// says so for people. What a set says is never taken for more than a proposal.
bool placeFor(foundation::Session& session, const Category& category, const SetEntry& entry,
              std::string& place, std::string& why);
// Whether the set holds all there is of the kind, so that what is there beyond it is to go.
bool ownsItsFolder(const Category& category, const SourceFile& file);

// The path of the other browser's bookmarks; "" where there is no such browser.
std::string bookmarksPath(foundation::Session& session);

}  // namespace korvex::backup
