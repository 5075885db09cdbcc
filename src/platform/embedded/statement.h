// A prepared SQLite statement that resets itself.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <string_view>

namespace korvex::platform {

// Bound text and blobs are not copied: they must live until the run ends.
class Statement {
 public:
  Statement() = default;
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  int prepare(sqlite3* database, std::string_view sql) {
    return sqlite3_prepare_v3(database, sql.data(), static_cast<int>(sql.size()),
                              SQLITE_PREPARE_PERSISTENT, &statement_, nullptr);
  }
  Statement& bind(int index, std::int64_t number) {
    sqlite3_bind_int64(statement_, index, number);
    return *this;
  }
  Statement& bind(int index, std::string_view text) {
    // An empty view may have no address, which would bind NULL.
    sqlite3_bind_text64(statement_, index, text.empty() ? "" : text.data(), text.size(),
                        SQLITE_STATIC, SQLITE_UTF8);
    return *this;
  }
  Statement& bindBlob(int index, std::string_view bytes) {
    sqlite3_bind_blob64(statement_, index, bytes.empty() ? "" : bytes.data(), bytes.size(),
                        SQLITE_STATIC);
    return *this;
  }
  int step() { return sqlite3_step(statement_); }
  void reset() { sqlite3_reset(statement_); }

  std::int64_t number(int column) const { return sqlite3_column_int64(statement_, column); }
  // Valid until the next step or reset.
  std::string_view bytes(int column) const {
    const auto* data = static_cast<const char*>(sqlite3_column_blob(statement_, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return data == nullptr ? std::string_view() : std::string_view(data, size);
  }

 private:
  sqlite3_stmt* statement_ = nullptr;
};

// Resets the statement at the end of the block, whichever way it is left.
class StatementRun {
 public:
  explicit StatementRun(Statement& statement) : statement_(statement) {}
  ~StatementRun() { statement_.reset(); }
  StatementRun(const StatementRun&) = delete;
  StatementRun& operator=(const StatementRun&) = delete;

 private:
  Statement& statement_;
};

}  // namespace korvex::platform
