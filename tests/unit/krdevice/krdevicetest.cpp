#include "krdevice/krdevice.h"

#include "fakelink.h"
#include "faketransport.h"
#include "krbase/krlogger.h"
#include "krsystem/krsystem.h"

#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <new>
#include <optional>

namespace {

// Counts the calls and does what a test wants in them.
class RecordingSink : public KrDeviceEventSink {
public:
  void OnDeviceLost(KrDevice* aDevice, const KrResult& aReason) override {
    ++lost;
    device = aDevice;
    reason = aReason;
    if (onLost)
      onLost();
  }
  void OnDeviceBack(KrDevice*) override { ++back; }

  int lost = 0;
  int back = 0;
  KrDevice* device = nullptr;
  KrResult reason;
  std::function<void()> onLost;
};

// A system that found one device of a kind, and the link that its opening gives.
class OpenedDevice {
public:
  explicit OpenedDevice(krsystem::AnyDeviceFields aFields) {
    mTransport->interfaces = {MakeAdapter("eth0")};
    mTransport->answers = {{0, std::move(aFields)}};
    mTransport->open = [this](krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) {
      access = aAccess;
      if (refusal.IsOK()) {
        auto made = std::make_unique<FakeLink>();
        link = made.get();
        aLink = std::move(made);
      }
      return refusal;
    };
    EXPECT_TRUE(mSystem.Find().IsOK());
  }
  KrResult Open(KrDeviceAccess aAccess = KrDeviceAccess::Control) {
    return KrDevice::Open(*mSystem.GetDeviceInfo(0), aAccess, device);
  }
  FakeTransport& GetTransport() { return *mTransport.Get(); }

  krsystem::DeviceAccess access = krsystem::DeviceAccess::Monitor;
  KrResult refusal;
  FakeLink* link = nullptr;
  std::unique_ptr<KrDevice> device;

private:
  RegisteredTransport mTransport;
  KrSystem mSystem;
};

template <typename Fields>
Fields MakeFields() {
  Fields fields;
  fields.uniqueID = "id";
  fields.displayID = "Camera id";
  return fields;
}

} // namespace

TEST(KrDevice, Open_EachKind_GivesDeviceOfThatKind) {
  const std::pair<krsystem::AnyDeviceFields, KrDeviceInfoType> rows[] = {
      {MakeFields<krsystem::GEVFields>(), KrDeviceInfoType::GEV},
      {MakeFields<krsystem::TolvanProtocolFields>(), KrDeviceInfoType::TolvanProtocol},
      {MakeFields<krsystem::U3VFields>(), KrDeviceInfoType::U3V},
  };
  for (const auto& [fields, type] : rows) {
    OpenedDevice opened(fields);

    ASSERT_TRUE(opened.Open().IsOK());

    EXPECT_EQ(opened.device->GetType(), type);
    EXPECT_EQ(opened.device->GetDisplayID(), "Camera id");
  }
}

TEST(KrDevice, Open_FoundDevice_KeepsTheTextsThatItWasFoundWith) {
  auto fields = MakeFields<krsystem::U3VFields>();
  fields.vendorName = "Vendor";
  fields.modelName = "Model";
  fields.serialNumber = "S1";
  fields.userDefinedName = "left";
  OpenedDevice opened(fields);

  ASSERT_TRUE(opened.Open().IsOK());

  EXPECT_EQ(opened.device->GetUniqueID(), "id");
  EXPECT_EQ(opened.device->GetVendorName(), "Vendor");
  EXPECT_EQ(opened.device->GetModelName(), "Model");
  EXPECT_EQ(opened.device->GetSerialNumber(), "S1");
  EXPECT_EQ(opened.device->GetUserDefinedName(), "left");
}

TEST(KrDevice, Open_PlainUSBDevice_IsNotSupported) {
  OpenedDevice usb(MakeFields<krsystem::USBFields>());

  EXPECT_TRUE(usb.Open() == KrResult::Code::NotSupported);

  EXPECT_EQ(usb.device, nullptr);
}

TEST(KrDevice, Open_DeviceOfNoTransport_IsNotSupported) {
  const KrDeviceInfoGEV info(MakeFields<krsystem::GEVFields>());
  std::unique_ptr<KrDevice> device;

  EXPECT_TRUE(KrDevice::Open(info, KrDeviceAccess::Control, device) == KrResult::Code::NotSupported);

  EXPECT_EQ(device, nullptr);
}

