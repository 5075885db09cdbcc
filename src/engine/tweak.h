// One tweak is one row of data: the routine that RegWorker calls, the reader that sets the box, the
// check box, the line in "korvex list" and the page of the manual all come from it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/registry.h"

namespace korvex::foundation {
class Session;
}

namespace korvex::engine {

class RegWorker;
struct Tweak;

using Root = platform::HKEY;
constexpr Root HKCR = platform::HKEY_CLASSES_ROOT;
constexpr Root HKCU = platform::HKEY_CURRENT_USER;
constexpr Root HKLM = platform::HKEY_LOCAL_MACHINE;

// The settings banks, by the numbers that p_SetForApply takes.
enum class Bank : std::int16_t {
  Configuration = 1,  // the program's own options
  MainWindow = 2,
  WinTweaksII = 3,
  NT4_Win2KCont = 4,
  NTServer = 5,
  NTDebug = 6,
  Office = 7,
  MoreSecurity = 8,
  DrWat = 9,
};

// The pages of the main window, by the index of their tab.
enum class Page { Security = 1, WinTweaks, Windows9x, NT4Win2K, MSOffice, Registry, Options };

// On which Windows a tweak exists, as a set of bits.
using Families = std::uint8_t;
constexpr Families kWin95 = 1, kWin98 = 2, kWinMe = 4, kNT4 = 8, kWin2000 = 16;
constexpr Families k9x = kWin95 | kWin98 | kWinMe;
constexpr Families kNT = kNT4 | kWin2000;
constexpr Families kEvery = k9x | kNT;

// A value as a row tells it: a DWORD, a text, the byte of a binary value, or "delete the value".
struct RowValue {
  enum class Kind : std::uint8_t { Delete, Number, Text, Byte };
  Kind kind = Kind::Delete;
  std::int32_t number = 0;
  std::string_view text;

  constexpr bool operator==(const RowValue&) const = default;
};
constexpr RowValue kDelete{};
constexpr RowValue dword(std::int32_t number) { return {RowValue::Kind::Number, number, {}}; }
constexpr RowValue text(std::string_view text) { return {RowValue::Kind::Text, 0, text}; }
constexpr RowValue byte(std::int32_t number) { return {RowValue::Kind::Byte, number, {}}; }

// What a machine has of a tweak.
struct TweakState {
  enum class Kind { Off, On, Grey, Unavailable };
  Kind kind = Kind::Off;
  std::string_view reason;  // why it is unavailable, for people
};

// OptionPair: two buttons of which one is set, for a setting both of whose states need a name; the
// first stands for a checked box. None: a routine without a control of its own, for others to call
// and for restore-defaults.
enum class ControlShape : std::uint8_t { CheckBox, OptionPair, TextBox, ComboBox, None };

// A row that the engine's mode tables cannot carry out names the member that does; a row whose
// state is more than its one value names its reader.
using Special = bool (RegWorker::*)(const Tweak&);
// What a special has to ask the person. It is asked before the routine's change is begun: nobody
// else can write to the machine while one is open. False for a person who gave no answer: then the
// routine does nothing, and its change keeps waiting.
using Ask = bool (RegWorker::*)(const Tweak&);
using SpecialReader = TweakState (*)(const Tweak&, foundation::Session&);
// The text of a field that is more than the value there.
using TextReader = std::string (*)(const Tweak&, foundation::Session&);
// Why this machine cannot have the tweak, beyond its Windows; "" where it can. Reads only.
using Condition = std::string_view (*)(const Tweak&, foundation::Session&);
// Fills in what depends on a fact of the machine: a key, a value's name, a default, a caption.
// The texts it puts in are literals, or lasting ones of the session. Reads only; where that fails
// it says so in .unreadable.
using Adapt = void (*)(Tweak&, foundation::Session&);

struct Tweak {
  std::string_view property;  // "P_rwRun": name of the routine and of its marker
  Root root = HKCU;
  std::string_view key = {};
  std::string_view value = {};  // "" is the key's default value
  std::int16_t mode = 0;        // 0 to 21, of the binary engine 0 to 3: see modes.h
  RowValue byDefault = {};      // written in restore-defaults mode
  RowValue onValue = {};        // modes 3, 6, 10, 13 and 17; all of the binary engine
  // 1 or 4: a REG_BINARY value of that many bytes, carried out by the binary engine. The first byte
  // holds the row's, the others are 0. 0: any other row.
  std::uint8_t binaryLength = 0;
  // What stood there before is kept in the program's own area when the box is first checked, and
  // comes back, once, where byDefault would be written; without it byDefault is written.
  bool keepsPrevious = false;
  bool reboot = false;
  Bank bank = Bank::MainWindow;
  std::string_view stateName = {};  // name of the state value: "Defrag"
  std::string_view form = "frmMain";
  std::string_view control = {};  // "chkHideRun"
  std::string_view buddy = {};    // label of a field: its control name is "lbl" + this
  ControlShape shape = ControlShape::CheckBox;
  // Of a text box: it takes digits, or this word, which a missing value is shown as; a plain text
  // otherwise.
  bool digitsOnly = false;
  std::string_view orWord = {};
  bool lettersOnly = false;  // letters and blanks
  // Of a number: what it may be, and what is told of another one, as it is typed and when it would
  // be written (rangeText where that is empty). Without rangeText any.
  std::uint32_t lowest = 0;
  std::uint32_t highest = 0;
  std::string_view rangeText = {};
  std::string_view skipText = {};
  // What is told of a text that the box does not take.
  std::string_view refusal = "This field accepts numerical characters only.";
  // Of a combo box: what can be chosen, and whether something else can be typed.
  std::span<const std::string_view> choices = {};
  bool freeText = false;
  Page page = Page::Security;
  std::string_view group = {};    // title of the frame it stands in
  std::string_view caption = {};  // '&' marks the mnemonic
  // Of an option pair: the caption of the second button; the first has the row's.
  std::string_view otherCaption = {};
  std::string_view toolTip = {};
  // Of a special: what it writes, checked and unchecked, for people. Key and value are told before
  // a text that begins with "Checked:", "The number of the field", "The text of the field" or "A
  // DWORD:"; any other one names what it works on itself.
  std::string_view writes = {};
  Families families = kEvery;
  // Of these, the Windows that have it only with the desktop update of Internet Explorer 4.
  Families needsDesktopUpdate = 0;
  Special special = nullptr;
  Ask ask = nullptr;
  SpecialReader reader = nullptr;
  TextReader textReader = nullptr;
  Condition lacks = nullptr;
  Adapt adapt = nullptr;
  // Of an adapted row: the status of a fact that could not be read. What was filled in may be that
  // of another machine then, and nothing is written by it.
  platform::Status unreadable = platform::ERROR_SUCCESS;
};

// Whether the row's control holds its value as text, instead of standing for one of two states.
constexpr bool isField(const Tweak& row) {
  return row.shape == ControlShape::TextBox || row.shape == ControlShape::ComboBox;
}

// The row as it is on this machine: adapt carried out.
Tweak onMachine(const Tweak& row, foundation::Session& session);

}  // namespace korvex::engine
