#include "browser/genbrowserwnd.h"

#include "browser/browsercontrols.h"
#include "browser/descriptionctrl.h"
#include "browser/errorbutton.h"
#include "browser/genbrowseroptionsdlg.h"
#include "browser/propertiesgrid.h"
#include "browser/settingsactions.h"
#include "browser/windowkeys.h"
#include "krbase/krlogger.h"
#include "krgui/genbrowsersearchbar.h"
#include "logic/browser/descriptiontext.h"
#include "platform/applicationend.h"
#include "platform/toolbarbutton.h"
#include "platform/waitcursor.h"
#include "res/menus.h"

#include <QComboBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTimer>

#include <utility>

namespace krgui {

namespace {

constexpr int kInitialDescriptionHeight = 150;
constexpr KrLogSite kFillSite = {"GenBrowserWnd::Fill", "genbrowserwnd"};

void LogFillingFailure(const char* aReason) {
  KrLogger("KrGUILib")
      .Log(KrLogLevel::Error, kFillSite,
           KrString("The features could not be listed (") + aReason +
               "). The window stays empty; choose the visibility or the options again.");
}

/// Paints nothing as long as it lives, whatever is thrown meanwhile.
class PaintingPause {
public:
  explicit PaintingPause(QWidget& aWidget) : mWidget(&aWidget) { aWidget.setUpdatesEnabled(false); }
  ~PaintingPause() {
    if (mWidget)
      mWidget->setUpdatesEnabled(true);
  }
  PaintingPause(const PaintingPause&) = delete;
  PaintingPause& operator=(const PaintingPause&) = delete;

private:
  const QPointer<QWidget> mWidget;
};

} // namespace

GenBrowserWnd::GenBrowserWnd(FeatureFilter aFilter, const RefreshRhythm& aRhythm, int aErrorIntervalMs)
    : TabledWnd(kGenBrowserTraits), mFilter(std::move(aFilter)), mRhythm(aRhythm), mErrorIntervalMs(aErrorIntervalMs),
      mDescriptionHeight(kInitialDescriptionHeight) {}

GenBrowserWnd::~GenBrowserWnd() {
  Dispose();
}

void GenBrowserWnd::SetGenParameterArray(KrGenParameterArray* aArray) {
  if (aArray == mArray)
    return;
  EndSettings();
  mArray = aArray;
  ResetChanged();
  if (mControls)
    Rebuild();
}

KrGenVisibility GenBrowserWnd::GetVisibility() {
  if (mControls) {
    const int selected = mControls->GetVisibilityList().currentIndex();
    mOptions.visibility = selected < 0 ? KrGenVisibility::Beginner : static_cast<KrGenVisibility>(selected);
  }
  return mOptions.visibility;
}

void GenBrowserWnd::SetVisibility(KrGenVisibility aVisibility) {
  mOptions.visibility = aVisibility;
  if (mControls)
    SelectVisibility();
}

/// Without telling anybody: nothing is filled anew by it.
void GenBrowserWnd::SelectVisibility() {
  QComboBox& list = mControls->GetVisibilityList();
  const QSignalBlocker blocker(list);
  const int position = static_cast<int>(mOptions.visibility);
  list.setCurrentIndex(position < list.count() ? position : -1);
}

void GenBrowserWnd::SetRefreshMode(KrGenRefresh aMode) {
  BrowserOptions options = mOptions;
  options.refreshMode = aMode;
  SetOptions(options);
}

void GenBrowserWnd::SetOptions(const BrowserOptions& aOptions) {
  if (aOptions == mOptions)
    return;
  mOptions = aOptions;
  if (mControls)
    Rebuild();
}

bool GenBrowserWnd::HasChanged() const {
  return mControls ? mControls->GetGrid().HasChanged() : mHasChanged;
}

void GenBrowserWnd::ResetChanged() {
  mHasChanged = false;
  if (mControls)
    mControls->GetGrid().SetChanged(false);
}

void GenBrowserWnd::Refresh() {
  if (!mArray)
    return;
  const WaitCursor cursor;
  if (!mControls || mFilling) {
    // There are no rows to be read yet; whatever comes to read them has it from the device.
    if (mArray->GetAccessMode() == KrGenArrayAccess::Open)
      mArray->InvalidateCache();
    return;
  }
  mRefresh->RefreshAll(*mArray, mControls->GetGrid().GetTree());
}

void GenBrowserWnd::LoadOptions(const KrPropertyList& aList) {
  LoadBrowserOptions(aList, mOptions);
  if (mControls) {
    SelectVisibility();
    Rebuild();
  }
}

void GenBrowserWnd::SaveOptions(KrPropertyList& aList) {
  SaveBrowserOptions(mOptions, aList);
}

void GenBrowserWnd::ShowSearchResult(const KrString& aText) {
  if (mControls)
    mControls->GetResultLabel().setText(QString::fromUtf8(aText.CStr()));
}

bool GenBrowserWnd::OnInitDialog() {
  if (GetShowMode() == Mode::Child)
    GetWidget()->setMinimumSize(0, 0);
  else
    GetWidget()->setMinimumSize(kLeastTrackedWidth, kLeastTrackedHeight);
  Wnd::OnInitDialog();
  mControls = std::make_unique<BrowserControls>(
      *GetWidget(), [this](int aID) { return GetControl(aID); }, *this, GetQueue(), mDescriptionHeight);
  mControls->GetGrid().SetChanged(mHasChanged);
  mRefresh = std::make_unique<BrowserRefresh>(RowNotifier(GetQueue()), mRhythm);
  mConnections = std::make_unique<QObject>();
  SelectVisibility();
  WireControls();
  WireKeys();
  mControls->LayOut(GetWidget()->size());
  // A child takes the focus when it is clicked, not from what surrounds it.
  if (GetShowMode() != Mode::Child)
    mControls->GetGrid().setFocus();
  Rebuild();
  return false;
}

void GenBrowserWnd::WireControls() {
  const auto onClick = [this](QAbstractButton& aButton, auto aAction) {
    QObject::connect(&aButton, &QAbstractButton::clicked, mConnections.get(), aAction);
  };
  onClick(mControls->GetOptionsButton(), [this] { CallHandler([this] { ChooseOptions(); }); });
  onClick(mControls->GetExpandButton(), [this] { ShowAll(true); });
  onClick(mControls->GetCollapseButton(), [this] { ShowAll(false); });
  onClick(mControls->GetRefreshButton(), [this] { Refresh(); });
  onClick(mControls->GetPreviousButton(), [this] { mControls->GetSearchBar().MoveToPreviousOccurence(); });
  onClick(mControls->GetNextButton(), [this] { mControls->GetSearchBar().MoveToNextOccurence(); });
  onClick(mControls->GetCloseSearchButton(), [this] { mControls->ShowSearchRow(false); });
  QObject::connect(&mControls->GetVisibilityList(), &QComboBox::currentIndexChanged, mConnections.get(), [this] {
    (void)GetVisibility();
    Rebuild();
  });
  WireDescription();
  mControls->GetGrid().SetSelectionHandler([this] {
    if (!mFilling)
      mDescriptionTimer->start();
  });
  mControls->GetGrid().SetScreenHandler([this] { mRefresh->NoteScreenChange(); });
  mControls->GetGrid().SetContextMenu(
      kGenBrowserMenuID, [this](int aCommandID) { CallHandler([this, aCommandID] { PerformMenu(aCommandID); }); });
  auto* timer = new QTimer(mConnections.get());
  QObject::connect(timer, &QTimer::timeout, mConnections.get(), [this] { mControls->GetErrorButton().LookAgain(); });
  timer->start(mErrorIntervalMs);
}

/// When the input that has come until then is done: its last selection alone asks a device for limits that may be slow,
/// however long a key is held.
void GenBrowserWnd::WireDescription() {
  mDescriptionTimer = new QTimer(mConnections.get());
  mDescriptionTimer->setSingleShot(true);
  QObject::connect(mDescriptionTimer, &QTimer::timeout, mConnections.get(), [this] { UpdateDescription(); });
}

void GenBrowserWnd::WireKeys() {
  mKeys = std::make_unique<WindowKeys>();
  const auto onKey = [this](QKeyCombination aKey, auto aAction) { mKeys->Add({GetWidget(), aKey, aAction}); };
  onKey(Qt::CTRL | Qt::Key_F, [this] { mControls->ShowSearchRow(!mControls->IsSearchRowShown()); });
  onKey(Qt::Key_F6, [this] { mControls->FocusNextPane(); });
  onKey(Qt::Key_F8, [this] { mControls->FocusSplitter(); });
  // Where there is nothing to refresh, the key is the program's.
  mKeys->Add({GetWidget(), Qt::Key_F5, [this] { Refresh(); },
              [this] { return mOptions.refreshMode == KrGenRefresh::Manual; }});
  for (QWidget* control : mControls->GetSearchControls())
    mKeys->Add({control, Qt::Key_Escape, [this] { mControls->ShowSearchRow(false); }});
}

void GenBrowserWnd::OnSize(const QSize& aSize) {
  Wnd::OnSize(aSize);
  if (mControls)
    mControls->LayOut(aSize);
}

bool GenBrowserWnd::OnMessage(const Message& aMessage) {
  // A message box of an editor may outlive this window.
  return (mControls && mControls->GetGrid().HandleMessage(aMessage)) || Wnd::OnMessage(aMessage);
}

void GenBrowserWnd::OnOK() {}

/// Once more whenever the application's filter had asked for it meanwhile.
void GenBrowserWnd::Rebuild() {
  if (mFilling) {
    mFilling->isOutdated = true;
    return;
  }
  const auto filling = std::make_shared<Filling>();
  try {
    do {
      filling->isOutdated = false;
      mFilling = filling;
      // The filter may close or delete this window.
      CallHandler([this, &filling] { Fill(*filling); });
    } while (filling->isOutdated && !filling->isWindowGone);
  } catch (...) {
    // What the toolkit throws leaves a window that can be filled again.
    if (!filling->isWindowGone)
      mFilling.reset();
    throw;
  }
}

void GenBrowserWnd::Fill(Filling& aFilling) {
  PropertiesGrid& grid = mControls->GetGrid();
  {
    const PaintingPause pause(grid);
    TakeRowsAway();
    if (mArray)
      FillGrid(aFilling);
    if (aFilling.isWindowGone)
      return grid.Clear();
  }
  if (aFilling.isOutdated)
    return;
  grid.scrollToTop();
  if (mArray)
    mControls->GetErrorButton().SetSource(ErrorSource{&grid.GetTree().GetFeatures(), {}});
  grid.MarkOnScreen();
  StartRefresh();
  mControls->GetSearchBar().Search(true);
  mFilling.reset();
  UpdateDescription();
  EnableActions();
}

/// Without any row where something is thrown, for want of memory. It is caught inside, as the grid must
/// come to an end of its own.
void GenBrowserWnd::FillGrid(Filling& aFilling) {
  PropertiesGrid& grid = mControls->GetGrid();
  (void)GetVisibility();
  grid.SetVisibility(mOptions.visibility);
  grid.Fill([this, &array = *mArray, &aFilling](BrowserTree& aTree) {
    try {
      // Copies: the filter may delete this window.
      const BrowserOptions options = mOptions;
      const FeatureFilter filter = mFilter;
      FillBrowserTree(array, options, filter, aTree, [&aFilling] { return !aFilling.IsOver(); });
    } catch (const std::exception& error) {
      aTree.Clear();
      LogFillingFailure(error.what());
    } catch (...) {
      aTree.Clear();
      LogFillingFailure("an exception without a text");
    }
  });
}

void GenBrowserWnd::TakeRowsAway() {
  mRefresh->Stop();
  mControls->GetErrorButton().SetSource(std::nullopt);
  mControls->GetGrid().Clear();
}

void GenBrowserWnd::StartRefresh() {
  if (!mArray)
    return;
  // In manual mode everything is read here and now.
  const bool waits = mOptions.refreshMode == KrGenRefresh::Manual;
  const auto cursor = waits ? std::make_unique<WaitCursor>() : nullptr;
  mRefresh->Start(mOptions.refreshMode, *mArray, mControls->GetGrid().GetTree());
}

void GenBrowserWnd::EnableActions() {
  mControls->GetExpandButton().setEnabled(mOptions.isTree);
  mControls->GetCollapseButton().setEnabled(mOptions.isTree);
  mControls->GetRefreshButton().setEnabled(mOptions.refreshMode == KrGenRefresh::Manual);
}

void GenBrowserWnd::UpdateDescription() {
  mDescriptionTimer->stop();
  DescriptionCtrl& description = mControls->GetDescription();
  const PropertiesGrid& grid = mControls->GetGrid();
  const BrowserTree::Item* item = grid.GetTree().Find(grid.GetSelected());
  const PaintingPause pause(description);
  description.Clear();
  if (item && item->node) {
    description.AddTitle(FormatDescriptionTitle(*item->node) + "\n");
    description.AddMarkup(item->node->GetDescription());
  }
}

void GenBrowserWnd::ShowAll(bool aIsOpen) {
  PropertiesGrid& grid = mControls->GetGrid();
  const PaintingPause pause(grid);
  grid.Select(kNoItem);
  if (aIsOpen)
    grid.ExpandAll();
  else
    grid.CollapseAll();
  grid.ShowFirst();
}

void GenBrowserWnd::ChooseOptions() {
  GenBrowserOptionsDlg dialog(mOptions, GetWidget());
  if (dialog.Run() != ModalResult::OK)
    return;
  BrowserOptions options = dialog.GetOptions();
  // What the program set while the dialog was open.
  options.visibility = mOptions.visibility;
  SetOptions(options);
}

void GenBrowserWnd::PerformMenu(int aCommandID) {
  if (!mArray)
    return;
  if (aCommandID == kSaveFeaturesCommandID)
    SaveFeatures();
  else if (aCommandID == kRestoreFeaturesCommandID)
    RestoreFeatures();
}

void GenBrowserWnd::SaveFeatures() {
  // Nothing is done afterwards, whether or not this window still is.
  (void)SaveSettings(GetWidget(), *mArray, mSettingsEnd.get_token());
}

/// What was written counts as changed although the window was closed meanwhile, but not for another array.
void GenBrowserWnd::RestoreFeatures() {
  const std::weak_ptr<const bool> living = mAlive;
  const KrGenParameterArray* array = mArray;
  bool hasWritten = false;
  const bool goesOn = RestoreSettings(GetWidget(), *mArray, hasWritten, mSettingsEnd.get_token());
  if (!hasWritten || living.expired() || mArray != array)
    return;
  mHasChanged = true;
  // The window may have been opened anew meanwhile.
  if (mControls)
    mControls->GetGrid().SetChanged(true);
  if (!goesOn || !mControls)
    return;
  // The nodes hear of what was written; whatever else became different is read now.
  if (mOptions.refreshMode == KrGenRefresh::Manual)
    Refresh();
  else
    mRefresh->WakeUp();
}

void GenBrowserWnd::EndSettings() {
  mSettingsEnd.request_stop();
  mSettingsEnd = std::stop_source();
}

void GenBrowserWnd::OnDestroy() {
  EndSettings();
  mConnections.reset();
  mKeys.reset();
  if (mControls && !ApplicationEnd::IsProcessEnding()) {
    PropertiesGrid& grid = mControls->GetGrid();
    mHasChanged = grid.HasChanged();
    grid.SetSelectionHandler({});
    grid.SetScreenHandler({});
    // Who fills the rows takes them away himself.
    if (!mFilling)
      TakeRowsAway();
  }
  if (mFilling)
    std::exchange(mFilling, nullptr)->isWindowGone = true;
  mRefresh.reset();
  mControls.reset();
  Wnd::OnDestroy();
}

} // namespace krgui
