#include "window/endedpages.h"

#include "page/camerapage.h"
#include "page/pageending.h"
#include "plaintext.h"
#include "window/endingwindow.h"

#include <algorithm>
#include <utility>

namespace krviewer {

EndedPages::EndedPages() = default;

EndedPages::~EndedPages() = default;

void EndedPages::Add(std::unique_ptr<CameraPage> aPage) {
  mUnprinted.insert(aPage.get());
  mUnwritten.insert(aPage.get());
  mPages.push_back(std::move(aPage));
}

bool EndedPages::IsBeingGivenBack(const KrDeviceInfo& aCamera) const {
  return std::ranges::any_of(mPages, [&aCamera](const std::unique_ptr<CameraPage>& aPage) {
    return !aPage->HasEnded() && aPage->GetCamera().GetUniqueID() == aCamera.GetUniqueID();
  });
}

void EndedPages::PrintFigures(bool aHasNames) {
  for (const std::unique_ptr<CameraPage>& page : mPages)
    if (page->HasEnded() && mUnprinted.erase(page.get()) > 0)
      krviewer::PrintFigures(
          *page, aHasNames ? QStringLiteral("camera=%1 ")
                                 .arg(QString::fromStdString(krapps::MakeField(page->GetCamera().GetDisplayID())))
                           : QString());
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
    return aPage->IsIdle() && !mUnprinted.contains(aPage.get()) && !mUnwritten.contains(aPage.get());
  };
  for (std::unique_ptr<CameraPage>& page : mPages)
    if (isOver(page))
      page.release()->deleteLater();
  std::erase(mPages, nullptr);
}

// What the user has recorded is worth the time that the disk needs for it, as long as that is seen and can be given up.
QString EndedPages::Await(bool aIsTold) {
  std::vector<EndingWork> works;
  for (const std::unique_ptr<CameraPage>& page : mPages)
    works.push_back(MakeEndingWork(*page));
  EndingWindow window(std::move(works));
  window.Await();
  // A loop that was ended meanwhile has awaited nothing.
  for (const std::unique_ptr<CameraPage>& page : mPages)
    page->AwaitEnd();
  const QString trouble = TellWritten();
  if (aIsTold && !trouble.isEmpty())
    window.Tell(trouble);
  return trouble;
}

} // namespace krviewer
