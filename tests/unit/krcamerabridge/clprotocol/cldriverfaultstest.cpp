// Drivers that hang, crash and lie in each of their functions, and what is told of them.

#include "clprotocolfixture.h"

#include "await.h"
#include "krbase/filedescriptor.h"
#include "krbase/krlogger.h"
#include "threadrefusal.h"

#include <algorithm>
#include <future>

#include <fcntl.h>
#include <unistd.h>

namespace krcamerabridge {
namespace {

using testing::HasSubstr;

// A function, and when it is called.
enum class Moment { Connecting, Reading, Writing, Closing };

struct Function {
  const char* name;
  Moment moment;
};

constexpr Function kFunctions[] = {
    {"clpGetCLProtocolVersion", Moment::Connecting},
    {"clpInitLib", Moment::Connecting},
    {"clpGetShortDeviceIDTemplates", Moment::Connecting},
    {"clpProbeDevice", Moment::Connecting},
    {"clpGetXMLIDs", Moment::Connecting},
    {"clpIsParamSupported", Moment::Connecting},
    {"clpGetParam", Moment::Connecting},
    {"clpSetParam", Moment::Connecting},
    {"clpGetXMLDescription", Moment::Connecting},
    {"clpReadRegister", Moment::Reading},
    {"clpWriteRegister", Moment::Writing},
    {"clpContinueWriteRegister", Moment::Writing},
    {"clpDisconnect", Moment::Closing},
    {"clpCloseLib", Moment::Closing},
};

class FaultyDriverTest : public CLProtocolTest {
protected:
  static std::string GetDriver(const char* aBehaviour, const Function& aFunction) {
    return std::string("lib") + aBehaviour + '-' + aFunction.name + ".so";
  }
  // Does what the function is called in, with a camera of its own, and gives what came of it.
  KrResult Use(const char* aBehaviour, const Function& aFunction, const CLDriverTimes& aTimes) {
    const std::string driver = GetDriver(aBehaviour, aFunction);
    folder.Install(driver);
    krtest::CameraEnd ownCamera{krtest::TestCamera(MakeDescription(kNodes))};
    krtest::RatedLine ownLine{ownCamera.GetLine()};
    CLProtocolPort faulty(ownLine, aTimes);
    KrGenDescription ownDescription;
    KrResult result = faulty.Connect(folder.GetTemplate(driver), kBestXMLID, ownDescription, {});
    if (aFunction.moment == Moment::Connecting)
      return result;
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    std::uint8_t byte = 3;
    if (aFunction.moment == Moment::Reading)
      return faulty.Read(0x100, &byte, 1, kGenerousMs);
    if (aFunction.moment == Moment::Writing)
      return faulty.Write(kSlow, &byte, 1, kGenerousMs);
    faulty.Disconnect();
    return {};
  }
  static KrResult::Code GetExpected(const Function& aFunction, KrResult::Code aWhileConnecting) {
    if (aFunction.moment == Moment::Closing)
      return KrResult::Code::OK;
    return aFunction.moment == Moment::Connecting ? aWhileConnecting : KrResult::Code::ConnectionLost;
  }
  // The words of the result, or what was logged where the camera was only left.
  std::string GetWords(const KrResult& aResult) const {
    std::string words = aResult.GetDescription().ToUtf8();
    for (const KrLogRecord& record : log.GetRecords())
      words += '\n' + record.text.ToUtf8();
    return words;
  }

