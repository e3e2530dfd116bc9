#include "browser/settingscomparisondialog.h"

#include <QCheckBox>
#include <QHBoxLayout>

namespace krgui {

namespace {

using Kind = ComparedSetting::Kind;

struct Column {
  const char* heading;
  int share;
  KrString ComparedSetting::*text;
};

constexpr Column kColumns[] = {
    {"Feature", 25, &ComparedSetting::name},
    {"Selected by", 17, &ComparedSetting::positions},
    {"On the device", 15, &ComparedSetting::present},
    {"In the file", 15, &ComparedSetting::wanted},
    {"Note", 28, &ComparedSetting::note},
};

std::vector<int> GetShares() {
  std::vector<int> shares;
  for (const Column& column : kColumns)
    shares.push_back(column.share);
  return shares;
}

QStringList GetHeadings() {
  QStringList headings;
  for (const Column& column : kColumns)
    headings.append(QString::fromLatin1(column.heading));
  return headings;
}

// Without changes there is nothing to go on with.
SettingsDialogTexts MakeTexts(const QString& aHeading, const SettingsDifference& aDifference) {
  const bool hasChanges = aDifference.CountChanges() > 0;
  return {.objectName = QStringLiteral("settingscomparison"),
          .caption = QStringLiteral("Restore Features"),
          .heading = aHeading + QLatin1Char('\n') + QString::fromStdString(aDifference.Summarize()),
          .accept = hasChanges ? QStringLiteral("Restore") : QString(),
          .cancel = hasChanges ? QStringLiteral("Cancel") : QStringLiteral("Close")};
}

} // namespace

SettingsComparisonDialog::SettingsComparisonDialog(QWidget* aOwner, const QString& aHeading,
                                                   const SettingsDifference& aDifference)
    : SettingsDialog(aOwner, MakeTexts(aHeading, aDifference), QStringLiteral("Settings that differ"), GetShares()),
      mDifference(aDifference) {
  auto* showsAll = new QCheckBox(QStringLiteral("Show &all"), GetDialog());
  showsAll->setToolTip(QStringLiteral("Also the settings that are as in the file"));
  GetButtonRow().insertWidget(0, showsAll);
  QObject::connect(showsAll, &QCheckBox::toggled, GetDialog(), [this](bool aIsOn) { ShowRows(aIsOn); });
  ShowRows(false);
}

void SettingsComparisonDialog::ShowRows(bool aShowsAll) {
  mShown.clear();
  for (std::size_t i = 0; i < mDifference.settings.size(); ++i) {
    if (aShowsAll || mDifference.settings[i].kind != Kind::Same)
      mShown.push_back(i);
  }
  const auto find = [this](int aRow) { return mShown[static_cast<std::size_t>(aRow)]; };
  SetRows({.count = static_cast<int>(mShown.size()),
           .headings = GetHeadings(),
           .getText = [this, find](int aRow, int aColumn) { return GetText(find(aRow), aColumn); },
           .isFaint =
               [this, find](int aRow) {
                 const Kind kind = mDifference.settings[find(aRow)].kind;
                 return kind == Kind::Same || kind == Kind::NoFeature;
               }});
}

KrString SettingsComparisonDialog::GetText(std::size_t aRow, int aColumn) const {
  return mDifference.settings[aRow].*kColumns[aColumn].text;
}

} // namespace krgui
