#include "foundation/detection.h"

#include <filesystem>

#include "fixture.h"
#include "foundation/error_handler.h"
#include "platform/common/composed_machine.h"
#include "platform/common/registry_decorators.h"

namespace korvex::foundation {
namespace {

using namespace platform;
using test::Family;
using test::TestRun;
using test::text;

constexpr std::string_view kShellFolders =
    R"(Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders)";
constexpr std::string_view kReconciliation =
    R"(Software\Microsoft\Windows\CurrentVersion\ProfileReconciliation)";
constexpr std::string_view kAppPaths =
    R"(SOFTWARE\Microsoft\Windows\CurrentVersion\App Paths\korvex.exe)";

// What another Windows would say about itself.
struct OtherWindows : SystemInfo {
  explicit OtherWindows(SystemInfo& inner) : inner(inner) { inner.GetVersionExA(version); }

  std::uint32_t GetVersion() override { return inner.GetVersion(); }
  Status GetVersionExA(VersionInfo& info) override {
    info = version;
    return versionStatus;
  }
  std::string GetWindowsDirectoryA() override { return inner.GetWindowsDirectoryA(); }
  std::string GetSystemDirectoryA() override { return inner.GetSystemDirectoryA(); }
  std::string GetTempPathA() override { return inner.GetTempPathA(); }
  std::string ExpandEnvironmentStringsA(std::string_view text) override {
    return std::string(text == "%USERPROFILE%" && !profile.empty() ? profile : text);
  }
  Status GetShortPathNameA(std::string_view path, std::string& result) override {
    return inner.GetShortPathNameA(path, result);
  }
  std::string GetUserNameA() override { return user; }
  std::string GetComputerNameA() override { return inner.GetComputerNameA(); }
  Status GetFileVersionInfoA(std::string_view, FileVersion& result) override {
    result = file;
    return fileStatus;
  }
  bool isAdministrator() override { return true; }

