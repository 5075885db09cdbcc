// Modal questions to the person in front of the machine. A front end draws them, a test or a script
// answers them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvex::platform {

// Message box style: buttons in the low four bits, icon in the next four, then the default button.
constexpr int kButtonsOk = 0;
constexpr int kButtonsOkCancel = 1;
constexpr int kButtonsYesNoCancel = 3;
constexpr int kButtonsYesNo = 4;
constexpr int kIconCritical = 16;
constexpr int kIconQuestion = 32;
constexpr int kIconExclamation = 48;
constexpr int kIconInformation = 64;
constexpr int kDefaultButton2 = 256;  // has the focus at first; else the first one
constexpr int kButtonsMask = 0x0F;
constexpr int kIconMask = 0xF0;

// The Windows numbers of the buttons.
enum class Answer { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

struct FileRequest {
  std::string title;
  std::string filter;    // "Bitmaps (*.bmp)|*.bmp|All files (*.*)|*.*"
  std::string fileName;  // proposed
  std::string folder;    // Windows path to start in
  bool save = false;
};

struct FontChoice {
  std::string name;
  int points = 0;
  bool bold = false;
  bool italic = false;
};

class Prompts {
 public:
  virtual ~Prompts() = default;

  virtual Answer messageBox(std::string_view text, int style, std::string_view title) = 0;
  // Nothing when cancelled.
  virtual std::optional<std::string> inputBox(std::string_view text, std::string_view title,
                                              std::string_view proposal) = 0;
  // Windows paths of the machine.
  virtual std::optional<std::string> pickFile(const FileRequest& request) = 0;
  virtual std::optional<std::string> pickFolder(std::string_view title) = 0;
  virtual std::optional<FontChoice> pickFont(const FontChoice& current, std::string_view title) = 0;
  // 0x00BBGGRR, as Windows keeps it.
  virtual std::optional<std::uint32_t> pickColor(std::uint32_t current) = 0;
};

}  // namespace korvex::platform
