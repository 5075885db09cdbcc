// The registry editor's import: what the parser tells, done to a registry within one change.
#include "platform/common/reg_import.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <istream>
#include <iterator>
#include <memory>

#include "platform/common/file_descriptor.h"
#include "platform/common/reg_key_cursor.h"
#include "platform/common/reg_tree.h"
#include "platform/common/whole_file.h"
#include "platform/text/reg_parser.h"

namespace korvex::platform {
namespace {

constexpr std::size_t kBlock = std::size_t{64} * 1024;

// Fills the buffer's front and tells how much; 0 at the end.
using Source = std::function<Status(char* buffer, std::size_t size, std::size_t& read)>;

// Counts, and keeps the first messages.
class Report {
 public:
  Report(RegImportResult& result, const RegImportOptions& options)
      : result_(result), options_(options) {}

  void refuse(std::size_t line, std::string_view text) {
    ++result_.refused;
    keep(line, text);
  }
  void note(std::size_t line, std::string_view text) {
    ++result_.notes;
    keep(line, text);
  }

 private:
  void keep(std::size_t line, std::string_view text) {
    if (result_.messages.size() >= options_.messagesKept) return;
    result_.messages.push_back(options_.source.empty()
                                   ? fmt::format("line {}: {}", line, text)
                                   : fmt::format("{}:{}: {}", options_.source, line, text));
  }

  RegImportResult& result_;
  const RegImportOptions& options_;
};

// What one key or value may meet without the registry as a whole having failed.
bool costsOneLine(Status status) {
  constexpr auto statuses = std::to_array<Status>(
      {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_INVALID_DATA, ERROR_NOT_SUPPORTED,
       ERROR_INVALID_PARAMETER, ERROR_INVALID_NAME, ERROR_BAD_PATHNAME, ERROR_FILENAME_EXCED_RANGE,
       ERROR_MORE_DATA, ERROR_KEY_DELETED, ERROR_NO_UNICODE_TRANSLATION});
  return std::find(statuses.begin(), statuses.end(), status) != statuses.end();
}

// Counts what a file holds; the dry run, and the base of the real one.
class CountingSink : public RegTextSink {
 public:
  CountingSink(RegImportResult& result, const RegImportOptions& options)
      : result_(result), report_(result, options) {}

  RegStep beginKey(std::size_t, const KeyPath&) override {
    ++result_.keys;
    return RegStep::Done;
  }
  RegStep deleteKey(std::size_t, const KeyPath&) override {
    ++result_.deletedKeys;
    return RegStep::Done;
  }
  RegStep setValue(std::size_t, std::string_view, RegType, std::string_view) override {
    ++result_.values;
    return RegStep::Done;
  }
  RegStep deleteValue(std::size_t, std::string_view) override {
    ++result_.deletedValues;
    return RegStep::Done;
  }
  void problem(std::size_t line, std::string_view text) override { report_.refuse(line, text); }
  void note(std::size_t line, std::string_view text) override { report_.note(line, text); }

 protected:
  RegImportResult& result_;
  Report report_;
};

class WritingSink : public CountingSink {
 public:
  WritingSink(Registry& registry, RegImportResult& result, const RegImportOptions& options)
      : CountingSink(result, options), registry_(registry), cursor_(registry) {}

  RegStep beginKey(std::size_t line, const KeyPath& key) override {
    const Status status = cursor_.go(key);
    if (status == ERROR_SUCCESS) return CountingSink::beginKey(line, key);
    cursor_.forget();
    return refuse(line, status, fullKeyName(key.root, key.path));
  }
  RegStep deleteKey(std::size_t line, const KeyPath& key) override {
    cursor_.forget();
    const Status status = deleteKeyTree(registry_, key.root, key.path);
    if (status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND) {
      return CountingSink::deleteKey(line, key);
    }
    return refuse(line, status, fullKeyName(key.root, key.path));
  }
  RegStep setValue(std::size_t line, std::string_view name, RegType type,
                   std::string_view data) override {
    const Status status = registry_.RegSetValueExA(cursor_.current(), name, type, data.data(),
                                                   static_cast<std::uint32_t>(data.size()));
    if (status == ERROR_SUCCESS) return CountingSink::setValue(line, name, type, data);
    return refuse(line, status, name);
  }
  RegStep deleteValue(std::size_t line, std::string_view name) override {
    const Status status = registry_.RegDeleteValueA(cursor_.current(), name);
    if (status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND) {
      return CountingSink::deleteValue(line, name);
    }
    return refuse(line, status, name);
  }

 private:
  RegStep refuse(std::size_t line, Status status, std::string_view name) {
    const std::string text =
        fmt::format("the registry refuses \"{}\": {}", name, describeStatus(status));
    if (costsOneLine(status)) {
      report_.refuse(line, text);
      return RegStep::Refused;
    }
    result_.status = status;
    result_.message = fmt::format("at line {} {}", line, text);
    return RegStep::Stop;
  }

