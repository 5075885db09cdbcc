// The connection to registry.db: opening it in either mode, transactions, durability, and what
// SQLite's results mean as statuses.
#pragma once

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "platform/embedded/machine_lock.h"
#include "platform/embedded/statement.h"
#include "platform/machine.h"

namespace korvex::platform {

// A writer appends to the write-ahead log only; the log moves into registry.db while nobody holds
// MachineLock::kDatabaseByte. A reader holds it shared for as long as it lives, so registry.db
// itself stands still under it and needs no lock or index file of SQLite's.
class Database {
 public:
  // machineFolder holds registry.db and machine.json. Null with status and message on failure.
  static std::unique_ptr<Database> open(const std::filesystem::path& machineFolder, OpenMode mode,
                                        Status& status, std::string& message);
  // A new registry.db with an empty registry; the file must not exist. It is on the disk only
  // after a machine was opened on it and flushed.
  static Status create(const std::filesystem::path& file, std::string& message);

  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  bool readOnly() const { return readOnly_; }
  Status prepare(Statement& statement, std::string_view sql);

  Status begin();
  Status commit();
  void rollback();
  // Everything committed is on the disk.
  Status flush();
  // True once after other connections have committed. Costs a few loads where nothing happened.
  bool changedByOthers();

  // The status of SQLite's result; also kept as failure() until the next clearFailure().
  Status report(int result);
  Status failure() const { return failure_; }
  void clearFailure() { failure_ = ERROR_SUCCESS; }

 private:
  using IndexHeader = std::array<std::uint32_t, 12>;

  Database() = default;
  int openReader(const std::filesystem::path& folder);
  int openPrivateCopy(const std::filesystem::path& folder);
  int openWriter(const std::filesystem::path& folder);
  int configure(const char* pragmas);
  int run(const char* sql) { return sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr); }
  void mapIndexHeader();
  IndexHeader readIndexHeader() const;
  std::int64_t dataVersion();
  void checkpointIfLong();

  sqlite3* handle_ = nullptr;
  std::unique_ptr<MachineLock> lock_;
  bool readOnly_ = false;
  Status failure_ = ERROR_SUCCESS;
  int walPages_ = 0;
  const volatile std::uint32_t* indexHeader_ = nullptr;  // SQLite's mapping of the index file
  IndexHeader seenHeader_ = {};
  std::int64_t seenVersion_ = -1;
  std::unique_ptr<Statement> begin_, commit_, rollback_, dataVersion_;
};

}  // namespace korvex::platform
