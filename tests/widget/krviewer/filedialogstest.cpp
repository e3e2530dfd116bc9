// The questions for a file to load and to save: what their dialogs let through, and that they leave nothing behind.

#include "filedialogs.h"

#include "temporaryfolder.h"
#include "windowwait.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QPointer>

#include <gtest/gtest.h>

#include <memory>

namespace {

const krviewer::FileQuestion kQuestion = {
    .title = "Tables", .filter = "Tables (*.csv)", .suffix = "csv", .name = "proposed.csv"};

class FileDialogs : public testing::Test {
protected:
  void SetUp() override { TemporaryFolder::WriteFile(mFolder.GetFile("there.csv"), "1;2\n"); }

  /// Types a name in the folder and accepts it; gives what comes of it, empty for nothing.
  QString Enter(QFileDialog& aDialog, const char* aName) {
    QString chosen;
    QObject::connect(&aDialog, &QFileDialog::fileSelected, [&chosen](const QString& aFile) { chosen = aFile; });
    aDialog.findChild<QLineEdit*>("fileNameEdit")->setText(GetPath(aName));
    QMetaObject::invokeMethod(&aDialog, "accept");
    return chosen;
  }
  QString GetPath(const char* aName) const { return QString::fromStdString(mFolder.GetFile(aName)); }

  const TemporaryFolder mFolder;
  QWidget mParent;
};

TEST_F(FileDialogs, load_ofAFileThatIsThere_bringsItAndEndsTheDialog) {
  const QPointer<QFileDialog> dialog = &krviewer::OpenLoadDialog(mParent, kQuestion);
  EXPECT_EQ(dialog->windowTitle(), "Tables");
  EXPECT_EQ(dialog->nameFilters(), QStringList({"Tables (*.csv)", "All files (*)"}));

  EXPECT_EQ(Enter(*dialog, "there.csv"), GetPath("there.csv"));

  EXPECT_TRUE(krtest::AwaitCondition([&] { return dialog.isNull(); }));
}

TEST_F(FileDialogs, save_ofANameWithoutASuffix_appendsIt) {
  QFileDialog& dialog = krviewer::OpenSaveDialog(mParent, kQuestion);
  EXPECT_TRUE(dialog.findChild<QLineEdit*>("fileNameEdit")->text().endsWith("proposed.csv"));

  EXPECT_EQ(Enter(dialog, "new"), GetPath("new.csv"));
}

TEST_F(FileDialogs, parentThatEnds_takesTheDialogAlong) {
  auto parent = std::make_unique<QWidget>();
  const QPointer<QFileDialog> dialog = &krviewer::OpenSaveDialog(*parent, kQuestion);

  parent.reset();

  EXPECT_TRUE(dialog.isNull());
}

} // namespace
