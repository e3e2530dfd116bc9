#include "registerbench.h"

#include <gmock/gmock.h>

using krgenicam::Evaluation;
using krgenicam::Number;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

TEST(RegisterSharing, NoCache_IsReadOnceInAnEvaluationAndAgainInTheNext) {
  RegisterBench bench(MakeRegister("A", 0, 4, "NoCache") + MakeRegister("B", 0, 4, "NoCache"));
  Evaluation evaluation(bench);

  bench.Read(evaluation, "A");
  bench.Read(evaluation, "B");
  EXPECT_EQ(bench.port.CountReads(), 1U);
  bench.Read("B");
  EXPECT_EQ(bench.port.CountReads(), 2U);
}

TEST(RegisterSharing, NoCache_MakesWhatStandsOnItUnstable) {
  RegisterBench bench(MakeRegister("A", 0, 4, "NoCache"));
  Evaluation evaluation(bench);

  bench.Read(evaluation, "A");

  EXPECT_FALSE(evaluation.isStable);
}

TEST(RegisterSharing, NoCache_LeavesNothingForRegistersThatAreCached) {
  RegisterBench bench(MakeRegister("Passing", 0, 4, "NoCache") + MakeRegister("Lasting", 0, 4));
  bench.Read("Passing");

  bench.Poke(0, 7);

  EXPECT_EQ(bench.Read("Lasting"), 7);
}

TEST(RegisterSharing, NoCache_ThatFindsOtherBytes_TellsThoseWhoRememberThem) {
  RegisterBench bench(MakeRegister("Passing", 0, 4, "NoCache") + MakeRegister("Lasting", 0, 4) +
                      MakeRegister("Part", 1, 1) + MakeRegister("Away", 4, 4));
  for (const char* name : {"Passing", "Lasting", "Part", "Away"})
    bench.Read(name);
  bench.TakeInvalidated();

  bench.Poke(1, 7);
  EXPECT_EQ(bench.Read("Passing"), 0x700);

  EXPECT_THAT(bench.TakeInvalidated(), UnorderedElementsAre("Lasting", "Part"));
  EXPECT_EQ(bench.Read("Lasting"), 0x700);
  EXPECT_EQ(bench.Read("Part"), 7);
}

TEST(RegisterSharing, ReadingOfOtherLengths_TellsThoseWhoRememberOtherBytes) {
  struct {
    const char* what;
    const char* caching;
    bool isFresh;
  } constexpr kRows[] = {
      {"not cached", "NoCache", false},
      {"fresh", "WriteThrough", true},
      {"read for the first time", "WriteThrough", false},
  };

  for (const auto& row : kRows) {
    RegisterBench bench(MakeRegister("Whole", 0, 4, row.caching) + MakeRegister("Changed", 0, 2) +
                        MakeRegister("Across", 1, 4) + MakeRegister("Same", 2, 2) + MakeRegister("Away", 4, 4));
    for (const char* name : {"Changed", "Across", "Same", "Away"})
      bench.Read(name);
    bench.TakeInvalidated();
    bench.walksCount = 0;
    bench.Poke(1, 7);

    Evaluation evaluation(bench);
    evaluation.isFresh = row.isFresh;

    EXPECT_EQ(bench.Read(evaluation, "Whole"), 0x700) << row.what;
    EXPECT_THAT(bench.TakeInvalidated(), UnorderedElementsAre("Changed", "Across")) << row.what;
    EXPECT_EQ(bench.walksCount, 1U) << row.what;
    EXPECT_EQ(bench.Read("Changed"), 0x700) << row.what;
    EXPECT_EQ(bench.Read("Across"), 7) << row.what;
  }
}

