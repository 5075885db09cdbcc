// Looking up another program's open window by its class.
#pragma once

#include <string_view>

namespace korvex::platform {

class Windows {
 public:
  virtual ~Windows() = default;
  // An empty windowName matches any. Class names compare without regard to case.
  virtual bool FindWindowA(std::string_view className, std::string_view windowName) = 0;
};

}  // namespace korvex::platform