  const KrLogCapture log;
};

// Waits longer than any test for a driver that hangs, unless it is told not to.
constexpr CLDriverTimes kPatientTimes = [] {
  constexpr std::uint32_t kDayMs = 86400000;
  return CLDriverTimes{2000, kDayMs, kDayMs, kDayMs, kDayMs, kDayMs, kDayMs, kDayMs, kDayMs, kDayMs};
}();

bool Contains(const KrLogCapture& aLog, const std::string& aWords) {
  const std::vector<KrLogRecord> records = aLog.GetRecords();
  return std::ranges::any_of(
      records, [&](const KrLogRecord& aRecord) { return aRecord.text.ToUtf8().find(aWords) != std::string::npos; });
}

class DriverFaultsTest : public FaultyDriverTest, public testing::WithParamInterface<Function> {};

TEST_F(FaultyDriverTest, Hang_InAnyFunction_EndsTheDriverAtItsLimit) {
  std::vector<std::future<KrResult>> uses;
  for (const Function& function : kFunctions)
    uses.push_back(std::async(std::launch::async, [&] { return Use("hang", function, kHangTimes); }));

  for (std::size_t i = 0; i < uses.size(); ++i) {
    const Function& function = kFunctions[i];
    SCOPED_TRACE(function.name);
    const KrResult result = uses[i].get();

    EXPECT_EQ(result, GetExpected(function, KrResult::Code::TimeLimitExceeded)) << result.GetDescription().CStr();
    EXPECT_THAT(GetWords(result), testing::ContainsRegex("The CL Protocol driver " + GetDriver("hang", function) +
                                                         " did not come back from [a-zA-Z ]+ within 10000 millisec"));
  }
}

TEST_F(FaultyDriverTest, Hang_WithoutAUseOfTheLine_EndsTheDriverBeforeItsLimit) {
  CLDriverTimes times = kGenerousTimes;
  times.quietLimitMs = 5000;

  const KrResult result = Use("hang", {"clpGetXMLDescription", Moment::Connecting}, times);

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(result.GetDescription().ToUtf8(),
              HasSubstr("from clpGetXMLDescription within 5000 milliseconds without a use of the line"));
}

TEST_P(DriverFaultsTest, Crash_IsToldWithItsSignal) {
  const KrResult result = Use("crash", GetParam(), kGenerousTimes);

  EXPECT_EQ(result, GetExpected(GetParam(), KrResult::Code::SystemError)) << result.GetDescription().CStr();
  EXPECT_THAT(GetWords(result),
              HasSubstr(std::string("libcrash-") + GetParam().name + ".so was ended by signal 6 (Aborted)"));
}

TEST_P(DriverFaultsTest, Exit_IsToldWithItsCode) {
  const KrResult result = Use("exit", GetParam(), kGenerousTimes);

  EXPECT_EQ(result, GetExpected(GetParam(), KrResult::Code::SystemError)) << result.GetDescription().CStr();
  EXPECT_THAT(GetWords(result), HasSubstr("ended its process with exit code 7"));
}

TEST_P(DriverFaultsTest, Exception_IsToldWithWhatItPrints) {
  const KrResult result = Use("throw", GetParam(), kGenerousTimes);

  EXPECT_EQ(result, GetExpected(GetParam(), KrResult::Code::SystemError)) << result.GetDescription().CStr();
  EXPECT_THAT(GetWords(result), HasSubstr("thrown by the driver"));
}

INSTANTIATE_TEST_SUITE_P(Functions, DriverFaultsTest, testing::ValuesIn(kFunctions),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

class LyingDriverTest : public CLProtocolTest, public testing::WithParamInterface<const char*> {};

TEST_P(LyingDriverTest, TextLongerThanItsBuffer_IsNotBelieved) {
  const std::string driver = std::string("liblie-") + GetParam() + ".so";
  folder.Install(driver);

  const KrResult result = Connect(port, driver);

  EXPECT_EQ(result, KrResult::Code::SystemError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("into a buffer of"));
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(driver));
}

TEST_P(LyingDriverTest, EverLargerBuffers_AreNotGiven) {
  const std::string driver = std::string("libgreedy-") + GetParam() + ".so";
  folder.Install(driver);

  const KrResult result = Connect(port, driver);

  EXPECT_EQ(result, KrResult::Code::SystemError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("it wants a"));
}

INSTANTIATE_TEST_SUITE_P(Functions, LyingDriverTest,
                         testing::Values("clpGetShortDeviceIDTemplates", "clpProbeDevice", "clpGetXMLIDs",
                                         "clpGetXMLDescription"),
                         [](const auto& aInfo) { return std::string(aInfo.param); });

TEST_F(CLProtocolTest, Hang_CancelledByTheUser_IsEndedSoon) {
  const KrLogCapture log;
  folder.Install("libhang-clpProbeDevice.so");
  CLDriverTimes times = kGenerousTimes;
  times.cancelLimitMs = 500;
  CLProtocolPort hanging(line, times);
  std::stop_source stop;
  auto connecting =
      std::async(std::launch::async, [&] { return Connect(hanging, "libhang-clpProbeDevice.so", stop.get_token()); });
  ASSERT_TRUE(krtest::Await(
      [&] { return log.Contains(KrLogLevel::Info, "The CL Protocol driver libhang-clpProbeDevice.so says: hangs"); }));

  stop.request_stop();

  const KrResult result = connecting.get();
  EXPECT_EQ(result, KrResult::Code::Aborted);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("within 500 milliseconds of being cancelled, and was ended"));
}

TEST_F(CLProtocolTest, Closing_HasOneLimitForAllOfItsCalls) {
  const KrLogCapture log;
  folder.Install("libslow-closing.so");
  CLDriverTimes times = kGenerousTimes;
  times.closeLimitMs = 1000;
  CLProtocolPort slow(line, times);
  ASSERT_TRUE(Connect(slow, "libslow-closing.so").IsOK());

  slow.Disconnect();

  EXPECT_TRUE(Contains(log, "within 1000 milliseconds of being closed, and was ended"));
}

TEST_F(CLProtocolTest, HangWhileItIsClosed_IsEndedByAStopAtOnce) {
  const KrLogCapture log;
  folder.Install("libhang-clpDisconnect.so");
  CLProtocolPort hanging(line, kPatientTimes);
  ASSERT_TRUE(Connect(hanging, "libhang-clpDisconnect.so").IsOK());
  std::stop_source stop;
  auto disconnecting = std::async(std::launch::async, [&] { hanging.Disconnect(stop.get_token()); });
  ASSERT_TRUE(krtest::Await([&] { return Contains(log, "libhang-clpDisconnect.so says: hangs"); }));

  stop.request_stop();

  ASSERT_EQ(disconnecting.wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
  EXPECT_TRUE(Contains(log, "libhang-clpDisconnect.so was ended, as nobody waits for it any more"));
  EXPECT_FALSE(hanging.IsConnected());
}

TEST_F(CLProtocolTest, HangInAnAccess_IsEndedByAStopOfDisconnectAtOnce) {
  const KrLogCapture log;
  folder.Install("libhang-clpReadRegister.so");
  CLProtocolPort hanging(line, kPatientTimes);
  ASSERT_TRUE(Connect(hanging, "libhang-clpReadRegister.so").IsOK());
  std::uint8_t byte = 0;
  auto reading = std::async(std::launch::async, [&] { return hanging.Read(0x100, &byte, 1, kGenerousMs); });
  ASSERT_TRUE(krtest::Await([&] { return Contains(log, "libhang-clpReadRegister.so says: hangs"); }));
  std::stop_source stop;
  hanging.End();
  EXPECT_EQ(reading.get(), KrResult::Code::Aborted);
  auto disconnecting = std::async(std::launch::async, [&] { hanging.Disconnect(stop.get_token()); });

  stop.request_stop();

  ASSERT_EQ(disconnecting.wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
  EXPECT_FALSE(hanging.IsConnected());
}

TEST_F(CLProtocolTest, HangInErrorText_LeavesTheStandardsWords) {
  folder.Install("libhang-clpGetErrorText.so");
  camera.SetSilent(true);
  CLProtocolPort hanging(line, kHangTimes);

  const KrResult result = Connect(hanging, "libhang-clpGetErrorText.so");

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("no camera was found (error -20101)"));
}

TEST_F(CLProtocolTest, EndInErrorText_LeavesTheStandardsWords) {
  camera.SetSilent(true);
  const KrLogCapture log;
  for (const std::string what : {"crash", "exit", "throw"}) {
    const std::string driver = "lib" + what + "-clpGetErrorText.so";
    folder.Install(driver);

    const KrResult result = Connect(port, driver);

    EXPECT_EQ(result, KrResult::Code::NotFound);
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(driver + ": no camera was found (error -20101)"));
  }
}

TEST_F(CLProtocolTest, CrashWhileAProbeIsStopped_IsTheEndOfACancelledProbe) {
  folder.Install("libcrash-stopping.so");
  std::stop_source stop;
  const int reads = line.CountReads();
  auto connecting =
      std::async(std::launch::async, [&] { return Connect(port, "libcrash-stopping.so", stop.get_token()); });
  ASSERT_TRUE(krtest::Await([&] { return line.CountReads() > reads + 2; }));

  stop.request_stop();

  const KrResult result = connecting.get();
  EXPECT_EQ(result, KrResult::Code::Aborted);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("was ended by signal 6 (Aborted) in clpProbeDevice"));
}

