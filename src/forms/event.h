// Events and properties: how a control tells that it changed.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace korvex::forms {

// Ends a subscription when it goes.
class Subscription {
 public:
  Subscription() = default;
  explicit Subscription(std::function<void()> end) : end_(std::move(end)) {}
  Subscription(Subscription&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
  Subscription& operator=(Subscription&& other) noexcept {
    std::swap(end_, other.end_);
    return *this;
  }
  ~Subscription() {
    if (end_) end_();
  }

 private:
  std::function<void()> end_;
};

// Handlers run in the order in which they were added. A handler may raise the event again, add
// handlers or end any subscription: one that has ended is not called any more.
class Event {
 public:
  using Handler = std::function<void()>;

  // For handlers that live as long as the event: a form's own.
  void operator+=(Handler handler) { add(std::move(handler)); }

  // For handlers that may go before the event does: a view's. The subscription must not outlive
  // what the handler uses; outliving the event is harmless.
  [[nodiscard]] Subscription subscribe(Handler handler) {
    const std::uint64_t id = add(std::move(handler));
    return Subscription([list = std::weak_ptr(entries_), id] {
      if (const auto entries = list.lock()) {
        std::erase_if(*entries, [id](const auto& entry) {
          if (entry->id != id) return false;
          entry->ended = true;
          return true;
        });
      }
    });
  }

  void raise() const {
    const auto now = *entries_;  // a copy: handlers may change the list
    for (const auto& entry : now) {
      if (!entry->ended) entry->handler();
    }
  }

 private:
  struct Entry {
    std::uint64_t id;
    Handler handler;
    bool ended = false;
  };

  std::uint64_t add(Handler handler) {
    entries_->push_back(std::make_shared<Entry>(Entry{++lastId_, std::move(handler), false}));
    return lastId_;
  }

  std::shared_ptr<std::vector<std::shared_ptr<Entry>>> entries_ =
      std::make_shared<std::vector<std::shared_ptr<Entry>>>();
  std::uint64_t lastId_ = 0;
};

// A value that tells when it changes; assigning an equal value tells nothing.
template <typename T>
class Property {
 public:
  explicit Property(T value = T{}) : value_(std::move(value)) {}
  Property(const Property&) = delete;

  Property& operator=(const Property&) = delete;
  Property& operator=(T value) {
    if (value == value_) return *this;
    value_ = std::move(value);
    changed.raise();
    return *this;
  }
  operator const T&() const { return value_; }
  const T& get() const { return value_; }
  const T* operator->() const { return &value_; }

  Event changed;

 private:
  T value_;
};

}  // namespace korvex::forms
