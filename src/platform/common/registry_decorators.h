// Registries around another registry: one that fails on demand, one that records what is written,
// one that only pretends to write. None owns what it wraps.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/registry.h"

namespace korvex::platform {

// Hands every call on. Each asks admit() first; a status other than 0 is the call's result and the
// inner registry does not see it. Closing a handle and rolling back are not asked about.
class ForwardingRegistry : public Registry {
 public:
  explicit ForwardingRegistry(Registry& inner) : inner_(inner) {}

  Status RegOpenKeyExA(HKEY key, std::string_view subKey, AccessMask access, HKEY& result) override;
  Status RegCreateKeyExA(HKEY key, std::string_view subKey, AccessMask access, HKEY& result,
                         std::uint32_t& disposition) override;
  Status RegCloseKey(HKEY key) override;
  Status RegQueryValueExA(HKEY key, std::string_view valueName, RegType* type, void* data,
                          std::uint32_t* size) override;
  Status RegSetValueExA(HKEY key, std::string_view valueName, RegType type, const void* data,
                        std::uint32_t size) override;
  Status RegDeleteValueA(HKEY key, std::string_view valueName) override;
  Status RegDeleteKeyA(HKEY key, std::string_view subKey) override;
  Status RegEnumKeyExA(HKEY key, std::uint32_t index, char* name,
                       std::uint32_t* nameLength) override;
  Status RegEnumValueA(HKEY key, std::uint32_t index, char* name, std::uint32_t* nameLength,
                       RegType* type, void* data, std::uint32_t* dataSize) override;
  Status RegQueryInfoKeyA(HKEY key, KeyInfo& info) override;
  Status beginChange() override;
  Status commitChange() override;
  void rollbackChange() override;
  Status flush() override;
  std::string lastRefusal() const override { return inner_.lastRefusal(); }

 protected:
  virtual Status admit() { return ERROR_SUCCESS; }
  Registry& inner_;
};

enum class Afterwards { Recover, KeepFailing };

// Fails the n-th admitted call (from 1), and those after it too with KeepFailing. A failing
// commitChange rolls the inner change back, as a real one does. 0 fails none and only counts.
class FailingRegistry : public ForwardingRegistry {
 public:
  FailingRegistry(Registry& inner, int nth, Status status,
                  Afterwards afterwards = Afterwards::Recover)
      : ForwardingRegistry(inner), nth_(nth), status_(status), afterwards_(afterwards) {}

  Status commitChange() override;
  int calls() const { return calls_; }
  bool failed() const { return nth_ > 0 && calls_ >= nth_; }

 protected:
  Status admit() override;

 private:
  int calls_ = 0;
  int nth_;
  Status status_;
  Afterwards afterwards_;
};

struct RegistryData {
  RegType type = REG_NONE;
  std::string bytes;
  bool operator==(const RegistryData&) const = default;
};

enum class RegistryWrite { SetValue, DeleteValue, CreateKey, DeleteKey };

struct RegistryRecord {
  RegistryWrite write = RegistryWrite::SetValue;
  std::string key;    // from the root's name on: "HKEY_CURRENT_USER\Control Panel\Desktop"
  std::string value;  // "" for the default value and for keys
  std::optional<RegistryData> before;  // of a value; nothing where there was none
  std::optional<RegistryData> after;
};

// Records each successful write in order; the writes of a change that was rolled back are dropped.
// A key deleted with its tree is one record.
class RecordingRegistry : public ForwardingRegistry {
 public:
  using ForwardingRegistry::ForwardingRegistry;

  const std::vector<RegistryRecord>& records() const { return records_; }

  Status RegOpenKeyExA(HKEY key, std::string_view subKey, AccessMask access, HKEY& result) override;
  Status RegCreateKeyExA(HKEY key, std::string_view subKey, AccessMask access, HKEY& result,
                         std::uint32_t& disposition) override;
  Status RegCloseKey(HKEY key) override;
  Status RegSetValueExA(HKEY key, std::string_view valueName, RegType type, const void* data,
                        std::uint32_t size) override;
  Status RegDeleteValueA(HKEY key, std::string_view valueName) override;
  Status RegDeleteKeyA(HKEY key, std::string_view subKey) override;
  Status beginChange() override;
  Status commitChange() override;
  void rollbackChange() override;

 private:
  struct Place {
    HKEY root = 0;
    std::string path;
  };
  Place placeOf(HKEY key, std::string_view subKey) const;
  bool keyExists(const Place& place);
  std::optional<RegistryData> dataOf(const Place& place, std::string_view valueName);
  void recordCreated(const Place& place, std::size_t existing);
  void endChange(bool kept);

  std::map<HKEY, Place> places_;
  std::vector<RegistryRecord> records_;
  int depth_ = 0;
  bool refused_ = false;
  std::size_t changeStart_ = 0;
};

// Reads what is there; writes succeed and change nothing. What would fail for want of a key or a
// value (2) does so here too. A key that would be created is open and empty.
class PretendingRegistry : public ForwardingRegistry {
 public:
  using ForwardingRegistry::ForwardingRegistry;

  Status RegOpenKeyExA(HKEY key, std::string_view subKey, AccessMask access, HKEY& result) override;
  Status RegCreateKeyExA(HKEY key, std::string_view subKey, AccessMask access, HKEY& result,
                         std::uint32_t& disposition) override;
  Status RegCloseKey(HKEY key) override;
  Status RegQueryValueExA(HKEY key, std::string_view valueName, RegType* type, void* data,
                          std::uint32_t* size) override;
  Status RegSetValueExA(HKEY key, std::string_view valueName, RegType type, const void* data,
                        std::uint32_t size) override;
  Status RegDeleteValueA(HKEY key, std::string_view valueName) override;
  Status RegDeleteKeyA(HKEY key, std::string_view subKey) override;
  Status RegEnumKeyExA(HKEY key, std::uint32_t index, char* name,
                       std::uint32_t* nameLength) override;
  Status RegEnumValueA(HKEY key, std::uint32_t index, char* name, std::uint32_t* nameLength,
                       RegType* type, void* data, std::uint32_t* dataSize) override;
  Status RegQueryInfoKeyA(HKEY key, KeyInfo& info) override;
  Status beginChange() override { return ERROR_SUCCESS; }
  Status commitChange() override { return ERROR_SUCCESS; }
  void rollbackChange() override {}
  Status flush() override { return ERROR_SUCCESS; }

 private:
  bool pretended(HKEY key) const { return key >= kFirstHandle && key < nextHandle_; }

  static constexpr HKEY kFirstHandle = 0x70000001;
  HKEY nextHandle_ = kFirstHandle;
};

}  // namespace korvex::platform
