// Pictures of drives before the items of a list, and labels that show the colors of a console.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QListView>

#include "qt/form_view.h"

namespace korvex::test {
namespace {

using forms::ItemPicture;

class PictureForm : public forms::Form {
 public:
  PictureForm() : Form("frmPictures", "Pictures") {
    lstDrives.AddItem("A:", ItemPicture::Floppy);
    lstDrives.AddItem("B:");
    lstDrives.AddItem("C:", ItemPicture::HardDisk);
    layout = forms::Layout::column({forms::Layout::of(lblDrives), forms::Layout::of(lstDrives),
                                    forms::Layout::of(cboEmpty), forms::Layout::of(lblSample)});
  }
  forms::CheckList lstDrives{*this, "lstDrives"};
  forms::Label lblDrives{*this, "lblDrives", "&Drives:", &lstDrives};
  forms::ComboBox cboEmpty{*this, "cboEmpty", forms::ComboBox::Style::DropDown};
  forms::Label lblSample{*this, "lblSample", "C:\\>"};
};

struct DriveList : ::testing::Test {
  PictureForm form;
  qt::FormView view{form};
  QListView& list = dynamic_cast<QListView&>(*view.widgetOf(form.lstDrives));

  QVariant shown(int row, int role) const { return list.model()->index(row, 0).data(role); }
  bool hasPicture(int row) const {
    const QImage image = shown(row, Qt::DecorationRole).value<QIcon>().pixmap(16).toImage();
    return !image.isNull() && image.pixelColor(8, 8).alpha() > 0;
  }
};

TEST_F(DriveList, PicturesStayWithTheirItemsAndAreTold) {
  EXPECT_TRUE(hasPicture(0));
  EXPECT_FALSE(hasPicture(1));
  EXPECT_EQ(shown(2, Qt::AccessibleTextRole).toString(), "C:, hard disk");
  EXPECT_EQ(shown(2, Qt::DisplayRole).toString(), "C:");
  form.lstDrives.RemoveItem(0);
  EXPECT_FALSE(hasPicture(0));
  EXPECT_TRUE(hasPicture(1));
  form.lstDrives.Clear();
  form.lstDrives.AddItem("X:");
  EXPECT_FALSE(hasPicture(0) || shown(0, Qt::DecorationRole).isValid());
  // A combo box that shows none of its items asks for item -1.
  EXPECT_FALSE(dynamic_cast<QComboBox&>(*view.widgetOf(form.cboEmpty))
                   .itemData(-1, Qt::DecorationRole)
                   .isValid());
}

TEST_F(DriveList, ALabelTakesTheColorsOfWindows) {
  auto& label = dynamic_cast<QLabel&>(*view.widgetOf(form.lblSample));
  EXPECT_FALSE(label.autoFillBackground());
  form.lblSample.BackColor = 0x800000;  // blue
  form.lblSample.ForeColor = 0x00FFFF;  // yellow
  EXPECT_TRUE(label.autoFillBackground());
  view.showInPlace();
  QApplication::processEvents();
  const QImage image = label.grab().toImage();
  EXPECT_EQ(image.pixelColor(image.width() - 2, 2), QColor(0, 0, 128));
  EXPECT_EQ(label.palette().color(label.foregroundRole()), QColor(255, 255, 0));
}

}  // namespace
}  // namespace korvex::test
