// Lists, checked lists and combo boxes, which show the control's own items through a model: adding
// one of many thousand costs the same as adding the first.
#include "qt/list_widgets.h"

#include <QAbstractListModel>
#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QDropEvent>
#include <QLineEdit>
#include <QListView>
#include <QPixmap>
#include <QScrollBar>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTimer>
#include <algorithm>
#include <memory>

#include "qt/text.h"

namespace korvex::qt {
namespace {

constexpr int kListWidth = 30;  // characters
constexpr int kWidestList = 50;
constexpr int kFewestRows = 3;

QVariant pictureOf(forms::ItemPicture picture) {
  const auto standard = [](QStyle::StandardPixmap pixmap) -> QVariant {
    return QApplication::style()->standardIcon(pixmap);
  };
  switch (picture) {
    case forms::ItemPicture::Floppy:
      return standard(QStyle::SP_DriveFDIcon);
    case forms::ItemPicture::HardDisk:
    case forms::ItemPicture::RamDisk:  // there is no picture of one
      return standard(QStyle::SP_DriveHDIcon);
    case forms::ItemPicture::CdRom:
      return standard(QStyle::SP_DriveCDIcon);
    case forms::ItemPicture::Network:
      return standard(QStyle::SP_DriveNetIcon);
    case forms::ItemPicture::None:
      break;
  }
  // The texts stand below each other all the same.
  const int size = QApplication::style()->pixelMetric(QStyle::PM_SmallIconSize);
  QPixmap blank(size, size);
  blank.fill(Qt::transparent);
  return QIcon(blank);
}

class ItemModel : public QAbstractListModel {
 public:
  ItemModel(const forms::ListControl& control, QObject* parent)
      : QAbstractListModel(parent), control_(control), shown_(control.ListCount()) {}

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : shown_;
  }
  QVariant data(const QModelIndex& index, int role) const override {
    if (index.row() < 0 || index.row() >= control_.ListCount()) return {};
    const forms::ItemPicture picture = control_.picture(index.row());
    const QString text = toQt(control_.items()[static_cast<std::size_t>(index.row())]);
    switch (role) {
      case Qt::DisplayRole:
      case Qt::EditRole:
        return text;
      case Qt::DecorationRole:
        return control_.hasPictures() ? pictureOf(picture) : QVariant();
      case Qt::AccessibleTextRole:
        if (picture == forms::ItemPicture::None) return {};
        return text + ", " + toQt(forms::pictureName(picture));
      default:
        return {};
    }
  }
  Qt::ItemFlags flags(const QModelIndex& index) const override {
    const auto* list = dynamic_cast<const forms::ListBox*>(&control_);
    const bool dragged = index.isValid() && list != nullptr && list->isDragged();
    return QAbstractListModel::flags(index) | (dragged ? Qt::ItemIsDragEnabled : Qt::NoItemFlags);
  }

  void refresh() {
    const int count = control_.ListCount();
    if (count == shown_ + 1) {  // AddItem adds at the end
      beginInsertRows({}, shown_, shown_);
      shown_ = count;
      endInsertRows();
      return;
    }
    beginResetModel();
    shown_ = count;
    endResetModel();
  }

 private:
  const forms::ListControl& control_;
  int shown_;
};

class CheckModel : public ItemModel {
 public:
  CheckModel(forms::CheckList& control, QObject* parent)
      : ItemModel(control, parent), control_(control) {}

  QVariant data(const QModelIndex& index, int role) const override {
    if (role != Qt::CheckStateRole) return ItemModel::data(index, role);
    return control_.isChecked(index.row()) ? Qt::Checked : Qt::Unchecked;
  }
  Qt::ItemFlags flags(const QModelIndex& index) const override {
    const Qt::ItemFlags flags = ItemModel::flags(index) | Qt::ItemNeverHasChildren;
    return control_.isCheckable(index.row()) ? flags | Qt::ItemIsUserCheckable : flags;
  }
  // The person's hand.
  bool setData(const QModelIndex& index, const QVariant& value, int role) override {
    if (role != Qt::CheckStateRole) return false;
    control_.setChecked(index.row(), value.toInt() == Qt::Checked);
    return true;
  }
  void refreshMarks() {
    if (rowCount() > 0) emit dataChanged(index(0), index(rowCount() - 1), {Qt::CheckStateRole});
  }

 private:
  forms::CheckList& control_;
};

// Greys an item that cannot be checked; it can be selected all the same.
class CheckDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    if ((index.flags() & Qt::ItemIsUserCheckable) == 0) {
      option->state.setFlag(QStyle::State_Enabled, false);
    }
  }
};

ItemModel* makeModel(forms::ListBox& control, QListView& list, Bindings& bindings) {
  auto* marked = dynamic_cast<forms::CheckList*>(&control);
  if (marked == nullptr) return new ItemModel(control, &list);
  auto* model = new CheckModel(*marked, &list);
  list.setItemDelegate(new CheckDelegate(&list));
  bindings.on(marked->ItemCheck, [model] { model->refreshMarks(); });
  return model;
}

class ListView : public QListView {
 public:
  ListView(forms::ListBox& control, QWidget* parent)
      : QListView(parent), control_(control), rows_(control.visibleRows()) {
    if (dynamic_cast<forms::MultiList*>(&control) != nullptr) {
      setSelectionMode(ExtendedSelection);
    }
    setDragEnabled(control.isDragged());
    setAcceptDrops(control.dropSource() != nullptr);
    setEditTriggers(NoEditTriggers);
    setTextElideMode(Qt::ElideNone);
    // A long text is reached by scrolling.
    setHorizontalScrollMode(ScrollPerPixel);
  }

