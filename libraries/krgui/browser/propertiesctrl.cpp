#include "krgui/propertiesctrl.h"

#include "browser/propertiesgrid.h"
#include "logic/browser/featuresearch.h"

#include <QVBoxLayout>

#include <utility>

PropertiesCtrl::PropertiesCtrl(QWidget* aParent) : PropertiesCtrl(aParent, nullptr) {}

PropertiesCtrl::PropertiesCtrl(QWidget* aParent, std::shared_ptr<krgui::MessageQueue> aQueue)
    : QWidget(aParent), mGrid(new krgui::PropertiesGrid(this, std::move(aQueue))) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->addWidget(mGrid);
  setFocusProxy(mGrid);
}

PropertiesCtrl::~PropertiesCtrl() = default;

std::uint64_t PropertiesCtrl::AppendCategory(std::uint64_t aParent, const KrString& aName, KrGenCategory& aCategory) {
  return mGrid->Append(aParent,
                       [&](krgui::BrowserTree& aTree) { return aTree.AppendCategory(aParent, aName, aCategory); });
}

std::uint64_t PropertiesCtrl::AppendFeature(std::uint64_t aParent, const KrString& aName, KrGenParameter& aParameter) {
  return mGrid->Append(aParent,
                       [&](krgui::BrowserTree& aTree) { return aTree.AppendFeature(aParent, aName, aParameter); });
}

void PropertiesCtrl::Clear() {
  mGrid->Clear();
}

void PropertiesCtrl::Refresh() {
  for (const auto& node : mGrid->GetTree().GetFeatures()) {
    node->Refresh();
    (void)mGrid->GetQueue()->PostOnce({krgui::kRowChangedMessage, node->GetItem(), 0});
  }
}

void PropertiesCtrl::SetShowsDisplayNames(bool aShowsDisplayNames) {
  mGrid->SetShowsDisplayNames(aShowsDisplayNames);
}

void PropertiesCtrl::SetSearchText(const KrString& aText) {
  mGrid->SetSearchText(krgui::ToLowerCase(aText));
  mGrid->Repaint();
}

void PropertiesCtrl::SetVisibility(KrGenVisibility aVisibility) {
  mGrid->SetVisibility(aVisibility);
}

std::uint64_t PropertiesCtrl::GetSelected() const {
  return mGrid->GetSelected();
}

void PropertiesCtrl::Select(std::uint64_t aRow) {
  mGrid->Select(aRow);
}

KrGenParameter* PropertiesCtrl::GetParameter(std::uint64_t aRow) const {
  const krgui::TreeItemData* node = mGrid->GetTree().FindFeature(aRow);
  return node != nullptr ? node->GetParameter() : nullptr;
}

KrString PropertiesCtrl::GetDescription(std::uint64_t aRow) const {
  const krgui::BrowserTree::Item* item = mGrid->GetTree().Find(aRow);
  return item != nullptr && item->node != nullptr ? item->node->GetDescription() : KrString();
}

void PropertiesCtrl::SetSelectionHandler(std::function<void()> aHandler) {
  mGrid->SetSelectionHandler(std::move(aHandler));
}

bool PropertiesCtrl::HasChanged() const {
  return mGrid->HasChanged();
}

void PropertiesCtrl::ResetChanged() {
  mGrid->SetChanged(false);
}
