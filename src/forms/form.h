// A window without a toolkit: its controls, its layout, and its life.
//
// A form is loaded once (Load), shown any number of times, asked before it goes (QueryUnload) and
// then unloaded (Unload). FormBook leads it through that; a form never deletes itself.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "forms/controls.h"
#include "forms/event.h"
#include "forms/layout.h"

namespace korvex::forms {

// Where a window stands, in screen pixels; state 0 normal, 1 minimized, 2 maximized.
struct WindowPlace {
  int state = 0;
  int left = 0;
  int top = 0;
  bool operator==(const WindowPlace&) const = default;
};

class Form {
 public:
  Form(std::string name, std::string caption);
  virtual ~Form() = default;
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& name() const { return name_; }
  const std::vector<Control*>& controls() const { return controls_; }
  // Without regard to case, as scripts type it; null where there is none.
  Control* find(std::string_view controlName) const;
  template <typename T>
  T* find(std::string_view controlName) const {
    return dynamic_cast<T*>(find(controlName));
  }

  // The button that carries out what waits; null where the form has none.
  virtual CommandButton* applyButton() { return find<CommandButton>("cmdApply"); }

  // Handlers of the form's life, overridden by the form.
  virtual void Load() {}
  virtual bool QueryUnload() { return true; }  // false keeps the form open
  virtual void Unload() {}

  // Whether a form that was loaded without being shown is loaded afresh to be shown: what it read
  // then may be old by now.
  virtual bool reloadsToShow() const { return false; }

  // A form asks to be closed; FormBook (or the front end showing it) does it.
  void close() { closeRequested.raise(); }

  Property<std::string> Caption;
  Property<std::string> StatusText;  // shown in the status bar; no bar while empty
  // True while the form works on something long; progress in percent, -1 where it is unknown.
  Property<bool> Busy{false};
  Property<int> Progress{-1};
  // Whether the person may end that work, and whether they have asked for it: the work looks at it
  // between its steps. Nobody has asked when the form gets busy anew.
  Property<bool> CanCancel{false};
  Property<bool> CancelAsked{false};
  // For that work, between its steps: shows how far it is and lets the person reach "Cancel". False
  // where they have asked for the end.
  bool goOn(int percent);
  Event wentOn;  // for the view
  // Kept by the front end that shows the form, so that the form can store it; a form that wants a
  // place sets it before it is shown. Nothing means: centred.
  std::optional<WindowPlace> place;
  Event closeRequested;
  Layout layout;

  // For controls that are made from rows of data instead of being members.
  template <typename T, typename... Args>
  T& own(Args&&... args) {
    auto control = std::make_unique<T>(*this, std::forward<Args>(args)...);
    T& result = *control;
    owned_.push_back(std::move(control));
    return result;
  }

 private:
  friend class Control;
  void add(Control& control) { controls_.push_back(&control); }

  std::string name_;
  std::vector<Control*> controls_;
  std::vector<std::unique_ptr<Control>> owned_;
};

}  // namespace korvex::forms