  // Wider where the items are that are there from the start.
  QSize sizeHint() const override {
    if (widest_ < 0) {
      widest_ = sizeHintForColumn(0) + verticalScrollBar()->sizeHint().width() + width(1);
    }
    return {std::clamp(widest_ + 2 * frameWidth(), width(kListWidth), width(kWidestList)),
            height(rows_)};
  }
  QSize minimumSizeHint() const override {
    return {width(kListWidth / 2), height(std::min(rows_, kFewestRows))};
  }

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override { take(*event); }
  void dragMoveEvent(QDragMoveEvent* event) override { take(*event); }
  void dropEvent(QDropEvent* event) override {
    if (!take(*event)) return;
    // When the drag is over: a handler may ask the person, who needs the mouse for the answer.
    QTimer::singleShot(0, this, [this] { control_.DragDrop.raise(); });
  }

 private:
  // Only what comes from the list that the form named; what happens to it is the form's business.
  bool take(QDropEvent& event) const {
    const auto* source = dynamic_cast<ListView*>(event.source());
    const bool meant = source != nullptr && &source->control_ == control_.dropSource();
    if (meant) {
      event.setDropAction(Qt::CopyAction);
      event.accept();
    } else {
      event.ignore();
    }
    return meant;
  }
  int width(int characters) const {
    return fontMetrics().horizontalAdvance('x') * characters + 2 * frameWidth();
  }
  int height(int rows) const {
    const int row = std::max(sizeHintForRow(0), fontMetrics().lineSpacing());
    return row * rows + 2 * frameWidth();
  }

  forms::ListBox& control_;
  int rows_;
  mutable int widest_ = -1;
};

// A list with several selected items.
void bindSeveral(forms::MultiList& control, QListView& list, ItemModel& model, Bindings& bindings,
                 const std::shared_ptr<bool>& showing) {
  const auto select = [&control, &list, &model, showing] {
    if (*showing) return;
    *showing = true;
    QItemSelection selection;
    for (const int row : control.selectedIndices()) {
      selection.select(model.index(row), model.index(row));
    }
    list.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    *showing = false;
  };
  bindings.on(control.itemsChanged, [&model, select, showing] {
    *showing = true;
    model.refresh();
    *showing = false;
    select();
  });
  bindings.on(control.SelectionChange, select);
  select();
  QItemSelectionModel* const selection = list.selectionModel();
  QObject::connect(selection, &QItemSelectionModel::selectionChanged, &list,
                   [&control, &model, showing, selection] {
                     if (*showing) return;
                     *showing = true;
                     for (int row = 0; row < control.ListCount(); ++row) {
                       control.setSelected(row, selection->isSelected(model.index(row)));
                     }
                     *showing = false;
                   });
  QObject::connect(&list, &QListView::doubleClicked, &list,
                   [&control] { control.DblClick.raise(); });
}

}  // namespace

QWidget* makeListBox(forms::ListBox& control, QWidget* parent, Bindings& bindings) {
  auto* list = new ListView(control, parent);
  auto* model = makeModel(control, *list, bindings);
  list->setModel(model);
  const auto showing = std::make_shared<bool>(false);
  if (auto* several = dynamic_cast<forms::MultiList*>(&control)) {
    bindSeveral(*several, *list, *model, bindings, showing);
    return list;
  }
  const auto select = [&control, list, model, showing] {
    const QModelIndex index = model->index(control.ListIndex);
    QItemSelectionModel& selection = *list->selectionModel();
    *showing = true;
    if (!index.isValid()) {
      selection.clearSelection();
    } else if (list->currentIndex() != index || !selection.isSelected(index)) {
      selection.setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    }
    *showing = false;
  };
  bindings.on(control.itemsChanged, [model, select, showing] {
    // Rows that come and go move the current one: that is no choice of the user.
    *showing = true;
    model->refresh();
    *showing = false;
    select();
  });
  bindings.follow(control.ListIndex, select);
  // What is selected, not what is current: a list that gets the focus makes its first item current,
  // which is no choice of the user either.
  QItemSelectionModel* const selection = list->selectionModel();
  QObject::connect(selection, &QItemSelectionModel::selectionChanged, list,
                   [&control, showing, selection] {
                     if (*showing) return;
                     const QModelIndexList rows = selection->selectedIndexes();
                     control.ListIndex = rows.isEmpty() ? -1 : rows.front().row();
                   });
  QObject::connect(list, &QListView::doubleClicked, list, [&control] { control.DblClick.raise(); });
  return list;
}

QWidget* makeComboBox(forms::ComboBox& control, QWidget* parent, Bindings& bindings) {
  auto* combo = new QComboBox(parent);
  auto* model = new ItemModel(control, combo);
  combo->setModel(model);
  combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  const bool freeText = control.style() == forms::ComboBox::Style::DropDown;
  combo->setEditable(freeText);
  if (freeText) {
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setCompleter(nullptr);  // what is typed is what is meant
    combo->setMinimumContentsLength(kListWidth / 2);
  }
  const auto show = [&control, combo, freeText] {
    combo->setCurrentIndex(control.ListIndex);
    const QString text = toQt(control.Text.get());
    if (freeText && combo->currentText() != text) combo->setEditText(text);
  };
  bindings.on(control.itemsChanged, [model, show] {
    model->refresh();
    show();
  });
  bindings.follow(control.ListIndex, show);
  bindings.follow(control.Text, show);
  QObject::connect(combo, &QComboBox::activated, combo,
                   [&control](int index) { control.ListIndex = index; });
  if (freeText) {
    QObject::connect(combo->lineEdit(), &QLineEdit::textEdited, combo,
                     [&control](const QString& text) { control.Text = fromQt(text); });
  }
  return combo;
}

}  // namespace korvex::qt
