// registry.db as a file: its mark, its schema, and whether a file is one before SQLite touches it.
#pragma once

#include <filesystem>
#include <string>

#include "platform/status.h"

namespace korvex::platform {

constexpr int kApplicationId = 0x4B767872;  // "Kvxr"
constexpr int kSchemaVersion = 1;

// The two first keys are kMachineKey and kUsersKey. All values of a key are packed in data
// (value_blob.h). The numbers of keys grow and are never used twice, so they tell creation order,
// and a handle to a deleted key never meets another one.
constexpr const char* kSchema = R"(
CREATE TABLE keys(id INTEGER PRIMARY KEY, parent INTEGER NOT NULL, folded TEXT NOT NULL,
                  name TEXT NOT NULL, data BLOB NOT NULL);
CREATE UNIQUE INDEX keysByName ON keys(parent, folded);
CREATE TABLE counters(name TEXT PRIMARY KEY, value INTEGER NOT NULL);
CREATE TABLE events(id INTEGER PRIMARY KEY, at INTEGER NOT NULL, kind TEXT NOT NULL,
                    detail TEXT NOT NULL);
INSERT INTO keys VALUES(1, 0, 'HKEY_LOCAL_MACHINE', 'HKEY_LOCAL_MACHINE', x'');
INSERT INTO keys VALUES(2, 0, 'HKEY_USERS', 'HKEY_USERS', x'');
INSERT INTO counters VALUES('nextKey', 3);
)";

// Reads the header only: 0, or 1009/1017 with a sentence that says what is wrong.
Status checkDatabaseFile(const std::filesystem::path& file, std::string& message);

}  // namespace korvex::platform
