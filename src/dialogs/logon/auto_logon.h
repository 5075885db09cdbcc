// Automatic logon as the machine has it, and switching it on and off. Each change is written as
// one.
#pragma once

#include <string>
#include <vector>

#include "foundation/session.h"

namespace korvex::dialogs {

struct AutoLogon {
  bool on = false;
  std::string userName;
  std::string password;  // as it stands in the registry: readable
};

// A status of failure where one of the values could not be read.
platform::Status readAutoLogon(foundation::Session& session, AutoLogon& logon);
// What keeps this machine from logging on by itself although it is told to, sentence by sentence.
std::vector<std::string> obstaclesTo(const AutoLogon& logon, foundation::Session& session);

// True where it is written; what fails is told.
bool enableAutoLogon(foundation::Session& session, const std::string& userName,
                     const std::string& password);
// Empties the values, the name and the password too.
bool P_DisableAutoLogon(foundation::Session& session);

}  // namespace korvex::dialogs
