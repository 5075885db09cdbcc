// reg query, reg set, reg delete. The commands that work on files stand in reg_files.cpp.
#include "cli/reg_commands.h"

#include <fmt/format.h>

#include <optional>
#include <ostream>

#include "cli/commands.h"
#include "cli/output.h"
#include "cli/registry_access.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using namespace platform;

struct RegOptions {
  std::string key;
  std::string name;
  bool hasName = false;
  std::string type;
  std::vector<std::string> data;
};

constexpr std::string_view kDefaultName = "(Default)";

// The default value has no name; people and reg.exe call it "(Default)".
std::string valueName(const std::string& typed) {
  return sameName(typed, kDefaultName) ? "" : typed;
}

std::string shownName(std::string_view name) {
  return name.empty() ? std::string(kDefaultName) : printable(name);
}

std::string valueLine(std::string_view name, const Value& value) {
  return fmt::format("    {}    {}    {}\n", shownName(name), typeName(value.type),
                     displayText(value));
}

std::string describe(const TypedKey& key, std::string_view name) {
  return fmt::format("The value {} of {}", shownName(name), printable(key.full()));
}

std::string describe(const TypedKey& key) { return "The key " + printable(key.full()); }

void printQuery(Context& context, const TypedKey& key, const std::vector<NamedValue>& values,
                const std::optional<std::vector<std::string>>& subkeys) {
  if (context.json) {
    Json json = document();
    json["key"] = key.full();
    json["values"] = Json::array();
    for (const auto& [name, value] : values) json["values"].push_back(valueJson(name, value));
    if (subkeys) json["subkeys"] = *subkeys;
    print(context.out, json);
    return;
  }
  context.out << printable(key.full()) << '\n';
  for (const auto& [name, value] : values) context.out << valueLine(name, value);
  if (!subkeys || subkeys->empty()) return;
  context.out << '\n';
  for (const std::string& name : *subkeys) {
    context.out << printable(key.full() + "\\" + name) << '\n';
  }
}

ExitCode query(Context& context, const RegOptions& options) {
  const TypedKey key = parseKey(options.key);
  const auto machine = context.openMachine(OpenMode::Read);
  const OpenKey opened(machine->registry(), key.root, key.path, KEY_READ);
  if (opened.status() != ERROR_SUCCESS) throw registryFailure(opened.status(), describe(key));

  std::vector<NamedValue> values;
  std::optional<std::vector<std::string>> subkeys;
  Status status = ERROR_SUCCESS;
  if (options.hasName) {
    const std::string name = valueName(options.name);
    values.emplace_back(name, Value{});
    status = readValue(machine->registry(), opened.get(), name, values[0].second);
    if (status != ERROR_SUCCESS) throw registryFailure(status, describe(key, name));
  } else {
    status = readValues(machine->registry(), opened.get(), values);
    subkeys.emplace();
    if (status == ERROR_SUCCESS) status = readSubkeys(machine->registry(), opened.get(), *subkeys);
    if (status != ERROR_SUCCESS) throw registryFailure(status, describe(key));
  }
  printQuery(context, key, values, subkeys);
  return ExitCode::Done;
}

// Carries out write inside one change and waits until it is on the disk.
template <typename Write>
void changeRegistry(Registry& registry, const std::string& what, const Write& write) {
  RegistryChange change(registry);
  Status status = change.status();
  if (status == ERROR_SUCCESS) status = write();
  if (status == ERROR_SUCCESS) status = change.commit();
  if (status == ERROR_SUCCESS) status = registry.flush();
  if (status != ERROR_SUCCESS) throw registryFailure(status, what, registry.lastRefusal());
}

Json optionalJson(std::string_view name, const std::optional<Value>& value) {
  return value ? valueJson(name, *value) : Json(nullptr);
}

void printChange(Context& context, const TypedKey& key, std::string_view name,
                 const std::optional<Value>& before, const std::optional<Value>& after) {
  if (context.json) {
    Json json = document();
    json["key"] = key.full();
    json["name"] = name;
    json["before"] = optionalJson(name, before);
    json["after"] = optionalJson(name, after);
    print(context.out, json);
    return;
  }
  const auto shown = [](const std::optional<Value>& value) {
    return value ? typeName(value->type) + " " + displayText(*value) : std::string("(none)");
  };
  context.out << printable(key.full()) << "\n    " << shownName(name) << "    " << shown(before)
              << " -> " << shown(after) << '\n';
}

ExitCode set(Context& context, const RegOptions& options) {
  const TypedKey key = parseKey(options.key);
  const std::string name = valueName(options.name);
  const Value value = parseValue(options.type, options.data);
  const auto machine = context.openMachine(OpenMode::ReadWrite);
  Registry& registry = machine->registry();

  std::optional<Value> before(std::in_place);
  changeRegistry(registry, describe(key, name), [&] {
    HKEY handle = key.root;
    std::uint32_t disposition = 0;
    Status status = key.path.empty() ? registry.RegOpenKeyExA(key.root, "", KEY_ALL_ACCESS, handle)
                                     : registry.RegCreateKeyExA(key.root, key.path, KEY_ALL_ACCESS,
                                                                handle, disposition);
    if (status != ERROR_SUCCESS) return status;
    if (readValue(registry, handle, name, *before) != ERROR_SUCCESS) before.reset();
    status = registry.RegSetValueExA(handle, name, value.type, value.bytes.data(),
                                     static_cast<std::uint32_t>(value.bytes.size()));
    registry.RegCloseKey(handle);
    return status;
  });
  printChange(context, key, name, before, value);
  return ExitCode::Done;
}

