#include "page/pageending.h"

#include "page/camerapage.h"
#include "pictures.h"

#include <cinttypes>
#include <cstdio>

namespace krviewer {

namespace {

bool SaveBrowserPicture(CameraPage& aPage, const QString& aFolder) {
  const KrResult result = WriteBrowserPicture(aPage.GetFeatures().GetWindow(), aFolder);
  if (!result.IsOK())
    std::fprintf(stderr, "No picture of the features was written: %s\n", result.GetDescription().CStr());
  return result.IsOK();
}

bool SaveDisplayPictures(CameraPage& aPage, const QString& aFolder) {
  // What still waits for this window, its last painting among it, is done first.
  KrResult result = aPage.GetDisplay().DoEvents();
  if (result.IsOK())
    result = WritePictures(aPage.GetDisplay(), aFolder);
  if (!result.IsOK()) {
    std::fprintf(stderr, "No pictures were written: %s\n", result.GetDescription().CStr());
    return false;
  }
  std::printf("pictures=%s frame_id=%" PRIu64 "\n", aFolder.toUtf8().constData(), aPage.GetProgress().lastFrameID);
  return true;
}

} // namespace

bool EndWithPictures(CameraPage& aPage, const QString& aFolder) {
  const bool hasPicture = aPage.GetProgress().figures.GetFrames() > 0;
  // Before the camera is given back, as the browser is empty then.
  const bool hasBrowser = hasPicture && aPage.GetPanels().IsShown(Panel::Features);
  bool isWritten = !hasBrowser || SaveBrowserPicture(aPage, aFolder);
  aPage.End();
  aPage.AwaitEnd();
  if (hasPicture && !SaveDisplayPictures(aPage, aFolder))
    isWritten = false;
  return isWritten;
}

void PrintFigures(const CameraPage& aPage, const QString& aPrefix) {
  const AcquisitionProgress& progress = aPage.GetProgress();
  std::printf("%s%s\n", aPrefix.toUtf8().constData(),
              krapps::FormatClosingLine(progress.figures, progress.statistics).c_str());
}

} // namespace krviewer
