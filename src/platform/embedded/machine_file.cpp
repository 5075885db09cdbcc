// Reads machine.json field by field, so that each fault gets a sentence of its own.
#include "platform/embedded/machine_file.h"

#include <fmt/format.h>

#include <cctype>
#include <charconv>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "platform/common/whole_file.h"
#include "platform/files.h"
#include "platform/text/text.h"

namespace korvex::platform {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kSchema = 1;
constexpr const char* kAttributesField = "initialAttributes";

// What is wrong with the file, from the field's name on.
class Fault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The fields of one object, with its place in the file for messages.
class Fields {
 public:
  Fields(const Json& object, std::string place) : object_(object), place_(std::move(place)) {
    if (!object.is_object()) throw Fault(nameOf("") + " must be an object in braces");
  }

  std::string text(const char* field) const {
    const Json& value = need(field);
    if (!value.is_string()) throw Fault(nameOf(field) + " must be a text in quotes");
    return value.get<std::string>();
  }
  std::uint32_t number(const char* field, std::uint32_t most) const {
    const Json& value = need(field);
    if (!value.is_number_unsigned() || value.get<std::uint64_t>() > most) {
      throw Fault(fmt::format("{} must be a whole number from 0 to {}", nameOf(field), most));
    }
    return value.get<std::uint32_t>();
  }
  bool yes(const char* field) const {
    const Json& value = need(field);
    if (!value.is_boolean()) throw Fault(nameOf(field) + " must be true or false");
    return value.get<bool>();
  }
  Fields object(const char* field) const { return {need(field), nameOf(field)}; }
  // An object or a list that may be missing, which is like an empty one.
  const Json& optional(const char* field, Json::value_t kind) const {
    const static Json kEmpty = Json::object();
    const auto found = object_.find(field);
    if (found == object_.end()) return kEmpty;
    if (found->type() != kind) {
      throw Fault(nameOf(field) + (kind == Json::value_t::array ? " must be a list in brackets"
                                                                : " must be an object in braces"));
    }
    return *found;
  }
  std::string nameOf(const std::string& field) const {
    return place_.empty() ? field : field.empty() ? place_ : place_ + "." + field;
  }

 private:
  const Json& need(const char* field) const {
    const auto found = object_.find(field);
    if (found == object_.end()) throw Fault(nameOf(field) + " is missing: add it");
    return *found;
  }

