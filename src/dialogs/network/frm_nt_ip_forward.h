// frmNT_IPForward: the buffers of Windows NT for the packets that it hands on.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "dialogs/direct_dialog.h"
#include "engine/numeral_field.h"

namespace korvex::dialogs {

class frmNT_IPForward : public DirectDialog {
 public:
  static constexpr const char* kName = "frmNT_IPForward";

  explicit frmNT_IPForward(const DialogParts& parts);

  forms::TextBox txtMaxForwardBufferMemory{
      *this, "txtMaxForwardBufferMemory", {.maxLength = 10, .widthInCharacters = 12}};
  forms::Label lblMaxForwardBufferMemory{*this, "lblMaxForwardBufferMemory",
                                         "Ma&xForwardBufferMemory:", &txtMaxForwardBufferMemory};
  forms::TextBox txtMaxNumForwardPackets{
      *this, "txtMaxNumForwardPackets", {.maxLength = 10, .widthInCharacters = 12}};
  forms::Label lblMaxNumForwardPackets{*this, "lblMaxNumForwardPackets",
                                       "MaxNumForward&Packets:", &txtMaxNumForwardPackets};
  forms::CommandButton cmdApply{*this, "cmdApply", "&Apply"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override { p_DetermineIP_ForwardValues(); }
  int changesWaiting() const override;

 private:
  void setToolTips();
  void p_DetermineIP_ForwardValues();
  // The two numbers as they are to be written; nothing where one is refused, which is told.
  struct Values {
    std::uint32_t memory = 0;
    std::uint32_t packets = 0;
  };
  std::optional<Values> p_ConfirmGoodValues();
  bool isAtLeast(std::uint32_t number, std::string_view name, std::string_view what) const;
  void cmdApply_Click();

  engine::NumeralField memory_;
  engine::NumeralField packets_;
  std::string shownMemory_;
  std::string shownPackets_;
};

}  // namespace korvex::dialogs
