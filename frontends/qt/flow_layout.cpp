// How parts flow into columns.
#include "qt/flow_layout.h"

#include <QStyle>
#include <QWidget>
#include <algorithm>
#include <numeric>

namespace korvex::qt {
namespace {

constexpr int kPreferredRows = 6;
constexpr int kPreferredColumns = 3;
constexpr int kFallbackGap = 6;

int heightAt(QLayoutItem& item, int width) {
  return item.hasHeightForWidth() ? item.heightForWidth(width) : item.sizeHint().height();
}

}  // namespace

FlowLayout::FlowLayout(std::shared_ptr<Page> page) : page_(std::move(page)) {
  setContentsMargins(0, 0, 0, 0);
  page_->push_back(this);
}

FlowLayout::~FlowLayout() {
  std::erase(*page_, this);
  for (QLayoutItem* item : items_) delete item;
}

void FlowLayout::addLayout(QLayout* layout) {
  addChildLayout(layout);
  addItem(layout);
}

void FlowLayout::addItem(QLayoutItem* item) {
  items_.push_back(item);
  invalidate();
}

QLayoutItem* FlowLayout::itemAt(int index) const {
  return index < 0 || index >= count() ? nullptr : items_[static_cast<std::size_t>(index)];
}

QLayoutItem* FlowLayout::takeAt(int index) {
  QLayoutItem* item = itemAt(index);
  if (item != nullptr) items_.erase(items_.begin() + index);
  invalidate();
  return item;
}

void FlowLayout::invalidate() {
  widest_ = -1;
  QLayout::invalidate();
}

std::vector<QLayoutItem*> FlowLayout::shownItems() const {
  std::vector<QLayoutItem*> shown;
  std::copy_if(items_.begin(), items_.end(), std::back_inserter(shown),
               [](QLayoutItem* item) { return !item->isEmpty(); });
  return shown;
}

int FlowLayout::columnGap() const {
  const int gap = spacing() >= 0 ? spacing() : kFallbackGap;
  return 2 * gap;
}

int FlowLayout::rowGap() const { return spacing() >= 0 ? spacing() : kFallbackGap; }

int FlowLayout::widestItem() const {
  if (widest_ < 0) {
    widest_ = 0;
    for (QLayoutItem* item : shownItems()) widest_ = std::max(widest_, item->sizeHint().width());
  }
  return widest_;
}

int FlowLayout::ownColumns(int width) const {
  const int widest = std::max(1, widestItem());
  return std::max(1, (width + columnGap()) / (widest + columnGap()));
}

int FlowLayout::columnsFor(int width) const {
  const int own = ownColumns(width);
  int most = own;
  for (const FlowLayout* flow : *page_) {
    if (flow->widestItem() > 0) most = std::max(most, flow->ownColumns(width));
  }
  int agreed = own;
  for (const FlowLayout* flow : *page_) {
    if (flow->widestItem() == 0) continue;
    const int columns = flow->ownColumns(width);
    if (2 * columns >= most) agreed = std::min(agreed, columns);
  }
  return agreed;
}

int FlowLayout::widthFor(int columns) const {
  return columns * (widestItem() + columnGap()) - columnGap();
}

bool FlowLayout::fill(const std::vector<QLayoutItem*>& items, const std::vector<int>& heights,
                      int columns, int height, int gap, std::vector<Cell>& cells) {
  cells.clear();
  int column = 0;
  int top = 0;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (top > 0 && top + heights[i] > height) {
      top = 0;
      if (++column == columns) return false;
    }
    cells.push_back({items[i], column, top, heights[i]});
    top += heights[i] + gap;
  }
  return true;
}

FlowLayout::Columns FlowLayout::arrange(int width) const {
  const std::vector<QLayoutItem*> items = shownItems();
  Columns result;
  if (items.empty()) return result;
  const int columns = columnsFor(width);
  result.width = (width + columnGap()) / columns - columnGap();

  std::vector<int> heights;
  heights.reserve(items.size());
  for (QLayoutItem* item : items) heights.push_back(heightAt(*item, result.width));
  const int gap = rowGap();
  // The smallest height at which everything fits: columns of about the same length.
  int tooLow = *std::max_element(heights.begin(), heights.end()) - 1;
  int enough =
      std::accumulate(heights.begin(), heights.end(), 0) + gap * static_cast<int>(items.size() - 1);
  while (enough - tooLow > 1) {
    const int middle = tooLow + (enough - tooLow) / 2;
    (fill(items, heights, columns, middle, gap, result.cells) ? enough : tooLow) = middle;
  }
  fill(items, heights, columns, enough, gap, result.cells);
  result.height = enough;
  return result;
}

int FlowLayout::heightForWidth(int width) const { return arrange(width).height; }

QSize FlowLayout::minimumSize() const {
  int tallest = 0;
  for (QLayoutItem* item : shownItems()) {
    tallest = std::max(tallest, item->minimumSize().height());
  }
  return {widestItem(), tallest};
}

QSize FlowLayout::sizeHint() const {
  const int shown = static_cast<int>(shownItems().size());
  if (shown == 0) return {0, 0};
  const int columns =
      std::clamp((shown + kPreferredRows - 1) / kPreferredRows, 1, kPreferredColumns);
  const int width = widthFor(columns);
  return {width, heightForWidth(width)};
}

void FlowLayout::setGeometry(const QRect& area) {
  QLayout::setGeometry(area);
  const Columns columns = arrange(area.width());
  const bool mirrored = parentWidget() != nullptr && parentWidget()->isRightToLeft();
  for (const Cell& cell : columns.cells) {
    const QRect place(area.x() + cell.column * (columns.width + columnGap()), area.y() + cell.top,
                      columns.width, cell.height);
    cell.item->setGeometry(
        QStyle::visualRect(mirrored ? Qt::RightToLeft : Qt::LeftToRight, area, place));
  }
}

}  // namespace korvex::qt
