#include "page/pageending.h"

#include "page/camerapage.h"
#include "pictures.h"
#include "plaintext.h"
#include "recording/recordingtexts.h"
#include "window/showntext.h"

#include <QStringList>

#include <cinttypes>
#include <cstdio>

namespace krviewer {

namespace {

constexpr int kLongestLine = 1000;

bool SaveBrowserPicture(CameraPage& aPage, const QString& aFolder) {
  const KrResult result = WriteBrowserPicture(aPage.GetFeatures().GetWindow(), aFolder);
  if (!result.IsOK())
    std::fprintf(stderr, "No picture of the features was written: %s\n",
                 krapps::MakeField(result.GetDescription()).c_str());
  return result.IsOK();
}

bool SaveDisplayPictures(CameraPage& aPage, const QString& aFolder) {
  // What still waits for this window, its last painting among it, is done first.
  KrResult result = aPage.GetDisplay().DoEvents();
  if (result.IsOK())
    result = WritePictures(aPage.GetDisplay(), aFolder);
  if (!result.IsOK()) {
    std::fprintf(stderr, "No pictures were written: %s\n", krapps::MakeField(result.GetDescription()).c_str());
    return false;
  }
  std::printf("pictures=%s frame_id=%" PRIu64 "\n", aFolder.toUtf8().constData(), aPage.GetProgress().lastFrameID);
  return true;
}

QString GetName(const CameraPage& aPage) {
  return ToText(aPage.GetCamera().GetDisplayID());
}

QString DescribeEnding(const CameraPage& aPage) {
  if (aPage.IsRecording())
    return QStringLiteral("The recording of %1 is being written. %2")
        .arg(GetName(aPage), QString::fromStdString(DescribeState(aPage.GetRecording())));
  if (aPage.GetTools().IsWriting())
    return QStringLiteral("A bridge setup of %1 is being saved.").arg(GetName(aPage));
  if (aPage.IsWriting())
    return QStringLiteral("A frame of %1 is being saved.").arg(GetName(aPage));
  return QStringLiteral("%1 is being given back; it takes its time to answer.").arg(GetName(aPage));
}

void LeaveCamera(CameraPage& aPage) {
  aPage.LeaveCamera();
  std::fprintf(stderr, "%s did not answer, and nobody waited for it any longer: it may seem taken for some seconds.\n",
               krapps::MakeField(aPage.GetCamera().GetDisplayID()).c_str());
}

} // namespace

bool EndWithPictures(CameraPage& aPage, const QString& aFolder, std::chrono::milliseconds aLimit) {
  const bool hasPicture = aPage.GetProgress().figures.GetFrames() > 0;
  // Before the camera is given back, as the browser is empty then.
  const bool hasBrowser = hasPicture && aPage.GetPanels().IsShown(Panel::Features);
  const bool isWritten = !hasBrowser || SaveBrowserPicture(aPage, aFolder);
  aPage.End();
  // What takes longer, or is still written, is awaited where that can be seen.
  aPage.AwaitAway(aLimit);
  if (!hasPicture)
    std::fprintf(stderr, "No pictures of the camera were written: no frame of it came.\n");
  return hasPicture && SaveDisplayPictures(aPage, aFolder) && isWritten;
}

EndingWork MakeEndingWork(CameraPage& aPage, std::chrono::milliseconds aCameraLimit) {
  return {.isOver = [&aPage] { return aPage.FollowEnd(); },
          .describe = [&aPage] { return DescribeEnding(aPage); },
          .isRecording = [&aPage] { return aPage.IsRecording(); },
          .abandon = [&aPage] { aPage.GiveUpRecording(); },
          .getWritten = [&aPage] { return aPage.GetWritten(); },
          .leave = [&aPage] { aPage.LeaveFiles(); },
          .awaitsCamera = [&aPage] { return aPage.AwaitsCamera(); },
          .leaveCamera = [&aPage] { LeaveCamera(aPage); },
          .cameraLimit = aCameraLimit};
}

QString TellFailedRecording(const CameraPage& aPage, const RecordingProgress& aRecording) {
  const QString trouble = QStringLiteral("The recording of %1 is not whole. %2 %3")
                              .arg(GetName(aPage), QString::fromStdString(DescribeState(aRecording)),
                                   QString::fromStdString(DescribeLosses(aRecording)))
                              .trimmed();
  std::fprintf(stderr, "%s\n", ToLine(trouble, kLongestLine).toUtf8().constData());
  return trouble;
}

QString TellWritten(const CameraPage& aPage) {
  QStringList troubles;
  if (aPage.HasEndedRecording()) {
    const RecordingProgress recording = aPage.GetRecording();
    const RecordingCounts& counts = recording.counts;
    std::printf("recording=ended written=%" PRIu64 " incomplete=%" PRIu64 " queue_full=%" PRIu64 " failed=%" PRIu64
                " abandoned=%" PRIu64 "\n",
                counts.written, counts.incomplete, counts.queueFull, counts.failed, counts.abandoned);
    if (HasFailed(recording))
      troubles += TellFailedRecording(aPage, recording);
  }
  for (const QString& trouble : aPage.GetSavingFailures()) {
    std::fprintf(stderr, "%s\n", ToLine(trouble, kLongestLine).toUtf8().constData());
    troubles += trouble;
  }
  // These are on the error stream already.
  troubles += aPage.GetTools().GetFailures();
  return troubles.join(QLatin1Char('\n'));
}

void PrintFigures(const CameraPage& aPage, const QString& aPrefix) {
  const AcquisitionProgress& progress = aPage.GetProgress();
  std::printf("%s%s\n", aPrefix.toUtf8().constData(),
              krapps::FormatClosingLine(progress.figures, progress.statistics).c_str());
}

} // namespace krviewer
