// What a window changes at once, without a bank: one change of the machine, brought to the disk.
// What fails is taken back, and the person is told.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "engine/raw_value.h"
#include "foundation/session.h"
#include "foundation/variant.h"
#include "platform/prompts.h"
#include "platform/registry.h"

namespace korvex::engine {

// steps returns the first status that is none of success; the others are then not tried. what is
// the subject of the message: "The spool directory". True where all is written.
bool changeAtOnce(foundation::Session& session, std::string_view what,
                  const std::function<platform::Status()>& steps);

// The same where the window has a message of its own for a failure.
bool changeOrTell(foundation::Session& session, std::string_view message, int icon,
                  const std::function<platform::Status()>& steps);

// The end of a change that had a bracket of its own: brings it to the disk, or tells why it failed.
bool finishAtOnce(foundation::Session& session, std::string_view what, platform::Status status);

// Steps. A missing key is made for a value that is put; a value or key that is missing already is
// no error for one that is dropped.
platform::Status putValue(foundation::Session& session, platform::HKEY root, std::string_view key,
                          std::string_view name, const foundation::Variant& value);
// A REG_SZ whatever stands in it: putValue makes text with two "%" one that Windows expands, which
// is wrong for what is no path.
platform::Status putText(foundation::Session& session, platform::HKEY root, std::string_view key,
                         std::string_view name, const std::string& text);
// Type and bytes as they are given.
platform::Status putRaw(foundation::Session& session, platform::HKEY root, std::string_view key,
                        std::string_view name, const RawValue& value);
platform::Status dropValue(foundation::Session& session, platform::HKEY root, std::string_view key,
                           std::string_view name);

// The text of a value: "" where it is missing or no text. The status tells a value that could not
// be read, so that nobody takes it for an empty one and writes over it.
platform::Status storedText(foundation::Session& session, platform::HKEY root, std::string_view key,
                            std::string_view name, std::string& text);

// Message boxes under the program's title.
void tell(foundation::Session& session, std::string_view text,
          int icon = platform::kIconInformation);
bool askYesNo(foundation::Session& session, std::string_view question,
              int icon = platform::kIconQuestion);

}  // namespace korvex::engine
