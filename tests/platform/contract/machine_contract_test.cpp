// What every machine must say about itself, its editor, restarts and the claim on it.
#include "platform/contract/machine_kinds.h"
#include "platform/contract/registry_access.h"

namespace korvex::platform {
namespace {

using test::Family;
using namespace std::string_literals;

class ContractMachineFacts : public testing::TestWithParam<test::MachineKind> {
 protected:
  bool nt() const { return GetParam().family == Family::Nt; }

  std::unique_ptr<test::ContractMachine> owner = GetParam().make();
  Machine& machine = owner->machine();
  test::RegistryAccess look{machine.registry()};
};

INSTANTIATE_TEST_SUITE_P(Machines, ContractMachineFacts, test::machineKinds(),
                         test::machineKindName);

TEST_P(ContractMachineFacts, TheVersionTellsTheFamily) {
  VersionInfo info;
  const std::uint32_t version = machine.systemInfo().GetVersion();
  EXPECT_EQ(machine.systemInfo().GetVersionExA(info), ERROR_SUCCESS);
  EXPECT_EQ((version & 0x80000000) != 0, !nt());
  EXPECT_EQ(version & 0xFF, info.majorVersion);
  EXPECT_EQ(version >> 8 & 0xFF, info.minorVersion);
  EXPECT_EQ(info.platformId, nt() ? VER_PLATFORM_WIN32_NT : VER_PLATFORM_WIN32_WINDOWS);
  EXPECT_EQ(info.buildNumber & 0xFFFF, nt() ? 2195U : 2222U);
  EXPECT_EQ(machine.systemInfo().GetTempPathA().back(), '\\');
  EXPECT_TRUE(machine.files().exists(machine.systemInfo().GetSystemDirectoryA()));
}

TEST_P(ContractMachineFacts, OnlyKnownVariablesAreExpanded) {
  SystemInfo& system = machine.systemInfo();
  const std::string name = nt() ? "%systemROOT%" : "%WinDir%";
  const std::string folder = system.GetWindowsDirectoryA();
  EXPECT_EQ(system.ExpandEnvironmentStringsA(name + "\\x"), folder + "\\x");
  EXPECT_EQ(system.ExpandEnvironmentStringsA("%none%" + name + "%"), "%none%" + folder + "%");
  EXPECT_EQ(system.ExpandEnvironmentStringsA("100%" + name), "100%" + folder);
  EXPECT_EQ(system.ExpandEnvironmentStringsA(""), "");
}

TEST_P(ContractMachineFacts, FileVersionsAreFoundWithoutRegardToCase) {
  FileVersion version;
  SystemInfo& system = machine.systemInfo();
  const std::string folder = system.GetSystemDirectoryA();
  EXPECT_EQ(system.GetFileVersionInfoA(folder + "\\KERNEL32.DLL", version), ERROR_SUCCESS);
  EXPECT_EQ(version.build, nt() ? 2195 : 2222);
  EXPECT_EQ(system.GetFileVersionInfoA(folder + "\\none.dll", version), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(machine.files().replace(folder + "\\plain.dll", ""), ERROR_SUCCESS);
  EXPECT_EQ(system.GetFileVersionInfoA(folder + "\\plain.dll", version), ERROR_INVALID_DATA);
}

TEST_P(ContractMachineFacts, ARestartNeedsItsPrivilegeOnNt) {
  Restart& restart = machine.restart();
  std::uint32_t token = 0;
  std::uint64_t privilege = 0;
  EXPECT_EQ(GetParam().runs, restart.systemRuns());
  if (!GetParam().runs) {
    EXPECT_EQ(ERROR_NOT_READY, restart.ExitWindowsEx(EWX_REBOOT, 0));
    return;
  }
  EXPECT_EQ(restart.ExitWindowsEx(EWX_REBOOT, 0), nt() ? ERROR_PRIVILEGE_NOT_HELD : ERROR_SUCCESS);
  const Status expected = nt() ? ERROR_SUCCESS : ERROR_CALL_NOT_IMPLEMENTED;
  EXPECT_EQ(restart.OpenProcessToken(kTokenAdjustPrivilegesAndQuery, token), expected);
  EXPECT_EQ(restart.LookupPrivilegeValueA("", "SeShutdownPrivilege", privilege), expected);
  EXPECT_EQ(restart.AdjustTokenPrivileges(token, privilege, SE_PRIVILEGE_ENABLED), expected);
  EXPECT_EQ(restart.ExitWindowsEx(EWX_REBOOT, 0), ERROR_SUCCESS);
}

TEST_P(ContractMachineFacts, TheEditorExportsAndImports) {
  int exitCode = 9;
  std::string message;
  ASSERT_EQ(look.set(HKEY_LOCAL_MACHINE, "SOFTWARE\\Edit\\Größe", "v", "text\0"s, REG_SZ), 0);
  const std::string before = look.dump(HKEY_LOCAL_MACHINE, "SOFTWARE\\Edit");
  Processes& processes = machine.processes();
  EXPECT_EQ(processes.run("regedit /e \"C:\\Program Files\\out 1.reg\" "
                          "HKEY_LOCAL_MACHINE\\SOFTWARE\\Edit",
                          exitCode, message),
            ERROR_SUCCESS)
      << message;
  EXPECT_EQ(exitCode, 0);
  ASSERT_EQ(machine.registry().RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Edit\\Größe"), 0);
  EXPECT_EQ(processes.run("C:\\WINDOWS\\RegEdit.EXE /S \"C:\\Program Files\\out 1.reg\"", exitCode,
                          message),
            ERROR_SUCCESS)
      << message;
  EXPECT_EQ(look.dump(HKEY_LOCAL_MACHINE, "SOFTWARE\\Edit"), before);
  EXPECT_EQ(processes.run("regedit /s C:\\none.reg", exitCode, message), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(exitCode, 1);
  EXPECT_EQ(processes.run("regedit /e C:\\none.reg HKEY_LOCAL_MACHINE\\none", exitCode, message),
            ERROR_FILE_NOT_FOUND);
  EXPECT_FALSE(machine.files().exists("C:\\none.reg"));
  EXPECT_NE(message, "");
}

TEST_P(ContractMachineFacts, OneClaimAtATime) {
  const auto other = owner->openAnother();
  auto first = machine.claimInstance(Wait::No);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(other->claimInstance(Wait::No), nullptr);
  first.reset();
  EXPECT_NE(other->claimInstance(Wait::Yes), nullptr);
}

}  // namespace
}  // namespace korvex::platform
