// Options of Word, Excel, PowerPoint, the Office Assistant and Outlook's journal, for Office 97 and
// 2000. Keys are those of Office 2000; the rows of an application share what stands in its
// function.
#include "engine/office.h"

#include <array>

#include "engine/catalogue/rows.h"
#include "engine/office_assistant.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"

namespace korvex::engine {
namespace {

constexpr Tweak ofOffice(Tweak row, std::string_view key, std::string_view group) {
  row.root = HKCU;
  row.key = key;
  row.bank = Bank::Office;
  row.form = "frmOffice";
  row.page = Page::MSOffice;
  row.group = group;
  if (row.lacks == nullptr) row.lacks = needsOffice;
  if (row.adapt == nullptr) row.adapt = keyOfOffice;
  return row;
}

constexpr Tweak word(const Tweak& row) {
  return ofOffice(row, "Software\\Microsoft\\Office\\9.0\\Word\\Options", "Microsoft Word");
}

constexpr Tweak excel(Tweak row) {
  row.adapt = keyOfExcel;
  return ofOffice(row, "Software\\Microsoft\\Office\\9.0\\Excel\\Options", "Microsoft Excel");
}

constexpr Tweak powerPoint(const Tweak& row) {
  return ofOffice(row, "Software\\Microsoft\\Office\\9.0\\PowerPoint\\Options",
                  "Microsoft PowerPoint");
}

constexpr Tweak assistant(const Tweak& row) {
  return ofOffice(row, "Software\\Microsoft\\Office\\9.0\\Common\\Assistant", "Office Assistant");
}

constexpr Tweak general(const Tweak& row) {
  return ofOffice(row, "Software\\Microsoft\\Office\\9.0\\Common\\General", "Office Assistant");
}

constexpr Tweak journaling(const Tweak& row, std::string_view key) {
  return ofOffice(row, key, "Journaling");
}

// A field for a number; an empty one writes the default.
constexpr Tweak number(Tweak row) {
  row.shape = ControlShape::TextBox;
  row.digitsOnly = true;
  row.special = &RegWorker::P_UpdateOfficeValues;
  row.writes = "The number of the field, as a DWORD.";
  return row;
}

constexpr std::array<std::string_view, 6> kAutoCalculates{"Average", "Count", "Count Nums",
                                                          "Max",     "Min",   "Sum"};

constexpr std::array kOffice{
    // Fields are written in this order.
    excel({.property = "P_User",
           .value = "User",
           .byDefault = kDelete,
           .control = "txtExcelUserName",
           .buddy = "ExcelUserName",
           .shape = ControlShape::TextBox,
           .caption = "&User name:",
           .toolTip = "Whose name Excel puts into new workbooks...default is that of Office",
           .writes = "The text of the field; without one the value is deleted.",
           .special = &RegWorker::P_UpdateOfficeValues}),
    number(excel({.property = "P_DefSheets",
                  .value = "DefSheets",
                  .byDefault = dword(3),
                  .control = "txtExcelDefaultWorksheets",
                  .buddy = "ExcelDefaultWorksheets",
                  .lowest = 1,
                  .highest = 100,
                  .rangeText = "Valid range for this setting is 1 - 100.",
                  .caption = "S&heets in a new workbook:",
                  .toolTip = "How many sheets a new workbook has, 1 to 100...default is 3"})),
    number(excel({.property = "P_DefFileMRU",
                  .value = "DefFileMRU",
                  .byDefault = dword(4),
                  .control = "txtExcelMRUList",
                  .buddy = "ExcelMRUList",
                  .lowest = 1,
                  .highest = 9,
                  .rangeText = "The value of this field must be a number between 1 and 9.",
                  .caption = "Recent &files:",
                  .toolTip = "How many files the File menu lists, 1 to 9...default is 4"})),
    excel({.property = "P_WriteAutoCalculate",
           .value = "AutoCalculate",
           .byDefault = text("Sum"),
           .control = "cboAutoCalculate",
           .buddy = "AutoCalculate",
           .shape = ControlShape::ComboBox,
           .choices = kAutoCalculates,
           .freeText = true,
           .caption = "Aut&oCalculate:",
           .toolTip = "What the status bar tells of the selected cells...default is Sum",
           .writes = "A DWORD: 0 Count Nums, 4 Sum, 5 Average, 6 Min, 7 Max, 361 Count; 4 for "
                     "anything else.",
           .special = &RegWorker::P_WriteAutoCalculate,
           .textReader = p_DetermineAutoCalculate}),
    number(excel({.property = "P_UndoHistory",
                  .value = "UndoHistory",
                  .byDefault = dword(16),
                  .control = "txtMaxUndo",
                  .buddy = "MaxUndo",
                  .lowest = 0,
                  .highest = 100,
                  .rangeText = "The valid range for this setting is 0 - 100.",
                  .caption = "U&ndo levels:",
                  .toolTip = "How many steps can be taken back, 0 to 100...default is 16"})),
    number(
        word({.property = "P_CacheSize",
              .value = "CacheSize",
              .byDefault = dword(64),
              .control = "txtWordDocMaxCache",
              .buddy = "WordDocMaxCache",
              .lowest = 64,
              .highest = 2047,
              .rangeText = "The valid range for this setting is 64 - 2047.",
              .caption = "Doc&ument cache (KB):",
              .toolTip = "Memory that Word takes for documents, 64 to 2047 KB...default is 64"})),
    number(word({.property = "P_BitmapMemory",
                 .value = "BitmapMemory",
                 .byDefault = dword(1024),
                 .control = "txtWordMaxBitCache",
                 .buddy = "WordMaxBitCache",
                 .caption = "Pictur&e cache (KB):",
                 .toolTip = "Memory that Word takes for pictures, in KB...default is 1024"})),
    // Word
    word({.property = "P_rwSlowShading",
          .value = "SlowShading",
          .mode = 3,
          .onValue = text("Yes"),
          .stateName = "SlowShading",
          .control = "chkSlowShading",
          .caption = "S&low shading",
          .toolTip = "Draws shading in a way that every printer understands...default is "
                     "unchecked"}),
    word({.property = "P_rwDraftFont",
          .value = "DraftFont",
          .mode = 5,
          .stateName = "DraftFont",
          .control = "chkDraftFont",
          .caption = "Draft &font",
          .toolTip = "Shows documents in one plain font, which is faster...default is unchecked"}),
    word({.property = "P_rwAskForPrinterPicture",
          .value = "AskForPrinterPicture",
          .mode = 5,
          .stateName = "AskForPrinterPicture",
          .control = "chkAskForPrinterPicture",
          .caption = "As&k for the printer's picture",
          .toolTip = "Takes pictures as the printer sees them from their programs...default is "
                     "unchecked"}),
    word({.property = "P_rwLiveScrolling",
          .value = "LiveScrolling",
          .mode = 5,
          .byDefault = text("1"),
          .stateName = "LiveScrolling",
          .control = "chkLiveScrolling",
          .caption = "Li&ve scrolling",
          .toolTip = "Moves the document while the scroll bar is dragged...default is checked"}),
    word({.property = "P_rwDontUseUNC",
          .value = "DontUseUNC",
          .mode = 1,
          .byDefault = dword(1),
          .stateName = "DontUseUNC",
          .control = "chkDontUseUNC",
          .caption = "Drive letters instead of network na&mes",
          .toolTip = "Keeps the path of a linked file as F:\\..., not as \\\\server\\......default "
                     "is checked"}),
    word({.property = "P_rwNoWideTextPrinting",
          .value = "NoWideTextPrinting",
          .mode = 5,
          .byDefault = text("1"),
          .stateName = "NoWideTextPrinting",
          .control = "chkNoWideTextPrinting",
          .caption = "No wide &text printing",
          .toolTip = "Prints text by its single-byte code, for old drivers...default is checked"}),
    // Excel
    excel({.property = "P_rwRandomize",
           .value = "Randomize",
           .mode = 0,
           .byDefault = dword(0),
           .stateName = "Randomize",
           .control = "chkRandomize",
           .caption = "Rando&mize",
           .toolTip = "Starts random numbers anew with each workbook...default is unchecked"}),
    excel({.property = "P_rwSortCaseSensitive",
           .value = "SortCaseSensitive",
           .mode = 0,
           .byDefault = dword(0),
           .stateName = "SortCaseSensitive",
           .control = "chkSortCaseSensitive",
           .caption = "Sort with re&gard to case",
           .toolTip = "Tells capital from small letters when it sorts...default is unchecked"}),
    excel({.property = "P_rw3dDialog",
           .value = "3dDialogs",
           .mode = 7,
           .stateName = "3dDialogs",
           .control = "chk3dDialog",
           .caption = "&3-D dialogs",
           .toolTip = "Draws dialogs with depth...default is checked"}),
    excel({.property = "P_rwCfDDELink",
           .value = "CfDDELink",
           .mode = 1,
           .stateName = "CfDDELink",
           .control = "chkCfDDELink",
           .caption = "DDE &links on the clipboard",
           .toolTip = "Offers what is copied as a link by DDE, too...default is unchecked"}),
    excel({.property = "P_rwFontSub",
           .value = "FontSub",
           .mode = 2,
           .stateName = "FontSub",
           .control = "chkFontSub",
           .caption = "No font su&bstitution",
           .toolTip = "Keeps a font that the machine has not, instead of a similar one...default "
                      "is unchecked"}),
    // PowerPoint
    powerPoint({.property = "P_rw8bitMetaFiles",
                .value = "Produce 8-bit metafiles",
                .mode = 0,
                .byDefault = dword(0),
                .stateName = "8bitMetaFiles",
                .control = "chk8bitMetaFiles",
                .caption = "Produce &8-bit metafiles",
                .toolTip = "Saves pictures of slides with 256 colours...default is unchecked"}),
    powerPoint({.property = "P_rwRecolorGraph",
                .value = "Recolor imported Graph",
                .mode = 0,
                .byDefault = dword(0),
                .stateName = "RecolorGraph",
                .control = "chkRecolorGraph",
                .caption = "Recolor imported &Graph",
                .toolTip = "Gives charts the colours of the presentation...default is unchecked"}),
    powerPoint({.property = "P_rwDocMaximized",
                .value = "DocMaximized",
                .mode = 0,
                .byDefault = dword(0),
                .stateName = "DocMaximized",
                .control = "chkDocMaximized",
                .caption = "Presentations open maximi&zed",
                .toolTip = "Opens a presentation over all of PowerPoint's window...default is "
                           "unchecked"}),
    powerPoint({.property = "P_rwFullTextSearch",
                .value = "FullTextSearch",
                .mode = 0,
                .byDefault = dword(0),
                .stateName = "FullTextSearch",
                .control = "chkFullTextSearch",
                .caption = "&Full text search",
                .toolTip = "Saves the text of slides so that a search finds it...default is "
                           "unchecked"}),
    powerPoint({.property = "P_rwNoEditTime",
                .value = "NoEditTime",
                .mode = 8,
                .byDefault = dword(0),
                .stateName = "NoEditTime",
                .control = "chkNoEditTime",
                .caption = "Keep the total &editing time",
                .toolTip = "Counts how long a presentation was worked on...default is checked"}),
    powerPoint({.property = "P_rwNoStyledTitleBar",
                .value = "NoStyledTitleBar",
                .mode = 0,
                .byDefault = dword(0),
                .stateName = "NoStyledTitleBar",
                .control = "chkNoStyledTitleBar",
                .caption = "Plain t&itle bar",
                .toolTip = "Draws the title bar as other programs do...default is unchecked"}),
    // The Assistant. What it is, then what it does.
    assistant({.property = "P_rwAsstState",
               .value = "AsstState",
               .mode = 0,
               .byDefault = dword(1),
               .stateName = "AsstState",
               .control = "chkAsstState",
               .caption = "S&how the Assistant",
               .toolTip = "Shows the Assistant when a program of Office starts...default is "
                          "checked"}),
    assistant({.property = "P_rwAsstSounds",
               .value = "AsstSounds",
               .mode = 0,
               .byDefault = dword(1),
               .stateName = "AsstSounds",
               .control = "chkAsstSounds",
               .caption = "Make so&unds",
               .toolTip = "Lets the Assistant be heard...default is checked"}),
    assistant({.property = "P_rwAsstMoveWhenInTheWay",
               .value = "AsstMoveWhenInTheWay",
               .mode = 0,
               .byDefault = dword(1),
               .stateName = "AsstMoveWhenInTheWay",
               .control = "chkAsstMoveWhenInTheWay",
               .caption = "Mo&ve when in the way",
               .toolTip = "Lets the Assistant step aside of dialogs...default is checked"}),
    assistant({.property = "P_rwAsstAssistWithWizards",
               .value = "AsstAssistWithWizards",
               .mode = 0,
               .byDefault = dword(0),
               .stateName = "AsstAssistWithWizards",
               .control = "chkAsstAssistWithWizards",
               .caption = "Help with wi&zards",
               .toolTip = "Has the Assistant explain most wizards...default is unchecked"}),
    assistant({.property = "P_rwAsstOnlyHighPriorityTips",
               .value = "AsstOnlyHighPriorityTips",
               .mode = 1,
               .stateName = "AsstOnlyHighPriorityTips",
               .control = "chkAsstOnlyHighPriorityTips",
               .caption = "&Only high priority tips",
               .toolTip = "Leaves out tips of little weight...default is unchecked"}),
    assistant({.property = "P_rwAsstGuessHelp",
               .value = "AsstGuessHelp",
               .mode = 2,
               .stateName = "AsstGuessHelp",
               .control = "chkAsstGuessHelp",
               .caption = "Do not &guess help topics",
               .toolTip = "Offers no help that was not asked for...default is unchecked"}),
    assistant({.property = "P_rwAsstAssistWithAlerts",
               .value = "AsstAssistWithAlerts",
               .mode = 2,
               .stateName = "AsstAssistWithAlerts",
               .control = "chkAsstAssistWithAlerts",
               .caption = "Do not show a&lerts",
               .toolTip = "Shows messages in plain boxes, not in the Assistant's...default is "
                          "unchecked"}),
    assistant({.property = "P_rwAsstAssistWithHelp",
               .value = "AsstAssistWithHelp",
               .mode = 7,
               .stateName = "AsstAssistWithHelp",
               .control = "chkAsstAssistWithHelp",
               .caption = "Answer the F1 &key",
               .toolTip = "Has F1 ask the Assistant, not the help window...default is checked"}),
    assistant({.property = "P_rwAsstMouseTips",
               .value = "AsstMouseTips",
               .mode = 2,
               .stateName = "AsstMouseTips",
               .control = "chkAsstMouseTips",
               .caption = "No tips on using the &mouse",
               .toolTip = "Leaves out tips on working with the mouse...default is unchecked"}),
    assistant({.property = "P_rwAsstKeyboardShortcutTips",
               .value = "AsstKeyboardShortcutTips",
               .mode = 9,
               .stateName = "AsstKeyboardShortcutTips",
               .control = "chkAsstKeyboardShortcutTips",
               .caption = "No tips on ke&yboard shortcuts",
               .toolTip = "Leaves out tips on keys that save a way...default is checked"}),
    assistant({.property = "P_rwAsstFeatureTips",
               .value = "AsstFeatureTips",
               .mode = 2,
               .stateName = "AsstFeatureTips",
               .control = "chkAsstFeatureTips",
               .caption = "No tips on &features",
               .toolTip = "Leaves out tips on using features better...default is unchecked"}),
    assistant({.property = "P_rwAsstShowTipOfDay",
               .value = "AsstShowTipOfDay",
               .mode = 9,
               .stateName = "AsstShowTipOfDay",
               .control = "chkAsstShowTipOfDay",
               .caption = "No &tip of the day",
               .toolTip = "Shows no tip when a program of Office starts...default is checked"}),
    general({.property = "P_rwAcbControl",
             .value = "AcbControl",
             .mode = 1,
             .stateName = "AcbControl",
             .control = "chkAcbControl",
             .caption = "No clip&board toolbar by itself",
             .toolTip = "Shows the clipboard's toolbar only where it is asked for...default is "
                        "unchecked"}),
    assistant({.property = "P_rwAsstRemove",
               .value = "AsstPath",
               .mode = 0,
               .byDefault = dword(0),
               .stateName = "AsstRemove",
               .control = "chkAsstRemove",
               .caption = "Disable the Off&ice Assistant",
               .toolTip = "Moves the Assistant's characters out of its reach...default is "
                          "unchecked",
               .writes = "Checked: the files *.ac* of that folder are moved into its folder "
                         "Disable, and AsstState is DWORD 0. Unchecked: both as they were.",
               .special = &RegWorker::P_rwAsstRemove,
               .reader = p_DetermineAsstRemove,
               .lacks = needsActors}),
    // The journal.
    journaling({.property = "P_rwWdEnabled",
                .value = "Enabled",
                .mode = 0,
                .byDefault = dword(1),
                .stateName = "WdEnabled",
                .control = "chkWdEnabled",
                .caption = "Journal Microsoft Word d&ocuments",
                .toolTip = "Has Outlook note which documents were worked on...default is checked"},
               "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Microsoft Word"),
    journaling({.property = "P_rwExEnabled",
                .value = "Enabled",
                .mode = 0,
                .byDefault = dword(1),
                .stateName = "ExEnabled",
                .control = "chkExEnabled",
                .caption = "Journal Microsoft Excel workboo&ks",
                .toolTip = "Has Outlook note which workbooks were worked on...default is checked"},
               "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Microsoft Excel"),
    journaling({.property = "P_rwPPEnabled",
                .value = "Enabled",
                .mode = 0,
                .byDefault = dword(1),
                .stateName = "PPEnabled",
                .control = "chkPPEnabled",
                .caption = "Journal Microsoft PowerPoint presen&tations",
                .toolTip = "Has Outlook note which presentations were worked on...default is "
                           "checked"},
               "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Microsoft PowerPoint"),
};

}  // namespace

static_assert(propertiesAreUnique(kOffice) && modesAreKnown(kOffice));

std::span<const Tweak> officeRows() { return kOffice; }

}  // namespace korvex::engine
