// A person for tests: answers from a queue and remembers every message. A question that nobody
// foresaw fails the test, and so does an answer that was never asked for.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/prompts.h"

namespace korvex::test {

struct ShownMessage {
  std::string text;
  int style = 0;
  std::string title;
};

class ScriptedPrompts : public platform::Prompts {
 public:
  ~ScriptedPrompts() override {
    EXPECT_TRUE(answers.empty()) << answers.size() << " answers were never asked for";
    EXPECT_TRUE(texts.empty()) << texts.size() << " inputs or choices were never asked for";
    EXPECT_TRUE(fonts.empty() && colors.empty()) << "a font or colour was never asked for";
  }

  // A box with nothing but OK needs no answer.
  platform::Answer messageBox(std::string_view text, int style, std::string_view title) override {
    messages.push_back({std::string(text), style, std::string(title)});
    if ((style & platform::kButtonsMask) == platform::kButtonsOk) return platform::Answer::Ok;
    return take(answers, text).value_or(platform::Answer::Cancel);
  }
  std::optional<std::string> inputBox(std::string_view text, std::string_view title,
                                      std::string_view proposal) override {
    messages.push_back({std::string(text), 0, std::string(title)});
    proposals.emplace_back(proposal);
    return take(texts, text).value_or(std::nullopt);
  }
  std::optional<std::string> pickFile(const platform::FileRequest& request) override {
    messages.push_back({request.title, 0, {}});
    proposals.push_back(request.fileName);
    return take(texts, request.title).value_or(std::nullopt);
  }
  std::optional<std::string> pickFolder(std::string_view title) override {
    messages.push_back({std::string(title), 0, {}});
    return take(texts, title).value_or(std::nullopt);
  }
  std::optional<platform::FontChoice> pickFont(const platform::FontChoice&,
                                               std::string_view title) override {
    messages.push_back({std::string(title), 0, {}});
    return take(fonts, title).value_or(std::nullopt);
  }
  std::optional<std::uint32_t> pickColor(std::uint32_t) override {
    return take(colors, "a colour").value_or(std::nullopt);
  }

  std::deque<platform::Answer> answers;
  std::deque<std::optional<std::string>> texts;  // input boxes, files and folders
  std::deque<std::optional<platform::FontChoice>> fonts;
  std::deque<std::optional<std::uint32_t>> colors;

  std::vector<ShownMessage> messages;
  std::vector<std::string> proposals;

 private:
  template <typename T>
  static std::optional<T> take(std::deque<T>& queue, std::string_view question) {
    if (queue.empty()) {
      ADD_FAILURE() << "no answer left for: " << question;
      return std::nullopt;
    }
    T answer = std::move(queue.front());
    queue.pop_front();
    return answer;
  }
};

}  // namespace korvex::test
