// What brackets around registry writes promise, with and without failures on the way.
#include "platform/common/registry_decorators.h"
#include "platform/contract/machine_kinds.h"
#include "platform/contract/registry_access.h"

namespace korvex::platform {
namespace {

using test::Names;

constexpr const char* kPlace = "SOFTWARE\\Change";

class ContractChange : public testing::TestWithParam<test::MachineKind> {
 protected:
  void SetUp() override {
    ASSERT_EQ(look.set(HKEY_LOCAL_MACHINE, "SOFTWARE\\Change\\Old", "kept", "before"), 0);
    ASSERT_EQ(look.set(HKEY_LOCAL_MACHINE, kPlace, "gone", "before"), 0);
  }
  std::string state() { return look.dump(HKEY_LOCAL_MACHINE, kPlace); }
  Status write(const char* path, const char* name) {
    return look.set(HKEY_LOCAL_MACHINE, path, name, "new");
  }

  std::unique_ptr<test::ContractMachine> owner = GetParam().make();
  Registry& registry = owner->machine().registry();
  test::RegistryAccess look{registry};
};

INSTANTIATE_TEST_SUITE_P(Machines, ContractChange, test::machineKinds(), test::machineKindName);

TEST_P(ContractChange, WhatIsNotCommittedLeavesNoTrace) {
  const std::string before = state();
  HKEY fresh = 0;
  std::uint32_t disposition = 0;
  const OpenKey old(registry, HKEY_LOCAL_MACHINE, "SOFTWARE\\Change\\Old", KEY_READ);
  {
    RegistryChange change(registry);
    EXPECT_EQ(registry.RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Change\\New\\Deep",
                                       KEY_ALL_ACCESS, fresh, disposition),
              ERROR_SUCCESS);
    EXPECT_EQ(write("SOFTWARE\\Change\\New\\Deep", "v"), ERROR_SUCCESS);
    EXPECT_EQ(registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Change\\Old"), 0);
    EXPECT_EQ(look.subKeys(HKEY_LOCAL_MACHINE, kPlace), Names{"New"});
    EXPECT_EQ(registry.RegQueryValueExA(old.get(), "kept", nullptr, nullptr, nullptr),
              ERROR_KEY_DELETED);
  }
  EXPECT_EQ(state(), before);
  EXPECT_EQ(registry.RegQueryValueExA(old.get(), "kept", nullptr, nullptr, nullptr), 0);
  // A key that takes the place of one which never was is not the same key.
  EXPECT_EQ(write("SOFTWARE\\Change\\Other", "v"), ERROR_SUCCESS);
  EXPECT_EQ(write("SOFTWARE\\Change\\New\\Deep", "v"), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegQueryValueExA(fresh, "v", nullptr, nullptr, nullptr), ERROR_KEY_DELETED);
}

TEST_P(ContractChange, OnlyTheOutermostBracketCounts) {
  const std::string before = state();
  {
    RegistryChange outer(registry);
    RegistryChange inner(registry);
    EXPECT_EQ(write(kPlace, "v"), ERROR_SUCCESS);
    EXPECT_EQ(inner.commit(), ERROR_SUCCESS);
  }
  EXPECT_EQ(state(), before);
  RegistryChange outer(registry);
  EXPECT_EQ(write(kPlace, "first"), ERROR_SUCCESS);
  { const RegistryChange inner(registry); }
  EXPECT_NE(write(kPlace, "after an inner change was given up"), ERROR_SUCCESS);
  EXPECT_NE(outer.commit(), ERROR_SUCCESS);
  EXPECT_EQ(state(), before);
  RegistryChange next(registry);
  EXPECT_EQ(write(kPlace, "v"), ERROR_SUCCESS);
  EXPECT_EQ(next.commit(), ERROR_SUCCESS);
  EXPECT_EQ(look.get(HKEY_LOCAL_MACHINE, kPlace, "v"), "new");
}

TEST_P(ContractChange, AWriteThatIsRefusedForItselfDoesNotEndTheChange) {
  RegistryChange change(registry);
  EXPECT_EQ(write(kPlace, "v"), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\none"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(change.commit(), ERROR_SUCCESS);
  EXPECT_EQ(look.get(HKEY_LOCAL_MACHINE, kPlace, "v"), "new");
}

TEST_P(ContractChange, OtherMachineObjectsSeeItWhenItIsCommitted) {
  const auto other = owner->openAnother();
  test::RegistryAccess theirs{other->registry()};
  const std::string before = theirs.dump(HKEY_LOCAL_MACHINE, kPlace);
  const OpenKey old(other->registry(), HKEY_LOCAL_MACHINE, "SOFTWARE\\Change\\Old", KEY_READ);
  EXPECT_EQ(old.status(), ERROR_SUCCESS);
  {
    RegistryChange change(registry);
    EXPECT_EQ(write("SOFTWARE\\Change\\New", "v"), ERROR_SUCCESS);
    EXPECT_EQ(registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Change\\Old"), 0);
    EXPECT_EQ(theirs.dump(HKEY_LOCAL_MACHINE, kPlace), before);
    EXPECT_EQ(change.commit(), ERROR_SUCCESS);
    EXPECT_EQ(registry.flush(), ERROR_SUCCESS);  // at the latest then
  }
  EXPECT_EQ(theirs.subKeys(HKEY_LOCAL_MACHINE, kPlace), Names{"New"});
  EXPECT_EQ(theirs.get(HKEY_LOCAL_MACHINE, "SOFTWARE\\Change\\New", "v"), "new");
  EXPECT_EQ(other->registry().RegQueryValueExA(old.get(), "kept", nullptr, nullptr, nullptr),
            ERROR_KEY_DELETED);
  EXPECT_EQ(theirs.set(HKEY_LOCAL_MACHINE, "SOFTWARE\\Change\\New", "v", "theirs"), 0);
  EXPECT_EQ(other->registry().flush(), ERROR_SUCCESS);
  EXPECT_EQ(look.get(HKEY_LOCAL_MACHINE, "SOFTWARE\\Change\\New", "v"), "theirs");
}

// Writes a group as the product does: each status is looked at, and the first failure gives up.
Status writeGroup(Registry& registry) {
  RegistryChange change(registry);
  if (change.status() != 0) return change.status();
  HKEY key = 0;
  std::uint32_t disposition = 0;
  Status status = registry.RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Change\\Group\\Sub",
                                           KEY_ALL_ACCESS, key, disposition);
  if (status != 0) return status;
  status = registry.RegSetValueExA(key, "one", REG_SZ, "1", 2);
  if (status == 0) status = registry.RegSetValueExA(key, "two", REG_SZ, "2", 2);
  registry.RegCloseKey(key);
  if (status == 0) status = registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Change\\Old");
  if (status != 0) return status;
  const OpenKey place(registry, HKEY_LOCAL_MACHINE, kPlace, KEY_ALL_ACCESS);
  status = place.status();
  if (status == 0) status = registry.RegDeleteValueA(place.get(), "gone");
  return status == 0 ? change.commit() : status;
}

TEST_P(ContractChange, AFailureAtAnyCallLeavesBeforeOrAfter) {
  const std::string before = state();
  int n = 1;
  for (; n < 100; ++n) {
    FailingRegistry failing(registry, n, ERROR_DISK_FULL);
    const Status status = writeGroup(failing);
    if (!failing.failed()) {
      EXPECT_EQ(status, ERROR_SUCCESS);
      break;
    }
    EXPECT_EQ(status, ERROR_DISK_FULL) << n;
    EXPECT_EQ(state(), before) << n;
  }
  EXPECT_EQ(n, 9);  // begin, create, two values, delete, open, delete, commit
  EXPECT_EQ(look.subKeys(HKEY_LOCAL_MACHINE, kPlace), Names{"Group"});
  EXPECT_EQ(look.valueNames(HKEY_LOCAL_MACHINE, kPlace), Names{});
}

TEST_P(ContractChange, RecordsHoldBeforeAndAfterOfWhatWasKept) {
  RecordingRegistry recording(registry);
  test::RegistryAccess write{recording};
  EXPECT_EQ(write.set(HKEY_LOCAL_MACHINE, kPlace, "gone", "after", REG_SZ), ERROR_SUCCESS);
  {
    const RegistryChange givenUp(recording);
    EXPECT_EQ(write.set(HKEY_LOCAL_MACHINE, kPlace, "gone", "never"), ERROR_SUCCESS);
  }
  HKEY key = 0;
  std::uint32_t disposition = 0;
  const OpenKey change(recording, HKEY_LOCAL_MACHINE, kPlace, KEY_WRITE);
  EXPECT_EQ(recording.RegCreateKeyExA(change.get(), "A\\B", KEY_WRITE, key, disposition), 0);
  EXPECT_EQ(recording.RegSetValueExA(key, "", REG_SZ, "x", 1), ERROR_SUCCESS);
  EXPECT_EQ(recording.RegDeleteValueA(key, "none"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(recording.RegDeleteValueA(key, ""), ERROR_SUCCESS);
  EXPECT_EQ(recording.RegDeleteKeyA(change.get(), "Old"), ERROR_SUCCESS);
  std::vector<std::string> told;
  for (const auto& record : recording.records()) {
    const auto text = [](const auto& data) { return data ? data->bytes : "-"; };
    told.push_back(std::to_string(static_cast<int>(record.write)) + record.key + "," +
                   record.value + "," + text(record.before) + "," + text(record.after));
  }
  EXPECT_EQ(told, (Names{"0HKEY_LOCAL_MACHINE\\SOFTWARE\\Change,gone,before,after",
                         "2HKEY_LOCAL_MACHINE\\SOFTWARE\\Change\\A,,-,-",
                         "2HKEY_LOCAL_MACHINE\\SOFTWARE\\Change\\A\\B,,-,-",
                         "0HKEY_LOCAL_MACHINE\\SOFTWARE\\Change\\A\\B,,-,x",
                         "1HKEY_LOCAL_MACHINE\\SOFTWARE\\Change\\A\\B,,x,-",
                         "3HKEY_LOCAL_MACHINE\\SOFTWARE\\Change\\Old,,-,-"}));
}

TEST_P(ContractChange, PretendedWritesChangeNothing) {
  const std::string before = state();
  PretendingRegistry pretending(registry);
  EXPECT_EQ(writeGroup(pretending), ERROR_SUCCESS);
  EXPECT_EQ(state(), before);
  const OpenKey place(pretending, HKEY_LOCAL_MACHINE, kPlace, KEY_ALL_ACCESS);
  EXPECT_EQ(pretending.RegDeleteValueA(place.get(), "none"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(pretending.RegDeleteKeyA(place.get(), "none"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(pretending.RegSetValueExA(12345, "v", REG_SZ, "x", 1), ERROR_INVALID_HANDLE);
  EXPECT_EQ(test::RegistryAccess(pretending).get(HKEY_LOCAL_MACHINE, kPlace, "gone"), "before");
}

}  // namespace
}  // namespace korvex::platform
