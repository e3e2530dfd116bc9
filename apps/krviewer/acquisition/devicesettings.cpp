#include "acquisition/devicesettings.h"

#include "filedialogs.h"
#include "krgenicam/krgenparameterarray.h"
#include "krgenicam/krgensettings.h"
#include "settingsorigin.h"
#include "window/showntext.h"

#include <QFileDialog>
#include <QFileInfo>

#include <atomic>
#include <utility>

namespace krviewer {

namespace {

bool IsCutShort(const KrResult& aResult) {
  return aResult == KrResult::Code::Aborted || aResult == KrResult::Code::ConnectionLost;
}

KrStringList Prepend(const KrString& aText, const KrStringList& aTexts) {
  KrStringList texts;
  texts.Add(aText);
  for (const KrString& text : aTexts)
    texts.Add(text);
  return texts;
}

FileQuestion MakeQuestion(const QString& aTitle) {
  return {.title = aTitle, .filter = QStringLiteral("Device settings (*.txt)"), .suffix = QStringLiteral("txt")};
}

} // namespace

/// Of a work, for both threads at once.
struct DeviceSettings::Control {
  std::atomic<bool> isToEnd = false;
  std::atomic<int> percent = 0;
};

/// Of a work, for both threads in turn.
struct DeviceSettings::Outcome {
  std::shared_ptr<Control> control;
  KrStringList problems = {};

  KrGenProgress MakeProgress() const {
    return [control = control](std::size_t aDone, std::size_t aTotal) {
      control->percent = aTotal == 0 ? 0 : static_cast<int>(100 * aDone / aTotal);
      return !control->isToEnd;
    };
  }
};

DeviceSettings::DeviceSettings(QWidget& aPage, Do aDo, Announce aAnnounce, Tell aTell)
    : mPage(aPage), mDo(std::move(aDo)), mAnnounce(std::move(aAnnounce)), mTell(std::move(aTell)) {}

DeviceSettings::~DeviceSettings() {
  End();
}

QString DeviceSettings::GetProgressText() const {
  const int percent = mControl ? mControl->percent.load() : 0;
  // At once, as the file's name may have the look of a place for the number.
  return percent == 0 ? mDoing : QStringLiteral("%1 %2 % are done.").arg(mDoing, QString::number(percent));
}

void DeviceSettings::Cancel() {
  if (mControl)
    mControl->isToEnd = true;
}

void DeviceSettings::End() {
  Cancel();
  mControl = nullptr;
}

void DeviceSettings::AskForLoading() {
  connect(&OpenLoadDialog(mPage, MakeQuestion(QStringLiteral("Load Device Settings"))), &QFileDialog::fileSelected,
          this, &DeviceSettings::Load);
}

void DeviceSettings::AskForSaving() {
  connect(&OpenSaveDialog(mPage, MakeQuestion(QStringLiteral("Save Device Settings"))), &QFileDialog::fileSelected,
          this, &DeviceSettings::Save);
}

void DeviceSettings::Load(const QString& aFile) {
  const auto load = [](KrGenParameterArray& aParameters, const KrString& aName, Outcome& aOutcome) {
    KrGenSettings settings;
    if (KrResult read = settings.Load(aName); !read.IsOK())
      return read;
    const KrResult restored = aParameters.RestoreSettings(settings, aOutcome.problems, aOutcome.MakeProgress());
    // Why many of them do not fit comes first; where all of them do, the model is nobody's concern.
    const std::string otherModel = krapps::DescribeOtherModel(settings, aParameters);
    if (!otherModel.empty() && !aOutcome.problems.IsEmpty())
      aOutcome.problems = Prepend(otherModel, aOutcome.problems);
    return restored;
  };
  const QString name = QFileInfo(aFile).fileName();
  Run(aFile, load,
      {QStringLiteral("The camera is being set as %1 says; its stream is stopped meanwhile.").arg(name),
       QStringLiteral("The camera is set as %1 says.").arg(name),
       QStringLiteral("The camera is not set as %1 says:").arg(name)});
}

// What could be read of a camera that answers is in the file in any case.
void DeviceSettings::Save(const QString& aFile) {
  const auto save = [](KrGenParameterArray& aParameters, const KrString& aName, Outcome& aOutcome) {
    KrGenSettings settings;
    const KrResult stored = aParameters.StoreSettings(settings, aOutcome.problems, aOutcome.MakeProgress());
    if (IsCutShort(stored)) {
      aOutcome.problems = {};
      return stored;
    }
    const KrResult saved = settings.Save(aName);
    return saved.IsOK() ? stored : saved;
  };
  const QString name = QFileInfo(aFile).fileName();
  Run(aFile, save,
      {QStringLiteral("The camera's settings are being saved to %1; its stream is stopped meanwhile.").arg(name),
       QStringLiteral("The camera's settings are in %1.").arg(name),
       QStringLiteral("%1 does not have all settings of the camera:").arg(name)});
}

// The stream stops for it, as it keeps settings from being changed and read under every selector.
void DeviceSettings::Run(const QString& aFile, Work aWork, const Words& aWords) {
  if (IsWorking())
    return;
  mControl = std::make_shared<Control>();
  mDoing = aWords.doing;
  const auto outcome = std::make_shared<Outcome>(Outcome{mControl});
  mAnnounce(mDoing);
  mDo({.run = [aWork, file = KrString(aFile.toUtf8().constData()),
               outcome](KrGenParameterArray& aParameters) { return aWork(aParameters, file, *outcome); },
       .isStreamStopped = true,
       .then =
           [this, outcome, aWords](const KrResult& aResult) {
             if (outcome->control != mControl)
               return;
             mControl = nullptr;
             KrStringList problems = outcome->problems;
             if (!aResult.IsOK() && problems.IsEmpty())
               problems.Add(aResult.GetDescription());
             mTell(aResult.IsOK() ? aWords.done : aWords.notDone, problems);
           }});
}

} // namespace krviewer
