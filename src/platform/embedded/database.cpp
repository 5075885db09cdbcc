// The connection to registry.db.
#include "platform/embedded/database.h"

#include <fmt/format.h>

#include <cerrno>
#include <utility>

#include "platform/embedded/database_file.h"
#include "platform/embedded/reader_vfs.h"

namespace korvex::platform {
namespace {

constexpr int kBusyMilliseconds = 5000;
constexpr int kPageBytes = 8192;
constexpr int kLongLogPages = (8 << 20) / kPageBytes;
// Source: "The WAL-Index File Format" of SQLite.
constexpr int kIndexRegionBytes = 32768;
constexpr std::size_t kFramesWord = 4;        // how many frames the log has
constexpr std::size_t kMovedFramesWord = 24;  // how many of them have been moved

constexpr const char* kPragmas =
    "PRAGMA wal_autocheckpoint=0; PRAGMA synchronous=NORMAL; PRAGMA cache_size=-6144;"
    "PRAGMA temp_store=MEMORY; PRAGMA trusted_schema=OFF;";

std::filesystem::path databaseFile(const std::filesystem::path& folder) {
  return folder / "registry.db";
}

std::filesystem::path logFile(const std::filesystem::path& folder) {
  return folder / "registry.db-wal";
}

std::string uri(const std::filesystem::path& file, const char* parameters) {
  std::string text = "file:";
  for (const char c : std::filesystem::absolute(file).string()) {
    if (c == '?' || c == '#' || c == '%') {
      text += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    } else {
      text += c;
    }
  }
  return text + '?' + parameters;
}

bool logIsEmpty(const std::filesystem::path& folder) {
  std::error_code error;
  const auto size = std::filesystem::file_size(logFile(folder), error);
  return error || size == 0;
}

Status statusOf(int result, int systemError) {
  switch (result & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
      return ERROR_SUCCESS;
    case SQLITE_FULL:
      return ERROR_DISK_FULL;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return ERROR_BUSY;
    case SQLITE_READONLY:
      return ERROR_WRITE_PROTECT;
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return ERROR_ACCESS_DENIED;
    case SQLITE_NOMEM:
    case SQLITE_TOOBIG:
      return ERROR_OUTOFMEMORY;
    case SQLITE_NOTADB:
      return ERROR_NOT_REGISTRY_FILE;
    case SQLITE_IOERR:
      // A quota or a file size limit is a full disk too; SQLite knows only ENOSPC as one.
      if (systemError == EFBIG || systemError == EDQUOT || systemError == ENOSPC) {
        return ERROR_DISK_FULL;
      }
      return ERROR_REGISTRY_IO_FAILED;
    case SQLITE_CANTOPEN:
      return ERROR_REGISTRY_IO_FAILED;
    default:
      return ERROR_BADDB;  // a damaged page, or a schema that is not ours
  }
}

int rememberLogPages(void* pages, sqlite3* /*handle*/, const char* /*name*/, int count) {
  *static_cast<int*>(pages) = count;
  return SQLITE_OK;
}

}  // namespace

Status Database::create(const std::filesystem::path& file, std::string& message) {
  sqlite3* handle = nullptr;
  int result =
      sqlite3_open_v2(file.c_str(), &handle,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXRESCODE, nullptr);
  const std::string sql = fmt::format(
      "PRAGMA synchronous=OFF; PRAGMA page_size={}; PRAGMA journal_mode=WAL;"
      "PRAGMA application_id={};"
      "PRAGMA user_version={}; BEGIN; {} COMMIT;",
      kPageBytes, kApplicationId, kSchemaVersion, kSchema);
  if (result == SQLITE_OK) result = sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr);
  const Status status = statusOf(result, sqlite3_system_errno(handle));
  if (status != ERROR_SUCCESS) {
    message =
        fmt::format("{}: the registry cannot be made: {}.", file.string(), sqlite3_errmsg(handle));
  }
  sqlite3_close(handle);
  return status;
}

