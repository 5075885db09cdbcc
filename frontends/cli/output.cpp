// JSON for scripts.
#include "cli/output.h"

#include <ostream>

namespace korvex::cli {

Json document() { return Json{{"schemaVersion", kSchemaVersion}}; }

void print(std::ostream& out, const Json& document) {
  // Text that is no UTF-8 (half a surrogate pair) is replaced here; "hex" has it whole.
  out << document.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

Json valueJson(std::string_view name, const Value& value) {
  Json json{{"name", name}, {"type", typeName(value.type)}};
  if (value.type == platform::REG_MULTI_SZ) {
    json["data"] = stringsOf(value);
  } else if (isTextType(value.type)) {
    json["data"] = textOf(value);
  } else if (isNumber(value)) {
    json["data"] = numberOf(value);
  } else {
    json["data"] = hexOf(value);
  }
  json["hex"] = hexOf(value);
  return json;
}

}  // namespace korvex::cli
