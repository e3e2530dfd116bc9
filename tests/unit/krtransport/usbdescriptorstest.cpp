#include "usb3vision/usbdescriptors.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace krtransport;
using Bytes = std::vector<std::uint8_t>;

// The fields of each descriptor in the order of the standards, lowest byte first.
const Bytes kDevice = {18, 0x01, 0x20, 0x03, 0xEF, 0x02, 0x01, 9, 0x55, 0xF0, 0x01, 0x03, 0x04, 0x01, 1, 2, 3, 1};
const Bytes kConfiguration = {9, 0x02, 63, 0, 2, 1, 0, 0x80, 112};
const Bytes kAssociation = {8, 0x0B, 0, 2, 0xEF, 0x05, 0x00, 0};
const Bytes kControl = {9, 0x04, 0, 0, 2, 0xEF, 0x05, 0x00, 0};
const Bytes kDeviceInfoBytes = {20,   0x24, 0x01, 0x02, 0x00, 0x01, 0x00, 0x05, 0x00, 0x01,
                                0x00, 4,    5,    6,    7,    8,    9,    10,   0,    0x0C};
const Bytes kEndpoint = {7, 0x05, 0x81, 2, 0, 4, 0};
const Bytes kStream = {9, 0x04, 2, 0, 1, 0xEF, 0x05, 0x02, 0};

