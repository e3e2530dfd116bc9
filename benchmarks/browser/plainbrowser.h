#pragma once
// The peer of the feature browser's figures: a tree view over an item model that reads names and values when it is
// asked for data, as the view paints.

#include "krgenicam/krgenparameterarray.h"

#include <QAbstractItemModel>
#include <QTreeView>

#include <memory>
#include <vector>

namespace benchmarks {

/// Categories with the features that are visible to a guru. Thread: user interface. Ownership: borrows the array.
class PlainFeatureModel : public QAbstractItemModel {
public:
  explicit PlainFeatureModel(KrGenParameterArray& aArray);

  QModelIndex index(int aRow, int aColumn, const QModelIndex& aParent = {}) const override;
  QModelIndex parent(const QModelIndex& aIndex) const override;
  int rowCount(const QModelIndex& aParent = {}) const override;
  int columnCount(const QModelIndex& aParent = {}) const override;
  QVariant data(const QModelIndex& aIndex, int aRole) const override;
  Qt::ItemFlags flags(const QModelIndex& aIndex) const override;

private:
  struct Group {
    QString path;
    std::vector<KrGenParameter*> features;
  };

  std::vector<Group> mGroups;
};

/// A view of that model in a window. Thread: user interface.
class PlainBrowser {
public:
  explicit PlainBrowser(QSize aSize);
  ~PlainBrowser();
  PlainBrowser(const PlainBrowser&) = delete;
  PlainBrowser& operator=(const PlainBrowser&) = delete;

  /// Shows an array with all categories open, or none for null.
  void Show(KrGenParameterArray* aArray);
  QTreeView& GetView() { return mView; }
  std::size_t CountFeatures() const;
  /// Reads every value once, as a view that has no cache would.
  void ReadAll();
  /// Finds all features whose name contains a text and selects the first.
  void Search(const QString& aText);

private:
  QTreeView mView;
  std::unique_ptr<PlainFeatureModel> mModel;
};

} // namespace benchmarks
