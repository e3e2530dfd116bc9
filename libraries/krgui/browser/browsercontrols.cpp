#include "browser/browsercontrols.h"

#include "browser/browsersplitter.h"
#include "browser/descriptionctrl.h"
#include "browser/errorbutton.h"
#include "browser/propertiesgrid.h"
#include "krgui/genbrowsersearchbar.h"
#include "krgui/propertiesctrl.h"
#include "platform/choicelist.h"
#include "platform/toolbarbutton.h"
#include "res/bitmaps.h"

#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace krgui {

namespace {

constexpr int kVisibilityLabelID = 1086;
constexpr int kVisibilityListID = 1087;
constexpr int kErrorPlaceID = 1088;
constexpr int kSearchLabelID = 1089;
constexpr int kSearchPlaceID = 1090;
constexpr int kPreviousID = 1091;
constexpr int kNextID = 1092;
constexpr int kCloseSearchID = 1093;
constexpr int kResultID = 1094;
constexpr int kGridPlaceID = 1095;
constexpr int kDescriptionPlaceID = 1096;

struct ToolEntry {
  int placeID;
  int bitmapID;
  int disabledBitmapID;
  const char* toolTip;
};
constexpr ToolEntry kTools[] = {
    {1082, kOptionsBitmapID, kDisabledOptionsBitmapID, "Properties"},
    {1083, kExpandBitmapID, kDisabledExpandBitmapID, "Expand"},
    {1084, kCollapseBitmapID, kDisabledCollapseBitmapID, "Collapse"},
    {1085, kRefreshBitmapID, kDisabledRefreshBitmapID, "Refresh"},
};

constexpr int kMargin = 6;
constexpr int kGap = 4;
constexpr int kGroupGap = 12;
constexpr int kToolButtonSide = 24;
constexpr int kLeastListWidth = 40;
constexpr int kFieldWidth = 120;
constexpr int kLeastFieldWidth = 40;
constexpr int kSymbolHeight = 14;
constexpr QLatin1String kSymbolFamily("Segoe UI Symbol");
/// What the result label has room for; more digits are cut.
constexpr QLatin1String kLongResult("Result 10000 of 10000");

/// Fills a place of the template with a control.
template <typename Control>
Control* PutInto(QWidget& aPlace, Control* aControl) {
  auto* layout = new QVBoxLayout(&aPlace);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(aControl);
  return aControl;
}

void Explain(QWidget& aControl, const char* aText) {
  aControl.setToolTip(QLatin1String(aText));
  aControl.setAccessibleName(QLatin1String(aText));
}

/// A tool button's tint changes only when its owner redraws it: when the mouse comes and goes.
class HoverWatch : public QObject {
private:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override {
    if (aEvent->type() == QEvent::Enter || aEvent->type() == QEvent::Leave)
      static_cast<QWidget*>(aWatched)->update();
    return false;
  }
};

void SetGeometry(QWidget& aWidget, const GridRect& aRect) {
  aWidget.setGeometry(aRect.left, aRect.top, aRect.right - aRect.left, aRect.bottom - aRect.top);
}

BandItem MakeSquare(int aSide, int aGap) {
  return {aSide, aSide, aSide, aGap};
}

/// A label that tells what stands behind it is of no use in part.
BandItem MakeLabelItem(const QLabel& aLabel, int aGap) {
  const QSize size = aLabel.sizeHint();
  return {size.width(), 0, size.height(), aGap, false, true};
}

void Place(std::span<QWidget* const> aWidgets, const std::vector<GridRect>& aRects) {
  for (std::size_t index = 0; index < aWidgets.size(); ++index) {
    if (aWidgets[index])
      SetGeometry(*aWidgets[index], aRects[index]);
  }
}

} // namespace

BrowserControls::BrowserControls(QWidget& aDialog, const Lookup& aLookup, GenBrowserWnd& aBrowser,
                                 std::shared_ptr<MessageQueue> aQueue, int& aDescriptionHeight)
    : mDialog(aDialog), mDescriptionHeight(aDescriptionHeight), mHoverWatch(std::make_unique<HoverWatch>()) {
  MakeTools(aLookup);
  MakeSearchRow(aLookup, aBrowser);
  mGridPlace = aLookup(kGridPlaceID);
  mProperties = PutInto(*mGridPlace, new PropertiesCtrl(mGridPlace, std::move(aQueue)));
  mSearchBar->SetProperties(mProperties);
  mDescriptionPlace = aLookup(kDescriptionPlaceID);
  mDescription = PutInto(*mDescriptionPlace, new DescriptionCtrl(mDescriptionPlace));
  mDescription->setTabChangesFocus(true);
  mSplitter = new BrowserSplitter(&aDialog, {[this](int aY) { return IsInSplitterBand(aY, mRows); },
                                             [this](int aY) { MoveBoundary(aY); }, [this] { GetGrid().setFocus(); }});
  OrderTabs();
}