TEST(KrDevice, Open_FoundDevice_HandsItsFieldsToItsTransport) {
  OpenedDevice gev(MakeCamera("a"));

  EXPECT_TRUE(gev.Open().IsOK());

  ASSERT_EQ(gev.GetTransport().openedDevices.size(), 1u);
  EXPECT_EQ(gev.GetTransport().openedDevices[0], krsystem::AnyDeviceFields(MakeCamera("a")));
  EXPECT_EQ(gev.GetTransport().openedInterfaces[0], krsystem::InterfaceFields(MakeAdapter("eth0")));
}

TEST(KrDevice, Open_EachAccess_ReachesTheTransport) {
  const std::pair<KrDeviceAccess, krsystem::DeviceAccess> rows[] = {
      {KrDeviceAccess::Monitor, krsystem::DeviceAccess::Monitor},
      {KrDeviceAccess::Control, krsystem::DeviceAccess::Control},
      {KrDeviceAccess::Exclusive, krsystem::DeviceAccess::Exclusive},
  };
  for (const auto& [asked, expected] : rows) {
    OpenedDevice gev(MakeFields<krsystem::GEVFields>());

    EXPECT_TRUE(gev.Open(asked).IsOK());

    EXPECT_EQ(gev.access, expected);
  }
}

TEST(KrDevice, Open_TransportRefuses_GivesItsResultAndNoDevice) {
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  gev.refusal = {KrResult::Code::AccessDenied, "in use"};

  const KrResult result = gev.Open();

  EXPECT_TRUE(result == KrResult::Code::AccessDenied);
  EXPECT_EQ(result.GetDescription(), "in use");
  EXPECT_EQ(gev.device, nullptr);
}

TEST(KrDevice, Open_TransportThrows_IsSystemError) {
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  gev.GetTransport().throws = true;

  EXPECT_TRUE(gev.Open() == KrResult::Code::SystemError);

  EXPECT_EQ(gev.device, nullptr);
}

TEST(KrDevice, Open_LinkThrowsWhenTheDeviceIsMade_IsSystemErrorAndGivesNoDevice) {
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  gev.GetTransport().open = [](krsystem::DeviceAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) {
    auto made = std::make_unique<FakeLink>();
    made->onSetSink = [](krsystem::IDeviceLinkSink* aSink) {
      if (aSink)
        throw std::bad_alloc();
    };
    aLink = std::move(made);
    return KrResult();
  };

  EXPECT_TRUE(gev.Open() == KrResult::Code::SystemError);

  EXPECT_EQ(gev.device, nullptr);
}

TEST(KrDevice, IsConnected_Link_DecidesIt) {
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  ASSERT_TRUE(gev.Open().IsOK());

  EXPECT_TRUE(gev.device->IsConnected());
  gev.link->connected = false;
  EXPECT_FALSE(gev.device->IsConnected());
}

TEST(KrDeviceEvents, LossAndReturn_EveryRegisteredSink_HearsOfThem) {
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  ASSERT_TRUE(gev.Open().IsOK());
  RecordingSink first;
  RecordingSink second;
  EXPECT_TRUE(gev.device->RegisterEventSink(&first).IsOK());
  EXPECT_TRUE(gev.device->RegisterEventSink(&second).IsOK());

  gev.link->sink->OnLinkLost({KrResult::Code::ConnectionLost, "cable"});
  gev.link->sink->OnLinkBack();

  EXPECT_EQ(first.lost, 1);
  EXPECT_EQ(first.back, 1);
  EXPECT_EQ(first.device, gev.device.get());
  EXPECT_EQ(first.reason.GetDescription(), "cable");
  EXPECT_EQ(second.lost, 1);
  EXPECT_EQ(second.back, 1);
}

TEST(KrDeviceEvents, Loss_WhileTheDeviceIsBeingDestroyed_SinkCanStillAskForTheType) {
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  ASSERT_TRUE(gev.Open().IsOK());
  RecordingSink sink;
  std::optional<KrDeviceInfoType> type;
  sink.onLost = [&] { type = sink.device->GetType(); };
  EXPECT_TRUE(gev.device->RegisterEventSink(&sink).IsOK());
  gev.link->onSetSink = [&](krsystem::IDeviceLinkSink*) { gev.link->sink->OnLinkLost(KrResult::Code::ConnectionLost); };

  gev.device.reset();

  EXPECT_EQ(type, KrDeviceInfoType::GEV);
}