  Registry& registry_;
  RegKeyCursor cursor_;
};

// Runs a whole source through the parser into sink.
void parse(const Source& source, RegTextSink& sink, const CodePage& codePage,
           const RegImportOptions& options, RegImportResult& result) {
  RegTextParser parser(sink, codePage, options.shortRoots);
  const auto buffer = std::make_unique<char[]>(kBlock);
  bool wanted = true;
  while (wanted && result.status == ERROR_SUCCESS) {
    std::size_t read = 0;
    result.status = source(buffer.get(), kBlock, read);
    if (result.status != ERROR_SUCCESS) {
      result.message = "it cannot be read: " + describeStatus(result.status);
      return;
    }
    if (read == 0) break;
    wanted = parser.feed({buffer.get(), read});
  }
  if (wanted) parser.finish();
  if (result.status == ERROR_SUCCESS && !parser.headerAccepted()) {
    result.status = ERROR_NOT_REGISTRY_FILE;
    result.message =
        "its first line is not \"REGEDIT4\", \"Windows Registry Editor Version 5.00\" or "
        "\"REGEDIT\", so it is no registry-editor file";
  }
}

RegImportResult failed(Status status, const std::string& source, std::string_view message) {
  RegImportResult result;
  result.status = status;
  result.message = source.empty() ? std::string(message) : fmt::format("{}: {}", source, message);
  return result;
}

// A null registry stands for the dry run.
RegImportResult run(Registry* registry, const Source& source, const RegImportOptions& options) {
  const CodePage* codePage = CodePage::find(options.codePage);
  if (codePage == nullptr) {
    return failed(ERROR_INVALID_PARAMETER, options.source,
                  fmt::format("code page {} is not known", options.codePage));
  }
  RegImportResult result;
  if (registry == nullptr) {
    CountingSink sink(result, options);
    parse(source, sink, *codePage, options, result);
  } else {
    RegistryChange change(*registry);
    if (change.status() != ERROR_SUCCESS) {
      return failed(change.status(), options.source,
                    "the registry takes no change: " + describeStatus(change.status()));
    }
    {
      WritingSink sink(*registry, result, options);  // closes its keys before the change ends
      parse(source, sink, *codePage, options, result);
    }
    if (result.status == ERROR_SUCCESS) {
      result.status = change.commit();
      if (result.status != ERROR_SUCCESS) {
        result.message = "the registry kept nothing: " + describeStatus(result.status);
      }
    }
  }
  if (result.status == ERROR_SUCCESS) return result;
  RegImportResult nothing = failed(result.status, options.source, result.message);
  nothing.refused = result.refused;
  nothing.notes = result.notes;
  nothing.messages = std::move(result.messages);
  return nothing;
}

Source streamSource(std::istream& stream) {
  return [&stream](char* buffer, std::size_t size, std::size_t& read) {
    stream.read(buffer, static_cast<std::streamsize>(size));
    read = static_cast<std::size_t>(stream.gcount());
    const bool broken = stream.bad() || (stream.fail() && !stream.eof());
    return broken ? ERROR_GEN_FAILURE : ERROR_SUCCESS;
  };
}

Source descriptorSource(int descriptor) {
  return [descriptor](char* buffer, std::size_t size, std::size_t& read) {
    ssize_t got = 0;
    do {
      got = ::read(descriptor, buffer, size);
    } while (got < 0 && errno == EINTR);
    read = got > 0 ? static_cast<std::size_t>(got) : 0;
    return got < 0 ? statusOfErrno(errno) : ERROR_SUCCESS;
  };
}

RegImportResult runFile(Registry* registry, const std::filesystem::path& file,
                        RegImportOptions options) {
  if (options.source.empty()) options.source = file.string();
  FileDescriptor descriptor;
  descriptor.reset(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor) {
    const Status status = statusOfErrno(errno);
    return failed(status, options.source, "it cannot be opened: " + describeStatus(status));
  }
  return run(registry, descriptorSource(descriptor.get()), options);
}

}  // namespace

RegImportResult importRegText(Registry& registry, std::istream& source,
                              const RegImportOptions& options) {
  return run(&registry, streamSource(source), options);
}

RegImportResult importRegFile(Registry& registry, const std::filesystem::path& file,
                              const RegImportOptions& options) {
  return runFile(&registry, file, options);
}

RegImportResult importRegDescriptor(Registry& registry, int descriptor,
                                    const RegImportOptions& options) {
  return run(&registry, descriptorSource(descriptor), options);
}

RegImportResult checkRegText(std::istream& source, const RegImportOptions& options) {
  return run(nullptr, streamSource(source), options);
}

RegImportResult checkRegFile(const std::filesystem::path& file, const RegImportOptions& options) {
  return runFile(nullptr, file, options);
}

}  // namespace korvex::platform
