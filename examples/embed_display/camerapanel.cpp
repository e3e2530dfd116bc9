#include "camerapanel.h"

#include <QPushButton>
#include <QVBoxLayout>

CameraPanel::CameraPanel(KrDevice& aDevice) : mStream(aDevice) {
  auto* const layout = new QHBoxLayout(this);
  auto* const column = new QVBoxLayout;
  const KrResult embedded = mDisplay.CreateIn(this);
  if (QWidget* const display = mDisplay.GetWidget()) // Null where it could not be embedded.
    layout->addWidget(display, 1);
  layout->addLayout(column);
  AddButton(*column, "&Start", [this] { Start(); });
  AddButton(*column, "S&top", [this] { Stop(); });
  AddButton(*column, "&Fit", [this] { mDisplay.ZoomFit(); });
  AddButton(*column, "&One to One", [this] { mDisplay.Zoom1_1(); });
  mState->setTextFormat(Qt::PlainText); // Nothing that comes from a device is mark-up.
  mState->setWordWrap(true);
  column->addWidget(mState);
  column->addStretch(1);
  Tell(embedded);
}

// The thread ends before the stream and the display that it uses.
CameraPanel::~CameraPanel() {
  Stop();
}

void CameraPanel::AddButton(QVBoxLayout& aColumn, const char* aText, std::function<void()> aAction) {
  auto* const button = new QPushButton(aText);
  connect(button, &QPushButton::clicked, this, std::move(aAction));
  aColumn.addWidget(button);
}

void CameraPanel::Tell(const KrResult& aResult) {
  mState->setText(aResult.IsOK() ? QString() : QString::fromUtf8(aResult.GetDescription().CStr()));
}

void CameraPanel::Start() {
  Stop(); // A run that goes on, or that ended by itself, makes room for a new one.
  const KrResult started = mStream.Start();
  Tell(started);
  if (started.IsOK())
    mThread = std::jthread([this] { ShowFrames(); });
}

void CameraPanel::Stop() {
  mStream.Stop(); // Ends the wait for a frame, and with it the thread.
  if (mThread.joinable())
    mThread.join();
}

// On the acquisition thread, which draws each frame itself, whatever the window is doing.
void CameraPanel::ShowFrames() {
  // Widgets belong to the user-interface thread.
  const auto tellLater = [this](const KrResult& aResult) {
    QMetaObject::invokeMethod(
        this, [this, aResult] { Tell(aResult); }, Qt::QueuedConnection);
  };
  KrResult result;
  while (result.IsOK() || result == KrResult::Code::TimeLimitExceeded) { // A camera may wait for its trigger.
    KrBuffer* buffer = nullptr;
    result = mStream.Retrieve(buffer, 1000);
    if (!buffer)
      continue;
    if (const KrResult displayed = mDisplay.Display(*buffer, false); !displayed.IsOK())
      tellLater(displayed);
    result = mStream.Release(buffer);
  }
  if (result != KrResult::Code::Aborted) // The stream was not stopped by us: the camera is lost.
    tellLater(result);
}
