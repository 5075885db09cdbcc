// The screen saver that Windows NT runs while nobody is logged on: the settings of the default
// user.
#pragma once

#include <string>
#include <string_view>

#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::dialogs {

struct LogonScreenSaver {
  std::string path;    // "" for none
  std::string delay;   // seconds, as it stands; "900" where nothing does
  bool active = true;  // screen savers at all
};

// "Mystify" for "C:\WINNT\System32\ssmyst.scr"; the base name of a file that is not known.
std::string screenSaverName(std::string_view path);

platform::Status readLogonScreenSaver(foundation::Session& session, LogonScreenSaver& stored);

// Where the file lies: a bare name is looked for as Windows does. "" where it is not there.
std::string findScreenSaver(foundation::Session& session, const std::string& path);

// Steps of a change. An empty path takes the value away.
platform::Status writeScreenSaverPath(foundation::Session& session, const std::string& path);
platform::Status writeScreenSaverDelay(foundation::Session& session, const std::string& seconds);

}  // namespace korvex::dialogs
