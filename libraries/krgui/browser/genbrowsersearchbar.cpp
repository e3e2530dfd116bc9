#include "krgui/genbrowsersearchbar.h"

#include "browser/genbrowserwnd.h"
#include "browser/propertiesgrid.h"
#include "browser/searchfield.h"
#include "krgui/propertiesctrl.h"
#include "logic/browser/featuresearch.h"
#include "platform/toqstring.h"

#include <QHBoxLayout>
#include <QPointer>

namespace {

/// As much of a text as is searched for. Half a character is none.
QString LimitText(const QString& aText) {
  QString text = aText.left(GenBrowserSearchBar::BUFFER_SIZE - 1);
  if (text.size() < aText.size() && text.back().isHighSurrogate())
    text.chop(1);
  return text;
}

} // namespace

class GenBrowserSearchBar::Body {
public:
  Body(GenBrowserSearchBar& aBar, krgui::GenBrowserWnd* aBrowser, PropertiesCtrl* aProperties)
      : mBar(aBar), mBrowser(aBrowser), mProperties(aProperties),
        mField(new krgui::SearchField([&aBar] { aBar.MoveToNextOccurence(); }, [this] { SearchEdited(); }, &aBar)) {}

  void Search(bool aForces);
  /// Unless somebody has searched for the text already.
  void SearchEdited() {
    if (mIsModified)
      Search(false);
  }
  void MoveToNext();
  void MoveToPrevious();
  void Repaint();

  GenBrowserSearchBar& mBar;
  krgui::GenBrowserWnd* const mBrowser;
  QPointer<PropertiesCtrl> mProperties;
  krgui::SearchField* const mField;
  bool mIsModified = false; ///< The text was edited since the last search.
  KrString mResultText;

private:
  void Find(const KrString& aLowerCaseText);
  /// Selects the current result and says which it is.
  void ShowCurrent();
  void ShowResultText(const KrString& aText);
  void SetGridSearchText(const KrString& aText);

  QString mText; ///< What was searched for last.
  krgui::FeatureSearch mResults;
};

void GenBrowserSearchBar::Body::Search(bool aForces) {
  if (!mIsModified && !aForces) {
    if (!mField->text().isEmpty())
      MoveToNext();
    return;
  }
  mText = LimitText(mField->text());
  mResults.Clear();
  if (mText.isEmpty()) {
    SetGridSearchText({});
    ShowResultText({});
    Repaint();
    return;
  }
  mIsModified = false;
  Find(krgui::ToLowerCase(krgui::ToKrString(mText)));
}

void GenBrowserSearchBar::Body::Find(const KrString& aLowerCaseText) {
  if (mProperties)
    mResults.Find(mProperties->GetGrid().GetTree().GetFeatures(), aLowerCaseText,
                  mBrowser && mBrowser->ShowsDisplayNames());
  if (mResults.GetCount() > 0) {
    SetGridSearchText(aLowerCaseText);
    ShowCurrent();
    return;
  }
  SetGridSearchText({});
  ShowResultText(krgui::FormatResult(0, 0));
  Repaint();
}

void GenBrowserSearchBar::Body::MoveToNext() {
  if (mText.isEmpty() || mResults.MoveToNext() == krgui::kNoItem)
    return;
  ShowCurrent();
}

void GenBrowserSearchBar::Body::MoveToPrevious() {
  if (mText.isEmpty() || mResults.MoveToPrevious() == krgui::kNoItem)
    return;
  ShowCurrent();
}

void GenBrowserSearchBar::Body::ShowCurrent() {
  ShowResultText(krgui::FormatResult(mResults.GetPosition(), mResults.GetCount()));
  if (!mProperties)
    return;
  krgui::PropertiesGrid& grid = mProperties->GetGrid();
  // Rows may have gone since the search.
  if (grid.GetTree().Find(mResults.GetCurrent()) == nullptr)
    return;
  // Who hears of the selection may end grid and field.
  const QPointer<GenBrowserSearchBar> bar(&mBar);
  grid.Select(mResults.GetCurrent());
  if (bar)
    Repaint();
}

void GenBrowserSearchBar::Body::ShowResultText(const KrString& aText) {
  mResultText = aText;
  if (mBrowser)
    mBrowser->ShowSearchResult(aText);
}

void GenBrowserSearchBar::Body::SetGridSearchText(const KrString& aText) {
  if (mProperties)
    mProperties->GetGrid().SetSearchText(aText);
}

void GenBrowserSearchBar::Body::Repaint() {
  if (mProperties)
    mProperties->GetGrid().viewport()->repaint();
}

GenBrowserSearchBar::GenBrowserSearchBar(krgui::GenBrowserWnd* aBrowser, PropertiesCtrl* aProperties, QWidget* aParent)
    : QWidget(aParent), mBody(std::make_unique<Body>(*this, aBrowser, aProperties)) {
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(mBody->mField);
  mBody->mField->setAccessibleName(QStringLiteral("Search"));
  setFocusProxy(mBody->mField);
  connect(mBody->mField, &QLineEdit::textChanged, this, [this] { mBody->mIsModified = true; });
}

GenBrowserSearchBar::~GenBrowserSearchBar() {
  // A field that ends must not search any more, so it ends first.
  delete mBody->mField;
}

void GenBrowserSearchBar::SetProperties(PropertiesCtrl* aProperties) {
  mBody->mProperties = aProperties;
}

void GenBrowserSearchBar::Search(bool aForces) {
  mBody->Search(aForces);
}

void GenBrowserSearchBar::MoveToNextOccurence() {
  mBody->MoveToNext();
}

void GenBrowserSearchBar::MoveToPreviousOccurence() {
  mBody->MoveToPrevious();
}

void GenBrowserSearchBar::Update() {
  mBody->Repaint();
}

KrString GenBrowserSearchBar::GetText() const {
  return krgui::ToKrString(mBody->mField->text());
}

void GenBrowserSearchBar::SetText(const KrString& aText) {
  mBody->mField->setText(krgui::ToQString(aText));
  mBody->mField->TellEdit();
}

KrString GenBrowserSearchBar::GetResultText() const {
  return mBody->mResultText;
}
