#include "sync/parametersync.h"

#include "bridgedevicefixture.h"
#include "describedcamera.h"
#include "krbase/krlogger.h"
#include "sync/imageformat.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;

namespace krcamerabridge {
namespace {

/// A camera that is attached to a source of the device while it lives.
class AttachedCamera {
public:
  AttachedCamera(GrabberDevice& aGrabber, const char* aSource, const std::string& aNodes = MakeSizeNodes(0, "1000"))
      : camera(aNodes), sync(BorrowedDevice(aGrabber.device.get()), nullptr) {
    for (const char* const name : kSizeFeatures)
      camera.Poke(FindRegister(0, name), {0, 0, 0, 0});
    sync.SetSource(aSource);
    sync.SetOn(true);
    sync.Attach(*camera.array);
  }

  void Set(const char* aName, std::int64_t aValue) { ASSERT_TRUE(camera.Integer(aName).SetValue(aValue).IsOK()); }
  bool AwaitRest() {
    return Await([this] { return sync.GetText().IsEmpty(); });
  }

  DescribedCamera camera;
  ParameterSync sync;
};

TEST(ParameterSync, TwoCamerasOfOneDevice_NeverSetTheOthersSource) {
  GrabberDevice grabber;
  AttachedCamera first(grabber, "Source0");
  AttachedCamera second(grabber, "Source1");

  for (std::int64_t i = 1; i <= 50; ++i) {
    first.Set("Width", i);
    second.Set("Width", 500 + i);
    second.Set("Height", i);
  }

  EXPECT_TRUE(Await([&] { return grabber.Peek(0, "Width") == 50; }));
  EXPECT_TRUE(Await([&] { return grabber.Peek(1, "Width") == 550 && grabber.Peek(1, "Height") == 50; }));
  EXPECT_TRUE(first.AwaitRest());
  EXPECT_TRUE(second.AwaitRest());
  EXPECT_EQ(grabber.Peek(0, "Height"), 0u);
  EXPECT_EQ(grabber.link->Peek(kSelectorRegister), 0u);
}

TEST(ParameterSync, Offset_IsTakenAwayBeforeTheSizeAndSetBehindIt) {
  GrabberDevice grabber;
  grabber.link->Poke(GrabberDevice::GetRegister(0, "OffsetX"), 900);
  AttachedCamera camera(grabber, "");
  ASSERT_TRUE(camera.AwaitRest());
  camera.Set("OffsetX", 100);
  ASSERT_TRUE(Await([&] { return grabber.Peek(0, "OffsetX") == 100; }));
  ASSERT_TRUE(camera.AwaitRest());
  camera.camera.Poke(FindRegister(0, "OffsetX"), {0, 0, 0, 50});
  camera.camera.Poke(FindRegister(0, "Width"), {0, 0, 3, 182}); // 950
  (void)grabber.link->port.TakeRecords();

  camera.camera.array->InvalidateCache();

  ASSERT_TRUE(Await([&] { return grabber.Peek(0, "OffsetX") == 50; }));
  EXPECT_EQ(grabber.Peek(0, "Width"), 950u);
  std::vector<std::uint64_t> written;
  for (const RegisterAccessRecord& record : grabber.link->port.TakeRecords())
    if (record.isWrite)
      written.push_back(record.address);
  EXPECT_THAT(written, ElementsAre(GrabberDevice::GetRegister(0, "OffsetX"), GrabberDevice::GetRegister(0, "Width"),
                                   GrabberDevice::GetRegister(0, "OffsetX")));
}

TEST(ParameterSync, DeviceThatHasAllValues_IsNotWritten) {
  GrabberDevice grabber;
  AttachedCamera camera(grabber, "Source0");

  ASSERT_TRUE(camera.AwaitRest());

  EXPECT_TRUE(std::ranges::none_of(grabber.link->port.TakeRecords(), &RegisterAccessRecord::isWrite));
}

TEST(ParameterSync, CameraWithoutOffsets_LeavesThoseOfTheDevice) {
  const KrLogCapture log;
  GrabberDevice grabber;
  grabber.link->Poke(GrabberDevice::GetRegister(0, "OffsetX"), 20);
  AttachedCamera camera(grabber, "",
                        "<Integer Name=\"Width\"><pValue>WidthReg</pValue></Integer>\n" + MakeIntReg("WidthReg", "4"));

  camera.Set("Width", 300);

  EXPECT_TRUE(Await([&] { return grabber.Peek(0, "Width") == 300; }));
  EXPECT_TRUE(camera.AwaitRest());
  EXPECT_EQ(grabber.Peek(0, "OffsetX"), 20u);
}

TEST(ParameterSync, ValueBeyondTheDevicesLimit_IsToldWhileTheRestIsSet) {
  const KrLogCapture log;
  GrabberDevice grabber;
  AttachedCamera camera(grabber, "Source0", MakeSizeNodes(0, "5000"));
  ASSERT_TRUE(camera.AwaitRest());

  camera.Set("Width", 4000);
  camera.Set("Height", 7);

  ASSERT_TRUE(Await([&] { return grabber.Peek(0, "Height") == 7; }));
  ASSERT_TRUE(Await([&] { return camera.sync.GetText().ToUtf8().find("could not be set") != std::string::npos; }));
  EXPECT_THAT(camera.sync.GetText().ToUtf8(), HasSubstr("The camera's Width 4000 could not be set on the device: "));
  EXPECT_EQ(grabber.Peek(0, "Width"), 0u);
}

TEST(ParameterSync, DeviceWithoutSources_IsToldWhenOneIsChosen) {
  const KrLogCapture log;
  GrabberDevice grabber(MakeSizeNodes(kSourceRegisters, "1000"));
  AttachedCamera camera(grabber, "Source1");

  EXPECT_TRUE(Await([&] {
    return camera.sync.GetText() ==
           "The device's source \"Source1\" could not be selected: The device has no sources to choose from.";
  }));
}

TEST(CarryImageFormat, StreamThatComesBetween_IsLeftAloneFromThenOn) {
  GrabberDevice grabber;
  KrGenParameterArray* parameters = nullptr;
  ASSERT_TRUE(grabber.device->GetParameters(parameters).IsOK());
  const ImageFormat format = {"Mono16", "200", "100", "8", "4"};
  KrStringList problems;

  EXPECT_FALSE(CarryImageFormat(
      format, *parameters, "Source1", [] { return false; }, problems));
  for (const char* const name : kSizeFeatures)
    EXPECT_EQ(grabber.Peek(1, name), 0u) << name;

  const auto isUnset = [&] { return grabber.Peek(1, "Width") == 0; };
  EXPECT_FALSE(CarryImageFormat(format, *parameters, "Source1", isUnset, problems));
  EXPECT_EQ(grabber.Peek(1, "Width"), 200u);
  EXPECT_EQ(grabber.Peek(1, "Height"), 0u);
  EXPECT_EQ(grabber.link->Peek(kSelectorRegister), 0u);

  EXPECT_TRUE(CarryImageFormat(
      format, *parameters, "Source1", [] { return true; }, problems));
  EXPECT_EQ(grabber.Peek(1, "Height"), 100u);
  EXPECT_TRUE(problems.IsEmpty());
}

TEST(ParameterSync, Detached_HearsOfNothing) {
  GrabberDevice grabber;
  AttachedCamera camera(grabber, "Source0");
  ASSERT_TRUE(camera.AwaitRest());

  camera.sync.Detach();

  EXPECT_TRUE(camera.sync.GetText().IsEmpty());
  EXPECT_EQ(camera.camera.Integer("Width").UnregisterEventSink(&camera.sync), KrResult::Code::InvalidInput);
  std::int64_t value = 0;
  EXPECT_EQ(camera.camera.Integer("Width").GetValue(value), KrResult::Code::ConnectionLost);
}

} // namespace
} // namespace krcamerabridge