ExitCode removeValue(Context& context, Registry& registry, const TypedKey& key,
                     const std::string& name) {
  std::optional<Value> before(std::in_place);
  changeRegistry(registry, describe(key, name), [&] {
    const OpenKey opened(registry, key.root, key.path, KEY_ALL_ACCESS);
    Status status = opened.status();
    if (status == ERROR_SUCCESS) status = readValue(registry, opened.get(), name, *before);
    if (status == ERROR_SUCCESS) status = registry.RegDeleteValueA(opened.get(), name);
    return status;
  });
  printChange(context, key, name, before, std::nullopt);
  return ExitCode::Done;
}

ExitCode remove(Context& context, const RegOptions& options) {
  const TypedKey key = parseKey(options.key);
  if (key.path.empty() && !options.hasName) {
    throw Failure(ExitCode::Usage, "root",
                  key.full() +
                      " is a root of the registry and cannot be deleted. Name a key below "
                      "it.");
  }
  const auto machine = context.openMachine(OpenMode::ReadWrite);
  if (options.hasName) {
    return removeValue(context, machine->registry(), key, valueName(options.name));
  }
  changeRegistry(machine->registry(), describe(key),
                 [&] { return deleteTree(machine->registry(), key); });
  if (context.json) {
    Json json = document();
    json["deleted"] = key.full();
    print(context.out, json);
  } else {
    context.out << "Deleted " << printable(key.full()) << '\n';
  }
  return ExitCode::Done;
}

void addKey(CLI::App* command, const std::shared_ptr<RegOptions>& options) {
  command->add_option("KEY", options->key, "HKCU\\Software\\..., or with the root's name in full")
      ->required()
      ->type_name("");
}

void addValueOption(CLI::App* command, const std::shared_ptr<RegOptions>& options,
                    const char* help) {
  command->add_option("--value", options->name, help)->type_name("NAME");
}

void addQuery(CLI::App& group, Run& run) {
  const auto options = std::make_shared<RegOptions>();
  CLI::App* command = addCommand(group, "query", "Print the values of a key, and its subkeys",
                                 "  korvex reg query 'HKCU\\Control Panel\\Desktop'\n"
                                 "  korvex reg query 'HKCU\\Control Panel\\Desktop' "
                                 "--value MenuShowDelay");
  addKey(command, options);
  addValueOption(command, options, "Only this value; '' or '(Default)' is the key's default value");
  command->callback([&run, command, options] {
    options->hasName = command->count("--value") != 0;
    run = [options](Context& context) { return query(context, *options); };
  });
}

void addSet(CLI::App& group, Run& run) {
  const auto options = std::make_shared<RegOptions>();
  CLI::App* command =
      addCommand(group, "set", "Write one value, making the key where it is missing",
                 "  korvex reg set 'HKCU\\Software\\Test' Count REG_DWORD 0x10\n"
                 "  korvex reg set 'HKCU\\Software\\Test' List REG_MULTI_SZ one two\n"
                 "  korvex reg set 'HKCU\\Software\\Test' Raw REG_BINARY 0a1bff\n"
                 "  korvex reg set 'HKCU\\Software\\Test' Text REG_SZ -- -5");
  addKey(command, options);
  command->add_option("NAME", options->name, "Name; '' or '(Default)' is the key's default value")
      ->required()
      ->type_name("");
  command
      ->add_option("TYPE", options->type,
                   "REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ, REG_DWORD, REG_QWORD, REG_BINARY, "
                   "REG_NONE, or REG_TYPE_0x... for any other")
      ->required()
      ->type_name("");
  command
      ->add_option("DATA", options->data,
                   "A text; a number (181, 0xb5); hex digits; several words, or one with \\0 "
                   "between, for REG_MULTI_SZ")
      ->type_name("");
  command->callback(
      [&run, options] { run = [options](Context& context) { return set(context, *options); }; });
}

void addDelete(CLI::App& group, Run& run) {
  const auto options = std::make_shared<RegOptions>();
  CLI::App* command =
      addCommand(group, "delete", "Delete a value, or a key with everything below it",
                 "  korvex reg delete 'HKCU\\Software\\Test' --value Count\n"
                 "  korvex reg delete 'HKCU\\Software\\Test'");
  addKey(command, options);
  addValueOption(command, options, "Only this value; '' or '(Default)' is the key's default value");
  command->callback([&run, command, options] {
    options->hasName = command->count("--value") != 0;
    run = [options](Context& context) { return remove(context, *options); };
  });
}

}  // namespace

void addRegCommands(CLI::App& app, Run& run) {
  CLI::App* group = addGroup(app, "reg", "Read and change the registry");
  addQuery(*group, run);
  addSet(*group, run);
  addDelete(*group, run);
  addRegFileCommands(*group, run);
}

}  // namespace korvex::cli