TEST(RegisterSharing, ReadingOfALongRegister_TellsThoseWhoRememberOtherBytes) {
  RegisterBench bench("<Register Name=\"Long\"><Address>0</Address><Length>4096</Length><AccessMode>RO</AccessMode>"
                      "<pPort>Device</pPort><Cachable>NoCache</Cachable></Register>" +
                      MakeRegister("A", 0x7FC, 4) + MakeRegister("B", 0x800, 4));
  bench.Read("A");
  bench.Read("B");
  bench.Poke(0x800, 7);
  Evaluation evaluation(bench);
  std::vector<std::uint8_t> bytes;

  ASSERT_TRUE(dynamic_cast<krgenicam::RegisterNode&>(bench.Get("Long")).ReadBytes(evaluation, bytes).IsOK());

  EXPECT_THAT(bench.TakeInvalidated(), UnorderedElementsAre("B"));
}

TEST(RegisterSharing, NoCache_ThatIsFoundToHaveOtherBytesByAnotherLength_IsStillToldOfWrites) {
  RegisterBench bench(MakeRegister("Passing", 0, 4, "NoCache") + MakeRegister("Part", 0, 2) +
                      MakeRegister("Rest", 2, 2));
  bench.Read("Passing");
  bench.Poke(0, 1);
  bench.Read("Part");
  EXPECT_THAT(bench.TakeInvalidated(), IsEmpty());

  bench.Write("Rest", 5);

  EXPECT_THAT(bench.TakeInvalidated(), UnorderedElementsAre("Passing", "Rest"));
}

TEST(RegisterSharing, NoCache_ThatChangesAllTheTime_InvalidatesNobody) {
  RegisterBench bench(MakeRegister("A", 0, 4, "NoCache") + MakeRegister("B", 0, 4, "NoCache"));
  bench.Read("A");
  bench.Read("B");
  bench.TakeInvalidated();

  bench.Poke(0, 1);
  EXPECT_EQ(bench.Read("A"), 1);

  EXPECT_THAT(bench.TakeInvalidated(), IsEmpty());
}

TEST(RegisterSharing, NoCache_IsToldOfWritesAlsoAfterItWasReadByOthers) {
  RegisterBench bench(MakeRegister("A", 0, 4, "NoCache") + MakeRegister("B", 0, 4, "NoCache") +
                      MakeRegister("C", 0, 4));
  for (const char* name : {"A", "B", "C"})
    bench.Read(name);
  bench.Poke(0, 1);
  bench.Read("B");
  bench.TakeInvalidated();

  bench.Write("C", 5);

  EXPECT_THAT(bench.TakeInvalidated(), UnorderedElementsAre("A", "B", "C"));
}

TEST(RegisterSharing, FreshReading_GoesAroundTheCacheOnce) {
  RegisterBench bench(MakeRegister("A", 0, 4) + MakeRegister("B", 0, 4));
  bench.Read("A");
  bench.port.TakeRecords();

  Evaluation evaluation(bench);
  evaluation.isFresh = true;
  bench.Read(evaluation, "A");
  bench.Read(evaluation, "B");

  EXPECT_EQ(bench.port.CountReads(), 1U);
}

TEST(RegisterSharing, FreshReading_OfTheSameBytes_InvalidatesNobody) {
  RegisterBench bench(MakeRegister("A", 0, 4) + MakeRegister("B", 0, 4));
  bench.Read("A");
  bench.Read("B");
  bench.TakeInvalidated();

  Evaluation evaluation(bench);
  evaluation.isFresh = true;
  bench.Read(evaluation, "A");

  EXPECT_THAT(bench.TakeInvalidated(), IsEmpty());
}

TEST(RegisterSharing, FreshReading_OfOtherBytes_TellsAllWhoStandOnThem) {
  RegisterBench bench(MakeRegister("A", 0, 4) + MakeRegister("B", 0, 4) +
                      "<IntReg Name=\"OnB\"><pAddress>B</pAddress><Length>4</Length><AccessMode>RO</AccessMode>"
                      "<pPort>Device</pPort></IntReg>" +
                      MakeRegister("Away", 4, 4));
  for (const char* name : {"A", "B", "OnB", "Away"})
    bench.Read(name);
  bench.TakeInvalidated();
  bench.Poke(0, 8);

  Evaluation evaluation(bench);
  evaluation.isFresh = true;

  EXPECT_EQ(bench.Read(evaluation, "A"), 8);
  EXPECT_THAT(bench.TakeInvalidated(), UnorderedElementsAre("A", "B", "OnB"));
  EXPECT_EQ(bench.Read("B"), 8);
}

