// Recognises registry.db by its header.
#include "platform/embedded/database_file.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace korvex::platform {
namespace {

// Source of the offsets: "The Database Header" in SQLite's file format.
constexpr std::size_t kHeaderBytes = 100;
constexpr std::size_t kPageSizeAt = 16;
constexpr std::size_t kPageCountAt = 28;
constexpr std::size_t kUserVersionAt = 60;
constexpr std::size_t kApplicationIdAt = 68;

using Header = std::array<unsigned char, kHeaderBytes>;

std::uint32_t bigEndian(const Header& header, std::size_t at, std::size_t bytes) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < bytes; ++i) number = number << 8 | header[at + i];
  return number;
}

std::uint64_t expectedSize(const Header& header) {
  const std::uint32_t raw = bigEndian(header, kPageSizeAt, 2);
  const std::uint64_t page = raw == 1 ? 65536 : raw;
  return page * bigEndian(header, kPageCountAt, 4);
}

// Through SQLite's own file, unlocked: closing any other descriptor of the file would drop the
// locks that this process may hold on it by another connection.
bool readHeader(const std::filesystem::path& file, Header& header, bool& whole) {
  sqlite3* handle = nullptr;
  sqlite3_file* opened = nullptr;
  int result = sqlite3_open_v2(file.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr);
  if (result == SQLITE_OK) {
    result = sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &opened);
  }
  if (result == SQLITE_OK) {
    whole = opened->pMethods->xRead(opened, header.data(), kHeaderBytes, 0) == SQLITE_OK;
  }
  sqlite3_close(handle);
  return result == SQLITE_OK;
}

}  // namespace

Status checkDatabaseFile(const std::filesystem::path& file, std::string& message) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) {
    message = fmt::format("{}: there is no registry. Copy it back from a backup of the machine.",
                          file.string());
    return ERROR_FILE_NOT_FOUND;
  }
  Header header = {};
  bool whole = false;
  if (!readHeader(file, header, whole)) {
    message = fmt::format("{}: the registry cannot be opened. Check the file's permissions.",
                          file.string());
    return ERROR_ACCESS_DENIED;
  }
  if (!whole || std::memcmp(header.data(), "SQLite format 3", 16) != 0 ||
      bigEndian(header, kApplicationIdAt, 4) != kApplicationId) {
    message =
        fmt::format("{}: this is no registry of Korvex's; it was left as it is.", file.string());
    return ERROR_NOT_REGISTRY_FILE;
  }
  const auto version = bigEndian(header, kUserVersionAt, 4);
  if (version != kSchemaVersion) {
    message = fmt::format(
        "{}: the registry has format {}, this Korvex reads format {}. Use the Korvex that made "
        "it.",
        file.string(), version, kSchemaVersion);
    return ERROR_NOT_REGISTRY_FILE;
  }
  // A checkpoint that was killed leaves a short file whose rest is still in the log.
  std::filesystem::path log = file;
  log += "-wal";
  const bool logged = std::filesystem::exists(log, error) && std::filesystem::file_size(log) > 0;
  if (!logged && std::filesystem::file_size(file, error) < expectedSize(header)) {
    message =
        fmt::format("{}: the registry is cut short. Restore it from a backup.", file.string());
    return ERROR_BADDB;
  }
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform
