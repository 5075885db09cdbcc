// The kinds of controls. Assigning a value from code raises the same event as the user's hand.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "forms/control.h"

namespace korvex::forms {

enum CheckValue { vbUnchecked = 0, vbChecked = 1, vbGrayed = 2 };

class CheckBox : public Control {
 public:
  CheckBox(Form& form, std::string name, std::string caption = "");
  std::string stateText() const override;

  Property<int> Value{vbUnchecked};  // a CheckValue
  Event Click;                       // raised whenever Value changes
};

// One of several in its group; the others clear themselves when one is set.
class OptionButton : public Control {
 public:
  OptionButton(Form& form, std::string name, std::string caption, std::string group);
  std::string stateText() const override;
  const std::string& group() const { return group_; }

  Property<bool> Value{false};
  Event Click;  // raised when the button is set

 private:
  std::string group_;
};

struct TextBoxOptions {
  int maxLength = 0;  // characters; 0 is unlimited
  int widthInCharacters = 20;
  bool multiLine = false;
  bool password = false;
  bool readOnly = false;
  int rows = 5;       // of several lines, those that are seen
  bool wraps = true;  // of several lines: a long one goes on in the next
};

class TextBox : public Control {
 public:
  TextBox(Form& form, std::string name, TextBoxOptions options = {});
  std::string stateText() const override;
  const TextBoxOptions& options() const { return options_; }

  Property<std::string> Text;
  Event Change;     // raised whenever Text changes
  Event LostFocus;  // the user leaves the field

 private:
  TextBoxOptions options_;
};

// A small picture before the text of an item, where it stands for a drive.
enum class ItemPicture { None, Floppy, HardDisk, CdRom, Network, RamDisk };
// What it shows, for those who cannot see it: "hard disk"; "" for None.
std::string_view pictureName(ItemPicture picture);

// What lists and combo boxes share: items, and the index of the selected one (-1 for none).
class ListControl : public Control {
 public:
  using Control::Control;
  std::string stateText() const override;

  void AddItem(std::string item, ItemPicture picture = ItemPicture::None);
  void RemoveItem(int index);  // the selection goes with a selected item
  void Clear();
  const std::vector<std::string>& items() const { return items_; }
  int ListCount() const { return static_cast<int>(items_.size()); }
  std::string selectedItem() const;  // "" for none
  ItemPicture picture(int index) const;
  bool hasPictures() const { return !pictures_.empty(); }

  Property<int> ListIndex{-1};
  Event Click;         // raised whenever ListIndex changes
  Event itemsChanged;  // for the view
  Event DblClick;

 private:
  // For lists that keep more of an item than its text.
  virtual void itemInserted() {}
  virtual void itemErased(int /*index*/) {}
  virtual void itemsCleared() {}

  std::vector<std::string> items_;
  std::vector<ItemPicture> pictures_;  // of the first items; the others have none
};

class ListBox : public ListControl {
 public:
  ListBox(Form& form, std::string name, int visibleRows = 8);
  int visibleRows() const { return visibleRows_; }

  // The person may drag what is selected in that list onto this one. Said in the form's
  // constructor.
  void takesDropsFrom(ListBox& source);
  const ListBox* dropSource() const { return dropSource_; }
  bool isDragged() const { return isDragged_; }
  Event DragDrop;  // what is selected in the source was dropped here

 private:
  int visibleRows_;
  ListBox* dropSource_ = nullptr;
  bool isDragged_ = false;
};

// A list of which several items can be selected. ListIndex is the first of them; setting it selects
// that one alone. Removing the first selected item takes the whole selection away.
class MultiList : public ListBox {
 public:
  MultiList(Form& form, std::string name, int visibleRows = 8);
  std::string stateText() const override;  // "2 of 5 selected"

  bool isSelected(int index) const;
  void setSelected(int index, bool selected);
  std::vector<int> selectedIndices() const;  // ascending
  std::vector<std::string> selectedItems() const;

  Event SelectionChange;  // by the person or by code

 private:
  void itemInserted() override;
  void itemErased(int index) override;
  void itemsCleared() override;
  void followListIndex();
  void tellFirst();

  std::vector<bool> selected_;
  bool following_ = false;
};

// A list whose items carry a check mark each, apart from the selection. Items are added unchecked.
class CheckList : public ListBox {
 public:
  using ListBox::ListBox;
  std::string stateText() const override;  // "2 of 5 checked"

  bool isChecked(int index) const;
  void setChecked(int index, bool checked);
  void setAllChecked(bool checked);
  // An item that cannot be checked is passed over by all of these.
  bool isCheckable(int index) const;
  void setCheckable(int index, bool checkable);
  std::vector<std::string> checkedItems() const;

  Event ItemCheck;  // raised when marks change, by the person or by code

 private:
  void itemInserted() override;
  void itemErased(int index) override;
  void itemsCleared() override;

  struct Mark {
    bool checked = false;
    bool checkable = true;
  };
  std::vector<Mark> marks_;
};

class ComboBox : public ListControl {
 public:
  enum class Style { DropDown, DropDownList };
  ComboBox(Form& form, std::string name, Style style = Style::DropDownList);
  std::string stateText() const override;
  Style style() const { return style_; }

  // Follows the selection. With Style::DropDown also free text, which takes the selection away.
  Property<std::string> Text;
  Event Change;

 private:
  Style style_;
};

class CommandButton : public Control {
 public:
  enum class Role { Plain, Default, Cancel };  // answers Enter, answers Escape
  CommandButton(Form& form, std::string name, std::string caption, Role role = Role::Plain);
  std::string stateText() const override;
  Role role() const { return role_; }
  // Presses the button as the user does: a disabled or hidden one does nothing.
  void press();

  Event Click;

 private:
  Role role_;
};

// A text; with a buddy its mnemonic moves to that control, and names it for screen readers. One
// with colors is a sample of a console's text: it has them and a font of fixed width.
class Label : public Control {
 public:
  Label(Form& form, std::string name, std::string caption, Control* buddy = nullptr);
  std::string stateText() const override;
  Control* buddy() const { return buddy_; }

  // 0x00BBGGRR, as Windows keeps it; nothing is what the look of the program has.
  Property<std::optional<std::uint32_t>> BackColor;
  Property<std::optional<std::uint32_t>> ForeColor;

 private:
  Control* buddy_;
};

// A titled frame around the parts of a group that is to be found by its name; what stands in it is
// disabled and hidden with it.
class Frame : public Control {
 public:
  Frame(Form& form, std::string name, std::string caption);
  std::string stateText() const override { return ""; }
};

struct Tab {
  std::string caption;
  std::string key;
  std::string toolTip;
};

class TabStrip : public Control {
 public:
  TabStrip(Form& form, std::string name, std::vector<Tab> tabs);
  std::string stateText() const override;
  const std::vector<Tab>& tabs() const { return tabs_; }

  Property<int> SelectedItem{1};  // counts from 1
  Event Click;

 private:
  std::vector<Tab> tabs_;
};

}  // namespace korvex::forms
