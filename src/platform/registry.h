// The registry of a machine: the ten Reg...A calls and the bracket that makes several of them one
// change.
//
// Text (names, REG_SZ, REG_EXPAND_SZ and REG_MULTI_SZ data) is UTF-8 where Win32 says ANSI; all
// lengths are in bytes. Two sequences beyond plain UTF-8 keep every Windows text whole: a lone
// surrogate stands as its three-byte form (WTF-8), and the last odd byte of a text value whose
// UTF-16 data had an odd length stands as 0xFF followed by that byte. Data of text types carries
// its terminating zero when the stored value has one. What a machine cannot represent (its code
// page on Windows 95, 98 and Me) is refused with ERROR_NO_UNICODE_TRANSLATION, never changed.
//
// Names compare without regard to case by full Unicode simple folding, and are kept as written.
// Access masks are enforced: a write through a handle opened for query gives 5. An unknown or
// closed handle gives 6; a handle whose key has been deleted gives 1018.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace korvex::platform {

using HKEY = std::uint32_t;        // an open key, or one of the predefined roots below
using AccessMask = std::uint32_t;  // KEY_... bits
using RegType = std::uint32_t;     // the raw type number, whatever it is

// Source: winreg.h and winnt.h as Windows documents them.
constexpr HKEY HKEY_CLASSES_ROOT = 0x80000000;
constexpr HKEY HKEY_CURRENT_USER = 0x80000001;
constexpr HKEY HKEY_LOCAL_MACHINE = 0x80000002;
constexpr HKEY HKEY_USERS = 0x80000003;
constexpr HKEY HKEY_CURRENT_CONFIG = 0x80000005;

constexpr AccessMask KEY_QUERY_VALUE = 0x1;
constexpr AccessMask KEY_SET_VALUE = 0x2;
constexpr AccessMask KEY_CREATE_SUB_KEY = 0x4;
constexpr AccessMask KEY_ENUMERATE_SUB_KEYS = 0x8;
constexpr AccessMask KEY_READ = 0x20019;
constexpr AccessMask KEY_WRITE = 0x20006;
constexpr AccessMask KEY_ALL_ACCESS = 0xF003F;

constexpr RegType REG_NONE = 0;
constexpr RegType REG_SZ = 1;
constexpr RegType REG_EXPAND_SZ = 2;
constexpr RegType REG_BINARY = 3;
constexpr RegType REG_DWORD = 4;
constexpr RegType REG_DWORD_BIG_ENDIAN = 5;
constexpr RegType REG_LINK = 6;
constexpr RegType REG_MULTI_SZ = 7;
constexpr RegType REG_QWORD = 11;

constexpr std::uint32_t REG_CREATED_NEW_KEY = 1;
constexpr std::uint32_t REG_OPENED_EXISTING_KEY = 2;

// Longest name of a key or value, in characters (UTF-16 units), without the terminating zero.
constexpr std::size_t kMaxNameCharacters = 255;
// A name buffer of this many bytes holds every name, its terminating zero included.
constexpr std::size_t kNameBufferBytes = 3 * kMaxNameCharacters + 1;

// What RegQueryInfoKeyA tells. Lengths in bytes, without terminating zeros for names.
struct KeyInfo {
  std::uint32_t subKeys = 0;
  std::uint32_t longestSubKeyName = 0;
  std::uint32_t values = 0;
  std::uint32_t longestValueName = 0;
  std::uint32_t longestValueData = 0;
};

class Registry {
 public:
  virtual ~Registry() = default;

  // An empty subKey opens the same key. 2: no such key. A path with a leading, trailing or doubled
  // backslash, or a name over 255 characters, is refused (161, 206); an empty part never matches.
  virtual Status RegOpenKeyExA(HKEY key, std::string_view subKey, AccessMask access,
                               HKEY& result) = 0;
  // Creates every missing key of the path; disposition is REG_CREATED_NEW_KEY or
  // REG_OPENED_EXISTING_KEY for the last one. Needs KEY_CREATE_SUB_KEY where a key is created.
  virtual Status RegCreateKeyExA(HKEY key, std::string_view subKey, AccessMask access, HKEY& result,
                                 std::uint32_t& disposition) = 0;
  // Closing a predefined root succeeds and does nothing.
  virtual Status RegCloseKey(HKEY key) = 0;