BrowserControls::~BrowserControls() {
  mSplitter->Withdraw();
}

PropertiesGrid& BrowserControls::GetGrid() const {
  return mProperties->GetGrid();
}

void BrowserControls::MakeTools(const Lookup& aLookup) {
  for (std::size_t index = 0; index < mTools.size(); ++index) {
    const ToolEntry& entry = kTools[index];
    mToolPlaces[index] = aLookup(entry.placeID);
    auto* button =
        new ToolBarButton(static_cast<std::uint16_t>(entry.bitmapID), entry.disabledBitmapID, mToolPlaces[index]);
    Explain(*button, entry.toolTip);
    button->installEventFilter(mHoverWatch.get());
    mTools[index] = PutInto(*mToolPlaces[index], button);
  }
  mVisibilityLabel = qobject_cast<QLabel*>(aLookup(kVisibilityLabelID));
  mVisibilityList = qobject_cast<QComboBox*>(aLookup(kVisibilityListID));
  // The rows go with another choice, and with them what was typed into one of them.
  new ChoiceList(*mVisibilityList);
  mVisibilityList->addItems({QStringLiteral("Beginner"), QStringLiteral("Expert"), QStringLiteral("Guru")});
  mErrorPlace = aLookup(kErrorPlaceID);
  mErrorButton = PutInto(*mErrorPlace, new ErrorButton(mErrorPlace));
}

void BrowserControls::MakeSearchRow(const Lookup& aLookup, GenBrowserWnd& aBrowser) {
  mSearchLabel = qobject_cast<QLabel*>(aLookup(kSearchLabelID));
  mSearchPlace = aLookup(kSearchPlaceID);
  mSearchBar = PutInto(*mSearchPlace, new GenBrowserSearchBar(&aBrowser, nullptr, mSearchPlace));
  mSearchLabel->setBuddy(mSearchBar);
  mPreviousButton = qobject_cast<QPushButton*>(aLookup(kPreviousID));
  Explain(*mPreviousButton, "Move to previous occurence");
  mNextButton = qobject_cast<QPushButton*>(aLookup(kNextID));
  Explain(*mNextButton, "Move to next occurence");
  mCloseSearchButton = qobject_cast<QPushButton*>(aLookup(kCloseSearchID));
  Explain(*mCloseSearchButton, "Close search");
  mResultLabel = qobject_cast<QLabel*>(aLookup(kResultID));
}

/// From the tools over the search row to grid and description: controls come in the order in which they are made, which
/// for those of the template is too early. The toolkit confuses the order of those that hand the focus on, so they stay
/// where they are.
void BrowserControls::OrderTabs() {
  QWidget::setTabOrder(mTools.back(), mVisibilityList);
  QWidget* last = mSearchBar->focusProxy();
  for (QPushButton* button : {mPreviousButton, mNextButton, mCloseSearchButton}) {
    QWidget::setTabOrder(last, button);
    last = button;
  }
}

/// Where that font is not installed, the one that texts are in, which finds the arrows and the cross in others.
const QFont& BrowserControls::GetSymbolFont() {
  if (!mSymbolFont) {
    mSymbolFont = mDialog.font();
    mSymbolFont->setFamilies(QStringList(QString(kSymbolFamily)) + mDialog.font().families());
    mSymbolFont->setPixelSize(kSymbolHeight);
    mSymbolFont->setWeight(QFont::Normal);
  }
  return *mSymbolFont;
}

std::vector<QWidget*> BrowserControls::GetSearchControls() const {
  return {mSearchPlace, mPreviousButton, mNextButton, mCloseSearchButton};
}

std::vector<QWidget*> BrowserControls::GetSearchRow() const {
  return {mSearchLabel, mSearchPlace, mPreviousButton, mNextButton, mCloseSearchButton, mResultLabel};
}

