// What every machine's registry must do: paths, rights, handles, types, orders, aliases, limits.
#include <algorithm>
#include <cstring>

#include "platform/contract/machine_kinds.h"
#include "platform/contract/registry_access.h"

namespace korvex::platform {
namespace {

using test::Family;
using test::Names;
using namespace std::string_literals;

class ContractRegistry : public testing::TestWithParam<test::MachineKind> {
 protected:
  HKEY make(std::string_view path, AccessMask access = KEY_ALL_ACCESS) {
    HKEY key = 0;
    std::uint32_t disposition = 0;
    EXPECT_EQ(registry.RegCreateKeyExA(HKEY_LOCAL_MACHINE, path, access, key, disposition), 0);
    return key;
  }
  HKEY open(std::string_view path, AccessMask access) {
    HKEY key = 0;
    EXPECT_EQ(registry.RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, access, key), 0) << path;
    return key;
  }
  Status set(HKEY key, std::string_view name, std::string_view bytes, RegType type = REG_BINARY) {
    return registry.RegSetValueExA(key, name, type, bytes.data(),
                                   static_cast<std::uint32_t>(bytes.size()));
  }
  Status queryOnly(HKEY key, std::string_view name) {
    return registry.RegQueryValueExA(key, name, nullptr, nullptr, nullptr);
  }
  bool nt() const { return GetParam().family == Family::Nt; }

