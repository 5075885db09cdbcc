// What every machine's initialisation files must do.
#include <gtest/gtest.h>

#include "platform/contract/machine_kinds.h"
#include "platform/init_files.h"

namespace korvex::platform {
namespace {

using namespace std::string_literals;

class ContractInitFiles : public testing::TestWithParam<test::MachineKind> {
 protected:
  void SetUp() override {
    winIni = machine.systemInfo().GetWindowsDirectoryA() + "\\win.ini";
    ASSERT_EQ(machine.files().replace(winIni,
                                      "[windows]\r\nload= a.exe \r\nRun=\r\n"s
                                      "[Quotes]\r\none=\" x \"\r\ntwo='y'\r\nhalf=\"z\r\n"s
                                      ";gone=1\r\n"s),
              ERROR_SUCCESS);
  }
  std::string bytes(std::string_view path) {
    std::string result;
    EXPECT_EQ(machine.files().read(path, result), ERROR_SUCCESS) << path;
    return result;
  }

  std::unique_ptr<test::ContractMachine> made = GetParam().make();
  Machine& machine = made->machine();
  InitFiles& ini = machine.initFiles();
  std::string winIni;
};

INSTANTIATE_TEST_SUITE_P(Machines, ContractInitFiles, test::machineKinds(), test::machineKindName);

TEST_P(ContractInitFiles, ReadsValuesAsWindowsDoes) {
  EXPECT_EQ(ini.GetProfileStringA("Windows", "LOAD", "none"), "a.exe");
  EXPECT_EQ(ini.GetProfileStringA("Windows", "run", "none"), "");
  EXPECT_EQ(ini.GetProfileStringA("Windows", "gone", " none  "), " none");
  EXPECT_EQ(ini.GetPrivateProfileStringA("quotes", "one", "", "WIN.INI"), " x ");
  EXPECT_EQ(ini.GetPrivateProfileStringA("quotes", "two", "", winIni), "y");
  EXPECT_EQ(ini.GetPrivateProfileStringA("quotes", "half", "", winIni), "\"z");
  EXPECT_EQ(ini.GetPrivateProfileStringA("quotes", ";gone", "no", winIni), "no");
  EXPECT_EQ(ini.GetPrivateProfileStringA("quotes", "one", "no", "none.ini"), "no");
}

TEST_P(ContractInitFiles, ListsEndEachNameWithAZero) {
  EXPECT_EQ(ini.GetProfileStringA(std::nullopt, std::nullopt, ""), "windows\0Quotes\0"s);
  EXPECT_EQ(ini.GetProfileStringA("WINDOWS", std::nullopt, ""), "load\0Run\0"s);
  EXPECT_EQ(ini.GetPrivateProfileSectionA("quotes", winIni), "one=\" x \"\0two='y'\0half=\"z\0"s);
  EXPECT_EQ(ini.GetPrivateProfileSectionA("none", winIni), "");
}

TEST_P(ContractInitFiles, WritesOneLine) {
  EXPECT_EQ(ini.WriteProfileStringA("WINDOWS", "Load", "b.exe c.exe"), ERROR_SUCCESS);
  EXPECT_EQ(ini.WriteProfileStringA("windows", "run", std::nullopt), ERROR_SUCCESS);
  EXPECT_EQ(ini.WriteProfileStringA("quotes", std::nullopt, std::nullopt), ERROR_SUCCESS);
  EXPECT_EQ(bytes(winIni), "[windows]\r\nload= b.exe c.exe\r\n");
  const bool nt = GetParam().family == test::Family::Nt;
  EXPECT_EQ(ini.WriteProfileStringA("New", "Größe", "5"), ERROR_SUCCESS);
  EXPECT_EQ(bytes(winIni), "[windows]\r\nload= b.exe c.exe\r\n"s + (nt ? "" : "\r\n") +
                               "[New]\r\nGr\xF6\xDF"
                               "e=5\r\n");
}

TEST_P(ContractInitFiles, ABareNameLiesInTheWindowsFolder) {
  const std::string folder = machine.systemInfo().GetWindowsDirectoryA();
  EXPECT_EQ(ini.WritePrivateProfileStringA("a", "k", "v", "new.ini"), ERROR_SUCCESS);
  EXPECT_EQ(bytes(folder + "\\NEW.INI"), "[a]\r\nk=v\r\n");
  EXPECT_EQ(ini.WritePrivateProfileStringA("a", "k", "v", "C:\\none\\new.ini"),
            ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(ini.WritePrivateProfileStringA("a", "k", "v", "..\\new.ini"), ERROR_BAD_PATHNAME);
}

TEST_P(ContractInitFiles, ARefusedWriteChangesNothing) {
  const std::string before = bytes(winIni);
  EXPECT_EQ(ini.WriteProfileStringA("windows", "load", "日本"), ERROR_NO_UNICODE_TRANSLATION);
  EXPECT_EQ(ini.WriteProfileStringA("windows", "load", "x\r\nrun=y"), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(machine.files().setAttributes(winIni, FILE_ATTRIBUTE_READONLY), ERROR_SUCCESS);
  EXPECT_EQ(ini.WriteProfileStringA("windows", "load", "b.exe"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(bytes(winIni), before);
}

}  // namespace
}  // namespace korvex::platform
