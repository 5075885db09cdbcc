// The words for status codes.
#include "platform/status.h"

#include <array>
#include <utility>

namespace korvex::platform {
namespace {

constexpr auto kWords = std::to_array<std::pair<Status, const char*>>({
    {ERROR_SUCCESS, "done"},
    {ERROR_FILE_NOT_FOUND, "the system cannot find the file, key or value"},
    {ERROR_PATH_NOT_FOUND, "the system cannot find the path"},
    {ERROR_ACCESS_DENIED, "access is denied"},
    {ERROR_INVALID_HANDLE, "the handle is invalid"},
    {ERROR_INVALID_DATA, "the data is invalid"},
    {ERROR_OUTOFMEMORY, "there is not enough memory"},
    {ERROR_NOT_READY, "the device is not ready"},
    {ERROR_WRITE_PROTECT, "the machine is read-only"},
    {ERROR_GEN_FAILURE, "a device attached to the system is not functioning"},
    {ERROR_SHARING_VIOLATION, "the file is in use by another program"},
    {ERROR_NOT_SUPPORTED, "the request is not supported"},
    {ERROR_FILE_EXISTS, "the file exists"},
    {ERROR_INVALID_PARAMETER, "the parameter is incorrect"},
    {ERROR_DISK_FULL, "there is not enough space on the disk"},
    {ERROR_CALL_NOT_IMPLEMENTED, "this machine does not support the call"},
    {ERROR_INVALID_NAME, "the name or its syntax is incorrect"},
    {ERROR_DIR_NOT_EMPTY, "the folder is not empty"},
    {ERROR_BAD_PATHNAME, "the path is malformed"},
    {ERROR_BUSY, "the machine is busy: another program is writing to it"},
    {ERROR_ALREADY_EXISTS, "it exists already"},
    {ERROR_FILENAME_EXCED_RANGE, "the name is too long"},
    {ERROR_MORE_DATA, "more data is available"},
    {ERROR_NO_MORE_ITEMS, "no more items"},
    {ERROR_NO_ASSOCIATION, "no program is associated with the file"},
    {ERROR_BADDB, "the registry database is damaged"},
    {ERROR_REGISTRY_IO_FAILED, "reading or writing the registry failed"},
    {ERROR_NOT_REGISTRY_FILE, "the file is not a registry"},
    {ERROR_KEY_DELETED, "the key has been deleted"},
    {ERROR_NO_UNICODE_TRANSLATION, "the machine's code page cannot hold the text"},
    {ERROR_CANCELLED, "the change was given up"},
    {ERROR_PRIVILEGE_NOT_HELD, "a required privilege is not held"},
    {ERROR_NO_SYSTEM_RESOURCES, "the registry file has no room for it"},
});

}  // namespace

std::string describeStatus(Status status) {
  for (const auto& [number, words] : kWords) {
    if (number == status) return std::to_string(status) + " (" + words + ")";
  }
  return std::to_string(status);
}

}  // namespace korvex::platform