std::unique_ptr<Database> Database::open(const std::filesystem::path& machineFolder, OpenMode mode,
                                         Status& status, std::string& message) {
  const std::filesystem::path file = databaseFile(machineFolder);
  status = checkDatabaseFile(file, message);
  if (status != ERROR_SUCCESS) return nullptr;
  std::unique_ptr<Database> database(new Database);
  database->readOnly_ = mode == OpenMode::Read;
  database->lock_ = std::make_unique<MachineLock>(
      machineFolder / "machine.json",
      mode == OpenMode::Read ? LockKind::Shared : LockKind::Exclusive);
  const int result = mode == OpenMode::Read ? database->openReader(machineFolder)
                                            : database->openWriter(machineFolder);
  status = database->report(result);
  if (status == ERROR_SUCCESS) return database;
  const char* const advice = status == ERROR_BUSY ? "Wait until the other program is done."
                                                  : "Restore the registry from a backup.";
  message = fmt::format("{}: {}. {}", file.string(), sqlite3_errmsg(database->handle_), advice);
  return nullptr;
}

Database::~Database() {
  begin_.reset();
  commit_.reset();
  rollback_.reset();
  dataVersion_.reset();
  if (handle_ != nullptr && !readOnly_) {
    // The last connection to close moves the log into the database and removes it, unless a reader
    // counts on an unchanging registry.db.
    const bool alone = lock_->take(MachineLock::kDatabaseByte, LockKind::Exclusive, Wait::No);
    if (alone) sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
  }
  sqlite3_close(handle_);
}

int Database::configure() {
  sqlite3_extended_result_codes(handle_, 1);
  sqlite3_busy_timeout(handle_, kBusyMilliseconds);
  int result = run(kPragmas);
  const auto add = [&](std::unique_ptr<Statement>& statement, const char* sql) {
    statement = std::make_unique<Statement>();
    if (result == SQLITE_OK) result = statement->prepare(handle_, sql);
  };
  add(begin_, "BEGIN IMMEDIATE");
  add(commit_, "COMMIT");
  add(rollback_, "ROLLBACK");
  add(dataVersion_, "PRAGMA data_version");
  return result;
}

int Database::openFile(const std::string& name, int flags, const char* vfs) {
  int result = sqlite3_open_v2(name.c_str(), &handle_, flags | SQLITE_OPEN_URI, vfs);
  // Before anything looks into the file: without an index file no other mode can.
  if (result == SQLITE_OK && vfs != nullptr) result = run("PRAGMA locking_mode=EXCLUSIVE;");
  return result == SQLITE_OK ? configure() : result;
}

int Database::openReader(const std::filesystem::path& folder) {
  if (!lock_->take(MachineLock::kDatabaseByte, LockKind::Shared, Wait::Yes)) return SQLITE_BUSY;
  const std::filesystem::path file = databaseFile(folder);
  const bool noLog = logIsEmpty(folder);
  const int result = noLog ? openFile(uri(file, "immutable=1"), SQLITE_OPEN_READONLY, nullptr)
                           : openFile(uri(file, "mode=ro"), SQLITE_OPEN_READONLY, readerVfs());
  sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  // One snapshot for life: what a reader tells is one state of the machine.
  return result == SQLITE_OK ? run("BEGIN; SELECT id FROM keys WHERE id = 1;") : result;
}

int Database::openWriter(const std::filesystem::path& folder) {
  int result = openFile(uri(databaseFile(folder), "mode=rw"), SQLITE_OPEN_READWRITE, nullptr);
  if (result == SQLITE_OK) result = run("PRAGMA journal_mode=WAL;");
  sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  sqlite3_wal_hook(handle_, rememberLogPages, &walPages_);
  if (result == SQLITE_OK) result = run("SELECT id FROM keys WHERE id = 1;");
  if (result == SQLITE_OK) mapIndexHeader();
  return result;
}

void Database::mapIndexHeader() {
  sqlite3_file* file = nullptr;
  volatile void* region = nullptr;
  if (sqlite3_file_control(handle_, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK) return;
  if (file->pMethods == nullptr || file->pMethods->iVersion < 2) return;
  if (file->pMethods->xShmMap(file, 0, kIndexRegionBytes, 0, &region) != SQLITE_OK) return;
  indexHeader_ = static_cast<const volatile std::uint32_t*>(region);
}

Database::IndexHeader Database::readIndexHeader() const {
  IndexHeader header;
  for (std::size_t i = 0; i < header.size(); ++i) header[i] = indexHeader_[i];
  return header;
}

std::int64_t Database::dataVersion() {
  const StatementRun run(*dataVersion_);
  return dataVersion_->step() == SQLITE_ROW ? dataVersion_->number(0) : -1;
}

bool Database::changedByOthers() {
  if (readOnly_) return false;
  if (indexHeader_ != nullptr) {
    // The header changes with every commit, whoever makes it; the version only with others'.
    const IndexHeader header = readIndexHeader();
    if (header == seenHeader_) return false;
    seenHeader_ = header;
  }
  const std::int64_t version = dataVersion();
  return std::exchange(seenVersion_, version) != version || version < 0;
}

Status Database::prepare(Statement& statement, std::string_view sql) {
  return report(statement.prepare(handle_, sql));
}

// SQLite starts the log over with the next write once all of it has been moved. Readers that were
// there before count on the log as it is.
bool Database::logWouldStartOver() const {
  if (indexHeader_ == nullptr) return false;
  const std::uint32_t frames = indexHeader_[kFramesWord];
  return frames != 0 && frames == indexHeader_[kMovedFramesWord];
}

Status Database::begin() {
  failure_ = ERROR_SUCCESS;
  {
    const StatementRun run(*begin_);
    const Status status = report(begin_->step());
    if (status != ERROR_SUCCESS || !logWouldStartOver()) return status;
  }
  startsOver_ = lock_->take(MachineLock::kDatabaseByte, LockKind::Exclusive, Wait::Yes);
  if (startsOver_) return ERROR_SUCCESS;
  rollback();
  return report(SQLITE_BUSY);
}

void Database::letReadersIn() {
  if (startsOver_) lock_->release(MachineLock::kDatabaseByte);
  startsOver_ = false;
}

Status Database::commit() {
  int result = 0;
  {
    const StatementRun run(*commit_);
    result = commit_->step();
  }
  const Status status = report(result);
  if (status != ERROR_SUCCESS) return status;
  letReadersIn();
  checkpointIfLong();
  return status;
}

void Database::rollback() {
  // After a full disk SQLite may have rolled back by itself.
  if (sqlite3_get_autocommit(handle_) == 0) {
    const StatementRun run(*rollback_);
    rollback_->step();
  }
  letReadersIn();
}

Status Database::flush() {
  if (readOnly_) return ERROR_SUCCESS;
  sqlite3_file* log = nullptr;
  const int result = sqlite3_file_control(handle_, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
  if (result != SQLITE_OK || log == nullptr || log->pMethods == nullptr) return report(result);
  return report(log->pMethods->xSync(log, SQLITE_SYNC_NORMAL));
}

void Database::checkpointIfLong() {
  if (walPages_ < kLongLogPages) return;
  if (!lock_->take(MachineLock::kDatabaseByte, LockKind::Exclusive, Wait::No)) return;
  // Without waiting: where another connection reads the log, the next commit tries again. A
  // failure loses nothing, since the log stays.
  sqlite3_busy_timeout(handle_, 0);
  const int result =
      sqlite3_wal_checkpoint_v2(handle_, "main", SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
  if (result == SQLITE_OK) walPages_ = 0;
  sqlite3_busy_timeout(handle_, kBusyMilliseconds);
  lock_->release(MachineLock::kDatabaseByte);
}

Status Database::report(int result) {
  const Status status = statusOf(result, handle_ ? sqlite3_system_errno(handle_) : 0);
  if (status != ERROR_SUCCESS) failure_ = status;
  return status;
}

}  // namespace korvex::platform
