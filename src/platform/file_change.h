// FileChange: several steps on a machine's files that are done together or not at all.
//
// It stands in front of a machine's files and remembers, before each step, how to take it back.
// What is not committed is taken back when the change goes. Each single step is whole in itself; a
// kill between two of them leaves those that were done.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace korvex::platform {

class FileChange : public Files {
 public:
  explicit FileChange(Files& files) : files_(files) {}
  ~FileChange() override;
  FileChange(const FileChange&) = delete;
  FileChange& operator=(const FileChange&) = delete;

  // Remembers the file as it is, for steps that are not done through this object.
  Status guard(std::string_view path);
  // From now on the steps so far stay.
  void commit() { undo_.clear(); }
  // Takes back all steps since the last commit, the last one first. The first failure is returned;
  // the others are still taken back.
  Status rollback();

  Status attributes(std::string_view path, std::uint32_t& attributes) override;
  Status setAttributes(std::string_view path, std::uint32_t attributes) override;
  Status read(std::string_view path, std::string& bytes) override;
  Status replace(std::string_view path, std::string_view bytes) override;
  Status append(std::string_view path, std::string_view bytes) override;
  Status copy(std::string_view from, std::string_view to, Overwrite overwrite) override;
  Status move(std::string_view from, std::string_view to) override;
  Status remove(std::string_view path) override;
  Status createFolder(std::string_view path) override;
  Status removeFolder(std::string_view path) override;
  Status list(std::string_view pattern, std::vector<FileEntry>& entries) override;
  Status shortPath(std::string_view path, std::string& result) override;
  Status readPieces(std::string_view path,
                    const std::function<Status(std::string_view)>& take) override;
  Status freeSpace(std::string_view path, std::uint64_t& bytes) override;
  std::string pathOfHost(std::string_view hostPath) override;

 private:
  using Undo = std::function<Status()>;

  // Whether the file is what it was. One that was never touched needs no way back, and may have
  // none: a READONLY one could not be written.
  bool stands(std::string_view path, std::uint32_t attributes, std::string_view bytes);
  // How to bring the path back to what it is now: its content and attributes, or nothing there.
  Status remember(std::string_view path, Undo& undo);
  // Does the step; keeps the way back where it was done.
  template <typename Step>
  Status step(std::string_view path, Step&& step);

  Files& files_;
  std::vector<Undo> undo_;
};

}  // namespace korvex::platform