TEST(RegisterSharing, FreshReading_ThatDropsWhatWasReadBefore_LeavesNothingThatNobodyCorrects) {
  RegisterBench bench(MakeRegister("Low", 0, 2) + MakeRegister("High", 1, 2) + MakeRegister("First", 0, 1) +
                      "<IntReg Name=\"OnBoth\"><pAddress>Low</pAddress><pAddress>High</pAddress><Length>1</Length>"
                      "<AccessMode>RO</AccessMode><pPort>Device</pPort></IntReg>");
  bench.Poke(0, 0x10);
  bench.Poke(0x120, 7);
  bench.Read("OnBoth");
  bench.Poke(2, 1);

  Evaluation evaluation(bench);
  evaluation.isFresh = true;
  bench.Read(evaluation, "OnBoth");
  bench.Write("First", 0x20);

  EXPECT_EQ(bench.Read("OnBoth"), 7);
}

TEST(RegisterSharing, FreshReading_FillsTheCacheForLaterReadings) {
  RegisterBench bench(MakeRegister("A", 0, 4) + MakeRegister("B", 0, 4));
  bench.Read("A");
  bench.Poke(0, 8);
  Evaluation evaluation(bench);
  evaluation.isFresh = true;
  bench.Read(evaluation, "A");
  bench.port.TakeRecords();

  EXPECT_EQ(bench.Read("A"), 8);
  EXPECT_EQ(bench.Read("B"), 8);
  EXPECT_EQ(bench.port.CountReads(), 0U);
}

TEST(RegisterSharing, WithoutAskingTheDevice_OnlyWhatIsCachedIsHad) {
  RegisterBench bench(MakeRegister("Known", 0, 4) + MakeRegister("Unknown", 4, 4) + MakeRegister("Shared", 0, 4) +
                      MakeRegister("Passing", 0, 4, "NoCache"));
  bench.Read("Known");
  bench.port.TakeRecords();
  Evaluation evaluation(bench);
  evaluation.mayAskDevice = false;
  Number value;

  EXPECT_TRUE(bench.Get("Known").GetValue(evaluation, value).IsOK());
  EXPECT_TRUE(bench.Get("Shared").GetValue(evaluation, value).IsOK());
  EXPECT_FALSE(evaluation.hasMissed);
  EXPECT_EQ(bench.Get("Unknown").GetValue(evaluation, value), KrResult::Code::Busy);
  EXPECT_EQ(bench.Get("Passing").GetValue(evaluation, value), KrResult::Code::Busy);
  EXPECT_TRUE(evaluation.hasMissed);
  EXPECT_EQ(bench.port.CountReads(), 0U);
}

TEST(RegisterSharing, BytesThatWereWritten_AreNotTakenForReadOnesWhereTheDeviceMayChangeThem) {
  RegisterBench bench(MakeRegister("Through", 0, 4) + MakeRegister("Around", 0, 4, "WriteAround") +
                      MakeRegister("Passing", 0, 4, "NoCache"));
  for (const char* name : {"Around", "Passing"}) {
    bench.Write("Through", 100);
    bench.Poke(0, 96);
    bench.port.TakeRecords();

    EXPECT_EQ(bench.Read("Through"), 100) << name;
    EXPECT_EQ(bench.port.CountReads(), 0U);
    EXPECT_EQ(bench.Read(name), 96) << name;
    EXPECT_EQ(bench.Read("Through"), 96) << "told by " << name;
  }
}

TEST(RegisterSharing, BytesOfARegisterThatCannotBeRead_AreNotTakenForThoseOfOneThatCan) {
  RegisterBench bench(MakeRegister("Trigger", 0, 4, "WriteThrough", "WO") +
                      MakeRegister("Status", 0, 4, "WriteThrough", "RO"));
  bench.Write("Trigger", 1);

  bench.Poke(0, 9);

  EXPECT_EQ(bench.Read("Status"), 9);
}

