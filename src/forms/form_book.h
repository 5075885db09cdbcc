// Loads forms by their names, and has the front end show them.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "forms/form.h"

namespace korvex::forms {

// The front end's side. A front end without a screen shows nothing and drives the form itself.
class FormHost {
 public:
  virtual ~FormHost() = default;
  // Returns when the form is to go: on each closeRequested the host asks QueryUnload, and the form
  // stays while that says false.
  virtual void showModal(Form& form) = 0;
  // Called before and after a form's Load handler, for a host that shows how far it is.
  virtual void loading(Form&) {}
  virtual void loaded(Form&) {}
};

class FormBook {
 public:
  using Factory = std::function<std::unique_ptr<Form>()>;

  void add(std::string name, Factory factory);
  std::vector<std::string> names() const;  // in the order of registration
  bool knows(std::string_view name) const;

  // The loaded form; constructs it and runs its Load handler where it is not loaded yet. A form
  // that its own Load handler asks for is returned as it stands. Throws std::out_of_range for a
  // name that was never added.
  Form& load(std::string_view name);
  Form* loaded(std::string_view name) const;  // null where it is not
  // Asks QueryUnload; on true runs Unload and drops the form. True where the form is gone.
  bool unload(std::string_view name);

  // Loads, has the host show it until it agrees to go, unloads. Without a host the form stays
  // loaded: whoever drives it unloads it.
  void showModal(std::string_view name);
  void setHost(FormHost* host) { host_ = host; }

 private:
  struct Entry {
    std::string name;
    Factory factory;
    std::unique_ptr<Form> form;
  };
  static void drop(Entry& entry);
  Entry* entry(std::string_view name);
  const Entry* entry(std::string_view name) const;

  std::vector<Entry> entries_;
  FormHost* host_ = nullptr;
};

}  // namespace korvex::forms