BrowserMetrics BrowserControls::GetMetrics() const {
  const int rowHeight =
      std::max({kToolButtonSide, mVisibilityList->sizeHint().height(), mSearchBar->sizeHint().height()});
  return {mSize.width(), mSize.height(), kMargin, rowHeight, mIsSearchRowShown, mDescriptionHeight};
}

void BrowserControls::LayOut(const QSize& aSize) {
  mSize = aSize;
  mRows = LayOutBrowser(GetMetrics());
  LayOutTools(mRows.tools);
  LayOutSearchRow(mRows.search);
  SetGeometry(*mGridPlace, mRows.grid);
  SetGeometry(*mDescriptionPlace, mRows.description);
  mSplitter->Place(mRows.grid.left, mRows.grid.right - mRows.grid.left, mRows.grid.bottom);
  mSplitter->raise();
}

void BrowserControls::LayOutTools(const GridRect& aBand) {
  std::vector<BandItem> items(mTools.size(), MakeSquare(kToolButtonSide, 0));
  const QSize list = mVisibilityList->sizeHint();
  const BandItem label = MakeLabelItem(*mVisibilityLabel, kGroupGap);
  const int others = (static_cast<int>(mTools.size()) + 1) * kToolButtonSide + list.width() + 2 * kGap;
  // The list can be understood without the label, but not when it is cut.
  const bool hasRoom = others + label.width + label.gap <= aBand.right - aBand.left;
  items.push_back(hasRoom ? label : BandItem{.height = label.height});
  items.push_back({list.width(), kLeastListWidth, list.height(), kGap});
  items.push_back({.takesRest = true});
  items.push_back(MakeSquare(kToolButtonSide, kGap));
  std::vector<QWidget*> widgets(mToolPlaces.begin(), mToolPlaces.end());
  widgets.insert(widgets.end(), {mVisibilityLabel, mVisibilityList, nullptr, mErrorPlace});
  Place(widgets, LayOutBand(aBand, items));
}

void BrowserControls::LayOutSearchRow(const GridRect& aBand) {
  const std::vector<QWidget*> row = GetSearchRow();
  for (QWidget* widget : row)
    widget->setVisible(mIsSearchRowShown);
  if (!mIsSearchRowShown)
    return;
  const int side = std::max(kToolButtonSide, mSearchBar->sizeHint().height());
  for (QPushButton* button : {mPreviousButton, mNextButton, mCloseSearchButton})
    button->setFont(GetSymbolFont());
  const int resultWidth = mResultLabel->fontMetrics().horizontalAdvance(kLongResult);
  const BandItem items[] = {
      MakeLabelItem(*mSearchLabel, 0),
      {kFieldWidth, kLeastFieldWidth, mSearchBar->sizeHint().height(), kGap, true},
      MakeSquare(side, kGap),
      MakeSquare(side, 0),
      MakeSquare(side, 0),
      {resultWidth, 0, mResultLabel->sizeHint().height(), kGap},
  };
  Place(row, LayOutBand(aBand, items));
}

void BrowserControls::ShowSearchRow(bool aIsShown) {
  const std::vector<QWidget*> row = GetSearchRow();
  const QWidget* focus = mDialog.window()->focusWidget();
  const bool hadFocus = focus && std::any_of(row.begin(), row.end(), [focus](const QWidget* aWidget) {
                          return aWidget == focus || aWidget->isAncestorOf(focus);
                        });
  mIsSearchRowShown = aIsShown;
  LayOut(mSize);
  if (aIsShown) {
    mSearchBar->setFocus(Qt::ShortcutFocusReason);
    return;
  }
  mSearchBar->SetText({});
  mSearchBar->Search(true);
  if (hadFocus)
    GetGrid().setFocus();
}

void BrowserControls::FocusNextPane() {
  const QWidget* focus = mDialog.window()->focusWidget();
  if (focus && mGridPlace->isAncestorOf(focus))
    mDescription->setFocus(Qt::TabFocusReason);
  else
    GetGrid().setFocus(Qt::TabFocusReason);
}

void BrowserControls::FocusSplitter() {
  mSplitter->setFocus(Qt::ShortcutFocusReason);
}

void BrowserControls::MoveBoundary(int aY) {
  mDescriptionHeight = DragSplitter(aY, GetMetrics());
  LayOut(mSize);
}

} // namespace krgui
