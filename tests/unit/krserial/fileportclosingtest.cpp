// A file as a serial port: what closing it costs, and whose choice its selectors keep.

#include "featureportfixture.h"

namespace {

using krtest::FeatureDevice;
using krtest::FeaturePort;

class FilePort : public krtest::FeaturePortTest {
protected:
  void SetUp() override {
    array = device.device->GetParameters();
    ASSERT_NE(array, nullptr);
    ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());
  }
  int CountAccesses() {
    return device.Port().With([](FeaturePort& aPort) { return aPort.accesses; });
  }
  KrString GetFile() {
    KrString entry;
    EXPECT_TRUE(array->GetEnum("FileSelector")->GetEntry(entry).IsOK());
    return entry;
  }

  FeatureDevice device{krtest::MakeFileAccess()};
  KrGenParameterArray* array = nullptr;
};

} // namespace

TEST_F(FilePort, ClosedWhenTheCameraHasJustGoneSilent_AsksOneQuestion) {
  device.Port().With([](FeaturePort& aPort) { aPort.failure = KrResult::Code::TimeLimitExceeded; });
  const int before = CountAccesses();

  EXPECT_TRUE(port.Close().IsOK());

  EXPECT_EQ(CountAccesses(), before + 1);
}

TEST_F(FilePort, ClosedWhenTheCameraWasSilentBefore_AsksNothing) {
  device.Port().With([](FeaturePort& aPort) { aPort.failure = KrResult::Code::TimeLimitExceeded; });
  EXPECT_EQ(Write("bytes"), KrResult::Code::TimeLimitExceeded);
  const int before = CountAccesses();

  EXPECT_TRUE(port.Close().IsOK());

  EXPECT_EQ(CountAccesses(), before);
}

TEST_F(FilePort, ClosedWhenTheCommandIsNeverDone_PutsTheSelectorsBack) {
  device.Port().With([](FeaturePort& aPort) { aPort.isStuck = true; });

  EXPECT_TRUE(port.Close().IsOK());

  EXPECT_EQ(GetFile(), KrString("UserSet1"));
}

TEST_F(FilePort, ClosedInTheMiddleOfABurst_PutsTheSelectorsBack) {
  Receive(device, 0, "more than one read of sixteen bytes");
  ASSERT_TRUE(Read().IsOK());
  ASSERT_EQ(GetFile(), KrString("SerialPort0"));

  EXPECT_TRUE(port.Close().IsOK());

  EXPECT_EQ(GetFile(), KrString("UserSet1"));
}

TEST_F(FilePort, AFileThatAUserChoosesInABurst_StaysChosenAfterIt) {
  Receive(device, 0, "more than one read of sixteen bytes");
  ASSERT_TRUE(Read().IsOK());
  ASSERT_TRUE(array->GetEnum("FileSelector")->SetEntry("SerialPort1").IsOK());

  EXPECT_EQ(ReadAll(19), "ad of sixteen bytes");
  EXPECT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(GetFile(), KrString("SerialPort1"));
}

TEST_F(FilePort, TwoPortsInTurns_LeaveTheSelectorsAsTheyWere) {
  KrDeviceSerialPort other;
  ASSERT_TRUE(other.Open(device.adapter.get(), KrDeviceSerial::Serial1).IsOK());
  Receive(device, 0, "one read and more of the first");
  Receive(device, 1, "one read and more of the second");
  std::uint8_t byte = 0;
  std::uint32_t read = 0;
  ASSERT_TRUE(port.Read(&byte, 1, read, krtest::kGenerousMs).IsOK());
  ASSERT_TRUE(other.Read(&byte, 1, read, krtest::kGenerousMs).IsOK());

  EXPECT_TRUE(port.Close().IsOK());
  EXPECT_TRUE(other.Close().IsOK());

  EXPECT_EQ(GetFile(), KrString("UserSet1"));
}
