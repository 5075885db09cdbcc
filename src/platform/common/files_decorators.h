// Files around other files: ones that only pretend to write, ones that record what is written.
// None owns what it wraps.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/common/windows_path.h"
#include "platform/files.h"

namespace korvex::platform {

// Writes succeed and change nothing, but what was written is read back until it is forgotten. What
// would fail by what stands there (a missing folder, a READONLY file) does so here too; a read-only
// machine and a full disk do not count.
class PretendingFiles : public Files {
 public:
  explicit PretendingFiles(Files& inner) : inner_(inner) {}

  void forget() { nodes_.clear(); }

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
  Status freeSpace(std::string_view path, std::uint64_t& bytes) override {
    return inner_.freeSpace(path, bytes);
  }
  std::string pathOfHost(std::string_view hostPath) override { return inner_.pathOfHost(hostPath); }

 private:
  // What is pretended of one path; a file's bytes are its own.
  struct Node {
    bool there = true;
    std::uint32_t attributes = 0;
    std::string name;
    std::string bytes;
  };
  struct Place;

  std::string keyOf(const WindowsPath& path) const;
  Place locate(std::string_view path) const;
  Place locate(const WindowsPath& path) const;
  Place locateForWriting(std::string_view path) const;
  Status readAt(const Place& place, std::string& bytes) const;
  void put(const Place& place, std::uint32_t attributes, std::string bytes);
  void takeAway(const Place& place);
  void listPretended(const WindowsPath& folder, const std::string& pattern,
                     std::vector<FileEntry>& entries) const;

  Files& inner_;
  std::map<std::string, Node> nodes_;  // by the path's short form, folded
};

// A file or folder as it stands.
struct FileState {
  std::uint32_t attributes = 0;
  std::string bytes;  // of a file
  bool isFolder() const { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
  bool operator==(const FileState&) const = default;
};

// What a step did to one path. Nothing in before or after: no such file or folder.
struct FileRecord {
  std::string path;  // as a Windows path is written: "C:\WINNT\win.ini"
  std::string from;  // of a copy or a move: where the content came from
  std::optional<FileState> before;
  std::optional<FileState> after;
};

// Records each successful write in order. A move is two records, and so is every folder on the way
// to one that is made.
class RecordingFiles : public Files {
 public:
  explicit RecordingFiles(Files& inner) : inner_(inner) {}

  const std::vector<FileRecord>& records() const { return records_; }

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
  Status freeSpace(std::string_view path, std::uint64_t& bytes) override {
    return inner_.freeSpace(path, bytes);
  }
  std::string pathOfHost(std::string_view hostPath) override { return inner_.pathOfHost(hostPath); }

 private:
  std::optional<FileState> stateOf(std::string_view path) const;
  template <typename Step>
  Status step(std::string_view path, std::string_view from, Step&& step);

  Files& inner_;
  std::vector<FileRecord> records_;
};

}  // namespace korvex::platform