  // With data == nullptr only type and size are told. A buffer that is too small: 234, size holds
  // what is needed and the buffer is untouched. valueName "" is the key's default value. The
  // pointers type and size may be null when data is null.
  virtual Status RegQueryValueExA(HKEY key, std::string_view valueName, RegType* type, void* data,
                                  std::uint32_t* size) = 0;
  virtual Status RegSetValueExA(HKEY key, std::string_view valueName, RegType type,
                                const void* data, std::uint32_t size) = 0;
  virtual Status RegDeleteValueA(HKEY key, std::string_view valueName) = 0;
  // On NT a key that has subkeys stays (5); on 95, 98 and Me its whole tree goes. An empty subKey
  // deletes the key behind the handle itself; a predefined root cannot be deleted (5).
  virtual Status RegDeleteKeyA(HKEY key, std::string_view subKey) = 0;

  // nameLength: in, the buffer's size with room for the zero; out, the length without it. A buffer
  // that is too small gives 234; an index past the end 259. Subkeys come in alphabetical order
  // (case folded) on NT and in creation order on 95, 98 and Me; values in the order in which the
  // machine keeps them: that of their creation, but for a prefix of Wine's, which sorts them.
  virtual Status RegEnumKeyExA(HKEY key, std::uint32_t index, char* name,
                               std::uint32_t* nameLength) = 0;
  // type, data and dataSize may be null; with data == nullptr and dataSize given, the size is told.
  virtual Status RegEnumValueA(HKEY key, std::uint32_t index, char* name, std::uint32_t* nameLength,
                               RegType* type, void* data, std::uint32_t* dataSize) = 0;
  virtual Status RegQueryInfoKeyA(HKEY key, KeyInfo& info) = 0;

  // Brackets what follows into one change: other processes and a crash see all of it or nothing.
  // Brackets nest; only the outermost counts, and one refused inside refuses the whole. A machine
  // that has no such thing (a live system) keeps these defaults and each call stands alone.
  virtual Status beginChange() { return ERROR_SUCCESS; }
  virtual Status commitChange() { return ERROR_SUCCESS; }
  virtual void rollbackChange() {}
  // Returns when everything committed so far is on the disk.
  virtual Status flush() { return ERROR_SUCCESS; }
  // Why the last change could not begin, or the last flush has failed, for people: the file or who
  // holds it, and what to do; "" where there is no more to say than the status does.
  virtual std::string lastRefusal() const { return {}; }
};

// Holds one bracket open; what was not committed is rolled back when the guard goes.
class RegistryChange {
 public:
  explicit RegistryChange(Registry& registry)
      : registry_(registry), status_(registry.beginChange()) {
    open_ = status_ == ERROR_SUCCESS;
  }
  ~RegistryChange() {
    if (open_) registry_.rollbackChange();
  }
  RegistryChange(const RegistryChange&) = delete;
  RegistryChange& operator=(const RegistryChange&) = delete;

  // The status of the beginning: busy or read-only machines refuse here.
  Status status() const { return status_; }
  Status commit() {
    if (!open_) return status_;
    open_ = false;
    return registry_.commitChange();
  }

 private:
  Registry& registry_;
  Status status_;
  bool open_ = false;
};

// An open key that closes itself.
class OpenKey {
 public:
  OpenKey(Registry& registry, HKEY root, std::string_view path, AccessMask access)
      : registry_(registry), status_(registry.RegOpenKeyExA(root, path, access, key_)) {}
  ~OpenKey() {
    if (status_ == ERROR_SUCCESS) registry_.RegCloseKey(key_);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  Status status() const { return status_; }
  HKEY get() const { return key_; }

 private:
  Registry& registry_;
  HKEY key_ = 0;
  Status status_;
};

}  // namespace korvex::platform
