// Showing the two lists, and changing them together.
#include "dialogs/network/frm_ip_addresses.h"

#include <fmt/format.h>

#include <algorithm>

#include "engine/raw_value.h"

namespace korvex::dialogs {

using forms::Layout;
using platform::Status;

namespace {

constexpr std::string_view kBinding = "System\\CurrentControlSet\\Services\\Class\\NetTrans\\0000";
constexpr std::string_view kIPAddress = "IPAddress";
constexpr std::string_view kIPMask = "IPMask";
constexpr std::uint32_t kHighestOctet = 255;
constexpr std::size_t kOctetsOfQuad = 4;

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

// Windows writes 0.0.0.0 where a DHCP server gives the address.
bool isGivenByDhcp(const AddressList& addresses) {
  return addresses.quads().size() == 1 && addresses.holds(Octets{});
}

}  // namespace

frmIPAddresses::frmIPAddresses(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Add IP Addresses", parts, engine::k9x) {
  for (forms::TextBox* box : {&txtIP1, &txtIP2, &txtIP3, &txtIP4}) {
    octets_.push_back({box, box == &txtIP1 ? 1U : 0U, false, ""});
  }
  for (forms::TextBox* box : {&txtMask1, &txtMask2, &txtMask3, &txtMask4}) {
    octets_.push_back({box, 0, true, ""});
  }
  describe();
  arrange();
  for (OctetBox& octet : octets_) {
    numerals_.emplace_back(session(), *octet.box, "", [this, &octet] { p_ValidateIPInfo(octet); });
  }
  lstIPAddresses.Click += [this] { selectTheOther(lstIPAddresses, lstSubnet); };
  lstSubnet.Click += [this] { selectTheOther(lstSubnet, lstIPAddresses); };
  onPress(cmdAdd, [this] { cmdAdd_Click(); });
  onPress(cmdRemove, [this] { cmdRemove_Click(); });
  cmdDone.Click += [this] { close(); };
}

void frmIPAddresses::describe() {
  lstIPAddresses.ToolTipText = "The addresses of the first network binding";
  lstSubnet.ToolTipText = "The mask of the address that stands at the same place";
  int number = 0;
  for (OctetBox& octet : octets_) {
    const std::string_view what = octet.ofMask ? "Subnet Mask to add" : "IP Address to add";
    octet.box->AccessibleName = fmt::format("{}, number {}", what, number % 4 + 1);
    octet.box->ToolTipText = fmt::format("{} - {}", octet.lowest, kHighestOctet);
    ++number;
  }
  cmdAdd.ToolTipText = "Write the address with its mask after the others";
  cmdRemove.ToolTipText = "Take the selected address away, with the mask at its place";
  cmdDone.ToolTipText = "Close this window";
  lstIPAddresses.WhatsThis =
      "Windows answers to each of these addresses on the same network card. What is added or "
      "removed is written at once, and counts from the next start of Windows on.";
}

void frmIPAddresses::arrange() {
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {of(lblBinding),
       Layout::grid(2, {of(lblCurrentIP), of(lblCurrentSubnet), of(lstIPAddresses), of(lstSubnet),
                        of(lblIPAddressToAdd), of(lblSubnetMaskToAdd),
                        Layout::row({of(txtIP1), of(lblIP1), of(txtIP2), of(lblIP2), of(txtIP3),
                                     of(lblIP3), of(txtIP4), Layout::space()}),
                        Layout::row({of(txtMask1), of(lblMask1), of(txtMask2), of(lblMask2),
                                     of(txtMask3), of(lblMask3), of(txtMask4), Layout::space()})}),
       Layout::row({of(cmdAdd), of(cmdRemove), Layout::space(), of(cmdDone)})});
}

Status frmIPAddresses::readList(std::string_view value, AddressList& list) const {
  engine::RawValue raw;
  const Status status =
      engine::readRawValue(registry(), platform::HKEY_LOCAL_MACHINE, kBinding, value, raw);
  // Anything but text was not put there by Windows: it is not written over.
  if (status == platform::ERROR_SUCCESS && raw.type != platform::REG_SZ) {
    return platform::ERROR_INVALID_DATA;
  }
  list = AddressList(raw.text());
  return engine::missingIsFine(status);
}

