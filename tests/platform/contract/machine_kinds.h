// The kinds of machine that the contract is tested on. A new kind adds its lines to machineKinds().
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "support/machines.h"

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

struct MachineKind {
  std::string name;
  Family family = Family::Nt;
  std::function<std::unique_ptr<ContractMachine>()> make;
};

inline auto machineKinds() {
  const auto embedded = [](Family family) {
    return [family] { return std::make_unique<EmbeddedContractMachine>(family); };
  };
  return testing::Values(MachineKind{"EmbeddedNt", Family::Nt, embedded(Family::Nt)},
                         MachineKind{"EmbeddedNineX", Family::NineX, embedded(Family::NineX)});
}

inline std::string machineKindName(const testing::TestParamInfo<MachineKind>& info) {
  return info.param.name;
}

}  // namespace korvex::test
