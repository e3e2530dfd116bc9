#include "plainbrowser.h"

#include <algorithm>

namespace benchmarks {

namespace {

QString ToText(const KrString& aText) {
  return QString::fromUtf8(aText.CStr());
}

QString ReadValue(KrGenParameter& aFeature) {
  KrString text;
  const KrResult read = aFeature.ToString(text);
  return ToText(read.IsOK() ? text : read.GetDescription());
}

} // namespace

PlainFeatureModel::PlainFeatureModel(KrGenParameterArray& aArray) {
  for (std::size_t index = 0; index < aArray.GetCount(); ++index) {
    KrGenParameter& feature = *aArray[index];
    if (!feature.IsVisible(KrGenVisibility::Guru))
      continue;
    const QString path = ToText(feature.GetCategory());
    // Features of a category follow each other.
    if (mGroups.empty() || mGroups.back().path != path)
      mGroups.push_back({path, {}});
    mGroups.back().features.push_back(&feature);
  }
}

// The internal number is the group's and one, 0 for the groups themselves.
QModelIndex PlainFeatureModel::index(int aRow, int aColumn, const QModelIndex& aParent) const {
  if (!hasIndex(aRow, aColumn, aParent))
    return {};
  return createIndex(aRow, aColumn, aParent.isValid() ? static_cast<quintptr>(aParent.row()) + 1 : 0);
}

QModelIndex PlainFeatureModel::parent(const QModelIndex& aIndex) const {
  return aIndex.internalId() == 0 ? QModelIndex()
                                  : createIndex(static_cast<int>(aIndex.internalId() - 1), 0, quintptr{0});
}

int PlainFeatureModel::rowCount(const QModelIndex& aParent) const {
  if (!aParent.isValid())
    return static_cast<int>(mGroups.size());
  return aParent.internalId() == 0 ? static_cast<int>(mGroups[static_cast<std::size_t>(aParent.row())].features.size())
                                   : 0;
}

int PlainFeatureModel::columnCount(const QModelIndex&) const {
  return 2;
}

QVariant PlainFeatureModel::data(const QModelIndex& aIndex, int aRole) const {
  if (aRole != Qt::DisplayRole)
    return {};
  if (aIndex.internalId() == 0)
    return aIndex.column() == 0 ? QVariant(mGroups[static_cast<std::size_t>(aIndex.row())].path) : QVariant();
  KrGenParameter& feature = *mGroups[aIndex.internalId() - 1].features[static_cast<std::size_t>(aIndex.row())];
  return aIndex.column() == 0 ? ToText(feature.GetName()) : ReadValue(feature);
}

// Else the view remembers each feature as open, too, and takes minutes to forget thousands of them.
Qt::ItemFlags PlainFeatureModel::flags(const QModelIndex& aIndex) const {
  const Qt::ItemFlags flags = QAbstractItemModel::flags(aIndex);
  return aIndex.internalId() == 0 ? flags : flags | Qt::ItemNeverHasChildren;
}

PlainBrowser::PlainBrowser(QSize aSize) {
  mView.setHeaderHidden(true);
  mView.setUniformRowHeights(true);
  mView.resize(aSize);
  mView.show();
}

PlainBrowser::~PlainBrowser() {
  Show(nullptr);
}

void PlainBrowser::Show(KrGenParameterArray* aArray) {
  mView.setModel(nullptr);
  mModel = aArray ? std::make_unique<PlainFeatureModel>(*aArray) : nullptr;
  if (!mModel)
    return;
  mView.setModel(mModel.get());
  mView.expandAll();
}

std::size_t PlainBrowser::CountFeatures() const {
  std::size_t count = 0;
  for (int group = 0; group < mModel->rowCount(); ++group)
    count += static_cast<std::size_t>(mModel->rowCount(mModel->index(group, 0)));
  return count;
}

void PlainBrowser::ReadAll() {
  for (int group = 0; group < mModel->rowCount(); ++group) {
    const QModelIndex parent = mModel->index(group, 0);
    for (int row = 0; row < mModel->rowCount(parent); ++row)
      static_cast<void>(mModel->index(row, 1, parent).data());
  }
}

void PlainBrowser::Search(const QString& aText) {
  const QModelIndexList found =
      mModel->match(mModel->index(0, 0), Qt::DisplayRole, aText, -1, Qt::MatchContains | Qt::MatchRecursive);
  if (!found.isEmpty())
    mView.setCurrentIndex(found.first());
}

} // namespace benchmarks
