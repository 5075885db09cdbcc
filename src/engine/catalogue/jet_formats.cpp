// Settings of the formats that Jet reads besides its own: text, Excel, ODBC and xBase.
#include <array>

#include "engine/catalogue/jet_rows.h"

namespace korvex::engine {

using namespace jet_rows;

namespace {

constexpr Tweak textFormat(const Tweak& row) {
  return ofJet(row, "Software\\Microsoft\\Jet\\4.0\\Engines\\TEXT", "Text");
}
constexpr Tweak excelFormat(const Tweak& row) {
  return ofJet(row, "Software\\Microsoft\\Jet\\4.0\\Engines\\EXCEL", "Excel");
}
constexpr Tweak odbc(const Tweak& row) {
  return ofJet(row, "Software\\Microsoft\\Jet\\4.0\\Engines\\ODBC", "ODBC");
}
constexpr Tweak xBase(const Tweak& row) {
  return ofJet(row, "Software\\Microsoft\\Jet\\4.0\\Engines\\XBASE", "xBase");
}

constexpr std::array<std::string_view, 2> kFormats{"CSVDELIMITED", "TABDELIMITED"};
constexpr std::array<std::string_view, 2> kCharacterSets{"ANSI", "OEM"};
constexpr std::array<std::string_view, 2> kCollatingSequences{"ANSI", "INTERNATIONAL"};

constexpr std::array kFormatRows{
    // The six texts are written first, in this order.
    words(xBase({.property = "P_Date",
                 .value = "Date",
                 .byDefault = text("MDY"),
                 .control = "txtDate",
                 .buddy = "Date",
                 .caption = "Date format:",
                 .toolTip = "In which order dBASE writes day, month and year...default is MDY"})),
    words(xBase({.property = "P_DataCodePage",
                 .value = "DataCodePage",
                 .byDefault = text("OEM"),
                 .control = "txtDataCodePage",
                 .buddy = "DataCodePage",
                 .caption = "DataCodePage:",
                 .toolTip = "The code page of dBASE files, OEM or ANSI...default is OEM"})),
    list(xBase({.property = "P_CollatingSequence",
                .value = "CollatingSequence",
                .byDefault = text("ANSI"),
                .control = "cboCollatingSequence",
                .buddy = "CollatingSequence",
                .caption = "CollatingSequence:",
                .toolTip = "How dBASE files are sorted...default is ANSI"}),
         kCollatingSequences),
    list(textFormat({.property = "P_CharacterSet",
                     .value = "CharacterSet",
                     .byDefault = text("OEM"),
                     .control = "cboCharacterSet",
                     .buddy = "CharacterSet",
                     .caption = "CharacterSet:",
                     .toolTip = "The code page of text files...default is OEM"}),
         kCharacterSets),
    list(textFormat(
             {.property = "P_Format",
              .value = "Format",
              .byDefault = text("CSVDELIMITED"),
              .control = "cboFormat",
              .buddy = "Format",
              .caption = "Format:",
              .toolTip =
                  "What stands between the columns of a text file...default is CSVDELIMITED"}),
         kFormats),
    words(excelFormat(
        {.property = "P_ImportMixedTypes",
         .value = "ImportMixedTypes",
         .byDefault = text("Text"),
         .control = "txtImportMixedTypes",
         .buddy = "ImportMixedTypes",
         .caption = "ImportMixedTypes:",
         .toolTip =
             "What a column of mixed data becomes: Text or Majority Type...default is Text"})),
    // Text
    number(textFormat(
        {.property = "P_MaxScanRows",
         .value = "MaxScanRows",
         .byDefault = dword(25),
         .control = "txtMaxScanRows",
         .buddy = "MaxScanRows",
         .caption = "MaxScanRows:",
         .toolTip = "How many rows are looked at to tell what a column holds...default is 25"})),
    byteSwitch(textFormat({.property = "P_rwFirstRowHasNamesText",
                           .value = "FirstRowHasNames",
                           .stateName = "FirstRowHasNamesText",
                           .control = "chkFirstRowHasNamesText",
                           .caption = "FirstRowHasNames",
                           .toolTip = "The first row of a text file names its columns...default is "
                                      "checked...restart required"}),
               true),
    byteSwitch(
        textFormat(
            {.property = "P_rwExportCurrencySymbols",
             .value = "ExportCurrencySymbols",
             .stateName = "ExportCurrencySymbols",
             .control = "chkExportCurrencySymbols",
             .caption = "ExportCurrencySymbols",
             .toolTip =
                 "Writes the currency beside amounts...default is checked...restart required"}),
        true),
    // Excel
    number(
        excelFormat({.property = "P_AppendBlankRows",
                     .value = "AppendBlankRows",
                     .byDefault = dword(1),
                     .control = "txtAppendBlankRows",
                     .buddy = "AppendBlankRows",
                     .caption = "AppendBlankRows:",
                     .toolTip = "How many blank rows are added before new data...default is 1"})),
    number(excelFormat(
        {.property = "P_TypeGuessRows",
         .value = "TypeGuessRows",
         .byDefault = dword(8),
         .control = "txtTypeGuessRows",
         .buddy = "TypeGuessRows",
         .caption = "TypeGuessRows:",
         .toolTip = "How many rows are looked at to tell what a column holds...default is 8"})),
    byteSwitch(excelFormat({.property = "P_rwFirstRowHasNames",
                            .value = "FirstRowHasNames",
                            .stateName = "FirstRowHasNames",
                            .control = "chkFirstRowHasNames",
                            .caption = "FirstRowHasNames",
                            .toolTip = "The first row of a sheet names its columns...default is "
                                       "checked...restart required"}),
               true),
    // ODBC
    number(
        odbc({.property = "P_AsyncRetryInterval",
              .value = "AsyncRetryInterval",
              .byDefault = dword(500),
              .control = "txtAsyncRetryInterval",
              .buddy = "AsyncRetryInterval",
              .caption = "AsyncRetryInterval:",
              .toolTip = "Milliseconds between two looks at a query that runs...default is 500"})),
    number(odbc({.property = "P_ConnectionTimeout",
                 .value = "ConnectionTimeout",
                 .byDefault = dword(600),
                 .control = "txtConnectionTimeout",
                 .buddy = "ConnectionTimeout",
                 .caption = "ConnectionTimeout:",
                 .toolTip = "Seconds until an idle connection is closed...default is 600"})),
    number(odbc({.property = "P_LoginTimeout",
                 .value = "LoginTimeout",
                 .byDefault = dword(20),
                 .control = "txtLoginTimeout",
                 .buddy = "LoginTimeout",
                 .caption = "LoginTimeout:",
                 .toolTip = "Seconds that a logon may take...default is 20"})),
    number(odbc({.property = "P_QueryTimeout",
                 .value = "QueryTimeout",
                 .byDefault = dword(60),
                 .control = "txtQueryTimeout",
                 .buddy = "QueryTimeout",
                 .caption = "QueryTimeout:",
                 .toolTip = "Seconds that a query may take...default is 60"})),
    numberSwitch(odbc({.property = "P_rwAttachCaseSensitive",
                       .value = "AttachCaseSensitive",
                       .stateName = "AttachCaseSensitive",
                       .control = "chkAttachCaseSensitive",
                       .caption = "AttachCaseSensitive",
                       .toolTip = "Regards case in the names of linked tables...default is "
                                  "unchecked...restart required"}),
                 0),
    numberSwitch(
        odbc({.property = "P_rwDisableAsync",
              .value = "DisableAsync",
              .stateName = "DisableAsync",
              .control = "chkDisableAsync",
              .caption = "DisableAsync",
              .toolTip = "Waits for each query to end...default is checked...restart required"}),
        1),
    numberSwitch(odbc({.property = "P_rwFastRequery",
                       .value = "FastRequery",
                       .stateName = "FastRequery",
                       .control = "chkFastRequery",
                       .caption = "FastRequery",
                       .toolTip = "Prepares a query with parameters once...default is "
                                  "unchecked...restart required"}),
                 0),
    numberSwitch(odbc({.property = "P_rwFatBlastRows",
                       .value = "FatBlastRows",
                       .stateName = "FatBlastRows",
                       .control = "chkFatBlastRows",
                       .caption = "FatBlastRows",
                       .toolTip = "Sends many new rows at once where the server can...default is "
                                  "checked...restart required"}),
                 -1),
    numberSwitch(odbc({.property = "P_rwODBCISAMAttach",
                       .value = "ODBCISAMAttach",
                       .stateName = "ODBCISAMAttach",
                       .control = "chkODBCISAMAttach",
                       .caption = "ODBCISAMAttach",
                       .toolTip = "Links to formats of the engine by ODBC, too...default is "
                                  "unchecked...restart required"}),
                 0),
    numberSwitch(
        odbc({.property = "P_rwPreparedInsert",
              .value = "PreparedInsert",
              .stateName = "PreparedInsert",
              .control = "chkPreparedInsert",
              .caption = "PreparedInsert",
              .toolTip =
                  "Sends all columns of a new row...default is unchecked...restart required"}),
        0),
    numberSwitch(
        odbc({.property = "P_rwPreparedUpdate",
              .value = "PreparedUpdate",
              .stateName = "PreparedUpdate",
              .control = "chkPreparedUpdate",
              .caption = "PreparedUpdate",
              .toolTip =
                  "Sends all columns of a changed row...default is unchecked...restart required"}),
        0),
    numberSwitch(
        odbc({.property = "P_rwSnapshotOnly",
              .value = "SnapshotOnly",
              .stateName = "SnapshotOnly",
              .control = "chkSnapshotOnly",
              .caption = "SnapshotOnly",
              .toolTip =
                  "Opens what cannot be changed only...default is unchecked...restart required"}),
        0),
    numberSwitch(
        odbc({.property = "P_rwTraceODBCAPI",
              .value = "TraceODBCAPI",
              .stateName = "TraceODBCAPI",
              .control = "chkTraceODBCAPI",
              .caption = "TraceODBCAPI",
              .toolTip =
                  "Writes calls of ODBC to odbcapi.txt...default is unchecked...restart required"}),
        0),
    numberSwitch(odbc({.property = "P_rwTraceSQLMode",
                       .value = "TraceSQLMode",
                       .stateName = "TraceSQLMode",
                       .control = "chkTraceSQLMode",
                       .caption = "TraceSQLMode",
                       .toolTip = "Writes what is sent to the server to sqlout.txt...default is "
                                  "unchecked...restart required"}),
                 0),
    numberSwitch(odbc({.property = "P_rwTryJetAuth",
                       .value = "TryJetAuth",
                       .stateName = "TryJetAuth",
                       .control = "chkTryJetAuth",
                       .caption = "TryJetAuth",
                       .toolTip = "Tries the user's name and password of Access first...default is "
                                  "checked...restart required"}),
                 1),
    // xBase
    number(xBase(
        {.property = "P_XBasePageTimeout",
         .value = "PageTimeout",
         .byDefault = dword(600),
         .control = "txtXBasePageTimeout",
         .buddy = "XBasePageTimeout",
         .caption = "PageTimeout:",
         .toolTip = "Milliseconds until data that were read are read anew...default is 600"})),
    byteSwitch(
        xBase(
            {.property = "P_rwCentury",
             .value = "Century",
             .stateName = "Century",
             .control = "chkCentury",
             .caption = "Century",
             .toolTip = "Writes years with four digits...default is unchecked...restart required"}),
        false),
    byteSwitch(
        xBase({.property = "P_rwDbcsStr",
               .value = "DbcsStr",
               .stateName = "DbcsStr",
               .control = "chkDbcsStr",
               .caption = "DbcsStr",
               .toolTip =
                   "Counts letters of two bytes as one...default is unchecked...restart required"}),
        false),
    byteSwitch(
        xBase({.property = "P_rwExact",
               .value = "Exact",
               .stateName = "Exact",
               .control = "chkExact",
               .caption = "Exact",
               .toolTip = "Compares texts to their end...default is unchecked...restart required"}),
        false),
    byteSwitch(
        xBase({.property = "P_rwDeleted",
               .value = "Deleted",
               .stateName = "Deleted",
               .control = "chkDeleted",
               .caption = "Deleted",
               .toolTip = "Passes over deleted records...default is checked...restart required"}),
        true),
    byteSwitch(
        xBase({.property = "P_rwNetworkAccess",
               .value = "NetworkAccess",
               .stateName = "NetworkAccess",
               .control = "chkNetworkAccess",
               .caption = "NetworkAccess",
               .toolTip = "Shares files with other users...default is checked...restart required"}),
        true),
    numberSwitch(xBase({.property = "P_rwMark",
                        .value = "Mark",
                        .stateName = "Mark",
                        .control = "chkMark",
                        .caption = "Mark (own date separator)",
                        .toolTip = "Takes the mark between day and month from here, not from "
                                   "Windows...default is unchecked...restart required"}),
                 0),
};

}  // namespace

static_assert(propertiesAreUnique(kFormatRows) && modesAreKnown(kFormatRows));

std::span<const Tweak> jetFormatRows() { return kFormatRows; }

}  // namespace korvex::engine
