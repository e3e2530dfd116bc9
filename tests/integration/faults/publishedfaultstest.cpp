// A camera's serial port that is published for Camera Link programs, through faults of the device at its steps. What
// hostile programs do is in cameralink/cameralinkhostiletest.

#include "await.h"
#include "faultlab.h"

#include "cameralink/clprogram.h"
#include "cameralink/publishedline.h"
#include "krdevice/krdeviceadapter.h"
#include "krserial/krserialbridge.h"
#include "testclocks.h"

namespace krtest {

namespace {

class FaultyPublishing : public FaultLab, public testing::WithParamInterface<DeviceFaultRow> {
protected:
  FaultyPublishing() : FaultLab(std::make_shared<JumpingClock>()) { mAdvice = kDeviceAdvice; }

  KrResult Publish();
  KrResult AwaitEcho(KrSerialBridge& aBridge);

  const SocketFolder mFolder;
  ClProgram mProgram; ///< One for all, which the faults must not hurt.
};

// Sends from the program until all of it is back, or the bridge tells what it waits for.
KrResult FaultyPublishing::AwaitEcho(KrSerialBridge& aBridge) {
  EXPECT_EQ(mProgram.Ask("count"), "0 1");
  EXPECT_EQ(mProgram.Ask("init 0 0"), "0 0");
  KrString trouble;
  const bool isOver = Await([&] {
    (void)mProgram.Ask("flush 0");
    (void)mProgram.Ask("write 0 20 200");
    const bool isBack = mProgram.Ask("read 0 20 200") == "0 20 right";
    trouble = aBridge.GetStateText();
    return isBack || !trouble.IsEmpty();
  });
  EXPECT_TRUE(isOver);
  EXPECT_EQ(mProgram.Ask("close 0"), "0 0");
  return trouble.IsEmpty() ? KrResult() : KrResult(KrResult::Code::ConnectionLost, trouble);
}

KrResult FaultyPublishing::Publish() {
  std::unique_ptr<KrDevice> device;
  KrResult result = Open(device);
  if (!result.IsOK())
    return result;
  KrDeviceAdapter adapter(*device);
  KrSerialBridge bridge;
  result = bridge.Start("Camera", &adapter, KrDeviceSerial::Bulk0);
  if (result.IsOK())
    result = AwaitEcho(bridge);
  mSteps.NoteUsed();
  bridge.Stop();
  EXPECT_EQ(bridge.GetState(), KrSerialBridgeState::Stopped);
  EXPECT_EQ(mProgram.Ask("count"), "0 0") << "nothing is published any more";
  return result;
}

} // namespace

TEST_P(FaultyPublishing, UnderACameraLinkProgram_IsSaidAndTheProgramTalksToTheNextBridge) {
  const DeviceFault fault = GetParam().fault;
  const bool isGone = fault == DeviceFault::Vanishes || fault == DeviceFault::LosesPower;

  // A line goes on when the registers are silent.
  TryAtEachStep(
      MakeFault(fault), [this] { return Publish(); }, 24, isGone);
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultyPublishing, testing::ValuesIn(kDeviceFaults), NameRow<DeviceFaultRow>);

} // namespace krtest
