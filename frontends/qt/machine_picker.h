// MachinePicker: the dialog that picks a file on the machine's own drives.
#pragma once

#include <QDialog>
#include <optional>
#include <string>

#include "platform/files.h"
#include "platform/prompts.h"
#include "qt/machine_tree.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeView;

namespace korvex::qt {

class MachinePicker : public QDialog {
 public:
  MachinePicker(platform::Files& files, const platform::FileRequest& request, QWidget* parent);

  // A Windows path, once the dialog was accepted: of an existing file, or of a file to be saved in
  // an existing folder.
  const std::string& picked() const { return picked_; }

  void accept() override;

 private:
  void makeWidgets(const QString& filter);
  void reveal(std::string_view path);
  void showCurrent();
  void useFilter();
  void tell(const QString& message);
  // What stands in the field, as a full path without a trailing backslash.
  std::string typedPath() const;
  std::string currentFolder() const;
  bool acceptable(const std::string& path);
  bool acceptableToSave(const std::string& path);

  platform::Files& files_;
  bool saves_;
  MachineTree* model_;
  QTreeView* tree_ = nullptr;
  QLineEdit* field_ = nullptr;
  QComboBox* filter_ = nullptr;
  QLabel* message_ = nullptr;
  std::string picked_;
};

}  // namespace korvex::qt
