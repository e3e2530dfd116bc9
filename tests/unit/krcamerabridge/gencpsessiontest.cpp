#include "gencp/gencpsession.h"

#include "gencpfixture.h"

#include <algorithm>
#include <string>

namespace krcamerabridge {
namespace {

using krtest::GenCPCamera;
using krtest::HeardCommand;

constexpr std::uint64_t kPrivilege = 0x204;
constexpr std::uint64_t kAllRates = 0xFF;

class SessionOnLine : public GenCPOnLine {
protected:
  explicit SessionOnLine(const CycleTimes& aTimes = kPatientTimes) : session(line, aTimes) {}

  void ExpectOK(const KrResult& aResult) { EXPECT_TRUE(aResult.IsOK()) << aResult.GetDescription().CStr(); }
  void OpenAndControl() {
    ExpectOK(session.Open({}));
    ExpectOK(session.TakeControl({}));
  }
  void ExpectRightRead() {
    std::vector<std::uint8_t> bytes(100);
    ExpectOK(session.Read(kFeatures, bytes, {}));
    EXPECT_EQ(bytes, camera.Peek(kFeatures, 100));
  }
  void ExpectRates(std::uint32_t aRate) {
    EXPECT_TRUE(wire.AwaitCameraRate(aRate));
    EXPECT_EQ(wire.hostRate, aRate);
  }

