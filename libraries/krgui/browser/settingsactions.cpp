#include "browser/settingsactions.h"

#include "browser/settingscomparisondialog.h"
#include "browser/settingsdialog.h"
#include "browser/settingsfilequestion.h"
#include "frame/progressdialog.h"
#include "frame/questionowner.h"
#include "krgenicam/krgenparameterlist.h"
#include "logic/browser/settingsobstacle.h"
#include "logic/browser/settingsproblem.h"
#include "platform/messagebox.h"
#include "platform/plainline.h"
#include "platform/toqstring.h"

#include <QFileInfo>

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

namespace krgui {

namespace {

constexpr QLatin1String kSaveCaption("Save Features");
constexpr QLatin1String kRestoreCaption("Restore Features");
/// A name or a reason in a message is not longer.
constexpr int kMostLetters = 500;

QString ToText(const KrString& aText) {
  const QString text = ToPlainLine(aText);
  return text.size() > kMostLetters ? text.left(kMostLetters) + QChar(0x2026) : text;
}

QString GetName(const QString& aFile) {
  return QFileInfo(aFile).fileName();
}

/// One action: what it borrows, and whether it may go on.
class SettingsAction {
public:
  SettingsAction(QWidget* aOwner, KrGenParameterArray& aArray, const std::stop_token& aEnd, const QString& aCaption)
      : mOwner(aOwner, aEnd), mArray(aArray), mCaption(aCaption) {}

  bool IsAlive() const { return mOwner.IsAlive(); }

protected:
  QWidget* GetOwner() const { return mOwner.GetWidget(); }
  /// Whether the work came to its end, and neither user nor owner want to end here.
  bool DoInBackground(const QString& aText, const ProgressDialog::Work& aWork) {
    bool isDone = false;
    ProgressDialog dialog(GetOwner(), mCaption, aText);
    const ModalResult result = dialog.Run([&](const KrGenProgress& aProgress) {
      aWork(aProgress);
      isDone = true;
    });
    mIsCancelled = result == ModalResult::Cancel;
    if (result == ModalResult::Gone || !IsAlive())
      return false;
    if (!isDone && !mIsCancelled)
      Tell(ToText(ProgressDialog::MakeUnfinished().GetDescription()), MessageIcon::Stop);
    return (isDone || mIsCancelled) && IsAlive();
  }
  void Tell(const QString& aText, MessageIcon aIcon) { ShowMessage(GetOwner(), aText, mCaption, aIcon); }
  /// Lists problems; whether the user wants to go on, where there is a button for it.
  bool ListProblems(const QString& aHeading, const KrStringList& aProblems, const QString& aAccept = {}) {
    const std::vector<SettingsProblem> problems = PartSettingsProblems(aProblems);
    SettingsDialog dialog(GetOwner(),
                          {.objectName = QStringLiteral("settingsproblems"),
                           .caption = mCaption,
                           .heading = aHeading,
                           .accept = aAccept,
                           .cancel = aAccept.isEmpty() ? QStringLiteral("Close") : QStringLiteral("Cancel")},
                          QStringLiteral("Problems"), {25, 75});
    dialog.SetRows({.count = static_cast<int>(problems.size()),
                    .headings = {QStringLiteral("Feature"), QStringLiteral("Reason")},
                    .getText = [&problems](int aRow, int aColumn) {
                      const SettingsProblem& problem = problems[static_cast<std::size_t>(aRow)];
                      return KrString(aColumn == 0 ? problem.feature : problem.reason);
                    }});
    return dialog.Run() == ModalResult::OK && IsAlive();
  }

  QuestionOwner mOwner;
  KrGenParameterArray& mArray;
  bool mIsCancelled = false; ///< The last work in the background, by the user.

private:
  const QString mCaption;
};

class SaveAction final : public SettingsAction {
public:
  SaveAction(QWidget* aOwner, KrGenParameterArray& aArray, const std::stop_token& aEnd)
      : SettingsAction(aOwner, aArray, aEnd, kSaveCaption) {}