Bytes Join(std::initializer_list<Bytes> aParts) {
  Bytes all;
  for (const Bytes& part : aParts)
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

TEST(UsbDescriptors, Parse_Camera_ReadsEveryField) {
  const Bytes bytes = Join({kDevice, kConfiguration, kAssociation, kControl, kDeviceInfoBytes, kEndpoint, kStream});

  UsbDescriptors descriptors;
  ASSERT_TRUE(ParseUsbDescriptors(bytes, descriptors).IsOK());

  EXPECT_EQ(descriptors.usbVersion, 0x0320);
  EXPECT_EQ(descriptors.vendorID, 0xF055);
  EXPECT_EQ(descriptors.productID, 0x0301);
  EXPECT_EQ(descriptors.deviceRelease, 0x0104);
  EXPECT_EQ(descriptors.usbClass, (UsbClass{0xEF, 0x02, 0x01}));
  ASSERT_EQ(descriptors.configurations.size(), 1u);
  const UsbConfiguration& configuration = descriptors.configurations[0];
  EXPECT_EQ(configuration.value, 1);
  EXPECT_EQ(configuration.attributes, 0x80);
  EXPECT_EQ(configuration.maxPower, 112);
  ASSERT_EQ(configuration.functions.size(), 1u);
  EXPECT_EQ(configuration.functions[0].interfaceCount, 2);
  EXPECT_EQ(configuration.functions[0].usbClass, kControlInterface);
  ASSERT_EQ(configuration.interfaces.size(), 2u);
  EXPECT_EQ(configuration.interfaces[1].number, 2);
  EXPECT_EQ(configuration.interfaces[1].usbClass, kStreamInterface);
}

TEST(UsbDescriptors, Parse_MoreThanTheKernelGives_IsReadThatFar) {
  Bytes bytes = kDevice;
  while (bytes.size() + kConfiguration.size() <= 65536)
    bytes.insert(bytes.end(), kConfiguration.begin(), kConfiguration.end());
  const std::size_t within = (bytes.size() - kDevice.size()) / kConfiguration.size();
  for (int i = 0; i < 10; ++i)
    bytes.insert(bytes.end(), kConfiguration.begin(), kConfiguration.end());

  UsbDescriptors descriptors;
  ASSERT_TRUE(ParseUsbDescriptors(bytes, descriptors).IsOK());

  EXPECT_EQ(descriptors.configurations.size(), within);
}

TEST(UsbDescriptors, Parse_DeviceInfo_BelongsToTheControlInterface) {
  const Bytes bytes = Join({kDevice, kConfiguration, kControl, kDeviceInfoBytes, kStream});

  UsbDescriptors descriptors;
  ASSERT_TRUE(ParseUsbDescriptors(bytes, descriptors).IsOK());

  ASSERT_TRUE(IsUSB3Vision(descriptors));
  const UsbInterfaceDescriptor* control = FindControlInterface(descriptors.configurations[0]);
  ASSERT_TRUE(control->deviceInfo.has_value());
  EXPECT_EQ(control->deviceInfo->genCPVersion, 0x00010002u);
  EXPECT_EQ(control->deviceInfo->u3vVersion, 0x00010005u);
  EXPECT_EQ(control->deviceInfo->textIndexes, (std::array<std::uint8_t, 8>{4, 5, 6, 7, 8, 9, 10, 0}));
  EXPECT_EQ(control->deviceInfo->speedSupport, 0x0C);
  EXPECT_FALSE(descriptors.configurations[0].interfaces[1].deviceInfo.has_value());
}

TEST(UsbDescriptors, Parse_ClassDescriptorOfAnotherClass_IsNoDeviceInfo) {
  const Bytes audio = {9, 0x04, 0, 0, 0, 0x01, 0x01, 0x00, 0};
  const Bytes bytes = Join({kDevice, kConfiguration, audio, kDeviceInfoBytes});

  UsbDescriptors descriptors;
  ASSERT_TRUE(ParseUsbDescriptors(bytes, descriptors).IsOK());

  EXPECT_FALSE(IsUSB3Vision(descriptors));
  EXPECT_FALSE(descriptors.configurations[0].interfaces[0].deviceInfo.has_value());
}

TEST(UsbDescriptors, Parse_ShortDeviceInfo_IsPassedOver) {
  Bytes shortInfo(kDeviceInfoBytes.begin(), kDeviceInfoBytes.end() - 1);
  shortInfo[0] = 19;
  const Bytes bytes = Join({kDevice, kConfiguration, kControl, shortInfo, kStream});

  UsbDescriptors descriptors;
  ASSERT_TRUE(ParseUsbDescriptors(bytes, descriptors).IsOK());

  ASSERT_EQ(descriptors.configurations[0].interfaces.size(), 2u);
  EXPECT_FALSE(descriptors.configurations[0].interfaces[0].deviceInfo.has_value());
}

struct TailRow {
  const char* name;
  Bytes tail;
};

const TailRow kTails[] = {
    {"LengthZero", {0, 0x04, 1, 2}},      {"LengthOne", {1, 0x04, 1, 2}},
    {"LengthBeyondTheEnd", {9, 0x04, 1}}, {"OneByte", {9}},
    {"UnknownType", {4, 0x77, 1, 2}},
};

class UsbDescriptorsTail : public testing::TestWithParam<TailRow> {};

TEST_P(UsbDescriptorsTail, Parse_MalformedEnd_KeepsWhatCameBefore) {
  const Bytes bytes = Join({kDevice, kConfiguration, kControl, kDeviceInfoBytes, GetParam().tail});

  UsbDescriptors descriptors;
  ASSERT_TRUE(ParseUsbDescriptors(bytes, descriptors).IsOK());

  ASSERT_EQ(descriptors.configurations.size(), 1u);
  EXPECT_EQ(descriptors.configurations[0].interfaces.size(), 1u);
  EXPECT_TRUE(descriptors.configurations[0].interfaces[0].deviceInfo.has_value());
}

INSTANTIATE_TEST_SUITE_P(Tails, UsbDescriptorsTail, testing::ValuesIn(kTails),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

struct StartRow {
  const char* name;
  Bytes bytes;
};

const StartRow kStarts[] = {
    {"Nothing", {}},
    {"CutDevice", Bytes(kDevice.begin(), kDevice.end() - 1)},
    {"ConfigurationFirst", Join({kConfiguration, kDevice, kControl})},
    {"LengthBeyondTheBytes", Join({{19}, Bytes(kDevice.begin() + 1, kDevice.end())})},
};

class UsbDescriptorsStart : public testing::TestWithParam<StartRow> {};

TEST_P(UsbDescriptorsStart, Parse_NoDeviceDescriptor_IsBadDataAndSetsNothing) {
  UsbDescriptors descriptors;
  descriptors.vendorID = 7;

  const KrResult result = ParseUsbDescriptors(GetParam().bytes, descriptors);

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_EQ(descriptors.vendorID, 7);
}

INSTANTIATE_TEST_SUITE_P(Starts, UsbDescriptorsStart, testing::ValuesIn(kStarts),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST(UsbDescriptors, Parse_InterfacesBeforeAnyConfiguration_ArePassedOver) {
  UsbDescriptors descriptors;
  ASSERT_TRUE(ParseUsbDescriptors(Join({kDevice, kControl, kDeviceInfoBytes, kAssociation}), descriptors).IsOK());

  EXPECT_TRUE(descriptors.configurations.empty());
}

} // namespace
