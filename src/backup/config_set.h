// ConfigSet: the record of one saved set of configuration.
//
// It stands under HKEY_LOCAL_MACHINE SOFTWARE\Korvex\Registry\NAME and, exported, as profile.kvx in
// the set's folder. What the set holds is listed there in contents.dat, file by file, with
// checksums: a restore knows what is missing or damaged, and what was not there when the set was
// saved. (A key of Windows 98 holds 64 KB of values: too little for the list.)
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/session.h"

namespace korvex::backup {

constexpr std::string_view kSetsKey = "SOFTWARE\\Korvex\\Registry";
constexpr std::string_view kProfileFile = "profile.kvx";
constexpr std::string_view kContentsFile = "contents.dat";

struct SetEntry {
  enum class Kind : char {
    Key = 'K',     // a registry-editor file
    File = 'F',    // a copy
    Folder = 'D',  // a folder, which may be empty
    NoKey = 'k',   // there was no such key
    NoFile = 'f',  // there was no such file
  };
  Kind kind = Kind::Key;
  std::string tag;   // of its category
  std::string file;  // in the set's folder: "Cursor\arrow.cur"; unique, also where nothing is kept
  std::uint64_t size = 0;  // of the file; of a folder its attributes
  std::uint64_t checksum = 0;
  std::string place;  // the key in full, or the Windows path that it was copied from
};

struct ConfigSet {
  std::string name;
  std::string folder;   // Windows path
  std::string saved;    // "2001-02-03 04:05:06", the machine's local time
  std::string windows;  // "Windows 98"
  std::string computer;
  std::string user;
  std::vector<std::string> tags;  // of the categories that it holds
  std::string contents;           // size and checksum of contents.dat: "1234|0123456789abcdef"
  std::vector<SetEntry> entries;

  bool holds(std::string_view tag) const;
};

// Names for sets are names for folders: "" where it can be used, else what is wrong, for people.
std::string whyNoSetName(std::string_view name);

// The folder of saved sets: what the person chose, or "Registry" below the program's own.
std::string saveFolder(foundation::Session& session);

// The records in the registry, sorted by name.
std::vector<std::string> savedSets(foundation::Session& session);
// 2: no such record. What contents.dat lists is not among it.
platform::Status readRecord(foundation::Session& session, std::string_view name, ConfigSet& set,
                            std::string& message);
platform::Status writeRecord(foundation::Session& session, const ConfigSet& set);
platform::Status deleteRecord(foundation::Session& session, std::string_view name);

// The record in a profile.kvx, whoever made it, and the list beside it: nothing in them is believed
// that could lead out of their folder or to another place of the machine. The set's folder is that
// of the file. 13: something of it cannot be understood, or the list is not the one that was saved.
platform::Status readProfile(foundation::Session& session, std::string_view file, ConfigSet& set,
                             std::string& message);
// Writes the list into that folder, and its size and checksum into the set.
platform::Status writeContents(foundation::Session& session, const std::string& folder,
                               ConfigSet& set);

// A path below a set's folder, by whose name nothing else can be meant.
bool isFileInSet(std::string_view file);

}  // namespace korvex::backup