TEST(KrDeviceEvents, RegisterEventSink_NullOrTwice_IsInvalidInput) {
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  ASSERT_TRUE(gev.Open().IsOK());
  RecordingSink sink;

  EXPECT_TRUE(gev.device->RegisterEventSink(nullptr) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(gev.device->RegisterEventSink(&sink).IsOK());
  EXPECT_TRUE(gev.device->RegisterEventSink(&sink) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(gev.device->UnregisterEventSink(&sink).IsOK());
  EXPECT_TRUE(gev.device->UnregisterEventSink(&sink) == KrResult::Code::InvalidInput);
}

TEST(KrDeviceEvents, UnregisterEventSink_FromItsOwnCall_ReturnsAndEndsTheCalls) {
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  ASSERT_TRUE(gev.Open().IsOK());
  RecordingSink sink;
  sink.onLost = [&] { EXPECT_TRUE(gev.device->UnregisterEventSink(&sink).IsOK()); };
  EXPECT_TRUE(gev.device->RegisterEventSink(&sink).IsOK());

  gev.link->sink->OnLinkLost(KrResult::Code::ConnectionLost);
  gev.link->sink->OnLinkBack();

  EXPECT_EQ(sink.lost, 1);
  EXPECT_EQ(sink.back, 0);
}

TEST(KrDeviceEvents, RegisterEventSink_OfAnotherSinkInACall_ThatSinkHearsTheNextEvent) {
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  ASSERT_TRUE(gev.Open().IsOK());
  RecordingSink first;
  RecordingSink second;
  first.onLost = [&] { EXPECT_TRUE(gev.device->RegisterEventSink(&second).IsOK()); };
  EXPECT_TRUE(gev.device->RegisterEventSink(&first).IsOK());

  gev.link->sink->OnLinkLost(KrResult::Code::ConnectionLost);
  gev.link->sink->OnLinkBack();

  EXPECT_EQ(second.lost, 0);
  EXPECT_EQ(second.back, 1);
}

TEST(KrDeviceEvents, UnregisterAndRegister_InASinksOwnCall_ItHearsTheNextEventOnce) {
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  ASSERT_TRUE(gev.Open().IsOK());
  RecordingSink sink;
  sink.onLost = [&] {
    EXPECT_TRUE(gev.device->UnregisterEventSink(&sink).IsOK());
    EXPECT_TRUE(gev.device->RegisterEventSink(&sink).IsOK());
  };
  EXPECT_TRUE(gev.device->RegisterEventSink(&sink).IsOK());

  gev.link->sink->OnLinkLost(KrResult::Code::ConnectionLost);
  gev.link->sink->OnLinkBack();

  EXPECT_EQ(sink.lost, 1);
  EXPECT_EQ(sink.back, 1);
}

TEST(KrDeviceEvents, UnregisterEventSink_OfAnotherSinkInACall_ThatSinkIsNotCalled) {
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  ASSERT_TRUE(gev.Open().IsOK());
  RecordingSink first;
  RecordingSink second;
  first.onLost = [&] { EXPECT_TRUE(gev.device->UnregisterEventSink(&second).IsOK()); };
  EXPECT_TRUE(gev.device->RegisterEventSink(&first).IsOK());
  EXPECT_TRUE(gev.device->RegisterEventSink(&second).IsOK());

  gev.link->sink->OnLinkLost(KrResult::Code::ConnectionLost);

  EXPECT_EQ(second.lost, 0);
}

TEST(KrDeviceEvents, UnregisterEventSink_WhileItIsCalledElsewhere_WaitsForTheCall) {
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  ASSERT_TRUE(gev.Open().IsOK());
  std::promise<void> entered;
  std::promise<void> leave;
  std::atomic<bool> ended = false;
  RecordingSink sink;
  sink.onLost = [&] {
    entered.set_value();
    leave.get_future().wait();
    ended = true;
  };
  EXPECT_TRUE(gev.device->RegisterEventSink(&sink).IsOK());
  std::thread caller([&] { gev.link->sink->OnLinkLost(KrResult::Code::ConnectionLost); });
  entered.get_future().wait();

  std::future<bool> unregistered = std::async(std::launch::async, [&] {
    EXPECT_TRUE(gev.device->UnregisterEventSink(&sink).IsOK());
    return ended.load();
  });
  leave.set_value();

  EXPECT_TRUE(unregistered.get()) << "the call had not ended";
  caller.join();
}

TEST(KrDeviceEvents, Sink_Throws_IsLoggedAndOthersAreCalled) {
  const KrLogCapture log;
  OpenedDevice gev(MakeFields<krsystem::GEVFields>());
  ASSERT_TRUE(gev.Open().IsOK());
  RecordingSink first;
  RecordingSink second;
  first.onLost = [] { throw std::runtime_error("broken"); };
  EXPECT_TRUE(gev.device->RegisterEventSink(&first).IsOK());
  EXPECT_TRUE(gev.device->RegisterEventSink(&second).IsOK());

  gev.link->sink->OnLinkLost(KrResult::Code::ConnectionLost);

  EXPECT_EQ(second.lost, 1);
  EXPECT_TRUE(log.Contains(KrLogLevel::Error, "A device's event sink threw an exception: broken"));
}
