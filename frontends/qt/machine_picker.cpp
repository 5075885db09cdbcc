// Picking a file or folder of the machine.
#include "qt/machine_picker.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>

#include "qt/text.h"

namespace korvex::qt {
namespace {

constexpr int kWidth = 60;   // characters
constexpr int kHeight = 26;  // lines

bool isFull(const std::string& path) { return path.size() >= 2 && path[1] == ':'; }

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('\\');
  if (slash == std::string::npos) return "";
  return path.substr(0, slash == 2 ? 3 : slash);
}

// "C:\WINNT\..\a\" is "C:\a".
std::string withoutDots(const std::string& path) {
  QStringList parts;
  for (const QString& part : toQt(path).split('\\', Qt::SkipEmptyParts)) {
    if (part == "..") {
      if (parts.size() > 1) parts.removeLast();
    } else if (part != ".") {
      parts.append(part);
    }
  }
  return fromQt(parts.size() == 1 ? parts.first() + '\\' : parts.join('\\'));
}

std::string nameOf(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

}  // namespace

MachinePicker::MachinePicker(platform::Files& files, const platform::FileRequest& request,
                             QWidget* parent)
    : QDialog(parent), files_(files), saves_(request.save), model_(new MachineTree(files, this)) {
  setWindowTitle(toQt(request.title));
  makeWidgets(toQt(request.filter));
  model_->onFailure = [this](const std::string& path, platform::Status status) {
    tell(QString("%1 could not be read: %2")
             .arg(toQt(path), toQt(platform::describeStatus(status))));
  };
  connect(tree_->selectionModel(), &QItemSelectionModel::currentChanged, this,
          [this] { showCurrent(); });
  useFilter();
  reveal(request.folder.empty() ? "C:\\" : request.folder);
  if (!request.fileName.empty()) field_->setText(toQt(request.fileName));
  field_->selectAll();
  resize(fontMetrics().horizontalAdvance('x') * kWidth, fontMetrics().lineSpacing() * kHeight);
}

void MachinePicker::makeWidgets(const QString& filter) {
  tree_ = new QTreeView(this);
  tree_->setModel(model_);
  tree_->setHeaderHidden(true);
  tree_->setAccessibleName("Drives, folders and files");
  auto* treeLabel = new QLabel("&Look in:", this);
  treeLabel->setBuddy(tree_);

  field_ = new QLineEdit(this);
  auto* fieldLabel = new QLabel("File &name:", this);
  fieldLabel->setBuddy(field_);
  field_->setAccessibleName("File name");

  filter_ = new QComboBox(this);
  auto* filterLabel = new QLabel("Files of &type:", this);
  filterLabel->setBuddy(filter_);
  filter_->setAccessibleName("Files of type");
  const QStringList parts = filter.split('|', Qt::SkipEmptyParts);
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) filter_->addItem(parts[i], parts[i + 1]);
  filter_->setVisible(filter_->count() > 0);
  filterLabel->setVisible(filter_->count() > 0);
  connect(filter_, &QComboBox::currentIndexChanged, this, [this] { useFilter(); });

  message_ = new QLabel(this);
  message_->setTextFormat(Qt::PlainText);
  message_->setWordWrap(true);
  message_->hide();

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
  ok->setText(saves_ ? "&Save" : "&Open");
  connect(buttons, &QDialogButtonBox::accepted, this, &MachinePicker::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &MachinePicker::reject);
  connect(tree_, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
    if (!model_->isFolder(index)) accept();
  });

  auto* fields = new QGridLayout;
  fields->addWidget(fieldLabel, 0, 0);
  fields->addWidget(field_, 0, 1);
  fields->addWidget(filterLabel, 1, 0);
  fields->addWidget(filter_, 1, 1);
  auto* column = new QVBoxLayout(this);
  column->addWidget(treeLabel);
  column->addWidget(tree_, 1);
  column->addLayout(fields);
  column->addWidget(message_);
  column->addWidget(buttons);
}

void MachinePicker::useFilter() {
  const std::string before = currentFolder();
  model_->setPatterns(filter_->currentData().toString().split(';', Qt::SkipEmptyParts));
  if (!before.empty()) reveal(before);
}

void MachinePicker::reveal(std::string_view path) {
  const QModelIndex index = model_->find(path);
  if (!index.isValid()) return;
  tree_->setCurrentIndex(index);
  if (model_->isFolder(index)) tree_->expand(index);
  tree_->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

std::string MachinePicker::currentFolder() const {
  const QModelIndex index = tree_->currentIndex();
  if (!index.isValid()) return "";
  const std::string path = model_->pathOf(index);
  return model_->isFolder(index) ? path : folderOf(path);
}

void MachinePicker::showCurrent() {
  const QModelIndex index = tree_->currentIndex();
  if (!index.isValid()) return;
  message_->hide();
  // A folder is where a typed name goes.
  if (!model_->isFolder(index)) {
    field_->setText(toQt(model_->pathOf(index)));
  } else if (const std::string typed = fromQt(field_->text()); isFull(typed)) {
    field_->setText(saves_ ? toQt(nameOf(typed)) : QString());
  }
}

void MachinePicker::tell(const QString& message) {
  message_->setText(message);
  message_->show();
}

std::string MachinePicker::typedPath() const {
  std::string typed = fromQt(field_->text().trimmed().replace('/', '\\'));
  if (typed.empty()) return saves_ ? "" : currentFolder();
  if (typed.front() == '\\') {
    typed = currentFolder().substr(0, 2) + typed;
  } else if (!isFull(typed)) {
    const std::string folder = currentFolder();
    typed = folder + (folder.empty() || folder.back() == '\\' ? "" : "\\") + typed;
  }
  return withoutDots(typed);
}

void MachinePicker::accept() {
  std::string path = typedPath();
  if (saves_ && !path.empty() && nameOf(path).find('.') == std::string::npos &&
      !files_.exists(path)) {
    const std::string pattern = fromQt(filter_->currentData().toString().split(';').first());
    const bool plain =
        pattern.rfind("*.", 0) == 0 && pattern.find_first_of("*?", 2) == std::string::npos;
    if (plain) path += pattern.substr(1);
  }
  if (!acceptable(path)) return;
  picked_ = path;
  QDialog::accept();
}

bool MachinePicker::acceptable(const std::string& path) {
  if (path.empty()) {
    tell("Type a name or choose one.");
    return false;
  }
  std::uint32_t attributes = 0;
  const platform::Status status = files_.attributes(path, attributes);
  const bool folder =
      status == platform::ERROR_SUCCESS && (attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0;
  if (folder) {
    reveal(path);
    field_->clear();
    return false;
  }
  if (saves_) return acceptableToSave(path);
  if (status != platform::ERROR_SUCCESS) {
    tell(QString("%1: %2").arg(toQt(path), toQt(platform::describeStatus(status))));
    return false;
  }
  return true;
}

bool MachinePicker::acceptableToSave(const std::string& path) {
  if (!files_.exists(folderOf(path))) {
    tell(QString("There is no folder %1.").arg(toQt(folderOf(path))));
    return false;
  }
  if (!files_.exists(path)) return true;
  return QMessageBox::question(
             this, windowTitle(), QString("%1 already exists. Replace it?").arg(toQt(path)),
             QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

}  // namespace korvex::qt
