// The files of a machine as a Qt model.
#include "qt/machine_tree.h"

#include <QApplication>
#include <QDir>
#include <QStyle>
#include <algorithm>
#include <vector>

#include "qt/text.h"

namespace korvex::qt {

using platform::FileEntry;

struct MachineTree::Node {
  Node* parent = nullptr;
  int row = 0;
  std::string name;
  std::string path;
  bool folder = true;
  bool read = false;
  std::vector<std::unique_ptr<Node>> children;
};

namespace {

bool sameText(const std::string& left, const QString& right) {
  return toQt(left).compare(right, Qt::CaseInsensitive) == 0;
}

}  // namespace

MachineTree::MachineTree(platform::Files& files, QObject* parent)
    : QAbstractItemModel(parent), files_(files) {
  readDrives();
}

MachineTree::~MachineTree() = default;

void MachineTree::readDrives() {
  root_ = std::make_unique<Node>();
  root_->read = true;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    const std::string name{letter, ':'};
    if (!files_.exists(name + "\\")) continue;
    auto drive = std::make_unique<Node>();
    drive->parent = root_.get();
    drive->row = static_cast<int>(root_->children.size());
    drive->name = name;
    drive->path = name + "\\";
    root_->children.push_back(std::move(drive));
  }
}

void MachineTree::setPatterns(const QStringList& patterns) {
  beginResetModel();
  patterns_ = patterns;
  readDrives();
  endResetModel();
}

bool MachineTree::matches(const std::string& fileName) const {
  // "*.*" is Windows' word for everything.
  return patterns_.isEmpty() || patterns_.contains("*.*") || QDir::match(patterns_, toQt(fileName));
}

std::vector<std::unique_ptr<MachineTree::Node>> MachineTree::readFolder(Node& folder) {
  const std::string stem = folder.path.back() == '\\' ? folder.path : folder.path + "\\";
  std::vector<FileEntry> entries;
  const platform::Status status = files_.list(stem + "*", entries);
  if (status != platform::ERROR_SUCCESS) {
    entries.clear();
    if (status != platform::ERROR_FILE_NOT_FOUND && onFailure) onFailure(folder.path, status);
  }
  const auto isFolder = [](const FileEntry& entry) {
    return (entry.attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0;
  };
  std::stable_partition(entries.begin(), entries.end(), isFolder);

  std::vector<std::unique_ptr<Node>> nodes;
  for (FileEntry& entry : entries) {
    if (!isFolder(entry) && !matches(entry.name)) continue;
    auto node = std::make_unique<Node>();
    node->parent = &folder;
    node->row = static_cast<int>(nodes.size());
    node->path = stem + entry.name;
    node->folder = isFolder(entry);
    node->name = std::move(entry.name);
    nodes.push_back(std::move(node));
  }
  return nodes;
}

MachineTree::Node* MachineTree::nodeAt(const QModelIndex& index) const {
  return index.isValid() ? static_cast<Node*>(index.internalPointer()) : root_.get();
}

QModelIndex MachineTree::indexOf(const Node& node) const {
  return node.parent == nullptr ? QModelIndex() : createIndex(node.row, 0, &node);
}

std::string MachineTree::pathOf(const QModelIndex& index) const { return nodeAt(index)->path; }

bool MachineTree::isFolder(const QModelIndex& index) const { return nodeAt(index)->folder; }

QModelIndex MachineTree::find(std::string_view path) {
  QModelIndex found;
  const QString text = toQt(path).replace('/', '\\');
  for (const QString& part : text.split('\\', Qt::SkipEmptyParts)) {
    if (canFetchMore(found)) fetchMore(found);
    const auto& children = nodeAt(found)->children;
    const auto next = std::find_if(children.begin(), children.end(), [&part](const auto& child) {
      return sameText(child->name, part);
    });
    if (next == children.end()) break;
    found = indexOf(**next);
  }
  return found;
}

QModelIndex MachineTree::index(int row, int column, const QModelIndex& parent) const {
  if (!hasIndex(row, column, parent)) return {};
  return createIndex(row, column, nodeAt(parent)->children[static_cast<std::size_t>(row)].get());
}

QModelIndex MachineTree::parent(const QModelIndex& index) const {
  return index.isValid() ? indexOf(*nodeAt(index)->parent) : QModelIndex();
}

int MachineTree::rowCount(const QModelIndex& parent) const {
  return static_cast<int>(nodeAt(parent)->children.size());
}

int MachineTree::columnCount(const QModelIndex&) const { return 1; }

QVariant MachineTree::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Node& node = *nodeAt(index);
  if (role == Qt::DisplayRole) return toQt(node.name);
  if (role != Qt::DecorationRole) return {};
  const QStyle* style = QApplication::style();
  if (node.parent == root_.get()) return style->standardIcon(QStyle::SP_DriveHDIcon);
  return style->standardIcon(node.folder ? QStyle::SP_DirIcon : QStyle::SP_FileIcon);
}

bool MachineTree::hasChildren(const QModelIndex& parent) const {
  const Node& node = *nodeAt(parent);
  return node.folder && (!node.read || !node.children.empty());
}

bool MachineTree::canFetchMore(const QModelIndex& parent) const {
  const Node& node = *nodeAt(parent);
  return node.folder && !node.read;
}

void MachineTree::fetchMore(const QModelIndex& parent) {
  Node& node = *nodeAt(parent);
  if (!node.folder || node.read) return;
  node.read = true;
  std::vector<std::unique_ptr<Node>> children = readFolder(node);
  if (children.empty()) return;
  beginInsertRows(parent, 0, static_cast<int>(children.size()) - 1);
  node.children = std::move(children);
  endInsertRows();
}

}  // namespace korvex::qt
