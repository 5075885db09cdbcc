// frmDrWat: the pair of options that is a tweak, and the paths that are written at once.
#include "dialogs/nt/frm_dr_wat.h"

#include "dialogs/one_dialog_fixture.h"

namespace korvex::dialogs {
namespace {

class FrmDrWat : public OneDialogTest<frmDrWat> {
 public:
  explicit FrmDrWat(const std::string& sample = "windows-2000") : OneDialogTest(sample) {}
  forms::OptionButton& append() { return control<forms::OptionButton>("optAppend_Overwrite0"); }
  forms::OptionButton& overwrite() { return control<forms::OptionButton>("optAppend_Overwrite1"); }
  std::string stored(const char* name) { return registry().value(kDrWatson, name); }
  std::string state() { return registry().value(kState, "AppendToLogFile"); }
  bool marked() { return registry().hasKey(kMarker); }

  static constexpr const char* kDrWatson = "HKLM\\SOFTWARE\\Microsoft\\DrWatson";
  static constexpr const char* kState = "HKLM\\SOFTWARE\\Korvex\\CurrentSettings";
  static constexpr const char* kMarker =
      "HKLM\\SOFTWARE\\Korvex\\CurrentSettingsVIII\\P_rwAppendToLogFile";
};
class FrmDrWatOn98 : public FrmDrWat {
 public:
  FrmDrWatOn98() : FrmDrWat("windows-98") {}
};

TEST_F(FrmDrWat, AnOptionIsRecordedByItsStateAndWrittenByApply) {
  ASSERT_TRUE(append().Value);
  EXPECT_EQ("dword 1", state());
  EXPECT_FALSE(dialog().cmdApply.Enabled);

  overwrite().Value = true;
  EXPECT_FALSE(append().Value);
  EXPECT_EQ("dword 0", state());
  EXPECT_TRUE(marked());
  EXPECT_TRUE(dialog().cmdApply.Enabled);
  EXPECT_EQ("1 change waiting", dialog().StatusText.get());
  EXPECT_EQ("dword 1", stored("AppendToLogFile"));

  dialog().cmdApply.press();
  EXPECT_EQ("dword 0", stored("AppendToLogFile"));
  EXPECT_FALSE(marked());
  EXPECT_TRUE(traced("[optAppend_Overwrite_Click]"));
  EXPECT_TRUE(traced("[frmDrWat.cmdApply_Click]"));

  EXPECT_TRUE((reopened(), overwrite().Value));
  append().Value = true;
  dialog().cmdApply.press();
  EXPECT_EQ("dword 1", stored("AppendToLogFile"));
  EXPECT_TRUE(session.g_bRebootNeeded);
}

TEST_F(FrmDrWat, TheOptionThatMatchesTheStateLeavesNoMarker) {
  dialog();
  registry().put(kState, "AppendToLogFile", "dword 0");
  overwrite().Value = true;
  EXPECT_FALSE(marked());
  registry().put(kState, "AppendToLogFile", "dword 1");
  session.g_bNoRecord = true;
  append().Value = true;
  overwrite().Value = true;
  session.g_bNoRecord = false;
  EXPECT_FALSE(marked()) << "set by the program";
  EXPECT_EQ("dword 1", state());
}

TEST_F(FrmDrWat, WithoutAValueDrWatsonAppends) {
  ASSERT_EQ(0, session.regTool.DeleteRegValue(platform::HKEY_LOCAL_MACHINE,
                                              "SOFTWARE\\Microsoft\\DrWatson", "AppendToLogFile"));
  EXPECT_TRUE(append().Value);
  registry().put(kDrWatson, "AppendToLogFile", "dword 0");
  EXPECT_TRUE((reopened(), overwrite().Value));
}

TEST_F(FrmDrWat, ChosenFoldersAreWrittenAtOnceAndShown) {
  ASSERT_EQ(0, machine->files().createFolder("C:\\Dumps"));
  EXPECT_TRUE(stored("CrashDumpFile").starts_with("expand "));
  prompts.texts = {"C:\\Dumps"};
  dialog().cmdDrWatsonBSODSaveFile.press();
  EXPECT_EQ("Identify the folder where dump files should be written in the event of a BSOD.",
            prompts.messages.at(0).text);
  EXPECT_EQ("\"C:\\Dumps\\user.dmp\"", stored("CrashDumpFile"));
  EXPECT_EQ("C:\\Dumps\\user.dmp", dialog().txtCrashDumpFile.Text.get());

  prompts.texts = {"C:\\Dumps\\"};
  dialog().cmdDrWatsonLogSaveFile.press();
  EXPECT_EQ(
      "Identify the path where dump files should be written in the event of unhandled exception "
      "errors.",
      prompts.messages.at(1).text);
  EXPECT_EQ("\"C:\\Dumps\"", stored("LogFilePath"));
  EXPECT_EQ("C:\\Dumps", dialog().txtLogFilePath.Text.get());
  EXPECT_FALSE(dialog().cmdApply.Enabled) << "nothing waits";

  prompts.texts = {"C:\\"};
  dialog().cmdDrWatsonBSODSaveFile.press();
  EXPECT_EQ("\"C:\\user.dmp\"", stored("CrashDumpFile"));
  EXPECT_EQ(3U, prompts.messages.size());
}

TEST_F(FrmDrWat, ACancelOrAFailureLeavesThePathsAsTheyWere) {
  const std::string dump = stored("CrashDumpFile");
  const std::string log = stored("LogFilePath");
  const std::string shown = dialog().txtLogFilePath.Text;
  EXPECT_NE("", shown);
  prompts.texts = {std::nullopt, std::nullopt};
  dialog().cmdDrWatsonBSODSaveFile.press();
  dialog().cmdDrWatsonLogSaveFile.press();
  EXPECT_EQ(2U, prompts.messages.size());

  refusing.refused = "LogFilePath";
  prompts.texts = {"C:\\WINNT"};
  dialog().cmdDrWatsonLogSaveFile.press();
  ASSERT_EQ(4U, prompts.messages.size());
  EXPECT_TRUE(prompts.messages[3].text.starts_with("The log folder could not be changed:"));
  EXPECT_EQ(dump, stored("CrashDumpFile"));
  EXPECT_EQ(log, stored("LogFilePath"));
  EXPECT_EQ(shown, dialog().txtLogFilePath.Text.get());
}

TEST_F(FrmDrWatOn98, HasNothingToUse) {
  for (const char* name :
       {"chkDrWatson_OnOff", "optAppend_Overwrite0", "optAppend_Overwrite1", "txtCrashDumpFile",
        "cmdDrWatsonBSODSaveFile", "cmdDrWatsonLogSaveFile"}) {
    expectNone(name, kOnlyNt);
  }
}

}  // namespace
}  // namespace korvex::dialogs
