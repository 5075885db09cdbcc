// frmIPAddresses: further IP addresses, each with its subnet mask, for the first network binding of
// Windows 95, 98 and Me. It writes at once.
//
// The n-th mask belongs to the n-th address, so both values are written together, and what is
// removed goes from the same position of both.
#pragma once

#include <deque>
#include <string>
#include <string_view>

#include "dialogs/direct_dialog.h"
#include "dialogs/network/address_list.h"
#include "engine/numeral_field.h"

namespace korvex::dialogs {

class frmIPAddresses : public DirectDialog {
 public:
  static constexpr const char* kName = "frmIPAddresses";

  explicit frmIPAddresses(const DialogParts& parts);

  forms::Label lblBinding{*this, "lblBinding", ""};
  forms::ListBox lstIPAddresses{*this, "lstIPAddresses", 6};
  forms::Label lblCurrentIP{*this, "lblCurrentIP", "Current IP addresses", &lstIPAddresses};
  forms::ListBox lstSubnet{*this, "lstSubnet", 6};
  forms::Label lblCurrentSubnet{*this, "lblCurrentSubnet", "Current Subnet Masks", &lstSubnet};
  forms::TextBox txtIP1{*this, "txtIP1", kOctet};
  forms::Label lblIP1{*this, "lblIP1", "."};
  forms::TextBox txtIP2{*this, "txtIP2", kOctet};
  forms::Label lblIP2{*this, "lblIP2", "."};
  forms::TextBox txtIP3{*this, "txtIP3", kOctet};
  forms::Label lblIP3{*this, "lblIP3", "."};
  forms::TextBox txtIP4{*this, "txtIP4", kOctet};
  forms::Label lblIPAddressToAdd{*this, "lblIPAddressToAdd", "IP Address to add", &txtIP1};
  forms::TextBox txtMask1{*this, "txtMask1", kOctet};
  forms::Label lblMask1{*this, "lblMask1", "."};
  forms::TextBox txtMask2{*this, "txtMask2", kOctet};
  forms::Label lblMask2{*this, "lblMask2", "."};
  forms::TextBox txtMask3{*this, "txtMask3", kOctet};
  forms::Label lblMask3{*this, "lblMask3", "."};
  forms::TextBox txtMask4{*this, "txtMask4", kOctet};
  forms::Label lblSubnetMaskToAdd{*this, "lblSubnetMaskToAdd", "Subnet Mask to add", &txtMask1};
  forms::CommandButton cmdAdd{*this, "cmdAdd", "&Add", forms::CommandButton::Role::Default};
  forms::CommandButton cmdRemove{*this, "cmdRemove", "&Remove"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override { p_InitializeIP_Subnet(); }
  int changesWaiting() const override;

 private:
  static constexpr forms::TextBoxOptions kOctet{.maxLength = 3, .widthInCharacters = 3};

  // A box for one number of an address or a mask.
  struct OctetBox {
    forms::TextBox* box;
    std::uint32_t lowest;
    bool ofMask;
    std::string valid;  // the last text that it took
  };
  struct Lists {
    AddressList addresses;
    AddressList masks;
  };

  void describe();
  void arrange();
  void p_InitializeIP_Subnet();
  void p_ValidateIPInfo(OctetBox& octet);
  void cmdAdd_Click();
  void cmdRemove_Click();
  void selectTheOther(const forms::ListBox& from, forms::ListBox& to);
  void showWhatCanBeDone();

  platform::Status readLists(Lists& lists) const;
  platform::Status readList(std::string_view value, AddressList& list) const;
  Octets typed(std::size_t firstBox) const;
  // Why the pair cannot join the lists; "" where it can.
  static std::string refusalOf(const Lists& lists, const Octets& address, const Octets& mask);
  bool agreesToFixed(const Octets& address) const;
  bool write(const Lists& lists);
  void tellUnread(platform::Status status);

  std::deque<OctetBox> octets_;  // the four of the address, then the four of the mask
  std::deque<engine::NumeralField> numerals_;
  Lists shown_;
  platform::Status status_ = platform::ERROR_SUCCESS;  // of reading them
};

}  // namespace korvex::dialogs