TEST(RegisterSharing, Write_OfBytesOfManyNodes_InvalidatesAllOfThemAtOnce) {
  RegisterBench bench(MakeRegister("A", 0, 4) + MakeRegister("B", 0, 4) + MakeRegister("Part", 1, 2) +
                      MakeRegister("Passing", 0, 4, "NoCache"));
  for (const char* name : {"A", "B", "Part", "Passing"})
    bench.Read(name);
  bench.TakeInvalidated();
  bench.walksCount = 0;

  bench.Write("A", 5);

  EXPECT_EQ(bench.walksCount, 1U);
  EXPECT_THAT(bench.TakeInvalidated(), UnorderedElementsAre("A", "B", "Part", "Passing"));
}

TEST(RegisterSharing, FreshReading_OfOtherBytesOfManyNodes_InvalidatesAllOfThemAtOnce) {
  RegisterBench bench(MakeRegister("A", 0, 4) + MakeRegister("B", 0, 4) + MakeRegister("C", 0, 4));
  for (const char* name : {"A", "B", "C"})
    bench.Read(name);
  bench.TakeInvalidated();
  bench.walksCount = 0;
  bench.Poke(0, 8);

  Evaluation evaluation(bench);
  evaluation.isFresh = true;
  bench.Read(evaluation, "A");

  EXPECT_EQ(bench.walksCount, 1U);
  EXPECT_THAT(bench.TakeInvalidated(), UnorderedElementsAre("A", "B", "C"));
}

TEST(RegisterSharing, Forgetting_TakesAllWhoShareTheBytes) {
  RegisterBench bench(MakeRegister("A", 0, 4) + MakeRegister("B", 0, 4) + MakeRegister("Away", 4, 4));
  for (const char* name : {"A", "B", "Away"})
    bench.Read(name);
  bench.port.TakeRecords();

  bench.Forget("A");
  for (const char* name : {"A", "B", "Away"})
    bench.Read(name);

  EXPECT_THAT(bench.TakeInvalidated(), UnorderedElementsAre("A", "B"));
  EXPECT_EQ(bench.port.CountReads(), 1U);
}

TEST(RegisterSharing, ForgettingThePort_TakesWhatWasWritten) {
  RegisterBench bench(MakeRegister("A", 0, 4));
  bench.Write("A", 5);
  bench.Poke(0, 6);

  bench.Forget("Device");

  EXPECT_EQ(bench.Read("A"), 6);
}

TEST(RegisterSharing, MoreThanFits_IsForgottenAsAWholeWithAllWhoStandOnIt) {
  constexpr std::size_t kLength = std::size_t{16} << 20;
  std::string nodes = MakeRegister("A", 0, 4);
  for (int i = 1; i <= 4; ++i)
    nodes += "<Register Name=\"Long" + std::to_string(i) + "\"><Address>" + std::to_string(i * std::int64_t{kLength}) +
             "</Address><Length>" + std::to_string(kLength) + "</Length><AccessMode>RO</AccessMode>" +
             "<pPort>Device</pPort></Register>";
  RegisterBench bench(nodes);
  bench.Read("A");
  bench.Poke(0, 3);

  std::vector<std::uint8_t> bytes;
  for (const char* name : {"Long1", "Long2", "Long3"}) {
    Evaluation evaluation(bench);
    ASSERT_TRUE(dynamic_cast<krgenicam::RegisterNode&>(bench.Get(name)).ReadBytes(evaluation, bytes).IsOK());
  }
  EXPECT_THAT(bench.TakeInvalidated(), Not(Contains("A")));
  EXPECT_EQ(bench.Read("A"), 0);
  Evaluation evaluation(bench);
  ASSERT_TRUE(dynamic_cast<krgenicam::RegisterNode&>(bench.Get("Long4")).ReadBytes(evaluation, bytes).IsOK());

  EXPECT_THAT(bench.TakeInvalidated(), Contains("A"));
  EXPECT_EQ(bench.Read("A"), 3);
}
