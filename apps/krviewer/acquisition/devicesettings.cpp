#include "acquisition/devicesettings.h"

#include "krgenicam/krgenparameterarray.h"
#include "krgenicam/krgensettings.h"
#include "window/showntext.h"

#include <QFileDialog>
#include <QFileInfo>

#include <utility>

namespace krviewer {

namespace {

bool IsCutShort(const KrResult& aResult) {
  return aResult == KrResult::Code::Aborted || aResult == KrResult::Code::ConnectionLost;
}

} // namespace

/// Of a work, for both threads in turn.
struct DeviceSettings::Outcome {
  std::shared_ptr<std::atomic<bool>> isToEnd;
  KrStringList problems = {};

  KrGenProgress MakeProgress() const {
    return [end = isToEnd](std::size_t, std::size_t) { return !end->load(); };
  }
};

DeviceSettings::DeviceSettings(QWidget& aPage, Do aDo, Tell aTell)
    : mPage(aPage), mDo(std::move(aDo)), mTell(std::move(aTell)) {}

DeviceSettings::~DeviceSettings() {
  End();
}

void DeviceSettings::End() {
  if (mEnd)
    mEnd->store(true);
  mEnd = nullptr;
}

void DeviceSettings::AskForFile(bool aIsToSave) {
  auto* const dialog = new QFileDialog(&mPage);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowTitle(aIsToSave ? QStringLiteral("Save Device Settings") : QStringLiteral("Load Device Settings"));
  dialog->setAcceptMode(aIsToSave ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog->setFileMode(aIsToSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog->setNameFilters({QStringLiteral("Device settings (*.txt)"), QStringLiteral("All files (*)")});
  if (aIsToSave)
    dialog->setDefaultSuffix(QStringLiteral("txt"));
  connect(dialog, &QFileDialog::fileSelected, this, aIsToSave ? &DeviceSettings::Save : &DeviceSettings::Load);
  dialog->open();
}

void DeviceSettings::Load(const QString& aFile) {
  const auto load = [](KrGenParameterArray& aParameters, const KrString& aName, Outcome& aOutcome) {
    KrGenSettings settings;
    const KrResult read = settings.Load(aName);
    return read.IsOK() ? aParameters.RestoreSettings(settings, aOutcome.problems, aOutcome.MakeProgress()) : read;
  };
  const QString name = QFileInfo(aFile).fileName();
  Run(aFile, load, QStringLiteral("The camera is set as %1 says.").arg(name),
      QStringLiteral("The camera is not set as %1 says:").arg(name));
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
  Run(aFile, save, QStringLiteral("The camera's settings are in %1.").arg(name),
      QStringLiteral("%1 does not have all settings of the camera:").arg(name));
}

// The stream stops for it, as it keeps settings from being changed and read under every selector.
void DeviceSettings::Run(const QString& aFile, Work aWork, const QString& aDone, const QString& aNotDone) {
  if (IsWorking())
    return;
  mEnd = std::make_shared<std::atomic<bool>>(false);
  const auto outcome = std::make_shared<Outcome>(Outcome{mEnd});
  mDo({.run = [aWork, file = KrString(aFile.toUtf8().constData()),
               outcome](KrGenParameterArray& aParameters) { return aWork(aParameters, file, *outcome); },
       .isStreamStopped = true,
       .then =
           [this, outcome, aDone, aNotDone](const KrResult& aResult) {
             if (outcome->isToEnd != mEnd)
               return;
             mEnd = nullptr;
             KrStringList problems = outcome->problems;
             if (!aResult.IsOK() && problems.IsEmpty())
               problems.Add(aResult.GetDescription());
             mTell(aResult.IsOK() ? aDone : aNotDone, problems);
           }});
}

} // namespace krviewer
