// Bindings: what keeps widgets in step with the controls that they show, until it goes.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "forms/event.h"

namespace korvex::qt {

class Bindings {
 public:
  // Runs update now, and whenever the property changes. It reads the property itself: a handler
  // may have changed it once more.
  template <typename T>
  void follow(forms::Property<T>& property, const std::function<void()>& update) {
    update();
    on(property.changed, update);
  }
  void on(forms::Event& event, std::function<void()> handler) {
    subscriptions_.push_back(event.subscribe(std::move(handler)));
  }

 private:
  std::vector<forms::Subscription> subscriptions_;
};

}  // namespace korvex::qt
