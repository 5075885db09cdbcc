// Listing, adding and removing.
#include "dialogs/shell/frm_moniker.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "engine/same_name.h"
#include "platform/text/text.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using engine::HKLM;
using engine::missingIsFine;
using engine::RawValue;
using forms::Layout;
using namespace platform;

namespace {

constexpr std::string_view kAboutUrls = "SOFTWARE\\Microsoft\\Internet Explorer\\AboutURLs";
constexpr std::string_view kOwn = "SOFTWARE\\Korvex\\Moniker";
constexpr std::string_view kSeparator = "  >>  ";
constexpr std::string_view kHttp = "HTTP://";
constexpr const char* kNeedsBrowser = "Needs Internet Explorer 3 or later.";
constexpr int kFirstBrowser = 3;

std::string counted(std::size_t count) {
  return fmt::format("{} {}", count, count == 1 ? "moniker" : "monikers");
}

bool isText(const RawValue& value) { return value.type == REG_SZ || value.type == REG_EXPAND_SZ; }

std::string forPeople(const RawValue& value) {
  return isText(value) ? value.text() : fmt::format("(data of type {})", value.type);
}

bool isControl(char c) { return static_cast<unsigned char>(c) < ' '; }

}  // namespace

std::string frmMoniker::Moniker::line() const {
  return fmt::format("{}{}{}", name, kSeparator, address);
}

frmMoniker::frmMoniker(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Browser monikers", parts),
      taken_(parts.session, HKLM, "Moniker") {
  lstMonikers.WhatsThis =
      "Internet Explorer opens the address when about: and the name are typed, such as "
      "about:news. Each is a value of the key HKEY_LOCAL_MACHINE\\" +
      std::string(kAboutUrls) + ". Those of other programs are not listed.";
  txtMoniker.ToolTipText = "The name that is typed: news for about:news";
  txtAddress.ToolTipText = "What opens then; it begins with http://";
  cmdDone.ToolTipText = "Close this window";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {of(lblMonikers), of(lstMonikers),
       Layout::grid(2, {of(lblMoniker), Layout::row({of(txtMoniker), Layout::space()}),
                        of(lblAddress), of(txtAddress)}),
       Layout::row({of(cmdAddMoniker), of(cmdRemoveMoniker), Layout::space(), of(cmdDone)})});
  lstMonikers.Click += [this] { showWhatCanBeDone(); };
  onPress(cmdAddMoniker, [this] { cmdAddMoniker_Click(); });
  onPress(cmdRemoveMoniker, [this] { cmdRemoveMoniker_Click(); });
  cmdDone.Click += [this] { close(); };
}

int frmMoniker::changesWaiting() const {
  return txtMoniker.Text->empty() && txtAddress.Text->empty() ? 0 : 1;
}

Status frmMoniker::readMonikers(std::vector<Moniker>& monikers) const {
  const OpenKey key(registry(), HKLM, kOwn, KEY_QUERY_VALUE);
  Status status = key.status();
  std::array<char, kNameBufferBytes> buffer;
  for (std::uint32_t i = 0; status == ERROR_SUCCESS; ++i) {
    auto length = static_cast<std::uint32_t>(buffer.size());
    status =
        registry().RegEnumValueA(key.get(), i, buffer.data(), &length, nullptr, nullptr, nullptr);
    if (status != ERROR_SUCCESS) break;
    const std::string name(buffer.data(), length);
    RawValue value;
    status = engine::readRawValue(registry(), key.get(), name, value);
    if (!name.empty() && isText(value)) monikers.push_back({name, value.text()});
  }
  return status == ERROR_NO_MORE_ITEMS ? ERROR_SUCCESS : missingIsFine(status);
}

Status frmMoniker::readBrowser(const std::string& name, RawValue& value) const {
  return engine::readRawValue(registry(), HKLM, kAboutUrls, name, value);
}

void frmMoniker::readMachine() {
  session().trace.enter("[frmMoniker.Form_Load]");
  lstMonikers.Clear();
  shown_.clear();
  noteRead(readMonikers(shown_));
  for (const Moniker& moniker : shown_) lstMonikers.AddItem(moniker.line());
  StatusText = shown_.empty() ? "Korvex has added no moniker." : counted(shown_.size());
  showWhatCanBeDone();
  if (session().g_iExplrVer < kFirstBrowser) noteProblem(kNeedsBrowser);
}

void frmMoniker::showWhatCanBeDone() {
  lstMonikers.ToolTipText = "Names and the addresses that they open";
  cmdAddMoniker.ToolTipText = "Writes the name with its address";
  cmdRemoveMoniker.Enabled = lstMonikers.ListIndex >= 0;
  cmdRemoveMoniker.ToolTipText =
      cmdRemoveMoniker.Enabled ? "Takes the selected moniker away" : "Select a moniker first.";
}

void frmMoniker::tellUnread(Status status) {
  session().trace.dump("lRetVal&", status);
  tell(fmt::format("The monikers could not be read: {}.\r\nNothing was changed.",
                   describeStatus(status)),
       kIconExclamation);
}

// "=" and ">" part name and address where monikers are listed.
std::string frmMoniker::refusalOf(const std::string& name, const std::string& address) {
  if (address.size() < kHttp.size() || !engine::sameName(address.substr(0, kHttp.size()), kHttp)) {
    return "The web address is not formatted correctly.\r\n"
           "Make sure the address is formatted like the\r\n"
           "following examples:\r\n\r\n"
           "http://www.example.com\r\n"
           "or\r\n"
           "http://www.example.com/news/index.html";
  }
  if (name.empty()) return "Enter the name of the moniker first.";
  if (name.find_first_of("=>") != std::string::npos || std::ranges::any_of(name, isControl)) {
    return fmt::format("{} cannot be a name: it must not hold = or >.", name);
  }
  if (address.size() == kHttp.size() || std::ranges::any_of(address, isControl)) {
    return fmt::format("{} is not the address of a page.", address);
  }
  return {};
}

