#include "acquisition/cameraidentity.h"

#include <gtest/gtest.h>

using krviewer::IsSameAddress;
using krviewer::IsSameCamera;

namespace {

struct CameraTexts {
  const char* uniqueID;
  const char* mac;
  const char* address;
  const char* serial;
  const char* model = "Model";
};

KrDeviceInfoGEV MakeCamera(const CameraTexts& aTexts) {
  krsystem::GEVFields fields;
  fields.uniqueID = aTexts.uniqueID;
  fields.macAddress = aTexts.mac;
  fields.ipAddress = aTexts.address;
  fields.serialNumber = aTexts.serial;
  fields.modelName = aTexts.model;
  fields.vendorName = "Maker";
  return KrDeviceInfoGEV(fields);
}

constexpr const char* kNoMAC = "00:00:00:00:00:00";
constexpr const char* kMAC = "02:00:00:00:00:01";
constexpr const char* kOtherMAC = "02:00:00:00:00:02";

struct IdentityRow {
  const char* what;
  CameraTexts first;
  CameraTexts second;
  bool isSame;
};

constexpr IdentityRow kRows[] = {
    {"AnotherAddress", {kMAC, kMAC, "10.0.0.1", "1"}, {kMAC, kMAC, "10.0.0.2", "1"}, true},
    {"AnotherMACOfTheSameSerialNumber", {kMAC, kMAC, "10.0.0.1", "1"}, {kOtherMAC, kOtherMAC, "10.0.0.1", "1"}, false},
    {"NoMACAndAnotherAddress", {"10.0.0.1/1", kNoMAC, "10.0.0.1", "1"}, {"10.0.0.2/1", kNoMAC, "10.0.0.2", "1"}, true},
    {"NoMACAndAnotherSerialNumber",
     {"10.0.0.1/1", kNoMAC, "10.0.0.1", "1"},
     {"10.0.0.1/2", kNoMAC, "10.0.0.1", "2"},
     false},
    {"NoMACAndNoSerialNumber", {"10.0.0.1/", kNoMAC, "10.0.0.1", ""}, {"10.0.0.2/", kNoMAC, "10.0.0.2", ""}, false},
    {"NoMACAndAnotherModel",
     {"10.0.0.1/1", kNoMAC, "10.0.0.1", "1"},
     {"10.0.0.2/1", kNoMAC, "10.0.0.2", "1", "B"},
     false},
    {"OneWithoutMAC", {kMAC, kMAC, "10.0.0.1", "1"}, {"10.0.0.2/1", kNoMAC, "10.0.0.2", "1"}, false},
};

class CameraIdentity : public testing::TestWithParam<IdentityRow> {};

} // namespace

TEST_P(CameraIdentity, TwoAnswers_AreOfOneCameraOrNot) {
  const KrDeviceInfoGEV first = MakeCamera(GetParam().first);
  const KrDeviceInfoGEV second = MakeCamera(GetParam().second);

  EXPECT_EQ(IsSameCamera(first, second), GetParam().isSame);
  EXPECT_EQ(IsSameCamera(second, first), GetParam().isSame);
}

INSTANTIATE_TEST_SUITE_P(Cameras, CameraIdentity, testing::ValuesIn(kRows),
                         [](const auto& aInfo) { return std::string(aInfo.param.what); });

TEST(CameraIdentityOfKinds, USBCamera_IsKnownByItsIDAlone) {
  krsystem::U3VFields fields;
  fields.uniqueID = fields.deviceGUID = "A1";
  fields.serialNumber = "1";
  const KrDeviceInfoU3V camera(fields);
  fields.uniqueID = fields.deviceGUID = "A2";
  const KrDeviceInfoU3V other(fields);

  EXPECT_TRUE(IsSameCamera(camera, KrDeviceInfoU3V(camera.GetFields())));
  EXPECT_FALSE(IsSameCamera(camera, other));
  EXPECT_FALSE(IsSameCamera(camera, MakeCamera({"A1", kNoMAC, "10.0.0.1", "1"})));
  EXPECT_TRUE(IsSameAddress(camera, other)) << "It has none.";
}
