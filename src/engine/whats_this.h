// The what's-this text of a tweak: which value it is, and what is written there.
#pragma once

#include <string>

#include "engine/tweak.h"

namespace korvex::engine {

std::string whatsThis(const Tweak& tweak);

// What is written, in the same words; "" where only the routine knows.
struct WrittenTexts {
  std::string checked;
  std::string unchecked;
  std::string byDefault;
};
WrittenTexts writtenTexts(const Tweak& tweak);
// Whether the row's key and value are what it works on. A special's text that begins otherwise than
// with "Checked:" says itself what that is.
bool tellsOfTheValue(const Tweak& tweak);

}  // namespace korvex::engine
