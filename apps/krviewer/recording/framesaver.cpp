#include "recording/framesaver.h"

#include "recording/filenames.h"
#include "recording/savingfolder.h"
#include "recording/savingstate.h"
#include "window/failurebox.h"
#include "window/showntext.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>

#include <array>
#include <chrono>
#include <utility>

namespace krviewer {

namespace {

constexpr std::chrono::milliseconds kLookInterval{50};

struct FormatRow {
  krapps::FrameFileFormat format;
  const char* filter;
  const char* suffix;
};

constexpr std::array kFormats = {
    FormatRow{krapps::FrameFileFormat::TIFF, QT_TRANSLATE_NOOP("FrameSaver", "TIFF, with all bits (*.tif *.tiff)"),
              "tif"},
    FormatRow{krapps::FrameFileFormat::PNG, QT_TRANSLATE_NOOP("FrameSaver", "PNG, as shown (*.png)"), "png"},
    FormatRow{krapps::FrameFileFormat::Raw, QT_TRANSLATE_NOOP("FrameSaver", "Raw, with a text beside it (*.raw)"),
              "raw"},
};

int FindRow(krapps::FrameFileFormat aFormat) {
  for (std::size_t row = 0; row < kFormats.size(); ++row)
    if (kFormats[row].format == aFormat)
      return static_cast<int>(row);
  return 0;
}

QStringList ListFilters() {
  QStringList filters;
  for (const FormatRow& row : kFormats)
    filters << FrameSaver::tr(row.filter);
  return filters;
}

/// Whether a file has an extension that would promise what is not in it.
bool NamesOtherFormat(const QString& aFile) {
  return !QFileInfo(aFile).suffix().isEmpty() && !krapps::FindFrameFileFormatOf(aFile.toStdString());
}

KrResult MakeFormatFailure(const QString& aFile) {
  return {KrResult::Code::InvalidInput, "The frame was not saved as " + QFileInfo(aFile).fileName().toStdString() +
                                            ": its ending is none of a format that can be written. These can: " +
                                            krapps::ListFrameFileFormats() + "."};
}

} // namespace

FrameSaver::FrameSaver(const NewestFrame& aFrames, const QString& aCamera, const KrString& aDeviceID)
    : mFrames(aFrames), mCamera(aCamera), mDeviceID(aDeviceID), mFolder(FindFolder(QStandardPaths::PicturesLocation)) {
  connect(&mTimer, &QTimer::timeout, this, &FrameSaver::Follow);
}

FrameSaver::~FrameSaver() {
  End();
  AwaitWritten();
}

void FrameSaver::End() {
  mIsEnded = true;
  delete mDialog;
}

void FrameSaver::AwaitWritten() {
  while (IsBusy()) {
    mCall.Await();
    mCall.Follow();
  }
}

void FrameSaver::Leave() {
  Follow();
  if (!IsBusy())
    return;
  mCall.Leave();
  mTimer.stop();
  mJobs.push_front(std::exchange(mJob, nullptr));
  for (const std::shared_ptr<Job>& job : std::exchange(mJobs, {}))
    mFailures.append(tr("The frame was not saved as %1: its disk did not answer, and nobody waited for it any longer.")
                         .arg(QDir::toNativeSeparators(ToText(job->options.fileName))));
}

void FrameSaver::SetCamera(const QString& aCamera, const KrString& aDeviceID) {
  mCamera = aCamera;
  mDeviceID = aDeviceID;
}

void FrameSaver::Ask(QWidget* aParent) {
  if (mDialog) {
    mDialog->raise();
    return mDialog->activateWindow();
  }
  std::shared_ptr<const KrBuffer> frame = mFrames.Get();
  if (!frame)
    return ShowFailure(aParent, tr("Save Frame"),
                       {KrResult::Code::NotFound, "There is no whole frame to save yet. Start the camera first."});
  OpenDialog(frame, QString::fromStdString(MakeFrameName(mCamera.toStdString(), frame->GetFrameID())), aParent);
}

void FrameSaver::OpenDialog(const std::shared_ptr<const KrBuffer>& aFrame, const QString& aName, QWidget* aParent) {
  mDialog = new QFileDialog(aParent, tr("Save Frame"), mFolder);
  mDialog->setAttribute(Qt::WA_DeleteOnClose);
  mDialog->setAcceptMode(QFileDialog::AcceptSave);
  const QStringList filters = ListFilters();
  mDialog->setNameFilters(filters);
  mDialog->selectNameFilter(filters[FindRow(mFormat)]);
  mDialog->selectFile(aName);
  SetFormat(FindRow(mFormat));
  connect(mDialog, &QFileDialog::filterSelected, this,
          [this, filters](const QString& aFilter) { SetFormat(static_cast<int>(filters.indexOf(aFilter))); });
  const QPointer<QWidget> parent(aParent);
  connect(mDialog, &QDialog::accepted, this, [this, aFrame, parent] { OnAccepted(aFrame, parent); });
  mDialog->open();
}

// The proposed name shows the format that was chosen.
void FrameSaver::SetFormat(int aRow) {
  if (aRow < 0 || !mDialog)
    return;
  const FormatRow& row = kFormats[static_cast<std::size_t>(aRow)];
  const QString suffix = QString::fromLatin1(row.suffix);
  mFormat = row.format;
  mDialog->setDefaultSuffix(suffix);
  const QStringList files = mDialog->selectedFiles();
  if (files.isEmpty())
    return;
  const QFileInfo file(files.constFirst());
  const bool hasFormat = krapps::FindFrameFileFormatOf(file.fileName().toStdString()).has_value();
  mDialog->selectFile((hasFormat ? file.completeBaseName() : file.fileName()) + QLatin1Char('.') + suffix);
}

void FrameSaver::OnAccepted(const std::shared_ptr<const KrBuffer>& aFrame, QWidget* aParent) {
  const QStringList files = mDialog->selectedFiles();
  if (files.isEmpty())
    return;
  const QString& file = files.constFirst();
  if (!NamesOtherFormat(file))
    return Save(aFrame, file, aParent);
  // The same frame may still be saved with another ending.
  mFolder = QFileInfo(file).absolutePath();
  OpenDialog(aFrame, QFileInfo(file).completeBaseName(), aParent);
  ShowFailure(mDialog, tr("Save Frame"), MakeFormatFailure(file));
}

void FrameSaver::Save(std::shared_ptr<const KrBuffer> aFrame, const QString& aFile, QWidget* aParent) {
  mFormat = krapps::FindFrameFileFormatOf(aFile.toStdString()).value_or(mFormat);
  mFolder = QFileInfo(aFile).absolutePath();
  auto job = std::make_shared<Job>();
  job->frame = std::move(aFrame);
  job->options.fileName = aFile.toStdString();
  job->options.format = mFormat;
  job->options.replacesExisting = true; // The dialog has asked.
  job->options.deviceID = mDeviceID;
  job->options.software = "krviewer " KRGUI_VERSION;
  job->options.onProgress = [&done = job->bytesDone](std::uint64_t aBytes) { done += aBytes; };
  job->parent = aParent;
  mJobs.push_back(std::move(job));
  if (!mCall.IsRunning())
    StartNext();
}

void FrameSaver::StartNext() {
  mJob = nullptr;
  if (mJobs.empty())
    return mTimer.stop();
  const std::shared_ptr<Job> job = mJobs.front();
  mJobs.pop_front();
  mJob = job;
  mCall.Start([job](const std::stop_token&) { job->result = krapps::WriteFrame(*job->frame, job->options); }, [] {},
              [this, job] {
                mDone += job->bytesDone + 1;
                StartNext();
                Tell(*job);
              });
  mTimer.start(kLookInterval);
}

void FrameSaver::Tell(const Job& aJob) {
  if (!aJob.result.IsOK() && mIsEnded)
    return mFailures.append(ToText(aJob.result.GetDescription()));
  if (!aJob.result.IsOK())
    return ShowFailure(aJob.parent, tr("Save Frame"), aJob.result);
  QString text =
      tr("Frame %1 was saved as %2")
          .arg(QString::number(aJob.frame->GetFrameID()), QDir::toNativeSeparators(ToText(aJob.options.fileName)));
  const KrPixelType type = aJob.frame->GetImage()->GetPixelType();
  if (aJob.options.format == krapps::FrameFileFormat::TIFF && !krapps::KeepsEverySample(aJob.options.format, type))
    text += tr(", as it is shown, in 8 bits: TIFF has no form for its pixel format");
  Q_EMIT Saved(text);
}

QByteArray FrameSaver::SaveState() const {
  return SavingState{.folder = mFolder, .format = mFormat}.Save();
}

void FrameSaver::RestoreState(const QByteArray& aState) {
  SavingState state = {.folder = mFolder, .format = mFormat};
  state.Restore(aState);
  mFolder = state.folder;
  mFormat = state.format;
}

} // namespace krviewer
