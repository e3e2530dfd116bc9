#include "window/endedpages.h"

#include "acquisition/cameraidentity.h"
#include "page/camerapage.h"
#include "page/pageending.h"
#include "window/endingwindow.h"

#include <QStringList>

#include <algorithm>
#include <utility>

namespace krviewer {

EndedPages::EndedPages() = default;

EndedPages::~EndedPages() = default;

void EndedPages::Add(std::unique_ptr<CameraPage> aPage) {
  mUntaken.insert(aPage.get());
  mUnwritten.insert(aPage.get());
  mPages.push_back(std::move(aPage));
}

bool EndedPages::IsBeingGivenBack(const KrDeviceInfo& aCamera) const {
  return std::ranges::any_of(mPages, [&aCamera](const std::unique_ptr<CameraPage>& aPage) {
    return !aPage->HasEnded() && IsSameCamera(aPage->GetCamera(), aCamera);
  });
}

std::vector<const CameraPage*> EndedPages::TakeEnded() {
  std::vector<const CameraPage*> ended;
  for (const std::unique_ptr<CameraPage>& page : mPages)
    if (page->HasEnded() && mUntaken.erase(page.get()) > 0)
      ended.push_back(page.get());
  return ended;
}

QString EndedPages::TellWritten() {
  QStringList troubles;
  for (const std::unique_ptr<CameraPage>& page : mPages)
    if (page->HasEnded() && !page->IsWriting() && mUnwritten.erase(page.get()) > 0)
      troubles += krviewer::TellWritten(*page);
  troubles.removeAll(QString());
  return troubles.join(QLatin1Char('\n'));
}

void EndedPages::DeleteIdle() {
  const auto isOver = [this](const std::unique_ptr<CameraPage>& aPage) {
    return aPage->IsIdle() && !mUntaken.contains(aPage.get()) && !mUnwritten.contains(aPage.get());
  };
  for (std::unique_ptr<CameraPage>& page : mPages)
    if (isOver(page))
      page.release()->deleteLater();
  std::erase(mPages, nullptr);
}

// What the user has recorded is worth the time that the disk needs for it, as long as that is seen and can be given up.
QString EndedPages::Await(const EndOfPages& aEnd) {
  std::vector<EndingWork> works;
  for (const std::unique_ptr<CameraPage>& page : mPages)
    works.push_back(MakeEndingWork(*page, aEnd.cameraLimit));
  EndingWindow window(std::move(works));
  if (window.Await(aEnd.limit) == EndingResult::TooLate)
    aEnd.giveUp(window.GetText());
  // A loop that was ended meanwhile has awaited nothing.
  for (const std::unique_ptr<CameraPage>& page : mPages)
    page->AwaitEnd();
  const QString trouble = TellWritten();
  QStringList told{trouble, aEnd.complete()};
  told.removeAll(QString());
  if (aEnd.isTold && !told.isEmpty())
    window.Tell(told.join(QStringLiteral("\n\n")));
  return trouble;
}

bool EndedPages::HasLeftCamera() const {
  return std::ranges::any_of(mPages, [](const auto& aPage) { return aPage->IsCameraLeft(); });
}

} // namespace krviewer