  krtest::WireEnds& wire = *camera.GetWire();
  GenCPSession session;
};

// What is lost on purpose is missed soon.
class HastySessionOnLine : public SessionOnLine {
protected:
  HastySessionOnLine() : SessionOnLine(kQuickTimes) {}
};

TEST_F(SessionOnLine, Open_FindsTheCamera) {
  ExpectOK(session.Open({}));

  ExpectRightRead();
  EXPECT_EQ(session.GetBaudRate(), 9600u);
  EXPECT_EQ(camera.PeekNumber(kPrivilege, 4), 0u);
}

TEST_F(HastySessionOnLine, Open_WithoutACamera_IsNotFound) {
  camera.SetFaults({.isSilent = true});

  EXPECT_EQ(session.Open({}), KrResult::Code::NotFound);

  EXPECT_EQ(wire.hostRate, 9600u);
}

TEST_F(SessionOnLine, Open_OfACameraOfAnotherMajorVersion_IsNotSupported) {
  camera.PokeNumber(0, 4, 0x00020000);

  EXPECT_EQ(session.Open({}), KrResult::Code::NotSupported);
}

TEST_F(HastySessionOnLine, Open_FindsACameraThatIsStillAtAnotherRate) {
  wire.cameraRate = 57600;

  ExpectOK(session.Open({}));

  EXPECT_EQ(session.GetBaudRate(), 57600u);
  ExpectRightRead();
}

TEST_F(SessionOnLine, Control_IsTakenAndGivenBack) {
  OpenAndControl();

  EXPECT_EQ(camera.PeekNumber(kPrivilege, 4), 1u);
  EXPECT_EQ(camera.PeekNumber(0x1E0, 8), 1u);
  EXPECT_EQ(session.GetKeepAliveMs(), 10000u);

  session.Close({});

  EXPECT_EQ(camera.PeekNumber(kPrivilege, 4), 0u);
}

TEST_F(SessionOnLine, Control_OfACameraWithoutPrivilege_NeedsNone) {
  camera.PokeNumber(0x1C4, 8, 0);

  OpenAndControl();

  EXPECT_EQ(camera.PeekNumber(kPrivilege, 4), 0u);
  EXPECT_EQ(session.GetKeepAliveMs(), 0u);
}

TEST_F(SessionOnLine, Control_ThatTheCameraDoesNotGive_IsAccessDenied) {
  camera.PokeNumber(0x1E8, 4, 1); // A short heartbeat, as it is awaited.
  camera.RefuseControl(true);
  ExpectOK(session.Open({}));

  EXPECT_EQ(session.TakeControl({}), KrResult::Code::AccessDenied);
}

TEST_F(SessionOnLine, Control_WhileAllAnswersAreDamaged_IsNeitherTakenNorDenied) {
  ExpectOK(session.Open({}));
  camera.SetFaults({.damagedAnswers = 4}); // As often as a command is sent.

  EXPECT_EQ(session.TakeControl({}), KrResult::Code::ProtocolError);

  EXPECT_EQ(camera.GetFaults().damagedAnswers, 0);
  ExpectOK(session.TakeControl({}));
  EXPECT_EQ(session.GetKeepAliveMs(), 10000u);
}

TEST_F(SessionOnLine, Rate_GoesUpToTheFastestThatBothHaveAndBackAtTheEnd) {
  camera.PokeNumber(GenCPCamera::kSerialMap, 4, kAllRates);

  OpenAndControl();

  EXPECT_EQ(session.GetBaudRate(), 115200u);
  ExpectRates(115200);
  ExpectRightRead();

  session.Close({});

  ExpectRates(9600);
}

TEST_F(SessionOnLine, Rate_ThatOnlyOneHas_IsNotSet) {
  camera.PokeNumber(GenCPCamera::kSerialMap, 4, 0x81); // 9600 and 921600.

  OpenAndControl();

  ExpectRates(9600);
  ExpectRightRead();
}

TEST_F(SessionOnLine, Rate_OfACameraWithoutPrivilege_GoesBackAtTheEndToo) {
  camera.PokeNumber(0x1C4, 8, 0x200);
  camera.PokeNumber(GenCPCamera::kSerialMap, 4, kAllRates);

  OpenAndControl();
  ExpectRates(115200);

  session.Close({});

  ExpectRates(9600);
}

TEST_F(HastySessionOnLine, RateThatIsNotConfirmed_GivesWayToTheNext) {
  camera.PokeNumber(GenCPCamera::kSerialMap, 4, kAllRates);
  camera.SetFaults({.lostConfirmations = 1});

  OpenAndControl();

  ExpectRates(57600);
  ExpectRightRead();
}

TEST_F(HastySessionOnLine, LostAnswerToAConfirmation_LeavesBothAtOneRate) {
  camera.PokeNumber(GenCPCamera::kSerialMap, 4, kAllRates);
  ExpectOK(session.Open({}));
  camera.SetFaults({.lostConfirmationAnswers = 1});

  ExpectOK(session.TakeControl({}));

  ExpectRates(115200);
  ExpectRightRead();
}

TEST_F(HastySessionOnLine, Probe_OfACameraThatForgot_TakesControlAndRateAgain) {
  camera.PokeNumber(GenCPCamera::kSerialMap, 4, kAllRates);
  OpenAndControl();
  camera.Forget();

  ExpectOK(session.Probe({}));

  EXPECT_EQ(camera.PeekNumber(kPrivilege, 4), 1u);
  ExpectRates(115200);
  ExpectRightRead();
}

TEST_F(HastySessionOnLine, Probe_OfASilentCamera_FindsItAgainLater) {
  camera.PokeNumber(GenCPCamera::kSerialMap, 4, kAllRates);
  OpenAndControl();
  camera.SetFaults({.isSilent = true});
  EXPECT_EQ(session.Probe({}), KrResult::Code::TimeLimitExceeded);

  camera.SetFaults({});

  ExpectOK(session.Probe({}));
  ExpectRates(115200);
}

TEST_F(HastySessionOnLine, Probe_OfADeadCameraOnANoisyLine_IsSilence) {
  OpenAndControl();
  camera.SetFaults({.isSilent = true, .hasNoise = true});
  camera.TakeHeard();

  EXPECT_EQ(session.Probe({}), KrResult::Code::TimeLimitExceeded);

  EXPECT_FALSE(camera.TakeHeard().empty());
  camera.SetFaults({});
  ExpectOK(session.Probe({}));
}

TEST_F(SessionOnLine, Probe_WhoseControlIsNotKnownForDamage_IsSilence) {
  OpenAndControl();
  camera.SetFaults({.damagedAnswers = 1}); // The first, of the search, which is repeated.
  ExpectOK(session.Probe({}));

  camera.TakeHeard();
  camera.SetFaults({.damagedAnswers = 4, .damagedFrom = kPrivilege});
  EXPECT_EQ(session.Probe({}), KrResult::Code::TimeLimitExceeded);

  ExpectOK(session.Probe({}));
}

TEST_F(SessionOnLine, Manifest_IsReadBestFirst) {
  camera.AddFile(0x01000000, 0x01000000, "older");
  camera.AddFile(0x01000000, 0x01010001, "chunks");
  camera.AddFile(0x01020003, 0x01010000, "best");
  ExpectOK(session.Open({}));
  std::vector<ManifestEntry> entries;

  ExpectOK(session.ReadManifest(entries, {}));

  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].xmlID, KrString("SchemaVersion.1.1@XMLVersion.1.2.3"));
  EXPECT_EQ(entries[1].xmlID, KrString("SchemaVersion.1.0@XMLVersion.1.0.0"));
}