TEST_F(CLProtocolTest, DriverThatIsSlowToComeBackFromStoppingAProbe_IsClosedBehindThat) {
  folder.Install("libslow-stopped.so");
  const KrLogCapture log;
  std::stop_source stop;
  const int reads = line.CountReads();
  auto connecting =
      std::async(std::launch::async, [&] { return Connect(port, "libslow-stopped.so", stop.get_token()); });
  ASSERT_TRUE(krtest::Await([&] { return line.CountReads() > reads + 2; }));

  stop.request_stop();

  EXPECT_EQ(connecting.get(), KrResult::Code::Aborted);
  for (const KrLogRecord& record : log.GetRecords())
    EXPECT_THAT(record.text.ToUtf8(), testing::Not(HasSubstr("signal")));
}

TEST_F(CLProtocolTest, Templates_OfSeveralDriversThatHang_AreWaitedForTogether) {
  for (int i = 0; i < 4; ++i)
    folder.Install("libgood" + std::to_string(i) + ".so");
  folder.Install("libhang-clpInitLib.so");
  folder.Install("libhang-clpGetShortDeviceIDTemplates.so");
  const KrLogCapture log;
  KrStringList templates;

  EXPECT_TRUE(CLProtocolPort::GetTemplates(templates, kHangTimes).IsOK());

  EXPECT_EQ(templates.GetCount(), 8u);
  const std::vector<KrLogRecord> records = log.GetRecords();
  EXPECT_EQ(std::ranges::count(records, KrLogLevel::Warning, &KrLogRecord::level), 2);
}

