// The command line run in process on a fresh machine.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "cli/output.h"
#include "support/machines.h"

namespace korvex::cli {

struct Result {
  int code = -1;
  std::string out;
  std::string err;

  // The one object on the output; a failure of the test where there is anything else.
  Json json() const {
    Json parsed = Json::parse(out, nullptr, false);
    EXPECT_TRUE(parsed.is_object()) << out;
    EXPECT_EQ(1, parsed.value("schemaVersion", 0)) << out;
    return parsed;
  }
};

inline Result runKorvex(std::vector<std::string> args, const std::string& input = "") {
  std::istringstream in(input);
  std::ostringstream out;
  std::ostringstream err;
  const int code = runCli(std::move(args), {in, out, err});
  return {code, out.str(), err.str()};
}

class CliTest : public testing::Test {
 public:
  explicit CliTest(test::Family family = test::Family::Nt) : machine(family) { machine.close(); }
  explicit CliTest(const std::string& sample) : machine(sample) { machine.close(); }

  Result korvex(std::vector<std::string> args, const std::string& input = "") {
    args.insert(args.begin(), {"--machine", machine.folder().string()});
    return runKorvex(std::move(args), input);
  }
  Result json(std::vector<std::string> args, const std::string& input = "") {
    args.insert(args.begin(), "--json");
    return korvex(std::move(args), input);
  }
  // A value as JSON, or null where it is not there.
  Json value(const std::string& key, const std::string& name) {
    const Result result = json({"reg", "query", key, "--value", name});
    return result.code == 0 ? result.json()["values"][0] : Json(nullptr);
  }
  // Path, size, time stamp and content of everything in the machine's folder.
  std::map<std::string, std::string> everyFile() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(machine.folder())) {
      std::ostringstream text;
      text << entry.last_write_time().time_since_epoch().count() << ' ';
      if (entry.is_regular_file()) text << std::ifstream(entry.path()).rdbuf();
      files[entry.path().string()] = text.str();
    }
    return files;
  }
  // The registry as text.
  std::string dump() {
    return korvex({"reg", "export", "HKCU", "-"}).out + korvex({"reg", "export", "HKLM", "-"}).out;
  }

  test::TestMachine machine;
};

class Cli9xTest : public CliTest {
 public:
  Cli9xTest() : CliTest(test::Family::NineX) {}
};

inline const std::string kExplorer =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer";

}  // namespace korvex::cli
