// Takes control of the camera at 127.0.0.1, streams from it if asked to, says "holding" on standard error and waits for
// SIGUSR1; then it ends in the way that its arguments name, unless another signal ended it before.
//
//   deviceholder idle|streaming return|exit|quick_exit

#include "await.h"
#include "krdevice/krdevice.h"
#include "krdevice/krdeviceend.h"
#include "krdevice/krstream.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <future>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

namespace {

const std::uint32_t kTimeoutMs = krtest::GetGenerousMs();
constexpr std::uint64_t kHeartbeatTimeoutRegister = 0x0938;
constexpr std::array<std::uint8_t, 4> kTenMinutesMs = {0x00, 0x09, 0x27, 0xC0};
constexpr int kReturnCode = 3;
constexpr int kExitCode = 4;
constexpr int kQuickExitCode = 5;

void Check(const KrResult& aResult) {
  if (aResult.IsOK())
    return;
  std::cerr << aResult.GetCodeString().CStr() << ": " << aResult.GetDescription().CStr() << std::endl;
  std::_Exit(2);
}

std::unique_ptr<KrDevice> OpenCamera() {
  Check(KrInstallTransports({.gigEVision = true, .usb3Vision = false}));
  KrSystem system;
  const KrDeviceInfo* info = nullptr;
  Check(system.FindDevice("127.0.0.1", &info));
  std::unique_ptr<KrDevice> device;
  Check(KrDevice::Open(*info, KrDeviceAccess::Control, device));
  // So that within the test the heartbeat cannot end the control.
  Check(device->GetRegisterPort().Write(kHeartbeatTimeoutRegister, kTenMinutesMs.data(), kTenMinutesMs.size(),
                                        kTimeoutMs));
  return device;
}

// Takes frames on a thread of its own until the stream ends.
class Consumer {
public:
  explicit Consumer(KrDevice& aDevice) : mStream(aDevice) {
    Check(mStream.Start());
    mThread = std::thread([this] { TakeFrames(); });
    mFirstFrame.get_future().wait();
  }
  ~Consumer() {
    mStream.Stop();
    mThread.join();
  }
  /// Leaves the thread to go on while the process ends.
  void Detach() { mThread.detach(); }
  Consumer(const Consumer&) = delete;
  Consumer& operator=(const Consumer&) = delete;

private:
  void TakeFrames() {
    KrBuffer* buffer = nullptr;
    for (bool isFirst = true; mStream.Retrieve(buffer, kTimeoutMs).IsOK(); isFirst = false) {
      if (isFirst)
        mFirstFrame.set_value();
      Check(mStream.Release(buffer));
    }
  }

  KrStream mStream;
  std::promise<void> mFirstFrame;
  std::thread mThread;
};

} // namespace

int main(int aCount, char** aArguments) {
  if (aCount != 3)
    return 2;
  sigset_t goOn;
  sigemptyset(&goOn);
  sigaddset(&goOn, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &goOn, nullptr);
  Check(KrGiveBackDevicesAtEnd());

  const std::unique_ptr<KrDevice> device = OpenCamera();
  std::unique_ptr<Consumer> consumer;
  if (aArguments[1] == std::string("streaming"))
    consumer = std::make_unique<Consumer>(*device);
  std::cerr << "holding" << std::endl;
  int signal = 0;
  sigwait(&goOn, &signal);
  const std::string end = aArguments[2];
  if (consumer && end != "return")
    consumer->Detach();
  if (end == "exit")
    std::exit(kExitCode);
  if (end == "quick_exit")
    std::quick_exit(kQuickExitCode);
  return kReturnCode;
}
