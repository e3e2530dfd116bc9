// A camera whose description lets what Aravis evaluates stand on itself: it would follow that without end.

#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "networkfixture.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>

namespace {

constexpr std::uint32_t kFirstURL = 0x0200;
constexpr std::uint32_t kDescription = 0x10000;
constexpr const char* kCircle =
    R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="T100" VendorName="TestCameras" ToolTip="A camera for tests" StandardNameSpace="GEV"
  SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0"
  SubMinorVersion="0" ProductGuid="6C9E4F0A-57B5-4C58-9A7B-0F2D5B7C1E10"
  VersionGuid="9E2B6B52-4A2F-4C0B-8D0D-5C1F7E3A2B44" xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root" NameSpace="Standard"><pFeature>PayloadSize</pFeature></Category>
  <Integer Name="PayloadSize" NameSpace="Standard"><pValue>Other</pValue></Integer>
  <Integer Name="Other" NameSpace="Standard"><pValue>PayloadSize</pValue></Integer>
  <Port Name="Device" NameSpace="Standard"/>
</RegisterDescription>
)";

void Write(TestDevice& aDevice, std::uint32_t aAddress, std::string aText) {
  aText.resize((aText.size() + 4) / 4 * 4); // With a zero behind it, in whole words.
  for (std::uint32_t i = 0; i < aText.size(); i += 4) {
    std::uint32_t word = 0;
    for (std::uint32_t byte = 0; byte < 4; ++byte)
      word = word << 8 | static_cast<unsigned char>(aText[i + byte]);
    aDevice.Write(aAddress + i, word);
  }
}

TEST_F(OnANetwork, Start_PayloadSizeThatStandsOnItself_IsRefusedAndTheDeviceStaysOpen) {
  TestDevice camera{mHost, "port0", {.address = "192.168.1.20", .serialNumber = "circling"}};
  Write(camera, kDescription, kCircle);
  std::array<char, 64> url{};
  std::snprintf(url.data(), url.size(), "Local:test.xml;%X;%zX", kDescription, std::string(kCircle).size());
  Write(camera, kFirstURL, url.data());
  KrSystem system;
  FindThese(system, {"circling"});
  std::unique_ptr<KrDevice> device;
  ASSERT_NE(GetBySerialNumber(system, "circling"), nullptr);
  const KrResult opened = KrDevice::Open(*GetBySerialNumber(system, "circling"), KrDeviceAccess::Control, device);
  ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
  KrStream stream(*device);

  const KrResult started = stream.Start();

  EXPECT_EQ(started, KrResult::Code::BadData);
  EXPECT_THAT(started.GetDescription().ToUtf8(), testing::HasSubstr("lets PayloadSize stand on itself"));
  EXPECT_TRUE(device->IsConnected());
}

} // namespace
