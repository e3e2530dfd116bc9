#include "camerafile/camerafileport.h"

#include "await.h"
#include "cameraend.h"
#include "scriptedcameras.h"

#include "krgenicam/krgenparameterarray.h"

#include <gmock/gmock.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>

namespace krcamerabridge {
namespace {

using namespace std::string_literals;
using krtest::BinaryCamera;
using krtest::CameraEnd;
using krtest::TextCamera;
using testing::Contains;
using testing::HasSubstr;

std::string ReadExample(const std::string& aName) {
  std::ifstream stream(std::string(KR_CAMERA_FILES "/camera-files/") + aName);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void Replace(std::string& aText, const std::string& aOld, const std::string& aNew) {
  const std::size_t place = aText.find(aOld);
  ASSERT_NE(place, std::string::npos) << aOld;
  aText.replace(place, aOld.size(), aNew);
}

// A camera of the tests, as the browser has it: by its parameters.
template <typename Camera>
class Rig {
public:
  explicit Rig(const std::string& aText) {
    KrStringList errors;
    const KrResult parsed = CameraFile::Parse(aText, "example", file, errors);
    EXPECT_TRUE(parsed.IsOK()) << parsed.GetDescription().CStr();
    port = std::make_unique<CameraFilePort>(file, end.GetLine());
    KrGenDescription description;
    const KrResult described = file.GetDescription(description);
    EXPECT_TRUE(described.IsOK()) << described.GetDescription().CStr();
    KrGenArrayOptions options;
    options.timeoutMs = port->GetLongestAccessMs();
    options.getTimeMs = [this] { return timeMs.load(); };
    const KrResult opened = KrGenParameterArray::Open(description, *port, options, array);
    EXPECT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
    KrStringList faults;
    EXPECT_TRUE(array->GetFaults(faults).IsOK());
    for (const KrString& fault : faults)
      ADD_FAILURE() << fault.CStr();
  }

  std::string GetText(const char* aName) {
    KrString text;
    const KrResult result = array->Get(aName)->ToString(text);
    return result.IsOK() ? text.ToUtf8() : result.GetDescription().ToUtf8();
  }
  KrResult Set(const char* aName, const char* aText) { return array->Get(aName)->FromString(aText); }

  Camera camera;
  CameraEnd end{[this](std::string_view aBytes) { return camera.Take(aBytes); }};
  CameraFile file;
  std::unique_ptr<CameraFilePort> port;
  std::atomic<std::uint64_t> timeMs{0};
  std::unique_ptr<KrGenParameterArray> array;
};

class TextCameraFile : public testing::Test {
protected:
  Rig<TextCamera> rig{ReadExample("text-camera.yml")};
};

class BinaryCameraFile : public testing::Test {
protected:
  Rig<BinaryCamera> rig{ReadExample("binary-camera.yml")};
};

TEST_F(TextCameraFile, Values_AreTheCameras) {
  EXPECT_EQ(rig.GetText("WidthMax"), "4096");
  EXPECT_EQ(rig.GetText("Width"), "4096");
  EXPECT_EQ(rig.GetText("PixelFormat"), "Mono8");
  EXPECT_EQ(rig.GetText("Gain"), "3");
  EXPECT_EQ(rig.GetText("ExposureAuto"), "0");
  EXPECT_EQ(rig.GetText("ExposureTime"), "100.5");
  EXPECT_EQ(rig.GetText("DeviceFirmwareVersion"), "1.07 build 3");
  EXPECT_EQ(rig.GetText("DeviceTemperature"), "41.5");
}

TEST_F(TextCameraFile, Setting_SendsTheCommand) {
  EXPECT_TRUE(rig.Set("Width", "512").IsOK());
  EXPECT_TRUE(rig.Set("PixelFormat", "Mono12").IsOK());
  EXPECT_TRUE(rig.Set("Gain", "12.4").IsOK());
  EXPECT_TRUE(rig.Set("ExposureTime", "250.04").IsOK());
  EXPECT_TRUE(rig.Set("DeviceUserID", "right eye").IsOK());

  EXPECT_EQ(rig.camera.Get("WIDTH"), "0512");
  EXPECT_EQ(rig.camera.Get("BITS"), "12");
  EXPECT_EQ(rig.camera.Get("GAIN E"), "124");
  EXPECT_EQ(rig.camera.Get("EXP"), "250.0");
  EXPECT_EQ(rig.camera.Get("NAME"), "right eye");
  EXPECT_EQ(rig.GetText("ExposureTime"), "250"); // What the camera made of it.
}

TEST(CameraFile, BlanksAroundATextOfTheCamera_AreKeptWhereTheFileSaysSo) {
  std::string text = ReadExample("text-camera.yml");
  Rig<TextCamera> plain(text);
  Replace(text, "getAnswer: \"NAME={value}\"", "getAnswer: \"NAME={value:raw}\"");
  Rig<TextCamera> raw(text);

  EXPECT_TRUE(plain.Set("DeviceUserID", " right eye ").IsOK());
  EXPECT_TRUE(raw.Set("DeviceUserID", " right eye ").IsOK());
  plain.array->InvalidateCache();
  raw.array->InvalidateCache();

  EXPECT_EQ(plain.camera.Get("NAME"), " right eye ");
  EXPECT_EQ(plain.GetText("DeviceUserID"), "right eye");
  EXPECT_EQ(raw.GetText("DeviceUserID"), " right eye ");
}

TEST_F(TextCameraFile, Describing_IsInTheParameters) {
  EXPECT_EQ(rig.array->GetVendorName(), KrString("Example Optics"));
  EXPECT_EQ(rig.array->GetModelName(), KrString("Liner 4K"));
  KrString text;
  ASSERT_TRUE(rig.array->Get("Width")->GetToolTip(text).IsOK());
  EXPECT_EQ(text, KrString("Pixels of a line"));
  ASSERT_TRUE(rig.array->GetFloat("Gain")->GetUnit(text).IsOK());
  EXPECT_EQ(text, KrString("dB"));
  KrGenVisibility visibility{};
  ASSERT_TRUE(rig.array->Get("FactoryReset")->GetVisibility(visibility).IsOK());
  EXPECT_EQ(visibility, KrGenVisibility::Guru);
  EXPECT_EQ(rig.array->Get("Gain")->GetCategory(), KrString("Root\\AnalogControl"));
}

TEST_F(TextCameraFile, Ranges_AreKept) {
  std::int64_t most = 0;
  ASSERT_TRUE(rig.array->GetInteger("Width")->GetMax(most).IsOK());

  EXPECT_EQ(most, 4096);
  EXPECT_EQ(rig.Set("Width", "8192"), KrResult::Code::OutOfRange);
  EXPECT_EQ(rig.Set("Width", "520"), KrResult::Code::OutOfRange); // Between two steps.
  EXPECT_EQ(rig.Set("Gain", "24.1"), KrResult::Code::OutOfRange);
  EXPECT_FALSE(rig.Set("PixelFormat", "Mono16").IsOK());
  EXPECT_FALSE(rig.Set("DeviceUserID", "seventeen letters").IsOK());
  EXPECT_EQ(rig.camera.GetCommands().size(), 0U); // It was never asked to.
}

TEST_F(TextCameraFile, Refusals_HaveTheCamerasWords) {
  const KrResult known = rig.Set("Gain", "23");
  const KrResult unknown = rig.Set("DeviceUserID", "taken");

  EXPECT_EQ(known, KrResult::Code::ProtocolError);
  EXPECT_THAT(known.GetDescription().ToUtf8(), HasSubstr("value out of range"));
  EXPECT_EQ(unknown, KrResult::Code::ProtocolError);
  EXPECT_THAT(unknown.GetDescription().ToUtf8(), HasSubstr("another camera is called that"));
}

TEST_F(TextCameraFile, Selectors_GoIntoTheCommands) {
  EXPECT_EQ(rig.GetText("Gain"), "3");

  EXPECT_TRUE(rig.Set("GainSelector", "Odd").IsOK());

  EXPECT_EQ(rig.GetText("Gain"), "3.1");
  EXPECT_TRUE(rig.Set("Gain", "5").IsOK());
  EXPECT_EQ(rig.camera.Get("GAIN O"), "50");
  EXPECT_EQ(rig.camera.Get("GAIN E"), "30");
}

TEST(CameraFileTextSelector, WhatItSelects_IsReadAgain) {
  std::string text = ReadExample("text-camera.yml");
  Replace(text, "        type: enumeration\n        entries: {Even: E, Odd: O}\n        start: Even\n",
          "        type: string\n        maxLength: 1\n        start: E\n");
  Rig<TextCamera> rig(text);
  ASSERT_EQ(rig.GetText("Gain"), "3");

  ASSERT_TRUE(rig.Set("GainSelector", "O").IsOK());

  EXPECT_EQ(rig.GetText("Gain"), "3.1");
}

TEST_F(TextCameraFile, WhatChanges_IsReadAgain) {
  EXPECT_EQ(rig.GetText("ExposureTime"), "100.5");
  EXPECT_TRUE(rig.array->Get("ExposureTime")->IsWritable());

  EXPECT_TRUE(rig.Set("ExposureAuto", "true").IsOK());

  EXPECT_EQ(rig.GetText("ExposureTime"), "77.5");
  EXPECT_FALSE(rig.array->Get("ExposureTime")->IsWritable());
}

TEST_F(TextCameraFile, Commands_ChangeWhatTheySay) {
  EXPECT_TRUE(rig.Set("Gain", "5").IsOK());
  EXPECT_TRUE(rig.array->GetCommand("UserSetSave")->Execute().IsOK());
  EXPECT_EQ(rig.GetText("Gain"), "5");

  EXPECT_TRUE(rig.array->GetCommand("FactoryReset")->Execute().IsOK());

  EXPECT_EQ(rig.GetText("Gain"), "3");
  EXPECT_THAT(rig.camera.GetCommands(), Contains("SAVE").Times(1));
}

TEST_F(TextCameraFile, ValuesAreRemembered_UntilTheyArePolled) {
  EXPECT_EQ(rig.GetText("DeviceTemperature"), "41.5");
  rig.camera.Set("TEMP", "43.5");
  EXPECT_EQ(rig.GetText("DeviceTemperature"), "41.5");

  rig.timeMs = 2500;
  EXPECT_TRUE(rig.array->Poll().IsOK());

  EXPECT_EQ(rig.GetText("DeviceTemperature"), "43.5");
}

TEST_F(TextCameraFile, WhatTheCameraNeverTells_IsRemembered) {
  EXPECT_EQ(rig.GetText("LineTrigger"), "0");

  EXPECT_TRUE(rig.Set("LineTrigger", "true").IsOK());

  EXPECT_EQ(rig.GetText("LineTrigger"), "1");
  EXPECT_EQ(rig.camera.Get("TRIG"), "1");
}

TEST_F(TextCameraFile, Settings_AreStoredAndPutBack) {
  KrGenSettings settings;
  KrStringList problems;
  ASSERT_TRUE(rig.array->StoreSettings(settings, problems).IsOK());
  ASSERT_TRUE(rig.Set("Gain", "7").IsOK());
  ASSERT_TRUE(rig.Set("Width", "640").IsOK());

  const KrResult restored = rig.array->RestoreSettings(settings, problems);

  EXPECT_TRUE(restored.IsOK()) << restored.GetDescription().CStr();
  EXPECT_EQ(rig.camera.Get("GAIN E"), "30");
  EXPECT_EQ(rig.camera.Get("WIDTH"), "4096");
}

TEST_F(TextCameraFile, TextsThatWouldSteerTheCamera_AreRefused) {
  EXPECT_EQ(rig.Set("DeviceUserID", "a\rSAVE"), KrResult::Code::InvalidInput);
  EXPECT_EQ(rig.camera.GetCommands().size(), 0U);
}

TEST_F(TextCameraFile, OtherRegisters_AreNotThere) {
  std::uint8_t bytes[8] = {};
  const std::pair<std::uint64_t, std::size_t> rows[] = {{0, 8}, {0x1000, 4}, {0x1001, 7}, {0x100000, 8}, {~7ULL, 8}};

  for (const auto& [address, length] : rows)
    EXPECT_EQ(rig.port->Read(address, bytes, length, 30000), KrResult::Code::InvalidInput) << address;
}

TEST(CameraFileSilence, IsToldOnce_AndEndsWithTheNextAnswer) {
  std::string text = ReadExample("text-camera.yml");
  Replace(text, "answerMs: 500", "answerMs: 50");
  Rig<TextCamera> rig(text);
  rig.end.SetSilent(true);
  std::uint8_t bytes[8] = {};

  EXPECT_EQ(rig.port->Read(0x2000, bytes, sizeof bytes, krtest::GetGenerousMs()), KrResult::Code::TimeLimitExceeded);
  // Nobody waits for it again: a limit of ten minutes would be noticed.
  EXPECT_EQ(rig.port->Read(0x2000, bytes, sizeof bytes, 600000), KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(rig.port->Greet(600000), KrResult::Code::TimeLimitExceeded);

  rig.end.SetSilent(false);
  KrResult result;
  EXPECT_TRUE(krtest::Await([&] {
    result = rig.port->Read(0x2000, bytes, sizeof bytes, krtest::GetGenerousMs());
    return result.IsOK();
  })) << result.GetDescription().CStr();
  EXPECT_TRUE(rig.port->Greet(krtest::GetGenerousMs()).IsOK());
}

TEST_F(BinaryCameraFile, Values_AreTheCameras) {
  EXPECT_EQ(rig.GetText("Width"), "1024");
  EXPECT_EQ(rig.GetText("TestPattern"), "None");
  EXPECT_EQ(rig.GetText("BlackLevel"), "-2");
  EXPECT_EQ(rig.GetText("Gamma"), "1");
  EXPECT_EQ(rig.GetText("GainEnable"), "0");
  EXPECT_EQ(rig.GetText("DeviceUserID"), "right");
  std::int64_t status = 0;
  ASSERT_TRUE(rig.array->GetInteger("DeviceStatus")->GetValue(status).IsOK());
  EXPECT_EQ(status, 0xC001);
}

TEST_F(BinaryCameraFile, Setting_SendsTheCommand) {
  EXPECT_TRUE(rig.Set("Width", "512").IsOK());
  EXPECT_TRUE(rig.Set("TestPattern", "Bars").IsOK());
  EXPECT_TRUE(rig.Set("BlackLevel", "-300").IsOK());
  EXPECT_TRUE(rig.Set("Gamma", "0.5").IsOK());
  EXPECT_TRUE(rig.Set("GainEnable", "true").IsOK());
  EXPECT_TRUE(rig.Set("DeviceUserID", "left").IsOK());

  EXPECT_EQ(rig.camera.Get(0x10), "\x02\x00"s);
  EXPECT_EQ(rig.camera.Get(0x11), "\x02"s);
  EXPECT_EQ(rig.camera.Get(0x20), "\xFE\xD4"s);
  EXPECT_EQ(rig.camera.Get(0x21), "\x3F\x00\x00\x00"s);
  EXPECT_EQ(rig.camera.Get(0x22), "\x01"s);
  EXPECT_EQ(rig.camera.Get(0x02), "left");
}

TEST_F(BinaryCameraFile, TheFormatLimitsTheRange) {
  std::int64_t least = 0;
  ASSERT_TRUE(rig.array->GetInteger("BlackLevel")->GetMin(least).IsOK());

  EXPECT_EQ(least, -32768);
  EXPECT_EQ(rig.Set("BlackLevel", "32768"), KrResult::Code::OutOfRange);
}

TEST_F(BinaryCameraFile, Refusals_HaveTheirMeaning) {
  const KrResult result = rig.Set("Width", "2040");

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("value out of range"));
}

TEST_F(BinaryCameraFile, UnknownValues_AreNoEntries) {
  rig.camera.Set(0x11, "\x09");

  std::int64_t value = 0;
  const KrResult result = rig.array->GetEnum("TestPattern")->GetValue(value);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("is no value of \"TestPattern\""));
}

TEST_F(BinaryCameraFile, WhatIsNotRemembered_IsAskedEachTime) {
  EXPECT_EQ(rig.GetText("DeviceStatus"), "49153");

  rig.camera.Set(0x01, std::string("\0\0\0\x07", 4));

  EXPECT_EQ(rig.GetText("DeviceStatus"), "7");
}

// A camera that is not there: what the program remembers itself.
constexpr const char* kRemembered =
    "cameraFile: 1\ncamera: {vendor: V & W, model: '<M>'}\nprotocol: {answerEnd: \"\\r\", setAnswer: ~}\n"
    "categories:\n"
    "  - name: Outer\n"
    "    categories:\n"
    "      - name: Inner\n"
    "        displayName: In & out\n"
    "        features:\n"
    "          - {name: Mode, type: enumeration, start: Manual, entries: {Manual: 0, Automatic: 1}}\n"
    "          - {name: Level, type: integer, start: 5, min: LevelMin, availableIf: {Mode: Manual, Enabled: true}}\n"
    "          - {name: LevelMin, type: integer, start: -7}\n"
    "          - {name: Enabled, type: boolean, start: true, lockedIf: {Level: 9, Mode: Automatic}}\n"
    "          - {name: Blind, type: float, set: 'B={value}', offset: 1.5}\n";

class RememberedFeatures : public testing::Test {
protected:
  Rig<TextCamera> rig{kRemembered};
};

TEST_F(RememberedFeatures, AreThereWhileAllTheirConditionsHold) {
  EXPECT_EQ(rig.GetText("Level"), "5");
  EXPECT_TRUE(rig.Set("Mode", "Automatic").IsOK());
  EXPECT_FALSE(rig.array->Get("Level")->IsReadable());
  EXPECT_TRUE(rig.Set("Mode", "Manual").IsOK());
  EXPECT_TRUE(rig.Set("Enabled", "false").IsOK());
  EXPECT_FALSE(rig.array->Get("Level")->IsReadable());
}

TEST_F(RememberedFeatures, AreLockedWhileOneConditionHolds) {
  EXPECT_TRUE(rig.array->Get("Enabled")->IsWritable());
  EXPECT_TRUE(rig.Set("Level", "9").IsOK());
  EXPECT_FALSE(rig.array->Get("Enabled")->IsWritable());
  EXPECT_TRUE(rig.Set("Level", "8").IsOK());
  EXPECT_TRUE(rig.array->Get("Enabled")->IsWritable());
  EXPECT_TRUE(rig.Set("Mode", "Automatic").IsOK());
  EXPECT_FALSE(rig.array->Get("Enabled")->IsWritable());
}

TEST_F(RememberedFeatures, HaveTheBoundsOfOthers) {
  EXPECT_EQ(rig.Set("Level", "-8"), KrResult::Code::OutOfRange);
  EXPECT_TRUE(rig.Set("LevelMin", "-8").IsOK());
  EXPECT_TRUE(rig.Set("Level", "-8").IsOK());
}

TEST_F(RememberedFeatures, CategoriesHoldCategories) {
  EXPECT_EQ(rig.array->Get("Mode")->GetCategory(), KrString("Root\\Outer\\Inner"));
  EXPECT_EQ(rig.array->GetVendorName(), KrString("V & W"));
  EXPECT_EQ(rig.array->GetModelName(), KrString("<M>"));
}

TEST_F(RememberedFeatures, WhatCanOnlyBeSet_CannotBeRead) {
  EXPECT_EQ(rig.array->Get("Blind")->GetAccessMode(), KrGenAccessMode::WriteOnly);
  EXPECT_TRUE(rig.Set("Blind", "2").IsOK()); // Its answer is nothing, and there is nothing to wait for.
}

TEST_F(TextCameraFile, TheLongestAccess_HoldsAllTries) {
  // Three tries of SAVE with 3000 ms each, and the quiet between them.
  EXPECT_GE(rig.port->GetLongestAccessMs(), 3U * 3000 + 2 * 3000);
  EXPECT_LE(rig.port->GetLongestAccessMs(), 120000U);
}

// What a damaged line does to a value that is set, then read.
struct Tally {
  int right = 0;
  int failed = 0;
};

template <typename RigOfCamera, typename GetState>
Tally SetUnderFaults(RigOfCamera& aRig, const char* aName, std::int64_t aFactor, GetState aGetState) {
  Tally tally;
  for (std::int64_t i = 0; i < 400; ++i) {
    const std::int64_t wanted = 64 + i % 100 * aFactor;
    if (const KrResult set = aRig.array->GetInteger(aName)->SetValue(wanted); set.IsOK()) {
      EXPECT_EQ(aGetState(), wanted);
      ++tally.right;
    } else {
      EXPECT_FALSE(set.GetDescription().IsEmpty());
      ++tally.failed;
    }
    aRig.array->InvalidateCache();
    const std::int64_t there = aGetState();
    std::int64_t read = 0;
    if (const KrResult got = aRig.array->GetInteger(aName)->GetValue(read); got.IsOK()) {
      EXPECT_EQ(read, there);
      ++tally.right;
    } else {
      EXPECT_FALSE(got.GetDescription().IsEmpty());
      ++tally.failed;
    }
  }
  return tally;
}

TEST(CameraFileFaults, OfATextLine_GiveRightValuesOrFailures) {
  std::string text = ReadExample("text-camera.yml");
  Replace(text, "answerMs: 500", "answerMs: 100");
  Rig<TextCamera> rig(text);
  rig.end.SetFaults(1000, 7);

  const Tally tally = SetUnderFaults(rig, "Width", 16, [&] { return std::atoll(rig.camera.Get("WIDTH").c_str()); });

  EXPECT_GT(rig.end.CountFaults(), 0);
  EXPECT_GT(tally.right, 400) << tally.failed << " failed"; // Of 800.
}

TEST(CameraFileFaults, OfABinaryLine_GiveRightValuesOrFailures) {
  std::string text = ReadExample("binary-camera.yml");
  Replace(text, "answerMs: 300", "answerMs: 100");
  Rig<BinaryCamera> rig(text);
  rig.end.SetFaults(1000, 11);

  const Tally tally = SetUnderFaults(rig, "Width", 8, [&] {
    const std::string bytes = rig.camera.Get(0x10);
    return std::int64_t{static_cast<unsigned char>(bytes[0]) * 256 + static_cast<unsigned char>(bytes[1])};
  });

  EXPECT_GT(rig.end.CountFaults(), 0);
  EXPECT_GT(tally.right, 400) << tally.failed << " failed"; // Of 800.
}

} // namespace
} // namespace krcamerabridge
