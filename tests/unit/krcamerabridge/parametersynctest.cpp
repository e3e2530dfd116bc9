#include "sync/parametersync.h"

#include "await.h"
#include "bridgedevicefixture.h"
#include "describedcamera.h"
#include "krbase/krlogger.h"
#include "sync/imageformat.h"
#include "threadrefusal.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <thread>
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
    EXPECT_TRUE(sync.Attach(*camera.array).IsOK());
  }

  void Set(const char* aName, std::int64_t aValue) { ASSERT_TRUE(camera.Integer(aName).SetValue(aValue).IsOK()); }
  bool AwaitRest() {
    return krtest::Await([this] { return sync.GetText().IsEmpty(); });
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

  EXPECT_TRUE(krtest::Await([&] { return grabber.Peek(0, "Width") == 50; }));
  EXPECT_TRUE(krtest::Await([&] { return grabber.Peek(1, "Width") == 550 && grabber.Peek(1, "Height") == 50; }));
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
  ASSERT_TRUE(krtest::Await([&] { return grabber.Peek(0, "OffsetX") == 100; }));
  ASSERT_TRUE(camera.AwaitRest());
  camera.camera.Poke(FindRegister(0, "OffsetX"), {0, 0, 0, 50});
  camera.camera.Poke(FindRegister(0, "Width"), {0, 0, 3, 182}); // 950
  (void)grabber.link->port.TakeRecords();

  camera.camera.array->InvalidateCache();

  ASSERT_TRUE(krtest::Await([&] { return grabber.Peek(0, "OffsetX") == 50; }));
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

  EXPECT_TRUE(krtest::Await([&] { return grabber.Peek(0, "Width") == 300; }));
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

  ASSERT_TRUE(krtest::Await([&] { return grabber.Peek(0, "Height") == 7; }));
  ASSERT_TRUE(
      krtest::Await([&] { return camera.sync.GetText().ToUtf8().find("could not be set") != std::string::npos; }));
  EXPECT_THAT(camera.sync.GetText().ToUtf8(), HasSubstr("The camera's Width 4000 could not be set on the device: "));
  EXPECT_EQ(grabber.Peek(0, "Width"), 0u);
}

TEST(ParameterSync, DeviceWithoutSources_IsToldWhenOneIsChosen) {
  const KrLogCapture log;
  GrabberDevice grabber(MakeSizeNodes(kSourceRegisters, "1000"));
  AttachedCamera camera(grabber, "Source1");

  EXPECT_TRUE(krtest::Await([&] {
    return camera.sync.GetText() ==
           "The device's source \"Source1\" could not be selected: The device has no sources to choose from.";
  }));
}

TEST(CarryImageFormat, StreamThatComesBetween_IsLeftAloneFromThenOn) {
  GrabberDevice grabber;
  KrGenParameterArray& parameters = grabber.GetParameters();
  const ImageFormat format = {"Mono16", "200", "100", "8", "4"};
  KrStringList problems;

  EXPECT_FALSE(CarryImageFormat(
      format, parameters, "Source1", [] { return false; }, problems));
  for (const char* const name : kSizeFeatures)
    EXPECT_EQ(grabber.Peek(1, name), 0u) << name;

  const auto isUnset = [&] { return grabber.Peek(1, "Width") == 0; };
  EXPECT_FALSE(CarryImageFormat(format, parameters, "Source1", isUnset, problems));
  EXPECT_EQ(grabber.Peek(1, "Width"), 200u);
  EXPECT_EQ(grabber.Peek(1, "Height"), 0u);
  EXPECT_EQ(grabber.link->Peek(kSelectorRegister), 0u);

  EXPECT_TRUE(CarryImageFormat(
      format, parameters, "Source1", [] { return true; }, problems));
  EXPECT_EQ(grabber.Peek(1, "Height"), 100u);
  EXPECT_TRUE(problems.IsEmpty());
}

TEST(CarryImageFormat, OtherThreads_WriteBeforeOrBehindItAlone) {
  GrabberDevice grabber;
  KrGenParameterArray& parameters = grabber.GetParameters();
  KrStringList problems;
  std::atomic<bool> isWritten = false;
  std::jthread user;
  const auto letTheUserTry = [&] {
    if (!user.joinable())
      user = std::jthread([&] {
        EXPECT_TRUE(parameters.GetInteger("Width")->SetValue(77).IsOK());
        EXPECT_TRUE(parameters.GetEnum("SourceSelector")->SetEntry("Source1").IsOK());
        isWritten = true;
      });
    for (int i = 0; i < 10000 && !isWritten; ++i)
      std::this_thread::yield();
    EXPECT_FALSE(isWritten);
    return true;
  };

  EXPECT_TRUE(CarryImageFormat({"Mono16", "200", "100", "8", "4"}, parameters, "Source1", letTheUserTry, problems));
  user.join();

  EXPECT_TRUE(problems.IsEmpty());
  EXPECT_EQ(grabber.Peek(1, "Width"), 200u);
  EXPECT_EQ(grabber.Peek(1, "OffsetY"), 4u);
  EXPECT_EQ(grabber.Peek(0, "Width"), 77u) << "of the source that was selected when it was written";
  EXPECT_EQ(grabber.link->Peek(kSelectorRegister), 1u) << "what the user chose last";
}

