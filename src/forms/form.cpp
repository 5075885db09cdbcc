// Forms and the book that loads them.
#include "forms/form.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <utility>

#include "forms/form_book.h"

namespace korvex::forms {
namespace {

bool sameName(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) ==
           std::tolower(static_cast<unsigned char>(b));
  });
}

}  // namespace

Form::Form(std::string name, std::string caption)
    : Caption(std::move(caption)), name_(std::move(name)) {
  Busy.changed += [this] {
    if (Busy) CancelAsked = false;
  };
}

bool Form::goOn(int percent) {
  Progress = percent;
  wentOn.raise();
  return !CanCancel || !CancelAsked;
}

Control* Form::find(std::string_view controlName) const {
  for (Control* control : controls_) {
    if (sameName(control->name(), controlName)) return control;
  }
  return nullptr;
}

void FormBook::add(std::string name, Factory factory) {
  entries_.push_back({std::move(name), std::move(factory), nullptr});
}

std::vector<std::string> FormBook::names() const {
  std::vector<std::string> result;
  for (const Entry& entry : entries_) result.push_back(entry.name);
  return result;
}

FormBook::Entry* FormBook::entry(std::string_view name) {
  for (Entry& entry : entries_) {
    if (sameName(entry.name, name)) return &entry;
  }
  return nullptr;
}

const FormBook::Entry* FormBook::entry(std::string_view name) const {
  return const_cast<FormBook*>(this)->entry(name);
}

bool FormBook::knows(std::string_view name) const { return entry(name) != nullptr; }

Form& FormBook::load(std::string_view name) {
  Entry* found = entry(name);
  if (found == nullptr) throw std::out_of_range("there is no form named " + std::string(name));
  if (!found->form) {
    found->form = found->factory();
    if (host_ != nullptr) host_->loading(*found->form);
    found->form->Load();
    if (host_ != nullptr) host_->loaded(*found->form);
  }
  return *found->form;
}

Form* FormBook::loaded(std::string_view name) const {
  const Entry* found = entry(name);
  return found == nullptr ? nullptr : found->form.get();
}

bool FormBook::unload(std::string_view name) {
  Entry* found = entry(name);
  if (found == nullptr || !found->form) return true;
  if (!found->form->QueryUnload()) return false;
  drop(*found);
  return true;
}

void FormBook::drop(Entry& entry) {
  entry.form->Unload();
  entry.form.reset();
}

void FormBook::showModal(std::string_view name) {
  Entry* known = entry(name);
  if (known != nullptr && known->form && known->form->reloadsToShow()) drop(*known);
  Form& form = load(name);
  if (host_ == nullptr) return;
  host_->showModal(form);
  drop(*entry(name));
}

}  // namespace korvex::forms