  SystemInfo& inner;
  VersionInfo version;
  Status versionStatus = ERROR_SUCCESS;
  FileVersion file;
  Status fileStatus = ERROR_SUCCESS;
  std::string user = "Tester";
  std::string profile;
};

struct OtherMachine : ComposedMachine {
  explicit OtherMachine(Machine& inner, MachineParts parts = {})
      : ComposedMachine(inner, parts), info(inner.systemInfo()) {}
  SystemInfo& systemInfo() override { return info; }
  OtherWindows info;
};

struct OtherRun : TestRun {
  explicit OtherRun(Family family) : TestRun(family) {}
  OtherMachine other{machine.get()};
  Session session{other, prompts};
};

std::string osOf(Family family, FileVersion kernel) {
  OtherRun run(family);
  run.other.info.file = kernel;
  P_DetermineSystemPaths(run.session);
  P_GetOSPlatform(run.session);
  EXPECT_EQ(run.session.g_bNT, family == Family::Nt);
  return run.session.g_sOSName;
}

TEST(Detection, TheKernelsVersionTellsWhichWindows) {
  EXPECT_EQ(osOf(Family::NineX, {4, 0, 950, 0, 0}), "Windows 95");
  EXPECT_EQ(osOf(Family::NineX, {4, 3, 1212, 0, 0}), "Windows 95");
  EXPECT_EQ(osOf(Family::NineX, {4, 10, 2222, 0, 0}), "Windows 98");
  EXPECT_EQ(osOf(Family::NineX, {4, 90, 3000, 0, 0}), "Windows Millennium");
  EXPECT_EQ(osOf(Family::Nt, {4, 0, 1381, 4, 0}), "Windows NT4");
  EXPECT_EQ(osOf(Family::Nt, {5, 0, 2195, 1, 0}), "Windows 2000");
}

TEST(Detection, AKernelWithoutAVersionLeavesTheWordToWindows) {
  OtherRun run(Family::NineX);
  run.other.info.fileStatus = ERROR_FILE_NOT_FOUND;
  run.other.info.version.minorVersion = 90;
  P_GetOSPlatform(run.session);
  EXPECT_EQ(run.session.g_eOS, Os::WindowsMe);
}

TEST(Detection, AMachineThatCannotTellItsVersionRaisesTheError) {
  OtherRun run(Family::Nt);
  run.other.info.versionStatus = ERROR_CALL_NOT_IMPLEMENTED;
  try {
    P_GetOSPlatform(run.session);
    FAIL() << "no error was raised";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.description(), "Failure determing OS.");
    EXPECT_EQ(error.source(), "P_GetOSPlatform");
  }
}

TEST(Detection, TheProductTypeTellsAServerInAnyCase) {
  for (const auto& [type, server] :
       {std::pair("LanmanNT", true), {"servernt", true}, {"WinNT", false}, {"", false}}) {
    TestRun run(Family::Nt);
    run.key(HKEY_LOCAL_MACHINE, R"(SYSTEM\CurrentControlSet\Control\ProductOptions)")
        .put("ProductType", type);
    P_DetermineSystemPaths(run.session);
    P_GetOSPlatform(run.session);
    EXPECT_EQ(run.session.g_bServer, server) << type;
  }
}

TEST(Detection, FileVersionsPadTheMinorPartAndNameTheirFlags) {
  OtherRun run(Family::Nt);
  OtherWindows& info = run.other.info;
  info.file = {4, 72, 3110, 3, 0};
  EXPECT_EQ(GetFileVersion(run.session, "x.dll"), "4.72.3110.3");
  info.file = {5, 0, 0, 7, VS_FF_DEBUG | VS_FF_PATCHED | VS_FF_SPECIALBUILD};
  EXPECT_EQ(GetFileVersion(run.session, "x.dll"), "5.00.0.7 Debug Patched Special ");
  info.file = {1, 1, 2, 3, VS_FF_PRERELEASE | VS_FF_PRIVATEBUILD | VS_FF_INFOINFERRED};
  EXPECT_EQ(GetFileVersion(run.session, "x.dll"), "1.01.2.3 PreRel Private Info ");
  info.fileStatus = ERROR_INVALID_DATA;
  EXPECT_EQ(GetFileVersion(run.session, "x.dll"), "");
}

TEST(Detection, SystemFoldersEndInABackslashAndTheProgramsDoesNot) {
  TestRun run(Family::NineX);
  detectSystem(run.session);
  EXPECT_EQ(run.session.g_sWinDir, "C:\\WINDOWS\\");
  EXPECT_EQ(run.session.g_sWinSysDir, "C:\\WINDOWS\\SYSTEM\\");
  EXPECT_EQ(run.session.g_sRoot, "C:\\");
  EXPECT_EQ(run.session.g_sAppPath, "C:\\Program Files\\Korvex");
  EXPECT_EQ(run.session.g_sExt, ".bat");
  EXPECT_TRUE(run.session.trace.contains("[P_DetermineSystemPaths]"));
  EXPECT_TRUE(run.session.trace.contains("pd.SendToPath=C:\\WINDOWS\\SendTo"));
}

TEST(Profiles, A9xUserFolderFollowsTheProfile) {
  TestRun run(Family::NineX);
  detectSystem(run.session);
  EXPECT_FALSE(run.session.g_bProfile);
  EXPECT_EQ(run.session.pd.TemplatesPath, "C:\\WINDOWS\\ShellNew");
  EXPECT_EQ(run.session.pd.PersonalPath, "C:\\WINDOWS\\My Documents");
  EXPECT_EQ(run.session.pd.CommDesktopPath, "C:\\WINDOWS\\Profiles\\All Users\\Desktop");
  EXPECT_EQ(run.session.g_sPhoneBookPath, "");

  run.key(HKEY_CURRENT_USER, kReconciliation)
      .put("ProfileDirectory", R"(C:\WINDOWS\Profiles\tester)");
  detectSystem(run.session);
  EXPECT_TRUE(run.session.g_bProfile);
  EXPECT_EQ(run.session.pd.TemplatesPath, "C:\\WINDOWS\\Profiles\\tester\\ShellNew");
  EXPECT_EQ(run.session.pd.FontsPath, "C:\\WINDOWS\\Fonts");
}

TEST(Profiles, TheUserIsNamedByTheLogonBoxWhereWindowsNamesNone) {
  OtherRun run(Family::NineX);
  run.other.info.user = "";
  run.key(HKEY_LOCAL_MACHINE, R"(System\CurrentControlSet\Control)").put("Current User", "Pat");
  P_DetermineProfiles(run.session);
  EXPECT_EQ(run.session.g_sCurrentUser, "Pat");
}

TEST(Profiles, DefaultsOn2000AndNT4) {
  OtherRun run(Family::Nt);
  run.other.info.file = {5, 0, 2195, 1, 0};
  run.other.info.profile = "C:\\Documents and Settings\\Tester.HOME";
  detectSystem(run.session);
  const ProfileFolders& pd = run.session.pd;
  EXPECT_EQ(pd.PreProfilePath, "C:\\Documents and Settings\\");
  EXPECT_EQ(pd.TemplatesPath, "C:\\Documents and Settings\\Tester.HOME\\ShellNew");
  EXPECT_EQ(pd.PersonalPath, "C:\\Documents and Settings\\Tester.HOME\\My Documents");
  EXPECT_EQ(pd.StartUpPathEx,
            "C:\\Documents and Settings\\All Users\\Start Menu\\Programs\\Startup");
  EXPECT_EQ(run.session.g_sPhoneBookPath,
            "C:\\Documents and Settings\\All Users\\Application Data"
            "\\Microsoft\\Network\\Connections\\Pbk\\rasphone.pbk");

  run.other.info.file = {4, 0, 1381, 4, 0};
  run.other.info.profile.clear();
  detectSystem(run.session);
  EXPECT_EQ(pd.PersonalPath, "C:\\WINNT\\Profiles\\Tester\\Personal");
  EXPECT_EQ(pd.CommProgramsPath, "C:\\WINNT\\Profiles\\All Users\\Start Menu\\Programs");
  EXPECT_EQ(run.session.g_sPhoneBookPath, "C:\\WINNT\\system32\\ras\\rasphone.pbk");
}

TEST(Profiles, TheRegistrysFoldersComeFirst) {
  TestRun run(Family::Nt);
  auto user = run.key(HKEY_CURRENT_USER, kShellFolders);
  user.put("Local Settings", R"(D:\Local)");
  user.put("Templates", REG_EXPAND_SZ, std::string(R"(%USERPROFILE%\Templates)") + '\0');
  user.put("Common Desktop", R"(D:\NotThis)");
  user.put("Recent", REG_DWORD, std::string_view("\1\0\0\0", 4));
  run.key(HKEY_LOCAL_MACHINE, kShellFolders).put("Common Desktop", R"(D:\All)");
  // Left so by a caller; a missing folder is still no "-1".
  run.session.regTool.g_sGetRegValueMode = "RETVAL";
  detectSystem(run.session);
  const ProfileFolders& pd = run.session.pd;
  EXPECT_EQ(pd.LocalSettPath, R"(D:\Local)");
  EXPECT_EQ(pd.TemplatesPath, R"(C:\Documents and Settings\Tester\Templates)");
  EXPECT_EQ(pd.CommDesktopPath, R"(D:\All)");
  EXPECT_EQ(pd.RecentPath, R"(C:\Documents and Settings\Tester\Recent)");
  EXPECT_EQ(pd.CookiesPath, R"(C:\Documents and Settings\Tester\Cookies)");
}

TEST(Registration, WritesOnceAndOnlyWhatDiffers) {
  TestRun run(Family::Nt);
  const std::string_view configuration = R"(SOFTWARE\Korvex\Configuration)";
  detectSystem(run.session);
  EXPECT_FALSE(run.hasKey(HKEY_LOCAL_MACHINE, kAppPaths));

  RecordingRegistry recorder(run.machine.registry());
  ComposedMachine machine(run.machine.get(), {.registry = &recorder});
  Session session(machine, run.prompts);
  detectSystem(session);
  p_InitializeProfileDirInfo(session);
  auto key = run.key(HKEY_LOCAL_MACHINE, kAppPaths);
  EXPECT_EQ(key.value(""), text(R"(C:\Program Files\Korvex\korvex.exe)"));
  EXPECT_EQ(key.value("Path"), text(R"(C:\Program Files\Korvex)"));
  EXPECT_EQ(run.key(HKEY_LOCAL_MACHINE, configuration).value("RegPath"), text("Registry"));

  const std::size_t writes = recorder.records().size();
  run.key(HKEY_LOCAL_MACHINE, configuration).put("RegPath", R"(D:\Saved)");
  p_InitializeProfileDirInfo(session);
  EXPECT_EQ(recorder.records().size(), writes);
  EXPECT_EQ(run.key(HKEY_LOCAL_MACHINE, configuration).value("RegPath"), text(R"(D:\Saved)"));
}

TEST(Registration, AFailureIsToldAndLeavesNothingHalf) {
  TestRun run(Family::Nt);
  int failures = 0;
  for (int nth = 1;; ++nth) {
    FailingRegistry failing(run.machine.registry(), nth, ERROR_REGISTRY_IO_FAILED,
                            Afterwards::KeepFailing);
    ComposedMachine machine(run.machine.get(), {.registry = &failing});
    test::ScriptedPrompts prompts;
    Session session(machine, prompts);
    P_DetermineSystemPaths(session);
    registerProgramPath(session);
    if (!failing.failed()) break;
    ++failures;
    EXPECT_FALSE(run.hasKey(HKEY_LOCAL_MACHINE, kAppPaths)) << "at call " << nth;
    ASSERT_EQ(prompts.messages.size(), 1U) << "at call " << nth;
    EXPECT_EQ(prompts.messages[0].text,
              "An error occurred setting Korvex's path.\r\nSome functions may not work correctly.");
  }
  EXPECT_GT(failures, 5);
  EXPECT_TRUE(run.hasKey(HKEY_LOCAL_MACHINE, kAppPaths));
}

TEST(RegisteredOwner, FallsBackToTheSetupEntriesOneByOne) {
  TestRun run(Family::NineX);
  auto setup = run.key(HKEY_CURRENT_USER, R"(Software\Microsoft\MS Setup (ACME)\User Info)");
  setup.put("DefName", "Setup Name");
  setup.put("DefCompany", "Setup Company");
  run.key(HKEY_LOCAL_MACHINE, R"(Software\Microsoft\Windows\CurrentVersion)")
      .put("RegisteredOwner", "Owner");
  const RegisteredTo id = P_ID(run.session);
  EXPECT_EQ(id.owner, "Owner");
  EXPECT_EQ(id.organization, "Setup Company");
}

}  // namespace
}  // namespace korvex::foundation