  void Run() {
    const QString file = AskForFileToSave(GetOwner(), ToText(mArray.GetModelName()));
    if (file.isEmpty() || !IsAlive() || !Store() || !MayWrite())
      return;
    KrResult saved = ProgressDialog::MakeUnfinished();
    const auto save = [&](const KrGenProgress&) { saved = mSettings.Save(ToKrString(file)); };
    if (DoInBackground(QStringLiteral("Writing the file..."), save) && !saved.IsOK())
      Tell(QStringLiteral("The features could not be saved. %1").arg(ToText(saved.GetDescription())),
           MessageIcon::Stop);
  }

private:
  bool Store() {
    // What could not be read is among the problems.
    const auto store = [this](const KrGenProgress& aProgress) {
      (void)mArray.StoreSettings(mSettings, mProblems, [&](std::size_t aDone, std::size_t aTotal) {
        mStreamable = aTotal;
        return aProgress(aDone, aTotal);
      });
    };
    return DoInBackground(QStringLiteral("Reading the features of the device..."), store) && !mIsCancelled;
  }

  /// What is missing in the file is told before it takes the place of another one.
  bool MayWrite() {
    const std::size_t count = mSettings.GetCount();
    if (mProblems.IsEmpty() && count == 0) {
      Tell(mStreamable > 0
               ? QStringLiteral("No file was written: none of the features that this device marks as "
                                "streamable can be both read and set at the moment.")
               : QStringLiteral("No file was written: this device marks none of its features as streamable, "
                                "and only such are saved."),
           MessageIcon::Information);
      return false;
    }
    if (mProblems.IsEmpty())
      return true;
    if (count == 0)
      return ListProblems(QStringLiteral("No file was written, as no feature could be taken."), mProblems);
    return ListProblems(QStringLiteral("%1 values were read. What follows will be missing in the file.").arg(count),
                        mProblems, QStringLiteral("Save Anyway"));
  }

  KrGenSettings mSettings;
  KrStringList mProblems;
  std::size_t mStreamable = 0; ///< How many parameters there were to take, in a category or not.
};

std::vector<std::string> ListSelectors(KrGenParameter& aParameter) {
  KrGenParameterList selectors;
  selectors.AddSelectorsOf(aParameter);
  std::vector<std::string> names;
  for (const KrGenParameter* const selector : selectors)
    names.push_back(selector->GetName().ToUtf8());
  return names;
}

class RestoreAction final : public SettingsAction {
public:
  RestoreAction(QWidget* aOwner, KrGenParameterArray& aArray, const std::stop_token& aEnd, bool& aHasWritten)
      : SettingsAction(aOwner, aArray, aEnd, kRestoreCaption), mHasWritten(aHasWritten) {}

  void Run() {
    mFileName = AskForFileToRestore(GetOwner());
    if (mFileName.isEmpty() || !IsAlive() || !Load() || !Compare() || !IsWanted())
      return;
    mHasWritten = true;
    KrStringList problems;
    const auto restore = [&](const KrGenProgress& aProgress) {
      (void)mArray.RestoreSettings(mFile, problems, aProgress); // The problems say all.
    };
    if (DoInBackground(QStringLiteral("Restoring the features of \"%1\"...").arg(GetName(mFileName)), restore) &&
        !problems.IsEmpty())
      (void)ListProblems(mIsCancelled ? QStringLiteral("Restoring was cancelled. What was set by then stays set.")
                                      : QStringLiteral("Not everything is as in the file:"),
                         problems);
  }

private:
  bool Load() {
    KrResult loaded = ProgressDialog::MakeUnfinished();
    const auto load = [&](const KrGenProgress&) { loaded = mFile.Load(ToKrString(mFileName)); };
    if (!DoInBackground(QStringLiteral("Reading the file..."), load) || mIsCancelled)
      return false;
    if (!loaded.IsOK())
      Tell(QStringLiteral("\"%1\" could not be read. %2").arg(GetName(mFileName), ToText(loaded.GetDescription())),
           MessageIcon::Stop);
    else if (mFile.GetCount() == 0)
      Tell(QStringLiteral("There are no features in \"%1\".").arg(GetName(mFileName)), MessageIcon::Information);
    return loaded.IsOK() && mFile.GetCount() > 0 && IsAlive();
  }

  bool Compare() {
    KrResult stored = ProgressDialog::MakeUnfinished();
    const auto compare = [&](const KrGenProgress& aProgress) {
      KrGenSettings present;
      KrStringList problems; // Of what cannot be read the comparison has no value.
      stored = mArray.StoreSettings(present, problems, aProgress);
      if (!(stored == KrResult::Code::Aborted) && !(stored == KrResult::Code::ConnectionLost))
        mDifference = FindDifference(present, aProgress);
    };
    if (!DoInBackground(QStringLiteral("Comparing the device with \"%1\"...").arg(GetName(mFileName)), compare) ||
        mIsCancelled)
      return false;
    const bool isLost = stored == KrResult::Code::Aborted || stored == KrResult::Code::ConnectionLost;
    if (isLost)
      Tell(QStringLiteral("The device could not be compared with the file. %1").arg(ToText(stored.GetDescription())),
           MessageIcon::Stop);
    return !isLost && IsAlive();
  }

