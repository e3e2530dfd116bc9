#include "busywindows.h"

#include "bridgehost.h"
#include "camerabridge/camerabridgeids.h"
#include "krdevice/krdeviceadapter.h"
#include "krgui/krcamerabridgemanagerwnd.h"
#include "krgui/krdevicefinderwnd.h"
#include "krgui/krdisplaywnd.h"
#include "krgui/krgenbrowserwnd.h"
#include "krgui/krserialbridgemanagerwnd.h"
#include "krgui/krserialterminalwnd.h"
#include "krtransport/krsimulatedfaults.h"
#include "scene.h"
#include "serial/serialbridgeids.h"
#include "serial/terminalids.h"
#include "temporaryfolder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

#include <array>
#include <thread>

namespace krtest {

namespace {

namespace bridge = krgui::bridgeid;
namespace camera = krgui::cameraid;
namespace terminal = krgui::terminalid;

constexpr const char* kMonoID = "02:4b:52:00:77:10";
constexpr const char* kGrabberID = "02:4b:52:00:78:12";
constexpr std::uint32_t kSlowMs = 900; // An answer just within the time-out of a second.

/// What all have.
template <typename Window>
class Busy : public BusyWindow {
public:
  KrResult Close() override { return mWindow.Close(); }
  bool IsOpen() const override { return mWindow.GetWidget() != nullptr; }

protected:
  /// Without waiting for it to be the active one: it may be busy from its opening on.
  QWidget& Show() {
    scene::Require(mWindow.ShowModeless(0));
    return *mWindow.GetWidget();
  }

