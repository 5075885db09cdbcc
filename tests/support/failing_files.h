// Files of which one write fails: the n-th that is asked for, counted from 1; 0 counts only.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace korvex::test {

class FailingFiles : public platform::Files {
 public:
  using Status = platform::Status;

  explicit FailingFiles(platform::Files& inner) : inner_(inner) {}

  // From now on.
  void fail(int nth, Status status) {
    nth_ = nth;
    status_ = status;
    calls_ = 0;
  }
  bool hasFailed() const { return nth_ > 0 && calls_ >= nth_; }

  Status attributes(std::string_view path, std::uint32_t& attributes) override {
    return inner_.attributes(path, attributes);
  }
  Status setAttributes(std::string_view path, std::uint32_t attributes) override {
    return admit([&] { return inner_.setAttributes(path, attributes); });
  }
  Status read(std::string_view path, std::string& bytes) override {
    return inner_.read(path, bytes);
  }
  Status replace(std::string_view path, std::string_view bytes) override {
    return admit([&] { return inner_.replace(path, bytes); });
  }
  Status append(std::string_view path, std::string_view bytes) override {
    return admit([&] { return inner_.append(path, bytes); });
  }
  Status copy(std::string_view from, std::string_view to, platform::Overwrite overwrite) override {
    return admit([&] { return inner_.copy(from, to, overwrite); });
  }
  Status move(std::string_view from, std::string_view to) override {
    return admit([&] { return inner_.move(from, to); });
  }
  Status remove(std::string_view path) override {
    return admit([&] { return inner_.remove(path); });
  }
  Status createFolder(std::string_view path) override {
    return admit([&] { return inner_.createFolder(path); });
  }
  Status removeFolder(std::string_view path) override {
    return admit([&] { return inner_.removeFolder(path); });
  }
  Status list(std::string_view pattern, std::vector<platform::FileEntry>& entries) override {
    return inner_.list(pattern, entries);
  }
  Status shortPath(std::string_view path, std::string& result) override {
    return inner_.shortPath(path, result);
  }
  Status freeSpace(std::string_view path, std::uint64_t& bytes) override {
    bytes = room;
    return room == ~std::uint64_t{0} ? inner_.freeSpace(path, bytes) : 0;
  }

  std::uint64_t room = ~std::uint64_t{0};  // what is told to be free; all ones: the truth

 private:
  template <typename Step>
  Status admit(Step&& step) {
    return ++calls_ == nth_ ? status_ : step();
  }

  platform::Files& inner_;
  int nth_ = 0;
  int calls_ = 0;
  Status status_ = 0;
};

}  // namespace korvex::test
