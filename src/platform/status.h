// Status codes of a machine: the Win32 error numbers, as 32-bit signed integers, 0 for success.
#pragma once

#include <cstdint>
#include <string>

namespace korvex::platform {

using Status = std::int32_t;

// Source of the numbers and texts: winerror.h as Windows documents it.
constexpr Status ERROR_SUCCESS = 0;
constexpr Status ERROR_FILE_NOT_FOUND = 2;
constexpr Status ERROR_PATH_NOT_FOUND = 3;
constexpr Status ERROR_ACCESS_DENIED = 5;
constexpr Status ERROR_INVALID_HANDLE = 6;
constexpr Status ERROR_INVALID_DATA = 13;
constexpr Status ERROR_OUTOFMEMORY = 14;
constexpr Status ERROR_NOT_READY = 21;
constexpr Status ERROR_WRITE_PROTECT = 19;
constexpr Status ERROR_GEN_FAILURE = 31;
constexpr Status ERROR_SHARING_VIOLATION = 32;
constexpr Status ERROR_NOT_SUPPORTED = 50;
constexpr Status ERROR_FILE_EXISTS = 80;
constexpr Status ERROR_INVALID_PARAMETER = 87;
constexpr Status ERROR_DISK_FULL = 112;
constexpr Status ERROR_CALL_NOT_IMPLEMENTED = 120;
constexpr Status ERROR_INVALID_NAME = 123;
constexpr Status ERROR_DIR_NOT_EMPTY = 145;
constexpr Status ERROR_BAD_PATHNAME = 161;
constexpr Status ERROR_BUSY = 170;
constexpr Status ERROR_ALREADY_EXISTS = 183;
constexpr Status ERROR_FILENAME_EXCED_RANGE = 206;
constexpr Status ERROR_MORE_DATA = 234;
constexpr Status ERROR_NO_MORE_ITEMS = 259;
constexpr Status ERROR_NO_ASSOCIATION = 1155;
constexpr Status ERROR_BADDB = 1009;
constexpr Status ERROR_REGISTRY_IO_FAILED = 1016;
constexpr Status ERROR_NOT_REGISTRY_FILE = 1017;
constexpr Status ERROR_KEY_DELETED = 1018;
constexpr Status ERROR_NO_UNICODE_TRANSLATION = 1113;
constexpr Status ERROR_CANCELLED = 1223;
constexpr Status ERROR_PRIVILEGE_NOT_HELD = 1314;
constexpr Status ERROR_NO_SYSTEM_RESOURCES = 1450;

// "5 (access is denied)": the number and Windows' own words for it, for people.
std::string describeStatus(Status status);

}  // namespace korvex::platform