Status frmIPAddresses::readLists(Lists& lists) const {
  const platform::OpenKey key(registry(), platform::HKEY_LOCAL_MACHINE, kBinding,
                              platform::KEY_QUERY_VALUE);
  Status status = key.status();
  if (status == platform::ERROR_SUCCESS) status = readList(kIPAddress, lists.addresses);
  if (status == platform::ERROR_SUCCESS) status = readList(kIPMask, lists.masks);
  // Masks without an address belong to nothing.
  if (lists.addresses.text().empty()) lists.masks = {};
  return status;
}

void frmIPAddresses::p_InitializeIP_Subnet() {
  session().trace.enter("[p_InitializeIP_Subnet]");
  lstIPAddresses.Clear();
  lstSubnet.Clear();
  shown_ = {};
  status_ = readLists(shown_);
  noteRead(status_);
  if (status_ == platform::ERROR_FILE_NOT_FOUND) {
    noteProblem("This machine has no network binding that addresses could be added to.");
  }
  const std::string binding =
      session().regTool.GetRegStr(kBinding, "DriverDesc", platform::HKEY_LOCAL_MACHINE);
  lblBinding.Caption = "Network binding: " + (binding.empty() ? "none" : forms::captionOf(binding));
  for (const std::string& quad : shown_.addresses.quads()) lstIPAddresses.AddItem(quad);
  for (const std::string& quad : shown_.masks.quads()) lstSubnet.AddItem(quad);
  showWhatCanBeDone();
}

void frmIPAddresses::selectTheOther(const forms::ListBox& from, forms::ListBox& to) {
  const int selected = from.ListIndex;
  to.ListIndex = selected < to.ListCount() ? selected : -1;
  showWhatCanBeDone();
}

void frmIPAddresses::showWhatCanBeDone() {
  const auto hasText = [](const OctetBox& octet) { return !octet.box->Text->empty(); };
  cmdAdd.Enabled = status_ == platform::ERROR_SUCCESS && std::ranges::all_of(octets_, hasText);
  cmdRemove.Enabled = status_ == platform::ERROR_SUCCESS &&
                      (lstIPAddresses.ListIndex >= 0 || lstSubnet.ListIndex >= 0);
  const std::size_t addresses = shown_.addresses.quads().size();
  const std::size_t masks = shown_.masks.quads().size();
  if (addresses != masks) {
    StatusText = fmt::format("{}, but {}", counted(addresses, "address", "addresses"),
                             counted(masks, "mask", "masks"));
  } else if (isGivenByDhcp(shown_.addresses)) {
    StatusText = "0.0.0.0: a DHCP server gives the address";
  } else {
    StatusText = counted(addresses, "address", "addresses");
  }
}

// NumeralField has seen to it that the box holds digits only.
void frmIPAddresses::p_ValidateIPInfo(OctetBox& octet) {
  session().trace.enter("[p_ValidateIPInfo]");
  const std::string text = octet.box->Text;
  const auto number = engine::numberIn(text);
  if (text.empty() || (number && *number >= octet.lowest && *number <= kHighestOctet)) {
    octet.valid = text;
    return showWhatCanBeDone();
  }
  octet.box->Text = octet.valid;
  tell(fmt::format(
      "The value entered is outside the {}.\r\n"
      "The range is {} - {}.\r\n\r\n"
      "Please check the number and try again.",
      octet.ofMask ? "subnet mask range" : "range of IP addresses", octet.lowest, kHighestOctet));
}

int frmIPAddresses::changesWaiting() const {
  // The mask stays for the next address of the same network.
  const bool begun = std::any_of(octets_.begin(), octets_.begin() + kOctetsOfQuad,
                                 [](const OctetBox& octet) { return !octet.box->Text->empty(); });
  return begun ? 1 : 0;
}