  Window mWindow;
};

std::shared_ptr<KrSimulatedFaults> FindFaults(const char* aID) {
  std::shared_ptr<KrSimulatedFaults> faults;
  scene::Require(KrFindSimulatedFaults(aID, faults));
  return faults;
}

/// Does something as soon as a dialog that waits is on the screen, which runs a loop of its own.
void WhileItWaits(const std::function<void()>& aAction) {
  auto* const timer = new QTimer(qApp);
  QObject::connect(timer, &QTimer::timeout, qApp, [timer, aAction] {
    if (!QApplication::activeModalWidget())
      return;
    timer->stop();
    timer->deleteLater();
    aAction();
  });
  timer->start(0);
}

class SearchingFinder : public Busy<KrDeviceFinderWnd> {
public:
  void Run(const std::function<void()>& aWhileBusy) override {
    Show();
    aWhileBusy();
  }
};

/// Two cameras give it images as fast as it takes them.
class FedDisplay : public Busy<KrDisplayWnd> {
public:
  void Run(const std::function<void()>& aWhileBusy) override {
    Show();
    std::array<std::jthread, 2> cameras;
    for (std::jthread& thread : cameras)
      thread = std::jthread([this](const std::stop_token& aStop) {
        KrBuffer frame;
        if (!frame.GetImage()->Alloc(1920, 1200, KrPixel::BayerRG8).IsOK())
          return;
        while (!aStop.stop_requested())
          static_cast<void>(mWindow.Display(frame, false)); // Counted by the window.
      });
    scene::Await("picture", [&] { return mWindow.GetStatistics().shown > 0; });
    aWhileBusy();
  }
};

/// Its device falls silent, or slow, before it has read anything.
class ReadingBrowser : public Busy<KrGenBrowserWnd> {
public:
  ~ReadingBrowser() override {
    mFaults->EndRegisterFaults();
    mWindow.SetGenParameterArray(nullptr);
  }
  void Run(const std::function<void()>& aWhileBusy) override {
    KrGenParameterArray* array = nullptr;
    scene::Require(mDevice->GetParameters(array));
    mWindow.SetGenParameterArray(array);
    scene::Require(mWindow.SetRefreshMode(KrGenRefresh::Automatic));
    Disturb(*mFaults);
    Show();
    aWhileBusy();
  }

protected:
  virtual void Disturb(KrSimulatedFaults& aFaults) = 0;

private:
  const std::shared_ptr<KrSimulatedFaults> mFaults = FindFaults(kMonoID);
  const std::unique_ptr<KrDevice> mDevice = scene::OpenDevice("sim-mono");
};

class BrowserOfSilentDevice : public ReadingBrowser {
  void Disturb(KrSimulatedFaults& aFaults) override { aFaults.SilenceRegisters(); }
};

class BrowserOfSlowDevice : public ReadingBrowser {
  void Disturb(KrSimulatedFaults& aFaults) override { aFaults.SlowRegisters(kSlowMs); }
};

/// The line takes a thousand bytes a second of a file that has a million.
class WritingTerminal : public Busy<KrSerialTerminalWnd> {
public:
  ~WritingTerminal() override { static_cast<void>(mWindow.SetDevice(nullptr)); }
  void Run(const std::function<void()>& aWhileBusy) override {
    TemporaryFolder::WriteFile(mFolder.GetFile("file"), std::string(1'000'000, 'x'));
    scene::Require(mWindow.SetDevice(&mAdapter));
    scene::Require(mWindow.SetSerialPort(KrDeviceSerial::Serial1));
    QWidget& window = Show();
    scene::Get<QLineEdit>(window, terminal::kFile).setText(QString::fromStdString(mFolder.GetFile("file")));
    scene::Get<QAbstractButton>(window, terminal::kSendFile).click();
    scene::Await("file under way", [&] { return scene::Get(window, terminal::kStop).isEnabled(); });
    aWhileBusy();
  }

private:
  const TemporaryFolder mFolder;
  const std::unique_ptr<KrDevice> mDevice = scene::OpenDevice("sim-mono");
  KrDeviceAdapter mAdapter{*mDevice};
};

/// Connects the camera behind the first port by a window's controls.
void ConnectGenCP(QWidget& aWindow) {
  scene::Await("answer of the frame grabber", [&] { return scene::Get(aWindow, camera::kPoCL).isEnabled(); });
  scene::Get<QAbstractButton>(aWindow, camera::kGenCP).click();
  scene::Await("description", [&] { return scene::Get<QComboBox>(aWindow, camera::kGenCPXML).count() > 0; });
  scene::Get<QAbstractButton>(aWindow, camera::kGenCPConnect).click();
  scene::AwaitFeatures(aWindow);
}

/// A camera behind the frame grabber that says nothing.
class SilencedCameraBridges : public Busy<KrCameraBridgeManagerWnd> {
public:
  ~SilencedCameraBridges() override {
    static_cast<void>(mWindow.SetDevice(nullptr)); // Always OK.
    mFaults->EndSerialFaults();
  }

protected:
  const std::shared_ptr<KrSimulatedFaults> mFaults = FindFaults(kGrabberID);
  const std::unique_ptr<KrDevice> mDevice = scene::OpenDevice("sim-grabber");
};

/// The camera is asked.
class AskingCameraBridges : public SilencedCameraBridges {
public:
  void Run(const std::function<void()>& aWhileBusy) override {
    scene::Require(mWindow.SetDevice(mDevice.get()));
    QWidget& window = Show();
    scene::Await("answer of the frame grabber", [&] { return scene::Get(window, camera::kPoCL).isEnabled(); });
    scene::Require(mFaults->SilenceSerialPort(0, true));
    WhileItWaits(aWhileBusy);
    scene::Get<QAbstractButton>(window, camera::kGenCP).click();
  }
};

/// The camera is connected, and falls silent while the window's browser reads it.
class ReadingCameraBridges : public SilencedCameraBridges {
public:
  void Run(const std::function<void()>& aWhileBusy) override {
    scene::Require(mWindow.SetDevice(mDevice.get()));
    ConnectGenCP(Show());
    scene::Require(mWindow.Close());
    scene::Require(mFaults->SilenceSerialPort(0, true));
    Show();
    aWhileBusy();
  }
};

/// A window whose object goes, with all that it holds. Who derives closes it before what it uses.
template <typename Window>
class EndingWindow : public BusyWindow {
public:
  KrResult Close() override {
    mWindow.reset();
    return {};
  }
  bool IsOpen() const override { return mWindow != nullptr; }

protected:
  std::unique_ptr<Window> mWindow = std::make_unique<Window>();
};

/// The window goes, and its bridge with it, whose camera does not answer when it is to be given free.
class EndingCameraBridges : public EndingWindow<KrCameraBridgeManagerWnd> {
public:
  ~EndingCameraBridges() override {
    static_cast<void>(Close());
    mFaults->EndSerialFaults();
  }
  void Run(const std::function<void()>& aWhileBusy) override {
    scene::Require(mWindow->SetDevice(mDevice.get()));
    ConnectGenCP(scene::Show(*mWindow, 760, 570));
    scene::Require(mFaults->SilenceSerialPort(0, true));
    aWhileBusy();
  }

private:
  const std::shared_ptr<KrSimulatedFaults> mFaults = FindFaults(kGrabberID);
  const std::unique_ptr<KrDevice> mDevice = scene::OpenDevice("sim-grabber");
};

/// The frame grabber itself says nothing when the window opens on it.
class OpeningCameraBridges : public Busy<KrCameraBridgeManagerWnd> {
public:
  ~OpeningCameraBridges() override {
    mFaults->EndRegisterFaults();
    static_cast<void>(mWindow.SetDevice(nullptr)); // Always OK.
  }
  void Run(const std::function<void()>& aWhileBusy) override {
    scene::Require(mWindow.SetDevice(mDevice.get()));
    mFaults->SilenceRegisters();
    WhileItWaits([this, &aWhileBusy] {
      mHasActed = true;
      aWhileBusy();
    });
    static_cast<void>(mWindow.ShowModeless(0)); // It may be closed before this returns.
    scene::Await("question to the frame grabber", [this] { return mHasActed; });
  }

private:
  const std::shared_ptr<KrSimulatedFaults> mFaults = FindFaults(kGrabberID);
  const std::unique_ptr<KrDevice> mDevice = scene::OpenDevice("sim-grabber");
  bool mHasActed = false;
};

/// The window goes, and its bridges with it, which ask a silent device, or a slow one, for its speed.
template <std::uint32_t SlowMs>
class EndingSerialBridges : public EndingWindow<KrSerialBridgeManagerWnd> {
public:
  EndingSerialBridges() { mHost.AddPort(1); }
  ~EndingSerialBridges() override {
    static_cast<void>(Close());
    mFaults->EndRegisterFaults();
  }
  void Run(const std::function<void()>& aWhileBusy) override {
    scene::Require(mWindow->SetDevice(&mAdapter));
    QWidget& window = scene::Show(*mWindow, 560, 440);
    scene::Pick(window, bridge::kDevicePort, "Bulk0");
    scene::Get<QAbstractButton>(window, bridge::kCOMPortLink).click();
    scene::Pick(window, bridge::kCOMPort, "COM1");
    scene::Await("bridge", [&] { return !scene::Get<QLabel>(window, bridge::kBytesSent).text().isEmpty(); });
    if constexpr (SlowMs == 0)
      mFaults->SilenceRegisters();
    else
      mFaults->SlowRegisters(SlowMs);
    aWhileBusy();
  }

private:
  BridgeHost mHost;
  const std::shared_ptr<KrSimulatedFaults> mFaults = FindFaults(kMonoID);
  const std::unique_ptr<KrDevice> mDevice = scene::OpenDevice("sim-mono");
  KrDeviceAdapter mAdapter{*mDevice};
};

template <typename Window>
std::unique_ptr<BusyWindow> Make() {
  return std::make_unique<Window>();
}

constexpr std::array kCases = {
    BusyWindowCase{"finder_searching", Make<SearchingFinder>},
    BusyWindowCase{"display_fed", Make<FedDisplay>},
    BusyWindowCase{"browser_silent_device", Make<BrowserOfSilentDevice>},
    BusyWindowCase{"browser_slow_device", Make<BrowserOfSlowDevice>},
    BusyWindowCase{"terminal_writing", Make<WritingTerminal>},
    BusyWindowCase{"serial_bridges_silent_device", Make<EndingSerialBridges<0>>},
    BusyWindowCase{"serial_bridges_slow_device", Make<EndingSerialBridges<kSlowMs>>},
    BusyWindowCase{"camera_bridges_asking", Make<AskingCameraBridges>},
    BusyWindowCase{"camera_bridges_opening", Make<OpeningCameraBridges>},
    BusyWindowCase{"camera_bridges_reading", Make<ReadingCameraBridges>},
    BusyWindowCase{"camera_bridges_ending", Make<EndingCameraBridges>},
};

} // namespace

std::span<const BusyWindowCase> GetBusyWindows() {
  return kCases;
}

} // namespace krtest
