// What those hear who wait for settings to be stored and restored, and what becomes of settings when they end it.

#include "describedsettings.h"
#include "krbase/krlogger.h"

#include <stdexcept>

namespace krgenicam {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

using Told = std::vector<std::pair<std::size_t, std::size_t>>;

std::string MakeBankWithSelectors() {
  return MakeInteger("Width", 0) + MakeInteger("Height", 4) +
         MakeEnum("Sel", 8, {"A", "B", "C"}, "<pSelected>Gain</pSelected>") + MakeBank("Gain", 16, "Sel");
}

/// Writes down what it is told, and says no at a call of a number counted from 1; 0 for never.
KrGenProgress Note(Told& aTold, std::size_t aNoAt = 0) {
  return [&aTold, aNoAt](std::size_t aDone, std::size_t aTotal) {
    aTold.emplace_back(aDone, aTotal);
    return aTold.size() != aNoAt;
  };
}

void ExpectRisesToTheEnd(const Told& aTold) {
  ASSERT_FALSE(aTold.empty());
  for (std::size_t i = 0; i < aTold.size(); ++i) {
    EXPECT_EQ(aTold[i].second, aTold.front().second);
    EXPECT_LE(aTold[i].first, aTold[i].second);
    EXPECT_TRUE(i == 0 || aTold[i - 1].first <= aTold[i].first) << i;
  }
  EXPECT_EQ(aTold.front().first, 0U);
  EXPECT_EQ(aTold.back().first, aTold.back().second);
}

Steps Restored() {
  return {{"Width", "7"}, {"Height", "8"}, {"Sel", "A"}, {"Gain", "1"}, {"Sel", "B"}, {"Gain", "2"}, {"Sel", "C"}};
}

void Fill(KrGenSettings& aSettings, const Steps& aSteps) {
  for (const auto& [name, value] : aSteps)
    aSettings.Add(name, value);
}

TEST(SettingsProgress, OfStoring_RisesToTheEnd) {
  SettingsCamera camera(MakeBankWithSelectors());
  Told told;

  const KrResult result = camera.array->StoreSettings(camera.settings, camera.problems, Note(told));

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  ExpectRisesToTheEnd(told);
  EXPECT_EQ(told.back().second, 3U);
  EXPECT_GT(told.size(), 5U);
}

TEST(SettingsProgress, OfRestoring_RisesToTheEnd) {
  SettingsCamera camera(MakeBankWithSelectors());
  Fill(camera.settings, Restored());
  Told told;

  const KrResult result = camera.array->RestoreSettings(camera.settings, camera.problems, Note(told));

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  ExpectRisesToTheEnd(told);
  EXPECT_EQ(told.back().second, 14U);
}

TEST(SettingsProgress, OfRestoringNothing_IsToldOnceAtTheEnd) {
  SettingsCamera camera(MakeBankWithSelectors());
  Told told;

  EXPECT_TRUE(camera.array->RestoreSettings(camera.settings, camera.problems, Note(told)).IsOK());

  EXPECT_THAT(told, Contains(Pair(0U, 0U)));
}

TEST(SettingsProgress, NoWhileStoring_EndsItWhereverItIsWithTheSelectorsPutBack) {
  Told whole;
  SettingsCamera first(MakeBankWithSelectors());
  ASSERT_TRUE(first.array->StoreSettings(first.settings, first.problems, Note(whole)).IsOK());

  for (std::size_t call = 1; call < whole.size(); ++call) {
    SCOPED_TRACE(call);
    SettingsCamera camera(MakeBankWithSelectors());
    camera.SetText("Sel", "C");
    Told told;

    EXPECT_EQ(camera.array->StoreSettings(camera.settings, camera.problems, Note(told, call)), KrResult::Code::Aborted);

    EXPECT_EQ(told.size(), call);
    EXPECT_EQ(camera.Peek(8, 1), std::vector<std::uint8_t>{2});
    EXPECT_THAT(camera.GetProblems(), ElementsAre(AllOf(HasSubstr("not all taken"), HasSubstr("cancelled"))));
    EXPECT_LT(camera.GetSteps().size(), first.GetSteps().size());
  }
}

TEST(SettingsProgress, NoWhileRestoring_EndsItWhereverItIsWithTheSelectorsWhereTheyAreLeft) {
  Told whole;
  SettingsCamera first(MakeBankWithSelectors());
  Fill(first.settings, Restored());
  ASSERT_TRUE(first.array->RestoreSettings(first.settings, first.problems, Note(whole)).IsOK());

  for (std::size_t call = 1; call < whole.size(); ++call) {
    SCOPED_TRACE(call);
    SettingsCamera camera(MakeBankWithSelectors());
    Fill(camera.settings, Restored());
    Told told;

    EXPECT_EQ(camera.array->RestoreSettings(camera.settings, camera.problems, Note(told, call)),
              KrResult::Code::Aborted);

    EXPECT_EQ(told.size(), call);
    EXPECT_EQ(camera.Peek(8, 1), std::vector<std::uint8_t>{2});
    ASSERT_FALSE(camera.GetProblems().empty());
    EXPECT_THAT(camera.GetProblems().front(), StartsWith("The settings are not all restored"));
  }
}

TEST(SettingsProgress, NoBeforeTheFirstSetting_LetsNothingBeSet) {
  SettingsCamera camera(MakeInteger("A", 0));
  camera.settings.Add("A", "5");
  Told told;

  EXPECT_EQ(camera.array->RestoreSettings(camera.settings, camera.problems, Note(told, 1)), KrResult::Code::Aborted);

  EXPECT_EQ(camera.GetText("A"), "0");
}

TEST(SettingsProgress, NoAfterTheFirstSetting_LeavesItSet) {
  SettingsCamera camera(MakeInteger("A", 0) + MakeInteger("B", 4));
  Fill(camera.settings, {{"A", "5"}, {"B", "6"}});

  const KrResult result = camera.array->RestoreSettings(camera.settings, camera.problems,
                                                        [](std::size_t aDone, std::size_t) { return aDone < 1; });

  EXPECT_EQ(result, KrResult::Code::Aborted);

  EXPECT_EQ(camera.GetText("A"), "5");
  EXPECT_EQ(camera.GetText("B"), "0");
  EXPECT_THAT(camera.GetProblems(), Contains(StartsWith("1 further settings were not tried")));
}

TEST(SettingsProgress, NoWhileTheDeviceBegins_EndsTheWaiting) {
  const auto makeCommand = [](const std::string& aName, int aAddress) {
    return "<Command Name=\"" + aName + "\"><pValue>" + aName + "Reg</pValue><CommandValue>1</CommandValue></Command>" +
           "<IntReg Name=\"" + aName + "Reg\"><Address>" + std::to_string(aAddress) +
           "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
           "<Cachable>NoCache</Cachable><Endianess>LittleEndian</Endianess></IntReg>";
  };
  SettingsCamera camera(MakeInteger("A", 0) + makeCommand("DeviceFeaturePersistenceStart", 100) +
                        makeCommand("DeviceFeaturePersistenceEnd", 104));
  camera.settings.Add("A", "5");
  Told told;

  EXPECT_EQ(camera.array->RestoreSettings(camera.settings, camera.problems, Note(told, 3)), KrResult::Code::Aborted);

  EXPECT_EQ(camera.GetText("A"), "0");
  EXPECT_EQ(camera.Peek(104, 1), std::vector<std::uint8_t>{1}) << "the device was not told of the end";
}

TEST(SettingsProgress, Call_MayUseTheArray) {
  SettingsCamera camera(MakeInteger("A", 0) + MakeInteger("B", 4));
  std::vector<std::string> texts;

  const KrResult result = camera.array->StoreSettings(camera.settings, camera.problems, [&](std::size_t, std::size_t) {
    texts.push_back(camera.GetText("B"));
    return true;
  });

  EXPECT_TRUE(result.IsOK());
  EXPECT_THAT(texts, Contains("0"));
}

TEST(SettingsProgress, Exception_EndsItAndIsLogged) {
  SettingsCamera camera(MakeInteger("A", 0));
  KrLogCapture log;

  const KrResult result = camera.array->StoreSettings(
      camera.settings, camera.problems, [](std::size_t, std::size_t) -> bool { throw std::runtime_error("no wish"); });

  EXPECT_EQ(result, KrResult::Code::Aborted);
  const std::vector<KrLogRecord> records = log.GetRecords();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_THAT(records.front().text.ToUtf8(), HasSubstr("no wish"));
}

TEST(SettingsProgress, SelectorsOfASilentDeviceAfterANo_AreNotAllWaitedFor) {
  std::string nodes;
  for (int i = 0; i < 8; ++i) {
    const std::string number = std::to_string(i);
    nodes += MakeEnum("Sel" + number, 256 * i, {"A", "B"}, "<pSelected>F" + number + "</pSelected>") +
             MakeBank("F" + number, 256 * i + 16, "Sel" + number);
  }
  SettingsCamera camera(nodes);
  for (int i = 0; i < 8; ++i)
    Fill(camera.settings, {{"Sel" + std::to_string(i), "B"}, {"F" + std::to_string(i), "3"}});
  std::size_t timeOuts = 0;
  bool isCancelled = false;
  camera.port.SetFault([&](const RegisterAccessRecord&) {
    timeOuts += isCancelled ? 1 : 0;
    return isCancelled ? KrResult(KrResult::Code::TimeLimitExceeded, "Silent.") : KrResult();
  });

  const KrResult result =
      camera.array->RestoreSettings(camera.settings, camera.problems, [&](std::size_t aDone, std::size_t) {
        isCancelled = aDone >= 4;
        return !isCancelled;
      });

  EXPECT_EQ(result, KrResult::Code::Aborted);
  EXPECT_LE(timeOuts, 2U);
}

} // namespace
} // namespace krgenicam