// foreign: what stands there now was not written by Korvex, and is kept.
bool frmMoniker::agreesToReplace(const std::vector<Moniker>& own, const Moniker& moniker,
                                 const RawValue& there, bool& foreign) const {
  const auto before = std::ranges::find_if(
      own, [&moniker](const Moniker& one) { return sameName(one.name, moniker.name); });
  foreign = before == own.end() || !isText(there) || before->address != there.text();
  if (!foreign && before->address == moniker.address) return true;
  return askYesNo(fmt::format("{}about:{} opens this by now:\r\n{}\r\nReplace it?",
                              foreign ? "Another program has added this name.\r\n" : "",
                              moniker.name, forPeople(there)));
}

Status frmMoniker::add(const Moniker& moniker, bool foreign) {
  Status status = ERROR_SUCCESS;
  if (foreign) {
    status = missingIsFine(taken_.removeValue(kAboutUrls, moniker.name, moniker.name));
  }
  for (const std::string_view key : {kAboutUrls, kOwn}) {
    if (status == ERROR_SUCCESS) {
      status = engine::putText(session(), HKLM, key, moniker.name, moniker.address);
    }
  }
  return status;
}

void frmMoniker::cmdAddMoniker_Click() {
  session().trace.enter("[cmdAddMoniker_Click]");
  const Moniker moniker{std::string(trimmed(txtMoniker.Text.get())),
                        std::string(trimmed(txtAddress.Text.get()))};
  const std::string refusal = refusalOf(moniker.name, moniker.address);
  if (!refusal.empty()) return tell(refusal);
  RawValue there;
  std::vector<Moniker> own;
  Status status = readMonikers(own);
  const Status present = status == ERROR_SUCCESS ? readBrowser(moniker.name, there) : status;
  status = missingIsFine(present);
  if (status != ERROR_SUCCESS) return tellUnread(status);
  bool foreign = false;
  const bool agreed = present != ERROR_SUCCESS || agreesToReplace(own, moniker, there, foreign);
  const bool done =
      agreed && engine::changeOrTell(
                    session(), "An error occurred creating the moniker. The moniker was not saved.",
                    kIconInformation, [&] { return add(moniker, foreign); });
  readAgain();
  if (!done) return;
  txtMoniker.Text = "";
  txtAddress.Text = "";
  StatusText = fmt::format("about:{} has been added.", moniker.name);
}

// Whether the copy is still what the person chose.
bool frmMoniker::isAsShown(const Moniker& moniker) {
  std::vector<Moniker> now;
  const Status status = readMonikers(now);
  if (status != ERROR_SUCCESS) {
    tellUnread(status);
    return false;
  }
  if (std::ranges::any_of(now, [&moniker](const Moniker& one) {
        return one.name == moniker.name && one.address == moniker.address;
      })) {
    return true;
  }
  readAgain();
  tell("The monikers have been changed meanwhile. Please choose once more.");
  return false;
}

// False where the person gives up.
bool frmMoniker::chooseRemoval(const Moniker& moniker, Browser& browser) const {
  RawValue there;
  const Status status = readBrowser(moniker.name, there);
  browser = Browser::Delete;
  if (status != ERROR_SUCCESS || (isText(there) && there.text() == moniker.address)) return true;
  const Answer answer = session().prompts().messageBox(
      fmt::format("Another program has changed {} since. It opens this by now:\r\n{}\r\n"
                  "Remove it nevertheless? No takes it out of this list only.",
                  moniker.name, forPeople(there)),
      kButtonsYesNoCancel | kIconQuestion, foundation::kAppTitle);
  browser = answer == Answer::Yes ? Browser::Delete : Browser::Leave;
  return answer != Answer::Cancel;
}

// What Korvex had replaced comes back; back is then what it opens.
Status frmMoniker::remove(const std::string& name, Browser browser, std::string& back) {
  Status status = ERROR_SUCCESS;
  if (browser == Browser::Delete) {
    const std::vector<engine::TakenAway::Item> replaced = taken_.items();
    status = engine::dropValue(session(), HKLM, kAboutUrls, name);
    const auto before = std::ranges::find_if(
        replaced,
        [&name](const engine::TakenAway::Item& item) { return sameName(item.value, name); });
    if (status == ERROR_SUCCESS && before != replaced.end()) {
      status = taken_.takeBack(*before);
      RawValue there;
      if (status == ERROR_SUCCESS) status = readBrowser(name, there);
      back = forPeople(there);
    }
  }
  return status == ERROR_SUCCESS ? engine::dropValue(session(), HKLM, kOwn, name) : status;
}

void frmMoniker::cmdRemoveMoniker_Click() {
  session().trace.enter("[cmdRemoveMoniker_Click]");
  if (lstMonikers.ListIndex < 0) return;
  const Moniker moniker = shown_[static_cast<std::size_t>(lstMonikers.ListIndex)];
  Browser browser{};
  if (!isAsShown(moniker) || !chooseRemoval(moniker, browser)) return;
  std::string back;
  const bool done = engine::changeAtOnce(session(), "The moniker",
                                         [&] { return remove(moniker.name, browser, back); });
  readAgain();
  if (!done) return;
  StatusText = back.empty()
                   ? fmt::format("about:{} has been removed.", moniker.name)
                   : fmt::format("about:{} opens again what it did before: {}", moniker.name, back);
}

}  // namespace korvex::dialogs
