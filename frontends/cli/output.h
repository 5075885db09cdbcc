// JSON for scripts: one object on the output, with a schema version.
#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>

#include "cli/failure.h"
#include "cli/value_text.h"

namespace korvex::cli {

using Json = nlohmann::ordered_json;

constexpr int kSchemaVersion = 1;

// The object that every --json answer begins as.
Json document();
void print(std::ostream& out, const Json& document);

// {"name","type","data","hex"}: data is a number, a text, a list of texts, or hex digits.
Json valueJson(std::string_view name, const Value& value);

// A failure of a command that had done something by then: what it was, before it was taken back.
class FailureWithEvents : public Failure {
 public:
  FailureWithEvents(ExitCode code, std::string kind, const std::string& message, Json events)
      : Failure(code, std::move(kind), message), events_(std::move(events)) {}
  const Json& events() const { return events_; }

 private:
  Json events_;
};

}  // namespace korvex::cli