  const Json& object_;
  std::string place_;
};

// "C:\WINNT", without a backslash at the end but for a drive's root.
std::string folder(const Fields& fields, const char* field) {
  std::string path = fields.text(field);
  while (path.size() > 3 && path.back() == '\\') path.pop_back();
  const bool drive = path.size() >= 3 && path[1] == ':' && path[2] == '\\';
  if (!drive) throw Fault(fields.nameOf(field) + " must be a folder like \"C:\\\\WINDOWS\"");
  return path;
}

int codePage(const Fields& fields, const char* field) {
  const auto number = static_cast<int>(fields.number(field, 65535));
  if (CodePage::find(number) == nullptr) {
    throw Fault(fmt::format("{} {} is not known: use 1250 to 1258, 437, 850, 852 or 866",
                            fields.nameOf(field), number));
  }
  return number;
}

void readVersion(const Fields& root, MachineFile& machine) {
  const std::string platform = root.text("platform");
  if (platform != "NT" && platform != "9x") throw Fault("platform must be \"NT\" or \"9x\"");
  machine.family = platform == "NT" ? Family::Nt : Family::NineX;
  const Fields version = root.object("version");
  machine.version.platformId =
      platform == "NT" ? VER_PLATFORM_WIN32_NT : VER_PLATFORM_WIN32_WINDOWS;
  machine.version.majorVersion = version.number("major", 255);
  machine.version.minorVersion = version.number("minor", 255);
  machine.version.buildNumber = version.number("build", 0x7FFF);
  machine.version.csdVersion = version.text("csd");
}

FileVersion fileVersion(const Fields& fields) {
  const std::string text = fields.text("version");
  std::uint16_t parts[4] = {};
  const char* at = text.data();
  const char* const end = text.data() + text.size();
  for (int i = 0; i < 4; ++i) {
    const auto [next, error] = std::from_chars(at, end, parts[i]);
    const bool last = i == 3;
    if (error != std::errc() || (last ? next != end : next == end || *next != '.')) {
      throw Fault(fields.nameOf("version") + " must be four numbers like \"5.0.2195.1\"");
    }
    at = next + 1;
  }
  return {parts[0], parts[1], parts[2], parts[3], fields.number("flags", 0xFF)};
}

std::uint32_t attributeBits(const std::string& letters, const std::string& path) {
  std::uint32_t bits = 0;
  for (const char letter : letters) {
    switch (letter) {
      case 'R':
        bits |= FILE_ATTRIBUTE_READONLY;
        break;
      case 'H':
        bits |= FILE_ATTRIBUTE_HIDDEN;
        break;
      case 'S':
        bits |= FILE_ATTRIBUTE_SYSTEM;
        break;
      case 'A':
        bits |= FILE_ATTRIBUTE_ARCHIVE;
        break;
      default:
        throw Fault(
            fmt::format("{}.{} must be made of the letters R, H, S and A", kAttributesField, path));
    }
  }
  return bits;
}

std::string textOf(const Json& value, const std::string& name) {
  if (!value.is_string()) throw Fault(name + " must be a text in quotes");
  return value.get<std::string>();
}

void readTables(const Fields& root, MachineFile& machine) {
  for (const auto& [name, value] : root.optional("environment", Json::value_t::object).items()) {
    machine.environment[foldName(name)] = textOf(value, "environment." + name);
  }
  for (const auto& [path, value] : root.optional("fileVersions", Json::value_t::object).items()) {
    machine.fileVersions[foldName(path)] = fileVersion(Fields(value, "fileVersions." + path));
  }
  for (const auto& [drive, value] : root.optional("fileSystems", Json::value_t::object).items()) {
    const bool letter =
        drive.size() == 1 && std::isalpha(static_cast<unsigned char>(drive[0])) != 0;
    if (!letter)
      throw Fault("fileSystems." + drive + " must be named for a drive letter like \"C\"");
    machine.fileSystems[foldName(drive)] = textOf(value, "fileSystems." + drive);
  }
  for (const auto& value : root.optional("openWindows", Json::value_t::array)) {
    const Fields window(value, "openWindows");
    machine.openWindows.push_back({window.text("class"), window.text("title")});
  }
  for (const auto& [path, value] : root.optional(kAttributesField, Json::value_t::object).items()) {
    const std::string letters = textOf(value, fmt::format("{}.{}", kAttributesField, path));
    machine.initialAttributes[path] = attributeBits(letters, path);
  }
}

void readFields(const Fields& root, MachineFile& machine) {
  if (root.number("schemaVersion", 0xFFFF) != kSchema) {
    throw Fault("schemaVersion must be 1: a newer one needs a newer Korvex");
  }
  machine.windows = root.text("windows");
  machine.name = root.text("name");
  readVersion(root, machine);
  machine.productType = root.text("productType");
  machine.user = root.text("user");
  machine.computerName = root.text("computerName");
  machine.administrator = machine.family == Family::NineX || root.yes("administrator");
  machine.codePage = codePage(root, "codePage");
  machine.oemCodePage = codePage(root, "oemCodePage");
  machine.userKey = root.text("userKey");
  if (machine.userKey.empty() || machine.userKey.find('\\') != std::string::npos) {
    throw Fault("userKey must be the name of one subkey of HKEY_USERS, \".DEFAULT\" say");
  }
  machine.windowsFolder = folder(root, "windowsFolder");
  machine.systemFolder = folder(root, "systemFolder");
  machine.tempFolder = folder(root, "tempFolder");
  readTables(root, machine);
}

Status parse(const std::filesystem::path& file, Json& json, std::string& message) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    message = fmt::format("{}: the file cannot be read. A machine's folder has a machine.json.",
                          file.string());
    return std::filesystem::exists(file) ? ERROR_ACCESS_DENIED : ERROR_FILE_NOT_FOUND;
  }
  try {
    json = Json::parse(stream);
    return ERROR_SUCCESS;
  } catch (const Json::exception& fault) {
    message =
        fmt::format("{}: this is not JSON: {}. Correct it there.", file.string(), fault.what());
    return ERROR_INVALID_DATA;
  }
}

}  // namespace

Status readMachineFile(const std::filesystem::path& file, MachineFile& machine,
                       std::string& message) {
  Json json;
  const Status status = parse(file, json, message);
  if (status != ERROR_SUCCESS) return status;
  try {
    readFields(Fields(json, ""), machine);
    return ERROR_SUCCESS;
  } catch (const std::exception& fault) {
    const std::string what = json.is_object() ? fault.what() : "it must be an object in braces";
    message = fmt::format("{}: {}.", file.string(), what);
    return ERROR_INVALID_DATA;
  }
}

Status copyMachineFile(const std::filesystem::path& sample, const std::filesystem::path& target,
                       std::string& message) {
  Json json;
  Status status = parse(sample, json, message);
  if (status != ERROR_SUCCESS) return status;
  json.erase(kAttributesField);
  status = replaceWholeFile(target, json.dump(2) + "\n");
  if (status != ERROR_SUCCESS) message = target.string() + ": the file cannot be written.";
  return status;
}

}  // namespace korvex::platform