  std::unique_ptr<test::ContractMachine> owner = GetParam().make();
  Registry& registry = owner->machine().registry();
  test::RegistryAccess look{registry};
};

INSTANTIATE_TEST_SUITE_P(Machines, ContractRegistry, test::machineKinds(), test::machineKindName);

TEST_P(ContractRegistry, MalformedPathsAreRefused) {
  HKEY key = 0;
  std::uint32_t disposition = 0;
  make("SOFTWARE\\a\\b");
  for (const char* path : {"\\SOFTWARE", "SOFTWARE\\", "SOFTWARE\\\\a", "\\", "\\\\"}) {
    EXPECT_EQ(look.open(HKEY_LOCAL_MACHINE, path), ERROR_BAD_PATHNAME) << path;
    EXPECT_EQ(registry.RegCreateKeyExA(HKEY_LOCAL_MACHINE, path, KEY_ALL_ACCESS, key, disposition),
              ERROR_BAD_PATHNAME);
    EXPECT_EQ(registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, path), ERROR_BAD_PATHNAME) << path;
  }
  EXPECT_EQ(look.open(HKEY_LOCAL_MACHINE, "SOFTWARE\\none\\b"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(look.open(HKEY_LOCAL_MACHINE, "SOFTWARE\\a\\b"), ERROR_SUCCESS);
}

TEST_P(ContractRegistry, NamesHoldTwoHundredFiftyFiveCharacters) {
  std::string longest;
  for (int i = 0; i < 255; ++i) longest += "\xE2\x82\xAC";  // the euro: in the code page of 9x too
  const HKEY key = make("SOFTWARE\\long");
  EXPECT_EQ(look.create(HKEY_LOCAL_MACHINE, "SOFTWARE\\long\\" + longest), ERROR_SUCCESS);
  EXPECT_EQ(set(key, longest, "x"), ERROR_SUCCESS);
  EXPECT_EQ(look.subKeys(key), Names{longest});
  EXPECT_EQ(look.valueNames(HKEY_LOCAL_MACHINE, "SOFTWARE\\long"), Names{longest});
  EXPECT_EQ(look.create(HKEY_LOCAL_MACHINE, longest + "x\\y"), ERROR_FILENAME_EXCED_RANGE);
  EXPECT_EQ(set(key, longest + "x", "x"), ERROR_FILENAME_EXCED_RANGE);
  EXPECT_EQ(set(key, "zero\0inside"s, "x"), ERROR_INVALID_PARAMETER);
}

TEST_P(ContractRegistry, NamesFoldAndAreKeptAsWritten) {
  const HKEY key = make("SOFTWARE\\Über Größe\\Änderung");
  EXPECT_EQ(set(key, "Straße", "1"), ERROR_SUCCESS);
  EXPECT_EQ(set(key, "sTRAßE", "2"), ERROR_SUCCESS);
  EXPECT_EQ(look.get(HKEY_LOCAL_MACHINE, "software\\üBER gRÖßE\\ÄNDERUNG", "STRAßE"), "2");
  std::uint32_t disposition = 0;
  HKEY again = 0;
  EXPECT_EQ(registry.RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\üBER Größe", KEY_READ, again,
                                     disposition),
            ERROR_SUCCESS);
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
  EXPECT_EQ(look.subKeys(again), Names{"Änderung"});
  EXPECT_EQ(look.valueNames(HKEY_LOCAL_MACHINE, "SOFTWARE\\Über Größe\\Änderung"), Names{"Straße"});
}

TEST_P(ContractRegistry, RightsAreEnforced) {
  EXPECT_EQ(set(make("SOFTWARE\\r\\sub"), "v", "x"), ERROR_SUCCESS);
  char name[kNameBufferBytes];
  std::uint32_t length = sizeof name;
  KeyInfo info;
  HKEY made = 0;
  std::uint32_t disposition = 0;
  const HKEY query = open("SOFTWARE\\r\\sub", KEY_QUERY_VALUE);
  EXPECT_EQ(queryOnly(query, "v"), ERROR_SUCCESS);
  EXPECT_EQ(set(query, "v", "y"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry.RegDeleteValueA(query, "v"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry.RegEnumKeyExA(query, 0, name, &length), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry.RegDeleteKeyA(query, ""), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry.RegCreateKeyExA(query, "x", KEY_READ, made, disposition), ERROR_ACCESS_DENIED);
  const HKEY write = open("SOFTWARE\\r", KEY_SET_VALUE);
  EXPECT_EQ(set(write, "v", "y"), ERROR_SUCCESS);
  EXPECT_EQ(queryOnly(write, "v"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry.RegQueryInfoKeyA(write, info), ERROR_ACCESS_DENIED);
  // What is there is opened without the right to create.
  EXPECT_EQ(registry.RegCreateKeyExA(write, "sub", KEY_READ, made, disposition), ERROR_SUCCESS);
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
}

TEST_P(ContractRegistry, HandlesThatAreNotOpenAreRefused) {
  const HKEY key = make("SOFTWARE\\h");
  EXPECT_EQ(registry.RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegCloseKey(key), ERROR_INVALID_HANDLE);
  const HKEY other = make("SOFTWARE\\h");
  for (const HKEY bad : {key, HKEY{0}, HKEY{12345}, HKEY{0x80000004}, HKEY{0x80000099}}) {
    EXPECT_EQ(queryOnly(bad, ""), ERROR_INVALID_HANDLE) << bad;
    EXPECT_EQ(set(bad, "v", "x"), ERROR_INVALID_HANDLE) << bad;
  }
  EXPECT_EQ(registry.RegCloseKey(HKEY_LOCAL_MACHINE), ERROR_SUCCESS);
  EXPECT_EQ(set(other, "v", "x"), ERROR_SUCCESS);
}

TEST_P(ContractRegistry, DeletedKeysAreToldByTheirHandles) {
  make("SOFTWARE\\d\\gone");
  const HKEY key = open("SOFTWARE\\d\\gone", KEY_ALL_ACCESS);
  EXPECT_EQ(registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\d\\gone"), ERROR_SUCCESS);
  EXPECT_EQ(look.open(HKEY_LOCAL_MACHINE, "SOFTWARE\\d\\gone"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(look.create(HKEY_LOCAL_MACHINE, "SOFTWARE\\d\\gone"), ERROR_SUCCESS);
  char name[kNameBufferBytes];
  std::uint32_t length = sizeof name;
  KeyInfo info;
  HKEY same = 0;
  EXPECT_EQ(queryOnly(key, ""), ERROR_KEY_DELETED);
  EXPECT_EQ(set(key, "v", "x"), ERROR_KEY_DELETED);
  EXPECT_EQ(registry.RegEnumKeyExA(key, 0, name, &length), ERROR_KEY_DELETED);
  EXPECT_EQ(registry.RegEnumValueA(key, 0, name, &length, nullptr, nullptr, nullptr),
            ERROR_KEY_DELETED);
  EXPECT_EQ(registry.RegQueryInfoKeyA(key, info), ERROR_KEY_DELETED);
  EXPECT_EQ(registry.RegOpenKeyExA(key, "", KEY_READ, same), ERROR_KEY_DELETED);
  EXPECT_EQ(registry.RegDeleteKeyA(key, ""), ERROR_KEY_DELETED);
  EXPECT_EQ(registry.RegCloseKey(key), ERROR_SUCCESS);
}

TEST_P(ContractRegistry, ValuesKeepRawTypeAndBytes) {
  const HKEY key = make("SOFTWARE\\types");
  const std::string large(16300, '\x80');
  const std::pair<RegType, std::string> values[] = {{REG_NONE, ""},
                                                    {REG_SZ, "text\0"s},
                                                    {REG_SZ, "no zero"},
                                                    {REG_EXPAND_SZ, "%A%\0"s},
                                                    {REG_BINARY, large},
                                                    {REG_DWORD, "odd"},
                                                    {REG_DWORD, "\1\0\0\0"s},
                                                    {REG_LINK, "\xFF\xFE"s},
                                                    {REG_MULTI_SZ, "a\0\0b\0\0"s},
                                                    {REG_MULTI_SZ, ""},
                                                    {REG_QWORD, "12345678"},
                                                    {0xFFFF0012, "\0"s}};
  for (std::size_t i = 0; i < std::size(values); ++i) {
    EXPECT_EQ(set(key, "other case", "x", 5), ERROR_SUCCESS);
    EXPECT_EQ(set(key, "OTHER CASE", values[i].second, values[i].first), ERROR_SUCCESS) << i;
    EXPECT_EQ(set(key, i == 0 ? "" : std::to_string(i), values[i].second, values[i].first), 0) << i;
  }
  owner->reopen(OpenMode::ReadWrite);
  Registry& reopened = owner->machine().registry();
  const OpenKey read(reopened, HKEY_LOCAL_MACHINE, "SOFTWARE\\types", KEY_READ);
  for (std::size_t i = 0; i < std::size(values); ++i) {
    RegType type = 99;
    std::string data(20000, '\0');
    auto size = static_cast<std::uint32_t>(data.size());
    const std::string name = i == 0 ? "" : std::to_string(i);
    EXPECT_EQ(reopened.RegQueryValueExA(read.get(), name, &type, data.data(), &size), 0);
    EXPECT_EQ(type, values[i].first) << i;
    EXPECT_EQ(data.substr(0, size), values[i].second) << i;
  }
}

TEST_P(ContractRegistry, BuffersThatAreTooSmallStayUntouched) {
  const HKEY key = make("SOFTWARE\\buffers\\subkey");
  EXPECT_EQ(set(key, "value", "12345", 77), ERROR_SUCCESS);
  char data[8] = "xxxxxxx";
  char name[8] = "yyyyyyy";
  RegType type = 0;
  std::uint32_t size = 4;
  std::uint32_t length = 5;  // no room for the zero
  EXPECT_EQ(registry.RegQueryValueExA(key, "value", &type, data, &size), ERROR_MORE_DATA);
  EXPECT_EQ(size, 5U);
  EXPECT_EQ(type, 77U);
  size = 8;
  EXPECT_EQ(registry.RegEnumValueA(key, 0, name, &length, nullptr, data, &size), ERROR_MORE_DATA);
  const HKEY parent = open("SOFTWARE\\buffers", KEY_READ);
  length = 6;
  EXPECT_EQ(registry.RegEnumKeyExA(parent, 0, name, &length), ERROR_MORE_DATA);
  EXPECT_STREQ(data, "xxxxxxx");
  EXPECT_STREQ(name, "yyyyyyy");
  length = 7;
  EXPECT_EQ(registry.RegEnumKeyExA(parent, 0, name, &length), ERROR_SUCCESS);
  EXPECT_STREQ(name, "subkey");
  EXPECT_EQ(length, 6U);
  EXPECT_EQ(registry.RegEnumKeyExA(parent, 1, name, &length), ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(registry.RegQueryValueExA(key, "value", nullptr, nullptr, &size), ERROR_SUCCESS);
  EXPECT_EQ(size, 5U);
  EXPECT_EQ(registry.RegQueryValueExA(key, "none", nullptr, nullptr, nullptr),
            ERROR_FILE_NOT_FOUND);
}

TEST_P(ContractRegistry, SubKeysAndValuesComeInTheirOrder) {
  const HKEY key = make("SOFTWARE\\order");
  for (const char* name : {"b", "C", "a", "\xC3\xA4"}) {
    EXPECT_EQ(look.create(HKEY_LOCAL_MACHINE, "SOFTWARE\\order\\"s + name), ERROR_SUCCESS);
    EXPECT_EQ(set(key, name, "x"), ERROR_SUCCESS);
  }
  const Names created{"b", "C", "a", "\xC3\xA4"};
  EXPECT_EQ(look.subKeys(key), nt() ? (Names{"a", "b", "C", "\xC3\xA4"}) : created);
  EXPECT_EQ(set(key, "B", "replaced"), ERROR_SUCCESS);
  EXPECT_EQ(look.valueNames(HKEY_LOCAL_MACHINE, "SOFTWARE\\order"), created);
  EXPECT_EQ(registry.RegDeleteValueA(key, "c"), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegDeleteValueA(key, "c"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(set(key, "C", "again"), ERROR_SUCCESS);
  EXPECT_EQ(look.valueNames(HKEY_LOCAL_MACHINE, "SOFTWARE\\order"),
            (Names{"b", "a", "\xC3\xA4", "C"}));
}

TEST_P(ContractRegistry, DeletingTheFirstSubKeyAgainAndAgainEmptiesTheKey) {
  const HKEY key = make("SOFTWARE\\many");
  RegistryChange change(registry);
  for (int i = 0; i < 300; ++i) {
    EXPECT_EQ(look.create(HKEY_LOCAL_MACHINE, "SOFTWARE\\many\\" + std::to_string(i * 7 % 300)), 0);
  }
  char name[kNameBufferBytes];
  std::uint32_t length = sizeof name;
  std::uint32_t left = 300;
  while (registry.RegEnumKeyExA(key, left % 3 == 0 ? 0 : left / 2, name, &length) == 0) {
    ASSERT_EQ(registry.RegDeleteKeyA(key, {name, length}), ERROR_SUCCESS);
    length = sizeof name;
    KeyInfo info;
    ASSERT_EQ(registry.RegQueryInfoKeyA(key, info), ERROR_SUCCESS);
    ASSERT_EQ(info.subKeys, --left);
  }
  EXPECT_EQ(left, 0U);
}

TEST_P(ContractRegistry, InfoTellsTheLongest) {
  const HKEY key = make("SOFTWARE\\info");
  KeyInfo info;
  for (const char* name : {"a", "\xC3\xA4\xC3\xA4", "bb"}) {
    EXPECT_EQ(look.create(HKEY_LOCAL_MACHINE, "SOFTWARE\\info\\"s + name), ERROR_SUCCESS);
    EXPECT_EQ(set(key, name + "v"s, name), ERROR_SUCCESS);
  }
  EXPECT_EQ(registry.RegQueryInfoKeyA(key, info), ERROR_SUCCESS);
  EXPECT_EQ(info.subKeys, 3U);
  EXPECT_EQ(info.longestSubKeyName, 4U);
  EXPECT_EQ(info.values, 3U);
  EXPECT_EQ(info.longestValueName, 5U);
  EXPECT_EQ(info.longestValueData, 4U);
  EXPECT_EQ(registry.RegDeleteKeyA(key, "\xC3\xA4\xC3\xA4"), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegQueryInfoKeyA(key, info), ERROR_SUCCESS);
  EXPECT_EQ(info.longestSubKeyName, 2U);
}

TEST_P(ContractRegistry, KeysWithSubKeysStayOnNtAndGoOnNineX) {
  const HKEY leaf = make("SOFTWARE\\tree\\a\\b");
  const HKEY top = open("SOFTWARE\\tree", KEY_ALL_ACCESS);
  EXPECT_EQ(registry.RegDeleteKeyA(top, "none"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(registry.RegDeleteKeyA(top, "a"), nt() ? ERROR_ACCESS_DENIED : ERROR_SUCCESS);
  EXPECT_EQ(queryOnly(leaf, ""), nt() ? ERROR_FILE_NOT_FOUND : ERROR_KEY_DELETED);
  if (nt()) {
    EXPECT_EQ(registry.RegDeleteKeyA(top, "a\\b"), ERROR_SUCCESS);
    EXPECT_EQ(registry.RegDeleteKeyA(top, "A"), ERROR_SUCCESS);
  }
  EXPECT_EQ(look.subKeys(top), Names{});
  EXPECT_EQ(registry.RegDeleteKeyA(top, ""), ERROR_SUCCESS);
  EXPECT_EQ(look.open(HKEY_LOCAL_MACHINE, "SOFTWARE\\tree"), ERROR_FILE_NOT_FOUND);
  for (const HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS}) {
    EXPECT_EQ(look.create(root, ""), ERROR_SUCCESS);
    EXPECT_EQ(registry.RegDeleteKeyA(root, ""), ERROR_ACCESS_DENIED);
  }
}

TEST_P(ContractRegistry, RootsAreNamesOfOtherKeys) {
  EXPECT_EQ(look.set(HKEY_CLASSES_ROOT, ".kvt", "", "class"), ERROR_SUCCESS);
  EXPECT_EQ(look.get(HKEY_LOCAL_MACHINE, "Software\\Classes\\.KVT", ""), "class");
  EXPECT_EQ(look.set(HKEY_CURRENT_USER, "Environment", "x", "mine"), ERROR_SUCCESS);
  const Names users = look.subKeys(HKEY_USERS);
  const auto mine = std::find_if(users.begin(), users.end(), [&](const std::string& user) {
    return look.get(HKEY_USERS, user + "\\Environment", "x") == "mine";
  });
  ASSERT_NE(mine, users.end());
  EXPECT_EQ(registry.RegDeleteKeyA(HKEY_USERS, *mine), ERROR_ACCESS_DENIED);
  EXPECT_EQ(look.set(HKEY_CURRENT_CONFIG, "Display", "x", "cfg"), ERROR_SUCCESS);
  EXPECT_EQ(look.get(HKEY_LOCAL_MACHINE, GetParam().configKey + "\\Display", "x"), "cfg");
  EXPECT_EQ(registry.RegDeleteKeyA(HKEY_CURRENT_CONFIG, "Display"), ERROR_SUCCESS);
  EXPECT_EQ(look.subKeys(HKEY_LOCAL_MACHINE, GetParam().configKey), Names{});
}

TEST_P(ContractRegistry, CurrentControlSetFollowsSelect) {
  const std::string alias = "SYSTEM\\CurrentControlSet";
  EXPECT_EQ(look.set(HKEY_LOCAL_MACHINE, alias + "\\Control", "v", "1"), ERROR_SUCCESS);
  if (!nt()) {  // there it is a key like any other
    EXPECT_EQ(look.subKeys(HKEY_LOCAL_MACHINE, "SYSTEM"), Names{"CurrentControlSet"});
    return;
  }
  EXPECT_EQ(look.get(HKEY_LOCAL_MACHINE, alias + "\\Control", "v"), "1");
  EXPECT_EQ(look.get(HKEY_LOCAL_MACHINE, "SYSTEM\\ControlSet001\\Control", "v"), "1");
  EXPECT_EQ(look.subKeys(HKEY_LOCAL_MACHINE, "SYSTEM"), (Names{"ControlSet001", "Select"}));
  EXPECT_EQ(look.set(HKEY_LOCAL_MACHINE, "SYSTEM\\Select", "Current", "\2\0\0\0"s, REG_DWORD), 0);
  EXPECT_EQ(look.get(HKEY_LOCAL_MACHINE, alias + "\\Control", "v"), "status 2");
  EXPECT_EQ(look.set(HKEY_LOCAL_MACHINE, alias + "\\Control", "v", "2"), ERROR_SUCCESS);
  EXPECT_EQ(look.get(HKEY_LOCAL_MACHINE, "SYSTEM\\ControlSet002\\Control", "v"), "2");
  const HKEY handle = open("system\\CURRENTcontrolset", KEY_ALL_ACCESS);
  EXPECT_EQ(registry.RegDeleteKeyA(handle, ""), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, alias), ERROR_ACCESS_DENIED);
  const HKEY system = open("SYSTEM", KEY_ALL_ACCESS);
  EXPECT_EQ(registry.RegDeleteKeyA(system, "CurrentControlSet\\Control"), ERROR_SUCCESS);
  EXPECT_EQ(look.subKeys(HKEY_LOCAL_MACHINE, "SYSTEM\\ControlSet002"), Names{});
}

TEST_P(ContractRegistry, TextThatTheMachineCannotHoldIsRefused) {
  const HKEY key = make("SOFTWARE\\text");
  const std::string omega = "\xCE\xA9";
  const Status expected = nt() ? ERROR_SUCCESS : ERROR_NO_UNICODE_TRANSLATION;
  EXPECT_EQ(look.create(HKEY_LOCAL_MACHINE, "SOFTWARE\\text\\" + omega), expected);
  EXPECT_EQ(set(key, omega, "x"), expected);
  const std::string lone = "a\xED\xA0\x80z\0"s;  // a lone surrogate
  const std::string odd = "ab\0\xFFz"s;          // an odd last byte
  for (const auto& text : {omega, lone, odd}) {
    EXPECT_EQ(set(key, "t", text, REG_SZ), expected);
    EXPECT_EQ(look.get(HKEY_LOCAL_MACHINE, "SOFTWARE\\text", "t"), nt() ? text : "status 2");
  }
  for (const char* bad :
       {"\xC3", "\xFF", "\xC0\x80", "\xED\xA0\x80\xED\xB0\x80", "\xF5\x80\x80\x80"}) {
    EXPECT_EQ(set(key, "bad", bad, REG_EXPAND_SZ), ERROR_NO_UNICODE_TRANSLATION);
    EXPECT_EQ(set(key, bad, "x"), ERROR_NO_UNICODE_TRANSLATION);
    EXPECT_EQ(set(key, "binary", bad, REG_BINARY), ERROR_SUCCESS);
  }
  EXPECT_EQ(look.get(HKEY_LOCAL_MACHINE, "SOFTWARE\\text", "bad"), "status 2");
}

TEST_P(ContractRegistry, LargeValuesAndManyValues) {
  const HKEY key = make("SOFTWARE\\large");
  const Status large = GetParam().megabyteOfText;
  EXPECT_EQ(set(key, "large", std::string(1 << 20, 'x'), REG_SZ), large);
  EXPECT_EQ(set(key, "fits", std::string(16300, 'x')), ERROR_SUCCESS);
  RegistryChange change(registry);
  for (int i = 0; i < 3000; ++i) {
    ASSERT_EQ(set(key, "v" + std::to_string(i), "1234"), ERROR_SUCCESS);
  }
  for (int i = 0; i < 3000; i += 3) {
    ASSERT_EQ(registry.RegDeleteValueA(key, "V" + std::to_string(i)), ERROR_SUCCESS);
  }
  EXPECT_EQ(change.commit(), ERROR_SUCCESS);
  owner->reopen(OpenMode::Read);
  const auto names = test::RegistryAccess(owner->machine().registry())
                         .valueNames(HKEY_LOCAL_MACHINE, "SOFTWARE\\large");
  EXPECT_EQ(names.size(), large == ERROR_SUCCESS ? 2002U : 2001U);
  EXPECT_EQ(std::count(names.begin(), names.end(), "v2999"), 1);
}

TEST_P(ContractRegistry, ReadOnlyMachinesRefuseEveryWrite) {
  EXPECT_EQ(look.set(HKEY_LOCAL_MACHINE, "SOFTWARE\\ro", "v", "x"), ERROR_SUCCESS);
  owner->reopen(OpenMode::Read);
  Registry& readOnly = owner->machine().registry();
  test::RegistryAccess access{readOnly};
  const std::string before = access.dump(HKEY_LOCAL_MACHINE, "SOFTWARE");
  const OpenKey key(readOnly, HKEY_LOCAL_MACHINE, "SOFTWARE\\ro", KEY_ALL_ACCESS);
  EXPECT_EQ(key.status(), ERROR_SUCCESS);
  EXPECT_EQ(readOnly.RegSetValueExA(key.get(), "v", REG_SZ, "", 1), ERROR_WRITE_PROTECT);
  EXPECT_EQ(readOnly.RegDeleteValueA(key.get(), "v"), ERROR_WRITE_PROTECT);
  EXPECT_EQ(readOnly.RegDeleteKeyA(key.get(), ""), ERROR_WRITE_PROTECT);
  EXPECT_EQ(readOnly.beginChange(), ERROR_WRITE_PROTECT);
  EXPECT_EQ(access.create(HKEY_LOCAL_MACHINE, "SOFTWARE\\new"), ERROR_WRITE_PROTECT);
  EXPECT_EQ(access.create(HKEY_LOCAL_MACHINE, "SOFTWARE\\RO"), ERROR_SUCCESS);
  EXPECT_EQ(owner->machine().files().replace("C:\\new.txt", "x"), ERROR_WRITE_PROTECT);
  EXPECT_EQ(access.dump(HKEY_LOCAL_MACHINE, "SOFTWARE"), before);
}

}  // namespace
}  // namespace korvex::platform