  SettingsDifference FindDifference(const KrGenSettings& aPresent, const KrGenProgress& aProgress) {
    const ComparedFeatures features = DescribeFeatures(aPresent, aProgress);
    SettingsDifference difference = CompareSettings(mFile, aPresent, features);
    NoteObstacles(difference, mFile, mArray, features, aProgress);
    return difference;
  }

  /// Of what the device gave no value for it is asked why; the others are not asked once more.
  ComparedFeatures DescribeFeatures(const KrGenSettings& aPresent, const KrGenProgress& aProgress) {
    std::unordered_set<std::string> known;
    for (const KrGenSetting& setting : aPresent.GetSettings())
      known.insert(setting.name.ToUtf8());
    ComparedFeatures features;
    for (const KrGenSetting& setting : mFile.GetSettings()) {
      KrGenParameter* const parameter = mArray.Get(setting.name);
      if (!parameter || features.contains(setting.name.ToUtf8()) || !aProgress(0, 0))
        continue;
      ComparedFeature feature = {.type = parameter->GetType(), .selectors = ListSelectors(*parameter)};
      if (!known.contains(setting.name.ToUtf8())) {
        feature.limit = DescribeLimit(*parameter);
        KrString current;
        if (feature.selectors.empty() && parameter->ToString(current).IsOK())
          feature.current = current;
      }
      features.emplace(setting.name.ToUtf8(), std::move(feature));
    }
    return features;
  }

  static std::string DescribeLimit(KrGenParameter& aParameter) {
    KrString reason;
    const KrResult asked = aParameter.GetAccessReason(reason);
    if (!asked.IsOK())
      return asked.GetDescription().ToUtf8();
    return reason.IsEmpty() ? "It is not among the features that are saved." : reason.ToUtf8();
  }

  bool IsWanted() {
    const bool hasChanges = mDifference.CountChanges() > 0;
    if (!hasChanges && mDifference.Count(ComparedSetting::Kind::NoFeature) == 0) {
      Tell(QStringLiteral("Nothing differs: the device is as \"%1\" has it.").arg(GetName(mFileName)),
           MessageIcon::Information);
      return false;
    }
    SettingsComparisonDialog dialog(GetOwner(), hasChanges ? DescribeFile() : DescribeMissing(), mDifference);
    return dialog.Run() == ModalResult::OK && hasChanges && IsAlive();
  }

  QString DescribeMissing() const {
    const bool hasAny = mDifference.Count(ComparedSetting::Kind::Same) > 0;
    return (hasAny ? QStringLiteral("There is nothing to restore: what this device has of \"%1\" is as in the file.")
                   : QStringLiteral("There is nothing to restore: this device has none of the features in \"%1\"."))
        .arg(GetName(mFileName));
  }

  QString DescribeFile() const {
    const KrString device = mArray.GetVendorName() + " " + mArray.GetModelName();
    QString text = QStringLiteral("\"%1\"").arg(GetName(mFileName));
    if (mFile.GetDevice().IsEmpty())
      return text + QStringLiteral(" would be restored.");
    text += QStringLiteral(" was saved from %1").arg(ToText(mFile.GetDevice()));
    if (mFile.GetDevice() == device)
      return text + QStringLiteral(", as this device is.");
    return text + QStringLiteral(". This device is another: %1.").arg(ToText(device));
  }

  bool& mHasWritten;
  QString mFileName;
  KrGenSettings mFile;
  SettingsDifference mDifference;
};

} // namespace

bool SaveSettings(QWidget* aOwner, KrGenParameterArray& aArray, const std::stop_token& aEnd) {
  SaveAction action(aOwner, aArray, aEnd);
  if (action.IsAlive())
    action.Run();
  return action.IsAlive();
}

bool RestoreSettings(QWidget* aOwner, KrGenParameterArray& aArray, bool& aHasWritten, const std::stop_token& aEnd) {
  aHasWritten = false;
  RestoreAction action(aOwner, aArray, aEnd, aHasWritten);
  if (action.IsAlive())
    action.Run();
  return action.IsAlive();
}

} // namespace krgui
