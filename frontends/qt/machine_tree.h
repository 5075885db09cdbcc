// MachineTree: the drives, folders and files of a machine as a Qt model, read as they are opened.
#pragma once

#include <QAbstractItemModel>
#include <QStringList>
#include <functional>
#include <memory>
#include <string>

#include "platform/files.h"

namespace korvex::qt {

class MachineTree : public QAbstractItemModel {
 public:
  MachineTree(platform::Files& files, QObject* parent);
  ~MachineTree() override;

  // Which files are shown: "*.bmp"; folders always are. Reads everything anew.
  void setPatterns(const QStringList& patterns);

  // "C:\WINNT\win.ini"; "" for the invisible root.
  std::string pathOf(const QModelIndex& index) const;
  bool isFolder(const QModelIndex& index) const;
  // The entry of a path, or the nearest folder above it that exists.
  QModelIndex find(std::string_view path);

  // A folder could not be read.
  std::function<void(const std::string& path, platform::Status status)> onFailure;

  QModelIndex index(int row, int column, const QModelIndex& parent) const override;
  QModelIndex parent(const QModelIndex& index) const override;
  int rowCount(const QModelIndex& parent) const override;
  int columnCount(const QModelIndex& parent) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool hasChildren(const QModelIndex& parent) const override;
  bool canFetchMore(const QModelIndex& parent) const override;
  void fetchMore(const QModelIndex& parent) override;

 private:
  struct Node;
  Node* nodeAt(const QModelIndex& index) const;
  QModelIndex indexOf(const Node& node) const;
  void readDrives();
  std::vector<std::unique_ptr<Node>> readFolder(Node& folder);
  bool matches(const std::string& fileName) const;

  platform::Files& files_;
  QStringList patterns_;
  std::unique_ptr<Node> root_;
};

}  // namespace korvex::qt