Octets frmIPAddresses::typed(std::size_t firstBox) const {
  Octets octets{};
  for (std::size_t i = 0; i < octets.size(); ++i) {
    octets[i] = engine::numberIn(octets_[firstBox + i].box->Text.get()).value_or(0);
  }
  return octets;
}

std::string frmIPAddresses::refusalOf(const Lists& lists, const Octets& address,
                                      const Octets& mask) {
  if (!isSubnetMask(mask)) {
    return fmt::format(
        "{} is no subnet mask.\r\n"
        "In a mask all bits that are set stand before all that are not, as in "
        "255.255.255.0.\r\n\r\n"
        "Please check the numbers and try again.",
        quadOf(mask));
  }
  if (lists.addresses.holds(address)) {
    return fmt::format("The address {} is in the list already.", quadOf(address));
  }
  const std::size_t addresses = lists.addresses.quads().size();
  const std::size_t masks = lists.masks.quads().size();
  if (addresses == masks) return {};
  return fmt::format(
      "There are {}, but {}: a new pair would not belong together.\r\n"
      "Remove first what is too many.",
      counted(addresses, "address", "addresses"), counted(masks, "mask", "masks"));
}

bool frmIPAddresses::agreesToFixed(const Octets& address) const {
  return askYesNo(
      fmt::format("A DHCP server gives this machine its address (0.0.0.0).\r\n"
                  "It will have the fixed address {} instead.\r\n\r\n"
                  "Do you wish to continue?",
                  quadOf(address)));
}

bool frmIPAddresses::write(const Lists& lists) {
  const bool done = engine::changeAtOnce(session(), "The list of IP addresses", [&] {
    const auto put = [this](std::string_view name, const AddressList& list) {
      return engine::putText(session(), platform::HKEY_LOCAL_MACHINE, kBinding, name, list.text());
    };
    const Status status = put(kIPAddress, lists.addresses);
    return status == platform::ERROR_SUCCESS ? put(kIPMask, lists.masks) : status;
  });
  if (done) session().g_bRebootNeeded = true;
  readAgain();
  return done;
}

void frmIPAddresses::tellUnread(Status status) {
  readAgain();
  tell(fmt::format("The addresses could not be read: {}.\r\nNothing was changed.",
                   platform::describeStatus(status)),
       platform::kIconExclamation);
}

void frmIPAddresses::cmdAdd_Click() {
  session().trace.enter("[frmIPAddresses_cmdAdd]");
  const Octets address = typed(0);
  const Octets mask = typed(kOctetsOfQuad);
  Lists lists;
  const Status status = readLists(lists);
  if (status != platform::ERROR_SUCCESS) return tellUnread(status);
  const std::string refusal = refusalOf(lists, address, mask);
  if (!refusal.empty()) return tell(refusal);
  if (isGivenByDhcp(lists.addresses)) {
    if (!agreesToFixed(address)) return;
    lists = {};
  }
  lists.addresses.add(quadOf(address));
  lists.masks.add(quadOf(mask));
  if (!write(lists)) return;
  for (std::size_t i = 0; i < kOctetsOfQuad; ++i) octets_[i].box->Text = "";
}

void frmIPAddresses::cmdRemove_Click() {
  session().trace.enter("[frmIPAddresses_cmdRemove]");
  const int selected = std::max(lstIPAddresses.ListIndex.get(), lstSubnet.ListIndex.get());
  if (selected < 0) return;
  Lists lists;
  const Status status = readLists(lists);
  if (status != platform::ERROR_SUCCESS) return tellUnread(status);
  // Another program may have written meanwhile: what stands at that place now was not chosen.
  if (lists.addresses.text() != shown_.addresses.text() ||
      lists.masks.text() != shown_.masks.text()) {
    readAgain();
    return tell("The addresses have been changed meanwhile. Please choose once more.");
  }
  lists.addresses.remove(static_cast<std::size_t>(selected));
  lists.masks.remove(static_cast<std::size_t>(selected));
  write(lists);
}

}  // namespace korvex::dialogs
