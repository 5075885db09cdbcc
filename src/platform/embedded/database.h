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

// A writer appends to the write-ahead log only. The log moves into registry.db, and starts over,
// while nobody holds MachineLock::kDatabaseByte. A reader holds it shared for as long as it lives:
// database and log stand still under it, but for what is added at the end, so that it needs no lock
// and no index file of SQLite's and leaves no trace.
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
  int openFile(const std::string& name, int flags, const char* vfs);
  int openWriter(const std::filesystem::path& folder);
  int configure();
  int run(const char* sql) { return sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr); }
  void mapIndexHeader();
  IndexHeader readIndexHeader() const;
  std::int64_t dataVersion();
  bool logWouldStartOver() const;
  void letReadersIn();
  void checkpointIfLong();

  sqlite3* handle_ = nullptr;
  std::unique_ptr<MachineLock> lock_;
  bool readOnly_ = false;
  bool startsOver_ = false;  // the open transaction holds lock_ against new readers
  Status failure_ = ERROR_SUCCESS;
  int walPages_ = 0;
  const volatile std::uint32_t* indexHeader_ = nullptr;  // SQLite's mapping of the index file
  IndexHeader seenHeader_ = {};
  std::int64_t seenVersion_ = -1;
  std::unique_ptr<Statement> begin_, commit_, rollback_, dataVersion_;
};

}  // namespace korvex::platform
