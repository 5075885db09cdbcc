// The kinds of machine that the contract is tested on. A new kind adds its lines to machineKinds().
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "support/machines.h"
#include "support/real_machines.h"

namespace korvex::test {

// A machine of some kind that can be closed and opened again.
class ContractMachine {
 public:
  virtual ~ContractMachine() = default;
  virtual platform::Machine& machine() = 0;
  virtual void reopen(platform::OpenMode mode) = 0;
  // One more machine object on the same installation.
  virtual std::unique_ptr<platform::Machine> openAnother() = 0;
};

class EmbeddedContractMachine : public ContractMachine {
 public:
  explicit EmbeddedContractMachine(Family family) : machine_(family) {}
  platform::Machine& machine() override { return machine_.get(); }
  void reopen(platform::OpenMode mode) override { machine_.reopen(mode); }
  std::unique_ptr<platform::Machine> openAnother() override {
    return machine_.open(platform::OpenMode::ReadWrite);
  }

 private:
  TestMachine machine_;
};

class RealContractMachine : public ContractMachine {
 public:
  explicit RealContractMachine(RealKind kind) : machine_(kind, Family::Nt) {}
  platform::Machine& machine() override { return machine_.get(); }
  void reopen(platform::OpenMode mode) override {
    // What is committed reaches the disk with a flush at the latest.
    machine_.registry().flush();
    machine_.reopen(mode);
  }
  std::unique_ptr<platform::Machine> openAnother() override {
    machine_.registry().flush();
    return machine_.open(platform::OpenMode::ReadWrite);
  }

 private:
  RealMachine machine_;
};

struct MachineKind {
  std::string name;
  Family family = Family::Nt;
  std::function<std::unique_ptr<ContractMachine>()> make;
  std::string configKey;                                      // what HKEY_CURRENT_CONFIG stands for
  platform::Status megabyteOfText = platform::ERROR_SUCCESS;  // what writing that much gives
  bool runs = true;                                           // its Windows can be restarted
};
inline void PrintTo(const MachineKind& kind, std::ostream* out) { *out << kind.name; }

inline auto machineKinds() {
  const auto embedded = [](Family family) {
    return [family] { return std::make_unique<EmbeddedContractMachine>(family); };
  };
  const auto real = [](RealKind kind) {
    return [kind] { return std::make_unique<RealContractMachine>(kind); };
  };
  const std::string profile = "SYSTEM\\ControlSet001\\Hardware Profiles\\";
  return testing::Values(
      MachineKind{"EmbeddedNt", Family::Nt, embedded(Family::Nt), profile + "Current"},
      MachineKind{"EmbeddedNineX", Family::NineX, embedded(Family::NineX), "Config\\0001",
                  platform::ERROR_INVALID_PARAMETER},
      MachineKind{"WinePrefix", Family::Nt, real(RealKind::WinePrefix), profile + "Current",
                  platform::ERROR_SUCCESS, false},
      MachineKind{"WindowsFolder", Family::Nt, real(RealKind::WindowsFolder), profile + "0001",
                  platform::ERROR_NO_SYSTEM_RESOURCES, false});
}

inline std::string machineKindName(const testing::TestParamInfo<MachineKind>& info) {
  return info.param.name;
}

}  // namespace korvex::test
