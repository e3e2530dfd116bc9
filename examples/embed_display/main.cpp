// A display in a Qt layout of the application's own, with the application's buttons beside it. The first camera is
// taken; with --simulate those of the built-in simulated lab count as well.

#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krgui/krdisplaywnd.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <iostream>
#include <set>
#include <string_view>
#include <thread>

namespace {

class CameraPanel : public QWidget {
public:
  explicit CameraPanel(KrDevice& aDevice) : mStream(aDevice) {
    auto* const layout = new QHBoxLayout(this);
    const KrResult embedded = mDisplay.CreateIn(this);
    if (QWidget* const display = mDisplay.GetWidget()) // Null where it could not be embedded.
      layout->addWidget(display, 1);
    layout->addLayout(mColumn);
    AddButton("&Start", [this] { Start(); });
    AddButton("S&top", [this] { Stop(); });
    AddButton("&Fit", [this] { mDisplay.ZoomFit(); });
    AddButton("&One to One", [this] { mDisplay.Zoom1_1(); });
    mState->setTextFormat(Qt::PlainText); // Nothing that comes from a device is mark-up.
    mState->setWordWrap(true);
    mColumn->addWidget(mState);
    mColumn->addStretch(1);
    Tell(embedded);
  }
  ~CameraPanel() override { Stop(); } // The thread ends before the stream and the display that it uses.

  std::uint64_t GetShownCount() const { return mDisplay.GetStatistics().shown; }

private:
  template <typename Action>
  void AddButton(const char* aText, Action aAction) {
    auto* const button = new QPushButton(aText);
    connect(button, &QPushButton::clicked, this, aAction);
    mColumn->addWidget(button);
  }

  void Tell(const KrResult& aResult) {
    mState->setText(aResult.IsOK() ? QString() : QString::fromUtf8(aResult.GetDescription().CStr()));
  }
  // For the acquisition thread: widgets belong to the user-interface thread.
  void TellLater(const KrResult& aResult) {
    QMetaObject::invokeMethod(
        this, [this, aResult] { Tell(aResult); }, Qt::QueuedConnection);
  }

  void Start() {
    Stop(); // A run that goes on, or that ended by itself, makes room for a new one.
    const KrResult started = mStream.Start();
    Tell(started);
    if (started.IsOK())
      mThread = std::jthread([this] { ShowFrames(); });
  }

  void Stop() {
    mStream.Stop(); // Ends the wait for a frame, and with it the thread.
    if (mThread.joinable())
      mThread.join();
  }

  // On the acquisition thread, which draws each frame itself, whatever the window is doing.
  void ShowFrames() {
    KrResult result;
    while (result.IsOK() || result == KrResult::Code::TimeLimitExceeded) { // A camera may wait for its trigger.
      KrBuffer* buffer = nullptr;
      result = mStream.Retrieve(buffer, 1000);
      if (!buffer)
        continue;
      if (const KrResult displayed = mDisplay.Display(*buffer, false); !displayed.IsOK())
        TellLater(displayed);
      result = mStream.Release(buffer);
    }
    if (result != KrResult::Code::Aborted) // The stream was not stopped by us: the camera is lost.
      TellLater(result);
  }

  KrStream mStream;
  KrDisplayWnd mDisplay;
  QVBoxLayout* mColumn = new QVBoxLayout;
  QLabel* mState = new QLabel;
  std::jthread mThread;
};

} // namespace

int main(int argc, char** argv) {
  const std::set<std::string_view> options(argv + 1, argv + argc);
  if (options.contains("--help") || options.contains("-h")) {
    std::cout << "usage: embed_display [--simulate]\n";
    return 0;
  }
  QApplication application(argc, argv);
  KrSystem system;
  KrResult result = KrInstallTransports({.simulation = options.contains("--simulate")});
  if (result.IsOK())
    result = system.Find();
  const KrDeviceInfo* const info = result.IsOK() ? system.GetDeviceInfo(0) : nullptr;
  std::unique_ptr<KrDevice> device; // Ends after the panel.
  if (info)
    result = KrDevice::Open(*info, KrDeviceAccess::Control, device);
  if (!device) {
    std::cerr << "No camera can be opened. Try --simulate. " << result.GetDescription().CStr() << '\n';
    return 1;
  }

  CameraPanel panel(*device);
  panel.setWindowTitle(QString::fromUtf8(device->GetDisplayID().CStr()));
  panel.resize(800, 500);
  panel.show();
  const int exitCode = QApplication::exec();
  std::cout << panel.GetShownCount() << " frames were shown.\n";
  return exitCode;
}