TEST(CarryImageFormat, SelectorThatTheDeviceHasMovedMeanwhile_IsLeftThere) {
  std::string nodes = MakeGrabberNodes();
  nodes.insert(nodes.find("<EnumEntry"), "<EnumEntry Name=\"Source2\"><Value>2</Value></EnumEntry>");
  GrabberDevice grabber(nodes);
  KrStringList problems;
  const auto moveSelector = [&] {
    grabber.link->Poke(kSelectorRegister, 2);
    return true;
  };

  EXPECT_TRUE(CarryImageFormat({std::nullopt, "200"}, grabber.GetParameters(), "Source1", moveSelector, problems));

  EXPECT_TRUE(problems.IsEmpty());
  EXPECT_EQ(grabber.Peek(1, "Width"), 200u);
  EXPECT_EQ(grabber.link->Peek(kSelectorRegister), 2u);
}

TEST(CarryImageFormat, SelectorThatTheDeviceHadMovedBefore_IsSeen) {
  GrabberDevice grabber;
  KrStringList problems;
  ASSERT_TRUE(grabber.GetParameters().GetEnum("SourceSelector")->SetEntry("Source1").IsOK());
  grabber.link->Poke(kSelectorRegister, 0);

  EXPECT_TRUE(CarryImageFormat(
      {std::nullopt, "200"}, grabber.GetParameters(), "Source1", [] { return true; }, problems));

  EXPECT_EQ(grabber.Peek(1, "Width"), 200u);
  EXPECT_EQ(grabber.link->Peek(kSelectorRegister), 0u);
}

TEST(CarryImageFormat, DeviceThatDoesNotAnswerAnyMore_IsToldOnceAndNotAskedForTheRest) {
  GrabberDevice grabber;
  KrStringList problems;
  std::size_t unanswered = 0;
  grabber.link->port.SetFault([&, isSilent = false](const RegisterAccessRecord& aAccess) mutable {
    isSilent = isSilent || (aAccess.isWrite && aAccess.address == GrabberDevice::GetRegister(1, "Width"));
    unanswered += isSilent;
    return isSilent ? KrResult(KrResult::Code::TimeLimitExceeded) : KrResult();
  });

  EXPECT_TRUE(CarryImageFormat(
      {"Mono8", "200", "100", "8", "4"}, grabber.GetParameters(), "Source1", [] { return true; }, problems));

  ASSERT_EQ(problems.GetCount(), 2u);
  EXPECT_THAT(problems[0].ToUtf8(), HasSubstr("size and pixel format could not be set on the device: "));
  EXPECT_THAT(problems[1].ToUtf8(), HasSubstr("source \"Source0\" could not be selected again: "));
  EXPECT_EQ(unanswered, 2u);
}

TEST(ParameterSync, DetachedWhileItSetsTheDevice_SetsNothingMoreAndPutsTheSelectorBack) {
  GrabberDevice grabber;
  AttachedCamera camera(grabber, "Source1");
  ASSERT_TRUE(camera.AwaitRest());
  camera.sync.SetOn(false);
  camera.Set("Width", 5);
  camera.Set("Height", 6);
  std::atomic<bool> isSetting = false;
  const auto isClosed = [&] {
    std::int64_t value = 0;
    return camera.camera.Integer("Width").GetValue(value) == KrResult::Code::ConnectionLost;
  };
  grabber.link->port.SetFault([&](const RegisterAccessRecord& aRecord) {
    if (aRecord.isWrite && aRecord.address == GrabberDevice::GetRegister(1, "Width")) {
      isSetting = true;
      EXPECT_TRUE(krtest::Await(isClosed));
    }
    return KrResult();
  });

  camera.sync.SetOn(true);
  ASSERT_TRUE(krtest::Await([&] { return isSetting.load(); }));
  camera.sync.Detach();
  grabber.link->port.SetFault({});

  EXPECT_EQ(grabber.Peek(1, "Height"), 0u);
  EXPECT_EQ(grabber.link->Peek(kSelectorRegister), 0u);
}

TEST(ParameterSync, AttachedWithoutAThread_FailsAndIsDetached) {
  GrabberDevice grabber;
  DescribedCamera camera(MakeSizeNodes(0, "1000"));
  ParameterSync sync(BorrowedDevice(grabber.device.get()), nullptr);
  sync.SetOn(true);

  {
    const ThreadRefusal noThreads;
    EXPECT_EQ(sync.Attach(*camera.array), KrResult::Code::SystemError);
  }

  EXPECT_TRUE(sync.GetText().IsEmpty());
  EXPECT_EQ(camera.Integer("Width").UnregisterEventSink(&sync), KrResult::Code::InvalidInput);
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
