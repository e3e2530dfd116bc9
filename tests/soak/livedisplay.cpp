#include "livedisplay.h"

#include "krgui/krdisplaywnd.h"
#include "scene.h"

namespace {

constexpr std::uint32_t kRetrieveMs = 200;

} // namespace

LiveDisplay::LiveDisplay(KrDisplayWnd& aWindow, LabCamera& aCamera) : mWindow(aWindow), mCamera(aCamera) {}

LiveDisplay::~LiveDisplay() {
  Stop();
}

void LiveDisplay::Start() {
  mWidth = static_cast<std::uint32_t>(GetInteger("Width"));
  mHeight = static_cast<std::uint32_t>(GetInteger("Height"));
  mStream = std::make_unique<KrStream>(mCamera.GetDevice());
  scene::Require(mStream->Start());
  mThread = std::jthread([this](const std::stop_token& aStop) { Show(aStop); });
}

void LiveDisplay::Stop() {
  if (!mStream)
    return;
  mThread.request_stop();
  mStream->Cancel();
  mThread.join();
  mStream.reset();
}

void LiveDisplay::AwaitFrames() {
  const std::uint64_t before = mFrames;
  scene::Await("frame", [&] { return mFrames > before; });
}

void LiveDisplay::Show(const std::stop_token& aStop) {
  while (!aStop.stop_requested()) {
    KrBuffer* frame = nullptr;
    const KrResult result = mStream->Retrieve(frame, kRetrieveMs);
    if (result == KrResult::Code::ConnectionLost)
      return;
    if (!result.IsOK())
      continue;
    Take(*frame);
    if (!mStream->Release(frame).IsOK())
      ++mFailures;
  }
}

void LiveDisplay::Take(const KrBuffer& aFrame) {
  if (aFrame.GetStatus() != KrBufferStatus::Complete)
    return; // On order; others come.
  const IKrImage* const image = aFrame.GetImage();
  const bool isAsSet = image && image->GetWidth() == mWidth && image->GetHeight() == mHeight;
  if (!isAsSet || !mWindow.Display(aFrame, false).IsOK())
    ++mFailures;
  mStream->CountShown();
  ++mFrames;
}

void LiveDisplay::ChangeFormat(SoakDice& aDice) {
  const KrStringList formats = ListFormats();
  SetFormat(formats[static_cast<std::size_t>(aDice.Draw(0, static_cast<int>(formats.GetCount()) - 1))]);
  constexpr int kWidthStep = 8; // Whole groups of pixels in every format.
  constexpr int kHeightStep = 2;
  const auto draw = [&](const char* aName, int aStep) {
    const int most = static_cast<int>(GetInteger(aName)) / aStep;
    SetInteger(aName, std::int64_t{aDice.Draw(most / 4, most)} * aStep);
  };
  draw("Width", kWidthStep);
  draw("Height", kHeightStep);
}

void LiveDisplay::ResetFormat() {
  SetFormat(ListFormats()[0]);
}

KrStringList LiveDisplay::ListFormats() {
  KrStringList formats;
  scene::Require(mCamera.GetAdapter().GetEnumEntries("PixelFormat", formats));
  return formats;
}

/// With the whole sensor.
void LiveDisplay::SetFormat(const KrString& aFormat) {
  scene::Require(mCamera.GetAdapter().SetEnumValue("PixelFormat", aFormat));
  SetInteger("OffsetX", 0);
  SetInteger("OffsetY", 0);
  for (const char* const name : {"Width", "Height"}) {
    std::int64_t most = 0;
    scene::Require(mCamera.GetParameters().GetInteger(name)->GetMax(most));
    SetInteger(name, most);
  }
}

void LiveDisplay::SetInteger(const char* aName, std::int64_t aValue) {
  scene::Require(mCamera.GetParameters().GetInteger(aName)->SetValue(aValue));
}

std::int64_t LiveDisplay::GetInteger(const char* aName) {
  std::int64_t value = 0;
  scene::Require(mCamera.GetParameters().GetInteger(aName)->GetValue(value));
  return value;
}