TEST_F(SessionOnLine, ManifestWithoutADescription_IsNotFound) {
  ExpectOK(session.Open({}));
  std::vector<ManifestEntry> entries;

  EXPECT_EQ(session.ReadManifest(entries, {}), KrResult::Code::NotFound);
}

TEST_F(SessionOnLine, ManifestOfEndlessEntries_IsReadAsFarAsItIsThere) {
  camera.AddFile(0x01000000, 0x01010000, "one");
  camera.PokeNumber(GenCPCamera::kManifest, 8, UINT64_MAX);
  ExpectOK(session.Open({}));
  std::vector<ManifestEntry> entries;

  EXPECT_EQ(session.ReadManifest(entries, {}), KrResult::Code::ProtocolError);
}

TEST_F(SessionOnLine, Description_IsReadWhole) {
  const std::string text = "<a>" + std::string(70000, 'x') + "</a>";
  camera.AddFile(0x01000000, 0x01010000, text);
  ExpectOK(session.Open({}));
  std::vector<ManifestEntry> entries;
  ExpectOK(session.ReadManifest(entries, {}));
  ASSERT_EQ(entries.size(), 1u);
  KrGenDescription description;

  ExpectOK(session.ReadDescription(entries[0], description, {}));

  EXPECT_EQ(description.GetText(), text);
}

TEST_F(SessionOnLine, Description_IsHeldAgainstItsHash) {
  const std::string text = "<a>camera</a>";
  std::vector<std::uint8_t> sha1{0x3b, 0x33, 0xe1, 0xde, 0x10, 0x81, 0x19, 0xb8, 0xf4, 0x76,
                                 0x3e, 0xd0, 0xa8, 0xfe, 0xd4, 0x9e, 0x5b, 0x0a, 0xaf, 0x27};
  camera.AddFile(0x01000000, 0x01010000, text, sha1);
  sha1.back() ^= 1;
  camera.AddFile(0x02000000, 0x01010000, text, sha1);
  ExpectOK(session.Open({}));
  std::vector<ManifestEntry> entries;
  ExpectOK(session.ReadManifest(entries, {}));
  ASSERT_EQ(entries.size(), 2u);
  KrGenDescription description;

  const KrResult result = session.ReadDescription(entries[0], description, {});
  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_NE(result.GetDescription().ToUtf8().find("XMLVersion.2.0.0"), std::string::npos) << "it is named";
  EXPECT_NE(result.GetDescription().ToUtf8().find("SHA-1"), std::string::npos);

  ExpectOK(session.ReadDescription(entries[1], description, {}));
  EXPECT_EQ(description.GetText(), text);
}

TEST_F(SessionOnLine, FileThatIsNoDescription_IsBadData) {
  camera.AddFile(0x01000000, 0x01010000, "PK\x03\x04 and no archive");
  ExpectOK(session.Open({}));
  std::vector<ManifestEntry> entries;
  ExpectOK(session.ReadManifest(entries, {}));
  ASSERT_EQ(entries.size(), 1u);
  KrGenDescription description;

  EXPECT_EQ(session.ReadDescription(entries[0], description, {}), KrResult::Code::BadData);
}

TEST(GenCPSessionOnAFixedLine, Rate_StaysAsItIs) {
  krtest::GenCPCamera camera;
  camera.PokeNumber(GenCPCamera::kSerialMap, 4, kAllRates);
  CameraAdapter adapter(camera);
  DeviceLine line(nullptr);
  ASSERT_TRUE(line.Open(adapter, KrDeviceSerial::Serial0).IsOK());
  GenCPSession session(line, kPatientTimes);

  ASSERT_TRUE(session.Open({}).IsOK());
  ASSERT_TRUE(session.TakeControl({}).IsOK());

  EXPECT_TRUE(camera.GetWire()->AwaitCameraRate(9600));
}

} // namespace
} // namespace krcamerabridge
