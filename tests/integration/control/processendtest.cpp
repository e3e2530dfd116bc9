#include "await.h"
#include "fakecamera.h"
#include "krdevice/krdevice.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"
#include "programrun.h"

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <string>

namespace {

constexpr std::uint64_t kControlPrivilegeRegister = 0x0A00;
const std::uint32_t kTimeoutMs = krtest::GetGenerousMs();
constexpr std::uint32_t kControlBit = 2;

// What the camera says of who controls it, read as somebody who looks on.
KrResult ReadControlPrivilege(std::uint32_t& aPrivilege) {
  KrSystem system;
  system.SetDetectionTimeout(kTimeoutMs);
  const KrDeviceInfo* info = nullptr;
  KrResult result = system.FindDevice("127.0.0.1", &info);
  std::unique_ptr<KrDevice> monitor;
  if (result.IsOK())
    result = KrDevice::Open(*info, KrDeviceAccess::Monitor, monitor);
  std::array<std::uint8_t, 4> bytes{};
  if (result.IsOK())
    result = monitor->GetRegisterPort().Read(kControlPrivilegeRegister, bytes.data(), bytes.size(), kTimeoutMs);
  aPrivilege = 0;
  for (const std::uint8_t byte : bytes)
    aPrivilege = aPrivilege << 8 | byte;
  return result;
}

struct End {
  const char* name;
  const char* activity;
  const char* way;
  int signal; // What the test sends.
  int exitCode;
  int endSignal; // What ends the program; 0 where it exits.
  std::uint32_t privilege;
};

// SIGUSR1 lets the program go on to the end that it was told. A program that is killed can give nothing back: that row
// shows that it is no heartbeat that ends the control in the others.
constexpr End kEnds[] = {
    {"ReturnFromMain", "idle", "return", SIGUSR1, 3, 0, 0},
    {"ReturnFromMainWhileStreaming", "streaming", "return", SIGUSR1, 3, 0, 0},
    {"Exit", "idle", "exit", SIGUSR1, 4, 0, 0},
    {"ExitWhileStreaming", "streaming", "exit", SIGUSR1, 4, 0, 0},
    {"Terminated", "idle", "return", SIGTERM, -1, SIGTERM, 0},
    {"TerminatedWhileStreaming", "streaming", "return", SIGTERM, -1, SIGTERM, 0},
    {"Interrupted", "idle", "return", SIGINT, -1, SIGINT, 0},
    {"InterruptedWhileStreaming", "streaming", "return", SIGINT, -1, SIGINT, 0},
    {"HungUpWhileStreaming", "streaming", "return", SIGHUP, -1, SIGHUP, 0},
    {"Quit", "idle", "return", SIGQUIT, -1, SIGQUIT, 0},
    {"QuitWhileStreaming", "streaming", "return", SIGQUIT, -1, SIGQUIT, 0},
    {"QuickExitWhileStreaming", "streaming", "quick_exit", SIGUSR1, 5, 0, 0},
    {"Killed", "idle", "return", SIGKILL, -1, SIGKILL, kControlBit},
};

class ProcessEnd : public testing::TestWithParam<End> {
protected:
  static void SetUpTestSuite() {
    const KrResult result = KrInstallTransports({.gigEVision = true, .usb3Vision = false});
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  }
};

TEST_P(ProcessEnd, DeviceUnderControl_IsGivenBackAndTheExitStatusKept) {
  const FakeCamera camera;
  ASSERT_TRUE(camera.IsAnswering());
  std::uint32_t privilege = 0;
  ProgramRun program(DEVICEHOLDER_PATH, {GetParam().activity, GetParam().way});
  ASSERT_TRUE(program.AwaitError("holding\n")) << program.GetErrors();
  ASSERT_TRUE(ReadControlPrivilege(privilege).IsOK());
  ASSERT_EQ(privilege, kControlBit);

  program.Signal(GetParam().signal);

  EXPECT_EQ(program.Finish(), GetParam().exitCode) << program.GetErrors();
  EXPECT_EQ(program.GetEndSignal(), GetParam().endSignal);
  const KrResult read = ReadControlPrivilege(privilege);
  ASSERT_TRUE(read.IsOK()) << read.GetDescription().CStr();
  EXPECT_EQ(privilege, GetParam().privilege);
}

INSTANTIATE_TEST_SUITE_P(Ways, ProcessEnd, testing::ValuesIn(kEnds),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

} // namespace
