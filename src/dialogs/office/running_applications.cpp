// Looking for their windows.
#include "dialogs/office/running_applications.h"

#include <array>
#include <string>
#include <string_view>

#include "engine/at_once.h"

namespace korvex::dialogs {
namespace {

constexpr std::int16_t kOffice2000 = 9;

// In the order in which they are told.
enum Application { kOutlook, kWord, kExcel, kPowerPoint, kAccess, kApplications };
constexpr std::array<std::string_view, kApplications> kNames{
    "Microsoft Outlook", "Microsoft Word", "Microsoft Excel", "Microsoft PowerPoint",
    "Microsoft Access"};

// In the order in which they are looked for.
struct WindowClass {
  Application application;
  std::string_view of97;
  std::string_view of2000;
};
constexpr std::string_view kExcelClass = "XLMAIN";
constexpr std::array<WindowClass, kApplications> kClasses{{
    {kWord, "OpusApp", "OpusApp"},
    {kExcel, kExcelClass, kExcelClass},
    {kPowerPoint, "PP97FrameClass", "PP9FrameClass"},
    {kAccess, "OMain", "OMain"},
    {kOutlook, "mspim_wnd32", "mspim_wnd32"},
}};

}  // namespace

std::vector<std::string_view> runningOfficeApplications(foundation::Session& session) {
  platform::Windows& windows = session.machine().windows();
  const bool is2000 = session.g_iOfficeVer >= kOffice2000;
  std::array<bool, kApplications> runs{};
  for (const WindowClass& row : kClasses) {
    runs[row.application] = windows.FindWindowA(is2000 ? row.of2000 : row.of97, "");
  }
  std::vector<std::string_view> names;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (runs[i]) names.push_back(kNames[i]);
  }
  return names;
}

bool p_CheckForLoadedAppsRestore(foundation::Session& session) {
  session.trace.enter("[p_CheckForLoadedAppsRestore]");
  std::string list;
  for (const std::string_view name : runningOfficeApplications(session)) {
    list.append(name).append("\r\n");
  }
  session.trace.dump("sList$", list);
  if (list.empty()) return false;
  engine::tell(session,
               "Korvex has determined that the following application(s) are running:\r\n\r\n" +
                   list +
                   "\r\nThese application(s) MUST be closed in order to properly tweak MS\r\n"
                   "Office settings.",
               platform::kIconCritical);
  return true;
}

bool excelIsRunning(foundation::Session& session) {
  return session.machine().windows().FindWindowA(kExcelClass, "");
}

}  // namespace korvex::dialogs
