// Reading, confirming and writing the two numbers.
#include "dialogs/network/frm_nt_ip_forward.h"

#include <fmt/format.h>

#include "engine/raw_value.h"
#include "engine/same_name.h"

namespace korvex::dialogs {

using engine::RawValue;
using forms::Layout;
using namespace platform;

namespace {

constexpr std::string_view kKey = "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters";
constexpr std::string_view kMemory = "MaxForwardBufferMemory";
constexpr std::string_view kPackets = "MaxNumForwardPackets";
constexpr const char* kDefaultMemory = "0xFFFF";
constexpr std::uint32_t kDefaultMemoryNumber = 0xFFFF;
constexpr const char* kDefaultPackets = "50";

// A number as it is counted, without a sign; another type as the person would see it elsewhere.
Status readShown(Registry& registry, std::string_view name, const char* missing,
                 std::string& shown) {
  RawValue value;
  const Status status = engine::readRawValue(registry, HKEY_LOCAL_MACHINE, kKey, name, value);
  if (status == ERROR_FILE_NOT_FOUND) {
    shown = missing;
    return ERROR_SUCCESS;
  }
  if (status != ERROR_SUCCESS) return status;
  const bool isNumber = value.type == REG_DWORD && value.bytes.size() == sizeof(std::uint32_t);
  shown = isNumber ? std::to_string(static_cast<std::uint32_t>(value.number(0))) : value.text();
  return ERROR_SUCCESS;
}

// Up to four bytes of whatever type are a number, as Windows' own readers have it.
std::uint32_t bound(std::string_view bytes) {
  std::uint32_t number = 0;
  if (bytes.size() > sizeof number) return 0;
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) {
    number = number << 8 | static_cast<std::uint8_t>(*byte);
  }
  return number;
}

}  // namespace

frmNT_IPForward::frmNT_IPForward(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - IP Forwarding", parts, engine::kNT),
      memory_(parts.session, txtMaxForwardBufferMemory, kDefaultMemory),
      packets_(parts.session, txtMaxNumForwardPackets) {
  setToolTips();
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout =
      Layout::column({Layout::grid(2, {of(lblMaxForwardBufferMemory), of(txtMaxForwardBufferMemory),
                                       of(lblMaxNumForwardPackets), of(txtMaxNumForwardPackets)}),
                      Layout::row({Layout::space(), of(cmdApply), of(cmdDone)})});
  onPress(cmdApply, [this] { cmdApply_Click(); });
  cmdDone.Click += [this] { close(); };
}

void frmNT_IPForward::setToolTips() {
  txtMaxForwardBufferMemory.ToolTipText =
      "The most memory, in bytes, for packets that wait to be handed on...default is 0xFFFF";
  txtMaxForwardBufferMemory.WhatsThis =
      "Sets the value MaxForwardBufferMemory of the key HKEY_LOCAL_MACHINE\\SYSTEM\\"
      "CurrentControlSet\\Services\\Tcpip\\Parameters. It must not be less than "
      "ForwardBufferMemory there. 0xFFFF is written as 65535.";
  txtMaxNumForwardPackets.ToolTipText =
      "The most packets that may wait to be handed on...default is 50";
  txtMaxNumForwardPackets.WhatsThis =
      "Sets the value MaxNumForwardPackets of the key HKEY_LOCAL_MACHINE\\SYSTEM\\"
      "CurrentControlSet\\Services\\Tcpip\\Parameters. It must not be less than "
      "NumForwardPackets there.";
  cmdApply.ToolTipText = "Writes both numbers; Windows uses them from its next start on";
  cmdDone.ToolTipText = "Close this window";
}

int frmNT_IPForward::changesWaiting() const {
  return (txtMaxForwardBufferMemory.Text.get() == shownMemory_ ? 0 : 1) +
         (txtMaxNumForwardPackets.Text.get() == shownPackets_ ? 0 : 1);
}

void frmNT_IPForward::p_DetermineIP_ForwardValues() {
  session().trace.enter("[frmNT_IPForward.p_DetermineIP_ForwardValues]");
  // The key is the protocol's own: without it there is nothing that would read the numbers.
  Status status = OpenKey(registry(), HKEY_LOCAL_MACHINE, kKey, KEY_QUERY_VALUE).status();
  if (status == ERROR_FILE_NOT_FOUND) {
    return disableAll("The TCP/IP protocol is not installed on this machine.");
  }
  if (status == ERROR_SUCCESS) {
    status = readShown(registry(), kMemory, kDefaultMemory, shownMemory_);
  }
  if (status == ERROR_SUCCESS) {
    status = readShown(registry(), kPackets, kDefaultPackets, shownPackets_);
  }
  session().trace.dump("lRetVal&", status);
  if (status != ERROR_SUCCESS) {
    return disableAll(fmt::format("The numbers cannot be read: {}.", describeStatus(status)));
  }
  txtMaxForwardBufferMemory.Text = shownMemory_;
  txtMaxNumForwardPackets.Text = shownPackets_;
}

std::optional<frmNT_IPForward::Values> frmNT_IPForward::p_ConfirmGoodValues() {
  session().trace.enter("[frmNT_IPForward.p_ConfirmGoodValues]");
  const bool isDefault = engine::sameName(txtMaxForwardBufferMemory.Text.get(), kDefaultMemory);
  const auto memory = isDefault ? kDefaultMemoryNumber : memory_.number();
  const auto packets = packets_.number();
  if (!memory || !packets) {
    tell(fmt::format("{} must be a number from 0 to 4294967295.", memory ? kPackets : kMemory));
    return std::nullopt;
  }
  if (isAtLeast(*memory, "ForwardBufferMemory", "ForwardBufferMemory parameter") &&
      isAtLeast(*packets, "NumForwardPackets", "NumForwardPackets value")) {
    return Values{*memory, *packets};
  }
  return std::nullopt;
}

// A value that is missing sets no bound; one that cannot be read might.
bool frmNT_IPForward::isAtLeast(std::uint32_t number, std::string_view name,
                                std::string_view what) const {
  RawValue value;
  const Status status = engine::missingIsFine(
      engine::readRawValue(registry(), HKEY_LOCAL_MACHINE, kKey, name, value));
  const std::uint32_t least = status == ERROR_SUCCESS ? bound(value.bytes) : 0;
  if (status != ERROR_SUCCESS) {
    tell(
        fmt::format("{} cannot be read: {}.\r\nNothing was changed.", name, describeStatus(status)),
        kIconExclamation);
  } else if (number < least) {
    tell(fmt::format("This value must be greater than or equal to the {} ({}).", what, least));
  }
  return status == ERROR_SUCCESS && number >= least;
}

void frmNT_IPForward::cmdApply_Click() {
  session().trace.enter("[frmNT_IPForward.cmdApply]");
  const auto values = p_ConfirmGoodValues();
  if (!values) return;
  const auto put = [this](std::string_view name, std::uint32_t number) {
    return engine::putValue(session(), HKEY_LOCAL_MACHINE, kKey, name,
                            static_cast<std::int32_t>(number));
  };
  const bool written = engine::changeAtOnce(session(), "The forwarding buffers", [&] {
    const Status status = put(kMemory, values->memory);
    return status == ERROR_SUCCESS ? put(kPackets, values->packets) : status;
  });
  if (!written) return;
  session().g_bRebootNeeded = true;
  readAgain();
  StatusText = "Both numbers have been written. Windows uses them from its next start on.";
}

}  // namespace korvex::dialogs
