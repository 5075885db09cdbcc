// FlowLayout: parts in as many columns as the width allows, filled column by column.
#pragma once

#include <QLayout>
#include <memory>
#include <vector>

namespace korvex::qt {

// All columns of a flow are equally wide. The flows of a page agree on their number of columns, so
// that the columns stand below each other; a flow with a part that is much too wide for that goes
// its own way.
class FlowLayout : public QLayout {
 public:
  using Page = std::vector<const FlowLayout*>;

  explicit FlowLayout(std::shared_ptr<Page> page);
  ~FlowLayout() override;

  void addLayout(QLayout* layout);
  void addItem(QLayoutItem* item) override;
  int count() const override { return static_cast<int>(items_.size()); }
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;
  void invalidate() override;

  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;
  QSize minimumSize() const override;
  QSize sizeHint() const override;
  Qt::Orientations expandingDirections() const override { return Qt::Horizontal; }
  void setGeometry(const QRect& area) override;

 private:
  struct Cell {
    QLayoutItem* item;
    int column;
    int top;
    int height;
  };
  struct Columns {
    std::vector<Cell> cells;
    int width = 0;
    int height = 0;
  };

  std::vector<QLayoutItem*> shownItems() const;
  int widestItem() const;
  int ownColumns(int width) const;
  int columnsFor(int width) const;
  int widthFor(int columns) const;
  Columns arrange(int width) const;
  // False where the items need more columns than given at that height.
  static bool fill(const std::vector<QLayoutItem*>& items, const std::vector<int>& heights,
                   int columns, int height, int gap, std::vector<Cell>& cells);
  int columnGap() const;
  int rowGap() const;

  std::shared_ptr<Page> page_;
  std::vector<QLayoutItem*> items_;
  mutable int widest_ = -1;
};

}  // namespace korvex::qt
