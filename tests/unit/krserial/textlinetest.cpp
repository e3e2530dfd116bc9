// Lines of a maker's whose data are texts, which cannot carry zero bytes.

#include "featureportfixture.h"
#include "krbase/krlogger.h"

namespace {

using krtest::FeatureDevice;
using krtest::FeaturePort;

class TextLine : public krtest::FeaturePortTest {
protected:
  void SetUp() override {
    AddMap(krtest::kUartMap);
    ASSERT_TRUE(port.Open(device.adapter.get(), KrDeviceSerial::Serial0).IsOK());
  }
  std::string GetSent() {
    return device.Port().With([](FeaturePort& aPort) { return aPort.uarts[0].sent; });
  }

  FeatureDevice device{krtest::MakeUartFeatures("StringReg")};
};

} // namespace

TEST_F(TextLine, EveryOtherByte_IsCarriedBothWays) {
  std::string bytes;
  for (int i = 1; i < 256; ++i)
    bytes += static_cast<char>(i);
  Receive(device, 0, bytes);

  ASSERT_TRUE(Write(bytes).IsOK());

  EXPECT_EQ(GetSent(), bytes);
  EXPECT_EQ(ReadAll(bytes.size()), bytes);
}

TEST_F(TextLine, AMessageWithAZeroByte_IsSentUpToItAndRefusedFromThere) {
  const KrLogCapture log;

  const KrResult result = Write(std::string("A\0B", 3));

  EXPECT_EQ(result, KrResult::Code::InvalidInput);
  EXPECT_NE(result.GetDescription().ToUtf8().find("cannot carry a zero byte"), std::string::npos);
  EXPECT_EQ(written, 1U);
  EXPECT_EQ(GetSent(), "A");
  EXPECT_EQ(log.GetRecords().size(), 1U);
}

TEST_F(TextLine, ALongMessageWithAZeroByteAtItsEnd_IsSentWholeButForThat) {
  const KrLogCapture log;
  const std::string message(40, 'm');

  EXPECT_EQ(Write(message + '\0'), KrResult::Code::InvalidInput);

  EXPECT_EQ(written, 40U);
  EXPECT_EQ(GetSent(), message);
}

TEST_F(TextLine, BytesBehindAZeroByte_AreToldToBeLostAfterThoseBefore) {
  const KrLogCapture log;
  Receive(device, 0, std::string("a\0b", 3));

  ASSERT_TRUE(Read().IsOK());
  EXPECT_EQ(text, "a");
  const KrResult lost = Read();

  EXPECT_EQ(lost, KrResult::Code::ProtocolError);
  EXPECT_NE(lost.GetDescription().ToUtf8().find("2, are lost"), std::string::npos) << lost.GetDescription().CStr();
  EXPECT_EQ(log.GetRecords().size(), 1U);
  Receive(device, 0, "next");
  EXPECT_TRUE(Read().IsOK());
  EXPECT_EQ(text, "next");
}

TEST_F(TextLine, ATextThatBeginsWithAZeroByte_IsToldToBeLost) {
  const KrLogCapture log;
  Receive(device, 0, std::string("\0b", 2));

  EXPECT_EQ(Read(), KrResult::Code::ProtocolError);
  EXPECT_EQ(Read(0), KrResult::Code::TimeLimitExceeded);
}
