// The driver that the document shows, with a camera as it is described there.

#include "clprotocolfixture.h"

#include "krgenicam/krgenparameterarray.h"

#include <map>

namespace krcamerabridge {
namespace {

// "id", "r" with an address, "w" with an address and a value, all of eight digits.
class SimpleCamera {
public:
  std::string operator()(std::string_view aBytes) {
    mHeard += aBytes;
    if (mHeard == "id")
      return Answer("12345678");
    if (mHeard.starts_with('r') && mHeard.size() == 9)
      return Answer(mRegisters.contains(mHeard.substr(1)) ? mRegisters[mHeard.substr(1)] : "00000000");
    if (mHeard.starts_with('w') && mHeard.size() == 17) {
      mRegisters[mHeard.substr(1, 8)] = mHeard.substr(9);
      return Answer("ok");
    }
    return {};
  }

private:
  std::string Answer(const std::string& aAnswer) {
    mHeard.clear();
    return aAnswer;
  }

  std::string mHeard;
  std::map<std::string, std::string> mRegisters;
};

TEST_F(CLProtocolTest, DriverOfTheDocument_ReadsAndWritesItsCamera) {
  krtest::CameraEnd simple{SimpleCamera()};
  CLProtocolPort simplePort(simple.GetLine(), kGenerousTimes);
  folder.InstallDocumentedDriver("libsimple.so");
  folder.Write(KR_CLPROTOCOL_SYSTEM "/SchemaVersion.1.1@Maker#Simple@XMLVersion.1.0.0.xml", MakeDescription(kNodes));
  KrString cameraID;
  KrStringList ids;
  KrResult result = simplePort.Probe(folder.GetTemplate("libsimple.so", "Maker#Simple"), cameraID, ids, {});
  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(cameraID.ToUtf8(), folder.GetTemplate("libsimple.so", "Maker#Simple#Model#_1#_12345678"));
  ASSERT_EQ(ids.GetCount(), 1u);
  result = simplePort.Connect(cameraID, ids[0], description, {});
  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  std::unique_ptr<KrGenParameterArray> array;
  ASSERT_TRUE(KrGenParameterArray::Open(description, simplePort, {CLProtocolPort::kAccessTimeoutMs}, array).IsOK());

  ASSERT_TRUE(array->GetInteger("Gain")->SetValue(0x1234).IsOK());
  array->InvalidateCache();
  std::int64_t gain = 0;
  ASSERT_TRUE(array->GetInteger("Gain")->GetValue(gain).IsOK());

  EXPECT_EQ(gain, 0x1234);
  std::uint8_t byte = 0;
  result = simplePort.Read(0x100, &byte, 1, kGenerousMs);
  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("Registers have four bytes"));
}

} // namespace
} // namespace krcamerabridge
