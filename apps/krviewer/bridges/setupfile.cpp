#include "bridges/setupfile.h"

#include <memory>
#include <utility>

namespace krviewer {

SetupFile::~SetupFile() {
  if (IsWriting())
    mCall.Await();
  else
    Leave();
}

void SetupFile::Read(const KrString& aName, ThenRead aThen) {
  struct Answer {
    KrResult result;
    KrConfigurationReader content;
  };
  const auto answer = std::make_shared<Answer>();
  Start(
      aName, false, [answer, aName](const std::stop_token&) { answer->result = answer->content.Load(aName); },
      [answer, then = std::move(aThen)] { then(answer->result, answer->content); });
}

void SetupFile::Write(const KrString& aName, const KrConfigurationWriter& aContent, ThenWritten aThen) {
  const auto result = std::make_shared<KrResult>();
  Start(
      aName, true, [result, aName, aContent](const std::stop_token&) { *result = aContent.Save(aName); },
      [result, then = std::move(aThen)] { then(*result); });
}

void SetupFile::Start(const KrString& aName, bool aIsWritten, BackgroundCall::Work aWork, std::function<void()> aThen) {
  mName = aName;
  mIsWritten = aIsWritten;
  // Nothing hurries a disk.
  mCall.Start(
      std::move(aWork), [] {}, std::move(aThen));
}

void SetupFile::AwaitWritten() {
  while (IsWriting()) {
    mCall.Await();
    mCall.Follow();
  }
}

} // namespace krviewer
