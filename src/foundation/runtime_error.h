// RuntimeError: a broken invariant or a failed step that a routine cannot answer with a status.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace korvex::foundation {

// Numbers that the product's run-time errors carry.
constexpr int kErrorOutOfMemory = 7;
constexpr int kErrorInternal = 51;
constexpr int kErrorNoSuchRoutine = 438;
constexpr int kErrorApplication = 1000;

class RuntimeError : public std::runtime_error {
 public:
  RuntimeError(int number, const std::string& description, std::string source = {})
      : std::runtime_error(description), number_(number), source_(std::move(source)) {}

  int number() const { return number_; }
  std::string description() const { return what(); }
  const std::string& source() const { return source_; }

 private:
  int number_;
  std::string source_;
};

}  // namespace korvex::foundation
