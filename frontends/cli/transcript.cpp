// What happened during "form run".
#include "cli/transcript.h"

#include <fmt/format.h>

namespace korvex::cli {

void Transcript::step(const std::string& typed) {
  json_.push_back({{"event", "step"}, {"step", typed}});
  text_ += printable(typed) + "\n";
}

void Transcript::message(const ShownMessage& message) {
  addChanges();
  json_.push_back({{"event", "message"},
                   {"title", message.title},
                   {"text", message.text},
                   {"buttons", message.buttons},
                   {"answer", message.answer.empty() ? Json(nullptr) : Json(message.answer)}});
  std::string lines = message.text;
  for (std::size_t at = 0; (at = lines.find("\r\n", at)) != std::string::npos;) {
    lines.replace(at, 2, "\n");
  }
  text_ += "    message:";
  for (std::size_t at = 0; at <= lines.size();) {
    const std::size_t end = std::min(lines.find('\n', at), lines.size());
    text_ += fmt::format("{}{}\n", at == 0 ? " " : "             ",
                         printable(std::string_view(lines).substr(at, end - at)));
    at = end + 1;
  }
  if (message.buttons == "ok") return;
  text_ +=
      fmt::format("    answer:  {} ({})\n",
                  message.answer.empty() ? "(none)" : printable(message.answer), message.buttons);
}

void Transcript::restart(std::uint32_t flags) {
  addChanges();
  json_.push_back({{"event", "restart"}, {"flags", flags}});
  text_ += fmt::format("    restart of Windows requested (flags {})\n", flags);
}

void Transcript::addChanges() {
  const Changes changes = log_.take();
  for (const Json& change : changesJson(changes)) {
    Json json{{"event", "change"}};
    json.update(change);
    json_.push_back(std::move(json));
  }
  text_ += changesText(changes, "    ");
}

}  // namespace korvex::cli
