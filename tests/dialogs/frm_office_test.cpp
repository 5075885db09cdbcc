// The Office window as a person uses it, on Office 97 and 2000: what it reads, what Apply and
// Restore Defaults write and in which order, folders, font and characters, and what running
// programs refuse.
#include <fmt/format.h>

#include <array>

#include "dialogs/office_fixture.h"

namespace korvex::dialogs {
namespace {

constexpr const char* kExcel97 = "HKCU\\Software\\Microsoft\\Office\\8.0\\Excel\\Microsoft Excel";
constexpr const char* kExcel2000 = "HKCU\\Software\\Microsoft\\Office\\9.0\\Excel\\Options";
constexpr const char* kWord97 = "HKCU\\Software\\Microsoft\\Office\\8.0\\Word\\Options";
constexpr const char* kWord2000 = "HKCU\\Software\\Microsoft\\Office\\9.0\\Word\\Options";
constexpr const char* kBank = "HKLM\\SOFTWARE\\Korvex\\CurrentSettingsVI";

TEST_F(Office97, ShowsWhatItsKeysHold) {
  EXPECT_EQ("3", text("txtExcelDefaultWorksheets"));
  EXPECT_EQ("9", text("txtExcelMRUList"));
  EXPECT_EQ("Sum", control<forms::ComboBox>("cboAutoCalculate").Text.get());
  EXPECT_EQ("16", text("txtMaxUndo")) << "the default of a missing value";
  EXPECT_EQ("64", text("txtWordDocMaxCache")) << "Word 97 keeps it as text";
  EXPECT_EQ("1024", text("txtWordMaxBitCache"));
  EXPECT_EQ("Arial, 10", text("txtExcelFont"));
  EXPECT_EQ("C:\\My Documents", text("txtWordDocPath"));
  EXPECT_EQ("C:\\WINDOWS\\TEMP", text("txtWordAutoSave"));
  EXPECT_EQ("C:\\My Documents", text("txtPPDefault"));
  EXPECT_EQ("", text("txtExcelAltStartup"));
  EXPECT_EQ("CLIPPIT.ACT", text("txtAsstFile"));
  EXPECT_EQ(forms::vbChecked, control<forms::CheckBox>("chkLiveScrolling").Value.get());
  EXPECT_EQ(forms::vbChecked, control<forms::CheckBox>("chkSortCaseSensitive").Value.get());
  EXPECT_EQ(forms::vbUnchecked, control<forms::CheckBox>("chkWdEnabled").Value.get());
  EXPECT_FALSE(dialog().cmdApply.Enabled) << "reading is no change";
  EXPECT_TRUE(traced("[frmOffice_Load]"));
  EXPECT_TRUE(traced("[p_DetermineWordValues]: iCnt%="));
}

TEST_F(Office2000, OpensTheGroupThatWasShownLastAndRemembersIt) {
  session.g_iOfficeLastTab = 4;
  EXPECT_EQ(4, dialog().tabOffice.SelectedItem.get());
  dialog().tabOffice.SelectedItem = 2;
  EXPECT_EQ(2, session.g_iOfficeLastTab);
  session.g_iOfficeLastTab = 17;
  EXPECT_EQ(1, reopened().tabOffice.SelectedItem.get());
}

// User, DefSheets, DefFileMRU, AutoCalculate, UndoHistory, CacheSize, BitmapMemory, after the
// boxes.
TEST_F(Office2000, ApplyWritesTheBankAndThenTheFieldsInTheirOrder) {
  type("txtWordMaxBitCache", "2048");
  type("txtWordDocMaxCache", "2047");
  type("txtExcelDefaultWorksheets", "100");
  type("txtExcelUserName", "100% %me%");
  control<forms::ComboBox>("cboAutoCalculate").Text = "count";
  type("txtMaxUndo", "40");
  type("txtExcelMRUList", "1");
  control<forms::CheckBox>("chkRandomize").Value = forms::vbChecked;
  EXPECT_TRUE(registry().hasKey(std::string(kBank) + "\\P_rwRandomize"));
  apply();
  EXPECT_EQ("", told());
  EXPECT_EQ("dword 1", registry().value(kExcel2000, "Randomize"));
  EXPECT_EQ("\"100% %me%\"", registry().value(kExcel2000, "User"));
  EXPECT_EQ("dword 100", registry().value(kExcel2000, "DefSheets"));
  EXPECT_EQ("dword 1", registry().value(kExcel2000, "DefFileMRU"));
  EXPECT_EQ("dword 361", registry().value(kExcel2000, "AutoCalculate"));
  EXPECT_EQ("dword 40", registry().value(kExcel2000, "UndoHistory"));
  EXPECT_EQ("dword 2047", registry().value(kWord2000, "CacheSize"));
  EXPECT_EQ("dword 2048", registry().value(kWord2000, "BitmapMemory"));
  EXPECT_FALSE(dialog().cmdApply.Enabled);

  const std::string trace = session.trace.text();
  std::size_t at = trace.rfind("[frmOffice.cmdApply_Click]");
  ASSERT_NE(std::string::npos, at);
  for (const char* step : {"Randomize", "\"User\"", "DefSheets", "DefFileMRU",
                           "[P_WriteAutoCalculate]", "UndoHistory", "CacheSize", "BitmapMemory"}) {
    const std::string name = std::string(step) == "\"User\"" ? "User" : step;
    const std::size_t next = trace.find(name, at);
    ASSERT_NE(std::string::npos, next) << step << " is not written after what comes before it";
    at = next;
  }
}

TEST_F(Office97, RunningApplicationsRefuseClickApplyAndDefaults) {
  type("txtExcelDefaultWorksheets", "7");
  control<forms::CheckBox>("chkDraftFont").Value = forms::vbChecked;
  windows.classes = {"PP97FrameClass", "OpusApp", "mspim_wnd32", "PP9FrameClass"};
  const std::string message =
      "Korvex has determined that the following application(s) are running:\r\n\r\n"
      "Microsoft Outlook\r\nMicrosoft Word\r\nMicrosoft PowerPoint\r\n\r\n"
      "These application(s) MUST be closed in order to properly tweak MS\r\nOffice settings.";
  control<forms::CheckBox>("chkSlowShading").Value = forms::vbChecked;
  EXPECT_EQ(message, told());
  EXPECT_EQ(forms::vbUnchecked, control<forms::CheckBox>("chkSlowShading").Value.get());
  EXPECT_FALSE(registry().hasKey(std::string(kBank) + "\\P_rwSlowShading"));

  apply();
  EXPECT_EQ(message, told());
  EXPECT_EQ("dword 3", registry().value(kExcel97, "DefSheets"));
  EXPECT_TRUE(registry().hasKey(std::string(kBank) + "\\P_rwDraftFont")) << "it keeps waiting";
  EXPECT_TRUE(dialog().cmdApply.Enabled);

  prompts.answers = {platform::Answer::Yes};
  press("cmdDefaults");
  EXPECT_EQ(message, told());
  EXPECT_EQ("dword 9", registry().value(kExcel97, "DefFileMRU"));

  windows.classes = {"PP9FrameClass"};  // not the PowerPoint of this Office
  apply();
  EXPECT_EQ("", told());
  EXPECT_EQ("dword 7", registry().value(kExcel97, "DefSheets"));
  EXPECT_EQ("\"1\"", registry().value(kWord97, "DraftFont"));
}

TEST_F(Office97, OutOfRangeIsRefusedAtEntryAndAtApply) {
  for (const char* refused : {"0", "101"}) {
    type("txtExcelDefaultWorksheets", refused);
    EXPECT_EQ("Valid range for this setting is 1 - 100.", told()) << refused;
    EXPECT_EQ("3", text("txtExcelDefaultWorksheets"));
  }
  type("txtExcelMRUList", "10");
  EXPECT_EQ("The value of this field must be a number between 1 and 9.", told());
  type("txtMaxUndo", "1x");
  EXPECT_EQ("This field accepts numerical characters only.", told());
  for (const char* refused : {"63", "2048"}) {
    type("txtWordDocMaxCache", refused);
    EXPECT_EQ("The valid range for this setting is 64 - 2047.", told()) << refused;
    EXPECT_EQ("64", text("txtWordDocMaxCache"));
  }
  // Typed, and Apply pressed by its key before the field is left.
  control<forms::TextBox>("txtWordDocMaxCache").Text = "63";
  EXPECT_EQ("", told());
  apply();
  EXPECT_EQ("The valid range for this setting is 64 - 2047.", told());
  EXPECT_EQ("64", text("txtWordDocMaxCache"));
  EXPECT_EQ("\"64\"", registry().value(kWord97, "CacheSize")) << "nothing was written";
}

TEST_F(Office2000, DefaultsWriteSixValuesAndLeaveTheModeOff) {
  type("txtExcelUserName", "somebody else");
  control<forms::CheckBox>("chkRandomize").Value = forms::vbChecked;
  registry().put(kExcel2000, "DefSheets", "dword 9");
  registry().put(kExcel2000, "AutoCalculate", "dword 361");
  registry().put(kExcel2000, "UndoHistory", "dword 99");
  prompts.answers = {platform::Answer::No};
  press("cmdDefaults");
  EXPECT_EQ("dword 9", registry().value(kExcel2000, "DefSheets"));

  prompts.answers = {platform::Answer::Yes};
  press("cmdDefaults");
  EXPECT_EQ("Restore Office settings to default?", told());
  EXPECT_EQ("dword 3", registry().value(kExcel2000, "DefSheets"));
  EXPECT_EQ("dword 4", registry().value(kExcel2000, "DefFileMRU"));
  EXPECT_EQ("dword 4", registry().value(kExcel2000, "AutoCalculate"));
  EXPECT_EQ("dword 16", registry().value(kExcel2000, "UndoHistory"));
  EXPECT_EQ("dword 64", registry().value(kWord2000, "CacheSize"));
  EXPECT_EQ("dword 1024", registry().value(kWord2000, "BitmapMemory"));
  EXPECT_FALSE(session.g_bDefaulting);
  EXPECT_EQ("Sum", control<forms::ComboBox>("cboAutoCalculate").Text.get());
  EXPECT_EQ("3", text("txtExcelDefaultWorksheets"));
  EXPECT_FALSE(registry().hasKey(std::string(kBank) + "\\P_rwRandomize")) << "all was read again";
  EXPECT_FALSE(dialog().cmdApply.Enabled);
}

// Each field, its place for both versions, and its message.
struct FolderCase {
  const char* button;
  const char* key97;
  const char* value97;
  const char* key2000;
  const char* value2000;
  const char* title;
  const char* failure;
};
constexpr const char* kRecent2000 =
    "HKCU\\Software\\Microsoft\\Office\\9.0\\PowerPoint\\RecentFolderList";
constexpr std::array kFolderCases{
    FolderCase{"WordDocPath", kWord97, "DOC-PATH", kWord2000, "DOC-PATH",
               "Identify Word's new document storage folder",
               "The default document storage location cannot be changed at this time."},
    FolderCase{"WordAutoSave", kWord97, "AUTOSAVE-PATH", kWord2000, "AUTOSAVE-PATH",
               "Identify Word's AutoSave folder",
               "The AutoSave path cannot be changed at this time."},
    FolderCase{"ExcelAltStartup", kExcel97, "AltStartup", kExcel2000, "AltStartup",
               "Identify Excel's alternate startup folder",
               "The alternate startup path cannot be changed at this time."},
    FolderCase{"ExcelDocPath", kExcel97, "DefaultPath", kExcel2000, "DefaultPath",
               "Identify Excel's new document storage folder",
               "The default document storage location cannot be changed at this time."},
    FolderCase{"PPDefault",
               "HKCU\\Software\\Microsoft\\Office\\8.0\\PowerPoint\\Recent Folder List\\Default",
               "", kRecent2000, "Default", "Identify PowerPoint's default document folder",
               "The default document path cannot be changed at this time."},
    FolderCase{
        "PPMultimediaDir",
        "HKCU\\Software\\Microsoft\\Office\\8.0\\PowerPoint\\Recent Folder List\\MultimediaDir", "",
        kRecent2000, "MultimediaDir", "Identify PowerPoint's default multimedia folder",
        "The default multimedia path cannot be changed at this time."},
    FolderCase{"PPPictureDir",
               "HKCU\\Software\\Microsoft\\Office\\8.0\\PowerPoint\\Recent Folder List\\PictureDir",
               "", kRecent2000, "PictureDir", "Identify PowerPoint's default picture folder",
               "The default picture path cannot be changed at this time."},
    FolderCase{
        "PPTemplateDir",
        "HKCU\\Software\\Microsoft\\Office\\8.0\\PowerPoint\\Recent Folder List\\TemplateDir", "",
        kRecent2000, "TemplateDir", "Identify PowerPoint's default template folder",
        "The default template path cannot be changed at this time."},
};

void expectFolder(OfficeTest& test, const FolderCase& folder, bool is97) {
  SCOPED_TRACE(folder.button);
  const std::string key = is97 ? folder.key97 : folder.key2000;
  const std::string value = is97 ? folder.value97 : folder.value2000;
  const std::string button = std::string("cmd") + folder.button;
  const std::string before = test.registry().value(key, value);
  test.prompts.texts = {std::nullopt};
  test.press(button);
  EXPECT_EQ(folder.title, test.told());
  EXPECT_EQ(before, test.registry().value(key, value)) << "cancelled";

  ASSERT_EQ(0, test.machine->files().createFolder("C:\\%OS% files %x%") & ~183U);
  test.prompts.texts = {"C:\\%OS% files %x%"};
  test.press(button);
  test.told();
  EXPECT_EQ("\"C:\\%OS% files %x%\"", test.registry().value(key, value)) << "always plain text";
  EXPECT_EQ("C:\\%OS% files %x%", test.text(std::string("txt") + folder.button));

  test.refusing.refused = value.empty() ? "\x01" : value;
  if (value.empty()) return;
  test.prompts.texts = {"C:\\"};
  test.press(button);
  EXPECT_EQ(folder.failure, test.told());
  EXPECT_EQ("\"C:\\%OS% files %x%\"", test.registry().value(key, value));
  test.refusing.refused.clear();
}

TEST_F(Office97, FoldersAreWrittenAtOnce) {
  for (const FolderCase& folder : kFolderCases) expectFolder(*this, folder, true);
}
TEST_F(Office2000, FoldersAreWrittenAtOnce) {
  for (const FolderCase& folder : kFolderCases) expectFolder(*this, folder, false);
}

TEST_F(Office2000, FontIsWrittenAsNameAndPoints) {
  prompts.fonts = {platform::FontChoice{.name = "Courier New", .points = 12}};
  press("cmdExcelDefaultFont");
  EXPECT_EQ("New default font for Excel", told());
  EXPECT_EQ("\"Courier New,12\"", registry().value(kExcel2000, "Font"));
  EXPECT_EQ("Courier New, 12", text("txtExcelFont"));
  refusing.refused = "Font";
  prompts.fonts = {platform::FontChoice{.name = "Arial", .points = 8}};
  press("cmdExcelDefaultFont");
  EXPECT_EQ("Operation failed.", told());
  EXPECT_EQ("\"Courier New,12\"", registry().value(kExcel2000, "Font"));
  refusing.refused.clear();
  prompts.fonts = {std::nullopt};
  press("cmdExcelDefaultFont");
  registry().put(kExcel2000, "Font", "\"Comma, Inc,x\"");
  EXPECT_EQ("Arial, 10", reopened().txtExcelFont.Text.get()) << "what Excel cannot read either";
}

constexpr const char* kAssistant97 = "HKCU\\Software\\Microsoft\\Office\\8.0\\Common\\Assistant";
constexpr const char* kAssistant2000 = "HKCU\\Software\\Microsoft\\Office\\9.0\\Common\\Assistant";

TEST_F(Office97, ActorsAndTheirFolders) {
  prompts.texts = {"C:\\Program Files\\Microsoft Office\\Office\\Actors\\DOT.ACP"};
  press("cmdAsstFile");
  EXPECT_EQ("Locate Actor files...", told());
  EXPECT_EQ("\"DOT.ACP\"", registry().value(kAssistant97, "AsstFile"));
  EXPECT_EQ("DOT.ACP", text("txtAsstFile"));
  prompts.texts = {"C:\\WINDOWS"};
  press("cmdAsstPath");
  EXPECT_EQ("Locate the new folder in which the Actor files are located.", told());
  EXPECT_EQ("\"C:\\WINDOWS\"", registry().value(kAssistant97, "AsstPath"));
  refusing.refused = "AsstSourcePath";
  prompts.texts = {"C:\\WINDOWS"};
  press("cmdAsstSourcePath");
  EXPECT_EQ("Operation failed.", told());
  EXPECT_NE("\"C:\\WINDOWS\"", registry().value(kAssistant97, "AsstSourcePath"));
}

TEST_F(Office2000, ActorFoldersAreOfOlderOffices) {
  const std::string before = registry().value(kAssistant2000, "AsstPath");
  for (const char* button : {"cmdAsstPath", "cmdAsstSourcePath"}) {
    press(button);
    EXPECT_EQ("This function is valid in MS Office 95 and MS Office 97 only.", told()) << button;
  }
  EXPECT_EQ(before, registry().value(kAssistant2000, "AsstPath"));
  for (const char* value : {"AsstPath", "AsstSourcePath", "AsstFile"}) {
    session.regTool.DeleteRegValue(engine::HKCU, kAssistant2000 + 5, value);
  }
  reopened();
  EXPECT_EQ("Actor path undeterminable", text("txtAsstPath"));
  EXPECT_EQ("Actor source path undeterminable", text("txtAsstSourcePath"));
  EXPECT_EQ("Current Actor undeterminable", text("txtAsstFile"));
}

TEST_F(Office2000, WhatWasNotAppliedGoesWithTheWindow) {
  control<forms::CheckBox>("chkDocMaximized").Value = forms::vbUnchecked;
  EXPECT_TRUE(registry().hasKey(std::string(kBank) + "\\P_rwDocMaximized"));
  prompts.answers = {platform::Answer::Yes};
  EXPECT_TRUE(book.unload(frmOffice::kName));
  EXPECT_FALSE(registry().hasKey(kBank));
}

class NoOffice : public OfficeTest {
 public:
  NoOffice() : OfficeTest("windows-95") {}
};

TEST_F(NoOffice, EverythingIsDisabledWithTheReason) {
  EXPECT_TRUE(dialog().lblOffice.Visible);
  for (const forms::Control* control : dialog().controls()) {
    const bool open = control == &dialog().cmdDone || control == &dialog().tabOffice;
    if (control->kind() == forms::ControlKind::Label ||
        control->kind() == forms::ControlKind::Frame) {
      continue;
    }
    EXPECT_EQ(open, control->Enabled.get()) << control->name();
    if (!open) {
      EXPECT_EQ("Only MS Office 97 & 2000 supported", control->ToolTipText.get())
          << control->name();
    }
  }
}

}  // namespace
}  // namespace korvex::dialogs