TEST_F(CLProtocolTest, Templates_WithoutAThread_AreAskedForInTurn) {
  folder.Install("libgood.so");
  folder.Install("libold.so");
  KrStringList templates;
  const ThreadRefusal noThreads;

  const KrResult result = CLProtocolPort::GetTemplates(templates, kGenerousTimes);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(templates.GetCount(), 4u);
}

TEST_F(CLProtocolTest, PendingWrite_OfADriverThatDoesNotWait_IsContinuedAHundredTimesASecondAtMost) {
  folder.Install("libgood.so");
  CLDriverTimes times = kGenerousTimes;
  times.pendingLimitMs = 200;
  CLProtocolPort impatient(line, times);
  ASSERT_TRUE(Connect(impatient, "libgood.so").IsOK());
  const std::uint8_t foreverAtOnce = 126;

  EXPECT_EQ(impatient.Write(kSlow, &foreverAtOnce, 1, kGenerousMs), KrResult::Code::TimeLimitExceeded);

  std::uint32_t continued = 0;
  EXPECT_TRUE(
      krtest::Await([&] { return impatient.Read(kContinued, &continued, sizeof continued, kGenerousMs).IsOK(); }));
  EXPECT_LE(continued, 21u);
}

// Of a library that opened it without a thought of other processes.
TEST_F(CLProtocolTest, ADriver_HasNoDescriptorOfTheApplications) {
  constexpr int kInherited = 200;
  folder.Install("libshow-clpInitLib.so");
  KrLogCapture log;
  const krbase::FileDescriptor opened(::fcntl(STDIN_FILENO, F_DUPFD, kInherited));
  ASSERT_TRUE(opened.IsOpen());

  EXPECT_TRUE(Connect(port, "libshow-clpInitLib.so").IsOK());

  const std::string said = "The CL Protocol driver libshow-clpInitLib.so prints: the driver has descriptor ";
  EXPECT_TRUE(log.Contains(KrLogLevel::Warning, said + "3")) << "its socket";
  EXPECT_FALSE(log.Contains(KrLogLevel::Warning, said + std::to_string(opened.Get())));
}

} // namespace
} // namespace krcamerabridge
