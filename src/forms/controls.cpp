// How each kind of control behaves.
#include "forms/controls.h"

#include <algorithm>
#include <utility>

#include "forms/form.h"

namespace korvex::forms {

CheckBox::CheckBox(Form& form, std::string name, std::string caption)
    : Control(form, ControlKind::CheckBox, std::move(name), std::move(caption)) {
  Value.changed += [this] { Click.raise(); };
}

std::string CheckBox::stateText() const {
  if (Value == vbGrayed) return "grey";
  return Value == vbChecked ? "checked" : "unchecked";
}

OptionButton::OptionButton(Form& form, std::string name, std::string caption, std::string group)
    : Control(form, ControlKind::OptionButton, std::move(name), std::move(caption)),
      group_(std::move(group)) {
  Value.changed += [this] {
    if (!Value) return;
    for (Control* control : this->form().controls()) {
      auto* other = dynamic_cast<OptionButton*>(control);
      if (other != nullptr && other != this && other->group_ == group_) other->Value = false;
    }
    Click.raise();
  };
}

std::string OptionButton::stateText() const { return Value ? "selected" : "not selected"; }

TextBox::TextBox(Form& form, std::string name, TextBoxOptions options)
    : Control(form, ControlKind::TextBox, std::move(name), ""), options_(options) {
  Text.changed += [this] { Change.raise(); };
}

std::string TextBox::stateText() const {
  return options_.password && !Text->empty() ? "(hidden)" : Text.get();
}

std::string ListControl::stateText() const { return selectedItem(); }

std::string ListControl::selectedItem() const {
  const int index = ListIndex;
  return index < 0 || index >= ListCount() ? "" : items_[static_cast<std::size_t>(index)];
}

std::string_view pictureName(ItemPicture picture) {
  switch (picture) {
    case ItemPicture::Floppy:
      return "floppy disk drive";
    case ItemPicture::HardDisk:
      return "hard disk";
    case ItemPicture::CdRom:
      return "CD-ROM drive";
    case ItemPicture::Network:
      return "network drive";
    case ItemPicture::RamDisk:
      return "RAM disk";
    case ItemPicture::None:
      break;
  }
  return "";
}

void ListControl::AddItem(std::string item, ItemPicture picture) {
  if (picture != ItemPicture::None) {
    pictures_.resize(items_.size(), ItemPicture::None);
    pictures_.push_back(picture);
  }
  items_.push_back(std::move(item));
  itemInserted();
  itemsChanged.raise();
}

void ListControl::RemoveItem(int index) {
  if (index < 0 || index >= ListCount()) return;
  const int selected = ListIndex;
  // No handler may see an index past the end, or one that names another item than before.
  if (selected == index) ListIndex = -1;
  items_.erase(items_.begin() + index);
  if (static_cast<std::size_t>(index) < pictures_.size()) {
    pictures_.erase(pictures_.begin() + index);
  }
  itemErased(index);
  if (selected > index) ListIndex = selected - 1;
  itemsChanged.raise();
}

void ListControl::Clear() {
  ListIndex = -1;
  items_.clear();
  pictures_.clear();
  itemsCleared();
  itemsChanged.raise();
}

ItemPicture ListControl::picture(int index) const {
  const auto at = static_cast<std::size_t>(index);
  return index < 0 || at >= pictures_.size() ? ItemPicture::None : pictures_[at];
}

ListBox::ListBox(Form& form, std::string name, int visibleRows)
    : ListControl(form, ControlKind::ListBox, std::move(name), ""), visibleRows_(visibleRows) {
  ListIndex.changed += [this] { Click.raise(); };
}

void ListBox::takesDropsFrom(ListBox& source) {
  dropSource_ = &source;
  source.isDragged_ = true;
}

MultiList::MultiList(Form& form, std::string name, int visibleRows)
    : ListBox(form, std::move(name), visibleRows) {
  ListIndex.changed += [this] { followListIndex(); };
}

std::string MultiList::stateText() const {
  return std::to_string(selectedIndices().size()) + " of " + std::to_string(selected_.size()) +
         " selected";
}

bool MultiList::isSelected(int index) const {
  return index >= 0 && index < ListCount() && selected_[static_cast<std::size_t>(index)];
}

void MultiList::setSelected(int index, bool selected) {
  if (index < 0 || index >= ListCount() || isSelected(index) == selected) return;
  selected_[static_cast<std::size_t>(index)] = selected;
  tellFirst();
  SelectionChange.raise();
}

std::vector<int> MultiList::selectedIndices() const {
  std::vector<int> result;
  for (int i = 0; i < ListCount(); ++i) {
    if (isSelected(i)) result.push_back(i);
  }
  return result;
}

std::vector<std::string> MultiList::selectedItems() const {
  std::vector<std::string> result;
  for (const int index : selectedIndices()) {
    result.push_back(items()[static_cast<std::size_t>(index)]);
  }
  return result;
}

void MultiList::tellFirst() {
  following_ = true;
  const std::vector<int> all = selectedIndices();
  ListIndex = all.empty() ? -1 : all.front();
  following_ = false;
}

void MultiList::followListIndex() {
  const std::vector<int> all = selectedIndices();
  // Items above went, and the first selected one has moved up.
  const bool moved = !all.empty() && all.front() == ListIndex.get();
  if (following_ || moved) return;
  for (std::size_t i = 0; i < selected_.size(); ++i) {
    selected_[i] = static_cast<int>(i) == ListIndex.get();
  }
  SelectionChange.raise();
}

void MultiList::itemInserted() { selected_.push_back(false); }
void MultiList::itemErased(int index) { selected_.erase(selected_.begin() + index); }
void MultiList::itemsCleared() { selected_.clear(); }

std::string CheckList::stateText() const {
  const auto count = std::count_if(marks_.begin(), marks_.end(), [](Mark m) { return m.checked; });
  return std::to_string(count) + " of " + std::to_string(marks_.size()) + " checked";
}

bool CheckList::isChecked(int index) const {
  return index >= 0 && index < ListCount() && marks_[static_cast<std::size_t>(index)].checked;
}

void CheckList::setChecked(int index, bool checked) {
  if (!isCheckable(index) || isChecked(index) == checked) return;
  marks_[static_cast<std::size_t>(index)].checked = checked;
  ItemCheck.raise();
}

void CheckList::setAllChecked(bool checked) {
  bool changed = false;
  for (Mark& mark : marks_) {
    if (!mark.checkable || mark.checked == checked) continue;
    mark.checked = checked;
    changed = true;
  }
  if (changed) ItemCheck.raise();
}

bool CheckList::isCheckable(int index) const {
  return index >= 0 && index < ListCount() && marks_[static_cast<std::size_t>(index)].checkable;
}

void CheckList::setCheckable(int index, bool checkable) {
  if (index < 0 || index >= ListCount() || isCheckable(index) == checkable) return;
  marks_[static_cast<std::size_t>(index)] = {false, checkable};
  ItemCheck.raise();
}

std::vector<std::string> CheckList::checkedItems() const {
  std::vector<std::string> result;
  for (std::size_t i = 0; i < marks_.size(); ++i) {
    if (marks_[i].checked) result.push_back(items()[i]);
  }
  return result;
}

void CheckList::itemInserted() { marks_.emplace_back(); }
void CheckList::itemErased(int index) { marks_.erase(marks_.begin() + index); }
void CheckList::itemsCleared() { marks_.clear(); }

ComboBox::ComboBox(Form& form, std::string name, Style style)
    : ListControl(form, ControlKind::ComboBox, std::move(name), ""), style_(style) {
  ListIndex.changed += [this] {
    // Free text stays when its item goes; a list without free text shows its selection, or nothing.
    if (ListIndex >= 0 || style_ == Style::DropDownList) Text = selectedItem();
    Click.raise();
  };
  Text.changed += [this] {
    if (ListIndex >= 0 && Text.get() != selectedItem()) ListIndex = -1;
    Change.raise();
  };
}

std::string ComboBox::stateText() const { return Text; }

CommandButton::CommandButton(Form& form, std::string name, std::string caption, Role role)
    : Control(form, ControlKind::CommandButton, std::move(name), std::move(caption)), role_(role) {}

std::string CommandButton::stateText() const { return ""; }

void CommandButton::press() {
  if (Enabled && Visible) Click.raise();
}

Label::Label(Form& form, std::string name, std::string caption, Control* buddy)
    : Control(form, ControlKind::Label, std::move(name), std::move(caption)), buddy_(buddy) {
  if (buddy_ != nullptr && buddy_->AccessibleName->empty()) {
    buddy_->AccessibleName = plainCaption(Caption.get());
  }
}

std::string Label::stateText() const { return plainCaption(Caption.get()); }

Frame::Frame(Form& form, std::string name, std::string caption)
    : Control(form, ControlKind::Frame, std::move(name), std::move(caption)) {}

TabStrip::TabStrip(Form& form, std::string name, std::vector<Tab> tabs)
    : Control(form, ControlKind::TabStrip, std::move(name), ""), tabs_(std::move(tabs)) {
  SelectedItem.changed += [this] { Click.raise(); };
}

std::string TabStrip::stateText() const {
  return tabs_.at(static_cast<std::size_t>(SelectedItem.get() - 1)).caption;
}

}  // namespace korvex::forms
