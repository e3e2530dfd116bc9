#include "browser/genbrowseroptionsdlg.h"

#include "res/templates.h"

#include <QComboBox>

namespace krgui {

namespace {

constexpr int kNamesID = 1141;
constexpr int kViewLabelID = 1142;
constexpr int kViewID = 1143;
constexpr int kRefreshID = 1144;

// The positions in the lists; those of the refresh modes are their numbers.
constexpr int kFeatureNames = 0;
constexpr int kDisplayNames = 1;
constexpr int kTree = 0;
constexpr int kAlphabeticalList = 1;

void Fill(QComboBox& aList, const QStringList& aTexts, int aSelected) {
  aList.addItems(aTexts);
  aList.setCurrentIndex(aSelected);
}

} // namespace

GenBrowserOptionsDlg::GenBrowserOptionsDlg(const BrowserOptions& aOptions, QWidget* aOwner)
    : ModalDialog(kBrowserOptionsTemplateID, aOwner), mOptions(aOptions) {}

GenBrowserOptionsDlg::~GenBrowserOptionsDlg() = default;

bool GenBrowserOptionsDlg::OnInitDialog() {
  auto& names = *GetControl<QComboBox>(kNamesID);
  Fill(names, {QStringLiteral("Feature names"), QStringLiteral("Display names")},
       mOptions.showsDisplayNames ? kDisplayNames : kFeatureNames);
  Fill(*GetControl<QComboBox>(kViewID), {QStringLiteral("Tree"), QStringLiteral("Alphabetical list")},
       mOptions.isTree ? kTree : kAlphabeticalList);
  Fill(*GetControl<QComboBox>(kRefreshID),
       {QStringLiteral("Polling"), QStringLiteral("Automatic"), QStringLiteral("Manual")},
       static_cast<int>(mOptions.refreshMode));
  EnableView();
  QObject::connect(&names, &QComboBox::currentIndexChanged, GetDialog(), [this](int aPosition) {
    if (aPosition == kDisplayNames)
      GetControl<QComboBox>(kViewID)->setCurrentIndex(kTree);
    EnableView();
  });
  return true;
}

/// The alphabetical list goes with feature names alone.
void GenBrowserOptionsDlg::EnableView() {
  const bool isOffered = GetControl<QComboBox>(kNamesID)->currentIndex() == kFeatureNames;
  GetControl<QWidget>(kViewID)->setEnabled(isOffered);
  GetControl<QWidget>(kViewLabelID)->setEnabled(isOffered);
}

void GenBrowserOptionsDlg::OnOK() {
  mOptions.showsDisplayNames = GetControl<QComboBox>(kNamesID)->currentIndex() == kDisplayNames;
  mOptions.isTree = GetControl<QComboBox>(kViewID)->currentIndex() == kTree;
  // An unknown mode has no position; it stays.
  if (const int refresh = GetControl<QComboBox>(kRefreshID)->currentIndex(); refresh >= 0)
    mOptions.refreshMode = static_cast<KrGenRefresh>(refresh);
  EndDialog(ModalResult::OK);
}

} // namespace krgui
