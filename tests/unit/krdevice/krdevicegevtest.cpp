#include "krdevice/krdevicegev.h"

#include "faketransport.h"
#include "krdevice/krdevicetolvanprotocol.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kMAC = "02:00:00:aa:BB:01";

struct InvalidConfiguration {
  const char* name;
  const char* mac;
  const char* address;
  const char* mask;
  const char* gateway;
};

constexpr InvalidConfiguration kInvalid[] = {
    {"MAC without colons", "020000aabb01", "10.0.0.2", "255.0.0.0", "0.0.0.0"},
    {"MAC too short", "02:00:00:aa:bb", "10.0.0.2", "255.0.0.0", "0.0.0.0"},
    {"MAC with a letter beyond f", "02:00:00:aa:bb:0g", "10.0.0.2", "255.0.0.0", "0.0.0.0"},
    {"address", kMAC, "10.0.0", "255.0.0.0", "0.0.0.0"},
    {"mask", kMAC, "10.0.0.2", "", "0.0.0.0"},
    {"gateway", kMAC, "10.0.0.2", "255.0.0.0", "none"},
};

} // namespace

TEST(KrDeviceGEV, SetIPConfiguration_TextsThatDoNotParse_AreInvalidInputAndAskNobody) {
  const RegisteredTransport transport;
  for (const InvalidConfiguration& row : kInvalid) {
    SCOPED_TRACE(row.name);

    const KrResult result = KrDeviceGEV::SetIPConfiguration(row.mac, row.address, row.mask, row.gateway);

    EXPECT_TRUE(result == KrResult::Code::InvalidInput);
    EXPECT_THAT(transport->configured, IsEmpty());
  }
}

TEST(KrDeviceGEV, SetIPConfiguration_SeveralTransports_AsksUntilOneConfirms) {
  const RegisteredTransport unable;
  const RegisteredTransport able;
  const RegisteredTransport unasked;
  unable->configureResult = KrResult::Code::NotSupported;
  able->configureResult = {};

  EXPECT_TRUE(KrDeviceGEV::SetIPConfiguration(kMAC, "10.0.0.2", "255.0.0.0", "10.0.0.1").IsOK());

  EXPECT_THAT(able->configured, ElementsAre(kMAC, "10.0.0.2", "255.0.0.0", "10.0.0.1"));
  EXPECT_THAT(unasked->configured, IsEmpty());
}

TEST(KrDeviceGEV, SetIPConfiguration_NobodyConfirms_IsNotFound) {
  const RegisteredTransport transport;

  const KrResult result = KrDeviceGEV::SetIPConfiguration(kMAC, "10.0.0.2", "255.0.0.0", "0.0.0.0");

  EXPECT_TRUE(result == KrResult::Code::NotFound);
  EXPECT_FALSE(result.GetDescription().IsEmpty());
}

TEST(KrDeviceGEV, SetIPConfiguration_TransportsThatTellOfTheSilence_GivesTheFirstText) {
  const RegisteredTransport unable;
  const RegisteredTransport mute;
  const RegisteredTransport telling;
  const RegisteredTransport tellingLater;
  unable->configureResult = {KrResult::Code::NotSupported, "has no addresses"};
  telling->configureResult = {KrResult::Code::NotFound, "it answers, but"};
  tellingLater->configureResult = {KrResult::Code::NotFound, "not here"};

  const KrResult result = KrDeviceGEV::SetIPConfiguration(kMAC, "10.0.0.2", "255.0.0.0", "0.0.0.0");

  EXPECT_TRUE(result == KrResult::Code::NotFound);
  EXPECT_EQ(result.GetDescription(), "it answers, but");
}

TEST(KrDeviceGEV, SetIPConfiguration_OneTransportKnowsWhyNot_GivesItsReason) {
  const RegisteredTransport refusing;
  const RegisteredTransport silent;
  refusing->configureResult = {KrResult::Code::Busy, "in use"};

  const KrResult result = KrDeviceGEV::SetIPConfiguration(kMAC, "10.0.0.2", "255.0.0.0", "0.0.0.0");

  EXPECT_TRUE(result == KrResult::Code::Busy);
  EXPECT_EQ(result.GetDescription(), "in use");
}

TEST(KrDeviceTolvanProtocol, SetIPConfiguration_TransportConfirms_Succeeds) {
  const RegisteredTransport able;
  able->configureResult = {};

  EXPECT_TRUE(KrDeviceTolvanProtocol::SetIPConfiguration(kMAC, "10.0.0.2", "255.0.0.0", "0.0.0.0").IsOK());

  EXPECT_THAT(able->configured, ElementsAre(kMAC, "10.0.0.2", "255.0.0.0", "0.0.0.0"));
}

TEST(KrDeviceGEV, GetAccessType_OneTransportKnows_GivesItsAnswer) {
  const RegisteredTransport silent;
  const RegisteredTransport knowing;
  knowing->accessResult = {};
  knowing->accessType = krsystem::AccessType::Exclusive;
  KrAccessType type = KrAccessType::Unknown;

  EXPECT_TRUE(KrDeviceGEV::GetAccessType("10.0.0.2", type).IsOK());

  EXPECT_EQ(type, KrAccessType::Exclusive);
}

TEST(KrDeviceGEV, GetAccessType_NothingAnswersOrNoAddress_LeavesType) {
  const RegisteredTransport silent;
  const RegisteredTransport throwing;
  throwing->throws = true;
  KrAccessType type = KrAccessType::ReadOnly;

  EXPECT_TRUE(KrDeviceGEV::GetAccessType("10.0.0.2", type) == KrResult::Code::SystemError);
  throwing->throws = false;
  EXPECT_TRUE(KrDeviceGEV::GetAccessType("10.0.0.2", type) == KrResult::Code::NotFound);
  EXPECT_TRUE(KrDeviceGEV::GetAccessType("10.0.0", type) == KrResult::Code::InvalidInput);

  EXPECT_EQ(type, KrAccessType::ReadOnly);
}
