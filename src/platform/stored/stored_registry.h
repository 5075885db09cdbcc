// The registry calls over a store of keys: handles, rights, limits, brackets.
#pragma once

#include <cstdint>
#include <string>

#include "platform/registry.h"
#include "platform/stored/handle_table.h"
#include "platform/stored/key_paths.h"
#include "platform/stored/key_store.h"
#include "platform/stored/key_view.h"
#include "platform/stored/names.h"

namespace korvex::platform {

struct RegistryTraits {
  RegistryPlaces places;
  const CodePage* codePage = nullptr;  // the text that it can hold; null: all of Unicode
};

// The order in which subkeys are told.
constexpr KeyOrder keyOrderOf(Family family) {
  return family == Family::Nt ? KeyOrder::Alphabetical : KeyOrder::Creation;
}

// A write outside a bracket is a change of its own. A write that the disk refuses ends the whole
// change at once: nothing of it stays, further writes and the commit give the same status, and
// handles to keys that it had created give 1018.
//
// Limits beyond platform/registry.h: one value up to 64 MiB and a key up to 512 MiB; on 95, 98 and
// Me 16,300 bytes and 64 KiB; a store may allow less. A longer value gives 87, a key that would
// grow too large 14. A key may be deleted through a handle with any right to write.
class StoredRegistry : public Registry {
 public:
  // The store is the caller's and outlives the registry.
  StoredRegistry(KeyStore& store, RegistryTraits traits);

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
  Status flush() override { return store_.flush(); }
  std::string lastRefusal() const override { return store_.lastRefusal(); }

 private:
  template <typename Operation>
  Status reading(Operation operation);
  template <typename Operation>
  Status writing(Operation operation);
  Status entryOf(HKEY key, AccessMask needed, OpenKeyEntry& entry);
  Status loadKey(HKEY key, AccessMask needed, StoredKey*& stored);
  Status viewOf(HKEY key, AccessMask needed, LayeredKey& layered);
  Status openHandle(const FoundKey& found, AccessMask access, HKEY& result);
  Status createKey(HKEY key, std::string_view subKey, FoundKey& found, bool& created);
  Status deleteKey(HKEY key, std::string_view subKey);
  Status checkRoom(const ValueBlob& values, std::string_view name, std::size_t size) const;
  void noteChange(const StoredKey& key);
  bool nt() const { return traits_.places.family == Family::Nt; }

  Status startChange();
  void undoChange();
  void settle();
  void forget();

  KeyStore& store_;
  RegistryTraits traits_;
  TextRules rules_;
  KeyPaths paths_;
  KeyView view_;
  HandleTable handles_;
  int depth_ = 0;                   // of brackets
  Status refused_ = ERROR_SUCCESS;  // why the change that is open has come to nothing
  std::int64_t firstNewKey_ = 0;
};

}  // namespace korvex::platform
